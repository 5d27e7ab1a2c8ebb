// SPDX-License-Identifier: MIT
#include "text_literal.h"

#include "framework/values/archive.h"
#include "framework/values/exceptions.h"

#include <gtest/gtest.h>

#include <cstring>
#include <exception>

namespace {

class Shape : public CObject {
    LM_RUNTIME_CLASS(Shape)
};
class Circle : public Shape {
    LM_RUNTIME_CLASS(Circle)
};
class Plain : public Circle {};

LM_RUNTIME_CLASS_BODY(Shape, CObject)
LM_RUNTIME_CLASS_BODY(Circle, Shape)

TEST(FrameworkObject, KnowsItsRunTimeClass) {
    Circle circle;
    const CObject& object = circle;
    EXPECT_STREQ(object.GetRuntimeClass()->name(), "Circle");
    EXPECT_EQ(object.GetRuntimeClass()->objectSize(), sizeof(Circle));
    EXPECT_EQ(object.GetRuntimeClass()->base(), Shape::runtimeClass());
    EXPECT_EQ(CObject::runtimeClass()->base(), nullptr);
    EXPECT_TRUE(object.IsKindOf(Shape::runtimeClass()));
    EXPECT_TRUE(object.IsKindOf(CObject::runtimeClass()));
    EXPECT_FALSE(Shape().IsKindOf(Circle::runtimeClass()));
    EXPECT_FALSE(object.IsKindOf(nullptr));
    EXPECT_STREQ(Plain().GetRuntimeClass()->name(), "Circle");
}

/// Number of the entry in the virtual table that a pointer to a member names; g++ and clang on this platform
/// keep it as byte offset plus one.
template<class M>
std::size_t slot(M member) {
    std::size_t word = 0;
    std::memcpy(&word, &member, sizeof word);
    return (word - 1) / sizeof(void*);
}

TEST(FrameworkObject, KeepsTheOrderOfItsVirtualOperations) {
    EXPECT_EQ(slot(&CObject::GetRuntimeClass), 0u);
    EXPECT_EQ(slot(&CObject::Serialize), 3u) << "the destructor takes the two entries between";
}

TEST(FrameworkException, IsNoStandardException) {
    EXPECT_FALSE((std::is_base_of_v<std::exception, CException>));
    EXPECT_THROW(AfxThrowInvalidArgException(), CInvalidArgException);
    try {
        AfxThrowInvalidArgException();
    } catch (const CException& error) {
        EXPECT_EQ(error.description(), u"invalid argument"_c);
        EXPECT_TRUE(error.IsKindOf(CInvalidArgException::runtimeClass()));
    }
}

TEST(FrameworkException, TellsWhyAnArchiveFailed) {
    try {
        AfxThrowArchiveException(CArchiveException::endOfFile);
    } catch (const CException& error) {
        EXPECT_EQ(error.description(), u"archive: end of file"_c);
    }
}

TEST(FrameworkArchive, ReadsWhatWasWritten) {
    std::string bytes;
    CArchive out(bytes, CArchive::store);
    EXPECT_TRUE(out.IsStoring());
    EXPECT_FALSE(out.IsLoading());
    out.WriteCount(0x1122334455667788ULL);
    out.Write("abc", 3);
    EXPECT_EQ(static_cast<unsigned char>(bytes[0]), 0x88);
    CArchive in(bytes, CArchive::load);
    EXPECT_TRUE(in.IsLoading());
    EXPECT_EQ(in.ReadCount(), 0x1122334455667788ULL);
    char text[8] = {};
    EXPECT_EQ(in.Read(text, 8), 3u);
    EXPECT_STREQ(text, "abc");
    EXPECT_EQ(in.Read(text, 8), 0u);
    EXPECT_THROW(in.ReadCount(), CArchiveException);
}

TEST(FrameworkArchive, RefusesTheOtherDirection) {
    std::string bytes("12345678");
    CArchive in(bytes, CArchive::load);
    CArchive out(bytes, CArchive::store);
    char byte = 0;
    EXPECT_THROW(in.Write(&byte, 1), CArchiveException);
    EXPECT_THROW(out.Read(&byte, 1), CArchiveException);
    EXPECT_EQ(bytes, "12345678");
}

} // namespace
