// SPDX-License-Identifier: MIT
// rzPrintf: formatted text on the host's command line.
//
//     rzPrintf("%s: %d\n", name, count);
#pragma once

#include "export.h"
#include "text/rzstring.h"

#include "host/document.h"
#include "host/hoststring.h"

#include <type_traits>

namespace lm::log {

/// An argument of rzPrintf as it goes into a variable argument list: texts as wide pointers, numbers as they
/// are.
inline const unsigned short* printable(const RZString& text) {
    return text;
}
inline const unsigned short* printable(const OdString& text) {
    return text.c_str();
}
inline const unsigned short* printable(const CHostString& text) {
    return text.c_str();
}
inline const unsigned short* printable(const CString& text) {
    return text;
}
inline const unsigned short* printable(const unsigned short* text) {
    return text;
}
template<class Value>
requires std::is_arithmetic_v<Value> Value printable(Value value) {
    return value;
}

} // namespace lm::log

/// Writes text to the host's command line as it is read by a format: "%%" is a percent sign. Gives the number
/// of units written. Needs an active document.
LM_COMMONMFC_API int rzPrintf(RZString format);

/// Writes formatted text to the host's command line and gives the number of units written. "%s" takes any
/// text of the system, "%d", "%f" and so on numbers, "%c" a unit. A text that isn't a format, such as a block
/// name or a path, belongs behind "%s". Needs an active document.
template<class... Values>
int rzPrintf(RZString format, const Values&... values) {
    return ACTIVE_DOCUMENT()->getAPI()->printf(format, lm::log::printable(values)...);
}
