// SPDX-License-Identifier: MIT
#include "model/stretch.h"

#include "model/databasedata.h"
#include "model/iterators.h"
#include "model/pictures.h"

#include "drawing/curves.h"

#include <numbers>

namespace lm::drawing {

namespace {

using std::numbers::pi;

/// The inverse of a matrix whose columns are unit vectors at right angles.
OdGeMatrix3d transposed(const OdGeMatrix3d& m) {
    OdGeMatrix3d t;
    for (int i = 0; i < 3; ++i)
        for (int k = 0; k < 3; ++k) t.entry[i][k] = m.entry[k][i];
    return t;
}

OdGeVector3d unit(const OdGeVector3d& v, const OdGeVector3d& otherwise) {
    const double length = v.length();
    return length > 0 ? v * (1 / length) : otherwise;
}

/// The normal of a plane behind a transform, on the side to which the old one was moved.
OdGeVector3d movedNormal(const OdGeMatrix3d& matrix, const OdGeVector3d& normal) {
    const OdGeMatrix3d plane = matrix * OdGeMatrix3d::planeToWorld(normal);
    const OdGeVector3d up =
        unit((plane * OdGeVector3d::kXAxis).crossProduct(plane * OdGeVector3d::kYAxis), normal);
    return up.dotProduct(plane * OdGeVector3d::kZAxis) < 0 ? -up : up;
}

/// Takes what all entities have, extended data too.
template<class T>
OdSmartPtr<T> madeLike(const OdDbEntity& entity) {
    OdSmartPtr<T> made(new T(), kAttach);
    made->setPropertiesFrom(&entity);
    made->setVisible(entity.isVisible());
    made->setXData(entity.xData());
    return made;
}

/// An ellipse of center + a cos t + b sin t for t from `start` to `end`.
OdSmartPtr<OdDbEllipse> ellipseOf(const OdDbEntity& like, const OdGePoint3d& center, const OdGeVector3d& a,
                                  const OdGeVector3d& b, double start, double end) {
    constexpr double kThinnest = 1e-6; // of a ratio; a thinner ellipse is none to any reader
    double turn = std::atan2(2 * a.dotProduct(b), a.dotProduct(a) - b.dotProduct(b)) / 2;
    OdGeVector3d major = a * std::cos(turn) + b * std::sin(turn);
    OdGeVector3d minor = b * std::cos(turn) - a * std::sin(turn);
    if (minor.length() > major.length()) {
        const OdGeVector3d longer = minor;
        minor = -major;
        major = longer;
        turn += pi / 2;
    }
    OdSmartPtr<OdDbEllipse> ellipse = madeLike<OdDbEllipse>(like);
    ellipse->setCenter(center);
    ellipse->setMajorAxis(major);
    ellipse->setNormal(unit(major.crossProduct(minor), OdGeVector3d::kZAxis));
    ellipse->setRadiusRatio(major.length() > 0 ? std::fmax(minor.length() / major.length(), kThinnest) : 1);
    const bool full = std::fabs(end - start) >= 2 * pi;
    ellipse->setStartParam(full ? 0 : start - turn);
    ellipse->setEndParam(full ? 2 * pi : end - turn);
    return ellipse;
}

OdSmartPtr<OdDbEllipse> arcOf(const OdDbEntity& like, const OdGeMatrix3d& plane, const OdGePoint3d& center,
                              double radius, double start, double end) {
    return ellipseOf(like, plane * center, plane * OdGeVector3d(radius, 0, 0),
                     plane * OdGeVector3d(0, radius, 0), start, end);
}

void addSegment(const OdDbPolyline& like, const OdGeMatrix3d& plane, const OdGePoint3d& p,
                const OdGePoint3d& q, double bulge, OdArray<OdSmartPtr<OdDbEntity>>& pieces) {
    if (bulge == 0 || p == q) {
        const OdSmartPtr<OdDbLine> line = madeLike<OdDbLine>(like);
        line->setStartPoint(plane * p);
        line->setEndPoint(plane * q);
        pieces.append(line);
        return;
    }
    const double away = (1 - bulge * bulge) / (4 * bulge);
    const OdGePoint3d center((p.x + q.x) / 2 - away * (q.y - p.y), (p.y + q.y) / 2 + away * (q.x - p.x), p.z);
    const OdGePoint3d& first = bulge > 0 ? p : q; // an arc runs counter-clockwise
    const double start = std::atan2(first.y - center.y, first.x - center.x);
    pieces.append(arcOf(like, plane, center, std::hypot(p.x - center.x, p.y - center.y), start,
                        start + 4 * std::atan(std::fabs(bulge))));
}

void addPolyline(OdSmartPtr<OdDbPolyline> polyline, const OdGeMatrix3d& matrix,
                 OdArray<OdSmartPtr<OdDbEntity>>& pieces) {
    const OdGeMatrix3d plane = matrix * OdGeMatrix3d::planeToWorld(polyline->normal());
    const unsigned count = polyline->numVerts();
    const unsigned segments = count == 0 ? 0 : polyline->isClosed() ? count : count - 1;
    bool straight = true;
    for (unsigned i = 0; i < segments; ++i) straight = straight && polyline->getBulgeAt(i) == 0;
    if (!straight) {
        for (unsigned i = 0; i < segments; ++i)
            addSegment(*polyline.get(), plane, polyline->getPointAt(i), polyline->getPointAt((i + 1) % count),
                       polyline->getBulgeAt(i), pieces);
        return;
    }
    const OdGeVector3d normal = movedNormal(matrix, polyline->normal());
    const OdGeMatrix3d flat = transposed(OdGeMatrix3d::planeToWorld(normal)) * plane;
    double elevation = polyline->elevation();
    for (unsigned i = 0; i < count; ++i) {
        const OdGePoint3d p = flat * polyline->getPointAt(i);
        polyline->setPointAt(i, {p.x, p.y});
        elevation = p.z;
    }
    polyline->setElevation(elevation);
    polyline->setNormal(normal);
    pieces.append(polyline);
}

/// The picture of a dimension as a reference to its block; null for another entity.
OdSmartPtr<OdDbBlockReference> pictureOf(const OdDbEntity& entity, const OdDbDatabase* database) {
    const RawPointer raw = rawGroupsOf(entity);
    if (!raw || database == nullptr || !isDimension(raw->kind())) return {};
    Node* const block = pictureBlock(*raw.get(), database->data());
    if (block == nullptr) return {};
    OdSmartPtr<OdDbBlockReference> picture = madeLike<OdDbBlockReference>(entity);
    picture->setBlockTableRecord(OdDbObjectId(block));
    return picture;
}

} // namespace

void stretchText(OdDbText& text, const OdGeMatrix3d& matrix) {
    const OdGeMatrix3d before = OdGeMatrix3d::planeToWorld(text.normal());
    const double c = std::cos(text.rotation()), s = std::sin(text.rotation());
    const OdGeVector3d along(c, s, 0);
    const OdGeVector3d up = OdGeVector3d(-s, c, 0) + along * std::tan(text.oblique());
    const OdGeVector3d normal = movedNormal(matrix, text.normal());
    const OdGeMatrix3d map = transposed(OdGeMatrix3d::planeToWorld(normal)) * matrix * before;
    const OdGeVector3d direction = map * along, rising = map * up;
    const double step = direction.length();
    if (step == 0) return;
    const OdGeVector3d x = direction * (1 / step);
    const OdGeVector3d y(-x.y, x.x, 0);
    const double height = std::fabs(rising.dotProduct(y));
    if (height == 0) return;
    text.setPosition(map * text.position());
    if (!text.isDefaultAlignment() || text.alignmentPoint() != OdGePoint3d())
        text.setAlignmentPoint(map * text.alignmentPoint());
    text.setRotation(std::atan2(direction.y, direction.x));
    text.setOblique(std::atan2(rising.dotProduct(x), height));
    text.setWidthFactor(text.widthFactor() * step / height);
    text.setHeight(text.height() * height);
    text.setThickness(text.thickness() * map.entry[2][2]);
    text.setNormal(normal);
}

void stretchMText(OdDbMText& text, const OdGeMatrix3d& matrix) {
    OdGeVector3d along = text.direction();
    if (along == OdGeVector3d::kXAxis && text.rotation() != 0)
        along = OdGeMatrix3d::planeToWorld(text.normal()) *
                OdGeVector3d(std::cos(text.rotation()), std::sin(text.rotation()), 0);
    const OdGeVector3d direction = matrix * along;
    const OdGeVector3d normal = movedNormal(matrix, text.normal());
    const OdGeVector3d up = matrix * text.normal().crossProduct(unit(along, OdGeVector3d::kXAxis));
    const OdGeVector3d upright = normal.crossProduct(unit(direction, OdGeVector3d::kXAxis));
    const double before = along.length();
    text.setLocation(matrix * text.location());
    text.setDirection(unit(direction, along));
    text.setNormal(normal);
    text.setTextHeight(text.textHeight() * std::fabs(up.dotProduct(upright)));
    if (before > 0) text.setWidth(text.width() * direction.length() / before);
}

void stretchWithLines(OdDbText& text, const OdGeMatrix3d& matrix) {
    stretchText(text, matrix);
    OdSmartPtr<OdDbMText> lines;
    if (const auto* attribute = OdDbAttribute::cast(&text)) lines = attribute->getMTextAttribute();
    if (const auto* definition = OdDbAttributeDefinition::cast(&text))
        lines = definition->getMTextAttributeDefinition();
    if (!lines.isNull()) stretchMText(*lines.get(), matrix);
}

namespace {

/// Mirrors in the plane in which a text lies.
OdGeMatrix3d mirrorIn(const OdGePoint3d& point, const OdGeVector3d& normal) {
    OdGeMatrix3d mirror;
    const double n[] = {normal.x, normal.y, normal.z};
    for (int i = 0; i < 3; ++i)
        for (int k = 0; k < 3; ++k) mirror.entry[i][k] = (i == k ? 1 : 0) - 2 * n[i] * n[k];
    return OdGeMatrix3d::translation(point.asVector()) * mirror *
           OdGeMatrix3d::translation(-point.asVector());
}

bool liesFlat(const OdGeVector3d& normal) {
    return std::fabs(normal.z) > std::hypot(normal.x, normal.y);
}

} // namespace

void turnTextOver(OdDbEntity& entity) {
    if (auto* const text = OdDbText::cast(&entity)) {
        const OdGeVector3d normal = unit(text->normal(), OdGeVector3d::kZAxis);
        if (!liesFlat(normal)) return;
        text->transformBy(mirrorIn(OdGeMatrix3d::planeToWorld(normal) * text->position(), normal));
        text->setThickness(-text->thickness()); // it rises to the same side as before
    } else if (auto* const lines = OdDbMText::cast(&entity)) {
        const OdGeVector3d normal = unit(lines->normal(), OdGeVector3d::kZAxis);
        if (liesFlat(normal)) lines->transformBy(mirrorIn(lines->location(), normal));
    } else if (auto* const reference = OdDbBlockReference::cast(&entity)) {
        const OdSmartPtr<OdDbObjectIterator> walk = attributesOf(*reference);
        for (walk->start(); !walk->done(); walk->step()) turnTextOver(*walk->entity());
    }
}

OdGeVector3d arrayShift(const OdDbBlockReference& reference, int column, int row) {
    return OdGeMatrix3d::planeToWorld(reference.normal()) *
           (OdGeMatrix3d::rotationZ(reference.rotation()) *
            OdGeVector3d(column * reference.columnSpacing(), row * reference.rowSpacing(), 0));
}

namespace {

/// Stretches the distances of an array by a transform of its reference, which stands at its new place.
void stretchArray(OdDbBlockReference& reference, const OdGeVector3d& column, const OdGeVector3d& row,
                  const OdGeMatrix3d& matrix) {
    const OdGeMatrix3d now =
        OdGeMatrix3d::planeToWorld(reference.normal()) * OdGeMatrix3d::rotationZ(reference.rotation());
    ObjectAccess::stretchArray(reference, (matrix * column).dotProduct(now * OdGeVector3d::kXAxis),
                               (matrix * row).dotProduct(now * OdGeVector3d::kYAxis));
}

} // namespace

void placeReference(OdDbBlockReference& reference, const OdGeMatrix3d& place,
                    const OdGeMatrix3d& attributes) {
    const OdGeMatrix3d axes =
        OdGeMatrix3d::planeToWorld(reference.normal()) * OdGeMatrix3d::rotationZ(reference.rotation());
    OdGePoint3d origin;
    if (const auto* block = OdDbBlockTableRecord::cast(reference.blockTableRecord().openObject().get()))
        origin = block->origin();
    const OdGeVector3d x = place * OdGeVector3d::kXAxis, y = place * OdGeVector3d::kYAxis,
                       z = place * OdGeVector3d::kZAxis;
    OdGeVector3d normal = unit(x.crossProduct(y), unit(z, OdGeVector3d::kZAxis));
    if (normal.dotProduct(z) < 0) normal = -normal;
    const OdGeMatrix3d toPlane = transposed(OdGeMatrix3d::planeToWorld(normal));
    const OdGeVector3d flat = toPlane * x;
    reference.setNormal(normal);
    reference.setRotation(std::atan2(flat.y, flat.x));
    const bool mirrored = normal.dotProduct(x.crossProduct(y)) < 0;
    reference.setScaleFactors({x.length(), mirrored ? -y.length() : y.length(), z.length()});
    reference.setPosition(toPlane * (place * origin));
    stretchArray(reference, axes * OdGeVector3d::kXAxis, axes * OdGeVector3d::kYAxis, attributes);
    const OdSmartPtr<OdDbObjectIterator> walk = attributesOf(reference);
    for (walk->start(); !walk->done(); walk->step()) {
        const OdSmartPtr<OdDbEntity> attribute = walk->entity();
        if (attribute->transformBy(attributes) == eOk) continue;
        if (auto* text = OdDbText::cast(attribute.get())) stretchWithLines(*text, attributes);
    }
}

void addPieces(OdSmartPtr<OdDbEntity> entity, const OdDbDatabase* database, const OdGeMatrix3d& matrix,
               OdArray<OdSmartPtr<OdDbEntity>>& pieces) {
    if (entity->transformBy(matrix) == eOk) {
        pieces.append(entity);
    } else if (const auto* circle = OdDbCircle::cast(entity.get())) {
        pieces.append(arcOf(*circle, matrix * OdGeMatrix3d::planeToWorld(circle->normal()), circle->center(),
                            circle->radius(), 0, 2 * pi));
    } else if (const auto* arc = OdDbArc::cast(entity.get())) {
        const double end = arc->endAngle() > arc->startAngle() ? arc->endAngle() : arc->endAngle() + 2 * pi;
        pieces.append(arcOf(*arc, matrix * OdGeMatrix3d::planeToWorld(arc->normal()), arc->center(),
                            arc->radius(), arc->startAngle(), end));
    } else if (const auto* ellipse = OdDbEllipse::cast(entity.get())) {
        const OdGeVector3d major = ellipse->majorAxis();
        const OdGeVector3d minor = ellipse->normal().crossProduct(major) * ellipse->radiusRatio();
        pieces.append(ellipseOf(*ellipse, matrix * ellipse->center(), matrix * major, matrix * minor,
                                ellipse->startParam(), ellipse->endParam()));
    } else if (auto* polyline = OdDbPolyline::cast(entity.get())) {
        addPolyline(OdSmartPtr<OdDbPolyline>(polyline), matrix, pieces);
    } else if (auto* reference = OdDbBlockReference::cast(entity.get())) {
        placeReference(*reference, matrix * reference->blockTransform(), matrix);
        pieces.append(entity);
    } else if (const OdSmartPtr<OdDbBlockReference> picture = pictureOf(*entity.get(), database);
               !picture.isNull()) {
        placeReference(*picture.get(), matrix, matrix);
        pieces.append(picture);
    } else {
        if (auto* text = OdDbText::cast(entity.get())) stretchWithLines(*text, matrix);
        if (auto* text = OdDbMText::cast(entity.get())) stretchMText(*text, matrix);
        pieces.append(entity);
    }
}

} // namespace lm::drawing
