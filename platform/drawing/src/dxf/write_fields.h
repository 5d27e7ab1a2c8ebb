// SPDX-License-Identifier: MIT
// Puts the fields that differ into the groups that an entry came with. Everything else stays, in its order.
#pragma once

#include "dxf/place.h"
#include "dxf/specs.h"
#include "dxf/write_layout.h"

#include "drawing/curves.h"
#include "drawing/text.h"

namespace lm::drawing {

/// The groups that an entry's object was read from.
struct ReadGroups {
    DatabaseData& data;
    Node& node;
    /// Null for the groups of a copy. What they hold for fields counts for nothing then, since the object has
    /// the last word, and names in them may be those of another drawing.
    const Source* source = nullptr;
};

/// A group for the walk by place; typed ones look like those of a text file.
Group groupOf(const OutGroup& group);

/// Visits the groups in front of the extended data: index, and whether they are fields, or belong to the
/// embedded text.
template<class F>
void forPlaces(const OutGroups& groups, F&& visit) {
    constexpr int kFirstXData = 1000;
    PlaceInEntry where;
    for (std::size_t i = 0; i < groups.size() && groups[i].code < kFirstXData; ++i) {
        const bool field = where.isField(groupOf(groups[i]));
        visit(i, field, where.isEmbedded());
    }
}

/// The values of fields under a group, as text, number and real.
OdString textOf(const OutGroup& group);
double realOf(const OutGroup& group);
long long integerOf(const OutGroup& group);
std::uint64_t handleOf(const OutGroup& group);

bool sameValue(const OutGroup::Value& a, const OutGroup::Value& b);

/// The place for a group that isn't there, as the layout has it.
std::size_t placeFor(const OutGroups& groups, std::span<const LayoutItem> layout, int code);
/// Where the fields end: in front of the extended data and of the embedded text.
std::size_t endOfFields(const OutGroups& groups);
/// The last field of a code, or the number of groups.
std::size_t findField(const OutGroups& groups, int code);
/// Gives a field a value: in place, else where the layout has it.
void setField(OutGroups& groups, std::span<const LayoutItem> layout, OutGroup group);
/// Takes groups out.
void removeMarked(OutGroups& groups, const std::vector<bool>& remove);

/// Puts in what `current` has otherwise than the groups.
void editFields(OutGroups& groups, const OdDbObject& current, const ClassSpec& spec,
                std::span<const LayoutItem> layout, const ReadGroups& read);
/// The same for the vertices of a polyline and for the parts of a multi-line text.
void editVertices(OutGroups& groups, const OdDbPolyline& current);
void editContents(OutGroups& groups, const OdDbMText& current, std::span<const LayoutItem> layout);
/// The multi-line text of an attribute, null for none.
void editEmbedded(OutGroups& groups, const OdDbMText* current, bool definition, const ReadGroups& read);

/// A field in the groups of a new entry, if it is to be there. `fresh` is a new object of the class.
void addField(OutGroups& groups, const LayoutItem& item, const OdDbObject& current, const OdDbObject& fresh,
              const ClassSpec& spec);
/// All vertices; all parts of a text; the embedded text of an attribute.
void addVertices(OutGroups& groups, const OdDbPolyline& current);
void addContents(OutGroups& groups, const OdString& contents);
void addEmbedded(OutGroups& groups, const OdDbMText& current, bool definition);

} // namespace lm::drawing
