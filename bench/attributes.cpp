// SPDX-License-Identifier: MIT
// Values written through the facade into the attributes of one reference.
#include "arguments.h"
#include "cad/icad.h"

#include "drawing/text.h"
#include "host/database.h"

#include <benchmark/benchmark.h>

#include <string>
#include <vector>

namespace {

using lm::drawing::kAttach;
using lm::drawing::odText;

constexpr int kAttributes = 8;

template<class T>
OdSmartPtr<T> make() {
    return OdSmartPtr<T>(new T(), kAttach);
}

std::string tagOf(int index) {
    return "TAG" + std::to_string(index);
}

/// A drawing with one reference of eight attributes whose changes are kept for undo.
struct OneReference {
    OneReference() {
        db.setUndoRecording(true);
        const auto reference = make<OdDbBlockReference>();
        id = OdSmartPtr<OdDbBlockTableRecord>(db.getModelSpaceId().openObject(OdDb::kForWrite))
                 ->appendOdDbEntity(reference);
        for (int i = 0; i < kAttributes; ++i) {
            const auto attribute = make<OdDbAttribute>();
            attribute->setTag(odText(tagOf(i)));
            attribute->setTextString(odText("before"));
            reference->appendAttribute(attribute);
        }
    }
    OdSmartPtr<OdDbBlockReference> open() const { return OdSmartPtr<OdDbBlockReference>(id.openObject()); }
    /// Whether all attributes, or the last alone, hold a text.
    bool holds(const char* text, bool all) const {
        const auto walk = open()->attributeIterator();
        bool held = true;
        for (; !walk->done(); walk->step()) {
            const bool same = OdSmartPtr<OdDbAttribute>(walk->entity())->textString() == odText(text);
            held = all ? held && same : same;
        }
        return held;
    }

    CHostDatabase db;
    OdDbObjectId id;
};

/// A list with the same value for each of the attributes.
struct Values {
    explicit Values(const char* value) {
        for (int i = 0; i < kAttributes; ++i)
            list.AdicionarAtributo(new CEAtributo(odText(tagOf(i)), OdString(), odText(value), {}, false));
    }
    ~Values() { list.releaseAllAttributes(); }
    CEListaAtributos list;
};

/// The last of eight attributes, which holds the value already.
void updateWithoutChange(benchmark::State& state) {
    const OneReference drawing;
    const OdSmartPtr<OdDbBlockReference> reference = drawing.open();
    const RZString tag(tagOf(kAttributes - 1).c_str()), value("before");
    const std::size_t filed = drawing.db.undoRecords();
    CICad cad;
    for (auto _ : state)
        if (!cad.AtualizarAtributo(reference, tag, value)) state.SkipWithError("no such attribute");
    if (drawing.db.undoRecords() != filed) state.SkipWithError("something was written");
}
BENCHMARK(updateWithoutChange);

/// The last of eight attributes, each time as a step of undo.
void updateWithUndo(benchmark::State& state) {
    OneReference drawing;
    const OdSmartPtr<OdDbBlockReference> reference = drawing.open();
    const RZString tag(tagOf(kAttributes - 1).c_str()), values[2] = {"one", "another"};
    CICad cad;
    std::size_t count = 0;
    for (auto _ : state) {
        drawing.db.startUndoRecord();
        if (!cad.AtualizarAtributo(reference, tag, values[++count & 1]))
            state.SkipWithError("no such attribute");
    }
    if (!drawing.holds((count & 1) != 0 ? "another" : "one", false)) state.SkipWithError("nothing written");
    if (drawing.db.undoMarks() != count) state.SkipWithError("not a step each");
    while (drawing.db.undo()) continue;
}
BENCHMARK(updateWithUndo)->Iterations(100000);

/// Eight records into eight attributes, each of them written, each time as a step of undo.
void updateByList(benchmark::State& state) {
    OneReference drawing;
    const OdSmartPtr<OdDbBlockReference> reference = drawing.open();
    Values one("one"), another("another");
    CICad cad;
    int written = 0;
    std::size_t count = 0;
    for (auto _ : state) {
        drawing.db.startUndoRecord();
        cad.AtualizarAtributos(reference, (++count & 1) != 0 ? &another.list : &one.list, true, &written);
    }
    if (static_cast<std::size_t>(written) != kAttributes * count) state.SkipWithError("not eight writes");
    if (!drawing.holds((count & 1) != 0 ? "another" : "one", true)) state.SkipWithError("nothing written");
    while (drawing.db.undo()) continue;
}
BENCHMARK(updateByList)->Iterations(20000);

/// The same records again and again: all pairs compared and nothing written.
void updateByListWithoutChange(benchmark::State& state) {
    OneReference drawing;
    const OdSmartPtr<OdDbBlockReference> reference = drawing.open();
    Values same("BEFORE");
    CICad cad;
    int written = 0;
    for (auto _ : state) cad.AtualizarAtributos(reference, &same.list, true, &written);
    if (written != 0) state.SkipWithError("something was written");
}
BENCHMARK(updateByListWithoutChange);

} // namespace

BENCHMARK_MAIN();
