// SPDX-License-Identifier: MIT
// The orders of groups and pages and the panels, which a project keeps on its settings carrier.
#include "project_drawing.h"

#include "drawing/seams.h"

namespace {

using namespace lm::tests;
using testing::ElementsAre;
using testing::IsEmpty;

class PageOrder : public ProjectDrawing {
protected:
    int groups() { return m_cad.GetOrdemGrupos(&m_db); }
    int pages(const char* group = "G") { return m_cad.GetOrdemPaginas(rz(group)); }
    std::string panels() { return told(m_cad.GetPaineisDefinidos(&m_db)); }
    int setPanels(const Texts& texts, const char* id = "TVO_RZ_PAINEL") {
        return m_cad.SetPaineisDefinidos(chainOf(texts, id));
    }
};

TEST_F(PageOrder, WithoutACarrierIsTheDefault) {
    const Texts ids = recordsOf(m_db.getRegAppTableId());
    EXPECT_EQ(groups(), 2);
    EXPECT_EQ(pages(), 1);
    EXPECT_EQ(panels(), "null");
    EXPECT_EQ(m_cad.SetOrdemGrupos(3), 2);
    EXPECT_EQ(m_cad.SetOrdemPaginas("G", 3), 2);
    EXPECT_EQ(setPanels({"P"}), 2);
    EXPECT_EQ(recordsOf(m_db.getRegAppTableId()), ids) << "an id is registered for a carrier only";
}

TEST_F(PageOrder, WithoutAValueIsTheDefault) {
    const OdDbObjectId carrier = settingsPoint();
    EXPECT_EQ(groups(), 2);
    EXPECT_EQ(pages(), 1);
    EXPECT_EQ(panels(), "null");
    give(carrier, "RZ_ORDEM_GRU", {});
    give(carrier, "RZ_ORDEM_PAG_G", {});
    EXPECT_EQ(groups(), 2) << "the id alone is no value";
    EXPECT_EQ(pages(), 1);
}

TEST_F(PageOrder, IsStoredAsDecimalText) {
    const OdDbObjectId carrier = settingsPoint();
    EXPECT_EQ(m_cad.SetOrdemGrupos(3), 0);
    EXPECT_EQ(m_cad.SetOrdemPaginas("G", -4), 0);
    EXPECT_EQ(data(carrier), "1001:RZ_ORDEM_GRU 1000:3 1001:RZ_ORDEM_PAG_G 1000:-4");
    EXPECT_EQ(groups(), 3);
    EXPECT_EQ(pages(), -4);
    EXPECT_EQ(m_cad.SetOrdemGrupos(0), 0);
    EXPECT_EQ(m_cad.SetOrdemPaginas("G", 10), 0);
    EXPECT_EQ(data(carrier), "1001:RZ_ORDEM_GRU 1000:0 1001:RZ_ORDEM_PAG_G 1000:10");
    EXPECT_TRUE(isRegistered("RZ_ORDEM_GRU"));
    EXPECT_TRUE(isRegistered("RZ_ORDEM_PAG_G"));
    EXPECT_EQ(m_db.silentRegistrations(), 0u);
}

TEST_F(PageOrder, OfOneGroupLeavesThoseOfTheOthersAlone) {
    settingsPoint();
    const Texts names = {"A", "a", "", "grupo \xC3\xA7", "\xCE\xA9", " A", "A$B"};
    for (std::size_t i = 0; i < names.size(); ++i)
        EXPECT_EQ(m_cad.SetOrdemPaginas(rz(names[i]), int(i) + 10), 0) << names[i];
    for (std::size_t i = 0; i < names.size(); ++i)
        EXPECT_EQ(pages(names[i].c_str()), int(i) + 10) << names[i];
    EXPECT_EQ(pages("B"), 1);
    EXPECT_TRUE(isRegistered("RZ_ORDEM_PAG_")) << "the id of a group without a name";
    EXPECT_TRUE(isRegistered("RZ_ORDEM_PAG_\xCE\xA9")) << "a name isn't cleaned up";
    EXPECT_EQ(m_db.silentRegistrations(), 0u) << "registered and written under the same id";
}

TEST_F(PageOrder, OfTextIsWhatTheNumberAtItsStartIs) {
    const OdDbObjectId first = settingsPoint();
    settingsPoint("RZ_ORDEM_PAG_G", {"5"});
    const struct {
        const char* text;
        int value;
    } all[] = {{"12abc", 12}, {"word", 0}, {"", 0}, {" 7", 7}, {"-1", -1}};
    for (const auto& each : all) {
        give(first, "RZ_ORDEM_GRU", {each.text});
        give(first, "RZ_ORDEM_PAG_G", {each.text});
        EXPECT_EQ(groups(), each.value) << each.text;
        EXPECT_EQ(pages(), each.value) << each.text << ": the walk ends at it";
    }
}

TEST_F(PageOrder, OfGroupsIsThatOfTheLastCarrierAndWrittenOnTheFirst) {
    const OdDbObjectId first = settingsPoint("RZ_ORDEM_GRU", {"4"});
    settingsPoint("RZ_ORDEM_GRU", {"5"});
    settingsPoint("RZ_ORDEM_GRU", {});
    settingsPoint();
    EXPECT_EQ(groups(), 5);
    EXPECT_EQ(m_cad.SetOrdemGrupos(9), 0);
    EXPECT_EQ(data(first), "1001:RZ_ORDEM_GRU 1000:9");
    EXPECT_EQ(groups(), 5) << "what was written isn't what is read";
}

TEST_F(PageOrder, OfPagesIsThatOfTheFirstCarrierWithAValueAndWrittenOnTheFirst) {
    const OdDbObjectId bare = settingsPoint(), alone = settingsPoint("RZ_ORDEM_PAG_G", {});
    settingsPoint("RZ_ORDEM_PAG_G", {"4"});
    settingsPoint("RZ_ORDEM_PAG_G", {"5"});
    EXPECT_EQ(pages(), 4);
    EXPECT_EQ(m_cad.SetOrdemPaginas("G", 9), 0);
    EXPECT_EQ(data(bare), "1001:RZ_ORDEM_PAG_G 1000:9");
    EXPECT_EQ(data(alone), "1001:RZ_ORDEM_PAG_G");
    EXPECT_EQ(pages(), 9);
}

TEST_F(PageOrder, HasNoOtherCarriers) {
    layer("rz_freeze");
    for (const OdDbObjectId& each :
         {entityOn("rz_freeze"), entityOn("0"), entityOn<OdDbCircle>("RZ_FREEZE"),
          entityOn("RZ_FREEZE", block("B")), entityOn("RZ_FREEZE", m_db.getPaperSpaceId())}) {
        give(each, "RZ_ORDEM_GRU", {"7"});
        give(each, "RZ_ORDEM_PAG_G", {"7"});
        give(each, "TVO_RZ_PAINEL", {"7"});
    }
    const OdDbObjectId erased = settingsPoint("RZ_ORDEM_GRU", {"7"});
    erase(erased);
    EXPECT_EQ(groups(), 2);
    EXPECT_EQ(pages(), 1);
    EXPECT_EQ(panels(), "null");
    EXPECT_EQ(m_cad.SetOrdemGrupos(3), 2);
    EXPECT_EQ(m_cad.SetOrdemPaginas("G", 3), 2);
    EXPECT_EQ(setPanels({"P"}), 2);
}

TEST_F(PageOrder, OfPanelsIsAnyChain) {
    const OdDbObjectId carrier = settingsPoint();
    const OdSmartPtr<OdResBuf> chain = chainOf({"PANEL 1", ""}, "TVO_RZ_PAINEL");
    chain->last()->append(OdResBuf::newRb(1070, 12));
    EXPECT_EQ(m_cad.SetPaineisDefinidos(chain), 0);
    const std::string all = "1001:TVO_RZ_PAINEL 1000:PANEL 1 1000: 1070#12";
    EXPECT_EQ(panels(), all);
    EXPECT_EQ(data(carrier), all);
    EXPECT_EQ(setPanels({"PANEL 2"}), 0);
    EXPECT_EQ(panels(), "1001:TVO_RZ_PAINEL 1000:PANEL 2");
}

TEST_F(PageOrder, OfPanelsThatIsHandedOutIsACopy) {
    settingsPoint("TVO_RZ_PAINEL", {"P"});
    m_cad.GetPaineisDefinidos(&m_db)->next()->setString("X");
    EXPECT_EQ(panels(), "1001:TVO_RZ_PAINEL 1000:P");
}

TEST_F(PageOrder, OfPanelsMayBeTheIdAlone) {
    settingsPoint();
    settingsPoint("TVO_RZ_PAINEL", {});
    settingsPoint("TVO_RZ_PAINEL", {"P"});
    EXPECT_EQ(panels(), "1001:TVO_RZ_PAINEL") << "other than an order, that is a value and ends the walk";
}

TEST_F(PageOrder, OfPanelsIsClearedByTheIdAlone) {
    const OdDbObjectId carrier = settingsPoint("TVO_RZ_PAINEL", {"P"});
    EXPECT_EQ(setPanels({}), 0);
    EXPECT_EQ(panels(), "null");
    EXPECT_EQ(data(carrier), "null");
}

TEST_F(PageOrder, OfPanelsGoesWhereTheFirstRecordSays) {
    const OdDbObjectId carrier = settingsPoint("TVO_RZ_PAINEL", {"P"});
    enroll("OTHER");
    EXPECT_EQ(setPanels({"X"}, "OTHER"), 0);
    EXPECT_EQ(data(carrier), "1001:TVO_RZ_PAINEL 1000:P 1001:OTHER 1000:X");
    EXPECT_EQ(panels(), "1001:TVO_RZ_PAINEL 1000:P");
}

TEST_F(PageOrder, OfPanelsNeedsAnIdInFront) {
    const OdDbObjectId carrier = settingsPoint("RZ_ORDEM_GRU", {"5"});
    const std::string before = data(carrier);
    const OdSmartPtr<OdResBuf> chain = OdResBuf::newRb(1000, od("P"));
    const lm::test::LogCapture log;
    EXPECT_THROW(m_cad.SetPaineisDefinidos(chain), OdError);
    ASSERT_EQ(log.lines().size(), 1u);
    EXPECT_NE(log.lines()[0].find("} CICad::SetPaineisDefinidos : "), std::string::npos);
    EXPECT_EQ(data(carrier), before);
    EXPECT_TRUE(isRegistered("TVO_RZ_PAINEL")) << "that came before";
}

TEST_F(PageOrder, OfPanelsIsKeptForANullChain) {
    settingsPoint("TVO_RZ_PAINEL", {"P"});
    Recorder recorder(m_db);
    EXPECT_EQ(m_cad.SetPaineisDefinidos({}), 0);
    EXPECT_EQ(panels(), "1001:TVO_RZ_PAINEL 1000:P");
    EXPECT_THAT(recorder.taken(), IsEmpty());
}

TEST_F(PageOrder, OfPanelsLetsGoOfTheChainOnEveryPath) {
    const OdSmartPtr<OdResBuf> chain = chainOf({"P"}, "TVO_RZ_PAINEL");
    EXPECT_EQ(m_cad.SetPaineisDefinidos(chain), 2);
    EXPECT_EQ(chain->numRefs(), 1);
    const OdSmartPtr<RaisingPoint> point = raisingPoint();
    EXPECT_EQ(m_cad.SetPaineisDefinidos(chain), 0);
    EXPECT_EQ(chain->numRefs(), 1) << "the carrier has a copy";
    point->isArmed = true;
    EXPECT_THROW(m_cad.SetPaineisDefinidos(chain), OdError);
    EXPECT_EQ(chain->numRefs(), 1);
    point->isArmed = false;
    hostSession()->clearLines();
}

TEST_F(PageOrder, IsReadAndWrittenInTheDatabaseThatIsMeant) {
    settingsPoint("RZ_ORDEM_GRU", {"5"});
    settingsPoint("TVO_RZ_PAINEL", {"P"});
    settingsPoint("RZ_ORDEM_PAG_G", {"5"});
    CHostDatabase side;
    EXPECT_EQ(m_cad.GetOrdemGrupos(&side), 2);
    EXPECT_EQ(m_cad.GetOrdemGrupos(nullptr), 2);
    EXPECT_EQ(told(m_cad.GetPaineisDefinidos(&side)), "null");
    EXPECT_EQ(told(m_cad.GetPaineisDefinidos(nullptr)), "null");
    setDatabase(&side);
    EXPECT_EQ(pages(), 1);
    EXPECT_EQ(m_cad.SetOrdemGrupos(1), 2);
    EXPECT_EQ(groups(), 5);
    setDatabase(nullptr);
    m_documents.manager.closeAll();
    EXPECT_EQ(pages(), 1) << "no database";
    EXPECT_EQ(m_cad.SetOrdemGrupos(1), 2);
    EXPECT_EQ(m_cad.SetOrdemPaginas("G", 1), 2);
    EXPECT_EQ(setPanels({"P"}), 2);
}

TEST_F(PageOrder, RaisesNoEventWhenRead) {
    point();
    const OdDbObjectId carrier = settingsPoint("RZ_ORDEM_GRU", {"5"});
    give(carrier, "TVO_RZ_PAINEL", {"P"});
    Recorder recorder(m_db);
    const unsigned long long changes = m_db.changeCount();
    groups();
    pages();
    panels();
    EXPECT_THAT(recorder.taken(), IsEmpty());
    EXPECT_EQ(m_db.changeCount(), changes);
}

TEST_F(PageOrder, TellsReactorsOfTheIdAndTheCarrierWhenWritten) {
    point();
    settingsPoint();
    Recorder recorder(m_db);
    m_cad.SetOrdemGrupos(3);
    EXPECT_THAT(recorder.taken(),
                ElementsAre("appended APPID RZ_ORDEM_GRU", "opened POINT", "modified POINT"));
    m_cad.SetOrdemGrupos(3);
    EXPECT_THAT(recorder.taken(), ElementsAre("opened POINT", "modified POINT")) << "an equal value too";
    m_cad.SetOrdemPaginas("G", 3);
    EXPECT_THAT(recorder.taken(),
                ElementsAre("appended APPID RZ_ORDEM_PAG_G", "opened POINT", "modified POINT"));
    setPanels({"P"});
    EXPECT_THAT(recorder.taken(),
                ElementsAre("appended APPID TVO_RZ_PAINEL", "opened POINT", "modified POINT"));
}

TEST_F(PageOrder, CanBeTakenBack) {
    const OdDbObjectId carrier = settingsPoint("RZ_ORDEM_GRU", {"5"});
    const Texts ids = recordsOf(m_db.getRegAppTableId());
    m_db.startUndoRecord();
    m_cad.SetOrdemGrupos(3);
    m_cad.SetOrdemPaginas("G", 3);
    setPanels({"P"});
    const std::string after = data(carrier);
    ASSERT_TRUE(m_db.undo());
    EXPECT_EQ(data(carrier), "1001:RZ_ORDEM_GRU 1000:5");
    EXPECT_EQ(recordsOf(m_db.getRegAppTableId()), ids);
    ASSERT_TRUE(m_db.redo());
    EXPECT_EQ(data(carrier), after);
}

TEST_F(PageOrder, OpensOnlyTheCarrierForWritingAndOnlyWhenItWrites) {
    const OdSmartPtr<OdDbObject> before = read(point()), carrier = read(settingsPoint()),
                                 behind = read(settingsPoint());
    groups();
    pages();
    panels();
    EXPECT_FALSE(carrier->isWriteEnabled());
    const std::function<int()> writers[] = {[&] { return m_cad.SetOrdemGrupos(3); },
                                            [&] { return m_cad.SetOrdemPaginas("G", 3); },
                                            [&] { return setPanels({"P"}); }};
    for (const auto& write : writers) {
        EXPECT_EQ(write(), 0);
        EXPECT_FALSE(before->isWriteEnabled());
        EXPECT_TRUE(carrier->isWriteEnabled());
        EXPECT_FALSE(behind->isWriteEnabled());
        carrier->downgradeOpen();
    }
}

TEST_F(PageOrder, LooksNoFurtherThanNeeded) {
    const OdDbObjectId carrier = settingsPoint("RZ_ORDEM_PAG_G", {"5"});
    give(carrier, "TVO_RZ_PAINEL", {"P"});
    const OdSmartPtr<RaisingPoint> behind = raisingPoint();
    behind->isArmed = true;
    EXPECT_EQ(pages(), 5);
    EXPECT_EQ(panels(), "1001:TVO_RZ_PAINEL 1000:P");
    EXPECT_EQ(m_cad.SetOrdemGrupos(3), 0);
    EXPECT_EQ(m_cad.SetOrdemPaginas("H", 3), 0);
    EXPECT_EQ(setPanels({"P"}), 0);
    EXPECT_THROW(groups(), OdError) << "goes through all of them";
    behind->isArmed = false;
    hostSession()->clearLines();
}

TEST_F(PageOrder, ReportsFailures) {
    const OdSmartPtr<RaisingPoint> point = raisingPoint();
    expectReports(
        {
            {"groups", [&] { groups(); }, {"CICad::GetOrdemGrupos"}},
            {"set groups", [&] { m_cad.SetOrdemGrupos(1); }, {"CICad::SetOrdemGrupos"}},
            {"pages", [&] { pages(); }, {"CICad::GetOrdemPaginas"}},
            {"set pages", [&] { m_cad.SetOrdemPaginas("G", 1); }, {"CICad::SetOrdemPaginas"}},
            {"panels", [&] { panels(); }, {"CICad::GetPaineisDefinidos"}},
            {"set panels", [&] { setPanels({"P"}); }, {"CICad::SetPaineisDefinidos"}},
        },
        [&](Kind kind) {
            point->kind = kind;
            point->isArmed = true;
        },
        [&] { point->isArmed = false; });
    EXPECT_FALSE(isWriteEnabled(m_db.getModelSpaceId())) << "model space was let go";
}

} // namespace
