// SPDX-License-Identifier: MIT
// Memory of the objects of drawings. A walk over a large drawing reads objects all over the memory, and half
// of its time went into looking up their pages: here objects lie in large pages, in the order in which they
// were made.
#pragma once

#include "drawing/export.h"

#include <cstddef>

namespace lm::drawing {

/// Memory for an object of up to any size. Raises std::bad_alloc when there is none. From any thread.
LM_DRAWING_API void* takeObjectMemory(std::size_t size);

/// Gives memory of takeObjectMemory back; `size` is the size that it was taken with. From any thread.
LM_DRAWING_API void giveObjectMemory(void* memory, std::size_t size) noexcept;

/// What every allocation of the drawing layer asks: whether a test wants this one to fail.
bool allocationFailsNow() noexcept;

/// Counts a block of the drawing layer that came alive or went.
void countBlock(bool alive) noexcept;

/// Bytes of address space that chunks with at least one object take now. For tests.
LM_DRAWING_API std::size_t objectMemoryInUse() noexcept;

} // namespace lm::drawing
