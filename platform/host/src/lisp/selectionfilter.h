// SPDX-License-Identifier: MIT
// Filters of ssget: which entities a list of groups and operators lets pass.
#pragma once

#include "machine.h"

#include "drawing/entity.h"

#include <memory>

namespace lm::host::lisp {

/// A filter, read once and asked for each entity. Groups must all fit; texts are patterns; (-4 . "<OR") and
/// its like group tests, (-4 . ">=") and its like compare the number or point behind them; (-3 ("APP" ...))
/// asks for extended data.
class SelectionFilter {
public:
    /// Raises LispError for a list that is no filter. An empty list lets everything pass.
    SelectionFilter(Machine& machine, const Value& list);
    ~SelectionFilter();
    bool fits(const OdDbEntity& entity) const;

    struct Test;

private:
    Machine& m_machine;
    std::unique_ptr<Test> m_test;
};

} // namespace lm::host::lisp
