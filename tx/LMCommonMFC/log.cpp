// SPDX-License-Identifier: MIT
#include "log.h"

#include "host/document.h"
#include "host/session.h"

#include <string>

namespace lm::log {

namespace {

CHostString lineOf(const CHostString& message, const CHostDocument* document) {
    CHostString line = message;
    if (document != nullptr) {
        const std::string number = std::to_string(document->number());
        line = CHostString("[%2] {%3} %1").arg(message, number.c_str(), GetHistoryTimestamp());
    }
    const lm::WideView units = line.view();
    return units.ends_with('\n') ? CHostString(units.substr(0, units.size() - 1)) : line;
}

} // namespace

void writeLog(const CHostString& message, CHostDocument* document) noexcept {
    try {
        if (CHostSession* const session = hostSession()) session->log(lineOf(message, document));
    } catch (...) {
        // Whoever reports a failure has a failure to raise already; this one must not take its place.
    }
}

void reportFailure(const char* name, const OdString& description) noexcept {
    try {
        lm::WideString line = lm::system::widen(name);
        line += lm::system::widen(" : ");
        line += description.view();
        writeLog(CHostString(lm::WideView(line)), ACTIVE_DOCUMENT());
    } catch (...) {
        // As above.
    }
}

void reportFailure(const char* name, const char* description) noexcept {
    try {
        reportFailure(name, OdString(description));
    } catch (...) {
        // As above.
    }
}

} // namespace lm::log
