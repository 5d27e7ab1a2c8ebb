// SPDX-License-Identifier: MIT
// What a file needs and the database needn't have: made for new drawings and for old sources, never for
// others.
#include "upgrade_support.h"

#include "drawing/dictionary.h"
#include "drawing/inventory.h"

namespace drawing_test {
namespace {

std::vector<std::string> keysOf(OdDbObjectId dictionary) {
    std::vector<std::string> keys;
    const auto walk = open<OdDbDictionary>(dictionary)->newIterator();
    for (; !walk->done(); walk->next()) keys.push_back(utf8(walk->name()));
    return keys;
}

const std::vector<std::string> kRootKeys = {"ACAD_GROUP", "ACAD_LAYOUT", "ACAD_MLINESTYLE",
                                            "ACAD_PLOTSETTINGS", "ACAD_PLOTSTYLENAME"};

std::size_t countOf(const std::string& bytes, const std::string& type, const std::string& part = "") {
    std::size_t count = 0;
    for (const std::string& entry : entriesOf(bytes))
        if (entry.rfind("0 " + type, 0) == 0 &&
            (entry.size() == type.size() + 2 || entry[type.size() + 2] == '|') && contains(entry + "|", part))
            ++count;
    return count;
}

/// The groups of a header variable in the notation.
std::string variableOf(const std::string& bytes, const std::string& name) {
    const std::string all = notationOf(bytes);
    const std::size_t at = all.find("|9 " + name + "|");
    if (at == std::string::npos) return {};
    const std::size_t begin = at + name.size() + 4;
    return all.substr(begin, std::min(all.find("|9 ", begin), all.find("|0 ", begin)) - begin);
}

TEST(Skeleton, CompletesANewDrawing) {
    for (const FileVersion version : kVersions) {
        const std::string bytes = saved(*newDatabase().get(), {version});
        for (const char* const section : {"HEADER", "CLASSES", "TABLES", "BLOCKS", "ENTITIES", "OBJECTS"})
            EXPECT_EQ(countOf(bytes, "SECTION", std::string("|2 ") + section + "|"), 1u) << section;
        for (const char* const table :
             {"VPORT", "LTYPE", "LAYER", "STYLE", "VIEW", "UCS", "APPID", "DIMSTYLE", "BLOCK_RECORD"})
            EXPECT_EQ(countOf(bytes, "TABLE", std::string("|2 ") + table + "|"), 1u) << table;
        EXPECT_EQ(countOf(bytes, "ENDTAB"), 9u);
        EXPECT_EQ(countOf(bytes, "APPID", "|2 ACAD|"), 1u);
        EXPECT_EQ(countOf(bytes, "DIMSTYLE", "|2 Standard|"), 1u);
        EXPECT_EQ(valueIn(firstOf(bytes, "TABLE", "|2 APPID|"), 70), "1");
    }
}

TEST(Skeleton, HasTheDictionariesOfEveryDrawing) {
    const auto read = savedAndRead(*newDatabase().get());
    EXPECT_EQ(keysOf(read->getNamedObjectsDictionaryId()), kRootKeys);
    const auto root = open<OdDbDictionary>(read->getNamedObjectsDictionaryId());
    EXPECT_EQ(keysOf(root->getAt(od("ACAD_LAYOUT"))), (std::vector<std::string>{"Model", "Layout1"}));
    EXPECT_EQ(keysOf(root->getAt(od("ACAD_MLINESTYLE"))), (std::vector<std::string>{"Standard"}));
    EXPECT_EQ(keysOf(root->getAt(od("ACAD_PLOTSTYLENAME"))), (std::vector<std::string>{"Normal"}));
    EXPECT_EQ(keysOf(root->getAt(od("ACAD_GROUP"))), std::vector<std::string>());
    for (const std::string& key : kRootKeys)
        EXPECT_EQ(root->getAt(od(key), OdDb::kForRead)->ownerId(), read->getNamedObjectsDictionaryId())
            << key;
}

TEST(Skeleton, TiesLayoutsAndBlocksTogether) {
    const std::string bytes = saved(*newDatabase().get(), {FileVersion::kR2000});
    const std::string model = firstOf(bytes, "LAYOUT", "|100 AcDbLayout|1 Model|");
    const std::string paper = firstOf(bytes, "LAYOUT", "|100 AcDbLayout|1 Layout1|");
    for (const auto& [layout, block] : {std::pair(model, "*Model_Space"), std::pair(paper, "*Paper_Space")}) {
        const std::string record = firstOf(bytes, "BLOCK_RECORD", std::string("|2 ") + block + "|");
        EXPECT_EQ(valueIn(record, 340), valueIn(layout, 5));
        EXPECT_EQ(layout.substr(layout.rfind('|')), "|330 " + valueIn(record, 5));
    }
    EXPECT_EQ(dxf::split(model)[3].second, "AcDbPlotSettings");
    EXPECT_TRUE(contains(model, "|70 1712|")); // the layout of model space says so
    EXPECT_TRUE(contains(paper, "|70 688|"));
}

TEST(Skeleton, NamesEachPaperLayout) {
    const auto db = newDatabase();
    addBlock(*db.get(), "*Paper_Space0");
    const std::string bytes = saved(*db.get());
    const std::string record = firstOf(bytes, "BLOCK_RECORD", "|2 *Paper_Space0|");
    EXPECT_EQ(valueIn(firstOf(bytes, "LAYOUT", "|1 Layout2|70 1|71 2|"), 5), valueIn(record, 340));
    EXPECT_EQ(countOf(bytes, "LAYOUT"), 3u);
}

TEST(Skeleton, LeavesTheDatabaseAsItIs) {
    const auto db = newDatabase();
    const std::uint64_t next = db->data().nextHandle;
    const std::string first = saved(*db.get());
    EXPECT_EQ(saved(*db.get()), first);
    EXPECT_EQ(db->data().nextHandle, next);
    EXPECT_EQ(keysOf(db->getNamedObjectsDictionaryId()), std::vector<std::string>());
    EXPECT_EQ(namesOf(db->getRegAppTableId()), std::vector<std::string>());
    EXPECT_EQ(namesOf(db->getLayerTableId()), std::vector<std::string>{"0"});
}

TEST(Skeleton, ANewDrawingReadBackHasNothingMoreToShow) {
    inAllFiles(*newDatabase().get(), [](OdDbDatabase& read) {
        EXPECT_TRUE(read.report().repairs().empty());
        EXPECT_EQ(namesOf(read.getLayerTableId()), std::vector<std::string>{"0"});
        EXPECT_EQ(namesOf(read.getLinetypeTableId()),
                  (std::vector<std::string>{"ByBlock", "ByLayer", "Continuous"}));
        EXPECT_EQ(namesOf(read.getTextStyleTableId()), std::vector<std::string>{"Standard"});
        EXPECT_EQ(namesOf(read.getBlockTableId()),
                  (std::vector<std::string>{"*Model_Space", "*Paper_Space"}));
        EXPECT_EQ(namesOf(read.getViewportTableId()), std::vector<std::string>{"*Active"});
        EXPECT_EQ(handlesOf(modelSpace(read)->newIterator()), std::vector<std::string>());
    });
}

TEST(Skeleton, FromTheSecondFileOnAllAreEqual) {
    for (const FileVersion version : kVersions)
        for (const bool binary : {false, true}) {
            const std::string first = saved(*newDatabase().get(), {version, binary});
            const std::string second = saved(*readBytes(first).get(), {version, binary});
            EXPECT_EQ(second, first);
            EXPECT_EQ(saved(*readBytes(second).get(), {version, binary}), second);
        }
}

TEST(Skeleton, HandlesLieBehindThoseOfTheDatabase) {
    const auto db = newDatabase();
    const std::uint64_t next = db->data().nextHandle;
    const auto read = savedAndRead(*db.get());
    const auto root = open<OdDbDictionary>(read->getNamedObjectsDictionaryId());
    for (const std::string& key : kRootKeys) EXPECT_GE(root->getAt(od(key)).getHandle().value(), next) << key;
    EXPECT_GT(read->data().nextHandle, next);
}

TEST(Skeleton, GivesANewDrawingItsHeader) {
    const std::string bytes = saved(*newDatabase().get(), {FileVersion::kR2000});
    const std::pair<const char*, const char*> expected[] = {
        {"$ACADVER", "1 AC1015"},    {"$DWGCODEPAGE", "3 ANSI_1252"}, {"$CLAYER", "8 0"},
        {"$CELTYPE", "6 ByLayer"},   {"$TEXTSTYLE", "7 Standard"},    {"$DIMSTYLE", "2 Standard"},
        {"$MEASUREMENT", "70 1"},    {"$INSUNITS", "70 4"},           {"$INSBASE", "10 0.0|20 0.0|30 0.0"},
        {"$LIMMIN", "10 0.0|20 0.0"}};
    for (const auto& [name, value] : expected) EXPECT_EQ(variableOf(bytes, name), value) << name;
    EXPECT_FALSE(variableOf(bytes, "$HANDSEED").empty());
}

TEST(Skeleton, KeepsWhatTheDatabaseCallsByTheSameName) {
    const auto db = newDatabase();
    open<OdDbDictionary>(db->getNamedObjectsDictionaryId(), OdDb::kForWrite)
        ->setAt(od("ACAD_GROUP"), make<OdDbDictionary>());
    const auto read = savedAndRead(*db.get());
    EXPECT_EQ(keysOf(read->getNamedObjectsDictionaryId()), kRootKeys);
    const auto root = open<OdDbDictionary>(read->getNamedObjectsDictionaryId());
    const auto own = open<OdDbDictionary>(db->getNamedObjectsDictionaryId());
    EXPECT_EQ(root->getAt(od("ACAD_GROUP")).getHandle().value(),
              own->getAt(od("ACAD_GROUP")).getHandle().value());
}

TEST(Skeleton, KeepsAnApplicationOfTheSameName) {
    const auto db = newDatabase();
    const auto application = make<OdDbRegAppTableRecord>();
    application->setName(od("acad"));
    open<OdDbSymbolTable>(db->getRegAppTableId(), OdDb::kForWrite)->add(application);
    EXPECT_EQ(countOf(saved(*db.get()), "APPID"), 1u);
}

TEST(Skeleton, CompletesOldDrawings) {
    OldDrawing drawing;
    drawing.entities = "0 LINE|8 0|10 1.0|20 2.0|11 3.0|21 4.0";
    const std::string bytes = saved(*drawing.read().get(), {FileVersion::kR2004});
    const auto read = readBytes(bytes);
    EXPECT_EQ(keysOf(read->getNamedObjectsDictionaryId()), kRootKeys);
    EXPECT_EQ(countOf(bytes, "ENDTAB"), 9u);
    EXPECT_EQ(countOf(bytes, "CLASS", "|1 LAYOUT|2 AcDbLayout|3 ObjectDBX Classes|90 0|91 2|280 0|281 0|"),
              1u);
    EXPECT_TRUE(read->report().repairs().empty());
    EXPECT_EQ(variableOf(bytes, "$INSUNITS"), "") << "an old drawing keeps its own header";
}

TEST(Skeleton, LayoutsTakeTheirLimitsFromTheHeader) {
    OldDrawing drawing;
    drawing.header =
        "9 $LIMMIN|10 1.0|20 2.0|9 $LIMMAX|10 12.0|20 9.0|9 $EXTMIN|10 0.5|20 0.25|30 0.0|9 $PLIMMAX|10 "
        "210.0|20 297.0|9 $INSBASE|10 7.0|20 8.0|30 0.0";
    const std::string bytes = saved(*drawing.read().get(), {FileVersion::kR2000});
    EXPECT_TRUE(
        contains(firstOf(bytes, "LAYOUT", "|1 Model|"),
                 "|71 0|10 1.0|20 2.0|11 12.0|21 9.0|12 7.0|22 8.0|32 0.0|14 0.5|24 0.25|34 0.0|15 -1"));
    EXPECT_TRUE(contains(firstOf(bytes, "LAYOUT", "|1 Layout1|"), "|10 0.0|20 0.0|11 210.0|21 297.0|12 0.0"));
}

TEST(Skeleton, AddsOnlyWhatAnOldDrawingLacks) {
    OldDrawing drawing;
    drawing.version = "AC1014";
    drawing.tables =
        "0 TABLE|2 APPID|5 9|100 AcDbSymbolTable|70 1|0 APPID|5 12|100 AcDbSymbolTableRecord|100 "
        "AcDbRegAppTableRecord|2 ACAD|70 0|0 ENDTAB|0 TABLE|2 DIMSTYLE|5 A|100 AcDbSymbolTable|70 0|0 ENDTAB";
    drawing.objects =
        "0 DICTIONARY|5 C|100 AcDbDictionary|3 ACAD_GROUP|350 D|3 ACAD_MLINESTYLE|350 E|0 DICTIONARY|5 D|100 "
        "AcDbDictionary|0 DICTIONARY|5 E|100 AcDbDictionary";
    const std::string bytes = saved(*drawing.read().get(), {FileVersion::kR2000});
    EXPECT_TRUE(
        contains(entryOf(bytes, "C"), "|3 ACAD_GROUP|350 D|3 ACAD_MLINESTYLE|350 E|3 ACAD_LAYOUT|350 "));
    EXPECT_EQ(countOf(bytes, "MLINESTYLE"), 0u);
    EXPECT_EQ(countOf(bytes, "APPID"), 1u);
    EXPECT_EQ(countOf(bytes, "DIMSTYLE", "|2 Standard|"), 1u)
        << "an empty table of dimension styles gets one";
    EXPECT_EQ(valueIn(firstOf(bytes, "TABLE", "|2 DIMSTYLE|"), 70), "1");
    EXPECT_EQ(valueIn(firstOf(bytes, "DIMSTYLE"), 330), "A");
}

TEST(Skeleton, NamesNoClassTwice) {
    const std::string groups = dxf::Parts::joined(
        {dxf::Parts::section("HEADER", "9 $ACADVER|1 AC1014"),
         dxf::Parts::section("CLASSES", "0 CLASS|1 LAYOUT|2 AcDbLayout|3 X|90 0|280 0|281 0"),
         dxf::Parts::section("ENTITIES", ""), "0 EOF"});
    const std::string bytes = saved(*readBytes(dxf::text(groups)).get(), {FileVersion::kR2000});
    EXPECT_EQ(countOf(bytes, "CLASS", "|1 LAYOUT|"), 1u);
    EXPECT_EQ(countOf(bytes, "CLASS"), 3u);
}

TEST(Skeleton, AddsNothingToNewerDrawings) {
    for (const char* const version : {"AC1015", "AC1032"}) {
        dxf::Parts parts;
        parts.version = version;
        const std::string input = dxf::text(parts.groups());
        const FileVersion target =
            version == std::string("AC1015") ? FileVersion::kR2000 : FileVersion::kR2018;
        const std::string bytes = saved(*readBytes(input).get(), {target});
        EXPECT_EQ(countOf(bytes, "LAYOUT"), 0u);
        EXPECT_EQ(countOf(bytes, "DIMSTYLE"), 0u);
        EXPECT_EQ(countOf(bytes, "CLASS"), 0u);
        EXPECT_FALSE(contains(bytes, "ACAD_GROUP"));
    }
}

TEST(Skeleton, CompletesTheTableOfDimensionStylesThatASymbolBrings) {
    OldDrawing symbol;
    symbol.tables = "0 TABLE|2 DIMSTYLE|70 1|0 DIMSTYLE|2 MINE|70 0|40 2.0|0 ENDTAB";
    symbol.entities = "0 DIMENSION|5 A1|8 0|2 *D1|3 MINE|10 1.0|20 2.0|70 1";
    const auto db = newDatabase();
    ASSERT_FALSE(db->insert(od("SYM"), symbol.read().get()).isNull());
    const std::string bytes = saved(*db.get());
    EXPECT_EQ(countOf(bytes, "TABLE", "|2 DIMSTYLE|"), 1u);
    EXPECT_TRUE(contains(firstOf(bytes, "TABLE", "|2 DIMSTYLE|"), "|100 AcDbDimStyleTable|71 0"));
    EXPECT_EQ(countOf(bytes, "DIMSTYLE", "|2 MINE|"), 1u);
    EXPECT_EQ(countOf(bytes, "DIMSTYLE", "|2 Standard|"), 1u) << "the header calls it the current one";
    EXPECT_EQ(valueIn(firstOf(bytes, "TABLE", "|2 DIMSTYLE|"), 70), "2");
    EXPECT_EQ(saved(*readBytes(bytes).get()), bytes);
}

TEST(Skeleton, NewLayersHaveThePlotStyleOfTheirDrawing) {
    dxf::Parts parts;
    parts.objects =
        "3 ACAD_PLOTSTYLENAME|350 E|0 ACDBDICTIONARYWDFLT|5 E|330 C|100 AcDbDictionary|3 Normal|350 F|100 "
        "AcDbDictionaryWithDefault|340 F|0 ACDBPLACEHOLDER|5 F|330 E";
    const auto db = readBytes(dxf::text(parts.groups()));
    addLayer(*db.get(), "PAG1");
    EXPECT_EQ(valueIn(firstOf(saved(*db.get()), "LAYER", "|2 PAG1|"), 390), "F");
}

// --- what a listing shows
// -----------------------------------------------------------------------------------------------------------

std::string shown(const OdDbDatabase& db) {
    const lm::drawing::Inventory inventory = lm::drawing::takeInventory(db);
    std::string out;
    for (const auto& [kind, count] : inventory.kept) out += kind + " " + std::to_string(count) + "|";
    for (const OdString& name : inventory.dictionaries) out += utf8(name) + "|";
    return out;
}

TEST(SkeletonShown, NothingOfItIsListed) {
    EXPECT_EQ(shown(*newDatabase().get()), "");
    inAllFiles(*newDatabase().get(), [](OdDbDatabase& read) {
        EXPECT_EQ(shown(read), "");
        inAllFiles(read, [](OdDbDatabase& again) { EXPECT_EQ(shown(again), ""); });
    });
}

TEST(SkeletonShown, AnOldDrawingShowsTheSameBeforeAndAfter) {
    OldDrawing drawing;
    drawing.version = "AC1014";
    drawing.tables =
        "0 TABLE|2 DIMSTYLE|5 A|100 AcDbSymbolTable|70 1|0 DIMSTYLE|105 27|100 AcDbSymbolTableRecord|100 "
        "AcDbDimStyleTableRecord|2 MINE|70 0|0 ENDTAB";
    drawing.objects =
        "0 DICTIONARY|5 C|100 AcDbDictionary|3 ACAD_GROUP|350 D|3 MINE|350 E|0 DICTIONARY|5 D|100 "
        "AcDbDictionary|0 THING|5 E|100 AcDbThing";
    const auto db = drawing.read();
    EXPECT_EQ(shown(*db.get()), "DIMSTYLE 1|THING 1|ACAD_GROUP|MINE|");
    inAllFiles(*db.get(), [&](OdDbDatabase& read) { EXPECT_EQ(shown(read), shown(*db.get())); });
}

TEST(SkeletonShown, WhatSomebodyAddedIsListed) {
    const auto read = savedAndRead(*newDatabase().get());
    const auto root = open<OdDbDictionary>(read->getNamedObjectsDictionaryId(), OdDb::kForWrite);
    root->setAt(od("MINE"), make<OdDbDictionary>());
    EXPECT_EQ(shown(*read.get()), "MINE|");
    OdSmartPtr<OdDbDictionary>(root->getAt(od("ACAD_GROUP"), OdDb::kForWrite))
        ->setAt(od("G"), make<OdDbXrecord>());
    EXPECT_EQ(shown(*read.get()), "ACAD_GROUP|MINE|");
    EXPECT_EQ(shown(*savedAndRead(*read.get()).get()), "ACAD_GROUP|MINE|");
}

TEST(SkeletonShown, WhatAnotherProgramChangedIsListed) {
    const std::string bytes = saved(*newDatabase().get(), {FileVersion::kR2018});
    const auto with = [&bytes](const std::string& from, const std::string& to) {
        std::string changed = bytes;
        changed.replace(changed.find(from), from.size(), to);
        return shown(*readBytes(changed).get());
    };
    EXPECT_EQ(with("none_device", "my_plotter!"),
              "ACDBPLACEHOLDER 1|DIMSTYLE 1|LAYOUT 2|MLINESTYLE 1|SECTION CLASSES 1|"
              "ACAD_GROUP|ACAD_LAYOUT|ACAD_MLINESTYLE|ACAD_PLOTSETTINGS|"
              "ACAD_PLOTSTYLENAME|");
    EXPECT_EQ(with("BYLAYER", "BYBLOCK"), "MLINESTYLE 1|ACAD_MLINESTYLE|");
}

TEST(SkeletonShown, DrawingsOfOtherProgramsShowAllTheyHave) {
    dxf::Parts parts;
    parts.objects = "3 ACAD_GROUP|350 D|0 DICTIONARY|5 D|330 C|100 AcDbDictionary|281 1";
    parts.after =
        dxf::Parts::section("CLASSES", "0 CLASS|1 LAYOUT|2 AcDbLayout|3 ObjectDBX Classes|90 0|280 0|281 0");
    EXPECT_EQ(shown(*readBytes(dxf::text(parts.groups())).get()), "SECTION CLASSES 1|ACAD_GROUP|");
}

TEST(SkeletonShown, AnEmptySectionOfClassesHoldsNothing) {
    dxf::Parts parts;
    parts.before = dxf::Parts::section("CLASSES", "");
    EXPECT_EQ(shown(*readBytes(dxf::text(parts.groups())).get()), "");
}

} // namespace
} // namespace drawing_test
