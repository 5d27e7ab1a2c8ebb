// SPDX-License-Identifier: MIT
#include "drawing/entity.h"

#include "base/rxclass.h"
#include "model/databasedata.h"

using lm::drawing::Node;

LM_RX_DEFINE_ABSTRACT(OdDbObjectIterator, OdRxObject)
LM_RX_DEFINE_ABSTRACT(OdDbEntity, OdDbObject)

namespace {
const OdString kLayerZero = lm::drawing::odText("0");

/// An id of another drawing would name an object that may go while the entity stays.
void refuseForeign(const OdDbEntity& entity, OdDbObjectId id) {
    if (entity.isDBRO() && !id.isNull() && id.database() != entity.database()) throw OdError(eInvalidInput);
}
} // namespace

const OdString& OdDbEntity::layer() const {
    if (!m_layer.isValid()) return kLayerZero;
    OdDbObject* record = m_layer.node()->body;
    if (record == nullptr) record = m_layer.database()->data().bodyOf(m_layer.node());
    return static_cast<OdDbSymbolTableRecord*>(record)->getName();
}

void OdDbEntity::setLayer(const OdString& name) {
    OdDbDatabase* const db = database();
    if (db == nullptr) throw OdError(eNotInDatabase);
    Node* const found = db->data().tableRecord(db->data().fixed.layerTable, name);
    if (found == nullptr) throw OdError(eKeyNotFound);
    beginChange();
    m_layer = OdDbObjectId(found);
}

void OdDbEntity::setLayer(OdDbObjectId id) {
    const OdSmartPtr<OdDbLayerTableRecord> record(id.openObject(OdDb::kForRead, true));
    if (record.isNull()) throw OdError(eKeyNotFound);
    refuseForeign(*this, id);
    beginChange();
    m_layer = id;
}

void OdDbEntity::setColor(const OdCmColor& color) {
    beginChange();
    m_color = color;
}

void OdDbEntity::setLinetype(OdDbObjectId id) {
    refuseForeign(*this, id);
    beginChange();
    m_linetype = id;
}

void OdDbEntity::setLinetypeScale(double scale) {
    beginChange();
    m_linetypeScale = scale;
}

void OdDbEntity::setLineWeight(int weight) {
    beginChange();
    m_lineWeight = static_cast<short>(weight);
}

void OdDbEntity::setTransparency(unsigned int transparency) {
    beginChange();
    m_transparency = transparency;
}

void OdDbEntity::setVisible(bool visible) {
    beginChange();
    m_visible = visible;
}

void OdDbEntity::setPropertiesFrom(const OdDbEntity* other) {
    if (other == nullptr) return;
    refuseForeign(*this, other->m_layer);
    refuseForeign(*this, other->m_linetype);
    beginChange();
    m_layer = other->m_layer;
    m_linetype = other->m_linetype;
    m_color = other->m_color;
    m_lineWeight = other->m_lineWeight;
    m_transparency = other->m_transparency;
    m_linetypeScale = other->m_linetypeScale;
    m_visible = other->m_visible;
}

OdResult OdDbEntity::transformBy(const OdGeMatrix3d&) {
    return eNotApplicable;
}

OdResult OdDbEntity::explode(OdArray<OdSmartPtr<OdDbEntity>>&) const {
    return eNotApplicable;
}

OdResult OdDbEntity::getGeomExtents(OdGeExtents3d&) const {
    return eNotApplicable;
}

void OdDbEntity::recordGraphicsModified(bool set) {
    if (set) ++m_graphicsRequests;
}

void OdDbEntity::subBecomeResident() {
    // An entity that comes from another drawing, or was never given a layer, stands on layer "0".
    if (!m_layer.isValid() || m_layer.database() != database()) m_layer = database()->getLayerZeroId();
}
