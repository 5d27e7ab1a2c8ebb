// SPDX-License-Identifier: MIT
// The constructors that join 2 to 30 texts.
#include "text_literal.h"

#include "host/hoststring.h"

#include <gtest/gtest.h>

#include <array>

namespace {

template<std::size_t>
using Text = const RZString&;

template<std::size_t... Index>
RZString joined(const std::array<RZString, 30>& parts, std::index_sequence<Index...>) {
    return RZString(parts[Index]...);
}

template<std::size_t... Index>
constexpr bool isJoinable(std::index_sequence<Index...>) {
    return std::is_constructible_v<RZString, Text<Index>...>;
}

template<std::size_t Count>
void expectJoined(const std::array<RZString, 30>& parts) {
    lm::WideString expected;
    for (std::size_t i = 0; i < Count; ++i) expected += parts[i].view();
    EXPECT_EQ(joined(parts, std::make_index_sequence<Count>()).str(), expected) << Count << " parts";
    EXPECT_TRUE(isJoinable(std::make_index_sequence<Count>()));
}

template<std::size_t... Index>
void expectEachJoined(const std::array<RZString, 30>& parts, std::index_sequence<Index...>) {
    (expectJoined<Index + 2>(parts), ...);
}

TEST(TextJoin, TakesTwoToThirtyParts) {
    std::array<RZString, 30> parts;
    for (std::size_t i = 0; i < parts.size(); ++i) parts[i] = RZString(RZString("part"), RZString(int(i), 2));
    expectEachJoined(parts, std::make_index_sequence<29>());
    EXPECT_FALSE(isJoinable(std::make_index_sequence<31>()));
}

TEST(TextJoin, ConvertsEachArgumentByItself) {
    const OdString odText(wide(u"ΩO"));
    const CHostString hostText(wide(u"ΩH"));
    const QString qtText = QString::fromUtf8("ΩQ");
    const CString framework(wide(u"ΩC"));
    EXPECT_EQ(RZString(RZString("x"), wide(u"Ωw"), "abc"), u"xΩwabc"_rz);
    EXPECT_EQ(RZString("a", "b"), u"ab"_rz);
    EXPECT_EQ(RZString(odText, hostText, qtText, framework), u"ΩO?H?QΩC"_rz);
    EXPECT_EQ(RZString(OdDbHandle(0x2F), ":", RZString::char12), u"2F:\u000C"_rz);
    EXPECT_EQ(RZString(static_cast<const char*>(nullptr), static_cast<const unsigned short*>(nullptr)),
              u""_rz);
}

TEST(TextJoin, TakesTheFirstPartWholeAndTheOthersUpToAZero) {
    const RZString zero = u"a\0b"_rz;
    EXPECT_EQ(RZString(zero, zero, "c").str(), u"a\0bac"_rz.str());
    EXPECT_EQ(RZString(zero, u"\0x"_rz).str(), zero.str());
}

TEST(TextJoin, EndsALaterPartAtAZeroWhereverItStands) {
    for (int at = 0; at < 13; ++at) {
        RZString part = "abcdefghijklm";
        part.setAt(at, 0);
        EXPECT_EQ(RZString("<", part, ">"), RZString(RZString("<"), RZString("abcdefghijklm").left(at), ">"));
        EXPECT_EQ(RZString(part, ">").length(), 14u) << "the first part is taken whole";
    }
}

TEST(TextJoin, LeavesIntegersAndFlagsToTheNumberConstructors) {
    EXPECT_EQ(RZString(7, 3), u"007"_rz);
    EXPECT_EQ(RZString(1.5, true, 2), u"1.50"_rz);
    EXPECT_EQ(RZString(1.5f, true, 2), u"1.50"_rz);
    EXPECT_EQ(RZString(0, 0), u"0"_rz);
}

} // namespace
