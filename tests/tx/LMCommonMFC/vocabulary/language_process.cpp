// SPDX-License-Identifier: MIT
// The names by default in one process with one language of the host. The library asks the host once in a
// process, so each case is a run of its own:
//
//     lm_language_process <code of the host | no-services | no-locale> <number that getLang must give>
#include "vocabulary/cmensagem.h"

#include "host/services.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace {

struct Role {
    const char* role;
    RZString (*byDefault)();
    RZString (*name)(int language);
    const char* portuguese;
    const char* english;
};

const Role kRoles[] = {
    {"cable", CMensagem::getAttCaboDefault, CMensagem::getAttCabo, "CABO", "CABLE"},
    {"distance", CMensagem::getAttDistanceDefault, CMensagem::getAttDistance, "DISTANCIA", "DISTANCE"},
    {"wire", CMensagem::getAttFioDefault, CMensagem::getAttFio, "CABO", "WIRE"},
    {"connection", CMensagem::getAttLigacaoDefault, CMensagem::getAttLigacao, "LIGACAO", "CONNECTION"},
    {"number", CMensagem::getAttNumeroDefault, CMensagem::getAttNumber, "NUMERO", "NUMBER"},
    {"pin", CMensagem::getAttPinoDefault, CMensagem::getAttPin, "ID_PINO", "ID_PIN"},
    {"contact position", CMensagem::getAttPosCttDefault, CMensagem::getAttPosCtt, "POSICAO_CTT",
     "POSITION_CTT"},
    {"strip", CMensagem::getAttReguaDefault, CMensagem::getAttStrip, "REGUA", "STRIP"},
    {"tag", CMensagem::getAttRelacaoDefault, CMensagem::getAttTag, "RELACAO", "TAG"},
};

int failures = 0;

void expect(bool holds, const char* what, const char* when) {
    if (holds) return;
    std::fprintf(stderr, "failed: %s (%s)\n", what, when);
    ++failures;
}

void setLanguage(const char* host) {
    if (std::strcmp(host, "no-services") == 0)
        lm::host::setServicesPresent(false);
    else if (std::strcmp(host, "no-locale") == 0)
        lm::host::setLocalePresent(false);
    else
        GetHostSystemServices()->locale()->setLanguageCode(std::atoi(host));
}

void check(int language, const char* when) {
    expect(CMensagem::getLang() == language, "getLang", when);
    for (const Role& row : kRoles) {
        expect(row.byDefault() == RZString(language == 2 ? row.english : row.portuguese), row.role, when);
        expect(row.byDefault() == row.name(language), row.role, when);
    }
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 3) return 2;
    const int language = std::atoi(argv[2]);
    setLanguage(argv[1]);
    check(language, "first answer");

    lm::host::setServicesPresent(true);
    lm::host::setLocalePresent(true);
    for (const char* other : {"19", "2", "11", "0"}) {
        setLanguage(other);
        check(language, "after a change of the host's language");
    }
    lm::host::setServicesPresent(false);
    check(language, "after the services have gone");
    return failures == 0 ? 0 : 1;
}
