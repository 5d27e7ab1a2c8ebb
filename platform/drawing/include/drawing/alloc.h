// SPDX-License-Identifier: MIT
// The pair of functions for heap memory that crosses modules, so that one module can free what another made.
#pragma once

#include "drawing/export.h"

#include <cstddef>

/// Allocates `size` bytes. Null when memory is exhausted; never throws. Any module may free the block.
LM_DRAWING_API void* odrxAlloc(std::size_t size) noexcept;

/// Frees a block of odrxAlloc; null is allowed.
LM_DRAWING_API void odrxFree(void* block) noexcept;

namespace lm::drawing {

/// Number of blocks of odrxAlloc that are alive now. For tests that look for what was left behind.
LM_DRAWING_API std::size_t liveBlocks() noexcept;

/// Lets the allocation after `successes` further ones fail once. For tests of exhaustion; a negative number
/// switches the failure off.
LM_DRAWING_API void failAllocationAfter(long successes) noexcept;

} // namespace lm::drawing
