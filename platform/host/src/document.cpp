// SPDX-License-Identifier: MIT
#include "host/document.h"

#include "documentstate.h"
#include "host/documentmanager.h"

#include "drawing/telling.h"

#include <utility>

CHostDocument::CHostDocument(int number, std::unique_ptr<CHostDatabase> database)
    : m_number(number), m_database(std::move(database)), m_api(std::make_unique<CHostAPI>()),
      m_state(std::make_unique<lm::host::DocumentState>()) {
    if (!m_database) return;
    // The document owns its database: smart pointers to it come and go without ending it.
    m_database->setCountManaged(false);
    m_database->setUndoRecording(true);
}

CHostDocument::~CHostDocument() = default;

OdString CHostDocument::fileName() const {
    return m_database ? m_database->getFilename() : OdString();
}

int CHostDocument::executeCommand(const OdString& name, lm::host::AnswerSource& answers) {
    return lm::host::executeCommand(this, name, answers);
}

int CHostDocument::executeCommand(const OdString& name, std::initializer_list<lm::host::Answer> answers) {
    lm::host::AnswerList list(answers);
    return executeCommand(name, list);
}

std::size_t CHostDocument::commandDepth() const {
    return m_state->commands.size();
}

OdString CHostDocument::activeCommand() const {
    return m_state->commands.empty() ? OdString() : m_state->commands.back().command->globalName();
}

lm::host::AnswerSource* CHostDocument::answers() const {
    return m_state->commands.empty() ? m_state->answers : m_state->commands.back().answers;
}

lm::host::AnswerSource* CHostDocument::setAnswers(lm::host::AnswerSource* source) {
    return std::exchange(m_state->answers, source);
}

bool CHostDocument::isBusy() const {
    if (commandDepth() != 0 || isInUndoStep() || m_api->isEvaluating() || m_api->callDepth() != 0)
        return true;
    // Whoever changed an object, or opened a transaction, goes on with both when its reactors have returned.
    return m_database != nullptr &&
           (lm::drawing::isTelling(*m_database) || m_database->numActiveTransactions() != 0);
}

void CHostDocument::closeAfterCommand() {
    m_state->closeWanted = true;
    closeIfWanted();
}

bool CHostDocument::closeIfWanted() {
    if (!m_state->closeWanted || isBusy()) return false;
    m_state->closeWanted = false; // who is told of the closing may run commands
    return lm::host::documentManager().closeDocument(this);
}

void CHostDocument::setTimeLimit(double seconds) {
    m_state->timeLimit = seconds > 0 ? seconds : 0;
}

double CHostDocument::timeLimit() const {
    return m_state->timeLimit;
}

void CHostDocument::checkTime() const {
    if (m_state->commands.empty() || m_state->commands.back().deadline == lm::host::Clock::time_point::max())
        return;
    if (lm::host::Clock::now() >= m_state->commands.back().deadline)
        throw lm::host::CommandFailed("the time limit of " + lm::host::Answer(timeLimit()).asText() +
                                      " s has passed");
}

bool CHostDocument::undo() {
    return m_database != nullptr && m_state->steps.undo(*m_database);
}

bool CHostDocument::redo() {
    return m_database != nullptr && m_state->steps.redo(*m_database);
}

bool CHostDocument::isInUndoStep() const {
    return m_state->steps.isOpen();
}

bool CHostDocument::isModified() const {
    return m_database != nullptr && m_database->changeCount() != m_state->savedChanges;
}

void CHostDocument::markSaved() {
    if (!m_database) return;
    // An object is filed once in a step: what changes after the saving must come in another one to be
    // counted.
    m_database->startUndoRecord();
    m_state->savedChanges = m_database->changeCount();
}

CHostSelectionSet* CHostDocument::newSelectionSet() const {
    return new CHostSelectionSet(*this);
}

const std::vector<OdDbObjectId>& CHostDocument::previousSelection() const {
    return m_state->previousSelection;
}

void CHostDocument::setPreviousSelection(std::vector<OdDbObjectId> ids) {
    m_state->previousSelection = std::move(ids);
}

OdSmartPtr<OdDbIdMapping> CHostDocument::copyMapping(int index) const {
    return index == 0 || index == 1 ? m_state->copyMappings[index] : OdSmartPtr<OdDbIdMapping>();
}

void CHostDocument::setCopyMappings(OdSmartPtr<OdDbIdMapping> first, OdSmartPtr<OdDbIdMapping> second) {
    m_state->copyMappings[0] = std::move(first);
    m_state->copyMappings[1] = std::move(second);
}

OdGePoint3d CHostDocument::lastPoint() const {
    return m_state->lastPoint;
}

void CHostDocument::setLastPoint(const OdGePoint3d& point) {
    m_state->lastPoint = point;
}

CHostView* CHostDocument::view() const {
    return &m_state->view;
}

void CHostDocument::regen(CHostView* view) {
    if (view == &m_state->view) ++view->m_regenerations;
}

CHostDocument* ACTIVE_DOCUMENT() {
    return lm::host::documentManager().activeDocument();
}

namespace lm::host {

UndoStepScope::UndoStepScope(CHostDocument* document)
    : m_document(document != nullptr && document->database() != nullptr ? document : nullptr) {
    if (m_document != nullptr) m_document->m_state->steps.begin(*m_document->database());
}

UndoStepScope::~UndoStepScope() {
    if (m_document != nullptr) m_document->m_state->steps.end(*m_document->database());
}

} // namespace lm::host
