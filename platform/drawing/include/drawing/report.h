// SPDX-License-Identifier: MIT
// What a reader mended, by number. Numbers are never given anew; docs/formats/defects.md lists them.
#pragma once

#include "drawing/export.h"

#include <cstdint>
#include <string>
#include <vector>

namespace lm::drawing {

/// Kinds of defects in drawing files.
enum class Defect : int {
    kMissingHandle = 101, ///< an object without a handle, or with handle 0; it was given a free one
    kDoubledHandle = 102, ///< a handle that an earlier object has; the later object was given a free one
    kBadHandle = 103,     ///< a handle that is no hexadecimal number of at most 64 bits; given a free one
    kMissingName = 104,   ///< a table record or block without a name; it was given one
    kDoubledName = 105,   ///< a second record of one name; the first one is found by it
    kUnknownOwner = 106,  ///< an entity whose owner is no block; put into model or paper space
    kStrayEntry = 107,    ///< a record where none of its kind can stand; kept as it came
    kMissingEnd = 108,    ///< a section, table, block or file without its end
    kUnknownBlock = 109,  ///< a reference to a block that isn't there
    kUnlistedLayer = 110, ///< an entity on a layer that the table lacks; the layer was made
    kBadNumber = 111,     ///< a number that can't be read; its readable beginning counts, else 0
    kMissingTable = 112,  ///< a table that the drawing needs and lacks; made
    kBadText = 113,       ///< bytes that the code page doesn't know; taken unit for unit
    kBrokenGroup =
        114, ///< a group that can't be read inside an entry; the entry is kept without what follows
};

/// One repair.
struct Repair {
    Defect defect;
    std::uint64_t handle = 0; ///< 0 when the object has none
    std::uint64_t line = 0;   ///< line of a text file, byte of a binary one; 0 when unknown
    std::string detail;       ///< UTF-8
};

/// The repairs of one reading. At most `kKept` of a kind are kept in full; the rest is counted.
class LM_DRAWING_API Report {
public:
    static constexpr std::size_t kKept = 100;
    void add(Repair repair);
    const std::vector<Repair>& repairs() const { return m_repairs; }
    std::size_t count(Defect defect) const;
    std::size_t total() const { return m_total; }
    /// One line for people: number, what, handle, place, detail.
    static std::string text(const Repair& repair);
    /// The defect in words.
    static const char* describe(Defect defect);

private:
    struct Count {
        Defect defect;
        std::size_t count;
    };
    std::vector<Repair> m_repairs;
    std::vector<Count> m_counts;
    std::size_t m_total = 0;
};

} // namespace lm::drawing
