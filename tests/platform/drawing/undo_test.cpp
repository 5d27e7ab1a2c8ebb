// SPDX-License-Identifier: MIT
// Undo and redo take any step back and forth exactly; transactions commit and abort; blocks of undo are one
// step.
#include "drawing_dump.h"

#include <chrono>
#include <functional>
#include <random>

using namespace drawing_test;

namespace {

/// A database that keeps what undo needs.
OdSmartPtr<OdDbDatabase> recorded() {
    const auto db = newDatabase();
    db->setUndoRecording(true);
    return db;
}

OdDbObjectId addReference(OdDbDatabase& db, OdDbObjectId block, int attributes) {
    const auto reference = make<OdDbBlockReference>();
    reference->setBlockTableRecord(block);
    const OdDbObjectId id = append(db, reference);
    for (int i = 0; i < attributes; ++i) {
        const auto attribute = make<OdDbAttribute>();
        attribute->setTag(od("TAG" + std::to_string(i)));
        attribute->setTextString(od("value " + std::to_string(i)));
        reference->appendAttribute(attribute);
    }
    return id;
}

/// One change of each kind that a drawing can go through, on objects picked at random.
class RandomWork {
public:
    RandomWork(OdDbDatabase& db, unsigned seed) : m_db(db), m_random(seed) {}

    void change() {
        static const std::vector<void (RandomWork::*)()> kAll = {&RandomWork::addLine,
                                                                 &RandomWork::addSymbol,
                                                                 &RandomWork::addTheLayer,
                                                                 &RandomWork::addTheBlock,
                                                                 &RandomWork::changeEntity,
                                                                 &RandomWork::changeEntity,
                                                                 &RandomWork::eraseSomething,
                                                                 &RandomWork::eraseSomething,
                                                                 &RandomWork::unerase,
                                                                 &RandomWork::changeLayer,
                                                                 &RandomWork::renameRecord,
                                                                 &RandomWork::setExtendedData,
                                                                 &RandomWork::setDictionaryEntry,
                                                                 &RandomWork::removeDictionaryEntry,
                                                                 &RandomWork::setVariables,
                                                                 &RandomWork::showOtherBlock,
                                                                 &RandomWork::changeXrecord,
                                                                 &RandomWork::transform,
                                                                 &RandomWork::moveOrigin};
        (this->*kAll[m_random() % kAll.size()])();
    }
    unsigned number(unsigned below) { return m_random() % below; }

private:
    std::string word() { return "N" + std::to_string(m_random() % 30); }
    double real() { return static_cast<double>(m_random() % 1000) / 8; }
    OdGePoint3d point() { return {real(), real(), 0}; }

    /// Any object of the database, erased ones too; null at times.
    OdDbObjectId any(bool erased = false) {
        std::vector<OdDbObjectId> all;
        m_db.data().nodes.forEach([&](lm::drawing::Node& node) {
            const OdDbObjectId id(&node);
            if (id.isValid() && node.isErased() == erased) all.push_back(id);
        });
        return all.empty() ? OdDbObjectId() : all[m_random() % all.size()];
    }
    template<class T>
    OdSmartPtr<T> anyOf(bool erased = false) {
        for (int tries = 0; tries < 60; ++tries) {
            const OdSmartPtr<OdDbObject> object = any(erased).openObject(OdDb::kForWrite, true);
            if (T* const hit = T::cast(object.get())) return OdSmartPtr<T>(hit);
        }
        return {};
    }

    void addLine() {
        const auto line = make<OdDbLine>();
        line->setEndPoint(point());
        append(m_db, line);
        if (m_random() % 2 != 0) line->setColor(OdCmColor::fromIndex(static_cast<int>(m_random() % 200)));
        if (const auto layer = anyOf<OdDbLayerTableRecord>(); m_random() % 2 != 0 && !layer.isNull())
            line->setLayer(layer->objectId());
    }
    void addSymbol() {
        const auto block = anyOf<OdDbBlockTableRecord>();
        if (!block.isNull()) addReference(m_db, block->objectId(), static_cast<int>(m_random() % 4));
    }
    void addTheLayer() {
        const std::string name = word();
        if (!layerTable(m_db)->has(od(name))) addLayer(m_db, name);
    }
    void addTheBlock() {
        const std::string name = word();
        if (blockTable(m_db)->has(od(name))) return;
        const auto block = open<OdDbBlockTableRecord>(addBlock(m_db, name), OdDb::kForWrite);
        const auto definition = make<OdDbAttributeDefinition>();
        definition->setTag(od("TAG0"));
        block->appendOdDbEntity(definition);
    }
    void changeEntity() {
        const auto entity = anyOf<OdDbEntity>();
        if (entity.isNull()) return;
        if (auto* text = OdDbText::cast(entity.get())) text->setTextString(od(word()));
        if (auto* line = OdDbLine::cast(entity.get())) line->setStartPoint(point());
        if (auto* reference = OdDbBlockReference::cast(entity.get())) reference->setRotation(real());
        entity->setLineWeight(static_cast<int>(m_random() % 100));
    }
    void eraseSomething() {
        const OdSmartPtr<OdDbObject> object = any().openObject(OdDb::kForWrite);
        const bool isTable = OdDbSymbolTable::cast(object.get()) != nullptr;
        const bool isRoot = object->objectId() == m_db.getNamedObjectsDictionaryId();
        if (!isTable && !isRoot) object->erase();
    }
    void unerase() {
        if (const OdSmartPtr<OdDbObject> object = any(true).openObject(OdDb::kForWrite, true);
            !object.isNull())
            object->erase(false);
    }
    void changeLayer() {
        const auto layer = anyOf<OdDbLayerTableRecord>();
        if (layer.isNull()) return;
        layer->setIsFrozen(m_random() % 2 != 0);
        layer->setIsOff(m_random() % 2 != 0);
    }
    void renameRecord() {
        const auto layer = anyOf<OdDbLayerTableRecord>();
        const std::string name = word();
        if (layer.isNull() || layer->objectId() == m_db.getLayerZeroId() || layerTable(m_db)->has(od(name)))
            return;
        layer->setName(od(name));
    }
    void setExtendedData() {
        const OdSmartPtr<OdDbObject> object = any().openObject(OdDb::kForWrite);
        const std::string app = word();
        object->setXData(m_random() % 3 == 0 ? chainOf("1001 " + app)
                                             : chainOf("1001 " + app + "|1000 " + word() + "|1070 5"));
    }
    void setDictionaryEntry() {
        const auto dictionary = anyOf<OdDbDictionary>();
        if (dictionary.isNull()) return;
        if (m_random() % 2 != 0)
            dictionary->setAt(od(word()), OdSmartPtr<OdDbObject>(make<OdDbDictionary>()));
        else
            dictionary->setAt(od(word()), OdSmartPtr<OdDbObject>(make<OdDbXrecord>()));
    }
    void removeDictionaryEntry() {
        if (const auto dictionary = anyOf<OdDbDictionary>(); !dictionary.isNull())
            for (int i = 0; i < 30; ++i) dictionary->remove(od(word()));
    }
    void setVariables() {
        m_db.setINSBASE(point());
        const auto layer = anyOf<OdDbLayerTableRecord>();
        if (layer.isNull()) return;
        const auto value = OdResBuf::newRb(330);
        value->setObjectId(layer->objectId());
        m_db.setSysVar(od("CLAYER"), value);
    }
    void showOtherBlock() {
        const auto reference = anyOf<OdDbBlockReference>();
        const auto block = anyOf<OdDbBlockTableRecord>();
        if (!reference.isNull())
            reference->setBlockTableRecord(block.isNull() ? OdDbObjectId() : block->objectId());
    }
    void changeXrecord() {
        if (const auto record = anyOf<OdDbXrecord>(); !record.isNull())
            record->setFromRbChain(chainOf("1 " + word() + "|70 3"));
    }
    void transform() {
        if (const auto entity = anyOf<OdDbEntity>(); !entity.isNull())
            entity->transformBy(OdGeMatrix3d::translation({real(), real(), 0}));
    }
    void moveOrigin() {
        if (const auto block = anyOf<OdDbBlockTableRecord>(); !block.isNull()) block->setOrigin(point());
    }

    OdDbDatabase& m_db;
    std::mt19937 m_random;
};

/// Where two dumps part, for the message of a failed comparison.
std::string difference(const std::string& a, const std::string& b) {
    std::istringstream first(a), second(b);
    std::string x, y;
    while (std::getline(first, x)) {
        if (!std::getline(second, y)) return "missing: " + x;
        if (x != y) return x + "\n  against\n" + y;
    }
    return std::getline(second, y) ? "too much: " + y : "";
}

} // namespace

TEST(Undo, TakesBackAndRepeatsEachKindOfChangeInManyOrders) {
    for (unsigned seed = 1; seed <= 60; ++seed) {
        const auto db = recorded();
        RandomWork work(*db, seed);
        std::vector<std::string> states{dumpOf(*db)};
        for (int step = 0; step < 25; ++step) {
            db->startUndoRecord();
            for (unsigned n = work.number(6); n > 0; --n) work.change();
            states.push_back(dumpOf(*db));
        }
        for (std::size_t round = 0; round < 3; ++round) {
            for (std::size_t at = states.size() - 1; at > 0; --at) {
                ASSERT_TRUE(db->undo());
                ASSERT_EQ(difference(states[at - 1], dumpOf(*db)), "")
                    << "seed " << seed << " back to " << at - 1;
            }
            EXPECT_FALSE(db->undo());
            for (std::size_t at = 1; at < states.size(); ++at) {
                ASSERT_TRUE(db->redo());
                ASSERT_EQ(difference(states[at], dumpOf(*db)), "") << "seed " << seed << " on to " << at;
            }
            EXPECT_FALSE(db->redo());
        }
    }
}

TEST(Undo, WandersBetweenStepsAndGoesOnFromAnywhere) {
    for (unsigned seed = 1; seed <= 30; ++seed) {
        const auto db = recorded();
        RandomWork work(*db, seed + 1000);
        std::vector<std::string> states{dumpOf(*db)};
        for (int round = 0; round < 120; ++round) {
            const unsigned what = work.number(4);
            if (what == 0 && states.size() > 1) {
                ASSERT_TRUE(db->undo());
                const std::string now = dumpOf(*db);
                ASSERT_EQ(difference(states[states.size() - 2], now), "")
                    << "seed " << seed << " round " << round;
                if (work.number(2) == 0) {
                    ASSERT_TRUE(db->redo());
                    ASSERT_EQ(difference(states.back(), dumpOf(*db)), "")
                        << "seed " << seed << " round " << round;
                } else {
                    states.pop_back();
                }
                continue;
            }
            db->startUndoRecord();
            for (unsigned n = work.number(5); n > 0; --n) work.change();
            states.push_back(dumpOf(*db));
        }
    }
}

TEST(Undo, TakesBackWhatCameFromAFile) {
    for (const char* const name : {"/examples/motor-starter/motor-starter.dxf"}) {
        const OdSmartPtr<OdDbDatabase> db = lm::drawing::readDrawing(od(std::string(LM_SOURCE_DIR) + name));
        db->setUndoRecording(true);
        RandomWork work(*db, 7);
        const std::string before = dumpOf(*db);
        for (int step = 0; step < 8; ++step) {
            db->startUndoRecord();
            for (int n = 0; n < 10; ++n) work.change();
        }
        const std::string after = dumpOf(*db);
        while (db->undo()) continue;
        EXPECT_EQ(difference(before, dumpOf(*db)), "");
        while (db->redo()) continue;
        EXPECT_EQ(difference(after, dumpOf(*db)), "");
    }
}

TEST(Undo, AbortsTransactionsInsideSteps) {
    for (unsigned seed = 1; seed <= 40; ++seed) {
        const auto db = recorded();
        RandomWork work(*db, seed + 500);
        const std::string empty = dumpOf(*db);
        std::vector<std::string> open;
        db->startUndoRecord();
        for (int round = 0; round < 80; ++round) {
            const unsigned what = work.number(6);
            if (what == 0) {
                open.push_back(dumpOf(*db));
                db->startTransaction();
            } else if (what == 1 && !open.empty()) {
                db->abortTransaction();
                ASSERT_EQ(difference(open.back(), dumpOf(*db)), "") << "seed " << seed << " round " << round;
                open.pop_back();
            } else if (what == 2 && !open.empty()) {
                db->endTransaction();
                open.pop_back();
            } else {
                work.change();
            }
        }
        while (!open.empty()) {
            db->endTransaction();
            open.pop_back();
        }
        while (db->undo()) continue;
        EXPECT_EQ(difference(empty, dumpOf(*db)), "");
    }
}

TEST(Undo, WithoutRecordingTransactionsStillAbort) {
    const auto db = newDatabase();
    const std::string before = dumpOf(*db);
    db->startTransaction();
    addLayer(*db, "A");
    db->abortTransaction();
    EXPECT_EQ(difference(before, dumpOf(*db)), "");
    addLayer(*db, "B");
    EXPECT_FALSE(db->undo());
    EXPECT_TRUE(layerTable(*db)->has(od("B")));
}

TEST(Undo, LeavesNoValidIdOfWhatItTookBack) {
    const auto db = recorded();
    db->startUndoRecord();
    const OdDbObjectId id = append(*db, make<OdDbLine>());
    const OdDbHandle handle = id.getHandle();
    ASSERT_TRUE(db->undo());
    EXPECT_FALSE(id.isValid());
    EXPECT_TRUE(id.openObject(OdDb::kForRead, true).isNull());
    EXPECT_TRUE(db->getOdDbObjectId(handle).isNull());
    ASSERT_TRUE(db->redo());
    EXPECT_TRUE(id.isValid());
    EXPECT_EQ(db->getOdDbObjectId(handle), id);
    EXPECT_FALSE(id.openObject().isNull());
}

TEST(Undo, NeverGivesAHandleTwice) {
    const auto db = recorded();
    db->startUndoRecord();
    const OdDbHandle first = append(*db, make<OdDbLine>()).getHandle();
    db->undo();
    db->startUndoRecord();
    EXPECT_NE(append(*db, make<OdDbLine>()).getHandle(), first);
    EXPECT_FALSE(db->redo()) << "a change forgets what could be repeated";
}

TEST(Undo, HoldsObjectsThatSomebodyHolds) {
    const auto db = recorded();
    db->startUndoRecord();
    const auto line = make<OdDbLine>();
    append(*db, line);
    line->setEndPoint({1, 2, 3});
    db->undo();
    db->startUndoRecord();
    append(*db, make<OdDbCircle>()); // forgets the line for good
    EXPECT_EQ(line->endPoint(), OdGePoint3d(1, 2, 3));
    EXPECT_FALSE(line->objectId().isValid());
}

TEST(Undo, ChangesOpenObjectsInPlace) {
    const auto db = recorded();
    const OdDbObjectId id = append(*db, make<OdDbLine>());
    const auto line = open<OdDbLine>(id, OdDb::kForWrite);
    db->startUndoRecord();
    line->setEndPoint({5, 0, 0});
    db->undo();
    EXPECT_EQ(line->endPoint(), OdGePoint3d());
    db->redo();
    EXPECT_EQ(line->endPoint(), OdGePoint3d(5, 0, 0));
}

TEST(Undo, TakesABlockAsOneStep) {
    const auto db = recorded();
    const std::string before = dumpOf(*db);
    db->startUndoRecord();
    db->blockUndoRecording(true);
    addLayer(*db, "A");
    db->startUndoRecord();
    addLayer(*db, "B");
    db->blockUndoRecording(false);
    EXPECT_EQ(db->undoMarks(), 1u);
    ASSERT_TRUE(db->undo());
    EXPECT_EQ(difference(before, dumpOf(*db)), "");
}

TEST(Undo, TakesBackEmptySteps) {
    const auto db = recorded();
    db->startUndoRecord();
    db->startUndoRecord();
    EXPECT_EQ(db->undoMarks(), 2u);
    EXPECT_TRUE(db->undo());
    EXPECT_TRUE(db->undo());
    EXPECT_FALSE(db->undo());
}

TEST(Undo, WaitsForTheEndOfATransaction) {
    const auto db = recorded();
    db->startUndoRecord();
    addLayer(*db, "A");
    db->startTransaction();
    EXPECT_FALSE(db->undo());
    EXPECT_FALSE(db->redo());
    db->endTransaction();
    EXPECT_TRUE(db->undo());
}

TEST(Undo, ForgetsWhenRecordingIsTurnedOff) {
    const auto db = recorded();
    db->startUndoRecord();
    addLayer(*db, "A");
    db->setUndoRecording(false);
    EXPECT_FALSE(db->undo());
    EXPECT_TRUE(layerTable(*db)->has(od("A")));
    EXPECT_EQ(db->undoMarks(), 0u);
}

TEST(Undo, CostsWhatAStepChangedAndNotWhatTheDrawingHolds) {
    // One attribute, edited in a small drawing and in one of 60,000 entities.
    const auto stepTime = [](int entities) {
        const auto db = recorded();
        const OdDbObjectId block = addBlock(*db, "B");
        const OdDbObjectId reference = addReference(*db, block, 2);
        for (int i = 0; i < entities; ++i) append(*db, make<OdDbLine>());
        const OdSmartPtr<OdDbEntity> attribute =
            open<OdDbBlockReference>(reference)->attributeIterator()->entity();
        const OdDbObjectId id = attribute->objectId();
        double best = 1e9;
        for (int round = 0; round < 20; ++round) {
            const auto start = std::chrono::steady_clock::now();
            for (int n = 0; n < 100; ++n) {
                db->startUndoRecord();
                open<OdDbText>(id, OdDb::kForWrite)->setTextString(od("new " + std::to_string(n)));
                db->undo();
            }
            const std::chrono::duration<double> spent = std::chrono::steady_clock::now() - start;
            best = std::min(best, spent.count());
        }
        return best;
    };
    EXPECT_LT(stepTime(60000), 20 * stepTime(10));
}

TEST(Dictionaries, AreAsQuickWithManyEntriesAndFindTheFirst) {
    const auto db = recorded();
    const auto root = open<OdDbDictionary>(db->getNamedObjectsDictionaryId(), OdDb::kForWrite);
    constexpr int kMany = 20000;
    for (int i = 0; i < kMany; ++i)
        root->setAt(od("K" + std::to_string(i)), OdSmartPtr<OdDbObject>(make<OdDbXrecord>()));
    for (int i = 0; i < kMany; i += 777) EXPECT_TRUE(root->has(od("K" + std::to_string(i))));
    EXPECT_FALSE(root->has(od("k1")));
    root->remove(od("K5"));
    EXPECT_FALSE(root->has(od("K5")));
    db->undo();
    EXPECT_FALSE(root->has(od("K6")));
    EXPECT_EQ(root->numEntries(), 0u);
    db->redo();
    EXPECT_FALSE(root->has(od("K5")));
    EXPECT_TRUE(root->has(od("K6")));
}
