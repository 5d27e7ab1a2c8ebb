// SPDX-License-Identifier: MIT
#include "text_literal.h"

#include <gtest/gtest.h>

namespace {

TEST(TextAccess, CountsReadsAndWritesUnits) {
    RZString text = "abc";
    EXPECT_EQ(text.length(), 3u);
    EXPECT_FALSE(text.isEmpty());
    EXPECT_EQ(text.getAt(1), 'b');
    text.setAt(1, 0x3A9);
    EXPECT_EQ(text, u"aΩc"_rz);
    text.setAt(1, 0);
    EXPECT_EQ(text.length(), 3u) << "the stored length stays";
    EXPECT_TRUE(RZString().isEmpty());
    EXPECT_EQ(u"😀"_rz.length(), 2u);
}

TEST(TextCase, MapsTheLettersOfTheCodePage) {
    RZString text = u"Ação ÿŠ ßıω÷×"_rz;
    EXPECT_EQ(text.asUpper(), u"AÇÃO ŸŠ ßıω÷×"_rz);
    EXPECT_EQ(text.asLower(), u"ação ÿš ßıω÷×"_rz);
    EXPECT_EQ(text, u"Ação ÿŠ ßıω÷×"_rz) << "the copies leave the text alone";
    text.makeUpper();
    EXPECT_EQ(text, u"AÇÃO ŸŠ ßıω÷×"_rz);
    text.makeLower();
    EXPECT_EQ(text, u"ação ÿš ßıω÷×"_rz);
}

TEST(TextSearch, FindsUnits) {
    const RZString text = "abcabc";
    EXPECT_EQ(text.firstIndexOf('b'), 1);
    EXPECT_EQ(text.lastIndexOf('b'), 4);
    EXPECT_EQ(text.firstIndexOf('B'), -1);
    EXPECT_EQ(text.lastIndexOf('z'), -1);
    EXPECT_EQ(text.charCount('c'), 2);
    EXPECT_EQ(text.charCount('z'), 0);
    EXPECT_TRUE(text.contains('a'));
    EXPECT_FALSE(text.contains('z'));
    EXPECT_EQ(RZString().firstIndexOf('a'), -1);
    EXPECT_EQ(RZString().lastIndexOf('a'), -1);
}

TEST(TextSearch, NeverFindsAZeroUnit) {
    const RZString text = u"a\0b"_rz;
    EXPECT_EQ(text.firstIndexOf(0), -1);
    EXPECT_EQ(text.lastIndexOf(0), -1);
    EXPECT_EQ(text.charCount(0), 0);
    EXPECT_FALSE(text.contains(static_cast<unsigned short>(0)));
    EXPECT_EQ(text.firstIndexOf('b'), -1) << "behind the zero nothing is seen";
    EXPECT_EQ(RZString("abc").firstIndexOf(0), -1);
}

TEST(TextSearch, FindsTexts) {
    EXPECT_EQ(RZString("abc").find(""), 0);
    EXPECT_EQ(RZString("").find(""), 0);
    EXPECT_EQ(RZString("").find("a"), -1);
    EXPECT_EQ(RZString("abcabc").find("ca"), 2);
    EXPECT_EQ(RZString("abcabc").find("CA"), -1);
    EXPECT_EQ(RZString("ab").find("abc"), -1);
    EXPECT_TRUE(RZString("abc").contains("bc"));
    EXPECT_TRUE(RZString("abc").contains(""));
    EXPECT_FALSE(RZString("abc").contains("cb"));
}

TEST(TextSearch, TestsBothEnds) {
    const RZString text = "abc";
    EXPECT_TRUE(text.startsWith('a'));
    EXPECT_FALSE(text.startsWith('b'));
    EXPECT_TRUE(text.endsWith('c'));
    EXPECT_FALSE(text.endsWith('b'));
    EXPECT_FALSE(RZString().startsWith('a'));
    EXPECT_FALSE(RZString().endsWith('a'));
    EXPECT_FALSE(RZString().startsWith(static_cast<unsigned short>(0)));
    EXPECT_FALSE(RZString().endsWith(static_cast<unsigned short>(0)));
    EXPECT_TRUE(text.startsWith("ab"));
    EXPECT_FALSE(text.startsWith("AB"));
    EXPECT_FALSE(text.startsWith("abcd"));
    EXPECT_TRUE(text.endsWith("bc"));
    EXPECT_FALSE(text.endsWith("xabc"));
    for (const RZString& any : {text, RZString()}) {
        EXPECT_TRUE(any.startsWith(""));
        EXPECT_TRUE(any.endsWith(""));
    }
}

TEST(TextParts, AreCutToTheText) {
    const RZString text = "abc";
    struct {
        RZString got;
        const char* expected;
    } rows[] = {
        {text.left(2), "ab"},       {text.left(-1), ""},
        {text.left(0), ""},         {text.left(9), "abc"},
        {text.right(2), "bc"},      {text.right(-1), ""},
        {text.right(9), "abc"},     {text.mid(1), "bc"},
        {text.mid(-1), "abc"},      {text.mid(3), ""},
        {text.mid(5), ""},          {text.mid(5, 2), ""},
        {text.mid(-1, 2), "ab"},    {text.mid(1, -1), ""},
        {text.mid(1, 9), "bc"},     {text.mid(1, 0x7FFFFFFF), "bc"},
        {text.mid(1, 1), "b"},      {RZString().left(3), ""},
        {RZString().mid(0, 1), ""},
    };
    for (const auto& row : rows) EXPECT_EQ(row.got, row.expected);
    EXPECT_EQ(u"ab\0cd"_rz.mid(1), "b");
    EXPECT_EQ(u"ab\0cd"_rz.right(1), "b");
}

TEST(TextEditing, ReplacesInOnePass) {
    struct {
        const char *text, *from, *to, *expected;
    } rows[] = {
        {"aaaa", "aa", "a", "aa"}, {"aaa", "aa", "b", "ba"},     {"abc", "", "x", "abc"},
        {"abcb", "b", "", "ac"},   {"abc", "B", "x", "abc"},     {"a", "a", "aa", "aa"},
        {"", "a", "b", ""},        {"abab", "ab", "ba", "baba"}, {";;;", ";;", "; ;", "; ;;"},
        {"ab", "abc", "x", "ab"},  {"xay", "a", "123", "x123y"},
    };
    for (const auto& row : rows) {
        RZString text = row.text;
        text.replace(row.from, row.to);
        EXPECT_EQ(text, row.expected) << row.text << " / " << row.from;
    }
    RZString itself = "ab";
    itself.replace(itself, itself + itself);
    EXPECT_EQ(itself, "abab");
}

TEST(TextEditing, TrimsWhiteSpace) {
    struct {
        const char16_t* text;
        const char16_t* expected;
    } rows[] = {
        {u"  a b ", u"a b"},
        {u"\t\n\u000B\u000C\r\u0085\u00A0x\u00A0", u"x"},
        {u" \t ", u""},
        {u"", u""},
        {u"\u2003x\u2003", u"\u2003x\u2003"},
        {u"x", u"x"},
    };
    for (const auto& row : rows) EXPECT_EQ(RZString(wide(row.text)).trim(), RZString(wide(row.expected)));
    RZString key(RZString("left"), RZString::char12);
    EXPECT_EQ(key.trim(), "left") << "the separator of composite keys is white space";
    RZString same = " a";
    EXPECT_EQ(&same.trim(), &same);
}

TEST(TextEditing, TrimsASetOfUnits) {
    EXPECT_EQ(RZString("xyAyx").trim("xy"), "A");
    EXPECT_EQ(RZString("xxyy").trim("xy"), "");
    EXPECT_EQ(RZString("xyAyx").trimLeft("xy"), "Ayx");
    EXPECT_EQ(RZString("xyAyx").trimRight("xy"), "xyA");
    EXPECT_EQ(RZString("xxyy").trimLeft("xy"), "");
    EXPECT_EQ(RZString("xxyy").trimRight("yx"), "");
    for (const char* text : {" a ", "", "x"}) {
        EXPECT_EQ(RZString(text).trim(""), text);
        EXPECT_EQ(RZString(text).trimLeft(""), text);
        EXPECT_EQ(RZString(text).trimRight(""), text);
    }
    EXPECT_EQ(RZString("aXa").trim("A"), "aXa") << "case counts";
    RZString itself = "abc";
    EXPECT_EQ(itself.trim(itself), "");
}

TEST(TextSplitting, DropsEmptyFields) {
    struct {
        const char *text, *separators;
        RZStringList expected;
    } rows[] = {
        {"a, b", ", ", {"a", "b"}},
        {"a,b", ", ", {"a", "b"}},
        {"a b", ", ", {"a", "b"}},
        {"a;;b;", ";", {"a", "b"}},
        {";", ";", {}},
        {"", ";", {}},
        {"abc", "", {"abc"}},
        {";a", ";", {"a"}},
        {"a;B;a", ";", {"a", "B", "a"}},
        {";;;", ";", {}},
        {"solo", ";", {"solo"}},
        {"", "", {}},
    };
    for (const auto& row : rows)
        EXPECT_EQ(RZString(row.text).split(row.separators), row.expected) << row.text;
    EXPECT_EQ(RZString("a;;b;").split(';'), (RZStringList{"a", "b"}));
    EXPECT_TRUE(RZString(";").split(';').isEmpty());
    EXPECT_EQ(RZString(RZString("l"), RZString::char12, "r").split(RZString::char12),
              (RZStringList{"l", "r"}));
}

TEST(TextSplitting, SeparatesAtAZeroUnitToo) {
    EXPECT_EQ(u"a\0b;c"_rz.split(';'), (RZStringList{"a", "b", "c"}));
    EXPECT_EQ(u"a\0b"_rz.split(static_cast<unsigned short>(0)), (RZStringList{"a", "b"}));
    EXPECT_EQ(u"a\0b"_rz.split(""), (RZStringList{"a", "b"}));
}

TEST(TextSplitting, GivesTwoFieldsOrOne) {
    struct {
        const char* text;
        bool done;
        const char *a, *b;
    } rows[] = {{"x;y", true, "x", "y"}, {"solo", true, "solo", ""}, {";solo;", true, "solo", ""},
                {";", false, "1", "2"},  {"", false, "1", "2"},      {"x;y;z", false, "1", "2"},
                {"x;;y", true, "x", "y"}};
    for (const auto& row : rows) {
        RZString a = "1", b = "2";
        EXPECT_EQ(RZString(row.text).split(";", a, b), row.done) << row.text;
        EXPECT_EQ(a, row.a) << row.text;
        EXPECT_EQ(b, row.b) << row.text;
    }
}

TEST(TextSplitting, GivesExactlyThreeOrFourFields) {
    struct {
        const char* text;
        bool three, four;
    } rows[] = {{"a", false, false},      {"a;b", false, false},       {"a;b;c", true, false},
                {"a;b;c;d", false, true}, {"a;b;c;d;e", false, false}, {"", false, false}};
    for (const auto& row : rows) {
        RZString a = "1", b = "2", c = "3", d = "4";
        EXPECT_EQ(RZString(row.text).split(";", a, b, c), row.three) << row.text;
        EXPECT_EQ(RZString(a, b, c), row.three ? "abc" : "123");
        a = "1", b = "2", c = "3";
        EXPECT_EQ(RZString(row.text).split(";", a, b, c, d), row.four) << row.text;
        EXPECT_EQ(RZString(a, b, c, d), row.four ? "abcd" : "1234");
    }
}

TEST(TextSplitting, MayWriteIntoTheTextItself) {
    RZString text = "left;right", b;
    EXPECT_TRUE(text.split(";", text, b));
    EXPECT_EQ(text, "left");
    EXPECT_EQ(b, "right");
    RZString first;
    text = "x;y;z";
    EXPECT_TRUE(text.split(";", first, text, b));
    EXPECT_EQ(RZString(first, text, b), "xyz");
}

} // namespace
