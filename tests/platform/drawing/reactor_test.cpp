// SPDX-License-Identifier: MIT
// What reactors are told, when, and in which order.
#include "drawing_support.h"

#include "drawing/telling.h"

#include <functional>

using namespace drawing_test;

namespace {

/// Writes down each call as "word TYPE".
class Recorder : public OdDbDatabaseReactor, public OdDbTransactionReactor {
public:
    std::vector<std::string> calls;
    std::function<void(const std::string&, const OdDbObject*)> also;

    void objectAppended(const OdDbDatabase*, const OdDbObject* object) override { note("appended", object); }
    void objectOpenedForModify(const OdDbDatabase*, const OdDbObject* object) override {
        note("opened", object);
    }
    void objectModified(const OdDbDatabase*, const OdDbObject* object) override { note("modified", object); }
    void objectErased(const OdDbDatabase*, const OdDbObject* object, bool erased) override {
        note(erased ? "erased" : "back", object);
    }
    void objectUnAppended(const OdDbDatabase*, const OdDbObject* object) override {
        note("unappended", object);
    }
    void objectReAppended(const OdDbDatabase*, const OdDbObject* object) override {
        note("reappended", object);
    }
    void modifyUndone(const OdDbDatabase*, const OdDbObject* object) override { note("undone", object); }
    void transactionEnded(OdDbDatabase*) override { calls.push_back("transaction"); }

    std::vector<std::string> take() { return std::exchange(calls, {}); }

private:
    void note(const std::string& word, const OdDbObject* object) {
        calls.push_back(word + " " + utf8(object->dxfName()));
        if (also) also(word, object);
    }
};

using Calls = std::vector<std::string>;

struct ReactorTest : testing::Test {
    OdSmartPtr<OdDbDatabase> db = newDatabase();
    Recorder recorder;

    ReactorTest() {
        db->setUndoRecording(true);
        db->addReactor(&recorder);
        db->addTransactionReactor(&recorder);
    }
    OdDbObjectId line() {
        const OdDbObjectId id = append(*db, make<OdDbLine>());
        recorder.take();
        return id;
    }
};

} // namespace

TEST_F(ReactorTest, IsToldWhileTheDatabaseSaysThatItTells) {
    using lm::drawing::isTelling;
    const auto other = newDatabase();
    EXPECT_FALSE(isTelling(*db));
    int calls = 0;
    recorder.also = [&](const std::string& word, const OdDbObject*) {
        EXPECT_TRUE(isTelling(*db));
        EXPECT_FALSE(isTelling(*other));
        if (++calls != 1) return;
        line(); // one telling inside another
        EXPECT_TRUE(isTelling(*db)) << word;
        throw OdError(eInvalidInput);
    };
    const auto outer = make<OdDbLine>();
    append(*db, outer);
    EXPECT_THROW(outer->downgradeOpen(), OdError);
    EXPECT_EQ(calls, 2);
    EXPECT_FALSE(isTelling(*db)) << "an exception ends it as well";
}

TEST_F(ReactorTest, TellsOfANewObjectAtItsClosing) {
    auto line = make<OdDbLine>();
    append(*db, line);
    line->setEndPoint({1, 1, 1});
    EXPECT_EQ(recorder.take(), Calls{}) << "the object is still open";
    line.release();
    EXPECT_EQ(recorder.take(), Calls{"appended LINE"});
}

TEST_F(ReactorTest, TellsOfANewObjectAtItsDowngrade) {
    const auto line = make<OdDbLine>();
    append(*db, line);
    line->downgradeOpen();
    EXPECT_EQ(recorder.take(), Calls{"appended LINE"});
    line->upgradeOpen();
    line->setEndPoint({1, 1, 1});
    EXPECT_EQ(recorder.take(), Calls{"opened LINE"});
    line->downgradeOpen();
    EXPECT_EQ(recorder.take(), Calls{"modified LINE"});
}

TEST_F(ReactorTest, TellsOfAChangeBeforeItAndAtTheClosing) {
    const OdDbObjectId id = line();
    double seen = -1;
    recorder.also = [&](const std::string& word, const OdDbObject* object) {
        if (word == "opened") seen = OdDbLine::cast(object)->endPoint().x;
    };
    auto open = drawing_test::open<OdDbLine>(id, OdDb::kForWrite);
    EXPECT_EQ(recorder.take(), Calls{}) << "opening for write is no change";
    open->setEndPoint({7, 0, 0});
    open->setEndPoint({8, 0, 0});
    EXPECT_EQ(seen, 0) << "told before the change";
    EXPECT_EQ(recorder.take(), Calls{"opened LINE"});
    open.release();
    EXPECT_EQ(recorder.take(), Calls{"modified LINE"});
}

TEST_F(ReactorTest, SaysNothingOfOpeningForWriteWithoutAChange) {
    const OdDbObjectId id = line();
    const unsigned marks = db->undoMarks();
    for (int i = 0; i < 3; ++i) id.openObject(OdDb::kForWrite);
    EXPECT_EQ(recorder.take(), Calls{});
    EXPECT_EQ(db->undoMarks(), marks);
}

TEST_F(ReactorTest, TellsOfAnEraseInsideItAndOfNothingElse) {
    const OdDbObjectId id = line();
    bool marked = false;
    recorder.also = [&](const std::string&, const OdDbObject* object) { marked = object->isErased(); };
    auto open = id.openObject(OdDb::kForWrite);
    open->erase();
    EXPECT_TRUE(marked) << "told after the mark changed";
    EXPECT_EQ(recorder.take(), Calls{"erased LINE"});
    open->erase();
    EXPECT_EQ(recorder.take(), Calls{}) << "nothing was done";
    open.release();
    EXPECT_EQ(recorder.take(), Calls{});
    id.openObject(OdDb::kForWrite, true)->erase(false);
    EXPECT_EQ(recorder.take(), Calls{"back LINE"});
}

TEST_F(ReactorTest, TellsFirstThatAnObjectCameWhenItGoesAtOnce) {
    const auto line = make<OdDbLine>();
    append(*db, line);
    line->erase();
    EXPECT_EQ(recorder.take(), (Calls{"appended LINE", "erased LINE"}));
}

TEST_F(ReactorTest, SaysNothingForOwners) {
    const OdDbObjectId block = addBlock(*db, "B");
    EXPECT_EQ(recorder.take(), Calls{"appended BLOCK_RECORD"});
    const auto reference = make<OdDbBlockReference>();
    reference->setBlockTableRecord(block);
    append(*db, reference);
    reference->downgradeOpen();
    recorder.take();
    reference->upgradeOpen();
    auto attribute = make<OdDbAttribute>();
    reference->appendAttribute(attribute);
    attribute.release();
    EXPECT_EQ(recorder.take(), Calls{"appended ATTRIB"});
    reference->downgradeOpen();
    EXPECT_EQ(recorder.take(), Calls{}) << "an attribute more is no change of the reference";
    {
        const auto root = open<OdDbDictionary>(db->getNamedObjectsDictionaryId(), OdDb::kForWrite);
        root->setAt(od("A"), OdSmartPtr<OdDbObject>(make<OdDbXrecord>()));
        EXPECT_EQ(recorder.take(), Calls{"appended XRECORD"});
        root->remove(od("A"));
        EXPECT_EQ(recorder.take(), Calls{"erased XRECORD"});
    }
    EXPECT_EQ(recorder.take(), Calls{});
    addLayer(*db, "L");
    EXPECT_EQ(recorder.take(), Calls{"appended LAYER"});
}

TEST_F(ReactorTest, ErasingAnOwnerSaysNothingOfItsParts) {
    const auto reference = make<OdDbBlockReference>();
    const OdDbObjectId id = append(*db, reference);
    reference->appendAttribute(make<OdDbAttribute>());
    reference->downgradeOpen();
    recorder.take();
    id.openObject(OdDb::kForWrite)->erase();
    EXPECT_EQ(recorder.take(), Calls{"erased INSERT"});
}

TEST_F(ReactorTest, CountsAnEqualValueAsAChange) {
    const OdDbObjectId layer = addLayer(*db, "L");
    recorder.take();
    open<OdDbLayerTableRecord>(layer, OdDb::kForWrite)->setIsFrozen(false);
    EXPECT_EQ(recorder.take(), (Calls{"opened LAYER", "modified LAYER"}));
}

TEST_F(ReactorTest, AssertWriteEnabledIsAChange) {
    const OdDbObjectId id = line();
    id.openObject(OdDb::kForWrite)->assertWriteEnabled(true, true);
    EXPECT_EQ(recorder.take(), (Calls{"opened LINE", "modified LINE"}));
    id.openObject(OdDb::kForWrite)->assertWriteEnabled(true, false);
    EXPECT_EQ(recorder.take(), Calls{"opened LINE"});
    const unsigned long long changes = db->changeCount();
    id.openObject(OdDb::kForWrite)->assertWriteEnabled(false, true);
    EXPECT_EQ(recorder.take(), (Calls{"opened LINE", "modified LINE"})) << "a change that undo doesn't see";
    EXPECT_EQ(db->changeCount(), changes);
    id.openObject(OdDb::kForWrite)->assertWriteEnabled(false, false);
    EXPECT_EQ(recorder.take(), Calls{}) << "only whether it is allowed";
}

TEST_F(ReactorTest, TellsOfUndoAndRedo) {
    db->startUndoRecord();
    const OdDbObjectId id = line();
    db->startUndoRecord();
    open<OdDbLine>(id, OdDb::kForWrite)->setEndPoint({1, 0, 0});
    db->startUndoRecord();
    id.openObject(OdDb::kForWrite)->erase();
    recorder.take();
    db->undo();
    EXPECT_EQ(recorder.take(), Calls{"back LINE"})
        << "an object that comes back is told of as if its erase was taken back";
    db->undo();
    EXPECT_EQ(recorder.take(), Calls{"undone LINE"});
    db->undo();
    EXPECT_EQ(recorder.take(), Calls{"unappended LINE"});
    db->redo();
    EXPECT_EQ(recorder.take(), Calls{"reappended LINE"});
    db->redo();
    EXPECT_EQ(recorder.take(), Calls{"undone LINE"});
    db->redo();
    EXPECT_EQ(recorder.take(), Calls{"erased LINE"});
}

TEST_F(ReactorTest, UndoTellsWhatBecameOfAnObjectOnTheWhole) {
    db->startUndoRecord();
    const OdDbObjectId stays = line();
    db->startUndoRecord();
    const OdDbObjectId passing = line();
    open<OdDbLine>(passing, OdDb::kForWrite)->erase();
    {
        const auto held = open<OdDbLine>(stays, OdDb::kForWrite);
        held->erase(true);
        held->erase(false);
        held->setEndPoint({1, 0, 0});
        held->setEndPoint({2, 0, 0});
    }
    recorder.take();
    db->undo();
    EXPECT_EQ(recorder.take(), (Calls{"undone LINE", "unappended LINE"}))
        << "marks that cancel each other out are no event, nor is the erase of what came in the step";
    db->redo();
    EXPECT_EQ(recorder.take(), (Calls{"reappended LINE", "erased LINE", "undone LINE"}));
}

TEST_F(ReactorTest, ACallbackThatErasesTheObjectIsFasterThanWhoErasesIt) {
    recorder.also = [&](const std::string& word, const OdDbObject* object) {
        if (word == "appended") const_cast<OdDbObject*>(object)->erase();
    };
    const auto line = make<OdDbLine>();
    const OdDbObjectId id = append(*db, line);
    line->erase();
    EXPECT_TRUE(id.isErased());
    EXPECT_EQ(recorder.take(), (Calls{"appended LINE", "erased LINE"}));
}

TEST_F(ReactorTest, DeletingExtendedDataThatIsNotThereChangesNothing) {
    const OdDbObjectId id = line();
    db->startUndoRecord();
    const auto lone = OdResBuf::newRb(1001);
    lone->setString(od("NOBODY"));
    open<OdDbLine>(id, OdDb::kForWrite)->setXData(lone);
    EXPECT_EQ(recorder.take(), Calls{});
    EXPECT_THROW(open<OdDbLine>(id)->setXData(lone), OdError);
    const auto data = OdResBuf::newRb(1001);
    data->setString(od("MINE"));
    const auto text = OdResBuf::newRb(1000);
    text->setString(od("x"));
    data->setNext(text);
    open<OdDbLine>(id, OdDb::kForWrite)->setXData(data);
    EXPECT_EQ(recorder.take(), (Calls{"opened LINE", "modified LINE"}));
    lone->setString(od("MINE"));
    open<OdDbLine>(id, OdDb::kForWrite)->setXData(lone);
    EXPECT_EQ(recorder.take(), (Calls{"opened LINE", "modified LINE"}));
}

TEST_F(ReactorTest, FindsTheStateFinalWhenUndoTells) {
    db->startUndoRecord();
    const OdDbObjectId a = line();
    const OdDbObjectId b = line();
    bool bothGone = true;
    recorder.also = [&](const std::string&, const OdDbObject*) {
        bothGone = bothGone && !a.isValid() && !b.isValid();
    };
    db->undo();
    EXPECT_TRUE(bothGone);
    EXPECT_EQ(recorder.calls.size(), 2u);
}

TEST_F(ReactorTest, DeliversAtTheEndOfTheOutermostTransactionWhatIsStillOpen) {
    db->startTransaction();
    const auto line = make<OdDbLine>();
    append(*db, line);
    db->startTransaction();
    db->endTransaction();
    EXPECT_EQ(recorder.take(), Calls{});
    db->endTransaction();
    EXPECT_EQ(recorder.take(), (Calls{"appended LINE", "transaction"}));
    db->startTransaction();
    line->setEndPoint({1, 0, 0});
    db->endTransaction();
    EXPECT_EQ(recorder.take(), (Calls{"opened LINE", "modified LINE", "transaction"}));
}

TEST_F(ReactorTest, DeliversWhatWasChangedBeforeTheOutermostTransactionAndIsStillOpen) {
    const OdDbObjectId id = line();
    const auto changed = drawing_test::open<OdDbLine>(id, OdDb::kForWrite);
    changed->setEndPoint({1, 0, 0});
    const auto point = make<OdDbPoint>();
    append(*db, point);
    recorder.take();
    db->startTransaction();
    db->endTransaction();
    EXPECT_EQ(recorder.take(), (Calls{"modified LINE", "appended POINT", "transaction"}));
    changed->setEndPoint({2, 0, 0});
    EXPECT_EQ(recorder.take(), Calls{"opened LINE"}) << "a change after the telling is a further one";
    db->startTransaction();
    changed->setEndPoint({3, 0, 0});
    db->endTransaction();
    EXPECT_EQ(recorder.take(), (Calls{"modified LINE", "transaction"})) << "both changes, once";
    db->startTransaction();
    db->endTransaction();
    EXPECT_EQ(recorder.take(), Calls{"transaction"});
}

TEST_F(ReactorTest, DeliversWithoutUndoAsWell) {
    db->setUndoRecording(false);
    const auto line = make<OdDbLine>();
    append(*db, line);
    db->startTransaction();
    db->endTransaction();
    EXPECT_EQ(recorder.take(), (Calls{"appended LINE", "transaction"}));
}

TEST_F(ReactorTest, AnAbortKeepsWhatWasPendingBeforeIt) {
    const auto line = make<OdDbLine>(), other = make<OdDbLine>();
    append(*db, line);
    db->startTransaction();
    append(*db, other);
    db->abortTransaction();
    EXPECT_EQ(recorder.take(), Calls{"unappended LINE"});
    line->downgradeOpen();
    EXPECT_EQ(recorder.take(), Calls{"appended LINE"});
    other->downgradeOpen();
    EXPECT_EQ(recorder.take(), Calls{});
}

TEST_F(ReactorTest, UndoOfAChangeForgetsTheChangeAndNotThatTheObjectCame) {
    auto reference = make<OdDbBlockReference>();
    reference->appendAttribute(make<OdDbAttribute>());
    append(*db, reference);
    db->startUndoRecord();
    reference->setRotation(1);
    ASSERT_TRUE(db->undo());
    EXPECT_EQ(recorder.take(), Calls{"undone INSERT"});
    reference.release();
    EXPECT_EQ(recorder.take(), (Calls{"appended ATTRIB", "appended INSERT"}));
}

TEST_F(ReactorTest, DeliversOfEachOfManyOpenObjectsOnce) {
    std::vector<OdSmartPtr<OdDbLine>> lines;
    for (int i = 0; i < 200; ++i) append(*db, lines.emplace_back(make<OdDbLine>()));
    for (int i = 0; i < 200; i += 2) lines[static_cast<std::size_t>(i)]->downgradeOpen();
    for (int round = 0; round < 3; ++round) // closed and changed again, in an order of its own
        for (std::size_t i = 0; i < 200; i += 4) {
            lines[i]->upgradeOpen();
            lines[i]->setEndPoint({1, 0, 0});
            if (round < 2) lines[i]->downgradeOpen();
        }
    recorder.take();
    db->startTransaction();
    db->endTransaction();
    const Calls calls = recorder.take();
    EXPECT_EQ(std::count(calls.begin(), calls.end(), "appended LINE"), 100);
    EXPECT_EQ(std::count(calls.begin(), calls.end(), "modified LINE"), 50);
    EXPECT_EQ(calls.size(), 151u);
    EXPECT_EQ(calls.back(), "transaction");
    lines.clear();
    EXPECT_EQ(recorder.take(), Calls{});
}

TEST_F(ReactorTest, ACallbackAtTheEndOfATransactionMayChangeWhatStaysOpen) {
    const auto line = make<OdDbLine>(), second = make<OdDbLine>();
    append(*db, second);
    second->downgradeOpen();
    append(*db, line);
    recorder.take();
    recorder.also = [&](const std::string& word, const OdDbObject*) {
        if (word == "opened") return;
        line->upgradeOpen();
        line->setEndPoint({1, 0, 0});
        second->upgradeOpen();
        second->setEndPoint({1, 0, 0});
    };
    db->startTransaction();
    db->endTransaction();
    EXPECT_EQ(recorder.take(), (Calls{"appended LINE", "opened LINE", "opened LINE", "modified LINE",
                                      "opened LINE", "transaction"}))
        << "each object is told of once, so that this ends";
    recorder.also = nullptr;
}

// --- parts that only their owner holds
// ----------------------------------------------------------------------------

namespace {

/// A reference that brings attributes along which nobody else holds.
OdSmartPtr<OdDbBlockReference> referenceWith(int attributes) {
    const auto reference = make<OdDbBlockReference>();
    for (int i = 0; i < attributes; ++i) reference->appendAttribute(make<OdDbAttribute>());
    return reference;
}

} // namespace

TEST_F(ReactorTest, TellsOfAttributesThatCameWithTheirReferenceAtItsClosing) {
    auto reference = referenceWith(2);
    append(*db, reference);
    EXPECT_EQ(recorder.take(), Calls{}) << "nothing is told inside the append";
    reference->setLayer(addLayer(*db, "L"));
    EXPECT_EQ(recorder.take(), Calls{"appended LAYER"});
    std::vector<bool> whole;
    recorder.also = [&](const std::string&, const OdDbObject* object) {
        whole.push_back(
            open<OdDbEntity>(object->isKindOf(OdDbAttribute::desc()) ? object->ownerId() : object->objectId())
                ->layer() == od("L"));
    };
    reference.release();
    EXPECT_EQ(recorder.take(), (Calls{"appended ATTRIB", "appended ATTRIB", "appended INSERT"}));
    EXPECT_EQ(whole, (std::vector<bool>{true, true, true}));
    recorder.also = nullptr;
}

TEST_F(ReactorTest, AnAttributeThatSomebodyHoldsIsToldOfWhenHeLetsItGo) {
    auto reference = make<OdDbBlockReference>();
    auto held = make<OdDbAttribute>();
    reference->appendAttribute(held);
    reference->appendAttribute(make<OdDbAttribute>());
    append(*db, reference);
    reference.release();
    EXPECT_EQ(recorder.take(), (Calls{"appended ATTRIB", "appended INSERT"}));
    EXPECT_TRUE(held->isWriteEnabled());
    held->setTextString(od("x"));
    held.release();
    EXPECT_EQ(recorder.take(), Calls{"appended ATTRIB"});
}

TEST_F(ReactorTest, TellsOfSuchAttributesAtTheEndOfTheTransactionAtTheLatest) {
    db->startTransaction();
    const auto reference = referenceWith(1);
    append(*db, reference);
    db->endTransaction();
    EXPECT_EQ(recorder.take(), (Calls{"appended ATTRIB", "appended INSERT", "transaction"}));
    reference->downgradeOpen();
    EXPECT_EQ(recorder.take(), Calls{});
}

TEST_F(ReactorTest, ReferencesThatGoAtOnceTellOfTheirAttributesFirst) {
    const auto reference = referenceWith(1);
    append(*db, reference);
    reference->erase();
    EXPECT_EQ(recorder.take(), (Calls{"appended ATTRIB", "appended INSERT", "erased INSERT"}));
}

TEST_F(ReactorTest, UndoWhileAReferenceIsOpenForgetsItsAttributes) {
    db->startUndoRecord();
    {
        const auto reference = referenceWith(2);
        append(*db, reference);
        ASSERT_TRUE(db->undo());
        EXPECT_EQ(recorder.take(), (Calls{"unappended ATTRIB", "unappended ATTRIB", "unappended INSERT"}));
    }
    EXPECT_EQ(recorder.take(), Calls{});
    ASSERT_TRUE(db->redo());
    EXPECT_EQ(recorder.take(), (Calls{"reappended INSERT", "reappended ATTRIB", "reappended ATTRIB"}));
}

TEST_F(ReactorTest, AnExceptionForAnAttributeKeepsNoOtherPartFromBeingToldOf) {
    const auto reference = referenceWith(2);
    append(*db, reference);
    int raised = 0;
    recorder.also = [&](const std::string&, const OdDbObject*) {
        if (raised++ == 0) throw OdError(eInvalidInput);
    };
    EXPECT_THROW(reference->downgradeOpen(), OdError);
    EXPECT_EQ(recorder.take(), (Calls{"appended ATTRIB", "appended ATTRIB", "appended INSERT"}));
    recorder.also = nullptr;
    reference->downgradeOpen();
    EXPECT_EQ(recorder.take(), Calls{});
}

TEST_F(ReactorTest, ACallbackForAnAttributeMayOpenAndCloseItsReference) {
    auto reference = referenceWith(1);
    append(*db, reference);
    recorder.also = [&](const std::string& word, const OdDbObject* object) {
        if (word != "appended" || !object->isKindOf(OdDbAttribute::desc())) return;
        open<OdDbBlockReference>(object->ownerId(), OdDb::kForWrite)->setRotation(1);
    };
    reference.release();
    EXPECT_EQ(recorder.take(), (Calls{"appended ATTRIB", "appended INSERT"}));
    recorder.also = nullptr;
}

TEST_F(ReactorTest, ADatabaseThatEndsWithAnOpenReferenceTellsNothing) {
    const auto reference = referenceWith(1);
    append(*db, reference);
    db = newDatabase();
    EXPECT_EQ(recorder.take(), Calls{});
    EXPECT_FALSE(reference->isDBRO());
}

TEST_F(ReactorTest, SaysNothingOfTransactionsThatAreAborted) {
    db->startTransaction();
    append(*db, make<OdDbLine>());
    recorder.take();
    db->abortTransaction();
    EXPECT_EQ(recorder.take(), Calls{"unappended LINE"});
    db->endTransaction();
    EXPECT_EQ(recorder.take(), Calls{}) << "no transaction is open";
    db->abortTransaction();
}

TEST_F(ReactorTest, ForgetsWhatAnAbortedChangeWouldHaveTold) {
    const OdDbObjectId id = line();
    auto open = drawing_test::open<OdDbLine>(id, OdDb::kForWrite);
    db->startTransaction();
    open->setEndPoint({1, 0, 0});
    db->abortTransaction();
    recorder.take();
    open.release();
    EXPECT_EQ(recorder.take(), Calls{});
}

TEST_F(ReactorTest, LetsACallbackChangeTheObjectAndItsAttributes) {
    const auto block = addBlock(*db, "B");
    recorder.take();
    recorder.also = [&](const std::string& word, const OdDbObject* object) {
        if (word != "appended" || OdDbBlockReference::cast(object) == nullptr) return;
        const auto reference = open<OdDbBlockReference>(object->objectId(), OdDb::kForWrite);
        reference->setRotation(1);
        const auto walk = reference->attributeIterator();
        open<OdDbText>(walk->objectId(), OdDb::kForWrite)->setTextString(od("seen"));
    };
    auto reference = make<OdDbBlockReference>();
    reference->setBlockTableRecord(block);
    append(*db, reference);
    reference->appendAttribute(make<OdDbAttribute>());
    reference.release();
    EXPECT_EQ(recorder.take(), (Calls{"appended ATTRIB", "appended INSERT", "opened INSERT", "opened ATTRIB",
                                      "modified ATTRIB", "modified INSERT"}));
}

TEST_F(ReactorTest, WalksACopyOfTheList) {
    struct Leaver : OdDbDatabaseReactor {
        OdDbDatabase* db = nullptr;
        OdDbDatabaseReactor* other = nullptr;
        int calls = 0;
        void objectAppended(const OdDbDatabase*, const OdDbObject*) override {
            ++calls;
            db->removeReactor(this);
            db->removeReactor(other);
        }
    } first, second;
    first.db = second.db = db.get();
    first.other = &second;
    second.other = &first;
    db->addReactor(&first);
    db->addReactor(&first);
    db->addReactor(&second);
    db->addReactor(nullptr);
    append(*db, make<OdDbLine>());
    append(*db, make<OdDbLine>());
    EXPECT_EQ(first.calls, 1);
    EXPECT_EQ(second.calls, 0) << "removed meanwhile";
    db->removeReactor(&first);
    db->removeReactor(nullptr);
}

TEST_F(ReactorTest, LetsExceptionsPassOnTheExplicitWays) {
    struct Boom {};
    recorder.also = [](const std::string&, const OdDbObject*) { throw Boom(); };
    auto line = make<OdDbLine>();
    const OdDbObjectId id = append(*db, line);
    EXPECT_THROW(line->downgradeOpen(), Boom);
    EXPECT_FALSE(line->isWriteEnabled()) << "the state is final";
    line->upgradeOpen();
    EXPECT_THROW(line->erase(), Boom);
    EXPECT_TRUE(id.isErased());
    EXPECT_THROW(line->setEndPoint({1, 0, 0}), Boom) << "before the change";
    EXPECT_EQ(line->endPoint(), OdGePoint3d());
    line->setEndPoint({2, 0, 0});
    db->startTransaction();
    const auto other = make<OdDbLine>();
    append(*db, other);
    EXPECT_THROW(db->endTransaction(), Boom);
    EXPECT_EQ(db->numActiveTransactions(), 0u);
    EXPECT_EQ(recorder.calls.back(), "transaction") << "the end is told all the same";
    recorder.also = nullptr;
}

namespace {
std::vector<std::string>* g_dropped = nullptr;
}

TEST_F(ReactorTest, ReportsWhatCantPassOutOfASmartPointer) {
    std::vector<std::string> dropped;
    g_dropped = &dropped;
    const auto before = lm::drawing::setDroppedExceptionHandler(
        [](const OdString& what) { g_dropped->push_back(utf8(what)); });
    recorder.also = [](const std::string&, const OdDbObject*) { throw OdError(od("no room")); };
    append(*db, make<OdDbLine>());
    recorder.also = nullptr;
    lm::drawing::setDroppedExceptionHandler(before);
    EXPECT_EQ(dropped, Calls{"no room"});
}

TEST_F(ReactorTest, TellsEverybodyBeforeTheFirstExceptionPasses) {
    struct Thrower : OdDbDatabaseReactor {
        void objectErased(const OdDbDatabase*, const OdDbObject*, bool) override {
            throw OdError(eInvalidInput);
        }
    } thrower;
    db->removeReactor(&recorder);
    db->addReactor(&thrower);
    db->addReactor(&recorder);
    const OdDbObjectId id = line();
    EXPECT_THROW(id.openObject(OdDb::kForWrite)->erase(), OdError);
    EXPECT_EQ(recorder.take(), Calls{"erased LINE"});
    db->removeReactor(&thrower);
}

TEST_F(ReactorTest, IsNeverCalledForAnotherDatabase) {
    const auto other = newDatabase();
    append(*other, make<OdDbLine>());
    EXPECT_EQ(recorder.take(), Calls{});
    EXPECT_FALSE(other->isUndoRecording());
}
