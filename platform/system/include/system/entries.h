// SPDX-License-Identifier: MIT
// Making and removing single entries of the file system. A failure is the answer, never an exception.
#pragma once

#include "system/export.h"

#include <string>
#include <system_error>

namespace lm::system {

/// Makes a folder; its parent must be there. The native path may end in "/". No error when it was made;
/// std::errc::file_exists when the name is taken, by a folder or anything else.
LM_SYSTEM_API std::error_code createFolder(const std::string& path) noexcept;

/// Removes a file or a link, which isn't followed; a folder stays and is an error.
LM_SYSTEM_API std::error_code deleteFile(const std::string& path) noexcept;

} // namespace lm::system
