// SPDX-License-Identifier: MIT
#include "drawing/database.h"

#include "base/rxclass.h"
#include "dxf/read.h"
#include "dxf/resolver.h"
#include "model/databasedata.h"

#include <algorithm>

using lm::drawing::DatabaseData;
using lm::drawing::Node;
using lm::drawing::ObjectAccess;

LM_RX_DEFINE_ABSTRACT(OdDbDatabase, OdRxObject)

OdDbDatabase::OdDbDatabase(Content content) : m_data(std::make_unique<DatabaseData>(*this)) {
    if (content == kDefaults) lm::drawing::addDefaults(*m_data);
}

OdDbDatabase::~OdDbDatabase() = default;

void OdDbDatabase::release() {
    if (--m_refs == 0 && m_countManaged) delete this;
}

OdDbObjectId OdDbDatabase::getBlockTableId() const {
    return OdDbObjectId(m_data->fixed.blockTable);
}
OdDbObjectId OdDbDatabase::getLayerTableId() const {
    return OdDbObjectId(m_data->fixed.layerTable);
}
OdDbObjectId OdDbDatabase::getLinetypeTableId() const {
    return OdDbObjectId(m_data->fixed.linetypeTable);
}
OdDbObjectId OdDbDatabase::getTextStyleTableId() const {
    return OdDbObjectId(m_data->fixed.styleTable);
}
OdDbObjectId OdDbDatabase::getRegAppTableId() const {
    return OdDbObjectId(m_data->fixed.appTable);
}
OdDbObjectId OdDbDatabase::getViewportTableId() const {
    return OdDbObjectId(m_data->fixed.viewportTable);
}
OdDbObjectId OdDbDatabase::getViewTableId() const {
    return OdDbObjectId(m_data->fixed.viewTable);
}
OdDbObjectId OdDbDatabase::getNamedObjectsDictionaryId() const {
    return OdDbObjectId(m_data->fixed.dictionary);
}
OdDbObjectId OdDbDatabase::getModelSpaceId() const {
    return OdDbObjectId(m_data->fixed.modelSpace);
}
OdDbObjectId OdDbDatabase::getPaperSpaceId() const {
    return OdDbObjectId(m_data->fixed.paperSpace);
}
OdDbObjectId OdDbDatabase::getLayerZeroId() const {
    return OdDbObjectId(m_data->fixed.layerZero);
}
OdDbObjectId OdDbDatabase::getLinetypeByBlockId() const {
    return OdDbObjectId(m_data->fixed.byBlock);
}
OdDbObjectId OdDbDatabase::getLinetypeByLayerId() const {
    return OdDbObjectId(m_data->fixed.byLayer);
}
OdDbObjectId OdDbDatabase::getLinetypeContinuousId() const {
    return OdDbObjectId(m_data->fixed.continuous);
}
OdDbObjectId OdDbDatabase::getTextStyleStandardId() const {
    return OdDbObjectId(m_data->fixed.standardStyle);
}

OdDbObjectId OdDbDatabase::findFarHandle(const OdDbHandle& handle) const {
    return OdDbObjectId(m_data->handles.find(handle.value()));
}

OdDbObjectId OdDbDatabase::addOdDbObject(OdSmartPtr<OdDbObject> object, OdDbObjectId owner) {
    std::uint16_t kind = lm::drawing::kKindNone;
    if (object->isKindOf(OdDbDictionary::desc())) kind = lm::drawing::kKindDictionary;
    if (object->isKindOf(OdDbXrecord::desc())) kind = lm::drawing::kKindXrecord;
    return OdDbObjectId(lm::drawing::makeResident(*m_data, *object.get(), kind, owner.node(), false));
}

OdDbObjectId OdDbDatabase::getCLAYER() const {
    return OdDbObjectId(m_data->currentLayer);
}
void OdDbDatabase::setCurrentLayerAsText(bool asText) {
    m_data->currentLayerAsText = asText;
}
OdGePoint3d OdDbDatabase::getINSBASE() const {
    return m_data->basePoint;
}
void OdDbDatabase::setINSBASE(const OdGePoint3d& point) {
    m_data->undo.file(nullptr, lm::drawing::UndoRecord::BasePoint{m_data->basePoint});
    m_data->basePoint = point;
}

namespace {

/// The last separator of a path, either of the two, or npos.
std::size_t lastSeparator(lm::WideView path) {
    for (std::size_t i = path.size(); i > 0; --i)
        if (path[i - 1] == '/' || path[i - 1] == '\\') return i - 1;
    return lm::WideView::npos;
}

} // namespace

OdSmartPtr<OdResBuf> OdDbDatabase::getSysVar(const OdString& name) const {
    constexpr int kText = 1, kId = 330;
    const std::string ascii = lm::drawing::utf8(name);
    if (ascii == "CLAYER") {
        if (m_data->currentLayer == nullptr) return {};
        if (m_data->currentLayerAsText) {
            const OdSmartPtr<OdDbSymbolTableRecord> layer(getCLAYER().openObject(OdDb::kForRead, true));
            return OdResBuf::newRb(kText, layer->getName());
        }
        OdSmartPtr<OdResBuf> record = OdResBuf::newRb(kId);
        record->setObjectId(getCLAYER());
        return record;
    }
    if (ascii == "DWGNAME" || ascii == "DWGPREFIX") {
        if (m_data->fileName.isEmpty()) return {};
        const lm::WideView path = m_data->fileName.view();
        const std::size_t slash = lastSeparator(path);
        const std::size_t head = slash == lm::WideView::npos ? 0 : slash + 1;
        return OdResBuf::newRb(kText,
                               OdString(ascii == "DWGNAME" ? path.substr(head) : path.substr(0, head)));
    }
    return lm::drawing::readHeaderVariable(*m_data, ascii);
}

bool OdDbDatabase::setSysVar(const OdString& name, OdSmartPtr<OdResBuf> value) {
    if (value.isNull() || lm::drawing::utf8(name) != "CLAYER") return false;
    const OdDbObjectId id = value->getObjectId();
    if (!id.isValid() || id.isErased() || id.database() != this) return false;
    if (OdDbLayerTableRecord::cast(id.openObject().get()) == nullptr) return false;
    m_data->undo.file(nullptr, lm::drawing::UndoRecord::CurrentLayer{m_data->currentLayer});
    m_data->currentLayer = id.node();
    return true;
}

namespace {

template<class R>
void attach(std::vector<R*>& list, R* reactor) {
    if (reactor != nullptr && std::find(list.begin(), list.end(), reactor) == list.end())
        list.push_back(reactor);
}

template<class R>
void detach(std::vector<R*>& list, R* reactor) {
    list.erase(std::remove(list.begin(), list.end(), reactor), list.end());
}

} // namespace

void OdDbDatabase::addReactor(OdDbDatabaseReactor* reactor) {
    attach(m_data->events.reactors, reactor);
}
void OdDbDatabase::removeReactor(OdDbDatabaseReactor* reactor) {
    detach(m_data->events.reactors, reactor);
}
void OdDbDatabase::addTransactionReactor(OdDbTransactionReactor* reactor) {
    attach(m_data->events.transactionReactors, reactor);
}
void OdDbDatabase::removeTransactionReactor(OdDbTransactionReactor* reactor) {
    detach(m_data->events.transactionReactors, reactor);
}

void OdDbDatabase::startTransaction() {
    m_data->undo.startTransaction();
}

void OdDbDatabase::endTransaction() {
    lm::drawing::UndoLog& undo = m_data->undo;
    if (undo.transactions() == 0) return;
    std::exception_ptr first;
    if (undo.transactions() == 1) {
        try {
            m_data->pending.tellAll();
        } catch (...) {
            first = std::current_exception(); // the transaction ends all the same
        }
    }
    if (undo.endTransaction()) {
        try {
            m_data->events.tellTransaction(
                [this](OdDbTransactionReactor& reactor) { reactor.transactionEnded(this); });
        } catch (...) {
            if (!first) first = std::current_exception();
        }
    }
    if (first) std::rethrow_exception(first);
}

void OdDbDatabase::abortTransaction() {
    if (m_data->undo.transactions() != 0) m_data->undo.abortTransaction();
}

unsigned int OdDbDatabase::numActiveTransactions() const {
    return m_data->undo.transactions();
}

bool OdDbDatabase::isUndoRecording() const {
    return m_data->undo.isRecordingWanted();
}
void OdDbDatabase::setUndoRecording(bool recording) {
    m_data->undo.setRecording(recording);
}
bool OdDbDatabase::undo() {
    return m_data->undo.undo();
}
bool OdDbDatabase::redo() {
    return m_data->undo.redo();
}
unsigned int OdDbDatabase::redoSteps() const {
    return m_data->undo.redoSteps();
}
std::size_t OdDbDatabase::undoRecords() const {
    return m_data->undo.records();
}
unsigned long long OdDbDatabase::changeCount() const {
    return m_data->undo.changes();
}

bool OdDbDatabase::isUndoBlockStarted() const {
    return m_data->undo.isBlockOpen();
}

void OdDbDatabase::blockUndoRecording(bool begin) {
    m_data->undo.setBlock(begin);
}

void OdDbDatabase::startUndoRecord() {
    m_data->undo.mark();
}

unsigned int OdDbDatabase::undoMarks() const {
    return m_data->undo.marks();
}

OdString OdDbDatabase::getFilename() const {
    return m_data->fileName;
}
void OdDbDatabase::setFilename(const OdString& path) {
    m_data->fileName = path;
}
OdString OdDbDatabase::originalFileVersion() const {
    return lm::drawing::odText(m_data->version);
}
OdString OdDbDatabase::originalCodePage() const {
    return lm::drawing::odText(m_data->codePage);
}
unsigned int OdDbDatabase::silentRegistrations() const {
    return m_data->silentRegistrations;
}
const lm::drawing::Report& OdDbDatabase::report() const {
    return m_data->report;
}

namespace lm::drawing {

DatabaseData::DatabaseData(OdDbDatabase& db) : database(db), nodes(db), handles(db.m_handles), undo(*this) {}

DatabaseData::~DatabaseData() {
    pending.dropAll();
    identity->data = nullptr;
    // Objects that somebody still holds live on outside; what they need of the source is read now. After that
    // no id finds its object any more.
    std::vector<OdDbObject*> held;
    nodes.forEach([&held](Node& node) {
        if (node.body != nullptr && ObjectAccess::refs(*node.body) > 0) held.push_back(node.body);
    });
    for (OdDbObject* object : held) ObjectAccess::detachFromDatabase(*object);
    nodes.forgetDatabase();
    nodes.forEach([](Node& node) {
        if (node.body != nullptr && ObjectAccess::refs(*node.body) == 0) delete node.body;
        node.body = nullptr;
    });
}

std::uint64_t DatabaseData::freeHandle() {
    while (nextHandle == 0 || handles.find(nextHandle) != nullptr) ++nextHandle;
    return nextHandle++;
}

Node* DatabaseData::makeEntry(std::uint16_t kind) {
    Node* const node = nodes.make();
    node->kind = kind;
    node->flags = Node::kDirty;
    node->handle = freeHandle();
    handles.insert(node->handle, node);
    return node;
}

Node* DatabaseData::adopt(OdDbObject* body, std::uint16_t kind) {
    Node* const node = makeEntry(kind);
    node->body = body;
    ObjectAccess::setNode(*body, node);
    return node;
}

OdDbObject* DatabaseData::bodyOf(Node* node) {
    if (node->body == nullptr) readBody(*this, *node);
    return node->body;
}

Node* DatabaseData::tableRecord(Node* table, const OdString& name) const {
    if (table == nullptr) return nullptr;
    const auto* body = static_cast<OdDbSymbolTable*>(const_cast<DatabaseData*>(this)->bodyOf(table));
    Node* const found = ObjectAccess::findName(*body, name);
    return found != nullptr && !found->isErased() ? found : nullptr;
}

void registerApplication(DatabaseData& data, const OdString& name) {
    Node* const table = data.fixed.appTable;
    if (table == nullptr || name.isEmpty() || data.tableRecord(table, name) != nullptr) return;
    ++data.silentRegistrations;
    auto* record = new OdDbRegAppTableRecord();
    ObjectAccess::setName(*record, name);
    Node* const entry = data.adopt(record, kKindAppid);
    entry->flags |= Node::kTableRecord;
    data.undo.file(entry, UndoRecord::Append{table->lastPart, true});
    table->appendPart(entry);
    table->flags |= Node::kDirty;
    ObjectAccess::enterName(*static_cast<OdDbSymbolTable*>(data.bodyOf(table)), name, entry);
    ObjectAccess::setRefs(*record, 0);
}

} // namespace lm::drawing
