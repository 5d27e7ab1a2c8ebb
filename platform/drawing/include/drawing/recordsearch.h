// SPDX-License-Identifier: MIT
// Names of records as commands and programs give them: which ones can be given, and which record is meant by
// one. The database itself compares names exactly, since it also keeps what other programs wrote.
#pragma once

#include "drawing/symboltable.h"

namespace lm::drawing {

/// Whether a text can name a record: 1 to 255 units, none of them a control or one of <>/\":;?*,=` and,
/// unless allowed, no |.
LM_DRAWING_API bool isValidName(WideView name, bool barAllowed = false) noexcept;

/// The record of a name: of this very name, else the first live one whose name differs in its case only. Null
/// where there is none. The first search of a table without this very name reads the names of all its
/// records.
LM_DRAWING_API OdDbObjectId recordCalled(const OdDbSymbolTable& table, const OdString& name);

} // namespace lm::drawing
