// SPDX-License-Identifier: MIT
#include "calls.h"

#include "callsupport.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>

#include <malloc.h>

namespace {

using namespace lm::test;
using lm::host::FunctionRegistration;
using testing::ElementsAre;
using testing::EndsWith;
using testing::IsEmpty;

/// A function that answers with what `make` makes.
FunctionRegistration answering(std::function<hst_resbufW*()> make) {
    return FunctionRegistration("rzAnswer", [make = std::move(make)](CHostAPI& api) { api.retList(make()); });
}

hst_resbufW* bare(short type) {
    return lm::host::newRecord(type);
}

hst_resbufW* ofLong(int value) {
    hst_resbufW* const record = lm::host::newRecord(RTLONG);
    record->value.int32 = value;
    return record;
}

hst_resbufW* ofReal(double value) {
    hst_resbufW* const record = lm::host::newRecord(RTREAL);
    record->value.real = value;
    return record;
}

TEST(Calls, WithoutADocumentEachGivesItsNeutralValueAndNoLine) {
    const LogCapture log;
    int called = 0;
    const FunctionRegistration registration("rzAnswer", [&](CHostAPI&) { ++called; });
    EXPECT_EQ(rzInvoke2("rzAnswer"), nullptr);
    EXPECT_FALSE(rzInvokeBool("rzAnswer"));
    EXPECT_EQ(rzInvokeInt("rzAnswer"), 0);
    EXPECT_TRUE(rzInvokeStr("rzAnswer").isEmpty());
    rzInvokeVoid("rzAnswer");
    EXPECT_EQ(called, 0);
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST(Calls, AnUnknownFunctionGivesTheNeutralValue) {
    ActiveDocument active;
    const LogCapture log;
    EXPECT_EQ(rzInvoke2("rzNobody", "a"), nullptr);
    EXPECT_FALSE(rzInvokeBool("rzNobody"));
    EXPECT_EQ(rzInvokeInt("rzNobody"), 0);
    EXPECT_TRUE(rzInvokeStr("rzNobody").isEmpty());
    rzInvokeVoid("rzNobody");
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST(Calls, GiveTheWholeListToItsNewOwner) {
    ActiveDocument active;
    const auto registration = answering([] { return textRecord("a", shortRecord(2, textRecord("b"))); });
    const std::size_t before = lm::drawing::liveBlocks();
    hst_resbufW* const result = rzInvoke2("rzAnswer");
    EXPECT_EQ(told(result), "5005:a 5003:2 5005:b");
    active.api.relRb(result);
    EXPECT_EQ(lm::drawing::liveBlocks(), before);
}

TEST(Calls, BooleanIsFalseForNilAndNothingOnly) {
    ActiveDocument active;
    const struct {
        const char* name;
        std::function<hst_resbufW*()> make;
        bool answer;
    } rows[] = {
        {"T", [] { return bare(RTT); }, true},
        {"nil", [] { return bare(RTNIL); }, false},
        {"nothing", []() -> hst_resbufW* { return nullptr; }, false},
        {"integer 0", [] { return shortRecord(0); }, true},
        {"long 0", [] { return ofLong(0); }, true},
        {"empty text", [] { return textRecord(""); }, true},
        {"list", [] { return bare(RTLB); }, true},
        {"nil behind", [] { return shortRecord(1, bare(RTNIL)); }, true},
    };
    const std::size_t before = lm::drawing::liveBlocks();
    for (const auto& row : rows) {
        const auto registration = answering(row.make);
        EXPECT_EQ(rzInvokeBool("rzAnswer"), row.answer) << row.name;
    }
    EXPECT_EQ(lm::drawing::liveBlocks(), before);
}

TEST(Calls, IntegerTakesTheTwoIntegerTypes) {
    ActiveDocument active;
    const struct {
        const char* name;
        std::function<hst_resbufW*()> make;
        int answer;
    } rows[] = {
        {"short", [] { return shortRecord(-5); }, -5},
        {"long", [] { return ofLong(100000); }, 100000},
        {"real", [] { return ofReal(3.5); }, 0},
        {"text", [] { return textRecord("7"); }, 0},
        {"T", [] { return bare(RTT); }, 0},
        {"nothing", []() -> hst_resbufW* { return nullptr; }, 0},
        {"integer behind", [] { return textRecord("a", shortRecord(3)); }, 0},
    };
    const std::size_t before = lm::drawing::liveBlocks();
    for (const auto& row : rows) {
        const auto registration = answering(row.make);
        EXPECT_EQ(rzInvokeInt("rzAnswer"), row.answer) << row.name;
    }
    EXPECT_EQ(lm::drawing::liveBlocks(), before);
}

TEST(Calls, TextTakesATextAndReleasesItsList) {
    ActiveDocument active;
    const auto registration = answering([] { return textRecord("\xCE\xA9 text", shortRecord(1)); });
    const std::size_t before = lm::drawing::liveBlocks();
    EXPECT_EQ(told(rzInvokeStr("rzAnswer")), "\xCE\xA9 text");
    EXPECT_EQ(lm::drawing::liveBlocks(), before);
}

// Kept on purpose: whoever answers with another type may go on using it.
TEST(Calls, TextLeavesAResultOfAnotherTypeBehind) {
    ActiveDocument active;
    const auto registration = answering([] { return shortRecord(1); });
    const std::size_t before = lm::drawing::liveBlocks();
    EXPECT_TRUE(rzInvokeStr("rzAnswer").isEmpty());
    EXPECT_EQ(lm::drawing::liveBlocks(), before + 1);
}

TEST(Calls, VoidReleasesItsResult) {
    ActiveDocument active;
    const auto registration = answering([] { return textRecord("a", shortRecord(1)); });
    const std::size_t before = lm::drawing::liveBlocks();
    rzInvokeVoid("rzAnswer");
    EXPECT_EQ(lm::drawing::liveBlocks(), before);
}

TEST(Calls, ReleaseTheirResultWhenTheFunctionLeftNoDocumentActive) {
    ActiveDocument active;
    const FunctionRegistration registration("rzAnswer", [&](CHostAPI& api) {
        active.documents.manager.setActiveDocument(nullptr);
        api.retList(textRecord("7", shortRecord(1)));
    });
    const auto activate = [&] { active.documents.manager.setActiveDocument(active.document); };
    const std::size_t before = lm::drawing::liveBlocks();
    EXPECT_TRUE(rzInvokeBool("rzAnswer"));
    activate();
    EXPECT_EQ(rzInvokeInt("rzAnswer"), 0);
    activate();
    EXPECT_EQ(told(rzInvokeStr("rzAnswer")), "7");
    activate();
    rzInvokeVoid("rzAnswer");
    EXPECT_EQ(lm::drawing::liveBlocks(), before);
}

/// Calls a family with 0 to 9 arguments behind the name and checks what arrived each time.
template<class Call>
void checkForms(Call call) {
    ActiveDocument active;
    std::vector<std::string> arrived;
    const FunctionRegistration registration("rzForms", [&](CHostAPI& api) {
        hst_resbufW* const arguments = api.getArgs();
        arrived.push_back(told(arguments));
        api.relRb(arguments);
    });
    call();
    std::vector<std::string> expected;
    std::string line;
    expected.push_back(line);
    for (char letter = 'b'; letter <= 'j'; ++letter) {
        if (!line.empty()) line += ' ';
        line += std::string("5005:") + letter;
        expected.push_back(line);
    }
    expected.push_back("5005:x 5005:y");
    EXPECT_EQ(arrived, expected);
}

#define CHECK_FORMS(name)                                                                                    \
    TEST(CallForms, name) {                                                                                  \
        checkForms([] {                                                                                      \
            const RZString f = "rzForms";                                                                    \
            (void)name(f);                                                                                   \
            (void)name(f, "b");                                                                              \
            (void)name(f, "b", "c");                                                                         \
            (void)name(f, "b", "c", "d");                                                                    \
            (void)name(f, "b", "c", "d", "e");                                                               \
            (void)name(f, "b", "c", "d", "e", "f");                                                          \
            (void)name(f, "b", "c", "d", "e", "f", "g");                                                     \
            (void)name(f, "b", "c", "d", "e", "f", "g", "h");                                                \
            (void)name(f, "b", "c", "d", "e", "f", "g", "h", "i");                                           \
            (void)name(f, "b", "c", "d", "e", "f", "g", "h", "i", "j");                                      \
            (void)name(RZStringList{f, "x", "y"});                                                           \
        });                                                                                                  \
    }

CHECK_FORMS(rzInvoke2)
CHECK_FORMS(rzInvokeBool)
CHECK_FORMS(rzInvokeInt)
CHECK_FORMS(rzInvokeStr)
CHECK_FORMS(rzInvokeVoid)

TEST(Calls, PassTextsExactlyUpToTheirFirstZero) {
    ActiveDocument active;
    lm::WideString arrived;
    const FunctionRegistration registration("rzAnswer", [&](CHostAPI& api) {
        hst_resbufW* const arguments = api.getArgs();
        arrived = arguments->value.text;
        api.relRb(arguments);
    });
    rzInvokeVoid("rzAnswer", RZString(lm::WideView(lm::WideString{0x03A9, 0xD800, 0, 'x'})));
    EXPECT_EQ(arrived, (lm::WideString{0x03A9, 0xD800}));
}

#ifndef __SANITIZE_ADDRESS__ // its allocator tells no sizes; there the leak checker is told of these copies
// Kept on purpose: a called function may go on using the pointers.
TEST(Calls, LeaveTheCopiesOfTheirArgumentTextsBehind) {
    ActiveDocument active;
    const FunctionRegistration registration("rzAnswer", [](CHostAPI&) {});
    const auto used = [] {
        const struct mallinfo2 memory = ::mallinfo2();
        return memory.uordblks + memory.hblkhd;
    };
    const RZString text(0, 10000);
    rzInvokeVoid("rzAnswer", text);
    const std::size_t before = used();
    for (int i = 0; i < 10; ++i) rzInvokeVoid("rzAnswer", text);
    const std::size_t copies = 10 * 10000 * sizeof(unsigned short);
    EXPECT_GE(used() - before, copies);
    EXPECT_LT(used() - before, copies + copies / 2) << "the records themselves go";
}
#endif

TEST(Calls, UseTheDocumentThatIsActiveAtThatMoment) {
    Documents documents;
    CHostDocument* const first = documents.manager.newDocumentWithoutDatabase();
    CHostDocument* const second = documents.manager.newDocumentWithoutDatabase();
    std::vector<CHostAPI*> asked;
    const FunctionRegistration registration("rzAnswer", [&](CHostAPI& api) { asked.push_back(&api); });
    rzInvokeVoid("rzAnswer");
    documents.manager.setActiveDocument(first);
    rzInvokeVoid("rzAnswer");
    EXPECT_THAT(asked, ElementsAre(second->getAPI(), first->getAPI()));
}

TEST(Calls, NestWithTheirOwnArguments) {
    ActiveDocument active;
    const FunctionRegistration inner("rzInner", [](CHostAPI& api) { api.retList(api.getArgs()); });
    const FunctionRegistration outer("rzOuter", [](CHostAPI& api) {
        const RZString got = rzInvokeStr("rzInner", "inner");
        hst_resbufW* const own = api.getArgs();
        api.retList(textRecord(told(got) + "+" + told(own)));
        api.relRb(own);
    });
    EXPECT_EQ(told(rzInvokeStr("rzOuter", "outer")), "inner+5005:outer");
}

// --- failures
// ---------------------------------------------------------------------------------------------------

const char* const kFamilies[] = {"rzInvoke2", "rzInvokeBool", "rzInvokeInt", "rzInvokeStr", "rzInvokeVoid"};

void callFamily(std::string_view family) {
    const RZString name = "rzFails";
    if (family == "rzInvoke2") (void)rzInvoke2(name);
    if (family == "rzInvokeBool") (void)rzInvokeBool(name);
    if (family == "rzInvokeInt") (void)rzInvokeInt(name);
    if (family == "rzInvokeStr") (void)rzInvokeStr(name);
    if (family == "rzInvokeVoid") rzInvokeVoid(name);
}

std::vector<std::string> linesOf(std::string_view family, const std::string& description) {
    if (family == "rzInvokeVoid") return {"rzInvoke2 : " + description, "rzInvokeVoid : " + description};
    return {"rzInvoke2 : " + description};
}

TEST(CallFailures, AnOdErrorIsWrittenAndReachesTheCaller) {
    for (const char* const family : kFamilies) {
        const LogCapture log;
        ActiveDocument active;
        const FunctionRegistration registration(
            "rzFails", [](CHostAPI&) { throw OdError(eKeyNotFound, OdString("why")); });
        EXPECT_THROW(callFamily(family), OdError) << family;
        std::vector<std::string> expected = linesOf(family, "why");
        for (std::string& line : expected)
            line = "[" + std::to_string(active.document->number()) + "] {now} " + line;
        EXPECT_EQ(log.lines(), expected) << family;
    }
}

TEST(CallFailures, AStandardExceptionIsWrittenAndReachesTheCaller) {
    for (const char* const family : kFamilies) {
        const LogCapture log;
        ActiveDocument active;
        const FunctionRegistration registration("rzFails", [](CHostAPI&) { throw std::out_of_range("far"); });
        EXPECT_THROW(callFamily(family), std::out_of_range) << family;
        const std::vector<std::string> expected = linesOf(family, "far");
        ASSERT_EQ(log.lines().size(), expected.size()) << family;
        for (std::size_t i = 0; i < expected.size(); ++i)
            EXPECT_THAT(log.lines()[i], EndsWith("} " + expected[i]));
    }
}

TEST(CallFailures, AnyOtherExceptionPassesWithoutALine) {
    for (const char* const family : kFamilies) {
        const LogCapture log;
        ActiveDocument active;
        const FunctionRegistration registration("rzFails", [](CHostAPI&) { throw 42; });
        EXPECT_THROW(callFamily(family), int) << family;
        EXPECT_THAT(log.lines(), IsEmpty()) << family;
    }
}

TEST(CallFailures, AFailedCallIsTakenDown) {
    ActiveDocument active;
    const LogCapture log;
    const FunctionRegistration registration("rzFails", [](CHostAPI& api) {
        api.retList(textRecord("never seen"));
        throw OdError(OdString("why"));
    });
    hostSession()->clearLines(); // remembered lines hold blocks of their own
    const std::size_t before = lm::drawing::liveBlocks();
    EXPECT_THROW(rzInvokeVoid("rzFails", "a"), OdError);
    EXPECT_EQ(active.api.callDepth(), 0u);
    hostSession()->clearLines();
    EXPECT_EQ(lm::drawing::liveBlocks(), before);
}

} // namespace
