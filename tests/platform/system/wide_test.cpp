// SPDX-License-Identifier: MIT
#include "system/wide.h"

#include <gtest/gtest.h>

#include <set>

namespace {

using namespace lm::system;
using lm::WideChar;
using lm::WideString;
using lm::WideView;

WideString w(std::string_view ascii) {
    return widen(ascii);
}

TEST(Wide, LengthEndsAtTheFirstZeroUnit) {
    const WideChar text[] = {'a', 'b', 0, 'c', 0};
    EXPECT_EQ(wideLength(text), 2u);
    EXPECT_EQ(wideLength(text + 2), 0u);
    EXPECT_EQ(wideLength(nullptr), 0u);
}

TEST(Wide, EqualityLooksAtEachUnitAndTheLength) {
    EXPECT_TRUE(wideEquals(w("abc"), w("abc")));
    EXPECT_TRUE(wideEquals(WideView(), w("")));
    EXPECT_FALSE(wideEquals(w("abc"), w("ABC")));
    EXPECT_FALSE(wideEquals(w("abc"), w("ab")));
    EXPECT_FALSE(wideEquals(WideString{'a', 0x0100}, WideString{'a', 0x0200}));
    EXPECT_TRUE(wideEquals(WideString{'a', 0, 'b'}, WideString{'a', 0, 'b'}));
}

TEST(Wide, OrderIsByUnsignedUnitThenByLength) {
    EXPECT_EQ(wideCompare(w("abc"), w("abc")), 0);
    EXPECT_EQ(wideCompare(w("abc"), w("abcd")), -1);
    EXPECT_EQ(wideCompare(w("abcd"), w("abc")), 1);
    EXPECT_EQ(wideCompare(w("A10"), w("A9")), -1);
    EXPECT_EQ(wideCompare(w("abc"), w("ABC")), 1);
    EXPECT_EQ(wideCompare(w(""), w("a")), -1);
    EXPECT_EQ(wideCompare(WideString{0xFFFF}, w("a")), 1);
    EXPECT_EQ(wideCompare(WideString{0x0100}, WideString{0x00FF}), 1);
}

TEST(Wide, CaseTableHoldsTheLettersOfTheCodePageAndNoOthers) {
    std::set<WideChar> pairs;
    for (unsigned unit = 'A'; unit <= 'Z'; ++unit) pairs.insert(static_cast<WideChar>(unit));
    for (unsigned unit = 0xC0; unit <= 0xDE; ++unit)
        if (unit != 0xD7) pairs.insert(static_cast<WideChar>(unit));
    pairs.insert({0x0160, 0x0152, 0x017D, 0x0178});
    for (unsigned unit = 0; unit <= 0xFFFF; ++unit) {
        const auto upper = static_cast<WideChar>(unit);
        if (pairs.count(upper) != 0) {
            EXPECT_NE(toLower(upper), upper) << unit;
            EXPECT_EQ(toUpper(toLower(upper)), upper) << unit;
        } else {
            EXPECT_EQ(toLower(upper), upper) << unit;
        }
    }
}

TEST(Wide, CaseTableHasNoSpecialCases) {
    EXPECT_EQ(toUpper(0x00DF), 0x00DF); // sharp s stays one unit
    EXPECT_EQ(toLower(0x0130), 0x0130); // dotted capital I is no partner of i
    EXPECT_EQ(toUpper(0x0131), 0x0131);
    EXPECT_EQ(toUpper(0x00F7), 0x00F7); // the signs between the letters
    EXPECT_EQ(toUpper(0x00B5), 0x00B5);
    EXPECT_EQ(toUpper(0x00FF), 0x0178);
    EXPECT_EQ(toLower(0x0178), 0x00FF);
    EXPECT_EQ(toLower(0x0391), 0x0391); // Greek stays as it is
}

TEST(Wide, IgnoringCaseOrdersByLowerCase) {
    EXPECT_EQ(compareNoCase(w("NUMERO"), w("numero")), 0);
    EXPECT_LT(compareNoCase(w("abc"), w("ABD")), 0);
    EXPECT_GT(compareNoCase(w("b"), w("A")), 0);
    EXPECT_LT(compareNoCase(w("ab"), w("ABC")), 0);
    EXPECT_GT(compareNoCase(w("ABC"), w("ab")), 0);
    EXPECT_LT(compareNoCase(w("_"), w("A")), 0); // "_" comes before "a"
    EXPECT_EQ(compareNoCase(WideString{0x00C7, 0x00C3}, WideString{0x00E7, 0x00E3}), 0);
}

TEST(Wide, EqualityIgnoringCaseAgreesWithTheOrder) {
    const WideString texts[] = {w(""),    w("a"),   w("A"),   w("aB"),  w("Ab"),  w("abc"),
                                {0x00C7}, {0x00E7}, {0x0178}, {0x00FF}, {0x00D7}, {0x00F7}};
    for (const WideString& a : texts)
        for (const WideString& b : texts) EXPECT_EQ(equalsNoCase(a, b), compareNoCase(a, b) == 0);
}

TEST(Wide, WhiteSpaceIsExactlyTheseUnits) {
    const std::set<unsigned> spaces = {0x09, 0x0A, 0x0B, 0x0C, 0x0D, 0x20, 0x85, 0xA0};
    for (unsigned unit = 0; unit <= 0xFFFF; ++unit)
        EXPECT_EQ(isSpace(static_cast<WideChar>(unit)), spaces.count(unit) != 0) << unit;
}

TEST(Wide, TrimmingTakesBothEndsAndNothingInside) {
    EXPECT_EQ(WideString(trimmed(w(" \t a b\r\n"))), w("a b"));
    EXPECT_EQ(WideString(trimmed(w("ab"))), w("ab"));
    EXPECT_TRUE(trimmed(w(" \t ")).empty());
    EXPECT_TRUE(trimmed(WideView()).empty());
    EXPECT_EQ(WideString(trimmed(WideString{0x000C, 'x', 0x00A0})), w("x"));
}

TEST(Wide, WidenTakesOneUnitForEachByte) {
    EXPECT_EQ(widen("aZ9"), (WideString{'a', 'Z', '9'}));
    EXPECT_EQ(widen("\xE7"), (WideString{0x00E7}));
    EXPECT_TRUE(widen("").empty());
}

TEST(Wide, EveryUnitSurvivesUtf8) {
    for (unsigned unit = 0; unit <= 0xFFFF; ++unit) {
        const WideString text = {'<', static_cast<WideChar>(unit), '>'};
        EXPECT_EQ(fromUtf8(toUtf8(text)), text) << unit;
    }
}

TEST(Wide, Utf8HasItsFourLengths) {
    EXPECT_EQ(toUtf8(WideString{0x7F}), "\x7F");
    EXPECT_EQ(toUtf8(WideString{0x80}), "\xC2\x80");
    EXPECT_EQ(toUtf8(WideString{0x7FF}), "\xDF\xBF");
    EXPECT_EQ(toUtf8(WideString{0x800}), "\xE0\xA0\x80");
    EXPECT_EQ(toUtf8(WideString{0xFFFF}), "\xEF\xBF\xBF");
    EXPECT_EQ(toUtf8(WideString{0xD800, 0xDC00}), "\xF0\x90\x80\x80");
    EXPECT_EQ(toUtf8(WideString{0xDBFF, 0xDFFF}), "\xF4\x8F\xBF\xBF");
    EXPECT_EQ(fromUtf8("\xF4\x8F\xBF\xBF"), (WideString{0xDBFF, 0xDFFF}));
}

TEST(Wide, AppendingUtf8KeepsWhatStandsThere) {
    std::string out = "name: ";
    appendUtf8(WideString{0x00E7}, out);
    EXPECT_EQ(out, "name: \xC3\xA7");
}

TEST(Wide, ABadByteBecomesTheUnitOfItsNumber) {
    const struct {
        const char* bytes;
        WideString text;
    } rows[] = {
        {"\xE7", {0xE7}}, // alone
        {"a\xFF"
         "b",
         {'a', 0xFF, 'b'}},                             // no first byte
        {"\x80", {0x80}},                               // no first byte before it
        {"\xC3", {0xC3}},                               // cut off
        {"\xE2\x82", {0xE2, 0x82}},                     // cut off
        {"\xC3z", {0xC3, 'z'}},                         // second byte missing
        {"\xC0\xAF", {0xC0, 0xAF}},                     // too long a form
        {"\xE0\x80\x80", {0xE0, 0x80, 0x80}},           // too long a form
        {"\xF0\x80\x80\x80", {0xF0, 0x80, 0x80, 0x80}}, // too long a form
        {"\xF4\x90\x80\x80", {0xF4, 0x90, 0x80, 0x80}}, // beyond the last character
        {"\xF5\x80\x80\x80", {0xF5, 0x80, 0x80, 0x80}},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(fromUtf8(row.bytes), row.text);
        EXPECT_FALSE(isUtf8(row.bytes));
    }
}

TEST(Wide, WellFormedUtf8IsTold) {
    EXPECT_TRUE(isUtf8(""));
    EXPECT_TRUE(isUtf8("plain"));
    EXPECT_TRUE(isUtf8("\xC3\xA7\xE2\x82\xAC\xF0\x9F\x98\x80"));
    EXPECT_FALSE(isUtf8("\xED\xA0\x80")); // a surrogate of its own is no character
}

} // namespace
