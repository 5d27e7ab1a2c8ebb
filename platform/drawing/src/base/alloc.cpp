// SPDX-License-Identifier: MIT
#include "drawing/alloc.h"

#include "base/objectmemory.h"

#include <atomic>
#include <cstdlib>

namespace {

std::atomic<std::size_t> g_live{0};
std::atomic<long> g_failAfter{-1};

} // namespace

namespace lm::drawing {

bool allocationFailsNow() noexcept {
    long left = g_failAfter.load(std::memory_order_relaxed);
    if (left < 0) return false;
    return g_failAfter.fetch_sub(1) == 0;
}

void countBlock(bool alive) noexcept {
    g_live.fetch_add(alive ? 1 : std::size_t(0) - 1, std::memory_order_relaxed);
}

} // namespace lm::drawing

void* odrxAlloc(std::size_t size) noexcept {
    if (lm::drawing::allocationFailsNow()) return nullptr;
    void* const block = std::malloc(size != 0 ? size : 1);
    if (block != nullptr) lm::drawing::countBlock(true);
    return block;
}

void odrxFree(void* block) noexcept {
    if (block == nullptr) return;
    lm::drawing::countBlock(false);
    std::free(block);
}

namespace lm::drawing {

std::size_t liveBlocks() noexcept {
    return g_live.load();
}
void failAllocationAfter(long successes) noexcept {
    g_failAfter.store(successes);
}

} // namespace lm::drawing
