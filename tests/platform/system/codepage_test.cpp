// SPDX-License-Identifier: MIT
#include "system/codepage.h"

#include <gtest/gtest.h>

#include <clocale>

namespace {

using namespace lm::system;
using lm::WideChar;
using lm::WideString;

TEST(Codepage, EveryByteSurvivesTheWayThereAndBack) {
    for (unsigned byte = 0; byte < 256; ++byte)
        EXPECT_EQ(narrowUnit(widenByte(static_cast<unsigned char>(byte))), byte) << byte;
}

TEST(Codepage, HoldsTheSignsOfTheUpperRow) {
    const struct {
        unsigned byte;
        WideChar unit;
    } rows[] = {{0x80, 0x20AC}, {0x82, 0x201A}, {0x83, 0x0192}, {0x84, 0x201E}, {0x85, 0x2026},
                {0x86, 0x2020}, {0x87, 0x2021}, {0x88, 0x02C6}, {0x89, 0x2030}, {0x8A, 0x0160},
                {0x8B, 0x2039}, {0x8C, 0x0152}, {0x8E, 0x017D}, {0x91, 0x2018}, {0x92, 0x2019},
                {0x93, 0x201C}, {0x94, 0x201D}, {0x95, 0x2022}, {0x96, 0x2013}, {0x97, 0x2014},
                {0x98, 0x02DC}, {0x99, 0x2122}, {0x9A, 0x0161}, {0x9B, 0x203A}, {0x9C, 0x0153},
                {0x9E, 0x017E}, {0x9F, 0x0178}};
    for (const auto& row : rows) {
        EXPECT_EQ(widenByte(static_cast<unsigned char>(row.byte)), row.unit);
        EXPECT_EQ(narrowUnit(row.unit), row.byte);
    }
}

TEST(Codepage, UnusedBytesStandForTheUnitsOfTheirNumber) {
    for (const unsigned char byte : {0x81, 0x8D, 0x8F, 0x90, 0x9D}) {
        EXPECT_EQ(widenByte(byte), byte);
        EXPECT_EQ(narrowUnit(byte), byte);
    }
}

TEST(Codepage, AUnitThatItLacksBecomesOneQuestionMark) {
    EXPECT_EQ(narrow(WideString{'R', 0x03A9, '1'}), "R?1");
    EXPECT_EQ(narrow(WideString{0xD83D, 0xDE00}), "??"); // one for each unit
    EXPECT_EQ(narrowUnit(0x0080), '?');                  // the control unit, not the euro sign's byte
    EXPECT_EQ(narrowUnit(0x0100), '?');
    EXPECT_EQ(narrowUnit(0xFFFF), '?');
}

TEST(Codepage, KeepsAccentsAndTheFieldSeparator) {
    EXPECT_EQ(narrow(WideString{0x00E3, 0x00E7, 0x00F1, 0x000C}), "\xE3\xE7\xF1\x0C");
    EXPECT_EQ(widenNarrow("\xE3\xE7\xF1\x0C"), (WideString{0x00E3, 0x00E7, 0x00F1, 0x000C}));
}

TEST(Codepage, IsNeverUtf8) {
    EXPECT_EQ(widenNarrow("\xC3\xA7"), (WideString{0x00C3, 0x00A7}));
}

TEST(Codepage, KeepsZeroUnitsInsideTheText) {
    const WideString text = {'a', 0, 'b'};
    EXPECT_EQ(narrow(text), std::string("a\0b", 3));
    EXPECT_EQ(widenNarrow(std::string_view("a\0b", 3)), text);
}

TEST(Codepage, IgnoresTheLocaleOfTheProcess) {
    const std::string before = std::setlocale(LC_ALL, nullptr);
    std::setlocale(LC_ALL, "");
    EXPECT_EQ(narrow(WideString{0x00E7}), "\xE7");
    std::setlocale(LC_ALL, before.c_str());
}

} // namespace
