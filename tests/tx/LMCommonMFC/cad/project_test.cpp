// SPDX-License-Identifier: MIT
// What a project drawing tells of itself: version, configuration, place on disk, and the norm key of objects.
#include "project_drawing.h"

#include "settings/ciregistro.h"

#include "drawing/reader.h"
#include "drawing/writer.h"
#include "host/services.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>

namespace {

using namespace lm::tests;
using testing::ElementsAre;
using testing::IsEmpty;
namespace fs = std::filesystem;

/// A project on a machine with settings of its own.
class Project : public ProjectDrawing {
protected:
    Project() {
        fs::create_directories(m_folder / "LM");
        ::setenv("LM_COMMON_APPDATA", m_folder.c_str(), 1);
        install("9.9.9");
    }
    ~Project() override {
        ::unsetenv("LM_COMMON_APPDATA");
        fs::remove_all(m_folder);
    }
    /// Makes a version the internal one of the machine.
    void install(const std::string& version) {
        std::ofstream(m_folder / "LM" / "LMREG2022SP0.xml")
            << "<r><local><registro key='VERSIONIN' value='" << version << "'/></local></r>";
    }
    OdDbObjectId holder() { return namedObjects()->getAt(od("RZ_VERSAO")); }
    std::string version() { return plain(m_cad.getVersaoProjeto()); }
    /// Puts an entry with a chain of its own in place.
    void store(OdSmartPtr<OdDbObject> entry, OdSmartPtr<OdResBuf> chain) {
        enroll("RZ_VERSAO");
        entry->setXDataRaw(chain);
        namedObjects()->setAt(od("RZ_VERSAO"), entry);
    }

    const fs::path m_folder =
        fs::path(testing::TempDir()) / ("project-" + std::to_string(::getpid()) +
                                        testing::UnitTest::GetInstance()->current_test_info()->name());
};

TEST_F(Project, WithoutAVersionGetsItsIdRegisteredByReading) {
    Recorder recorder(m_db);
    EXPECT_EQ(version(), "");
    EXPECT_THAT(recorder.taken(), ElementsAre("appended APPID RZ_VERSAO"));
    EXPECT_TRUE(isRegistered("RZ_VERSAO"));
    EXPECT_EQ(version(), "");
    EXPECT_THAT(recorder.taken(), IsEmpty());
}

TEST_F(Project, TellsTheInternalVersionThatWroteIt) {
    m_cad.setVersaoProjeto("2026");
    EXPECT_EQ(version(), "9.9.9");
    EXPECT_EQ(data(holder()), "1001:RZ_VERSAO 1000:2026 1000:9.9.9");
    install("10.0");
    EXPECT_EQ(version(), "9.9.9") << "as it was when the version was stored";
    m_cad.setVersaoProjeto("2027");
    EXPECT_EQ(version(), "10.0");
    EXPECT_EQ(m_db.silentRegistrations(), 0u);
}

TEST_F(Project, KeepsItsVersionInAnEmptyDictionary) {
    m_cad.setVersaoProjeto("1");
    const OdSmartPtr<OdDbDictionary> dictionary(holder().openObject());
    EXPECT_EQ(dictionary->numEntries(), 0u);
    const OdDbObjectId first = holder();
    const unsigned int entries = namedObjects()->numEntries();
    m_cad.setVersaoProjeto("2");
    EXPECT_EQ(namedObjects()->numEntries(), entries) << "one entry, replaced";
    EXPECT_NE(holder(), first);
    EXPECT_TRUE(first.isErased());
}

TEST_F(Project, ReadsAVersionOfTwoTextsOnly) {
    const struct {
        Texts texts;
        const char* version;
    } all[] = {{{}, ""}, {{"only"}, ""}, {{"a", "b"}, "b"}, {{"a", "b", "c"}, "b"}, {{"", "b"}, "b"}};
    for (const auto& each : all) {
        store(make(new OdDbDictionary), chainOf(each.texts, "RZ_VERSAO"));
        EXPECT_EQ(version(), each.version) << each.texts.size();
    }
    for (const int wrong : {1, 2}) {
        const OdSmartPtr<OdResBuf> chain = chainOf({"1", "2"}, "RZ_VERSAO");
        (wrong == 1 ? chain->next() : chain->next()->next())->setRestype(1005);
        store(make(new OdDbDictionary), chain);
        EXPECT_EQ(version(), "") << "another kind of record at " << wrong;
    }
    namedObjects()->setAt(od("RZ_VERSAO"), make(new OdDbDictionary));
    EXPECT_EQ(version(), "") << "an entry without data";
    store(make(new OdDbXrecord), chainOf({"a", "b"}, "RZ_VERSAO"));
    EXPECT_EQ(version(), "b") << "the entry's class doesn't matter";
}

/// Memory ends at each allocation in turn: what stands in the drawing then is the earlier version, or none.
TEST_F(Project, IsNeverSeenWithAVersionThatHasNoData) {
    const lm::test::LogCapture log;
    const auto isStoredWith = [&](long allocations, const char* next) {
        lm::drawing::failAllocationAfter(allocations);
        bool isStored = true;
        try {
            m_cad.setVersaoProjeto(next);
        } catch (const std::bad_alloc&) {
            isStored = false;
        }
        lm::drawing::failAllocationAfter(-1);
        return isStored;
    };
    const auto entry = [&] { return holder().isNull() ? "none" : handle(holder()) + " " + data(holder()); };
    for (const char* next : {"1", "2"}) {
        const std::string before = entry();
        long allocations = 0;
        for (; allocations < 1000 && !isStoredWith(allocations, next); ++allocations)
            ASSERT_EQ(entry(), before) << allocations;
        EXPECT_GT(allocations, 1);
        EXPECT_EQ(data(holder()), std::string("1001:RZ_VERSAO 1000:") + next + " 1000:9.9.9");
    }
}

TEST_F(Project, IsOpenedForReadingToTellItsVersion) {
    m_cad.setVersaoProjeto("1");
    const OdSmartPtr<OdDbObject> root = read(m_db.getNamedObjectsDictionaryId()), entry = read(holder());
    root->downgradeOpen();
    entry->downgradeOpen();
    EXPECT_EQ(version(), "9.9.9");
    EXPECT_FALSE(root->isWriteEnabled());
    EXPECT_FALSE(entry->isWriteEnabled());
    m_cad.setVersaoProjeto("2");
    EXPECT_TRUE(root->isWriteEnabled());
}

TEST_F(Project, WithoutADatabaseHasNoVersion) {
    m_documents.manager.closeAll();
    m_cad.setVersaoProjeto("1");
    EXPECT_EQ(version(), "");
}

TEST_F(Project, TellsReactorsOfItsVersionAndCanTakeItBack) {
    m_cad.setVersaoProjeto("1");
    Recorder recorder(m_db);
    install("10.0");
    m_db.startUndoRecord();
    m_cad.setVersaoProjeto("2");
    EXPECT_THAT(recorder.taken(), ElementsAre("erased DICTIONARY", "appended DICTIONARY"));
    ASSERT_TRUE(m_db.undo());
    EXPECT_EQ(version(), "9.9.9");
    ASSERT_TRUE(m_db.redo());
    EXPECT_EQ(version(), "10.0");
    recorder.taken();
    version();
    EXPECT_THAT(recorder.taken(), IsEmpty());
}

TEST_F(Project, KeepsVersionAndSettingsInItsFile) {
    settingsPoint();
    m_cad.setVersaoProjeto("2026");
    m_cad.SetCfgProjeto("iec.cfg");
    m_cad.SetNumeracaoPaginas(1);
    m_cad.SetOrdemPaginas("G", 7);
    m_cad.SetPaineisDefinidos(chainOf({"PANEL"}, "TVO_RZ_PAINEL"));
    const OdString path = od((m_folder / "project.dxf").string());
    EXPECT_EQ(plain(m_cad.GetNomeArquivo(&m_db)), "") << "never saved";
    EXPECT_EQ(plain(m_cad.GetPathArquivo()), "");
    lm::drawing::saveDrawing(m_db, path);
    CHostDocument* const again = m_documents.manager.openDocument(path);
    ASSERT_EQ(getDatabase(), again->database());
    EXPECT_EQ(version(), "9.9.9");
    EXPECT_EQ(plain(m_cad.GetCfgProjeto()), "iec.cfg");
    EXPECT_EQ(m_cad.GetNumeracaoPaginas(again->database()), 1);
    EXPECT_EQ(m_cad.GetOrdemPaginas("G"), 7);
    EXPECT_EQ(told(m_cad.GetPaineisDefinidos(again->database())), "1001:TVO_RZ_PAINEL 1000:PANEL");
    EXPECT_EQ(plain(m_cad.GetNomeArquivo(again->database())), "project.dxf");
    EXPECT_EQ(plain(m_cad.GetPathArquivo()), m_folder.string() + "/");
    EXPECT_EQ(plain(m_cad.GetNomeArquivo(&m_db)), "") << "of the database given";
    EXPECT_EQ(plain(m_cad.GetNomeArquivo(nullptr)), "");
    m_documents.manager.closeAll();
    EXPECT_EQ(plain(m_cad.GetPathArquivo()), "");
}

TEST_F(Project, KeepsItsConfigurationOnTheCarrier) {
    EXPECT_EQ(plain(m_cad.GetCfgProjeto()), "");
    m_cad.SetCfgProjeto("a.cfg");
    EXPECT_FALSE(isRegistered("TVO_RZ_CFG")) << "nothing is done without a carrier";
    const OdDbObjectId carrier = settingsPoint();
    EXPECT_EQ(plain(m_cad.GetCfgProjeto()), "");
    m_cad.SetCfgProjeto("a.cfg");
    EXPECT_EQ(data(carrier), "1001:TVO_RZ_CFG 1000:a.cfg");
    EXPECT_EQ(plain(m_cad.GetCfgProjeto()), "a.cfg");
    m_cad.SetCfgProjeto("");
    EXPECT_EQ(data(carrier), "1001:TVO_RZ_CFG 1000:");
    EXPECT_EQ(plain(m_cad.GetCfgProjeto()), "");
    EXPECT_EQ(m_db.silentRegistrations(), 0u);
}

TEST_F(Project, NamesItsConfigurationByTheVariable) {
    settingsPoint();
    m_cad.SetCfgProjeto();
    EXPECT_EQ(plain(m_cad.GetCfgProjeto()), ".cfg") << "unset";
    variable("CFG_NOME", "iec");
    m_cad.SetCfgProjeto();
    EXPECT_EQ(plain(m_cad.GetCfgProjeto()), "iec.cfg");
}

TEST_F(Project, IsThatOfTheDatabaseThatWorkGoesTo) {
    const OdDbObjectId here = settingsPoint();
    variable("CFG_NOME", "iec");
    CHostDatabase side;
    side.setFilename(od("/projects/side.dxf"));
    setDatabase(&side);
    m_cad.CriarLayer("RZ_FREEZE", &side);
    m_cad.CriarPonto("RZ_FREEZE");
    m_cad.SetCfgProjeto("a.cfg");
    EXPECT_EQ(plain(m_cad.GetCfgProjeto()), "a.cfg");
    m_cad.SetCfgProjeto();
    EXPECT_EQ(plain(m_cad.GetCfgProjeto()), "iec.cfg") << "named by the active document";
    m_cad.setVersaoProjeto("1");
    EXPECT_EQ(version(), "9.9.9");
    EXPECT_EQ(plain(m_cad.GetPathArquivo()), "/projects/");
    setDatabase(nullptr);
    EXPECT_EQ(data(here), "null");
    EXPECT_EQ(plain(m_cad.GetCfgProjeto()), "");
    EXPECT_TRUE(holder().isNull());
    EXPECT_FALSE(isRegistered("TVO_RZ_CFG"));
    EXPECT_EQ(plain(m_cad.GetPathArquivo()), "");
}

TEST_F(Project, ReadsTheFirstConfigurationAndWritesOnTheFirstCarrier) {
    layer("rz_freeze");
    give(entityOn("rz_freeze"), "TVO_RZ_CFG", {"no"});
    give(entityOn<OdDbLine>("RZ_FREEZE"), "TVO_RZ_CFG", {"no"});
    const OdDbObjectId first = settingsPoint();
    settingsPoint("TVO_RZ_CFG", {});
    settingsPoint("TVO_RZ_CFG", {"second"});
    settingsPoint("TVO_RZ_CFG", {"third"});
    EXPECT_EQ(plain(m_cad.GetCfgProjeto()), "second");
    m_cad.SetCfgProjeto("new");
    EXPECT_EQ(data(first), "1001:TVO_RZ_CFG 1000:new");
    EXPECT_EQ(plain(m_cad.GetCfgProjeto()), "new");
}

TEST_F(Project, OpensEntitiesForWritingUpToTheCarrierOfItsConfiguration) {
    const OdSmartPtr<OdDbObject> before = read(point()), carrier = read(settingsPoint("TVO_RZ_CFG", {"a"})),
                                 behind = read(settingsPoint());
    Recorder recorder(m_db);
    m_cad.GetCfgProjeto();
    EXPECT_THAT(recorder.taken(), IsEmpty());
    EXPECT_FALSE(before->isWriteEnabled());
    m_db.startUndoRecord();
    m_cad.SetCfgProjeto("b");
    EXPECT_TRUE(before->isWriteEnabled());
    EXPECT_TRUE(carrier->isWriteEnabled());
    EXPECT_FALSE(behind->isWriteEnabled());
    carrier->downgradeOpen();
    EXPECT_THAT(recorder.taken(), ElementsAre("opened POINT", "modified POINT"));
    ASSERT_TRUE(m_db.undo());
    EXPECT_EQ(plain(m_cad.GetCfgProjeto()), "a");
}

TEST_F(Project, KnowsTheCurrentFileAndDocumentOfEachDocument) {
    EXPECT_EQ(plain(m_cad.getArqCorrenteGD()), "");
    EXPECT_EQ(plain(m_cad.getDocCorrenteGD()), "");
    m_cad.setArqCorrenteGD("file");
    m_cad.setDocCorrenteGD("document");
    EXPECT_EQ(plain(m_cad.getArqCorrenteGD()), "file");
    EXPECT_EQ(plain(m_cad.getDocCorrenteGD()), "document");
    EXPECT_EQ(plain(m_cad.GetVarStr("PBLSTRARQUIVOGD", "", m_document)), "file");
    EXPECT_EQ(plain(m_cad.GetVarStr("PBLSTRDOCUMENTOGD", "", m_document)), "document");
    m_documents.manager.newDocument();
    EXPECT_EQ(plain(m_cad.getArqCorrenteGD()), "") << "another document";
    EXPECT_EQ(plain(m_cad.getDocCorrenteGD()), "");
}

TEST_F(Project, ReportsFailures) {
    const OdSmartPtr<RaisingPoint> point = raisingPoint();
    expectReports(
        {
            {"configuration", [&] { m_cad.GetCfgProjeto(); }, {"CICad::GetCfgProjeto"}},
            {"set configuration", [&] { m_cad.SetCfgProjeto("x"); }, {"CICad::SetCfgProjeto"}},
            {"set by variable", [&] { m_cad.SetCfgProjeto(); }, {"CICad::SetCfgProjeto"}},
        },
        [&](Kind kind) {
            point->kind = kind;
            point->isArmed = true;
        },
        [&] { point->isArmed = false; });
}

TEST_F(Project, ReportsThatMemoryIsShort) {
    m_cad.setVersaoProjeto("1");
    const OdDbObjectId object = pointWith("TVO_RZ", {"A\fB"});
    RZString left, right;
    m_cad.getKeyNorma(RZID(object), left, right);
    const std::string key = "CICad::getKeyNorma";
    const Call calls[] = {
        {"version", [&] { version(); }, {"CICad::getVersaoProjeto"}},
        {"set version", [&] { m_cad.setVersaoProjeto("1"); }, {"CICad::setVersaoProjeto"}},
        {"key", [&] { m_cad.getKeyNorma(read(object), left, right); }, {key}},
        {"key by id", [&] { m_cad.getKeyNorma(RZID(object), left, right); }, {key, key}},
    };
    for (const Call& call : calls) {
        const lm::test::LogCapture log;
        lm::drawing::failAllocationAfter(0);
        EXPECT_THROW(call.run(), std::bad_alloc) << call.what;
        lm::drawing::failAllocationAfter(-1);
        ASSERT_EQ(log.lines().size(), call.lines.size()) << call.what;
        for (std::size_t i = 0; i < call.lines.size(); ++i)
            EXPECT_NE(log.lines()[i].find(call.lines[i] + " : std::bad_alloc"), std::string::npos)
                << call.what;
    }
}

TEST_F(Project, ReportsSettingsThatCannotBeReadUnderBothNames) {
    fs::remove_all(m_folder / "LM");
    fs::create_symlink("LM", m_folder / "LM"); // leads to itself
    const lm::test::LogCapture log;
    EXPECT_THROW(m_cad.setVersaoProjeto("1"), fs::filesystem_error);
    ASSERT_EQ(log.lines().size(), 2u);
    EXPECT_NE(log.lines()[0].find("CIRegistro::readValue : "), std::string::npos);
    EXPECT_NE(log.lines()[1].find("CICad::setVersaoProjeto : "), std::string::npos);
    EXPECT_TRUE(isRegistered("RZ_VERSAO"));
    EXPECT_TRUE(holder().isNull());
}

class NormKey : public ProjectDrawing {
protected:
    /// The key of an object as "left|right", with "no " in front where the answer is false. The outputs
    /// begin as "l" and "r".
    std::string key(OdSmartPtr<OdDbObject> object) {
        RZString left("l"), right("r");
        const bool found = m_cad.getKeyNorma(object, left, right);
        return (found ? "" : "no ") + plain(left) + "|" + plain(right);
    }
    std::string key(OdDbObjectId id) {
        const std::string byObject = key(read(id));
        RZString left("l"), right("r");
        const bool found = m_cad.getKeyNorma(RZID(id), left, right);
        EXPECT_EQ((found ? "" : "no ") + plain(left) + "|" + plain(right), byObject) << "by id";
        return byObject;
    }
    std::string keyOf(const char* id, const Texts& texts) { return key(pointWith(id, texts)); }
};

const char kNothing[] = "no l|r";

TEST_F(NormKey, OfNothingIsNoneAndRegistersNothing) {
    const Texts ids = recordsOf(m_db.getRegAppTableId());
    EXPECT_EQ(key(OdSmartPtr<OdDbObject>()), kNothing);
    EXPECT_EQ(key(OdDbObjectId()), kNothing);
    EXPECT_EQ(recordsOf(m_db.getRegAppTableId()), ids);
}

TEST_F(NormKey, RegistersFiveIdsInOrder) {
    Recorder recorder(m_db);
    const OdDbObjectId object = point();
    recorder.taken();
    EXPECT_EQ(key(object), kNothing);
    EXPECT_THAT(recorder.taken(),
                ElementsAre("appended APPID TVO_RZ", "appended APPID TVO_RZ_UNIFILAR",
                            "appended APPID TVO_LAYOUT_PAINEL", "appended APPID TVO_RZ_REPRESENTACAO_KEY",
                            "appended APPID TVO_RZ_REPRESENTACAO"));
    EXPECT_EQ(key(object), kNothing);
    EXPECT_THAT(recorder.taken(), IsEmpty()) << "reading itself raises nothing";
}

TEST_F(NormKey, OfASchematicObjectHasTwoParts) {
    const struct {
        Texts texts;
        const char* key;
    } all[] = {
        {{"A\fB"}, "A|B"},       {{"A\fB", "more"}, "A|B"},
        {{"0\fB"}, "no 0|B"}, // refused, and handed out all the same
        {{"A"}, "no A|"},        {{"A\f"}, "no A|"},
        {{"\fB"}, "no B|"}, // empty parts are dropped, so this is one part
        {{"00\fB"}, "00|B"},     {{"A\f0"}, "A|0"},
        {{"A\fB\fC"}, kNothing}, // three parts
        {{""}, kNothing},        {{"\f"}, kNothing},
        {{}, kNothing},
    };
    for (const auto& each : all)
        EXPECT_EQ(keyOf("TVO_RZ", each.texts), each.key) << (each.texts.empty() ? "none" : each.texts[0]);
}

TEST_F(NormKey, OfAnAppearanceStandsBehindItsHandle) {
    const struct {
        Texts texts;
        const char* key;
    } all[] = {
        {{"2F", "A\fB"}, "A|B"},       {{"2F", "0\fB"}, "0|B"}, {{"2F", "A"}, "A|"},  {{"", "A\fB"}, "A|B"},
        {{"2F", "A\fB\fC"}, kNothing}, {{"2F", ""}, kNothing},  {{"A\fB"}, kNothing}, {{}, kNothing},
    };
    for (const char* id : {"TVO_RZ_UNIFILAR", "TVO_LAYOUT_PAINEL"})
        for (const auto& each : all) EXPECT_EQ(keyOf(id, each.texts), each.key) << id;
}

TEST_F(NormKey, OfAKeyedRepresentationIsTakenAsItStands) {
    EXPECT_EQ(keyOf("TVO_RZ_REPRESENTACAO_KEY", {"A", "B"}), "A|B");
    EXPECT_EQ(keyOf("TVO_RZ_REPRESENTACAO_KEY", {"", ""}), "|");
    EXPECT_EQ(keyOf("TVO_RZ_REPRESENTACAO_KEY", {"0", "A\fB"}), "0|A\fB");
    EXPECT_EQ(keyOf("TVO_RZ_REPRESENTACAO_KEY", {"A"}), kNothing);
    EXPECT_EQ(keyOf("TVO_RZ_REPRESENTACAO_KEY", {}), kNothing);
}

TEST_F(NormKey, OfARepresentationIsThatOfItsObjectAlone) {
    const auto representing = [&](OdDbObjectId target, const char* own = "X_Y") {
        return keyOf("TVO_RZ_REPRESENTACAO", {"first", handle(target), own});
    };
    EXPECT_EQ(representing(pointWith("TVO_RZ", {"A\fB"})), "A|B");
    EXPECT_EQ(representing(pointWith("TVO_RZ", {"0\fB"})), "0|B") << "a left part of 0 is no hindrance here";
    EXPECT_EQ(representing(pointWith("TVO_RZ", {"A"})), "A|");
    EXPECT_EQ(representing(pointWith("TVO_RZ", {"A\fB\fC"})), kNothing) << "not its own text";
    EXPECT_EQ(representing(pointWith("TVO_RZ", {})), kNothing);
    EXPECT_EQ(representing(point()), kNothing);
    EXPECT_EQ(representing(pointWith("TVO_RZ_UNIFILAR", {"2F", "A\fB"})), kNothing) << "one kind counts";
}

TEST_F(NormKey, OfARepresentationWithoutItsObjectIsItsOwnText) {
    const OdDbObjectId target = pointWith("TVO_RZ", {"A\fB"});
    const std::string gone = handle(target);
    erase(target);
    for (const std::string& text : {gone, std::string("FFFFFF"), std::string("no handle"), std::string()}) {
        EXPECT_EQ(keyOf("TVO_RZ_REPRESENTACAO", {"first", text, "X_Y"}), "X|Y") << text;
        EXPECT_EQ(keyOf("TVO_RZ_REPRESENTACAO", {"first", text, "X"}), "X|") << text;
        EXPECT_EQ(keyOf("TVO_RZ_REPRESENTACAO", {"first", text, "X_Y_Z"}), kNothing) << text;
        EXPECT_EQ(keyOf("TVO_RZ_REPRESENTACAO", {"first", text, "X\fY"}), "X\fY|") << text;
        EXPECT_EQ(keyOf("TVO_RZ_REPRESENTACAO", {"first", text, ""}), kNothing) << text;
        EXPECT_EQ(keyOf("TVO_RZ_REPRESENTACAO", {"first", text}), kNothing) << text;
    }
    EXPECT_EQ(keyOf("TVO_RZ_REPRESENTACAO", {"first"}), kNothing);
    EXPECT_EQ(keyOf("TVO_RZ_REPRESENTACAO", {}), kNothing);
}

TEST_F(NormKey, OfARepresentationIsLookedUpInTheCurrentDatabase) {
    CHostDatabase other;
    const OdDbObjectId here = m_db.getLayerZeroId(), there = other.getLayerZeroId();
    ASSERT_EQ(handle(here), handle(there)) << "two new drawings number alike";
    here.openObject(OdDb::kForWrite)->setXData(chainOf({"A\fB"}, "TVO_RZ"));
    there.openObject(OdDb::kForWrite)->setXData(chainOf({"C\fD"}, "TVO_RZ"));
    const OdDbObjectId object = pointWith("TVO_RZ_REPRESENTACAO", {"first", handle(here), "X_Y"});
    EXPECT_EQ(key(object), "A|B");
    setDatabase(&other);
    EXPECT_EQ(key(object), "C|D") << "not in the drawing that the object belongs to";
    CHostDatabase bare(CHostDatabase::kNothing);
    setDatabase(&bare);
    EXPECT_EQ(key(object), "X|Y") << "unknown there";
    setDatabase(nullptr);
}

TEST_F(NormKey, RegistersItsIdsInTheDatabaseThatWorkGoesTo) {
    const OdDbObjectId object = point();
    const Texts ids = recordsOf(m_db.getRegAppTableId());
    CHostDatabase side;
    setDatabase(&side);
    EXPECT_EQ(key(object), kNothing);
    setDatabase(nullptr);
    EXPECT_EQ(recordsOf(m_db.getRegAppTableId()), ids) << "not in the drawing that the object belongs to";
    for (const char* id : {"TVO_RZ", "TVO_RZ_UNIFILAR", "TVO_LAYOUT_PAINEL", "TVO_RZ_REPRESENTACAO_KEY",
                           "TVO_RZ_REPRESENTACAO"})
        EXPECT_TRUE(isRegistered(id, &side)) << id;
}

TEST_F(NormKey, IsReadFromObjectsThatAreOpenForReading) {
    const OdDbObjectId target = pointWith("TVO_RZ", {"A\fB"});
    const OdDbObjectId object = pointWith("TVO_RZ_REPRESENTACAO", {"first", handle(target), "X_Y"});
    const OdSmartPtr<OdDbObject> shown = read(target), held = read(object);
    shown->downgradeOpen();
    held->downgradeOpen();
    EXPECT_EQ(key(object), "A|B");
    EXPECT_FALSE(shown->isWriteEnabled());
    EXPECT_FALSE(held->isWriteEnabled());
}

TEST_F(NormKey, ComesFromTheFirstKindOfChainAlone) {
    const struct {
        const char* id;
        Texts good;
    } order[] = {
        {"TVO_RZ", {"1\fa"}},
        {"TVO_RZ_UNIFILAR", {"2F", "2\fb"}},
        {"TVO_LAYOUT_PAINEL", {"2F", "3\fc"}},
        {"TVO_RZ_REPRESENTACAO_KEY", {"4", "d"}},
        {"TVO_RZ_REPRESENTACAO", {"", "none", "5_e"}},
    };
    const char* const keys[] = {"1|a", "2|b", "3|c", "4|d", "5|e"};
    for (int first = 0; first < 5; ++first) {
        // The order in which the chains were written is the other way round.
        const OdDbObjectId good = point(), bad = point();
        for (int i = 4; i > first; --i) {
            give(good, order[i].id, order[i].good);
            give(bad, order[i].id, order[i].good);
        }
        give(good, order[first].id, order[first].good);
        give(bad, order[first].id, {});
        EXPECT_EQ(key(good), keys[first]);
        EXPECT_EQ(key(bad), kNothing) << "a chain without a key decides too: " << order[first].id;
    }
    const OdDbObjectId refused = pointWith("TVO_RZ", {"0\fB"});
    give(refused, "TVO_RZ_REPRESENTACAO_KEY", {"A", "B"});
    EXPECT_EQ(key(refused), "no 0|B");
}

TEST_F(NormKey, OfAnErasedObjectIsReadOnlyFromItsPointer) {
    const OdDbObjectId id = pointWith("TVO_RZ", {"A\fB"});
    const OdSmartPtr<OdDbObject> held = read(id);
    erase(id);
    EXPECT_EQ(key(held), "A|B");
    RZString left, right;
    EXPECT_FALSE(m_cad.getKeyNorma(RZID(id), left, right));
}

TEST_F(NormKey, LetsGoOfItsObject) {
    const OdSmartPtr<OdDbObject> object = read(pointWith("TVO_RZ", {"A\fB"}));
    const long holds = object->numRefs();
    key(object);
    EXPECT_EQ(object->numRefs(), holds);
}

} // namespace
