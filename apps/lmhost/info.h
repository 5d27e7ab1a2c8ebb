// SPDX-License-Identifier: MIT
// The command `info`: what stands in a drawing.
#pragma once

#include "host/tools.h"

namespace lmhost {

/// Writes the listing, as text or, with `json`, as one JSON document.
void writeInfo(CHostDocument& document, lm::host::ToolOutput& out, bool json);

} // namespace lmhost
