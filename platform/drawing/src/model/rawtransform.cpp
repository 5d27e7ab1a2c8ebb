// SPDX-License-Identifier: MIT
#include "model/rawtransform.h"

#include "dxf/source.h"
#include "model/databasedata.h"
#include "model/pictures.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <span>

namespace lm::drawing {

using Codes = std::span<const short>;

/// What a transform must be for a kind to take it.
enum class Takes : unsigned char {
    kAll,
    kUniform, ///< lengths change by one factor in all directions
    kTurning, ///< the same, and nothing is turned over
    kUpright, ///< the same, and the z axis stays
    kStill,   ///< the same, and the x axis stays as well
    kSameSize ///< as upright, and lengths stay
};

/// What the groups of a kind are. The code of an x stands for y and z as well.
struct RawKind {
    const char* name;
    bool inPlane; ///< points lie in the system of the normal (210)
    Takes takes;
    Codes points;
    Codes vectors;
    Codes directions; ///< vectors of length 1
    Codes lengths;
    Codes angles; ///< in the plane, in degrees
};

namespace {

constexpr double kDegree = 0.017453292519943295;
constexpr int kFirstXData = 1000;
constexpr short k10[] = {10};
constexpr short k10to11[] = {10, 11};
constexpr short k10to13[] = {10, 11, 12, 13};
constexpr short k11[] = {11};
constexpr short k12[] = {12};
constexpr short k11to12[] = {11, 12};
constexpr short k12to13[] = {12, 13};
constexpr short kLeaderVectors[] = {211, 212, 213};
constexpr short k39[] = {39};
constexpr short k39to41[] = {39, 40, 41};
constexpr short k39to40[] = {39, 40};
constexpr short k40to41[] = {40, 41};
constexpr short k40and42[] = {40, 42};
constexpr short k41to43[] = {41, 42, 43};
constexpr short k42[] = {42};
constexpr short k50[] = {50};
constexpr short k50and53[] = {50, 53};

constexpr RawKind kKinds[] = {{"SPLINE", false, Takes::kAll, k10to11, k12to13, {}, {}, {}},
                              {"3DFACE", false, Takes::kAll, k10to13, {}, {}, {}, {}},
                              {"RAY", false, Takes::kAll, k10, {}, k11, {}, {}},
                              {"XLINE", false, Takes::kAll, k10, {}, k11, {}, {}},
                              {"IMAGE", false, Takes::kAll, k10, k11to12, {}, {}, {}},
                              {"WIPEOUT", false, Takes::kAll, k10, k11to12, {}, {}, {}},
                              {"MESH", false, Takes::kAll, k10, {}, {}, {}, {}},
                              {"LEADER", false, Takes::kUniform, k10, kLeaderVectors, {}, {}, {}},
                              {"TOLERANCE", false, Takes::kUniform, k10, {}, k11, {}, {}},
                              {"MLINE", false, Takes::kUniform, k10to11, {}, k12to13, k40to41, {}},
                              {"LIGHT", false, Takes::kUniform, k10to11, {}, {}, {}, {}},
                              {"HELIX", false, Takes::kTurning, {}, {}, {}, {}, {}},
                              {"MULTILEADER", false, Takes::kUpright, {}, {}, {}, {}, {}},
                              {"VIEWPORT", false, Takes::kStill, k10, {}, {}, k40to41, {}},
                              {"ACAD_TABLE", false, Takes::kSameSize, {}, {}, {}, {}, {}},
                              {"SOLID", true, Takes::kAll, k10to13, {}, {}, k39, {}},
                              {"TRACE", true, Takes::kAll, k10to13, {}, {}, k39, {}},
                              {"SHAPE", true, Takes::kUniform, k10, {}, {}, k39to40, k50},
                              {"PDFUNDERLAY", true, Takes::kUniform, k10, {}, {}, k41to43, k50},
                              {"DWFUNDERLAY", true, Takes::kUniform, k10, {}, {}, k41to43, k50},
                              {"DGNUNDERLAY", true, Takes::kUniform, k10, {}, {}, k41to43, k50},
                              {"HATCH", true, Takes::kUniform, {}, {}, {}, {}, {}},
                              {"POLYLINE", true, Takes::kUniform, k10, {}, {}, k39to41, {}}};
constexpr RawKind kVertex2d{"VERTEX", true, Takes::kUniform, k10, {}, {}, k40to41, k50};
constexpr RawKind kVertex3d{"VERTEX", false, Takes::kAll, k10, {}, {}, {}, {}};
/// The head of a polyline in space holds no point.
constexpr RawKind kPolyline3d{"POLYLINE", false, Takes::kAll, {}, {}, {}, {}, {}};
/// Dimensions have points of the plane and of the world; these are those of the plane.
constexpr short kDimensionPlane[] = {11, 12, 16};
constexpr short kArcPlane[] = {11, 12};
constexpr short kDimensionWorld[] = {10, 13, 14, 15};
constexpr short kArcWorld[] = {10, 13, 14, 15, 16, 17};
constexpr RawKind kDimension{"DIMENSION", true, Takes::kUniform, kDimensionPlane, {}, {}, k40and42, k50and53};
constexpr RawKind kArcDimension{"ARC_DIMENSION", true, Takes::kUniform, kArcPlane, {}, {}, k42, k50and53};
constexpr RawKind kSplinePart{"SPLINE", false, Takes::kAll, k10to11, k12to13, {}, {}, {}};
constexpr RawKind kHelixPart{"HELIX", false, Takes::kTurning, k10to11, {}, k12, k40and42, {}};

const RawKind* kindOf(std::string_view name) {
    for (const RawKind& kind : kKinds)
        if (name == kind.name) return &kind;
    if (name == kArcDimension.name) return &kArcDimension;
    return isDimension(name) ? &kDimension : nullptr;
}

bool has(Codes codes, int code) {
    return std::find(codes.begin(), codes.end(), code) != codes.end();
}

bool near(double a, double b, double scale) {
    return std::fabs(a - b) <= 1e-9 * (scale > 1 ? scale : 1);
}

OdGeMatrix3d transposed(const OdGeMatrix3d& m) {
    OdGeMatrix3d t;
    for (int i = 0; i < 3; ++i)
        for (int k = 0; k < 3; ++k) t.entry[i][k] = m.entry[k][i];
    return t;
}

void putReal(std::string& out, const Source& form, double value) {
    char text[32];
    if (form.binary) {
        std::memcpy(text, &value, sizeof value);
        out.append(text, sizeof value);
        return;
    }
    out.append(text, std::to_chars(text, text + sizeof text, value).ptr);
}

void putCode(std::string& out, const Source& form, short code) {
    if (!form.binary) {
        out += std::to_string(code) + "\n";
    } else if (form.shortCodes && code < 255) {
        out.push_back(static_cast<char>(code));
    } else {
        if (form.shortCodes) out.push_back(static_cast<char>(255));
        out.append(reinterpret_cast<const char*>(&code), sizeof code);
    }
}

} // namespace

RawMover::RawMover(const OdGeMatrix3d& matrix, const RawGroups& entity)
    : m_matrix(matrix), m_kind(kindOf(entity.kind())) {
    if (m_kind == nullptr) return;
    const GroupSpan span = entity.span();
    OdGeVector3d normal{0, 0, 1};
    double* const parts[] = {&normal.x, &normal.y, &normal.z};
    int flags = 0;
    bool bad = false;
    const Values values(*span.form);
    forEachGroupIn(span, [&](const Group& group, const char*, const char*) {
        if (group.code == 210 || group.code == 220 || group.code == 230)
            *parts[(group.code - 210) / 10] = values.real(group, bad);
        if (group.code == 70) flags = static_cast<int>(values.integer(group, bad));
        return group.code < 1000;
    });
    constexpr int kInSpace = 8 | 16 | 64; // 3D polylines, meshes, polyfaces
    if (entity.kind() == "POLYLINE") {
        m_vertices2d = (flags & kInSpace) == 0;
        if (!m_vertices2d) m_kind = &kPolyline3d;
    }
    setPlane(normal);
    if (bad || !(m_factor > 0)) return;
    const OdGeVector3d x = m_matrix * OdGeVector3d::kXAxis, y = m_matrix * OdGeVector3d::kYAxis,
                       z = m_matrix * OdGeVector3d::kZAxis;
    const bool turning = m_uniform && x.crossProduct(y).dotProduct(z) > 0;
    const bool upright = turning && near(z.x, 0, m_factor) && near(z.y, 0, m_factor) && z.z > 0;
    switch (m_kind->takes) {
    case Takes::kAll:
        m_canMove = true;
        break;
    case Takes::kUniform:
        m_canMove = m_uniform;
        break;
    case Takes::kTurning:
        m_canMove = turning;
        break;
    case Takes::kUpright:
        m_canMove = upright;
        break;
    case Takes::kStill:
        m_canMove = upright && near(x.y, 0, m_factor) && x.x > 0;
        break;
    case Takes::kSameSize:
        m_canMove = upright && near(m_factor, 1, 1);
        break;
    }
}

void RawMover::setPlane(const OdGeVector3d& normal) {
    const OdGeMatrix3d before = OdGeMatrix3d::planeToWorld(normal);
    const OdGeVector3d x = m_matrix * (before * OdGeVector3d::kXAxis);
    const OdGeVector3d y = m_matrix * (before * OdGeVector3d::kYAxis);
    const OdGeVector3d z = m_matrix * (before * OdGeVector3d::kZAxis);
    const OdGeVector3d up = x.crossProduct(y);
    const double lx = x.length();
    m_factor = up.length() > 0 ? lx : 0;
    m_uniform = near(lx, y.length(), lx) && near(lx, z.length(), lx) && near(x.dotProduct(y), 0, lx * lx) &&
                near(x.dotProduct(z), 0, lx * lx) && near(y.dotProduct(z), 0, lx * lx);
    if (m_factor == 0) return;
    m_normal = up * (1 / up.length());
    m_map = transposed(OdGeMatrix3d::planeToWorld(m_normal)) * m_matrix * before;
    m_turn = std::atan2(m_map.entry[1][0], m_map.entry[0][0]) / kDegree;
}

RawMover::Pieces RawMover::piecesOf(const GroupSpan& span) {
    Pieces pieces;
    forEachGroupIn(span, [&](const Group& group, const char* begin, const char* end) {
        pieces.push_back({group, begin, end});
        return true;
    });
    return pieces;
}

double RawMover::real(const Source& form, const Piece& piece) const {
    if (piece.changed) return piece.value;
    bool bad = false;
    const Values values(form);
    return valueTypeOf(piece.group.code) == ValueType::kReal
               ? values.real(piece.group, bad)
               : static_cast<double>(values.integer(piece.group, bad));
}

void RawMover::change(Piece& piece, double value) {
    piece.changed = true;
    piece.value = value;
}

/// Moves the point whose x stands at a place.
void RawMover::movePoint(const Source& form, Pieces& pieces, std::size_t at, bool inPlane) const {
    const int code = pieces[at].group.code;
    const auto part = [&](std::size_t behind) -> Piece* {
        const std::size_t i = at + behind;
        return i < pieces.size() && pieces[i].group.code == code + static_cast<int>(behind) * 10 ? &pieces[i]
                                                                                                 : nullptr;
    };
    Piece* const y = part(1);
    Piece* const z = y != nullptr ? part(2) : nullptr;
    const OdGePoint3d old(real(form, pieces[at]), y != nullptr ? real(form, *y) : 0,
                          z != nullptr ? real(form, *z) : 0);
    const OdGePoint3d now = inPlane ? m_map * old : m_matrix * old;
    change(pieces[at], now.x);
    if (y != nullptr) change(*y, now.y);
    if (z != nullptr) change(*z, now.z);
}

void RawMover::moveVector(const Source& form, Pieces& pieces, std::size_t at, bool unit, bool inPlane) const {
    const int code = pieces[at].group.code;
    double old[3] = {real(form, pieces[at]), 0, 0};
    std::size_t count = 1;
    for (; count < 3 && at + count < pieces.size() &&
           pieces[at + count].group.code == code + static_cast<int>(count) * 10;
         ++count)
        old[count] = real(form, pieces[at + count]);
    const OdGeVector3d vector(old[0], old[1], old[2]);
    OdGeVector3d now = inPlane ? m_map * vector : m_matrix * vector;
    if (const double length = now.length(); unit && length > 0) now = now * (1 / length);
    const double values[] = {now.x, now.y, now.z};
    for (std::size_t i = 0; i < count; ++i) change(pieces[at + i], values[i]);
}

void RawMover::moveNormal(Pieces& pieces, const Source&) const {
    for (Piece& piece : pieces) {
        if (piece.group.code == 210) change(piece, m_normal.x);
        if (piece.group.code == 220) change(piece, m_normal.y);
        if (piece.group.code == 230) change(piece, m_normal.z);
    }
}

/// Points in the plane and in the world. The measure of an angle isn't a length.
void RawMover::moveDimension(const Source& form, Pieces& pieces) const {
    constexpr int kKind = 7, kTwoLines = 2, kThreePoints = 5, kMeasure = 42, kAcross = 51;
    const Codes world = m_kind == &kArcDimension ? Codes(kArcWorld) : Codes(kDimensionWorld);
    int flags = 0;
    for (const Piece& piece : pieces)
        if (piece.group.code == 70) flags = static_cast<int>(real(form, piece));
    const int type = flags & kKind;
    const bool angular = m_kind != &kArcDimension && (type == kTwoLines || type == kThreePoints);
    for (std::size_t i = 0; i < pieces.size(); ++i) {
        Piece& piece = pieces[i];
        const int code = piece.group.code;
        if (has(world, code))
            movePoint(form, pieces, i, false);
        else if (code == kAcross)
            change(piece, real(form, piece) - m_turn); // from the horizontal back to the x axis
        else if (has(m_kind->points, code))
            movePoint(form, pieces, i, true);
        else if (has(m_kind->lengths, code) && !(angular && code == kMeasure))
            change(piece, real(form, piece) * m_factor);
        else if (has(m_kind->angles, code))
            change(piece, real(form, piece) + m_turn);
    }
}

/// A leader with text or a block: its context, in there its lines, and behind it what a style has as well.
void RawMover::moveLeader(const Source& form, Pieces& pieces) const {
    constexpr short kPoints[] = {10, 12, 15, 110}, kDirections[] = {11, 13, 14, 111, 112};
    constexpr short kLengths[] = {40, 41, 43, 44, 140, 141, 142, 145};
    constexpr short kLinePoints[] = {10, 11, 12, 13};
    enum { kOutside, kContext, kLeader, kLine } where = kOutside;
    std::size_t matrix = 0; // where the 16 numbers of the block's transform begin
    for (std::size_t i = 0; i < pieces.size() && pieces[i].group.code < kFirstXData; ++i) {
        Piece& piece = pieces[i];
        const int code = piece.group.code;
        if (code == 300 && stripped(piece.group.raw()) == "CONTEXT_DATA{") where = kContext;
        if (code == 302 && where == kContext && stripped(piece.group.raw()) == "LEADER{") where = kLeader;
        if (code == 304 && where == kLeader) where = kLine;
        if (code == 305 && where == kLine) where = kLeader;
        if (code == 303 && where == kLeader) where = kContext;
        if (code == 301 && where == kContext) where = kOutside;
        if (where == kLine) {
            if (has(kLinePoints, code)) movePoint(form, pieces, i, false);
        } else if (where == kLeader) {
            if (code == 10 || code == 12 || code == 13) movePoint(form, pieces, i, false);
            if (code == 11) moveVector(form, pieces, i, true, false);
            if (code == 40) change(piece, real(form, piece) * m_factor);
        } else if (where == kContext) {
            if (has(kPoints, code)) movePoint(form, pieces, i, false);
            if (has(kDirections, code)) moveVector(form, pieces, i, true, false);
            if (has(kLengths, code)) change(piece, real(form, piece) * m_factor);
            if (code == 42 || code == 46) change(piece, real(form, piece) + m_turn * kDegree);
            if (code == 47 && matrix == 0) moveMatrix(form, pieces, matrix = i);
            if (code == 16 || code == 26 || code == 36) change(piece, real(form, piece) * m_factor);
        } else {
            if (code == 45) change(piece, real(form, piece) * m_factor);
            if (code == 43) change(piece, real(form, piece) + m_turn * kDegree);
        }
    }
}

/// A transform of 16 numbers, a row after the other.
void RawMover::moveMatrix(const Source& form, Pieces& pieces, std::size_t at) const {
    constexpr std::size_t kNumbers = 16;
    OdGeMatrix3d old;
    for (std::size_t i = 0; i < kNumbers; ++i) {
        if (at + i >= pieces.size() || pieces[at + i].group.code != 47) return;
        old.entry[i / 4][i % 4] = real(form, pieces[at + i]);
    }
    const OdGeMatrix3d now = m_matrix * old;
    for (std::size_t i = 0; i < kNumbers; ++i) change(pieces[at + i], now.entry[i / 4][i % 4]);
}

/// A table stands like a reference to its picture; its cells have the same codes for other things.
void RawMover::moveTable(const Source& form, Pieces& pieces) const {
    bool placed = false, turned = false;
    for (std::size_t i = 0; i < pieces.size() && !turned; ++i) {
        const int code = pieces[i].group.code;
        if (code == 10 && !placed) {
            movePoint(form, pieces, i, false);
            placed = true;
        } else if (code == 11) {
            moveVector(form, pieces, i, true, false);
            turned = true;
        }
    }
}

/// A spline, and behind its own mark the axis that it winds around.
void RawMover::moveHelix(const Source& form, Pieces& pieces) const {
    const auto mark = std::find_if(pieces.begin(), pieces.end(), [](const Piece& piece) {
        return piece.group.code == 100 && stripped(piece.group.raw()) == "AcDbHelix";
    });
    Pieces axis(mark, pieces.end());
    pieces.erase(mark, pieces.end());
    moveGroups(form, kSplinePart, pieces);
    moveGroups(form, kHelixPart, axis);
    pieces.insert(pieces.end(), axis.begin(), axis.end());
}

/// What a program drew of the entity for those that don't know it, in the part that all entities have: it
/// shows the old place.
void RawMover::dropPreview(Pieces& pieces) {
    constexpr int kMark = 100, kSize = 92, kLongSize = 160, kPreview = 310;
    const auto isMark = [](const Piece& piece) { return piece.group.code == kMark; };
    if (std::count_if(pieces.begin(), pieces.end(), isMark) < 2) return;
    int marks = 0;
    for (Piece& piece : pieces) {
        const int code = piece.group.code;
        if (code == kMark && ++marks == 2) return;
        piece.removed = code == kSize || code == kLongSize || code == kPreview;
    }
}

/// Values that a file leaves out as long as they are those of an entity that was never turned.
void RawMover::addDefaults(const Source& form, Pieces& pieces, std::string& added) const {
    const auto lacks = [&](int code) {
        return std::none_of(pieces.begin(), pieces.end(),
                            [code](const Piece& piece) { return piece.group.code == code; });
    };
    const auto put = [&](short code, double value) {
        putCode(added, form, code);
        putReal(added, form, value);
        if (!form.binary) added += '\n';
    };
    const auto isType = [&](int type) {
        for (const Piece& piece : pieces)
            if (piece.group.code == 70) return (static_cast<int>(real(form, piece)) & 7) == type;
        return type == 0;
    };
    const bool angle = m_kind == &kDimension ? isType(0) : has(m_kind->angles, 50);
    if (angle && m_turn != 0 && lacks(50)) put(50, m_turn);
    if (has(m_kind->lengths, 43) && m_factor != 1)
        for (const short code : m_kind->lengths)
            if (lacks(code)) put(code, m_factor);
    if (!has(m_kind->directions, 11) || !lacks(11)) return;
    const OdGeVector3d x = m_matrix * OdGeVector3d::kXAxis * (1 / m_factor);
    if (x == OdGeVector3d::kXAxis) return;
    put(11, x.x);
    put(21, x.y);
    put(31, x.z);
}

void RawMover::moveGroups(const Source& form, const RawKind& kind, Pieces& pieces) const {
    for (std::size_t i = 0; i < pieces.size(); ++i) {
        const int code = pieces[i].group.code;
        if (has(kind.points, code))
            movePoint(form, pieces, i, m_kind->inPlane);
        else if (has(kind.vectors, code))
            moveVector(form, pieces, i, false, false);
        else if (has(kind.directions, code))
            moveVector(form, pieces, i, true, false);
        else if (has(kind.lengths, code))
            change(pieces[i],
                   real(form, pieces[i]) *
                       (code == 39 ? m_map.entry[2][2] : m_factor)); // 39 is a height over the plane
        else if (has(kind.angles, code))
            change(pieces[i], real(form, pieces[i]) + m_turn);
    }
}

std::string RawMover::joined(const Source& form, const Pieces& pieces, const std::string& added) {
    std::string out;
    bool inside = true; // in front of the extended data
    for (const Piece& piece : pieces) {
        if (inside && piece.group.code >= kFirstXData) {
            out += added;
            inside = false;
        }
        if (piece.removed) continue;
        if (!piece.changed && piece.text.empty()) {
            out.append(piece.begin, piece.end);
            continue;
        }
        out.append(piece.begin, piece.group.data);
        if (piece.changed)
            putReal(out, form, piece.value);
        else
            out += piece.text;
        out.append(piece.group.data + piece.group.size, piece.end);
    }
    if (!inside) return out;
    if (!added.empty() && !form.binary && !out.empty() && out.back() != '\n') out += '\n';
    return out + added;
}

RawPointer RawMover::moved(const RawGroups& raw, Node* picture) const {
    const GroupSpan span = raw.span();
    const Source& form = *span.form;
    Pieces pieces = piecesOf(span);
    std::string added;
    dropPreview(pieces);
    bool turned = m_kind->inPlane;
    if (raw.kind() == "HATCH") {
        moveHatch(form, pieces);
    } else if (isDimension(raw.kind())) {
        addDefaults(form, pieces, added);
        moveDimension(form, pieces);
        if (picture != nullptr) namePicture(pieces, *picture);
    } else if (raw.kind() == "MULTILEADER") {
        moveLeader(form, pieces);
    } else if (raw.kind() == "ACAD_TABLE") {
        moveTable(form, pieces);
    } else if (raw.kind() == "HELIX") {
        moveHelix(form, pieces);
    } else if (raw.kind() == "VERTEX") {
        turned = moveVertex(form, pieces);
    } else {
        addDefaults(form, pieces, added);
        moveGroups(form, *m_kind, pieces);
        if (raw.kind() == "POLYLINE" && m_vertices2d)
            for (Piece& piece : pieces) // the head's point holds the elevation alone
                if (piece.group.code == 10 || piece.group.code == 20) change(piece, 0);
    }
    const bool normalWritten =
        std::any_of(pieces.begin(), pieces.end(), [](const Piece& piece) { return piece.group.code == 210; });
    if (turned || normalWritten) moveNormal(pieces, form);
    if (turned && !normalWritten && m_normal != OdGeVector3d::kZAxis) {
        const double parts[] = {m_normal.x, m_normal.y, m_normal.z};
        for (short i = 0; i < 3; ++i) {
            putCode(added, form, static_cast<short>(210 + 10 * i));
            putReal(added, form, parts[i]);
            if (!form.binary) added += '\n';
        }
    }
    return RawPointer(
        new RawGroups(raw.form(), joined(form, pieces, added), span.old, raw.kind(), raw.home()));
}

/// Tells whether the normal is the vertex's own business: it never is.
bool RawMover::moveVertex(const Source& form, Pieces& pieces) const {
    constexpr int kPosition = 64, kFace = 128; // a face of a polyface has a point that means nothing
    int flags = 0;
    for (const Piece& piece : pieces)
        if (piece.group.code == 70) flags = static_cast<int>(real(form, piece));
    if ((flags & (kPosition | kFace)) != kFace)
        moveGroups(form, m_vertices2d ? kVertex2d : kVertex3d, pieces);
    return false;
}

/// Names of pictures are ASCII, in files of all code pages.
void RawMover::namePicture(Pieces& pieces, Node& picture) {
    const OdDbObject* const body = picture.database()->data().bodyOf(&picture);
    const std::string name = utf8(static_cast<const OdDbSymbolTableRecord*>(body)->getName());
    for (Piece& piece : pieces)
        if (piece.group.code == 2) {
            if (stripped(piece.group.raw()) != name) piece.text = name;
            return;
        }
}

} // namespace lm::drawing
