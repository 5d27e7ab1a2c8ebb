// SPDX-License-Identifier: MIT
// One table for each class that the database reads: group code, name, kind of value, how it goes into the
// object and how it comes out again. The same tables serve the reader, the writer, the checks and the
// documentation page.
#pragma once

#include "dxf/outgroups.h"

#include "drawing/curves.h"

#include <functional>
#include <span>

namespace lm::drawing {

constexpr double kRadiansPerDegree = 0.017453292519943295;

/// What reading one object needs, and what it meets.
struct ReadContext {
    DatabaseData& data;
    const Values& values;
    Node& node;
    bool bad = false;     ///< a value could not be read
    bool badText = false; ///< bytes that the code page doesn't know

    double real(const Group& group) { return values.real(group, bad); }
    double angle(const Group& group) { return values.real(group, bad) * kRadiansPerDegree; }
    int integer(const Group& group) { return static_cast<int>(values.integer(group, bad)); }
    OdString text(const Group& group) { return values.text(group, badText); }
    OdString sharedText(const Group& group) { return values.sharedText(group, badText); }
};

/// What the value of a field depends on besides the object.
struct ValueContext {
    int code = 0; ///< of the group that is asked for
    /// The number that the group has in the source, 0 for none: for values that the object knows in part.
    long long old = 0;
};

/// One row: a field of a class.
struct FieldSpec {
    short code;
    const char* name;
    const char* type;
    void (*read)(OdDbObject& object, const Group& group, ReadContext& context);
    /// The value of the group; false where the object has none and the group is left out. Null for the groups
    /// of lists, which are written together: vertices, parts of texts, entries of dictionaries.
    bool (*value)(const OdDbObject& object, const ValueContext& context, OutGroup::Value& value);
};

/// The degrees that are read as this angle, or the nearest there are.
double degreesOf(double radians) noexcept;

/// The fields of a class, found by group code in one step.
class ClassSpec {
public:
    ClassSpec(const char* className, std::initializer_list<std::span<const FieldSpec>> parts);
    const FieldSpec* find(int code) const noexcept {
        if (static_cast<unsigned>(code) >= m_index.size()) return nullptr;
        const unsigned char at = m_index[static_cast<std::size_t>(code)];
        return at != 0 ? &m_fields[at - 1] : nullptr;
    }
    const char* className() const { return m_className; }
    const std::vector<FieldSpec>& fields() const { return m_fields; }

private:
    const char* m_className;
    std::vector<FieldSpec> m_fields;
    std::array<unsigned char, 512> m_index{};
};

/// A kind of entry that the database reads: how its object is made and which fields it has.
struct KindSpec {
    OdDbObject* (*make)();
    const ClassSpec* fields;
};

/// How an entry is read; entries of other kinds are read as their place demands: entity, table record or
/// object.
const KindSpec& specOf(const Node& node);

/// Fields of multi-line text, as an entity and embedded in an attribute; fields of the head of a block.
const ClassSpec& mtextSpec();
const ClassSpec& blockSpec();

/// Takes all vertices out of a polyline that may be changed.
void clearVertices(OdDbPolyline& polyline);

/// All specs of classes with fields, for checks and documentation.
std::vector<const ClassSpec*> allSpecs();

} // namespace lm::drawing
