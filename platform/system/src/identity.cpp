// SPDX-License-Identifier: MIT
#include "system/identity.h"

#include <vector>

#include <pwd.h>
#include <unistd.h>

namespace lm::system {

WideString computerName() {
    constexpr std::size_t kMostUnits = 15;
    char name[256] = {}; // no host's name is longer; the last 0 stays
    if (::gethostname(name, sizeof name - 1) != 0) return {};
    const std::string_view whole(name);
    return fromUtf8(whole.substr(0, whole.find('.'))).substr(0, kMostUnits);
}

WideString userName() {
    constexpr std::size_t kMostUnits = 99;
    constexpr std::size_t kRoom = 16384;
    std::vector<char> room(kRoom);
    passwd entry{};
    passwd* found = nullptr;
    if (::getpwuid_r(::geteuid(), &entry, room.data(), room.size(), &found) != 0 || found == nullptr)
        return {};
    WideString name = fromUtf8(found->pw_name);
    return name.size() <= kMostUnits ? name : WideString();
}

} // namespace lm::system
