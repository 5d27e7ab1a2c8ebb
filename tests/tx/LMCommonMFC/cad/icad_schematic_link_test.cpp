// SPDX-License-Identifier: MIT
// From an appearance of a component to its schematic object, and what a copy needs to be mended.
#include "stored_data.h"

#include "drawing/writer.h"

#include <gmock/gmock.h>

#include <cmath>
#include <functional>
#include <stdexcept>

namespace {

using namespace lm::tests;
using testing::ElementsAre;
using testing::IsEmpty;

using Mapping = OdSmartPtr<OdDbIdMapping>;

/// A kind of link: the application, and at which position the handle stands.
struct Kind {
    const char* application;
    int position;
};
constexpr Kind kKinds[] = {{"TVO_LAYOUT_PAINEL", 1},
                           {"TVO_RZ_UNIFILAR", 1},
                           {"TVO_RZ_REPRESENTACAO", 2},
                           {"TVO_RZ_ANILHAFIO", 1},
                           {"TVO_RZ_ANILHACABO", 1}};

class Links : public StoredData {
protected:
    static Mapping mapping(std::initializer_list<std::pair<OdDbObjectId, OdDbObjectId>> pairs) {
        const Mapping made = make(new OdDbIdMapping);
        for (const auto& [key, value] : pairs) made->assign(OdDbIdPair(key, value));
        return made;
    }
    /// Gives an object a link of a kind to what a text names.
    void link(OdDbObjectId from, const Kind& kind, const std::string& to) {
        Texts texts(static_cast<std::size_t>(kind.position - 1), "before");
        texts.push_back(to);
        texts.push_back("behind");
        give(from, kind.application, texts);
    }
    RZID schematicOf(OdDbObjectId object) { return m_cad.getObjIdEsquema(RZID(object)); }

    const OdDbObjectId m_object = point(), m_schematic = point(), m_other = point();
};

// --- to the schematic object ---

TEST_F(Links, LeadToTheSchematicObject) {
    for (const Kind& kind : kKinds) {
        const OdDbObjectId object = point();
        link(object, kind, handle(m_schematic));
        EXPECT_EQ(schematicOf(object), m_schematic) << kind.application;
    }
}

TEST_F(Links, AreFollowedInEachForm) {
    link(m_object, kKinds[0], handle(m_schematic));
    EXPECT_EQ(m_cad.getObjIdEsquema(read(m_object)), m_schematic);
    EXPECT_EQ(m_cad.getObjIdEsquema(RZID(m_object)), m_schematic);
    EXPECT_EQ(m_cad.getObjIdEsquema(&m_db, read(m_object)), m_schematic);
    EXPECT_EQ(m_cad.getObjIdEsquema(&m_db, RZID(m_object)), m_schematic);
    const OdSmartPtr<OdDbObject> held = read(m_object);
    held->downgradeOpen();
    m_cad.getObjIdEsquema(RZID(m_object));
    EXPECT_FALSE(held->isWriteEnabled()) << "opened for reading";
}

TEST_F(Links, ASchematicObjectIsItsOwn) {
    for (const Kind& kind : kKinds) link(m_object, kind, handle(m_other));
    give(m_object, "TVO_RZ", {""});
    EXPECT_EQ(schematicOf(m_object), m_object) << "whatever else it bears";
}

TEST_F(Links, WithoutAnyAnObjectIsItsOwn) {
    EXPECT_EQ(schematicOf(m_object), m_object);
    const OdSmartPtr<OdDbLine> line = make(new OdDbLine);
    append(m_db.getModelSpaceId(), line);
    EXPECT_EQ(m_cad.getObjIdEsquema(line), line->objectId());
    give(m_object, "TVO_RZ_CIRCLOC", {handle(m_other)});
    give(m_object, "TVO_LAYOUT_ESQUEMA", {handle(m_other)});
    EXPECT_EQ(schematicOf(m_object), m_object) << "links in the other direction aren't followed";
}

TEST_F(Links, OfNothingLeadNowhere) {
    const OdDbObjectId gone = point();
    give(gone, "TVO_RZ", {""});
    erase(gone);
    EXPECT_TRUE(m_cad.getObjIdEsquema(OdSmartPtr<OdDbObject>()).isNull());
    EXPECT_TRUE(m_cad.getObjIdEsquema(&m_db, OdSmartPtr<OdDbObject>()).isNull());
    EXPECT_TRUE(m_cad.getObjIdEsquema(RZID()).isNull());
    EXPECT_TRUE(m_cad.getObjIdEsquema(&m_db, RZID(rz("FFFFF"))).isNull());
    EXPECT_TRUE(schematicOf(gone).isNull()) << "an erased object can't be opened";
    EXPECT_TRUE(m_cad.getObjIdEsquema(make(new OdDbPoint)).isNull()) << "nor has one outside a drawing an id";
}

TEST_F(Links, OfSeveralKindsAreFollowedInAFixedOrder) {
    for (std::size_t second = 1; second < std::size(kKinds); ++second) {
        for (std::size_t first = 0; first < second; ++first) {
            const OdDbObjectId object = point();
            link(object, kKinds[second],
                 handle(m_other)); // written first, so the order of writing is no help
            link(object, kKinds[first], handle(m_schematic));
            EXPECT_EQ(schematicOf(object), m_schematic)
                << kKinds[first].application << " before " << kKinds[second].application;
        }
    }
}

TEST_F(Links, OfTheFirstKindDecideEvenWhenTheyAreBad) {
    for (std::size_t first = 0; first + 1 < std::size(kKinds); ++first) {
        for (const char* bad : {"FFFFF", "0", "", "no handle", "A B"}) {
            const OdDbObjectId object = point();
            link(object, kKinds[first], bad);
            link(object, kKinds[first + 1], handle(m_other));
            EXPECT_EQ(schematicOf(object), object) << kKinds[first].application << " " << bad;
        }
    }
}

TEST_F(Links, OfARepresentationNeedTwoRecords) {
    give(m_object, "TVO_RZ_REPRESENTACAO", {handle(m_other)});
    EXPECT_EQ(schematicOf(m_object), m_object);
    link(m_object, {"TVO_RZ_ANILHAFIO", 1}, handle(m_schematic));
    EXPECT_EQ(schematicOf(m_object), m_schematic) << "the wire's label is asked next";
    give(m_object, "TVO_RZ_REPRESENTACAO", {handle(m_schematic), handle(m_other)});
    EXPECT_EQ(schematicOf(m_object), m_other) << "the second record is read, not the first";
}

TEST_F(Links, NeedARecordBehindTheMark) {
    give(m_object, "TVO_RZ", {});
    for (const Kind& kind : kKinds) {
        EXPECT_EQ(schematicOf(m_object), m_object) << "before " << kind.application;
        give(m_object, kind.application, {});
    }
    ASSERT_EQ(data(m_object, "TVO_RZ"), "1001:TVO_RZ");
    link(m_object, {"TVO_RZ_ANILHACABO", 1}, handle(m_schematic));
    EXPECT_EQ(schematicOf(m_object), m_schematic) << "lone marks are passed over";
}

TEST_F(Links, AreReadInAnySpellingOfTheHandle) {
    std::string lower = handle(m_schematic);
    for (char& digit : lower) digit = static_cast<char>(std::tolower(digit));
    link(m_object, kKinds[0], "000" + lower);
    EXPECT_EQ(schematicOf(m_object), m_schematic);
}

TEST_F(Links, ToAnErasedObjectHoldUntilTheDrawingIsReadAgain) {
    link(m_object, kKinds[0], handle(m_schematic));
    give(m_schematic, "TVO_RZ", {""});
    erase(m_schematic);
    EXPECT_EQ(schematicOf(m_object), m_schematic) << "an erased object is known to its drawing";
    const lm::test::TemporaryFolder folder;
    const OdString path = lm::test::odPath((folder.path() / "saved.dxf").string());
    const OdDbHandle kept = m_object.getHandle();
    lm::drawing::saveDrawing(m_db, path);
    m_documents.manager.openDocument(path);
    const RZID object(kept);
    ASSERT_FALSE(object.isNull());
    EXPECT_NE(object.database(), &m_db);
    EXPECT_EQ(m_cad.getObjIdEsquema(object), object) << "a handle that leads nowhere is no link";
}

TEST_F(Links, AreLookedUpInTheCurrentDatabase) {
    give(m_schematic, "TVO_RZ", {""});
    link(m_object, kKinds[0], handle(m_schematic));
    CHostDatabase other, bare(CHostDatabase::kNothing);
    setDatabase(&bare);
    EXPECT_EQ(m_cad.getObjIdEsquema(&m_db, RZID(m_object)), m_object) << "the database given isn't asked";
    EXPECT_EQ(m_cad.getObjIdEsquema(&m_db, RZID(m_schematic)), m_schematic) << "unknown there, so itself";
    setDatabase(&other);
    const OdDbObjectId twin = other.getModelSpaceId();
    link(m_object, kKinds[0], handle(twin));
    EXPECT_EQ(m_cad.getObjIdEsquema(&m_db, RZID(m_object)), twin);
    EXPECT_EQ(schematicOf(m_object).database(), &other);
    setDatabase(nullptr);
}

TEST_F(Links, ItsOwnHandleOfASchematicObjectIsLookedUpInTheCurrentDatabase) {
    CHostDatabase other;
    const OdDbObjectId layer = other.getLayerZeroId(), twin = m_db.getLayerZeroId();
    ASSERT_EQ(handle(layer), handle(twin)) << "two new drawings number alike";
    layer.openObject(OdDb::kForWrite)->setXData(chainOf({""}, "TVO_RZ"));
    EXPECT_EQ(m_cad.getObjIdEsquema(&other, RZID(layer)), twin);
    setDatabase(&other);
    EXPECT_EQ(m_cad.getObjIdEsquema(RZID(layer)), layer);
    setDatabase(nullptr);
}

// --- mending after a copy ---

class CopiedLinks : public Links {
protected:
    /// A chain of handles to the same source with a text of another kind between them.
    Texts handles(int count) const {
        Texts texts;
        for (int i = 0; i < count; ++i) texts.push_back(handle(m_source));
        return texts;
    }
    /// Which positions of a chain name the copy, as in "1 3".
    std::string mended(OdDbObjectId object, const char* application) const {
        std::string positions;
        int position = 0;
        for (OdSmartPtr<OdResBuf> at = read(object)->xData(od(application)); !at.isNull();
             at = at->next(), ++position)
            if (plain(CHostString(at->getString())) == handle(m_copy))
                positions += (positions.empty() ? "" : " ") + std::to_string(position);
        return positions;
    }
    /// An object with chains of eight handles under all applications that may be mended.
    OdDbObjectId full(const Texts& marks) {
        const OdDbObjectId object = point();
        for (const char* application : kMended) give(object, application, handles(8));
        for (const std::string& mark : marks) give(object, mark.c_str(), {"mark"});
        return object;
    }
    /// All that was mended, as "APPLICATION 1 3; ".
    std::string mended(OdDbObjectId object) const {
        std::string all;
        for (const char* application : kMended)
            if (const std::string positions = mended(object, application); !positions.empty())
                all += std::string(application) + " " + positions + "; ";
        return all;
    }
    Mapping first(OdDbObjectId object) const { return mapping({{m_source, m_copy}, {m_object, object}}); }

    static constexpr const char* kMended[] = {
        "TVO_LAYOUT_PAINEL", "TVO_RZ_ESQUEMATICO_UNIFILAR", "TVO_RZ_ANILHAFIO",
        "TVO_RZ_ANILHACABO", "TVO_LAYOUT_ESQUEMA",          "TVO_RZ_REPRESENTACAO_ESQ",
    };
    const OdDbObjectId m_source = point(), m_copy = point();
    const Mapping m_none;
};

TEST_F(CopiedLinks, WithoutAnythingCopiedNothingIsDone) {
    EXPECT_FALSE(m_cad.reassociaBlocos(m_none, m_none));
    EXPECT_FALSE(m_cad.reassociaBlocos(mapping({}), mapping({})));
    EXPECT_FALSE(m_cad.reassociaBlocos(mapping({{m_source, m_copy}}), m_none)) << "a copy without a mark";
    EXPECT_EQ(data(m_copy), "null");
}

TEST_F(CopiedLinks, AreMendedByTheKindOfTheObject) {
    struct Case {
        const char* what;
        Texts marks;
        const char* mended;
        bool result;
    };
    const char schematic[] = "TVO_RZ_ESQUEMATICO_UNIFILAR 1; TVO_LAYOUT_ESQUEMA 1 3; "
                             "TVO_RZ_REPRESENTACAO_ESQ 2 4 6 8; ";
    const Case cases[] = {
        {"schematic", {"TVO_RZ"}, schematic, true},
        {"panel", {"TVO_LAYOUT_RZ"}, "TVO_LAYOUT_PAINEL 1 3; ", true},
        {"single line", {"TVO_RZ_UNIFILAR"}, "TVO_RZ_ESQUEMATICO_UNIFILAR 1; ", true},
        {"representation", {"TVO_RZ_REPRESENTACAO"}, "", true},
        {"none", {}, "", false},
        {"schematic before panel", {"TVO_LAYOUT_RZ", "TVO_RZ"}, schematic, true},
        {"panel before single line", {"TVO_RZ_UNIFILAR", "TVO_LAYOUT_RZ"}, "TVO_LAYOUT_PAINEL 1 3; ", true},
        {"single line before representation",
         {"TVO_RZ_REPRESENTACAO", "TVO_RZ_UNIFILAR"},
         "TVO_RZ_ESQUEMATICO_UNIFILAR 1; ",
         true},
    };
    for (const Case& each : cases) {
        const OdDbObjectId object = full(each.marks);
        EXPECT_EQ(m_cad.reassociaBlocos(first(object), m_none), each.result) << each.what;
        EXPECT_EQ(mended(object), each.mended) << each.what;
    }
}

TEST_F(CopiedLinks, OfASingleLineObjectAndOfARepresentationStandUnderTheirMarks) {
    const OdDbObjectId line = point(), representation = point();
    give(line, "TVO_RZ_UNIFILAR", handles(3));
    give(representation, "TVO_RZ_REPRESENTACAO", handles(3));
    EXPECT_TRUE(m_cad.reassociaBlocos(
        mapping({{m_source, m_copy}, {m_object, line}, {m_other, representation}}), m_none));
    EXPECT_EQ(mended(line, "TVO_RZ_UNIFILAR"), "1");
    EXPECT_EQ(mended(representation, "TVO_RZ_REPRESENTACAO"), "2");
}

TEST_F(CopiedLinks, OfAPanelObjectNeedItsOwnMark) {
    const OdDbObjectId object = point();
    give(object, "TVO_LAYOUT_PAINEL", handles(3));
    EXPECT_FALSE(m_cad.reassociaBlocos(first(object), m_none));
    EXPECT_EQ(mended(object, "TVO_LAYOUT_PAINEL"), "");
}

TEST_F(CopiedLinks, ToThreeRepresentationsAreMendedAll) {
    const OdDbObjectId object = point();
    give(object, "TVO_RZ", {"mark"});
    give(object, "TVO_RZ_REPRESENTACAO_ESQ", handles(7));
    EXPECT_TRUE(m_cad.reassociaBlocos(first(object), m_none));
    EXPECT_EQ(mended(object, "TVO_RZ_REPRESENTACAO_ESQ"), "2 4 6");
}

TEST_F(CopiedLinks, ToRepresentationsEndAtOneThatWasNotCopied) {
    const OdDbObjectId object = point();
    give(object, "TVO_RZ", {"mark"});
    Texts texts = handles(8);
    texts[3] = handle(m_other);
    give(object, "TVO_RZ_REPRESENTACAO_ESQ", texts);
    EXPECT_TRUE(m_cad.reassociaBlocos(first(object), m_none));
    EXPECT_EQ(mended(object, "TVO_RZ_REPRESENTACAO_ESQ"), "2") << "6 and 8 stay, although they were copied";
}

TEST_F(CopiedLinks, OtherwiseGoOnPastOneThatWasNotCopied) {
    const OdDbObjectId object = point();
    give(object, "TVO_LAYOUT_RZ", {"mark"});
    give(object, "TVO_LAYOUT_PAINEL", {handle(m_other), "text", handle(m_source)});
    EXPECT_TRUE(m_cad.reassociaBlocos(first(object), m_none));
    EXPECT_EQ(mended(object, "TVO_LAYOUT_PAINEL"), "3");
}

TEST_F(CopiedLinks, InTheSecondMappingAreThoseOfSchematicObjects) {
    const OdDbObjectId schematic = full({"TVO_RZ"}), panel = full({"TVO_LAYOUT_RZ"}),
                       line = full({"TVO_RZ_UNIFILAR"}), representation = full({"TVO_RZ_REPRESENTACAO"});
    const Mapping handlesOnly = mapping({{m_source, m_copy}});
    EXPECT_FALSE(m_cad.reassociaBlocos(
        handlesOnly, mapping({{m_object, panel}, {m_other, line}, {m_schematic, representation}})));
    for (const OdDbObjectId& each : {panel, line, representation}) EXPECT_EQ(mended(each), "");
    EXPECT_TRUE(m_cad.reassociaBlocos(handlesOnly, mapping({{m_object, panel}, {m_other, schematic}})));
    EXPECT_EQ(mended(panel), "");
    EXPECT_EQ(mended(schematic), "TVO_RZ_ESQUEMATICO_UNIFILAR 1; TVO_LAYOUT_ESQUEMA 1 3; "
                                 "TVO_RZ_REPRESENTACAO_ESQ 2 4 6 8; ");
}

TEST_F(CopiedLinks, AreLookedUpInTheSecondMappingFirst) {
    const OdDbObjectId object = full({"TVO_RZ"}), gone = point();
    erase(gone);
    EXPECT_TRUE(m_cad.reassociaBlocos(mapping({{m_source, m_other}, {m_object, object}}),
                                      mapping({{m_source, m_copy}})));
    EXPECT_EQ(mended(object, "TVO_LAYOUT_ESQUEMA"), "1 3");
    const OdDbObjectId second = full({"TVO_RZ"});
    EXPECT_TRUE(m_cad.reassociaBlocos(first(second), mapping({{m_source, gone}})));
    EXPECT_EQ(mended(second, "TVO_LAYOUT_ESQUEMA"), "1 3") << "an erased copy counts as not found";
}

TEST_F(CopiedLinks, ToAnErasedCopyStay) {
    const OdDbObjectId object = full({"TVO_RZ"});
    erase(m_copy);
    EXPECT_TRUE(m_cad.reassociaBlocos(first(object), first(object)));
    EXPECT_EQ(mended(object), "");
}

TEST_F(CopiedLinks, CountAsMendedWhateverCameOfIt) {
    for (const char* mark : {"TVO_RZ", "TVO_LAYOUT_RZ", "TVO_RZ_UNIFILAR", "TVO_RZ_REPRESENTACAO"}) {
        const OdDbObjectId object = pointWith(mark, {"mark"}), lone = pointWith(mark, {});
        EXPECT_TRUE(m_cad.reassociaBlocos(first(object), m_none)) << mark << ": there is no link to mend";
        EXPECT_TRUE(m_cad.reassociaBlocos(first(lone), m_none)) << mark << ": its presence counts";
    }
}

TEST_F(CopiedLinks, NeedTheFirstMappingToBeFound) {
    const OdDbObjectId object = full({"TVO_RZ"});
    EXPECT_TRUE(m_cad.reassociaBlocos(m_none, first(object)));
    EXPECT_EQ(mended(object), "") << "it was met, and no handle was found";
}

TEST_F(CopiedLinks, PassOverWhatIsNotThere) {
    const OdDbObjectId object = full({"TVO_RZ"}), gone = full({"TVO_RZ"});
    erase(gone);
    EXPECT_FALSE(m_cad.reassociaBlocos(mapping({{m_object, gone}, {m_other, OdDbObjectId()}}),
                                       mapping({{m_object, gone}})));
    EXPECT_TRUE(m_cad.reassociaBlocos(
        mapping({{m_source, m_copy}, {m_object, gone}, {m_schematic, OdDbObjectId()}, {m_other, object}}),
        m_none));
    EXPECT_EQ(mended(object, "TVO_LAYOUT_ESQUEMA"), "1 3");
}

TEST_F(CopiedLinks, WithoutAChangeOpenNothingForWrite) {
    const OdDbObjectId object = full({"TVO_RZ"});
    const OdSmartPtr<OdDbObject> held = read(object);
    held->downgradeOpen();
    EXPECT_TRUE(m_cad.reassociaBlocos(mapping({{m_object, object}}), m_none));
    EXPECT_FALSE(held->isWriteEnabled());
    EXPECT_TRUE(m_cad.reassociaBlocos(first(object), m_none));
    EXPECT_TRUE(held->isWriteEnabled());
}

/// A component with a panel shape and a representation is copied whole: the copies lead to each other, and
/// the sources stay as they were.
TEST_F(CopiedLinks, OfARealCopyLeadToTheCopies) {
    const OdDbObjectId panel = point(), shown = point();
    give(m_schematic, "TVO_RZ", {"mark"});
    give(m_schematic, "TVO_LAYOUT_ESQUEMA", {handle(panel)});
    give(m_schematic, "TVO_RZ_REPRESENTACAO_ESQ", {"A", handle(shown)});
    give(panel, "TVO_LAYOUT_RZ", {"mark"});
    give(panel, "TVO_LAYOUT_PAINEL", {handle(m_schematic)});
    give(shown, "TVO_RZ_REPRESENTACAO", {"A", handle(m_schematic)});
    OdDbIdMapping& first = *new OdDbIdMapping;
    OdDbIdMapping& second = *new OdDbIdMapping;
    const Mapping ofAppearances(&first, lm::drawing::kAttach), ofSchematics(&second, lm::drawing::kAttach);
    m_db.deepCloneObjects({panel, shown}, m_db.getModelSpaceId(), first);
    m_db.deepCloneObjects({m_schematic}, m_db.getModelSpaceId(), second);
    const RZID newSchematic = m_cad.getObjectId(ofSchematics, m_schematic);
    const RZID newPanel = m_cad.getObjectId(ofAppearances, panel);
    const RZID newShown = m_cad.getObjectId(ofAppearances, shown);
    EXPECT_EQ(m_cad.getObjIdEsquema(newPanel), m_schematic) << "a copy bears the handles of its source";

    EXPECT_TRUE(m_cad.reassociaBlocos(ofAppearances, ofSchematics));
    EXPECT_EQ(m_cad.getObjIdEsquema(newPanel), newSchematic);
    EXPECT_EQ(m_cad.getObjIdEsquema(newShown), newSchematic);
    EXPECT_EQ(data(newSchematic, "TVO_LAYOUT_ESQUEMA"), "1001:TVO_LAYOUT_ESQUEMA 1000:" + handle(newPanel));
    EXPECT_EQ(data(newSchematic, "TVO_RZ_REPRESENTACAO_ESQ"),
              "1001:TVO_RZ_REPRESENTACAO_ESQ 1000:A 1000:" + handle(newShown));
    EXPECT_EQ(schematicOf(panel), m_schematic);
    EXPECT_EQ(schematicOf(shown), m_schematic);
    EXPECT_EQ(data(m_schematic, "TVO_LAYOUT_ESQUEMA"), "1001:TVO_LAYOUT_ESQUEMA 1000:" + handle(panel));
}

/// A reactor that hears of a change may lengthen the mapping that is being walked.
TEST_F(CopiedLinks, BearAMappingThatGrowsMeanwhile) {
    const OdDbObjectId object = full({"TVO_RZ"}), late = full({"TVO_RZ"});
    const Mapping growing = first(object);
    Recorder recorder(m_db);
    bool isGrown = false;
    recorder.armed = [&] {
        if (std::exchange(isGrown, true)) return;
        for (int i = 0; i < 100; ++i) growing->assign(OdDbIdPair(point(), OdDbObjectId()));
        growing->assign(OdDbIdPair(m_other, late));
    };
    EXPECT_TRUE(m_cad.reassociaBlocos(growing, m_none));
    recorder.armed = nullptr;
    EXPECT_EQ(mended(object, "TVO_LAYOUT_ESQUEMA"), "1 3");
    EXPECT_EQ(mended(late, "TVO_LAYOUT_ESQUEMA"), "1 3");
}

// --- failures ---

template<class Raised, class Run>
void expectLines(const char* what, Run&& run, const Texts& names) {
    const lm::test::LogCapture log;
    EXPECT_THROW(run(), Raised) << what;
    Texts seen;
    for (const std::string& line : log.lines()) {
        const std::size_t from = line.find("} ") + 2;
        seen.push_back(line.substr(from, line.find(" : ") - from));
    }
    EXPECT_EQ(seen, names) << what;
}

TEST_F(CopiedLinks, ThatFailAreReportedAndThoseMendedBeforeStay) {
    const OdDbObjectId object = full({"TVO_RZ"}), next = full({"TVO_RZ"});
    const Mapping all = mapping({{m_source, m_copy}, {m_object, object}, {m_other, next}});
    Recorder recorder(m_db);
    const Texts lines = {"CICad::updateXDataHandle", "CICad::reassociaBlocos"};
    const auto run = [&] { m_cad.reassociaBlocos(all, m_none); };
    const auto raiseAfter = [&](int events, auto&& raise) {
        recorder.armed = [left = events, raise]() mutable {
            if (left-- <= 0) raise();
        };
    };
    // Of the first object a reactor hears twice: before its change and when it is let go.
    raiseAfter(2, [] { throw OdError(OdString("broken")); });
    expectLines<OdError>("OdError", run, lines);
    recorder.armed = nullptr;
    EXPECT_EQ(mended(object, "TVO_RZ_REPRESENTACAO_ESQ"), "2 4 6 8");
    EXPECT_EQ(mended(next), "");
    raiseAfter(0, [] { throw std::runtime_error("broken"); });
    expectLines<std::runtime_error>("standard", run, lines);
    raiseAfter(0, [] { throw 7; });
    expectLines<int>("other", run, {});
    recorder.armed = nullptr;
    run();
    EXPECT_EQ(mended(next, "TVO_RZ_REPRESENTACAO_ESQ"), "2 4 6 8");
}

TEST_F(CopiedLinks, OfTheFirstMappingAreMendedBeforeThoseOfTheSecond) {
    const OdDbObjectId early = full({"TVO_RZ"}), late = full({"TVO_RZ"});
    Recorder recorder(m_db);
    // As above: the first object has been mended and let go by then.
    recorder.armed = [left = 2]() mutable {
        if (left-- <= 0) throw OdError(OdString("broken"));
    };
    const auto run = [&] { m_cad.reassociaBlocos(first(early), mapping({{m_other, late}})); };
    expectLines<OdError>("second object", run, {"CICad::updateXDataHandle", "CICad::reassociaBlocos"});
    recorder.armed = nullptr;
    EXPECT_EQ(mended(early, "TVO_RZ_REPRESENTACAO_ESQ"), "2 4 6 8");
    EXPECT_EQ(mended(late), "");
}

TEST_F(Links, ThatCannotBeReadAreReportedOnceForEachGuard) {
    link(m_object, kKinds[0], handle(m_schematic));
    const OdSmartPtr<OdDbObject> held = read(m_object);
    const char name[] = "CICad::getObjIdEsquema";
    const auto failing = [](auto&& run) {
        return [run] {
            lm::drawing::failAllocationAfter(0);
            run();
        };
    };
    expectLines<std::bad_alloc>("database, object", failing([&] { m_cad.getObjIdEsquema(&m_db, held); }),
                                {name});
    expectLines<std::bad_alloc>("object", failing([&] { m_cad.getObjIdEsquema(held); }), {name, name});
    expectLines<std::bad_alloc>("database, id",
                                failing([&] { m_cad.getObjIdEsquema(&m_db, RZID(m_object)); }), {name, name});
    expectLines<std::bad_alloc>("id", failing([&] { m_cad.getObjIdEsquema(RZID(m_object)); }),
                                {name, name, name});
    lm::drawing::failAllocationAfter(-1);
    EXPECT_EQ(m_cad.getObjIdEsquema(held), m_schematic);
}

// --- geometry ---

TEST(WireGeometry, HasOnePointForTheStartOfAWire) {
    EXPECT_EQ(CICad().getPontoRefInicioFio(), OdGePoint3d(-10000.0, 1000.0, 0.0));
}

struct PointOnSegment {
    const char* what;
    OdGePoint3d from, to, point;
    double tolerance;
    bool lies;
};

class Segment : public testing::TestWithParam<PointOnSegment> {};

TEST_P(Segment, HoldsThePointsWithinItsTolerance) {
    const PointOnSegment& each = GetParam();
    EXPECT_EQ(CICad().pontoPertenceLinha(each.from, each.to, each.point, each.tolerance), each.lies);
}

const double kNaN = std::nan("");

const PointOnSegment kSegments[] = {
    {"start", {0, 0, 0}, {10, 0, 0}, {0, 0, 0}, 0, true},
    {"middle", {0, 0, 0}, {10, 0, 0}, {5, 0, 0}, 0, true},
    {"end", {0, 0, 0}, {10, 0, 0}, {10, 0, 0}, 0, true},
    {"behind the end", {0, 0, 0}, {10, 0, 0}, {10.5, 0, 0}, 0, false},
    {"a tolerance behind the end", {0, 0, 0}, {10, 0, 0}, {11, 0, 0}, 1, true},
    {"more than a tolerance behind the end", {0, 0, 0}, {10, 0, 0}, {11.0001, 0, 0}, 1, false},
    {"a tolerance before the start", {0, 0, 0}, {10, 0, 0}, {-1, 0, 0}, 1, true},
    {"more than a tolerance before the start", {0, 0, 0}, {10, 0, 0}, {-1.0001, 0, 0}, 1, false},
    {"a tolerance aside at the start", {0, 0, 0}, {10, 0, 0}, {0, 1, 0}, 1, true},
    {"a tolerance aside, other side", {0, 0, 0}, {10, 0, 0}, {0, -1, 0}, 1, true},
    {"a tolerance aside in z", {0, 0, 0}, {10, 0, 0}, {0, 0, 1}, 1, true},
    {"more than a tolerance aside", {0, 0, 0}, {10, 0, 0}, {5, 1.0001, 0}, 1, false},
    {"more than a tolerance aside, other side", {0, 0, 0}, {10, 0, 0}, {5, -1.0001, 0}, 1, false},
    {"aside within the tolerance", {0, 0, 0}, {10, 0, 0}, {5, 0.9999, 0}, 1, true},
    {"the corner is a rectangle's", {0, 0, 0}, {10, 0, 0}, {10.9, 0.9, 0}, 1, true},
    {"backwards", {10, 0, 0}, {0, 0, 0}, {4, 0, 0}, 0.001, true},
    {"backwards, behind the end", {10, 0, 0}, {0, 0, 0}, {-0.5, 0, 0}, 0.1, false},
    {"upright", {3, 1, 0}, {3, 9, 0}, {3, 5, 0}, 1e-9, true},
    {"upright, aside", {3, 1, 0}, {3, 9, 0}, {4, 5, 0}, 0.5, false},
    {"slanting", {1, 1, 0}, {4, 5, 0}, {2.5, 3, 0}, 1e-9, true},
    {"slanting in space", {0, 0, 0}, {2, 2, 2}, {1, 1, 1}, 1e-9, true},
    {"slanting in space, aside", {0, 0, 0}, {2, 2, 2}, {1, 1, 0}, 0.5, false},
    {"far from the origin",
     {1000000, 1000000, 0},
     {1000010, 1000000, 0},
     {1000005, 1000000.3, 0},
     0.3001,
     true},
    {"a tolerance below 0 holds nothing", {0, 0, 0}, {10, 0, 0}, {5, 0, 0}, -1, false},
    {"no length, the point itself", {2, 2, 0}, {2, 2, 0}, {2, 2, 0}, 0, true},
    {"no length, within the tolerance", {2, 2, 0}, {2, 2, 0}, {2.5, 2, 0}, 1, true},
    {"no length, a tolerance away", {2, 2, 0}, {2, 2, 0}, {2, 3, 0}, 1, true},
    {"no length, a tolerance away, other side", {2, 2, 0}, {2, 2, 0}, {1, 2, 0}, 1, true},
    {"no length, farther", {2, 2, 0}, {2, 2, 0}, {2, 3.0001, 0}, 1, false},
    {"no length, aside without tolerance", {2, 2, 0}, {2, 2, 0}, {2, 2.5, 0}, 0, false},
    {"the point is no number", {0, 0, 0}, {10, 0, 0}, {kNaN, 0, 0}, 1, false},
    {"the segment is no number", {0, 0, 0}, {kNaN, 0, 0}, {5, 0, 0}, 1, false},
    {"the tolerance is no number", {0, 0, 0}, {10, 0, 0}, {5, 0, 0}, kNaN, false},
};

INSTANTIATE_TEST_SUITE_P(Wire, Segment, testing::ValuesIn(kSegments), [](const auto& info) {
    std::string name;
    for (const char* at = info.param.what; *at != 0; ++at) name += std::isalnum(*at) ? *at : '_';
    return name;
});

} // namespace
