// SPDX-License-Identifier: MIT
// The roles: their names in each language and what counts as one of them. The names by default depend on what
// the host answers once in a process, so they are tested by language_process.cpp.
#include "vocabulary/cmensagem.h"

#include <gtest/gtest.h>

#include <iterator>
#include <set>
#include <string>

namespace {

struct Role {
    const char* role;
    RZString (*name)(int language);
    bool (*test)(RZString tag); // null where the role has none here
    const char* names[3];
};

const Role kRoles[] = {
    {"cable", CMensagem::getAttCabo, CMensagem::isAttCabo, {"CABO", "CABLE", "CABLE"}},
    {"distance", CMensagem::getAttDistance, CMensagem::isAttDistance, {"DISTANCIA", "DISTANCE", "DISTANCIA"}},
    {"wire", CMensagem::getAttFio, CMensagem::isAttFio, {"CABO", "WIRE", "ALAMBRE"}},
    {"connection", CMensagem::getAttLigacao, nullptr, {"LIGACAO", "CONNECTION", "CONEXION"}},
    {"number", CMensagem::getAttNumber, CMensagem::isAttNumber, {"NUMERO", "NUMBER", "NUMERO"}},
    {"pin", CMensagem::getAttPin, CMensagem::isAttPin, {"ID_PINO", "ID_PIN", "ID_PIN"}},
    {"contact position",
     CMensagem::getAttPosCtt,
     CMensagem::isAttPosCtt,
     {"POSICAO_CTT", "POSITION_CTT", "POSICION_CTT"}},
    {"strip", CMensagem::getAttStrip, CMensagem::isAttStrip, {"REGUA", "STRIP", "REGLETA"}},
    {"tag", CMensagem::getAttTag, CMensagem::isAttTag, {"RELACAO", "TAG", "ETIQUETA"}},
};

std::string lowered(std::string text) {
    for (char& letter : text)
        if (letter >= 'A' && letter <= 'Z') letter = static_cast<char>(letter - 'A' + 'a');
    return text;
}

TEST(Roles, HaveTheirNameInEachLanguage) {
    ASSERT_EQ(std::size(kRoles), 9u);
    for (const Role& row : kRoles) {
        SCOPED_TRACE(row.role);
        for (int language = 1; language <= 3; ++language)
            EXPECT_TRUE(row.name(language) == RZString(row.names[language - 1])) << "language " << language;
    }
}

TEST(Roles, TakeThePortugueseNameForEveryOtherNumber) {
    for (const Role& row : kRoles) {
        SCOPED_TRACE(row.role);
        for (int language : {0, -1, 4, 99, -2147483647 - 1, 2147483647})
            EXPECT_TRUE(row.name(language) == RZString(row.names[0])) << "language " << language;
    }
}

TEST(Roles, AreToldByAnyOfTheirNamesIgnoringCase) {
    int tests = 0;
    for (const Role& row : kRoles) {
        if (row.test == nullptr) continue;
        ++tests;
        SCOPED_TRACE(row.role);
        for (const char* name : row.names) {
            EXPECT_TRUE(row.test(RZString(name))) << name;
            EXPECT_TRUE(row.test(RZString(lowered(name).c_str()))) << lowered(name);
        }
    }
    EXPECT_EQ(tests, 8);
}

TEST(Roles, AreNotToldByTheNamesOfOthers) {
    for (const Role& row : kRoles) {
        if (row.test == nullptr) continue;
        SCOPED_TRACE(row.role);
        std::set<std::string> own(std::begin(row.names), std::end(row.names));
        for (const Role& other : kRoles)
            for (const char* name : other.names)
                EXPECT_EQ(row.test(RZString(name)), own.count(name) == 1) << name;
    }
}

TEST(Roles, AreNotToldByPartsAndLongerForms) {
    for (const Role& row : kRoles) {
        if (row.test == nullptr) continue;
        SCOPED_TRACE(row.role);
        EXPECT_FALSE(row.test(RZString()));
        for (const char* name : row.names) {
            const std::string text(name);
            EXPECT_FALSE(row.test(RZString((text + "1").c_str())));
            EXPECT_FALSE(row.test(RZString((" " + text).c_str())));
            EXPECT_FALSE(row.test(RZString(text.substr(0, text.size() - 2).c_str())));
            EXPECT_FALSE(row.test(RZString(text.substr(1).c_str())));
        }
    }
}

TEST(Roles, GiveWireAndCableTheSamePortugueseWord) {
    EXPECT_TRUE(CMensagem::isAttCabo(RZString("cabo")));
    EXPECT_TRUE(CMensagem::isAttFio(RZString("cabo")));
}

TEST(Roles, KnowOneMoreWordForAWire) {
    for (const char* word : {"FIO", "fio", "Fio"}) {
        EXPECT_TRUE(CMensagem::isAttFio(RZString(word))) << word;
        for (const Role& row : kRoles) {
            if (row.test == nullptr || row.test == CMensagem::isAttFio) continue;
            EXPECT_FALSE(row.test(RZString(word))) << row.role;
        }
    }
    for (int language = 0; language <= 3; ++language)
        EXPECT_FALSE(CMensagem::getAttFio(language) == RZString("FIO"));
}

TEST(Roles, LeaveTheCallersTextAlone) {
    const RZString tag("fio");
    EXPECT_TRUE(CMensagem::isAttFio(tag));
    EXPECT_TRUE(tag == RZString("fio"));
}

} // namespace
