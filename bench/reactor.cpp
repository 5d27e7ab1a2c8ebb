// SPDX-License-Identifier: MIT
// The way of one event from the database's report to the derived class of a module. Each benchmark looks at
// what the derived class was told.
#include "reactor/ccreactorbase.h"

#include "drawing/drawing.h"

#include <benchmark/benchmark.h>

namespace {

using lm::drawing::kAttach;
using lm::drawing::odText;

/// Counts what a module would work on.
class Counter : public CCReactorBase {
public:
    explicit Counter(const CHostDocument* document) : m_document(document) {}
    void entityAppended(CHostDocument* doc, OdSmartPtr<OdDbObject>) override { count(doc); }
    void ctoAppended(CHostDocument* doc, OdSmartPtr<OdDbBlockReference>) override { count(doc); }
    void ctoForModify(CHostDocument* doc, OdSmartPtr<OdDbBlockReference>) override { count(doc); }
    void ctoModified(CHostDocument* doc, OdSmartPtr<OdDbBlockReference>) override { count(doc); }
    void ctoErased(CHostDocument* doc, OdSmartPtr<OdDbBlockReference>) override { count(doc); }
    void blockModified(CHostDocument* doc, OdSmartPtr<OdDbBlockReference> ref) override {
        ++m_blocks;
        CCReactorBase::blockModified(doc, ref);
    }
    std::int64_t events() const { return m_events; }
    std::int64_t blocks() const { return m_blocks; }

private:
    void count(const CHostDocument* doc) { m_events += doc == m_document ? 1 : -1000; }

    const CHostDocument* m_document;
    std::int64_t m_events = 0, m_blocks = 0;
};

/// A drawing with a point and two references, one to a contact and one to a block of no family.
struct Watched {
    Watched() {
        point = append(OdSmartPtr<OdDbEntity>(new OdDbPoint, kAttach));
        contact = append(reference("NAF-01"));
        plain = append(reference("MOTOR"));
    }
    ~Watched() { lm::host::documentManager().closeAll(); }

    OdSmartPtr<OdDbEntity> reference(const char* name) {
        const OdSmartPtr<OdDbBlockTableRecord> block(new OdDbBlockTableRecord, kAttach);
        block->setName(odText(name));
        const OdSmartPtr<OdDbBlockReference> made(new OdDbBlockReference, kAttach);
        made->setBlockTableRecord(
            OdSmartPtr<OdDbSymbolTable>(db.getBlockTableId().openObject(OdDb::kForWrite))->add(block));
        return made;
    }
    OdSmartPtr<OdDbObject> append(const OdSmartPtr<OdDbEntity>& entity) {
        OdSmartPtr<OdDbBlockTableRecord>(db.getModelSpaceId().openObject(OdDb::kForWrite))
            ->appendOdDbEntity(entity);
        return entity;
    }

    CHostDocument* document = lm::host::documentManager().newDocument();
    OdDbDatabase& db = *document->database();
    OdSmartPtr<OdDbObject> point, contact, plain;
    Counter counter{document};
};

/// An object of no class that anybody waits for: only that it came is told.
void eventWithoutMatch(benchmark::State& state) {
    Watched watched;
    for (auto _ : state) watched.counter.objectAppended(&watched.db, watched.point.get());
    if (watched.counter.events() != static_cast<std::int64_t>(state.iterations()))
        state.SkipWithError("events were lost");
}
BENCHMARK(eventWithoutMatch);

void changeWithoutMatch(benchmark::State& state) {
    Watched watched;
    for (auto _ : state) watched.counter.objectModified(&watched.db, watched.point.get());
    if (watched.counter.events() != 0) state.SkipWithError("events of a point");
}
BENCHMARK(changeWithoutMatch);

/// A reference to a contact: its class, the name of its block, its family.
void eventOfContact(benchmark::State& state) {
    Watched watched;
    for (auto _ : state) watched.counter.objectModified(&watched.db, watched.contact.get());
    if (watched.counter.events() != static_cast<std::int64_t>(state.iterations()))
        state.SkipWithError("events were lost");
}
BENCHMARK(eventOfContact);

/// A reference whose name was read for nothing.
void eventOfOtherBlock(benchmark::State& state) {
    Watched watched;
    for (auto _ : state) watched.counter.objectModified(&watched.db, watched.plain.get());
    if (watched.counter.blocks() != static_cast<std::int64_t>(state.iterations()) ||
        watched.counter.events() != 0)
        state.SkipWithError("another family");
}
BENCHMARK(eventOfOtherBlock);

/// A thousand erasures in a command: each notes a handle, and the end forgets them.
void erasedContact(benchmark::State& state) {
    Watched watched;
    const OdSmartPtr<OdEdCommand> command(new OdEdCommand(odText("_ERASE")), kAttach);
    constexpr int kErasures = 1000;
    for (auto _ : state) {
        for (int i = 0; i < kErasures; ++i)
            watched.counter.objectErased(&watched.db, watched.contact.get(), true);
        if (!watched.counter.wasUserErased(RZString(watched.contact->getDbHandle())))
            state.SkipWithError("no handle");
        static_cast<OdEdCommandStackReactor&>(watched.counter).commandEnded(command, nullptr);
    }
    if (watched.counter.events() != kErasures * static_cast<std::int64_t>(state.iterations()))
        state.SkipWithError("events were lost");
    if (watched.counter.wasUserErased(RZString(watched.contact->getDbHandle())))
        state.SkipWithError("a handle is left");
    state.SetItemsProcessed(kErasures * static_cast<std::int64_t>(state.iterations()));
}
BENCHMARK(erasedContact);

} // namespace

BENCHMARK_MAIN();
