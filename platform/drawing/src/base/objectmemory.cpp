// SPDX-License-Identifier: MIT
#include "base/objectmemory.h"

#include <cstdint>
#include <mutex>
#include <new>

#include <sys/mman.h>

namespace lm::drawing {

#if defined(__SANITIZE_ADDRESS__)
constexpr bool kOwnMemory = false; // the sanitizer sees a wrong use of an object only in memory of the heap
#else
constexpr bool kOwnMemory = true;
#endif

namespace {

constexpr std::size_t kStep = 16;
constexpr std::size_t kLargest = 512; // of an object here; larger ones come from the heap
constexpr std::size_t kClasses = kLargest / kStep + 1;
constexpr std::size_t kChunk = std::size_t{1} << 21; // a large page
constexpr std::size_t kChunksAtOnce = 32;

struct Free {
    Free* next;
};

/// The head of a chunk; chunks begin at multiples of their size, so an object finds the head of its own.
struct Chunk {
    std::size_t live; ///< bytes of objects
    std::size_t used; ///< bytes handed out so far, the head included
    Chunk* previous;  ///< in the list of spare chunks
    Chunk* next;
    bool spare;
    Free* free[kClasses];
};

constexpr std::size_t kHead = (sizeof(Chunk) + 63) / 64 * 64;

std::mutex g_mutex;
Chunk* g_current = nullptr;
Chunk* g_spare = nullptr; ///< chunks of which more than half is free
char* g_fresh = nullptr;  ///< address space of chunks that were never used
std::size_t g_freshChunks = 0;
std::size_t g_chunksInUse = 0;

Chunk* chunkOf(void* memory) noexcept {
    return reinterpret_cast<Chunk*>(reinterpret_cast<std::uintptr_t>(memory) & ~(kChunk - 1));
}

bool addAddresses() noexcept {
    constexpr std::size_t kBytes = kChunk * (kChunksAtOnce + 1); // one more to begin at a multiple
    void* const memory =
        ::mmap(nullptr, kBytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    if (memory == MAP_FAILED) return false;
    const auto begin = reinterpret_cast<std::uintptr_t>(memory);
    g_fresh = reinterpret_cast<char*>((begin + kChunk - 1) & ~(kChunk - 1));
    g_freshChunks = kChunksAtOnce;
    return true;
}

void list(Chunk& chunk) noexcept {
    chunk.spare = true;
    chunk.previous = nullptr;
    chunk.next = g_spare;
    if (g_spare != nullptr) g_spare->previous = &chunk;
    g_spare = &chunk;
}

void unlist(Chunk& chunk) noexcept {
    chunk.spare = false;
    (chunk.previous != nullptr ? chunk.previous->next : g_spare) = chunk.next;
    if (chunk.next != nullptr) chunk.next->previous = chunk.previous;
}

/// A chunk with room: one that is half free, else a new one.
Chunk* nextChunk() noexcept {
    if (g_spare != nullptr) {
        Chunk* const chunk = g_spare;
        unlist(*chunk);
        return chunk;
    }
    if (g_freshChunks == 0 && !addAddresses()) return nullptr;
    void* const memory = g_fresh;
    g_fresh += kChunk;
    --g_freshChunks;
    // The first one stays with small pages: a small drawing needs a part of it.
    if (g_chunksInUse++ != 0) ::madvise(memory, kChunk, MADV_HUGEPAGE);
    auto* const chunk = ::new (memory) Chunk();
    chunk->used = kHead;
    return chunk;
}

void* takeFrom(Chunk& chunk, std::size_t size) noexcept {
    Free*& free = chunk.free[size / kStep];
    if (free != nullptr) {
        void* const memory = free;
        free = free->next;
        return memory;
    }
    if (chunk.used + size > kChunk) return nullptr;
    void* const memory = reinterpret_cast<char*>(&chunk) + chunk.used;
    chunk.used += size;
    return memory;
}

/// What becomes of a chunk that isn't the current one and lost an object.
void settle(Chunk& chunk) noexcept {
    if (chunk.live >= kChunk / 2) return;
    if (!chunk.spare) list(chunk);
    if (chunk.live != 0) return;
    unlist(chunk);
    ::munmap(&chunk, kChunk);
    --g_chunksInUse;
}

constexpr std::size_t rounded(std::size_t size) noexcept {
    return (size + kStep - 1) / kStep * kStep;
}

} // namespace

void* takeObjectMemory(std::size_t size) {
    if (!kOwnMemory || size > kLargest) return ::operator new(size);
    const std::size_t taken = rounded(size);
    const std::lock_guard lock(g_mutex);
    for (;;) {
        if (g_current != nullptr) {
            if (void* const memory = takeFrom(*g_current, taken)) {
                g_current->live += taken;
                return memory;
            }
        }
        Chunk* const next = nextChunk();
        if (next == nullptr) throw std::bad_alloc();
        g_current = next;
    }
}

void giveObjectMemory(void* memory, std::size_t size) noexcept {
    if (memory == nullptr) return;
    if (!kOwnMemory || size > kLargest) return ::operator delete(memory);
    const std::size_t given = rounded(size);
    const std::lock_guard lock(g_mutex);
    Chunk& chunk = *chunkOf(memory);
    auto* const free = ::new (memory) Free{chunk.free[given / kStep]};
    chunk.free[given / kStep] = free;
    chunk.live -= given;
    if (&chunk != g_current) settle(chunk);
}

std::size_t objectMemoryInUse() noexcept {
    const std::lock_guard lock(g_mutex);
    return g_chunksInUse * kChunk;
}

} // namespace lm::drawing
