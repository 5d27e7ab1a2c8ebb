// SPDX-License-Identifier: MIT
// Attributes in the place that their definition has under a reference.
#pragma once

#include "drawing/blockreference.h"

namespace lm::drawing {

/// Initialises an attribute from a definition of the block that a reference shows, as setAttributeFromBlock
/// under the reference's blockTransform, and puts the multi-line form that the attribute was given, which
/// stands as in the block, to the same place. A reference that turns its block upside down, by a negative
/// scale in z, shows the text from the front all the same. What stretches is followed as exactly as a text
/// can. Raises what setAttributeFromBlock does; nothing has changed then.
LM_DRAWING_API void placeAttribute(OdDbAttribute& attribute, const OdDbAttributeDefinition& definition,
                                   const OdDbBlockReference& reference);

} // namespace lm::drawing
