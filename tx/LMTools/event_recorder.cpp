// SPDX-License-Identifier: MIT
#include "event_recorder.h"

#include "host/document.h"

#include <utility>

namespace lmtools {

namespace {

lm::WideString copied(const OdString& text) {
    return lm::WideString(text.view());
}

int numberOf(const CHostDocument* doc) {
    return doc == nullptr ? 0 : doc->number();
}

lm::WideString blockOf(const OdDbBlockReference& reference) {
    const OdSmartPtr<OdDbObject> object = reference.blockTableRecord().openObject(OdDb::kForRead, true);
    const auto* const block = OdDbBlockTableRecord::cast(object.get());
    return block == nullptr ? lm::WideString() : copied(block->getName());
}

/// Fills in what there is to say of an object beside its handle.
void describe(const OdDbObject& object, Event& event) {
    if (const auto* const entity = OdDbEntity::cast(&object)) event.layer = copied(entity->layer());
    if (const auto* const layer = OdDbLayerTableRecord::cast(&object)) event.layer = copied(layer->getName());
    if (const auto* const block = OdDbBlockTableRecord::cast(&object)) event.block = copied(block->getName());
    if (const auto* const reference = OdDbBlockReference::cast(&object)) event.block = blockOf(*reference);
    if (OdDbAttribute::cast(&object) == nullptr) return;
    const OdSmartPtr<OdDbObject> owner = object.ownerId().openObject(OdDb::kForRead, true);
    if (const auto* const bearer = OdDbBlockReference::cast(owner.get())) event.block = blockOf(*bearer);
}

} // namespace

EventRecorder::EventRecorder(EventListener& listener) : m_listener(listener) {}

void EventRecorder::tellCommand(Phase phase, const CHostDocument* doc, const RZString& name) {
    Event event{phase, Family::kCommand, numberOf(doc), {}, {}, {}, lm::WideString(name.view())};
    m_listener.happened(event);
}

void EventRecorder::tellObject(Family family, Phase phase, const CHostDocument* doc,
                               const OdDbObject& object) {
    Event event{phase, family, numberOf(doc), copied(object.getDbHandle().ascii()), {}, {}, {}};
    event.command = lm::WideString(getComandoAtivo().view());
    describe(object, event);
    m_listener.happened(event);
}

void EventRecorder::tellRest(Family family, Phase phase, const CHostDocument* doc) {
    Event event{phase, family, numberOf(doc), {}, {}, {}, lm::WideString(getComandoAtivo().view())};
    m_listener.happened(event);
}

void EventRecorder::commandCancelled(CHostDocument* doc, RZString nome) {
    tellCommand(Phase::kCancelled, doc, nome);
}
void EventRecorder::commandFailed(CHostDocument* doc, RZString nome) {
    tellCommand(Phase::kFailed, doc, nome);
}
void EventRecorder::commandEnded(CHostDocument* doc, RZString nome) {
    tellCommand(Phase::kEnded, doc, nome);
}
void EventRecorder::commandWillStart(CHostDocument* doc, RZString nome) {
    tellCommand(Phase::kWillStart, doc, nome);
}
void EventRecorder::cargaInicial(CHostDocument* doc) {
    tellRest(Family::kCarga, Phase::kInicial, doc);
}
void EventRecorder::transactionEndedBegin() {
    tellRest(Family::kTransaction, Phase::kEndedBegin, nullptr);
}
void EventRecorder::transactionEndedEnd() {
    tellRest(Family::kTransaction, Phase::kEndedEnd, nullptr);
}
void EventRecorder::blockDefined(CHostDocument* doc, OdSmartPtr<OdDbBlockTableRecord> bloco) {
    tellObject(Family::kBlock, Phase::kDefined, doc, *bloco);
}
void EventRecorder::entityAppended(CHostDocument* doc, OdSmartPtr<OdDbObject> objeto) {
    tellObject(Family::kEntity, Phase::kAppended, doc, *objeto);
}

void EventRecorder::blockAppended(CHostDocument* doc, OdSmartPtr<OdDbBlockReference> ref) {
    tellObject(Family::kBlock, Phase::kAppended, doc, *ref);
    CCReactorBase::blockAppended(doc, ref);
}
void EventRecorder::blockForModify(CHostDocument* doc, OdSmartPtr<OdDbBlockReference> ref) {
    tellObject(Family::kBlock, Phase::kForModify, doc, *ref);
    CCReactorBase::blockForModify(doc, ref);
}
void EventRecorder::blockModified(CHostDocument* doc, OdSmartPtr<OdDbBlockReference> ref) {
    tellObject(Family::kBlock, Phase::kModified, doc, *ref);
    CCReactorBase::blockModified(doc, ref);
}
void EventRecorder::blockErased(CHostDocument* doc, OdSmartPtr<OdDbBlockReference> ref) {
    tellObject(Family::kBlock, Phase::kErased, doc, *ref);
    CCReactorBase::blockErased(doc, ref);
}

void EventRecorder::attAppended(CHostDocument* doc, OdSmartPtr<OdDbAttribute> atributo) {
    tellObject(Family::kAtt, Phase::kAppended, doc, *atributo);
}
void EventRecorder::attForModify(CHostDocument* doc, OdSmartPtr<OdDbAttribute> atributo) {
    tellObject(Family::kAtt, Phase::kForModify, doc, *atributo);
}
void EventRecorder::attModified(CHostDocument* doc, OdSmartPtr<OdDbAttribute> atributo) {
    tellObject(Family::kAtt, Phase::kModified, doc, *atributo);
}
void EventRecorder::attErased(CHostDocument* doc, OdSmartPtr<OdDbAttribute> atributo) {
    tellObject(Family::kAtt, Phase::kErased, doc, *atributo);
}

void EventRecorder::plineAppended(CHostDocument* doc, OdSmartPtr<OdDbPolyline> pline) {
    tellObject(Family::kPline, Phase::kAppended, doc, *pline);
}
void EventRecorder::plineForModify(CHostDocument* doc, OdSmartPtr<OdDbPolyline> pline) {
    tellObject(Family::kPline, Phase::kForModify, doc, *pline);
}
void EventRecorder::plineModified(CHostDocument* doc, OdSmartPtr<OdDbPolyline> pline) {
    tellObject(Family::kPline, Phase::kModified, doc, *pline);
}
void EventRecorder::plineErased(CHostDocument* doc, OdSmartPtr<OdDbPolyline> pline) {
    tellObject(Family::kPline, Phase::kErased, doc, *pline);
}

void EventRecorder::layerAppended(CHostDocument* doc, OdSmartPtr<OdDbLayerTableRecord> layer) {
    tellObject(Family::kLayer, Phase::kAppended, doc, *layer);
}
void EventRecorder::layerForModify(CHostDocument* doc, OdSmartPtr<OdDbLayerTableRecord> layer) {
    tellObject(Family::kLayer, Phase::kForModify, doc, *layer);
}
void EventRecorder::layerModified(CHostDocument* doc, OdSmartPtr<OdDbLayerTableRecord> layer) {
    tellObject(Family::kLayer, Phase::kModified, doc, *layer);
}
void EventRecorder::layerErased(CHostDocument* doc, OdSmartPtr<OdDbLayerTableRecord> layer) {
    tellObject(Family::kLayer, Phase::kErased, doc, *layer);
}

void EventRecorder::ctoAppended(CHostDocument* doc, OdSmartPtr<OdDbBlockReference> ref) {
    tellObject(Family::kCto, Phase::kAppended, doc, *ref);
}
void EventRecorder::ctoForModify(CHostDocument* doc, OdSmartPtr<OdDbBlockReference> ref) {
    tellObject(Family::kCto, Phase::kForModify, doc, *ref);
}
void EventRecorder::ctoModified(CHostDocument* doc, OdSmartPtr<OdDbBlockReference> ref) {
    tellObject(Family::kCto, Phase::kModified, doc, *ref);
}
void EventRecorder::ctoErased(CHostDocument* doc, OdSmartPtr<OdDbBlockReference> ref) {
    tellObject(Family::kCto, Phase::kErased, doc, *ref);
}

void EventRecorder::insAppended(CHostDocument* doc, OdSmartPtr<OdDbBlockReference> ref) {
    tellObject(Family::kIns, Phase::kAppended, doc, *ref);
}
void EventRecorder::insForModify(CHostDocument* doc, OdSmartPtr<OdDbBlockReference> ref) {
    tellObject(Family::kIns, Phase::kForModify, doc, *ref);
}
void EventRecorder::insModified(CHostDocument* doc, OdSmartPtr<OdDbBlockReference> ref) {
    tellObject(Family::kIns, Phase::kModified, doc, *ref);
}
void EventRecorder::insErased(CHostDocument* doc, OdSmartPtr<OdDbBlockReference> ref) {
    tellObject(Family::kIns, Phase::kErased, doc, *ref);
}

void EventRecorder::contaAppended(CHostDocument* doc, OdSmartPtr<OdDbBlockReference> ref) {
    tellObject(Family::kConta, Phase::kAppended, doc, *ref);
}
void EventRecorder::contaForModify(CHostDocument* doc, OdSmartPtr<OdDbBlockReference> ref) {
    tellObject(Family::kConta, Phase::kForModify, doc, *ref);
}
void EventRecorder::contaModified(CHostDocument* doc, OdSmartPtr<OdDbBlockReference> ref) {
    tellObject(Family::kConta, Phase::kModified, doc, *ref);
}
void EventRecorder::contaErased(CHostDocument* doc, OdSmartPtr<OdDbBlockReference> ref) {
    tellObject(Family::kConta, Phase::kErased, doc, *ref);
}

void EventRecorder::gradeAppended(CHostDocument* doc, OdSmartPtr<OdDbBlockReference> ref) {
    tellObject(Family::kGrade, Phase::kAppended, doc, *ref);
}
void EventRecorder::gradeForModify(CHostDocument* doc, OdSmartPtr<OdDbBlockReference> ref) {
    tellObject(Family::kGrade, Phase::kForModify, doc, *ref);
}
void EventRecorder::gradeModified(CHostDocument* doc, OdSmartPtr<OdDbBlockReference> ref) {
    tellObject(Family::kGrade, Phase::kModified, doc, *ref);
}
void EventRecorder::gradeErased(CHostDocument* doc, OdSmartPtr<OdDbBlockReference> ref) {
    tellObject(Family::kGrade, Phase::kErased, doc, *ref);
}

namespace {

/// Writes each event as its line.
class LineWriter : public EventListener {
public:
    explicit LineWriter(lm::host::RecorderSink sink) : m_sink(std::move(sink)) {}
    void happened(const Event& event) override { m_sink(lineOf(event)); }

private:
    lm::host::RecorderSink m_sink;
};

class EventRecording : public lm::host::Recording {
public:
    explicit EventRecording(lm::host::RecorderSink sink) : m_writer(std::move(sink)), m_recorder(m_writer) {
        m_recorder.inicializar();
    }
    ~EventRecording() override { m_recorder.finalizar(); }

private:
    LineWriter m_writer;
    EventRecorder m_recorder;
};

} // namespace

std::unique_ptr<lm::host::Recording> startEventRecording(lm::host::RecorderSink sink) {
    return std::make_unique<EventRecording>(std::move(sink));
}

} // namespace lmtools
