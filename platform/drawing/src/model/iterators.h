// SPDX-License-Identifier: MIT
// Walks over parts, and the lists of references that blocks keep.
#pragma once

#include "drawing/blockreference.h"

namespace lm::drawing {

/// A walk over the entities below an entry.
OdSmartPtr<OdDbObjectIterator> partsOf(Node* owner);

/// A walk over the attributes of a reference, in a database or outside.
OdSmartPtr<OdDbObjectIterator> attributesOf(const OdDbBlockReference& reference);

/// Enters a reference into, and takes it out of, the list of the block that it shows. Null changes nothing.
void addReference(OdDbObjectId block, Node* reference);
void removeReference(OdDbObjectId block, Node* reference);

} // namespace lm::drawing
