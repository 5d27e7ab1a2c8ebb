// SPDX-License-Identifier: MIT
// What the insertion and the redefinition of symbols share.
#pragma once

#include "text/rzstring.h"

#include "drawing/objectid.h"
#include "host/database.h"

namespace lm::cad {

/// Reads a symbol file as a database of its own. Null in a host without services; OdError for a file that
/// can't be read.
OdSmartPtr<CHostDatabase> readSymbolFile(const RZString& path);

/// Makes a drawing a block of the current database, with the origin (0, 0, 0): where the drawing had its base
/// point. The source stays as it is. The null id when the name can't be made, and without a database.
/// OdError, and no new block, for a drawing with an entity that can't be moved there.
OdDbObjectId insertSymbol(const RZString& name, OdDbDatabase& source);

} // namespace lm::cad
