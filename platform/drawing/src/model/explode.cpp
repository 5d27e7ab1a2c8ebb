// SPDX-License-Identifier: MIT
// Parts of references, and attributes made of definitions.
#include "dxf/read.h"
#include "model/databasedata.h"
#include "model/iterators.h"
#include "model/stretch.h"

using lm::drawing::Node;

OdResult OdDbBlockReference::explode(OdArray<OdSmartPtr<OdDbEntity>>& pieces) const {
    const OdSmartPtr<OdDbObject> block = m_block.openObject();
    if (block.isNull() || !block->isKindOf(OdDbBlockTableRecord::desc())) return eNotApplicable;
    const OdGeMatrix3d matrix = blockTransform();
    const OdSmartPtr<OdDbObjectIterator> walk = lm::drawing::partsOf(m_block.node());
    for (walk->start(); !walk->done(); walk->step()) {
        auto* const copy = static_cast<OdDbEntity*>(lm::drawing::cloneOutside(*walk->entity().get()));
        lm::drawing::addPieces(OdSmartPtr<OdDbEntity>(copy, lm::drawing::kAttach), m_block.database(), matrix,
                               pieces);
    }
    return eOk;
}

void OdDbAttribute::setAttributeFromBlock(const OdDbAttributeDefinition* definition,
                                          const OdGeMatrix3d& matrix) {
    if (definition == nullptr) throw OdError(eNullObjectPointer);
    const OdDbObjectId style = definition->textStyle();
    if (isDBRO() && !style.isNull() && style.database() != database()) throw OdError(eInvalidInput);
    setTextString(definition->textString());
    setPosition(definition->position());
    setAlignmentPoint(definition->alignmentPoint());
    setHeight(definition->height());
    setRotation(definition->rotation());
    setOblique(definition->oblique());
    setWidthFactor(definition->widthFactor());
    setThickness(definition->thickness());
    setNormal(definition->normal());
    setTextStyle(style);
    setHorizontalMode(definition->horizontalMode());
    setVerticalMode(definition->verticalMode());
    setMirrorInX(definition->isMirroredInX());
    setMirrorInY(definition->isMirroredInY());
    if (transformBy(matrix) != eOk) lm::drawing::stretchText(*this, matrix);
}
