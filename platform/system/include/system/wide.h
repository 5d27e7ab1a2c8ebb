// SPDX-License-Identifier: MIT
// The wide text of the whole system: 16-bit units, the one table that ignores case, and block comparisons.
//
//     lm::WideString name = lm::system::widen("NUMERO");
//     if (lm::system::compareNoCase(name, other) == 0) ...
#pragma once

#include "system/export.h"

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>

namespace lm {

/// One wide character of every interface.
using WideChar = unsigned short;

/// Wide text as it stands in every interface. The language promises no traits for this unit type (the runtime
/// of g++ has them); this alias is the one place to change on another.
using WideString = std::basic_string<WideChar>;

/// A view of wide text that somebody else holds.
using WideView = std::basic_string_view<WideChar>;

namespace system {

/// Number of units before the first 0 unit; 0 for null.
LM_SYSTEM_API std::size_t wideLength(const WideChar* text) noexcept;

/// Whether two texts hold the same units. One block comparison, no call per unit.
inline bool wideEquals(WideView a, WideView b) noexcept {
    return a.size() == b.size() &&
           (a.empty() || std::memcmp(a.data(), b.data(), a.size() * sizeof(WideChar)) == 0);
}

/// Order by unsigned units, the shorter first when one is the start of the other: -1, 0 or 1.
LM_SYSTEM_API int wideCompare(WideView a, WideView b) noexcept;

/// The lower-case partner of a unit by the system's one table: A to Z and the letters of code page 1252 (À to
/// Þ without ×, Š, Œ, Ž, Ÿ), one unit to one unit. Other units come back as they are.
LM_SYSTEM_API WideChar toLower(WideChar unit) noexcept;

/// The upper-case partner by the same table, turned round.
LM_SYSTEM_API WideChar toUpper(WideChar unit) noexcept;

/// Order that ignores case by the table above: negative, 0 or positive.
LM_SYSTEM_API int compareNoCase(WideView a, WideView b) noexcept;

/// Whether two texts are equal but for case. Faster than compareNoCase: lengths are looked at first.
LM_SYSTEM_API bool equalsNoCase(WideView a, WideView b) noexcept;

/// White space as trimming knows it: U+0009 to U+000D, U+0020, U+0085 and U+00A0.
LM_SYSTEM_API bool isSpace(WideChar unit) noexcept;

/// The part of a text without white space at both ends.
LM_SYSTEM_API WideView trimmed(WideView text) noexcept;

/// Units of an ASCII text, for constants in code.
LM_SYSTEM_API WideString widen(std::string_view ascii);

/// UTF-8 of a wide text; an unpaired surrogate comes out as its own three bytes, so nothing is lost.
LM_SYSTEM_API std::string toUtf8(WideView text);

/// Appends the UTF-8 of a wide text to an output.
LM_SYSTEM_API void appendUtf8(WideView text, std::string& out);

/// Wide text of UTF-8; a byte that is no part of a well-formed sequence becomes the unit of its own number.
LM_SYSTEM_API WideString fromUtf8(std::string_view bytes);

/// Whether the bytes are well-formed UTF-8.
LM_SYSTEM_API bool isUtf8(std::string_view bytes) noexcept;

} // namespace system
} // namespace lm
