// SPDX-License-Identifier: MIT
#include "text_literal.h"

#include "framework/values/exceptions.h"

#include <gtest/gtest.h>

namespace {

TEST(FrameworkText, StartsEmpty) {
    EXPECT_TRUE(CString().IsEmpty());
    EXPECT_EQ(CString().GetLength(), 0);
    EXPECT_EQ(*static_cast<const unsigned short*>(CString()), 0);
}

TEST(FrameworkText, ComesFromPointersUpToTheFirstZero) {
    const unsigned short units[] = {'a', 'b', 0, 'c', 0};
    EXPECT_EQ(CString(units), u"ab"_c);
    EXPECT_TRUE(CString(static_cast<const unsigned short*>(nullptr)).IsEmpty());
    CString text = u"x"_c;
    text = units;
    EXPECT_EQ(text, u"ab"_c);
    EXPECT_EQ(text, units);
    EXPECT_TRUE(CString() == static_cast<const unsigned short*>(nullptr));
    EXPECT_FALSE(text == static_cast<const unsigned short*>(nullptr));
    EXPECT_EQ(units, text);
    EXPECT_NE(text, u"ab"_c + static_cast<unsigned short>('c'));
}

TEST(FrameworkText, ComesFromOneUnit) {
    EXPECT_EQ(CString(static_cast<unsigned short>(0x3A9)), u"Ω"_c);
}

TEST(FrameworkText, GoesToQtAndBackWithoutLoss) {
    lm::WideString all;
    for (unsigned unit = 0; unit <= 0xFFFF; ++unit) all += static_cast<lm::WideChar>(unit);
    const CString text{lm::WideView(all)};
    const QString qt = text.toQString();
    EXPECT_EQ(qt.size(), 0x10000);
    EXPECT_EQ(qt[0xD800].unicode(), 0xD800);
    EXPECT_EQ(CString(qt), text);
    EXPECT_EQ(CString(QString()), CString());
}

TEST(FrameworkText, KeepsAByteOrderMarkOnTheWayToQt) {
    EXPECT_EQ(CString(static_cast<unsigned short>(0xFEFF)).toQString().size(), 1);
}

TEST(FrameworkText, ReadsAndWritesUnits) {
    CString text = u"abc"_c;
    text.SetAt(1, 'X');
    EXPECT_EQ(text, u"aXc"_c);
    EXPECT_EQ(text.GetAt(2), 'c');
    EXPECT_EQ(text.GetAt(3), 0);
    EXPECT_THROW(text.GetAt(4), CInvalidArgException);
    EXPECT_THROW(text.GetAt(-1), CInvalidArgException);
    EXPECT_THROW(text.SetAt(3, 'x'), CInvalidArgException);
    EXPECT_EQ(text, u"aXc"_c);
}

TEST(FrameworkText, JoinsTexts) {
    CString text = u"a"_c;
    text += u"b"_c;
    text += static_cast<unsigned short>('c');
    text += static_cast<const unsigned short*>(u"d"_c);
    text += static_cast<const unsigned short*>(nullptr);
    text += text;
    EXPECT_EQ(text, u"abcdabcd"_c);
    EXPECT_EQ(u"a"_c + u"b"_c, u"ab"_c);
    EXPECT_EQ(static_cast<const unsigned short*>(u"z"_c) + u"b"_c, u"zb"_c);
}

TEST(FrameworkText, HandsOutAFreshBlockAtEachCall) {
    const std::size_t before = lm::values::liveSystemStrings();
    const CString text = u"ação"_c;
    unsigned short* first = text.AllocSysString();
    unsigned short* second = text.AllocSysString();
    EXPECT_NE(first, second);
    EXPECT_EQ(text, first);
    EXPECT_EQ(second[4], 0);
    EXPECT_EQ(lm::values::liveSystemStrings(), before + 2);
    lm::values::freeSystemString(first);
    lm::values::freeSystemString(second);
    lm::values::freeSystemString(nullptr);
    EXPECT_EQ(lm::values::liveSystemStrings(), before);
}

TEST(FrameworkText, ComparesByUnitOrWithoutCase) {
    EXPECT_LT(u"ABC"_c, u"abc"_c);
    EXPECT_EQ(u"abc"_c.Compare(u"abcd"_c), -1);
    EXPECT_EQ(u"CONEXÃO"_c.CompareNoCase(u"conexão"_c), 0);
    EXPECT_LT(u"ABC"_c.CompareNoCase(u"abd"_c), 0);
    EXPECT_GT(u"b"_c.CompareNoCase(u"A"_c), 0);
}

TEST(FrameworkText, ChangesCaseByTheSystemsTable) {
    EXPECT_EQ(u"straße ÿ œ"_c.MakeUpper(), u"STRAßE Ÿ Œ"_c);
    EXPECT_EQ(u"ÇÃO × Ω"_c.MakeLower(), u"ção × Ω"_c);
}

TEST(FrameworkText, Finds) {
    const CString text = u"abcabc"_c;
    EXPECT_EQ(text.Find('b'), 1);
    EXPECT_EQ(text.Find('b', 2), 4);
    EXPECT_EQ(text.Find('z'), -1);
    EXPECT_EQ(text.Find(u"ca"_c), 2);
    EXPECT_EQ(text.Find(u""_c), 0);
    EXPECT_EQ(u""_c.Find(u""_c), 0);
    EXPECT_EQ(text.Find(u"abc"_c, 1), 3);
    EXPECT_EQ(text.Find('a', -3), 0);
    EXPECT_EQ(text.Find('a', 99), -1);
    EXPECT_EQ(text.ReverseFind('b'), 4);
    EXPECT_EQ(text.ReverseFind('z'), -1);
    EXPECT_EQ(u""_c.ReverseFind('z'), -1);
}

TEST(FrameworkText, CutsPartsToItsEnds) {
    const CString text = u"abc"_c;
    struct {
        CString got;
        CString expected;
    } rows[] = {
        {text.Left(2), u"ab"_c},  {text.Left(-1), u""_c},     {text.Left(9), u"abc"_c},
        {text.Right(2), u"bc"_c}, {text.Right(-1), u""_c},    {text.Right(9), u"abc"_c},
        {text.Mid(1), u"bc"_c},   {text.Mid(-1), u"abc"_c},   {text.Mid(5), u""_c},
        {text.Mid(1, 1), u"b"_c}, {text.Mid(-1, 2), u"ab"_c}, {text.Mid(1, -1), u""_c},
        {text.Mid(5, 2), u""_c},  {text.Mid(1, 99), u"bc"_c}, {text.Mid(1, 0x7FFFFFFF), u"bc"_c},
    };
    for (const auto& row : rows) EXPECT_EQ(row.got, row.expected);
}

TEST(FrameworkText, ReplacesInOnePass) {
    struct {
        CString text, from, to, expected;
        int count;
    } rows[] = {
        {u"aaaa"_c, u"aa"_c, u"a"_c, u"aa"_c, 2},       {u"aaa"_c, u"aa"_c, u"b"_c, u"ba"_c, 1},
        {u"a-b-c"_c, u"-"_c, u"--"_c, u"a--b--c"_c, 2}, {u"abc"_c, u""_c, u"x"_c, u"abc"_c, 0},
        {u"abc"_c, u"b"_c, u""_c, u"ac"_c, 1},          {u"abc"_c, u"B"_c, u"x"_c, u"abc"_c, 0},
    };
    for (auto& row : rows) {
        EXPECT_EQ(row.text.Replace(row.from, row.to), row.count);
        EXPECT_EQ(row.text, row.expected);
    }
}

TEST(FrameworkText, TrimsWhiteSpaceOrASet) {
    EXPECT_EQ(CString(u"\t \n\u000B\u000C\r\u0085\u00A0a b\u00A0 "_c).Trim(), u"a b"_c);
    EXPECT_EQ(CString(u" \t"_c).Trim(), u""_c);
    EXPECT_EQ(CString(u"xyAyx"_c).Trim(u"xy"_c), u"A"_c);
    EXPECT_EQ(CString(u"xxyy"_c).Trim(u"xy"_c), u""_c);
    EXPECT_EQ(CString(u"xyAyx"_c).TrimLeft(u"xy"_c), u"Ayx"_c);
    EXPECT_EQ(CString(u"xyAyx"_c).TrimRight(u"xy"_c), u"xyA"_c);
    EXPECT_EQ(CString(u"xxyy"_c).TrimLeft(u"xy"_c), u""_c);
    EXPECT_EQ(CString(u"xxyy"_c).TrimRight(u"xy"_c), u""_c);
    EXPECT_EQ(CString(u" a "_c).Trim(u""_c), u" a "_c);
    EXPECT_EQ(CString(u" a "_c).TrimLeft(u""_c), u" a "_c);
    EXPECT_EQ(CString(u" a "_c).TrimRight(u""_c), u" a "_c);
    CString itself = u"abc"_c;
    EXPECT_EQ(itself.Trim(itself), u""_c);
}

TEST(FrameworkText, FormatsOneInteger) {
    struct {
        CString pattern;
        int value;
        CString expected;
    } rows[] = {
        {u"%d"_c, 42, u"42"_c},
        {u"%d"_c, -7, u"-7"_c},
        {u"nº %03d de %d"_c, 5, u"nº 005 de 5"_c},
        {u"%5d|%-5d|"_c, 1, u"    1|1    |"_c},
        {u"%x %X"_c, 255, u"ff FF"_c},
        {u"100%% %i"_c, 3, u"100% 3"_c},
        {u"%s %d"_c, 3, u"%s 3"_c},
        {u"plain"_c, 3, u"plain"_c},
        {u"%"_c, 3, u"%"_c},
        {u""_c, 3, u""_c},
        {u"%99999d"_c, 3, u"%99999d"_c},
        {u"%+.3d"_c, 3, u"+003"_c},
    };
    for (const auto& row : rows) {
        CString text;
        text.Format(row.pattern, row.value);
        EXPECT_EQ(text, row.expected);
    }
}

} // namespace
