// SPDX-License-Identifier: MIT
// The searches in a drawing: attributes of a reference, prompts, definitions of a block, identifiers,
// prefixes.
#include "vocabulary/ceattributehelper.h"

#include "attribute_search.h"

#include <gtest/gtest.h>

namespace {

using lm::tests::AttributeSearch;
using lm::tests::list;
using lm::tests::make;
using lm::tests::makeDefinition;
using lm::tests::text;

TEST_F(AttributeSearch, RecordHasTheCallersSpellingAndTheAttributesOwnData) {
    OdSmartPtr<OdDbBlockReference> reference = place({{"OTHER", "0"}});
    OdSmartPtr<OdDbAttribute> attribute = append(reference, "numero", " \t 12 a\n");
    attribute->setInvisible(true);
    const auto found = find(reference, ATT_NUMBER);
    ASSERT_NE(found, nullptr);
    EXPECT_EQ(text(found->GetTag()), "NUMERO");
    EXPECT_EQ(text(found->GetPrompt()), "");
    EXPECT_EQ(text(found->GetValor()), "12 a");
    EXPECT_TRUE(found->GetObjectId() == attribute->objectId());
    EXPECT_FALSE(found->GetObjectId().isNull());
    EXPECT_TRUE(found->GetInvisivel());
}

TEST_F(AttributeSearch, VisibleAttributesGiveVisibleRecords) {
    const auto found = find(place({{"TAG", "K1"}}), ATT_TAG);
    ASSERT_NE(found, nullptr);
    EXPECT_FALSE(found->GetInvisivel());
}

TEST_F(AttributeSearch, KeepsTextOutsideTheCodePage) {
    const unsigned short units[] = {0x20, 0x03A9, 0x20, 0};
    OdSmartPtr<OdDbBlockReference> reference = place({});
    append(reference, "TAG", "")->setTextString(OdString(units));
    const auto found = find(reference, ATT_TAG);
    ASSERT_NE(found, nullptr);
    EXPECT_EQ(text(found->GetValor()), "\xCE\xA9");
}

TEST_F(AttributeSearch, TheOrderOfTheAttributesDecidesAndThatOfTheNamesDoesNot) {
    OdSmartPtr<OdDbBlockReference> reference = place({{"NUMERO", "first"}, {"NUMBER", "second"}});
    for (const RZStringList& names : {list({"NUMERO", "NUMBER"}), list({"NUMBER", "NUMERO"})}) {
        const auto found = find(reference, names);
        ASSERT_NE(found, nullptr);
        EXPECT_EQ(text(found->GetTag()), "NUMERO");
        EXPECT_EQ(text(found->GetValor()), "first");
    }
}

TEST_F(AttributeSearch, TheSuffixIsPartOfTheRecordsTag) {
    const auto found = find(place({{"PIN", "0"}, {"pin_1", "1"}}), list({"PIN"}), "_1");
    ASSERT_NE(found, nullptr);
    EXPECT_EQ(text(found->GetTag()), "PIN_1");
    EXPECT_EQ(text(found->GetValor()), "1");
}

TEST_F(AttributeSearch, APrefixTestLeavesTheBarePrefixAsTag) {
    const auto found = find(place({{"ICON", "0"}, {"CONTATO", "1"}}), list({"CON"}), "-");
    ASSERT_NE(found, nullptr);
    EXPECT_EQ(text(found->GetTag()), "CON");
    EXPECT_EQ(text(found->GetValor()), "1");
}

TEST_F(AttributeSearch, WhatIsNotFoundLeavesTheResultAlone) {
    OdSmartPtr<OdDbBlockReference> reference = place({{"OTHER", "0"}});
    CEAtributo before(OdString("X"), OdString(), OdString(), OdDbObjectId(), false);
    CEAtributo* out = &before;
    EXPECT_FALSE(CEAttributeHelper::findAtt(reference, ATT_TAG, "", out, true));
    EXPECT_FALSE(CEAttributeHelper::findAtt(m_block, ATT_TAG, "", out));
    EXPECT_FALSE(CEAttributeHelper::findAtt(RZID(reference->objectId()), ATT_TAG, out));
    EXPECT_FALSE(CEAttributeHelper::findAtt(reference, RZStringList(), "", out, true));
    CEListaAtributos empty;
    EXPECT_FALSE(CEAttributeHelper::findAtt(&empty, ATT_TAG, "", out));
    EXPECT_EQ(out, &before);
    EXPECT_TRUE(lines().empty());
}

TEST_F(AttributeSearch, PassesOverErasedAttributes) {
    OdSmartPtr<OdDbBlockReference> reference = place({});
    append(reference, "TAG", "erased")->erase();
    append(reference, "TAG", "live");
    const auto found = find(reference, ATT_TAG);
    ASSERT_NE(found, nullptr);
    EXPECT_EQ(text(found->GetValor()), "live");
}

TEST_F(AttributeSearch, PassesOverErasedAttributesOutsideADrawingToo) {
    OdSmartPtr<OdDbBlockReference> reference = make(new OdDbBlockReference);
    append(reference, "TAG", "erased")->erase();
    append(reference, "TAG", "live");
    const auto found = find(reference, ATT_TAG);
    ASSERT_NE(found, nullptr);
    EXPECT_EQ(text(found->GetValor()), "live");
}

TEST_F(AttributeSearch, AReferenceWithoutAttributesHasNone) {
    EXPECT_EQ(find(place({}), ATT_TAG), nullptr);
}

TEST_F(AttributeSearch, AReferenceWithoutIteratorHasNone) {
    OdSmartPtr<OdDbBlockReference> reference = place({{"TAG", "K1"}});
    reference->setWithoutIterator(true);
    EXPECT_EQ(find(reference, ATT_TAG, "", true), nullptr);
    CEListaAtributos collected;
    EXPECT_FALSE(CEAttributeHelper::findAttByPrefix(reference, list({"TAG"}), &collected));
    EXPECT_TRUE(collected.IsEmpty());
    EXPECT_TRUE(lines().empty());
}

TEST_F(AttributeSearch, ReadsAReferenceOutsideADrawing) {
    OdSmartPtr<OdDbBlockReference> reference = make(new OdDbBlockReference);
    append(reference, "OTHER", "0");
    append(reference, "TAG", " K1 ");
    const auto found = find(reference, ATT_TAG, "", true);
    ASSERT_NE(found, nullptr);
    EXPECT_EQ(text(found->GetValor()), "K1");
    EXPECT_EQ(text(found->GetPrompt()), "");
    EXPECT_TRUE(found->GetObjectId().isNull());
}

/// Passes for a line of plain text where a class is asked for, as a foreign element among attributes does.
class ForeignElement : public OdDbAttribute {
public:
    OdRxClass* isA() const override { return OdDbText::desc(); }
};

TEST_F(AttributeSearch, PassesOverWhatIsNoAttribute) {
    OdSmartPtr<OdDbBlockReference> reference = make(new OdDbBlockReference);
    OdSmartPtr<OdDbAttribute> foreign = make<OdDbAttribute>(new ForeignElement);
    foreign->setTag(OdString("TAG"));
    foreign->setTextString(OdString("foreign"));
    reference->appendAttribute(foreign);
    append(reference, "TAG", "own");
    const auto found = find(reference, ATT_TAG);
    ASSERT_NE(found, nullptr);
    EXPECT_EQ(text(found->GetValor()), "own");
    CEListaAtributos collected;
    EXPECT_TRUE(CEAttributeHelper::findAttByPrefix(reference, list({"TAG"}), &collected));
    EXPECT_EQ(collected.GetSize(), 1);
    collected.releaseAllAttributes();
    EXPECT_TRUE(lines().empty());
}

TEST_F(AttributeSearch, TakesThePromptOfTheDefinitionWhenAsked) {
    define(makeDefinition("TAG", "Name of the motor", "M?"));
    OdSmartPtr<OdDbBlockReference> reference = place({{"TAG", "M1"}});
    const auto with = find(reference, ATT_TAG, "", true);
    ASSERT_NE(with, nullptr);
    EXPECT_EQ(text(with->GetPrompt()), "Name of the motor");
    EXPECT_EQ(text(with->GetValor()), "M1");
    EXPECT_FALSE(with->GetObjectId() == m_blockId);
    const auto without = find(reference, ATT_TAG);
    ASSERT_NE(without, nullptr);
    EXPECT_EQ(text(without->GetPrompt()), "");
}

TEST_F(AttributeSearch, KeepsAPromptOutsideTheCodePage) {
    const unsigned short units[] = {0x03A9, 0};
    OdSmartPtr<OdDbAttributeDefinition> definition = makeDefinition("TAG", "", "");
    definition->setPrompt(OdString(units));
    define(definition);
    const auto found = find(place({{"TAG", "M1"}}), ATT_TAG, "", true);
    ASSERT_NE(found, nullptr);
    EXPECT_EQ(text(found->GetPrompt()), "\xCE\xA9");
}

TEST_F(AttributeSearch, SearchesThePromptByTheSameNamesAndSuffix) {
    define(makeDefinition("OTHER", "no", ""));
    define(makeDefinition("RELACAO", "of the synonym", ""));
    define(makeDefinition("TAG", "of the tag", ""));
    const auto synonym = find(place({{"TAG", "M1"}}), ATT_TAG, "", true);
    ASSERT_NE(synonym, nullptr);
    EXPECT_EQ(text(synonym->GetPrompt()), "of the synonym") << "the first definition that fits any name";
    define(makeDefinition("PIN_1", "of the pin", ""));
    const auto suffixed = find(place({{"PIN_1", "7"}}), list({"PIN"}), "_1", true);
    ASSERT_NE(suffixed, nullptr);
    EXPECT_EQ(text(suffixed->GetPrompt()), "of the pin");
}

TEST_F(AttributeSearch, FindsTheAttributeWithAnEmptyPromptWhenTheDefinitionIsMissing) {
    define(makeDefinition("OTHER", "no", ""));
    const auto found = find(place({{"TAG", "M1"}}), ATT_TAG, "", true);
    ASSERT_NE(found, nullptr);
    EXPECT_EQ(text(found->GetPrompt()), "");
    EXPECT_TRUE(lines().empty());
}

TEST_F(AttributeSearch, FindsTheAttributeWithAnEmptyPromptWhenTheBlockIsMissing) {
    OdSmartPtr<OdDbBlockReference> reference = place({{"TAG", "M1"}});
    reference->setBlockTableRecord(OdDbObjectId());
    const auto found = find(reference, ATT_TAG, "", true);
    ASSERT_NE(found, nullptr);
    EXPECT_EQ(text(found->GetPrompt()), "");
    EXPECT_TRUE(lines().empty());
}

TEST_F(AttributeSearch, SearchingThePromptLeavesNothingBehind) {
    define(makeDefinition("TAG", "Name", ""));
    OdSmartPtr<OdDbBlockReference> reference = place({{"TAG", "M1"}});
    const std::size_t before = lm::drawing::liveBlocks();
    find(reference, ATT_TAG, "", true);
    EXPECT_EQ(lm::drawing::liveBlocks(), before);
}

TEST_F(AttributeSearch, RecordOfADefinitionNamesTheBlockAndKeepsTheTextUntrimmed) {
    OdSmartPtr<OdDbAttributeDefinition> definition = makeDefinition("numero", "Number", "  1  ");
    definition->setInvisible(true);
    const OdDbObjectId definitionId = define(definition);
    const auto found = find(m_block, ATT_NUMBER);
    ASSERT_NE(found, nullptr);
    EXPECT_EQ(text(found->GetTag()), "NUMERO");
    EXPECT_EQ(text(found->GetPrompt()), "Number");
    EXPECT_EQ(text(found->GetValor()), "  1  ");
    EXPECT_TRUE(found->GetObjectId() == m_blockId);
    EXPECT_FALSE(found->GetObjectId() == definitionId);
    EXPECT_FALSE(found->GetInvisivel()) << "whatever the definition says";
}

TEST_F(AttributeSearch, TheFirstLiveDefinitionThatFitsIsTaken) {
    define(make<OdDbEntity>(new OdDbLine));
    OdSmartPtr<OdDbText> plain = make(new OdDbText);
    plain->setTextString(OdString("TAG"));
    define(plain);
    const OdDbObjectId erased = define(makeDefinition("TAG", "erased", ""));
    define(makeDefinition("RELACAO", "first", ""));
    define(makeDefinition("TAG", "second", ""));
    erased.openObject(OdDb::kForWrite)->erase();
    const auto found = find(m_block, ATT_TAG);
    ASSERT_NE(found, nullptr);
    EXPECT_EQ(text(found->GetPrompt()), "first");
    EXPECT_EQ(text(found->GetTag()), "RELACAO");
}

TEST_F(AttributeSearch, PrefixTestWorksOnDefinitions) {
    define(makeDefinition("CONTATO", "p", "v"));
    const auto found = find(m_block, list({"CON"}), "-");
    ASSERT_NE(found, nullptr);
    EXPECT_EQ(text(found->GetTag()), "CON");
}

TEST_F(AttributeSearch, NoBlockHasNoDefinition) {
    EXPECT_EQ(find(OdSmartPtr<OdDbBlockTableRecord>(), ATT_TAG), nullptr);
    EXPECT_TRUE(lines().empty());
}

TEST_F(AttributeSearch, AnIdentifierOfAReferenceIsSearchedWithoutPrompt) {
    define(makeDefinition("TAG", "Name", "default"));
    OdSmartPtr<OdDbBlockReference> reference = place({{"TAG", "M1"}});
    CEAtributo* out = nullptr;
    ASSERT_TRUE(CEAttributeHelper::findAtt(RZID(reference->objectId()), ATT_TAG, "", out));
    const std::unique_ptr<CEAtributo> found(out);
    EXPECT_EQ(text(found->GetValor()), "M1");
    EXPECT_EQ(text(found->GetPrompt()), "");
}

TEST_F(AttributeSearch, AnIdentifierOfABlockIsSearchedInItsDefinitions) {
    define(makeDefinition("TAG", "Name", "default"));
    CEAtributo* out = nullptr;
    ASSERT_TRUE(CEAttributeHelper::findAtt(RZID(m_blockId), ATT_TAG, "", out));
    const std::unique_ptr<CEAtributo> found(out);
    EXPECT_EQ(text(found->GetValor()), "default");
    EXPECT_EQ(text(found->GetPrompt()), "Name");
}

TEST_F(AttributeSearch, ShorterFormsTakeNoSuffix) {
    OdSmartPtr<OdDbBlockReference> reference = place({{"PIN1", "1"}, {"PIN", "0"}});
    CEAtributo* out = nullptr;
    ASSERT_TRUE(CEAttributeHelper::findAtt(RZID(reference->objectId()), RZString("pin"), out));
    const std::unique_ptr<CEAtributo> byName(out);
    EXPECT_EQ(text(byName->GetTag()), "pin");
    EXPECT_EQ(text(byName->GetValor()), "0");
    ASSERT_TRUE(CEAttributeHelper::findAtt(RZID(reference->objectId()), list({"X", "PIN1"}), out));
    const std::unique_ptr<CEAtributo> byList(out);
    EXPECT_EQ(text(byList->GetValor()), "1");
}

TEST_F(AttributeSearch, OtherErasedAndNullIdentifiersGiveNothingAndNoLine) {
    OdSmartPtr<OdDbBlockReference> reference = place({{"TAG", "M1"}});
    const RZID erased(reference->objectId());
    reference->erase();
    CEAtributo* out = nullptr;
    CEListaAtributos collected;
    for (const RZID& id : {RZID(), erased, RZID(m_database->getLayerTableId())}) {
        EXPECT_FALSE(CEAttributeHelper::findAtt(id, RZString("TAG"), out));
        EXPECT_FALSE(CEAttributeHelper::findAtt(id, ATT_TAG, out));
        EXPECT_FALSE(CEAttributeHelper::findAtt(id, ATT_TAG, "", out));
        EXPECT_FALSE(CEAttributeHelper::findAttByPrefix(id, list({"TAG"}), &collected));
    }
    EXPECT_EQ(out, nullptr);
    EXPECT_TRUE(collected.IsEmpty());
    EXPECT_TRUE(lines().empty());
}

TEST_F(AttributeSearch, CollectsWhatBeginsWithAPrefixInDrawingOrder) {
    define(makeDefinition("CONTA", "Contact", ""));
    OdSmartPtr<OdDbBlockReference> reference = place({{"ICON", "0"}, {"CONTA", " 1 "}, {"PINO", "2"}});
    OdSmartPtr<OdDbAttribute> hidden = append(reference, "con1", "3");
    hidden->setInvisible(true);
    append(reference, "CON", "erased")->erase();
    for (const bool byId : {false, true}) {
        CEListaAtributos collected;
        EXPECT_TRUE(
            byId ? CEAttributeHelper::findAttByPrefix(RZID(reference->objectId()), list({"CON"}), &collected)
                 : CEAttributeHelper::findAttByPrefix(reference, list({"CON"}), &collected));
        ASSERT_EQ(collected.GetSize(), 2);
        EXPECT_EQ(text(collected.GetAt(0)->GetTag()), "CONTA");
        EXPECT_EQ(text(collected.GetAt(0)->GetValor()), "1");
        EXPECT_EQ(text(collected.GetAt(0)->GetPrompt()), "");
        EXPECT_FALSE(collected.GetAt(0)->GetInvisivel());
        EXPECT_EQ(text(collected.GetAt(1)->GetTag()), "con1") << "as it stands in the drawing";
        EXPECT_TRUE(collected.GetAt(1)->GetObjectId() == hidden->objectId());
        EXPECT_TRUE(collected.GetAt(1)->GetInvisivel());
        collected.releaseAllAttributes();
    }
}

TEST_F(AttributeSearch, CollectsByAnyOfThePrefixes) {
    CEListaAtributos collected;
    EXPECT_TRUE(CEAttributeHelper::findAttByPrefix(place({{"PIN1", "1"}, {"X", "2"}, {"CON1", "3"}}),
                                                   list({"CON", "PIN"}), &collected));
    ASSERT_EQ(collected.GetSize(), 2);
    EXPECT_EQ(text(collected.GetAt(0)->GetTag()), "PIN1");
    EXPECT_EQ(text(collected.GetAt(1)->GetTag()), "CON1");
    collected.releaseAllAttributes();
}

TEST_F(AttributeSearch, CollectingIsTrueForAListThatHeldSomethingBefore) {
    OdSmartPtr<OdDbBlockReference> reference = place({{"TAG", "M1"}});
    CEListaAtributos collected;
    EXPECT_FALSE(CEAttributeHelper::findAttByPrefix(reference, list({"CON"}), &collected));
    collected.AdicionarAtributo(new CEAtributo(OdString("X"), OdString(), OdString(), OdDbObjectId(), false));
    EXPECT_TRUE(CEAttributeHelper::findAttByPrefix(reference, list({"CON"}), &collected));
    EXPECT_EQ(collected.GetSize(), 1);
    EXPECT_FALSE(CEAttributeHelper::findAttByPrefix(RZID(m_blockId), list({"CON"}), &collected))
        << "a block has no attributes to collect, whatever the list holds";
    EXPECT_FALSE(
        CEAttributeHelper::findAttByPrefix(OdSmartPtr<OdDbBlockReference>(), list({"CON"}), &collected));
    collected.releaseAllAttributes();
}

} // namespace
