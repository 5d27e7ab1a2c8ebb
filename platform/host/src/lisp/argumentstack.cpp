// SPDX-License-Identifier: MIT
#include "argumentstack.h"

#include <algorithm>

namespace lm::host::lisp {

ArgumentStack::~ArgumentStack() {
    for (const Block& block : m_blocks) m_heap.discharge(block.size * sizeof(Value));
}

Value* ArgumentStack::takeFromNext(std::size_t count) {
    if (count == 0) return nullptr;
    const std::size_t next = m_blocks.empty() ? 0 : m_current + 1;
    if (next == m_blocks.size()) m_blocks.emplace_back();
    Block& block = m_blocks[next];
    if (block.size < count) {
        const std::size_t size = std::max(count, kBlock);
        m_heap.charge(size * sizeof(Value));
        m_heap.discharge(block.size * sizeof(Value));
        block.values.reset();
        block.size = 0;
        block.values = std::make_unique<Value[]>(size);
        block.size = size;
    }
    block.used = count;
    m_current = next;
    return block.values.get();
}

// One block of the ordinary size stays for the next time, a large one goes.
void ArgumentStack::leaveBlock() noexcept {
    Block& block = m_blocks[m_current];
    if (block.size > kBlock) {
        m_heap.discharge(block.size * sizeof(Value));
        block = Block();
    }
    --m_current;
}

} // namespace lm::host::lisp
