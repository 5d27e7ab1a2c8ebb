// SPDX-License-Identifier: MIT
// The stack on which arguments wait while a call is made: blocks of values that are taken and given back in
// order, so that a call costs no allocation.
#pragma once

#include "value.h"

#include <memory>
#include <span>

namespace lm::host::lisp {

/// The stack of one machine.
class ArgumentStack {
public:
    explicit ArgumentStack(Heap& heap) noexcept : m_heap(heap) {}
    ~ArgumentStack();

    /// `count` values side by side, all nil, for as long as the frame lives.
    class Frame {
    public:
        Frame(ArgumentStack& stack, std::size_t count)
            : m_stack(stack), m_values(stack.take(count)), m_count(count) {}
        ~Frame() {
            for (std::size_t i = 0; i < m_count; ++i) m_values[i] = Value();
            m_stack.giveBack(m_count);
        }
        Frame(const Frame&) = delete;
        Frame& operator=(const Frame&) = delete;
        Value& operator[](std::size_t index) noexcept { return m_values[index]; }
        std::size_t size() const noexcept { return m_count; }
        std::span<Value> values() noexcept { return {m_values, m_count}; }

    private:
        ArgumentStack& m_stack;
        Value* m_values;
        std::size_t m_count;
    };

private:
    static constexpr std::size_t kBlock = 2048;
    struct Block {
        std::unique_ptr<Value[]> values;
        std::size_t size = 0;
        std::size_t used = 0;
    };

    Value* take(std::size_t count) {
        if (m_current < m_blocks.size()) {
            Block& block = m_blocks[m_current];
            if (block.size - block.used >= count) {
                Value* values = block.values.get() + block.used;
                block.used += count;
                return values;
            }
        }
        return takeFromNext(count);
    }
    void giveBack(std::size_t count) noexcept {
        if (count == 0) return;
        Block& block = m_blocks[m_current];
        block.used -= count;
        if (block.used == 0 && m_current > 0) leaveBlock();
    }
    Value* takeFromNext(std::size_t count);
    void leaveBlock() noexcept;

    Heap& m_heap;
    std::vector<Block> m_blocks;
    std::size_t m_current = 0;
};

} // namespace lm::host::lisp
