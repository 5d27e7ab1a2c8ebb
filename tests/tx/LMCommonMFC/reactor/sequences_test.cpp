// SPDX-License-Identifier: MIT
// What a derived class hears of the deeds of CICad, event by event.
#include "follower.h"

namespace {

using namespace lm::tests;
using testing::ElementsAre;
using testing::IsEmpty;

using Sequences = Followed;

TEST_F(Sequences, OfAnInsertionEndWithTheReference) {
    block("NAF-01", {{"TAG", "", ""}, {"PIN", "", ""}});
    layer("P1");
    clear();
    const Reference made = m_cad.InserirBloco(missing(), "NAF-01", "P1", 0, 0, 0, 0);
    EXPECT_THAT(events(), ElementsAre("attAppended TAG", "entityAppended ATTRIB", "attAppended PIN",
                                      "entityAppended ATTRIB"))
        << "the caller still holds the reference";
    made->downgradeOpen();
    EXPECT_THAT(events(), ElementsAre("blockAppended NAF-01", "ctoAppended NAF-01", "entityAppended INSERT"));
}

TEST_F(Sequences, OfAReferenceOnALayoutAreThoseOfItsAttributes) {
    const OdDbObjectId contact = block("NAF-01");
    clear();
    place(contact, {{"TAG", ""}, {"PIN", ""}}, "0", m_db.getPaperSpaceId());
    EXPECT_THAT(events(), ElementsAre("attAppended TAG", "entityAppended ATTRIB", "attAppended PIN",
                                      "entityAppended ATTRIB", "entityAppended INSERT"));
}

TEST_F(Sequences, OfLayers) {
    m_cad.CriarLayer("P1", &m_db);
    EXPECT_THAT(events(), ElementsAre("layerAppended P1", "entityAppended LAYER"));
    m_cad.CriarLayer("P1", &m_db);
    m_cad.DescongelaLayer("P1", &m_db);
    EXPECT_THAT(events(), IsEmpty());
    m_cad.CongelaLayer("P1");
    events();
    m_cad.DescongelaLayer("P1", &m_db);
    EXPECT_THAT(events(), ElementsAre("layerForModify P1", "layerModified P1"));
    m_cad.DescongelaLayer("P1", &m_db);
    EXPECT_THAT(events(), IsEmpty());
}

TEST_F(Sequences, OfANewApplicationIdAreItsAppending) {
    const OdDbObjectId id = point();
    clear();
    m_cad.updateXData(read(id), "RZ_NEW", 1, "x");
    EXPECT_THAT(events(), ElementsAre("entityAppended APPID"));
    m_cad.updateXData(read(id), "RZ_NEW", 1, "x");
    EXPECT_THAT(events(), IsEmpty());
}

TEST_F(Sequences, OfAValueAreThoseOfItsAttributeAlone) {
    const OdDbObjectId id = place(block("NAF-01"), {{"TAG", "1"}})->objectId();
    clear();
    m_cad.AtualizarAtributo(RZID(id), "TAG", "2");
    EXPECT_THAT(events(), ElementsAre("attForModify TAG", "attModified TAG"));
    m_cad.AtualizarAtributo(RZID(id), "TAG", "2");
    EXPECT_THAT(events(), IsEmpty());
}

TEST_F(Sequences, OfErasingAndItsUndoHaveNothingOfTheAttributes) {
    const OdDbObjectId id = place(block("INS-1"), {{"TAG", "1"}})->objectId();
    m_db.startUndoRecord();
    clear();
    erase(id);
    EXPECT_THAT(events(), ElementsAre("blockErased INS-1", "insErased INS-1"));
    m_db.undo();
    EXPECT_THAT(events(), ElementsAre("blockAppended INS-1", "insAppended INS-1", "entityAppended INSERT"));
}

/// Who hears of a copy finds it where it will stay, and hears of it once.
TEST_F(Sequences, OfACopiedReferenceShowItInItsPlace) {
    const OdDbObjectId contact = block("NAF-01", {{"TAG", "", ""}, {"PIN", "", ""}});
    const Reference source = place(contact, {{"TAG", "K1"}, {"PIN", "2"}});
    source->setPosition({1, 2, 0});
    OdSmartPtr<OdDbAttribute>(attributeOf(source, 0)->objectId().openObject(OdDb::kForWrite))
        ->setPosition({3, 4, 0});
    source->downgradeOpen();
    const OdDbObjectId id = source->objectId();
    clear();
    std::string found;
    m_follower.once("ctoAppended NAF-01", [&] {
        const auto space = OdSmartPtr<OdDbBlockTableRecord>(m_db.getModelSpaceId().openObject());
        OdSmartPtr<OdDbEntity> last;
        for (const auto walk = space->newIterator(); !walk->done(); walk->step()) last = walk->entity();
        const Reference copy(last);
        found = told(copy->position()) + " " + told(attributeOf(copy, 0)->position()) + " " +
                plain(m_follower.getAtt("PIN", copy));
    });
    m_document->executeCommand(OdString("_COPY"),
                               {lm::host::Answer(id), lm::host::Answer(""), lm::host::Answer("0,0"),
                                lm::host::Answer("100,200"), lm::host::Answer("")});
    EXPECT_EQ(found, "101,202,0 103,204,0 2");
    EXPECT_THAT(events(),
                ElementsAre("start _COPY", "attAppended TAG", "entityAppended ATTRIB", "attAppended PIN",
                            "entityAppended ATTRIB", "blockAppended NAF-01", "ctoAppended NAF-01",
                            "entityAppended INSERT", "begin", "end", "ended _COPY", "begin", "end"));
}

TEST_F(Sequences, OfAnErasedDefinitionAreNone) {
    const OdDbObjectId motor = block("MOTOR");
    append(motor, make(new OdDbPolyline));
    clear();
    erase(motor);
    EXPECT_THAT(events(), IsEmpty());
    EXPECT_TRUE(isUserErased(motor));
}

TEST_F(Sequences, OfALoadedSymbol) {
    const Source source = symbol({{"TAG", "", ""}});
    append(source->getModelSpaceId(), make(new OdDbPolyline));
    source->setINSBASE({1, 2, 0});
    ASSERT_TRUE(m_cad.carregaBTR("MOTOR", file("motor.dxf", *source)).isValid());
    EXPECT_THAT(events(),
                ElementsAre("entityAppended LINE", "entityAppended ATTDEF", "plineAppended LWPOLYLINE",
                            "entityAppended LWPOLYLINE", "blockDefined MOTOR", "entityAppended BLOCK_RECORD",
                            "plineForModify LWPOLYLINE", "plineModified LWPOLYLINE", "blockDefined MOTOR"))
        << "the clones, the block, and its shift to the origin";
}

TEST_F(Sequences, OfARedefinedBlock) {
    const OdDbObjectId motor = block("NAF-01", {{"TAG", "", ""}});
    append(motor, make(new OdDbPolyline));
    const OdDbObjectId id = place(motor, {{"TAG", "K1"}})->objectId();
    const Source source = symbol({{"TAG", "", ""}, {"PIN", "", ""}});
    append(source->getModelSpaceId(), make(new OdDbPolyline));
    clear();
    ASSERT_TRUE(m_cad.RedefinirBloco(file("motor.dxf", *source), "NAF-01"));
    Texts told = events();
    for (std::string& line : told) // the temporary block has a number in its name
        if (line.starts_with("blockDefined RZ_TMP_")) line = "blockDefined temporary";
    const Texts expected{
        // the temporary block
        "entityAppended LINE", "entityAppended ATTDEF", "entityAppended ATTDEF", "plineAppended LWPOLYLINE",
        "entityAppended LWPOLYLINE", "blockDefined temporary", "entityAppended BLOCK_RECORD",
        "plineForModify LWPOLYLINE", "plineModified LWPOLYLINE", "blockDefined temporary",
        // the old entities, their successors, and the temporary ones
        "plineErased LWPOLYLINE", "entityAppended LINE", "entityAppended ATTDEF", "entityAppended ATTDEF",
        "plineAppended LWPOLYLINE", "entityAppended LWPOLYLINE", "plineErased LWPOLYLINE",
        "blockDefined NAF-01",
        // the reference
        "attErased TAG", "attAppended TAG", "entityAppended ATTRIB", "attAppended PIN",
        "entityAppended ATTRIB", "attForModify TAG", "attModified TAG", "blockForModify NAF-01",
        "ctoForModify NAF-01", "blockModified NAF-01", "ctoModified NAF-01"};
    EXPECT_EQ(told, expected);
    EXPECT_TRUE(isAlive(id));
}

} // namespace
