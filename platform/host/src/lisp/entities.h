// SPDX-License-Identifier: MIT
// Objects of the session's drawing by their names.
#pragma once

#include "document.h"
#include "entityname.h"

#include "drawing/dictionary.h"

namespace lm::host::lisp {

/// An entity name among the arguments; raises LispError for any other value.
EntityName& nameAt(Machine& machine, Arguments arguments, std::size_t index);

/// The object of a name in a mode: null for an erased one, one of another drawing, and the end of attributes.
OdSmartPtr<OdDbObject> openNamed(Machine& machine, const EntityName& name,
                                 OdDb::OpenMode mode = OdDb::kForRead);

/// Objects whose name is no entity name are no entities: the id of a live entity, else null.
OdDbObjectId liveEntity(Machine& machine, const EntityName& name);

/// Whether a dictionary is one that every drawing needs.
bool isNeededDictionary(const OdDbDatabase& database, const OdDbDictionary& object);

} // namespace lm::host::lisp
