// SPDX-License-Identifier: MIT
#include "model/node.h"

#include <mutex>
#include <new>

#include <sys/mman.h>

namespace lm::drawing {

namespace {

// Address space costs nothing until it is touched, and is handed out once and never again. It comes in large
// regions, each one mapping of the system, however many databases come and go: their number is limited.
constexpr std::size_t kRegion = std::size_t{1} << 30;
constexpr std::size_t kPiecesAtOnce = 64;

std::mutex g_regionMutex;
char* g_region = nullptr;
std::size_t g_regionLeft = 0;

/// Address space of whole pieces at a multiple of their size.
char* takeAddresses(std::size_t bytes) {
    constexpr std::size_t kPiece = NodeArena::kPiece;
    const std::lock_guard lock(g_regionMutex);
    if (g_regionLeft < bytes) {
        void* const memory = ::mmap(nullptr, kRegion, PROT_READ | PROT_WRITE,
                                    MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
        if (memory == MAP_FAILED) throw std::bad_alloc();
        char* const begin = static_cast<char*>(memory);
        const std::size_t head = (kPiece - reinterpret_cast<std::uintptr_t>(begin) % kPiece) % kPiece;
        g_region = begin + head;
        g_regionLeft = (kRegion - head) / kPiece * kPiece;
    }
    char* const taken = g_region;
    g_region += bytes;
    g_regionLeft -= bytes;
    return taken;
}

} // namespace

NodeArena::~NodeArena() {
    for (Head* piece : m_pieces) ::madvise(piece, kPiece, MADV_DONTNEED);
}

void NodeArena::addPiece() {
    // A small drawing takes one piece; a large one takes many at a time, with large pages where the system
    // has them.
    if (m_reserved == 0) {
        const std::size_t bytes = (m_pieces.empty() ? 1 : kPiecesAtOnce) * kPiece;
        m_reserve = takeAddresses(bytes);
        m_reserved = bytes;
        if (!m_pieces.empty()) ::madvise(m_reserve, bytes, MADV_HUGEPAGE);
    }
    m_pieces.push_back(::new (m_reserve) Head{&m_database});
    m_reserve += kPiece;
    m_reserved -= kPiece;
    m_used = 0;
}

Node* NodeArena::make() {
    if (m_used == kNodes) addPiece();
    return ::new (&m_pieces.back()->nodes()[m_used++]) Node();
}

std::size_t NodeArena::count() const noexcept {
    return m_pieces.empty() ? 0 : (m_pieces.size() - 1) * kNodes + m_used;
}

void NodeArena::forgetDatabase() noexcept {
    for (Head* piece : m_pieces) piece->database = nullptr;
}

} // namespace lm::drawing
