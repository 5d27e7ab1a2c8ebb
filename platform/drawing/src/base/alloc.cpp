// SPDX-License-Identifier: MIT
#include "drawing/alloc.h"

#include <atomic>
#include <cstdlib>

namespace {

std::atomic<std::size_t> g_live{0};
std::atomic<long> g_failAfter{-1};

bool failsNow() {
    long left = g_failAfter.load(std::memory_order_relaxed);
    if (left < 0) return false;
    return g_failAfter.fetch_sub(1) == 0;
}

} // namespace

void* odrxAlloc(std::size_t size) noexcept {
    if (failsNow()) return nullptr;
    void* const block = std::malloc(size != 0 ? size : 1);
    if (block != nullptr) g_live.fetch_add(1, std::memory_order_relaxed);
    return block;
}

void odrxFree(void* block) noexcept {
    if (block == nullptr) return;
    g_live.fetch_sub(1, std::memory_order_relaxed);
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
