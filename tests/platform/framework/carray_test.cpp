// SPDX-License-Identifier: MIT
#include "framework/values/carray.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

using Numbers = CArray<int, int>;

/// The pointers of an allocation show where the storage changed; capacity itself isn't offered.
std::vector<long long> sizesAtReallocation(Numbers& array, long long upTo) {
    std::vector<long long> sizes;
    const int* storage = array.GetData();
    for (long long i = array.GetSize(); i < upTo; ++i) {
        array.Add(static_cast<int>(i));
        if (array.GetData() != storage) sizes.push_back(array.GetSize());
        storage = array.GetData();
    }
    return sizes;
}

void fill(Numbers& array, std::initializer_list<int> values) {
    array.RemoveAll();
    for (const int value : values) array.Add(value);
}

std::vector<int> elements(const Numbers& array) {
    return std::vector<int>(array.GetData(), array.GetData() + array.GetSize());
}

TEST(FrameworkArray, StartsEmptyWithoutStorage) {
    Numbers array;
    EXPECT_EQ(array.GetSize(), 0);
    EXPECT_EQ(array.GetCount(), 0);
    EXPECT_EQ(array.GetUpperBound(), -1);
    EXPECT_TRUE(array.IsEmpty());
    EXPECT_EQ(array.GetData(), nullptr);
}

TEST(FrameworkArray, IsASingleVirtualTableAndFourFields) {
    EXPECT_EQ(sizeof(CArray<void*, void*>), 5 * sizeof(void*));
}

TEST(FrameworkArray, GrowsByFourAtFirst) {
    Numbers array;
    // One element, then always four more until an eighth of the size is larger.
    EXPECT_EQ(sizesAtReallocation(array, 20), (std::vector<long long>{1, 2, 6, 10, 14, 18}));
}

TEST(FrameworkArray, GrowsByAnEighthOfTheSize) {
    Numbers array;
    array.SetSize(800);
    EXPECT_EQ(sizesAtReallocation(array, 1030), (std::vector<long long>{801, 901, 1013}));
}

TEST(FrameworkArray, GrowsByAtMostAThousandAndTwentyFour) {
    Numbers array;
    array.SetSize(80000);
    EXPECT_EQ(sizesAtReallocation(array, 82050), (std::vector<long long>{80001, 81025, 82049}));
}

TEST(FrameworkArray, GrowsByTheStoredStep) {
    Numbers array;
    array.SetSize(1, 3);
    // The first storage holds the step at least.
    EXPECT_EQ(sizesAtReallocation(array, 11), (std::vector<long long>{4, 7, 10}));
    array.SetSize(array.GetSize(), -1); // keeps the step
    EXPECT_EQ(sizesAtReallocation(array, 14), (std::vector<long long>{13}));
    array.SetSize(array.GetSize(), 0); // back to the rule of an eighth
    EXPECT_EQ(sizesAtReallocation(array, 17), (std::vector<long long>{16}));
}

TEST(FrameworkArray, GrowsToTheNewSizeWhereThatIsLarger) {
    Numbers array;
    array.SetSize(1);
    array.SetSize(100);
    const int* storage = array.GetData();
    array.SetSize(100);
    EXPECT_EQ(array.GetData(), storage);
    array.Add(1);
    EXPECT_NE(array.GetData(), storage);
}

TEST(FrameworkArray, ZeroesNewElementsOnEachPath) {
    Numbers array;
    array.SetSize(3);
    EXPECT_EQ(elements(array), (std::vector<int>{0, 0, 0}));
    fill(array, {1, 2, 3, 4});
    array.SetSize(2);
    array.SetSize(4); // within the storage, where 3 and 4 stood
    EXPECT_EQ(elements(array), (std::vector<int>{1, 2, 0, 0}));
    array.SetSize(40);
    EXPECT_EQ(array[39], 0);
    EXPECT_EQ(array[1], 2);
}

TEST(FrameworkArray, FreesItsStorageAtSizeZero) {
    Numbers array;
    fill(array, {1, 2});
    array.SetSize(0);
    EXPECT_EQ(array.GetData(), nullptr);
    fill(array, {1, 2});
    array.RemoveAll();
    EXPECT_EQ(array.GetData(), nullptr);
    EXPECT_TRUE(array.IsEmpty());
}

TEST(FrameworkArray, RefusesANegativeSizeAndStaysAsItWas) {
    Numbers array;
    fill(array, {1, 2});
    EXPECT_THROW(array.SetSize(-1), CInvalidArgException);
    EXPECT_EQ(elements(array), (std::vector<int>{1, 2}));
}

TEST(FrameworkArray, RaisesForImpossibleSizes) {
    Numbers array;
    EXPECT_THROW(array.SetSize(0x7FFFFFFFFFFFFFFF), std::bad_alloc);
    EXPECT_THROW(array.SetAtGrow(0x7FFFFFFFFFFFFFFF, 1), std::bad_alloc);
    EXPECT_THROW(array.InsertAt(0, 1, 0x7FFFFFFFFFFFFFFF), std::bad_alloc);
    EXPECT_TRUE(array.IsEmpty());
}

TEST(FrameworkArray, RefusesEveryIndexOutside) {
    Numbers array;
    fill(array, {1, 2});
    const Numbers& constant = array;
    for (const long long index : {-1LL, 2LL, 99LL}) {
        EXPECT_THROW(array[index], CInvalidArgException);
        EXPECT_THROW(constant[index], CInvalidArgException);
        EXPECT_THROW(array.GetAt(index), CInvalidArgException);
        EXPECT_THROW(constant.GetAt(index), CInvalidArgException);
        EXPECT_THROW(array.ElementAt(index), CInvalidArgException);
        EXPECT_THROW(array.SetAt(index, 1), CInvalidArgException);
        EXPECT_THROW(array.RemoveAt(index), CInvalidArgException);
    }
    EXPECT_THROW(array.InsertAt(-1, 1), CInvalidArgException);
    EXPECT_THROW(array.InsertAt(3, 1), CInvalidArgException);
    EXPECT_THROW(array.InsertAt(-1, &constant), CInvalidArgException);
    EXPECT_THROW(array.InsertAt(3, &constant), CInvalidArgException);
    EXPECT_THROW(array.SetAtGrow(-1, 1), CInvalidArgException);
    EXPECT_THROW(array.RemoveAt(1, 2), CInvalidArgException);
    EXPECT_THROW(array.RemoveAt(0, -1), CInvalidArgException);
    EXPECT_THROW(array.InsertAt(0, 1, -1), CInvalidArgException);
    EXPECT_THROW(array.InsertAt(0, static_cast<const Numbers*>(nullptr)), CInvalidArgException);
    EXPECT_EQ(elements(array), (std::vector<int>{1, 2}));
}

TEST(FrameworkArray, ReadsAndWritesElements) {
    Numbers array;
    EXPECT_EQ(array.Add(5), 0);
    EXPECT_EQ(array.Add(6), 1);
    array.SetAt(0, 7);
    array[1] += 2;
    array.ElementAt(0) += 1;
    EXPECT_EQ(elements(array), (std::vector<int>{8, 8}));
    array.SetAtGrow(4, 9);
    EXPECT_EQ(elements(array), (std::vector<int>{8, 8, 0, 0, 9}));
    array.SetAtGrow(2, 3);
    EXPECT_EQ(array.GetSize(), 5);
    EXPECT_EQ(array.GetUpperBound(), 4);
}

TEST(FrameworkArray, Inserts) {
    Numbers array, other;
    fill(array, {1, 2, 3});
    fill(other, {7, 8});
    array.InsertAt(1, 9);
    EXPECT_EQ(elements(array), (std::vector<int>{1, 9, 2, 3}));
    array.InsertAt(4, 5, 2);
    EXPECT_EQ(elements(array), (std::vector<int>{1, 9, 2, 3, 5, 5}));
    array.InsertAt(0, 5, 0);
    EXPECT_EQ(array.GetSize(), 6);
    fill(array, {1, 2});
    array.InsertAt(1, &other);
    EXPECT_EQ(elements(array), (std::vector<int>{1, 7, 8, 2}));
    array.InsertAt(4, &other);
    EXPECT_EQ(elements(array), (std::vector<int>{1, 7, 8, 2, 7, 8}));
    other.InsertAt(1, &other);
    EXPECT_EQ(elements(other), (std::vector<int>{7, 7, 8, 8}));
    other.RemoveAll();
    array.InsertAt(0, &other);
    EXPECT_EQ(array.GetSize(), 6);
}

TEST(FrameworkArray, RemovesAndKeepsTheStorage) {
    Numbers array;
    fill(array, {1, 2, 3, 4, 5});
    const int* storage = array.GetData();
    array.RemoveAt(1, 2);
    EXPECT_EQ(elements(array), (std::vector<int>{1, 4, 5}));
    array.RemoveAt(2);
    array.RemoveAt(0, 2);
    EXPECT_TRUE(array.IsEmpty());
    EXPECT_EQ(array.GetData(), storage);
    array.RemoveAt(0, 0);
    EXPECT_EQ(array.Add(3), 0);
    EXPECT_EQ(array.GetData(), storage);
}

TEST(FrameworkArray, FreesWhatItDoesNotUse) {
    Numbers array;
    fill(array, {1, 2, 3});
    const int* roomy = array.GetData();
    array.FreeExtra();
    EXPECT_NE(array.GetData(), roomy);
    EXPECT_EQ(elements(array), (std::vector<int>{1, 2, 3}));
    const int* exact = array.GetData();
    array.FreeExtra();
    EXPECT_EQ(array.GetData(), exact);
    array.RemoveAt(0, 3);
    array.FreeExtra();
    EXPECT_EQ(array.GetData(), nullptr);
}

TEST(FrameworkArray, AppendsAndCopies) {
    Numbers array, other;
    fill(array, {1});
    fill(other, {7, 8});
    EXPECT_EQ(array.Append(other), 1);
    EXPECT_EQ(elements(array), (std::vector<int>{1, 7, 8}));
    EXPECT_EQ(array.Append(array), 3);
    EXPECT_EQ(elements(array), (std::vector<int>{1, 7, 8, 1, 7, 8}));
    array.Copy(other);
    EXPECT_EQ(elements(array), (std::vector<int>{7, 8}));
    array.Copy(array);
    EXPECT_EQ(elements(array), (std::vector<int>{7, 8}));
    other.RemoveAll();
    EXPECT_EQ(array.Append(other), 2);
    array.Copy(other);
    EXPECT_TRUE(array.IsEmpty());
}

TEST(FrameworkArray, TakesItsOwnElementAsArgument) {
    CArray<int, const int&> array;
    for (int i = 0; i < 100; ++i) array.Add(array.IsEmpty() ? 3 : array[0]);
    array.InsertAt(0, array[99], 50);
    EXPECT_EQ(array[149], 3);
    EXPECT_EQ(array[0], 3);
}

TEST(FrameworkArray, SurvivesAnArchive) {
    Numbers array, back;
    fill(array, {1, -2, 3});
    std::string bytes;
    CArchive out(bytes, CArchive::store);
    array.Serialize(out);
    EXPECT_EQ(bytes.size(), 8u + 3 * sizeof(int));
    fill(back, {9, 9, 9, 9, 9});
    CArchive in(bytes, CArchive::load);
    back.Serialize(in);
    EXPECT_EQ(elements(back), elements(array));
}

TEST(FrameworkArray, RaisesAtAnArchiveThatEndsEarly) {
    Numbers array;
    fill(array, {1, 2, 3});
    std::string bytes;
    CArchive out(bytes, CArchive::store);
    array.Serialize(out);
    for (std::size_t size = 0; size < bytes.size(); ++size) {
        std::string cut = bytes.substr(0, size);
        CArchive in(cut, CArchive::load);
        Numbers back;
        try {
            back.Serialize(in);
            ADD_FAILURE() << "no exception at " << size << " bytes";
        } catch (const CArchiveException& error) {
            EXPECT_EQ(error.cause(), CArchiveException::endOfFile);
        }
    }
}

TEST(FrameworkArray, IsAnObjectOfTheFramework) {
    Numbers array;
    CObject& object = array;
    EXPECT_TRUE(object.IsKindOf(CObject::runtimeClass()));
    std::string bytes;
    CArchive out(bytes, CArchive::store);
    object.Serialize(out);
    EXPECT_EQ(bytes.size(), 8u);
}

} // namespace
