// SPDX-License-Identifier: MIT
#include "drawing_support.h"

using namespace drawing_test;

namespace {

OdSmartPtr<OdDbDictionary> named(const OdDbDatabase& db, OdDb::OpenMode mode = OdDb::kForWrite) {
    return open<OdDbDictionary>(db.getNamedObjectsDictionaryId(), mode);
}

std::vector<std::string> entriesOf(const OdSmartPtr<OdDbDictionary>& dictionary) {
    std::vector<std::string> names;
    for (const auto walk = dictionary->newIterator(); !walk->done(); walk->next())
        names.push_back(utf8(walk->name()));
    return names;
}

} // namespace

TEST(DictionaryTest, EntersAndFindsByExactName) {
    const auto db = newDatabase();
    const auto dictionary = named(*db.get());
    const auto record = make<OdDbXrecord>();
    const OdDbObjectId id = dictionary->setAt(od("Entry"), record);
    EXPECT_EQ(record->objectId(), id);
    EXPECT_EQ(record->ownerId(), dictionary->objectId());
    EXPECT_TRUE(record->isWriteEnabled());
    EXPECT_EQ(dictionary->getAt(od("Entry")), id);
    EXPECT_TRUE(dictionary->getAt(od("ENTRY")).isNull());
    EXPECT_TRUE(dictionary->getAt(od("ENTRY"), OdDb::kForRead).isNull());
    EXPECT_EQ(dictionary->getAt(od("Entry"), OdDb::kForRead)->objectId(), id);
    EXPECT_TRUE(dictionary->has(od("Entry")));
    EXPECT_FALSE(dictionary->has(od("")));
    EXPECT_EQ(codeOf([&] { dictionary->setAt(od(""), make<OdDbXrecord>()); }), eInvalidKey);
}

TEST(DictionaryTest, ReplacesAnEntryAndErasesItsObject) {
    const auto db = newDatabase();
    const auto dictionary = named(*db.get());
    const OdDbObjectId first = dictionary->setAt(od("V"), make<OdDbXrecord>());
    const OdDbObjectId second = dictionary->setAt(od("V"), make<OdDbXrecord>());
    EXPECT_TRUE(first.isErased());
    EXPECT_EQ(dictionary->getAt(od("V")), second);
    EXPECT_EQ(dictionary->numEntries(), 1u);
    EXPECT_EQ(entriesOf(dictionary), std::vector<std::string>{"V"});
}

TEST(DictionaryTest, KeepsAnObjectThatIsEnteredUnderItsOwnNameAgain) {
    const auto db = newDatabase();
    const auto dictionary = named(*db.get());
    const auto record = make<OdDbXrecord>();
    const OdDbObjectId id = dictionary->setAt(od("V"), record);
    EXPECT_EQ(dictionary->setAt(od("V"), record), id);
    EXPECT_FALSE(id.isErased());
    EXPECT_EQ(dictionary->numEntries(), 1u);
}

TEST(DictionaryTest, WalksLiveEntriesInOrderOfCreation) {
    const auto db = newDatabase();
    const auto dictionary = named(*db.get());
    for (const char* const name : {"C", "A", "D", "B"}) dictionary->setAt(od(name), make<OdDbXrecord>());
    dictionary->getAt(od("A"), OdDb::kForWrite)->erase();
    dictionary->remove(od("B"));
    dictionary->remove(od("unknown"));
    EXPECT_EQ(entriesOf(dictionary), (std::vector<std::string>{"C", "D"}));
    EXPECT_TRUE(dictionary->getAt(od("A")).isNull());
    EXPECT_EQ(dictionary->numEntries(), 2u);
    const auto walk = dictionary->newIterator();
    EXPECT_EQ(walk->getObject(OdDb::kForRead)->objectId(), walk->objectId());
    walk->next();
    walk->next();
    walk->next();
    EXPECT_TRUE(walk->done());
    EXPECT_TRUE(walk->name().isEmpty());
    EXPECT_TRUE(walk->objectId().isNull());
    EXPECT_TRUE(walk->getObject().isNull());
}

TEST(DictionaryTest, IsWalkedWhileEntriesComeAndGo) {
    const auto db = newDatabase();
    const auto dictionary = named(*db.get());
    for (const char* const name : {"A", "B", "C", "D"}) dictionary->setAt(od(name), make<OdDbXrecord>());
    std::vector<std::string> met;
    for (const auto walk = dictionary->newIterator(); !walk->done(); walk->next()) {
        met.push_back(utf8(walk->name()));
        if (met.size() % 2 == 0) walk->getObject(OdDb::kForWrite)->erase();
        if (met.size() == 3) dictionary->setAt(od("E"), make<OdDbXrecord>());
    }
    EXPECT_EQ(met, (std::vector<std::string>{"A", "B", "C", "D", "E"}));
    EXPECT_EQ(entriesOf(dictionary), (std::vector<std::string>{"A", "C", "E"}));
}

TEST(DictionaryTest, HoldsDictionariesAndRefusesForeignObjects) {
    const auto db = newDatabase(), other = newDatabase();
    const auto dictionary = named(*db.get());
    const auto inner = make<OdDbDictionary>();
    dictionary->setAt(od("INNER"), inner);
    inner->setAt(od("X"), make<OdDbXrecord>());
    EXPECT_EQ(inner->numEntries(), 1u);
    EXPECT_EQ(utf8(inner->dxfName()), "DICTIONARY");
    const auto foreign = make<OdDbXrecord>();
    named(*other.get())->setAt(od("F"), foreign);
    EXPECT_EQ(codeOf([&] { dictionary->setAt(od("F"), foreign); }), eInvalidInput);
    const auto lone = make<OdDbDictionary>();
    EXPECT_EQ(codeOf([&] { lone->setAt(od("F"), make<OdDbXrecord>()); }), eNotInDatabase);
}

TEST(XrecordTest, CopiesItsChainInAndOut) {
    const auto record = make<OdDbXrecord>();
    EXPECT_TRUE(record->rbChain().isNull());
    const auto chain = chainOf("1 first|2 BLOCK|70 3");
    record->setFromRbChain(chain);
    chain->setString(od("changed"));
    record->rbChain()->setString(od("changed"));
    EXPECT_EQ(textOf(record->rbChain()), "1 first|2 BLOCK|70 3");
    record->setFromRbChain({});
    EXPECT_TRUE(record->rbChain().isNull());
}

TEST(XrecordTest, ChecksForWrite) {
    const auto db = newDatabase();
    const auto record = make<OdDbXrecord>();
    named(*db.get())->setAt(od("X"), record);
    record->downgradeOpen();
    EXPECT_EQ(codeOf([&] { record->setFromRbChain(chainOf("1 a")); }), eNotOpenForWrite);
    EXPECT_TRUE(record->rbChain().isNull());
}
