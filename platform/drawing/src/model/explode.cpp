// SPDX-License-Identifier: MIT
// Parts of references, and attributes made of definitions.
#include "dxf/read.h"
#include "model/databasedata.h"
#include "model/iterators.h"
#include "model/stretch.h"

namespace {

/// Adds the pieces of one copy of an array.
void addCopy(const OdDbBlockReference& reference, int column, int row, OdDbObjectIterator& walk,
             OdArray<OdSmartPtr<OdDbEntity>>& pieces) {
    const OdGeMatrix3d matrix = OdGeMatrix3d::translation(lm::drawing::arrayShift(reference, column, row)) *
                                reference.blockTransform();
    for (walk.start(); !walk.done(); walk.step()) {
        const OdSmartPtr<OdDbEntity> copy(
            static_cast<OdDbEntity*>(lm::drawing::cloneOutside(*walk.entity().get())), lm::drawing::kAttach);
        if (reference.scaleFactors().sz < 0) lm::drawing::turnTextOver(*copy);
        lm::drawing::addPieces(copy, reference.blockTableRecord().database(), matrix, pieces);
    }
}

} // namespace

OdResult OdDbBlockReference::explode(OdArray<OdSmartPtr<OdDbEntity>>& pieces) const {
    const OdSmartPtr<OdDbObject> block = m_block.openObject();
    if (block.isNull() || !block->isKindOf(OdDbBlockTableRecord::desc())) return eNotApplicable;
    constexpr long long kMostPieces = 1000000; // a file may ask for a thousand million copies
    const OdSmartPtr<OdDbObjectIterator> walk = lm::drawing::partsOf(m_block.node());
    long long count = 0;
    for (walk->start(); !walk->done(); walk->step()) ++count;
    const long long copies = static_cast<long long>(columns()) * rows();
    if (copies > 1 && count * copies > kMostPieces) return eNotApplicable;
    for (long long copy = 0; count != 0 && copy < copies; ++copy)
        addCopy(*this, static_cast<int>(copy % columns()), static_cast<int>(copy / columns()), *walk.get(),
                pieces);
    return eOk;
}

void OdDbAttribute::setAttributeFromBlock(const OdDbAttributeDefinition* definition,
                                          const OdGeMatrix3d& matrix) {
    if (definition == nullptr) throw OdError(eNullObjectPointer);
    const OdDbObjectId style = definition->textStyle();
    if (isDBRO() && !style.isNull() && style.database() != database()) throw OdError(eInvalidInput);
    OdDbText::setTextString(definition->textString()); // a multi-line form stays as the caller gave it
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
    if (OdDbText::transformBy(matrix) != eOk) lm::drawing::stretchText(*this, matrix);
}
