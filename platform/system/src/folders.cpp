// SPDX-License-Identifier: MIT
#include "system/folders.h"

#include <cstdlib>
#include <filesystem>
#include <system_error>

namespace lm::system {

WideString commonDataFolder() {
    const char* const told = std::getenv("LM_COMMON_APPDATA");
    return fromUtf8(told == nullptr || *told == '\0' ? "/var/lib" : told);
}

WideString programPath() {
    std::error_code code;
    const std::filesystem::path path = std::filesystem::read_symlink("/proc/self/exe", code);
    if (code) throw std::system_error(code, "Failed to get executable path");
    return fromUtf8(path.native());
}

} // namespace lm::system
