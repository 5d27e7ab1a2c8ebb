// SPDX-License-Identifier: MIT
// The words of the stream of events, in the order of the enumerations.
#pragma once

#include "event_stream.h"

#include <array>

namespace lmtools {

inline constexpr std::array<const char*, 12> kFamilyNames = {"block",  "att",     "pline", "layer",
                                                             "cto",    "ins",     "conta", "grade",
                                                             "entity", "command", "carga", "transaction"};
inline constexpr std::array<const char*, 12> kPhaseNames = {
    "appended", "forModify", "modified", "erased",  "defined",    "willStart",
    "ended",    "cancelled", "failed",   "inicial", "endedBegin", "endedEnd"};

} // namespace lmtools
