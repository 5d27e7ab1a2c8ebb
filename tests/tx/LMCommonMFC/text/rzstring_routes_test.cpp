// SPDX-License-Identifier: MIT
// The exact and the narrow route, for each type that becomes text and each way in which it does.
#include "text_literal.h"

#include "host/hoststring.h"

#include <gtest/gtest.h>

namespace {

// One unit of code page 1252 beyond ASCII, one of its upper bytes, one that it lacks, and the key separator.
const char16_t kSource[] = u"ç€Ω\u000Cz";
const char16_t kNarrowed[] = u"ç€?\u000Cz";
const char kBytes[] = "\xE7\x80?\x0Cz";

/// Expects every way in which a value becomes text to give `expected`.
template<class Source>
void expectRoute(const char* name, const Source& source, const RZString& expected) {
    SCOPED_TRACE(name);
    EXPECT_EQ(RZString(source).str(), expected.str());

    RZString assigned = "old";
    EXPECT_EQ(&(assigned = source), &assigned);
    EXPECT_EQ(assigned.str(), expected.str());

    EXPECT_TRUE(expected == source);
    EXPECT_FALSE(expected != source);
    EXPECT_FALSE(expected + "x" == source);
    EXPECT_TRUE(expected + "x" != source);

    EXPECT_EQ((RZString("a") + source).str(), RZString(RZString("a"), expected).str());
    RZString grown = "a";
    grown += source;
    EXPECT_EQ(grown.str(), RZString(RZString("a"), expected).str());

    EXPECT_EQ(RZString("a", source).str(), RZString(RZString("a"), expected).str());
}

/// The operators of order, which narrow pointers don't have.
template<class Source>
void expectOrder(const char* name, const Source& source, const RZString& expected) {
    SCOPED_TRACE(name);
    const RZString greater(expected, "x");
    const RZString less = expected.left(1);
    EXPECT_FALSE(expected < source);
    EXPECT_TRUE(expected <= source);
    EXPECT_FALSE(expected > source);
    EXPECT_TRUE(expected >= source);
    EXPECT_TRUE(less < source);
    EXPECT_TRUE(less <= source);
    EXPECT_TRUE(greater > source);
    EXPECT_TRUE(greater >= source);
}

TEST(TextRoutes, AreExactOrNarrowByTheTypeOfTheSource) {
    const RZString exact(wide(kSource));
    const RZString narrow(wide(kNarrowed));
    ASSERT_NE(exact, narrow);

    const OdString odText(wide(kSource));
    const OdString odNarrow(kBytes);
    const CString framework(wide(kSource));
    const CHostString hostText(wide(kSource));
    const QString qtText = QString::fromUtf16(kSource);

    expectRoute("RZString", exact, exact);
    expectRoute("const unsigned short*", wide(kSource), exact);
    expectRoute("OdString", odText, exact);
    expectRoute("CString", framework, exact);
    expectRoute("CHostString", hostText, narrow);
    expectRoute("QString", qtText, narrow);
    expectRoute("const char*", static_cast<const char*>(kBytes), narrow);
    expectRoute("OdString of narrow text", odNarrow, narrow);

    expectOrder("RZString", exact, exact);
    expectOrder("const unsigned short*", wide(kSource), exact);
    expectOrder("OdString", odText, exact);
    expectOrder("CString", framework, exact);
    expectOrder("CHostString", hostText, narrow);
    expectOrder("QString", qtText, narrow);
}

TEST(TextRoutes, WorkFromTheLeftSideToo) {
    const RZString exact(wide(kSource));
    const RZString narrow(wide(kNarrowed));
    EXPECT_TRUE(CString(wide(kSource)) == exact);
    EXPECT_FALSE(CString(wide(kNarrowed)) == exact);
    EXPECT_TRUE(CString(wide(kNarrowed)) != exact);
    EXPECT_TRUE(OdString(wide(kSource)) == exact);
    EXPECT_TRUE(QString::fromUtf16(kSource) == narrow);
    EXPECT_TRUE(CHostString(wide(kSource)) == narrow);
    EXPECT_TRUE(wide(kSource) == exact);
    EXPECT_EQ(kBytes + exact, RZString(narrow, exact));
    EXPECT_EQ(wide(kSource) + exact, RZString(exact, exact));
    EXPECT_EQ(static_cast<const unsigned short*>(nullptr) + exact, exact);
}

TEST(TextRoutes, KeepEveryUnitOnTheExactOne) {
    lm::WideString all;
    for (unsigned unit = 1; unit <= 0xFFFF; ++unit) all += static_cast<lm::WideChar>(unit);
    const RZString text(all.c_str());
    EXPECT_EQ(text.str(), all);
    EXPECT_EQ(RZString(static_cast<OdString>(static_cast<const OdString&>(OdString(all.c_str())))).str(),
              all);
    const OdString od = text;
    EXPECT_EQ(RZString(od).str(), all);
    const CString framework = text;
    EXPECT_EQ(RZString(framework).str(), all);
    const QString qt = text;
    EXPECT_EQ(CString(qt).view(), all);
    const CHostString host = text;
    EXPECT_EQ(host.view(), all);
}

TEST(TextRoutes, KeepTheCodePageOnTheNarrowOne) {
    std::string bytes;
    for (unsigned byte = 1; byte <= 0xFF; ++byte) bytes += static_cast<char>(byte);
    const RZString text(bytes.c_str());
    EXPECT_EQ(text.length(), 255u);
    EXPECT_EQ(text.getAt(0x80 - 1), 0x20AC);
    EXPECT_EQ(text.getAt(0x81 - 1), 0x81) << "the code page leaves this byte unused";
    EXPECT_EQ(text.getAt(0xE3 - 1), 0xE3);
    const CHostString host = text;
    EXPECT_EQ(RZString(host), text);
    const QString qt = text;
    EXPECT_EQ(RZString(qt), text);
}

TEST(TextRoutes, WidenAnUpperByteWhereverItStands) {
    for (std::size_t size = 1; size < 20; ++size) {
        for (std::size_t at = 0; at < size; ++at) {
            std::string bytes(size, 'a');
            bytes[at] = '\x80';
            RZString expected = std::string(size, 'a').c_str();
            expected.setAt(static_cast<int>(at), 0x20AC);
            EXPECT_EQ(RZString(bytes.c_str()), expected) << at << " of " << size;
        }
    }
}

TEST(TextRoutes, CountAUnitForEachThatTheCodePageLacks) {
    EXPECT_EQ(RZString(QString::fromUtf8("😀Ω")), u"???"_rz);
}

TEST(TextRoutes, TakeNullForEmpty) {
    const auto* wideNull = static_cast<const unsigned short*>(nullptr);
    const auto* narrowNull = static_cast<const char*>(nullptr);
    auto* writable = static_cast<unsigned short*>(nullptr);
    EXPECT_TRUE(RZString(wideNull).isEmpty());
    EXPECT_TRUE(RZString(narrowNull).isEmpty());
    EXPECT_TRUE(RZString(writable).isEmpty());
    EXPECT_TRUE(RZString(lm::WideView()).isEmpty());
    EXPECT_TRUE(RZString(QString()).isEmpty());
    EXPECT_TRUE(RZString(OdString()).isEmpty());
    EXPECT_TRUE(RZString() == wideNull);
    EXPECT_FALSE(RZString("a") == wideNull);
    EXPECT_TRUE(RZString("a") > wideNull);
    EXPECT_EQ(RZString("a") + wideNull, "a");
    EXPECT_EQ(RZString("a") + narrowNull, "a");
    RZString text = "a";
    text += wideNull;
    text += narrowNull;
    EXPECT_EQ(text, "a");
    text = narrowNull;
    EXPECT_TRUE(text.isEmpty());
}

TEST(TextRoutes, EndAtAZeroUnit) {
    const unsigned short units[] = {'a', 0, 'b', 0};
    unsigned short writable[] = {'a', 0, 'b', 0};
    const lm::WideView all(units, 3);
    EXPECT_EQ(RZString(units), "a");
    EXPECT_EQ(RZString(writable), "a");
    EXPECT_EQ(RZString(CString(all)), "a");
    EXPECT_EQ(RZString(OdString(all)), "a");
    EXPECT_EQ(RZString(CHostString(all)), "a");
    EXPECT_EQ(RZString(CString(all).toQString()), "a");
    RZString grown = "x";
    grown += CString(all);
    grown += OdString(all);
    EXPECT_EQ(grown, "xaa");
    EXPECT_EQ(RZString("x") + CString(all) + OdString(all), "xaa");
    EXPECT_TRUE(RZString("a") == CString(all));
    EXPECT_TRUE(RZString("a") == OdString(all));
}

} // namespace
