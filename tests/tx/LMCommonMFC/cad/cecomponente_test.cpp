// SPDX-License-Identifier: MIT
// The record of a catalogue component.
#include "cad/cecomponente.h"

#include "ce_attributes.h"

#include "drawing/alloc.h"
#include "host/hoststring.h"

#include <gtest/gtest.h>

namespace {

using lm::tests::Records;

TEST(Component, BeginsEmpty) {
    CEComponente component;
    EXPECT_TRUE(component.GetKey().isEmpty());
    EXPECT_TRUE(component.GetDescricao().isEmpty());
    EXPECT_EQ(component.GetAtributo("TAG"), nullptr);
}

TEST(Component, TakesKeyAndDescription) {
    CEComponente component("K1", "Contactor");
    EXPECT_TRUE(component.GetKey() == RZString("K1"));
    EXPECT_TRUE(component.GetDescricao() == RZString("Contactor"));
    EXPECT_EQ(component.GetAtributo("K1"), nullptr);
}

TEST(Component, CopiesTheTextsAndLeavesThoseOfTheCallerAlone) {
    CStringArray texts;
    texts.Add(RZString("one"));
    texts.Add(RZString("two"));
    CEComponente component("K1", "Contactor", texts);
    EXPECT_TRUE(component.GetKey() == RZString("K1"));
    EXPECT_TRUE(component.GetDescricao() == RZString("Contactor"));
    ASSERT_EQ(texts.GetSize(), 2);
    EXPECT_TRUE(RZString(texts.GetAt(0)) == RZString("one"));
    EXPECT_TRUE(RZString(texts.GetAt(1)) == RZString("two"));
}

TEST(Component, KeepsTheLastRecordOfATagAndTellsSpellingsApart) {
    Records made;
    CEComponente component("K1", "Contactor");
    CEAtributo* first = made("TAG", "1");
    CEAtributo* second = made("TAG", "2");
    CEAtributo* lower = made("tag", "3");
    for (CEAtributo* record : {first, second, lower}) component.AdicionarAtributo(record);
    EXPECT_EQ(component.GetAtributo("TAG"), second);
    EXPECT_EQ(component.GetAtributo("tag"), lower);
    EXPECT_EQ(component.GetAtributo("Tag"), nullptr);
    EXPECT_EQ(first->GetValor(), CHostString("1")) << "the dropped record must live on";
}

TEST(Component, FreesNoRecordWhenItEnds) {
    Records made;
    CEAtributo* record = made("TAG", "1");
    {
        CEComponente component("K1", "Contactor");
        component.AdicionarAtributo(record);
    }
    EXPECT_EQ(record->GetValor(), CHostString("1"));
}

TEST(Component, LivesInTheMemoryThatModulesShare) {
    const std::size_t before = lm::drawing::liveBlocks();
    CEComponente* component = new CEComponente("K1", "Contactor");
    EXPECT_EQ(lm::drawing::liveBlocks(), before + 1);
    delete component;
    EXPECT_EQ(lm::drawing::liveBlocks(), before);
}

} // namespace
