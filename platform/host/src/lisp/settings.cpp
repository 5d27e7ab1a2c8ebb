// SPDX-License-Identifier: MIT
#include "settings.h"

#include "document.h"
#include "entityfields.h"
#include "hoststate.h"
#include "points.h"

#include "drawing/database.h"

#include <chrono>
#include <cstdlib>
#include <ctime>

namespace lm::host::lisp {

namespace {

/// Variables that every session has, whatever the drawing says. What isn't set has the value here.
struct IntegerDefault {
    std::string_view name;
    int value;
};

constexpr IntegerDefault kIntegers[] = {
    {"ANGBASE", 0},  {"ANGDIR", 0},    {"ATTDIA", 0},    {"ATTREQ", 1},    {"AUNITS", 0},    {"AUPREC", 0},
    {"BLIPMODE", 0}, {"CMDACTIVE", 0}, {"CMDDIA", 0},    {"CMDECHO", 1},   {"CMDNAMES", 0},  {"DIMZIN", 0},
    {"ERRNO", 0},    {"EXPERT", 0},    {"FILEDIA", 0},   {"HIGHLIGHT", 1}, {"LUNITS", 2},    {"LUPREC", 4},
    {"MENUECHO", 0}, {"NOMUTT", 0},    {"ORTHOMODE", 0}, {"OSMODE", 0},    {"PICKFIRST", 1}, {"SNAPMODE", 0},
    {"UNITMODE", 0}, {"USERI1", 0},    {"USERI2", 0},    {"USERI3", 0},    {"USERI4", 0},    {"USERI5", 0},
};
constexpr std::string_view kReals[] = {"USERR1", "USERR2", "USERR3", "USERR4", "USERR5"};
constexpr std::string_view kTexts[] = {"USERS1", "USERS2", "USERS3", "USERS4", "USERS5"};

WideString capitals(const WideString& name) {
    WideString upper = name;
    for (WideChar& unit : upper) unit = system::toUpper(unit);
    return upper;
}

/// The value of a variable of the session, nil for a name that is none.
Value sessionVariable(Machine& machine, const WideString& name) {
    const auto& variables = machine.host().variables;
    if (const auto found = variables.find(name); found != variables.end()) return found->second;
    const std::string ascii = system::toUtf8(name);
    for (const IntegerDefault& entry : kIntegers)
        if (entry.name == ascii) return Value::integer(entry.value);
    for (const std::string_view real : kReals)
        if (real == ascii) return Value::real(0);
    for (const std::string_view text : kTexts)
        if (text == ascii) return machine.text("");
    return Value();
}

/// Variables that the clock answers: date and time of the day as one number, days of the Julian count, and
/// thousandths of a second.
Value clockVariable(const WideString& name) {
    const std::string ascii = system::toUtf8(name);
    if (ascii != "CDATE" && ascii != "DATE" && ascii != "MILLISECS") return Value();
    const auto now = std::chrono::duration_cast<std::chrono::milliseconds>(
                         std::chrono::system_clock::now().time_since_epoch())
                         .count();
    if (ascii == "MILLISECS") return Value::integer(static_cast<int>(now & INT32_MAX));
    const auto seconds = static_cast<std::time_t>(now / 1000);
    std::tm local{};
    if (localtime_r(&seconds, &local) == nullptr) return Value();
    if (ascii == "CDATE")
        return Value::real((local.tm_year + 1900) * 10000.0 + (local.tm_mon + 1) * 100.0 + local.tm_mday +
                           local.tm_hour / 1e2 + local.tm_min / 1e4 + local.tm_sec / 1e6);
    constexpr double kJulianOfEpoch = 2440587.5, kSecondsPerDay = 86400;
    return Value::real(kJulianOfEpoch + 0.5 +
                       (static_cast<double>(now) / 1000 + static_cast<double>(local.tm_gmtoff)) /
                           kSecondsPerDay);
}

Value drawingVariable(Machine& machine, const WideString& name) {
    OdDbDatabase* database = databaseOf(machine);
    if (database == nullptr) return Value();
    const OdSmartPtr<OdResBuf> record = database->getSysVar(OdString(WideView(name)));
    if (record.isNull()) return Value();
    switch (record->payload()) {
    case OdResBuf::kInteger:
        return Machine::integerOrReal(record->getInt64());
    case OdResBuf::kReal:
        return Value::real(record->getDouble());
    case OdResBuf::kPoint:
        return listOf(machine, record->getPoint3d());
    case OdResBuf::kId: {
        const OdSmartPtr<OdDbObject> object = record->getObjectId().openObject();
        const auto* named = OdDbSymbolTableRecord::cast(object.get());
        return named == nullptr ? Value() : machine.text(named->getName().view());
    }
    default:
        return machine.text(record->getString().view());
    }
}

/// Makes a layer the current one; its name may differ in its case.
void setCurrentLayer(Machine& machine, OdDbDatabase& database, const OdString& variable, const Value& value) {
    constexpr int kIdGroup = 330;
    if (!value.isText()) machine.fail("variable can't take the value", value);
    const OdDbObjectId layer = recordToUse(database.getLayerTableId(), value.text());
    if (layer.isNull()) machine.fail("no such layer", value);
    const OdSmartPtr<OdResBuf> record = OdResBuf::newRb(kIdGroup);
    record->setObjectId(layer);
    if (!database.setSysVar(variable, record)) machine.fail("layer can't be current", value);
}

Value getvar(Machine& machine, Arguments a) {
    const WideString name = capitals(machine.textAt(a, 0));
    if (Value value = sessionVariable(machine, name)) return value;
    if (Value value = clockVariable(name)) return value;
    return drawingVariable(machine, name);
}

// A variable keeps its type; an integer may go into a real.
Value setvar(Machine& machine, Arguments a) {
    const WideString name = capitals(machine.textAt(a, 0));
    const Value now = sessionVariable(machine, name);
    if (now) {
        const Value given = now.isReal() && a[1].isInteger() ? Value::real(a[1].integer()) : a[1];
        if (given.type() != now.type()) machine.fail("variable can't take the value", a[1]);
        machine.host().variables[name] = given;
        return given;
    }
    // Of the drawing's variables only the current layer can be set; the others go with the drawing.
    const OdString key{WideView(name)};
    OdDbDatabase* const database = databaseOf(machine);
    if (database == nullptr || key != OdString("CLAYER")) machine.fail("variable can't be set", a[0]);
    setCurrentLayer(machine, *database, key, a[1]);
    return a[1];
}

Value environment(Machine& machine, Arguments a) {
    const WideString& name = machine.textAt(a, 0);
    const auto& entries = machine.host().environment;
    if (const auto found = entries.find(capitals(name)); found != entries.end())
        return machine.text(found->second);
    const char* value = std::getenv(system::toUtf8(name).c_str());
    return value == nullptr ? Value() : machine.text(system::fromUtf8(value));
}

// Within the session: the process and its children don't see it.
Value setEnvironment(Machine& machine, Arguments a) {
    const WideString& value = machine.textAt(a, 1);
    machine.heap().charge(value.size() * sizeof(WideChar));
    machine.host().environment[capitals(machine.textAt(a, 0))] = value;
    return a[1];
}

Value configuration(Machine& machine, Arguments a) {
    const auto& entries = machine.host().configuration;
    const auto found = entries.find(capitals(machine.textAt(a, 0)));
    return found == entries.end() ? Value() : machine.text(found->second);
}

Value setConfiguration(Machine& machine, Arguments a) {
    const WideString& value = machine.textAt(a, 1);
    machine.heap().charge(value.size() * sizeof(WideChar));
    machine.host().configuration[capitals(machine.textAt(a, 0))] = value;
    return a[1];
}

const Builtin kSettings[] = {
    {"GETVAR", 1, 1, &getvar},         {"SETVAR", 2, 2, &setvar},        {"GETENV", 1, 1, &environment},
    {"SETENV", 2, 2, &setEnvironment}, {"GETCFG", 1, 1, &configuration}, {"SETCFG", 2, 2, &setConfiguration},
};

} // namespace

int integerVariable(Machine& machine, std::string_view name) {
    const Value value = sessionVariable(machine, system::widen(name));
    return value.isInteger() ? value.integer() : 0;
}

std::span<const Builtin> settingFunctions() {
    return kSettings;
}

} // namespace lm::host::lisp
