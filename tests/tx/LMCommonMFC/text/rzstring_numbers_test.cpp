// SPDX-License-Identifier: MIT
#include "text_literal.h"

#include <gtest/gtest.h>

#include <clocale>
#include <cmath>
#include <limits>

namespace {

TEST(TextNumbers, PadIntegersInFrontOfTheSign) {
    struct {
        int value, width;
        const char* expected;
    } rows[] = {{7, 3, "007"},
                {1234, 3, "1234"},
                {-5, 4, "00-5"},
                {5, 0, "5"},
                {5, -3, "5"},
                {0, 1, "0"},
                {0, 3, "000"},
                {-5, 2, "-5"},
                {2147483647, 12, "002147483647"},
                {-2147483647 - 1, 11, "-2147483648"}};
    for (const auto& row : rows) EXPECT_EQ(RZString(row.value, row.width), row.expected);
}

TEST(TextNumbers, WriteRealsByTheirFormat) {
    struct {
        double value;
        bool general;
        int decimals;
        const char* expected;
    } rows[] = {
        {1.5, false, -1, "1.500000"},
        {1.5, true, -1, "1.5"},
        {1.5, true, 2, "1.50"},
        {1.5, false, 0, "2"},
        {2.5, false, 0, "2"},
        {-1.005, false, 3, "-1.005"},
        {0.0, false, -1, "0.000000"},
        {-0.0, false, 1, "-0.0"},
        {1e20, true, -1, "1e+20"},
        {1e-5, true, -1, "1e-05"},
        {123456789.0, true, -1, "1.23457e+08"},
        {100000.0, true, -1, "100000"},
        {0.1, false, 20, "0.10000000000000000555"},
        {1.5, false, -7, "1.500000"},
        {1e21, false, 0, "1000000000000000000000"},
    };
    for (const auto& row : rows) EXPECT_EQ(RZString(row.value, row.general, row.decimals), row.expected);
    EXPECT_EQ(RZString(0.1f, false, 10), "0.1000000015") << "a float is widened first";
    EXPECT_EQ(RZString(1.5f, true, -1), "1.5");
}

TEST(TextNumbers, WriteTheWidestReals) {
    const RZString text(-std::numeric_limits<double>::max(), false, 400);
    EXPECT_EQ(text.length(), 1u + 309 + 1 + 400);
    EXPECT_EQ(RZString(INFINITY, false, -1), "inf");
    EXPECT_EQ(RZString(1.0, false, 2000).length(), 2002u);
}

TEST(TextNumbers, DoNotFollowTheLocaleOfTheProcess) {
    const std::string before = std::setlocale(LC_ALL, nullptr);
    for (const char* name : {"pt_BR.UTF-8", "de_DE.UTF-8", "fr_FR.UTF-8", "C.UTF-8"})
        if (std::setlocale(LC_ALL, name) != nullptr) break;
    EXPECT_EQ(RZString(1.5, false, 2), "1.50");
    EXPECT_EQ(RZString("1.5").toFloat(), 1.5f);
    EXPECT_EQ(RZString("1,5").toFloat(), 1.0f);
    std::setlocale(LC_ALL, before.c_str());
}

TEST(TextNumbers, ReadTheIntegerAtTheStart) {
    struct {
        const char16_t* text;
        int expected;
    } rows[] = {{u"12abc", 12},
                {u"abc", 0},
                {u" -7", -7},
                {u"", 0},
                {u"+8", 8},
                {u"- 7", 0},
                {u"--7", 0},
                {u"-", 0},
                {u"\t\n 42", 42},
                {u"\u00A042", 42},
                {u"1.9", 1},
                {u"0x10", 0},
                {u"007", 7},
                {u"2147483647", 2147483647},
                {u"2147483648", 2147483647},
                {u"-2147483648", -2147483647 - 1},
                {u"-99999999999999999999999", -2147483647 - 1},
                {u"99999999999999999999999", 2147483647}};
    for (const auto& row : rows) EXPECT_EQ(RZString(wide(row.text)).toInt(), row.expected);
    EXPECT_EQ(u"1\0"
              u"2"_rz.toInt(),
              1);
}

TEST(TextNumbers, ReadTheRealAtTheStart) {
    struct {
        const char* text;
        float expected;
    } rows[] = {{"1.5x", 1.5f},
                {"x", 0.0f},
                {"", 0.0f},
                {" -2.25", -2.25f},
                {"+.5", 0.5f},
                {"5.", 5.0f},
                {".", 0.0f},
                {"-.", 0.0f},
                {"1e3", 1000.0f},
                {"1e", 1.0f},
                {"1e+", 1.0f},
                {"1E-2z", 0.01f},
                {"1.5.5", 1.5f},
                {"1,5", 1.0f},
                {"inf", 0.0f},
                {"nan", 0.0f},
                {"0x10", 0.0f},
                {"1e400", INFINITY},
                {"-1e400", -INFINITY},
                {"1e-400", 0.0f},
                {"1e99999999999999999999", INFINITY},
                {"1e-99999999999999999999", 0.0f},
                {"0e400", 0.0f},
                {"1e39", INFINITY},
                {"16777217", 16777216.0f}};
    for (const auto& row : rows) EXPECT_EQ(RZString(row.text).toFloat(), row.expected) << row.text;
    EXPECT_TRUE(std::signbit(RZString("-0").toFloat()));
    const RZString zeros(0, 400);
    EXPECT_EQ((RZString("0.") + zeros + "1").toFloat(), 0.0f);
    EXPECT_EQ((RZString("1") + zeros).toFloat(), INFINITY);
    EXPECT_EQ((RZString("0.") + zeros + "1e+900").toFloat(), INFINITY);
    EXPECT_EQ((RZString("1") + zeros + "e-900").toFloat(), 0.0f);
}

TEST(TextNumbers, WidenRunsOfDigitsToTen) {
    struct {
        const char* text;
        const char* expected;
    } rows[] = {
        {"A1B22", "A0000000001B0000000022"},
        {"12345678901", "12345678900000000001"},
        {"", ""},
        {"abc", "abc"},
        {"1234567890", "1234567890"},
        {"1234567890x7", "1234567890x0000000007"},
        {"7", "0000000007"},
        {"123456789012345678901", "123456789012345678900000000001"},
        {"12345678901234567890", "12345678901234567890"},
        {"12345678901x", "12345678900000000001x"},
        {"1-2", "0000000001-0000000002"},
        {"0", "0000000000"},
    };
    for (const auto& row : rows) {
        RZString text = row.text;
        text.normalizeNumbers();
        EXPECT_EQ(text, row.expected) << row.text;
    }
}

TEST(TextNumbers, SortByNumberOnceWidened) {
    RZString nine = "A9", ten = "A10";
    EXPECT_LT(ten, nine);
    nine.normalizeNumbers();
    ten.normalizeNumbers();
    EXPECT_LT(nine, ten);
}

} // namespace
