// SPDX-License-Identifier: MIT
// Look-up of the functions that can be called by name.
#pragma once

#include "host/functions.h"

#include <memory>

namespace lm::host {

/// The function of a name, ignoring case, or null. It stays callable while the pointer is held.
std::shared_ptr<const HostFunction> findFunction(const CHostString& name);

} // namespace lm::host
