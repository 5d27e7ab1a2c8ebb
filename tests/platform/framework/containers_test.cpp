// SPDX-License-Identifier: MIT
#include "text_literal.h"

#include "framework/values/containers.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

std::vector<int> walk(const CList<int, int>& list) {
    std::vector<int> seen;
    for (POSITION at = list.GetHeadPosition(); at != nullptr;) seen.push_back(list.GetNext(at));
    return seen;
}

TEST(FrameworkList, WalksFromHeadToTail) {
    CList<int, int> list;
    EXPECT_EQ(list.GetHeadPosition(), nullptr);
    list.AddTail(1);
    list.AddTail(2);
    list.AddHead(0);
    EXPECT_EQ(walk(list), (std::vector<int>{0, 1, 2}));
    EXPECT_EQ(list.GetCount(), 3);
    list.RemoveAll();
    EXPECT_TRUE(list.IsEmpty());
    list.AddHead(5);
    list.AddTail(6);
    EXPECT_EQ(walk(list), (std::vector<int>{5, 6}));
}

TEST(FrameworkList, FindsOneElementAfterTheOther) {
    CList<int, int> list;
    for (const int value : {7, 8, 7}) list.AddTail(value);
    const POSITION first = list.Find(7);
    ASSERT_NE(first, nullptr);
    const POSITION second = list.Find(7, first);
    ASSERT_NE(second, nullptr);
    EXPECT_NE(first, second);
    EXPECT_EQ(list.Find(7, second), nullptr);
    EXPECT_EQ(list.Find(9), nullptr);
    list.GetAt(second) = 10;
    EXPECT_EQ(walk(list), (std::vector<int>{7, 8, 10}));
}

TEST(FrameworkList, CopiesAsAValue) {
    CList<int, int> list;
    list.AddTail(1);
    CList<int, int> copy(list);
    copy.AddTail(2);
    EXPECT_EQ(walk(list), (std::vector<int>{1}));
    list = copy;
    list = *&list;
    EXPECT_EQ(walk(list), (std::vector<int>{1, 2}));
}

TEST(FrameworkList, RefusesANullPosition) {
    CList<int, int> list;
    POSITION at = nullptr;
    EXPECT_THROW(list.GetNext(at), CInvalidArgException);
    EXPECT_THROW(list.GetAt(at), CInvalidArgException);
}

TEST(FrameworkStringList, HoldsTextsInOrder) {
    CStringList list(10);
    list.AddTail(u"a"_c);
    list.AddTail(u"Ω"_c);
    EXPECT_EQ(list.GetCount(), 2);
    POSITION at = list.GetHeadPosition();
    EXPECT_EQ(list.GetNext(at), u"a"_c);
    EXPECT_EQ(list.GetNext(at), u"Ω"_c);
    EXPECT_EQ(at, nullptr);
    EXPECT_NE(list.Find(u"Ω"_c), nullptr);
    EXPECT_TRUE(list.IsKindOf(CStringList::runtimeClass()));
}

TEST(FrameworkStringArray, CopiesAndChecksItsIndexes) {
    CStringArray array, other;
    EXPECT_TRUE(array.IsEmpty());
    EXPECT_EQ(array.Add(u"a"_c), 0);
    EXPECT_EQ(array.Add(u"b"_c), 1);
    other.Copy(array);
    array.SetAt(0, u"x"_c);
    EXPECT_EQ(other.GetSize(), 2);
    EXPECT_EQ(other.GetAt(0), u"a"_c);
    EXPECT_EQ(array.GetAt(0), u"x"_c);
    for (const long long index : {-1LL, 2LL}) {
        EXPECT_THROW(array.GetAt(index), CInvalidArgException);
        EXPECT_THROW(array.SetAt(index, u""_c), CInvalidArgException);
    }
    array.RemoveAll();
    EXPECT_EQ(array.GetSize(), 0);
}

TEST(FrameworkWordMap, KeepsPointersByNumber) {
    CMapWordToPtr map(10);
    int one = 1, two = 2;
    void* value = &one;
    EXPECT_FALSE(map.Lookup(7, value));
    EXPECT_EQ(value, &one) << "a key that isn't there leaves the output alone";
    map.SetAt(7, &one);
    map.SetAt(0xFFFF, &two);
    map.SetAt(7, &two);
    EXPECT_TRUE(map.Lookup(7, value));
    EXPECT_EQ(value, &two);
    EXPECT_EQ(map.GetCount(), 2);
    EXPECT_TRUE(map.RemoveKey(7));
    EXPECT_FALSE(map.RemoveKey(7));
    map.RemoveAll();
    EXPECT_TRUE(map.IsEmpty());
}

} // namespace
