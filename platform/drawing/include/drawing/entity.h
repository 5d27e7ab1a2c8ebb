// SPDX-License-Identifier: MIT
// OdDbEntity: an object with a place in a block: layer, colour, line type and the other common properties.
// With it the iterator over the entities of a block or the attributes of a reference.
#pragma once

#include "drawing/color.h"
#include "drawing/geometry.h"
#include "drawing/odarray.h"
#include "drawing/object.h"

class OdDbEntity;

/// A walk over the parts of an owner, in order of creation. It works on positions: erasing the current part
/// and appending during the walk are allowed, and no part is met twice.
class LM_DRAWING_API OdDbObjectIterator : public OdRxObject {
    LM_RX_CLASS(OdDbObjectIterator)
public:
    /// Goes to the first part (the only end that a walk begins at), passing over erased ones when told so.
    virtual void start(bool atBeginning = true, bool skipErased = true) = 0;
    virtual bool done() const = 0;
    virtual void step(bool forward = true, bool skipErased = true) = 0;
    /// Null for a part outside a database.
    virtual OdDbObjectId objectId() const = 0;
    /// The part, open for reading; null when there is none.
    virtual OdSmartPtr<OdDbEntity> entity() const = 0;

    void addRef() final { ++m_refs; }
    void release() final {
        if (--m_refs == 0) delete this;
    }
    long numRefs() const override { return m_refs; }

private:
    long m_refs = 1;
};

/// The base of everything that is drawn.
class LM_DRAWING_API OdDbEntity : public OdDbObject {
    LM_RX_CLASS(OdDbEntity)
public:
    /// Name of the layer; "0" for an entity outside a database that was given none. The reference holds until
    /// the layer is renamed.
    const OdString& layer() const;
    OdDbObjectId layerId() const { return m_layer; }
    /// Puts the entity on a layer. An unknown name raises OdError (eKeyNotFound) and changes nothing; no
    /// layer is made.
    void setLayer(const OdString& name);
    /// Puts the entity on a layer; an id that is no layer raises OdError_NotThatKindOfClass. In a database, a
    /// layer of another drawing raises OdError (eInvalidInput). Nothing has changed then.
    void setLayer(OdDbObjectId id);

    OdCmColor color() const { return m_color; }
    void setColor(const OdCmColor& color);
    /// Line type; null stands for by-layer.
    OdDbObjectId linetypeId() const { return m_linetype; }
    /// In a database, a line type of another drawing raises OdError (eInvalidInput) and changes nothing.
    void setLinetype(OdDbObjectId id);
    double linetypeScale() const { return m_linetypeScale; }
    void setLinetypeScale(double scale);
    /// Hundredths of a millimetre; -1 by-layer, -2 by-block, -3 default.
    int lineWeight() const { return m_lineWeight; }
    void setLineWeight(int weight);
    /// The transparency word as a drawing file holds it; 0 for by-layer.
    unsigned int transparency() const { return m_transparency; }
    void setTransparency(unsigned int transparency);
    bool isVisible() const { return m_visible; }
    void setVisible(bool visible);
    /// Takes layer, colour, line type, its scale, line weight, transparency and visibility from another.
    /// In a database, one of another drawing raises OdError (eInvalidInput) and changes nothing.
    void setPropertiesFrom(const OdDbEntity* other);

    /// Moves the entity. eNotApplicable, with nothing changed, for a transform that the class can't take.
    virtual OdResult transformBy(const OdGeMatrix3d& matrix);
    /// The parts that the entity falls into, one level: new entities outside any database, placed as they are
    /// drawn. eNotApplicable for a class that has no parts, and for a reference without a block.
    virtual OdResult explode(OdArray<OdSmartPtr<OdDbEntity>>& pieces) const;
    /// Adds the box that the entity takes to `extents`. eNotApplicable for a class without a known extent.
    virtual OdResult getGeomExtents(OdGeExtents3d& extents) const;
    /// Asks for a redraw: counts, and raises nothing.
    void recordGraphicsModified(bool set = true);
    unsigned int graphicsRequests() const { return m_graphicsRequests; }

    /// The block that the entity stands in, null outside a database.
    OdDbObjectId blockId() const { return ownerId(); }

protected:
    OdDbEntity() = default;
    OdDbEntity(const OdDbEntity& other) = default;
    OdDbEntity& operator=(const OdDbEntity& other) = default;
    void subBecomeResident() override;

private:
    friend struct lm::drawing::ClassSpecs;
    friend struct lm::drawing::ObjectAccess;
    OdDbObjectId m_layer;
    OdDbObjectId m_linetype;
    OdCmColor m_color;
    short m_lineWeight = -1;
    bool m_visible = true;
    unsigned int m_transparency = 0;
    unsigned int m_graphicsRequests = 0;
    double m_linetypeScale = 1.0;
};

/// An entity of a kind that the database keeps without reading more than the common properties.
class LM_DRAWING_API OdDbUnreadEntity : public OdDbEntity {
    LM_RX_CLASS(OdDbUnreadEntity)
public:
    OdDbUnreadEntity();
    /// A copy outside any database with everything that the entity came with, its vertices too.
    OdDbUnreadEntity(const OdDbUnreadEntity& other);
    ~OdDbUnreadEntity() override;

    /// Moves the points that the entity came with, and the entities of its picture where it is a dimension in
    /// a database; a picture that another one shows as well is copied first. Works for POLYLINE with its
    /// vertices, SOLID, TRACE, 3DFACE, HATCH, SPLINE, HELIX, LEADER, MULTILEADER, MLINE, TOLERANCE, SHAPE,
    /// RAY, XLINE, MESH, LIGHT, IMAGE, WIPEOUT, underlays, VIEWPORT, ACAD_TABLE and dimensions.
    /// eNotApplicable for other kinds, such as bodies of the modeller, whose geometry is opaque; for kinds in
    /// a plane when the transform stretches; for leaders with text, tables and viewports when it turns them
    /// out of their plane or over, for tables when it scales, and for dimensions outside a database, whose
    /// picture can't follow.
    OdResult transformBy(const OdGeMatrix3d& matrix) override;
    /// The box of the points that the entity came with: arcs by their shape, splines by the points that
    /// control them. That of the picture for dimensions and tables. eNotApplicable for kinds that tell no
    /// points, bodies of the modeller among them, and for RAY and XLINE, which have no end.
    OdResult getGeomExtents(OdGeExtents3d& extents) const override;

protected:
    void subBecomeResident() override;

    LM_DB_STATE(OdDbUnreadEntity)
    OdDbUnreadEntity& operator=(const OdDbUnreadEntity& other);

private:
    friend struct lm::drawing::ObjectAccess;
    using Parts = std::vector<OdSmartPtr<OdDbEntity>>;
    std::unique_ptr<Parts> m_parts; // vertices while outside a database
};
