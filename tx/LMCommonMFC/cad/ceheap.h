// SPDX-License-Identifier: MIT
// Memory of the records. It comes from the pair of functions that all modules share, since one module makes a
// record and another deletes it.
#pragma once

#include "drawing/alloc.h"

#include <new>

namespace lm::cad {

/// A block for a record, to be freed with odrxFree. Raises std::bad_alloc when memory is exhausted.
inline void* allocate(std::size_t size) {
    void* block = odrxAlloc(size);
    if (block == nullptr) throw std::bad_alloc();
    return block;
}

} // namespace lm::cad
