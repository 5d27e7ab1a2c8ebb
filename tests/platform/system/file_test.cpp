// SPDX-License-Identifier: MIT
#include "support/save_folder.h"

#include "system/file.h"

namespace {

using namespace lm::system;

class SameFile : public save_test::SaveFolderTest {};

TEST_F(SameFile, GoesByWhatPathsLeadTo) {
    put(path("a"), "1");
    put(path("b"), "1");
    save_test::fs::create_symlink("a", path("soft"));
    save_test::fs::create_hard_link(path("a"), path("hard"));
    save_test::fs::create_directory(path("folder"));
    EXPECT_TRUE(isSameFile(path("a"), path("a")));
    EXPECT_TRUE(isSameFile(path("a"), path("./folder/../a")));
    EXPECT_TRUE(isSameFile(path("a"), path("soft")));
    EXPECT_TRUE(isSameFile(path("hard"), path("soft")));
    EXPECT_FALSE(isSameFile(path("a"), path("b")));
    EXPECT_FALSE(isSameFile(path("a"), path("none")));
}

TEST_F(SameFile, GoesByNameWhereThereIsNoFileYet) {
    save_test::fs::create_symlink("new", path("soft"));
    save_test::fs::create_symlink("loop", path("loop"));
    EXPECT_TRUE(isSameFile(path("new"), path("new")));
    EXPECT_TRUE(isSameFile(path("new"), path("./new")));
    EXPECT_TRUE(isSameFile(path("new"), path("soft")));
    EXPECT_FALSE(isSameFile(path("new"), path("other")));
    EXPECT_FALSE(isSameFile(path("no folder/x"), path("no folder/y")));
    EXPECT_FALSE(isSameFile(path("loop"), path("new")));
}

TEST_F(SameFile, TellsStatesApart) {
    put(path("a"), "1");
    const auto before = stampOf(path("a"));
    ASSERT_TRUE(before.has_value());
    EXPECT_EQ(before, stampOf(path("a")));
    FileBytes bytes;
    EXPECT_EQ(readWhole(path("a"), bytes).stamp, *before);
    put(path("a"), "12");
    EXPECT_NE(before, stampOf(path("a")));
    EXPECT_FALSE(stampOf(path("none")).has_value());
}

} // namespace
