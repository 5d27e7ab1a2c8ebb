// SPDX-License-Identifier: MIT
#include "model/stub.h"

#include <new>

#include <sys/mman.h>

namespace lm::drawing {

namespace {

// Address space costs nothing until it is touched. Small drawings take one piece; a large one takes many at a
// time, with large pages where the system has them.
constexpr std::size_t kPiecesAtOnce = 64;

/// Address space of whole pieces at a multiple of their size.
char* reserve(std::size_t bytes) {
    constexpr std::size_t kPiece = StubArena::kPiece;
    void* const memory = ::mmap(nullptr, bytes + kPiece, PROT_READ | PROT_WRITE,
                                MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    if (memory == MAP_FAILED) throw std::bad_alloc();
    char* const begin = static_cast<char*>(memory);
    const std::size_t head = (kPiece - reinterpret_cast<std::uintptr_t>(begin) % kPiece) % kPiece;
    if (head != 0) ::munmap(begin, head);
    if (head != kPiece) ::munmap(begin + head + bytes, kPiece - head);
    return begin + head;
}

} // namespace

StubArena::~StubArena() {
    for (Head* piece : m_pieces) {
        ::madvise(piece, kPiece, MADV_DONTNEED);
        ::mprotect(piece, kPiece, PROT_READ);
    }
    // What was never handed out names nothing, so it can be given back whole.
    if (m_reserved != 0) ::munmap(m_reserve, m_reserved);
}

void StubArena::addPiece() {
    if (m_reserved == 0) {
        const std::size_t bytes = m_pieces.empty() ? kPiece : kPiecesAtOnce * kPiece;
        m_reserve = reserve(bytes);
        m_reserved = bytes;
        if (!m_pieces.empty()) ::madvise(m_reserve, bytes, MADV_HUGEPAGE);
    }
    m_pieces.push_back(::new (m_reserve) Head{&m_database});
    m_reserve += kPiece;
    m_reserved -= kPiece;
    m_used = 0;
}

Stub* StubArena::make() {
    if (m_used == kStubs) addPiece();
    return ::new (&m_pieces.back()->stubs()[m_used++]) Stub();
}

std::size_t StubArena::count() const noexcept {
    return m_pieces.empty() ? 0 : (m_pieces.size() - 1) * kStubs + m_used;
}

void StubArena::forgetDatabase() noexcept {
    for (Head* piece : m_pieces) piece->database = nullptr;
}

} // namespace lm::drawing
