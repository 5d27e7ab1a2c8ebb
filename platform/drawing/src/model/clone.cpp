// SPDX-License-Identifier: MIT
// Copies of objects outside any database.
#include "model/databasedata.h"

#include "drawing/blockreference.h"
#include "drawing/curves.h"

namespace lm::drawing {

namespace {

using Copier = OdDbObject* (*)(const OdDbObject&);

template<class T>
OdDbObject* copyOf(const OdDbObject& object) {
    return new T(static_cast<const T&>(object));
}

struct Row {
    OdRxClass* (*desc)();
    Copier copy;
};

template<class T>
constexpr Row row() {
    return {&T::desc, &copyOf<T>};
}

constexpr Row kRows[] = {row<OdDbAttribute>(),
                         row<OdDbBlockReference>(),
                         row<OdDbPolyline>(),
                         row<OdDbLine>(),
                         row<OdDbText>(),
                         row<OdDbMText>(),
                         row<OdDbAttributeDefinition>(),
                         row<OdDbCircle>(),
                         row<OdDbArc>(),
                         row<OdDbEllipse>(),
                         row<OdDbPoint>(),
                         row<OdDbUnreadEntity>(),
                         row<OdDbUnreadObject>(),
                         row<OdDbLayerTableRecord>(),
                         row<OdDbRegAppTableRecord>()};

} // namespace

OdDbObject* cloneOutside(const OdDbObject& object) {
    for (const Row& entry : kRows)
        if (object.isA() == entry.desc()) return entry.copy(object);
    return nullptr;
}

} // namespace lm::drawing
