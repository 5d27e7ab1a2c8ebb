// SPDX-License-Identifier: MIT
#include "drawing/report.h"

#include "drawing/handle.h"

#include <algorithm>

namespace lm::drawing {

void Report::add(Repair repair) {
    ++m_total;
    const auto same = std::find_if(m_counts.begin(), m_counts.end(),
                                   [&](const Count& count) { return count.defect == repair.defect; });
    const std::size_t before = same != m_counts.end() ? same->count++ : 0;
    if (same == m_counts.end()) m_counts.push_back({repair.defect, 1});
    if (before < kKept) m_repairs.push_back(std::move(repair));
}

std::size_t Report::count(Defect defect) const {
    for (const Count& count : m_counts)
        if (count.defect == defect) return count.count;
    return 0;
}

const char* Report::describe(Defect defect) {
    switch (defect) {
    case Defect::kMissingHandle:
        return "an object without a handle";
    case Defect::kDoubledHandle:
        return "a handle that stands twice";
    case Defect::kBadHandle:
        return "a handle that is no hexadecimal number";
    case Defect::kMissingName:
        return "an entry without a name";
    case Defect::kDoubledName:
        return "a name that stands twice";
    case Defect::kUnknownOwner:
        return "an owner that isn't there";
    case Defect::kStrayEntry:
        return "an entry where none of its kind can stand";
    case Defect::kMissingEnd:
        return "an end that is missing";
    case Defect::kUnknownBlock:
        return "a reference to a block that isn't there";
    case Defect::kUnlistedLayer:
        return "a layer that the table lacks";
    case Defect::kBadNumber:
        return "a number that can't be read";
    case Defect::kMissingTable:
        return "a table that is missing";
    case Defect::kBadText:
        return "text that its code page doesn't know";
    case Defect::kBrokenGroup:
        return "a group that can't be read";
    }
    return "a defect";
}

std::string Report::text(const Repair& repair) {
    std::string line = std::to_string(static_cast<int>(repair.defect)) + ": " + describe(repair.defect);
    if (repair.handle != 0) line += ", handle " + utf8(OdDbHandle(repair.handle).ascii());
    if (repair.line != 0) line += ", place " + std::to_string(repair.line);
    if (!repair.detail.empty()) line += ": " + repair.detail;
    return line;
}

} // namespace lm::drawing
