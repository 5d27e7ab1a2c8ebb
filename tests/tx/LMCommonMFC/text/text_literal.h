// SPDX-License-Identifier: MIT
// Texts from literals, and how they are printed when a test fails.
#pragma once

#include "text/rzstring.h"

#include <ostream>

/// A wide pointer to a literal.
inline const unsigned short* wide(const char16_t* text) {
    return reinterpret_cast<const unsigned short*>(text);
}

/// An exact text of a literal, 0 units included.
inline RZString operator""_rz(const char16_t* text, std::size_t size) {
    return RZString(lm::WideView(wide(text), size));
}

inline void PrintTo(const RZString& text, std::ostream* out) {
    *out << '"' << lm::system::toUtf8(text.view()) << "\" (" << text.length() << " units)";
}

inline void PrintTo(const RZStringList& list, std::ostream* out) {
    *out << list.count() << " elements:";
    for (const RZString& item : list) *out << " [" << lm::system::toUtf8(item.view()) << ']';
}
