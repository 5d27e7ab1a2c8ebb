// SPDX-License-Identifier: MIT
// One table of roles; every member of CMensagem reads its row.
#include "vocabulary/cmensagem.h"

#include "host/services.h"

#include <atomic>

namespace {

/// A role's names in the order of the languages 1, 2 and 3.
struct Role {
    RZString names[3];
};

const Role kCable{{"CABO", "CABLE", "CABLE"}};
const Role kDistance{{"DISTANCIA", "DISTANCE", "DISTANCIA"}};
const Role kWire{{"CABO", "WIRE", "ALAMBRE"}};
const Role kConnection{{"LIGACAO", "CONNECTION", "CONEXION"}};
const Role kNumber{{"NUMERO", "NUMBER", "NUMERO"}};
const Role kPin{{"ID_PINO", "ID_PIN", "ID_PIN"}};
const Role kContactPosition{{"POSICAO_CTT", "POSITION_CTT", "POSICION_CTT"}};
const Role kStrip{{"REGUA", "STRIP", "REGLETA"}};
const Role kTag{{"RELACAO", "TAG", "ETIQUETA"}};

/// The common Portuguese word for a wire, which the table of roles lacks.
const RZString kOtherWireName("FIO");

RZString nameIn(const Role& role, int language) {
    return role.names[language == 2 || language == 3 ? language - 1 : 0];
}

bool hasName(const Role& role, const RZString& tag) {
    for (const RZString& name : role.names)
        if (tag.equalsNoCase(name)) return true;
    return false;
}

constexpr int kNotAsked = -1;
constexpr int kUnknownCode = -1;

// Two threads that ask at the same moment store the same number.
std::atomic<int> cachedLanguage{kNotAsked};

/// The host's code for its language; kUnknownCode when the host doesn't say.
int languageCodeOfHost() {
    const CHostSystemServices* services = GetHostSystemServices();
    if (services == nullptr) return kUnknownCode;
    const CHostLocale* locale = services->locale();
    return locale != nullptr ? locale->languageCode() : kUnknownCode;
}

int languageOfCode(int code) {
    switch (code) {
    case 19:
        return 0;
    case 11:
        return 2;
    default:
        return 1; // 2 among them
    }
}

} // namespace

// clang-format off
RZString CMensagem::getAttCabo(int language) { return nameIn(kCable, language); }
RZString CMensagem::getAttDistance(int language) { return nameIn(kDistance, language); }
RZString CMensagem::getAttFio(int language) { return nameIn(kWire, language); }
RZString CMensagem::getAttLigacao(int language) { return nameIn(kConnection, language); }
RZString CMensagem::getAttNumber(int language) { return nameIn(kNumber, language); }
RZString CMensagem::getAttPin(int language) { return nameIn(kPin, language); }
RZString CMensagem::getAttPosCtt(int language) { return nameIn(kContactPosition, language); }
RZString CMensagem::getAttStrip(int language) { return nameIn(kStrip, language); }
RZString CMensagem::getAttTag(int language) { return nameIn(kTag, language); }

RZString CMensagem::getAttCaboDefault() { return getAttCabo(getLang()); }
RZString CMensagem::getAttDistanceDefault() { return getAttDistance(getLang()); }
RZString CMensagem::getAttFioDefault() { return getAttFio(getLang()); }
RZString CMensagem::getAttLigacaoDefault() { return getAttLigacao(getLang()); }
RZString CMensagem::getAttNumeroDefault() { return getAttNumber(getLang()); }
RZString CMensagem::getAttPinoDefault() { return getAttPin(getLang()); }
RZString CMensagem::getAttPosCttDefault() { return getAttPosCtt(getLang()); }
RZString CMensagem::getAttReguaDefault() { return getAttStrip(getLang()); }
RZString CMensagem::getAttRelacaoDefault() { return getAttTag(getLang()); }

bool CMensagem::isAttCabo(RZString tag) { return hasName(kCable, tag); }
bool CMensagem::isAttDistance(RZString tag) { return hasName(kDistance, tag); }
bool CMensagem::isAttFio(RZString tag) { return hasName(kWire, tag) || tag.equalsNoCase(kOtherWireName); }
bool CMensagem::isAttNumber(RZString tag) { return hasName(kNumber, tag); }
bool CMensagem::isAttPin(RZString tag) { return hasName(kPin, tag); }
bool CMensagem::isAttPosCtt(RZString tag) { return hasName(kContactPosition, tag); }
bool CMensagem::isAttStrip(RZString tag) { return hasName(kStrip, tag); }
bool CMensagem::isAttTag(RZString tag) { return hasName(kTag, tag); }
// clang-format on

int CMensagem::getLang() {
    int language = cachedLanguage.load(std::memory_order_relaxed);
    if (language == kNotAsked) {
        language = languageOfCode(languageCodeOfHost());
        cachedLanguage.store(language, std::memory_order_relaxed);
    }
    return language;
}
