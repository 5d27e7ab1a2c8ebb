// SPDX-License-Identifier: MIT
// What the machine's memory gives at this moment. Operations on cold objects wait for it, and on a shared
// machine it changes from hour to hour: their figures are read beside this one.
#include <benchmark/benchmark.h>

#include <sys/mman.h>

#include <algorithm>
#include <cstddef>
#include <new>
#include <numeric>
#include <random>
#include <vector>

namespace {

constexpr std::size_t kLine = 64;
constexpr std::size_t kLines = (std::size_t(512) << 20) / kLine;

/// One ring through all lines of half a gigabyte in large pages, in random order.
class Ring {
public:
    Ring() {
        m_memory = mmap(nullptr, kLines * kLine, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
        if (m_memory == MAP_FAILED) throw std::bad_alloc();
        madvise(m_memory, kLines * kLine, MADV_HUGEPAGE);
        std::vector<std::size_t> order(kLines);
        std::iota(order.begin(), order.end(), std::size_t(0));
        std::shuffle(order.begin(), order.end(), std::mt19937(1));
        for (std::size_t i = 0; i < kLines; ++i) at(order[i]) = &at(order[(i + 1) % kLines]);
    }
    ~Ring() { munmap(m_memory, kLines * kLine); }
    Ring(const Ring&) = delete;
    Ring& operator=(const Ring&) = delete;

    void*& at(std::size_t line) {
        return *reinterpret_cast<void**>(static_cast<char*>(m_memory) + line * kLine);
    }

private:
    void* m_memory = nullptr;
};

/// A read that depends on the one before it and finds nothing in a cache.
void coldRead(benchmark::State& state) {
    Ring ring;
    void* place = &ring.at(0);
    for (auto _ : state) place = *static_cast<void**>(place);
    benchmark::DoNotOptimize(place);
}
BENCHMARK(coldRead)->Iterations(4'000'000);

} // namespace
