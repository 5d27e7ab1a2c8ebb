// SPDX-License-Identifier: MIT
// EventRecorder: a reactor that follows all open drawings and turns what it hears into a stream of events.
//
//     lmtools::EventRecorder recorder(listener);
//     recorder.inicializar();   ...   recorder.finalizar();
#pragma once

#include "event_stream.h"

#include "reactor/ccreactorbase.h"

#include "host/recorder.h"

namespace lmtools {

/// Tells a listener each event in the order in which they come. References are told as blocks and then by
/// their family. The listener must not change drawings.
class EventRecorder : public CCReactorBase {
public:
    /// Follows nothing before inicializar.
    explicit EventRecorder(EventListener& listener);

    // The host's forms of the same names.
    using CCReactorBase::commandCancelled;
    using CCReactorBase::commandEnded;
    using CCReactorBase::commandFailed;
    using CCReactorBase::commandWillStart;

    void commandCancelled(CHostDocument* doc, RZString nome) override;
    void commandFailed(CHostDocument* doc, RZString nome) override;
    void commandEnded(CHostDocument* doc, RZString nome) override;
    void commandWillStart(CHostDocument* doc, RZString nome) override;
    void cargaInicial(CHostDocument* doc) override;
    void transactionEndedBegin() override;
    void transactionEndedEnd() override;
    void blockDefined(CHostDocument* doc, OdSmartPtr<OdDbBlockTableRecord> bloco) override;
    void entityAppended(CHostDocument* doc, OdSmartPtr<OdDbObject> objeto) override;
    void blockAppended(CHostDocument* doc, OdSmartPtr<OdDbBlockReference> ref) override;
    void blockForModify(CHostDocument* doc, OdSmartPtr<OdDbBlockReference> ref) override;
    void blockModified(CHostDocument* doc, OdSmartPtr<OdDbBlockReference> ref) override;
    void blockErased(CHostDocument* doc, OdSmartPtr<OdDbBlockReference> ref) override;
    void attAppended(CHostDocument* doc, OdSmartPtr<OdDbAttribute> atributo) override;
    void attForModify(CHostDocument* doc, OdSmartPtr<OdDbAttribute> atributo) override;
    void attModified(CHostDocument* doc, OdSmartPtr<OdDbAttribute> atributo) override;
    void attErased(CHostDocument* doc, OdSmartPtr<OdDbAttribute> atributo) override;
    void plineAppended(CHostDocument* doc, OdSmartPtr<OdDbPolyline> pline) override;
    void plineForModify(CHostDocument* doc, OdSmartPtr<OdDbPolyline> pline) override;
    void plineModified(CHostDocument* doc, OdSmartPtr<OdDbPolyline> pline) override;
    void plineErased(CHostDocument* doc, OdSmartPtr<OdDbPolyline> pline) override;
    void layerAppended(CHostDocument* doc, OdSmartPtr<OdDbLayerTableRecord> layer) override;
    void layerForModify(CHostDocument* doc, OdSmartPtr<OdDbLayerTableRecord> layer) override;
    void layerModified(CHostDocument* doc, OdSmartPtr<OdDbLayerTableRecord> layer) override;
    void layerErased(CHostDocument* doc, OdSmartPtr<OdDbLayerTableRecord> layer) override;
    void ctoAppended(CHostDocument* doc, OdSmartPtr<OdDbBlockReference> ref) override;
    void ctoForModify(CHostDocument* doc, OdSmartPtr<OdDbBlockReference> ref) override;
    void ctoModified(CHostDocument* doc, OdSmartPtr<OdDbBlockReference> ref) override;
    void ctoErased(CHostDocument* doc, OdSmartPtr<OdDbBlockReference> ref) override;
    void insAppended(CHostDocument* doc, OdSmartPtr<OdDbBlockReference> ref) override;
    void insForModify(CHostDocument* doc, OdSmartPtr<OdDbBlockReference> ref) override;
    void insModified(CHostDocument* doc, OdSmartPtr<OdDbBlockReference> ref) override;
    void insErased(CHostDocument* doc, OdSmartPtr<OdDbBlockReference> ref) override;
    void contaAppended(CHostDocument* doc, OdSmartPtr<OdDbBlockReference> ref) override;
    void contaForModify(CHostDocument* doc, OdSmartPtr<OdDbBlockReference> ref) override;
    void contaModified(CHostDocument* doc, OdSmartPtr<OdDbBlockReference> ref) override;
    void contaErased(CHostDocument* doc, OdSmartPtr<OdDbBlockReference> ref) override;
    void gradeAppended(CHostDocument* doc, OdSmartPtr<OdDbBlockReference> ref) override;
    void gradeForModify(CHostDocument* doc, OdSmartPtr<OdDbBlockReference> ref) override;
    void gradeModified(CHostDocument* doc, OdSmartPtr<OdDbBlockReference> ref) override;
    void gradeErased(CHostDocument* doc, OdSmartPtr<OdDbBlockReference> ref) override;

private:
    void tellCommand(Phase phase, const CHostDocument* doc, const RZString& name);
    void tellObject(Family family, Phase phase, const CHostDocument* doc, const OdDbObject& object);
    void tellRest(Family family, Phase phase, const CHostDocument* doc);

    EventListener& m_listener;
};

/// Records each event as its line.
std::unique_ptr<lm::host::Recording> startEventRecording(lm::host::RecorderSink sink);

} // namespace lmtools
