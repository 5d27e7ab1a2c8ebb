// SPDX-License-Identifier: MIT
#include "system/identity.h"

#include <gtest/gtest.h>

#include <pwd.h>
#include <unistd.h>

namespace {

using lm::system::toUtf8;

TEST(Identity, TheComputerIsTheHostUpToItsPoint) {
    char host[256] = {};
    ASSERT_EQ(::gethostname(host, sizeof host - 1), 0);
    const std::string name = toUtf8(lm::system::computerName());
    EXPECT_LE(name.size(), 15u);
    EXPECT_EQ(std::string(host).rfind(name, 0), 0u);
    EXPECT_EQ(name.find('.'), std::string::npos);
    const char next = host[name.size()];
    EXPECT_TRUE(name.size() == 15 || next == '\0' || next == '.') << host;
}

TEST(Identity, TheUserIsTheOneWhomTheProcessActsFor) {
    const passwd* const entry = ::getpwuid(::geteuid());
    EXPECT_EQ(toUtf8(lm::system::userName()), entry == nullptr ? "" : entry->pw_name);
}

} // namespace
