// SPDX-License-Identifier: MIT
// Calls by name: arguments, results, nesting, failures; and entity names.
#include "hostsupport.h"

#include "drawing/alloc.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace {

using namespace lm::test;
using lm::host::FunctionRegistration;

/// A chain of records of which nothing is on the heap, as callers of invoke build it.
struct StackChain {
    explicit StackChain(std::initializer_list<const char*> texts) {
        for (const char* text : texts) units.push_back(wide(text));
        records.resize(units.size());
        for (std::size_t i = 0; i < units.size(); ++i) {
            records[i] = {};
            records[i].restype = RTSTR;
            records[i].value.text = units[i].data();
            records[i].rbnext = i + 1 < units.size() ? &records[i + 1] : nullptr;
        }
    }
    std::vector<lm::WideString> units;
    std::vector<hst_resbufW> records;
};

class HostApi : public testing::Test {
protected:
    void TearDown() override {
        EXPECT_EQ(0u, api.callDepth());
        EXPECT_EQ(blocks, lm::drawing::liveBlocks());
    }
    std::string call(std::initializer_list<const char*> texts) {
        StackChain chain(texts);
        hst_resbufW* result = nullptr;
        code = api.invoke(chain.records.data(), result);
        const std::string line = told(result);
        api.relRb(result);
        return line;
    }
    std::size_t blocks = lm::drawing::liveBlocks();
    CHostAPI api;
    int code = 0;
};

TEST_F(HostApi, GivesArgumentsWithoutTheNameAndTheResultToTheCaller) {
    FunctionRegistration echo("lmEcho", [](CHostAPI& a) { a.retList(a.getArgs()); });
    EXPECT_EQ("5005:a 5005:b", call({"lmEcho", "a", "b"}));
    EXPECT_EQ(RTNORM, code);
    EXPECT_EQ("", call({"lmEcho"}));
    EXPECT_EQ(RTNORM, code);
}

TEST_F(HostApi, FindsNamesIgnoringCase) {
    FunctionRegistration function("rzAção", [](CHostAPI& a) { a.retT(); });
    FunctionRegistration other("rzOutra", [](CHostAPI& a) { a.retT(); });
    EXPECT_EQ("5021", call({"RZOUTRA"}));
    EXPECT_EQ("5021", call({"rzoutra"}));
    EXPECT_TRUE(lm::host::hasFunction("RzOuTrA"));
}

TEST_F(HostApi, AnswersUnknownNamesWithACodeAndNoResult) {
    EXPECT_EQ("", call({"noSuchFunction", "x"}));
    EXPECT_EQ(RTERROR, code);
    hst_resbufW* result = reinterpret_cast<hst_resbufW*>(1);
    EXPECT_EQ(RTERROR, api.invoke(nullptr, result));
    EXPECT_EQ(nullptr, result);
    hst_resbufW number{};
    number.restype = RTSHORT;
    result = reinterpret_cast<hst_resbufW*>(1);
    EXPECT_EQ(RTERROR, api.invoke(&number, result));
    EXPECT_EQ(nullptr, result);
    hst_resbufW nameless{};
    nameless.restype = RTSTR;
    EXPECT_EQ(RTERROR, api.invoke(&nameless, result));
}

TEST_F(HostApi, LeavesTheCallersRecordsAlone) {
    FunctionRegistration change("lmChange", [](CHostAPI& a) {
        hst_resbufW* arguments = a.getArgs();
        arguments->value.text[0] = 'X';
        a.retList(arguments);
    });
    StackChain chain({"lmChange", "abc"});
    hst_resbufW* result = nullptr;
    EXPECT_EQ(RTNORM, api.invoke(chain.records.data(), result));
    EXPECT_EQ("5005:Xbc", told(result));
    EXPECT_EQ("5005:lmChange 5005:abc", told(chain.records.data()));
    api.relRb(result);
}

TEST_F(HostApi, GivesAFreshCopyAtEachReading) {
    FunctionRegistration twice("lmTwice", [](CHostAPI& a) {
        hst_resbufW* first = a.getArgs();
        hst_resbufW* second = a.getArgs();
        EXPECT_NE(first, second);
        EXPECT_EQ(told(first), told(second));
        a.relRb(first);
        EXPECT_EQ("5005:x", told(second));
        a.relRb(second);
    });
    EXPECT_EQ("", call({"lmTwice", "x"}));
}

TEST_F(HostApi, HasNoArgumentsAndTakesNoResultOutsideACall) {
    EXPECT_EQ(nullptr, api.getArgs());
    api.retNil();
    api.retT();
    api.retList(textRecord("nobody takes this"));
    api.retList(nullptr);
    api.relRb(nullptr);
    EXPECT_EQ("", call({"unknown"}));
}

TEST_F(HostApi, NestedCallsKeepTheirOwnArgumentsAndResults) {
    FunctionRegistration inner("lmInner", [](CHostAPI& a) {
        EXPECT_EQ(2u, a.callDepth());
        hst_resbufW* arguments = a.getArgs();
        EXPECT_EQ("5005:inside", told(arguments));
        a.relRb(arguments);
        a.retNil();
    });
    FunctionRegistration outer("lmOuter", [](CHostAPI& a) {
        a.retList(textRecord("kept"));
        StackChain chain({"lmInner", "inside"});
        hst_resbufW* result = nullptr;
        EXPECT_EQ(RTNORM, a.invoke(chain.records.data(), result));
        EXPECT_EQ("5019", told(result));
        a.relRb(result);
        hst_resbufW* arguments = a.getArgs();
        EXPECT_EQ("5005:outside", told(arguments));
        a.relRb(arguments);
    });
    EXPECT_EQ("5005:kept", call({"lmOuter", "outside"}));
}

TEST_F(HostApi, LastResultWinsAndEarlierOnesAreReleased) {
    FunctionRegistration several("lmSeveral", [](CHostAPI& a) {
        a.retList(textRecord("first"));
        a.retT();
        a.retNil();
        hst_resbufW* last = textRecord("last", shortRecord(3));
        a.retList(last);
        a.retList(last);
    });
    EXPECT_EQ("5005:last 5003:3", call({"lmSeveral"}));
    FunctionRegistration none("lmNone", [](CHostAPI& a) {
        a.retT();
        a.retList(nullptr);
    });
    EXPECT_EQ("", call({"lmNone"}));
    EXPECT_EQ(RTNORM, code);
}

TEST_F(HostApi, PassesExceptionsAndTakesTheCallDown) {
    FunctionRegistration throwing("lmThrow", [](CHostAPI& a) {
        a.retList(textRecord("lost"));
        throw std::runtime_error("on purpose");
    });
    FunctionRegistration odError("lmOdError", [](CHostAPI&) { throw OdError(eInvalidInput); });
    FunctionRegistration other("lmInt", [](CHostAPI&) { throw 5; });
    StackChain chain({"lmThrow", "x"});
    hst_resbufW* result = reinterpret_cast<hst_resbufW*>(1);
    EXPECT_THROW(api.invoke(chain.records.data(), result), std::runtime_error);
    EXPECT_EQ(nullptr, result);
    EXPECT_EQ(0u, api.callDepth());
    EXPECT_THROW(call({"lmOdError"}), OdError);
    EXPECT_THROW(call({"lmInt"}), int);
}

TEST_F(HostApi, TakesTheCallDownWhenMemoryEnds) {
    FunctionRegistration never("lmNever", [](CHostAPI&) { FAIL(); });
    StackChain chain({"lmNever", "x", "y"});
    hst_resbufW* result = nullptr;
    lm::drawing::failAllocationAfter(1);
    EXPECT_THROW(api.invoke(chain.records.data(), result), std::bad_alloc);
    lm::drawing::failAllocationAfter(-1);
}

TEST_F(HostApi, LatestFunctionOfANameIsCalledUntilItGoes) {
    FunctionRegistration first("lmSame", [](CHostAPI& a) { a.retNil(); });
    {
        FunctionRegistration second("LMSAME", [](CHostAPI& a) { a.retT(); });
        EXPECT_EQ("5021", call({"lmSame"}));
    }
    EXPECT_EQ("5019", call({"lmSame"}));
    first.reset();
    first.reset();
    EXPECT_EQ("", call({"lmSame"}));
    EXPECT_EQ(RTERROR, code);
}

TEST_F(HostApi, RegistrationsMoveAndRefuseWhatCannotBeCalled) {
    const std::size_t before = lm::host::functionCount();
    {
        FunctionRegistration a("lmMoved", [](CHostAPI& x) { x.retT(); });
        FunctionRegistration b = std::move(a);
        FunctionRegistration c("lmGone", [](CHostAPI&) {});
        c = std::move(b);
        EXPECT_EQ(before + 1, lm::host::functionCount());
        EXPECT_FALSE(lm::host::hasFunction("lmGone"));
        EXPECT_EQ("5021", call({"lmMoved"}));
        FunctionRegistration nameless("", [](CHostAPI&) {});
        FunctionRegistration empty("lmEmpty", lm::host::HostFunction());
        EXPECT_EQ(before + 1, lm::host::functionCount());
    }
    EXPECT_EQ(before, lm::host::functionCount());
}

TEST_F(HostApi, AFunctionMayUnregisterItself) {
    FunctionRegistration self;
    self = FunctionRegistration("lmOnce", [&self](CHostAPI& a) {
        self.reset();
        a.retT();
    });
    EXPECT_EQ("5021", call({"lmOnce"}));
    EXPECT_EQ("", call({"lmOnce"}));
}

TEST(EntityName, ResolvesInTheDatabaseThatItNames) {
    CHostAPI api;
    unsigned long long name[2] = {7, 7};
    {
        CHostDatabase a, b;
        EXPECT_NE(a.number(), b.number());
        ASSERT_EQ(RTNORM, api.GetADSName(b.getModelSpaceId(), name));
        EXPECT_EQ(b.getModelSpaceId().getHandle().value(), name[0]);
        EXPECT_EQ(b.number(), name[1]);
        OdDbObjectId id;
        EXPECT_EQ(RTNORM, api.GetObjectId(name, id));
        EXPECT_EQ(b.getModelSpaceId(), id);
    }
    OdDbObjectId id;
    EXPECT_EQ(RTERROR, api.GetObjectId(name, id)) << "the database is gone";
    EXPECT_TRUE(id.isNull());
}

TEST(EntityName, ResolvesToAnErasedObject) {
    CHostAPI api;
    CHostDatabase database;
    OdSmartPtr<OdDbDictionary> dictionary(database.getNamedObjectsDictionaryId().openObject(OdDb::kForWrite));
    const OdSmartPtr<OdDbXrecord> record(new OdDbXrecord, lm::drawing::kAttach);
    const OdDbObjectId erased = dictionary->setAt(OdString("ENTRY"), record);
    unsigned long long name[2] = {};
    ASSERT_EQ(RTNORM, api.GetADSName(erased, name));
    record->erase();
    OdDbObjectId id;
    EXPECT_EQ(RTNORM, api.GetObjectId(name, id));
    EXPECT_EQ(erased, id);
    name[0] = 0;
    EXPECT_EQ(RTNORM, api.GetADSName(erased, name));
    EXPECT_EQ(erased.getHandle().value(), name[0]);
}

TEST(EntityName, LeavesTheOutputAloneWhenItFails) {
    CHostAPI api;
    CHostDatabase database;
    const OdDbObjectId before = database.getModelSpaceId();
    OdDbObjectId id = before;
    const unsigned long long unknownHandle[2] = {0xFFFFFFFF, database.number()};
    const unsigned long long nullHandle[2] = {0, database.number()};
    const unsigned long long unknownDatabase[2] = {before.getHandle().value(), 0};
    EXPECT_EQ(RTERROR, api.GetObjectId(unknownHandle, id));
    EXPECT_EQ(RTERROR, api.GetObjectId(nullHandle, id));
    EXPECT_EQ(RTERROR, api.GetObjectId(unknownDatabase, id));
    EXPECT_EQ(before, id);
    unsigned long long name[2] = {1, 2};
    EXPECT_EQ(RTERROR, api.GetADSName(OdDbObjectId(), name));
    EXPECT_EQ(1u, name[0]);
    EXPECT_EQ(2u, name[1]);
}

} // namespace
