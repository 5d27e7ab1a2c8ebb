// SPDX-License-Identifier: MIT
// What an entity owns beside its parts, such as its extension dictionary, and copies that are made outside
// the drawing: each gets its own, so that nothing is lost when the source goes.
#include "clone_support.h"
#include "drawing_dump.h"

using namespace drawing_test;

namespace {

using Pieces = OdArray<OdSmartPtr<OdDbEntity>>;

std::string entity(const std::string& type, const std::string& handle, const std::string& owner,
                   const std::string& dictionary, const std::string& groups) {
    return "0 " + type + "|5 " + handle + "|102 {ACAD_REACTORS|330 " + dictionary +
           "|330 C|102 }|102 {ACAD_XDICTIONARY|360 " + dictionary + "|102 }|330 " + owner +
           "|100 AcDbEntity|8 0|" + groups;
}

/// An extension dictionary with one record, which names the entity.
std::string dictionary(const std::string& handle, const std::string& owner, const std::string& text) {
    return "0 DICTIONARY|5 " + handle + "|330 " + owner + "|100 AcDbDictionary|280 1|281 1|3 DATA|360 " +
           handle + "0|0 XRECORD|5 " + handle + "0|330 " + handle + "|100 AcDbXrecord|280 1|1 " + text +
           "|330 " + owner;
}

const std::string kLine = "100 AcDbLine|10 0.0|20 0.0|30 0.0|11 1.0|21 0.0|31 0.0";
const std::string kBlockOf = "100 AcDbBlockReference|2 ";

/// A block "B" with a line, a thing that isn't read and owns a record by a handle, a circle and a reference
/// with an attribute, all with extension dictionaries; and a reference to it, 100.
struct OwnedCopiesTest : testing::Test {
    OdSmartPtr<OdDbDatabase> db;

    OwnedCopiesTest() {
        dxf::Parts parts;
        parts.blockRecords = dxf::Parts::joined({dxf::Parts::record("BLOCK_RECORD", "30", "1", "B"),
                                                 dxf::Parts::record("BLOCK_RECORD", "32", "1", "INNER")});
        parts.blocks = dxf::Parts::joined(
            {dxf::Parts::block(
                 "B", "31", "30",
                 dxf::Parts::joined(
                     {entity("LINE", "40", "30", "50", kLine),
                      entity("THING", "41", "30", "51", "100 AcDbThing|360 58|340 C"),
                      entity("CIRCLE", "42", "30", "52", "100 AcDbCircle|10 0.0|20 0.0|30 0.0|40 2.0"),
                      entity("INSERT", "43", "30", "53", kBlockOf + "INNER|66 1|10 0.0|20 0.0|30 0.0"),
                      entity("ATTRIB", "44", "43", "54",
                             "100 AcDbText|10 0.0|20 0.0|30 0.0|40 1.0|1 v|100 AcDbAttribute|2 T|70 0"),
                      "0 SEQEND|5 45|330 43|100 AcDbEntity|8 0"})),
             dxf::Parts::block("INNER", "33", "32")});
        parts.entities = "0 INSERT|5 100|330 1F|100 AcDbEntity|8 0|" + kBlockOf + "B|10 10.0|20 0.0|30 0.0";
        parts.objects = dxf::Parts::joined(
            {dictionary("50", "40", "line"), dictionary("51", "41", "thing"),
             dictionary("52", "42", "circle"), dictionary("53", "43", "symbol"),
             dictionary("54", "44", "attribute"), "0 XRECORD|5 58|330 41|100 AcDbXrecord|280 1|1 owned"});
        db = readGroups(parts.groups());
        EXPECT_EQ(reportOf(*db), "");
        db->setUndoRecording(true);
    }

    OdDbObjectId idOf(const char* handle) const {
        return drawing_test::byHandle<OdDbObject>(*db, handle)->objectId();
    }

    /// The pieces of the reference, put into model space.
    std::vector<OdDbObjectId> exploded() {
        Pieces pieces;
        const auto reference = byHandle<OdDbBlockReference>(*db, "100", OdDb::kForWrite);
        EXPECT_EQ(reference->explode(pieces), eOk);
        std::vector<OdDbObjectId> ids;
        for (const OdSmartPtr<OdDbEntity>& piece : pieces) ids.push_back(append(*db, piece));
        reference->erase();
        return ids;
    }
};

/// The first handle behind a code in an entry, null for none.
OdDbObjectId named(OdDbDatabase& db, OdDbObjectId id, const std::string& lead) {
    const std::string entry = entryOf(db, id);
    const std::size_t at = entry.find(lead);
    if (at == std::string::npos) return OdDbObjectId::kNull;
    const std::size_t from = at + lead.size();
    return db.getOdDbObjectId(
        OdDbHandle(std::stoull(entry.substr(from, entry.find('|', from) - from), nullptr, 16)));
}

OdDbObjectId dictionaryOf(OdDbDatabase& db, OdDbObjectId id) {
    return named(db, id, "102 {ACAD_XDICTIONARY|360 ");
}

/// Checks that an entity has an extension dictionary of its own with a text, and that it names the entity.
void expectOwn(OdDbDatabase& db, OdDbObjectId id, const std::string& text, OdDbObjectId source = {}) {
    SCOPED_TRACE(text);
    const OdDbObjectId dictionary = dictionaryOf(db, id);
    ASSERT_TRUE(dictionary.isValid()) << entryOf(db, id);
    EXPECT_EQ(dictionary.openObject()->ownerId(), id);
    const OdSmartPtr<OdDbXrecord> record(open<OdDbDictionary>(dictionary)->getAt(od("DATA"), OdDb::kForRead));
    ASSERT_FALSE(record.isNull());
    EXPECT_EQ(record->ownerId(), dictionary);
    EXPECT_EQ(textOf(record->rbChain()), "1 " + text + "|330 " + handleText(id));
    const std::string entry = entryOf(db, id);
    EXPECT_EQ(named(db, id, "102 {ACAD_REACTORS|330 "), dictionary) << entry;
    EXPECT_FALSE(contains(entry, "|330 C|"))
        << "what reacts to the source doesn't react to the copy: " << entry;
    EXPECT_TRUE(source.isNull() || dictionaryOf(db, source) != dictionary);
}

} // namespace

TEST_F(OwnedCopiesTest, PiecesOfAReferenceHaveTheirOwnExtensionDictionaries) {
    const std::vector<OdDbObjectId> ids = exploded();
    ASSERT_EQ(ids.size(), 4u);
    expectOwn(*db, ids[0], "line", idOf("40"));
    expectOwn(*db, ids[1], "thing", idOf("41"));
    expectOwn(*db, ids[2], "circle", idOf("42"));
    expectOwn(*db, ids[3], "symbol", idOf("43"));
    expectOwn(*db, attributeIdsOf(ids[3]).at(0), "attribute", idOf("44"));
    for (const char* source : {"40", "41", "42", "43", "44"})
        EXPECT_EQ(dictionaryOf(*db, idOf(source)).openObject()->ownerId(), idOf(source));
}

TEST_F(OwnedCopiesTest, PiecesHaveTheirOwnOfWhatTheGroupsOwnByHandle) {
    const OdDbObjectId thing = exploded()[1];
    const OdDbObjectId record = named(*db, thing, "100 AcDbThing|360 ");
    ASSERT_TRUE(record.isValid());
    EXPECT_NE(record, idOf("58"));
    EXPECT_EQ(record.openObject()->ownerId(), thing);
    EXPECT_EQ(textOf(open<OdDbXrecord>(record)->rbChain()), "1 owned");
    EXPECT_TRUE(contains(entryOf(*db, thing), "|340 C")) << "what is only named stays";
}

TEST_F(OwnedCopiesTest, ThePiecesKeepTheirDataWhenTheBlockGoesAndTheDrawingIsSaved) {
    const std::vector<OdDbObjectId> ids = exploded();
    OdArray<OdDbObjectId> unused;
    unused.append(idOf("30"));
    db->purge(unused);
    ASSERT_EQ(unused.size(), 1u);
    unused[0].openObject(OdDb::kForWrite)->erase();
    const auto again = readBytes(written(*db));
    EXPECT_EQ(reportOf(*again), "");
    const auto there = [&](OdDbObjectId id) { return again->getOdDbObjectId(id.getHandle()); };
    expectOwn(*again, there(ids[0]), "line");
    expectOwn(*again, there(ids[1]), "thing");
    expectOwn(*again, there(ids[2]), "circle");
    expectOwn(*again, there(ids[3]), "symbol");
    expectOwn(*again, attributeIdsOf(there(ids[3])).at(0), "attribute");
}

TEST_F(OwnedCopiesTest, EachCopyOfAnArrayHasItsOwn) {
    OdArray<OdSmartPtr<OdDbEntity>> pieces;
    const auto reference = byHandle<OdDbBlockReference>(*db, "100");
    EXPECT_EQ(reference->explode(pieces), eOk);
    EXPECT_EQ(reference->explode(pieces), eOk);
    const OdDbObjectId one = append(*db, pieces[0]), two = append(*db, pieces[4]);
    expectOwn(*db, one, "line");
    expectOwn(*db, two, "line", one);
}

TEST_F(OwnedCopiesTest, UndoTakesThemBackAndRedoRepeatsThem) {
    db->startUndoRecord();
    const auto behindTheSeed = [&] {
        const std::string bytes = written(*db);
        return bytes.substr(bytes.find("TABLES")); // handles aren't given twice
    };
    const std::string before = Dump(*db).text(), bytes = behindTheSeed();
    const std::vector<OdDbObjectId> ids = exploded();
    const std::string after = Dump(*db).text();
    ASSERT_TRUE(db->undo());
    EXPECT_EQ(Dump(*db).text(), before);
    EXPECT_EQ(behindTheSeed(), bytes);
    ASSERT_TRUE(db->redo());
    EXPECT_EQ(Dump(*db).text(), after);
    expectOwn(*db, ids[0], "line");
    expectOwn(*db, ids[3], "symbol");
}

TEST_F(OwnedCopiesTest, AnAbortTakesThemBackWhileTheCopyIsStillOpen) {
    const std::string before = Dump(*db).text();
    CloneRecorder recorder;
    db->addReactor(&recorder);
    {
        db->startTransaction();
        const OdSmartPtr<OdDbEntity> copy(static_cast<OdDbEntity*>(idOf("43").openObject()->clone()),
                                          lm::drawing::kAttach);
        append(*db, copy);
        db->abortTransaction();
        EXPECT_EQ(recorder.take(), std::vector<std::string>{});
    }
    EXPECT_EQ(recorder.take(), std::vector<std::string>{}) << "its closing has nothing to tell";
    EXPECT_EQ(Dump(*db).text(), before);
}

TEST_F(OwnedCopiesTest, ACopyOfACopyHasItsOwn) {
    const auto copyOf = [&](OdDbObjectId id) {
        return append(*db, OdSmartPtr<OdDbEntity>(static_cast<OdDbEntity*>(id.openObject()->clone()),
                                                  lm::drawing::kAttach));
    };
    for (const auto& [source, text] :
         {std::pair("40", "line"), std::pair("41", "thing"), std::pair("43", "symbol")}) {
        const OdDbObjectId first = copyOf(idOf(source)), second = copyOf(first);
        first.openObject(OdDb::kForWrite)->erase();
        expectOwn(*db, second, text, idOf(source));
        OdDbIdMapping mapping;
        OdArray<OdDbObjectId> ids;
        ids.append(second);
        db->deepCloneObjects(ids, db->getModelSpaceId(), mapping);
        expectOwn(*db, cloneIn(mapping, second), text, second);
    }
}

TEST_F(OwnedCopiesTest, ACopyThatIsAppendedWhenItsSourceIsErasedHasItsOwn) {
    const OdSmartPtr<OdDbEntity> copy(static_cast<OdDbEntity*>(idOf("40").openObject()->clone()),
                                      lm::drawing::kAttach);
    idOf("40").openObject(OdDb::kForWrite)->erase();
    idOf("30").openObject(OdDb::kForWrite)->erase();
    const OdDbObjectId id = append(*db, copy);
    expectOwn(*db, id, "line");
}

TEST_F(OwnedCopiesTest, ReactorsHearOfThemWhenTheCopyIsClosedAndBeforeIt) {
    CloneRecorder recorder;
    db->addReactor(&recorder);
    OdSmartPtr<OdDbEntity> copy(static_cast<OdDbEntity*>(idOf("40").openObject()->clone()),
                                lm::drawing::kAttach);
    append(*db, copy);
    EXPECT_EQ(recorder.take(), std::vector<std::string>{});
    copy.release();
    EXPECT_EQ(recorder.take(),
              (std::vector<std::string>{"appended XRECORD", "appended DICTIONARY", "appended LINE"}));
}

TEST_F(OwnedCopiesTest, DeepClonesHaveOneEachAsBefore) {
    OdDbIdMapping mapping;
    OdArray<OdDbObjectId> ids;
    ids.append(idOf("40"));
    ids.append(idOf("43"));
    db->deepCloneObjects(ids, db->getModelSpaceId(), mapping);
    EXPECT_EQ(mapping.pairs().size(), 9u)
        << "line, symbol, attribute, and for each a dictionary and a record";
    expectOwn(*db, cloneIn(mapping, idOf("40")), "line", idOf("40"));
    expectOwn(*db, cloneIn(mapping, idOf("44")), "attribute", idOf("44"));
}

TEST_F(OwnedCopiesTest, TheDictionaryOfAllIsNeverOwned) {
    dxf::Parts parts;
    parts.entities = "0 LINE|5 100|102 {ACAD_XDICTIONARY|360 C|102 }|330 1F|100 AcDbEntity|8 0|" + kLine;
    const auto broken = readGroups(parts.groups());
    const OdSmartPtr<OdDbEntity> copy(static_cast<OdDbEntity*>(byHandle<OdDbObject>(*broken, "100")->clone()),
                                      lm::drawing::kAttach);
    EXPECT_FALSE(contains(entryOf(*broken, append(*broken, copy)), "XDICTIONARY"));
}

// --- copies that go to another drawing
// ----------------------------------------------------------------------------

TEST_F(OwnedCopiesTest, ACopyThatGoesToAnotherDrawingTakesWhatItOwnsAlong) {
    const auto other = newDatabase();
    addLayer(*other, "L"); // so that handles differ
    const auto copied = [&](const char* handle) {
        return append(*other,
                      OdSmartPtr<OdDbEntity>(static_cast<OdDbEntity*>(idOf(handle).openObject()->clone()),
                                             lm::drawing::kAttach));
    };
    const std::string before = Dump(*db).text();
    const OdDbObjectId line = copied("40"), thing = copied("41");
    expectOwn(*other, line, "line");
    expectOwn(*other, thing, "thing");
    const OdDbObjectId record = named(*other, thing, "100 AcDbThing|360 ");
    ASSERT_TRUE(record.isValid());
    EXPECT_EQ(textOf(open<OdDbXrecord>(record)->rbChain()), "1 owned");
    const auto again = readBytes(written(*other));
    EXPECT_EQ(reportOf(*again), "");
    expectOwn(*again, again->getOdDbObjectId(thing.getHandle()), "thing");
    const OdDbObjectId symbol = copied("43");
    expectOwn(*other, symbol, "symbol");
    expectOwn(*other, attributeIdsOf(symbol).at(0), "attribute");
    EXPECT_EQ(Dump(*db).text(), before) << "the source stays";
}

TEST_F(OwnedCopiesTest, ACopyWhoseDrawingHasGoneComesWithoutWhatItNamed) {
    const OdSmartPtr<OdDbEntity> copy(static_cast<OdDbEntity*>(idOf("41").openObject()->clone()),
                                      lm::drawing::kAttach);
    db = newDatabase();
    const std::string entry = entryOf(*db, append(*db, copy));
    EXPECT_FALSE(contains(entry, "XDICTIONARY")) << entry;
    EXPECT_TRUE(contains(entry, "100 AcDbThing|360 0|340 0")) << entry;
}
