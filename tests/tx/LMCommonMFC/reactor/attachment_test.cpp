// SPDX-License-Identifier: MIT
// How a reactor joins the host, its documents and their databases, and leaves them again.
#include "follower.h"

#include "host/services.h"
#include "lmcommon/cicommandstack.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace {

using namespace lm::tests;
using testing::ElementsAre;
using testing::IsEmpty;

std::string at(const CHostDocument* doc) {
    return " @" + std::to_string(doc->number());
}

class Attachment : public Symbols {
protected:
    ~Attachment() override {
        CICommandStack::instance()->setProjectTest({});
        lm::host::setServicesPresent(true);
    }
    static void addPoint(CHostDocument* doc) {
        append(doc->database()->getModelSpaceId(), make(new OdDbPoint));
    }
    CHostDocumentManager& m_manager = m_documents.manager;
};

TEST_F(Attachment, BeginsWithNothing) {
    const std::size_t documents = m_manager.reactorCount(), commands = odedRegCmds()->reactorCount();
    Follower follower(m_document);
    EXPECT_EQ(plain(follower.getComandoAtivo()), "");
    EXPECT_EQ(follower.getActiveCommandsCount(), 0);
    EXPECT_FALSE(follower.wasUserErased("1"));
    EXPECT_FALSE(follower.wasUserErased(""));
    EXPECT_EQ(m_manager.reactorCount(), documents);
    EXPECT_EQ(odedRegCmds()->reactorCount(), commands);
    addPoint(m_document);
    EXPECT_THAT(follower.taken(), IsEmpty());
}

TEST_F(Attachment, JoinsDocumentsAndCommandsAndLeavesThem) {
    const std::size_t documents = m_manager.reactorCount(), commands = odedRegCmds()->reactorCount();
    Follower follower(m_document);
    follower.inicializar();
    EXPECT_EQ(m_manager.reactorCount(), documents + 1);
    EXPECT_EQ(odedRegCmds()->reactorCount(), commands + 1);
    EXPECT_THAT(follower.taken(), ElementsAre("cargaInicial"));
    addPoint(m_document);
    m_db.startTransaction();
    m_db.endTransaction();
    lm::host::runAsCommand(m_document, OdString("_X"), {});
    EXPECT_THAT(follower.taken(),
                ElementsAre("entityAppended POINT", "begin", "end", "start _X", "begin", "end", "ended _X"));
    follower.finalizar();
    EXPECT_EQ(m_manager.reactorCount(), documents);
    EXPECT_EQ(odedRegCmds()->reactorCount(), commands);
    addPoint(m_document);
    m_db.startTransaction();
    m_db.endTransaction();
    lm::host::runAsCommand(m_document, OdString("_X"), {});
    m_manager.newDocument();
    EXPECT_THAT(follower.taken(), IsEmpty());
}

TEST_F(Attachment, TakesTheOpenDocumentsInTheirOrderAndThenTheNewOnes) {
    CHostDocument* const second = m_manager.newDocument();
    m_manager.newDocumentWithoutDatabase();
    m_manager.setActiveDocument(m_document);
    Follower follower(m_document);
    follower.inicializar();
    EXPECT_THAT(follower.taken(), ElementsAre("cargaInicial", "cargaInicial" + at(second)));
    addPoint(second);
    CHostDocument* const third = m_manager.newDocument();
    addPoint(third);
    EXPECT_THAT(follower.taken(), ElementsAre("entityAppended POINT" + at(second), "cargaInicial" + at(third),
                                              "entityAppended POINT" + at(third)));
    m_manager.closeDocument(second);
    addPoint(third);
    EXPECT_THAT(follower.taken(), ElementsAre("entityAppended POINT" + at(third)));
}

TEST_F(Attachment, AsksFirstWhetherADocumentIsToBeWatched) {
    std::vector<CHostDocument*> asked;
    CICommandStack::instance()->setProjectTest([&](CHostDocument* doc) {
        asked.push_back(doc);
        return doc == m_document;
    });
    Follower follower(m_document);
    follower.inicializar();
    CHostDocument* const other = m_manager.newDocument();
    EXPECT_THAT(asked, ElementsAre(m_document, other));
    addPoint(other);
    addPoint(m_document);
    EXPECT_THAT(follower.taken(), ElementsAre("cargaInicial", "entityAppended POINT"));
    CHostDocument* const empty = m_manager.newDocumentWithoutDatabase();
    follower.DatabaseAttached(empty);
    EXPECT_EQ(asked.back(), empty) << "asked before its database is looked at";
    const unsigned long before = CICommandStack::instance()->verifications();
    follower.DatabaseAttached(nullptr);
    EXPECT_EQ(CICommandStack::instance()->verifications(), before + 1) << "for null too";
    EXPECT_THAT(follower.taken(), IsEmpty());
}

TEST_F(Attachment, ShowsTheDrawingBeforeAnyEventOfIt) {
    Follower follower(m_document);
    follower.once("cargaInicial", [&] {
        addPoint(m_document);
        m_db.startTransaction();
        m_db.endTransaction();
    });
    follower.DatabaseAttached(m_document);
    EXPECT_THAT(follower.taken(), ElementsAre("cargaInicial"));
    addPoint(m_document);
    EXPECT_THAT(follower.taken(), ElementsAre("entityAppended POINT"));
}

TEST_F(Attachment, CountsOnceForADocumentThatIsAttachedTwice) {
    Follower follower(m_document);
    follower.DatabaseAttached(m_document);
    follower.DatabaseAttached(m_document);
    EXPECT_THAT(follower.taken(), ElementsAre("cargaInicial", "cargaInicial"));
    addPoint(m_document);
    m_db.startTransaction();
    m_db.endTransaction();
    EXPECT_THAT(follower.taken(), ElementsAre("entityAppended POINT", "begin", "end"));
    follower.DatabaseDetached(m_document);
    addPoint(m_document);
    EXPECT_THAT(follower.taken(), IsEmpty());
}

TEST_F(Attachment, LetsGoWithoutAQuestionAndWithoutAnEvent) {
    Follower follower(m_document);
    follower.DatabaseAttached(m_document);
    follower.taken();
    const unsigned long before = CICommandStack::instance()->verifications();
    CICommandStack::instance()->setProjectTest([](CHostDocument*) { return false; });
    follower.DatabaseDetached(m_document);
    follower.DatabaseDetached(m_document);
    follower.DatabaseDetached(nullptr);
    follower.DatabaseDetached(m_manager.newDocumentWithoutDatabase());
    EXPECT_EQ(CICommandStack::instance()->verifications(), before);
    addPoint(m_document);
    m_db.startTransaction();
    m_db.endTransaction();
    EXPECT_THAT(follower.taken(), IsEmpty()) << "neither the database nor its transactions";
}

TEST_F(Attachment, ReachesADocumentThatIsOpenedWhileItJoins) {
    Follower follower(m_document);
    CHostDocument* opened = nullptr;
    follower.once("cargaInicial", [&] { opened = m_manager.newDocument(); });
    follower.inicializar();
    ASSERT_NE(opened, nullptr);
    EXPECT_THAT(follower.taken(),
                ElementsAre("cargaInicial", "cargaInicial" + at(opened), "cargaInicial" + at(opened)))
        << "by the manager and then by its index";
    addPoint(opened);
    EXPECT_THAT(follower.taken(), ElementsAre("entityAppended POINT" + at(opened)));
}

TEST_F(Attachment, JoinsTheCommandsBeforeItAttaches) {
    Follower follower(m_document);
    follower.once("cargaInicial", [&] { lm::host::runAsCommand(m_document, OdString("_X"), {}); });
    follower.inicializar();
    EXPECT_THAT(follower.taken(), ElementsAre("cargaInicial", "start _X", "ended _X"));
}

/// A module may have something to do of its own for each document.
class Overriding : public CCReactorBase {
public:
    explicit Overriding(CHostDocumentManager& manager) : m_manager(manager) {}
    ~Overriding() override { finalizar(); }
    void DatabaseAttached(CHostDocument* doc) override {
        note("attached", doc);
        CCReactorBase::DatabaseAttached(doc);
    }
    void DatabaseDetached(CHostDocument* doc) override {
        note("detached", doc);
        if (const auto act = std::exchange(onDetached, nullptr)) act();
        CCReactorBase::DatabaseDetached(doc);
    }
    Texts taken() { return std::exchange(m_events, {}); }
    std::function<void()> onDetached;

private:
    /// With the numbers of reactors that the host has at this moment.
    void note(const char* what, const CHostDocument* doc) {
        m_events.push_back(what + at(doc) + " " + std::to_string(m_manager.reactorCount()) + " " +
                           std::to_string(odedRegCmds()->reactorCount()));
    }
    CHostDocumentManager& m_manager;
    Texts m_events;
};

TEST_F(Attachment, GoesThroughTheOverriddenOperations) {
    ASSERT_EQ(m_manager.reactorCount(), 0u);
    ASSERT_EQ(odedRegCmds()->reactorCount(), 0u);
    CHostDocument* const second = m_manager.newDocument();
    Overriding reactor(m_manager);
    reactor.inicializar();
    EXPECT_THAT(reactor.taken(),
                ElementsAre("attached" + at(m_document) + " 1 1", "attached" + at(second) + " 1 1"))
        << "it has joined both before";
    CHostDocument* opened = nullptr;
    reactor.onDetached = [&] { opened = m_manager.newDocument(); };
    reactor.finalizar();
    ASSERT_NE(opened, nullptr);
    EXPECT_THAT(reactor.taken(),
                ElementsAre("detached" + at(m_document) + " 0 0", "detached" + at(second) + " 0 0",
                            "detached" + at(opened) + " 0 0"))
        << "it has left both before, and what is opened meanwhile is let go as well";
}

TEST_F(Attachment, OutlivesADocumentThatIsClosedWhileItIsShown) {
    Follower follower;
    follower.once("cargaInicial" + at(m_document), [&] { EXPECT_TRUE(m_manager.closeDocument(m_document)); });
    CHostDocument* const second = m_manager.newDocument();
    follower.inicializar();
    EXPECT_EQ(m_manager.documentCount(), 1) << "and what stood behind took its index";
    follower.taken();
    follower.also = [&](const std::string& event) {
        if (event.starts_with("cargaInicial")) m_manager.closeDocument(m_manager.activeDocument());
    };
    EXPECT_EQ(m_manager.newDocument(), nullptr);
    follower.also = nullptr;
    EXPECT_EQ(m_manager.documentCount(), 1);
    follower.taken();
    follower.DatabaseAttached(second);
    addPoint(second);
    EXPECT_THAT(follower.taken(),
                ElementsAre("cargaInicial" + at(second), "entityAppended POINT" + at(second)));
}

TEST_F(Attachment, OpensAndClosesOtherDocumentsOutOfEvents) {
    Follower follower(m_document);
    follower.inicializar();
    follower.taken();
    CHostDocument* opened = nullptr;
    follower.once("entityAppended POINT", [&] { opened = m_manager.newDocument(); });
    addPoint(m_document);
    ASSERT_NE(opened, nullptr);
    EXPECT_THAT(follower.taken(), ElementsAre("entityAppended POINT", "cargaInicial" + at(opened)));
    follower.once("entityAppended POINT", [&] { EXPECT_TRUE(m_manager.closeDocument(opened)); });
    addPoint(m_document);
    follower.once("ended _X", [&] { EXPECT_FALSE(m_manager.closeDocument(m_document)) << "it is busy"; });
    lm::host::runAsCommand(m_document, OdString("_X"), {});
    EXPECT_EQ(follower.getActiveCommandsCount(), 0);
    follower.taken();
    follower.once("ended _COPY", [&] { m_document->closeAfterCommand(); });
    lm::host::runAsCommand(m_document, OdString("_COPY"), {});
    EXPECT_EQ(m_manager.documentCount(), 0);
    EXPECT_THAT(follower.taken(), ElementsAre("start _COPY", "begin", "end", "ended _COPY", "begin", "end"));
}

/// A drawing that the tests below change, with a reference to follow.
struct Changed {
    explicit Changed(CHostDocument* document) : doc(document), db(*document->database()) {}
    Reference open() const { return Reference(id.openObject(OdDb::kForWrite)); }
    void turn() const { open()->setRotation(1); }
    void run(const std::function<void()>& inside) const {
        db.startTransaction();
        inside();
        db.endTransaction();
    }
    CHostDocument* doc;
    CHostDatabase& db;
    OdDbObjectId id;
};

/// Whoever changed an object goes on with it, and with its database, when the events were told. So a document
/// that an event is about can't be closed in it, whichever phase it is and however many follow.
TEST_F(Attachment, KeepsADrawingOpenWhileItsEventsAreTold) {
    const struct {
        const char* event;
        std::function<void(const Changed&)> deed;
    } kCases[] = {
        {"blockAppended MOTOR", [](const Changed& in) { refer(in.db, in.open()->blockTableRecord()); }},
        {"blockForModify MOTOR", [](const Changed& in) { in.turn(); }},
        {"blockModified MOTOR", [](const Changed& in) { in.turn(); }},
        {"blockErased MOTOR", [](const Changed& in) { erase(in.id); }},
        {"blockAppended MOTOR",
         [](const Changed& in) {
             in.db.startUndoRecord();
             erase(in.id);
             in.db.undo();
         }},
        {"begin", [](const Changed& in) { in.run([] {}); }},
        {"end", [](const Changed& in) { in.run([] {}); }},
        {"blockModified MOTOR", // told at the end of the transaction: somebody holds the object
         [](const Changed& in) {
             Reference held;
             in.run([&] { (held = in.open())->setRotation(1); });
         }},
    };
    for (const int followers : {1, 2})
        for (const auto& each : kCases) {
            Changed in(m_manager.newDocument());
            in.id = refer(in.db, blockIn(in.db, "MOTOR"));
            Follower first(in.doc), second(in.doc);
            first.inicializar();
            if (followers == 2) second.inicializar();
            int refusals = 0;
            first.also = second.also = [&](const std::string& event) {
                if (event == each.event) refusals += m_manager.closeDocument(in.doc) ? 0 : 1;
            };
            each.deed(in);
            EXPECT_EQ(refusals, followers) << each.event;
            first.also = second.also = nullptr;
            ASSERT_EQ(m_manager.document(&in.db), in.doc) << each.event;
            EXPECT_TRUE(m_manager.closeDocument(in.doc)) << "afterwards nothing is in the way";
        }
}

TEST_F(Attachment, KeepsADrawingOpenThatHasATransaction) {
    Follower follower(m_document);
    follower.inicializar();
    m_db.startTransaction();
    m_db.startTransaction();
    addPoint(m_document);
    EXPECT_FALSE(m_manager.closeDocument(m_document));
    m_db.endTransaction();
    EXPECT_FALSE(m_manager.closeDocument(m_document)) << "the outer one";
    m_db.abortTransaction();
    EXPECT_TRUE(m_manager.closeDocument(m_document));
}

TEST_F(Attachment, LetsADrawingCloseAgainWhenAnEventRaised) {
    Follower follower(m_document);
    follower.inicializar();
    follower.once("entityAppended POINT", [] { throw OdError(OdString("broken")); });
    const OdSmartPtr<OdDbPoint> made = make(new OdDbPoint);
    append(m_db.getModelSpaceId(), made);
    EXPECT_THROW(made->downgradeOpen(), OdError);
    EXPECT_TRUE(m_manager.closeDocument(m_document));
}

TEST_F(Attachment, JoinsTheCommandsAloneInAHostWithoutServices) {
    lm::host::setServicesPresent(false);
    const std::size_t documents = m_manager.reactorCount(), commands = odedRegCmds()->reactorCount();
    Follower follower(m_document);
    follower.inicializar();
    EXPECT_EQ(m_manager.reactorCount(), documents);
    EXPECT_EQ(odedRegCmds()->reactorCount(), commands + 1);
    follower.DatabaseAttached(m_document);
    addPoint(m_document);
    EXPECT_THAT(follower.taken(), ElementsAre("cargaInicial", "entityAppended POINT @null"));
    follower.finalizar();
    EXPECT_EQ(odedRegCmds()->reactorCount(), commands);
    follower.DatabaseDetached(m_document);
}

// --- The object itself ---

TEST_F(Attachment, IsNotCounted) {
    CCReactorBase reactor;
    { const OdSmartPtr<OdDbDatabaseReactor> held(static_cast<OdDbDatabaseReactor*>(&reactor)); }
    { const OdSmartPtr<OdDbTransactionReactor> held(static_cast<OdDbTransactionReactor*>(&reactor)); }
    { const OdSmartPtr<OdEdCommandStackReactor> held(static_cast<OdEdCommandStackReactor*>(&reactor)); }
    reactor.release();
    reactor.release();
    reactor.deleteModule();
    EXPECT_EQ(reactor.getActiveCommandsCount(), 0);
    EXPECT_TRUE(reactor.moduleName().isEmpty());
    EXPECT_EQ(reactor.sysData(), nullptr);
    OdEditorReactor& editor = reactor;
    EXPECT_TRUE(editor.moduleName().isEmpty());
    EXPECT_EQ(editor.sysData(), nullptr);
}

TEST_F(Attachment, IsDeletedByItsOwnerThroughAnyBase) {
    std::unique_ptr<CCReactorBase>(new Follower)->inicializar();
    std::unique_ptr<CHostDocumentManagerReactor> first(new Follower);
    std::unique_ptr<OdDbDatabaseReactor> second(new Follower);
    EXPECT_EQ(odedRegCmds()->reactorCount(), 0u);
}

TEST_F(Attachment, HasItsBasesInOrder) {
    CCReactorBase reactor;
    const std::array<const void*, 4> bases{
        static_cast<CHostDocumentManagerReactor*>(&reactor), static_cast<OdDbDatabaseReactor*>(&reactor),
        static_cast<OdDbTransactionReactor*>(&reactor), static_cast<CHostEditorReactor*>(&reactor)};
    EXPECT_EQ(bases[0], &reactor);
    EXPECT_TRUE(std::is_sorted(bases.begin(), bases.end()));
}

/// Place of a virtual operation in the first table of its class.
template<class Member>
std::size_t slotOf(Member member) {
    std::ptrdiff_t words[2];
    static_assert(sizeof member == sizeof words);
    std::memcpy(words, &member, sizeof words);
    EXPECT_EQ(words[0] & 1, 1) << "not virtual";
    EXPECT_EQ(words[1], 0) << "not in the first table";
    return static_cast<std::size_t>(words[0] - 1) / sizeof(void*);
}

TEST_F(Attachment, KeepsTheOrderOfItsOperations) {
    using R = CCReactorBase;
    using Command = void (R::*)(CHostDocument*, RZString);
#define LM_TEST_PHASES(family)                                                                               \
    slotOf(&R::family##Appended), slotOf(&R::family##ForModify), slotOf(&R::family##Modified),               \
        slotOf(&R::family##Erased)
    const std::size_t places[] = {slotOf(static_cast<Command>(&R::commandCancelled)),
                                  slotOf(static_cast<Command>(&R::commandFailed)),
                                  slotOf(static_cast<Command>(&R::commandEnded)),
                                  slotOf(static_cast<Command>(&R::commandWillStart)),
                                  slotOf(&R::cargaInicial),
                                  slotOf(&R::blockDefined),
                                  slotOf(&R::entityAppended),
                                  LM_TEST_PHASES(block),
                                  LM_TEST_PHASES(att),
                                  LM_TEST_PHASES(pline),
                                  LM_TEST_PHASES(layer),
                                  LM_TEST_PHASES(cto),
                                  LM_TEST_PHASES(ins),
                                  LM_TEST_PHASES(conta),
                                  LM_TEST_PHASES(grade),
                                  slotOf(&R::transactionEndedBegin),
                                  slotOf(&R::transactionEndedEnd)};
#undef LM_TEST_PHASES
    EXPECT_EQ(std::size(places), 41u);
    for (std::size_t i = 1; i < std::size(places); ++i) EXPECT_EQ(places[i], places[i - 1] + 1) << i;
}

/// The class alone takes everything and does nothing.
TEST_F(Attachment, IsSilentByItself) {
    const lm::test::LogCapture log;
    CCReactorBase reactor;
    reactor.inicializar();
    for (const char* name : {"NAF-01", "INS-1", "CONTA", "BLK_CTR_GRADE", "PLAIN"}) {
        const OdDbObjectId id = place(block(name), {{"TAG", "1"}})->objectId();
        OdSmartPtr<OdDbBlockReference>(id.openObject(OdDb::kForWrite))->setRotation(1);
        erase(id);
    }
    layer("P1");
    append(m_db.getModelSpaceId(), make(new OdDbPolyline));
    EXPECT_EQ(lm::host::runAsCommand(m_document, OdString("_X"), {}), RTNORM);
    EXPECT_THROW(lm::host::runAsCommand(m_document, OdString("_X"),
                                        [](OdEdCommandContext&) { throw std::runtime_error("x"); }),
                 std::runtime_error);
    reactor.finalizar();
    EXPECT_THAT(log.lines(), IsEmpty());
}

} // namespace
