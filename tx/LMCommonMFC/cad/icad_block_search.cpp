// SPDX-License-Identifier: MIT
// Finding blocks: by name, layer, pattern and the value of an attribute.
#include "arguments.h"
#include "cad/icad_detail.h"
#include "log.h"
#include "vocabulary/names.h"

#include "drawing/wildcard.h"
#include "host/database.h"

using lm::cad::BlockOwner;

namespace {

OdSmartPtr<OdDbSymbolTable> openBlockTable(const OdDbDatabase* db) {
    if (db == nullptr) return {};
    return OdSmartPtr<OdDbSymbolTable>(db->getBlockTableId().openObject());
}

bool isInModelSpace(const OdDbEntity& entity) {
    return !entity.ownerId().isNull() && entity.ownerId() == getDatabase()->getModelSpaceId();
}

/// Walks the references of the blocks whose name matches a pattern, in table order, until `visit` answers
/// false. Costs the table and the references, never model space.
template<class Visit>
void forEachReference(const OdString& pattern, Visit&& visit) {
    const OdSmartPtr<OdDbSymbolTable> table = openBlockTable(getDatabase());
    if (table.isNull()) return;
    const OdSmartPtr<OdDbSymbolTableIterator> walk = table->newIterator();
    for (; !walk->done(); walk->step()) {
        const OdSmartPtr<OdDbBlockTableRecord> block(walk->getRecord());
        if (!odutWcMatch(block->getName(), pattern)) continue;
        const OdArray<OdDbObjectId> ids = block->getBlockReferenceIds();
        for (const OdDbObjectId id : ids)
            if (!visit(id.openObject())) return;
    }
}

/// Walks the references of model space in drawing order.
template<class Visit>
void forEachInModelSpace(Visit&& visit) {
    const OdSmartPtr<OdDbBlockTableRecord> space = lm::cad::openModelSpace();
    if (space.isNull()) return;
    const OdSmartPtr<OdDbObjectIterator> walk = space->newIterator();
    for (; !walk->done(); walk->step()) {
        const OdSmartPtr<OdDbEntity> entity = walk->entity();
        if (OdDbBlockReference* const ref = OdDbBlockReference::cast(entity.get())) visit(*ref);
    }
}

/// A block record with the raw texts of a reference.
BlockOwner readBlock(CICad& cad, OdDbBlockReference& ref) {
    const OdSmartPtr<OdDbBlockReference> held(&ref);
    BlockOwner block(new CEBloco(cad.GetNomeBloco(held)));
    cad.SearchAttributes(held, block.get());
    block->SetObjectId(ref.objectId());
    return block;
}

/// References in model space of all blocks whose name begins as `name`.
template<class Take>
void forEachByPrefix(CICad& cad, const RZString& name, Take&& take) {
    forEachReference(name + "*", [&](const OdSmartPtr<OdDbObject>& object) {
        OdDbBlockReference* const ref = OdDbBlockReference::cast(object.get());
        if (ref != nullptr && isInModelSpace(*ref)) take(readBlock(cad, *ref));
        return true;
    });
}

} // namespace

OdSmartPtr<OdDbBlockReference> CICad::BuscarBloco(RZString nome, RZString layer) {
    const OdSmartPtr<OdDbSymbolTable> table = openBlockTable(getDatabase());
    if (table.isNull()) return {};
    const OdSmartPtr<OdDbBlockTableRecord> block(table->getAt(nome, OdDb::kForRead));
    if (block.isNull()) return {};
    const OdArray<OdDbObjectId> ids = block->getBlockReferenceIds();
    for (const OdDbObjectId id : ids) {
        const OdSmartPtr<OdDbEntity> entity(id.openObject());
        if (!entity.isNull() && layer == entity->layer() && isInModelSpace(*entity))
            return OdSmartPtr<OdDbBlockReference>(entity);
    }
    return {};
}

std::list<CEBloco*>* CICad::BuscarBlocos(RZString nome) {
    lm::cad::BlockListOwner blocks;
    forEachByPrefix(*this, nome, [&](BlockOwner block) { blocks.append(std::move(block)); });
    return blocks.release();
}

std::map<lm::WideString, CEBloco*>* CICad::BuscarBlocos(RZString nome, RZString tagChave) {
    lm::cad::BlockMapOwner blocks;
    forEachByPrefix(*this, nome, [&](BlockOwner block) {
        blocks.make();
        blocks.enter(std::move(block), tagChave);
    });
    return blocks.release();
}

std::list<CEBloco*>* CICad::BuscarBlocos2(RZString nomes) {
    lm::cad::BlockListOwner blocks;
    std::vector<OdString> patterns;
    for (const RZString& item : nomes.split(';')) patterns.push_back(item);
    forEachInModelSpace([&](OdDbBlockReference& ref) {
        const OdString name = GetNomeBloco(OdSmartPtr<OdDbBlockReference>(&ref));
        // A block that matches two items stands twice in the result, as two records.
        for (const OdString& pattern : patterns)
            if (odutWcMatch(name, pattern) && isInModelSpace(ref)) blocks.append(readBlock(*this, ref));
    });
    return blocks.release();
}

namespace {

/// The attributes of a reference with trimmed texts; null for one without a walk.
lm::cad::ListOwner readList(CICad& cad, const OdSmartPtr<OdDbBlockReference>& ref, bool withPrompts) {
    CEListaAtributos* read = nullptr;
    cad.SearchAttributes(ref, read, withPrompts, false, RZString());
    return lm::cad::ListOwner(read);
}

/// Whether a record of a list has the tag, ignoring case, and the value.
bool holds(const CEListaAtributos& list, const RZString& tag, const RZString& value) {
    for (long long i = 0; i < list.GetSize(); ++i) {
        const CEAtributo& record = *list.GetAt(i);
        if (tag.matchesNoCase(record.GetTag().view()) &&
            lm::system::wideEquals(record.GetValor().view(), value.view()))
            return true;
    }
    return false;
}

void moveRecords(CEListaAtributos& list, CEBloco& block) {
    lm::cad::RecordEntry records(block);
    for (long long i = 0; i < list.GetSize(); ++i) {
        std::unique_ptr<CEAtributo> record(list.GetAt(i));
        list.SetAt(i, nullptr);
        records.enter(std::move(record));
    }
}

} // namespace

std::list<CEBloco*>* CICad::BuscarBlocos3(RZString tag, RZString valor) {
    lm::cad::BlockListOwner blocks;
    forEachInModelSpace([&](OdDbBlockReference& ref) {
        const OdSmartPtr<OdDbBlockReference> held(&ref);
        const CHostString name = GetNomeBloco(held);
        // Prompts cost a walk over the block, and most references don't match.
        lm::cad::ListOwner list = readList(*this, held, false);
        if (list == nullptr || !isInModelSpace(ref) || !holds(*list, tag, valor)) return;
        list = readList(*this, held, true);
        BlockOwner block(new CEBloco(name));
        moveRecords(*list, *block);
        block->SetObjectId(ref.objectId());
        blocks.append(std::move(block));
    });
    return blocks.release();
}

CHostString CICad::GetNomeBloco(OdSmartPtr<OdDbBlockReference> ref) {
    return lm::log::guarded("CICad::GetNomeBloco", [&]() -> CHostString {
        if (ref.isNull()) return CHostString();
        const OdSmartPtr<OdDbBlockTableRecord> block(ref->blockTableRecord().openObject());
        return block.isNull() ? CHostString() : CHostString(block->getName());
    });
}

bool CICad::ExisteBloco(RZString nome, RZID& id, OdSmartPtr<OdDbDatabase> db) {
    return lm::log::guarded("CICad::ExisteBloco", [&] {
        const OdSmartPtr<OdDbSymbolTable> table = openBlockTable(db.get());
        id = table.isNull() ? RZID() : RZID(table->getAt(nome));
        return id.isValid();
    });
}

bool CICad::ExisteBloco(RZString nome, RZID& id, RZStringList* layers) {
    return lm::log::guarded("CICad::ExisteBloco", [&] {
        bool found = false;
        if (layers == nullptr) return found;
        forEachReference(nome, [&](const OdSmartPtr<OdDbObject>& object) {
            const OdSmartPtr<OdDbEntity> entity(object);
            found = !entity.isNull() && layers->contains(RZString(entity->layer()));
            if (found) id = entity->objectId();
            return !found;
        });
        return found;
    });
}

bool CICad::ExisteBloco(RZString nome, RZID& id, RZString layer) {
    return lm::log::guarded("CICad::ExisteBloco", [&] {
        RZStringList layers{layer};
        return ExisteBloco(nome, id, &layers);
    });
}

bool CICad::isNoEsqVirtual(RZString tag) {
    const OdSmartPtr<OdDbDictionary> dictionary = lm::cad::openVirtualSchematic();
    if (dictionary.isNull()) return false;
    const OdSmartPtr<OdDbDictionaryIterator> entry = dictionary->newIterator();
    for (; !entry->done(); entry->next()) {
        CEListaAtributos* read = nullptr;
        if (SearchAttributesVirtual(RZID(entry->objectId()), read) != 0) continue;
        const lm::cad::ListOwner list(read);
        CEAtributo* const record = list->GetAtributoTag();
        if (record != nullptr && tag.matchesNoCase(record->GetValor().view())) return true;
    }
    return false;
}

RZStringList CICad::MontarLstBlocosNaoSimbolos() {
    // The ninth adds nothing to the eighth, but callers can read the list.
    return RZStringList{"BLK_CTR_",     "FORMATO_",      "SELO_",        "IDENTIFY_",     "PAGINA_",
                        "DE_",          "*Model_Space",  "*Paper_Space", "*Paper_Space0", lm::names::NA_,
                        lm::names::NF_, lm::names::NAF_, lm::names::BT_};
}

bool CICad::IsBlocoNaoSimbolo(RZString nome) {
    return IsBlocoNaoSimbolo(nome, MontarLstBlocosNaoSimbolos());
}

bool CICad::IsBlocoNaoSimbolo(RZString nome, RZStringList lista) {
    return lista.startsWithAnyNoCase(nome);
}
