// SPDX-License-Identifier: MIT
// The narrow route: text of one byte a unit in Windows-1252, by a table of our own. It is never UTF-8 and
// never the locale of the process, so the same text goes the same way on every machine.
#pragma once

#include "system/wide.h"

namespace lm::system {

/// The byte of a unit, or '?' for a unit that the code page lacks. The five bytes that the code page leaves
/// unused stand for the units of the same number.
LM_SYSTEM_API unsigned char narrowUnit(WideChar unit) noexcept;

/// The unit of a byte.
LM_SYSTEM_API WideChar widenByte(unsigned char byte) noexcept;

/// Narrow form of a text, one byte for each unit.
LM_SYSTEM_API std::string narrow(WideView text);

/// Wide form of narrow text, one unit for each byte.
LM_SYSTEM_API WideString widenNarrow(std::string_view bytes);

} // namespace lm::system
