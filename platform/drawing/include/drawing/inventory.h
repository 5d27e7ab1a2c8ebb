// SPDX-License-Identifier: MIT
// What stands in a drawing, counted without reading more than is needed.
#pragma once

#include "drawing/database.h"

#include <string>
#include <utility>
#include <vector>

namespace lm::drawing {

/// An object with extended data.
struct XDataOwner {
    OdDbObjectId id;
    std::string kind;                   ///< DXF name
    std::vector<OdString> applications; ///< in the order of the object
};

/// Counts by DXF name are in alphabetical order; everything else is in the order of the drawing. What this
/// program gives every file that it writes isn't among it, as long as nobody changes it.
struct Inventory {
    std::vector<std::pair<std::string, std::size_t>> modelSpace;
    std::vector<XDataOwner> xdata;
    /// Kinds of entries that the database keeps without reading them, and sections, as "SECTION" and the
    /// name.
    std::vector<std::pair<std::string, std::size_t>> kept;
    /// Names in the dictionary of named objects.
    std::vector<OdString> dictionaries;
};

/// Counts what is live. Costs one walk over the drawing's groups.
LM_DRAWING_API Inventory takeInventory(const OdDbDatabase& database);

} // namespace lm::drawing
