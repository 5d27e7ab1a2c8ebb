// SPDX-License-Identifier: MIT
// Where a group stands inside its entry: as a field of the entry, or in one of the parts whose codes mean
// something else. Reading and writing go by the same rules.
#pragma once

#include "dxf/cursor.h"

namespace lm::drawing {

/// Keeps track of the groups that are no fields of the entry itself: braces with the ids of reactors and
/// dictionaries, objects that are embedded in an entry, what an attribute with several lines tells about
/// them, and the xrecord that it carries along in older versions.
class PlaceInEntry {
public:
    /// Whether the group is a field of the entry. Groups come in their order, without extended data.
    bool isField(const Group& group) {
        switch (group.code) {
        case kBraces: {
            const std::string_view text = stripped(group.raw());
            m_braces = !text.empty() && text.front() == '{';
            return false;
        }
        case kEmbedded:
            m_embedded = true;
            return false;
        case kSubclass:
            subclass(stripped(group.raw()));
            return false;
        case kComment:
            return false;
        case kLocked:
            // An attribute of R2010 and later has its version under this code, and then whether it is locked.
            // Behind it stands what it is for its multi-line text, under codes of the text. Some programs
            // write one of the two only.
            if (!m_braces) ++m_locks;
            break;
        case 71:
        case 72:
        case 11:
        case 21:
        case 31:
            if (m_locks >= (m_attribute ? 1 : 2)) return false;
            break;
        default:
            break;
        }
        return !m_xrecord && !m_braces && !m_embedded;
    }
    /// Whether a group of this code that came next would be a field.
    bool takesField(int code) const { return PlaceInEntry(*this).isField(Group{code, nullptr, 0}); }
    bool isEmbedded() const { return m_embedded; }
    bool isXrecord() const { return m_xrecord; }

private:
    void subclass(std::string_view mark) {
        if (mark == kXrecordMark) m_xrecord = true;
        if (mark == "AcDbAttribute" || mark == "AcDbAttributeDefinition") m_attribute = true;
    }

    static constexpr int kSubclass = 100;
    static constexpr int kEmbedded = 101;
    static constexpr int kBraces = 102;
    static constexpr int kLocked = 280;
    static constexpr int kComment = 999;
    static constexpr std::string_view kXrecordMark = "AcDbXrecord";

    int m_locks = 0;
    bool m_attribute = false; // behind the mark of its own fields, where those of its text have ended
    bool m_braces = false;
    bool m_embedded = false;
    bool m_xrecord = false;
};

/// The code of the x component that a code of a chain belongs to, or -1. Components that follow one another
/// make one record of a chain.
inline int pointBase(int code) noexcept {
    if (code >= 10 && code <= 39) return 10 + code % 10;
    if (code >= 110 && code <= 139) return 110 + code % 10;
    if (code >= 210 && code <= 239) return 210 + code % 10;
    if (code >= 1010 && code <= 1039) return 1010 + code % 10;
    return -1;
}

} // namespace lm::drawing
