// SPDX-License-Identifier: MIT
// Services, session, log, settings and debug switches.
#include "hostsupport.h"

#include "host/debugsettings.h"
#include "host/services.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <thread>

namespace {

using namespace lm::test;

TEST(Services, GiveTheDocumentManagerTheLocaleAndATitle) {
    CHostSystemServices* services = GetHostSystemServices();
    ASSERT_NE(nullptr, services);
    EXPECT_EQ(&lm::host::documentManager(), services->documentManager());
    ASSERT_NE(nullptr, services->locale());
    EXPECT_EQ(2, services->locale()->languageCode());
    services->locale()->setLanguageCode(19);
    EXPECT_EQ(19, GetHostSystemServices()->locale()->languageCode());
    services->locale()->setLanguageCode(2);
    EXPECT_FALSE(services->title().isEmpty());
}

TEST(Services, MayBeMissing) {
    lm::host::setServicesPresent(false);
    EXPECT_EQ(nullptr, GetHostSystemServices());
    lm::host::setServicesPresent(true);
    lm::host::setLocalePresent(false);
    ASSERT_NE(nullptr, GetHostSystemServices());
    EXPECT_EQ(nullptr, GetHostSystemServices()->locale());
    lm::host::setLocalePresent(true);
    EXPECT_NE(nullptr, GetHostSystemServices()->locale());
}

TEST(Services, ReadASeparateDatabase) {
    TemporaryFolder folder;
    const std::string path = folder.file("símbolo.dwg", kEmptyDrawing);
    unsigned long long number = 0;
    {
        OdSmartPtr<CHostDatabase> database =
            GetHostSystemServices()->readFile(odPath(path), true, false, 64, OdString());
        ASSERT_FALSE(database.isNull());
        number = database->number();
        EXPECT_EQ(nullptr, lm::host::documentManager().document(database));
        EXPECT_EQ(nullptr, ACTIVE_DOCUMENT());
        OdSmartPtr<OdDbDatabase> second = database;
        database.release();
        EXPECT_EQ(second.get(), CHostDatabase::byNumber(number));
    }
    EXPECT_EQ(nullptr, CHostDatabase::byNumber(number)) << "ended with its last pointer";
}

TEST(Services, ConvertTheCodePageOfAnOlderFileUnlessToldOtherwise) {
    TemporaryFolder folder;
    const std::string path = folder.file("antigo.dwg", "0\nSECTION\n2\nHEADER\n9\n$ACADVER\n1\nAC1009\n"
                                                       "9\n$DWGCODEPAGE\n3\nANSI_1251\n0\nENDSEC\n"
                                                       "0\nSECTION\n2\nTABLES\n0\nTABLE\n2\nLAYER\n70\n1\n"
                                                       "0\nLAYER\n2\n\xC0\n70\n0\n62\n7\n6\nCONTINUOUS\n"
                                                       "0\nENDTAB\n0\nENDSEC\n0\nEOF\n");
    CHostSystemServices* services = GetHostSystemServices();
    const auto hasLayer = [](const OdSmartPtr<CHostDatabase>& database, std::string_view name) {
        const OdSmartPtr<OdDbSymbolTable> layers(database->getLayerTableId().openObject());
        return layers->has(OdString(lm::WideView(wide(name))));
    };
    EXPECT_TRUE(hasLayer(services->readFile(odPath(path)), "А")) << "a Cyrillic letter by its code page";
    EXPECT_TRUE(hasLayer(services->readFile(odPath(path), false), "À")) << "the same byte in the narrow form";
}

TEST(Services, TakeBothSeparatorsInPaths) {
    TemporaryFolder folder;
    std::string path = folder.file("símbolo.dwg", kEmptyDrawing);
    std::replace(path.begin(), path.end(), '/', '\\');
    EXPECT_FALSE(GetHostSystemServices()->readFile(odPath(path)).isNull());
    Documents documents;
    const CHostDocument* document = documents.manager.openDocument(odPath(path));
    ASSERT_NE(nullptr, document);
    EXPECT_EQ(odPath(path), document->fileName()) << "the text stays as it was given";
}

TEST(Services, RaiseForFilesThatCannotBeRead) {
    TemporaryFolder folder;
    CHostSystemServices* services = GetHostSystemServices();
    try {
        services->readFile(odPath((folder.path() / "nenhum.dwg").string()));
        FAIL() << "no exception";
    } catch (const OdError& error) {
        EXPECT_EQ(eFileNotFound, error.code());
        EXPECT_NE(std::string::npos, lm::drawing::utf8(error.description()).find("nenhum.dwg"));
    }
    EXPECT_THROW(services->readFile(odPath(folder.path().string())), OdError);
    EXPECT_THROW(services->readFile(OdString()), OdError);
    EXPECT_THROW(services->readFile(odPath(folder.file("x.dwg", std::string(100, '\0')))), OdError);
}

TEST(Session, MayBeMissing) {
    lm::host::setSessionPresent(false);
    EXPECT_EQ(nullptr, hostSession());
    lm::host::setSessionPresent(true);
    EXPECT_NE(nullptr, hostSession());
}

TEST(Session, RemembersLinesAndHandsThemToTheSink) {
    CHostSession session;
    std::vector<std::string> sunk;
    session.setLogSink([&](lm::WideView line) { sunk.push_back(lm::system::toUtf8(line)); });
    session.log(hostText("primeira Ω"));
    session.log("");
    EXPECT_EQ((std::vector<std::string>{"primeira Ω", ""}), sunk);
    ASSERT_EQ(2u, session.lines().size());
    EXPECT_EQ(hostText("primeira Ω"), session.lines()[0]);
    EXPECT_TRUE(session.setLogSink({}));
    session.log("second");
    EXPECT_EQ(2u, sunk.size());
    session.clearLines();
    EXPECT_TRUE(session.lines().empty());
}

TEST(Session, DropsTheOldestLines) {
    CHostSession session;
    for (std::size_t i = 0; i < CHostSession::kKeptLines + 5; ++i)
        session.log(CHostString(std::to_string(i).c_str()));
    ASSERT_EQ(CHostSession::kKeptLines, session.lines().size());
    EXPECT_EQ(CHostString("5"), session.lines().front());
}

TEST(Session, ALogSinkMayWriteFurtherLines) {
    CHostSession session;
    session.setLogSink([&](lm::WideView line) {
        if (line.size() == 1) session.log("further");
    });
    session.log("x");
    EXPECT_EQ(2u, session.lines().size());
}

TEST(Session, TakesLinesOfManyThreads) {
    CHostSession session;
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t)
        threads.emplace_back([&session] {
            for (int i = 0; i < 250; ++i) session.log("line");
        });
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(1000u, session.lines().size());
}

TEST(Session, KeepsIntegerSettings) {
    CHostSession session;
    EXPECT_EQ(0, session.setting("PICKSTYLE"));
    session.setSetting("PickStyle", 3);
    EXPECT_EQ(3, session.setting("PICKSTYLE"));
    session.setSetting("PICKSTYLE", -1);
    EXPECT_EQ(-1, session.setting("pickstyle"));
}

TEST(HistoryTimestamp, HasNoPercentSignAndCanBeFixed) {
    EXPECT_FALSE(GetHistoryTimestamp().isEmpty());
    EXPECT_EQ(std::string::npos, utf8(GetHistoryTimestamp()).find('%'));
    lm::host::setHistoryTimestamp("at %1 noon");
    EXPECT_EQ(CHostString("at 1 noon"), GetHistoryTimestamp());
    lm::host::setHistoryTimestamp("");
    EXPECT_NE(CHostString("at 1 noon"), GetHistoryTimestamp());
    EXPECT_EQ(19u, GetHistoryTimestamp().getLength());
}

TEST(DebugSettings, KeepDescriptions) {
    CHostDebugSettings& settings = CHostDebugSettings::Get();
    EXPECT_EQ(&settings, &CHostDebugSettings::Get());
    EXPECT_TRUE(settings.GetDescription("TestSwitch").isEmpty());
    settings.SetDescription("TestSwitch", "first");
    settings.SetDescription("TestSwitch", "second");
    EXPECT_EQ(CHostString("second"), settings.GetDescription("TestSwitch"));
    EXPECT_TRUE(settings.GetDescription("testswitch").isEmpty());
}

} // namespace
