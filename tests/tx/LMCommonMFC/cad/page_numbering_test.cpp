// SPDX-License-Identifier: MIT
// Marks of covers and indexes, the numbering mode of a project, and page numbers as text.
#include "project_drawing.h"

#include "drawing/seams.h"

namespace {

using namespace lm::tests;
using testing::ElementsAre;
using testing::IsEmpty;

/// The two kinds of special pages, with everything that is the same for both.
struct PageKind {
    const char* id;
    const char* word;
    bool (CICad::*isByName)(RZString);
    bool (CICad::*isById)(RZID);
    void (CICad::*set)(RZString);
};

/// What the list of tests shows of a kind.
void PrintTo(const PageKind& kind, std::ostream* out) {
    *out << kind.word;
}

const PageKind kCover = {"TVO_RZ_CAPA", "CAPA", &CICad::isPaginaCapa, &CICad::isPaginaCapa,
                         &CICad::setPaginaCapa};
const PageKind kIndex = {"TVO_RZ_INDICE", "INDICE", &CICad::isPaginaIndice, &CICad::isPaginaIndice,
                         &CICad::setPaginaIndice};

class PageMarks : public ProjectDrawing, public testing::WithParamInterface<PageKind> {
protected:
    bool isMarked(const char* name) { return (m_cad.*GetParam().isByName)(name); }
    bool isMarked(OdDbObjectId id) { return (m_cad.*GetParam().isById)(RZID(id)); }
    void mark(const char* name) { (m_cad.*GetParam().set)(name); }
    const PageKind& other() const { return GetParam().id == kCover.id ? kIndex : kCover; }

    OdDbObjectId m_page = layer("P1");
};

TEST_P(PageMarks, StandOnTheLayer) {
    EXPECT_FALSE(isMarked("P1"));
    EXPECT_FALSE(isMarked(m_page));
    mark("P1");
    EXPECT_TRUE(isMarked("P1"));
    EXPECT_TRUE(isMarked(m_page));
    EXPECT_EQ(data(m_page), std::string("1001:") + GetParam().id + " 1000:" + GetParam().word);
    EXPECT_FALSE(isMarked("0"));
}

TEST_P(PageMarks, OfOneKindAreNotThoseOfTheOther) {
    mark("P1");
    EXPECT_FALSE((m_cad.*other().isByName)("P1"));
    EXPECT_FALSE((m_cad.*other().isById)(RZID(m_page)));
    (m_cad.*other().set)("P1");
    EXPECT_TRUE(isMarked("P1")) << "a layer can bear both";
    EXPECT_TRUE((m_cad.*other().isByName)("P1"));
}

TEST_P(PageMarks, AreAnyDataUnderTheId) {
    give(m_page, GetParam().id, {"ANOTHER WORD"});
    EXPECT_TRUE(isMarked("P1"));
    const OdDbObjectId bare = layer("P2");
    give(bare, GetParam().id, {});
    EXPECT_TRUE(isMarked("P2")) << "the id alone";
    mark("P1");
    EXPECT_EQ(data(m_page), std::string("1001:") + GetParam().id + " 1000:" + GetParam().word);
}

TEST_P(PageMarks, BelongToNoMissingLayer) {
    EXPECT_FALSE(isMarked("P9"));
    EXPECT_FALSE(isMarked("p1"));
    mark("P1");
    EXPECT_FALSE(isMarked("p1")) << "names go with regard to case";
    EXPECT_FALSE(isMarked(OdDbObjectId()));
    erase(m_page);
    EXPECT_FALSE(isMarked("P1"));
    EXPECT_FALSE(isMarked(m_page));
}

TEST_P(PageMarks, AreNoMarksOnOtherObjects) {
    const OdDbObjectId point = settingsPoint(GetParam().id, {GetParam().word});
    EXPECT_FALSE(isMarked(point));
    EXPECT_FALSE(isMarked(m_db.getLayerTableId()));
}

TEST_P(PageMarks, RegisterTheirIdForAMissingLayerToo) {
    Recorder recorder(m_db);
    mark("P9");
    EXPECT_TRUE(isRegistered(GetParam().id));
    EXPECT_FALSE(isRegistered(other().id));
    EXPECT_THAT(recorder.taken(), ElementsAre(std::string("appended APPID ") + GetParam().id));
    EXPECT_FALSE(m_cad.ExisteLayer("P9", &m_db));
    mark("P9");
    EXPECT_THAT(recorder.taken(), IsEmpty());
}

TEST_P(PageMarks, AreToldToReactorsAndCanBeTakenBack) {
    enroll(GetParam().id);
    Recorder recorder(m_db);
    m_db.startUndoRecord();
    mark("P1");
    EXPECT_THAT(recorder.taken(), ElementsAre("opened LAYER P1", "modified LAYER P1"));
    ASSERT_TRUE(m_db.undo());
    EXPECT_FALSE(isMarked("P1"));
    ASSERT_TRUE(m_db.redo());
    EXPECT_TRUE(isMarked("P1"));
    recorder.taken();
    isMarked("P1");
    isMarked(m_page);
    EXPECT_THAT(recorder.taken(), IsEmpty());
}

TEST_P(PageMarks, OpenForWriteOnlyTheLayerAndOnlyWhenItIsMarked) {
    const OdSmartPtr<OdDbObject> table = read(m_db.getLayerTableId()), page = read(m_page);
    table->downgradeOpen();
    page->downgradeOpen();
    give(m_page, GetParam().id, {"word"});
    page->downgradeOpen();
    EXPECT_TRUE(isMarked("P1"));
    EXPECT_TRUE(isMarked(m_page));
    EXPECT_FALSE(page->isWriteEnabled());
    EXPECT_FALSE(table->isWriteEnabled());
    mark("P1");
    EXPECT_TRUE(page->isWriteEnabled());
    EXPECT_FALSE(table->isWriteEnabled());
}

TEST_P(PageMarks, PassOverALayerThatRefusesToBeWritten) {
    lm::drawing::refuseWriting(m_page);
    mark("P1");
    lm::drawing::refuseWriting({});
    EXPECT_FALSE(isMarked("P1"));
}

TEST_P(PageMarks, HaveNoGuard) {
    enroll(GetParam().id);
    const lm::test::LogCapture log;
    Recorder recorder(m_db);
    recorder.armed = [] { fail(Kind::kOdError); };
    EXPECT_THROW(mark("P1"), OdError);
    recorder.armed = nullptr;
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_P(PageMarks, AreThoseOfTheDatabaseThatWorkGoesTo) {
    CHostDatabase side;
    setDatabase(&side);
    m_cad.CriarLayer("P1", &side);
    mark("P1");
    EXPECT_TRUE(isMarked("P1"));
    setDatabase(nullptr);
    EXPECT_FALSE(isMarked("P1"));
    m_documents.manager.closeAll();
    EXPECT_FALSE(isMarked("P1")) << "no database";
    mark("P1");
}

INSTANTIATE_TEST_SUITE_P(Pages, PageMarks, testing::Values(kCover, kIndex),
                         [](const auto& info) { return std::string(info.param.word); });

class PageNumbering : public ProjectDrawing {
protected:
    int mode() { return m_cad.GetNumeracaoPaginas(&m_db); }
};

TEST_F(PageNumbering, WithoutACarrierFollowsTheVariable) {
    EXPECT_EQ(m_cad.SetNumeracaoPaginas(1), 2);
    EXPECT_FALSE(isRegistered("RZ_NUM_PAG")) << "only a carrier that was found lets the id be registered";
    EXPECT_EQ(mode(), 0);
    variable("*NUMERAR_POR_PROJ*", "S");
    EXPECT_EQ(mode(), 1);
    for (const char* text : {"s", "SIM", "N", "", "1"}) {
        variable("*NUMERAR_POR_PROJ*", text);
        EXPECT_EQ(mode(), 0) << text;
    }
}

TEST_F(PageNumbering, StandsOnTheCarrier) {
    const OdDbObjectId carrier = settingsPoint();
    variable("*NUMERAR_POR_PROJ*", "S");
    EXPECT_EQ(mode(), 1) << "a carrier without a value";
    EXPECT_EQ(m_cad.SetNumeracaoPaginas(0), 0);
    EXPECT_EQ(mode(), 0);
    EXPECT_EQ(data(carrier), "1001:RZ_NUM_PAG 1000:0");
    EXPECT_EQ(m_cad.SetNumeracaoPaginas(1), 0);
    EXPECT_EQ(data(carrier), "1001:RZ_NUM_PAG 1000:1");
    EXPECT_EQ(m_cad.SetNumeracaoPaginas(-17), 0);
    EXPECT_EQ(data(carrier), "1001:RZ_NUM_PAG 1000:-17");
    EXPECT_EQ(mode(), -17) << "values are stored and given as they are";
    EXPECT_TRUE(isRegistered("RZ_NUM_PAG"));
}

TEST_F(PageNumbering, KeepsTheCarriersOtherData) {
    const OdDbObjectId carrier = settingsPoint("RZ_ORDEM_GRU", {"3"});
    m_cad.SetNumeracaoPaginas(1);
    EXPECT_EQ(data(carrier, "RZ_ORDEM_GRU"), "1001:RZ_ORDEM_GRU 1000:3");
}

TEST_F(PageNumbering, IsReadFromTheFirstCarrierWithAValueAndWrittenOnTheFirst) {
    const OdDbObjectId first = settingsPoint(), second = settingsPoint("RZ_NUM_PAG", {"5"});
    settingsPoint("RZ_NUM_PAG", {"6"});
    EXPECT_EQ(mode(), 5);
    EXPECT_EQ(m_cad.SetNumeracaoPaginas(1), 0);
    EXPECT_EQ(mode(), 1);
    EXPECT_EQ(data(first), "1001:RZ_NUM_PAG 1000:1");
    EXPECT_EQ(data(second), "1001:RZ_NUM_PAG 1000:5");
}

TEST_F(PageNumbering, OfTheIdAloneIsNoValue) {
    settingsPoint("RZ_NUM_PAG", {});
    settingsPoint("RZ_NUM_PAG", {"5"});
    EXPECT_EQ(mode(), 5);
}

TEST_F(PageNumbering, OfMinusOneIsNoModeAndStillEndsTheWalk) {
    settingsPoint("RZ_NUM_PAG", {"-1"});
    settingsPoint("RZ_NUM_PAG", {"5"});
    EXPECT_EQ(mode(), 0);
    variable("*NUMERAR_POR_PROJ*", "S");
    EXPECT_EQ(mode(), 1);
}

TEST_F(PageNumbering, OfTextIsWhatTheNumberAtItsStartIs) {
    const struct {
        const char* text;
        int value;
    } all[] = {{"12abc", 12}, {" 7", 7}, {"word", 0}, {"", 0}, {"+3", 3}};
    variable("*NUMERAR_POR_PROJ*", "S");
    const OdDbObjectId carrier = settingsPoint();
    for (const auto& each : all) {
        give(carrier, "RZ_NUM_PAG", {each.text});
        EXPECT_EQ(mode(), each.value) << each.text;
    }
}

TEST_F(PageNumbering, TakesTheFirstRecordBehindTheIdWhateverItsKind) {
    const OdDbObjectId carrier = settingsPoint("RZ_NUM_PAG", {"4", "5"});
    EXPECT_EQ(mode(), 4);
    const OdSmartPtr<OdResBuf> chain = OdResBuf::newRb(1001, od("RZ_NUM_PAG"));
    chain->append(OdResBuf::newRb(1070, 8));
    carrier.openObject(OdDb::kForWrite)->setXData(chain);
    EXPECT_EQ(mode(), 8);
}

TEST_F(PageNumbering, HasNoOtherCarriers) {
    layer("rz_freeze");
    give(entityOn("rz_freeze"), "RZ_NUM_PAG", {"3"});
    give(entityOn("0"), "RZ_NUM_PAG", {"3"});
    give(entityOn<OdDbLine>("RZ_FREEZE"), "RZ_NUM_PAG", {"3"});
    give(entityOn("RZ_FREEZE", block("B")), "RZ_NUM_PAG", {"3"});
    give(entityOn("RZ_FREEZE", m_db.getPaperSpaceId()), "RZ_NUM_PAG", {"3"});
    erase(settingsPoint("RZ_NUM_PAG", {"3"}));
    EXPECT_EQ(mode(), 0);
    EXPECT_EQ(m_cad.SetNumeracaoPaginas(1), 2);
}

TEST_F(PageNumbering, IsReadFromTheDatabaseGivenAndWrittenToTheCurrentOne) {
    settingsPoint("RZ_NUM_PAG", {"5"});
    CHostDatabase side;
    EXPECT_EQ(m_cad.GetNumeracaoPaginas(&side), 0);
    EXPECT_EQ(m_cad.GetNumeracaoPaginas(nullptr), 0);
    setDatabase(&side);
    EXPECT_EQ(m_cad.SetNumeracaoPaginas(1), 2);
    EXPECT_EQ(mode(), 5);
    setDatabase(nullptr);
    m_documents.manager.closeAll();
    EXPECT_EQ(m_cad.SetNumeracaoPaginas(1), 2) << "no database";
    EXPECT_EQ(m_cad.GetNumeracaoPaginas(nullptr), 0) << "and no document";
}

TEST_F(PageNumbering, AsksTheVariableOfTheActiveDocument) {
    variable("*NUMERAR_POR_PROJ*", "S");
    CHostDocument* const other = m_documents.manager.newDocument();
    EXPECT_EQ(m_cad.GetNumeracaoPaginas(&m_db), 0) << "not of the one that the database belongs to";
    m_documents.manager.setActiveDocument(m_document);
    EXPECT_EQ(m_cad.GetNumeracaoPaginas(other->database()), 1);
}

TEST_F(PageNumbering, RaisesNoEventWhenReadAndThoseOfTheCarrierWhenWritten) {
    point();
    settingsPoint("RZ_NUM_PAG", {"5"});
    Recorder recorder(m_db);
    const unsigned long long changes = m_db.changeCount();
    mode();
    EXPECT_THAT(recorder.taken(), IsEmpty());
    EXPECT_EQ(m_db.changeCount(), changes);
    m_cad.SetNumeracaoPaginas(1);
    EXPECT_THAT(recorder.taken(), ElementsAre("opened POINT", "modified POINT"))
        << "entities that were opened for write on the way tell nothing";
}

TEST_F(PageNumbering, CanBeTakenBack) {
    const OdDbObjectId carrier = settingsPoint("RZ_NUM_PAG", {"5"});
    m_db.startUndoRecord();
    m_cad.SetNumeracaoPaginas(1);
    ASSERT_TRUE(m_db.undo());
    EXPECT_EQ(mode(), 5);
    ASSERT_TRUE(m_db.redo());
    EXPECT_EQ(mode(), 1);
    carrier.openObject(OdDb::kForWrite)->setXData(OdResBuf::newRb(1001, od("RZ_NUM_PAG")));
    m_db.startUndoRecord();
    m_cad.SetNumeracaoPaginas(1);
    ASSERT_TRUE(m_db.undo());
    EXPECT_EQ(data(carrier), "null");
}

TEST_F(PageNumbering, OpensForReadingOrForWritingAsFarAsTheCarrier) {
    const OdSmartPtr<OdDbObject> before = read(point()), carrier = read(settingsPoint()),
                                 behind = read(settingsPoint());
    mode();
    EXPECT_FALSE(before->isWriteEnabled());
    EXPECT_FALSE(carrier->isWriteEnabled());
    m_cad.SetNumeracaoPaginas(1);
    EXPECT_TRUE(before->isWriteEnabled());
    EXPECT_TRUE(carrier->isWriteEnabled());
    EXPECT_FALSE(behind->isWriteEnabled());
}

TEST_F(PageNumbering, IsWrittenOnTheNextCarrierWhereTheFirstRefuses) {
    const OdDbObjectId first = settingsPoint(), second = settingsPoint();
    lm::drawing::refuseWriting(first);
    EXPECT_EQ(m_cad.SetNumeracaoPaginas(1), 0);
    lm::drawing::refuseWriting({});
    EXPECT_EQ(data(first), "null");
    EXPECT_EQ(data(second), "1001:RZ_NUM_PAG 1000:1");
}

TEST_F(PageNumbering, LooksNoFurtherThanNeeded) {
    settingsPoint("RZ_NUM_PAG", {"5"});
    const OdSmartPtr<RaisingPoint> behind = raisingPoint();
    behind->isArmed = true;
    EXPECT_EQ(mode(), 5);
    EXPECT_EQ(m_cad.SetNumeracaoPaginas(1), 0);
    behind->isArmed = false;
}

TEST_F(PageNumbering, ReportsFailures) {
    const OdSmartPtr<RaisingPoint> point = raisingPoint();
    expectReports(
        {
            {"reading", [&] { mode(); }, {"CICad::GetNumeracaoPaginas"}},
            {"writing", [&] { m_cad.SetNumeracaoPaginas(1); }, {"CICad::SetNumeracaoPaginas"}},
        },
        [&](Kind kind) {
            point->kind = kind;
            point->isArmed = true;
        },
        [&] { point->isArmed = false; });
    EXPECT_FALSE(isWriteEnabled(m_db.getModelSpaceId())) << "model space was let go";
}

using PageNumbers = ProjectDrawing;

TEST_F(PageNumbers, AreWidenedWithZeros) {
    const struct {
        const char* width;
        int number;
        const char* text;
    } all[] = {
        {"3", 7, "007"}, {"3", 1234, "1234"}, {"", 7, "7"},        {"1", 12, "12"},
        {"0", 7, "7"},   {"-2", 7, "7"},      {"word", 7, "7"},    {"2x", 7, "07"},
        {"3", 0, "000"}, {"4", -5, "00-5"},   {"5", 123, "00123"},
    };
    EXPECT_EQ(plain(m_cad.FormataNumeroPagina(7)), "7") << "the variable is unset";
    for (const auto& each : all) {
        variable("*QTD_JUSTIFY_PAG*", each.width);
        EXPECT_EQ(plain(m_cad.FormataNumeroPagina(each.number)), each.text) << each.width;
    }
    variable("*QTD_JUSTIFY_PAG*", "3");
    CHostDocument* const other = m_documents.manager.newDocument();
    EXPECT_EQ(plain(m_cad.FormataNumeroPagina(7)), "7") << "unset in this document";
    m_cad.SetVarStr("*QTD_JUSTIFY_PAG*", "5", other);
    setDatabase(&m_db);
    EXPECT_EQ(plain(m_cad.FormataNumeroPagina(7)), "00007") << "of the active one, wherever work goes to";
    setDatabase(nullptr);
    m_documents.manager.closeAll();
    EXPECT_EQ(plain(m_cad.FormataNumeroPagina(7)), "7") << "no document";
}

} // namespace
