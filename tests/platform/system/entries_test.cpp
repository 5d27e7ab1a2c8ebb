// SPDX-License-Identifier: MIT
#include "support/save_folder.h"

#include "system/entries.h"

namespace {

using lm::system::createFolder;
using lm::system::deleteFile;
namespace fs = std::filesystem;

class Entries : public save_test::SaveFolderTest {};

TEST_F(Entries, FoldersAreMadeOneByOne) {
    EXPECT_FALSE(createFolder(path("one")));
    EXPECT_TRUE(fs::is_directory(path("one")));
    EXPECT_FALSE(createFolder(path("two/")));
    EXPECT_TRUE(fs::is_directory(path("two")));
    EXPECT_EQ(createFolder(path("one")), std::errc::file_exists);
    EXPECT_EQ(createFolder(path("none/below")), std::errc::no_such_file_or_directory);
    EXPECT_EQ(createFolder(""), std::errc::no_such_file_or_directory);
    put(path("file"), "1");
    EXPECT_EQ(createFolder(path("file")), std::errc::file_exists);
    EXPECT_EQ(createFolder(path("file/below")), std::errc::not_a_directory);
}

TEST_F(Entries, FilesAndLinksAreRemovedAndFoldersAreNot) {
    put(path("file"), "1");
    fs::create_symlink("file", path("link"));
    EXPECT_FALSE(deleteFile(path("link")));
    EXPECT_TRUE(fs::exists(path("file"))) << "the link isn't followed";
    EXPECT_FALSE(deleteFile(path("file")));
    EXPECT_FALSE(fs::exists(path("file")));
    EXPECT_EQ(deleteFile(path("file")), std::errc::no_such_file_or_directory);
    fs::create_directory(path("folder"));
    EXPECT_TRUE(deleteFile(path("folder")));
    EXPECT_TRUE(fs::is_directory(path("folder")));
}

} // namespace
