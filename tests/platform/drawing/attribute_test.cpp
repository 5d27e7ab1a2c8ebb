// SPDX-License-Identifier: MIT
// Attributes of references, in a database and outside.
#include "drawing_support.h"

using namespace drawing_test;

namespace {

OdSmartPtr<OdDbAttribute> attribute(const std::string& tag, const std::string& text) {
    auto made = make<OdDbAttribute>();
    made->setTag(od(tag));
    made->setTextString(od(text));
    return made;
}

using Texts = std::vector<std::string>;

} // namespace

TEST(AttributeTest, HangsOnAReferenceOutsideADatabase) {
    const auto reference = make<OdDbBlockReference>();
    const auto empty = reference->attributeIterator();
    ASSERT_FALSE(empty.isNull()) << "a reference always has a walk";
    EXPECT_TRUE(empty->done());
    EXPECT_TRUE(reference->appendAttribute(attribute("A", "1")).isNull());
    reference->appendAttribute(attribute("B", "2"));
    EXPECT_EQ(attributesOf(reference), (Texts{"A=1", "B=2"}));
    const auto walk = reference->attributeIterator();
    EXPECT_TRUE(walk->objectId().isNull());
    EXPECT_FALSE(walk->entity().isNull());
}

TEST(AttributeTest, ComesIntoTheDatabaseWithItsReference) {
    const auto db = newDatabase();
    const auto reference = make<OdDbBlockReference>();
    const auto first = attribute("A", "1");
    first->setXData(chainOf("1001 APP|1000 x"));
    reference->appendAttribute(first);
    EXPECT_FALSE(first->isDBRO());
    append(*db.get(), reference);
    EXPECT_TRUE(first->isDBRO());
    EXPECT_EQ(first->ownerId(), reference->objectId());
    const OdDbObjectId second = reference->appendAttribute(attribute("B", "2"));
    EXPECT_FALSE(second.isNull());
    EXPECT_TRUE(open<OdDbAttribute>(second)->isDBRO());
    EXPECT_EQ(attributesOf(reference), (Texts{"A=1", "B=2"}));
    const auto walk = reference->attributeIterator();
    EXPECT_EQ(walk->objectId(), first->objectId());
    EXPECT_EQ(namesOf(db->getRegAppTableId()), Texts{"APP"});
    EXPECT_EQ(codeOf([&] { reference->appendAttribute(first); }), eAlreadyInDatabase);
}

TEST(AttributeTest, IsLeftWritableWhenAppended) {
    const auto db = newDatabase();
    const auto reference = make<OdDbBlockReference>();
    append(*db.get(), reference);
    const auto made = attribute("A", "1");
    reference->appendAttribute(made);
    EXPECT_TRUE(made->isWriteEnabled());
}

TEST(AttributeTest, IsWalkedWhileAttributesComeAndGo) {
    const auto db = newDatabase();
    for (const bool resident : {false, true}) {
        SCOPED_TRACE(resident);
        const auto reference = make<OdDbBlockReference>();
        if (resident) append(*db.get(), reference);
        for (const char* const tag : {"A", "B", "C", "D"}) reference->appendAttribute(attribute(tag, ""));
        Texts met;
        const auto walk = reference->attributeIterator();
        for (walk->start(); !walk->done(); walk->step()) {
            const OdSmartPtr<OdDbAttribute> at(walk->entity());
            met.push_back(utf8(at->tag()));
            if (met.size() % 2 == 0) {
                at->upgradeOpen();
                at->erase();
            }
            if (met.size() == 2) reference->appendAttribute(attribute("E", ""));
        }
        EXPECT_EQ(met, (Texts{"A", "B", "C", "D", "E"}));
        EXPECT_EQ(attributesOf(reference), (Texts{"A=", "C=", "E="}));
        std::size_t all = 0;
        for (walk->start(true, false); !walk->done(); walk->step(true, false)) ++all;
        EXPECT_EQ(all, 5u);
    }
}

TEST(AttributeTest, AppearsBehindThoseOfAFile) {
    dxf::Parts parts;
    parts.entities = "0 INSERT|5 100|330 1F|8 0|66 1|2 B|0 ATTRIB|5 101|8 0|2 A|1 1|0 SEQEND|5 102|8 0";
    parts.blockRecords = dxf::Parts::record("BLOCK_RECORD", "50", "1", "B");
    parts.blocks = dxf::Parts::block("B", "51", "50");
    const auto db = readGroups(parts.groups());
    const auto reference = byHandle<OdDbBlockReference>(*db.get(), "100", OdDb::kForWrite);
    reference->appendAttribute(attribute("B", "2"));
    EXPECT_EQ(attributesOf(reference), (Texts{"A=1", "B=2"}));
}

TEST(AttributeTest, HasNoWalkOnlyWhenATestWantsIt) {
    const auto reference = make<OdDbBlockReference>();
    reference->setWithoutIterator(true);
    EXPECT_TRUE(reference->attributeIterator().isNull());
    reference->setWithoutIterator(false);
    EXPECT_FALSE(reference->attributeIterator().isNull());
}

TEST(AttributeTest, StaysReachableBelowAnErasedReference) {
    const auto db = newDatabase();
    const auto reference = make<OdDbBlockReference>();
    append(*db.get(), reference);
    reference->appendAttribute(attribute("A", "1"));
    reference->erase();
    EXPECT_EQ(attributesOf(reference), Texts{"A=1"});
}

TEST(AttributeTest, GoesWithACopyOfItsReference) {
    const auto db = newDatabase();
    const auto reference = make<OdDbBlockReference>();
    reference->setBlockTableRecord(addBlock(*db.get(), "B"));
    reference->setPosition({1, 2, 3});
    append(*db.get(), reference);
    reference->appendAttribute(attribute("A", "1"));
    const auto erased = attribute("GONE", "");
    reference->appendAttribute(erased);
    erased->erase();
    const OdSmartPtr<OdDbBlockReference> copy(OdDbBlockReference::cast(reference->clone()),
                                              lm::drawing::kAttach);
    EXPECT_FALSE(copy->isDBRO());
    EXPECT_EQ(copy->position(), OdGePoint3d(1, 2, 3));
    EXPECT_EQ(copy->blockTableRecord(), reference->blockTableRecord());
    EXPECT_EQ(attributesOf(copy), Texts{"A=1"});
    const auto walk = copy->attributeIterator();
    OdSmartPtr<OdDbAttribute>(walk->entity())->setTextString(od("2"));
    EXPECT_EQ(attributesOf(reference), Texts{"A=1"});
    append(*db.get(), copy);
    EXPECT_EQ(open<OdDbBlockTableRecord>(copy->blockTableRecord())->getBlockReferenceIds().size(), 2u);
}

TEST(AttributeTest, KeepsItsOwnFields) {
    const auto made = attribute("TAG", "text");
    EXPECT_FALSE(made->isInvisible() || made->isConstant() || made->isMTextAttribute());
    made->setInvisible(true);
    EXPECT_TRUE(made->isInvisible());
    made->setInvisible(false);
    EXPECT_FALSE(made->isInvisible());
    made->setFieldLength(12);
    EXPECT_EQ(made->fieldLength(), 12);
    auto mtext = make<OdDbMText>();
    mtext->setContents(od("a\\Pb"));
    made->setMTextAttribute(mtext);
    mtext.release();
    EXPECT_TRUE(made->isMTextAttribute());
    EXPECT_EQ(utf8(made->getMTextAttribute()->contents()), "a\\Pb");
    const OdSmartPtr<OdDbAttribute> copy(OdDbAttribute::cast(made->clone()), lm::drawing::kAttach);
    EXPECT_NE(copy->getMTextAttribute().get(), made->getMTextAttribute().get());
    EXPECT_EQ(utf8(copy->getMTextAttribute()->contents()), "a\\Pb");
    made->setMTextAttribute({});
    EXPECT_FALSE(made->isMTextAttribute());
    EXPECT_TRUE(made->getMTextAttribute().isNull());
}

TEST(AttributeDefinitionTest, KeepsItsOwnFields) {
    const auto made = make<OdDbAttributeDefinition>();
    made->setTag(od("TAG"));
    made->setPrompt(od("Which?"));
    made->setTextString(od("default"));
    made->setConstant(true);
    EXPECT_TRUE(made->isConstant());
    EXPECT_FALSE(made->isInvisible());
    made->setInvisible(true);
    made->setConstant(false);
    EXPECT_FALSE(made->isConstant());
    EXPECT_TRUE(made->isInvisible());
    made->setFieldLength(3);
    made->setMTextAttributeDefinition(make<OdDbMText>());
    const OdSmartPtr<OdDbAttributeDefinition> copy(OdDbAttributeDefinition::cast(made->clone()),
                                                   lm::drawing::kAttach);
    EXPECT_EQ(utf8(copy->tag()), "TAG");
    EXPECT_EQ(utf8(copy->prompt()), "Which?");
    EXPECT_EQ(utf8(copy->textString()), "default");
    EXPECT_EQ(copy->fieldLength(), 3);
    EXPECT_TRUE(copy->isMTextAttributeDefinition());
    EXPECT_FALSE(copy->getMTextAttributeDefinition().isNull());
}
