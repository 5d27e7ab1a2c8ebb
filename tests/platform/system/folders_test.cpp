// SPDX-License-Identifier: MIT
#include "system/folders.h"
#include "system/path.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <system_error>

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

TEST(Folders, TemporaryFilesStandWhereTheEnvironmentTells) {
    const char* const before = std::getenv("TMPDIR");
    const std::string kept = before == nullptr ? "" : before;
    const struct {
        const char* told;
        const char* folder;
    } rows[] = {
        {"/data/a \xC3\xA7", "/data/a \xC3\xA7/"},
        {"/data/", "/data/"},
        {"/data//x/./y/../z//", "/data/x/z/"},
        {"/", "/"},
        {"", "/tmp/"},
        {"relative", "relative/"},
        {"/b\xE9", "/b\xE9/"},
    };
    for (const auto& row : rows) {
        ::setenv("TMPDIR", row.told, 1);
        EXPECT_EQ(lm::system::nativePath(lm::system::temporaryFolder()), row.folder) << row.told;
    }
    ::unsetenv("TMPDIR");
    EXPECT_EQ(toUtf8(lm::system::temporaryFolder()), "/tmp/");
    if (before != nullptr) ::setenv("TMPDIR", kept.c_str(), 1);
}

TEST(Folders, AProgramThatCannotBeToldIsAnError) {
    lm::system::failProgramPath(EACCES);
    try {
        lm::system::programPath();
        ADD_FAILURE() << "nothing was raised";
    } catch (const std::system_error& error) {
        EXPECT_EQ(error.code(), std::errc::permission_denied);
        EXPECT_EQ(std::string(error.what()).find("Failed to get executable path"), 0u) << error.what();
    }
    lm::system::failProgramPath(0);
    EXPECT_FALSE(lm::system::programPath().empty());
}

TEST(Folders, TheProgramIsTheOneThatRuns) {
    const std::filesystem::path path = toUtf8(lm::system::programPath());
    EXPECT_TRUE(path.is_absolute());
    EXPECT_EQ(path.filename(), "lm_test_system");
}

} // namespace
