// SPDX-License-Identifier: MIT
// The one place where the host reads a drawing file.
#pragma once

#include "host/database.h"

#include <memory>

namespace lm::host {

/// Reads a drawing file into a new database. Raises OdError.
std::unique_ptr<CHostDatabase> readDatabase(const OdString& path, bool convertCodePage);

} // namespace lm::host
