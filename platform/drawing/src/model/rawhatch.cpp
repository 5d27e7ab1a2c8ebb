// SPDX-License-Identifier: MIT
// Moving hatches: their boundaries, patterns, seeds and gradients.
#include "model/rawtransform.h"

namespace lm::drawing {

namespace {
constexpr double kDegree = 0.017453292519943295;
} // namespace

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
            movePoint(form, pieces, i, true);
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
            if (pieces[at].group.code == 10) movePoint(form, pieces, at, true);
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
                movePoint(form, pieces, i, true); // seed points
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

} // namespace lm::drawing
