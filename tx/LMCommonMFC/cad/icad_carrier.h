// SPDX-License-Identifier: MIT
// The settings carrier of a project: the first point of model space on the layer "RZ_FREEZE". Internal.
#pragma once

#include "text/rzstring.h"

#include "drawing/curves.h"
#include "drawing/database.h"

#include <functional>

namespace lm::cad {

/// Shows the points of model space on the carrier's layer, whose name is meant with regard to case, in
/// drawing order until `visit` answers true, which must not change the drawing. Model space is open for write
/// all the while. A null database and one without model space have none.
void walkCarriers(const OdDbDatabase* db, const std::function<bool(const OdDbPoint&)>& visit);

/// The first of these points, whatever it holds, open in `mode`; null without one. For writing, all entities
/// up to it are opened so, and what refuses that isn't looked at.
OdSmartPtr<OdDbPoint> firstCarrier(const OdDbDatabase* db, OdDb::OpenMode mode);

/// Reads the text behind the id in a chain of an object. False, with `text` as it was, when there is no chain
/// or nothing but the id in it.
bool readSetting(const OdDbObject& carrier, const RZString& id, RZString& text);

/// A chain of an id and a text.
OdSmartPtr<OdResBuf> settingChain(const RZString& id, const RZString& text);

/// Gives an object a chain, in place of the one under the same id. It is upgraded when it isn't open for
/// write.
void writeChain(OdDbObject& object, const OdSmartPtr<OdResBuf>& chain);

} // namespace lm::cad
