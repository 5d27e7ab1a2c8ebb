// SPDX-License-Identifier: MIT
// The library's way to the host's log, and the one guard of all members that report their failures there.
// Internal.
//
//     return lm::log::guarded("CICad::GetLayers", [&] { ... });
#pragma once

#include "drawing/error.h"
#include "host/hoststring.h"

#include <exception>

class CHostDocument;

namespace lm::log {

/// Writes a line to the host's log; nothing in a host without a session. With a document the line is the
/// pattern "[%2] {%3} %1" of message, document's number and time. The message is put in first, so a "%2" or
/// "%3" of its own is replaced as well; a "%1" of its own stays. Without a document the line is the message
/// alone. One line feed at the end is dropped. Never throws: a line that can't be written is lost.
void writeLog(const CHostString& message, CHostDocument* document) noexcept;

/// Writes the line "name : description" with the active document. Never throws.
void reportFailure(const char* name, const OdString& description) noexcept;
/// The same for narrow text, as std::exception has it.
void reportFailure(const char* name, const char* description) noexcept;

/// Gives what `body` gives. An OdError or a std::exception out of it is reported under `name` and raised
/// again, the same object; any other exception passes without a line.
template<class Body>
decltype(auto) guarded(const char* name, Body&& body) {
    try {
        return body();
    } catch (const OdError& error) {
        reportFailure(name, error.description());
        throw;
    } catch (const std::exception& error) {
        reportFailure(name, error.what());
        throw;
    }
}

/// The same for members that report an OdError alone; a std::exception passes without a line.
template<class Body>
decltype(auto) guardedFromOdError(const char* name, Body&& body) {
    try {
        return body();
    } catch (const OdError& error) {
        reportFailure(name, error.description());
        throw;
    }
}

} // namespace lm::log
