// SPDX-License-Identifier: MIT
#include "drawing_support.h"

#include "drawing/wildcard.h"

using drawing_test::od;

TEST(WildcardTest, MatchesByTheTable) {
    struct Row {
        const char* text;
        const char* pattern;
        bool matches;
    };
    const Row rows[] = {{"MOTOR", "MOTOR*", true},
                        {"MOTOR_2", "MOTOR*", true},
                        {"MOTOR", "MOTOR", true},
                        {"MOTOR_2", "MOTOR", false},
                        {"motor", "MOTOR", false},
                        {"NA-01", "NA-01", true},
                        {"x_Model_Space", "*Model_Space", true},
                        {"*Model_Space", "*Model_Space", true},
                        {"*Model_Space", "`*Model_Space", true},
                        {"x_Model_Space", "`*Model_Space", false},
                        {"", "", true},
                        {"a", "", false},
                        {"", "*", true},
                        {"abc", "a?c", true},
                        {"ac", "a?c", false},
                        {"a1", "a#", true},
                        {"ab", "a#", false},
                        {"a#", "a#", false},
                        {"a#", "a`#", true},
                        {"a1", "a`#", false},
                        {"1b", "1@", true},
                        {"1ç", "1@", true},
                        {"1ß", "1@", true},
                        {"11", "1@", false},
                        {"a-", "a.", true},
                        {"ab", "a.", false},
                        {"a1", "a.", false},
                        {"ax", "a[xyz]", true},
                        {"aw", "a[xyz]", false},
                        {"am", "a[k-n]", true},
                        {"aj", "a[k-n]", false},
                        {"aj", "a[~k-n]", true},
                        {"am", "a[~k-n]", false},
                        {"a-", "a[x-]", true},
                        {"a-", "a[-x]", true},
                        {"a]", "a[]]", true},
                        {"a[", "a[", true},
                        {"a[b", "a[b", true},
                        {"a`", "a`", true},
                        {"B", "~A", true},
                        {"A", "~A", false},
                        {"A", "B,A", true},
                        {"C", "B,A", false},
                        {"A,B", "A`,B", true},
                        {"A", "A`,B", false},
                        {",", "[,]", true},
                        {"", "A,", true},
                        {"A~", "A~", true},
                        {"C", "~A,C", true},
                        {"A", "~A,~B", true},
                        {"aXbXc", "a*X*c", true},
                        {"abc", "*a*b*c*", true},
                        {"acb", "*a*b*c*", false},
                        {"abcd", "a**d", true},
                        {"", "?", false},
                        {"x]", "x[`]a]", true},
                        {"x`", "x[`]a]", false},
                        {"xa", "x[`]a]", true},
                        {"#1", "`##", true},
                        {"^1", "^1", true},
                        {"]", "[],]", true},
                        {",", "[],]", true},
                        {"x", "[],]", false},
                        {"]", "[~]a]", false},
                        {"b", "[~]a]", true},
                        {"]", "[Z-`]]", true},
                        {"a", "[Z-`]]", false},
                        {"b", "[a`],b", true},
                        {"[a]", "[a`],b", true},
                        {"b", "[a,b", true},
                        {"[a", "[a,b", true}};
    for (const Row& row : rows)
        EXPECT_EQ(odutWcMatch(od(row.text), od(row.pattern)), row.matches)
            << row.text << " ~ " << row.pattern;
}

TEST(WildcardTest, StaysFastOnManyStars) {
    std::string pattern, text(5000, 'a');
    for (int i = 0; i < 200; ++i) pattern += "*a";
    pattern += "b";
    EXPECT_FALSE(odutWcMatch(od(text), od(pattern)));
}
