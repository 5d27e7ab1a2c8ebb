// SPDX-License-Identifier: MIT
#include "system/path.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

namespace {

using lm::WideString;
using lm::system::nativePath;
using lm::system::widen;

TEST(NativePath, TurnsEveryBackslashAtTheLastMoment) {
    const struct {
        const char* path;
        const char* native;
    } rows[] = {
        {"", ""},
        {"drawing.dxf", "drawing.dxf"},
        {"\\", "/"},
        {"a\\b\\c.dxf", "a/b/c.dxf"},
        {"/already/native", "/already/native"},
        {"/mixed\\and/so\\on", "/mixed/and/so/on"},
        {"\\\\server\\share\\", "//server/share/"},
        {"C:\\x", "C:/x"},
        {"..\\.\\up", ".././up"},
        {"50% [a] *?", "50% [a] *?"},
    };
    for (const auto& row : rows) EXPECT_EQ(nativePath(widen(row.path)), row.native) << row.path;
}

TEST(NativePath, LeavesTheTextItselfAlone) {
    const WideString path = widen("a\\b");
    EXPECT_EQ(nativePath(path), "a/b");
    EXPECT_EQ(path, widen("a\\b"));
}

TEST(NativePath, GivesUtf8WhateverTheLocaleIs) {
    const WideString path = {'p', 0x00E1, 'g', '\\', 0x03A9, 0xD83D, 0xDE00};
    EXPECT_EQ(nativePath(path), "p\xC3\xA1g/\xCE\xA9\xF0\x9F\x98\x80");
}

TEST(NativePath, DoesNotTakeAByteOfALongerCharacterForASeparator) {
    const WideString path = {0x015C, 0x5C5C, 0x205C}; // each has the byte of "\" in its number
    EXPECT_EQ(nativePath(path), "\xC5\x9C\xE5\xB1\x9C\xE2\x81\x9C");
}

TEST(NativePath, OpensAFileInAFolderWithASpaceAndAnAccent) {
    const auto folder = std::filesystem::temp_directory_path() / "lm p\xC3\xA1gina test";
    std::filesystem::create_directories(folder);
    std::ofstream(folder / "file.txt") << "content";
    WideString path = lm::system::fromUtf8(folder.string());
    path += widen("\\file.txt");
    std::ifstream in(nativePath(path));
    std::string content;
    in >> content;
    EXPECT_EQ(content, "content");
    std::filesystem::remove_all(folder);
}

TEST(PathText, FindsFilesOfAnyName) {
    for (const char* native : {"", "a.dxf", "b\xE9.dxf", "\xFF", "p\xC3\xA1gina\xC3", "\xED\xB3\xA9",
                               "\xF0\x9F\x98\x80\x80", "a\x80\x80"})
        EXPECT_EQ(nativePath(lm::system::pathText(native)), native);
    const WideString text = lm::system::pathText("b\xE9");
    ASSERT_EQ(text.size(), 2u);
    EXPECT_EQ(text[1], 0xDCE9);
    EXPECT_EQ(lm::system::pathText("p\xC3\xA1"), lm::system::fromUtf8("p\xC3\xA1"));
    // The second half of a character outside the first plane is no byte.
    EXPECT_EQ(nativePath(lm::system::fromUtf8("\xF0\x9F\xB2\xA9")), "\xF0\x9F\xB2\xA9");
}

TEST(ShownPath, WritesBytesThatAreNoTextAsNumbers) {
    using lm::system::shownPath;
    EXPECT_EQ(shownPath("p\xC3\xA1gina.dxf"), "p\xC3\xA1gina.dxf");
    EXPECT_EQ(shownPath("b\xE9.dxf"), "b\\xE9.dxf");
    EXPECT_EQ(shownPath("\xC3"), "\\xC3");
    EXPECT_EQ(shownPath(""), "");
}

} // namespace
