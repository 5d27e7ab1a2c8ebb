// SPDX-License-Identifier: MIT
// OdDbBlockReference: one placed symbol, with its attributes.
#pragma once

#include "drawing/text.h"

/// A reference to a block. Angles in radians; the position is in the object coordinate system of the normal.
class LM_DRAWING_API OdDbBlockReference : public OdDbEntity {
    LM_RX_CLASS(OdDbBlockReference)
public:
    OdDbBlockReference();
    /// A copy outside any database with copies of the attributes.
    OdDbBlockReference(const OdDbBlockReference& other);
    ~OdDbBlockReference() override;

    OdGePoint3d position() const { return m_position; }
    void setPosition(const OdGePoint3d& point);
    double rotation() const { return m_rotation; }
    void setRotation(double radians);
    OdGeScale3d scaleFactors() const { return m_scale; }
    void setScaleFactors(const OdGeScale3d& scale);
    OdGeVector3d normal() const { return m_normal; }
    void setNormal(const OdGeVector3d& normal);
    /// An array shows the block in columns and rows, counted from 1, at distances along the reference's own
    /// axes; negative ones run the other way. A file makes a reference one, else there is one of each.
    int columns() const { return m_columns > 1 ? m_columns : 1; }
    int rows() const { return m_rows > 1 ? m_rows : 1; }
    double columnSpacing() const { return m_columnSpacing; }
    double rowSpacing() const { return m_rowSpacing; }
    /// The block's record; null for a reference to nothing.
    OdDbObjectId blockTableRecord() const { return m_block; }
    /// Null is accepted. What is no block raises OdError_NotThatKindOfClass; on a resident reference a block
    /// of another drawing raises OdError (eInvalidInput). Nothing has changed then.
    void setBlockTableRecord(OdDbObjectId id);
    /// Place, turn, scale and shift by minus the block's origin, in this order from the left; for an array
    /// that of its first copy.
    OdGeMatrix3d blockTransform() const;

    /// A walk over the attributes, empty when there are none; null only where a test asks for it.
    OdSmartPtr<OdDbObjectIterator> attributeIterator() const;
    /// Adds an attribute behind the others; the reference owns it. On a resident reference it becomes
    /// resident, is left write-enabled, and its id is the result; outside a database the result is null.
    OdDbObjectId appendAttribute(OdSmartPtr<OdDbAttribute> attribute);
    /// Makes attributeIterator answer null, which the ordinary database never does. For tests.
    void setWithoutIterator(bool without) { m_withoutIterator = without; }

    OdResult transformBy(const OdGeMatrix3d& matrix) override;
    /// Gives copies of the block's live entities, moved by blockTransform: one level, so that inner
    /// references come out as references with their attributes, and definitions as definitions. An empty
    /// block gives eOk and no pieces; a reference without a block, or of an erased one, gives eNotApplicable.
    /// An array gives the pieces of all its copies, a row after the other; one of more than a million pieces
    /// gives eNotApplicable.
    ///
    /// Where the scale factors differ, or the normal leans, a piece that can't take the transform becomes
    /// what shows the same: circles and arcs become ellipses, a polyline with arcs falls into lines and
    /// elliptical arcs (which have no width), texts change height, width factor and oblique angle. An inner
    /// reference that would have to lean keeps its place and the directions and lengths of its axes but for
    /// the leaning. A dimension that can't be moved becomes a reference to the block of its picture. Entities
    /// of further kinds that aren't read come out where they stand in the block; nothing is left out.
    OdResult explode(OdArray<OdSmartPtr<OdDbEntity>>& pieces) const override;
    /// The box of what the block's live entities show under blockTransform, in all copies of an array, and of
    /// the attributes. Definitions of attributes show nothing there but constant ones that are visible.
    /// Blocks inside themselves count once. eNotApplicable when there is nothing of a known extent.
    OdResult getGeomExtents(OdGeExtents3d& extents) const override;

protected:
    void subBecomeResident() override;

    LM_DB_STATE(OdDbBlockReference)
    OdDbBlockReference& operator=(const OdDbBlockReference&);

private:
    friend struct lm::drawing::ClassSpecs;
    friend struct lm::drawing::ObjectAccess;
    OdGePoint3d m_position;
    OdGeVector3d m_normal{0, 0, 1};
    OdGeScale3d m_scale;
    double m_rotation = 0;
    OdDbObjectId m_block;
    double m_columnSpacing = 0;
    double m_rowSpacing = 0;
    short m_columns = 1;
    short m_rows = 1;
    bool m_withoutIterator = false;
    std::unique_ptr<std::vector<OdSmartPtr<OdDbAttribute>>> m_outside; // attributes while outside a database
};
