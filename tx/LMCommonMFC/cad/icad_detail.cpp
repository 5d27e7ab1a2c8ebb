// SPDX-License-Identifier: MIT
#include "cad/icad_detail.h"

#include "arguments.h"
#include "vocabulary/names.h"

#include "host/database.h"

#include <algorithm>

namespace lm::cad {

/// Has the sight of a block's records.
struct BlockAccess {
    static const CEMap<CEAtributo*>& records(const CEBloco& block) { return block.m_atributos; }
};

void append(CEListaAtributos& list, std::unique_ptr<CEAtributo> record) {
    list.AdicionarAtributo(record.get());
    record.release();
}

void BlockDeleter::operator()(CEBloco* block) const {
    for (const auto& [tag, record] : BlockAccess::records(*block)) delete record;
    delete block;
}

BlockListOwner::~BlockListOwner() {
    if (m_blocks == nullptr) return;
    for (CEBloco* block : *m_blocks) BlockDeleter()(block);
}

void BlockListOwner::append(BlockOwner block) {
    if (m_blocks == nullptr) m_blocks = std::make_unique<std::list<CEBloco*>>();
    m_blocks->push_back(block.get());
    block.release();
}

BlockMapOwner::~BlockMapOwner() {
    if (m_blocks == nullptr) return;
    for (const auto& [key, block] : *m_blocks) BlockDeleter()(block);
}

void BlockMapOwner::make() {
    if (m_blocks == nullptr) m_blocks = std::make_unique<std::map<WideString, CEBloco*>>();
}

void BlockMapOwner::enter(BlockOwner block, const RZString& keyTag) {
    CEAtributo* const record = block->GetAtributo(keyTag);
    if (record == nullptr) return;
    const RZString value(record->GetValor()); // by the narrow route, like every text of the host
    CEBloco*& place = (*m_blocks)[value.str()];
    if (place != nullptr) BlockDeleter()(place);
    place = block.release();
}

void RecordEntry::enter(std::unique_ptr<CEAtributo> record) {
    CEAtributo* const before = m_block.GetAtributo(record->GetTag());
    m_made.push_back(record.get());
    m_block.AdicionarAtributo(record.get());
    record.release();
    if (before != nullptr && std::find(m_made.begin(), m_made.end(), before) != m_made.end()) delete before;
}

OdString trimmed(const OdString& text) {
    const WideView all = text.view();
    const WideView inner = system::trimmed(all);
    return inner.size() == all.size() ? text : OdString(inner);
}

OdSmartPtr<OdResBuf> recordAt(const OdSmartPtr<OdResBuf>& chain, int position) {
    if (position < 0) return {};
    OdSmartPtr<OdResBuf> record = chain;
    for (; position > 0 && !record.isNull(); --position) record = record->next();
    return record;
}

OdSmartPtr<OdDbBlockTableRecord> openModelSpace(OdDb::OpenMode mode) {
    const CHostDatabase* const db = getDatabase();
    if (db == nullptr) return {};
    return OdSmartPtr<OdDbBlockTableRecord>(db->getModelSpaceId().openObject(mode));
}

OdSmartPtr<OdDbDictionary> openVirtualSchematic() {
    const CHostDatabase* const db = getDatabase();
    if (db == nullptr) return {};
    const OdSmartPtr<OdDbDictionary> root(db->getNamedObjectsDictionaryId().openObject());
    if (root.isNull()) return {};
    return OdSmartPtr<OdDbDictionary>(root->getAt(names::ESQ_VIRTUAL_RZ, OdDb::kForRead));
}

OdSmartPtr<OdDbAttribute> attributeAt(const OdDbObjectIterator& walk, bool resident) {
    if (resident) return OdSmartPtr<OdDbAttribute>(walk.objectId().openObject());
    return OdSmartPtr<OdDbAttribute>(walk.entity());
}

} // namespace lm::cad
