// SPDX-License-Identifier: MIT
// Copies of objects outside any database.
#include "dxf/read.h"
#include "model/databasedata.h"

namespace lm::drawing {

OdDbObject* cloneOutside(const OdDbObject& object) {
    // These two own further objects.
    if (const auto* reference = OdDbBlockReference::cast(&object)) return new OdDbBlockReference(*reference);
    if (const auto* unread = OdDbUnreadEntity::cast(&object)) return new OdDbUnreadEntity(*unread);
    OdDbObject* const copy = ObjectAccess::newState(object);
    ObjectAccess::setRaw(*copy, rawGroupsOf(object));
    return copy;
}

} // namespace lm::drawing
