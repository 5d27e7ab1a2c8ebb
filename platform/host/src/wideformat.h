// SPDX-License-Identifier: MIT
// Formatted wide text without a locale.
#pragma once

#include "system/wide.h"

#include <cstdarg>

namespace lm::host {

/// The text of a wide format and its arguments, by the rules of CHostAPI::printf; null gives the empty text.
WideString formatWide(const WideChar* format, va_list arguments);

} // namespace lm::host
