// SPDX-License-Identifier: MIT
// Failures under the members for extended data, dictionaries and layers: which of them write a line and raise
// again, which let pass, and that nothing stays open behind either.
#include "stored_data.h"

#include <gmock/gmock.h>

#include <functional>
#include <stdexcept>

namespace {

using namespace lm::tests;
using testing::IsEmpty;

enum class Kind { kOdError, kStandard, kOther };

void fail(Kind kind) {
    if (kind == Kind::kOdError) throw OdError(OdString("broken"));
    if (kind == Kind::kStandard) throw std::runtime_error("broken");
    throw 7;
}

/// A layer that raises when it is asked for its class.
class RaisingLayer : public OdDbLayerTableRecord {
public:
    OdRxClass* isA() const override {
        if (isArmed) fail(kind);
        return OdDbLayerTableRecord::isA();
    }
    bool isArmed = false;
    Kind kind = Kind::kOdError;
};

/// Who raises: a reactor that is told of a change, or a layer that is opened.
enum class From { kReactor, kLayer };

class StoredDataFailures : public StoredData {
protected:
    StoredDataFailures() {
        m_layer = make(new RaisingLayer);
        m_layer->setName("P1");
        OdSmartPtr<OdDbSymbolTable>(m_db.getLayerTableId().openObject(OdDb::kForWrite))->add(m_layer);
        m_layer->setIsFrozen(true);
        m_object = pointWith("A", {"1", "2"}).openObject();
        OdSmartPtr<OdDbEntity>(m_object->objectId().openObject(OdDb::kForWrite))->setLayer("P1");
        m_object->setXData(chainOf({handle(m_object->objectId()), "2"}, "A"));
        m_object->downgradeOpen();
        m_layer->downgradeOpen();
        m_mapping->assign(OdDbIdPair(m_object->objectId(), m_object->objectId()));
        namedObjects()->setAt("RECORD", make(new OdDbXrecord));
    }
    ~StoredDataFailures() override { hostSession()->clearLines(); }

    struct Call {
        const char* what;
        From from;
        std::function<void()> run;
        Texts lines; // the names in front of " : ", in order
    };
    std::vector<Call> calls();

    /// How often each object is held.
    std::vector<long> holds() {
        std::vector<long> all = {m_db.numRefs(), m_layer->numRefs(), m_object->numRefs(),
                                 m_mapping->numRefs()};
        for (const OdDbObjectId& each :
             {m_db.getLayerTableId(), m_db.getRegAppTableId(), m_db.getModelSpaceId(), m_db.getLayerZeroId(),
              m_db.getNamedObjectsDictionaryId(), namedObjects()->getAt("RECORD")})
            all.push_back(each.isNull() ? 0 : each.openObject()->numRefs());
        return all;
    }
    /// What the members may change before they fail.
    void restore() {
        m_recorder.armed = nullptr;
        m_layer->isArmed = false;
        m_object->upgradeOpen();
        if (m_object->isErased()) m_object->erase(false);
        m_layer->upgradeOpen();
        if (m_layer->isErased()) m_layer->erase(false);
        m_layer->setIsFrozen(true);
        m_layer->downgradeOpen();
        m_object->downgradeOpen();
        if (!OdDbXrecord::cast(namedObjects()->getAt("RECORD", OdDb::kForRead).get()))
            namedObjects()->setAt("RECORD", make(new OdDbXrecord));
    }
    void arm(From from, Kind kind) {
        if (from == From::kReactor) m_recorder.armed = [kind] { fail(kind); };
        m_layer->isArmed = from == From::kLayer;
        m_layer->kind = kind;
    }
    static Texts names(const lm::test::LogCapture& log) {
        Texts all;
        for (const std::string& line : log.lines()) {
            const std::size_t from = line.find("} ") + 2, to = line.find(" : broken");
            EXPECT_NE(to, std::string::npos) << line;
            all.push_back(line.substr(from, to - from));
        }
        return all;
    }

    OdSmartPtr<RaisingLayer> m_layer;
    OdSmartPtr<OdDbObject> m_object;
    OdSmartPtr<OdDbIdMapping> m_mapping = make(new OdDbIdMapping);
    Recorder m_recorder{m_db};
};

const char kUpdate[] = "CICad::updateXData", kHandle[] = "CICad::updateXDataHandle",
           kConvert[] = "CICad::convertXDataType", kRemove[] = "CICad::removeXdata",
           kDictionary[] = "CICad::getNamedDic", kLayers[] = "CICad::GetLayers",
           kCurrent[] = "CICad::GetLayerCorrente", kMakeCurrent[] = "CICad::SetLayerCorrente",
           kRename[] = "CICad::RenomearLayer", kErase[] = "CICad::ApagarEntidadesLayer";

std::vector<StoredDataFailures::Call> StoredDataFailures::calls() {
    const auto reactor = From::kReactor, opened = From::kLayer;
    const OdDbObjectId id = m_object->objectId();
    const OdSmartPtr<OdDbDatabase> db(&m_db);
    return {
        {"updateXData, text", reactor, [=, this] { m_cad.updateXData(m_object, "A", 1, "x"); }, {kUpdate}},
        {"updateXData, integer", reactor, [=, this] { m_cad.updateXData(m_object, "A", 1, 5); }, {kUpdate}},
        {"updateXData of an id",
         reactor,
         [=, this] { m_cad.updateXData(RZID(id), "A", 1, "x"); },
         {kUpdate, kUpdate}},
        {"updateXDataHandle",
         reactor,
         [=, this] { m_cad.updateXDataHandle(m_object, "A", 1, m_mapping, m_mapping); },
         {kHandle}},
        {"convertXDataType",
         reactor,
         [=, this] { m_cad.convertXDataType(m_object, "A", 2, 1070); },
         {kConvert}},
        {"convertXDataType of an array",
         reactor,
         [=, this] { m_cad.convertXDataType({id}, "A", 2, 1070); },
         {kConvert, kConvert}},
        {"removeXdata", reactor, [=, this] { m_cad.removeXdata(m_object, "A"); }, {kRemove}},
        {"getNamedDic", reactor, [=, this] { m_cad.getNamedDic("RECORD", &m_db); }, {kDictionary}},
        {"GetLayers", opened, [=, this] { m_cad.GetLayers(&m_db); }, {kLayers}},
        {"GetLayerCorrente", opened, [=, this] { m_cad.GetLayerCorrente(&m_db); }, {kCurrent}},
        {"SetLayerCorrente",
         opened,
         [=, this] { m_cad.SetLayerCorrente("NONE", &m_db); },
         {kCurrent, kMakeCurrent}},
        {"SetLayerCorrente, thaw",
         reactor,
         [=, this] { m_cad.SetLayerCorrente("P1", &m_db); },
         {kMakeCurrent}},
        {"RenomearLayer", reactor, [=, this] { m_cad.RenomearLayer("P1", "P2"); }, {kRename}},
        {"RenomearLayer, new name", opened, [=, this] { m_cad.RenomearLayer("0", "P1"); }, {kRename}},
        {"ApagarEntidadesLayer", reactor, [=, this] { m_cad.ApagarEntidadesLayer("P1"); }, {kErase}},

        {"ExisteLayer", opened, [=, this] { m_cad.ExisteLayer("P1", &m_db); }, {}},
        {"ApagarLayer", opened, [=, this] { m_cad.ApagarLayer("P1", &m_db); }, {}},
        {"CongelaLayer", reactor, [=, this] { m_cad.CongelaLayer("P1"); }, {}},
        {"CongelaLayer, opening", opened, [=, this] { m_cad.CongelaLayer("P1"); }, {}},
        {"CongelaTodasLayers", opened, [=, this] { m_cad.CongelaTodasLayers(); }, {}},
        {"DescongelaLayer", reactor, [=, this] { m_cad.DescongelaLayer("P1", &m_db); }, {}},
        {"HabilitaLayer", opened, [=, this] { m_cad.HabilitaLayer("P1", &m_db); }, {}},
        {"LayerOn", opened, [=, this] { m_cad.LayerOn("P1", &m_db); }, {}},
    };
}

TEST_F(StoredDataFailures, AreReportedOnceForEachGuardAndRaisedAgain) {
    const OdSmartPtr<OdResBuf> current = OdResBuf::newRb(330);
    current->setObjectId(m_layer->objectId());
    ASSERT_TRUE(m_db.setSysVar("CLAYER", current));
    for (const Kind kind : {Kind::kOdError, Kind::kStandard, Kind::kOther}) {
        for (const Call& call : calls()) {
            const std::vector<long> before = holds();
            const lm::test::LogCapture log;
            arm(call.from, kind);
            if (kind == Kind::kOdError)
                EXPECT_THROW(call.run(), OdError) << call.what;
            else if (kind == Kind::kStandard)
                EXPECT_THROW(call.run(), std::runtime_error) << call.what;
            else
                EXPECT_THROW(call.run(), int) << call.what;
            restore();
            EXPECT_EQ(names(log), kind == Kind::kOther ? Texts() : call.lines) << call.what;
            EXPECT_EQ(holds(), before) << call.what << " lets go of what it opened";
        }
    }
}

TEST_F(StoredDataFailures, OfMembersWithoutAGuardPassWithoutALine) {
    const lm::test::LogCapture log;
    OdDbLayerTableRecord::desc()->setLoaded(false);
    EXPECT_THROW(m_cad.CriarLayer("NEW", &m_db), OdError);
    OdDbLayerTableRecord::desc()->setLoaded(true);
    namedObjects()->setAt("RZ_CABOS", make(new OdDbXrecord));
    EXPECT_THROW(m_cad.getDicCabos(&m_db), OdError_NotThatKindOfClass);
    m_layer->upgradeOpen();
    m_object->upgradeOpen();
    m_object->erase();
    arm(From::kReactor, Kind::kOdError);
    EXPECT_THROW(m_cad.ApagarLayer("P1", &m_db), OdError);
    EXPECT_TRUE(m_layer->isErased()) << "the layer's own state is final when reactors are told";
    restore();
    m_object->upgradeOpen();
    m_object->erase();
    arm(From::kReactor, Kind::kOdError);
    EXPECT_THROW(m_cad.PurgeLayers(), OdError);
    restore();
    m_object->upgradeOpen();
    m_object->erase();
    arm(From::kReactor, Kind::kStandard);
    EXPECT_THROW(m_cad.PurgeLayers(OdSmartPtr<OdDbDatabase>(&m_db)), std::runtime_error);
    restore();
    lm::drawing::failAllocationAfter(0);
    EXPECT_THROW(m_cad.getTiposLinhas(true), std::bad_alloc);
    lm::drawing::failAllocationAfter(-1);
    EXPECT_THAT(log.lines(), IsEmpty());
}

/// Lets each allocation of a reading member fail in turn, until it gets through.
TEST_F(StoredDataFailures, OfMemoryLeaveNothingBehind) {
    struct Reading {
        const char* what;
        std::function<void()> run;
    };
    const Reading all[] = {
        {"updateXData", [&] { m_cad.updateXData(m_object, "A", 9, "x"); }},
        {"convertXDataType", [&] { m_cad.convertXDataType(m_object, "A", 9, 1070); }},
        {"GetLayers", [&] { m_cad.GetLayers(&m_db); }},
        {"GetLayerCorrente", [&] { m_cad.GetLayerCorrente(&m_db); }},
        {"CriarLayer", [&] { m_cad.CriarLayer("P1", &m_db); }},
        {"getTiposLinhas", [&] { m_cad.getTiposLinhas(true); }},
    };
    for (const Reading& each : all) {
        each.run();
        const std::vector<long> before = holds();
        const std::size_t blocks = lm::drawing::liveBlocks();
        long successes = 0;
        for (bool failed = true; failed && successes < 100; ++successes) {
            failed = false;
            lm::drawing::failAllocationAfter(successes);
            try {
                each.run();
            } catch (const std::bad_alloc&) {
                failed = true;
            }
            lm::drawing::failAllocationAfter(-1);
            hostSession()->clearLines();
            EXPECT_EQ(holds(), before) << each.what << " after " << successes;
            EXPECT_EQ(lm::drawing::liveBlocks(), blocks) << each.what << " after " << successes;
        }
        EXPECT_GT(successes, 1) << each.what;
        EXPECT_LT(successes, 100) << each.what;
    }
}

} // namespace
