// SPDX-License-Identifier: MIT
// The rule for names and suffixes, on its own and in lists that were read before.
#include "vocabulary/ceattributehelper.h"

#include "attribute_search.h"

#include <gtest/gtest.h>

namespace {

using lm::tests::list;
using lm::tests::text;

TEST(NameComposition, IsTheProductWithTheFirstListOutside) {
    const RZStringList composed =
        CEAttributeHelper::composesAttribute(list({"CON", "LIG"}), list({"A", "B"}));
    EXPECT_TRUE(composed == list({"CONA", "CONB", "LIGA", "LIGB"}));
}

TEST(NameComposition, KeepsDoubles) {
    const RZStringList composed = CEAttributeHelper::composesAttribute(list({"A", "A"}), list({"", "1"}));
    EXPECT_TRUE(composed == list({"A", "A1", "A", "A1"}));
}

TEST(NameComposition, IsEmptyWhenEitherSideIs) {
    EXPECT_TRUE(CEAttributeHelper::composesAttribute(RZStringList(), list({"A"})).isEmpty());
    EXPECT_TRUE(CEAttributeHelper::composesAttribute(list({"A"}), RZStringList()).isEmpty());
    EXPECT_TRUE(CEAttributeHelper::composesAttribute(RZStringList(), RZStringList()).isEmpty());
}

struct Match {
    const char* tag;
    RZStringList names;
    const char* suffix;
    const char* matched; // null where nothing fits
};

TEST(NameRule, TellsWhetherAndByWhichNameATagFits) {
    const Match rows[] = {
        {"NUMERO", {"NUMBER", "NUMERO"}, "", "NUMERO"},
        {"numero", {"NUMBER", "NUMERO"}, "", "NUMERO"},
        {"NUMERO", {"number", "numero"}, "", "numero"},
        {"NUMERO1", {"NUMBER", "NUMERO"}, "", nullptr},
        {"NUMER", {"NUMBER", "NUMERO"}, "", nullptr},
        {"PIN_1", {"PIN"}, "_1", "PIN_1"},
        {"pin_a", {"Pin"}, "_A", "Pin_A"},
        {"PIN", {"PIN"}, "_1", nullptr},
        {"PIN_2", {"PIN"}, "_1", nullptr},
        {"CONTATO", {"CON"}, "-", "CON"},
        {"contato", {"CON"}, "-", "CON"},
        {"CON", {"CON"}, "-", "CON"},
        {"CO", {"CON"}, "-", nullptr},
        {"ICON", {"CON"}, "-", nullptr},
        {"CON-", {"CON"}, "-", "CON"},
        {"PIN", {"PIN"}, "-", "PIN"},
        {"PIN1", {"PIN"}, "-", "PIN"},
        {"PINO", {"PIN"}, "-", "PIN"},
        {"PIN1", {"PINO", "PI", "PIN"}, "-", "PI"},
        {"PIN--", {"PIN"}, "--", "PIN--"},
        {"PIN1", {"PIN"}, "--", nullptr},
        {"NUMERO", {}, "", nullptr},
        {"NUMERO", {}, "-", nullptr},
        {"", {}, "", nullptr},
        {"", {"A", ""}, "", ""},
        {"ANY", {"A1", ""}, "-", ""},
    };
    for (const Match& row : rows) {
        SCOPED_TRACE(std::string(row.tag) + " with suffix '" + row.suffix + "'");
        RZString matched("before");
        const bool fits = row.matched != nullptr;
        EXPECT_EQ(CEAttributeHelper::isAtt(row.tag, row.names, row.suffix, matched), fits);
        EXPECT_TRUE(matched == RZString(fits ? row.matched : "before"));
        EXPECT_EQ(CEAttributeHelper::isAtt(row.tag, row.names, row.suffix), fits);
    }
}

TEST(NameRule, TakesTheFirstNameThatFits) {
    RZString matched;
    EXPECT_TRUE(CEAttributeHelper::isAtt("tag", list({"NAME", "Tag", "TAG"}), "", matched));
    EXPECT_TRUE(matched == RZString("Tag"));
}

TEST(NameRule, IgnoresCaseInLettersWithAccents) {
    EXPECT_TRUE(CEAttributeHelper::isAtt("DESCRI\xC7\xC3O", list({"descri\xE7\xE3o"}), ""));
    EXPECT_TRUE(CEAttributeHelper::isAtt("DESCRI\xC7\xC3O", list({"descri\xE7"}), "-"));
}

TEST(AttributeSearchInList, GivesTheElementItself) {
    CEListaAtributos attributes;
    const auto add = [&](const char* tag) {
        return attributes.AdicionarAtributo(
            new CEAtributo(OdString(tag), OdString(), OdString(), OdDbObjectId(), false));
    };
    add("OTHER");
    CEAtributo* first = add("numero");
    add("NUMBER");
    CEAtributo* suffixed = add("PIN_1");
    CEAtributo* out = nullptr;
    EXPECT_TRUE(CEAttributeHelper::findAtt(&attributes, ATT_NUMBER, "", out));
    EXPECT_EQ(out, first);
    EXPECT_EQ(text(first->GetTag()), "numero") << "the list's element keeps its own tag";
    EXPECT_TRUE(CEAttributeHelper::findAtt(&attributes, list({"PIN"}), "_1", out));
    EXPECT_EQ(out, suffixed);
    EXPECT_TRUE(CEAttributeHelper::findAtt(&attributes, list({"PIN"}), "-", out));
    EXPECT_EQ(out, suffixed);
    EXPECT_FALSE(CEAttributeHelper::findAtt(&attributes, ATT_CABLE, "", out));
    EXPECT_EQ(out, suffixed);
    EXPECT_EQ(attributes.GetSize(), 4);
    attributes.releaseAllAttributes();
}

} // namespace
