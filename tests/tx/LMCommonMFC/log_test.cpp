// SPDX-License-Identifier: MIT
#include "log.h"

#include "callsupport.h"
#include "rzprintf.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>

namespace {

using namespace lm::test;
using lm::log::guarded;
using lm::log::guardedFromOdError;
using lm::log::writeLog;
using testing::ElementsAre;
using testing::IsEmpty;

std::string withNumber(const CHostDocument* document, const std::string& rest) {
    return "[" + std::to_string(document->number()) + "] {now} " + rest;
}

TEST(LogWriter, WritesTheBareMessageWithoutADocument) {
    const LogCapture log;
    writeLog("abc", nullptr);
    writeLog("%1 %2 %3", nullptr);
    writeLog("", nullptr);
    EXPECT_THAT(log.lines(), ElementsAre("abc", "%1 %2 %3", ""));
}

TEST(LogWriter, PutsNumberAndTimeBeforeTheMessageOfADocument) {
    const LogCapture log;
    ActiveDocument active;
    writeLog("abc", active.document);
    EXPECT_THAT(log.lines(), ElementsAre(withNumber(active.document, "abc")));
}

TEST(LogWriter, ReplacesMarksThatTheMessageBrings) {
    const LogCapture log;
    ActiveDocument active;
    const std::string number = std::to_string(active.document->number());
    writeLog("a %2 b %3 c %2", active.document);
    writeLog("keeps %1", active.document);
    EXPECT_THAT(log.lines(), ElementsAre(withNumber(active.document, "a " + number + " b now c " + number),
                                         withNumber(active.document, "keeps %1")));
}

TEST(LogWriter, DropsOneLineFeedAtTheEnd) {
    const LogCapture log;
    ActiveDocument active;
    writeLog("abc\n", nullptr);
    writeLog("abc\n\n", nullptr);
    writeLog("\n", nullptr);
    writeLog("a\nb", nullptr);
    writeLog("abc\r\n", nullptr);
    writeLog("abc\n", active.document);
    EXPECT_THAT(log.lines(),
                ElementsAre("abc", "abc\n", "", "a\nb", "abc\r", withNumber(active.document, "abc")));
}

TEST(LogWriter, KeepsTextOutsideTheCodePage) {
    const LogCapture log;
    writeLog(hostText("\xCE\xA9"), nullptr);
    EXPECT_THAT(log.lines(), ElementsAre("\xCE\xA9"));
}

TEST(LogWriter, DoesNothingWithoutASession) {
    const LogCapture log;
    lm::host::setSessionPresent(false);
    writeLog("abc", nullptr);
    lm::host::setSessionPresent(true);
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST(LogWriter, NeverThrows) {
    const auto before = hostSession()->setLogSink([](lm::WideView) { throw std::runtime_error("sink"); });
    EXPECT_NO_THROW(writeLog("abc", nullptr));
    EXPECT_THROW(guarded("name", []() -> int { throw OdError(OdString("first")); }), OdError);
    hostSession()->setLogSink(before);
}

TEST(Guard, GivesTheResultOfItsBodyWithoutALine) {
    const LogCapture log;
    int value = 3;
    EXPECT_EQ(guarded("name", [&] { return value; }), 3);
    int& reference = guarded("name", [&]() -> int& { return value; });
    EXPECT_EQ(&reference, &value);
    guarded("name", [&] { value = 4; });
    EXPECT_EQ(value, 4);
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST(Guard, ReportsAnOdErrorAndRaisesTheSameObject) {
    const LogCapture log;
    ActiveDocument active;
    const OdError* thrown = nullptr;
    try {
        guarded("CICad::GetLayers", [&] {
            try {
                throw OdError(eKeyNotFound, OdString("no such key"));
            } catch (const OdError& error) {
                thrown = &error;
                throw;
            }
        });
        FAIL();
    } catch (const OdError& error) {
        EXPECT_EQ(&error, thrown);
        EXPECT_EQ(error.code(), eKeyNotFound);
    }
    EXPECT_THAT(log.lines(), ElementsAre(withNumber(active.document, "CICad::GetLayers : no such key")));
}

TEST(Guard, KeepsTheKindOfADerivedError) {
    const LogCapture log;
    EXPECT_THROW(guarded("name", [] { throw OdError_InvalidIndex(7); }), OdError_InvalidIndex);
    EXPECT_THROW(guarded("name", [] { throw std::out_of_range("far"); }), std::out_of_range);
    EXPECT_EQ(log.lines().size(), 2u);
}

TEST(Guard, ReportsAStandardException) {
    const LogCapture log;
    EXPECT_THROW(guarded("name", [] { throw std::runtime_error("standard \xE7"); }), std::runtime_error);
    EXPECT_THAT(log.lines(), ElementsAre("name : standard \xC3\xA7")); // narrow text is of the code page
}

TEST(Guard, LetsOtherExceptionsPassWithoutALine) {
    const LogCapture log;
    EXPECT_THROW(guarded("name", [] { throw 7; }), int);
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST(Guard, NestedGuardsEachWriteTheirLine) {
    const LogCapture log;
    EXPECT_THROW(guarded("outer", [] { guarded("inner", [] { throw OdError(OdString("why")); }); }), OdError);
    EXPECT_THAT(log.lines(), ElementsAre("inner : why", "outer : why"));
}

TEST(Guard, TheNarrowFormReportsAnOdErrorAlone) {
    const LogCapture log;
    EXPECT_THROW(guardedFromOdError("name", [] { throw OdError(OdString("why")); }), OdError);
    EXPECT_THROW(guardedFromOdError("name", [] { throw std::runtime_error("standard"); }),
                 std::runtime_error);
    EXPECT_EQ(guardedFromOdError("name", [] { return 5; }), 5);
    EXPECT_THAT(log.lines(), ElementsAre("name : why"));
}

TEST(Guard, ReportsADescriptionOutsideTheCodePageExactly) {
    const LogCapture log;
    const OdString description = odPath("\xCE\xA9 100% %2");
    EXPECT_THROW(guarded("name", [&] { throw OdError(description); }), OdError);
    EXPECT_THAT(log.lines(), ElementsAre("name : \xCE\xA9 100% %2"));
}

TEST(RzPrintf, FormatsTextsAndNumbers) {
    ActiveDocument active;
    const ConsoleCapture console;
    const lm::WideString wideText = wide("w\xCE\xA9");
    EXPECT_EQ(rzPrintf("%s|%s|%s|%s|%d|%.2f|%c\n", rz("text"), wideText.c_str(), odPath("od"),
                       hostText("host"), -7, 1.5, static_cast<unsigned short>('c')),
              static_cast<int>(std::string_view("text|wX|od|host|-7|1.50|c\n").size()));
    EXPECT_EQ(console.text(), "text|w\xCE\xA9|od|host|-7|1.50|c\n");
}

TEST(RzPrintf, TakesEveryWidthOfNumber) {
    ActiveDocument active;
    const ConsoleCapture console;
    rzPrintf("%ld %llu %f %u", 5000000000L, 18446744073709551615ull, 0.5f, 7u);
    EXPECT_EQ(console.text(), "5000000000 18446744073709551615 0.500000 7");
}

TEST(RzPrintf, TextBehindAFormatIsHarmless) {
    ActiveDocument active;
    const ConsoleCapture console;
    rzPrintf("%s", rz("50%s of 100%d"));
    EXPECT_EQ(console.text(), "50%s of 100%d");
}

TEST(RzPrintf, ATextAloneIsAFormat) {
    ActiveDocument active;
    const ConsoleCapture console;
    EXPECT_EQ(rzPrintf("100%%\n"), 5);
    EXPECT_EQ(console.text(), "100%\n");
}

TEST(RzPrintf, UsesTheActiveDocument) {
    Documents documents;
    documents.manager.newDocumentWithoutDatabase();
    const ConsoleCapture console;
    EXPECT_EQ(rzPrintf(""), 0);
    EXPECT_EQ(console.text(), "");
}

} // namespace
