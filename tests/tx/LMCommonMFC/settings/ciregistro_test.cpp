// SPDX-License-Identifier: MIT
// The store of the settings: which file it is, what counts in it, and what a change makes of it.
#include "settingssupport.h"

#include "system/folders.h"

#include <QStringEncoder>

#include <thread>

namespace {

using namespace settings_test;

class Settings : public SettingsTest {
protected:
    std::string version() { return told(m_settings.GetVersionInternal()); }
    std::string versionIn(const std::string& content) {
        lay(content);
        return version();
    }
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
    EXPECT_EQ(versionIn("<a><local/><local><r key='VersionIN' value='later'/></local></a>"), "")
        << "though the first is empty";
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

TEST_F(Settings, ComeByTheNarrowCodePage) {
    EXPECT_EQ(versionIn("<a><local><r key='VersionIN' value='\xC3\xA7 \xCE\xA9'/></local></a>"),
              "\xC3\xA7 ?");
}

TEST_F(Settings, StandBesideTheProgramOnlyWithoutACommonFolder) {
    const fs::path beside = fs::read_symlink("/proc/self/exe").parent_path() / "Program";
    fs::create_directories(beside);
    write(beside / "LMREG.xml", "<a><local><r key='VersionIN' value='beside'/></local></a>");
    EXPECT_EQ(version(), "") << "the common folder is there, though it holds no file";
    m_settings.SetVersionInternal("x");
    EXPECT_FALSE(fs::exists(m_file)) << "nothing makes the file";
    fs::remove_all(m_folder.path() / "LM");
    EXPECT_EQ(version(), "beside");
    write(m_folder.path() / "LM", "a file is no folder");
    EXPECT_EQ(version(), "beside");
    ::setenv("LM_COMMON_APPDATA", (m_folder.path() / "LM" / "x").c_str(), 1);
    EXPECT_EQ(version(), "beside") << "below a file there is no folder";
    m_settings.SetVersionInternal("changed");
    EXPECT_EQ(version(), "changed");
    fs::remove_all(beside);
    EXPECT_EQ(version(), "");
}

TEST_F(Settings, HaveAPathWithTheSeparatorsThatItWasMadeWith) {
    const auto path = [] { return lm::system::toUtf8((CIRegistro().*open(GetFileReg()))()); };
    const std::string folder = m_folder.path().string();
    EXPECT_EQ(path(), folder + "\\LM\\LMREG2022SP0.xml");
    ::setenv("LM_COMMON_APPDATA", (folder + "/").c_str(), 1);
    EXPECT_EQ(path(), folder + "/LM\\LMREG2022SP0.xml");
    ::setenv("LM_COMMON_APPDATA", (folder + "\\").c_str(), 1);
    EXPECT_EQ(path(), folder + "\\LM\\LMREG2022SP0.xml");
    ::setenv("LM_COMMON_APPDATA", (folder + "/none").c_str(), 1);
    EXPECT_EQ(path(), fs::read_symlink("/proc/self/exe").parent_path().string() + "\\Program\\LMREG.xml");
}

TEST_F(Settings, MayStandBehindALinkAndAPathWithASeparatorAtItsEnd) {
    lay("<a><local><r key='VersionIN' value='1'/></local></a>");
    for (const char* end : {"/", "\\"}) {
        ::setenv("LM_COMMON_APPDATA", (m_folder.path().string() + end).c_str(), 1);
        EXPECT_EQ(version(), "1");
    }
    fs::rename(m_folder.path() / "LM", m_folder.path() / "elsewhere");
    fs::create_directory_symlink(m_folder.path() / "elsewhere", m_folder.path() / "LM");
    EXPECT_EQ(version(), "1");
}

TEST_F(Settings, OfAFolderWhoseStateCannotBeToldAreReportedAndRaised) {
    fs::remove_all(m_folder.path() / "LM");
    fs::create_symlink("LM", m_folder.path() / "LM"); // leads to itself
    const lm::test::LogCapture log;
    for (const bool writes : {false, true}) {
        try {
            writes ? m_settings.SetVersionInternal("1") : void(version());
            ADD_FAILURE() << "nothing was raised";
        } catch (const fs::filesystem_error& error) {
            EXPECT_NE(std::string(error.what()).find("status"), std::string::npos) << error.what();
            ASSERT_EQ(log.lines().size(), writes ? 2u : 1u);
            const char* const name = writes ? "CIRegistro::saveValue : " : "CIRegistro::readValue : ";
            EXPECT_EQ(log.lines().back(), name + told(RZString(error.what()))) << "narrow, as exceptions are";
        }
    }
    fs::remove(m_folder.path() / "LM");
    fs::create_directory(m_folder.path() / "LM");
    EXPECT_EQ(versionIn("<a><local><r key='VersionIN' value='1'/></local></a>"), "1") << "the lock is free";
}

TEST_F(Settings, OfAProgramThatCannotBeToldAreReportedAndRaised) {
    fs::remove_all(m_folder.path() / "LM");
    lm::system::failProgramPath(EACCES);
    const lm::test::LogCapture log;
    EXPECT_THROW(version(), std::system_error);
    EXPECT_THROW(m_settings.SetVersionInternal("1"), std::system_error);
    try {
        m_settings.GetPathToProgramFolder();
        ADD_FAILURE() << "nothing was raised";
    } catch (const std::system_error& error) {
        EXPECT_EQ(std::string(error.what()).find("Failed to get executable path"), 0u) << error.what();
        EXPECT_EQ(error.code().value(), EACCES);
    }
    lm::system::failProgramPath(0);
    ASSERT_EQ(log.lines().size(), 2u) << "the folder alone is asked for without a report";
    EXPECT_EQ(log.lines()[0].find("CIRegistro::readValue : Failed to get executable path"), 0u);
    EXPECT_EQ(log.lines()[1].find("CIRegistro::saveValue : Failed to get executable path"), 0u);
    EXPECT_NO_THROW(version()) << "what it reads is the file beside the program, which is another test's";
}

TEST_F(Settings, AreReadAnewAtEachCall) {
    EXPECT_EQ(versionIn("<a><local><r key='VersionIN' value='1'/></local></a>"), "1");
    EXPECT_EQ(versionIn("<a><local><r key='VersionIN' value='2'/></local></a>"), "2");
}

// Changes.

TEST_F(Settings, AreChangedWhereTheyStand) {
    lay("<?xml version='1.0' encoding='UTF-8'?><Root x='y'><head/><group><local><!-- note -->"
        "<registro key='One' value='1'/>"
        "<odd key='versionin' value='2' more='kept'/>"
        "<registro key='VERSIONIN' value='3'/></local></group><tail>text</tail></Root>");
    m_settings.SetVersionInternal(text("n\xC3\xA3o <&\"'> \xCE\xA9"));
    EXPECT_EQ(treeOf(content()),
              treeOf("<Root x='y'><head/><group><local><!-- note -->"
                     "<registro key='One' value='1'/>"
                     "<odd key='versionin' value='n\xC3\xA3o &lt;&amp;&quot;&apos;> \xCE\xA9'"
                     " more='kept'/>"
                     "<registro key='VERSIONIN' value='3'/></local></group>"
                     "<tail>text</tail></Root>"))
        << "the first of two, whatever its name, with its key as it was";
    EXPECT_EQ(content().rfind("<?xml version='1.0' encoding='UTF-8'?>\n<Root", 0), 0u);
    EXPECT_NE(content().find("\n  <group>\n    <local>\n      <!-- note -->"), std::string::npos)
        << "each level is indented by two: " << content();
}

TEST_F(Settings, ThatAreNewComeLastWithTheKeyInCapitals) {
    layContainer("<registro key='One' value='1'/>");
    m_settings.SetPadraoInsFio(7);
    m_settings.SetPlatform("p");
    EXPECT_EQ(treeOf(content()), treeOf("<any><local><registro key='One' value='1'/>"
                                        "<registro key='PADRAOINSFIO' value='7'/>"
                                        "<registro key='PLATFORM' value='p'/></local></any>"));
    EXPECT_EQ(m_settings.GetPadraoInsFio(), 7);
}

TEST_F(Settings, ThatAreNewNeedAContainerThatHoldsSomething) {
    for (const char* file : {"<a><local/></a>", "<a> <local>   </local> </a>", "<a/>", "<local><r/></local>",
                             "<a><local/><local><r key='X' value='1'/></local></a>"}) {
        lay(file);
        m_settings.SetPlatform("p");
        EXPECT_EQ(content(), file) << "the bytes stay";
    }
    layContainer("<!-- something -->");
    m_settings.SetPlatform("p");
    EXPECT_EQ(treeOf(content()),
              treeOf("<any><local><!-- something --><registro key='PLATFORM' value='p'/></local></any>"))
        << "a comment is something";
}

TEST_F(Settings, WithoutAValueStayWithoutWhenTheyAreSet) {
    const std::string file = "<any><local><r key='Platform'/><r key='Platform' value='2'/></local></any>";
    lay(file);
    m_settings.SetPlatform("lost");
    EXPECT_NE(content(), file) << "the file is written all the same";
    EXPECT_EQ(treeOf(content()), treeOf(file));
    EXPECT_EQ(m_settings.GetPlatform(), "");
}

TEST_F(Settings, AreWrittenInPlace) {
    layContainer("<r key='Platform' value='1'/>");
    fs::create_hard_link(m_file, m_folder.path() / "same file");
    fs::permissions(m_file, fs::perms::owner_read | fs::perms::owner_write);
    m_settings.SetPlatform(RZString(QString(5000, 'x')));
    EXPECT_EQ(contentOf(m_folder.path() / "same file"), content());
    EXPECT_EQ(fs::status(m_file).permissions(), fs::perms::owner_read | fs::perms::owner_write);
    EXPECT_EQ(std::distance(fs::directory_iterator(m_folder.path() / "LM"), {}), 1) << "no file beside it";
    m_settings.SetPlatform("short");
    EXPECT_EQ(treeOf(content()), treeOf("<any><local><r key='Platform' value='short'/></local></any>"))
        << "nothing of the longer file stays";
}

TEST_F(Settings, ThatCannotBeWrittenAreLostWithoutAWord) {
    layContainer("<r key='Platform' value='1'/>");
    const std::string before = content();
    fs::permissions(m_file, fs::perms::owner_read | fs::perms::group_read | fs::perms::others_read);
    const lm::test::LogCapture log;
    {
        const AsNobody nobody;
        m_settings.SetPlatform("2");
        EXPECT_EQ(m_settings.GetPlatform(), "1");
    }
    EXPECT_EQ(content(), before);
    EXPECT_TRUE(log.lines().empty());
}

// Files that can't be used.

TEST_F(Settings, OfAFileThatCannotBeUsedAreEmptyAndTheFileStays) {
    const std::string good = "<a><local><r key='VersionIN' value='1'/></local></a>";
    const std::string files[] = {
        "",
        "plain",
        good.substr(0, good.size() - 1),
        good.substr(0, good.size() - 4),
        good.substr(0, 30),
        good + "<b/>",
        "x" + good,
        std::string(100, '\0'),
        std::string("\xFF\xFE\xFF\xFE"),
        "<a><local><r key='VersionIN' value='1' value='2'/></local></a>",
        "<a><local><r key='VersionIN' value='\xE7'/></local></a>", // no UTF-8
        "<?xml version='1.0' encoding='none-such'?>" + good,
        "<!DOCTYPE a [<!ENTITY e '&e;'>]><a><local><r key='VersionIN' value='&e;'/></local></a>",
    };
    const lm::test::LogCapture log;
    EXPECT_EQ(version(), "") << "no file";
    m_settings.SetVersionInternal("x");
    EXPECT_FALSE(fs::exists(m_file));
    for (const std::string& file : files) {
        EXPECT_EQ(versionIn(file), "") << file;
        m_settings.SetVersionInternal("x");
        EXPECT_EQ(content(), file);
    }
    fs::remove(m_file);
    fs::create_directory(m_file);
    EXPECT_EQ(version(), "") << "a folder in its place";
    m_settings.SetVersionInternal("x");
    EXPECT_TRUE(fs::is_directory(m_file));
    EXPECT_TRUE(log.lines().empty());
}

TEST_F(Settings, MayStandTheMostLevelsDeep) {
    const auto nested = [](int levels) {
        std::string file;
        for (int i = 0; i < levels - 2; ++i) file += "<n>";
        file += "<local><r key='Platform' value='1'/></local>";
        for (int i = 0; i < levels - 2; ++i) file += "</n>";
        return file;
    };
    lay(nested(1000));
    EXPECT_EQ(m_settings.GetPlatform(), "1");
    m_settings.SetPlatform("2");
    EXPECT_EQ(m_settings.GetPlatform(), "2");
    for (const int levels : {1001, 5000, 200000}) {
        const std::string file = nested(levels);
        lay(file);
        EXPECT_EQ(m_settings.GetPlatform(), "") << levels;
        m_settings.SetPlatform("2");
        EXPECT_EQ(content(), file);
    }
}

// Encodings and characters.

TEST_F(Settings, KeepTheEncodingsThatQtWrites) {
    const QString file = QStringLiteral("<?xml version='1.0' encoding='%1'?><a><local>"
                                        "<r key='Platform' value='ç'/></local></a>");
    const struct {
        const char* name;
        QStringConverter::Encoding encoding;
    } rows[] = {{"UTF-8", QStringConverter::Utf8},
                {"UTF-16", QStringConverter::Utf16LE},
                {"UTF-32", QStringConverter::Utf32LE},
                {"ISO-8859-1", QStringConverter::Latin1}};
    for (const auto& row : rows) {
        const QByteArray bytes = QStringEncoder(row.encoding).encode(file.arg(row.name));
        lay({bytes.data(), static_cast<std::size_t>(bytes.size())});
        EXPECT_EQ(told(m_settings.GetPlatform()), "\xC3\xA7") << row.name;
        m_settings.SetPlatform(text("\xC3\xA3"));
        EXPECT_EQ(told(m_settings.GetPlatform()), "\xC3\xA3") << row.name;
        const QByteArray letter = QStringEncoder(row.encoding).encode(QStringLiteral("ã"));
        EXPECT_NE(content().find(letter.toStdString()), std::string::npos) << row.name;
    }
}

TEST_F(Settings, LoseWhatTheirEncodingLacks) {
    lay("<?xml version='1.0' encoding='ISO-8859-1'?><a><local><r key='Platform' value='x'/></local></a>");
    m_settings.SetPlatform(text("\xCE\xA9 1"));
    EXPECT_NE(content().find("\"? 1\""), std::string::npos) << content();
    lay("<a><local><r key='Platform' value='x'/></local></a>");
    const lm::WideChar half[] = {'a', 0xD83D, 'b'};
    m_settings.SetPlatform(RZString(lm::WideView(half, 3)));
    EXPECT_NE(content().find("\"a\xEF\xBF\xBD"
                             "b\""),
              std::string::npos)
        << content();
}

QStringList g_messages;

/// Takes Qt's messages instead of the test program, which fails on them.
class Announced {
public:
    Announced() {
        g_messages.clear();
        m_before = qInstallMessageHandler(
            [](QtMsgType, const QMessageLogContext&, const QString& message) { g_messages += message; });
    }
    ~Announced() { qInstallMessageHandler(m_before); }

private:
    QtMessageHandler m_before;
};

// Qt reads the encoding but doesn't write it: it warns, writes UTF-8 and leaves the declaration. The next
// read believes the declaration, so that each write makes two letters of one.
TEST_F(Settings, OfAnEncodingThatQtOnlyReadsAreSpoiltByAWriteUnlessTheyAreAscii) {
    lay("<?xml version='1.0' encoding='windows-1252'?><a><local><r key='Platform' value='\xE7'/>"
        "<r key='Company' value='plain'/></local></a>");
    EXPECT_EQ(told(m_settings.GetPlatform()), "\xC3\xA7");
    {
        const Announced announced;
        m_settings.SetCompanyName("still plain");
        EXPECT_EQ(g_messages,
                  QStringList("QDomDocument::save(): Unsupported encoding \"windows-1252\" specified."));
    }
    EXPECT_EQ(content().rfind("<?xml version='1.0' encoding='windows-1252'?>", 0), 0u);
    EXPECT_NE(content().find("\"\xC3\xA7\""), std::string::npos) << "UTF-8";
    EXPECT_EQ(told(m_settings.GetPlatform()), "\xC3\x83\xC2\xA7") << "read as two letters";
    EXPECT_EQ(told(m_settings.GetCompanyName()), "still plain");
}

TEST_F(Settings, AreWrittenAsUtf8WithoutADeclaration) {
    layContainer("<r key='Platform' value=''/>");
    m_settings.SetPlatform(text("\xC3\xA7 \xCE\xA9 \xF0\x9F\x98\x80"));
    EXPECT_NE(content().find("\"\xC3\xA7 \xCE\xA9 \xF0\x9F\x98\x80\""), std::string::npos) << content();
    EXPECT_EQ(told(m_settings.GetPlatform()), "\xC3\xA7 ? ??") << "the way back is narrow";
    m_settings.SetPlatform(rz("tab\tline\nreturn\r."));
    EXPECT_EQ(m_settings.GetPlatform(), rz("tab\tline\nreturn\r."));
}

// XML has no way to write most control characters; such a value is written as given, and the file can't be
// read afterwards.
TEST_F(Settings, WithACharacterThatXmlLacksMakeTheFileUnreadable) {
    layContainer("<r key='Platform' value='1'/><r key='Company' value='2'/>");
    m_settings.SetPlatform(RZString::char12);
    EXPECT_NE(content().find("\"\f\""), std::string::npos);
    EXPECT_EQ(m_settings.GetCompanyName(), "");
    const std::string before = content();
    m_settings.SetPlatform("1");
    EXPECT_EQ(content(), before);
}

// Threads.

TEST_F(Settings, OfSeveralThreadsAreNeitherLostNorReadInTheMiddle) {
    layContainer("<r key='VersionIN' value='always'/>");
    const std::pair<void (CIRegistro::*)(int), int (CIRegistro::*)()> own[] = {
        {&CIRegistro::SetStatePComp, &CIRegistro::GetStatePComp},
        {&CIRegistro::SetStatePFios, &CIRegistro::GetStatePFios},
        {&CIRegistro::SetStatePPags, &CIRegistro::GetStatePPags},
        {&CIRegistro::SetStatePProj, &CIRegistro::GetStatePProj}};
    constexpr int kRounds = 60;
    std::vector<std::thread> threads;
    for (const auto& [set, get] : own)
        threads.emplace_back([set = set, get = get] {
            CIRegistro settings;
            for (int round = 1; round <= kRounds; ++round) {
                (settings.*set)(round);
                EXPECT_EQ((settings.*get)(), round) << "another thread's write took it back";
                EXPECT_EQ(settings.GetVersionInternal(), "always")
                    << "the file was read in the middle of a write";
            }
        });
    for (std::thread& each : threads) each.join();
    for (const auto& [set, get] : own) EXPECT_EQ((m_settings.*get)(), kRounds);
}

TEST(SettingsStore, HasNoState) {
    CIRegistro one;
    CIRegistro other(one);
    other = one;
    EXPECT_EQ(sizeof other, 1u);
}

} // namespace
