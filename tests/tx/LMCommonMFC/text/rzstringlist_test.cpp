// SPDX-License-Identifier: MIT
#include "text_literal.h"

#include "framework/values/containers.h"

#include <gtest/gtest.h>

#include <memory>
#include <vector>

namespace {

TEST(TextList, IsAListWithoutAVirtualTable) {
    EXPECT_EQ(sizeof(RZStringList), sizeof(std::list<RZString>));
    EXPECT_FALSE(std::is_polymorphic_v<RZStringList>);
}

TEST(TextList, CopiesItsElements) {
    RZStringList list{"a", "b"};
    RZStringList copy(list);
    copy.addTail("c");
    EXPECT_EQ(list, (RZStringList{"a", "b"}));
    list = copy;
    RZStringList& same = list;
    list = same;
    EXPECT_EQ(list, (RZStringList{"a", "b", "c"}));
    CEList<RZString> fromPointer(&list);
    EXPECT_EQ(fromPointer, list);
    EXPECT_TRUE(CEList<RZString>(static_cast<CEList<RZString>*>(nullptr)).isEmpty());
}

TEST(TextList, AddsAtBothEnds) {
    RZStringList list;
    list.addTail("b");
    list.addHead("a");
    list.addTail(RZStringList{"c", "d"});
    EXPECT_EQ(list, (RZStringList{"a", "b", "c", "d"}));
    RZStringList other{"a"};
    other.addHead(RZStringList{"x", "y"});
    EXPECT_EQ(other, (RZStringList{"x", "y", "a"}));
    other.addHead(other);
    EXPECT_EQ(other, (RZStringList{"x", "y", "a", "x", "y", "a"}));
    list.addTail(list);
    EXPECT_EQ(list.count(), 8);
}

TEST(TextList, AnswersWithEmptyTextForWhatIsNotThere) {
    RZStringList list{"a", "b"};
    EXPECT_EQ(list.getIndex(0), "a");
    EXPECT_EQ(list.getIndex(1), "b");
    EXPECT_EQ(list.getIndex(-1), "");
    EXPECT_EQ(list.getIndex(list.count()), "");
    EXPECT_EQ(list.getIndex(0x7FFFFFFF), "");
    EXPECT_EQ(list.head(), "a");
    EXPECT_EQ(list.tail(), "b");
    list.clear();
    EXPECT_TRUE(list.isEmpty());
    EXPECT_EQ(list.head(), "");
    EXPECT_EQ(list.tail(), "");
}

TEST(TextList, RemovesEveryEqualElement) {
    RZStringList list{"a", "b", "a", "A"};
    list.remove("a");
    EXPECT_EQ(list, (RZStringList{"b", "A"}));
    list.remove(list.head());
    list.remove("z");
    EXPECT_EQ(list, (RZStringList{"A"}));
    list = RZStringList{"a", "b", "c"};
    list.removeHead();
    list.removeTail();
    EXPECT_EQ(list, (RZStringList{"b"}));
}

TEST(TextList, TurnsRound) {
    RZStringList list{"a", "b", "c"};
    list.revert();
    EXPECT_EQ(list, (RZStringList{"c", "b", "a"}));
    RZStringList none;
    none.revert();
    EXPECT_TRUE(none.isEmpty());
}

TEST(TextList, ComparesInOrder) {
    EXPECT_FALSE((RZStringList{"a", "b"}) == (RZStringList{"b", "a"}));
    EXPECT_FALSE((RZStringList{"a"}) == (RZStringList{"a", "a"}));
    EXPECT_TRUE(RZStringList() == RZStringList());
    EXPECT_TRUE((RZStringList{"a"}) != (RZStringList{"A"}));
}

TEST(TextList, PointsAtItself) {
    RZStringList list;
    list->addTail("a");
    EXPECT_EQ(list.operator->(), &list);
    EXPECT_EQ(list.count(), 1);
}

template<class Walk>
RZString walked(Walk walk) {
    RZString seen;
    for (; !walk.finished(); walk.next()) seen += walk.get();
    EXPECT_EQ(walk.get(), RZString()) << "a finished iterator reads as empty";
    walk.next();
    EXPECT_TRUE(walk.finished());
    return seen;
}

TEST(TextList, IsWalkedBothWays) {
    RZStringList list{"a", "b", "c"};
    const RZStringList& constant = list;
    EXPECT_EQ(walked(list.newIt()), "abc");
    EXPECT_EQ(walked(constant.newIt()), "abc");
    EXPECT_EQ(walked(list.newReverseIt()), "cba");
    EXPECT_EQ(walked(constant.newReverseIt()), "cba");
    RZStringList none;
    const RZStringList& constantNone = none;
    EXPECT_TRUE(none.newIt().finished());
    EXPECT_TRUE(constantNone.newIt().finished());
    EXPECT_TRUE(none.newReverseIt().finished());
    EXPECT_TRUE(constantNone.newReverseIt().finished());
    EXPECT_TRUE((std::is_same_v<decltype(list.newIt()), CEListIterator<RZString>>));
    EXPECT_TRUE((std::is_same_v<decltype(constant.newIt()), CEListIteratorConst<RZString>>));
    EXPECT_TRUE((std::is_same_v<decltype(list.newReverseIt()), CEListReverseIterator<RZString>>));
    EXPECT_TRUE((std::is_same_v<decltype(constant.newReverseIt()), CEListReverseIteratorConst<RZString>>));
}

TEST(TextList, FinishesIteratorsWhenItIsCleared) {
    RZStringList list{"a"};
    auto walk = list.newIt();
    EXPECT_FALSE(walk.finished());
    list.clear();
    EXPECT_TRUE(walk.finished());
}

TEST(TextList, LooksUpWithAndWithoutCase) {
    const RZStringList list{"abc", u"Ação"_rz};
    EXPECT_TRUE(list.containsNoCase("ABC"));
    EXPECT_TRUE(list.containsNoCase(u"AÇÃO"_rz));
    EXPECT_FALSE(list.containsNoCase("ab"));
    EXPECT_FALSE(list.contains("ABC"));
    EXPECT_TRUE(list.contains("abc"));
    EXPECT_FALSE(RZStringList().containsNoCase(""));
}

TEST(TextList, TakesItsElementsForPrefixes) {
    EXPECT_TRUE((RZStringList{"con"}).startsWithAnyNoCase("CONTA"));
    EXPECT_FALSE((RZStringList{"CONTATO"}).startsWithAnyNoCase("CONTA"));
    EXPECT_TRUE((RZStringList{"x", u"ç"_rz}).startsWithAnyNoCase(u"Ça"_rz));
    EXPECT_TRUE((RZStringList{""}).startsWithAnyNoCase("anything"));
    EXPECT_TRUE((RZStringList{""}).startsWithAnyNoCase(""));
    EXPECT_FALSE(RZStringList().startsWithAnyNoCase(""));
}

TEST(TextList, ComesFromQtByTheNarrowRoute) {
    QList<QString> strings{QString::fromUtf8("ç"), QString::fromUtf8("Ω"), QString()};
    EXPECT_EQ(RZStringList(&strings), (RZStringList{u"ç"_rz, "?", ""}));
    EXPECT_TRUE(RZStringList(static_cast<QList<QString>*>(nullptr)).isEmpty());
}

TEST(TextList, GoesToTheFrameworkAndBack) {
    const RZStringList list{u"Ω"_rz, "", "b"};
    const std::unique_ptr<CStringList> framework(list.toCStringList());
    EXPECT_EQ(framework->GetCount(), 3);
    EXPECT_EQ(RZStringList(framework.get()), list);
    EXPECT_TRUE(RZStringList(static_cast<CStringList*>(nullptr)).isEmpty());
}

TEST(TextList, JoinsAndTrimsTheSeparatorFromTheWholeRightEnd) {
    struct {
        RZStringList list;
        const char *separator, *expected;
    } rows[] = {
        {{"a", "b;"}, ";", "a;b"},
        {{"a"}, ";", "a"},
        {{}, ";", ""},
        {{"a", "b"}, ", ", "a, b"},
        {{"a", "b ,"}, ", ", "a, b"},
        {{"a", "b"}, "", "ab"},
        {{";", ";"}, ";", ""},
        {{"", "a"}, ";", ";a"},
        {{"a", "", ""}, ";", "a"},
    };
    for (auto& row : rows) EXPECT_EQ(row.list.toRZString(row.separator), row.expected);
}

TEST(TextMap, PutsShorterKeysFirst) {
    CEMap<int> map;
    for (const char* key : {"10", "9", "AA", "a", "B", "", "ab"}) map[lm::system::widen(key)] = 1;
    std::vector<std::string> keys;
    for (const auto& entry : map) keys.push_back(lm::system::toUtf8(entry.first));
    EXPECT_EQ(keys, (std::vector<std::string>{"", "9", "B", "a", "10", "AA", "ab"}));
    const CEMapComparador before;
    EXPECT_FALSE(before(lm::system::widen("a"), lm::system::widen("a")));
    EXPECT_TRUE(before(u"\u7FFF"_rz.str(), u"\u8000"_rz.str()));
}

} // namespace
