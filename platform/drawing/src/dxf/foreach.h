// SPDX-License-Identifier: MIT
// The walk over the groups of one entry, the same for both forms of file.
#pragma once

#include "dxf/read.h"

namespace lm::drawing {

template<class Cursor, class F>
void walkGroups(const Source& source, const Node& node, F&& visit) {
    const char* const begin = source.begin() + node.offset;
    Cursor cursor(source, begin, begin + node.length);
    Group group;
    while (cursor.next(group) == Step::kGroup)
        if (!visit(group)) return;
}

template<class F>
void forEachGroup(const Source& source, const Node& node, F&& visit) {
    if (node.length == 0) return;
    if (source.binary)
        walkGroups<BinaryCursor>(source, node, visit);
    else
        walkGroups<TextCursor>(source, node, visit);
}

} // namespace lm::drawing
