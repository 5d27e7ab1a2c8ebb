// SPDX-License-Identifier: MIT
// What can't be read: the error names file, place, what was found and what was expected.
#include "drawing_support.h"

using namespace drawing_test;

namespace {

struct Failure {
    OdResult code = eOk;
    std::string text;
};

Failure readFailing(const std::string& bytes, const ReadOptions& options = {}) {
    try {
        readBytes(bytes, options);
    } catch (const OdError& error) {
        return {error.code(), utf8(error.description())};
    }
    return {};
}

} // namespace

TEST(ReaderErrors, NameFilePlaceFoundAndExpected) {
    struct Row {
        const char* bytes;
        OdResult code;
        const char* text;
    };
    const Row rows[] = {
        {"", eUnknownFormat, "test.dxf: the file is empty"},
        {"hello", eUnknownFormat, "test.dxf: line 1: "},
        {"<html>\n<body>\n", eUnknownFormat, "test.dxf: line 1: "},
        {"0\nFOO\n", eUnknownFormat, "expected"},
        {"5\nSECTION\n", eUnknownFormat, "SECTION"},
        {"AC1032\n\n\n", eUnknownFormat, "is no drawing"},
        {"0\nSECTION\n2\nENTITIES\nx\n1\n", eBrokenFile, "line 5: expected a group code, found \"x\""},
        {"0\nSECTION\n2\nENTITIES\n0\nLINE\n8\n0\n\n1\n", eBrokenFile, "line 9: expected a group code"},
        {"0\nSECTION\n2\nENTITIES\n5\n1\n0\nENDSEC\n", eBrokenFile,
         "line 5: expected an entity, found group code 5"},
        {"0\nSECTION\n2\nENTITIES\n0\nLINE\n8\n0\n", eBrokenFile, "ends inside an entry"},
        {"0\nSECTION\n2\nENTITIES\n", eBrokenFile, "ends inside section ENTITIES"},
        {"0\nSECTION\n5\nENTITIES\n", eBrokenFile, "line 3: expected the name of a section"},
        {"0\nSECTION\n", eBrokenFile, "expected the name of a section"},
        {"0\nSECTION\n2\nHEADER\n9\n$X\n0\nLINE\n", eBrokenFile, "line 8: expected ENDSEC, found \"LINE\""},
        {"0\nSECTION\n2\nCLASSES\n0\nENDSEC\n0\nLINE\n", eBrokenFile,
         "line 8: expected SECTION or EOF, found \"LINE\""},
        {"0\nEOF\n", eBrokenFile, "expected a section, found \"none\""},
        {"999\nno more\n", eBrokenFile, "expected a section"},
    };
    for (const Row& row : rows) {
        const Failure failure = readFailing(row.bytes);
        EXPECT_EQ(failure.code, row.code) << row.bytes << failure.text;
        EXPECT_EQ(failure.text.rfind("test.dxf: ", 0), 0u) << failure.text;
        EXPECT_NE(failure.text.find(row.text), std::string::npos) << failure.text;
        EXPECT_EQ(failure.text.find('\n'), std::string::npos) << "one line";
    }
}

TEST(ReaderErrors, NameTheByteOfABinaryFile) {
    const std::string whole = dxf::binary("0 SECTION|2 ENTITIES|0 LINE|5 A1|10 1.0|0 ENDSEC|0 EOF");
    const Failure cut = readFailing(whole.substr(0, whole.size() - 20));
    EXPECT_EQ(cut.code, eBrokenFile);
    EXPECT_NE(cut.text.find("byte "), std::string::npos) << cut.text;
    std::string wrong = whole;
    wrong.replace(wrong.find("LINE") + 5, 2, "\xC8\x00", 2); // code 200 doesn't exist
    EXPECT_NE(readFailing(wrong).text.find("expected a group code"), std::string::npos);
    EXPECT_EQ(readFailing(dxf::binaryMark()).code, eBrokenFile);
    EXPECT_EQ(readFailing(dxf::binaryMark().substr(0, 20)).code, eUnknownFormat);
}

TEST(ReaderErrors, TellTheVersionsThatArentSupported) {
    dxf::Parts parts;
    for (const char* const version : {"AC1036", "AC9999", "XX1015", "AC10", "AC10x5", "DXF", "AC101500"}) {
        parts.version = version;
        const Failure failure = readFailing(dxf::text(parts.groups()));
        EXPECT_EQ(failure.code, eUnsupportedVersion) << version;
        EXPECT_NE(failure.text.find(version), std::string::npos) << failure.text;
        EXPECT_NE(failure.text.find("AC1032"), std::string::npos) << failure.text;
    }
    for (const char* const version : {"AC1006", "AC1009", "AC1012", "AC1014", "AC1015", "AC1018", "AC1021",
                                      "AC1024", "AC1027", "AC1032", " AC1015 "}) {
        parts.version = version;
        EXPECT_EQ(readFailing(dxf::text(parts.groups())).text, "") << version;
    }
}

TEST(ReaderErrors, TellEveryTruncatedFile) {
    const std::string whole = dxf::text(dxf::Parts().groups());
    const std::string twin = dxf::binary(dxf::Parts().groups());
    for (const std::string& bytes : {whole, twin})
        for (std::size_t size = 0; size < bytes.size(); size += 7) {
            try {
                const auto db = readBytes(bytes.substr(0, size));
                EXPECT_EQ(db->report().count(Defect::kMissingEnd), 1u)
                    << size << ": whole sections were left";
            } catch (const OdError& error) {
                EXPECT_FALSE(error.description().isEmpty()) << size;
            }
        }
}

TEST(StrictReading, StopsAtTheFirstDefect) {
    ReadOptions strict;
    strict.strict = true;
    dxf::Parts parts;
    parts.entities = "0 LINE|5 100|330 1F|8 0|0 LINE|330 1F|8 0";
    const Failure missing = readFailing(dxf::text(parts.groups()), strict);
    EXPECT_EQ(missing.code, eBrokenFile);
    EXPECT_NE(missing.text.find("101"), std::string::npos) << missing.text;
    parts.entities = "0 LINE|5 100|330 1F|8 0|10 junk";
    const Failure number = readFailing(dxf::text(parts.groups()), strict);
    EXPECT_NE(number.text.find("111"), std::string::npos) << number.text;
    EXPECT_NE(number.text.find("junk"), std::string::npos) << number.text;
    EXPECT_EQ(readFailing(dxf::text(parts.groups())).code, eOk) << "the tolerant way mends it";
    parts.entities = "0 LINE|5 100|330 1F|8 0|10 1.0";
    EXPECT_EQ(readFailing(dxf::text(parts.groups()), strict).code, eOk);
}
