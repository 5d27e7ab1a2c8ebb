// SPDX-License-Identifier: MIT
#include "system/path.h"

#include <algorithm>

namespace lm::system {

std::string nativePath(WideView path) {
    std::string native = toUtf8(path);
    std::replace(native.begin(), native.end(), '\\', '/');
    return native;
}

} // namespace lm::system
