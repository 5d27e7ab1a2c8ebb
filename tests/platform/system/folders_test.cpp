// SPDX-License-Identifier: MIT
#include "system/folders.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>

namespace {

using lm::system::commonDataFolder;
using lm::system::toUtf8;

TEST(Folders, CommonDataStandWhereTheEnvironmentTells) {
    ::setenv("LM_COMMON_APPDATA", "/data/comum \xC3\xA7", 1);
    EXPECT_EQ(toUtf8(commonDataFolder()), "/data/comum \xC3\xA7");
    ::setenv("LM_COMMON_APPDATA", "", 1);
    EXPECT_EQ(toUtf8(commonDataFolder()), "/var/lib");
    ::unsetenv("LM_COMMON_APPDATA");
    EXPECT_EQ(toUtf8(commonDataFolder()), "/var/lib");
}

TEST(Folders, TheProgramIsTheOneThatRuns) {
    const std::filesystem::path path = toUtf8(lm::system::programPath());
    EXPECT_TRUE(path.is_absolute());
    EXPECT_EQ(path.filename(), "lm_test_system");
}

} // namespace
