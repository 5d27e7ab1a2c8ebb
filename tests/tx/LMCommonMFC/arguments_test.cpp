// SPDX-License-Identifier: MIT
#include "arguments.h"

#include "callsupport.h"

#include <gtest/gtest.h>

#include <map>
#include <type_traits>

namespace {

using namespace lm::test;

hst_resbufW* longRecord(int value, hst_resbufW* next = nullptr) {
    hst_resbufW* const record = lm::host::newRecord(RTLONG);
    record->value.int32 = value;
    record->rbnext = next;
    return record;
}

hst_resbufW* realRecord(double value, hst_resbufW* next = nullptr) {
    hst_resbufW* const record = lm::host::newRecord(RTREAL);
    record->value.real = value;
    record->rbnext = next;
    return record;
}

hst_resbufW* pointRecord(double x, double y, double z, hst_resbufW* next = nullptr) {
    hst_resbufW* const record = lm::host::newRecord(RTPOINT);
    record->value.point[0] = x;
    record->value.point[1] = y;
    record->value.point[2] = z;
    record->rbnext = next;
    return record;
}

hst_resbufW* bareRecord(short type, hst_resbufW* next = nullptr) {
    hst_resbufW* const record = lm::host::newRecord(type);
    record->rbnext = next;
    return record;
}

/// A chain that goes at the end of a test.
class Chain {
public:
    explicit Chain(hst_resbufW* list) : m_list(list) {}
    Chain(const Chain&) = delete;
    Chain& operator=(const Chain&) = delete;
    ~Chain() { lm::host::releaseChain(m_list); }
    operator hst_resbufW*() const { return m_list; }
    hst_resbufW* operator->() const { return m_list; }

private:
    hst_resbufW* m_list;
};

// --- building
// ---------------------------------------------------------------------------------------------------

static_assert(sizeof(CCListBuilder) == 2 * sizeof(void*) && std::is_trivially_copyable_v<CCListBuilder>);

TEST(ListBuilder, StartsEmpty) {
    const CCListBuilder builder;
    EXPECT_EQ(builder.getList(), nullptr);
    EXPECT_EQ(builder.head, nullptr);
    EXPECT_EQ(builder.tail, nullptr);
}

TEST(ListBuilder, KeepsTheLow16BitsOfAnInteger) {
    const std::map<int, short> rows = {{0, 0},          {42, 42},      {-1, -1},        {32767, 32767},
                                       {32768, -32768}, {70000, 4464}, {40000, -25536}, {-70000, -4464}};
    for (const auto& [value, stored] : rows) {
        CCListBuilder builder;
        builder.add(value);
        const Chain chain(builder.getList());
        EXPECT_EQ(chain->restype, 5003);
        EXPECT_EQ(chain->value.int16, stored) << value;
    }
}

TEST(ListBuilder, MakesEachKindOfRecordInOrder) {
    CCListBuilder builder;
    const unsigned long long name[2] = {0x1234567890ull, 7};
    builder.addListBegin();
    builder.add(1);
    builder.add(2.5);
    builder.add(OdGePoint2d(3, 4));
    builder.add(name);
    builder.addDot();
    builder.add(rz("text"), RTSTR);
    builder.addListEnd();
    const Chain chain(builder.getList());
    const short types[] = {5016, 5003, 5001, 5002, 5006, 5018, 5005, 5017};
    ASSERT_EQ(getArgCount(chain), 8);
    for (int i = 0; i < 8; ++i) EXPECT_EQ(getArg(chain, i)->restype, types[i]) << i;
    EXPECT_EQ(getArg(chain, 2)->value.real, 2.5);
    EXPECT_EQ(getArg(chain, 3)->value.point[0], 3);
    EXPECT_EQ(getArg(chain, 3)->value.point[1], 4);
    EXPECT_EQ(getArg(chain, 3)->value.point[2], 0);
    EXPECT_EQ(getArg(chain, 4)->value.name[0], name[0]);
    EXPECT_EQ(getArg(chain, 4)->value.name[1], name[1]);
    EXPECT_EQ(getArg(chain, 7), builder.tail);
}

TEST(ListBuilder, LeavesUnusedBytesZero) {
    CCListBuilder builder;
    builder.add(-1);
    const Chain chain(builder.getList());
    const auto* const bytes = reinterpret_cast<const unsigned char*>(static_cast<hst_resbufW*>(chain));
    for (std::size_t i = 10; i < sizeof(hst_resbufW); i += i == 15 ? 3 : 1) // all but the value's two bytes
        EXPECT_EQ(bytes[i], 0) << i;
    EXPECT_EQ(chain->rbnext, nullptr);
}

TEST(ListBuilder, ReplacesTheTypeOfATextAndCopiesIt) {
    RZString text = rz("abc");
    CCListBuilder builder;
    builder.add(text, 8);
    text.setAt(0, 'X');
    const Chain chain(builder.getList());
    EXPECT_EQ(chain->restype, 8);
    EXPECT_EQ(told(RZString(chain->value.text)), "abc");
    EXPECT_NE(chain->value.text, static_cast<const unsigned short*>(text));
}

TEST(ListBuilder, TakesTextsExactlyUpToTheirFirstZero) {
    const lm::WideString units = {0x03A9, 0xD800, 'z', 0, 'y'};
    CCListBuilder builder;
    builder.add(RZString(lm::WideView(units)), RTSTR);
    const Chain chain(builder.getList());
    EXPECT_EQ(lm::WideString(chain->value.text), (lm::WideString{0x03A9, 0xD800, 'z'}));
}

TEST(ListBuilder, AddingAChainLosesItsRestAtTheNextAdd) {
    hst_resbufW* const rest = shortRecord(2);
    hst_resbufW* const chain = shortRecord(1, rest);
    CCListBuilder builder;
    builder.add(chain);
    EXPECT_EQ(builder.tail, chain);
    EXPECT_EQ(getArgCount(builder.getList()), 2);
    builder.add(3);
    const Chain built(builder.getList());
    const Chain lost(rest);
    EXPECT_EQ(told(static_cast<hst_resbufW*>(built)), "5003:1 5003:3");
}

TEST(ListBuilder, NullRecordAddsNothing) {
    CCListBuilder builder;
    builder.add(static_cast<hst_resbufW*>(nullptr));
    EXPECT_EQ(builder.getList(), nullptr);
    EXPECT_EQ(builder.tail, nullptr);
}

TEST(ListBuilder, ACopySharesTheRecordsAndTheEndReleasesNothing) {
    const std::size_t before = lm::drawing::liveBlocks();
    hst_resbufW* list = nullptr;
    {
        CCListBuilder builder;
        builder.add(1);
        CCListBuilder copy = builder;
        CCListBuilder assigned;
        assigned = copy;
        EXPECT_EQ(assigned.head, builder.head);
        EXPECT_EQ(assigned.tail, builder.tail);
        list = builder.getList();
    }
    EXPECT_EQ(lm::drawing::liveBlocks(), before + 1);
    lm::host::releaseChain(list);
    EXPECT_EQ(lm::drawing::liveBlocks(), before);
}

TEST(ListBuilder, MemoryExhaustionIsBadAlloc) {
    CCListBuilder builder;
    lm::drawing::failAllocationAfter(0);
    EXPECT_THROW(builder.add(1), std::bad_alloc);
    lm::drawing::failAllocationAfter(-1);
    EXPECT_EQ(builder.getList(), nullptr);
}

TEST(ListBuilder, ReturnsNilWhenEmptyAndElseItsChain) {
    ActiveDocument active;
    EXPECT_EQ(resultOf(active.api, nullptr, [] { CCListBuilder().retList(); }), "5019");
    EXPECT_EQ(resultOf(active.api, nullptr,
                       [] {
                           CCListBuilder builder;
                           builder.addListBegin();
                           builder.add(7);
                           builder.addListEnd();
                           builder.retList();
                       }),
              "5016 5003:7 5017");
}

// --- reading a chain
// --------------------------------------------------------------------------------------------

TEST(ArgumentReaders, LongTakesIntegersOnly) {
    EXPECT_EQ(getArgLong(nullptr, 0), 0);
    EXPECT_EQ(getArgLong(nullptr, 5), 0);
    EXPECT_EQ(getArgLong(nullptr, -1), 0);
    EXPECT_EQ(getArgLong(Chain(longRecord(100000)), 0), 100000);
    EXPECT_EQ(getArgLong(Chain(longRecord(-999)), 0), -999);
    EXPECT_EQ(getArgLong(Chain(shortRecord(42)), 0), 42);
    EXPECT_EQ(getArgLong(Chain(shortRecord(-7)), 0), -7);
    EXPECT_EQ(getArgLong(Chain(realRecord(3.14)), 0), 0);
    EXPECT_EQ(getArgLong(Chain(textRecord("12")), 0), 0);
    EXPECT_EQ(getArgLong(Chain(bareRecord(RTT)), 0), 0);
    EXPECT_EQ(getArgLong(Chain(longRecord(99)), 1), 0);
    const Chain two(longRecord(10, longRecord(20)));
    EXPECT_EQ(getArgLong(two, 0), 10);
    EXPECT_EQ(getArgLong(two, 1), 20);
}

TEST(ArgumentReaders, NegativeIndexCountsAsZero) {
    const Chain chain(longRecord(10, longRecord(20)));
    EXPECT_EQ(getArg(chain, -1), static_cast<hst_resbufW*>(chain));
    EXPECT_EQ(getArgLong(chain, -1), 10);
    EXPECT_EQ(getArgDouble(chain, -2147483647 - 1), 10.0);
}

TEST(ArgumentReaders, RecordBeyondTheEndIsNull) {
    const Chain chain(longRecord(10));
    EXPECT_EQ(getArg(chain, 1), nullptr);
    EXPECT_EQ(getArg(chain, 1000000), nullptr);
    EXPECT_EQ(getArg(nullptr, 0), nullptr);
}

TEST(ArgumentReaders, CountTakesMarkersToo) {
    EXPECT_EQ(getArgCount(nullptr), 0);
    const Chain chain(bareRecord(RTLB, textRecord("a", textRecord("b", bareRecord(RTLE)))));
    EXPECT_EQ(getArgCount(chain), 4);
}

TEST(ArgumentReaders, DoubleTakesAllThreeNumbers) {
    EXPECT_EQ(getArgDouble(Chain(realRecord(3.14)), 0), 3.14);
    EXPECT_EQ(getArgDouble(Chain(longRecord(100000)), 0), 100000.0);
    EXPECT_EQ(getArgDouble(Chain(shortRecord(-42)), 0), -42.0);
    EXPECT_EQ(getArgDouble(Chain(textRecord("1.5")), 0), 0.0);
    EXPECT_EQ(getArgDouble(Chain(realRecord(3.14)), 1), 0.0);
    EXPECT_EQ(getArgDouble(nullptr, 0), 0.0);
}

TEST(ArgumentReaders, PointTakesXAndYOfAPointOnly) {
    EXPECT_EQ(getArgPoint(Chain(pointRecord(1, 2, 3)), 0), OdGePoint2d(1, 2));
    EXPECT_EQ(getArgPoint(Chain(realRecord(1)), 0), OdGePoint2d(0, 0));
    EXPECT_EQ(getArgPoint(Chain(pointRecord(1, 2, 3)), 1), OdGePoint2d(0, 0));
    EXPECT_EQ(getArgPoint(nullptr, 0), OdGePoint2d(0, 0));
}

TEST(ArgumentReaders, StringDoesNotLookAtTheType) {
    const Chain chain(textRecord("abc"));
    EXPECT_EQ(told(getArgString(chain, 0)), "abc");
    chain->restype = 8;
    EXPECT_EQ(told(getArgString(chain, 0)), "abc");
    EXPECT_TRUE(getArgString(chain, 1).isEmpty());
    EXPECT_TRUE(getArgString(nullptr, 0).isEmpty());
    EXPECT_TRUE(getArgString(Chain(bareRecord(RTSTR)), 0).isEmpty());
}

// --- the arguments of a call
// ------------------------------------------------------------------------------------

/// Runs a reader as a called function and checks that it releases what it read.
template<class Reader>
bool readWith(hst_resbufW* arguments, Reader reader) {
    ActiveDocument active;
    bool answer = false;
    resultOf(active.api, arguments, [&] {
        const std::size_t before = lm::drawing::liveBlocks();
        answer = reader();
        EXPECT_EQ(lm::drawing::liveBlocks(), before);
    });
    return answer;
}

TEST(GetAllArgs, Integer) {
    int value = -5;
    const auto read = [&] { return getAllArgs(value); };
    EXPECT_FALSE(readWith(nullptr, read));
    EXPECT_FALSE(readWith(realRecord(1.0), read));
    EXPECT_FALSE(readWith(textRecord("1"), read));
    EXPECT_FALSE(readWith(bareRecord(RTT, longRecord(3)), read));
    EXPECT_EQ(value, -5);
    EXPECT_TRUE(readWith(longRecord(100000), read));
    EXPECT_EQ(value, 100000);
    EXPECT_TRUE(readWith(shortRecord(-3, textRecord("ignored")), read));
    EXPECT_EQ(value, -3);
}

TEST(GetAllArgs, BooleanTellsPresenceByItsResultAndTheValueByItsOutput) {
    bool value = true;
    const auto read = [&] { return getAllArgs(value); };
    EXPECT_FALSE(readWith(textRecord("T"), read));
    EXPECT_FALSE(readWith(nullptr, read));
    EXPECT_FALSE(readWith(shortRecord(0), read));
    EXPECT_TRUE(value);
    EXPECT_TRUE(readWith(bareRecord(RTNIL), read));
    EXPECT_FALSE(value);
    EXPECT_FALSE(readWith(longRecord(1), read));
    EXPECT_FALSE(value);
    EXPECT_TRUE(readWith(bareRecord(RTT), read));
    EXPECT_TRUE(value);
}

TEST(GetAllArgs, OneText) {
    RZString text = rz("before");
    const auto read = [&] { return getAllArgs(text); };
    EXPECT_FALSE(readWith(nullptr, read));
    EXPECT_FALSE(readWith(shortRecord(1, textRecord("a")), read));
    EXPECT_EQ(told(text), "before");
    EXPECT_TRUE(readWith(textRecord("\xCE\xA9", shortRecord(1)), read));
    EXPECT_EQ(told(text), "\xCE\xA9");
}

TEST(GetAllArgs, TwoTextsOrNone) {
    RZString first = rz("1");
    RZString second = rz("2");
    const auto read = [&] { return getAllArgs(first, second); };
    EXPECT_FALSE(readWith(textRecord("a"), read));
    EXPECT_FALSE(readWith(textRecord("a", shortRecord(1)), read));
    EXPECT_FALSE(readWith(shortRecord(1, textRecord("b")), read));
    EXPECT_FALSE(readWith(nullptr, read));
    EXPECT_EQ(told(first) + told(second), "12");
    EXPECT_TRUE(readWith(textRecord("a", textRecord("b", textRecord("c"))), read));
    EXPECT_EQ(told(first) + told(second), "ab");
}

TEST(GetAllArgs, TextAndPointOrNone) {
    RZString text = rz("before");
    OdGePoint2d point(7, 8);
    const auto read = [&] { return getAllArgs(text, point); };
    EXPECT_FALSE(readWith(textRecord("a"), read));
    EXPECT_FALSE(readWith(textRecord("a", realRecord(1)), read));
    EXPECT_FALSE(readWith(pointRecord(1, 2, 3, textRecord("a")), read));
    EXPECT_EQ(told(text), "before");
    EXPECT_EQ(point, OdGePoint2d(7, 8));
    EXPECT_TRUE(readWith(textRecord("a", pointRecord(1, 2, 3)), read));
    EXPECT_EQ(told(text), "a");
    EXPECT_EQ(point, OdGePoint2d(1, 2));
}

// --- results
// ----------------------------------------------------------------------------------------------------

TEST(ReturnResults, BooleanIsTrueOrNil) {
    ActiveDocument active;
    EXPECT_EQ(resultOf(active.api, nullptr, [] { returnBool(true); }), "5021");
    EXPECT_EQ(resultOf(active.api, nullptr, [] { returnBool(false); }), "5019");
}

TEST(ReturnResults, ListIsFlatAndNilWhenEmpty) {
    ActiveDocument active;
    EXPECT_EQ(resultOf(active.api, nullptr,
                       [] {
                           returnList(RZStringList{rz("b"), rz("a"), rz("")});
                       }),
              "5005:b 5005:a 5005:");
    EXPECT_EQ(resultOf(active.api, nullptr, [] { returnList(RZStringList()); }), "5019");
}

CEMap<RZString> mapOf(std::initializer_list<std::pair<std::string_view, std::string_view>> pairs) {
    CEMap<RZString> map;
    for (const auto& [key, value] : pairs) map[lm::system::widen(key)] = rz(value);
    return map;
}

TEST(ReturnResults, MapIsARunOfPairsInMapOrderWithoutOuterMarkers) {
    ActiveDocument active;
    CEMap<RZString> map = mapOf({{"10", "ten"}, {"9", "nine"}});
    CEMap<RZString> empty;
    EXPECT_EQ(resultOf(active.api, nullptr, [&] { returnList(&map); }),
              "5016 5005:9 5005:nine 5017 5016 5005:10 5005:ten 5017");
    EXPECT_EQ(resultOf(active.api, nullptr, [&] { returnList(&empty); }), "5019");
    EXPECT_EQ(resultOf(active.api, nullptr, [] { returnList(static_cast<CEMap<RZString>*>(nullptr)); }),
              "5019");
}

TEST(ReturnResults, MapsAreNestedEachInMarkersOfItsOwn) {
    ActiveDocument active;
    CEMap<RZString> one = mapOf({{"a", "1"}});
    CEMap<RZString> none;
    CEMap<RZString> two = mapOf({{"b", "2"}, {"c", "3"}});
    std::vector<CEMap<RZString>*> maps = {&one, &none, &two, nullptr};
    EXPECT_EQ(resultOf(active.api, nullptr, [&] { returnList(&maps); }),
              "5016 5016 5005:a 5005:1 5017 5017 "
              "5016 5017 "
              "5016 5016 5005:b 5005:2 5017 5016 5005:c 5005:3 5017 5017 "
              "5016 5017");
    std::vector<CEMap<RZString>*> nothing;
    EXPECT_EQ(resultOf(active.api, nullptr, [&] { returnList(&nothing); }), "5019");
    std::vector<CEMap<RZString>*>* const null = nullptr;
    EXPECT_EQ(resultOf(active.api, nullptr, [&] { returnList(null); }), "5019");
}

TEST(ReturnResults, LeaveNothingBehind) {
    ActiveDocument active;
    CEMap<RZString> map = mapOf({{"a", "1"}});
    std::vector<CEMap<RZString>*> maps = {&map};
    const std::size_t before = lm::drawing::liveBlocks();
    resultOf(active.api, nullptr, [&] { returnList(&maps); });
    resultOf(active.api, nullptr, [&] { returnList(&map); });
    resultOf(active.api, nullptr, [] { returnList(RZStringList{rz("a")}); });
    resultOf(active.api, nullptr, [] { returnBool(true); });
    EXPECT_EQ(lm::drawing::liveBlocks(), before);
}

// --- state of the host
// ------------------------------------------------------------------------------------------

struct NoOverride {
    ~NoOverride() { setDatabase(nullptr); }
};

TEST(CurrentDatabase, IsThatOfTheActiveDocument) {
    Documents documents;
    EXPECT_EQ(getDatabase(), nullptr);
    CHostDocument* const first = documents.manager.newDocument();
    EXPECT_EQ(getDatabase(), first->database());
    EXPECT_NE(getDatabase(), nullptr);
    CHostDocument* const second = documents.manager.newDocument();
    EXPECT_EQ(getDatabase(), second->database());
    documents.manager.setActiveDocument(first);
    EXPECT_EQ(getDatabase(), first->database());
    documents.manager.newDocumentWithoutDatabase();
    EXPECT_EQ(getDatabase(), nullptr);
}

TEST(CurrentDatabase, OverrideComesFirstUncheckedUntilItIsRemoved) {
    const NoOverride guard;
    CHostDatabase other;
    setDatabase(&other);
    EXPECT_EQ(getDatabase(), &other); // without a document
    Documents documents;
    CHostDocument* const document = documents.manager.newDocument();
    EXPECT_EQ(getDatabase(), &other);
    alignas(CHostDatabase) static unsigned char nothing[sizeof(CHostDatabase)];
    auto* const bogus = reinterpret_cast<CHostDatabase*>(nothing);
    setDatabase(bogus);
    EXPECT_EQ(getDatabase(), bogus);
    setDatabase(nullptr);
    EXPECT_EQ(getDatabase(), document->database());
}

TEST(UndoBlock, BeginOpensAndEndCloses) {
    CHostDatabase database;
    undoBlockEnd(&database); // nothing is open: nothing changes
    EXPECT_FALSE(database.isUndoBlockStarted());
    undoBlockBegin(&database);
    EXPECT_TRUE(database.isUndoBlockStarted());
    undoBlockEnd(&database);
    EXPECT_FALSE(database.isUndoBlockStarted());
    undoBlockEnd(&database);
    EXPECT_FALSE(database.isUndoBlockStarted());
}

TEST(UndoBlock, BeginInsideABlockDoesNotNest) {
    CHostDatabase database;
    undoBlockBegin(&database);
    undoBlockBegin(&database);
    EXPECT_TRUE(database.isUndoBlockStarted());
    EXPECT_EQ(database.undoMarks(), 2u) << "two steps: the first block was closed before the second began";
    undoBlockEnd(&database);
    EXPECT_FALSE(database.isUndoBlockStarted());
}

TEST(UndoBlock, NullIsIgnored) {
    undoBlockBegin(nullptr);
    undoBlockEnd(nullptr);
}

} // namespace
