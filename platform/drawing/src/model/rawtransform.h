// SPDX-License-Identifier: MIT
// Moving entities of kinds that the database doesn't read: the numbers in their groups that are points,
// vectors, lengths and angles, by kind. Source: the DXF reference, entities.
#pragma once

#include "model/rawgroups.h"

#include "drawing/geometry.h"

#include <vector>

namespace lm::drawing {

struct RawKind;

class RawMover {
public:
    /// For an entity with these groups, and for its vertices.
    RawMover(const OdGeMatrix3d& matrix, const RawGroups& entity);

    /// False for a kind that isn't known here, and for a transform that the kind can't take.
    bool canMove() const { return m_canMove; }
    /// The moved groups of the entity or of one of its vertices. With a block, the entity names that one as
    /// its picture.
    RawPointer moved(const RawGroups& raw, Node* picture = nullptr) const;

private:
    struct Piece {
        Group group;
        const char* begin;
        const char* end;
        bool changed = false;
        bool removed = false;
        double value = 0;
        std::string text{}; ///< in place of what stands there; empty to leave it
    };
    using Pieces = std::vector<Piece>;

    static Pieces piecesOf(const GroupSpan& span);
    double real(const Source& form, const Piece& piece) const;
    void setPlane(const OdGeVector3d& normal);
    void movePoint(const Source& form, Pieces& pieces, std::size_t at, bool inPlane) const;
    void moveVector(const Source& form, Pieces& pieces, std::size_t at, bool unit, bool inPlane) const;
    void moveNormal(Pieces& pieces, const Source& form) const;
    void moveGroups(const Source& form, const RawKind& kind, Pieces& pieces) const;
    void moveDimension(const Source& form, Pieces& pieces) const;
    void moveLeader(const Source& form, Pieces& pieces) const;
    void moveMatrix(const Source& form, Pieces& pieces, std::size_t at) const;
    void moveTable(const Source& form, Pieces& pieces) const;
    bool moveVertex(const Source& form, Pieces& pieces) const;
    static void namePicture(Pieces& pieces, Node& picture);
    void moveHelix(const Source& form, Pieces& pieces) const;
    void addDefaults(const Source& form, Pieces& pieces, std::string& added) const;
    void moveHatch(const Source& form, Pieces& pieces) const;
    void moveHatchPath(const Source& form, Pieces& pieces, std::size_t& at) const;
    void moveHatchEdge(const Source& form, Pieces& pieces, std::size_t& at, std::size_t end) const;
    static void change(Piece& piece, double value);
    static std::string joined(const Source& form, const Pieces& pieces, const std::string& added);
    static void dropPreview(Pieces& pieces);

    OdGeMatrix3d m_matrix;
    const RawKind* m_kind = nullptr;
    bool m_canMove = false;
    bool m_vertices2d = false;
    // The plane that flat kinds lie in. The new normal is chosen so that turning directions stay in it: what
    // is mirrored on the paper gets the opposite normal, and no arc has to change its ends.
    OdGeMatrix3d m_map; ///< from the old plane's system to the new one's
    OdGeVector3d m_normal{0, 0, 1};
    double m_factor = 1;
    double m_turn = 0; ///< degrees
    bool m_uniform = true;
};

} // namespace lm::drawing
