// SPDX-License-Identifier: MIT
// A table of values that programs look up by root, key and name. It lives in this process alone and is empty
// at the start: nothing but setRegistryValue and setRegistryText fills it. Any thread may call.
//
//     setRegistryText(RegistryRoot::kMachine, widen("Software\\Maker"), widen("Folder"), folder);
#pragma once

#include "system/export.h"
#include "system/wide.h"

#include <optional>
#include <string>

namespace lm::system {

/// Whose values: those of the machine or those of the current user.
enum class RegistryRoot { kMachine, kUser };

/// The bytes of a value, with the 0 unit that closes a text; nothing when there is no such key or no such
/// value in it. Keys are paths with "\" between their parts. Key and name go without regard to case; the
/// empty name is the key's own value.
LM_SYSTEM_API std::optional<std::string> registryValue(RegistryRoot root, WideView key, WideView name);

/// Sets a value to any bytes. Other keys and values stay.
LM_SYSTEM_API void setRegistryValue(RegistryRoot root, WideView key, WideView name, std::string bytes);
/// Sets a value to a text: its units, low byte first, and a 0 unit behind them.
LM_SYSTEM_API void setRegistryText(RegistryRoot root, WideView key, WideView name, WideView text);

/// Takes all values out of the table.
LM_SYSTEM_API void clearRegistry();

} // namespace lm::system
