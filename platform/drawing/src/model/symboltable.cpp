// SPDX-License-Identifier: MIT
#include "drawing/symboltable.h"

#include "base/rxclass.h"
#include "dxf/resolver.h"
#include "model/databasedata.h"
#include "model/iterators.h"
#include "model/names.h"

using lm::drawing::Node;
using lm::drawing::ObjectAccess;

LM_RX_DEFINE_ABSTRACT(OdDbSymbolTableIterator, OdRxObject)
LM_RX_DEFINE_ABSTRACT(OdDbSymbolTable, OdDbObject)
LM_RX_DEFINE_ABSTRACT(OdDbSymbolTableRecord, OdDbObject)
LM_RX_DEFINE(OdDbLayerTableRecord, OdDbSymbolTableRecord)
LM_RX_DEFINE(OdDbLinetypeTableRecord, OdDbSymbolTableRecord)
LM_RX_DEFINE(OdDbTextStyleTableRecord, OdDbSymbolTableRecord)
LM_RX_DEFINE(OdDbRegAppTableRecord, OdDbSymbolTableRecord)
LM_RX_DEFINE_ABSTRACT(OdDbAbstractViewTableRecord, OdDbSymbolTableRecord)
LM_RX_DEFINE(OdDbViewTableRecord, OdDbAbstractViewTableRecord)
LM_RX_DEFINE(OdDbViewportTableRecord, OdDbAbstractViewTableRecord)
LM_RX_DEFINE(OdDbUnreadTableRecord, OdDbSymbolTableRecord)
LM_RX_DEFINE(OdDbBlockTableRecord, OdDbSymbolTableRecord)

OdDbSymbolTableIterator::OdDbSymbolTableIterator(Node* table) : m_table(table) {
    start();
}

void OdDbSymbolTableIterator::start(bool, bool skipErased) {
    m_at = m_table->firstPart;
    skip(skipErased);
}

void OdDbSymbolTableIterator::step(bool, bool skipErased) {
    if (m_at == nullptr) return;
    m_at = m_at->next;
    skip(skipErased);
}

void OdDbSymbolTableIterator::skip(bool erased) {
    while (m_at != nullptr && erased && m_at->isErased()) m_at = m_at->next;
}

OdSmartPtr<OdDbSymbolTableRecord> OdDbSymbolTableIterator::getRecord(OdDb::OpenMode mode) const {
    return OdSmartPtr<OdDbSymbolTableRecord>(OdDbObjectId(m_at).openObject(mode, true));
}

/// Names of a table with their entries, the live one first where an erased record had the same name.
struct OdDbSymbolTable::Names {
    lm::drawing::NameMap map;
    std::unique_ptr<lm::drawing::FoldedNames> folded; ///< null before the first search without case
};

OdDbSymbolTable::OdDbSymbolTable() : m_names(std::make_unique<Names>()) {}
OdDbSymbolTable::~OdDbSymbolTable() = default;

OdDbSymbolTable& OdDbSymbolTable::operator=(const OdDbSymbolTable& other) {
    OdDbObject::operator=(
        other); // names belong to the table's place; the undo log has records of its own for them
    return *this;
}

OdDbObjectId OdDbSymbolTable::getAt(const OdString& name) const {
    Node* const found = m_names->map.find(name.view());
    return OdDbObjectId(found != nullptr && !found->isErased() ? found : nullptr);
}

OdSmartPtr<OdDbSymbolTableRecord> OdDbSymbolTable::getAt(const OdString& name, OdDb::OpenMode mode,
                                                         bool openErased) const {
    return OdSmartPtr<OdDbSymbolTableRecord>(
        OdDbObjectId(m_names->map.find(name.view())).openObject(mode, openErased));
}

OdDbObjectId OdDbSymbolTable::add(OdSmartPtr<OdDbSymbolTableRecord> record) {
    if (record->getName().isEmpty()) throw OdError(eInvalidKey);
    if (has(record->getName())) throw OdError(eDuplicateKey);
    if (record->isDBRO()) throw OdError(eAlreadyInDatabase);
    if (!isDBRO()) throw OdError(eNotInDatabase);
    if (!isWriteEnabled()) throw OdError(eNotOpenForWrite);
    Node* const table = objectId().node();
    Node* const entry = lm::drawing::makeResident(database()->data(), *record.get(),
                                                  lm::drawing::recordKind(*record.get()), table, true);
    entry->flags |= Node::kTableRecord;
    table->flags |= Node::kDirty;
    ObjectAccess::enterName(*this, record->getName(), entry);
    return OdDbObjectId(entry);
}

OdSmartPtr<OdDbSymbolTableIterator> OdDbSymbolTable::newIterator() const {
    if (!isDBRO()) throw OdError(eNotInDatabase);
    return OdSmartPtr<OdDbSymbolTableIterator>(new OdDbSymbolTableIterator(objectId().node()),
                                               lm::drawing::kAttach);
}

namespace lm::drawing {

std::uint16_t recordKind(const OdDbSymbolTableRecord& record) {
    if (record.isKindOf(OdDbLayerTableRecord::desc())) return kKindLayer;
    if (record.isKindOf(OdDbBlockTableRecord::desc())) return kKindBlockRecord;
    if (record.isKindOf(OdDbRegAppTableRecord::desc())) return kKindAppid;
    if (record.isKindOf(OdDbLinetypeTableRecord::desc())) return kKindLtype;
    if (record.isKindOf(OdDbTextStyleTableRecord::desc())) return kKindStyle;
    if (record.isKindOf(OdDbViewportTableRecord::desc())) return kKindVport;
    return record.isKindOf(OdDbViewTableRecord::desc()) ? kKindView : kKindNone;
}

namespace {

void fileName(const OdDbSymbolTable& table, const OdString& name, Node* before, Node* after) {
    table.database()->data().undo.file(table.objectId().node(), UndoRecord::Name{name, before, after});
}

} // namespace

void ObjectAccess::enterName(OdDbSymbolTable& table, const OdString& name, Node* node) {
    fileName(table, name, table.m_names->map.find(name.view()), node);
    setNamed(table, name, node);
}

void ObjectAccess::setNamed(OdDbSymbolTable& table, const OdString& name, Node* node) {
    if (node == nullptr) {
        table.m_names->map.remove(name.view());
        return;
    }
    table.m_names->map.set(name, node);
    if (table.m_names->folded != nullptr) table.m_names->folded->add(name.view(), node);
}

bool ObjectAccess::enterNewName(OdDbSymbolTable& table, const OdString& name, Node* node) {
    if (table.m_names->folded != nullptr) table.m_names->folded->add(name.view(), node);
    return table.m_names->map.add(name, node);
}

namespace {

const OdString* nameOf(DatabaseData& data, Node* node) {
    const auto* record = OdDbSymbolTableRecord::cast(data.bodyOf(node));
    return record != nullptr ? &record->getName() : nullptr;
}

} // namespace

Node* ObjectAccess::findFolded(const OdDbSymbolTable& table, WideView name) {
    DatabaseData& data = table.database()->data();
    Node* const first = table.objectId().node()->firstPart;
    std::unique_ptr<FoldedNames>& folded = table.m_names->folded;
    if (folded == nullptr) {
        auto made = std::make_unique<FoldedNames>();
        for (Node* node = first; node != nullptr; node = node->next)
            if (const OdString* const there = nameOf(data, node)) made->add(there->view(), node);
        folded = std::move(made);
    }
    // A record that was renamed or erased may still be told for a name that it had.
    const auto fits = [&](Node* node) {
        const OdString* const there = node->isLive() ? nameOf(data, node) : nullptr;
        return there != nullptr && system::equalsNoCase(there->view(), name);
    };
    Node* found = nullptr;
    for (Node* const node : folded->find(name)) {
        if (!fits(node)) continue;
        if (found != nullptr) { // the first in drawing order, which the index doesn't know
            for (found = first; !fits(found);) found = found->next;
            return found;
        }
        found = node;
    }
    return found;
}

void ObjectAccess::expectNames(OdDbSymbolTable& table, std::size_t names) {
    table.m_names->map.expect(names);
}

void ObjectAccess::leaveName(OdDbSymbolTable& table, const OdString& name, Node* node) {
    if (table.m_names->map.find(name.view()) != node) return;
    fileName(table, name, node, nullptr);
    table.m_names->map.remove(name.view());
}

Node* ObjectAccess::findName(const OdDbSymbolTable& table, const OdString& name) {
    return table.m_names->map.find(name.view());
}

} // namespace lm::drawing

void OdDbSymbolTableRecord::setName(const OdString& name) {
    if (name.isEmpty()) throw OdError(eInvalidKey);
    OdDbSymbolTable* table = nullptr;
    if (isDBRO()) {
        table = static_cast<OdDbSymbolTable*>(database()->data().bodyOf(objectId().node()->owner));
        const OdDbObjectId there = table->getAt(name);
        if (!there.isNull() && there != objectId()) throw OdError(eDuplicateKey);
    }
    beginChange();
    if (table != nullptr) {
        // Entities that nobody opened yet still name the record as the file does.
        if (const auto& resolver = database()->data().resolver) resolver->keepName(*objectId().node());
        ObjectAccess::leaveName(*table, m_name, objectId().node());
        ObjectAccess::enterName(*table, name, objectId().node());
    }
    m_name = name;
}

OdResult OdDbSymbolTableRecord::erase(bool erasing) {
    if (isDBRO() && !erasing && isErased()) {
        if (!isWriteEnabled()) throw OdError(eNotOpenForWrite); // before the names of the table change
        auto* table = static_cast<OdDbSymbolTable*>(database()->data().bodyOf(objectId().node()->owner));
        const OdDbObjectId there = table->getAt(m_name);
        if (!there.isNull() && there != objectId()) return eDuplicateKey;
        ObjectAccess::enterName(*table, m_name, objectId().node());
    }
    return OdDbObject::erase(erasing);
}

void OdDbLayerTableRecord::setName(const OdString& name) {
    if (isDBRO() && objectId() == database()->getLayerZeroId()) throw OdError(eInvalidKey);
    OdDbSymbolTableRecord::setName(name);
}

void OdDbLayerTableRecord::setIsFrozen(bool frozen) {
    beginChange();
    m_recordFlags = static_cast<short>(frozen ? m_recordFlags | 1 : m_recordFlags & ~1);
}

void OdDbLayerTableRecord::setIsLocked(bool locked) {
    beginChange();
    m_recordFlags = static_cast<short>(locked ? m_recordFlags | 4 : m_recordFlags & ~4);
}

void OdDbLayerTableRecord::setIsOff(bool off) {
    beginChange();
    m_off = off;
}

void OdDbLayerTableRecord::setColor(const OdCmColor& color) {
    beginChange();
    m_color = color;
}

void OdDbLayerTableRecord::setLinetypeObjectId(OdDbObjectId id) {
    beginChange();
    m_linetype = id;
}

namespace {

bool standsOnLayer(Node* entity, OdDbObjectId layer) {
    if (!entity->isErased()) {
        const auto* body = OdDbEntity::cast(entity->database()->data().bodyOf(entity));
        if (body != nullptr && body->layerId() == layer) return true;
    }
    for (Node* part = entity->firstPart; part != nullptr; part = part->next)
        if (!entity->isErased() && standsOnLayer(part, layer)) return true;
    return false;
}

bool isLayerUsed(OdDbDatabase& db, OdDbObjectId layer) {
    Node* const blocks = db.data().fixed.blockTable;
    if (blocks == nullptr) return false;
    for (Node* block = blocks->firstPart; block != nullptr; block = block->next) {
        if (block->isErased()) continue;
        for (Node* entity = block->firstPart; entity != nullptr; entity = entity->next)
            if (standsOnLayer(entity, layer)) return true;
    }
    return false;
}

} // namespace

OdResult OdDbLayerTableRecord::erase(bool erasing) {
    if (erasing && isDBRO() && !isErased()) {
        OdDbDatabase& db = *database();
        if (objectId() == db.getLayerZeroId() || objectId() == db.getCLAYER()) return eCannotBeErased;
        if (isLayerUsed(db, objectId())) return eCannotBeErased;
    }
    return OdDbSymbolTableRecord::erase(erasing);
}

void OdDbAbstractViewTableRecord::setCenterPoint(const OdGePoint2d& point) {
    beginChange();
    m_center = point;
}

void OdDbAbstractViewTableRecord::setHeight(double height) {
    beginChange();
    m_height = height;
}

void OdDbAbstractViewTableRecord::setWidth(double width) {
    beginChange();
    m_width = width;
}

OdDbBlockTableRecord::OdDbBlockTableRecord() = default;
OdDbBlockTableRecord::~OdDbBlockTableRecord() = default;
OdDbBlockTableRecord::OdDbBlockTableRecord(const OdDbBlockTableRecord& other)
    : OdDbSymbolTableRecord(other), m_origin(other.m_origin) {}

OdDbBlockTableRecord& OdDbBlockTableRecord::operator=(const OdDbBlockTableRecord& other) {
    OdDbSymbolTableRecord::operator=(other);
    m_origin = other.m_origin; // the list of references belongs to the place and not to the fields
    return *this;
}

void OdDbBlockTableRecord::setOrigin(const OdGePoint3d& origin) {
    beginChange();
    m_origin = origin;
}

bool OdDbBlockTableRecord::isLayout() const {
    return lm::drawing::isLayoutName(getName().view());
}

bool OdDbBlockTableRecord::isAnonymous() const {
    return !getName().isEmpty() && getName().view().front() == '*' && !isLayout();
}

OdSmartPtr<OdDbObjectIterator> OdDbBlockTableRecord::newIterator(bool atBeginning, bool skipErased) const {
    if (!isDBRO()) throw OdError(eNotInDatabase);
    OdSmartPtr<OdDbObjectIterator> walk = lm::drawing::partsOf(objectId().node());
    if (!skipErased) walk->start(atBeginning, false);
    return walk;
}

OdDbObjectId OdDbBlockTableRecord::appendOdDbEntity(OdSmartPtr<OdDbEntity> entity) {
    if (!isDBRO()) throw OdError(eNotInDatabase);
    if (entity->isDBRO()) throw OdError(eAlreadyInDatabase);
    assertWriteEnabled(false, false);
    Node* const node = objectId().node();
    node->flags |= Node::kDirty;
    Node* const entry = lm::drawing::makeResident(database()->data(), *entity.get(),
                                                  lm::drawing::entityKind(*entity.get()), node, true);
    entry->flags |= Node::kEntity;
    return OdDbObjectId(entry);
}

OdArray<OdDbObjectId> OdDbBlockTableRecord::getBlockReferenceIds(bool) const {
    OdArray<OdDbObjectId> ids;
    ids.reserve(static_cast<unsigned int>(m_references.size()));
    for (Node* const reference : m_references)
        if (reference->isLive()) ids.append(OdDbObjectId(reference));
    return ids;
}

OdResult OdDbBlockTableRecord::erase(bool erasing) {
    if (erasing && isDBRO()) {
        // By the entry as well as by the name, which may have been changed.
        const OdDbObjectId id = objectId();
        if (isLayout() || id == database()->getModelSpaceId() || id == database()->getPaperSpaceId())
            return eCannotBeErased;
    }
    return OdDbSymbolTableRecord::erase(erasing);
}
