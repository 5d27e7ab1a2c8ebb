// SPDX-License-Identifier: MIT
// What the tests of the reactor share: a module's reactor that writes down its events, and drawings to
// follow.
#pragma once

#include "tx/LMCommonMFC/cad/symbols.h"

#include "reactor/ccreactorbase.h"

#include <functional>

namespace lm::tests {

inline std::string nameOf(const OdDbBlockReference& reference) {
    return plain(CICad().GetNomeBloco(OdSmartPtr<OdDbBlockReference>(&reference)));
}
inline std::string nameOf(const OdDbAttribute& attribute) {
    return plain(CHostString(attribute.tag()));
}
inline std::string nameOf(const OdDbSymbolTableRecord& record) {
    return plain(CHostString(record.getName()));
}
inline std::string nameOf(const OdDbObject& object) {
    return plain(CHostString(object.dxfName()));
}

/// Writes down each event as "event name", with the name of the block, layer or tag, or else the type. The
/// number of the document stands behind, as in "@2", unless it is that of the home document; "@null" for
/// none.
class Follower : public CCReactorBase {
public:
    explicit Follower(const CHostDocument* home = nullptr) : m_home(home) {}
    ~Follower() override { finalizar(); }

    /// The events since the last call.
    Texts taken() { return std::exchange(m_events, {}); }
    /// Done at each event after it was written down.
    std::function<void(const std::string& event)> also;
    /// Does `act` at the next event that reads as `event`.
    void once(const std::string& event, std::function<void()> act) {
        also = [this, event, act](const std::string& told) {
            if (told != event) return;
            also = nullptr;
            act();
        };
    }
    /// Whether the defaults of block... events are left out.
    bool isFinal = false;

    using CCReactorBase::getAtt;
    using CCReactorBase::getAttRelacao;

    void commandCancelled(CHostDocument* doc, RZString name) override { note("cancelled", doc, plain(name)); }
    void commandFailed(CHostDocument* doc, RZString name) override { note("failed", doc, plain(name)); }
    void commandEnded(CHostDocument* doc, RZString name) override { note("ended", doc, plain(name)); }
    void commandWillStart(CHostDocument* doc, RZString name) override { note("start", doc, plain(name)); }
    // The host's forms of the same names.
    using CCReactorBase::commandCancelled;
    using CCReactorBase::commandEnded;
    using CCReactorBase::commandFailed;
    using CCReactorBase::commandWillStart;
    void cargaInicial(CHostDocument* doc) override { note("cargaInicial", doc, ""); }
    void transactionEndedBegin() override { note("begin", m_home, ""); }
    void transactionEndedEnd() override { note("end", m_home, ""); }

#define LM_TEST_EVENT(event, Class)                                                                          \
    void event(CHostDocument* doc, OdSmartPtr<Class> object) override {                                      \
        note(#event, doc, nameOf(*object));                                                                  \
        if (!isFinal) CCReactorBase::event(doc, object);                                                     \
    }
#define LM_TEST_PHASES(family, Class)                                                                        \
    LM_TEST_EVENT(family##Appended, Class)                                                                   \
    LM_TEST_EVENT(family##ForModify, Class)                                                                  \
    LM_TEST_EVENT(family##Modified, Class)                                                                   \
    LM_TEST_EVENT(family##Erased, Class)
    LM_TEST_EVENT(blockDefined, OdDbBlockTableRecord)
    LM_TEST_EVENT(entityAppended, OdDbObject)
    LM_TEST_PHASES(block, OdDbBlockReference)
    LM_TEST_PHASES(att, OdDbAttribute)
    LM_TEST_PHASES(pline, OdDbPolyline)
    LM_TEST_PHASES(layer, OdDbLayerTableRecord)
    LM_TEST_PHASES(cto, OdDbBlockReference)
    LM_TEST_PHASES(ins, OdDbBlockReference)
    LM_TEST_PHASES(conta, OdDbBlockReference)
    LM_TEST_PHASES(grade, OdDbBlockReference)
#undef LM_TEST_PHASES
#undef LM_TEST_EVENT

private:
    void note(const std::string& event, const CHostDocument* doc, const std::string& name) {
        std::string line = event + (name.empty() ? "" : " " + name);
        if (doc == nullptr)
            line += " @null";
        else if (doc != m_home)
            line += " @" + std::to_string(doc->number());
        m_events.push_back(line);
        // A copy: what it does may put something else in its place.
        if (const auto act = also) act(line);
    }
    const CHostDocument* m_home;
    Texts m_events;
};

/// An active document that a reactor follows. The database's own events of what a test prepares are dropped
/// by clear().
class Followed : public Symbols {
protected:
    Followed() { m_follower.inicializar(); }
    ~Followed() override { setDatabase(nullptr); }
    void SetUp() override { clear(); }

    Texts events() { return m_follower.taken(); }
    void clear() { m_follower.taken(); }
    static RZString handleOf(OdDbObjectId id) { return RZString(id.getHandle()); }
    OdDbObjectId point(OdDbDatabase& db) { return append(db.getModelSpaceId(), make(new OdDbPoint)); }
    OdDbObjectId point() { return point(m_db); }
    /// A closed reference in model space to a block that is made when it isn't there.
    OdDbObjectId shown(const char* name) {
        OdDbObjectId id = blockNamed(name);
        if (id.isNull()) id = block(name);
        return place(id)->objectId();
    }
    /// Whether the reactor takes the object for erased by the user.
    bool isUserErased(OdDbObjectId id) { return m_follower.wasUserErased(handleOf(id)); }
    static bool isAlive(OdDbObjectId id) { return id.isValid() && !id.isErased(); }
    static OdDbObjectId eraseNow(OdDbObjectId id) {
        erase(id);
        return id;
    }
    void setNoProject(bool isNone, CHostDocument* doc = nullptr) {
        m_cad.SetVarBool("*IS_NOT_RZ_PROJECT*", isNone, doc == nullptr ? m_document : doc);
    }
    static int run(CHostDocument* doc, const char* name, OdEdCommand::Body body = {},
                   OdEdCommand::Kind kind = OdEdCommand::kOrdinary) {
        return lm::host::runAsCommand(doc, OdString(name), std::move(body), kind);
    }
    int run(const char* name, OdEdCommand::Body body = {}) { return run(m_document, name, std::move(body)); }

    /// A command as the host's stack would name it to the reactor.
    struct Named {
        explicit Named(const char* name, OdDbDatabase* database)
            : command(make(new OdEdCommand(od(name)))), context(database) {}
        OdSmartPtr<OdEdCommand> command;
        OdEdCommandContext context;
    };
    void start(const char* name) {
        Named named(name, &m_db);
        m_follower.commandWillStart(named.command, &named.context);
    }
    void end(const char* name) {
        Named named(name, &m_db);
        m_follower.commandEnded(named.command, &named.context);
    }
    std::string active() { return plain(m_follower.getComandoAtivo()); }
    int depth() { return m_follower.getActiveCommandsCount(); }

    Follower m_follower{m_document};
};

} // namespace lm::tests
