// SPDX-License-Identifier: MIT
// The walk over the groups of one entry, the same for both forms of file.
#pragma once

#include "dxf/read.h"

namespace lm::drawing {

template<class Cursor, class F>
void walkGroups(const Source& source, const Stub& stub, F&& visit) {
    const char* const begin = source.begin() + stub.offset;
    Cursor cursor(source, begin, begin + stub.length);
    Group group;
    while (cursor.next(group) == Step::kGroup)
        if (!visit(group)) return;
}

template<class F>
void forEachGroup(const Source& source, const Stub& stub, F&& visit) {
    if (stub.length == 0) return;
    if (source.binary)
        walkGroups<BinaryCursor>(source, stub, visit);
    else
        walkGroups<TextCursor>(source, stub, visit);
}

} // namespace lm::drawing
