// SPDX-License-Identifier: MIT
// The memory of objects: what is taken together is given back, and holes are filled again.
#include "base/objectmemory.h"

#include "drawing/drawing.h"

#include <cstring>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

using lm::drawing::giveObjectMemory;
using lm::drawing::objectMemoryInUse;
using lm::drawing::takeObjectMemory;

namespace {

constexpr std::size_t kMegabyte = std::size_t{1} << 20;

#if defined(__SANITIZE_ADDRESS__)
constexpr bool kOnHeap = true; // under the sanitizer objects lie on the heap
#else
constexpr bool kOnHeap = false;
#endif

std::vector<OdSmartPtr<OdDbLine>> lines(std::size_t count) {
    std::vector<OdSmartPtr<OdDbLine>> made;
    for (std::size_t i = 0; i < count; ++i) made.emplace_back(new OdDbLine(), lm::drawing::kAttach);
    return made;
}

} // namespace

TEST(ObjectMemory, GivesLargeDrawingsBackToTheSystem) {
    const std::size_t before = objectMemoryInUse();
    std::vector<OdSmartPtr<OdDbLine>> made = lines(200000);
    const std::size_t least = kOnHeap ? before : before + 20 * kMegabyte;
    EXPECT_GE(objectMemoryInUse(), least);
    made.clear();
    EXPECT_LE(objectMemoryInUse(), before + 4 * kMegabyte);
}

TEST(ObjectMemory, GivesBackInAnyOrder) {
    const std::size_t before = objectMemoryInUse();
    std::vector<OdSmartPtr<OdDbLine>> made = lines(100000);
    for (std::size_t step = 7, i = 0, k = 0; k < made.size(); ++k, i = (i + step * 1013) % made.size())
        made[i] = OdSmartPtr<OdDbLine>();
    made.clear();
    EXPECT_LE(objectMemoryInUse(), before + 4 * kMegabyte);
}

TEST(ObjectMemory, FillsHolesAgain) {
    std::vector<OdSmartPtr<OdDbLine>> made = lines(200000);
    const std::size_t full = objectMemoryInUse();
    for (std::size_t i = 0; i < made.size(); ++i)
        if (i % 4 != 0) made[i] = OdSmartPtr<OdDbLine>();
    const std::vector<OdSmartPtr<OdDbLine>> again = lines(140000);
    EXPECT_LE(objectMemoryInUse(), full + 4 * kMegabyte);
}

TEST(ObjectMemory, NeverGivesTheSameMemoryTwice) {
    // Sizes around the steps and the limit, filled and checked, on several threads at once.
    const auto work = [](unsigned char mark) {
        constexpr std::size_t kSizes[] = {1, 15, 16, 17, 48, 200, 511, 512, 513, 5000};
        std::vector<std::pair<unsigned char*, std::size_t>> held;
        for (int round = 0; round < 20000; ++round) {
            const std::size_t size = kSizes[static_cast<std::size_t>(round) % std::size(kSizes)];
            auto* const memory = static_cast<unsigned char*>(takeObjectMemory(size));
            ASSERT_EQ(reinterpret_cast<std::uintptr_t>(memory) % 16, 0u);
            std::memset(memory, mark, size);
            held.emplace_back(memory, size);
            if (round % 3 != 0) continue;
            const std::size_t victim = static_cast<std::size_t>(round) * 7919 % held.size();
            for (std::size_t i = 0; i < held[victim].second; ++i) ASSERT_EQ(held[victim].first[i], mark);
            giveObjectMemory(held[victim].first, held[victim].second);
            held[victim] = held.back();
            held.pop_back();
        }
        for (const auto& [memory, size] : held) giveObjectMemory(memory, size);
    };
    std::vector<std::thread> threads;
    for (unsigned char mark = 1; mark <= 4; ++mark) threads.emplace_back(work, mark);
    for (std::thread& thread : threads) thread.join();
}
