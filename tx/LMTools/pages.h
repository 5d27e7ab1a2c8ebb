// SPDX-License-Identifier: MIT
// What a page is to this module, by the names of layers: the listing of the pages and the commands share it.
#pragma once

#include "cad/icad.h"

#include <vector>

namespace lmtools {

/// The layer of the settings carrier.
inline constexpr char kCarrierLayer[] = "RZ_FREEZE";

/// The applications under which the settings carrier keeps the order of a group's pages; the group's name
/// follows.
inline constexpr char kOrderOfPages[] = "RZ_ORDEM_PAG_";

/// Whether a layer of this name can be a page: any but "0", the one of the settings carrier, and those that
/// belong to a page, whose names end with "$DE", "$FORMATO" or "$SELO". Case counts, as in all names of
/// layers.
bool canBePage(const RZString& layer);
/// What a page's name has before its first "$"; the whole name without one.
RZString headOf(const RZString& page);
/// The names of the layers that belong to a page, whether they exist or not.
std::vector<RZString> companionsOf(const RZString& page);
/// The one of them that is for the stamp.
RZString stampLayerOf(const RZString& page);

} // namespace lmtools
