// SPDX-License-Identifier: MIT
// Texts and handles of the drawing layer.
#include "drawing_support.h"

#include "drawing/alloc.h"
#include "drawing/handle.h"

using namespace drawing_test;

TEST(OdStringTest, KeepsEveryUnitExactly) {
    lm::WideString all;
    for (unsigned unit = 1; unit <= 0xFFFF; ++unit) all.push_back(static_cast<lm::WideChar>(unit));
    const OdString text(all.c_str());
    ASSERT_EQ(text.getLength(), 0xFFFFu);
    EXPECT_TRUE(text.view() == lm::WideView(all));
    EXPECT_EQ(text.c_str()[0xFFFF], 0);
}

TEST(OdStringTest, TakesNullPointersAsEmptyText) {
    const unsigned short* const wide = nullptr;
    const char* const narrow = nullptr;
    EXPECT_TRUE(OdString(wide).isEmpty());
    EXPECT_TRUE(OdString(narrow).isEmpty());
    EXPECT_EQ(*OdString(wide).c_str(), 0);
    EXPECT_EQ(OdString(wide), OdString());
}

TEST(OdStringTest, StopsAtTheFirstZeroOfAPointerButNotOfAView) {
    const unsigned short units[] = {'a', 0, 'b', 0};
    EXPECT_EQ(OdString(units).getLength(), 1u);
    EXPECT_EQ(OdString(lm::WideView(units, 3)).getLength(), 3u);
}

TEST(OdStringTest, HoldsNarrowTextUntilTheWideFormIsWanted) {
    const OdString text("\xE7\xE3o"); // "ção" in code page 1252
    EXPECT_TRUE(text.isNarrowOnly());
    EXPECT_EQ(text.getLength(), 3u);
    text.syncUnicode();
    EXPECT_FALSE(text.isNarrowOnly());
    EXPECT_EQ(text, od("ção"));
    const OdString read("\x80");
    EXPECT_EQ(read.view()[0], 0x20AC) << "reading makes the wide form by itself";
    EXPECT_FALSE(read.isNarrowOnly());
}

TEST(OdStringTest, ComparesAndJoinsByUnits) {
    EXPECT_EQ(od("A").compare(od("a")), -1);
    EXPECT_EQ(od("b").compare(od("a")), 1);
    EXPECT_EQ(od("a").compare(od("a")), 0);
    EXPECT_NE(od("A"), od("a"));
    EXPECT_TRUE(od("A") < od("a"));
    EXPECT_EQ(od("PAG") + od("1"), od("PAG1"));
    EXPECT_EQ(od("") + od(""), OdString());
}

TEST(OdStringTest, SharesItsBufferBetweenCopies) {
    const OdString first = od("NUMERO");
    OdString second = first;
    EXPECT_EQ(first.c_str(), second.c_str());
    second = od("OUTRO");
    EXPECT_EQ(first, od("NUMERO"));
    second = first;
    second = second;
    EXPECT_EQ(second, first);
}

TEST(OdStringTest, LeavesNoMemoryBehind) {
    const std::size_t before = lm::drawing::liveBlocks();
    {
        const OdString a = od("one"), b = a + od("two"), c("narrow");
        c.syncUnicode();
        OdString moved(b);
        const OdString taken(std::move(moved));
    }
    EXPECT_EQ(lm::drawing::liveBlocks(), before);
}

TEST(HandleTest, WritesUpperCaseWithoutLeadingZeros) {
    EXPECT_EQ(utf8(OdDbHandle().ascii()), "0");
    EXPECT_EQ(utf8(OdDbHandle(0x2F).ascii()), "2F");
    EXPECT_EQ(utf8(OdDbHandle(~0ull).ascii()), "FFFFFFFFFFFFFFFF");
    EXPECT_TRUE(OdDbHandle().isNull());
}

TEST(HandleTest, ParsesTheWholeTextOrNothing) {
    struct Row {
        const char* text;
        unsigned long long value;
    };
    const Row rows[] = {{"2F", 0x2F},
                        {"2f", 0x2F},
                        {"0002f", 0x2F},
                        {"0", 0},
                        {"", 0},
                        {"xyz", 0},
                        {"2F-x", 0},
                        {"2F ", 0},
                        {" 2F", 0},
                        {"-1", 0},
                        {"0x2F", 0},
                        {"G", 0},
                        {"00000", 0},
                        {"aBcDeF", 0xABCDEF},
                        {"FFFFFFFFFFFFFFFF", ~0ull},
                        {"10000000000000000", 0},
                        {"000010000000000000001", 0},
                        {"0000FFFFFFFFFFFFFFFF", ~0ull}};
    for (const Row& row : rows) EXPECT_EQ(OdDbHandle(od(row.text).c_str()).value(), row.value) << row.text;
    const unsigned short* const null = nullptr;
    OdDbHandle handle(5);
    handle = null;
    EXPECT_TRUE(handle.isNull());
    handle = 7ull;
    EXPECT_EQ(handle, OdDbHandle(7));
    EXPECT_TRUE(OdDbHandle(6) < handle);
    EXPECT_NE(OdDbHandle(6), handle);
}
