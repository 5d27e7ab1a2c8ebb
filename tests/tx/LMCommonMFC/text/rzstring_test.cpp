// SPDX-License-Identifier: MIT
#include "text_literal.h"

#include "host/hoststring.h"
#include "host/resbuf.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <map>

namespace {

// Made while the program loads, in whatever order its files come.
const RZString keyMadeAtLoad(RZString("left"), RZString::char12, RZString("right"));

TEST(Text, OffersItsTwoConstantsFromTheStart) {
    EXPECT_TRUE(RZString::empty.isEmpty());
    EXPECT_EQ(RZString::char12, u"\u000C"_rz);
    EXPECT_EQ(RZString::char12.length(), 1u);
    EXPECT_EQ(keyMadeAtLoad, u"left\u000Cright"_rz);
    EXPECT_EQ(RZString(), RZString::empty);
}

TEST(Text, IsItsUnitsAndNothingElse) {
    EXPECT_EQ(sizeof(RZString), sizeof(std::basic_string<unsigned short>));
    EXPECT_FALSE(std::is_polymorphic_v<RZString>);
}

TEST(Text, CopiesItsBuffer) {
    const RZString text = "a text beyond the room of a short one";
    const RZString copy(text);
    EXPECT_NE(static_cast<const unsigned short*>(copy), static_cast<const unsigned short*>(text));
    EXPECT_EQ(copy, text);
    RZString itself = text;
    RZString& same = itself;
    itself = same;
    EXPECT_EQ(itself, text);
    itself = static_cast<const unsigned short*>(itself);
    EXPECT_EQ(itself, text);
    itself += itself;
    EXPECT_EQ(itself, text + text);
}

TEST(Text, ClosesItsBufferWithAZero) {
    RZString text = "abc";
    EXPECT_EQ(static_cast<const unsigned short*>(text)[3], 0);
    text += static_cast<unsigned short>('d');
    EXPECT_EQ(static_cast<const unsigned short*>(text)[4], 0);
    EXPECT_EQ(static_cast<const unsigned short*>(RZString())[0], 0);
}

TEST(Text, HandsOutItsBufferOrAFreshBlock) {
    const RZString text = u"Ωmega"_rz;
    const unsigned short* inner = text;
    const unsigned short* again = text;
    EXPECT_EQ(inner, again);
    const std::size_t before = lm::values::liveSystemStrings();
    unsigned short* first = static_cast<unsigned short*>(text);
    unsigned short* second = static_cast<unsigned short*>(text);
    EXPECT_NE(first, second);
    EXPECT_NE(first, inner);
    EXPECT_EQ(lm::values::liveSystemStrings(), before + 2);
    EXPECT_EQ(RZString(first), text);
    EXPECT_EQ(lm::values::liveSystemStrings(), before + 2) << "taking a block's text doesn't take the block";
    lm::values::freeSystemString(first);
    lm::values::freeSystemString(second);
}

TEST(Text, GivesItsInnerBufferToWidePointerParameters) {
    const RZString text = "abc";
    const std::size_t before = lm::values::liveSystemStrings();
    const auto take = [](const unsigned short* units) { return units; };
    EXPECT_EQ(take(text), text.view().data());
    EXPECT_EQ(lm::values::liveSystemStrings(), before);
}

TEST(Text, BecomesARecordThatOwnsItsText) {
    const RZString text = u"Ωx\0y"_rz;
    hst_resbufW record = text;
    EXPECT_EQ(record.restype, 5005);
    EXPECT_EQ(record.rbnext, nullptr);
    EXPECT_NE(record.value.text, text.view().data());
    EXPECT_EQ(RZString(record.value.text), u"Ωx"_rz);
    EXPECT_EQ(record.value.text[2], 0);
    std::free(record.value.text);
    hst_resbufW none = RZString();
    EXPECT_EQ(none.value.text[0], 0);
    std::free(none.value.text);
}

TEST(Text, BecomesAHandleWhereItIsHexadecimal) {
    struct {
        const char* text;
        unsigned long long handle;
    } rows[] = {{"2F", 0x2F}, {"0002f", 0x2F}, {"", 0}, {"xyz", 0}, {"2F-x", 0}, {"FFFFFFFFFFFFFFFF", ~0ULL},
                {"0", 0}};
    for (const auto& row : rows) {
        const OdDbHandle handle = RZString(row.text);
        EXPECT_EQ(handle.value(), row.handle) << row.text;
    }
    EXPECT_EQ(RZString(OdDbHandle(0x2f)), "2F");
    EXPECT_EQ(RZString(OdDbHandle()), "0");
}

TEST(Text, EndsAtAZeroUnitOnEveryWayOut) {
    const RZString text = u"ab\0cd"_rz;
    ASSERT_EQ(text.length(), 5u);
    const CString framework = text;
    const OdString od = text;
    const CHostString host = text;
    const QString qt = text;
    EXPECT_EQ(framework.GetLength(), 2);
    EXPECT_EQ(od.getLength(), 2u);
    EXPECT_EQ(host.getLength(), 2u);
    EXPECT_EQ(qt, QStringLiteral("ab"));
    unsigned short* block = static_cast<unsigned short*>(text);
    EXPECT_EQ(lm::system::wideLength(block), 2u);
    lm::values::freeSystemString(block);
}

TEST(Text, KeepsAZeroUnitInCopiesAndSums) {
    const RZString zero = u"a\0b"_rz;
    EXPECT_EQ(RZString(zero).length(), 3u);
    EXPECT_EQ((RZString("x") + zero).length(), 4u);
    RZString text = "x";
    text += static_cast<unsigned short>(0);
    text += zero;
    EXPECT_EQ(text.length(), 5u);
}

TEST(Text, OrdersByUnit) {
    struct {
        const char16_t* less;
        const char16_t* greater;
    } rows[] = {{u"ABC", u"abc"}, {u"abc", u"abcd"},      {u"", u"a"},         {u"A10", u"A9"},
                {u"z", u"Ω"},     {u"\u7FFF", u"\u8000"}, {u"ab\uFFFF", u"b"}, {u"aaaa1", u"aaaa2"}};
    for (const auto& row : rows) {
        const RZString less = wide(row.less), greater = wide(row.greater);
        EXPECT_TRUE(less < greater);
        EXPECT_TRUE(less <= greater);
        EXPECT_TRUE(greater > less);
        EXPECT_TRUE(greater >= less);
        EXPECT_FALSE(less > greater);
        EXPECT_FALSE(less >= greater);
        EXPECT_TRUE(less != greater);
        EXPECT_FALSE(less == greater);
        EXPECT_TRUE(less <= less && less >= less && !(less < less) && !(less > less));
    }
}

TEST(Text, TellsEqualTextsOfEveryLength) {
    for (int size = 0; size < 40; ++size) {
        RZString text(size == 0 ? 0 : 1, size);
        if (size == 0) text = RZString();
        RZString same = text;
        ASSERT_EQ(text.length(), unsigned(size));
        EXPECT_TRUE(text == same) << size;
        for (int at = 0; at < size; ++at) {
            RZString other = text;
            other.setAt(at, 'x');
            EXPECT_FALSE(text == other) << size << ' ' << at;
            EXPECT_TRUE(text != other) << size << ' ' << at;
            other.setAt(at, 0x0130);
            EXPECT_FALSE(text == other) << size << ' ' << at;
        }
    }
}

TEST(Text, IsNotEqualToItselfWithAZeroUnit) {
    for (int at = 0; at < 12; ++at) {
        RZString text = "abcdefghijkl";
        text.setAt(at, 0);
        const RZString same = text;
        EXPECT_FALSE(text == same) << at;
        EXPECT_TRUE(text != same) << at;
        EXPECT_TRUE(text > same) << "the right side ends at its zero";
        EXPECT_FALSE(text <= same);
    }
    // Equal up to the zero, but the stored lengths differ.
    EXPECT_FALSE(RZString("ab") == u"ab\0c"_rz);
    EXPECT_TRUE(RZString("ab") <= u"ab\0c"_rz);
    EXPECT_TRUE(RZString("ab") >= u"ab\0c"_rz);
    EXPECT_FALSE(u"ab\0c"_rz == wide(u"ab"));
}

TEST(Text, ComparesWithLiteralsFromBothSides) {
    const RZString text = "abc";
    EXPECT_TRUE(text == "abc");
    EXPECT_TRUE("abc" == text);
    EXPECT_TRUE(text != "abd");
    EXPECT_TRUE("ABC" != text);
    const char* pointer = "abc";
    EXPECT_TRUE(text == pointer);
}

TEST(Text, IgnoresCaseOnlyWhereAsked) {
    EXPECT_NE(RZString("abc"), RZString("ABC"));
    EXPECT_TRUE(RZString("abc").equalsNoCase("ABC"));
    EXPECT_TRUE(u"conexão"_rz.equalsNoCase(u"CONEXÃO"_rz));
    EXPECT_TRUE(u"œuvre šž"_rz.equalsNoCase(u"ŒUVRE ŠŽ"_rz));
    EXPECT_FALSE(u"ß"_rz.equalsNoCase("SS"));
    EXPECT_FALSE(u"ı"_rz.equalsNoCase("I"));
    EXPECT_FALSE(u"ω"_rz.equalsNoCase(u"Ω"_rz)) << "the table knows the letters of code page 1252 alone";
    EXPECT_FALSE(u"×"_rz.equalsNoCase(u"÷"_rz));
    EXPECT_FALSE(RZString("abc").equalsNoCase("abcd"));
    EXPECT_TRUE(u"ab\0c"_rz.equalsNoCase(u"AB\0d"_rz)) << "both end at their zero";
    EXPECT_TRUE(RZString("abc").matchesNoCase(u"aBc"_rz.view()));
}

TEST(Text, PrependsLiteralsAndPointers) {
    EXPECT_EQ("a" + RZString("b"), "ab");
    EXPECT_EQ(wide(u"Ω") + RZString("b"), u"Ωb"_rz);
    EXPECT_EQ(RZString("a") + static_cast<unsigned short>(0x3A9), u"aΩ"_rz);
}

TEST(Text, ServesAsAKey) {
    std::map<RZString, int> map;
    map["b"] = 2;
    map["a"] = 1;
    map["B"] = 3;
    EXPECT_EQ(map.begin()->first, "B");
    EXPECT_EQ(map.size(), 3u);
}

} // namespace
