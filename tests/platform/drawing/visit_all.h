// SPDX-License-Identifier: MIT
// Opens everything that a drawing holds, so that every body, every chain and every attribute is read once.
// For the run over real drawings and for the fuzzer.
#pragma once

#include "model/databasedata.h"

#include "drawing/blockreference.h"
#include "drawing/database.h"

#include <cstddef>

namespace drawing_test {

inline std::size_t lengthOf(OdSmartPtr<OdResBuf> chain) {
    std::size_t records = 0;
    for (; !chain.isNull(); chain = chain->next()) {
        chain->getString();
        chain->getInt64();
        chain->getDouble();
        ++records;
    }
    return records;
}

/// Reads what one object has beyond its fields.
inline void visitObject(const OdSmartPtr<OdDbObject>& object) {
    lengthOf(object->xData());
    object->dxfName();
    object->ownerId().openObject(OdDb::kForRead, true);
    if (const OdDbEntity* entity = OdDbEntity::cast(object.get())) {
        entity->layer();
        OdSmartPtr<OdRxObject>(entity->clone(), lm::drawing::kAttach);
    }
    if (const OdDbText* text = OdDbText::cast(object.get())) {
        OdArray<OdGePoint3d> corners;
        text->getBoundingPoints(corners);
    }
    if (const OdDbBlockReference* reference = OdDbBlockReference::cast(object.get())) {
        reference->blockTransform();
        const OdSmartPtr<OdDbObjectIterator> walk = reference->attributeIterator();
        for (walk->start(); !walk->done(); walk->step())
            if (const OdDbAttribute* attribute = OdDbAttribute::cast(walk->entity().get())) attribute->tag();
    }
    if (const OdDbBlockTableRecord* block = OdDbBlockTableRecord::cast(object.get()))
        for (const OdDbObjectId id : block->getBlockReferenceIds()) id.isErased();
    if (const OdDbXrecord* record = OdDbXrecord::cast(object.get())) lengthOf(record->rbChain());
    if (const OdDbDictionary* dictionary = OdDbDictionary::cast(object.get()))
        for (const auto walk = dictionary->newIterator(); !walk->done(); walk->next()) walk->name();
}

/// Opens every object of a database; gives their number.
inline std::size_t visitAll(OdDbDatabase& db) {
    std::size_t objects = 0;
    db.data().nodes.forEach([&](lm::drawing::Node& node) {
        const OdSmartPtr<OdDbObject> object = OdDbObjectId(&node).openObject(OdDb::kForRead, true);
        if (object.isNull()) return;
        visitObject(object);
        ++objects;
    });
    for (const lm::drawing::HeaderVariable& variable : db.data().header)
        if (variable.name.size() > 1)
            db.getSysVar(OdString(lm::WideView(lm::system::fromUtf8(variable.name.substr(1)))));
    return objects;
}

} // namespace drawing_test
