// SPDX-License-Identifier: MIT
// Symbol files: which drawings may become blocks, how they become blocks, and how a drawing is brought to the
// state of one.
#include "cad/icad_symbols.h"

#include "arguments.h"
#include "cad/icad_detail.h"
#include "log.h"
#include "rzprintf.h"

#include "host/services.h"

#include <QCoreApplication>

#include <algorithm>
#include <map>
#include <set>
#include <vector>

using lm::cad::openModelSpace;

namespace {

OdSmartPtr<OdDbBlockTableRecord> openModelSpaceOf(const OdDbDatabase& db,
                                                  OdDb::OpenMode mode = OdDb::kForRead) {
    return OdSmartPtr<OdDbBlockTableRecord>(db.getModelSpaceId().openObject(mode));
}

/// Moves the entities of a block so that its origin becomes (0, 0, 0). False when one can't be moved: the
/// block is torn then, and of no use.
bool moveOriginToZero(OdDbBlockTableRecord& block) {
    const bool stays = block.origin() == OdGePoint3d();
    const OdGeMatrix3d shift = OdGeMatrix3d::translation(-block.origin().asVector());
    const OdSmartPtr<OdDbObjectIterator> walk = block.newIterator();
    for (; !walk->done(); walk->step()) {
        const OdSmartPtr<OdDbEntity> entity(walk->objectId().openObject(OdDb::kForWrite));
        if (entity->transformBy(shift) != eOk && !stays) return false;
    }
    block.setOrigin(OdGePoint3d());
    return true;
}

/// The blocks that a block shows itself, one for each live reference.
std::vector<OdDbObjectId> shownIn(OdDbObjectId block) {
    const OdSmartPtr<OdDbBlockTableRecord> record(block.openObject());
    std::vector<OdDbObjectId> ids;
    if (record.isNull()) return ids;
    const OdSmartPtr<OdDbObjectIterator> walk = record->newIterator();
    for (; !walk->done(); walk->step()) {
        const OdSmartPtr<OdDbEntity> entity = walk->entity();
        if (const auto* const ref = OdDbBlockReference::cast(entity.get()))
            ids.push_back(ref->blockTableRecord());
    }
    return ids;
}

/// Whether a new block, or a new one in it, contains itself: what the drawing had before can't contain what
/// came now. With a stack of its own, as blocks nest as deep as they like.
bool containsItself(OdDbObjectId block, const lm::cad::KnownBlocks& before) {
    struct Step {
        OdDbObjectId block;
        std::vector<OdDbObjectId> due;
    };
    std::map<OdDbObjectId, bool> isOpen{{block, true}};
    std::vector<Step> path;
    path.push_back({block, shownIn(block)});
    while (!path.empty()) {
        Step& top = path.back();
        if (top.due.empty()) {
            isOpen[top.block] = false;
            path.pop_back();
            continue;
        }
        const OdDbObjectId inner = top.due.back();
        top.due.pop_back();
        const auto [place, isNew] = isOpen.try_emplace(inner, true);
        if (!isNew && place->second) return true;
        if (!isNew) continue;
        if (before.has(inner))
            place->second = false;
        else
            path.push_back({inner, shownIn(inner)});
    }
    return false;
}

/// Whether model space holds a reference to anything but an anonymous block.
bool holdsNamedBlocks(const OdDbDatabase& db) {
    const OdSmartPtr<OdDbBlockTableRecord> space = openModelSpaceOf(db);
    if (space.isNull()) return false;
    const OdSmartPtr<OdDbObjectIterator> walk = space->newIterator();
    for (; !walk->done(); walk->step()) {
        const OdSmartPtr<OdDbEntity> entity = walk->entity();
        const OdDbBlockReference* const ref = OdDbBlockReference::cast(entity.get());
        if (ref == nullptr) continue;
        const OdSmartPtr<OdDbBlockTableRecord> block(ref->blockTableRecord().openObject());
        if (block.isNull() || !block->isAnonymous()) return true;
    }
    return false;
}

constexpr char kManyLayers[] = "Invalid block error - Block with multiple layers: ",
               kBlocksInside[] = "Invalid block error - Block containing blocks: ";

void tellRefusal(const char* message, const RZString& name, RZString& path) {
    // Paths are put together from parts that may each bring a separator.
    path.replace("\\\\", "\\");
    path.replace("//", "/");
    rzPrintf("\n%s%s = %s\n", RZString(QCoreApplication::translate("RZINC", message)), name, path);
}

} // namespace

lm::cad::KnownBlocks::KnownBlocks(const OdDbDatabase& db) : m_db(db), m_ids(blocksOf(db)) {
    std::sort(m_ids.begin(), m_ids.end());
}

std::vector<OdDbObjectId> lm::cad::KnownBlocks::blocksOf(const OdDbDatabase& db) {
    const OdSmartPtr<OdDbSymbolTable> table(db.getBlockTableId().openObject());
    std::vector<OdDbObjectId> ids;
    if (table.isNull()) return ids;
    const OdSmartPtr<OdDbSymbolTableIterator> walk = table->newIterator();
    for (; !walk->done(); walk->step()) ids.push_back(walk->getRecordId());
    return ids;
}

bool lm::cad::KnownBlocks::has(OdDbObjectId block) const {
    return std::binary_search(m_ids.begin(), m_ids.end(), block);
}

void lm::cad::KnownBlocks::eraseOthers() const {
    std::vector<OdDbObjectId> added;
    for (const OdDbObjectId id : blocksOf(m_db))
        if (!has(id)) added.push_back(id);
    // All references first: a block that is in use isn't given up.
    for (const OdDbObjectId id : added) {
        const OdSmartPtr<OdDbBlockTableRecord> block(id.openObject());
        const OdSmartPtr<OdDbObjectIterator> walk = block->newIterator();
        for (; !walk->done(); walk->step()) walk->objectId().openObject(OdDb::kForWrite)->erase(true);
    }
    for (const OdDbObjectId id : added) id.openObject(OdDb::kForWrite)->erase(true);
}

bool lm::cad::shows(OdDbObjectId outer, OdDbObjectId inner) {
    std::set<OdDbObjectId> seen{outer};
    std::vector<OdDbObjectId> due{outer};
    while (!due.empty()) {
        const OdDbObjectId block = due.back();
        due.pop_back();
        for (const OdDbObjectId id : shownIn(block)) {
            if (id == inner) return true;
            if (seen.insert(id).second) due.push_back(id);
        }
    }
    return false;
}

void lm::cad::tellOfCircle(const RZString& name, const OdDbDatabase& source) {
    RZString path(source.getFilename());
    tellRefusal(kBlocksInside, name, path);
}

OdSmartPtr<CHostDatabase> lm::cad::readSymbolFile(const RZString& path) {
    CHostSystemServices* const services = GetHostSystemServices();
    if (services == nullptr) return {};
    constexpr bool kConvertCodePage = true, kPartialLoad = false;
    constexpr int kShared = 64;
    return services->readFile(path, kConvertCodePage, kPartialLoad, kShared, OdString());
}

OdDbObjectId lm::cad::insertSymbol(const RZString& name, OdDbDatabase& source, const RZString& told) {
    CHostDatabase* const db = getDatabase();
    if (db == nullptr) return OdDbObjectId::kNull;
    const KnownBlocks before(*db);
    const OdDbObjectId id = db->insert(name, &source, true);
    if (!id.isValid()) return OdDbObjectId::kNull;
    if (containsItself(id, before)) {
        before.eraseOthers();
        tellOfCircle(told, source);
        return OdDbObjectId::kNull;
    }
    if (moveOriginToZero(*OdSmartPtr<OdDbBlockTableRecord>(id.openObject(OdDb::kForWrite)))) return id;
    before.eraseOthers();
    const CHostString why("the symbol holds an entity that can't be moved to its origin");
    throw OdError(eNotApplicable, OdString(why.view()));
}

bool CICad::canInsert(OdSmartPtr<OdDbDatabase> db, RZString nome, RZString caminho) {
    return lm::log::guarded("CICad::canInsert", [&] {
        if (db.isNull()) return false;
        if (GetLayers(db).count() > 1) {
            tellRefusal(kManyLayers, nome, caminho);
            return false;
        }
        if (holdsNamedBlocks(*db)) {
            tellRefusal(kBlocksInside, nome, caminho);
            return false;
        }
        return true;
    });
}

RZID CICad::carregaBTR(RZString nome, RZString arquivo) {
    if (!FileExists(arquivo)) return RZID();
    const OdSmartPtr<CHostDatabase> db = lm::cad::readSymbolFile(arquivo);
    if (!canInsert(db, nome, arquivo)) return RZID();
    return lm::cad::insertSymbol(nome, *db, nome);
}

int CICad::SearchAttributes(RZString arquivo, RZString nome, CEListaAtributos*& lista) {
    return lm::log::guarded("CICad::SearchAttributes", [&] {
        RZID id;
        if (!ExisteBloco(nome, id, getDatabase())) id = carregaBTR(nome, arquivo);
        if (!id.isValid() || getDatabase() == nullptr) return 2;
        return SearchAttributes(OdSmartPtr<OdDbBlockTableRecord>(id.openObject()), lista);
    });
}

namespace {

constexpr int kSoftPointer = 330;

void makeCurrent(OdDbDatabase& db, OdDbObjectId layer) {
    const OdSmartPtr<OdResBuf> value = OdResBuf::newRb(kSoftPointer);
    value->setObjectId(layer);
    db.setSysVar("CLAYER", value);
}

void setAttributeLayers(CICad& cad, OdDbBlockReference& ref, OdDbObjectId layer) {
    CEListaAtributos* read = nullptr;
    cad.SearchAttributes(OdSmartPtr<OdDbBlockReference>(&ref), read, false, false, RZString());
    if (read == nullptr) return;
    const lm::cad::ListOwner list(read);
    for (long long i = 0; i < list->GetSize(); ++i) {
        const OdDbObjectId id = list->GetAt(i)->GetObjectId();
        OdSmartPtr<OdDbEntity>(id.openObject(OdDb::kForWrite))->setLayer(layer);
    }
}

void moveEntitiesTo(CICad& cad, const OdDbDatabase& db, OdDbObjectId layer) {
    const OdSmartPtr<OdDbBlockTableRecord> space = openModelSpaceOf(db, OdDb::kForWrite);
    if (space.isNull()) return;
    const OdSmartPtr<OdDbObjectIterator> walk = space->newIterator();
    for (; !walk->done(); walk->step()) {
        const OdSmartPtr<OdDbEntity> entity(walk->objectId().openObject(OdDb::kForWrite));
        entity->setLayer(layer);
        if (OdDbBlockReference* const ref = OdDbBlockReference::cast(entity.get()))
            setAttributeLayers(cad, *ref, layer);
    }
}

} // namespace

void CICad::tudoParaLayerZero(OdSmartPtr<CHostDatabase> db) {
    lm::log::guarded("CICad::tudoParaLayerZero", [&] {
        // Not in `db`: what is shown, and so thawed, is the drawing that work goes to.
        DescongelaLayer("0", getDatabase());
        const OdDbObjectId zero = db->getLayerZeroId();
        makeCurrent(*db, zero);
        moveEntitiesTo(*this, *db, zero);
        const OdSmartPtr<OdDbSymbolTable> table(db->getLayerTableId().openObject());
        if (table.isNull()) return;
        const OdSmartPtr<OdDbSymbolTableIterator> walk = table->newIterator();
        // The drawing refuses to give up those that it needs, and these are to stay.
        for (; !walk->done(); walk->step()) walk->getRecord(OdDb::kForWrite)->erase(true);
    });
}
