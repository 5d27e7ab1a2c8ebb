// SPDX-License-Identifier: MIT
#include "model/kinds.h"

#include <cstring>
#include <limits>

namespace lm::drawing {

const char* const kKindNames[kFixedKinds] = {"",
                                             "ATTRIB",
                                             "INSERT",
                                             "LWPOLYLINE",
                                             "SEQEND",
                                             "LINE",
                                             "TEXT",
                                             "MTEXT",
                                             "ATTDEF",
                                             "CIRCLE",
                                             "ARC",
                                             "ELLIPSE",
                                             "POINT",
                                             "POLYLINE",
                                             "VERTEX",
                                             "BLOCK",
                                             "ENDBLK",
                                             "TABLE",
                                             "LAYER",
                                             "LTYPE",
                                             "STYLE",
                                             "APPID",
                                             "VPORT",
                                             "VIEW",
                                             "UCS",
                                             "DIMSTYLE",
                                             "BLOCK_RECORD",
                                             "DICTIONARY",
                                             "ACDBDICTIONARYWDFLT",
                                             "XRECORD",
                                             "LAYOUT"};

bool isReadKind(Kind kind) noexcept {
    switch (kind) {
    case kKindNone:
    case kKindPolyline:
    case kKindVertex:
    case kKindUcs:
    case kKindDimstyle:
    case kKindLayout:
        return false;
    default:
        return kind < kFixedKinds;
    }
}

std::uint16_t KindList::indexOf(std::string_view name) {
    for (std::uint16_t i = 1; i < kFixedKinds; ++i)
        if (name == kKindNames[i]) return i;
    const auto known = m_indices.find(std::string(name));
    if (known != m_indices.end()) return known->second;
    if (kFixedKinds + m_further.size() >= std::numeric_limits<std::uint16_t>::max())
        return static_cast<std::uint16_t>(kFixedKinds + m_further.size() - 1);
    const auto index = static_cast<std::uint16_t>(kFixedKinds + m_further.size());
    m_further.emplace_back(name);
    m_indices.emplace(m_further.back(), index);
    return index;
}

std::string_view KindList::name(std::uint16_t index) const {
    if (index < kFixedKinds) return kKindNames[index];
    return m_further[index - kFixedKinds];
}

} // namespace lm::drawing
