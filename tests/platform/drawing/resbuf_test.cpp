// SPDX-License-Identifier: MIT
// Records of chains, and the array of the drawing layer.
#include "drawing_support.h"

#include "drawing/alloc.h"
#include "drawing/odarray.h"

using namespace drawing_test;

TEST(ResBufTest, KeepsCodeAndPayloadApart) {
    const auto record = OdResBuf::newRb(1000, od("12"));
    record->setRestype(1071);
    EXPECT_EQ(record->restype(), 1071);
    EXPECT_EQ(record->payload(), OdResBuf::kText);
    EXPECT_EQ(record->getString(), od("12"));
    record->setRestype(1000);
    record->setInt32(5);
    EXPECT_EQ(record->restype(), 1000);
    EXPECT_EQ(record->payload(), OdResBuf::kInteger);
    EXPECT_EQ(record->getString(), od("5"));
}

TEST(ResBufTest, ReadsNumbersOutOfTexts) {
    struct Row {
        const char* text;
        int integer;
        double real;
    };
    const Row rows[] = {{"12", 12, 12}, {"-7", -7, -7}, {"  42 ", 42, 42}, {"12abc", 12, 12},
                        {"abc", 0, 0},  {"", 0, 0},     {"3.75", 3, 3.75}, {"+4", 4, 4},
                        {"+-4", 0, 0},  {"Ω1", 0, 0}};
    for (const Row& row : rows) {
        const auto record = OdResBuf::newRb(1000, od(row.text));
        EXPECT_EQ(record->getInt32(), row.integer) << row.text;
        EXPECT_EQ(record->getInt16(), row.integer) << row.text;
        EXPECT_EQ(record->getInt64(), row.integer) << row.text;
        EXPECT_EQ(record->getDouble(), row.real) << row.text;
    }
}

TEST(ResBufTest, ReadsEveryPayloadAsEveryTypeWithoutThrowing) {
    const auto db = newDatabase();
    const auto empty = OdResBuf::newRb(1);
    EXPECT_EQ(empty->payload(), OdResBuf::kNone);
    const auto real = OdResBuf::newRb(40, 2.5);
    EXPECT_EQ(real->getString(), od("2.5"));
    EXPECT_EQ(real->getInt32(), 2);
    real->setDouble(1e300);
    EXPECT_EQ(real->getInt64(), 0) << "an integer can't hold it";
    const auto point = OdResBuf::newRb(10);
    point->setPoint3d({1, 2, 3});
    const auto id = OdResBuf::newRb(330);
    id->setObjectId(db->getLayerZeroId());
    EXPECT_EQ(id->getString(), db->getLayerZeroId().getHandle().ascii());
    const auto binary = OdResBuf::newRb(1004);
    binary->setBinary(std::string("\0\xFF", 2));
    for (const auto& record : {empty, point, id, binary}) {
        EXPECT_EQ(record->getInt32(), 0);
        EXPECT_EQ(record->getDouble(), 0);
    }
    for (const auto& record : {empty, point, binary}) EXPECT_TRUE(record->getString().isEmpty());
    for (const auto& record : {empty, id, binary}) EXPECT_EQ(record->getPoint3d(), OdGePoint3d());
    for (const auto& record : {empty, point, binary}) EXPECT_TRUE(record->getObjectId().isNull());
    EXPECT_EQ(binary->getBinary().size(), 2u);
    EXPECT_TRUE(point->getBinary().empty());
}

TEST(ResBufTest, KeepsSmallIntegersAsIntegers) {
    const auto record = OdResBuf::newRb(1070);
    record->setInt16(-5);
    EXPECT_EQ(record->getInt16(), -5);
    record->setInt64(1ll << 40);
    EXPECT_EQ(record->getInt64(), 1ll << 40);
    EXPECT_EQ(record->getString(), od("1099511627776"));
    EXPECT_EQ(OdResBuf::newRb(1071, 9)->getInt32(), 9);
}

TEST(ResBufTest, CopiesAWholeChain) {
    const auto chain = chainOf("1001 APP|1000 a|1000 b");
    const auto copy = chain->cloneChain();
    copy->next()->setString(od("changed"));
    EXPECT_EQ(textOf(chain), "1001 APP|1000 a|1000 b");
    EXPECT_EQ(textOf(copy), "1001 APP|1000 changed|1000 b");
    EXPECT_EQ(textOf(copy->last()), "1000 b");
    EXPECT_EQ(textOf(copy->last()->append(OdResBuf::newRb(1070, 1))), "1070 1");
    EXPECT_EQ(textOf(copy), "1001 APP|1000 changed|1000 b|1070 1");
}

TEST(ResBufTest, ReleasesAVeryLongChainWithoutRecursion) {
    const std::size_t before = lm::drawing::liveBlocks();
    {
        auto head = OdResBuf::newRb(1000);
        OdSmartPtr<OdResBuf> tail = head;
        for (int i = 0; i < 1000000; ++i) tail = tail->append(OdResBuf::newRb(1000));
        tail.release();
        const auto copy = head->cloneChain();
    }
    EXPECT_EQ(lm::drawing::liveBlocks(), before);
}

TEST(ResBufTest, LeavesTheRestToWhoeverHoldsIt) {
    auto head = chainOf("1 a|1 b|1 c");
    const OdSmartPtr<OdResBuf> second = head->next();
    head.release();
    EXPECT_EQ(textOf(second), "1 b|1 c");
    EXPECT_EQ(second->numRefs(), 1);
}

TEST(OdArrayTest, ChecksEveryIndex) {
    OdArray<int> numbers{1, 2};
    EXPECT_EQ(numbers.append(3), 2u);
    for (const int outside : {-1, 3, 1000}) {
        EXPECT_EQ(codeOf([&] { numbers[outside] = 0; }), eInvalidIndex) << outside;
        EXPECT_EQ(codeOf([&] { numbers.removeAt(outside); }), eInvalidIndex) << outside;
        EXPECT_EQ(codeOf([&] { (void)std::as_const(numbers)[outside]; }), eInvalidIndex) << outside;
    }
    EXPECT_EQ(numbers.size(), 3u);
    numbers.removeAt(0);
    EXPECT_EQ(numbers[0], 2);
    EXPECT_TRUE(numbers.contains(3));
    EXPECT_FALSE(numbers.contains(1));
    numbers.clear();
    EXPECT_TRUE(numbers.isEmpty());
    EXPECT_THROW(numbers[0], OdError_InvalidIndex);
}

TEST(OdArrayTest, IsAValue) {
    OdArray<OdDbObjectId> first;
    first.append(OdDbObjectId::kNull);
    OdArray<OdDbObjectId> second = first;
    second.append(OdDbObjectId::kNull);
    EXPECT_EQ(first.size(), 1u);
    EXPECT_EQ(second.size(), 2u);
    EXPECT_NE(errorOf([&] { second[7]; }).find("7"), std::string::npos) << "the description names the index";
}
