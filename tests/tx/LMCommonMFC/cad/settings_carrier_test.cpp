// SPDX-License-Identifier: MIT
// What all members have in common that read or write on the settings carrier: how model space is opened for
// the search. And which lines failures leave where one member calls another.
#include "project_drawing.h"
#include "value_list.h"

#include "drawing/seams.h"

#include <set>

namespace {

using namespace lm::tests;
using testing::UnorderedElementsAre;

class SettingsCarrier : public ProjectDrawing {
protected:
    struct Member {
        const char* what;
        std::function<std::string()> ask; // what comes out as text
        const char* found;
        const char* notFound;
    };
    std::vector<Member> members() {
        const auto number = [](auto&& ask) { return [ask] { return std::to_string(ask()); }; };
        return {
            {"GetNumeracaoPaginas", number([&] { return m_cad.GetNumeracaoPaginas(&m_db); }), "5", "0"},
            {"GetOrdemGrupos", number([&] { return m_cad.GetOrdemGrupos(&m_db); }), "6", "2"},
            {"GetOrdemPaginas", number([&] { return m_cad.GetOrdemPaginas("G"); }), "7", "1"},
            {"GetPaineisDefinidos", [&] { return told(m_cad.GetPaineisDefinidos(&m_db)); },
             "1001:TVO_RZ_PAINEL 1000:P", "null"},
            {"GetCfgProjeto", [&] { return plain(m_cad.GetCfgProjeto()); }, "a.cfg", ""},
            {"SetNumeracaoPaginas", number([&] { return m_cad.SetNumeracaoPaginas(5); }), "0", "2"},
            {"SetOrdemGrupos", number([&] { return m_cad.SetOrdemGrupos(6); }), "0", "2"},
            {"SetOrdemPaginas", number([&] { return m_cad.SetOrdemPaginas("G", 7); }), "0", "2"},
            {"SetPaineisDefinidos",
             number([&] { return m_cad.SetPaineisDefinidos(chainOf({"P"}, "TVO_RZ_PAINEL")); }), "0", "2"},
            {"SetCfgProjeto",
             [&] {
                 m_cad.SetCfgProjeto("a.cfg");
                 return std::string();
             },
             "", ""},
        };
    }
    OdDbObjectId fullCarrier() {
        const OdDbObjectId carrier = settingsPoint("RZ_NUM_PAG", {"5"});
        give(carrier, "RZ_ORDEM_GRU", {"6"});
        give(carrier, "RZ_ORDEM_PAG_G", {"7"});
        give(carrier, "TVO_RZ_PAINEL", {"P"});
        give(carrier, "TVO_RZ_CFG", {"a.cfg"});
        return carrier;
    }
};

TEST_F(SettingsCarrier, IsLookedForInAModelSpaceThatIsOpenForWrite) {
    fullCarrier();
    const OdSmartPtr<OdDbObject> space = read(m_db.getModelSpaceId());
    Recorder recorder(m_db);
    for (const Member& member : members()) {
        space->downgradeOpen();
        ASSERT_FALSE(space->isWriteEnabled());
        EXPECT_EQ(member.ask(), member.found) << member.what;
        EXPECT_TRUE(space->isWriteEnabled()) << member.what;
    }
    space->downgradeOpen();
    for (const std::string& event : recorder.taken())
        EXPECT_EQ(event.find("BLOCK"), std::string::npos) << "an opening tells nothing: " << event;
}

TEST_F(SettingsCarrier, IsNotFoundInAModelSpaceThatRefusesToBeWritten) {
    const OdDbObjectId carrier = fullCarrier();
    const std::string before = data(carrier);
    lm::drawing::refuseWriting(m_db.getModelSpaceId());
    for (const Member& member : members()) EXPECT_EQ(member.ask(), member.notFound) << member.what;
    lm::drawing::refuseWriting({});
    EXPECT_EQ(data(carrier), before);
}

class ProjectGuards : public ProjectDrawing {
protected:
    /// The names in the log for each allocation of a call that fails in turn.
    static std::set<Texts> reports(const std::function<void()>& call) {
        std::set<Texts> all;
        for (long allocations = 0; allocations < 1000; ++allocations) {
            const lm::test::LogCapture log;
            lm::drawing::failAllocationAfter(allocations);
            try {
                call();
                lm::drawing::failAllocationAfter(-1);
                return all;
            } catch (const std::bad_alloc&) {
                lm::drawing::failAllocationAfter(-1);
                all.insert(namesIn(log));
            }
        }
        ADD_FAILURE() << "memory never sufficed";
        return all;
    }
};

TEST_F(ProjectGuards, LetTheVariablesOfTheDocumentReportTheirOwnFailures) {
    const Texts reading = {"CICad::GetVarStr"}, writing = {"CICad::SetVarStr"};
    for (const char* name :
         {"*NUMERAR_POR_PROJ*", "*QTD_JUSTIFY_PAG*", "CFG_NOME", "PBLSTRARQUIVOGD", "PBLSTRDOCUMENTOGD"})
        variable(name, "1");
    EXPECT_THAT(reports([&] { m_cad.GetNumeracaoPaginas(&m_db); }),
                UnorderedElementsAre(Texts{"CICad::GetNumeracaoPaginas"},
                                     Texts{"CICad::GetVarStr", "CICad::GetNumeracaoPaginas"}));
    EXPECT_THAT(reports([&] { m_cad.SetCfgProjeto(); }),
                UnorderedElementsAre(reading, Texts{"CICad::SetCfgProjeto"}))
        << "the name has no part in the guard of the form that takes one";
    EXPECT_THAT(reports([&] { m_cad.FormataNumeroPagina(1); }), UnorderedElementsAre(reading));
    EXPECT_THAT(reports([&] { m_cad.getArqCorrenteGD(); }), UnorderedElementsAre(reading));
    EXPECT_THAT(reports([&] { m_cad.getDocCorrenteGD(); }), UnorderedElementsAre(reading));
    EXPECT_THAT(reports([&] { m_cad.setArqCorrenteGD("x"); }), UnorderedElementsAre(writing));
    EXPECT_THAT(reports([&] { m_cad.setDocCorrenteGD("x"); }), UnorderedElementsAre(writing));
}

TEST_F(ProjectGuards, AreNotAroundTheMembersThatOnlyLook) {
    const OdDbObjectId page = layer("P1");
    give(page, "TVO_RZ_CAPA", {"CAPA"});
    give(page, "TVO_RZ_INDICE", {"INDICE"});
    const std::function<void()> calls[] = {
        [&] { m_cad.isPaginaCapa("P1"); },    [&] { m_cad.isPaginaCapa(RZID(page)); },
        [&] { m_cad.isPaginaIndice("P1"); },  [&] { m_cad.isPaginaIndice(RZID(page)); },
        [&] { m_cad.GetNomeArquivo(&m_db); }, [&] { m_cad.GetPathArquivo(); },
    };
    for (const auto& call : calls)
        EXPECT_THAT(reports(call), UnorderedElementsAre(Texts())) << "call " << &call - calls;
}

} // namespace
