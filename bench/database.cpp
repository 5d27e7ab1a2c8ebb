// SPDX-License-Identifier: MIT
// Changes of a drawing: extended data, appending, undo steps, cloning, insertion, purging, and the reading of
// a LISP symbol. The path of a drawing of the size L comes in LM_BENCH_DRAWING.
#include "drawing/blockreference.h"
#include "drawing/curves.h"
#include "drawing/reader.h"
#include "host/documentmanager.h"

#include <benchmark/benchmark.h>

#include <cstdlib>

namespace {

using lm::drawing::kAttach;
using lm::drawing::odText;

template<class T>
OdSmartPtr<T> make() {
    return OdSmartPtr<T>(new T(), kAttach);
}

OdString numbered(const char* word, long number) {
    return odText(word + std::to_string(number));
}

/// A large drawing whose changes are kept for undo.
OdDbDatabase& large() {
    static CHostDocument* const document = [] {
        CHostDocument* const open = lm::host::documentManager().openDocument(
            OdString(lm::WideView(lm::system::fromUtf8(std::getenv("LM_BENCH_DRAWING")))));
        open->database()->setUndoRecording(true);
        return open;
    }();
    return *document->database();
}

OdSmartPtr<OdDbBlockTableRecord> modelSpace(OdDbDatabase& db) {
    return OdSmartPtr<OdDbBlockTableRecord>(db.getModelSpaceId().openObject(OdDb::kForWrite));
}

OdDbObjectId addBlock(OdDbDatabase& db, const OdString& name) {
    const auto block = make<OdDbBlockTableRecord>();
    block->setName(name);
    return OdSmartPtr<OdDbSymbolTable>(db.getBlockTableId().openObject(OdDb::kForWrite))->add(block);
}

/// A symbol: some lines and five definitions.
OdDbObjectId addSymbol(OdDbDatabase& db, const OdString& name) {
    const OdDbObjectId id = addBlock(db, name);
    const OdSmartPtr<OdDbBlockTableRecord> block(id.openObject(OdDb::kForWrite));
    for (int i = 0; i < 20; ++i) block->appendOdDbEntity(make<OdDbLine>());
    for (int i = 0; i < 5; ++i) {
        const auto definition = make<OdDbAttributeDefinition>();
        definition->setTag(numbered("TAG", i));
        block->appendOdDbEntity(definition);
    }
    return id;
}

OdDbObjectId addReference(OdDbDatabase& db, OdDbObjectId block, int attributes) {
    const auto reference = make<OdDbBlockReference>();
    reference->setBlockTableRecord(block);
    const OdDbObjectId id = modelSpace(db)->appendOdDbEntity(reference);
    for (int i = 0; i < attributes; ++i) {
        static const OdString tag = odText("TAG"), value = odText("K1");
        const auto attribute = make<OdDbAttribute>();
        attribute->setTag(tag);
        attribute->setTextString(value);
        reference->appendAttribute(attribute);
    }
    return id;
}

OdSmartPtr<OdResBuf> fiveRecords() {
    const auto head = OdResBuf::newRb(1001, odText("TVO_RZ"));
    head->append(OdResBuf::newRb(1000, odText("left part")))
        ->append(OdResBuf::newRb(1000, odText("2F1")))
        ->append(OdResBuf::newRb(1071, 5))
        ->append(OdResBuf::newRb(1000, odText("key")));
    return head;
}

void readExtendedData(benchmark::State& state) {
    OdDbDatabase db;
    const OdSmartPtr<OdDbObject> object = addReference(db, {}, 0).openObject(OdDb::kForWrite);
    object->setXData(fiveRecords());
    const OdString application = odText("TVO_RZ");
    for (auto _ : state) {
        const OdSmartPtr<OdResBuf> chain = object->xData(application);
        if (chain.isNull()) state.SkipWithError("no chain");
    }
}
BENCHMARK(readExtendedData);

void writeExtendedData(benchmark::State& state) {
    OdDbDatabase db;
    db.setUndoRecording(true);
    const OdSmartPtr<OdDbObject> object = addReference(db, {}, 0).openObject(OdDb::kForWrite);
    const OdSmartPtr<OdResBuf> chain = fiveRecords();
    for (auto _ : state) object->setXData(chain);
    if (object->xData(odText("TVO_RZ"))->next().isNull()) state.SkipWithError("no chain");
}
BENCHMARK(writeExtendedData);

void appendReference(benchmark::State& state) {
    OdDbDatabase db;
    db.setUndoRecording(true);
    const OdDbObjectId block = addBlock(db, odText("B"));
    for (auto _ : state) addReference(db, block, 8);
}
BENCHMARK(appendReference)->Iterations(50000);

/// One attribute edited in a large drawing, as a step of its own.
void editAttribute(benchmark::State& state) {
    OdDbDatabase& db = large();
    const auto walk = modelSpace(db)->newIterator();
    while (OdDbBlockReference::cast(walk->entity()) == nullptr) walk->step();
    const OdDbObjectId id = OdDbBlockReference::cast(walk->entity())->attributeIterator()->objectId();
    const OdString values[2] = {odText("one"), odText("another")};
    std::size_t count = 0;
    for (auto _ : state) {
        db.startUndoRecord();
        OdSmartPtr<OdDbText>(id.openObject(OdDb::kForWrite))->setTextString(values[++count & 1]);
    }
    while (db.undo()) continue;
}
BENCHMARK(editAttribute)->Iterations(100000);

void editAndUndo(benchmark::State& state) {
    OdDbDatabase& db = large();
    const auto walk = modelSpace(db)->newIterator();
    while (OdDbBlockReference::cast(walk->entity()) == nullptr) walk->step();
    const OdDbObjectId id = OdDbBlockReference::cast(walk->entity())->attributeIterator()->objectId();
    const OdString before = OdSmartPtr<OdDbText>(id.openObject())->textString();
    const OdString value = odText("another");
    for (auto _ : state) {
        db.startUndoRecord();
        OdSmartPtr<OdDbText>(id.openObject(OdDb::kForWrite))->setTextString(value);
        db.undo();
    }
    if (OdSmartPtr<OdDbText>(id.openObject())->textString() != before)
        state.SkipWithError("undo left a change");
}
BENCHMARK(editAndUndo);

/// 10,000 references with two attributes each.
void cloneReferences(benchmark::State& state) {
    constexpr unsigned kCount = 10000;
    for (auto _ : state) {
        state.PauseTiming();
        {
            OdDbDatabase db;
            db.setUndoRecording(true);
            const OdDbObjectId block = addBlock(db, odText("B"));
            OdArray<OdDbObjectId> ids;
            for (unsigned i = 0; i < kCount; ++i) ids.append(addReference(db, block, 2));
            const auto mapping = make<OdDbIdMapping>();
            state.ResumeTiming();
            db.deepCloneObjects(ids, db.getModelSpaceId(), *mapping.get());
            state.PauseTiming();
            if (mapping->pairs().size() != 3 * kCount) state.SkipWithError("not every object was cloned");
        }
        state.ResumeTiming();
    }
}
BENCHMARK(cloneReferences)->Unit(benchmark::kMillisecond);

void insertSymbol(benchmark::State& state) {
    OdDbDatabase source;
    {
        const OdDbObjectId inner = addSymbol(source, odText("INNER"));
        for (int i = 0; i < 20; ++i) modelSpace(source)->appendOdDbEntity(make<OdDbLine>());
        addReference(source, inner, 5);
    }
    OdDbDatabase& db = large();
    static long number = 0;
    for (auto _ : state)
        if (!db.insert(numbered("INSERTED", ++number), &source).isValid())
            state.SkipWithError("nothing inserted");
}
BENCHMARK(insertSymbol)->Unit(benchmark::kMicrosecond)->Iterations(2000);

/// `blocks` blocks, half of them used, with ten references each.
void purgeBlocks(benchmark::State& state) {
    const long blocks = state.range(0);
    OdDbDatabase db;
    OdArray<OdDbObjectId> all;
    for (long i = 0; i < blocks; ++i) {
        all.append(addBlock(db, numbered("B", i)));
        if (i % 2 == 0)
            for (int n = 0; n < 20; ++n) addReference(db, all[static_cast<int>(i)], 0);
    }
    for (auto _ : state) {
        OdArray<OdDbObjectId> ids = all;
        db.purge(ids);
        if (ids.size() != static_cast<unsigned>(blocks / 2)) state.SkipWithError("not the unused ones");
    }
    state.SetItemsProcessed(state.iterations() * blocks);
}
BENCHMARK(purgeBlocks)->Arg(1000)->Arg(8000)->Unit(benchmark::kMillisecond);

void readSymbol(benchmark::State& state) {
    large();
    CHostAPI& api = *ACTIVE_DOCUMENT()->getAPI();
    const lm::WideString name = lm::system::widen("*IS_NOT_RZ_PROJECT*");
    hst_resbufW value{};
    value.restype = RTSHORT;
    value.value.int16 = 5;
    api.putSym(name.c_str(), &value);
    for (auto _ : state) {
        hst_resbufW* list = nullptr;
        if (api.getSym(name.c_str(), &list) != RTNORM) state.SkipWithError("no symbol");
        api.relRb(list);
    }
}
BENCHMARK(readSymbol);

} // namespace

BENCHMARK_MAIN();
