// SPDX-License-Identifier: MIT
// Reading files: paths, what is no drawing file, pipes, files that change meanwhile.
#include "drawing_support.h"

#include <atomic>
#include <filesystem>
#include <fstream>
#include <thread>

#include <sys/stat.h>

using namespace drawing_test;
namespace fs = std::filesystem;

namespace {

/// A folder whose name has a blank and an accented letter, gone with the test.
class ReaderFiles : public testing::Test {
protected:
    ReaderFiles() {
        std::string pattern = (fs::temp_directory_path() / "lm dráw XXXXXX").string();
        m_folder = ::mkdtemp(pattern.data());
    }
    ~ReaderFiles() override { fs::remove_all(m_folder); }

    std::string path(const std::string& name) const { return (m_folder / name).string(); }
    std::string write(const std::string& name, const std::string& bytes) const {
        std::ofstream(path(name), std::ios::binary) << bytes;
        return path(name);
    }
    static OdSmartPtr<OdDbDatabase> read(const std::string& path) {
        return lm::drawing::readDrawing(od(path));
    }

    static std::string drawing() {
        dxf::Parts parts;
        parts.entities = "0 LINE|5 100|330 1F|8 0";
        return dxf::text(parts.groups());
    }

private:
    fs::path m_folder;
};

} // namespace

TEST_F(ReaderFiles, AreToldByContentAndNotByName) {
    const auto text = read(write("símbolo.dwg", drawing()));
    EXPECT_FALSE(byHandle<OdDbLine>(*text.get(), "100").isNull());
    EXPECT_EQ(utf8(text->getFilename()), path("símbolo.dwg"));
    EXPECT_EQ(utf8(text->getSysVar(od("DWGNAME"))->getString()), "símbolo.dwg");
    const auto binary = read(write("no extension", dxf::binary(dxf::Parts().groups())));
    EXPECT_TRUE(binary->getModelSpaceId().isValid());
    EXPECT_EQ(binary->numRefs(), 1);
}

TEST_F(ReaderFiles, TakeBothSeparators) {
    std::string windows = write("a.dxf", drawing());
    std::replace(windows.begin(), windows.end(), '/', '\\');
    const auto db = read(windows);
    EXPECT_EQ(utf8(db->getFilename()), windows) << "the text stays as it was given";
}

TEST_F(ReaderFiles, RaiseOneLineForWhatIsNoDrawing) {
    fs::create_directory(path("folder"));
    struct Row {
        std::string path;
        OdResult code;
        const char* text;
    };
    const Row rows[] = {
        {path("missing.dxf"), eFileNotFound, "doesn't exist"},
        {path("no/such/folder.dxf"), eFileNotFound, "doesn't exist"},
        {write("file.dxf", "x") + "/below", eFileNotFound, "doesn't exist"},
        {"", eFileNotFound, "doesn't exist"},
        {path("folder"), eFileUnreadable, "folder"},
        {write("empty.dxf", ""), eUnknownFormat, "empty"},
        {write("foreign.dxf", std::string("PK\3\4\0\0", 6)), eUnknownFormat, "no drawing"},
        {write("long.dxf", "0\nSECTION\n" + std::string(17 << 20, 'x')), eBrokenFile, "line 3"}};
    for (const Row& row : rows) {
        EXPECT_EQ(codeOf([&] { read(row.path); }), row.code) << row.path;
        const std::string text = errorOf([&] { read(row.path); });
        EXPECT_NE(text.find(row.text), std::string::npos) << text;
        EXPECT_EQ(text.rfind(row.path + ":", 0), 0u) << text;
        EXPECT_EQ(text.find('\n'), std::string::npos);
    }
}

TEST_F(ReaderFiles, RefuseAPipeAtOnce) {
    // Nobody writes into it, so whoever waited for its contents would wait for ever.
    const std::string pipe = path("pipe");
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    EXPECT_EQ(codeOf([&] { read(pipe); }), eFileUnreadable);
    EXPECT_NE(errorOf([&] { read(pipe); }).find("ordinary file"), std::string::npos);
    EXPECT_EQ(codeOf([&] { read("/dev/null"); }), eFileUnreadable);
}

TEST_F(ReaderFiles, AreReadWholeOrNotAtAllWhileSomebodyAppends) {
    dxf::Parts parts;
    for (int i = 0; i < 20000; ++i) {
        if (i != 0) parts.entities += '|';
        parts.entities +=
            "0 LINE|5 " + utf8(OdDbHandle(0x1000u + static_cast<unsigned>(i)).ascii()) + "|330 1F|8 0|10 1.0";
    }
    const std::string file = write("growing.dxf", dxf::text(parts.groups()));
    std::atomic<bool> stop{false};
    std::thread writer([&] {
        std::ofstream out(file, std::ios::binary | std::ios::app);
        while (!stop) {
            out << "999\nappended\n" << std::flush;
            std::this_thread::sleep_for(std::chrono::microseconds(200));
        }
    });
    std::size_t changed = 0;
    for (int round = 0; round < 30; ++round) {
        try {
            const auto db = read(file);
            EXPECT_EQ(handlesOf(modelSpace(*db.get())->newIterator()).size(), 20000u);
        } catch (const OdError& error) {
            EXPECT_EQ(error.code(), eFileChanged) << utf8(error.description());
            ++changed;
        }
    }
    stop = true;
    writer.join();
    EXPECT_GT(changed, 0u) << "thirty readings can't all have fallen between two writings";
}

TEST_F(ReaderFiles, SurviveATruncationUnderTheReader) {
    const std::string whole = drawing() + dxf::text("999 " + std::string(200000, 'x'));
    const std::string file = write("shrinking.dxf", whole);
    std::atomic<bool> stop{false};
    std::thread writer([&] {
        while (!stop) {
            fs::resize_file(file, 100);
            std::ofstream(file, std::ios::binary) << whole;
        }
    });
    for (int round = 0; round < 200; ++round) {
        const OdResult code = codeOf([&] { read(file); });
        EXPECT_TRUE(code == eOk || code == eFileChanged || code == eBrokenFile || code == eUnknownFormat)
            << code;
    }
    stop = true;
    writer.join();
}
