// SPDX-License-Identifier: MIT
#include "drawing/attributeplace.h"

#include "model/stretch.h"

namespace lm::drawing {

void placeAttribute(OdDbAttribute& attribute, const OdDbAttributeDefinition& definition,
                    const OdDbBlockReference& reference) {
    const OdGeMatrix3d matrix = reference.blockTransform();
    const bool over = reference.scaleFactors().sz < 0;
    if (over) {
        const OdSmartPtr<OdDbAttributeDefinition> turned(new OdDbAttributeDefinition(definition), kAttach);
        turnTextOver(*turned);
        attribute.setAttributeFromBlock(turned.get(), matrix);
    } else {
        attribute.setAttributeFromBlock(&definition, matrix);
    }
    const OdSmartPtr<OdDbMText> lines = attribute.getMTextAttribute();
    if (lines.isNull()) return;
    if (over) turnTextOver(*lines);
    if (lines->transformBy(matrix) != eOk) stretchMText(*lines, matrix);
}

} // namespace lm::drawing
