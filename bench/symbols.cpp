// SPDX-License-Identifier: MIT
// Symbols: insertion, redefinition, and searches over many references with their attributes. Each benchmark
// looks at what came out.
#include "arguments.h"
#include "cad/icad.h"

#include "drawing/drawing.h"
#include "host/documentmanager.h"

#include <benchmark/benchmark.h>

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
OdString tagOf(long number) {
    return numbered("TAG", number);
}

void fill(OdDbObjectId block, int definitions, const char* text) {
    const OdSmartPtr<OdDbBlockTableRecord> record(block.openObject(OdDb::kForWrite));
    for (int i = 0; i < 20; ++i) record->appendOdDbEntity(make<OdDbLine>());
    for (int i = 0; i < definitions; ++i) {
        const auto definition = make<OdDbAttributeDefinition>();
        definition->setTag(tagOf(i));
        definition->setPrompt(numbered("Prompt ", i));
        definition->setTextString(odText(text));
        record->appendOdDbEntity(definition);
    }
}

/// A drawing in the active document, with a block and references to it. Changes are kept for undo.
class Project {
public:
    Project(int references, int attributes) {
        const auto block = make<OdDbBlockTableRecord>();
        block->setName(odText("SYMBOL"));
        m_block = OdSmartPtr<OdDbSymbolTable>(db().getBlockTableId().openObject(OdDb::kForWrite))->add(block);
        fill(m_block, attributes, "default");
        const OdSmartPtr<OdDbBlockTableRecord> space(db().getModelSpaceId().openObject(OdDb::kForWrite));
        for (int i = 0; i < references; ++i) {
            const auto reference = make<OdDbBlockReference>();
            reference->setBlockTableRecord(m_block);
            m_last = space->appendOdDbEntity(reference);
            for (int j = 0; j < attributes; ++j) {
                const auto attribute = make<OdDbAttribute>();
                attribute->setTag(tagOf(j));
                attribute->setTextString(numbered("value ", i));
                reference->appendAttribute(attribute);
            }
        }
    }
    ~Project() { lm::host::documentManager().closeAll(); }
    CHostDatabase& db() { return *m_document->database(); }
    OdSmartPtr<OdDbBlockReference> last() const {
        return OdSmartPtr<OdDbBlockReference>(m_last.openObject());
    }

private:
    CHostDocument* m_document = lm::host::documentManager().newDocument();
    OdDbObjectId m_block, m_last;
};

/// How many attributes of a reference have a value.
int attributesWith(const OdSmartPtr<OdDbBlockReference>& reference, const OdString& value) {
    int count = 0;
    for (auto walk = reference->attributeIterator(); !walk->done(); walk->step())
        count += OdSmartPtr<OdDbAttribute>(walk->entity())->textString() == value;
    return count;
}

void insertKnownBlock(benchmark::State& state) {
    Project project(0, 8);
    CICad cad;
    const RZString path("missing.dxf"), name("SYMBOL"), layer("0");
    OdSmartPtr<OdDbBlockReference> made;
    for (auto _ : state) made = cad.InserirBloco(path, name, layer, 1, 2, 3, 0.5f);
    if (attributesWith(made, odText("default")) != 8) state.SkipWithError("not eight attributes");
}
BENCHMARK(insertKnownBlock);

void redefineBlock(benchmark::State& state) {
    constexpr int kReferences = 10000;
    const auto symbol = make<OdDbDatabase>();
    fill(symbol->getModelSpaceId(), 8, "new default");
    for (auto _ : state) {
        state.PauseTiming();
        {
            Project project(kReferences, 8);
            undoBlockBegin(&project.db());
            state.ResumeTiming();
            const bool done = CICad().RedefinirBloco(symbol, "SYMBOL");
            state.PauseTiming();
            undoBlockEnd(&project.db());
            if (!done || attributesWith(project.last(), numbered("value ", kReferences - 1)) != 8)
                state.SkipWithError("values were lost");
        }
        state.ResumeTiming();
    }
}
BENCHMARK(redefineBlock)->Unit(benchmark::kMillisecond)->Iterations(2);

/// Deletes blocks with their records; gives their number.
std::size_t destroy(std::list<CEBloco*>* blocks, int attributes) {
    if (blocks == nullptr) return 0;
    const std::size_t count = blocks->size();
    for (CEBloco* block : *blocks) {
        for (int i = 0; i < attributes; ++i) delete block->GetAtributo(tagOf(i));
        delete block;
    }
    delete blocks;
    return count;
}

void listBlocks(benchmark::State& state) {
    constexpr std::size_t kReferences = 10000;
    Project project(kReferences, 8);
    for (auto _ : state) {
        std::list<CEBloco*>* const blocks = CICad().BuscarBlocos("SYMBOL");
        state.PauseTiming();
        if (destroy(blocks, 8) != kReferences) state.SkipWithError("not all blocks");
        state.ResumeTiming();
    }
}
BENCHMARK(listBlocks)->Unit(benchmark::kMillisecond);

/// One match among the references; time for each attribute.
void searchByValue(benchmark::State& state) {
    const int references = static_cast<int>(state.range(0)), attributes = static_cast<int>(state.range(1));
    Project project(references, attributes);
    const RZString tag(tagOf(attributes - 1)), value(numbered("value ", references / 2));
    for (auto _ : state) {
        std::list<CEBloco*>* const blocks = CICad().BuscarBlocos3(tag, value);
        if (destroy(blocks, attributes) != 1) state.SkipWithError("not one block");
    }
    state.SetItemsProcessed(state.iterations() * references * attributes);
}
BENCHMARK(searchByValue)->Args({1000, 8})->Args({10000, 8})->Args({100, 512})->Unit(benchmark::kMillisecond);

/// Lists with prompts; time for each attribute, which must not grow with their number.
void readPrompts(benchmark::State& state) {
    const int attributes = static_cast<int>(state.range(0)), references = 16384 / attributes;
    Project project(references, attributes);
    CEListaAtributos* list = nullptr;
    for (auto _ : state) {
        for (int i = 0; i < references; ++i) {
            CICad().SearchAttributes(project.last(), list, true, true, RZString());
            if (list->GetSize() != attributes || list->GetAt(attributes - 1)->GetPrompt().isEmpty())
                state.SkipWithError("prompts are missing");
            list->releaseAllAttributes();
            delete list;
        }
    }
    state.SetItemsProcessed(state.iterations() * references * attributes);
}
BENCHMARK(readPrompts)->Arg(8)->Arg(64)->Arg(512)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
