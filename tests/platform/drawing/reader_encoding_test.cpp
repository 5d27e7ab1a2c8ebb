// SPDX-License-Identifier: MIT
// From the bytes of a file to text: code pages, UTF-8, escapes.
#include "drawing_support.h"

using namespace drawing_test;

namespace {

/// The text of one TEXT entity whose value holds the given bytes.
std::string read(const std::string& version, const std::string& page, const std::string& bytes,
                 const ReadOptions& options = {}) {
    dxf::Parts parts;
    parts.version = version;
    parts.codePage = page;
    parts.entities = "0 TEXT|5 100|330 1F|8 0|1 " + bytes;
    const auto db = readGroups(parts.groups(), options);
    return utf8(byHandle<OdDbText>(*db.get(), "100")->textString());
}

} // namespace

TEST(ReaderCodePage, DecodesEachNamedPage) {
    struct Row {
        const char* page;
        const char* bytes;
        const char* text;
    };
    const Row rows[] = {{"ANSI_874", "\xA1\xD2", "กา"},
                        {"ANSI_932", "\x93\xFA\x96\x7B", "日本"},
                        {"ANSI_936", "\xD6\xD0\xB9\xFA", "中国"},
                        {"ANSI_949", "\xC7\xD1\xB1\xB9", "한국"},
                        {"ANSI_950", "\xA4\xA4\xB0\xEA", "中國"},
                        {"ANSI_1250", "\xB3\xF3\x9F", "łóź"},
                        {"ANSI_1251", "\xC4\xE0", "Да"},
                        {"ANSI_1252", "a\xE7\xE3o \x80", "ação €"},
                        {"ANSI_1253", "\xD9\xEC", "Ωμ"},
                        {"ANSI_1254", "\xFD\xFE", "ış"},
                        {"ANSI_1255", "\xF9\xEC", "של"},
                        {"ANSI_1256", "\xD4\xE3", "شم"},
                        {"ANSI_1257", "\xE8\xF0", "čš"},
                        {"ANSI_1258", "\xC3\xFD", "Ăư"},
                        {"DOS850", "\x81\x9C", "ü£"},
                        {"DOS932", "\x93\xFA", "日"},
                        {"MAC-ROMAN", "\x8D\x8B", "çã"},
                        {"MACINTOSH", "\x8D", "ç"},
                        {"DOS437", "\x81", "ü"},
                        {"DOS852", "\x88", "ł"},
                        {"DOS866", "\x84", "Д"},
                        {"ISO8859-2", "\xB3", "ł"},
                        {"BIG5", "\xA4\xA4", "中"},
                        {"GB2312", "\xD6\xD0", "中"},
                        {"KSC5601", "\xC7\xD1", "한"},
                        {"ansi_1251", "\xC4\xE0", "Да"},
                        {"Dos850", "\x81", "ü"},
                        {"  ANSI_1251 ", "\xC4", "Д"},
                        {"UNDEFINED", "\xE7", "ç"},
                        {"", "\xE7", "ç"},
                        {"NO_SUCH_PAGE", "\xE7", "ç"}};
    for (const Row& row : rows) EXPECT_EQ(read("AC1015", row.page, row.bytes), row.text) << row.page;
}

TEST(ReaderCodePage, TakesUtf8FromR2007OnWhateverTheHeaderSays) {
    for (const char* const version : {"AC1021", "AC1024", "AC1027", "AC1032"})
        EXPECT_EQ(read(version, "ANSI_1251", "Ω ç 日本 😀"), "Ω ç 日本 😀") << version;
}

TEST(ReaderCodePage, KnowsOlderFilesThatHoldUtf8AllTheSame) {
    EXPECT_EQ(read("AC1015", "ANSI_1252", "Ω ç"), "Ω ç");
    EXPECT_EQ(read("AC1009", "", "ação"), "ação");
    EXPECT_EQ(read("AC1015", "ANSI_1252", "Ω ç \xE7"), "Î© Ã§ ç") << "one byte that is no UTF-8 decides";
}

TEST(ReaderCodePage, StaysWithWindows1252WhenAsked) {
    ReadOptions options;
    options.convertCodePage = false;
    EXPECT_EQ(read("AC1015", "ANSI_1251", "\xC4\xE0", options), "Äà");
    EXPECT_EQ(read("AC1021", "ANSI_1251", "Д", options), "Д") << "newer files have no code page";
}

TEST(ReaderCodePage, DecodesNamesToo) {
    dxf::Parts parts;
    parts.version = "AC1018";
    parts.codePage = "ANSI_1250";
    parts.layers = dxf::Parts::layer("100", "Wid\xF3k \xB3", "62 7");
    parts.entities = "0 LINE|5 101|330 1F|8 Wid\xF3k \xB3";
    inBothForms(parts.groups(), [](OdDbDatabase& db) {
        EXPECT_EQ(namesOf(db.getLayerTableId()), (std::vector<std::string>{"0", "Widók ł"}));
        EXPECT_EQ(utf8(byHandle<OdDbLine>(db, "101")->layer()), "Widók ł");
        EXPECT_EQ(utf8(db.originalCodePage()), "ANSI_1250");
        EXPECT_EQ(utf8(db.originalFileVersion()), "AC1018");
    });
}

TEST(ReaderEscapes, AreUndoneInEveryVersion) {
    struct Row {
        const char* bytes;
        const char* text;
    };
    const Row rows[] = {{"\\U+00E7", "ç"},
                        {"\\U+03A9x", "Ωx"},
                        {"\\U+00D88", "Ø8"},
                        {"\\u+00e7", "ç"},
                        {"\\U+00E", "\\U+00E"},
                        {"\\U+00GG", "\\U+00GG"},
                        {"\\U00E7", "\\U00E7"},
                        {"\\U+0000", "\\U+0000"},
                        {"a\\U+D83D\\U+DE00", "a😀"},
                        {"\\\\U+00E7", "\\ç"},
                        {"\\P", "\\P"},
                        {"\\", "\\"},
                        {"\\M+182A0", "あ"},
                        {"\\M+5D6D0", "中"},
                        {"\\M+2A4A4", "中"},
                        {"\\M+3C7D1", "한"},
                        {"\\M+9D6D0", "\\M+9D6D0"},
                        {"\\M+1", "\\M+1"},
                        {"\\M+5D6", "\\M+5D6"},
                        {"^J", "\n"},
                        {"a^Lb", "a\fb"},
                        {"^I", "\t"},
                        {"^ ", "^"},
                        {"^^", "\x1E"},
                        {"^M^J", "\r\n"},
                        {"^", "^"},
                        {"^1", "^1"},
                        {"^a", "^a"},
                        {"^@", "^@"},
                        {"^ J", "^J"},
                        {"%%c", "%%c"}};
    for (const Row& row : rows)
        for (const char* const version : {"AC1009", "AC1015", "AC1032"})
            EXPECT_EQ(read(version, "ANSI_1252", row.bytes), row.text) << row.bytes << " " << version;
}

TEST(ReaderEscapes, LookNotIntoTheSecondByteOfACharacter) {
    // In these pages the second byte of a character may be that of "\" or "^".
    EXPECT_EQ(read("AC1015", "ANSI_932", "\x83\x5C\x55+00E7 \xFB\xFC"), "ソU+00E7 髙"); // "\U" isn't there
    EXPECT_EQ(read("AC1015", "ANSI_932", "\xB1\\U+00E7"), "ｱç") << "half-width letters are single bytes";
    EXPECT_EQ(read("AC1015", "ANSI_950", "\xA5\x5C^J"), "功\n");
    EXPECT_EQ(read("AC1015", "ANSI_950", "\xA5\x5C\x55+00E7"), "功U+00E7");
    EXPECT_EQ(read("AC1015", "ANSI_936", "\x80\\U+00E7\xD6\xD0").substr(3), "ç中")
        << "one byte below the pairs";
}

TEST(ReaderEscapes, KeepFormFeedsAndOtherControlBytesInTheirLine) {
    EXPECT_EQ(read("AC1032", "", "a\fb\vc"), "a\fb\vc");
    EXPECT_EQ(read("AC1032", "", "a\xC2\x85\xE2\x80\xA8z"), "a\xC2\x85\xE2\x80\xA8z");
}

TEST(ReaderEscapes, ReportBytesThatThePageDoesntKnow) {
    dxf::Parts parts;
    parts.entities = "0 TEXT|5 100|330 1F|8 0|1 a\xFFz";
    const auto db = readGroups(parts.groups());
    EXPECT_EQ(utf8(byHandle<OdDbText>(*db.get(), "100")->textString()), "aÿz");
    EXPECT_EQ(db->report().count(Defect::kBadText), 1u);
    parts.version = "AC1015";
    parts.codePage = "ANSI_936";
    parts.entities = "0 TEXT|5 100|330 1F|8 0|1 a\xFFz";
    const auto older = readGroups(parts.groups());
    EXPECT_EQ(utf8(byHandle<OdDbText>(*older.get(), "100")->textString()), "aÿz");
    EXPECT_EQ(older->report().count(Defect::kBadText), 1u);
}

TEST(ReaderEscapes, StandInTagsAndExtendedDataAsWell) {
    dxf::Parts parts;
    parts.entities = "0 TEXT|5 100|330 1F|8 0|1 x|1001 ACAD|1000 a^Lb\\U+03A9";
    inBothForms(parts.groups(), [](OdDbDatabase& db) {
        EXPECT_EQ(textOf(byHandle<OdDbText>(db, "100")->xData(od("ACAD"))), "1001 ACAD|1000 a\fbΩ");
    });
}
