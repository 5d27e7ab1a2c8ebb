// SPDX-License-Identifier: MIT
#include "model/rawextents.h"

#include "model/databasedata.h"
#include "model/extents.h"
#include "model/pictures.h"
#include "model/rawnumbers.h"

#include <algorithm>
#include <numbers>
#include <span>

namespace lm::drawing {

RawNumbers::RawNumbers(const GroupSpan& span) {
    constexpr int kFirstXData = 1000;
    if (span.isEmpty()) return;
    const Values values(*span.form);
    forEachGroupIn(span, [&](const Group& group, const char*, const char*) {
        if (group.code >= kFirstXData) return false;
        const ValueType type = valueTypeOf(group.code);
        bool bad = false;
        if (type == ValueType::kReal)
            m_all.push_back({group.code, values.real(group, bad)});
        else if (type == ValueType::kInt16 || type == ValueType::kInt32)
            m_all.push_back({group.code, static_cast<double>(values.integer(group, bad))});
        return true;
    });
}

OdGePoint3d RawNumbers::point(std::size_t at) const {
    double parts[3] = {0, 0, 0};
    for (std::size_t i = 0; i < 3 && at + i < m_all.size(); ++i) {
        if (m_all[at + i].code != m_all[at].code + static_cast<int>(i) * 10) break;
        parts[i] = m_all[at + i].value;
    }
    return {parts[0], parts[1], parts[2]};
}

double RawNumbers::first(int code, double otherwise) const {
    for (const RawNumber& number : m_all)
        if (number.code == code) return number.value;
    return otherwise;
}

OdGePoint3d RawNumbers::firstPoint(int code, const OdGePoint3d& otherwise) const {
    for (std::size_t i = 0; i < m_all.size(); ++i)
        if (m_all[i].code == code) return point(i);
    return otherwise;
}

OdGeVector3d RawNumbers::firstVector(int code, const OdGeVector3d& otherwise) const {
    return firstPoint(code, {otherwise.x, otherwise.y, otherwise.z}).asVector();
}

namespace {

using std::numbers::pi;
using Codes = std::span<const short>;
constexpr double kDegree = pi / 180;

constexpr short k10[] = {10};
constexpr short k10to11[] = {10, 11};
constexpr short k10to13[] = {10, 11, 12, 13};
constexpr short kLeaderWithText[] = {10, 12, 15};
constexpr short kDimension[] = {10, 13, 14, 15};

/// Kinds whose box is that of points; `inPlane` ones lie in the system of the normal.
struct PointKind {
    const char* name;
    bool inPlane;
    Codes points;
};
constexpr PointKind kPointKinds[] = {
    {"SPLINE", false, k10to11}, {"HELIX", false, k10to11},  {"3DFACE", false, k10to13},
    {"LEADER", false, k10},     {"TOLERANCE", false, k10},  {"MLINE", false, k10to11},
    {"MESH", false, k10},       {"LIGHT", false, k10},      {"SOLID", true, k10to13},
    {"TRACE", true, k10to13},   {"SHAPE", true, k10},       {"ACAD_TABLE", false, k10},
    {"PDFUNDERLAY", true, k10}, {"DWFUNDERLAY", true, k10}, {"DGNUNDERLAY", true, k10}};

bool addPoints(const RawNumbers& numbers, Codes codes, const OdGeMatrix3d& matrix, OdGeExtents3d& extents) {
    bool any = false;
    for (std::size_t i = 0; i < numbers.size(); ++i) {
        if (std::find(codes.begin(), codes.end(), numbers.code(i)) == codes.end()) continue;
        extents.addPoint(matrix * numbers.point(i));
        any = true;
    }
    return any;
}

/// A leader with text or a block. Behind its context stands the scale of the block under the code of a point.
bool addLeader(const RawGroups& raw, const OdGeMatrix3d& matrix, OdGeExtents3d& extents) {
    constexpr int kEndOfContext = 301;
    GroupSpan context = raw.span();
    forEachGroupIn(raw.span(), [&](const Group& group, const char* begin, const char*) {
        if (group.code != kEndOfContext) return true;
        context.size = static_cast<std::size_t>(begin - context.begin);
        return false;
    });
    return addPoints(RawNumbers(context), kLeaderWithText, matrix, extents);
}

/// The corners of a picture: its size in pixels along the vectors of a pixel.
bool addImage(const RawNumbers& numbers, const OdGeMatrix3d& matrix, OdGeExtents3d& extents) {
    const OdGePoint3d corner = numbers.firstPoint(10, {});
    const OdGePoint3d size = numbers.firstPoint(13, {1, 1, 0});
    const OdGeVector3d along = numbers.firstVector(11, {1, 0, 0}) * size.x;
    const OdGeVector3d up = numbers.firstVector(12, {0, 1, 0}) * size.y;
    for (const double x : {0.0, 1.0})
        for (const double y : {0.0, 1.0}) extents.addPoint(matrix * (corner + along * x + up * y));
    return true;
}

bool addViewport(const RawNumbers& numbers, const OdGeMatrix3d& matrix, OdGeExtents3d& extents) {
    const OdGePoint3d center = numbers.firstPoint(10, {});
    const double width = numbers.first(40, 0), height = numbers.first(41, 0);
    for (const double x : {-0.5, 0.5})
        for (const double y : {-0.5, 0.5})
            extents.addPoint(matrix * (center + OdGeVector3d(x * width, y * height, 0)));
    return true;
}

// --- polylines with vertices of their own
// ---------------------------------------------------------------------------------------

struct Corner {
    OdGePoint3d point;
    double bulge;
};

/// The vertices that are drawn: not the faces of a net, nor the frame that controls a smoothed line.
std::vector<Corner> cornersOf(const OdDbUnreadEntity& polyline) {
    constexpr int kFrame = 16, kPosition = 64, kFace = 128;
    std::vector<Corner> corners;
    for (const OdDbEntity* part : ObjectAccess::partsOf(polyline)) {
        const RawPointer raw = rawGroupsOf(*part);
        if (!raw) continue;
        const RawNumbers numbers(raw->span());
        const int flags = static_cast<int>(numbers.first(70, 0));
        if ((flags & kFrame) != 0 || (flags & (kPosition | kFace)) == kFace) continue;
        corners.push_back({numbers.firstPoint(10, {}), numbers.first(42, 0)});
    }
    return corners;
}

bool addPolyline(const OdDbUnreadEntity& polyline, const RawNumbers& head, const OdGeMatrix3d& matrix,
                 OdGeExtents3d& extents) {
    constexpr int kClosed = 1, kInSpace = 8 | 16 | 64;
    const int flags = static_cast<int>(head.first(70, 0));
    const std::vector<Corner> corners = cornersOf(polyline);
    if (corners.empty()) return false;
    if ((flags & kInSpace) != 0) {
        for (const Corner& corner : corners) extents.addPoint(matrix * corner.point);
        return true;
    }
    const OdGeMatrix3d plane = matrix * OdGeMatrix3d::planeToWorld(head.normal());
    extents.addPoint(plane * corners.front().point);
    const std::size_t segments = (flags & kClosed) != 0 ? corners.size() : corners.size() - 1;
    for (std::size_t i = 0; i < segments; ++i)
        addSegment(plane, corners[i].point, corners[(i + 1) % corners.size()].point, corners[i].bulge,
                   extents);
    return true;
}

// --- hatches
// --------------------------------------------------------------------------------------------------------------------

class HatchBox {
public:
    HatchBox(const RawNumbers& numbers, const OdGeMatrix3d& matrix, OdGeExtents3d& extents)
        : m_numbers(numbers), m_plane(matrix * OdGeMatrix3d::planeToWorld(numbers.normal())),
          m_extents(extents) {
        m_elevation = numbers.firstPoint(10, {}).z;
    }

    bool add() {
        for (std::size_t i = 0; i < m_numbers.size();)
            if (m_numbers.code(i) == 92)
                addPath(i);
            else
                ++i;
        return m_any;
    }

private:
    OdGePoint3d flat(std::size_t at) const {
        const OdGePoint3d point = m_numbers.point(at);
        return {point.x, point.y, m_elevation};
    }
    void addPoint(std::size_t at) {
        m_extents.addPoint(m_plane * flat(at));
        m_any = true;
    }
    /// From the path's type (92) to the next path or to the style (75).
    void addPath(std::size_t& at) {
        constexpr int kPolyline = 2;
        const bool polyline = (static_cast<int>(m_numbers.value(at)) & kPolyline) != 0;
        std::size_t end = ++at;
        while (end < m_numbers.size() && m_numbers.code(end) != 92 && m_numbers.code(end) != 75) ++end;
        if (polyline) {
            addOutline(at, end);
        } else {
            for (std::size_t i = at; i < end; ++i)
                if (m_numbers.code(i) == 72) addEdge(i, end);
        }
        at = end;
    }
    void addOutline(std::size_t begin, std::size_t end) {
        std::vector<Corner> corners;
        for (std::size_t i = begin; i < end; ++i) {
            if (m_numbers.code(i) == 10) corners.push_back({flat(i), 0});
            if (m_numbers.code(i) == 42 && !corners.empty()) corners.back().bulge = m_numbers.value(i);
        }
        for (std::size_t i = 0; i < corners.size(); ++i)
            addSegment(m_plane, corners[i].point, corners[(i + 1) % corners.size()].point, corners[i].bulge,
                       m_extents);
        m_any = m_any || !corners.empty();
    }
    /// One edge, from its type (72) to the next one.
    void addEdge(std::size_t at, std::size_t end) {
        enum { kArc = 2, kEllipse = 3 };
        const int type = static_cast<int>(m_numbers.value(at));
        std::size_t last = at + 1;
        while (last < end && m_numbers.code(last) != 72) ++last;
        if (type == kArc || type == kEllipse) return addRound(at + 1, last, type == kArc);
        for (std::size_t i = at + 1; i < last; ++i)
            if (m_numbers.code(i) == 10 || m_numbers.code(i) == 11) addPoint(i);
    }
    /// An arc or an ellipse. One that runs clockwise has its angles mirrored.
    void addRound(std::size_t begin, std::size_t end, bool arc) {
        OdGePoint3d center;
        OdGeVector3d major(1, 0, 0);
        double size = 0, start = 0, stop = 2 * pi;
        bool clockwise = false;
        for (std::size_t i = begin; i < end; ++i) {
            const double value = m_numbers.value(i);
            switch (m_numbers.code(i)) {
            case 10:
                center = flat(i);
                break;
            case 11:
                major = m_numbers.point(i).asVector();
                break;
            case 40:
                size = value;
                break;
            case 50:
                start = value * kDegree;
                break;
            case 51:
                stop = value * kDegree;
                break;
            case 73:
                clockwise = value == 0;
                break;
            default:
                break;
            }
        }
        if (arc) major = {size, 0, 0};
        const OdGeVector3d minor = OdGeVector3d(-major.y, major.x, 0) * (arc ? 1 : size);
        const double from = clockwise ? -stop : start, to = clockwise ? -start : stop;
        addCurve(m_plane * center, m_plane * major, m_plane * minor, from, sweepOf(from, to), m_extents);
        m_any = true;
    }

    const RawNumbers& m_numbers;
    OdGeMatrix3d m_plane;
    OdGeExtents3d& m_extents;
    double m_elevation = 0;
    bool m_any = false;
};

} // namespace

bool addRawShape(const OdDbUnreadEntity& entity, const OdGeMatrix3d& matrix, OdGeExtents3d& extents) {
    const RawPointer raw = rawGroupsOf(entity);
    if (!raw) return false;
    const std::string& kind = raw->kind();
    const RawNumbers numbers(raw->span());
    if (kind == "POLYLINE") return addPolyline(entity, numbers, matrix, extents);
    if (kind == "HATCH") return HatchBox(numbers, matrix, extents).add();
    if (kind == "IMAGE" || kind == "WIPEOUT") return addImage(numbers, matrix, extents);
    if (kind == "VIEWPORT") return addViewport(numbers, matrix, extents);
    if (kind == "MULTILEADER") return addLeader(*raw.get(), matrix, extents);
    if (isDimension(kind)) return addPoints(numbers, kDimension, matrix, extents);
    for (const PointKind& row : kPointKinds)
        if (kind == row.name)
            return addPoints(numbers, row.points,
                             row.inPlane ? matrix * OdGeMatrix3d::planeToWorld(numbers.normal()) : matrix,
                             extents);
    return false;
}

Node* shownBlockOf(const OdDbUnreadEntity& entity, OdGeMatrix3d& own) {
    const Node* const node = entity.objectId().node();
    if (node == nullptr || node->database() == nullptr) return nullptr;
    DatabaseData& data = node->database()->data();
    const std::string_view kind = data.kinds.name(node->kind);
    if (!isDimension(kind) && kind != "ACAD_TABLE") return nullptr;
    const RawPointer raw = rawGroupsOf(entity);
    Node* const block = raw ? pictureBlock(*raw.get(), data) : nullptr;
    if (block == nullptr || block->firstPart == nullptr) return nullptr;
    own = OdGeMatrix3d();
    if (isDimension(kind)) return block; // the picture stands in the block where it is seen
    const RawNumbers numbers(raw->span());
    const OdGeVector3d along = numbers.firstVector(11, {1, 0, 0}), normal = numbers.normal();
    const OdGeVector3d up = normal.crossProduct(along);
    const OdGeVector3d axes[] = {along, up, normal};
    for (int i = 0; i < 3; ++i) {
        own.entry[0][i] = axes[i].x;
        own.entry[1][i] = axes[i].y;
        own.entry[2][i] = axes[i].z;
    }
    const auto& record = static_cast<OdDbBlockTableRecord&>(*data.bodyOf(block));
    own = OdGeMatrix3d::translation(numbers.firstPoint(10, {}).asVector()) * own *
          OdGeMatrix3d::translation(-record.origin().asVector());
    return block;
}

} // namespace lm::drawing
