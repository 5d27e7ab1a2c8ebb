// SPDX-License-Identifier: MIT
#include "stored_data.h"

#include <gmock/gmock.h>

namespace {

using namespace lm::tests;
using testing::ElementsAre;
using testing::IsEmpty;

class ExtendedData : public StoredData {};

// --- changing a record ---

TEST_F(ExtendedData, OfOnePositionIsReplacedAndTheRestStays) {
    const OdDbObjectId object = pointWith("A", {"one", "two", "three"});
    give(object, "B", {"other"});
    EXPECT_TRUE(m_cad.updateXData(read(object), "A", 2, rz("Ω\fx")));
    EXPECT_EQ(data(object, "A"), "1001:A 1000:one 1000:Ω\fx 1000:three");
    EXPECT_TRUE(m_cad.updateXData(read(object), "A", 1, "1"));
    EXPECT_TRUE(m_cad.updateXData(read(object), "A", 3, ""));
    EXPECT_EQ(data(object, "A"), "1001:A 1000:1 1000:Ω\fx 1000:");
    EXPECT_EQ(data(object, "B"), "1001:B 1000:other");
}

TEST_F(ExtendedData, KeepsTheGroupCodeOfARecord) {
    const OdDbObjectId object = point();
    {
        const Chain chain = chainOf({"12"}, "A");
        chain->last()->append(OdResBuf::newRb(1071, 7));
        enroll("A");
        object.openObject(OdDb::kForWrite)->setXData(chain);
    }
    ASSERT_EQ(data(object, "A"), "1001:A 1000:12 1071#7");
    EXPECT_TRUE(m_cad.updateXData(read(object), "A", 1, 5));
    EXPECT_EQ(data(object, "A"), "1001:A 1000#5 1071#7")
        << "the payload is a number, the code still that of text";
    EXPECT_TRUE(m_cad.updateXData(read(object), "A", 2, "text"));
    EXPECT_EQ(data(object, "A"), "1001:A 1000#5 1071:text");
    EXPECT_TRUE(m_cad.updateXData(read(object), "A", 2, -2147483647 - 1));
    EXPECT_EQ(data(object, "A"), "1001:A 1000#5 1071#-2147483648");
}

TEST_F(ExtendedData, ThatIsNotThereIsNotMade) {
    const OdDbObjectId object = pointWith("A", {"one"}), bare = point();
    const OdSmartPtr<OdDbObject> held = read(object), heldBare = read(bare);
    for (const int position : {2, 3, 1000000, -1}) {
        EXPECT_FALSE(m_cad.updateXData(held, "A", position, "x")) << position;
        EXPECT_FALSE(m_cad.updateXData(held, "A", position, 1)) << position;
        EXPECT_FALSE(m_cad.convertXDataType(held, "A", position, 1070)) << position;
    }
    for (const int position : {0, 1}) {
        EXPECT_FALSE(m_cad.updateXData(heldBare, "A", position, "x")) << position;
        EXPECT_FALSE(m_cad.updateXData(heldBare, "A", position, 1)) << position;
        EXPECT_FALSE(m_cad.convertXDataType(heldBare, "A", position, 1070)) << position;
    }
    EXPECT_EQ(data(object), "1001:A 1000:one");
    EXPECT_EQ(data(bare), "null");
    EXPECT_FALSE(held->isWriteEnabled()) << "nothing is opened for write for a record that isn't there";
    EXPECT_FALSE(heldBare->isWriteEnabled());
}

TEST_F(ExtendedData, IsRegisteredBeforeTheRecordIsLookedFor) {
    const OdDbObjectId object = pointWith("A", {"one"});
    EXPECT_FALSE(m_cad.updateXData(read(object), "NEW", 1, "x"));
    EXPECT_FALSE(m_cad.updateXData(read(object), "NUMBER", 1, 1));
    EXPECT_FALSE(m_cad.updateXData(read(object), rz("Ω→"), 1, "x"));
    EXPECT_TRUE(isRegistered("NEW"));
    EXPECT_TRUE(isRegistered("NUMBER"));
    EXPECT_TRUE(isRegistered("Ω→")) << "an id doesn't pass through the code page";
    const Texts registered = recordsOf(m_db.getRegAppTableId());
    EXPECT_FALSE(m_cad.updateXData(read(object), "NEW", 1, "x"));
    EXPECT_TRUE(m_cad.updateXData(read(object), "A", 1, "x"));
    EXPECT_EQ(recordsOf(m_db.getRegAppTableId()), registered) << "once";
    EXPECT_EQ(m_db.silentRegistrations(), 0u);
}

TEST_F(ExtendedData, IsRegisteredWithoutOpeningTheTableForWriteInVain) {
    const OdDbObjectId object = pointWith("A", {"one"});
    const OdSmartPtr<OdDbObject> table = read(m_db.getRegAppTableId());
    EXPECT_TRUE(m_cad.updateXData(read(object), "A", 1, "x"));
    EXPECT_FALSE(table->isWriteEnabled());
    EXPECT_FALSE(m_cad.updateXData(read(object), "NEW", 1, "x"));
    EXPECT_TRUE(table->isWriteEnabled());
}

TEST_F(ExtendedData, IsRegisteredInTheCurrentDatabase) {
    const OdDbObjectId object = pointWith("A", {"one"});
    CHostDatabase other, bare(CHostDatabase::kNothing);
    setDatabase(&other);
    EXPECT_TRUE(m_cad.updateXData(read(object), "A", 1, "x"));
    EXPECT_FALSE(m_cad.updateXData(read(object), "NEW", 1, "x"));
    setDatabase(&bare);
    EXPECT_TRUE(m_cad.updateXData(read(object), "A", 1, "y"))
        << "a drawing without the table registers nothing";
    setDatabase(nullptr);
    EXPECT_TRUE(isRegistered("A", &other));
    EXPECT_TRUE(isRegistered("NEW", &other));
    EXPECT_FALSE(isRegistered("NEW"));
    EXPECT_EQ(data(object), "1001:A 1000:y");
}

TEST_F(ExtendedData, OfAnObjectOutsideADrawingNeedsNoDatabase) {
    m_documents.manager.closeAll();
    const OdSmartPtr<OdDbPoint> loose = make(new OdDbPoint);
    loose->setXData(chainOf({"one"}, "A"));
    EXPECT_TRUE(m_cad.updateXData(loose, "A", 1, "x"));
    EXPECT_TRUE(m_cad.updateXData(loose, "A", 1, 5));
    EXPECT_TRUE(m_cad.convertXDataType(loose, "A", 1, 1071));
    EXPECT_EQ(told(loose->xData()), "1001:A 1071#5");
    m_cad.removeXdata(loose, "A");
    EXPECT_EQ(told(loose->xData()), "null");
}

TEST_F(ExtendedData, OfNoObjectIsNothing) {
    const Texts registered = recordsOf(m_db.getRegAppTableId());
    const OdSmartPtr<OdDbObject> none;
    const OdSmartPtr<OdDbIdMapping> mapping = make(new OdDbIdMapping);
    EXPECT_FALSE(m_cad.updateXData(none, "A", 1, "x"));
    EXPECT_FALSE(m_cad.updateXData(none, "A", 1, 1));
    EXPECT_FALSE(m_cad.updateXData(RZID(), "A", 1, "x"));
    EXPECT_FALSE(m_cad.updateXDataHandle(none, "A", 1, mapping, mapping));
    EXPECT_FALSE(m_cad.convertXDataType(none, "A", 1, 1070));
    m_cad.removeXdata(none, "A");
    EXPECT_EQ(recordsOf(m_db.getRegAppTableId()), registered) << "nor is the id registered";
}

TEST_F(ExtendedData, OfAnIdentifierIsOpenedForWrite) {
    const OdDbObjectId object = pointWith("A", {"one"}), gone = pointWith("A", {"one"});
    const OdSmartPtr<OdDbObject> held = read(object);
    EXPECT_FALSE(m_cad.updateXData(RZID(object), "A", 9, "x"));
    EXPECT_TRUE(held->isWriteEnabled()) << "before the record is looked for";
    EXPECT_TRUE(m_cad.updateXData(RZID(object), "A", 1, "x"));
    EXPECT_EQ(data(object), "1001:A 1000:x");
    erase(gone);
    EXPECT_FALSE(m_cad.updateXData(RZID(gone), "NEW", 1, "x"));
    EXPECT_FALSE(m_cad.updateXData(RZID(rz("FFFFF")), "NEW", 1, "x"));
    EXPECT_EQ(data(gone), "1001:A 1000:one");
    EXPECT_FALSE(isRegistered("NEW")) << "an object that can't be opened registers nothing";
}

TEST_F(ExtendedData, IsOpenedForWriteOnlyForTheChange) {
    const OdDbObjectId object = pointWith("A", {"one"});
    const OdSmartPtr<OdDbObject> held = read(object);
    EXPECT_TRUE(m_cad.updateXData(held, "A", 1, "x"));
    EXPECT_TRUE(held->isWriteEnabled());
}

TEST_F(ExtendedData, AtPositionZeroGoesToTheIdThatIsWrittenThere) {
    const OdDbObjectId object = pointWith("A", {"one"});
    EXPECT_TRUE(m_cad.updateXData(read(object), "A", 0, "B"));
    EXPECT_EQ(data(object, "A"), "1001:A 1000:one");
    EXPECT_EQ(data(object, "B"), "1001:B 1000:one");
    EXPECT_TRUE(isRegistered("B")) << "the drawing does it by itself";
    EXPECT_TRUE(m_cad.updateXData(read(object), "A", 0, "A"));
    EXPECT_EQ(data(object, "A"), "1001:A 1000:one");
    EXPECT_TRUE(m_cad.updateXData(read(object), "A", 0, 5));
    EXPECT_EQ(data(object, "5"), "1001#5 1000:one");
    EXPECT_EQ(data(object, "A"), "1001:A 1000:one");
}

TEST_F(ExtendedData, AtPositionZeroOfALoneRecordDeletesWhatItNames) {
    const OdDbObjectId object = pointWith("A", {});
    give(object, "B", {"one"});
    ASSERT_EQ(data(object, "A"), "1001:A");
    EXPECT_TRUE(m_cad.updateXData(read(object), "A", 0, "B"));
    EXPECT_EQ(data(object), "1001:A") << "a lone record is how a chain is deleted";
}

TEST_F(ExtendedData, OfAnEmptyIdIsRefused) {
    const lm::test::LogCapture log;
    const OdDbObjectId object = pointWith("A", {"one"});
    EXPECT_THROW(m_cad.updateXData(read(object), "", 1, "x"), OdError);
    EXPECT_EQ(log.lines().size(), 1u);
    EXPECT_EQ(data(object), "1001:A 1000:one");
}

// --- handles after a clone ---

class Handles : public StoredData {
protected:
    static OdSmartPtr<OdDbIdMapping>
    mapping(std::initializer_list<std::pair<OdDbObjectId, OdDbObjectId>> pairs) {
        const OdSmartPtr<OdDbIdMapping> made = make(new OdDbIdMapping);
        for (const auto& [key, value] : pairs) made->assign(OdDbIdPair(key, value));
        return made;
    }
    bool update(const OdSmartPtr<OdDbIdMapping>& first, const OdSmartPtr<OdDbIdMapping>& second) {
        return m_cad.updateXDataHandle(read(m_carrier), "A", 1, first, second);
    }
    void store(const std::string& text) { give(m_carrier, "A", {text, "rest"}); }
    std::string stored() const {
        const std::string all = data(m_carrier, "A");
        return all.substr(12, all.size() - 12 - 10); // between "1001:A 1000:" and " 1000:rest"
    }

    const OdDbObjectId m_source = point(), m_one = point(), m_two = point(), m_carrier = point();
    const OdSmartPtr<OdDbIdMapping> m_none = mapping({});
};

TEST_F(Handles, FollowTheSecondMappingFirst) {
    store(handle(m_source));
    const OdSmartPtr<OdDbObject> target = read(m_two);
    EXPECT_TRUE(update(mapping({{m_source, m_one}}), mapping({{m_source, m_two}})));
    EXPECT_FALSE(target->isWriteEnabled()) << "what it leads to is only read";
    EXPECT_EQ(stored(), handle(m_two));
    EXPECT_EQ(data(m_carrier, "A"), "1001:A 1000:" + handle(m_two) + " 1000:rest");
}

TEST_F(Handles, FollowTheFirstMappingWhereTheSecondHasNoObject) {
    const OdDbObjectId gone = point();
    erase(gone);
    const auto first = mapping({{m_source, m_one}});
    for (const auto& second : {m_none, mapping({{m_source, gone}}), mapping({{m_source, OdDbObjectId()}}),
                               mapping({{m_one, m_two}}), OdSmartPtr<OdDbIdMapping>()}) {
        store(handle(m_source));
        EXPECT_TRUE(update(first, second));
        EXPECT_EQ(stored(), handle(m_one));
    }
}

TEST_F(Handles, StayWhereNeitherMappingHasAnObject) {
    const OdDbObjectId gone = point();
    erase(gone);
    const OdSmartPtr<OdDbObject> held = read(m_carrier);
    held->downgradeOpen();
    store(handle(m_source));
    held->downgradeOpen();
    for (const auto& each : {m_none, mapping({{m_source, gone}}), mapping({{m_one, m_two}})}) {
        EXPECT_FALSE(update(each, each));
        EXPECT_EQ(stored(), handle(m_source));
    }
    EXPECT_FALSE(held->isWriteEnabled());
}

TEST_F(Handles, NeedTheFirstMapping) {
    store(handle(m_source));
    EXPECT_FALSE(update(OdSmartPtr<OdDbIdMapping>(), mapping({{m_source, m_two}})));
    EXPECT_EQ(stored(), handle(m_source));
}

TEST_F(Handles, ThatNameNoObjectStay) {
    const auto all = mapping({{m_source, m_one}, {OdDbObjectId(), m_two}});
    for (const char* text : {"", "0", "xyz", "FFFFF", "2F-x"}) {
        store(text);
        EXPECT_FALSE(update(all, all)) << text;
        EXPECT_EQ(stored(), text);
    }
}

TEST_F(Handles, OfAnErasedSourceAreFollowed) {
    store(handle(m_source));
    erase(m_source);
    EXPECT_TRUE(update(mapping({{m_source, m_one}}), m_none));
    EXPECT_EQ(stored(), handle(m_one));
}

TEST_F(Handles, AreReadInAnySpelling) {
    const auto all = mapping({{m_source, m_one}});
    store("000" + handle(m_source));
    EXPECT_TRUE(update(all, m_none));
    EXPECT_EQ(stored(), handle(m_one)) << "and written in the plain one";
}

TEST_F(Handles, AreThoseOfTheCurrentDatabase) {
    store(handle(m_source));
    CHostDatabase other(CHostDatabase::kNothing);
    setDatabase(&other);
    EXPECT_FALSE(update(mapping({{m_source, m_one}}), m_none));
    setDatabase(nullptr);
    EXPECT_TRUE(update(mapping({{m_source, m_one}}), m_none));
}

TEST_F(Handles, OfAMissingRecordAreNotMadeAndNothingIsRegistered) {
    store(handle(m_source));
    const auto all = mapping({{m_source, m_one}});
    for (const int position : {3, -1})
        EXPECT_FALSE(m_cad.updateXDataHandle(read(m_carrier), "A", position, all, all)) << position;
    EXPECT_FALSE(m_cad.updateXDataHandle(read(m_carrier), "NEW", 1, all, all));
    EXPECT_FALSE(isRegistered("NEW"));
    EXPECT_EQ(data(m_carrier), "1001:A 1000:" + handle(m_source) + " 1000:rest");
}

TEST_F(Handles, AreFollowedAfterARealClone) {
    store(handle(m_source));
    OdDbIdMapping& pairs = *new OdDbIdMapping;
    const OdSmartPtr<OdDbIdMapping> cloned(&pairs, lm::drawing::kAttach);
    m_db.deepCloneObjects({m_source, m_carrier}, m_db.getModelSpaceId(), pairs);
    const RZID carrier = m_cad.getObjectId(cloned, m_carrier), source = m_cad.getObjectId(cloned, m_source);
    ASSERT_FALSE(carrier.isNull());
    EXPECT_NE(carrier, m_carrier);
    EXPECT_EQ(data(carrier, "A"), data(m_carrier, "A")) << "a text of a handle is copied as it stands";
    EXPECT_TRUE(m_cad.updateXDataHandle(carrier.openObject(), "A", 1, cloned, OdSmartPtr<OdDbIdMapping>()));
    EXPECT_EQ(data(carrier, "A"), "1001:A 1000:" + handle(source) + " 1000:rest");
    EXPECT_EQ(stored(), handle(m_source));
}

TEST_F(Handles, AskAMappingForThePairOfAnObject) {
    const auto all = mapping({{m_source, m_one}, {m_one, OdDbObjectId()}});
    EXPECT_EQ(m_cad.getObjectId(all, m_source), m_one);
    EXPECT_TRUE(m_cad.getObjectId(all, m_one).isNull());
    EXPECT_TRUE(m_cad.getObjectId(all, m_two).isNull());
    EXPECT_TRUE(m_cad.getObjectId(all, RZID()).isNull());
    EXPECT_TRUE(m_cad.getObjectId(OdSmartPtr<OdDbIdMapping>(), m_source).isNull());
}

// --- group codes ---

TEST_F(ExtendedData, GetsAnotherGroupCodeAndKeepsItsValue) {
    const OdDbObjectId object = pointWith("A", {"12", "two"});
    const OdSmartPtr<OdDbObject> held = read(object);
    held->downgradeOpen();
    EXPECT_TRUE(m_cad.convertXDataType(held, "A", 1, 1071));
    EXPECT_EQ(data(object), "1001:A 1071:12 1000:two");
    EXPECT_TRUE(held->isWriteEnabled());
    EXPECT_TRUE(m_cad.convertXDataType(held, "A", 1, 1000));
    EXPECT_EQ(data(object), "1001:A 1000:12 1000:two");
    EXPECT_FALSE(m_cad.convertXDataType(held, "NEW", 1, 1070));
    EXPECT_FALSE(isRegistered("NEW"));
}

TEST_F(ExtendedData, KeepsTheGroupCodeOfItsFirstRecord) {
    const lm::test::LogCapture log;
    const OdDbObjectId object = pointWith("A", {"12"});
    EXPECT_THROW(m_cad.convertXDataType(read(object), "A", 0, 1000), OdError) << "no chain begins so";
    EXPECT_EQ(log.lines().size(), 1u);
    EXPECT_EQ(data(object), "1001:A 1000:12");
}

TEST_F(ExtendedData, OfSeveralObjectsIsConvertedWhereItIsThere) {
    const OdDbObjectId first = pointWith("A", {"1", "2"}), second = pointWith("A", {"1"}),
                       third = pointWith("A", {"1", "3"}), gone = pointWith("A", {"1", "4"});
    erase(gone);
    const OdSmartPtr<OdDbObject> without = read(second);
    EXPECT_TRUE(m_cad.convertXDataType({first, second}, "A", 2, 1070));
    EXPECT_FALSE(without->isWriteEnabled()) << "only what changes is written";
    EXPECT_EQ(data(first), "1001:A 1000:1 1070:2");
    EXPECT_EQ(data(second), "1001:A 1000:1");
    EXPECT_TRUE(m_cad.convertXDataType({OdDbObjectId(), second, gone, third}, "A", 2, 1071));
    EXPECT_EQ(data(third), "1001:A 1000:1 1071:3") << "the walk goes on behind those without the record";
    EXPECT_EQ(data(gone), "1001:A 1000:1 1000:4");
    EXPECT_FALSE(m_cad.convertXDataType({second, gone}, "A", 2, 1070));
    EXPECT_FALSE(m_cad.convertXDataType(OdArray<OdDbObjectId>(), "A", 1, 1070));
}

// --- removing ---

TEST_F(ExtendedData, IsRemovedByIdAndTheOtherIdsStay) {
    const OdDbObjectId object = pointWith("A", {"one"});
    give(object, "B", {"two"});
    const OdSmartPtr<OdDbObject> held = read(object);
    held->downgradeOpen();
    m_cad.removeXdata(held, "A");
    EXPECT_TRUE(held->isWriteEnabled());
    EXPECT_EQ(data(object), "1001:B 1000:two");
    EXPECT_TRUE(isRegistered("A")) << "the registration stays";
    m_cad.removeXdata(held, "A");
    m_cad.removeXdata(held, "b");
    EXPECT_EQ(data(object), "1001:B 1000:two") << "ids are exact";
    m_cad.removeXdata(held, "B");
    EXPECT_EQ(data(object), "null");
}

TEST_F(ExtendedData, ThatWasNeverThereIsRemovedSilently) {
    const lm::test::LogCapture log;
    const OdDbObjectId object = point();
    m_cad.removeXdata(read(object), "NEVER");
    EXPECT_FALSE(isRegistered("NEVER"));
    EXPECT_EQ(m_db.silentRegistrations(), 0u);
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(ExtendedData, OfLayersAndDictionariesIsChangedTheSame) {
    const OdDbObjectId page = layer("P1");
    const OdSmartPtr<OdDbDictionary> dictionary = m_cad.getNamedDic("D", &m_db);
    for (const OdDbObjectId id : {page, dictionary->objectId()}) {
        give(id, "TVO_RZ_CAPA", {"CAPA"});
        EXPECT_TRUE(m_cad.updateXData(read(id), "TVO_RZ_CAPA", 1, "INDICE"));
        EXPECT_EQ(data(id), "1001:TVO_RZ_CAPA 1000:INDICE");
    }
}

TEST_F(ExtendedData, LetsGoOfWhatItWasGiven) {
    const OdDbObjectId object = pointWith("A", {"one"});
    const OdSmartPtr<OdDbObject> held = read(object);
    const OdSmartPtr<OdDbIdMapping> mapping = make(new OdDbIdMapping);
    const long before = held->numRefs();
    m_cad.updateXData(held, "A", 1, "x");
    m_cad.updateXData(held, "A", 9, 1);
    m_cad.updateXData(RZID(object), "A", 1, "x");
    m_cad.updateXDataHandle(held, "A", 1, mapping, mapping);
    m_cad.convertXDataType(held, "A", 1, 1000);
    m_cad.convertXDataType({object}, "A", 9, 1000);
    m_cad.removeXdata(held, "A");
    EXPECT_EQ(held->numRefs(), before);
    EXPECT_EQ(mapping->numRefs(), 1);
}

// --- dictionaries ---

class Dictionaries : public StoredData {
protected:
    OdDbObjectId root() const { return m_db.getNamedObjectsDictionaryId(); }
    OdSmartPtr<OdDbDictionary> openRoot() const { return OdSmartPtr<OdDbDictionary>(root().openObject()); }
    unsigned int entries() const { return openRoot()->numEntries(); }
};

TEST_F(Dictionaries, AreMadeByAskingForThem) {
    const unsigned int before = entries();
    const OdSmartPtr<OdDbObject> held = read(root());
    const OdSmartPtr<OdDbDictionary> made = m_cad.getNamedDic(rz("PROJETO Ω"), &m_db);
    ASSERT_FALSE(made.isNull());
    EXPECT_TRUE(made->isWriteEnabled());
    EXPECT_EQ(made->objectId(), openRoot()->getAt(od("PROJETO Ω")));
    EXPECT_TRUE(held->isWriteEnabled());
    EXPECT_EQ(entries(), before + 1);
    EXPECT_EQ(made->numEntries(), 0u);
}

TEST_F(Dictionaries, AreFoundTheSecondTime) {
    const OdDbObjectId made = m_cad.getNamedDic("D", &m_db)->objectId();
    const unsigned int before = entries();
    const OdSmartPtr<OdDbObject> held = read(root());
    EXPECT_FALSE(isWriteEnabled(made)) << "the first holder let it go";
    const OdSmartPtr<OdDbDictionary> found = m_cad.getNamedDic("D", &m_db);
    EXPECT_EQ(found->objectId(), made);
    EXPECT_TRUE(found->isWriteEnabled());
    EXPECT_FALSE(held->isWriteEnabled()) << "the named objects are written only to add";
    EXPECT_EQ(entries(), before);
    EXPECT_NE(m_cad.getNamedDic("d", &m_db)->objectId(), made) << "names are exact";
}

TEST_F(Dictionaries, TakeThePlaceOfAnEntryOfAnotherClass) {
    const OdDbObjectId record = namedObjects()->setAt(od("D"), make(new OdDbXrecord));
    const unsigned int before = entries();
    const OdSmartPtr<OdDbDictionary> made = m_cad.getNamedDic("D", &m_db);
    ASSERT_FALSE(made.isNull());
    EXPECT_EQ(openRoot()->getAt(od("D")), made->objectId());
    EXPECT_TRUE(record.isErased());
    EXPECT_EQ(entries(), before);
}

TEST_F(Dictionaries, AreMadeAnewAfterTheyWereErased) {
    const OdDbObjectId first = m_cad.getNamedDic("D", &m_db)->objectId();
    erase(first);
    EXPECT_NE(m_cad.getNamedDic("D", &m_db)->objectId(), first);
    const OdDbObjectId cables = m_cad.getDicCabos(&m_db)->objectId();
    erase(cables);
    EXPECT_NE(m_cad.getDicCabos(&m_db)->objectId(), cables);
}

TEST_F(Dictionaries, AreThoseOfTheGivenDatabase) {
    CHostDatabase other;
    const OdSmartPtr<OdDbDictionary> made = m_cad.getNamedDic("D", &other);
    EXPECT_EQ(made->database(), &other);
    EXPECT_FALSE(openRoot()->has(od("D")));
}

TEST_F(Dictionaries, NeedADatabaseWithNamedObjects) {
    CHostDatabase bare(CHostDatabase::kNothing);
    EXPECT_TRUE(m_cad.getNamedDic("D", nullptr).isNull());
    EXPECT_TRUE(m_cad.getNamedDic("D", &bare).isNull());
    EXPECT_TRUE(m_cad.getDicCabos(nullptr).isNull());
    EXPECT_TRUE(m_cad.getDicCabos(&bare).isNull());
}

TEST_F(Dictionaries, OfTheCablesIsMadeAndRegistered) {
    const unsigned int before = entries();
    const OdSmartPtr<OdDbDictionary> made = m_cad.getDicCabos(&m_db);
    ASSERT_FALSE(made.isNull());
    EXPECT_TRUE(made->isWriteEnabled());
    EXPECT_EQ(made->objectId(), openRoot()->getAt(od("RZ_CABOS")));
    EXPECT_TRUE(isRegistered("RZ_CABOS"));
    EXPECT_EQ(entries(), before + 1);
    EXPECT_EQ(m_cad.getDicCabos(&m_db)->objectId(), made->objectId());
    EXPECT_EQ(entries(), before + 1);
    EXPECT_EQ(m_cad.getNamedDic("RZ_CABOS", &m_db)->objectId(), made->objectId());
}

TEST_F(Dictionaries, OfTheCablesOpensTheNamedObjectsForWriteFromTheStart) {
    m_cad.getDicCabos(&m_db);
    const OdSmartPtr<OdDbObject> held = read(root());
    ASSERT_FALSE(held->isWriteEnabled());
    const OdSmartPtr<OdDbDictionary> found = m_cad.getDicCabos(&m_db);
    EXPECT_TRUE(held->isWriteEnabled());
    EXPECT_TRUE(found->isWriteEnabled());
}

TEST_F(Dictionaries, OfTheCablesIsNeverReplaced) {
    const lm::test::LogCapture log;
    const OdDbObjectId record = namedObjects()->setAt(od("RZ_CABOS"), make(new OdDbXrecord));
    EXPECT_THROW(m_cad.getDicCabos(&m_db), OdError_NotThatKindOfClass);
    EXPECT_EQ(openRoot()->getAt(od("RZ_CABOS")), record);
    EXPECT_TRUE(isRegistered("RZ_CABOS")) << "registered first";
    EXPECT_THAT(log.lines(), IsEmpty()) << "it has no guard";
}

TEST_F(Dictionaries, OfTheCablesIsRegisteredInTheCurrentDatabase) {
    CHostDatabase other;
    EXPECT_EQ(m_cad.getDicCabos(&other)->database(), &other);
    EXPECT_TRUE(isRegistered("RZ_CABOS"));
    EXPECT_FALSE(isRegistered("RZ_CABOS", &other));
}

} // namespace
