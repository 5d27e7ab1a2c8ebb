// SPDX-License-Identifier: MIT
// The links between the appearances of a component: from one to its schematic object, and the mending of all
// links after a copy. Each benchmark looks at what came out.
#include "arguments.h"
#include "cad/icad.h"

#include "drawing/drawing.h"
#include "host/documentmanager.h"

#include <benchmark/benchmark.h>

#include <optional>

namespace {

using lm::drawing::kAttach;
using lm::drawing::odText;

/// A new drawing in the active document.
class Drawing {
public:
    ~Drawing() { lm::host::documentManager().closeAll(); }
    CHostDatabase& db() { return *m_document->database(); }
    OdDbObjectId add() {
        if (m_space.isNull())
            m_space = OdSmartPtr<OdDbBlockTableRecord>(db().getModelSpaceId().openObject(OdDb::kForWrite));
        return m_space->appendOdDbEntity(OdSmartPtr<OdDbPoint>(new OdDbPoint, kAttach));
    }

private:
    CHostDocument* m_document = lm::host::documentManager().newDocument();
    OdSmartPtr<OdDbBlockTableRecord> m_space;
};

/// Gives an object a chain of texts.
void give(OdDbObjectId object, const char* application, const std::vector<OdString>& texts) {
    const OdSmartPtr<OdResBuf> chain = OdResBuf::newRb(1001, odText(application));
    OdSmartPtr<OdResBuf> last = chain;
    for (const OdString& text : texts) last = last->append(OdResBuf::newRb(1000, text));
    object.openObject(OdDb::kForWrite)->setXData(chain);
}

OdString handleOf(OdDbObjectId id) {
    return id.getHandle().ascii();
}

/// What an object is asked for its schematic object by; the last ones ask the longest.
enum Kind { kSchematic, kPanel, kRepresentation, kCableLabel, kNone };

void followLink(benchmark::State& state) {
    Drawing drawing;
    const OdDbObjectId schematic = drawing.add(), object = drawing.add();
    const OdString handle = handleOf(schematic);
    OdDbObjectId expected = schematic;
    switch (static_cast<Kind>(state.range(0))) {
    case kSchematic:
        give(object, "TVO_RZ", {odText("mark")});
        expected = object;
        break;
    case kPanel:
        give(object, "TVO_LAYOUT_PAINEL", {handle, odText("text"), handle});
        break;
    case kRepresentation:
        give(object, "TVO_RZ_REPRESENTACAO", {odText("key"), handle});
        break;
    case kCableLabel:
        give(object, "TVO_RZ_ANILHACABO", {handle});
        break;
    case kNone:
        give(object, "TVO_RZ_ATT_VIRTUAL", {odText("line")});
        expected = object;
        break;
    }
    CICad cad;
    for (auto _ : state)
        if (cad.getObjIdEsquema(RZID(object)) != RZID(expected)) state.SkipWithError("another object");
}
BENCHMARK(followLink)->Arg(kSchematic)->Arg(kPanel)->Arg(kRepresentation)->Arg(kCableLabel)->Arg(kNone);

/// Components with a panel shape and a representation each, copied by two clone operations.
class Copy {
public:
    explicit Copy(int components) {
        OdArray<OdDbObjectId> schematics, appearances;
        for (int i = 0; i < components; ++i) addComponent(schematics, appearances);
        const OdDbObjectId space = m_drawing.db().getModelSpaceId();
        m_drawing.db().deepCloneObjects(appearances, space, *m_first);
        m_drawing.db().deepCloneObjects(schematics, space, *m_second);
    }
    bool mend() { return CICad().reassociaBlocos(m_first, m_second); }
    /// Whether each copy leads to the copy of its schematic object, and that back to it.
    bool isMended() const {
        CICad cad;
        for (const OdDbIdPair& pair : m_first->pairs()) {
            const RZID source = cad.getObjIdEsquema(RZID(pair.key()));
            const RZID copy = cad.getObjIdEsquema(RZID(pair.value()));
            if (copy == source || copy != cad.getObjectId(m_second, source)) return false;
        }
        for (const OdDbIdPair& pair : m_second->pairs()) {
            const auto chain = pair.value().openObject()->xData(odText("TVO_LAYOUT_ESQUEMA"));
            const RZID panel(chain->next()->getString());
            if (cad.getObjIdEsquema(panel) != RZID(pair.value())) return false;
        }
        return true;
    }

private:
    void addComponent(OdArray<OdDbObjectId>& schematics, OdArray<OdDbObjectId>& appearances) {
        const OdDbObjectId schematic = m_drawing.add(), panel = m_drawing.add(), shown = m_drawing.add();
        const OdString mark = odText("mark"), handle = handleOf(schematic);
        give(schematic, "TVO_RZ", {mark});
        give(schematic, "TVO_LAYOUT_ESQUEMA", {handleOf(panel)});
        give(schematic, "TVO_RZ_REPRESENTACAO_ESQ", {mark, handleOf(shown)});
        give(panel, "TVO_LAYOUT_RZ", {mark});
        give(panel, "TVO_LAYOUT_PAINEL", {handle});
        give(shown, "TVO_RZ_REPRESENTACAO", {mark, handle});
        schematics.append(schematic);
        appearances.append(panel);
        appearances.append(shown);
    }

    Drawing m_drawing;
    OdSmartPtr<OdDbIdMapping> m_first{new OdDbIdMapping, kAttach}, m_second{new OdDbIdMapping, kAttach};
};

/// 10,000 pairs in all, a third of them schematic objects.
void mendCopy(benchmark::State& state) {
    constexpr int kPairs = 10000;
    for (auto _ : state) {
        state.PauseTiming();
        std::optional<Copy> copy(std::in_place, kPairs / 3);
        state.ResumeTiming();
        const bool isMet = copy->mend();
        state.PauseTiming();
        if (!isMet || !copy->isMended()) state.SkipWithError("a link still leads to the source");
        copy.reset();
        state.ResumeTiming();
    }
}
BENCHMARK(mendCopy)->Unit(benchmark::kMillisecond)->Iterations(5);

} // namespace

BENCHMARK_MAIN();
