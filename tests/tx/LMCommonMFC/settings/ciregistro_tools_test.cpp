// SPDX-License-Identifier: MIT
// What the store offers beside the settings.
#include "settingssupport.h"

#include "system/folders.h"
#include "system/identity.h"
#include "system/registry.h"

#include <QDir>

namespace {

using namespace settings_test;
using lm::system::RegistryRoot;
using lm::system::widen;

class TextFile : public testing::Test {
protected:
    /// The text that a file of these bytes gives, as UTF-8.
    std::string read(std::string_view bytes) {
        write(m_path, bytes);
        RZString output("before");
        EXPECT_TRUE(CIRegistro().ReadTextFile(m_folder.text("file.txt"), output));
        EXPECT_FALSE(fs::exists(m_path)) << "reading takes the file away";
        return told(output);
    }

    const Folder m_folder;
    const fs::path m_path = m_folder.path() / "file.txt";
};

TEST_F(TextFile, IsItsBytesTakenAsUnits) {
    EXPECT_EQ(read("abcd"), "\xE6\x89\xA1\xE6\x91\xA3\n") << "0x6261 0x6463";
    EXPECT_EQ(read("abc"), "\xE6\x89\xA1"
                           "c\n")
        << "an odd last byte is the low half";
    EXPECT_EQ(read("a"), "a\n");
    EXPECT_EQ(read("\xFF\xFE"), "\xEF\xBB\xBF\n") << "not even a byte order mark is taken out";
}

TEST_F(TextFile, LosesItsZeroBytesBeforeThat) {
    EXPECT_EQ(read(std::string_view("a\0b\0", 4)), "\xE6\x89\xA1\n");
    EXPECT_EQ(read(std::string_view("\0\0\0\0", 4)), "\n");
}

TEST_F(TextFile, HasALineFeedBehindEachLine) {
    EXPECT_EQ(read(""), "");
    EXPECT_EQ(read("\n"), "\n") << "a last line feed makes no line";
    EXPECT_EQ(read("a\nb"), "a\nb\n");
    EXPECT_EQ(read("a\nb\n"), "a\nb\n");
    EXPECT_EQ(read("a\n\n\nb"), "a\n\n\nb\n");
    EXPECT_EQ(read("a\r\n"), "\xE0\xB5\xA1\n") << "a carriage return stays: 0x0D61";
    EXPECT_EQ(read("a\x1A\nb"), "\xE1\xA9\xA1\nb\n") << "no byte ends the file";
    const std::string line(100000, 'x');
    EXPECT_EQ(read(line + "\n").size(), 3 * line.size() / 2 + 1);
}

TEST_F(TextFile, ThatCannotBeOpenedStays) {
    RZString output("before");
    EXPECT_FALSE(CIRegistro().ReadTextFile(m_folder.text("none"), output));
    EXPECT_EQ(output, "");
    output = "before";
    EXPECT_FALSE(CIRegistro().ReadTextFile(m_folder.text(""), output)) << "a folder";
    EXPECT_EQ(output, "");
    EXPECT_TRUE(fs::is_directory(m_folder.path()));
    EXPECT_FALSE(CIRegistro().ReadTextFile("", output));
    write(m_path, "secret");
    fs::permissions(m_path, fs::perms::owner_read);
    if (::geteuid() != 0) fs::permissions(m_path, fs::perms::none);
    {
        const AsNobody nobody;
        EXPECT_FALSE(CIRegistro().ReadTextFile(m_folder.text("file.txt"), output));
    }
    EXPECT_TRUE(fs::exists(m_path));
}

TEST_F(TextFile, MayBeNamedWithEitherSeparator) {
    write(m_path, "a");
    RZString output;
    EXPECT_TRUE(CIRegistro().ReadTextFile(text(m_folder.path().native() + "\\file.txt"), output));
    EXPECT_EQ(output, "a\n");
}

TEST_F(TextFile, ThatCannotBeReadToItsEndIsReportedAndRaised) {
    const lm::test::LogCapture log;
    RZString output;
    // The memory of the process has nothing at its beginning, so that opening works and reading doesn't.
    EXPECT_THROW(CIRegistro().ReadTextFile("/proc/self/mem", output), std::exception);
    ASSERT_EQ(log.lines().size(), 1u);
    EXPECT_EQ(log.lines()[0].find("CIRegistro::ReadTextFile : "), 0u) << log.lines()[0];
}

struct RegistryValue : testing::Test {
    ~RegistryValue() override { lm::system::clearRegistry(); }
    static std::string get(const char* key, const char* name) {
        return told(CIRegistro().GetRegistryValue(rz(key), rz(name)));
    }
};

TEST_F(RegistryValue, IsThatOfTheMachine) {
    EXPECT_EQ(get("Software\\X", "Name"), "") << "no key";
    lm::system::setRegistryText(RegistryRoot::kUser, widen("Software\\X"), widen("Name"), widen("user"));
    EXPECT_EQ(get("Software\\X", "Name"), "");
    lm::system::setRegistryText(RegistryRoot::kMachine, widen("Software\\X"), widen("Name"),
                                lm::system::fromUtf8("\xC3\xA7 \xCE\xA9"));
    EXPECT_EQ(get("software\\x", "NAME"), "\xC3\xA7 \xCE\xA9") << "exact units, in any case";
    EXPECT_EQ(get("Software\\X", "Other"), "");
}

TEST_F(RegistryValue, IsWhateverBytesStandThere) {
    const auto of = [](std::string bytes) {
        lm::system::setRegistryValue(RegistryRoot::kMachine, widen("K"), widen("N"), std::move(bytes));
        return get("K", "N");
    };
    EXPECT_EQ(of(std::string("A\0B\0", 4)), "AB") << "a number";
    EXPECT_EQ(of(std::string("a\0\0\0b\0", 6)), "a") << "up to a zero unit";
    EXPECT_EQ(of("a"), "a");
    EXPECT_EQ(of(""), "");
}

TEST_F(RegistryValue, TakesAtMost1024Bytes) {
    const auto lengthOf = [](std::size_t units) {
        lm::system::setRegistryText(RegistryRoot::kMachine, widen("K"), widen("N"),
                                    lm::WideString(units, 'x'));
        return get("K", "N").size();
    };
    EXPECT_EQ(lengthOf(511), 511u);
    EXPECT_EQ(lengthOf(512), 0u) << "the zero unit behind it counts";
}

class Directory : public testing::Test {
protected:
    Directory() { fs::current_path(m_folder.path()); }
    ~Directory() override { fs::current_path(m_before); }
    const Folder m_folder;
    const fs::path m_before = fs::current_path();
};

TEST_F(Directory, IsMadeWithAllAboveIt) {
    const auto make = [](const std::string& path) { CIRegistro().CreateFullDirectory(text(path)); };
    const std::string root = m_folder.path().native();
    make(root + "/a/b/c");
    EXPECT_TRUE(fs::is_directory(m_folder.path() / "a/b/c")) << "an absolute path keeps its root";
    std::string other = root + "\\d\\\xC3\xA7 e\\";
    std::replace(other.begin(), other.end(), '/', '\\');
    make(other);
    EXPECT_TRUE(fs::is_directory(m_folder.path() / "d/\xC3\xA7 e"));
    make("f\\g/h");
    EXPECT_TRUE(fs::is_directory("f/g/h")) << "a relative path stays one";
    make("//" + root.substr(1) + "//i//j//");
    EXPECT_TRUE(fs::is_directory(m_folder.path() / "i/j"));
    make("C:\\x");
    EXPECT_TRUE(fs::is_directory("C:/x")) << "a drive is a folder like any other";
}

TEST_F(Directory, ThatCannotBeMadeIsPassedOver) {
    const auto make = [](const std::string& path) { CIRegistro().CreateFullDirectory(text(path)); };
    write("file", "1");
    EXPECT_NO_THROW(make("file\\below"));
    EXPECT_EQ(contentOf("file"), "1");
    EXPECT_NO_THROW(make(""));
    EXPECT_NO_THROW(make("\\"));
    EXPECT_NO_THROW(make("/"));
    EXPECT_EQ(std::distance(fs::directory_iterator("."), {}), 1);
    fs::create_directory("there");
    write("there/kept", "1");
    make("there\\more");
    EXPECT_TRUE(fs::exists("there/kept"));
    EXPECT_TRUE(fs::is_directory("there/more"));
}

TEST_F(Directory, ForTemporaryFilesIsMade) {
    const char* const told = std::getenv("TMPDIR");
    const std::string before = told == nullptr ? "" : told;
    for (const std::string& folder :
         {m_folder.path().native() + "/tmp \xC3\xA7/deep",
          m_folder.path().native() + "/" + std::string(200, 'a') + "/" + std::string(200, 'b')}) {
        ::setenv("TMPDIR", folder.c_str(), 1);
        EXPECT_EQ(settings_test::told(CIRegistro().GetCaminhoTemp()), folder + "/");
        EXPECT_EQ(QString(CIRegistro().GetCaminhoTemp()), QDir::tempPath() + QDir::separator());
        EXPECT_TRUE(fs::is_directory(folder));
    }
    told == nullptr ? ::unsetenv("TMPDIR") : ::setenv("TMPDIR", before.c_str(), 1);
    EXPECT_EQ(QString(CIRegistro().GetCaminhoTemp()), QDir::tempPath() + QDir::separator());
}

TEST(Machine, HasAProgramFolderWithASeparatorBehind) {
    EXPECT_EQ(lm::system::toUtf8(CIRegistro().GetPathToProgramFolder()),
              fs::read_symlink("/proc/self/exe").parent_path().native() + "\\");
}

TEST(Machine, HasNames) {
    EXPECT_EQ(CIRegistro().GetLocalComputerName(), RZString(lm::system::computerName()));
    EXPECT_EQ(CIRegistro().GetLocalUserName(), RZString(lm::system::userName()));
}

TEST(Machine, TellsTheSizesOfFiles) {
    const Folder folder;
    const auto sizeOf = [](const fs::path& path) {
        return (CIRegistro().*open(GetSizeOfFile()))(lm::system::fromUtf8(path.native()));
    };
    write(folder.path() / "file", "12345");
    EXPECT_EQ(sizeOf(folder.path() / "file"), 5u);
    fs::resize_file(folder.path() / "file", std::uintmax_t{5} << 30);
    EXPECT_EQ(sizeOf(folder.path() / "file"), std::uint64_t{5} << 30);
    EXPECT_EQ(sizeOf(folder.path() / "none"), 0u);
}

} // namespace
