// SPDX-License-Identifier: MIT
#include "system/entries.h"

#include <cerrno>

#include <sys/stat.h>
#include <unistd.h>

namespace lm::system {

namespace {

std::error_code outcome(int result) noexcept {
    return result == 0 ? std::error_code() : std::error_code(errno, std::generic_category());
}

} // namespace

std::error_code createFolder(const std::string& path) noexcept {
    constexpr mode_t kAll = 0777; // less the umask
    return outcome(::mkdir(path.c_str(), kAll));
}

std::error_code deleteFile(const std::string& path) noexcept {
    return outcome(::unlink(path.c_str()));
}

} // namespace lm::system
