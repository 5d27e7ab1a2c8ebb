// SPDX-License-Identifier: MIT
#include "drawing/blockreference.h"

#include "base/rxclass.h"
#include "model/databasedata.h"
#include "model/iterators.h"
#include "model/transform.h"

using lm::drawing::Node;

LM_RX_DEFINE(OdDbBlockReference, OdDbEntity)

OdDbBlockReference::OdDbBlockReference() = default;
OdDbBlockReference::~OdDbBlockReference() = default;

OdDbBlockReference::OdDbBlockReference(const OdDbBlockReference& other)
    : OdDbEntity(other), m_position(other.m_position), m_normal(other.m_normal), m_scale(other.m_scale),
      m_rotation(other.m_rotation), m_block(other.m_block), m_columnSpacing(other.m_columnSpacing),
      m_rowSpacing(other.m_rowSpacing), m_columns(other.m_columns), m_rows(other.m_rows) {
    const OdSmartPtr<OdDbObjectIterator> walk = lm::drawing::attributesOf(other);
    for (walk->start(); !walk->done(); walk->step())
        if (const OdDbAttribute* attribute = OdDbAttribute::cast(walk->entity().get())) {
            if (!m_outside) m_outside = std::make_unique<std::vector<OdSmartPtr<OdDbAttribute>>>();
            m_outside->emplace_back(new OdDbAttribute(*attribute), lm::drawing::kAttach);
        }
}

OdDbBlockReference& OdDbBlockReference::operator=(const OdDbBlockReference& other) {
    OdDbEntity::operator=(other);
    m_position = other.m_position;
    m_normal = other.m_normal;
    m_scale = other.m_scale;
    m_rotation = other.m_rotation;
    m_block = other.m_block;
    m_columnSpacing = other.m_columnSpacing;
    m_rowSpacing = other.m_rowSpacing;
    m_columns = other.m_columns;
    m_rows = other.m_rows;
    return *this; // attributes are objects of their own
}

void OdDbBlockReference::setPosition(const OdGePoint3d& point) {
    beginChange();
    m_position = point;
}

void OdDbBlockReference::setRotation(double radians) {
    beginChange();
    m_rotation = radians;
}

void OdDbBlockReference::setScaleFactors(const OdGeScale3d& scale) {
    beginChange();
    m_scale = scale;
}

void OdDbBlockReference::setNormal(const OdGeVector3d& normal) {
    beginChange();
    m_normal = normal;
}

void OdDbBlockReference::setBlockTableRecord(OdDbObjectId id) {
    const OdSmartPtr<OdDbBlockTableRecord> checked(id.openObject(OdDb::kForRead, true));
    // The other drawing would keep this reference in its list when this drawing is gone.
    if (isDBRO() && id.isValid() && id.database() != database()) throw OdError(eInvalidInput);
    beginChange();
    if (isDBRO()) lm::drawing::moveReference(m_block, id, objectId().node());
    m_block = id;
}

OdGeMatrix3d OdDbBlockReference::blockTransform() const {
    OdGePoint3d origin;
    if (const OdDbBlockTableRecord* block = OdDbBlockTableRecord::cast(m_block.openObject().get()))
        origin = block->origin();
    return OdGeMatrix3d::planeToWorld(m_normal) * OdGeMatrix3d::translation(m_position.asVector()) *
           OdGeMatrix3d::rotationZ(m_rotation) * OdGeMatrix3d::scaling(m_scale) *
           OdGeMatrix3d::translation(-origin.asVector());
}

OdSmartPtr<OdDbObjectIterator> OdDbBlockReference::attributeIterator() const {
    if (m_withoutIterator) return {};
    return lm::drawing::attributesOf(*this);
}

OdDbObjectId OdDbBlockReference::appendAttribute(OdSmartPtr<OdDbAttribute> attribute) {
    if (attribute->isDBRO()) throw OdError(eAlreadyInDatabase);
    if (!isDBRO()) {
        if (!m_outside) m_outside = std::make_unique<std::vector<OdSmartPtr<OdDbAttribute>>>();
        m_outside->push_back(attribute);
        return OdDbObjectId::kNull;
    }
    // The reference itself doesn't change by what is hung on it, but it must be open for write.
    assertWriteEnabled(false, false);
    Node* const node = objectId().node();
    node->flags |= Node::kDirty;
    Node* const entry =
        lm::drawing::makeResident(database()->data(), *attribute, lm::drawing::kKindAttrib, node, true);
    entry->flags |= Node::kEntity;
    return OdDbObjectId(entry);
}

void OdDbBlockReference::subBecomeResident() {
    OdDbEntity::subBecomeResident();
    if (m_block.isValid() && m_block.database() != database()) m_block = OdDbObjectId::kNull;
    lm::drawing::moveReference(OdDbObjectId::kNull, m_block, objectId().node());
    if (!m_outside) return;
    const auto waiting = std::move(m_outside);
    for (const OdSmartPtr<OdDbAttribute>& attribute : *waiting) {
        Node* const entry = lm::drawing::makeResident(database()->data(), *attribute.get(),
                                                      lm::drawing::kKindAttrib, objectId().node(), true);
        entry->flags |= Node::kEntity;
        database()->data().pending.hold(*objectId().node(), attribute);
    }
}

OdResult OdDbBlockReference::transformBy(const OdGeMatrix3d& matrix) {
    const lm::drawing::PlaneTransform plane(matrix, m_normal);
    if (!plane.isUniform()) return eNotApplicable;
    beginChange();
    const OdGeVector3d x = plane.vector(OdGeVector3d::kXAxis), y = plane.vector(OdGeVector3d::kYAxis);
    const bool mirrored = x.crossProduct(y).z < 0;
    m_position = plane.point(m_position);
    m_rotation = plane.angle(m_rotation);
    m_scale = {m_scale.sx * plane.factor(), m_scale.sy * plane.factor() * (mirrored ? -1 : 1),
               m_scale.sz * plane.factor()};
    m_columnSpacing *= plane.factor();
    m_rowSpacing *= plane.factor() * (mirrored ? -1 : 1);
    m_normal = plane.normal();
    const OdSmartPtr<OdDbObjectIterator> walk = lm::drawing::attributesOf(*this);
    for (walk->start(); !walk->done(); walk->step()) {
        const OdSmartPtr<OdDbEntity> attribute = walk->entity();
        if (attribute->isDBRO()) attribute->upgradeOpen();
        attribute->transformBy(matrix);
    }
    return eOk;
}
