// SPDX-License-Identifier: MIT
// The arrays of pointers that the library makes for all modules. Their rules are tested with the framework;
// here is what holds for pointers.
#include "text/pointerarrays.h"

#include <gtest/gtest.h>

namespace {

template<class T>
T* pointer(std::size_t number) {
    return reinterpret_cast<T*>(number * 16);
}

template<class Pointed>
void exercise() {
    using Array = CArray<Pointed*, Pointed*>;
    Array array;
    EXPECT_EQ(array.Add(pointer<Pointed>(1)), 0);
    array.SetAtGrow(2, pointer<Pointed>(3));
    EXPECT_EQ(array.GetAt(1), nullptr);
    array.SetAt(1, pointer<Pointed>(2));
    array.InsertAt(0, pointer<Pointed>(9), 2);
    array.RemoveAt(0, 1);
    EXPECT_EQ(array.GetUpperBound(), 3);
    EXPECT_EQ(array[0], pointer<Pointed>(9));
    EXPECT_EQ(array.ElementAt(3), pointer<Pointed>(3));
    EXPECT_THROW(array[4], CInvalidArgException);

    Array other;
    other.Copy(array);
    other.InsertAt(4, &array);
    EXPECT_EQ(other.Append(array), 8);
    EXPECT_EQ(other.GetSize(), 12);
    EXPECT_EQ(other.GetData()[11], pointer<Pointed>(3));
    other.FreeExtra();

    std::string bytes;
    CArchive out(bytes, CArchive::store);
    array.Serialize(out);
    CArchive in(bytes, CArchive::load);
    Array back;
    back.Serialize(in);
    EXPECT_EQ(back.GetCount(), 4);
    EXPECT_EQ(back[0], pointer<Pointed>(9));
    back.RemoveAll();
    EXPECT_TRUE(back.IsEmpty());
}

TEST(PointerArrays, KeepRecords) {
    exercise<CEAtributo>();
}

TEST(PointerArrays, KeepFolders) {
    exercise<CEPasta>();
}

} // namespace
