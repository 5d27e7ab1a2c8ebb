// SPDX-License-Identifier: MIT
// The pages of a project: settings that are found by walking over model space, without an index or a cache.
// Each benchmark looks at what came out.
#include "arguments.h"
#include "cad/icad.h"

#include "drawing/drawing.h"
#include "host/documentmanager.h"

#include <benchmark/benchmark.h>

#include <memory>
#include <string>

namespace {

using lm::drawing::kAttach;
using lm::drawing::odText;

constexpr int kEntities = 100000;

template<class T>
OdSmartPtr<T> make() {
    return OdSmartPtr<T>(new T, kAttach);
}

/// A project of 100 pages in the active document: references with four attributes, lines and points. Its
/// settings carrier is the first or the last entity, or isn't there.
class Project {
public:
    enum Carrier { kFirst, kLast, kNone };

    explicit Project(Carrier carrier) {
        addLayer("RZ_FREEZE");
        for (int i = 0; i < kPages; ++i) addLayer("P" + std::to_string(i));
        m_block = OdSmartPtr<OdDbSymbolTable>(db().getBlockTableId().openObject(OdDb::kForWrite))
                      ->add(named(make<OdDbBlockTableRecord>(), "SYMBOL"));
        if (carrier == kFirst) addOn(make<OdDbPoint>(), "RZ_FREEZE");
        while (m_count < kEntities - (carrier == kLast ? 1 : 0)) addNext();
        if (carrier == kLast) addOn(make<OdDbPoint>(), "RZ_FREEZE");
        m_space = {};
    }
    ~Project() { lm::host::documentManager().closeAll(); }
    CHostDatabase& db() { return *m_document->database(); }

private:
    static constexpr int kPages = 100;

    template<class T>
    static OdSmartPtr<T> named(OdSmartPtr<T> record, const std::string& name) {
        record->setName(odText(name));
        return record;
    }
    void addLayer(const std::string& name) {
        OdSmartPtr<OdDbSymbolTable>(db().getLayerTableId().openObject(OdDb::kForWrite))
            ->add(named(make<OdDbLayerTableRecord>(), name));
    }
    void addOn(const OdSmartPtr<OdDbEntity>& entity, const std::string& layer) {
        if (m_space.isNull())
            m_space = OdSmartPtr<OdDbBlockTableRecord>(db().getModelSpaceId().openObject(OdDb::kForWrite));
        m_space->appendOdDbEntity(entity);
        entity->setLayer(odText(layer));
        ++m_count;
    }
    /// Of ten entities seven are references, two are lines, and one is a point of no setting.
    void addNext() {
        const std::string page = "P" + std::to_string(m_count % kPages);
        if (m_count % 10 == 9) return addOn(make<OdDbPoint>(), page);
        if (m_count % 10 >= 7) return addOn(make<OdDbLine>(), page);
        const auto reference = make<OdDbBlockReference>();
        reference->setBlockTableRecord(m_block);
        addOn(reference, page);
        for (int i = 0; i < 4; ++i) {
            const auto attribute = make<OdDbAttribute>();
            attribute->setTag(odText("TAG" + std::to_string(i)));
            attribute->setTextString(odText("value"));
            reference->appendAttribute(attribute);
        }
    }

    CHostDocument* m_document = lm::host::documentManager().newDocument();
    OdSmartPtr<OdDbBlockTableRecord> m_space;
    OdDbObjectId m_block;
    int m_count = 0;
};

/// Reads that go over the whole of model space: the carrier stands at its end, or there is none.
void walkForNumbering(benchmark::State& state) {
    Project project(static_cast<Project::Carrier>(state.range(0)));
    CICad cad;
    const int written = cad.SetNumeracaoPaginas(1);
    const int expected = written == 0 ? 1 : 0;
    for (auto _ : state)
        if (cad.GetNumeracaoPaginas(&project.db()) != expected) state.SkipWithError("another mode");
    if (written != (state.range(0) == Project::kNone ? 2 : 0)) state.SkipWithError("another carrier");
}
BENCHMARK(walkForNumbering)->Arg(Project::kLast)->Arg(Project::kNone)->Unit(benchmark::kMillisecond);

void walkForOrders(benchmark::State& state) {
    Project project(Project::kLast);
    CICad cad;
    if (cad.SetOrdemGrupos(7) != 0 || cad.SetOrdemPaginas("G", 8) != 0) state.SkipWithError("no carrier");
    const bool isGroups = state.range(0) == 0;
    for (auto _ : state) {
        const int order = isGroups ? cad.GetOrdemGrupos(&project.db()) : cad.GetOrdemPaginas("G");
        if (order != (isGroups ? 7 : 8)) state.SkipWithError("another order");
    }
}
BENCHMARK(walkForOrders)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);

void walkForPanels(benchmark::State& state) {
    Project project(Project::kNone);
    CICad cad;
    for (auto _ : state)
        if (!cad.GetPaineisDefinidos(&project.db()).isNull()) state.SkipWithError("panels out of nothing");
}
BENCHMARK(walkForPanels)->Unit(benchmark::kMillisecond);

/// A write to the first of 100,000 entities.
void writeOnTheFirstCarrier(benchmark::State& state) {
    Project project(Project::kFirst);
    CICad cad;
    const bool isNumbering = state.range(0) == 0;
    int value = 0;
    for (auto _ : state) {
        ++value;
        if ((isNumbering ? cad.SetNumeracaoPaginas(value) : cad.SetOrdemGrupos(value)) != 0)
            state.SkipWithError("no carrier");
    }
    const int stored =
        isNumbering ? cad.GetNumeracaoPaginas(&project.db()) : cad.GetOrdemGrupos(&project.db());
    if (stored != value) state.SkipWithError("another value");
}
BENCHMARK(writeOnTheFirstCarrier)->Arg(0)->Arg(1);

/// A project of 1,000 pages with all that belongs to them, each with 100 references in a grid of its own.
class Book {
public:
    static constexpr int kPages = 1000, kOnAPage = 100, kStep = 10;

    Book() {
        const OdDbObjectId symbol =
            OdSmartPtr<OdDbSymbolTable>(db().getBlockTableId().openObject(OdDb::kForWrite))
                ->add(named(make<OdDbBlockTableRecord>(), "SYMBOL"));
        const auto line = make<OdDbLine>();
        line->setEndPoint({1, 1, 0});
        appendTo(symbol, line);
        for (int page = 0; page < kPages; ++page) addPage(page, symbol);
    }
    ~Book() { lm::host::documentManager().closeAll(); }
    CHostDatabase& db() { return *m_document->database(); }
    /// Pages in an order that jumps.
    static int pageOf(int turn) { return turn * 37 % kPages; }
    static std::string name(int page) { return "P" + std::to_string(page); }
    static OdGePoint3d place(int page, int index) {
        return {static_cast<double>(index % 10 * kStep), static_cast<double>(page * 200 + index / 10 * kStep),
                0};
    }
    /// Whether a page is shown, and nothing else but layer "0".
    bool showsOnly(int page) {
        CICad cad;
        const OdSmartPtr<OdDbSymbolTable> table(db().getLayerTableId().openObject());
        int shown = 0;
        for (const auto walk = table->newIterator(); !walk->done(); walk->step())
            if (!OdSmartPtr<OdDbLayerTableRecord>(walk->getRecord())->isFrozen()) ++shown;
        return shown == 5 && cad.GetLayerCorrente(&db()) == name(page).c_str();
    }

private:
    template<class T>
    static OdSmartPtr<T> named(OdSmartPtr<T> record, const std::string& name) {
        record->setName(odText(name));
        return record;
    }
    static void appendTo(OdDbObjectId block, const OdSmartPtr<OdDbEntity>& entity) {
        OdSmartPtr<OdDbBlockTableRecord>(block.openObject(OdDb::kForWrite))->appendOdDbEntity(entity);
    }
    void addPage(int page, OdDbObjectId symbol) {
        const OdSmartPtr<OdDbSymbolTable> layers(db().getLayerTableId().openObject(OdDb::kForWrite));
        for (const char* const part : {"", "$DE", "$FORMATO", "$SELO"})
            layers->add(named(make<OdDbLayerTableRecord>(), name(page) + part));
        for (int i = 0; i < kOnAPage; ++i) {
            const auto reference = make<OdDbBlockReference>();
            reference->setBlockTableRecord(symbol);
            reference->setPosition(place(page, i));
            appendTo(db().getModelSpaceId(), reference);
            reference->setLayer(odText(name(page)));
        }
    }
    CHostDocument* m_document = lm::host::documentManager().newDocument();
};

void showPage(benchmark::State& state) {
    Book book;
    CICad cad;
    int turn = 0;
    for (auto _ : state) {
        book.db().startUndoRecord();
        if (cad.MostrarPagina(Book::name(Book::pageOf(++turn)).c_str(), false) != 0)
            state.SkipWithError("no such page");
    }
    if (!book.showsOnly(Book::pageOf(turn))) state.SkipWithError("something else is shown");
}
BENCHMARK(showPage)->Unit(benchmark::kMillisecond);

void showPageOfSeries(benchmark::State& state) {
    Book book;
    CICad cad;
    cad.MostrarPagina("P0", false);
    int turn = 0;
    for (auto _ : state) {
        book.db().startUndoRecord();
        if (cad.MostrarPaginaPDF(Book::name(Book::pageOf(++turn)).c_str(), false) != 0)
            state.SkipWithError("no such page");
    }
    if (!book.showsOnly(Book::pageOf(turn))) state.SkipWithError("something else is shown");
}
BENCHMARK(showPageOfSeries)->Unit(benchmark::kMicrosecond);

void zoomToPage(benchmark::State& state) {
    Book book;
    CICad cad;
    cad.MostrarPagina("P7", false);
    for (auto _ : state)
        if (cad.ZoomExtends() != 0) state.SkipWithError("no viewport");
    const OdSmartPtr<OdDbViewportTableRecord> view(book.db().GetActiveViewportId().openObject());
    // 10 by 10 places and the size of the last symbol.
    if (view->height() != 91 || view->centerPoint().y != 7 * 200 + 45.5) state.SkipWithError("another view");
}
BENCHMARK(zoomToPage)->Unit(benchmark::kMillisecond);

void selectAroundAPoint(benchmark::State& state) {
    Book book;
    CICad cad;
    int turn = 0;
    for (auto _ : state) {
        const int page = Book::pageOf(++turn);
        int found = 0;
        const OdGePoint3d place = Book::place(page, turn % Book::kOnAPage);
        cad.SSGetCrossing(place, Book::name(page).c_str(), &book.db(), [&](OdDbObjectId) { ++found; });
        if (found != 1) state.SkipWithError("another selection");
    }
}
BENCHMARK(selectAroundAPoint)->Unit(benchmark::kMicrosecond);

/// The first selection of a drawing, which measures everything in it.
void selectForTheFirstTime(benchmark::State& state) {
    CICad cad;
    for (auto _ : state) {
        state.PauseTiming();
        auto book = std::make_unique<Book>();
        state.ResumeTiming();
        int found = 0;
        cad.SSGetCrossing(Book::place(7, 7), "P7", &book->db(), [&](OdDbObjectId) { ++found; });
        state.PauseTiming();
        if (found != 1) state.SkipWithError("another selection");
        book.reset();
        state.ResumeTiming();
    }
}
BENCHMARK(selectForTheFirstTime)->Unit(benchmark::kMillisecond)->Iterations(3);

/// One reference moves to and fro between two selections.
void selectAfterAnEdit(benchmark::State& state) {
    Book book;
    CICad cad;
    const OdGePoint3d place = Book::place(7, 7);
    OdDbObjectId moved;
    cad.SSGetCrossing(place, "P7", &book.db(), [&](OdDbObjectId id) { moved = id; });
    bool isThere = true;
    for (auto _ : state) {
        book.db().startUndoRecord();
        isThere = !isThere;
        OdSmartPtr<OdDbBlockReference>(moved.openObject(OdDb::kForWrite))
            ->setPosition(isThere ? place : OdGePoint3d(5000, -5000, 0));
        int found = 0;
        cad.SSGetCrossing(place, "P7", &book.db(), [&](OdDbObjectId) { ++found; });
        if (found != (isThere ? 1 : 0)) state.SkipWithError("another selection");
    }
}
BENCHMARK(selectAfterAnEdit)->Unit(benchmark::kMicrosecond);

} // namespace

BENCHMARK_MAIN();
