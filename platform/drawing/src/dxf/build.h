// SPDX-License-Identifier: MIT
// From a scanned file to a whole database: handles, tables, blocks, entities in their places, references,
// dictionaries.
#pragma once

#include "dxf/scan.h"

namespace lm::drawing {

void build(DatabaseData& data, const ReadOptions& options, ScanResult& scanned);

} // namespace lm::drawing
