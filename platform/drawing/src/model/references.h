// SPDX-License-Identifier: MIT
// The ids by which objects refer to others.
#pragma once

#include "model/databasedata.h"

namespace lm::drawing {

template<class F>
void mapEntityIds(OdDbEntity& entity, F& map);

/// Style and embedded form of texts; `text` needn't be one.
template<class F>
void mapTextIds(OdDbText& text, F& map) {
    if (const OdDbObjectId style = map(text.textStyle()); style != text.textStyle()) text.setTextStyle(style);
    OdSmartPtr<OdDbMText> embedded;
    if (const auto* attribute = OdDbAttribute::cast(&text))
        embedded = attribute->getMTextAttribute();
    else if (const auto* definition = OdDbAttributeDefinition::cast(&text))
        embedded = definition->getMTextAttributeDefinition();
    if (!embedded.isNull()) mapEntityIds(*embedded.get(), map);
}

template<class F>
void mapEntityIds(OdDbEntity& entity, F& map) {
    OdDbObjectId& layer = ObjectAccess::layerOf(entity);
    if (!layer.isNull())
        if (const OdDbObjectId id = map(layer); id != layer) layer = id;
    if (const OdDbObjectId old = entity.linetypeId(); !old.isNull())
        if (const OdDbObjectId id = map(old); id != old) entity.setLinetype(id);
    if (auto* reference = OdDbBlockReference::cast(&entity)) {
        const OdDbObjectId old = reference->blockTableRecord();
        if (const OdDbObjectId id = map(old); id != old) reference->setBlockTableRecord(id);
    } else if (auto* text = OdDbText::cast(&entity)) {
        mapTextIds(*text, map);
    } else if (auto* mtext = OdDbMText::cast(&entity)) {
        if (const OdDbObjectId id = map(mtext->textStyle()); id != mtext->textStyle())
            mtext->setTextStyle(id);
    }
}

/// Calls `map` for each id by which an object refers to another as a field of its class, and puts what it
/// answers. Entries of dictionaries and the data of xrecords aren't among them.
template<class F>
void mapIds(OdDbObject& object, F&& map) {
    if (auto* entity = OdDbEntity::cast(&object)) {
        mapEntityIds(*entity, map);
    } else if (auto* layer = OdDbLayerTableRecord::cast(&object)) {
        const OdDbObjectId old = layer->linetypeObjectId();
        if (const OdDbObjectId id = map(old); id != old) layer->setLinetypeObjectId(id);
    }
}

/// Whether a record of an xrecord holds a handle.
inline bool isXrecordHandle(int code) {
    return (code >= 320 && code <= 369) || (code >= 390 && code <= 399) || code == 480 || code == 481;
}

} // namespace lm::drawing
