// SPDX-License-Identifier: MIT
#include "model/extents.h"

#include "model/databasedata.h"
#include "model/iterators.h"
#include "model/pictures.h"
#include "model/rawextents.h"
#include "model/stretch.h"

#include "drawing/curves.h"

#include <bit>
#include <numbers>

namespace lm::drawing {

namespace {

using std::numbers::pi;
constexpr double kFull = 2 * pi;

OdGePoint3d onEllipse(const OdGePoint3d& center, const OdGeVector3d& a, const OdGeVector3d& b, double t) {
    return center + a * std::cos(t) + b * std::sin(t);
}

} // namespace

void addCurve(const OdGePoint3d& center, const OdGeVector3d& a, const OdGeVector3d& b, double start,
              double sweep, OdGeExtents3d& extents) {
    if (!(sweep > 0) || sweep > kFull) sweep = kFull;
    extents.addPoint(onEllipse(center, a, b, start));
    extents.addPoint(onEllipse(center, a, b, start + sweep));
    const double turns[] = {std::atan2(b.x, a.x), std::atan2(b.y, a.y), std::atan2(b.z, a.z)};
    for (const double turn : turns)
        for (const double t : {turn, turn + pi}) {
            double behind = std::fmod(t - start, kFull);
            if (behind < 0) behind += kFull;
            if (behind <= sweep) extents.addPoint(onEllipse(center, a, b, t));
        }
}

double sweepOf(double from, double to) {
    const double sweep = std::fmod(to - from, kFull);
    return sweep > 0 ? sweep : sweep + kFull;
}

void addSegment(const OdGeMatrix3d& plane, const OdGePoint3d& p, const OdGePoint3d& q, double bulge,
                OdGeExtents3d& extents) {
    extents.addPoint(plane * p);
    extents.addPoint(plane * q);
    if (bulge == 0 || p == q) return;
    // A bulge is the tangent of a quarter of the arc's angle, positive counter-clockwise.
    const double away = (1 - bulge * bulge) / (4 * bulge);
    const OdGePoint3d center((p.x + q.x) / 2 - away * (q.y - p.y), (p.y + q.y) / 2 + away * (q.x - p.x), p.z);
    const double radius = std::hypot(p.x - center.x, p.y - center.y);
    const OdGePoint3d& first = bulge > 0 ? p : q;
    addCurve(plane * center, plane * OdGeVector3d(radius, 0, 0), plane * OdGeVector3d(0, radius, 0),
             std::atan2(first.y - center.y, first.x - center.x), 4 * std::atan(std::fabs(bulge)), extents);
}

namespace {

bool addPolyline(const OdDbPolyline& polyline, const OdGeMatrix3d& matrix, OdGeExtents3d& extents) {
    const unsigned count = polyline.numVerts();
    if (count == 0) return false;
    const OdGeMatrix3d plane = matrix * OdGeMatrix3d::planeToWorld(polyline.normal());
    extents.addPoint(plane * polyline.getPointAt(0));
    const unsigned segments = polyline.isClosed() ? count : count - 1;
    for (unsigned i = 0; i < segments; ++i)
        addSegment(plane, polyline.getPointAt(i), polyline.getPointAt((i + 1) % count),
                   polyline.getBulgeAt(i), extents);
    return true;
}

bool addText(const OdDbText& text, const OdGeMatrix3d& matrix, OdGeExtents3d& extents) {
    const OdGeMatrix3d plane = matrix * OdGeMatrix3d::planeToWorld(text.normal());
    OdArray<OdGePoint3d> corners;
    text.getBoundingPoints(corners);
    for (const OdGePoint3d& corner : corners) extents.addPoint(plane * corner);
    return true;
}

/// Units of the longest line, and how many lines there are.
void measure(WideView text, std::size_t& longest, std::size_t& lines) {
    longest = 0;
    lines = 1;
    std::size_t length = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const bool codeOfEnd = text[i] == '\\' && i + 1 < text.size() && text[i + 1] == 'P';
        if (!codeOfEnd && text[i] != '\n') {
            longest = std::max(longest, ++length);
            continue;
        }
        if (codeOfEnd) ++i;
        length = 0;
        ++lines;
    }
}

bool addMText(const OdDbMText& text, const OdGeMatrix3d& matrix, OdGeExtents3d& extents) {
    constexpr double kUnitWidth = 0.6, kLineStep = 5.0 / 3;
    std::size_t longest = 0, lines = 0;
    const OdString contents = text.contents();
    measure(contents.view(), longest, lines);
    const double width =
        text.width() > 0 ? text.width() : kUnitWidth * text.textHeight() * static_cast<double>(longest);
    const double height = text.textHeight() * (1 + kLineStep * static_cast<double>(lines - 1));
    OdGeVector3d along = text.direction();
    if (along == OdGeVector3d::kXAxis && text.rotation() != 0)
        along = OdGeMatrix3d::planeToWorld(text.normal()) *
                OdGeVector3d(std::cos(text.rotation()), std::sin(text.rotation()), 0);
    if (const double length = along.length(); length > 0) along = along * (1 / length);
    OdGeVector3d up = text.normal().crossProduct(along);
    if (const double length = up.length(); length > 0) up = up * (1 / length);
    const int place = text.attachment() >= 1 && text.attachment() <= 9 ? text.attachment() - 1 : 0;
    const OdGePoint3d corner =
        text.location() - along * (width * (place % 3) / 2) - up * (height * (2 - place / 3) / 2);
    for (const double x : {0.0, width})
        for (const double y : {0.0, height}) extents.addPoint(matrix * (corner + along * x + up * y));
    return true;
}

/// What an attribute or a definition shows: its multi-line form where it has one.
bool addTextOrLines(const OdDbText& text, const OdGeMatrix3d& matrix, OdGeExtents3d& extents) {
    OdSmartPtr<OdDbMText> lines;
    if (const auto* attribute = OdDbAttribute::cast(&text)) lines = attribute->getMTextAttribute();
    if (const auto* definition = OdDbAttributeDefinition::cast(&text))
        lines = definition->getMTextAttributeDefinition();
    return lines.isNull() ? addText(text, matrix, extents) : addMText(*lines.get(), matrix, extents);
}

/// Adds the box of an entity under a transform, for all classes but references, and for unread ones as far as
/// they don't show a block.
bool addShape(const OdDbEntity& entity, const OdGeMatrix3d& matrix, OdGeExtents3d& extents) {
    if (const auto* line = OdDbLine::cast(&entity)) {
        extents.addPoint(matrix * line->startPoint());
        extents.addPoint(matrix * line->endPoint());
        return true;
    }
    if (const auto* polyline = OdDbPolyline::cast(&entity)) return addPolyline(*polyline, matrix, extents);
    if (const auto* text = OdDbText::cast(&entity)) return addTextOrLines(*text, matrix, extents);
    if (const auto* text = OdDbMText::cast(&entity)) return addMText(*text, matrix, extents);
    if (const auto* point = OdDbPoint::cast(&entity)) {
        extents.addPoint(matrix * point->position());
        return true;
    }
    if (const auto* circle = OdDbCircle::cast(&entity)) {
        const OdGeMatrix3d plane = matrix * OdGeMatrix3d::planeToWorld(circle->normal());
        addCurve(plane * circle->center(), plane * OdGeVector3d(circle->radius(), 0, 0),
                 plane * OdGeVector3d(0, circle->radius(), 0), 0, kFull, extents);
        return true;
    }
    if (const auto* arc = OdDbArc::cast(&entity)) {
        const OdGeMatrix3d plane = matrix * OdGeMatrix3d::planeToWorld(arc->normal());
        addCurve(plane * arc->center(), plane * OdGeVector3d(arc->radius(), 0, 0),
                 plane * OdGeVector3d(0, arc->radius(), 0), arc->startAngle(),
                 sweepOf(arc->startAngle(), arc->endAngle()), extents);
        return true;
    }
    if (const auto* ellipse = OdDbEllipse::cast(&entity)) {
        const OdGeVector3d major = ellipse->majorAxis();
        const OdGeVector3d minor = ellipse->normal().crossProduct(major) * ellipse->radiusRatio();
        addCurve(matrix * ellipse->center(), matrix * major, matrix * minor, ellipse->startParam(),
                 sweepOf(ellipse->startParam(), ellipse->endParam()), extents);
        return true;
    }
    const auto* unread = OdDbUnreadEntity::cast(&entity);
    return unread != nullptr && addRawShape(*unread, matrix, extents);
}

/// Whether a text has lines that are an object of their own.
bool hasLines(const OdDbEntity& entity) {
    if (const auto* attribute = OdDbAttribute::cast(&entity)) return !attribute->getMTextAttribute().isNull();
    const auto* definition = OdDbAttributeDefinition::cast(&entity);
    return definition != nullptr && !definition->getMTextAttributeDefinition().isNull();
}

/// Whether an entity of a block shows in its references. Definitions don't, but constant ones that are
/// visible.
bool showsInReferences(const OdDbEntity& entity) {
    const auto* definition = OdDbAttributeDefinition::cast(&entity);
    return definition == nullptr || (definition->isConstant() && !definition->isInvisible());
}

OdGeMatrix3d linearPart(OdGeMatrix3d matrix) {
    for (int row = 0; row < 3; ++row) matrix.entry[row][3] = 0;
    return matrix;
}

OdGeVector3d shiftOf(const OdGeMatrix3d& matrix) {
    return {matrix.entry[0][3], matrix.entry[1][3], matrix.entry[2][3]};
}

void addCorners(const OdGeExtents3d& box, const OdGeMatrix3d& matrix, OdGeExtents3d& extents) {
    if (box.isEmpty()) return;
    const OdGePoint3d low = box.minPoint(), high = box.maxPoint();
    for (const double x : {low.x, high.x})
        for (const double y : {low.y, high.y})
            for (const double z : {low.z, high.z}) extents.addPoint(matrix * OdGePoint3d(x, y, z));
}

/// True when one of them has lines of its own.
bool addAttributes(const OdDbBlockReference& reference, const OdGeMatrix3d& matrix, OdGeExtents3d& extents) {
    const OdSmartPtr<OdDbObjectIterator> walk = attributesOf(reference);
    bool anyLines = false;
    for (walk->start(); !walk->done(); walk->step()) {
        const OdSmartPtr<OdDbEntity> attribute = walk->entity();
        addShape(*attribute, matrix, extents);
        anyLines = anyLines || hasLines(*attribute);
    }
    return anyLines;
}

/// The live block that an entity shows, with its transform: that of a reference, the picture of a dimension
/// or of a table. Null for an entity that shows none.
Node* blockOf(const OdDbEntity& entity, OdGeMatrix3d& own) {
    if (const auto* unread = OdDbUnreadEntity::cast(&entity)) return shownBlockOf(*unread, own);
    const auto* reference = OdDbBlockReference::cast(&entity);
    const OdDbObjectId id = reference != nullptr ? reference->blockTableRecord() : OdDbObjectId::kNull;
    if (!id.isValid() || !id.node()->isLive()) return nullptr;
    own = reference->blockTransform();
    return id.node();
}

/// Adds a box in all places of an array. Those at its corners have all the others between them.
void addCopies(const OdDbEntity& entity, const OdGeMatrix3d& matrix, const OdGeExtents3d& box,
               OdGeExtents3d& extents) {
    const auto* reference = OdDbBlockReference::cast(&entity);
    if (reference == nullptr) return extents.addExtents(box);
    for (const int column : {0, reference->columns() - 1})
        for (const int row : {0, reference->rows() - 1}) {
            if (box.isEmpty()) return;
            const OdGeVector3d by = matrix * arrayShift(*reference, column, row);
            extents.addPoint(box.minPoint() + by);
            extents.addPoint(box.maxPoint() + by);
        }
}

/// Boxes of one block under so many linear parts are kept; inner references beyond get the box of the block's
/// box. Blocks that hold each other turned again and again would have boxes without number.
constexpr std::size_t kMostKnown = 4096;

} // namespace

std::size_t ExtentsFinder::Hash::operator()(const Key& key) const noexcept {
    std::size_t hash = std::hash<const void*>{}(key.block);
    for (const std::uint64_t part : key.linear) hash = (hash ^ part ^ part >> 32) * 1099511628211u;
    return hash;
}

ExtentsFinder::Key ExtentsFinder::keyOf(Node& block, const OdGeMatrix3d& matrix) {
    Key key{&block, {}};
    for (std::size_t i = 0; i < 9; ++i) {
        const double value = matrix.entry[i / 3][i % 3];
        key.linear[i] = std::bit_cast<std::uint64_t>(value == 0 ? 0.0 : value); // both zeros are one number
    }
    return key;
}

void ExtentsFinder::addMoved(const OdGeExtents3d& box, const OdGeVector3d& by, OdGeExtents3d& extents) {
    if (box.isEmpty()) return;
    extents.addPoint(box.minPoint() + by);
    extents.addPoint(box.maxPoint() + by);
}

bool ExtentsFinder::isSpent() const noexcept {
    return m_isCut || m_known.size() >= kMostKnown;
}

/// Tells which block an entity shows or would show. False when that block belongs to another drawing.
bool ExtentsFinder::noteSource(const OdDbEntity& entity, const Node* in) const {
    if (m_sources == nullptr) return true;
    if (const auto* reference = OdDbBlockReference::cast(&entity)) {
        const Node* const block = reference->blockTableRecord().node();
        if (block == nullptr || block->database() == nullptr) return true;
        m_sources->push_back({in, block});
        return block->database() == entity.database();
    }
    const RawPointer raw = OdDbUnreadEntity::cast(&entity) != nullptr ? rawGroupsOf(entity) : RawPointer();
    if (!raw || !showsPicture(raw->kind())) return true;
    m_sources->push_back({in, nullptr});
    if (entity.database() == nullptr) return true;
    if (const Node* const block = pictureBlock(*raw.get(), entity.database()->data()))
        m_sources->push_back({in, block});
    return true;
}

bool ExtentsFinder::isOnItsWay(const Node& block) const {
    const auto found = m_onTheirWay.find(&block);
    return found != m_onTheirWay.end() && found->second != 0;
}

/// Adds what shows a block to its frame. False when the block's box must be found first, by `inner`.
bool ExtentsFinder::stepInto(const OdDbEntity& entity, Node* block, const OdGeMatrix3d& own, Frame& frame,
                             Frame& inner) {
    const bool isInside = block != nullptr && isOnItsWay(*block);
    m_isCut = m_isCut || isInside;
    if (block != nullptr && !isInside) { // a block inside itself counts once
        const OdGeMatrix3d place = frame.matrix * own;
        const bool exact = m_known.size() < kMostKnown;
        const OdGeMatrix3d linear = exact ? linearPart(place) : OdGeMatrix3d();
        const auto known = m_known.find(keyOf(*block, linearPart(place)));
        OdGeExtents3d shown;
        if (known != m_known.end()) {
            addMoved(known->second.box, shiftOf(place), shown);
            frame.hangsOnMore = frame.hangsOnMore || known->second.hangsOnMore;
        } else {
            const Key key = keyOf(*block, linear);
            const auto box = m_known.find(key);
            if (box == m_known.end()) {
                inner = {key, linear, block->firstPart, {}, false};
                return false;
            }
            addCorners(box->second.box, place, shown);
            frame.hangsOnMore = frame.hangsOnMore || box->second.hangsOnMore;
        }
        addCopies(entity, frame.matrix, shown, frame.box);
    }
    if (const auto* reference = OdDbBlockReference::cast(&entity))
        if (addAttributes(*reference, frame.matrix, frame.box)) frame.hangsOnMore = true;
    return true;
}

ExtentsFinder::Known ExtentsFinder::boxOf(Node& block, const OdGeMatrix3d& matrix) {
    const Key wanted = keyOf(block, matrix);
    const auto known = m_known.find(wanted);
    if (known != m_known.end()) return known->second;
    DatabaseData& data = block.database()->data();
    Known box{};
    // A stack of our own: blocks may be nested deeper than that of the process.
    m_frames.push_back({wanted, matrix, block.firstPart, {}, false});
    m_onTheirWay[&block] = 1;
    while (!m_frames.empty()) {
        Frame& frame = m_frames.back();
        if (frame.next == nullptr) {
            box = {frame.box, frame.hangsOnMore};
            m_onTheirWay[frame.key.block] = 0;
            m_known[frame.key] = box;
            m_frames.pop_back();
            continue;
        }
        const auto* const entity =
            frame.next->isErased() ? nullptr : OdDbEntity::cast(data.bodyOf(frame.next));
        OdGeMatrix3d own;
        Node* const shown = entity != nullptr ? blockOf(*entity, own) : nullptr;
        if (shown != nullptr || OdDbBlockReference::cast(entity) != nullptr) {
            Frame inner{};
            if (!stepInto(*entity, shown, own, frame, inner)) {
                m_onTheirWay[inner.key.block] = 1;
                m_frames.push_back(inner); // the entity has its turn again behind it
                continue;
            }
        } else if (entity != nullptr && showsInReferences(*entity)) {
            addShape(*entity, frame.matrix, frame.box);
            frame.hangsOnMore = frame.hangsOnMore || hasLines(*entity);
        }
        if (entity != nullptr && !noteSource(*entity, frame.key.block)) frame.hangsOnMore = true;
        frame.next = frame.next->next;
    }
    return box;
}

bool ExtentsFinder::add(const OdDbEntity& entity, OdGeExtents3d& extents) {
    const auto* reference = OdDbBlockReference::cast(&entity);
    OdGeMatrix3d own;
    Node* const block = blockOf(entity, own);
    m_hangsOnMore = !noteSource(entity, nullptr) || hasLines(entity);
    if (block == nullptr && reference == nullptr) return addShape(entity, OdGeMatrix3d(), extents);
    OdGeExtents3d box;
    if (block != nullptr) {
        OdGeExtents3d shown;
        const Known known = boxOf(*block, linearPart(own));
        addMoved(known.box, shiftOf(own), shown);
        m_hangsOnMore = m_hangsOnMore || known.hangsOnMore;
        addCopies(entity, OdGeMatrix3d(), shown, box);
    }
    if (reference != nullptr && addAttributes(*reference, OdGeMatrix3d(), box)) m_hangsOnMore = true;
    extents.addExtents(box);
    return !box.isEmpty();
}

namespace {

OdResult extentsOf(const OdDbEntity& entity, OdGeExtents3d& extents) {
    return ExtentsFinder().add(entity, extents) ? eOk : eNotApplicable;
}

} // namespace

} // namespace lm::drawing

using lm::drawing::extentsOf;

OdResult OdDbPoint::getGeomExtents(OdGeExtents3d& extents) const {
    return extentsOf(*this, extents);
}
OdResult OdDbLine::getGeomExtents(OdGeExtents3d& extents) const {
    return extentsOf(*this, extents);
}
OdResult OdDbCircle::getGeomExtents(OdGeExtents3d& extents) const {
    return extentsOf(*this, extents);
}
OdResult OdDbArc::getGeomExtents(OdGeExtents3d& extents) const {
    return extentsOf(*this, extents);
}
OdResult OdDbEllipse::getGeomExtents(OdGeExtents3d& extents) const {
    return extentsOf(*this, extents);
}
OdResult OdDbPolyline::getGeomExtents(OdGeExtents3d& extents) const {
    return extentsOf(*this, extents);
}
OdResult OdDbUnreadEntity::getGeomExtents(OdGeExtents3d& extents) const {
    return extentsOf(*this, extents);
}
OdResult OdDbText::getGeomExtents(OdGeExtents3d& extents) const {
    return extentsOf(*this, extents);
}
OdResult OdDbMText::getGeomExtents(OdGeExtents3d& extents) const {
    return extentsOf(*this, extents);
}
OdResult OdDbBlockReference::getGeomExtents(OdGeExtents3d& extents) const {
    return extentsOf(*this, extents);
}
