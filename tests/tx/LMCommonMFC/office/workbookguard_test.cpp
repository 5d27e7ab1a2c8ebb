// SPDX-License-Identifier: MIT
#include "tx/LMCommonMFC/office/workbooksupport.h"

#include "office/partscan.h"
#include "office/workbookguard.h"

#include <gtest/gtest.h>

#include <sys/stat.h>

using lm::office::cellPlaceOf;
using lm::office::isFitWorkbook;

namespace {

bool isFitSheet(const std::string& rows, const std::string& rest = {}, const std::string& head = {}) {
    return isFitWorkbook(tests::packed(tests::smallWorkbook(rows, rest, head)));
}

bool isFitWith(const std::string& part, const std::string& content) {
    tests::Parts parts = tests::smallWorkbook("<row r='1'><c r='A1'><v>1</v></c></row>");
    parts[part] = content;
    return isFitWorkbook(tests::packed(parts));
}

std::string repeated(const std::string& text, int times) {
    std::string result;
    for (int i = 0; i < times; ++i) result += text;
    return result;
}

} // namespace

TEST(CellPlaces, AreReadAsTheLibraryReadsThem) {
    struct Case {
        const char* text;
        int row, column;
        bool isValid;
    };
    for (const Case& at :
         {Case{"A1", 1, 1, true}, Case{"XFD1048576", 1048576, 16384, true}, Case{"$B$7", 7, 2, true},
          Case{"AA10\n", 10, 27, true}, Case{"XFE1", 1, 16385, false}, Case{"A1048577", 1048577, 1, false},
          Case{"A0", 0, 1, false}, Case{"A99999999999", 0, 1, false}, Case{"", -1, -1, false},
          Case{"A", -1, -1, false}, Case{"7", -1, -1, false}, Case{"a1", -1, -1, false},
          Case{"ABCD1", -1, -1, false}, Case{"A1B", -1, -1, false}, Case{"A$", -1, -1, false},
          Case{"$", -1, -1, false}, Case{"A-1", -1, -1, false}}) {
        const lm::office::CellPlace place = cellPlaceOf(QString::fromLatin1(at.text));
        EXPECT_EQ(place.row, at.row) << at.text;
        EXPECT_EQ(place.column, at.column) << at.text;
        EXPECT_EQ(place.isValid(), at.isValid) << at.text;
    }
}

TEST(WorkbookGuard, LetsAPlainWorkbookPass) {
    EXPECT_TRUE(isFitSheet("<row r='1'><c r='A1' t='s'><v>0</v></c></row>"));
    EXPECT_TRUE(isFitWith("xl/media/image1.png", "\x89PNG\r\n\x1a\n====<<<"));
    EXPECT_TRUE(isFitWith("xl/drawings/vmlDrawing1.vml", "<xml><br></xml>")) << "no XML, and nobody reads it";
}

TEST(WorkbookGuard, WantsAPlainArchive) {
    const QByteArray good = tests::packed(tests::smallWorkbook({}));
    ASSERT_TRUE(isFitWorkbook(good));
    EXPECT_FALSE(isFitWorkbook({}));
    for (const char* const text : {"P", "PK\5", "PK\5\6", "abc"}) EXPECT_FALSE(isFitWorkbook(text));
    EXPECT_FALSE(isFitWorkbook("no archive at all, but some text that is longer than the end record"));
    EXPECT_FALSE(isFitWorkbook(good.left(good.size() - 1))) << "cut off";
    EXPECT_FALSE(isFitWorkbook(good.left(good.size() / 2)));
    EXPECT_FALSE(isFitWorkbook(good + "x")) << "a comment that isn't announced";
    EXPECT_FALSE(isFitWorkbook("xx" + good)) << "offsets that lead elsewhere";
    for (qsizetype at = 0; at + 22 < good.size(); at += 7)
        isFitWorkbook(good.left(at) + good.mid(at + 3)); // whatever it says, it comes to an end
}

TEST(WorkbookGuard, RefusesTwoEndsThatBothReachTheEnd) {
    QByteArray first = tests::packed(tests::smallWorkbook({}));
    const QByteArray second = first.right(22);
    first[first.size() - 2] = 22; // the second end is the comment of the first one
    EXPECT_FALSE(isFitWorkbook(first + second));
}

TEST(WorkbookGuard, WantsTheSizesOfTheDirectoryToBeTrue) {
    const std::string text = "<a>" + std::string(5000, 'x') + "</a>";
    tests::Parts parts = tests::smallWorkbook({});
    parts["xl/more.xml"] = text;
    QByteArray archive = tests::packed(parts);
    ASSERT_TRUE(isFitWorkbook(archive));
    // Both directories claim fewer bytes than there are, and then the largest number.
    for (const quint32 claim : {quint32(16), 0xFFFFFFFFU, 0x7FFFFFFFU}) {
        QByteArray changed = archive;
        int found = 0;
        const QByteArray size("\x8f\x13\0\0", 4); // 5007 in all but the wrapping
        for (qsizetype at = changed.indexOf(size); at >= 0; at = changed.indexOf(size, at + 1), ++found)
            memcpy(changed.data() + at, &claim, 4);
        ASSERT_GE(found, 2);
        EXPECT_FALSE(isFitWorkbook(changed)) << claim;
    }
}

TEST(WorkbookGuard, RefusesWhatUnpacksToMoreThanAMemoryHolds) {
    EXPECT_FALSE(isFitWith("xl/bomb.bin", std::string(300U << 20, '\0')));
}

TEST(WorkbookGuard, CountsASheetAsOftenAsItIsNamed) {
    const std::string names = repeated("<sheet name='x' sheetId='1' r:id='rId1'/>", 9);
    const auto workbook = [](const std::string& sheets) {
        return "<workbook "
               "xmlns:r='http://schemas.openxmlformats.org/officeDocument/2006/relationships'><sheets>" +
               sheets + "</sheets></workbook>";
    };
    std::string rows;
    for (int row = 1; row <= 1000; ++row) {
        rows += "<row>";
        for (int i = 0; i < 1000; ++i) rows += "<c r='A1'/>";
        rows += "</row>";
    }
    tests::Parts parts = tests::smallWorkbook(rows);
    EXPECT_TRUE(isFitWorkbook(tests::packed(parts))) << "a million cells";
    parts["xl/workbook.xml"] = workbook(names);
    EXPECT_FALSE(isFitWorkbook(tests::packed(parts))) << "the same million nine times";
}

TEST(WorkbookGuard, RefusesLongTextsThatEachCellWouldCopy) {
    tests::Parts parts =
        tests::smallWorkbook("<row r='1'>" + repeated("<c r='A1' t='s'><v>0</v></c>", 30000) + "</row>");
    const std::string half = "<t>" + std::string(5000, 'x') + "</t>";
    parts["xl/sharedStrings.xml"] = "<sst><si>" + half + "</si></sst>";
    EXPECT_TRUE(isFitWorkbook(tests::packed(parts))) << "one piece is shared";
    parts["xl/sharedStrings.xml"] = "<sst><si><r>" + half + "</r><r>" + half + "</r></si></sst>";
    EXPECT_FALSE(isFitWorkbook(tests::packed(parts))) << "two pieces are put together for each cell";
}

TEST(WorkbookGuard, RefusesPlacesBeyondTheFormat) {
    EXPECT_TRUE(isFitSheet("<row r='1048576'><c r='XFD1048576'/></row>"));
    EXPECT_FALSE(isFitSheet("<row r='1048577'/>"));
    EXPECT_FALSE(isFitSheet("<row r='-1'/>"));
    EXPECT_FALSE(isFitSheet("<row><c r='XFE1'/></row>"));
    EXPECT_FALSE(isFitSheet("<row><c r='A1048577'/></row>"));
    EXPECT_FALSE(isFitSheet("<row><c/></row>")) << "the library would take any place";
    EXPECT_FALSE(isFitSheet({}, {}, "<dimension ref='A1:XFD1048577'/>"));
    EXPECT_FALSE(isFitSheet({}, {}, "<dimension ref=''/>"));
    EXPECT_FALSE(isFitSheet({}, "<mergeCells><mergeCell ref='A1:ZZZ9'/></mergeCells>"));
    EXPECT_FALSE(isFitSheet({}, "<hyperlinks><hyperlink ref='x'/></hyperlinks>"));
}

TEST(WorkbookGuard, RefusesColumnRangesThatTheLibraryWouldWalk) {
    EXPECT_TRUE(isFitSheet({}, {}, "<cols><col min='1' max='16384'/></cols>"));
    EXPECT_TRUE(isFitSheet({}, {}, "<cols><col min='5' max='2'/></cols>"));
    EXPECT_FALSE(isFitSheet({}, {}, "<cols><col min='1' max='2147483647'/></cols>"));
    EXPECT_FALSE(isFitSheet({}, {}, "<cols><col min='-2000000000' max='1'/></cols>"));
    EXPECT_FALSE(isFitSheet({}, {}, "<cols>" + repeated("<col min='1' max='16384'/>", 3) + "</cols>"));
}

TEST(WorkbookGuard, RefusesSheetsWhoseWalkTakesForEver) {
    std::string rows;
    for (int row = 1; row <= 30000; ++row) rows += "<row><c r='A" + std::to_string(row) + "'/></row>";
    EXPECT_TRUE(isFitSheet(rows, {}, "<dimension ref='A1:Z30000'/>"));
    EXPECT_FALSE(isFitSheet(rows, {}, "<dimension ref='A1:XFD30000'/>"));
}

TEST(WorkbookGuard, CountsCellsAndColumnsWhereTheLibraryReadsThem) {
    // A chain of calculations in the order of columns changes its row with each formula.
    std::string chain;
    for (int column = 0; column < 3; ++column)
        for (int row = 1; row <= 10000; ++row)
            chain += std::string("<c r='XF") + "ABC"[column] + std::to_string(row) + "'/>";
    EXPECT_TRUE(isFitWith("xl/calcChain.xml", "<calcChain>" + chain + "</calcChain>"));
    EXPECT_FALSE(isFitWith("xl/calcChain.xml", "<sheetData>" + chain + "</sheetData>")) << "by whatever name";
    EXPECT_TRUE(isFitWith("xl/other.xml", "<a><c/><row r='-1'/></a>"));
    EXPECT_FALSE(isFitWith("xl/other.xml", "<a><sheetData/><c/></a>")) << "behind one, as well as in it";
    const std::string anchors = repeated("<from><col>1</col></from>", 40000);
    EXPECT_TRUE(isFitWith("xl/drawings/drawing1.xml", "<d>" + anchors + "</d>"));
    EXPECT_FALSE(isFitWith("xl/drawings/drawing1.xml", "<d><cols/>" + anchors + "</d>"));
}

TEST(WorkbookGuard, RefusesStylesBelowTheFirst) {
    for (const char* const name : {"fontId", "fillId", "borderId"}) {
        const auto styles = [&](const char* value) {
            return std::string("<styleSheet><cellXfs><xf ") + name + "='" + value +
                   "'/></cellXfs></styleSheet>";
        };
        EXPECT_FALSE(isFitWith("xl/styles.xml", styles("-1"))) << name;
        EXPECT_TRUE(isFitWith("xl/styles.xml", styles("77"))) << name << ": passed over by the library";
    }
}

TEST(WorkbookGuard, RefusesNamesOfSheetsThatAreNotThere) {
    const auto workbook = [](const char* sheet) {
        return std::string("<workbook><sheets><sheet name='Um'/></sheets><definedNames><definedName name='x' "
                           "localSheetId='") +
               sheet + "'>Um!A1</definedName></definedNames></workbook>";
    };
    EXPECT_TRUE(isFitWith("xl/other.xml", workbook("0")));
    EXPECT_FALSE(isFitWith("xl/other.xml", workbook("1")));
    EXPECT_FALSE(isFitWith("xl/other.xml", workbook("-1")));
}

TEST(WorkbookGuard, RefusesWhatTheLibraryReadsForEver) {
    EXPECT_FALSE(isFitWith("xl/other.xml", "<workbook><bookviews/></workbook>"));
    EXPECT_TRUE(isFitSheet({}, "<dataValidations count='1'><dataValidation sqref='A1'><formula1>1</formula1>"
                               "</dataValidation></dataValidations>"));
    EXPECT_FALSE(isFitSheet({},
                            "<dataValidations count='1'><dataValidation sqref='A1'><formula1>1<x/></formula1>"
                            "</dataValidation></dataValidations>"));
    EXPECT_FALSE(isFitWith("xl/sheet.bin", "<worksheet><dataValidations><dataValidation sqref='A1'>"))
        << "by whatever name";
}

TEST(WorkbookGuard, RefusesPicturesWithoutAnImage) {
    constexpr char kPart[] = "xl/drawings/drawing1.xml";
    EXPECT_TRUE(isFitWith(kPart, "<d><pic><blipFill><blip/></blipFill></pic><pic><blip/></pic></d>"));
    EXPECT_FALSE(isFitWith(kPart, "<d><pic/></d>"));
    EXPECT_FALSE(isFitWith(kPart, "<d><blip/><pic><blipFill/></pic></d>"));
    EXPECT_FALSE(isFitWith(kPart, "<d><pic><blip/></pic><pic/></d>"));
    EXPECT_FALSE(isFitWith(kPart, "<d><pic><pic><blip/></pic></pic></d>"))
        << "the inner end would be its end";
    EXPECT_FALSE(isFitWith("xl/drawing.bin", "<d><pic>"));
}

TEST(WorkbookGuard, RefusesXmlThatIsNone) {
    EXPECT_FALSE(isFitSheet("<row>"));
    EXPECT_FALSE(isFitWith("xl/other.xml", "<!DOCTYPE a [<!ENTITY b 'c'>]><a>&b;</a>"));
    EXPECT_FALSE(isFitWith("xl/other.xml", repeated("<a>", 300) + repeated("</a>", 300))) << "too deep";
    std::string wide = "<a";
    for (int i = 0; i < 5000; ++i) wide += " a" + std::to_string(i) + "=''";
    EXPECT_FALSE(isFitWith("xl/other.xml", wide + "/>"));
    EXPECT_FALSE(isFitWith("xl/other.bin", wide + "/>"));
    std::string spaces = "<a";
    for (int i = 0; i < 1100; ++i) spaces += " xmlns:a" + std::to_string(i) + "='b'";
    EXPECT_FALSE(isFitWith("xl/other.xml", spaces + "/>"));
}

TEST(WorkbookGuard, ReadsFilesOnly) {
    const tests::WorkbookFolder folder;
    folder.write("good.xlsx", tests::packed(tests::smallWorkbook({})));
    EXPECT_TRUE(lm::office::isFitWorkbookFile(folder.path("good.xlsx")));
    EXPECT_FALSE(lm::office::isFitWorkbookFile(folder.path("none.xlsx")));
    EXPECT_FALSE(lm::office::isFitWorkbookFile(folder.path("")));
    std::filesystem::resize_file(folder.path("good.xlsx"), std::uintmax_t(100) << 30);
    EXPECT_FALSE(lm::office::isFitWorkbookFile(folder.path("good.xlsx"))) << "a hole, and nothing is read";
    ASSERT_EQ(::mkfifo(folder.path("pipe.xlsx").c_str(), 0600), 0);
    EXPECT_FALSE(lm::office::isFitWorkbookFile(folder.path("pipe.xlsx"))) << "and doesn't wait";
}
