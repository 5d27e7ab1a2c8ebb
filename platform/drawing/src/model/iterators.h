// SPDX-License-Identifier: MIT
// Walks over parts, and the lists of references that blocks keep.
#pragma once

#include "drawing/blockreference.h"

namespace lm::drawing {

/// A walk over the entities below an entry.
OdSmartPtr<OdDbObjectIterator> partsOf(Node* owner);

/// A walk over the attributes of a reference, in a database or outside.
OdSmartPtr<OdDbObjectIterator> attributesOf(const OdDbBlockReference& reference);

/// Takes a reference out of the list of one block and enters it at the end of another's; either may be null.
void moveReference(OdDbObjectId from, OdDbObjectId to, Node* reference);

} // namespace lm::drawing
