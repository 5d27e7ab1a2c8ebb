// SPDX-License-Identifier: MIT
// New content for blocks that are in use, and the end of blocks that aren't.
#include "arguments.h"
#include "cad/icad_detail.h"
#include "cad/icad_symbols.h"
#include "log.h"

#include "host/documentmanager.h"

#include <cstdlib>

namespace {

OdSmartPtr<OdDbSymbolTable> openBlockTable(const OdDbDatabase* db) {
    if (db == nullptr) return {};
    return OdSmartPtr<OdDbSymbolTable>(db->getBlockTableId().openObject());
}

OdSmartPtr<OdDbBlockTableRecord> openForWrite(OdDbObjectId block) {
    return OdSmartPtr<OdDbBlockTableRecord>(block.openObject(OdDb::kForWrite));
}

/// A name that no block of the current database has.
RZString freeName() {
    const OdSmartPtr<OdDbSymbolTable> table = openBlockTable(getDatabase());
    RZString name;
    do name = RZString("RZ_TMP_", RZString(std::rand(), 0));
    while (table->has(name));
    return name;
}

void eraseEntities(const OdDbBlockTableRecord& block) {
    const OdSmartPtr<OdDbObjectIterator> walk = block.newIterator();
    for (; !walk->done(); walk->step()) walk->objectId().openObject(OdDb::kForWrite)->erase(true);
}

/// Puts the entities of a temporary block in the place of a block's own, and erases the temporary block.
void takeContent(OdDbObjectId block, OdDbObjectId temporary) {
    const OdSmartPtr<OdDbBlockTableRecord> target = openForWrite(block);
    target->setOrigin(OdGePoint3d());
    eraseEntities(*target);
    const OdSmartPtr<OdDbBlockTableRecord> source = openForWrite(temporary);
    OdArray<OdDbObjectId> ids;
    const OdSmartPtr<OdDbObjectIterator> walk = source->newIterator();
    for (; !walk->done(); walk->step()) ids.append(walk->objectId());
    OdDbIdMapping mapping;
    mapping.setDestDb(getDatabase());
    getDatabase()->deepCloneObjects(ids, block, mapping, false);
    eraseEntities(*source);
    source->erase(true);
}

/// Gives a reference the attributes that its block defines now, with the values and the invisibility of those
/// that it had.
void renewAttributes(CICad& cad, OdDbObjectId block, const OdSmartPtr<OdDbBlockReference>& ref) {
    CEListaAtributos* read = nullptr;
    cad.SearchAttributes(ref, read, true, false, RZString());
    if (read == nullptr) return;
    const lm::cad::ListOwner before(read);
    for (long long i = 0; i < before->GetSize(); ++i)
        before->GetAt(i)->GetObjectId().openObject(OdDb::kForWrite)->erase(true);
    cad.CriarAtributos(block, ref);
    cad.AtualizarAtributos(ref, before.get(), true, nullptr);
}

void renewReferences(CICad& cad, OdDbObjectId block) {
    const OdArray<OdDbObjectId> ids =
        OdSmartPtr<OdDbBlockTableRecord>(block.openObject())->getBlockReferenceIds();
    for (const OdDbObjectId id : ids) {
        const OdSmartPtr<OdDbBlockReference> ref(id.openObject(OdDb::kForWrite));
        renewAttributes(cad, block, ref);
        // It shows something else now, and so counts as changed, whether or not it has attributes.
        ref->assertWriteEnabled(true, true);
        ref->recordGraphicsModified(true);
    }
}

} // namespace

bool CICad::RedefinirBloco(RZString arquivo, RZString nome) {
    return lm::log::guarded("CICad::RedefinirBloco", [&] {
        const OdSmartPtr<CHostDatabase> db = lm::cad::readSymbolFile(arquivo);
        return canInsert(db, nome, arquivo) && RedefinirBloco(db, nome);
    });
}

bool CICad::RedefinirBloco(OdSmartPtr<OdDbDatabase> db, RZString nome) {
    return lm::log::guarded("CICad::RedefinirBloco", [&] {
        RZID block;
        if (!ExisteBloco(nome, block, getDatabase()))
            return !db.isNull() && lm::cad::insertSymbol(nome, *db, nome).isValid();
        if (db.isNull()) return false;
        const lm::cad::KnownBlocks before(*getDatabase());
        const RZString temporary = freeName();
        // A call of its own for the log, in which the user's name for the block isn't lost.
        lm::log::guarded("CICad::RedefinirBloco", [&] { lm::cad::insertSymbol(temporary, *db, nome); });
        RZID content;
        if (!ExisteBloco(temporary, content, getDatabase())) return false;
        // Blocks inside a symbol are those of the drawing that bear their names, and so may show this one.
        if (lm::cad::shows(content, block)) {
            before.eraseOthers();
            lm::cad::tellOfCircle(nome, *db);
            return false;
        }
        takeContent(block, content);
        renewReferences(*this, block);
        return true;
    });
}

bool CICad::RedefinirBlocos(CEMap<RZString> blocos) {
    return lm::log::guarded("CICad::RedefinirBlocos", [&] {
        bool all = true;
        for (const auto& [path, name] : blocos) {
            const bool done = RedefinirBloco(RZString(lm::WideView(path)), name);
            all = all && done;
        }
        return all;
    });
}

void CICad::PurgeBlocks(OdSmartPtr<OdDbDatabase> db) {
    const OdSmartPtr<OdDbSymbolTable> table = openBlockTable(db);
    if (table.isNull()) return;
    OdArray<OdDbObjectId> ids;
    const OdSmartPtr<OdDbSymbolTableIterator> walk = table->newIterator();
    for (; !walk->done(); walk->step()) ids.append(walk->getRecordId());
    if (ids.isEmpty()) return;
    db->purge(ids);
    for (const OdDbObjectId id : ids) {
        const OdSmartPtr<OdDbObject> block = id.openObject(OdDb::kForWrite);
        if (!block.isNull()) block->erase(true);
    }
}

bool CICad::BuscarAtualizarMacros() {
    return GetVarBool("*MACRONASPAGINAS*", false, ACTIVE_DOCUMENT());
}
