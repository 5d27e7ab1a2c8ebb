// SPDX-License-Identifier: MIT
#include "drawing/finite.h"

#include "dxf/specs.h"

#include "drawing/curves.h"

#include <cmath>

namespace lm::drawing {

namespace {

/// Whether a line of text is what a number that isn't finite looks like.
bool isWord(std::string_view text) {
    text = stripped(text);
    if (!text.empty() && text.front() == '-') text.remove_prefix(1);
    return text.starts_with("inf") || text.starts_with("nan");
}

/// What an object carries without reading it.
bool areGroupsFinite(const OdDbObject& object) {
    const RawGroups* const raw = ObjectAccess::raw(object);
    if (raw == nullptr) return true;
    bool finite = true;
    forEachGroupIn(raw->span(), [&](const Group& group, const char*, const char*) {
        if (valueTypeOf(group.code) != ValueType::kReal) return true;
        double value = 0;
        if (raw->span().form->binary) std::memcpy(&value, group.data, sizeof value);
        finite = std::isfinite(value) && (raw->span().form->binary || !isWord(group.raw()));
        return finite;
    });
    return finite;
}

bool areFieldsFinite(const OdDbObject& object, const Node& node) {
    for (const FieldSpec& field : specOf(node).fields->fields()) {
        OutGroup::Value value;
        if (field.value == nullptr || valueTypeOf(field.code) != ValueType::kReal ||
            !field.value(object, {field.code, 0}, value))
            continue;
        if (const double* number = std::get_if<double>(&value); number != nullptr && !std::isfinite(*number))
            return false;
    }
    return true;
}

bool areVerticesFinite(const OdDbObject& object) {
    const auto* polyline = OdDbPolyline::cast(&object);
    const unsigned int count = polyline != nullptr ? polyline->numVerts() : 0;
    for (unsigned int i = 0; i < count; ++i) {
        const OdGePoint3d point = polyline->getPointAt(i);
        if (!std::isfinite(point.x + point.y + point.z) || !std::isfinite(polyline->getBulgeAt(i)))
            return false;
    }
    return true;
}

} // namespace

bool isFinite(const OdDbObject& object) {
    const Node* const node = object.objectId().node();
    if (node == nullptr) return true;
    if (!areGroupsFinite(object) || !areFieldsFinite(object, *node) || !areVerticesFinite(object))
        return false;
    for (const Node* part = node->firstPart; part != nullptr; part = part->next)
        if (part->body != nullptr && part->isLive() && !isFinite(*part->body)) return false;
    return true;
}

} // namespace lm::drawing
