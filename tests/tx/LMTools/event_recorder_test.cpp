// SPDX-License-Identifier: MIT
// What the recorder hears of the deeds of CICad and of commands, event by event. Each recorded stream is read
// back as well.
#include "LMTools/event_recorder.h"

#include "tx/LMCommonMFC/reactor/follower.h"

#include <stdexcept>

namespace {

using namespace lm::tests;
using lm::host::Answer;
using lmtools::Event;
using lmtools::EventRecorder;
using lmtools::Family;
using testing::ElementsAre;
using testing::IsEmpty;

/// Keeps all events and their lines.
class Heard : public lmtools::EventListener {
public:
    void happened(const Event& event) override {
        events.push_back(event);
        lines += lineOf(event) + "\n";
    }
    std::vector<Event> events;
    std::string lines;
};

/// A recorder whose user acts in its events as well.
class ActingRecorder : public EventRecorder {
public:
    using EventRecorder::EventRecorder;
    void plineErased(CHostDocument* doc, OdSmartPtr<OdDbPolyline> pline) override {
        EventRecorder::plineErased(doc, pline);
        // A copy: what it does may put something else in its place.
        if (const auto act = onErased) act();
    }
    std::function<void()> onErased;
};

class RecordedEvents : public Symbols {
protected:
    RecordedEvents() { m_recorder.inicializar(); }
    ~RecordedEvents() override {
        m_recorder.finalizar();
        setDatabase(nullptr);
    }
    void SetUp() override { clear(); }
    void TearDown() override {
        Heard again;
        EXPECT_EQ(lmtools::replay(m_heard.lines, again), m_heard.events.size());
        EXPECT_EQ(again.events, m_heard.events);
        EXPECT_EQ(again.lines, m_heard.lines);
    }

    /// The events since the last call as "name block on layer in command", with the number of the document in
    /// "@2" unless it is the one at hand.
    Texts events() {
        Texts all;
        for (; m_taken < m_heard.events.size(); ++m_taken) all.push_back(told(m_heard.events[m_taken]));
        return all;
    }
    void clear() { events(); }
    std::string told(const Event& event) const {
        const auto part = [](const char* lead, const lm::WideString& text) {
            return text.empty() ? std::string() : lead + lm::system::toUtf8(text);
        };
        std::string line = nameOf(event) + part(" ", event.block) + part(" on ", event.layer) +
                           part(event.family == Family::kCommand ? " " : " in ", event.command);
        const bool isHere = event.document == m_document->number() || event.document == 0;
        return isHere ? line : line + " @" + std::to_string(event.document);
    }

    OdDbObjectId polyline() { return append(m_db.getModelSpaceId(), make(new OdDbPolyline)); }
    static int run(CHostDocument* doc, const char* name, OdEdCommand::Body body = {}) {
        return lm::host::runAsCommand(doc, OdString(name), std::move(body));
    }
    int run(const char* name, OdEdCommand::Body body = {}) { return run(m_document, name, std::move(body)); }
    static bool isAlive(OdDbObjectId id) { return id.isValid() && !id.isErased(); }

    CHostDocumentManager& m_manager = lm::host::documentManager();
    Heard m_heard;
    ActingRecorder m_recorder{m_heard};
    std::size_t m_taken = 0;
};

// --- Deeds of the library ---

TEST_F(RecordedEvents, OfAnInsertionEndWithTheReference) {
    block("NAF-01", {{"TAG", "", ""}, {"PIN", "", ""}});
    layer("P1");
    clear();
    const std::size_t first = m_heard.events.size();
    const Reference made = m_cad.InserirBloco(missing(), "NAF-01", "P1", 0, 0, 0, 0);
    EXPECT_THAT(events(), ElementsAre("attAppended NAF-01 on 0", "entityAppended NAF-01 on 0",
                                      "attAppended NAF-01 on 0", "entityAppended NAF-01 on 0"))
        << "the caller still holds the reference";
    made->downgradeOpen();
    EXPECT_THAT(events(), ElementsAre("blockAppended NAF-01 on P1", "ctoAppended NAF-01 on P1",
                                      "entityAppended NAF-01 on P1"));
    for (std::size_t i = first + 4; i < m_heard.events.size(); ++i)
        EXPECT_EQ(lm::system::toUtf8(m_heard.events[i].handle), handle(made->objectId()));
    EXPECT_NE(m_heard.events[first].handle, m_heard.events[first + 2].handle);
    EXPECT_EQ(m_heard.events[first].document, m_document->number());
}

TEST_F(RecordedEvents, OfAReferenceOnALayoutAreThoseOfItsAttributes) {
    const OdDbObjectId contact = block("NAF-01");
    clear();
    place(contact, {{"TAG", ""}, {"PIN", ""}}, "0", m_db.getPaperSpaceId());
    EXPECT_THAT(events(), ElementsAre("attAppended NAF-01 on 0", "entityAppended NAF-01 on 0",
                                      "attAppended NAF-01 on 0", "entityAppended NAF-01 on 0",
                                      "entityAppended NAF-01 on 0"));
}

TEST_F(RecordedEvents, OfLayers) {
    m_cad.CriarLayer("P1", &m_db);
    EXPECT_THAT(events(), ElementsAre("layerAppended on P1", "entityAppended on P1"));
    m_cad.CongelaLayer("P1");
    clear();
    m_cad.DescongelaLayer("P1", &m_db);
    EXPECT_THAT(events(), ElementsAre("layerForModify on P1", "layerModified on P1"));
    m_cad.DescongelaLayer("P1", &m_db);
    EXPECT_THAT(events(), IsEmpty());
}

TEST_F(RecordedEvents, OfANewApplicationIdAreItsAppending) {
    const OdDbObjectId id = point();
    clear();
    m_cad.updateXData(read(id), "RZ_NEW", 1, "x");
    EXPECT_THAT(events(), ElementsAre("entityAppended"));
}

TEST_F(RecordedEvents, OfAValueAreThoseOfItsAttributeAlone) {
    const OdDbObjectId id = place(block("NAF-01"), {{"TAG", "1"}})->objectId();
    clear();
    m_cad.AtualizarAtributo(RZID(id), "TAG", "2");
    EXPECT_THAT(events(), ElementsAre("attForModify NAF-01 on 0", "attModified NAF-01 on 0"));
    m_cad.AtualizarAtributo(RZID(id), "TAG", "2");
    EXPECT_THAT(events(), IsEmpty());
}

TEST_F(RecordedEvents, OfErasingAndItsUndoHaveNothingOfTheAttributes) {
    const OdDbObjectId id = place(block("INS-1"), {{"TAG", "1"}})->objectId();
    m_db.startUndoRecord();
    clear();
    id.openObject(OdDb::kForWrite)->erase();
    EXPECT_THAT(events(), ElementsAre("blockErased INS-1 on 0", "insErased INS-1 on 0"));
    m_db.undo();
    EXPECT_THAT(events(), ElementsAre("blockAppended INS-1 on 0", "insAppended INS-1 on 0",
                                      "entityAppended INS-1 on 0"));
}

TEST_F(RecordedEvents, OfAnErasedDefinitionAreNone) {
    const OdDbObjectId motor = block("MOTOR");
    append(motor, make(new OdDbPolyline));
    clear();
    motor.openObject(OdDb::kForWrite)->erase();
    EXPECT_THAT(events(), IsEmpty());
}

TEST_F(RecordedEvents, OfALoadedSymbol) {
    const Source source = symbol({{"TAG", "", ""}});
    append(source->getModelSpaceId(), make(new OdDbPolyline));
    source->setINSBASE({1, 2, 0});
    ASSERT_TRUE(m_cad.carregaBTR("MOTOR", file("motor.dxf", *source)).isValid());
    EXPECT_THAT(events(), ElementsAre("entityAppended on 0", "entityAppended on 0", "plineAppended on 0",
                                      "entityAppended on 0", "blockDefined MOTOR", "entityAppended MOTOR",
                                      "plineForModify on 0", "plineModified on 0", "blockDefined MOTOR"));
}

TEST_F(RecordedEvents, OfARedefinedBlock) {
    const OdDbObjectId motor = block("NAF-01", {{"TAG", "", ""}});
    append(motor, make(new OdDbPolyline));
    place(motor, {{"TAG", "K1"}});
    const Source source = symbol({{"TAG", "", ""}, {"PIN", "", ""}});
    append(source->getModelSpaceId(), make(new OdDbPolyline));
    clear();
    ASSERT_TRUE(m_cad.RedefinirBloco(file("motor.dxf", *source), "NAF-01"));
    Texts names;
    for (const std::string& line : events()) names.push_back(line.substr(0, line.find(' ')));
    const Texts expected{
        "entityAppended", "entityAppended", "entityAppended", "plineAppended",  "entityAppended",
        "blockDefined",   "entityAppended", "plineForModify", "plineModified",  "blockDefined",
        "plineErased",    "entityAppended", "entityAppended", "entityAppended", "plineAppended",
        "entityAppended", "plineErased",    "blockDefined",   "attErased",      "attAppended",
        "entityAppended", "attAppended",    "entityAppended", "attForModify",   "attModified",
        "blockForModify", "ctoForModify",   "blockModified",  "ctoModified"};
    EXPECT_EQ(names, expected);
}

// --- Commands ---

TEST_F(RecordedEvents, OfACommandItsUndoAndRedo) {
    const OdDbObjectId contact = block("NAF-01"), id = place(contact)->objectId();
    clear();
    run("_ONE", [&](OdEdCommandContext&) {
        id.openObject(OdDb::kForWrite)->erase();
        polyline();
    });
    EXPECT_THAT(events(), ElementsAre("commandWillStart _ONE", "blockErased NAF-01 on 0 in _ONE",
                                      "ctoErased NAF-01 on 0 in _ONE", "plineAppended on 0 in _ONE",
                                      "entityAppended on 0 in _ONE", "transactionEndedBegin in _ONE",
                                      "transactionEndedEnd in _ONE", "commandEnded _ONE"));
    m_document->executeCommand(OdString("_U"), {});
    EXPECT_THAT(events(), ElementsAre("commandWillStart _U", "blockAppended NAF-01 on 0 in _U",
                                      "ctoAppended NAF-01 on 0 in _U", "entityAppended NAF-01 on 0 in _U",
                                      "commandEnded _U"));
    m_document->executeCommand(OdString("_REDO"), {});
    EXPECT_THAT(events(), ElementsAre("commandWillStart _REDO", "blockErased NAF-01 on 0 in _REDO",
                                      "ctoErased NAF-01 on 0 in _REDO", "commandEnded _REDO"))
        << "what came back with the redo of its appending isn't told";
}

TEST_F(RecordedEvents, OfACopyHaveATransactionForEachObject) {
    const OdDbObjectId relay = block("RELE-1"), first = place(relay, {{"TAG", "1"}})->objectId(),
                       line = polyline();
    clear();
    m_document->executeCommand(OdString("_COPY"), {Answer(std::vector<OdDbObjectId>{first, line}), Answer(""),
                                                   Answer("0,0"), Answer("1,1"), Answer("")});
    EXPECT_THAT(events(),
                ElementsAre("commandWillStart _COPY", "attAppended RELE-1 on 0 in _COPY",
                            "entityAppended RELE-1 on 0 in _COPY", "blockAppended RELE-1 on 0 in _COPY",
                            "contaAppended RELE-1 on 0 in _COPY", "entityAppended RELE-1 on 0 in _COPY",
                            "transactionEndedBegin in _COPY", "transactionEndedEnd in _COPY",
                            "plineAppended on 0 in _COPY", "entityAppended on 0 in _COPY",
                            "transactionEndedBegin in _COPY", "transactionEndedEnd in _COPY",
                            "commandEnded _COPY", "transactionEndedBegin", "transactionEndedEnd"));
}

TEST_F(RecordedEvents, OfNestedCommandsNameTheInnermost) {
    run("_OUTER", [&](OdEdCommandContext&) {
        polyline();
        run("_INNER", [&](OdEdCommandContext&) { polyline(); });
        polyline();
    });
    EXPECT_THAT(events(), ElementsAre("commandWillStart _OUTER", "plineAppended on 0 in _OUTER",
                                      "entityAppended on 0 in _OUTER", "commandWillStart _INNER",
                                      "plineAppended on 0 in _INNER", "entityAppended on 0 in _INNER",
                                      "commandEnded _INNER", "plineAppended on 0 in _OUTER",
                                      "entityAppended on 0 in _OUTER", "transactionEndedBegin in _OUTER",
                                      "transactionEndedEnd in _OUTER", "commandEnded _OUTER"));
}

TEST_F(RecordedEvents, OfCancelledAndFailedCommandsTellWhatIsTakenBack) {
    const OdDbObjectId id = place(block("INS-1"))->objectId();
    clear();
    const auto erase = [&] { id.openObject(OdDb::kForWrite)->erase(); };
    run("_STOP", [&](OdEdCommandContext&) {
        erase();
        throw lm::host::CommandCancelled();
    });
    EXPECT_THAT(events(), ElementsAre("commandWillStart _STOP", "blockErased INS-1 on 0 in _STOP",
                                      "insErased INS-1 on 0 in _STOP", "blockAppended INS-1 on 0 in _STOP",
                                      "insAppended INS-1 on 0 in _STOP", "entityAppended INS-1 on 0 in _STOP",
                                      "commandCancelled _STOP"));
    EXPECT_THROW(run("_BAD",
                     [&](OdEdCommandContext&) {
                         erase();
                         throw std::runtime_error("no");
                     }),
                 std::runtime_error);
    EXPECT_THAT(events(), ElementsAre("commandWillStart _BAD", "blockErased INS-1 on 0 in _BAD",
                                      "insErased INS-1 on 0 in _BAD", "blockAppended INS-1 on 0 in _BAD",
                                      "insAppended INS-1 on 0 in _BAD", "entityAppended INS-1 on 0 in _BAD",
                                      "commandFailed _BAD"));
    EXPECT_TRUE(isAlive(id));
}

// --- The queue ---

TEST_F(RecordedEvents, OfAQueueThatGrowsWhileItRuns) {
    const OdDbObjectId first = polyline(), second = polyline(), third = polyline();
    clear();
    m_recorder.onErased = [&] {
        m_recorder.onErased = nullptr;
        m_recorder.addObjectsToErase(RZID(third));
    };
    run("_ONE", [&](OdEdCommandContext&) {
        m_recorder.addObjectsToErase(RZID(first));
        m_recorder.addObjectsToErase(RZID(second));
    });
    EXPECT_THAT(events(), ElementsAre("commandWillStart _ONE", "transactionEndedBegin in _ONE",
                                      "plineErased on 0 in _ONE", "plineErased on 0 in _ONE",
                                      "transactionEndedEnd in _ONE", "commandEnded _ONE"));
    EXPECT_TRUE(isAlive(third)) << "what was queued meanwhile waits";
    run("_TWO");
    EXPECT_THAT(events(),
                ElementsAre("commandWillStart _TWO", "transactionEndedBegin in _TWO",
                            "plineErased on 0 in _TWO", "transactionEndedEnd in _TWO", "commandEnded _TWO"));
    EXPECT_FALSE(isAlive(third));
    m_document->executeCommand(OdString("_U"), {});
    EXPECT_THAT(events(), ElementsAre("commandWillStart _U", "plineAppended on 0 in _U",
                                      "entityAppended on 0 in _U", "commandEnded _U"))
        << "the queue goes back with the command that it was erased in";
    EXPECT_TRUE(isAlive(third));
}

TEST_F(RecordedEvents, OfAQueueThatACopyHoldsBack) {
    const OdDbObjectId old = polyline(), source = point();
    clear();
    m_recorder.addObjectsToErase(RZID(old));
    m_document->executeCommand(OdString("_COPY"),
                               {Answer(source), Answer(""), Answer("0,0"), Answer("1,1"), Answer("")});
    EXPECT_THAT(events(), ElementsAre("commandWillStart _COPY", "entityAppended on 0 in _COPY",
                                      "transactionEndedBegin in _COPY", "transactionEndedEnd in _COPY",
                                      "commandEnded _COPY", "transactionEndedBegin", "plineErased on 0",
                                      "transactionEndedEnd"));
}

// --- Documents ---

TEST_F(RecordedEvents, OfTwoDocumentsBearTheirNumbers) {
    CHostDocument* const other = m_manager.newDocument();
    const std::string at = " @" + std::to_string(other->number());
    EXPECT_THAT(events(), ElementsAre("cargaInicial" + at));
    polyline();
    append(other->database()->getModelSpaceId(), make(new OdDbPolyline));
    m_manager.setActiveDocument(m_document);
    append(other->database()->getModelSpaceId(), make(new OdDbPolyline));
    run(other, "_ONE", [&](OdEdCommandContext&) { polyline(); });
    EXPECT_THAT(events(),
                ElementsAre("plineAppended on 0", "entityAppended on 0", "plineAppended on 0" + at,
                            "entityAppended on 0" + at, "plineAppended on 0" + at, "entityAppended on 0" + at,
                            "commandWillStart _ONE" + at, "plineAppended on 0 in _ONE",
                            "entityAppended on 0 in _ONE", "transactionEndedBegin in _ONE",
                            "transactionEndedEnd in _ONE", "commandEnded _ONE" + at));
    EXPECT_TRUE(m_manager.closeDocument(other));
    EXPECT_THAT(events(), IsEmpty());
}

TEST_F(RecordedEvents, OfDocumentsThatCallbacksOpenAndClose) {
    Follower actor(m_document);
    actor.inicializar();
    CHostDocument* opened = nullptr;
    clear();
    actor.once("plineAppended LWPOLYLINE", [&] {
        opened = m_manager.newDocument();
        append(opened->database()->getModelSpaceId(), make(new OdDbPolyline));
    });
    polyline();
    ASSERT_NE(opened, nullptr);
    const std::string at = " @" + std::to_string(opened->number());
    EXPECT_THAT(events(), ElementsAre("plineAppended on 0", "entityAppended on 0", "cargaInicial" + at,
                                      "plineAppended on 0" + at, "entityAppended on 0" + at))
        << "the recorder heard of the object before the one that acts";
    actor.once("plineAppended LWPOLYLINE", [&] { EXPECT_TRUE(m_manager.closeDocument(opened)); });
    polyline();
    EXPECT_THAT(events(), ElementsAre("plineAppended on 0", "entityAppended on 0"));
}

TEST_F(RecordedEvents, OfADocumentThatIsClosedWhenItsCopyEnds) {
    Follower actor(m_document);
    actor.inicializar();
    clear();
    actor.once("ended _COPY", [&] { m_document->closeAfterCommand(); });
    run("_COPY");
    const std::size_t last = m_heard.events.size();
    ASSERT_GE(last, 6u);
    Texts names;
    for (; m_taken < last; ++m_taken) names.push_back(nameOf(m_heard.events[m_taken]));
    EXPECT_THAT(names, ElementsAre("commandWillStart", "transactionEndedBegin", "transactionEndedEnd",
                                   "commandEnded", "transactionEndedBegin", "transactionEndedEnd"));
    EXPECT_EQ(m_manager.documentCount(), 0);
}

TEST_F(RecordedEvents, AreThoseOfAProjectAlone) {
    m_cad.SetVarBool("*IS_NOT_RZ_PROJECT*", true, m_document);
    run("_ONE", [&](OdEdCommandContext&) { polyline(); });
    EXPECT_THAT(events(), ElementsAre("plineAppended on 0", "entityAppended on 0"))
        << "objects are told all the same";
    m_cad.SetVarBool("*IS_NOT_RZ_PROJECT*", false, m_document);
}

// --- A whole recording ---

TEST_F(RecordedEvents, GoToASinkForAsLongAsTheRecordingLives) {
    std::string lines;
    const OdDbObjectId id = polyline();
    {
        const auto recording = lmtools::startEventRecording(
            [&lines](std::string_view line) { lines += std::string(line) + "\n"; });
        id.openObject(OdDb::kForWrite)->erase();
    }
    polyline();
    Heard heard;
    EXPECT_EQ(lmtools::replay(lines, heard), 2u);
    Texts names;
    for (const Event& event : heard.events) names.push_back(nameOf(event));
    EXPECT_THAT(names, ElementsAre("cargaInicial", "plineErased"));
}

} // namespace
