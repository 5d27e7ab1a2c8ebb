// SPDX-License-Identifier: MIT
#include "stored_data.h"

#include "drawing/seams.h"

#include <gmock/gmock.h>

namespace {

using namespace lm::tests;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

using Layer = OdSmartPtr<OdDbLayerTableRecord>;

class Layers : public StoredData {
protected:
    static Layer open(OdDbObjectId id, OdDb::OpenMode mode = OdDb::kForRead) {
        return Layer(id.openObject(mode, true));
    }
    OdDbObjectId frozenLayer(const char* name) {
        const OdDbObjectId id = layer(name);
        open(id, OdDb::kForWrite)->setIsFrozen(true);
        return id;
    }
    OdDbObjectId idOf(const char* name) {
        return OdSmartPtr<OdDbSymbolTable>(m_db.getLayerTableId().openObject())->getAt(od(name));
    }
    bool isFrozen(const char* name) { return open(idOf(name))->isFrozen(); }
    /// A point on a layer, in model space or another block.
    OdDbObjectId pointOn(OdDbObjectId layer, OdDbObjectId owner = {}) {
        OdSmartPtr<OdDbPoint> made = make(new OdDbPoint);
        const OdDbObjectId id = append(owner.isNull() ? m_db.getModelSpaceId() : owner, made);
        made->setLayer(layer);
        return id;
    }
    void makeCurrent(OdDbObjectId layer) {
        const OdSmartPtr<OdResBuf> value = OdResBuf::newRb(330);
        value->setObjectId(layer);
        ASSERT_TRUE(m_db.setSysVar("CLAYER", value));
    }
    OdSmartPtr<OdDbObject> table() { return read(m_db.getLayerTableId()); }
};

// --- making ---

TEST_F(Layers, AreMadeOnce) {
    EXPECT_TRUE(m_cad.CriarLayer("P1", &m_db));
    EXPECT_FALSE(m_cad.CriarLayer("P1", &m_db));
    EXPECT_FALSE(m_cad.CriarLayer("0", &m_db));
    EXPECT_TRUE(m_cad.CriarLayer("p1", &m_db)) << "names are exact";
    EXPECT_TRUE(m_cad.CriarLayer(rz("PÁGINA Ω"), &m_db));
    EXPECT_THAT(told(m_cad.GetLayers(&m_db)), ElementsAre("0", "P1", "p1", "PÁGINA Ω"));
}

TEST_F(Layers, AreMadeWithTheDefaultsOfARecord) {
    const OdSmartPtr<OdDbLayerTableRecord> fresh = make(new OdDbLayerTableRecord);
    ASSERT_TRUE(m_cad.CriarLayer("P1", &m_db));
    const Layer made = open(idOf("P1"));
    EXPECT_FALSE(made->isFrozen() || made->isLocked() || made->isOff());
    EXPECT_EQ(made->color().colorIndex(), fresh->color().colorIndex());
}

TEST_F(Layers, WithoutANameAreNotMadeAndOpenNothing) {
    const OdSmartPtr<OdDbObject> held = table();
    EXPECT_FALSE(m_cad.CriarLayer("", &m_db));
    EXPECT_FALSE(held->isWriteEnabled());
    EXPECT_FALSE(m_cad.CriarLayer("0", &m_db));
    EXPECT_TRUE(held->isWriteEnabled()) << "with a name the table is opened for write in any case";
}

TEST_F(Layers, AreMadeAgainAfterTheyWereErased) {
    erase(layer("P1"));
    EXPECT_TRUE(m_cad.CriarLayer("P1", &m_db));
    EXPECT_THAT(told(m_cad.GetLayers(&m_db)), ElementsAre("0", "P1"));
}

TEST_F(Layers, NeedTheirClassAndAskForItBeforeTheName) {
    const lm::test::LogCapture log;
    OdDbLayerTableRecord::desc()->setLoaded(false);
    for (const char* name : {"P1", "0"}) {
        try {
            m_cad.CriarLayer(name, &m_db);
            ADD_FAILURE() << name;
        } catch (const OdError& error) {
            EXPECT_EQ(plain(CHostString(error.description())), "OdDbOdDbLayerTableRecordis not loaded");
        }
    }
    EXPECT_FALSE(m_cad.CriarLayer("", &m_db));
    OdDbLayerTableRecord::desc()->setLoaded(true);
    EXPECT_THAT(log.lines(), IsEmpty());
    EXPECT_THAT(told(m_cad.GetLayers(&m_db)), ElementsAre("0"));
}

// --- asking and erasing ---

TEST_F(Layers, ExistUnderTheirExactName) {
    const OdDbObjectId page = layer("P1");
    EXPECT_TRUE(m_cad.ExisteLayer("P1", &m_db));
    EXPECT_TRUE(m_cad.ExisteLayer("0", &m_db));
    for (const char* name : {"p1", "P*", "P", "", "P1 "})
        EXPECT_FALSE(m_cad.ExisteLayer(name, &m_db)) << name;
    erase(page);
    EXPECT_FALSE(m_cad.ExisteLayer("P1", &m_db));
}

TEST_F(Layers, AreOpenedForWriteToSeeWhetherTheyExist) {
    const Layer page = open(layer("P1"));
    const OdSmartPtr<OdDbObject> held = table();
    EXPECT_TRUE(m_cad.ExisteLayer("P1", &m_db));
    EXPECT_TRUE(page->isWriteEnabled());
    EXPECT_FALSE(held->isWriteEnabled());
}

TEST_F(Layers, ThatRefuseToBeWrittenDontExistForThoseWhoWrite) {
    const OdDbObjectId page = layer("P1");
    lm::drawing::refuseWriting(page);
    EXPECT_FALSE(m_cad.ExisteLayer("P1", &m_db));
    EXPECT_FALSE(m_cad.CongelaLayer("P1"));
    EXPECT_FALSE(m_cad.ApagarLayer("P1", &m_db));
    EXPECT_FALSE(m_cad.RenomearLayer("P1", "P2"));
    EXPECT_EQ(m_cad.DescongelaLayer("P1", &m_db), 0) << "it is only read, and thawed already";
    lm::drawing::refuseWriting(OdDbObjectId::kNull);
    EXPECT_TRUE(m_cad.ExisteLayer("P1", &m_db));
    EXPECT_FALSE(page.isErased());
}

TEST_F(Layers, LeaveTheirTableAloneWhenTheyGoOrGetANewName) {
    layer("P1");
    layer("P2");
    const OdSmartPtr<OdDbObject> held = table();
    EXPECT_TRUE(m_cad.RenomearLayer("P1", "P3"));
    EXPECT_TRUE(m_cad.ApagarLayer("P2", &m_db));
    EXPECT_FALSE(held->isWriteEnabled());
}

TEST_F(Layers, AreErasedUnlessTheDrawingNeedsThem) {
    const OdDbObjectId page = layer("P1"), used = layer("P2"), current = layer("P3"), inBlock = layer("P4");
    pointOn(used);
    pointOn(inBlock, block("B"));
    makeCurrent(current);
    EXPECT_TRUE(m_cad.ApagarLayer("P1", &m_db));
    EXPECT_TRUE(page.isErased());
    EXPECT_FALSE(m_cad.ApagarLayer("P1", &m_db)) << "it is gone";
    for (const char* name : {"P2", "P3", "P4", "0", "NONE", "p2", ""})
        EXPECT_FALSE(m_cad.ApagarLayer(name, &m_db)) << name;
    EXPECT_THAT(told(m_cad.GetLayers(&m_db)), ElementsAre("0", "P2", "P3", "P4"));
}

TEST_F(Layers, OfADrawingWithoutATableCountAsErased) {
    CHostDatabase bare(CHostDatabase::kNothing);
    EXPECT_TRUE(m_cad.ApagarLayer("P1", &bare));
    EXPECT_TRUE(m_cad.ApagarLayer("P1", nullptr));
}

TEST_F(Layers, LoseTheirEntitiesInModelSpaceAlone) {
    const OdDbObjectId page = layer("P1"), other = layer("p1"), motor = block("MOTOR");
    const OdDbObjectId first = pointOn(page), kept = pointOn(other),
                       paper = pointOn(page, m_db.getPaperSpaceId()), inBlock = pointOn(page, motor);
    const Reference reference = place(motor, {{"TAG", "M1"}}, "P1");
    const OdDbObjectId attribute = attributeOf(reference, 0)->objectId();
    const OdDbObjectId last = pointOn(page);
    EXPECT_EQ(m_cad.ApagarEntidadesLayer("P1"), 0);
    for (const OdDbObjectId& id : {first, reference->objectId(), last}) EXPECT_TRUE(id.isErased());
    for (const OdDbObjectId& id : {kept, paper, inBlock, attribute}) EXPECT_FALSE(id.isErased());
    EXPECT_EQ(m_cad.ApagarEntidadesLayer("NONE"), 0);
    EXPECT_FALSE(kept.isErased());
}

TEST_F(Layers, HaveAllOfModelSpaceOpenedForWriteToLoseTheirEntities) {
    const OdDbObjectId goneId = pointOn(layer("P2"));
    erase(goneId);
    const OdSmartPtr<OdDbObject> kept = read(pointOn(layer("P1"))),
                                 gone = goneId.openObject(OdDb::kForRead, true);
    const OdSmartPtr<OdDbObject> space = read(m_db.getModelSpaceId());
    ASSERT_FALSE(space->isWriteEnabled());
    EXPECT_EQ(m_cad.ApagarEntidadesLayer("NONE"), 0);
    EXPECT_TRUE(space->isWriteEnabled());
    EXPECT_TRUE(kept->isWriteEnabled());
    EXPECT_FALSE(gone->isWriteEnabled()) << "erased ones are passed over";
}

// --- freezing and the states that are cleared ---

TEST_F(Layers, AreFrozenByName) {
    layer("P1");
    EXPECT_TRUE(m_cad.CongelaLayer("P1"));
    EXPECT_TRUE(isFrozen("P1"));
    EXPECT_TRUE(m_cad.CongelaLayer("P1"));
    EXPECT_TRUE(m_cad.CongelaLayer("0")) << "no layer is spared";
    EXPECT_TRUE(isFrozen("0"));
    for (const char* name : {"p1", "NONE", ""}) EXPECT_FALSE(m_cad.CongelaLayer(name)) << name;
}

TEST_F(Layers, AreAllFrozenButZero) {
    const OdDbObjectId current = layer("P1"), frozen = frozenLayer("P2"), gone = layer("P3");
    makeCurrent(current);
    erase(gone);
    EXPECT_EQ(m_cad.CongelaTodasLayers(), 0);
    EXPECT_TRUE(isFrozen("P1")) << "the current one isn't spared";
    EXPECT_TRUE(isFrozen("P2"));
    EXPECT_FALSE(isFrozen("0"));
    EXPECT_FALSE(open(gone)->isFrozen());
    m_cad.CongelaLayer("0");
    EXPECT_EQ(m_cad.CongelaTodasLayers(), 0);
    EXPECT_TRUE(isFrozen("0")) << "left as it was, frozen too";
    EXPECT_TRUE(open(frozen)->isFrozen());
}

TEST_F(Layers, AreOpenedForWriteWhereFreezingChangesThem) {
    const Layer thawed = open(layer("P1")), frozen = open(frozenLayer("P2")),
                zero = open(m_db.getLayerZeroId());
    const OdSmartPtr<OdDbObject> held = table();
    m_cad.CongelaTodasLayers();
    EXPECT_TRUE(thawed->isWriteEnabled());
    EXPECT_FALSE(frozen->isWriteEnabled());
    EXPECT_FALSE(zero->isWriteEnabled());
    EXPECT_FALSE(held->isWriteEnabled());
    m_cad.CongelaLayer("P2");
    EXPECT_TRUE(frozen->isWriteEnabled()) << "by name the state isn't asked first";
}

/// One of the three members that clear a state.
struct Clearing {
    const char* what;
    int (CICad::*clear)(RZString, OdDbDatabase*);
    bool (OdDbLayerTableRecord::*isSet)() const;
    void (OdDbLayerTableRecord::*set)(bool);
};
const Clearing kClearing[] = {
    {"thaw", &CICad::DescongelaLayer, &OdDbLayerTableRecord::isFrozen, &OdDbLayerTableRecord::setIsFrozen},
    {"unlock", &CICad::HabilitaLayer, &OdDbLayerTableRecord::isLocked, &OdDbLayerTableRecord::setIsLocked},
    {"switch on", &CICad::LayerOn, &OdDbLayerTableRecord::isOff, &OdDbLayerTableRecord::setIsOff},
};

TEST_F(Layers, AreClearedOfOneStateAndKeepTheOthers) {
    const OdDbObjectId page = layer("P1");
    for (const Clearing& each : kClearing) {
        {
            const Layer record = open(page, OdDb::kForWrite);
            for (const Clearing& state : kClearing) (record.get()->*state.set)(true);
        }
        EXPECT_EQ((m_cad.*each.clear)("P1", &m_db), 0) << each.what;
        for (const Clearing& state : kClearing)
            EXPECT_EQ((open(page).get()->*state.isSet)(), &state != &each) << each.what << ", " << state.what;
        EXPECT_EQ((m_cad.*each.clear)("P1", &m_db), 0) << each.what << " of a clear one";
    }
}

TEST_F(Layers, ThatAreMissingHaveNoState) {
    CHostDatabase bare(CHostDatabase::kNothing);
    erase(frozenLayer("GONE"));
    frozenLayer("P1");
    for (const Clearing& each : kClearing) {
        for (const char* name : {"NONE", "p1", "", "GONE"})
            EXPECT_EQ((m_cad.*each.clear)(name, &m_db), 2) << each.what << " " << name;
        EXPECT_EQ((m_cad.*each.clear)("P1", &bare), 2) << each.what;
        EXPECT_EQ((m_cad.*each.clear)("P1", nullptr), 2) << each.what;
    }
}

TEST_F(Layers, AreOpenedForWriteOnlyWhereAStateIsSet) {
    const Layer page = open(layer("P1"));
    const OdSmartPtr<OdDbObject> held = table();
    for (const Clearing& each : kClearing) {
        page->downgradeOpen();
        (m_cad.*each.clear)("P1", &m_db);
        EXPECT_FALSE(page->isWriteEnabled()) << each.what;
        page->upgradeOpen();
        (page.get()->*each.set)(true);
        page->downgradeOpen();
        (m_cad.*each.clear)("P1", &m_db);
        EXPECT_TRUE(page->isWriteEnabled()) << each.what;
    }
    EXPECT_FALSE(held->isWriteEnabled());
}

// --- names ---

TEST_F(Layers, AreListedInTableOrder) {
    for (const char* name : {"Z", "A", "GONE", "M"}) layer(name);
    erase(idOf("GONE"));
    EXPECT_THAT(told(m_cad.GetLayers(&m_db)), ElementsAre("0", "Z", "A", "M"));
    CHostDatabase other, bare(CHostDatabase::kNothing);
    EXPECT_THAT(told(m_cad.GetLayers(&other)), ElementsAre("0"));
    EXPECT_THAT(told(m_cad.GetLayers(&bare)), IsEmpty());
    EXPECT_THAT(told(m_cad.GetLayers(nullptr)), IsEmpty());
}

TEST_F(Layers, AreOpenedForReadingToBeListed) {
    const Layer page = open(layer("P1"));
    const OdSmartPtr<OdDbObject> held = table();
    m_cad.GetLayers(&m_db);
    EXPECT_FALSE(page->isWriteEnabled());
    EXPECT_FALSE(held->isWriteEnabled());
}

TEST_F(Layers, AreRenamedWithTheirEntities) {
    const OdDbObjectId page = layer("P1");
    const OdDbObjectId entity = pointOn(page);
    EXPECT_TRUE(m_cad.RenomearLayer("P1", rz("PÁGINA Ω")));
    EXPECT_THAT(told(m_cad.GetLayers(&m_db)), ElementsAre("0", "PÁGINA Ω"));
    EXPECT_EQ(plain(CHostString(OdSmartPtr<OdDbEntity>(entity.openObject())->layer())), "PÁGINA Ω");
    EXPECT_TRUE(m_cad.RenomearLayer(rz("PÁGINA Ω"), rz("página ω"))) << "case counts";
    EXPECT_FALSE(m_cad.ExisteLayer(rz("PÁGINA Ω"), &m_db));
    EXPECT_EQ(idOf("página ω"), page);
}

TEST_F(Layers, AreNotRenamedToANameThatExists) {
    const Layer a = open(layer("A")), b = open(layer("B"));
    EXPECT_FALSE(m_cad.RenomearLayer("A", "B"));
    EXPECT_TRUE(a->isWriteEnabled()) << "the old one is opened for write, come what may";
    EXPECT_FALSE(b->isWriteEnabled()) << "the new one is only looked at";
    EXPECT_FALSE(m_cad.RenomearLayer("A", "A"));
    EXPECT_FALSE(m_cad.RenomearLayer("A", "0"));
    EXPECT_FALSE(m_cad.RenomearLayer("NONE", "C"));
    EXPECT_FALSE(m_cad.RenomearLayer("a", "C"));
    EXPECT_THAT(told(m_cad.GetLayers(&m_db)), ElementsAre("0", "A", "B"));
}

TEST_F(Layers, AreNotRenamedAgainstTheRulesOfTheTable) {
    const lm::test::LogCapture log;
    layer("A");
    EXPECT_THROW(m_cad.RenomearLayer("0", "ZERO"), OdError);
    EXPECT_THROW(m_cad.RenomearLayer("A", ""), OdError);
    EXPECT_EQ(log.lines().size(), 2u);
    EXPECT_THAT(told(m_cad.GetLayers(&m_db)), ElementsAre("0", "A"));
}

// --- the current layer ---

TEST_F(Layers, OneIsCurrent) {
    EXPECT_EQ(plain(m_cad.GetLayerCorrente(&m_db)), "0");
    makeCurrent(layer(("PÁGINA Ω")));
    EXPECT_EQ(plain(m_cad.GetLayerCorrente(&m_db)), "PÁGINA Ω");
    m_db.setCurrentLayerAsText(true);
    EXPECT_EQ(plain(m_cad.GetLayerCorrente(&m_db)), "PÁGINA Ω") << "told as a text";
    m_db.setCurrentLayerAsText(false);
    const Layer held = open(idOf("PÁGINA Ω"));
    m_cad.GetLayerCorrente(&m_db);
    EXPECT_FALSE(held->isWriteEnabled());
    CHostDatabase bare(CHostDatabase::kNothing);
    EXPECT_EQ(plain(m_cad.GetLayerCorrente(&bare)), "");
    EXPECT_EQ(plain(m_cad.GetLayerCorrente(nullptr)), "");
}

TEST_F(Layers, ThatAreGoneLeaveNoNameAsTheCurrentOne) {
    const Layer page = open(layer("P1"));
    makeCurrent(page->objectId());
    page->upgradeOpen();
    page->OdDbObject::erase(); // past the refusal of layers
    EXPECT_EQ(plain(m_cad.GetLayerCorrente(&m_db)), "");
}

TEST_F(Layers, AreThawedEvenWhereTheGivenDrawingLacksThem) {
    CHostDatabase other;
    frozenLayer("P1");
    EXPECT_EQ(plain(m_cad.SetLayerCorrente("P1", &other)), "0");
    EXPECT_FALSE(isFrozen("P1"));
}

TEST_F(Layers, AreMadeCurrentByName) {
    layer("P1");
    EXPECT_EQ(plain(m_cad.SetLayerCorrente("P1", &m_db)), "P1");
    EXPECT_EQ(m_db.getCLAYER(), idOf("P1"));
    for (const char* name : {"NONE", "p1", ""})
        EXPECT_EQ(plain(m_cad.SetLayerCorrente(name, &m_db)), "P1")
            << name << " isn't there: the old one stays";
    EXPECT_EQ(plain(m_cad.SetLayerCorrente("0", &m_db)), "0");
    m_db.setCurrentLayerAsText(true);
    EXPECT_EQ(plain(m_cad.SetLayerCorrente("P1", &m_db)), "P1");
    m_db.setCurrentLayerAsText(false);
}

TEST_F(Layers, AreThawedBeforeTheyAreMadeCurrent) {
    frozenLayer("P1");
    frozenLayer("P2");
    EXPECT_EQ(plain(m_cad.SetLayerCorrente("P1", &m_db)), "P1");
    EXPECT_FALSE(isFrozen("P1"));
    EXPECT_TRUE(isFrozen("P2"));
    const OdSmartPtr<OdDbObject> held = table();
    const Layer page = open(idOf("P1"));
    m_cad.SetLayerCorrente("P1", &m_db);
    EXPECT_FALSE(page->isWriteEnabled()) << "a thawed one isn't opened for write";
    EXPECT_FALSE(held->isWriteEnabled());
}

TEST_F(Layers, AreThawedInTheCurrentDatabaseAndMadeCurrentInTheGivenOne) {
    CHostDatabase other;
    {
        OdSmartPtr<OdDbSymbolTable> table(other.getLayerTableId().openObject(OdDb::kForWrite));
        const Layer page = make(new OdDbLayerTableRecord);
        page->setName("P1");
        page->setIsFrozen(true);
        table->add(page);
    }
    frozenLayer("P1");
    EXPECT_EQ(plain(m_cad.SetLayerCorrente("P1", &other)), "P1");
    EXPECT_FALSE(isFrozen("P1"));
    EXPECT_TRUE(Layer(other.getCLAYER().openObject())->isFrozen()) << "a frozen layer is taken";
    EXPECT_EQ(plain(m_cad.GetLayerCorrente(&m_db)), "0");
}

TEST_F(Layers, AreMadeCurrentWithoutACurrentDatabase) {
    CHostDatabase other, bare(CHostDatabase::kNothing);
    m_documents.manager.closeAll();
    EXPECT_EQ(plain(m_cad.SetLayerCorrente("0", &other)), "0");
    EXPECT_EQ(plain(m_cad.SetLayerCorrente("0", &bare)), "");
    EXPECT_EQ(plain(m_cad.SetLayerCorrente("0", nullptr)), "");
}

// --- purging ---

TEST_F(Layers, ThatNothingUsesArePurged) {
    const OdDbObjectId free = layer("FREE"), used = layer("USED"), inBlock = layer("BLOCK"),
                       current = layer("CURRENT"), former = layer("FORMER"), frozen = frozenLayer("FROZEN");
    pointOn(used);
    pointOn(inBlock, block("B"));
    erase(pointOn(former));
    makeCurrent(current);
    m_cad.PurgeLayers(OdSmartPtr<OdDbDatabase>(&m_db));
    EXPECT_THAT(told(m_cad.GetLayers(&m_db)), ElementsAre("0", "USED", "BLOCK", "CURRENT"));
    for (const OdDbObjectId& id : {free, former, frozen}) EXPECT_TRUE(id.isErased());
}

TEST_F(Layers, ThatAreInUseAreNotOpenedForWriteByAPurge) {
    const OdDbObjectId page = layer("USED");
    pointOn(page);
    layer("FREE");
    const Layer used = open(page), zero = open(m_db.getLayerZeroId());
    const OdSmartPtr<OdDbObject> held = table();
    m_cad.PurgeLayers();
    EXPECT_FALSE(used->isWriteEnabled());
    EXPECT_FALSE(zero->isWriteEnabled());
    EXPECT_FALSE(held->isWriteEnabled());
    EXPECT_THAT(told(m_cad.GetLayers(&m_db)), ElementsAre("0", "USED"));
}

TEST_F(Layers, ArePurgedInTheCurrentDatabaseWhereNoneIsGiven) {
    layer("FREE");
    CHostDatabase other;
    m_cad.CriarLayer("FREE", &other);
    setDatabase(&other);
    m_cad.PurgeLayers();
    setDatabase(nullptr);
    EXPECT_THAT(told(m_cad.GetLayers(&other)), ElementsAre("0"));
    EXPECT_THAT(told(m_cad.GetLayers(&m_db)), Contains("FREE"));
    m_cad.PurgeLayers();
    EXPECT_THAT(told(m_cad.GetLayers(&m_db)), Not(Contains("FREE")));
}

TEST_F(Layers, OfNoDatabaseArePurgedSilently) {
    m_cad.PurgeLayers(OdSmartPtr<OdDbDatabase>());
    CHostDatabase bare(CHostDatabase::kNothing);
    m_cad.PurgeLayers(OdSmartPtr<OdDbDatabase>(&bare));
    m_documents.manager.closeAll();
    m_cad.PurgeLayers();
}

// --- line types ---

TEST_F(Layers, HaveLineTypesThatAreListedInTableOrder) {
    {
        OdSmartPtr<OdDbSymbolTable> table(m_db.getLinetypeTableId().openObject(OdDb::kForWrite));
        for (const char* name : {"Z Ω", "GONE", "A"}) {
            OdSmartPtr<OdDbLinetypeTableRecord> record = make(new OdDbLinetypeTableRecord);
            record->setName(od(name));
            table->add(record);
            if (std::string(name) == "GONE") record->erase();
        }
    }
    EXPECT_THAT(told(m_cad.getTiposLinhas(false)), ElementsAre("Continuous", "Z Ω", "A"));
    EXPECT_THAT(told(m_cad.getTiposLinhas(true)),
                ElementsAre("ByBlock", "ByLayer", "Continuous", "Z Ω", "A"));
    CHostDatabase other, bare(CHostDatabase::kNothing);
    setDatabase(&other);
    EXPECT_THAT(told(m_cad.getTiposLinhas(false)), ElementsAre("Continuous"));
    setDatabase(&bare);
    EXPECT_THAT(told(m_cad.getTiposLinhas(true)), IsEmpty());
    setDatabase(nullptr);
    m_documents.manager.closeAll();
    EXPECT_THAT(told(m_cad.getTiposLinhas(true)), IsEmpty());
}

TEST_F(Layers, OfNoDatabaseAreNotThere) {
    CHostDatabase bare(CHostDatabase::kNothing);
    m_documents.manager.closeAll();
    for (CHostDatabase* const database : {static_cast<CHostDatabase*>(nullptr), &bare}) {
        setDatabase(database);
        EXPECT_FALSE(m_cad.CriarLayer("P1", database));
        EXPECT_FALSE(m_cad.ExisteLayer("0", database));
        EXPECT_EQ(m_cad.ApagarEntidadesLayer("0"), 0);
        EXPECT_FALSE(m_cad.CongelaLayer("0"));
        EXPECT_EQ(m_cad.CongelaTodasLayers(), 0);
        EXPECT_FALSE(m_cad.RenomearLayer("A", "B"));
        setDatabase(nullptr);
    }
}

} // namespace
