// SPDX-License-Identifier: MIT
// What reactors hear of changes to extended data, dictionaries and layers, and what undo finds of them.
#include "stored_data.h"

#include <gmock/gmock.h>

namespace {

using namespace lm::tests;
using testing::ElementsAre;
using testing::IsEmpty;

class StoredDataEvents : public StoredData {
protected:
    void SetUp() override {
        m_object = pointWith("A", {"one", "two"});
        m_page = layer("P1");
        m_cad.getNamedDic("D", &m_db);
        m_recorder.taken();
    }
    Texts events() { return m_recorder.taken(); }

    OdDbObjectId m_object, m_page;
    Recorder m_recorder{m_db};
};

TEST_F(StoredDataEvents, OfANewLayerAreItsAppending) {
    m_cad.CriarLayer("NEW", &m_db);
    EXPECT_THAT(events(), ElementsAre("appended LAYER NEW"));
    m_cad.CriarLayer("NEW", &m_db);
    m_cad.CriarLayer("", &m_db);
    EXPECT_THAT(events(), IsEmpty());
}

TEST_F(StoredDataEvents, OfANewIdAreItsAppending) {
    m_cad.updateXData(read(m_object), "NEW", 1, "x");
    EXPECT_THAT(events(), ElementsAre("appended APPID NEW"))
        << "and none of the object, which has no such data";
    m_cad.updateXData(read(m_object), "NEW", 1, "x");
    EXPECT_THAT(events(), IsEmpty());
    m_cad.getDicCabos(&m_db);
    EXPECT_THAT(events(), ElementsAre("appended APPID RZ_CABOS", "appended DICTIONARY"));
}

TEST_F(StoredDataEvents, OfAChangedRecordAreThoseOfItsObject) {
    m_cad.updateXData(read(m_object), "A", 1, "x");
    EXPECT_THAT(events(), ElementsAre("opened POINT", "modified POINT"));
    m_cad.updateXData(read(m_object), "A", 1, 5);
    EXPECT_THAT(events(), ElementsAre("opened POINT", "modified POINT"));
    m_cad.updateXData(RZID(m_object), "A", 1, "y");
    EXPECT_THAT(events(), ElementsAre("opened POINT", "modified POINT"));
    m_cad.convertXDataType(read(m_object), "A", 1, 1071);
    EXPECT_THAT(events(), ElementsAre("opened POINT", "modified POINT"));
    m_cad.removeXdata(read(m_object), "A");
    EXPECT_THAT(events(), ElementsAre("opened POINT", "modified POINT"));
}

TEST_F(StoredDataEvents, OfAMissingRecordAreNone) {
    m_cad.updateXData(read(m_object), "A", 9, "x");
    m_cad.updateXData(read(m_object), "A", 9, 1);
    m_cad.updateXData(RZID(m_object), "A", 9, "x");
    m_cad.convertXDataType(read(m_object), "A", 9, 1070);
    m_cad.convertXDataType({m_object}, "A", 9, 1070);
    const OdSmartPtr<OdDbIdMapping> none = make(new OdDbIdMapping);
    m_cad.updateXDataHandle(read(m_object), "A", 1, none, none);
    EXPECT_THAT(events(), IsEmpty());
}

TEST_F(StoredDataEvents, OfANewDictionaryAreItsAppending) {
    m_cad.getNamedDic("NEW", &m_db);
    EXPECT_THAT(events(), ElementsAre("appended DICTIONARY"));
    m_cad.getNamedDic("NEW", &m_db);
    m_cad.getNamedDic("D", &m_db);
    EXPECT_THAT(events(), IsEmpty()) << "opened for write, and nothing changed";
    m_cad.getDicCabos(&m_db);
    events();
    m_cad.getDicCabos(&m_db);
    EXPECT_THAT(events(), IsEmpty());
}

TEST_F(StoredDataEvents, OfAnEntryThatIsReplacedAreItsErasing) {
    namedObjects()->setAt(od("X"), make(new OdDbXrecord));
    events();
    m_cad.getNamedDic("X", &m_db);
    EXPECT_THAT(events(), ElementsAre("erased XRECORD", "appended DICTIONARY"));
}

TEST_F(StoredDataEvents, OfAStateThatIsClearedAreNoneWhereItIsClear) {
    const auto setAll = [&](bool set) {
        const OdSmartPtr<OdDbLayerTableRecord> page(m_page.openObject(OdDb::kForWrite));
        page->setIsFrozen(set);
        page->setIsLocked(set);
        page->setIsOff(set);
    };
    for (int (CICad::*const clear)(RZString, OdDbDatabase*) :
         {&CICad::DescongelaLayer, &CICad::HabilitaLayer, &CICad::LayerOn}) {
        setAll(false);
        events();
        (m_cad.*clear)("P1", &m_db);
        EXPECT_THAT(events(), IsEmpty());
        setAll(true);
        events();
        (m_cad.*clear)("P1", &m_db);
        EXPECT_THAT(events(), ElementsAre("opened LAYER P1", "modified LAYER P1"));
    }
}

TEST_F(StoredDataEvents, OfFreezingByNameComeEachTime) {
    for (int i = 0; i < 2; ++i) {
        m_cad.CongelaLayer("P1");
        EXPECT_THAT(events(), ElementsAre("opened LAYER P1", "modified LAYER P1"));
    }
    layer("P2");
    events();
    m_cad.CongelaTodasLayers();
    EXPECT_THAT(events(), ElementsAre("opened LAYER P2", "modified LAYER P2"))
        << "none of the frozen one, nor of layer 0";
    m_cad.CongelaTodasLayers();
    EXPECT_THAT(events(), IsEmpty());
}

TEST_F(StoredDataEvents, OfErasingAreOneForEachObject) {
    m_cad.ApagarLayer("P1", &m_db);
    EXPECT_THAT(events(), ElementsAre("erased LAYER P1"));
    m_cad.ApagarLayer("0", &m_db);
    m_cad.ApagarEntidadesLayer("P1");
    EXPECT_THAT(events(), IsEmpty()) << "model space was opened for write, and nothing stood there";
    m_cad.ApagarEntidadesLayer("0");
    EXPECT_THAT(events(), ElementsAre("erased POINT"));
    layer("P2");
    events();
    m_cad.PurgeLayers();
    EXPECT_THAT(events(), ElementsAre("erased LAYER P2"));
}

TEST_F(StoredDataEvents, OfReadingAreNone) {
    m_cad.ExisteLayer("P1", &m_db);
    m_cad.GetLayers(&m_db);
    m_cad.GetLayerCorrente(&m_db);
    m_cad.getTiposLinhas(true);
    m_cad.RenomearLayer("P1", "0");
    m_cad.SetLayerCorrente("P1", &m_db);
    EXPECT_THAT(events(), IsEmpty()) << "opening for write without a change is no event";
}

TEST_F(StoredDataEvents, OfRenamingAreThoseOfTheLayer) {
    m_cad.RenomearLayer("P1", "P2");
    EXPECT_THAT(events(), ElementsAre("opened LAYER P1", "modified LAYER P2"));
}

TEST_F(StoredDataEvents, OfASideDrawingReachNobodyElse) {
    CHostDatabase other;
    m_cad.CriarLayer("NEW", &other);
    m_cad.getNamedDic("NEW", &other);
    EXPECT_THAT(events(), IsEmpty());
}

/// A change that undo knows of makes it forget what could be repeated.
TEST_F(StoredDataEvents, WithoutAChangeLeaveNothingToUndo) {
    const auto isRepeatable = [&] { return m_db.redoSteps() == 1; };
    m_db.startUndoRecord();
    m_cad.CongelaLayer("P1");
    ASSERT_TRUE(m_db.undo());
    ASSERT_TRUE(isRepeatable());
    m_cad.DescongelaLayer("P1", &m_db);
    m_cad.HabilitaLayer("P1", &m_db);
    m_cad.LayerOn("P1", &m_db);
    m_cad.ExisteLayer("P1", &m_db);
    m_cad.CriarLayer("P1", &m_db);
    m_cad.RenomearLayer("P1", "0");
    m_cad.ApagarEntidadesLayer("P1");
    m_cad.updateXData(read(m_object), "A", 9, "x");
    m_cad.updateXData(RZID(m_object), "A", 9, "x");
    m_cad.getNamedDic("D", &m_db);
    EXPECT_TRUE(isRepeatable());
    m_cad.CongelaLayer("P1");
    EXPECT_FALSE(isRepeatable());
}

TEST_F(StoredDataEvents, OfWhatWasChangedCanBeTakenBack) {
    const Texts layers = told(m_cad.GetLayers(&m_db)), ids = recordsOf(m_db.getRegAppTableId());
    const unsigned int entries = namedObjects()->numEntries();
    m_db.startUndoRecord();
    m_cad.CriarLayer("NEW", &m_db);
    m_cad.RenomearLayer("P1", "P2");
    m_cad.CongelaTodasLayers();
    m_cad.SetLayerCorrente("NEW", &m_db);
    m_cad.ApagarEntidadesLayer("0");
    m_cad.updateXData(read(m_object), "A", 1, "x");
    m_cad.updateXData(read(m_object), "NEW", 1, "x");
    m_cad.getNamedDic("NEW", &m_db);
    m_cad.getDicCabos(&m_db);
    ASSERT_TRUE(m_db.undo());
    EXPECT_EQ(told(m_cad.GetLayers(&m_db)), layers);
    EXPECT_EQ(recordsOf(m_db.getRegAppTableId()), ids);
    EXPECT_EQ(namedObjects()->numEntries(), entries);
    EXPECT_EQ(data(m_object), "1001:A 1000:one 1000:two");
    EXPECT_FALSE(m_object.isErased());
    EXPECT_EQ(plain(m_cad.GetLayerCorrente(&m_db)), "0");
    ASSERT_TRUE(m_db.redo());
    EXPECT_EQ(plain(m_cad.GetLayerCorrente(&m_db)), "NEW");
    EXPECT_TRUE(m_cad.ExisteLayer("P2", &m_db));
    EXPECT_TRUE(m_object.isErased());
}

} // namespace
