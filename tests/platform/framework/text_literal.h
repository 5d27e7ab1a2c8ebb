// SPDX-License-Identifier: MIT
// Framework text from literals, and how it is printed when a test fails.
#pragma once

#include "framework/values/cstring.h"

#include <ostream>
#include <string_view>

inline CString operator""_c(const char16_t* text, std::size_t size) {
    lm::WideString units;
    for (std::size_t i = 0; i < size; ++i) units += static_cast<lm::WideChar>(text[i]);
    return CString(lm::WideView(units));
}

inline void PrintTo(const CString& text, std::ostream* out) {
    *out << '"' << lm::system::toUtf8(text.view()) << "\" (" << text.GetLength() << " units)";
}
