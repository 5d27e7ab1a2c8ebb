// SPDX-License-Identifier: MIT
// Which typed events an object raises, by its class, its owner and the name of its block.
#include "follower.h"

namespace {

using namespace lm::tests;
using testing::ElementsAre;
using testing::IsEmpty;

class Classification : public Followed {
protected:
    /// All four phases of an object that was appended before the events were taken last.
    Texts lifeOf(OdDbObjectId id, const std::function<void(OdDbObject&)>& change) {
        {
            const OdSmartPtr<OdDbObject> object = id.openObject(OdDb::kForWrite);
            change(*object);
            object->downgradeOpen();
        }
        erase(id);
        return events();
    }
    /// The four events of a reference to a block, with the family's between them.
    static Texts phases(const std::string& name, const std::string& family) {
        Texts all;
        for (const char* phase : {"Appended ", "ForModify ", "Modified ", "Erased "}) {
            all.push_back("block" + (phase + name));
            if (!family.empty()) all.push_back(family + phase + name);
            if (std::string(phase) == "Appended ") all.push_back("entityAppended INSERT");
        }
        return all;
    }
    OdDbObjectId polyline(OdDbObjectId owner) { return append(owner, make(new OdDbPolyline)); }
};

TEST_F(Classification, OfReferencesGoesByTheBeginningOfTheName) {
    const struct {
        const char* name;
        const char* family;
    } cases[] = {
        {"BLK_CTR_GRADE", "grade"},
        {"BLK_CTR_GRADE_A", "grade"},
        {"BLK_CTR_GRAD", ""},
        {"BLK_CTR", ""},
        {"blk_ctr_grade", ""},
        {"INS-1", "ins"},
        {"INS-", "ins"},
        {"INS", ""},
        {"Ins-1", ""},
        {"INSX", ""},
        {"CONTA", "conta"},
        {"CONTATOR", "conta"},
        {"conta1", ""},
        {"CONT", ""},
        {"RELE", "conta"},
        {"RELEX", "conta"},
        {"REL", ""},
        {"rele", ""},
        {"NA-1", "cto"},
        {"NA", ""},
        {"NAX", ""},
        {"NF-1", "cto"},
        {"NF1", ""},
        {"NAF-01", "cto"},
        {"NAFX", ""},
        {"NAF", ""},
        {"BT-1", "cto"},
        {"BT1", ""},
        {"bt-1", ""},
        {"XNA-1", ""},
        {" NA-1", ""},
        {"MOTOR", ""},
    };
    for (const auto& each : cases) {
        const OdDbObjectId block = this->block(each.name);
        clear();
        const OdDbObjectId id = place(block)->objectId();
        const Texts appended = events();
        Texts all = appended;
        for (const std::string& line :
             lifeOf(id, [](OdDbObject& object) { static_cast<OdDbBlockReference&>(object).setRotation(1); }))
            all.push_back(line);
        EXPECT_EQ(all, phases(each.name, each.family)) << each.name;
    }
}

TEST_F(Classification, GoesByTheNameAtTheTime) {
    const OdDbObjectId block = this->block("PLAIN");
    const OdDbObjectId id = place(block)->objectId();
    openBlock(block, OdDb::kForWrite)->setName(od("NA-1"));
    clear();
    erase(id);
    EXPECT_THAT(events(), ElementsAre("blockErased NA-1", "ctoErased NA-1"));
}

TEST_F(Classification, OfAReferenceToNoBlockIsThatOfTheClass) {
    append(m_db.getModelSpaceId(), make(new OdDbBlockReference));
    EXPECT_THAT(events(), ElementsAre("blockAppended", "entityAppended INSERT"));
}

TEST_F(Classification, KnowsNoReferencesOutsideModelSpace) {
    const OdDbObjectId contact = block("NAF-01", {{"TAG", "", ""}}), outer = block("OUTER");
    for (const OdDbObjectId owner : {m_db.getPaperSpaceId(), outer}) {
        clear();
        const OdDbObjectId id = place(contact, {}, "0", owner)->objectId();
        EXPECT_THAT(events(), ElementsAre("entityAppended INSERT"));
        EXPECT_THAT(
            lifeOf(id, [](OdDbObject& object) { static_cast<OdDbBlockReference&>(object).setRotation(1); }),
            IsEmpty());
        EXPECT_TRUE(isUserErased(id)) << "its handle is noted all the same";
        OdSmartPtr<OdDbBlockReference>(id.openObject(OdDb::kForWrite, true))->erase(false);
        EXPECT_THAT(events(), ElementsAre("entityAppended INSERT"));
    }
}

TEST_F(Classification, KnowsAttributesAndPolylinesAnywhere) {
    const OdDbObjectId contact = block("NAF-01"), outer = block("OUTER");
    for (const OdDbObjectId owner : {m_db.getModelSpaceId(), m_db.getPaperSpaceId(), outer}) {
        const Reference reference = place(contact, {{"TAG", "1"}}, "0", owner);
        const OdDbObjectId attribute = attributeOf(reference, 0)->objectId();
        reference->downgradeOpen();
        clear();
        EXPECT_THAT(
            lifeOf(attribute,
                   [](OdDbObject& object) { static_cast<OdDbAttribute&>(object).setTextString(od("2")); }),
            ElementsAre("attForModify TAG", "attModified TAG", "attErased TAG"));
        const OdDbObjectId line = polyline(owner);
        EXPECT_THAT(events(), ElementsAre("plineAppended LWPOLYLINE", "entityAppended LWPOLYLINE"));
        EXPECT_THAT(
            lifeOf(line, [](OdDbObject& object) { static_cast<OdDbPolyline&>(object).setLayer(od("0")); }),
            ElementsAre("plineForModify LWPOLYLINE", "plineModified LWPOLYLINE", "plineErased LWPOLYLINE"));
    }
}

TEST_F(Classification, KnowsLayers) {
    const OdDbObjectId page = layer("P1");
    EXPECT_THAT(events(), ElementsAre("layerAppended P1", "entityAppended LAYER"));
    EXPECT_THAT(
        lifeOf(page,
               [](OdDbObject& object) { static_cast<OdDbLayerTableRecord&>(object).setIsFrozen(true); }),
        ElementsAre("layerForModify P1", "layerModified P1", "layerErased P1"));
    EXPECT_TRUE(isUserErased(page));
}

TEST_F(Classification, TellsDefinitionsWhenTheyComeAndWheneverTheyChange) {
    const OdDbObjectId motor = block("MOTOR");
    EXPECT_THAT(events(), ElementsAre("blockDefined MOTOR", "entityAppended BLOCK_RECORD"));
    openBlock(motor, OdDb::kForWrite)->setName(od("PUMP"));
    EXPECT_THAT(events(), ElementsAre("blockDefined PUMP")) << "nothing before the change";
    openBlock(motor, OdDb::kForWrite)->setOrigin({1, 2, 3});
    EXPECT_THAT(events(), ElementsAre("blockDefined PUMP"));
    append(motor, make(new OdDbPoint));
    EXPECT_THAT(events(), ElementsAre("entityAppended POINT")) << "a new part is no change of the block";
    erase(motor);
    EXPECT_THAT(events(), IsEmpty());
    EXPECT_TRUE(isUserErased(motor));
    openBlock(motor, OdDb::kForWrite)->erase(false);
    EXPECT_THAT(events(), ElementsAre("blockDefined PUMP", "entityAppended BLOCK_RECORD"));
}

TEST_F(Classification, NeverTakesModelSpaceForADefinition) {
    const OdSmartPtr<OdDbObject> space = m_db.getModelSpaceId().openObject();
    m_follower.objectAppended(&m_db, space.get());
    EXPECT_THAT(events(), ElementsAre("entityAppended BLOCK_RECORD"));
    m_follower.objectModified(&m_db, space.get());
    m_follower.objectOpenedForModify(&m_db, space.get());
    EXPECT_THAT(events(), IsEmpty());
    const OdSmartPtr<OdDbObject> paper = m_db.getPaperSpaceId().openObject();
    m_follower.objectModified(&m_db, paper.get());
    EXPECT_THAT(events(), ElementsAre("blockDefined *Paper_Space"));
}

TEST_F(Classification, TellsOfOtherObjectsOnlyThatTheyCame) {
    const OdDbObjectId id = point();
    EXPECT_THAT(events(), ElementsAre("entityAppended POINT"));
    EXPECT_THAT(lifeOf(id, [](OdDbObject& object) { static_cast<OdDbPoint&>(object).setLayer(od("0")); }),
                IsEmpty());
    EXPECT_TRUE(isUserErased(id));
    const OdDbObjectId definition = define(block("MOTOR"), {"TAG", "", ""});
    EXPECT_THAT(events(),
                ElementsAre("blockDefined MOTOR", "entityAppended BLOCK_RECORD", "entityAppended ATTDEF"))
        << "a definition is no attribute";
    erase(definition);
    EXPECT_THAT(events(), IsEmpty());
}

// --- Erasing ---

TEST_F(Classification, TellsAnObjectThatCameBackAsANewOne) {
    const OdDbObjectId contact = shown("NAF-01"), line = polyline(m_db.getModelSpaceId());
    m_db.startUndoRecord();
    erase(contact);
    erase(line);
    clear();
    m_db.undo();
    EXPECT_THAT(events(), ElementsAre("plineAppended LWPOLYLINE", "entityAppended LWPOLYLINE",
                                      "blockAppended NAF-01", "ctoAppended NAF-01", "entityAppended INSERT"));
    EXPECT_TRUE(isUserErased(contact)) << "the lists stay as they are";
    m_db.redo();
    EXPECT_THAT(events(), ElementsAre("blockErased NAF-01", "ctoErased NAF-01", "plineErased LWPOLYLINE"));
}

TEST_F(Classification, TellsLayersAndAttributesThatCameBack) {
    const auto comeBack = [](OdDbObjectId id) { id.openObject(OdDb::kForWrite, true)->erase(false); };
    const OdDbObjectId page = layer("P1");
    const OdDbObjectId tag = attributeOf(place(block("MOTOR"), {{"TAG", "1"}}), 0)->objectId();
    erase(page);
    erase(tag);
    clear();
    comeBack(page);
    EXPECT_THAT(events(), ElementsAre("layerAppended P1", "entityAppended LAYER"));
    comeBack(tag);
    EXPECT_THAT(events(), ElementsAre("attAppended TAG", "entityAppended ATTRIB"));
}

TEST_F(Classification, TellsReturnsThroughTheOverriddenOperation) {
    struct Overriding : CCReactorBase {
        void objectAppended(const OdDbDatabase*, const OdDbObject*) override { ++calls; }
        int calls = 0;
    } reactor;
    const OdSmartPtr<OdDbObject> object = point().openObject();
    reactor.objectErased(&m_db, object.get(), false);
    EXPECT_EQ(reactor.calls, 1);
    reactor.objectErased(&m_db, object.get(), true);
    EXPECT_EQ(reactor.calls, 1);
}

TEST_F(Classification, NotesTheHandleBeforeTheEvent) {
    const OdDbObjectId id = shown("NA-1");
    bool isTold = false;
    m_follower.once("blockErased NA-1", [&] {
        isTold = true;
        EXPECT_TRUE(isUserErased(id));
    });
    erase(id);
    EXPECT_TRUE(isTold);
}

TEST_F(Classification, HasNoEventsOfUndoneAppendingsAndChanges) {
    const OdDbObjectId id = shown("NA-1");
    m_db.startUndoRecord();
    OdSmartPtr<OdDbBlockReference>(id.openObject(OdDb::kForWrite))->setRotation(1);
    shown("NA-1");
    clear();
    m_db.undo();
    m_db.redo();
    EXPECT_THAT(events(), IsEmpty());
}

// --- What a derived class finds ---

TEST_F(Classification, EndsWhereADerivedClassDoesNotCallTheDefault) {
    m_follower.isFinal = true;
    const OdDbObjectId id = place(block("NAF-01"))->objectId();
    EXPECT_THAT(events(), ElementsAre("blockDefined NAF-01", "entityAppended BLOCK_RECORD",
                                      "blockAppended NAF-01", "entityAppended INSERT"));
    OdSmartPtr<OdDbBlockReference>(id.openObject(OdDb::kForWrite))->setRotation(1);
    EXPECT_THAT(events(), ElementsAre("blockForModify NAF-01", "blockModified NAF-01"));
    erase(id);
    EXPECT_THAT(events(), ElementsAre("blockErased NAF-01"));
}

TEST_F(Classification, TellsNobodyOfTheRestWhenAnEventRaises) {
    const Reference reference = place(block("NAF-01"));
    reference->downgradeOpen();
    clear();
    for (const char* event : {"blockAppended NAF-01", "ctoAppended NAF-01"}) {
        m_follower.once(event, [] { throw OdError(OdString("broken")); });
        EXPECT_THROW(m_follower.objectAppended(&m_db, reference.get()), OdError);
        EXPECT_EQ(events().back(), event);
    }
}

TEST_F(Classification, GivesTheDocumentOfTheDatabaseAndNotTheActiveOne) {
    CHostDocument* const other = m_documents.manager.newDocument();
    const OdSmartPtr<OdDbDatabase> side = drawing();
    side->addReactor(&m_follower);
    clear();
    place(block("NA-1"));
    EXPECT_THAT(events(), ElementsAre("blockDefined NA-1", "entityAppended BLOCK_RECORD",
                                      "blockAppended NA-1", "ctoAppended NA-1", "entityAppended INSERT"))
        << "the home document isn't the active one";
    const std::string number = " @" + std::to_string(other->number());
    const OdDbObjectId there = refer(*other->database(), blockIn(*other->database(), "NA-1"));
    EXPECT_THAT(events(), ElementsAre("blockDefined NA-1" + number, "entityAppended BLOCK_RECORD" + number,
                                      "blockAppended NA-1" + number, "ctoAppended NA-1" + number,
                                      "entityAppended INSERT" + number));
    erase(there);
    EXPECT_THAT(events(), ElementsAre("blockErased NA-1" + number, "ctoErased NA-1" + number));
    point(*side);
    EXPECT_THAT(events(), ElementsAre("entityAppended POINT @null")) << "a database without a document";
    side->removeReactor(&m_follower);
}

TEST_F(Classification, FindsTheReferenceWithItsAttributesAndOnItsLayer) {
    layer("P1");
    const OdDbObjectId contact = block("NAF-01", {{"TAG", "", "K1"}, {"RELACAO", "", "K2"}});
    clear();
    OdDbObjectId id;
    std::string found;
    m_follower.once("ctoAppended NAF-01", [&] {
        const auto space = OdSmartPtr<OdDbBlockTableRecord>(m_db.getModelSpaceId().openObject());
        const Reference ref(space->newIterator()->entity());
        found = plain(CHostString(ref->layer())) + " " + plain(m_follower.getAtt("tag", ref)) + " " +
                plain(m_follower.getAttRelacao(ref));
    });
    m_cad.InserirBloco(missing(), "NAF-01", "P1", 0, 0, 0, 0);
    EXPECT_EQ(found, "P1 K1 K2");
    EXPECT_FALSE(contact.isNull());
}

TEST_F(Classification, LeavesTheAttributesOfAnErasedReferenceReadable) {
    const OdDbObjectId id = place(block("NAF-01"), {{"TAG", "K1"}})->objectId();
    std::string found;
    m_follower.once("ctoErased NAF-01", [&] {
        found = plain(m_follower.getAtt("TAG", Reference(id.openObject(OdDb::kForRead, true))));
    });
    erase(id);
    EXPECT_EQ(found, "K1");
}

TEST_F(Classification, LetsAnEventChangeItsObject) {
    const OdDbObjectId id = place(block("NAF-01"), {{"TAG", "K1"}})->objectId();
    clear();
    m_follower.once("ctoModified NAF-01", [&] { m_cad.AtualizarAtributo(RZID(id), "TAG", "K2"); });
    OdSmartPtr<OdDbBlockReference>(id.openObject(OdDb::kForWrite))->setRotation(1);
    EXPECT_THAT(events(), ElementsAre("blockForModify NAF-01", "ctoForModify NAF-01", "blockModified NAF-01",
                                      "ctoModified NAF-01", "attForModify TAG", "attModified TAG"));
    EXPECT_EQ(plain(m_cad.GetValorAtributo("TAG", Reference(id.openObject()), false)), "K2");
    // The reference itself, once more: its second closing is told as well.
    int times = 0;
    m_follower.also = [&](const std::string& event) {
        if (event != "blockModified NAF-01" || ++times > 1) return;
        OdSmartPtr<OdDbBlockReference>(id.openObject(OdDb::kForWrite))->setRotation(2);
    };
    OdSmartPtr<OdDbBlockReference>(id.openObject(OdDb::kForWrite))->setRotation(3);
    m_follower.also = nullptr;
    EXPECT_EQ(times, 2);
    EXPECT_EQ(OdSmartPtr<OdDbBlockReference>(id.openObject())->rotation(), 2);
}

TEST_F(Classification, HandsOutOneCountAndTakesItBack) {
    const Reference reference = place(block("NAF-01"));
    reference->downgradeOpen();
    const long before = reference->numRefs();
    m_follower.objectAppended(&m_db, reference.get());
    m_follower.objectOpenedForModify(&m_db, reference.get());
    m_follower.objectModified(&m_db, reference.get());
    m_follower.objectErased(&m_db, reference.get(), true);
    EXPECT_EQ(reference->numRefs(), before);
    m_follower.once("blockModified NAF-01", [] { throw OdError(OdString("broken")); });
    EXPECT_THROW(m_follower.objectModified(&m_db, reference.get()), OdError);
    EXPECT_EQ(reference->numRefs(), before) << "on the way of an exception too";
}

/// A block whose name can't be read when it is armed.
struct Unreadable : OdDbBlockTableRecord {
    OdRxClass* isA() const override {
        if (isArmed) throw OdError(OdString("broken"));
        return OdDbBlockTableRecord::isA();
    }
    bool isArmed = false;
};

TEST_F(Classification, PassesOnWhatTheNameRaisesAfterItsReport) {
    const OdSmartPtr<Unreadable> record = make(new Unreadable);
    const OdDbObjectId block = this->block(record, "NAF-01");
    const OdDbObjectId id = place(block)->objectId();
    m_follower.finalizar(); // the events' own notes read the name, too
    CCReactorBase reactor;
    const OdSmartPtr<OdDbObject> object = id.openObject();
    const lm::test::LogCapture log;
    record->isArmed = true;
    EXPECT_THROW(reactor.objectModified(&m_db, object.get()), OdError);
    record->isArmed = false;
    EXPECT_THAT(linesOf(log), ElementsAre("CICad::GetNomeBloco : broken"));
}

/// Names cost more than classes, and most references of a drawing stand in blocks.
TEST_F(Classification, ReadsNoNameOutsideModelSpace) {
    const OdSmartPtr<Unreadable> record = make(new Unreadable);
    const OdDbObjectId block = this->block(record, "NAF-01");
    const OdDbObjectId id = place(block, {}, "0", m_db.getPaperSpaceId())->objectId();
    m_follower.finalizar();
    CCReactorBase reactor;
    const OdSmartPtr<OdDbObject> object = id.openObject();
    const lm::test::LogCapture log;
    record->isArmed = true;
    EXPECT_NO_THROW(reactor.objectAppended(&m_db, object.get()));
    EXPECT_NO_THROW(reactor.objectOpenedForModify(&m_db, object.get()));
    EXPECT_NO_THROW(reactor.objectModified(&m_db, object.get()));
    EXPECT_NO_THROW(reactor.objectErased(&m_db, object.get(), true));
    record->isArmed = false;
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(Classification, GivesNoTextForAnAttributeThatIsNotThere) {
    const std::size_t blocks = lm::drawing::liveBlocks();
    {
        const Reference reference = place(block("NAF-01"), {{"X", "1"}});
        EXPECT_EQ(plain(m_follower.getAtt("TAG", reference)), "");
        EXPECT_EQ(plain(m_follower.getAttRelacao(reference)), "");
        EXPECT_EQ(plain(m_follower.getAtt("TAG", nullptr)), "");
        EXPECT_EQ(plain(m_follower.getAttRelacao(nullptr)), "");
    }
    const Reference reference = place(block("NAF-02"), {{"ETIQUETA", "\u03a9"}, {"X", "\u03a9"}});
    const std::size_t before = lm::drawing::liveBlocks();
    const long refs = reference->numRefs();
    EXPECT_EQ(plain(m_follower.getAttRelacao(reference)), "\u03a9") << "exact";
    EXPECT_EQ(plain(m_follower.getAtt("x", reference)), "\u03a9");
    EXPECT_EQ(reference->numRefs(), refs);
    EXPECT_EQ(lm::drawing::liveBlocks(), before) << "the record of the search is freed";
    EXPECT_GE(before, blocks);
}

} // namespace
