// SPDX-License-Identifier: MIT
// What the searches report and raise again, and what they let pass.
#include "vocabulary/ceattributehelper.h"

#include "attribute_search.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace {

using lm::tests::AttributeSearch;
using lm::tests::list;
using lm::tests::make;

/// Elements that raise when their class is asked for, while the test is on.
bool raising = false;

template<class Base>
class RaisesOdError : public Base {
public:
    OdRxClass* isA() const override {
        if (raising) throw OdError(OdString("broken element"));
        return Base::isA();
    }
};

template<class Base>
class RaisesStandardError : public Base {
public:
    OdRxClass* isA() const override {
        if (raising) throw std::runtime_error("broken otherwise");
        return Base::isA();
    }
};

class AttributeSearchErrors : public AttributeSearch {
protected:
    void TearDown() override {
        raising = false;
        AttributeSearch::TearDown();
    }

    template<class Element>
    static OdSmartPtr<OdDbBlockReference> referenceWith() {
        OdSmartPtr<OdDbBlockReference> reference = make(new OdDbBlockReference);
        append(reference, "OTHER", "0");
        reference->appendAttribute(make<OdDbAttribute>(new Element));
        return reference;
    }

    const std::string m_line = "CEAttributeHelper::findAtt : ";
    CEAtributo* m_out = nullptr;
};

TEST_F(AttributeSearchErrors, InAReferenceAreReportedAndRaisedAgain) {
    OdSmartPtr<OdDbBlockReference> reference = referenceWith<RaisesOdError<OdDbAttribute>>();
    raising = true;
    try {
        CEAttributeHelper::findAtt(reference, ATT_TAG, "", m_out, false);
        FAIL() << "nothing was raised";
    } catch (const OdError& error) {
        EXPECT_EQ(lm::drawing::utf8(error.description()), "broken element");
    }
    EXPECT_EQ(m_out, nullptr);
    EXPECT_EQ(lines(), std::vector<std::string>{m_line + "broken element"});
}

TEST_F(AttributeSearchErrors, CarryTheActiveDocumentIntoTheLine) {
    OdSmartPtr<OdDbBlockReference> reference = referenceWith<RaisesOdError<OdDbAttribute>>();
    CHostDocument* document = lm::host::documentManager().newDocument();
    lm::host::setHistoryTimestamp(CHostString("NOW"));
    raising = true;
    EXPECT_THROW(CEAttributeHelper::findAtt(reference, ATT_TAG, "", m_out, false), OdError);
    raising = false;
    EXPECT_EQ(lines(), std::vector<std::string>{"[" + std::to_string(document->number()) + "] {NOW} " +
                                                m_line + "broken element"});
    lm::host::setHistoryTimestamp(CHostString());
    lm::host::documentManager().closeDocument(document);
}

TEST_F(AttributeSearchErrors, AmongDefinitionsAreReportedAndRaisedAgain) {
    define(make<OdDbEntity>(new RaisesOdError<OdDbAttributeDefinition>));
    raising = true;
    EXPECT_THROW(CEAttributeHelper::findAtt(m_block, ATT_TAG, "", m_out), OdError);
    EXPECT_THROW(CEAttributeHelper::findAtt(RZID(m_blockId), ATT_TAG, m_out), OdError);
    EXPECT_EQ(lines(), std::vector<std::string>(2, m_line + "broken element"));
    EXPECT_EQ(m_out, nullptr);
}

TEST_F(AttributeSearchErrors, OfThePromptAreReportedByBothSearches) {
    define(make<OdDbEntity>(new RaisesOdError<OdDbAttributeDefinition>));
    OdSmartPtr<OdDbBlockReference> reference = place({{"TAG", "M1"}});
    const std::size_t blocks = lm::drawing::liveBlocks();
    raising = true;
    EXPECT_THROW(CEAttributeHelper::findAtt(reference, ATT_TAG, "", m_out, true), OdError);
    EXPECT_EQ(lines(), std::vector<std::string>(2, m_line + "broken element"));
    EXPECT_EQ(m_out, nullptr);
    hostSession()->clearLines(); // the lines that the session remembers
    EXPECT_EQ(lm::drawing::liveBlocks(), blocks) << "no half-made record is left";
}

/// A block that passes for another record while the test is on, as a damaged drawing may hold.
class NoBlock : public OdDbBlockTableRecord {
public:
    OdRxClass* isA() const override {
        return raising ? OdDbLayerTableRecord::desc() : OdDbBlockTableRecord::isA();
    }
};

TEST_F(AttributeSearchErrors, RaiseWhenTheReferencesBlockIsNoBlock) {
    OdSmartPtr<OdDbBlockTableRecord> record = make<OdDbBlockTableRecord>(new NoBlock);
    record->setName(OdString("NOBLOCK"));
    OdSmartPtr<OdDbSymbolTable> table(m_database->getBlockTableId().openObject(OdDb::kForWrite));
    const OdDbObjectId id = table->add(record);
    OdSmartPtr<OdDbBlockReference> reference = make(new OdDbBlockReference);
    append(reference, "TAG", "M1");
    reference->setBlockTableRecord(id);
    raising = true;
    EXPECT_NE(find(reference, ATT_TAG), nullptr) << "the block counts for the prompt only";
    EXPECT_THROW(CEAttributeHelper::findAtt(reference, ATT_TAG, "", m_out, true), OdError_NotThatKindOfClass);
    raising = false;
    EXPECT_EQ(m_out, nullptr);
    ASSERT_EQ(lines().size(), 1u);
    EXPECT_EQ(lines()[0].rfind(m_line, 0), 0u);
}

TEST_F(AttributeSearchErrors, OfANullReferenceAreReported) {
    EXPECT_THROW(CEAttributeHelper::findAtt(OdSmartPtr<OdDbBlockReference>(), ATT_TAG, "", m_out, false),
                 OdError);
    EXPECT_EQ(lines().size(), 1u);
}

TEST_F(AttributeSearchErrors, OfOtherKindsPassUnreported) {
    OdSmartPtr<OdDbBlockReference> reference = referenceWith<RaisesStandardError<OdDbAttribute>>();
    define(make<OdDbEntity>(new RaisesStandardError<OdDbAttributeDefinition>));
    raising = true;
    EXPECT_THROW(CEAttributeHelper::findAtt(reference, ATT_TAG, "", m_out, false), std::runtime_error);
    EXPECT_THROW(CEAttributeHelper::findAtt(m_block, ATT_TAG, "", m_out), std::runtime_error);
    EXPECT_TRUE(lines().empty());
}

TEST_F(AttributeSearchErrors, InCollectingPassUnreported) {
    OdSmartPtr<OdDbBlockReference> reference = referenceWith<RaisesOdError<OdDbAttribute>>();
    CEListaAtributos collected;
    raising = true;
    EXPECT_THROW(CEAttributeHelper::findAttByPrefix(reference, list({"TAG"}), &collected), OdError);
    EXPECT_TRUE(lines().empty());
    EXPECT_TRUE(collected.IsEmpty());
}

TEST_F(AttributeSearchErrors, LetGoOfEverythingThatWasOpen) {
    OdSmartPtr<OdDbAttribute> element = make<OdDbAttribute>(new RaisesOdError<OdDbAttribute>);
    OdSmartPtr<OdDbBlockReference> reference = make(new OdDbBlockReference);
    reference->appendAttribute(element);
    const long elementHolds = element->numRefs();
    const long referenceHolds = reference->numRefs();
    const std::size_t blocks = lm::drawing::liveBlocks();
    raising = true;
    EXPECT_THROW(CEAttributeHelper::findAtt(reference, ATT_TAG, "", m_out, true), OdError);
    raising = false;
    hostSession()->clearLines(); // the line that the session remembers
    EXPECT_EQ(element->numRefs(), elementHolds);
    EXPECT_EQ(reference->numRefs(), referenceHolds);
    EXPECT_EQ(lm::drawing::liveBlocks(), blocks);
}

} // namespace
