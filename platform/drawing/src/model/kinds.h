// SPDX-License-Identifier: MIT
// The types of entries that drawing files hold: a fixed list of those that the database reads or needs to
// tell apart, then those that a drawing brings along.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace lm::drawing {

/// Fixed kinds; the order is that of kKindNames.
enum Kind : std::uint16_t {
    kKindNone,
    kKindAttrib,
    kKindInsert,
    kKindLwPolyline,
    kKindSeqend,
    kKindLine,
    kKindText,
    kKindMText,
    kKindAttdef,
    kKindCircle,
    kKindArc,
    kKindEllipse,
    kKindPoint,
    kKindPolyline,
    kKindVertex,
    kKindBlock,
    kKindEndblk,
    kKindTable,
    kKindLayer,
    kKindLtype,
    kKindStyle,
    kKindAppid,
    kKindVport,
    kKindView,
    kKindUcs,
    kKindDimstyle,
    kKindBlockRecord,
    kKindDictionary,
    kKindDictionaryWithDefault,
    kKindXrecord,
    kKindLayout,
    kFixedKinds
};

/// DXF names of the fixed kinds.
extern const char* const kKindNames[kFixedKinds];

/// Whether the database reads objects of this kind, and not only keeps them.
bool isReadKind(Kind kind) noexcept;

/// The kinds of one drawing.
class KindList {
public:
    /// Index of a name, which is entered when it is new. At most 65,535 kinds are told apart; further ones
    /// share the last index.
    std::uint16_t indexOf(std::string_view name);
    std::string_view name(std::uint16_t index) const;

private:
    std::vector<std::string> m_further;
    std::unordered_map<std::string, std::uint16_t> m_indices; ///< of the further names
};

} // namespace lm::drawing
