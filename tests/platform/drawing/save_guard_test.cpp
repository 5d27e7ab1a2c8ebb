// SPDX-License-Identifier: MIT
// What a save refuses: numbers that no file can hold, and a file that somebody else changed. Files whose
// names are no UTF-8.
#include "support/save_folder.h"
#include "writer_support.h"

#include "system/path.h"

#include <filesystem>
#include <limits>

namespace drawing_test {
namespace {

using namespace save_test;
using lm::drawing::readDrawing;
using lm::drawing::saveDrawing;

class SaveGuard : public SaveFolderTest {
protected:
    void SetUp() override {
        SaveFolderTest::SetUp();
        dxf::Parts parts;
        parts.entities = "0 LINE|5 100|330 1F|100 AcDbEntity|8 0|100 AcDbLine|10 1.0|20 2.0|30 0.0|11 3.0|21 "
                         "4.0|31 0.0";
        m_old = dxf::text(parts.groups());
        put(path("a.dxf"), m_old);
    }
    static void change(OdDbDatabase& db, double x) {
        byHandle<OdDbLine>(db, "100", OdDb::kForWrite)->setEndPoint({x, 0, 0});
    }
    std::string m_old;
};

TEST_F(SaveGuard, RefusesAnInfiniteNumberAndKeepsTheOldFile) {
    const auto db = readDrawing(od(path("a.dxf")));
    change(*db.get(), std::numeric_limits<double>::infinity());
    EXPECT_EQ(errorOf([&] { saveDrawing(*db.get(), od(path("a.dxf"))); }),
              path("a.dxf") +
                  ": can't be saved, the number under group 11 of LINE 100 is infinite or no number");
    EXPECT_EQ(codeOf([&] { saveDrawing(*db.get(), od(path("a.dxf"))); }), eFilerError);
    EXPECT_EQ(content(path("a.dxf")), m_old);
    change(*db.get(), 5);
    EXPECT_EQ(codeOf([&] { saveDrawing(*db.get(), od(path("a.dxf"))); }), eOk);
}

TEST_F(SaveGuard, RefusesAFileThatSomebodyElseChanged) {
    const auto db = readDrawing(od(path("a.dxf")));
    change(*db.get(), 5);
    put(path("a.dxf"), "theirs");
    for (int i = 0; i < 2; ++i) {
        EXPECT_EQ(codeOf([&] { saveDrawing(*db.get(), od(path("a.dxf"))); }), eFilerError);
        EXPECT_EQ(errorOf([&] { saveDrawing(*db.get(), od(path("a.dxf"))); }),
                  path("a.dxf") +
                      ": can't be saved, the file was changed by somebody else since the drawing was "
                      "read; save under another name");
        EXPECT_EQ(content(path("a.dxf")), "theirs");
    }
    EXPECT_EQ(codeOf([&] { saveDrawing(*db.get(), od(path("b.dxf"))); }), eOk);
    fs::remove(path("a.dxf"));
    EXPECT_EQ(codeOf([&] { saveDrawing(*db.get(), od(path("a.dxf"))); }), eOk);
}

TEST_F(SaveGuard, KnowsTheFileUnderEveryName) {
    const auto db = readDrawing(od(path("a.dxf")));
    fs::create_symlink("a.dxf", path("link.dxf"));
    put(path("a.dxf"), "theirs");
    EXPECT_EQ(codeOf([&] { saveDrawing(*db.get(), od(path("link.dxf"))); }), eFilerError);
    EXPECT_EQ(codeOf([&] { saveDrawing(*db.get(), od(path("./a.dxf"))); }), eFilerError);
    EXPECT_EQ(content(path("a.dxf")), "theirs");
}

TEST_F(SaveGuard, MaySaveAgainAndAgain) {
    const auto db = readDrawing(od(path("a.dxf")));
    for (int i = 0; i < 3; ++i) {
        change(*db.get(), i);
        EXPECT_EQ(codeOf([&] { saveDrawing(*db.get(), od(path("a.dxf"))); }), eOk);
        EXPECT_EQ(codeOf([&] { saveDrawing(*db.get(), od(path("b.dxf"))); }), eOk);
    }
    put(path("b.dxf"), "theirs");
    EXPECT_EQ(codeOf([&] { saveDrawing(*db.get(), od(path("b.dxf"))); }), eFilerError);
    EXPECT_EQ(codeOf([&] { saveDrawing(*db.get(), od(path("a.dxf"))); }), eOk);
}

TEST_F(SaveGuard, WritesOverAFileThatItNeverRead) {
    const auto db = readDrawing(od(path("a.dxf")));
    put(path("c.dxf"), "theirs");
    EXPECT_EQ(codeOf([&] { saveDrawing(*db.get(), od(path("c.dxf"))); }), eOk);
}

TEST_F(SaveGuard, TakesNamesThatAreNoUtf8) {
    const std::string native = path("b\xe9.dxf");
    put(native, m_old);
    const OdString name(lm::WideView(lm::system::pathText(native)));
    const auto db = readDrawing(name);
    EXPECT_EQ(byHandle<OdDbLine>(*db.get(), "100")->endPoint().x, 3.0);
    change(*db.get(), 9);
    saveDrawing(*db.get(), name);
    EXPECT_TRUE(contains(content(native), "9.0"));
    EXPECT_EQ(errorOf([&] { readDrawing(OdString(lm::WideView(lm::system::pathText(path("c\xe9.dxf"))))); }),
              path("c\\xE9.dxf") + ": the file doesn't exist");
}

} // namespace
} // namespace drawing_test
