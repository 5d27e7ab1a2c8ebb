// SPDX-License-Identifier: MIT
#include "system/folders.h"

#include "system/path.h"

#include <atomic>
#include <cstdlib>
#include <filesystem>
#include <system_error>

namespace lm::system {

namespace {

std::atomic<int> g_programPathError{0};

/// The value of an environment variable; the fallback when it is unset or empty.
const char* environment(const char* name, const char* fallback) {
    const char* const told = std::getenv(name);
    return told == nullptr || *told == '\0' ? fallback : told;
}

} // namespace

WideString commonDataFolder() {
    return pathText(environment("LM_COMMON_APPDATA", "/var/lib"));
}

WideString temporaryFolder() {
    std::string folder = std::filesystem::path(environment("TMPDIR", "/tmp")).lexically_normal().native();
    if (!folder.ends_with('/')) folder += '/';
    return pathText(folder);
}

WideString programPath() {
    std::error_code code(g_programPathError.load(), std::generic_category());
    std::filesystem::path path;
    if (!code) path = std::filesystem::read_symlink("/proc/self/exe", code);
    if (code) throw std::system_error(code, "Failed to get executable path");
    return pathText(path.native());
}

void failProgramPath(int error) noexcept {
    g_programPathError = error;
}

} // namespace lm::system
