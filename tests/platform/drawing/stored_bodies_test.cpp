// SPDX-License-Identifier: MIT
// Bodies of the modeller that a file holds apart from their entities: they come along with copies inside the
// drawing, and what would be empty in another drawing isn't brought there.
#include "clone_support.h"

using namespace drawing_test;

namespace {

std::string solid(const char* handle, const char* owner, const char* body = "290 1") {
    return "0 3DSOLID|5 " + std::string(handle) + "|330 " + owner +
           "|100 AcDbEntity|8 0|100 AcDbModelerGeometry|" + body + "|100 AcDb3dSolid|350 0";
}

std::string recordOf(const char* handle, const char* bytes) {
    return "0 ACDSRECORD|90 1|2 AcDbDs::ID|280 10|320 " + std::string(handle) +
           "|2 ASM_Data|280 15|94 2|310 " + bytes;
}

/// Solids A1 in model space and A2 in block "B", whose bodies stand apart, and A3, which has its body itself.
OdSmartPtr<OdDbDatabase> drawing(const std::string& records, const std::string& more = {}) {
    dxf::Parts parts;
    parts.version = "AC1027";
    parts.blockRecords = dxf::Parts::record("BLOCK_RECORD", "30", "1", "B");
    parts.blocks = dxf::Parts::block("B", "31", "30", solid("A2", "30"));
    parts.entities =
        solid("A1", "1F") + "|" + solid("A3", "1F", "70 1|1 body") + (more.empty() ? "" : "|" + more);
    std::string groups = parts.groups();
    groups.insert(groups.rfind("0 EOF"),
                  "0 SECTION|2 ACDSDATA|70 2|71 6|0 ACDSSCHEMA|90 1|1 S|2 ID|280 10|91 "
                  "8|" +
                      records + "|0 ENDSEC|");
    return readGroups(groups);
}

const std::string kRecords = "0 ACDSRECORD|90 0|2 AcDbDs::ID|280 10|320 30|310 FF|" + recordOf("A1", "AB01") +
                             "|" + recordOf("A2", "AB02");

/// The record of an entity in the file of a drawing, "" for none.
std::string recordIn(OdDbDatabase& db, OdDbObjectId id) {
    const std::string bytes = written(db);
    const std::string mark = "320\n" + handleText(id) + "\n";
    std::string plain;
    for (const char c : bytes)
        if (c != '\r' && c != ' ') plain += c;
    const std::size_t at = plain.find(mark);
    return at == std::string::npos ? std::string() : plain.substr(at, plain.find("\n0\n", at) - at);
}

OdDbObjectId idOf(OdDbDatabase& db, unsigned handle) {
    return db.getOdDbObjectId(OdDbHandle(handle));
}

OdDbObjectId cloned(OdDbDatabase& db, OdDbObjectId id) {
    OdDbIdMapping mapping;
    OdArray<OdDbObjectId> ids;
    ids.append(id);
    db.deepCloneObjects(ids, db.getModelSpaceId(), mapping);
    return cloneIn(mapping, id);
}

} // namespace

TEST(StoredBodies, ComeAlongWithAClone) {
    const auto db = drawing(kRecords);
    const std::string before = written(*db);
    const OdDbObjectId one = cloned(*db, idOf(*db, 0xA1)), two = cloned(*db, idOf(*db, 0xA2)),
                       again = cloned(*db, one);
    for (const auto& [id, bytes] :
         {std::pair(one, "AB01"), std::pair(two, "AB02"), std::pair(again, "AB01")}) {
        EXPECT_TRUE(contains(recordIn(*db, id), bytes)) << recordIn(*db, id);
        EXPECT_TRUE(contains(recordIn(*db, id), "ASM_Data"));
    }
    EXPECT_TRUE(contains(recordIn(*db, idOf(*db, 0xA1)), "AB01")) << "the first keeps its own";
    const auto reread = readBytes(written(*db));
    EXPECT_TRUE(contains(recordIn(*reread, reread->getOdDbObjectId(again.getHandle())), "AB01"));
    EXPECT_EQ(written(*drawing(kRecords)), before);
}

TEST(StoredBodies, ComeAlongWithACopyThatIsAppended) {
    const auto db = drawing(kRecords);
    const OdSmartPtr<OdDbEntity> copy(static_cast<OdDbEntity*>(open<OdDbEntity>(idOf(*db, 0xA1))->clone()),
                                      lm::drawing::kAttach);
    append(*db, copy);
    open<OdDbEntity>(idOf(*db, 0xA1), OdDb::kForWrite)->erase(true);
    EXPECT_TRUE(contains(recordIn(*db, copy->objectId()), "AB01"));
}

TEST(StoredBodies, KeepACopyFromBeingAppendedToAnotherDrawing) {
    auto source = drawing(kRecords);
    const auto db = newDatabase();
    const std::string before = written(*db);
    const auto copyOf = [&](unsigned handle) {
        return OdSmartPtr<OdDbEntity>(
            static_cast<OdDbEntity*>(open<OdDbEntity>(idOf(*source, handle))->clone()), lm::drawing::kAttach);
    };
    const auto empty = copyOf(0xA1), whole = copyOf(0xA3), held = open<OdDbEntity>(idOf(*source, 0xA2));
    EXPECT_EQ(codeOf([&] { append(*db, empty); }), eNotApplicable);
    EXPECT_EQ(errorOf([&] { append(*db, empty); }),
              "a 3DSOLID has its body in a part of the file that can't be brought to another drawing");
    EXPECT_FALSE(empty->isDBRO());
    EXPECT_EQ(written(*db), before) << "nothing was begun";
    append(*source, empty); // at home it is whole
    EXPECT_TRUE(contains(recordIn(*source, empty->objectId()), "AB01"));
    const std::string entry = entryOf(*db, append(*db, whole));
    EXPECT_TRUE(contains(entry, "1 body")) << entry;
    source = newDatabase();
    EXPECT_FALSE(held->isDBRO()) << "its drawing has gone";
    EXPECT_EQ(codeOf([&] { append(*db, held); }), eNotApplicable);
}

TEST(StoredBodies, AreNotGivenToOthers) {
    const auto db = drawing(kRecords);
    EXPECT_EQ(recordIn(*db, cloned(*db, idOf(*db, 0xA3))), "") << "it has its body itself";
    const auto line = make<OdDbLine>();
    append(*db, line);
    EXPECT_EQ(recordIn(*db, line->objectId()), "");
}

TEST(StoredBodies, KeepTheirEntitiesFromOtherDrawings) {
    const auto source = drawing(kRecords);
    const auto db = newDatabase();
    const std::string before = written(*db);
    try {
        db->insert(od("NEW"), source.get());
        FAIL() << "must raise";
    } catch (const OdError& error) {
        EXPECT_EQ(error.code(), eNotApplicable);
        EXPECT_TRUE(contains(utf8(error.description()), "3DSOLID A1")) << utf8(error.description());
    }
    EXPECT_EQ(written(*db), before) << "nothing was begun";
}

TEST(StoredBodies, KeepBlocksThatAreShownFromOtherDrawings) {
    const auto db = newDatabase();
    EXPECT_TRUE(db->insert(od("UNUSED"), drawing(recordOf("A2", "AB02")).get()).isValid());
    const auto shown = drawing(recordOf("A2", "AB02"),
                               "0 INSERT|5 A9|330 1F|100 AcDbEntity|8 0|100 AcDbBlockReference|2 B|10 0.0|20 "
                               "0.0|30 0.0");
    EXPECT_THROW(db->insert(od("SHOWN"), shown.get()), OdError);
    const auto erased = drawing(recordOf("A1", "AB01"));
    open<OdDbEntity>(idOf(*erased, 0xA1), OdDb::kForWrite)->erase(true);
    EXPECT_TRUE(db->insert(od("ERASED"), erased.get()).isValid());
}
