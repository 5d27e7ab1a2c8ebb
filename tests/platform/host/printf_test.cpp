// SPDX-License-Identifier: MIT
// Formatted console output.
#include "hostsupport.h"

#include <gtest/gtest.h>

#include <climits>
#include <clocale>
#include <cstdlib>

namespace {

using namespace lm::test;

template<class... Arguments>
std::string printed(const char* format, Arguments... arguments) {
    ConsoleCapture console;
    CHostAPI api;
    const int units = api.printf(wide(format).c_str(), arguments...);
    EXPECT_EQ(units, static_cast<int>(wide(console.text()).size()));
    return console.text();
}

TEST(HostPrintf, WritesWideTextAndCountsUnits) {
    const lm::WideString name = wide("ação Ω");
    EXPECT_EQ("[ação Ω]", printed("[%s]", name.c_str()));
    EXPECT_EQ("plain 100%", printed("plain 100%%"));
    EXPECT_EQ("", printed(""));
    ConsoleCapture console;
    EXPECT_EQ(0, CHostAPI().printf(nullptr));
    EXPECT_EQ("", console.text());
}

TEST(HostPrintf, HarmlessTextGoesThroughAsAnArgument) {
    const lm::WideString path = wide("50%s%n%d.dwg");
    EXPECT_EQ("50%s%n%d.dwg", printed("%s", path.c_str()));
}

TEST(HostPrintf, WritesNumbersAsTheRuntimeDoes) {
    EXPECT_EQ("-5|+5| 5|00005|5    |0x1f|1F|017|4294967295",
              printed("%d|%+d|% d|%05d|%-5d|%#x|%X|%#o|%u", -5, 5, 5, 5, 5, 31, 31, 15, -1));
    EXPECT_EQ("-1|65535|-9000000000|9000000000|18446744073709551615",
              printed("%hd|%hu|%ld|%lld|%llu", 65535, -1, -9000000000L, 9000000000LL, ~0ULL));
    EXPECT_EQ("1.500000|2|1.50|1.5|1.5e+00|   2.50",
              printed("%f|%.0f|%.2f|%g|%.1e|%7.2f", 1.5, 1.5, 1.5, 1.5, 1.5, 2.5));
    EXPECT_EQ("   42|42   |00042", printed("%*d|%*d|%.*d", 5, 42, -5, 42, 5, 42));
    EXPECT_EQ("1.25", printed("%.2Lf", 1.25L));
    EXPECT_EQ("1e+300", printed("%g", 1e300));
    EXPECT_EQ(309u, printed("%.0f", 1e308).size()) << "longer than the first buffer";
}

TEST(HostPrintf, PadsAndCutsText) {
    const lm::WideString text = wide("ação");
    EXPECT_EQ("[  ação][ação  ][aç]", printed("[%6s][%-6s][%.2s]", text.c_str(), text.c_str(), text.c_str()));
    EXPECT_EQ("[A][Ω]", printed("[%c][%c]", 'A', 0x3A9));
    EXPECT_EQ("[(null)]", printed("[%s]", static_cast<const unsigned short*>(nullptr)));
}

TEST(HostPrintf, WidensNarrowTextByTheCodePage) {
    EXPECT_EQ("ç|€|é", printed("%hs|%S|%C", "\xE7", "\x80", 0xE9));
}

TEST(HostPrintf, WritesUnknownConversionsAsTheyStand) {
    EXPECT_EQ("%y|%n|%5q|%", printed("%y|%n|%5q|%"));
}

/// Sets a locale with a decimal comma: an installed one, or one compiled into the folder.
bool setCommaLocale(const std::filesystem::path& folder) {
    for (const char* installed : {"de_DE.UTF-8", "pt_BR.UTF-8", "de_DE", "pt_BR"})
        if (std::setlocale(LC_ALL, installed) != nullptr) return true;
    const std::string made = (folder / "de_DE.UTF-8").string();
    const std::string command = "localedef -i de_DE -f UTF-8 '" + made + "' >/dev/null 2>&1";
    if (std::system(command.c_str()) != 0) return false;
    ::setenv("LOCPATH", folder.c_str(), 1);
    return std::setlocale(LC_ALL, "de_DE.UTF-8") != nullptr;
}

TEST(HostPrintf, KeepsTheDecimalPointInEveryLocale) {
    const TemporaryFolder folder;
    const std::string before = std::setlocale(LC_ALL, nullptr);
    if (setCommaLocale(folder.path())) {
        EXPECT_STREQ(",", std::localeconv()->decimal_point);
    }
    EXPECT_EQ("1.5", printed("%g", 1.5));
    std::setlocale(LC_ALL, before.c_str());
    ::unsetenv("LOCPATH");
}

TEST(HostPrintf, BoundsWidths) {
    EXPECT_EQ(65535u, printed("%999999999999d", 1).size());
    EXPECT_EQ(65535u, printed("%*d", 10000000, 1).size());
    EXPECT_EQ(65535u, printed("%.*d", 10000000, 1).size());
    EXPECT_EQ(65535u, printed("%*d", INT_MIN, 1).size());
}

} // namespace
