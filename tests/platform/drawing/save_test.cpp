// SPDX-License-Identifier: MIT
// Whole saves of a drawing over its own file: whatever fails or ends at whatever step, the old drawing or the
// new one stands there complete, and the database can be saved again.
#include "support/save_folder.h"
#include "writer_samples.h"

#include <cerrno>
#include <csignal>
#include <cstring>

#include <sys/resource.h>

namespace drawing_test {
namespace {

using namespace save_test;
using lm::drawing::saveDrawing;

constexpr int kRefused = 0, kSaved = 1, kOtherError = 2;
constexpr int kNoDisk = 50;

/// A drawing in text of at least that size. One of its lines has the handle 100.
std::string drawingOf(std::size_t bytes) {
    Parts parts = withReference();
    for (int i = 0; parts.entities.size() < bytes; ++i)
        parts.entities += "|0 LINE|5 " + utf8(OdDbHandle(0x10000ull + i).ascii()) +
                          "|330 1F|100 AcDbEntity|8 0|100 AcDbLine|10 1.50|20 2|30 0|11 3|21 4|31 " +
                          std::to_string(i);
    return bytesOf(parts);
}

class SaveDrawing : public SaveFolderTest {
protected:
    void SetUp() override {
        SaveFolderTest::SetUp();
        static const std::string old = drawingOf(3 * kPiece / 2);
        m_old = old;
        ASSERT_GT(m_old.size(), 2 * kPiece);
        reset();
        m_fresh = saved(*changed().get());
        ASSERT_NE(m_fresh, m_old);
        // Both are read without mending: what equals one of them to the byte is a complete drawing.
        EXPECT_EQ(reportOf(*changed().get()), "");
        EXPECT_EQ(reportOf(*readBytes(m_fresh).get()), "");
        m_path = path("a.dxf");
    }
    void reset() const { put(path("a.dxf"), m_old); }
    /// The drawing of the file with a change.
    OdSmartPtr<OdDbDatabase> changed() const {
        const auto db = lm::drawing::readDrawing(od(path("a.dxf")));
        byHandle<OdDbLine>(*db.get(), "100", OdDb::kForWrite)->setEndPoint({30, 40.5, 0});
        return db;
    }
    static int outcome(OdDbDatabase& db, const std::string& path) {
        try {
            saveDrawing(db, od(path));
            return kSaved;
        } catch (const OdError& error) {
            return error.code() == eFilerError ? kRefused : kOtherError;
        }
    }
    void expectWhole(bool isNew) const { EXPECT_TRUE(content(m_path) == (isNew ? m_fresh : m_old)); }
    std::vector<SaveStep> steps() const {
        Fault none;
        const Hooked hooked(none);
        saveDrawing(*changed().get(), od(m_path));
        return none.seen;
    }

    std::string m_old, m_fresh, m_path;
};

TEST_F(SaveDrawing, LeavesTheOldOrTheNewDrawingWhereverItsProcessEnds) {
    const std::vector<SaveStep> steps = this->steps();
    EXPECT_GE(std::count(steps.begin(), steps.end(), SaveStep::kWrite), 3);
    EXPECT_EQ(steps.back(), SaveStep::kFlushFolder);
    for (std::size_t i = 0; i < steps.size(); ++i) {
        SCOPED_TRACE(std::to_string(i) + ", " + lm::system::SaveError::operation(steps[i]));
        reset();
        Fault fault = Fault::atIndex(steps, i, kKill);
        const int code = inChild([&] {
            const Hooked hooked(fault);
            return outcome(*changed().get(), m_path);
        });
        EXPECT_EQ(code, kKilled);
        expectWhole(steps[i] == SaveStep::kFlushFolder);
        // What is left can't be taken for a drawing: hidden, and with another suffix.
        for (const std::string& name : names())
            EXPECT_TRUE(name == "a.dxf" || (name.front() == '.' && name.ends_with(".lmsave"))) << name;
        EXPECT_LE(names().size(), 2u);
        EXPECT_EQ(outcome(*changed().get(), m_path), kSaved);
        EXPECT_EQ(names(), std::vector<std::string>{"a.dxf"}) << "the next save takes away what was left";
        expectWhole(true);
    }
}

TEST_F(SaveDrawing, LeavesNothingOfANewDrawingWhoseProcessEnds) {
    const std::vector<SaveStep> steps = this->steps();
    const std::string fresh = path("new.dxf");
    for (const SaveStep step : {SaveStep::kCreate, SaveStep::kWrite, SaveStep::kFlush, SaveStep::kReplace}) {
        Fault fault{step, 1, kKill, {}};
        const int code = inChild([&] {
            const Hooked hooked(fault);
            return outcome(*changed().get(), fresh);
        });
        EXPECT_EQ(code, kKilled);
        EXPECT_FALSE(fs::exists(fresh));
    }
}

TEST_F(SaveDrawing, KeepsTheOldDrawingAndAUsableDatabaseWhereAStepFails) {
    const std::vector<SaveStep> steps = this->steps();
    for (const int error : {EIO, ENOSPC})
        for (std::size_t i = 0; i < steps.size(); ++i) {
            if (steps[i] == SaveStep::kAttributes) continue; // the content matters more
            const std::string operation = lm::system::SaveError::operation(steps[i]);
            SCOPED_TRACE(std::to_string(i) + ", " + operation);
            reset();
            const auto db = changed();
            {
                Fault fault = Fault::atIndex(steps, i, error);
                const Hooked hooked(fault);
                // The path as it came, what was done, and why, in one line.
                EXPECT_EQ(errorOf([&] { saveDrawing(*db.get(), od(m_path)); }),
                          m_path + ": can't be saved, " + operation + ": " + std::strerror(error));
            }
            expectWhole(steps[i] == SaveStep::kFlushFolder);
            EXPECT_EQ(names(), std::vector<std::string>{"a.dxf"});
            EXPECT_EQ(outcome(*db.get(), m_path), kSaved);
            expectWhole(true);
        }
}

TEST_F(SaveDrawing, GoesOnAfterInterruptionsAndShortWrites) {
    for (const int answer : {EINTR, -1, -4096}) {
        reset();
        Fault fault{SaveStep::kWrite, 2, answer, {}};
        const Hooked hooked(fault);
        EXPECT_EQ(outcome(*changed().get(), m_path), kSaved);
        expectWhole(true);
    }
}

TEST_F(SaveDrawing, KeepsTheOldDrawingOnADiskThatIsFull) {
    // A disk of its own needs rights that not every machine gives; the same failure comes from the hook in
    // KeepsTheOldDrawingAndAUsableDatabaseWhereAStepFails.
    const int answer = inChild([this] {
        if (!mountDisk(m_folder, "size=3m")) return kNoDisk;
        reset();
        const auto db = changed();
        if (content(m_path) != m_old || outcome(*db.get(), m_path) != kRefused) return 1;
        if (content(m_path) != m_old || names().size() != 1) return 2;
        // With room again the same database is saved.
        if (::mount("none", m_folder.c_str(), nullptr, MS_REMOUNT, "size=16m") != 0) return 3;
        return outcome(*db.get(), m_path) == kSaved && content(m_path) == m_fresh ? 0 : 4;
    });
    EXPECT_TRUE(answer == 0 || answer == kNoDisk) << answer;
    RecordProperty("own_disk", answer == 0 ? "yes" : "no");
}

TEST_F(SaveDrawing, KeepsTheOldDrawingWhereTheSystemTakesNoMore) {
    // A limit of the process for the size of files fails a real write in the middle of the drawing.
    const int answer = inChild([this] {
        const auto db = changed();
        std::signal(SIGXFSZ, SIG_IGN);
        const rlimit limit{kPiece + kPiece / 2, kPiece + kPiece / 2};
        return ::setrlimit(RLIMIT_FSIZE, &limit) != 0 ? 98 : outcome(*db.get(), m_path);
    });
    EXPECT_EQ(answer, kRefused);
    expectWhole(false);
    EXPECT_EQ(names().size(), 1u);
}

TEST_F(SaveDrawing, RefusesFoldersAndFilesThatTheCallerMayNotWrite) {
    const struct { mode_t folder, file; } rows[] = {{0555, 0666}, {0777, 0444}};
    for (const auto& row : rows) {
        const auto db = changed();
        ASSERT_EQ(::chmod(m_path.c_str(), row.file), 0);
        ASSERT_EQ(::chmod(m_folder.c_str(), row.folder), 0);
        const int answer = inChild([&] {
            becomeNobody();
            return outcome(*db.get(), m_path);
        });
        EXPECT_EQ(answer, kRefused);
        ASSERT_EQ(::chmod(m_folder.c_str(), 0700), 0);
        expectWhole(false);
        EXPECT_EQ(names().size(), 1u);
    }
}

TEST_F(SaveDrawing, WritesWhereALinkLeadsAndKeepsLinkAndMode) {
    fs::create_directory(m_folder / "project");
    fs::rename(m_folder / "a.dxf", m_folder / "project" / "b.dxf");
    fs::create_symlink("project/b.dxf", m_folder / "a.dxf");
    for (const mode_t wanted : {0640u, 0600u, 0664u}) {
        ASSERT_EQ(::chmod(path("project/b.dxf").c_str(), wanted), 0);
        EXPECT_EQ(outcome(*changed().get(), m_path), kSaved);
        EXPECT_TRUE(fs::is_symlink(m_folder / "a.dxf"));
        EXPECT_TRUE(content(path("project/b.dxf")) == m_fresh);
        EXPECT_EQ(mode(path("project/b.dxf")), wanted);
    }
    EXPECT_EQ(names(), (std::vector<std::string>{"a.dxf", "project"}));
    EXPECT_EQ(std::distance(fs::directory_iterator(m_folder / "project"), {}), 1);
}

} // namespace
} // namespace drawing_test
