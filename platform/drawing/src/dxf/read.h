// SPDX-License-Identifier: MIT
// From the groups of one entry to its object.
#pragma once

#include "dxf/specs.h"

namespace lm::drawing {

/// Makes the object of an entry from its groups in the source, and hangs it on the entry. Values that can't
/// be read are reported; an entry whose groups break off keeps what came before.
void readBody(DatabaseData& data, Node& node);

/// Hands out the extended data of an entry, application by application, in the order of the file.
void readXData(Node& node, const std::function<void(const OdString&, OdSmartPtr<OdResBuf>)>& take);

/// A variable of the file's header as a record under its own group code, or null.
OdSmartPtr<OdResBuf> readHeaderVariable(const DatabaseData& data, std::string_view name);

/// Whether an attribute holds its multi-line form.
bool hasEmbeddedObject(const Source& source, const Node& node);

/// Reads fields from the groups of another entry into an object: the head of a block into its record.
void readFieldsFrom(DatabaseData& data, Node& from, OdDbObject& object, const ClassSpec& spec);

/// A copy of an object outside any database; null for a class that has none.
OdDbObject* cloneOutside(const OdDbObject& object);

/// Visits the groups of an entry in either form of file until `visit` answers false.
template<class F>
void forEachGroup(const Source& source, const Node& node, F&& visit);

} // namespace lm::drawing

#include "dxf/foreach.h"
