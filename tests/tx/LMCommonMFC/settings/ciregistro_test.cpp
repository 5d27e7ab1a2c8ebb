// SPDX-License-Identifier: MIT
// The settings of the machine: which file they are read from, and what counts in it.
#include "settings/ciregistro.h"

#include "platform/host/hostsupport.h"
#include "tx/LMCommonMFC/callsupport.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <thread>

namespace {

namespace fs = std::filesystem;

void write(const fs::path& path, const std::string& content) {
    std::ofstream(path, std::ios::binary) << content;
}

/// A folder for common data of the test's own.
class Settings : public testing::Test {
protected:
    Settings() {
        fs::create_directories(m_folder / "LM");
        ::setenv("LM_COMMON_APPDATA", m_folder.c_str(), 1);
    }
    ~Settings() override {
        ::unsetenv("LM_COMMON_APPDATA");
        fs::remove_all(m_folder);
    }

    static std::string version() { return lm::test::told(CIRegistro().GetVersionInternal()); }
    std::string versionIn(const std::string& content) {
        write(m_file, content);
        return version();
    }

    const fs::path m_folder =
        fs::path(testing::TempDir()) / ("settings-" + std::to_string(::getpid()) +
                                        testing::UnitTest::GetInstance()->current_test_info()->name());
    const fs::path m_file = m_folder / "LM" / "LMREG2022SP0.xml";
};

TEST_F(Settings, AreReadByTheirKey) {
    EXPECT_EQ(versionIn("<any><local><registro key='Other' value='no'/>"
                        "<registro key='VersionIN' value='26.8.1'/></local></any>"),
              "26.8.1");
}

TEST_F(Settings, GoByTheKeyWithoutRegardToCase) {
    EXPECT_EQ(versionIn("<a><local><registro key='versionin' value='1'/>"
                        "<registro key='VERSIONIN' value='2'/></local></a>"),
              "1")
        << "and the first one counts";
}

TEST_F(Settings, StandInTheFirstContainerAtAnyDepthBelowTheRoot) {
    EXPECT_EQ(versionIn("<a><b><c><local><r key='VersionIN' value='deep'/></local></c></b>"
                        "<local><r key='VersionIN' value='later'/></local></a>"),
              "deep");
    EXPECT_EQ(versionIn("<a><local><r key='X' value='x'/></local>"
                        "<local><r key='VersionIN' value='later'/></local></a>"),
              "")
        << "further containers are ignored";
    EXPECT_EQ(versionIn("<local><r key='VersionIN' value='root'/></local>"), "") << "the root is none";
    EXPECT_EQ(versionIn("<a><Local><r key='VersionIN' value='1'/></Local></a>"), "");
}

TEST_F(Settings, AreChildrenOfTheContainerWhateverTheirName) {
    EXPECT_EQ(versionIn("<a><local><!-- note -->text<anything key='VersionIN' value='1'/></local></a>"), "1");
    EXPECT_EQ(versionIn("<a><local><group><r key='VersionIN' value='1'/></group></local></a>"), "")
        << "not deeper";
}

TEST_F(Settings, WithoutAValueReadAsEmpty) {
    EXPECT_EQ(versionIn("<a><local><r key='VersionIN'/><r key='VersionIN' value='2'/></local></a>"), "");
    EXPECT_EQ(versionIn("<a><local/></a>"), "");
    EXPECT_EQ(versionIn("<a/>"), "");
    EXPECT_EQ(versionIn("<a><local><r key='X' value='1'/></local></a>"), "");
}

TEST_F(Settings, OfAFileThatCannotBeReadAreEmpty) {
    EXPECT_EQ(version(), "") << "no file";
    EXPECT_EQ(versionIn(""), "");
    EXPECT_EQ(versionIn("<a><local><r key='VersionIN' value='1'/></local>"), "") << "cut off";
    EXPECT_EQ(versionIn("plain"), "");
    fs::remove(m_file);
    fs::create_directory(m_file);
    EXPECT_EQ(version(), "") << "a folder in its place";
}

TEST_F(Settings, ComeByTheNarrowCodePage) {
    EXPECT_EQ(versionIn("<a><local><r key='VersionIN' value='\xC3\xA7 \xCE\xA9'/></local></a>"),
              "\xC3\xA7 ?");
}

TEST_F(Settings, StandBesideTheProgramOnlyWithoutACommonFolder) {
    const fs::path beside = fs::read_symlink("/proc/self/exe").parent_path() / "Program";
    fs::create_directories(beside);
    write(beside / "LMREG.xml", "<a><local><r key='VersionIN' value='beside'/></local></a>");
    EXPECT_EQ(version(), "") << "the common folder is there, though it holds no file";
    fs::remove_all(m_folder / "LM");
    EXPECT_EQ(version(), "beside");
    write(m_folder / "LM", "a file is no folder");
    EXPECT_EQ(version(), "beside");
    ::setenv("LM_COMMON_APPDATA", (m_folder / "LM" / "x").c_str(), 1);
    EXPECT_EQ(version(), "beside") << "below a file there is no folder";
    fs::remove_all(beside);
    EXPECT_EQ(version(), "");
}

TEST_F(Settings, MayStandBehindALinkAndAPathWithASeparatorAtItsEnd) {
    write(m_file, "<a><local><r key='VersionIN' value='1'/></local></a>");
    for (const char* end : {"/", "\\"}) {
        ::setenv("LM_COMMON_APPDATA", (m_folder.string() + end).c_str(), 1);
        EXPECT_EQ(version(), "1");
    }
    fs::rename(m_folder / "LM", m_folder / "elsewhere");
    fs::create_directory_symlink(m_folder / "elsewhere", m_folder / "LM");
    EXPECT_EQ(version(), "1");
}

TEST_F(Settings, OfAFolderWhoseStateCannotBeToldAreReportedAndRaised) {
    fs::remove_all(m_folder / "LM");
    fs::create_symlink("LM", m_folder / "LM"); // leads to itself
    const lm::test::LogCapture log;
    try {
        CIRegistro().GetVersionInternal();
        ADD_FAILURE() << "nothing was raised";
    } catch (const fs::filesystem_error& error) {
        EXPECT_NE(std::string(error.what()).find("status"), std::string::npos) << error.what();
    }
    ASSERT_EQ(log.lines().size(), 1u);
    EXPECT_EQ(log.lines()[0].find("CIRegistro::readValue : "), 0u) << log.lines()[0];
}

TEST_F(Settings, AreReadAnewAtEachCall) {
    EXPECT_EQ(versionIn("<a><local><r key='VersionIN' value='1'/></local></a>"), "1");
    EXPECT_EQ(versionIn("<a><local><r key='VersionIN' value='2'/></local></a>"), "2");
}

TEST_F(Settings, MayBeReadFromSeveralThreads) {
    write(m_file, "<a><local><r key='VersionIN' value='1'/></local></a>");
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i)
        threads.emplace_back([] {
            for (int j = 0; j < 50; ++j) EXPECT_EQ(version(), "1");
        });
    for (std::thread& each : threads) each.join();
}

TEST(SettingsStore, HasNoState) {
    CIRegistro one;
    CIRegistro other(one);
    other = one;
    EXPECT_EQ(sizeof other, 1u);
}

} // namespace
