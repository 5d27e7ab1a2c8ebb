// SPDX-License-Identifier: MIT
// Which groups an entry of each class has and in which order: for entries that came from no file, and for the
// place of a group that an entry of a file lacked so far. Source: the DXF reference, class by class.
#pragma once

#include "dxf/outgroups.h"

#include <span>

namespace lm::drawing {

/// One group of an entry.
struct LayoutItem {
    enum What : unsigned char {
        kHandle,   ///< the object's own
        kOwner,    ///< its owner's handle
        kMark,     ///< 100 with the name of a class
        kAlways,   ///< a field
        kOptional, ///< a field, left out where it has the value that a new object has
        kInteger,  ///< the same for all objects of the class
        kReal,     ///< likewise
        kText,     ///< likewise
        kPaper,    ///< 67 for what stands in a paper layout
        kFollow,   ///< 66 for a reference with attributes
        kPlotStyle,
        kTableName,
        kCount,   ///< how many records a table has
        kList,    ///< vertices, the parts of a text, entries, a chain: all that the class has of it
        kEmbedded ///< the multi-line text of an attribute
    };
    What what;
    short code = 0;
    std::string_view text{};
    double number = 0;
    FileVersion from = FileVersion::kR2000; ///< in older files the group is left out
};

/// The groups of entries of a kind, without the extended data; empty for a kind that only files bring along.
std::span<const LayoutItem> layoutOf(std::uint16_t kind);

/// What the database reads of entities and of records of kinds that only files bring along.
std::span<const LayoutItem> layoutOfOthers(bool entity);

/// The groups of a multi-line text that is embedded in an attribute.
std::span<const LayoutItem> embeddedLayout();

} // namespace lm::drawing
