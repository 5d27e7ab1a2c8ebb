// SPDX-License-Identifier: MIT
// The document and the drawing that a session works on.
#pragma once

#include "machine.h"

#include "host/database.h"

class CHostDocument;

namespace lm::host::lisp {

/// The document whose interface the session belongs to, or null for an interface without one.
CHostDocument* documentOf(Machine& machine);

/// The database of that document, or null.
CHostDatabase* databaseOf(Machine& machine);

/// The same; raises LispError for a session without one.
CHostDatabase& requireDatabase(Machine& machine);

} // namespace lm::host::lisp
