// SPDX-License-Identifier: MIT
#include "model/rawtransform.h"

#include "dxf/source.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <span>

namespace lm::drawing {

using Codes = std::span<const short>;

/// What the groups of a kind are. The code of an x stands for y and z as well.
struct RawKind {
    const char* name;
    bool inPlane;   ///< points lie in the system of the normal (210)
    bool stretches; ///< takes transforms that change lengths differently in different directions
    Codes points;
    Codes vectors;
    Codes directions; ///< vectors of length 1
    Codes lengths;
    Codes angles; ///< in the plane, in degrees
};

namespace {

constexpr double kDegree = 0.017453292519943295;
constexpr short k10[] = {10};
constexpr short k10to11[] = {10, 11};
constexpr short k10to13[] = {10, 11, 12, 13};
constexpr short k11[] = {11};
constexpr short k11to12[] = {11, 12};
constexpr short k12to13[] = {12, 13};
constexpr short kLeaderVectors[] = {211, 212, 213};
constexpr short k39[] = {39};
constexpr short k39to41[] = {39, 40, 41};
constexpr short k39to40[] = {39, 40};
constexpr short k40to41[] = {40, 41};
constexpr short k50[] = {50};

constexpr RawKind kKinds[] = {{"SPLINE", false, true, k10to11, k12to13, {}, {}, {}},
                              {"3DFACE", false, true, k10to13, {}, {}, {}, {}},
                              {"RAY", false, true, k10, {}, k11, {}, {}},
                              {"XLINE", false, true, k10, {}, k11, {}, {}},
                              {"IMAGE", false, true, k10, k11to12, {}, {}, {}},
                              {"WIPEOUT", false, true, k10, k11to12, {}, {}, {}},
                              {"LEADER", false, false, k10, kLeaderVectors, {}, {}, {}},
                              {"TOLERANCE", false, false, k10, {}, k11, {}, {}},
                              {"MLINE", false, false, k10to11, {}, k12to13, k40to41, {}},
                              {"SOLID", true, true, k10to13, {}, {}, k39, {}},
                              {"TRACE", true, true, k10to13, {}, {}, k39, {}},
                              {"SHAPE", true, false, k10, {}, {}, k39to40, k50},
                              {"HATCH", true, false, {}, {}, {}, {}, {}},
                              {"POLYLINE", true, false, k10, {}, {}, k39to41, {}}};
constexpr RawKind kVertex2d{"VERTEX", true, false, k10, {}, {}, k40to41, k50};
constexpr RawKind kVertex3d{"VERTEX", false, true, k10, {}, {}, {}, {}};
/// The head of a polyline in space holds no point.
constexpr RawKind kPolyline3d{"POLYLINE", false, true, {}, {}, {}, {}, {}};

const RawKind* kindOf(std::string_view name) {
    for (const RawKind& kind : kKinds)
        if (name == kind.name) return &kind;
    return nullptr;
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
    m_canMove = !bad && m_factor > 0 && (m_uniform || m_kind->stretches);
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
void RawMover::movePoint(const Source& form, Pieces& pieces, std::size_t at) const {
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
    const OdGePoint3d now = m_kind->inPlane ? m_map * old : m_matrix * old;
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

void RawMover::moveGroups(const Source& form, const RawKind& kind, Pieces& pieces) const {
    for (std::size_t i = 0; i < pieces.size(); ++i) {
        const int code = pieces[i].group.code;
        if (has(kind.points, code))
            movePoint(form, pieces, i);
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

/// One edge of a boundary path: from its type (72) to the next edge. An arc that runs clockwise has its
/// angles mirrored.
void RawMover::moveHatchEdge(const Source& form, Pieces& pieces, std::size_t& at, std::size_t end) const {
    enum { kArc = 2, kEllipse = 3 };
    const int type = static_cast<int>(real(form, pieces[at]));
    const std::size_t begin = ++at;
    bool clockwise = false;
    for (; at < end && pieces[at].group.code != 72; ++at)
        if (pieces[at].group.code == 73 && type == kArc) clockwise = real(form, pieces[at]) == 0;
    for (std::size_t i = begin; i < at; ++i) {
        Piece& piece = pieces[i];
        const int code = piece.group.code;
        if (code == 10 || (code == 11 && type != kEllipse))
            movePoint(form, pieces, i);
        else if (code == 11 || code == 12 || code == 13)
            moveVector(form, pieces, i, false, true);
        else if (code == 40 && type == kArc)
            change(piece, real(form, piece) * m_factor);
        else if ((code == 50 || code == 51) && type == kArc)
            change(piece, real(form, piece) + (clockwise ? -m_turn : m_turn));
    }
}

/// One boundary path: from its type (92) to the next path or to the style (75).
void RawMover::moveHatchPath(const Source& form, Pieces& pieces, std::size_t& at) const {
    constexpr int kPolyline = 2;
    const bool polyline = (static_cast<int>(real(form, pieces[at])) & kPolyline) != 0;
    std::size_t end = ++at;
    while (end < pieces.size() && pieces[end].group.code != 92 && pieces[end].group.code != 75) ++end;
    if (polyline) {
        for (; at < end; ++at)
            if (pieces[at].group.code == 10) movePoint(form, pieces, at);
        return;
    }
    while (at < end) {
        if (pieces[at].group.code == 72)
            moveHatchEdge(form, pieces, at, end);
        else
            ++at;
    }
}

void RawMover::moveHatch(const Source& form, Pieces& pieces) const {
    bool elevationSeen = false;
    for (std::size_t i = 0; i < pieces.size();) {
        Piece& piece = pieces[i];
        const double value = real(form, piece);
        switch (piece.group.code) {
        case 92:
            moveHatchPath(form, pieces, i);
            continue;
        case 10:
            if (!elevationSeen) {
                // The first point is (0, 0, elevation).
                elevationSeen = true;
                if (i + 2 < pieces.size() && pieces[i + 2].group.code == 30)
                    change(pieces[i + 2], (m_map * OdGePoint3d(0, 0, real(form, pieces[i + 2]))).z);
            } else {
                movePoint(form, pieces, i); // seed points
            }
            break;
        case 41:
        case 49:
            change(piece, value * m_factor);
            break;
        case 52:
        case 53:
            change(piece, value + m_turn);
            break;
        case 43:
        case 45:
            // Base point and offset of a line of the pattern: 43 and 44, 45 and 46.
            if (i + 1 < pieces.size() && pieces[i + 1].group.code == piece.group.code + 1) {
                const double y = real(form, pieces[i + 1]);
                const OdGePoint3d point = m_map * OdGePoint3d(value, y, 0);
                const OdGeVector3d vector = m_map * OdGeVector3d(value, y, 0);
                change(piece, piece.group.code == 43 ? point.x : vector.x);
                change(pieces[i + 1],
                       piece.group.code == 44 || pieces[i].group.code == 43 ? point.y : vector.y);
            }
            break;
        case 460:
            change(piece, value + m_turn * kDegree); // gradient
            break;
        default:
            break;
        }
        ++i;
    }
}

std::string RawMover::joined(const Source& form, const Pieces& pieces) {
    std::string out;
    for (const Piece& piece : pieces) {
        if (!piece.changed) {
            out.append(piece.begin, piece.end);
            continue;
        }
        out.append(piece.begin, piece.group.data);
        putReal(out, form, piece.value);
        out.append(piece.group.data + piece.group.size, piece.end);
    }
    return out;
}

RawPointer RawMover::moved(const RawGroups& raw) const {
    const GroupSpan span = raw.span();
    const Source& form = *span.form;
    Pieces pieces = piecesOf(span);
    bool turned = m_kind->inPlane;
    if (raw.kind() == "HATCH") {
        moveHatch(form, pieces);
    } else if (raw.kind() == "VERTEX") {
        constexpr int kPosition = 64, kFace = 128; // a face of a polyface has a point that means nothing
        int flags = 0;
        for (const Piece& piece : pieces)
            if (piece.group.code == 70) flags = static_cast<int>(real(form, piece));
        turned = false;
        if ((flags & (kPosition | kFace)) != kFace)
            moveGroups(form, m_vertices2d ? kVertex2d : kVertex3d, pieces);
    } else {
        moveGroups(form, *m_kind, pieces);
        if (raw.kind() == "POLYLINE" && m_vertices2d)
            for (Piece& piece : pieces) // the head's point holds the elevation alone
                if (piece.group.code == 10 || piece.group.code == 20) change(piece, 0);
    }
    const bool normalWritten =
        std::any_of(pieces.begin(), pieces.end(), [](const Piece& piece) { return piece.group.code == 210; });
    if (turned || normalWritten) moveNormal(pieces, form);
    std::string groups = joined(form, pieces);
    if (turned && !normalWritten && m_normal != OdGeVector3d::kZAxis) {
        const double parts[] = {m_normal.x, m_normal.y, m_normal.z};
        for (short i = 0; i < 3; ++i) {
            putCode(groups, form, static_cast<short>(210 + 10 * i));
            putReal(groups, form, parts[i]);
            if (!form.binary) groups += '\n';
        }
    }
    return RawPointer(new RawGroups(raw.form(), groups, span.old, raw.kind(), raw.home()));
}

} // namespace lm::drawing
