// SPDX-License-Identifier: MIT
// Single operations on a drawing of the size L and on one symbol. The drawing's path comes in
// LM_BENCH_DRAWING.
#include "cad/icad.h"
#include "arguments.h"

#include "drawing/partwalk.h"
#include "drawing/reader.h"
#include "host/documentmanager.h"

#include <benchmark/benchmark.h>

#include <cstdlib>
#include <random>

namespace {

CHostDocument& document() {
    static CHostDocument* const open = lm::host::documentManager().openDocument(
        OdString(lm::WideView(lm::system::fromUtf8(std::getenv("LM_BENCH_DRAWING")))));
    return *open;
}

OdSmartPtr<OdDbBlockTableRecord> modelSpace() {
    return OdSmartPtr<OdDbBlockTableRecord>(document().database()->getModelSpaceId().openObject());
}

/// The references of model space, each read once, as after the first walk of a session.
const std::vector<OdDbObjectId>& references() {
    static const std::vector<OdDbObjectId> all = [] {
        std::vector<OdDbObjectId> ids;
        for (auto walk = modelSpace()->newIterator(); !walk->done(); walk->step()) {
            const OdSmartPtr<OdDbEntity> entity = walk->entity();
            const auto* reference = OdDbBlockReference::cast(entity.get());
            if (reference == nullptr) continue;
            ids.push_back(walk->objectId());
            for (auto inner = reference->attributeIterator(); !inner->done(); inner->step()) inner->entity();
        }
        return ids;
    }();
    return all;
}

void handleLookUp(benchmark::State& state) {
    OdDbDatabase& db = *document().database();
    std::vector<OdDbHandle> handles;
    std::mt19937_64 random(1);
    const auto& ids = references();
    // A working set that stays in the cache, out of a million objects.
    for (int i = 0; i < 512; ++i) handles.push_back(ids[(random() % 64 + i * 100) % ids.size()].getHandle());
    std::size_t at = 0;
    for (auto _ : state) {
        const OdDbObjectId id = db.getOdDbObjectId(handles[at++ & 511], false, 0);
        if (id.isNull()) state.SkipWithError("a handle wasn't found");
        benchmark::DoNotOptimize(id);
    }
}
BENCHMARK(handleLookUp);

void openAndClose(benchmark::State& state) {
    const auto& ids = references();
    std::size_t at = 0;
    for (auto _ : state) {
        const OdSmartPtr<OdDbObject> object = ids[at++ & 511].openObject();
        benchmark::DoNotOptimize(object.get());
    }
}
BENCHMARK(openAndClose);

/// Model space with one attribute by tag and no copy, below the facade; time for each reference.
void walkByTag(benchmark::State& state) {
    references();
    const OdString wanted = lm::drawing::odText("DESC1");
    std::size_t found = 0, seen = 0;
    const OdDbObjectId space = document().database()->getModelSpaceId();
    for (auto _ : state) {
        for (lm::drawing::PartWalk entity(space); !entity.done(); entity.next()) {
            if (!entity.isReference()) continue;
            ++seen;
            for (lm::drawing::PartWalk part = entity.parts(); !part.done(); part.next()) {
                const OdDbAttribute* const attribute = part.attribute();
                if (attribute == nullptr || attribute->tag() != wanted) continue;
                found += attribute->textString().getLength() != 0;
                break;
            }
        }
    }
    if (found == 0 || found != seen) state.SkipWithError("attributes weren't found");
    state.SetItemsProcessed(static_cast<std::int64_t>(seen));
}
BENCHMARK(walkByTag)->Unit(benchmark::kMillisecond);

OdSmartPtr<OdDbBlockReference> reference(std::size_t index) {
    return OdSmartPtr<OdDbBlockReference>(references()[index & 511].openObject());
}

/// The fifth of eight attributes.
void searchAttribute(benchmark::State& state) {
    CICad cad;
    const RZString tag("PARTNO");
    std::size_t at = 0;
    for (auto _ : state) {
        CEAtributo* record = nullptr;
        if (cad.SearchAttribute(tag, reference(at++), record, false) != 0) state.SkipWithError("not found");
        delete record;
    }
}
BENCHMARK(searchAttribute);

void searchAttributes(benchmark::State& state) {
    CICad cad;
    std::size_t at = 0;
    for (auto _ : state) {
        CEListaAtributos* list = nullptr;
        cad.SearchAttributes(reference(at++), list, false, false, RZString());
        if (list == nullptr || list->GetSize() != 8) state.SkipWithError("not eight attributes");
        list->releaseAllAttributes();
        delete list;
    }
}
BENCHMARK(searchAttributes);

/// One block out of forty: the time must follow its references and not model space.
void searchBlocksByPrefix(benchmark::State& state) {
    references();
    setDatabase(document().database());
    CICad cad;
    std::size_t count = 0;
    for (auto _ : state) {
        const std::unique_ptr<std::list<CEBloco*>> blocks(cad.BuscarBlocos("SYM-07"));
        if (blocks == nullptr) {
            state.SkipWithError("no blocks");
            break;
        }
        count += blocks->size();
        for (CEBloco* block : *blocks) {
            for (const char* tag :
                 {"TAG", "DESC1", "DESC2", "MANUFACTURER", "PARTNO", "LOCATION", "PIN_A", "PIN_B"})
                delete block->GetAtributo(tag);
            delete block;
        }
    }
    state.SetItemsProcessed(static_cast<std::int64_t>(count));
    setDatabase(nullptr);
}
BENCHMARK(searchBlocksByPrefix)->Unit(benchmark::kMillisecond);

/// A name that no block has: what is left is the block table.
void searchBlocksWithoutMatch(benchmark::State& state) {
    setDatabase(document().database());
    CICad cad;
    for (auto _ : state)
        if (cad.BuscarBlocos("NOTHING") != nullptr) state.SkipWithError("found something");
    setDatabase(nullptr);
}
BENCHMARK(searchBlocksWithoutMatch);

} // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    if (std::getenv("LM_BENCH_DRAWING") == nullptr) {
        std::fprintf(stderr, "LM_BENCH_DRAWING names no drawing\n");
        return 2;
    }
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    lm::host::documentManager().closeAll();
    return 0;
}
