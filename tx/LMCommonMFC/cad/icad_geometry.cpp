// SPDX-License-Identifier: MIT
// Where entities are, how large they are, and what angles points make. The boxes are the library's own: plain
// x and y, for the classes that occur in a schematic.
#include "arguments.h"
#include "cad/icad_detail.h"

#include "drawing/curves.h"
#include "host/database.h"
#include "system/path.h"

#include <algorithm>
#include <filesystem>
#include <map>
#include <numbers>
#include <optional>
#include <vector>

namespace {

constexpr double kTurn = 2 * std::numbers::pi;
constexpr double kDegreesPerRadian = 180 / std::numbers::pi;

struct Box {
    double xMax = 0, xMin = 0, yMax = 0, yMin = 0;

    void widen(const Box& other) {
        xMax = std::max(xMax, other.xMax);
        xMin = std::min(xMin, other.xMin);
        yMax = std::max(yMax, other.yMax);
        yMin = std::min(yMin, other.yMin);
    }
};

using MaybeBox = std::optional<Box>;

/// Widens a box, or makes it of the first one that comes.
void add(MaybeBox& all, const MaybeBox& one) {
    if (!all)
        all = one;
    else if (one)
        all->widen(*one);
}

MaybeBox around(const OdGePoint3d& center, double radius) {
    return Box{center.x + radius, center.x - radius, center.y + radius, center.y - radius};
}

void add(MaybeBox& all, const OdGePoint3d& point) {
    add(all, around(point, 0));
}

/// From the coordinates that an object keeps its points in to those of the drawing, in which views and
/// selections work. They are the same unless the object is mirrored or leans.
class ToDrawing {
public:
    explicit ToDrawing(const OdGeVector3d& normal)
        : m_isSame(normal.x == 0 && normal.y == 0 && normal.z > 0),
          m_matrix(m_isSame ? OdGeMatrix3d() : OdGeMatrix3d::planeToWorld(normal)) {}
    /// Where they are the same, points stay bit by bit as they are.
    OdGePoint3d operator()(const OdGePoint3d& point) const { return m_isSame ? point : m_matrix * point; }

private:
    bool m_isSame;
    OdGeMatrix3d m_matrix;
};

MaybeBox boxOfPolyline(const OdDbPolyline& line) {
    const ToDrawing toDrawing(line.normal());
    MaybeBox box;
    for (unsigned int i = 0; i < line.numVerts(); ++i) add(box, toDrawing(line.getPointAt(i)));
    return box;
}

MaybeBox boxOfLine(const OdDbLine& line) {
    MaybeBox box = around(line.startPoint(), 0);
    add(box, line.endPoint());
    return box;
}

MaybeBox boxOfText(const OdDbText& text) {
    OdArray<OdGePoint3d> corners;
    text.getBoundingPoints(corners);
    const ToDrawing toDrawing(text.normal());
    MaybeBox box;
    for (const OdGePoint3d& corner : corners) add(box, toDrawing(corner));
    return box;
}

/// The box of an entity that is no reference.
MaybeBox boxOfShape(const OdDbEntity& entity, bool withTexts) {
    if (const auto* const polyline = OdDbPolyline::cast(&entity)) return boxOfPolyline(*polyline);
    if (const auto* const line = OdDbLine::cast(&entity)) return boxOfLine(*line);
    if (const auto* const circle = OdDbCircle::cast(&entity))
        return around(ToDrawing(circle->normal())(circle->center()), circle->radius());
    if (const auto* const ellipse = OdDbEllipse::cast(&entity))
        return around(ellipse->center(), ellipse->majorAxis().length());
    if (const auto* const text = OdDbText::cast(&entity); text != nullptr && withTexts)
        return boxOfText(*text);
    return {};
}

/// The part of a walk, opened for reading where the owner stands in a database; null when it can't be opened.
OdSmartPtr<OdDbEntity> partAt(const OdDbObjectIterator& walk, bool isResident) {
    if (!isResident) return walk.entity();
    return OdSmartPtr<OdDbEntity>(OdDbEntity::cast(walk.objectId().openObject().get()));
}

/// Finds boxes; those of blocks are found once. Blocks inside blocks wait on a list of their own, so that no
/// drawing nests them too deep, and one that stands inside itself has no box there.
class BoxFinder {
public:
    /// The box of a block's entities; none for null.
    MaybeBox ofBlock(const OdSmartPtr<OdDbBlockTableRecord>& block);
    /// As CICad::getBoundingBox: `box` comes with the caller's values.
    bool ofEntity(const OdDbEntity& entity, Box& box, bool isFull);

private:
    struct Frame {
        OdSmartPtr<OdDbBlockTableRecord> block;
        OdSmartPtr<OdDbObjectIterator> walk;
        MaybeBox box;
    };

    void enter(const OdSmartPtr<OdDbBlockTableRecord>& block);
    bool enterBlockOf(const OdDbEntity& entity);
    bool ofReference(const OdDbBlockReference& ref, Box& box, bool isFull);

    std::vector<Frame> m_frames;
    std::map<const OdDbBlockTableRecord*, MaybeBox> m_known; // without a box while the block is walked over
};

void BoxFinder::enter(const OdSmartPtr<OdDbBlockTableRecord>& block) {
    m_known.emplace(block.get(), MaybeBox());
    m_frames.push_back({block, block->newIterator(), {}});
    m_frames.back().walk->start(true, true);
}

/// Goes into the block of a reference unless its box is known.
bool BoxFinder::enterBlockOf(const OdDbEntity& entity) {
    const auto* const ref = OdDbBlockReference::cast(&entity);
    if (ref == nullptr) return false;
    const OdSmartPtr<OdDbBlockTableRecord> block(ref->blockTableRecord().openObject());
    if (block.isNull() || m_known.count(block.get()) != 0) return false;
    enter(block);
    return true;
}

MaybeBox BoxFinder::ofBlock(const OdSmartPtr<OdDbBlockTableRecord>& block) {
    if (block.isNull()) return {};
    if (const auto known = m_known.find(block.get()); known != m_known.end()) return known->second;
    const std::size_t depth = m_frames.size();
    enter(block);
    while (m_frames.size() > depth) {
        Frame& frame = m_frames.back();
        if (frame.walk->done()) {
            m_known[frame.block.get()] = frame.box;
            m_frames.pop_back();
            continue;
        }
        const OdSmartPtr<OdDbEntity> entity = partAt(*frame.walk, true);
        // A reference is met again when its block is known; the frame may have moved meanwhile.
        if (!entity.isNull() && enterBlockOf(*entity)) continue;
        if (Box one; !entity.isNull() && ofEntity(*entity, one, false)) add(frame.box, one);
        frame.walk->step(true, true);
    }
    return m_known[block.get()];
}

bool BoxFinder::ofEntity(const OdDbEntity& entity, Box& box, bool isFull) {
    if (const auto* const ref = OdDbBlockReference::cast(&entity)) return ofReference(*ref, box, isFull);
    const MaybeBox shape = boxOfShape(entity, isFull);
    if (shape) box = *shape;
    return shape.has_value();
}

bool BoxFinder::ofReference(const OdDbBlockReference& ref, Box& box, bool isFull) {
    const OdSmartPtr<OdDbBlockTableRecord> block(ref.blockTableRecord().openObject());
    const MaybeBox local = ofBlock(block);
    if (local) {
        // The values that came in take part, and a mirrored box isn't turned right: callers know it so.
        const OdGeScale3d scale = ref.scaleFactors();
        box.widen(
            {scale.sx * local->xMax, scale.sx * local->xMin, scale.sy * local->yMax, scale.sy * local->yMin});
    }
    // A mirrored reference is moved to where it stands, as one that is turned, and nothing more.
    const OdGePoint3d position = ToDrawing(ref.normal())(ref.position());
    box = {box.xMax + position.x, box.xMin + position.x, box.yMax + position.y, box.yMin + position.y};
    bool found = local.has_value();
    if (!isFull) return found;
    const OdSmartPtr<OdDbObjectIterator> walk = ref.attributeIterator();
    if (walk.isNull()) return found;
    for (walk->start(true, true); !walk->done(); walk->step(true, true)) {
        const OdSmartPtr<OdDbEntity> attribute = partAt(*walk, ref.isDBRO());
        Box one;
        if (attribute.isNull() || !ofEntity(*attribute, one, true)) continue;
        if (found)
            box.widen(one);
        else
            box = one;
        found = true;
    }
    return found;
}

OdSmartPtr<OdDbPoint> newPoint() {
    OdSmartPtr<OdRxObject> object(OdDbPoint::desc()->create(), lm::drawing::kAttach);
    // Users know this text from their logs; the missing blank belongs to it.
    if (object.isNull()) throw OdError(OdString("OdDbOdDbPointis not loaded"));
    return OdSmartPtr<OdDbPoint>(object);
}

} // namespace

bool CICad::getBoundingBox(OdSmartPtr<OdDbEntity> entidade, double& xMax, double& xMin, double& yMax,
                           double& yMin, bool completo) {
    if (entidade.isNull()) return false;
    Box box{xMax, xMin, yMax, yMin};
    const bool found = BoxFinder().ofEntity(*entidade, box, completo);
    xMax = box.xMax;
    xMin = box.xMin;
    yMax = box.yMax;
    yMin = box.yMin;
    return found;
}

bool CICad::getBoundingBoxBTR(OdSmartPtr<OdDbBlockTableRecord> btr, double& xMax, double& xMin, double& yMax,
                              double& yMin, bool) {
    const MaybeBox box = BoxFinder().ofBlock(btr);
    if (!box) return false;
    xMax = box->xMax;
    xMin = box->xMin;
    yMax = box->yMax;
    yMin = box->yMin;
    return true;
}

double CICad::getAngulo(enTipoAngulo tipo, OdGeVector3d v1, OdGeVector3d v2) {
    double angle = v1.angleTo(v2);
    while (angle < 0) angle += kTurn;
    while (angle > kTurn) angle -= kTurn;
    return tipo == kGraus ? angle * kDegreesPerRadian : angle;
}

double CICad::getAngulo(enTipoAngulo tipo, OdGePoint3d p1, OdGePoint3d p2, OdGePoint3d p3, OdGePoint3d p4) {
    return getAngulo(tipo, p2 - p1, p4 - p3);
}

double CICad::getAngulo(enTipoAngulo tipo, OdGePoint3d p1, OdGePoint3d p2) {
    return getAngulo(tipo, OdGeVector3d::kXAxis, p2 - p1);
}

int CICad::CriarPonto(RZString layer) {
    const OdSmartPtr<OdDbBlockTableRecord> space = lm::cad::openModelSpace(OdDb::kForWrite);
    if (space.isNull()) return 0;
    const OdSmartPtr<OdDbPoint> point = newPoint();
    space->appendOdDbEntity(point);
    // Behind the appending: a layer goes by its name only in a drawing.
    point->setLayer(layer);
    return 0;
}

void CICad::erase(RZID id) {
    const OdSmartPtr<OdDbObject> object = id.openObject();
    if (object.isNull() || object->isErased()) return;
    object->upgradeOpen();
    object->erase(true);
}

bool CICad::FileExists(RZString caminho) {
    std::error_code ignored;
    return std::filesystem::exists(lm::system::nativePath(caminho.view()), ignored);
}
