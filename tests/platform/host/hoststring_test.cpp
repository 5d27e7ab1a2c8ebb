// SPDX-License-Identifier: MIT
#include "host/hoststring.h"

#include "system/codepage.h"

#include <gtest/gtest.h>

#include <thread>
#include <vector>

namespace {

lm::WideString allUnits() {
    lm::WideString units;
    for (unsigned int unit = 1; unit <= 0xFFFF; ++unit) units.push_back(static_cast<lm::WideChar>(unit));
    return units;
}

TEST(HostString, IsEmptyFromNothingAndFromNullPointers) {
    EXPECT_TRUE(CHostString().isEmpty());
    EXPECT_TRUE(CHostString(static_cast<const unsigned short*>(nullptr)).isEmpty());
    EXPECT_TRUE(CHostString(static_cast<const char*>(nullptr)).isEmpty());
    EXPECT_STREQ("", CHostString().ansi_str());
    EXPECT_EQ(0, CHostString().c_str()[0]);
    const QString text = CHostString();
    EXPECT_TRUE(text.isEmpty());
}

TEST(HostString, KeepsEveryUnitFromWidePointersOdStringAndQString) {
    const lm::WideString units = allUnits();
    EXPECT_EQ(units, CHostString(units.c_str()).view());
    EXPECT_EQ(units, CHostString(OdString(units.c_str())).view());
    const QString qt(reinterpret_cast<const QChar*>(units.data()), static_cast<qsizetype>(units.size()));
    EXPECT_EQ(units, CHostString(qt).view());
}

TEST(HostString, GivesEveryUnitToOdStringAndQString) {
    const lm::WideString units = allUnits();
    const CHostString text(units.c_str());
    const OdString od = text;
    EXPECT_EQ(units, od.view());
    const QString& qt = text;
    EXPECT_EQ(units, lm::WideView(reinterpret_cast<const lm::WideChar*>(qt.utf16()),
                                  static_cast<std::size_t>(qt.size())));
    const QString copy = text;
    EXPECT_EQ(qt, copy);
    const QString direct(CHostString("direct"));
    EXPECT_EQ(QString("direct"), direct);
}

TEST(HostString, KeepsZeroUnitsOfQStringAndViews) {
    QString qt("a.b");
    qt[1] = QChar(0);
    EXPECT_EQ(3u, CHostString(qt).getLength());
    const QString back = CHostString(qt);
    EXPECT_EQ(3, back.size());
}

TEST(HostString, WidensNarrowTextByTheCodePage) {
    const CHostString text("\xE7\xE3o \x80");
    EXPECT_EQ((lm::WideString{0xE7, 0xE3, 'o', ' ', 0x20AC}), text.view());
}

TEST(HostString, LosesOnlyInTheNarrowForm) {
    const lm::WideString units{'R', 0x3A9, 0xE3, 0x0C, 0xD83D, 0xDE00};
    const CHostString text(units.c_str());
    EXPECT_STREQ("R?\xE3\x0C??", text.ansi_str());
    EXPECT_EQ(units, text.view());
}

TEST(HostString, KeepsTheNarrowFormUntilTheTextChanges) {
    CHostString text("abc");
    const char* const first = text.ansi_str();
    EXPECT_EQ(first, text.ansi_str());
    text = CHostString("xyz");
    EXPECT_STREQ("xyz", text.ansi_str());
    const QString& qt = text;
    EXPECT_EQ(QString("xyz"), qt);
    text = CHostString("other");
    EXPECT_EQ(QString("other"), static_cast<const QString&>(text));
}

TEST(HostString, SharesTheBufferBetweenCopies) {
    const OdString od(lm::system::widen("shared text").c_str());
    const CHostString text(od);
    const CHostString copy = text;
    EXPECT_EQ(od.c_str(), text.c_str());
    EXPECT_EQ(od.c_str(), copy.c_str());
    const OdString back = copy;
    EXPECT_EQ(od.c_str(), back.c_str());
}

TEST(HostString, CopiesAndMovesDropTheOtherFormsOfTheTarget) {
    CHostString a("one"), b("two");
    EXPECT_STREQ("one", a.ansi_str());
    EXPECT_STREQ("two", b.ansi_str());
    a = b;
    EXPECT_STREQ("two", a.ansi_str());
    a = std::move(b);
    EXPECT_STREQ("two", a.ansi_str());
    EXPECT_STREQ("", b.ansi_str());
    CHostString& same = a;
    a = same;
    EXPECT_STREQ("two", a.ansi_str());
    const CHostString c = std::move(a);
    EXPECT_STREQ("two", c.ansi_str());
    EXPECT_STREQ("", a.ansi_str());
}

TEST(HostString, ComparesIgnoringCaseByTheOneTable) {
    EXPECT_EQ(0, CHostString("NUMERO").compareNoCase("numero"));
    EXPECT_EQ(0, CHostString("\xC7\xC3O").compareNoCase("\xE7\xE3o"));
    EXPECT_EQ(0, CHostString("\x8A\x8C\x8E\x9F").compareNoCase("\x9A\x9C\x9E\xFF"));
    EXPECT_NE(0, CHostString("\xD7").compareNoCase("\xF7"));
    EXPECT_LT(CHostString("abc").compareNoCase("ABD"), 0);
    EXPECT_GT(CHostString("abcd").compareNoCase("ABC"), 0);
    EXPECT_NE(0, CHostString("stra\xDF"
                             "e")
                     .compareNoCase("STRASSE"));
}

TEST(HostString, ComparesExactlyWithOperators) {
    EXPECT_TRUE(CHostString("a") == CHostString("a"));
    EXPECT_TRUE(CHostString("a") == "a");
    EXPECT_TRUE(CHostString("a") != CHostString("A"));
    EXPECT_TRUE(CHostString("A10") < CHostString("A9"));
}

TEST(HostString, FillsPatternsOneAfterTheOtherInAllPlaces) {
    EXPECT_EQ(CHostString("[7] {now} text"), CHostString("[%2] {%3} %1").arg("text", "7", "now"));
    EXPECT_EQ(CHostString("a-a %2"), CHostString("%1-%1 %2").arg("a"));
    EXPECT_EQ(CHostString("a b %3"), CHostString("%1 %2 %3").arg("a", "b"));
    EXPECT_EQ(CHostString("nothing"), CHostString("nothing").arg("a", "b", "c"));
    EXPECT_EQ(CHostString(""), CHostString("").arg("a"));
}

TEST(HostString, FillsMarksThatAnEarlierTextBrought) {
    EXPECT_EQ(CHostString("now 7"), CHostString("%1").arg("%3 %2", "7", "now"));
    EXPECT_EQ(CHostString("%1 x"), CHostString("%1 %2").arg("%1", "x"))
        << "a mark isn't filled by its own text";
    EXPECT_EQ(CHostString("7 %2"), CHostString("%2 %3").arg("", "7", "%2")) << "nor by an earlier one";
}

TEST(HostString, MakesItsOtherFormsOnManyThreadsAtOnce) {
    for (int round = 0; round < 50; ++round) {
        const CHostString text("CONSTANT");
        std::vector<std::thread> threads;
        for (int i = 0; i < 4; ++i)
            threads.emplace_back([&text] {
                EXPECT_STREQ("CONSTANT", text.ansi_str());
                const QString& qt = text;
                EXPECT_EQ(8, qt.size());
            });
        for (std::thread& thread : threads) thread.join();
    }
}

} // namespace
