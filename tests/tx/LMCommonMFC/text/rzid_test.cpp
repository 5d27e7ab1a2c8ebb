// SPDX-License-Identifier: MIT
#include "text/rzid.h"

#include "arguments.h"
#include "text_literal.h"

#include "drawing/dictionary.h"
#include "host/database.h"
#include "host/documentmanager.h"
#include "host/hostapi.h"

#include <gtest/gtest.h>

#include <thread>

namespace {

OdSmartPtr<CHostDatabase> newDatabase() {
    return OdSmartPtr<CHostDatabase>(new CHostDatabase, lm::drawing::kAttach);
}

/// Adds an object that nothing else uses.
OdDbObjectId addObject(OdDbDatabase& database) {
    OdSmartPtr<OdDbObject> object(static_cast<OdDbObject*>(OdDbDictionary::desc()->create()),
                                  lm::drawing::kAttach);
    return database.addOdDbObject(object, database.getNamedObjectsDictionaryId());
}

/// No document and no override before and after each test.
class ObjectIdentifier : public testing::Test {
protected:
    ObjectIdentifier() { reset(); }
    ~ObjectIdentifier() override { reset(); }

    static CHostDocumentManager& manager() { return lm::host::documentManager(); }

private:
    static void reset() {
        setDatabase(nullptr);
        manager().closeAll();
    }
};

TEST_F(ObjectIdentifier, StartsNull) {
    const RZID id;
    EXPECT_TRUE(id.isNull());
    EXPECT_FALSE(id.isValid());
    EXPECT_FALSE(id.isErased());
    EXPECT_EQ(id.database(), nullptr);
    EXPECT_TRUE(id.openObject(OdDb::kForRead, true).isNull());
    EXPECT_TRUE(RZID::kNull == RZID());
    EXPECT_TRUE(RZID::kNull == OdDbObjectId::kNull);
    EXPECT_EQ(static_cast<OdDbHandle>(id), OdDbHandle());
    EXPECT_EQ(static_cast<const RZString&>(id), "0");
    EXPECT_EQ(RZString(id.toLPCWSTR()), "0");
}

TEST_F(ObjectIdentifier, IsOnePointer) {
    EXPECT_EQ(sizeof(RZID), sizeof(OdDbObjectId));
}

TEST_F(ObjectIdentifier, ReadsAsItsHandle) {
    const auto database = newDatabase();
    const OdDbObjectId object = addObject(*database);
    const RZID id(object);
    const RZString text = id;
    EXPECT_EQ(text, RZString(object.getHandle()));
    EXPECT_EQ(RZString(id), text);
    RZString assigned = "old";
    EXPECT_EQ(&(assigned = id), &assigned);
    EXPECT_EQ(assigned, text);
    EXPECT_EQ(RZString(id.toLPCWSTR()), text);
    const OdDbHandle handle = id;
    EXPECT_EQ(handle, object.getHandle());
    const OdDbObjectId back = id;
    EXPECT_EQ(back, object);
    EXPECT_EQ(id.database(), database.get());
}

TEST_F(ObjectIdentifier, KeepsThePointerToItsTextUntilTheNextCall) {
    const auto database = newDatabase();
    const RZID id(addObject(*database));
    const unsigned short* text = id.toLPCWSTR();
    const RZString other = RZID(database->getLayerZeroId());
    EXPECT_EQ(RZString(text), RZString(id));
    EXPECT_NE(RZString(text), other);
    std::thread([&] { EXPECT_EQ(RZString(RZID(database->getLayerZeroId()).toLPCWSTR()), other); }).join();
    EXPECT_EQ(RZString(text), RZString(id)) << "each thread has a buffer of its own";
    EXPECT_EQ(RZString(RZID(database->getLayerZeroId()).toLPCWSTR()), other);
}

TEST_F(ObjectIdentifier, ComesFromTextInADatabase) {
    const auto database = newDatabase();
    const OdDbObjectId object = addObject(*database);
    const RZString text = RZID(object);
    const CString framework = text;
    const OdString odText = text;
    const unsigned short* units = text;
    OdDbDatabase* drawing = database.get();
    CHostDatabase* host = database.get();

    for (const RZID& id :
         {RZID(text, drawing), RZID(framework, drawing), RZID(odText, drawing), RZID(units, drawing),
          RZID(text, host), RZID(framework, host), RZID(odText, host), RZID(units, host)}) {
        EXPECT_TRUE(id == object);
        EXPECT_TRUE(id.isValid());
    }
    setDatabase(host);
    for (const RZID& id : {RZID(text), RZID(framework), RZID(odText), RZID(units), RZID(object.getHandle())})
        EXPECT_TRUE(id == object);
    EXPECT_TRUE(RZID(RZString("000", text)) == object) << "leading zeros name the same object";
    EXPECT_TRUE(RZID(text.asLower()) == object);
}

TEST_F(ObjectIdentifier, IsNullForTextThatNamesNothing) {
    const auto database = newDatabase();
    setDatabase(database.get());
    const RZString text = RZID(addObject(*database));
    for (const RZString& wrong : {RZString(), RZString("0"), RZString("xyz"), text + "-x", text + " ",
                                  " " + text, RZString("FFFFFFFFFFFF"), RZString("12345678901234567")}) {
        EXPECT_TRUE(RZID(wrong).isNull()) << lm::system::toUtf8(wrong.view());
        EXPECT_TRUE(RZID(wrong) == RZID::kNull);
        EXPECT_TRUE(RZID(wrong, static_cast<OdDbDatabase*>(database.get())) == RZID::kNull);
    }
    EXPECT_TRUE(RZID(static_cast<const unsigned short*>(nullptr)) == RZID::kNull);
    EXPECT_TRUE(RZID(static_cast<const unsigned short*>(nullptr), database.get()) == RZID::kNull);
    EXPECT_TRUE(RZID(OdDbHandle(0xFFFFFFFFFFF)) == RZID::kNull);
    EXPECT_TRUE(RZID(OdDbHandle()) == RZID::kNull);
}

TEST_F(ObjectIdentifier, IsNullWithoutADatabase) {
    EXPECT_TRUE(RZID(RZString("1")).isNull());
    EXPECT_TRUE(RZID(OdDbHandle(1)).isNull());
    manager().newDocumentWithoutDatabase();
    EXPECT_TRUE(RZID(RZString("1")).isNull());
}

TEST_F(ObjectIdentifier, IsNullInANullDatabaseWhateverIsActive) {
    CHostDocument* document = manager().newDocument();
    const RZString text = RZID(document->database()->getLayerZeroId());
    ASSERT_TRUE(RZID(text).isValid());
    EXPECT_TRUE(RZID(text, nullptr).isNull());
    EXPECT_TRUE(RZID(text, static_cast<OdDbDatabase*>(nullptr)).isNull());
    EXPECT_TRUE(RZID(text, static_cast<CHostDatabase*>(nullptr)).isNull());
    EXPECT_TRUE(RZID(CString(text), static_cast<CHostDatabase*>(nullptr)).isNull());
}

TEST_F(ObjectIdentifier, FollowsTheActiveDocumentAndTheOverride) {
    CHostDocument* first = manager().newDocument();
    CHostDocument* second = manager().newDocument();
    const auto separate = newDatabase();
    const RZString text = RZID(first->database()->getLayerZeroId());
    ASSERT_EQ(text, RZString(RZID(second->database()->getLayerZeroId())))
        << "new drawings have the same handles";

    manager().setActiveDocument(first);
    EXPECT_EQ(RZID(text).database(), first->database());
    manager().setActiveDocument(second);
    EXPECT_EQ(RZID(text).database(), second->database());
    setDatabase(separate.get());
    EXPECT_EQ(RZID(text).database(), separate.get());
    EXPECT_EQ(RZID(text, first->database()).database(), first->database()) << "a given database comes first";
    setDatabase(nullptr);
    EXPECT_EQ(RZID(text).database(), second->database());
}

TEST_F(ObjectIdentifier, ComparesWithIdsAndExactlyWithText) {
    const auto database = newDatabase();
    OdDbObjectId object = addObject(*database);
    for (int i = 0; i < 16 && RZString(RZID(object)).asLower() == RZString(RZID(object)); ++i)
        object = addObject(*database); // one whose handle has a letter
    const RZID id(object), other(database->getLayerZeroId());
    const RZString text = id;

    EXPECT_TRUE(id == RZID(object) && object == id && id == object);
    EXPECT_TRUE(id != other && other != id && other != object && object != other);
    EXPECT_TRUE(id == text && text == id);
    EXPECT_FALSE(id != text || text != id);
    for (const RZString& written : {text.asLower(), RZString("0", text), text + " ", RZString()}) {
        EXPECT_TRUE(id != written && written != id);
        EXPECT_FALSE(id == written || written == id);
    }
}

TEST_F(ObjectIdentifier, OutlivesAnErasedObject) {
    const auto database = newDatabase();
    const RZID id(addObject(*database));
    const RZString text = id;
    ASSERT_EQ(id.openObject(OdDb::kForWrite, false)->erase(), eOk);
    EXPECT_TRUE(id.isErased());
    EXPECT_TRUE(id.isValid());
    EXPECT_FALSE(id.isNull()) << "an erased object still stands in its database";
    EXPECT_TRUE(id.openObject(OdDb::kForRead, false).isNull());
    EXPECT_FALSE(id.openObject(OdDb::kForRead, true).isNull());
    EXPECT_TRUE(RZID(text, database.get()) == id) << "its handle still gives its id";
}

TEST_F(ObjectIdentifier, OutlivesItsDatabase) {
    RZID id;
    {
        const auto database = newDatabase();
        id = RZID(addObject(*database));
        ASSERT_TRUE(id.isValid());
    }
    EXPECT_TRUE(id.isNull()) << "null is what isn't valid, not what is zero";
    EXPECT_FALSE(id == RZID::kNull);
    EXPECT_EQ(id.database(), nullptr);
    EXPECT_TRUE(id.openObject(OdDb::kForRead, true).isNull());
    EXPECT_EQ(RZString(id), "0");
}

TEST_F(ObjectIdentifier, OpensInTheModeAskedFor) {
    const auto database = newDatabase();
    const RZID id(addObject(*database));
    EXPECT_FALSE(id.openObject(OdDb::kForRead, false)->isWriteEnabled());
    EXPECT_TRUE(id.openObject(OdDb::kForWrite, false)->isWriteEnabled());
}

TEST_F(ObjectIdentifier, ComesFromAnEntityName) {
    CHostDocument* document = manager().newDocument();
    const OdDbObjectId object = document->database()->getLayerZeroId();
    unsigned long long name[2] = {};
    ASSERT_EQ(document->getAPI()->GetADSName(object, name), RTNORM);
    EXPECT_TRUE(RZID(name) == object);
    unsigned long long unknown[2] = {0xFFFFFFFFFF, name[1]};
    EXPECT_TRUE(RZID(unknown) == RZID::kNull);
    EXPECT_TRUE(RZID(static_cast<unsigned long long*>(nullptr)) == RZID::kNull);
    manager().closeAll();
    EXPECT_TRUE(RZID(name) == RZID::kNull) << "without a document there is nobody to ask";
    manager().newDocument();
    EXPECT_TRUE(RZID(name) == RZID::kNull) << "the drawing of the name is gone";
}

} // namespace
