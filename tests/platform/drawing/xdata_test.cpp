// SPDX-License-Identifier: MIT
// Extended data by application id.
#include "drawing_support.h"

using namespace drawing_test;

namespace {

std::vector<std::string> applications(const OdDbDatabase& db) {
    return namesOf(db.getRegAppTableId());
}

} // namespace

TEST(XDataTest, HandsOutCopies) {
    const auto line = make<OdDbLine>();
    line->setXData(chainOf("1001 APP|1000 a"));
    line->xData(od("APP"))->next()->setString(od("changed"));
    EXPECT_EQ(textOf(line->xData(od("APP"))), "1001 APP|1000 a");
    const auto given = chainOf("1001 APP|1000 b");
    line->setXData(given);
    given->next()->setString(od("changed"));
    EXPECT_EQ(textOf(line->xData(od("APP"))), "1001 APP|1000 b");
}

TEST(XDataTest, ReplacesOneIdAndLeavesTheOthers) {
    const auto line = make<OdDbLine>();
    line->setXData(chainOf("1001 A|1000 a"));
    line->setXData(chainOf("1001 B|1000 b"));
    line->setXData(chainOf("1001 A|1070 2|1000 c"));
    EXPECT_EQ(textOf(line->xData(od("A"))), "1001 A|1070 2|1000 c");
    EXPECT_EQ(textOf(line->xData(od("B"))), "1001 B|1000 b");
    EXPECT_TRUE(line->xData(od("a")).isNull()) << "ids are compared exactly";
    EXPECT_TRUE(line->xData(od("C")).isNull());
}

TEST(XDataTest, GivesAllIdsInTheOrderOfTheirFirstWriting) {
    const auto line = make<OdDbLine>();
    EXPECT_TRUE(line->xData().isNull());
    line->setXData(chainOf("1001 B|1000 b"));
    line->setXData(chainOf("1001 A|1000 a"));
    line->setXData(chainOf("1001 B|1000 b2"));
    EXPECT_EQ(textOf(line->xData()), "1001 B|1000 b2|1001 A|1000 a");
    EXPECT_EQ(textOf(line->xData(od(""))), "1001 B|1000 b2|1001 A|1000 a");
}

TEST(XDataTest, TakesSeveralIdsInOneChain) {
    const auto line = make<OdDbLine>();
    line->setXData(chainOf("1001 A|1000 old"));
    line->setXData(chainOf("1001 A|1000 a|1000 aa|1001 B|1000 b|1001 A2|1071 3"));
    EXPECT_EQ(textOf(line->xData(od("A"))), "1001 A|1000 a|1000 aa");
    EXPECT_EQ(textOf(line->xData(od("B"))), "1001 B|1000 b");
    EXPECT_EQ(textOf(line->xData(od("A2"))), "1001 A2|1071 3");
    line->setXData(chainOf("1001 A|1001 B|1000 c"));
    EXPECT_EQ(textOf(line->xData()), "1001 B|1000 c|1001 A2|1071 3")
        << "a lone head deletes, in the middle too";
}

TEST(XDataTest, DeletesByALoneHead) {
    const auto db = newDatabase();
    const auto line = make<OdDbLine>();
    append(*db.get(), line);
    line->setXData(chainOf("1001 A|1000 a"));
    line->setXData(chainOf("1001 B|1000 b"));
    line->setXData(chainOf("1001 A"));
    EXPECT_EQ(textOf(line->xData()), "1001 B|1000 b");
    line->setXData(chainOf("1001 NEVER"));
    EXPECT_EQ(textOf(line->xData()), "1001 B|1000 b");
    EXPECT_EQ(applications(*db.get()), (std::vector<std::string>{"A", "B"}))
        << "a deletion registers nothing";
}

TEST(XDataTest, StoresALoneHeadOnlyRaw) {
    const auto line = make<OdDbLine>();
    line->setXDataRaw(chainOf("1001 A"));
    EXPECT_EQ(textOf(line->xData(od("A"))), "1001 A");
    EXPECT_EQ(textOf(line->xData()), "1001 A");
    line->setXData(chainOf("1001 A"));
    EXPECT_TRUE(line->xData(od("A")).isNull());
}

TEST(XDataTest, ChangesNothingForANullChain) {
    const auto line = make<OdDbLine>();
    line->setXData(chainOf("1001 A|1000 a"));
    line->setXData({});
    EXPECT_EQ(textOf(line->xData()), "1001 A|1000 a");
}

TEST(XDataTest, RefusesAChainWithoutAHead) {
    const auto line = make<OdDbLine>();
    EXPECT_EQ(codeOf([&] { line->setXData(chainOf("1000 a")); }), eInvalidInput);
    EXPECT_TRUE(line->xData().isNull());
}

TEST(XDataTest, RegistersAnUnknownIdSilentlyAndCountsIt) {
    const auto db = newDatabase();
    const auto line = make<OdDbLine>();
    append(*db.get(), line);
    EXPECT_EQ(db->silentRegistrations(), 0u);
    line->setXData(chainOf("1001 NEW|1000 a"));
    line->setXData(chainOf("1001 NEW|1000 b"));
    EXPECT_EQ(applications(*db.get()), std::vector<std::string>{"NEW"});
    EXPECT_EQ(db->silentRegistrations(), 1u);
    const auto known = make<OdDbRegAppTableRecord>();
    known->setName(od("KNOWN"));
    open<OdDbSymbolTable>(db->getRegAppTableId(), OdDb::kForWrite)->add(known);
    line->setXData(chainOf("1001 KNOWN|1000 b"));
    EXPECT_EQ(db->silentRegistrations(), 1u);
}

TEST(XDataTest, WaitsOutsideADatabaseAndRegistersWhenItComesIn) {
    const auto db = newDatabase();
    const auto record = make<OdDbXrecord>();
    record->setXData(chainOf("1001 RZ_VERSAO|1000 26"));
    EXPECT_TRUE(applications(*db.get()).empty());
    open<OdDbDictionary>(db->getNamedObjectsDictionaryId(), OdDb::kForWrite)->setAt(od("RZ"), record);
    EXPECT_EQ(applications(*db.get()), std::vector<std::string>{"RZ_VERSAO"});
    EXPECT_EQ(textOf(record->xData(od("RZ_VERSAO"))), "1001 RZ_VERSAO|1000 26");
    EXPECT_EQ(db->silentRegistrations(), 1u);
}

TEST(XDataTest, StandsOnEveryKindOfObject) {
    const auto db = newDatabase();
    const auto reference = make<OdDbBlockReference>();
    append(*db.get(), reference);
    reference->appendAttribute(make<OdDbAttribute>());
    const std::vector<OdDbObjectId> ids = {db->getLayerZeroId(), db->getNamedObjectsDictionaryId(),
                                           reference->attributeIterator()->objectId(), db->getModelSpaceId(),
                                           db->getLayerTableId()};
    for (const OdDbObjectId id : ids) {
        id.openObject(OdDb::kForWrite)->setXData(chainOf("1001 APP|1000 x"));
        EXPECT_EQ(textOf(id.openObject()->xData(od("APP"))), "1001 APP|1000 x");
    }
}

TEST(XDataTest, GoesWithACopy) {
    const auto line = make<OdDbLine>();
    line->setXData(chainOf("1001 APP|1000 a"));
    const OdSmartPtr<OdDbLine> copy(OdDbLine::cast(line->clone()), lm::drawing::kAttach);
    line->setXData(chainOf("1001 APP|1000 b"));
    EXPECT_EQ(textOf(copy->xData()), "1001 APP|1000 a");
}

TEST(XDataTest, IsOneChainWhereAFileNamesAnIdTwice) {
    dxf::Parts parts;
    parts.entities = "0 LINE|5 100|330 1F|8 0|1001 A|1000 a|1001 B|1000 b|1001 A|1000 aa|1001 B";
    inBothForms(parts.groups(), [](OdDbDatabase& db) {
        const auto line = byHandle<OdDbLine>(db, "100", OdDb::kForWrite);
        EXPECT_EQ(textOf(line->xData(od("A"))), "1001 A|1000 a|1000 aa");
        EXPECT_EQ(textOf(line->xData()), "1001 A|1000 a|1000 aa|1001 B|1000 b");
        line->setXData(chainOf("1001 A"));
        EXPECT_EQ(textOf(line->xData()), "1001 B|1000 b") << "nothing of the id is left";
    });
}

TEST(XDataTest, ChangesWhatAFileBroughtInOneIdOnly) {
    dxf::Parts parts;
    parts.entities = "0 LINE|5 100|330 1F|100 AcDbEntity|8 0|1001 A|1000 a|1001 B|1071 70000";
    inBothForms(parts.groups(), [](OdDbDatabase& db) {
        const auto line = byHandle<OdDbLine>(db, "100", OdDb::kForWrite);
        line->setXData(chainOf("1001 A|1000 new"));
        EXPECT_EQ(textOf(line->xData()), "1001 A|1000 new|1001 B|1071 70000");
        line->setXData(chainOf("1001 B"));
        EXPECT_EQ(textOf(line->xData()), "1001 A|1000 new");
    });
}
