// SPDX-License-Identifier: MIT
// Deep clones inside one database.
#include "model/cloner.h"

#include "drawing/deepclone.h"

namespace lm::drawing {

namespace {

/// What can be cloned below an owner.
enum class Place { kBlock, kReference, kTable, kDictionary };

Place placeOf(const OdDbObject& owner) {
    if (owner.isKindOf(OdDbBlockTableRecord::desc())) return Place::kBlock;
    if (owner.isKindOf(OdDbBlockReference::desc())) return Place::kReference;
    if (owner.isKindOf(OdDbSymbolTable::desc())) return Place::kTable;
    if (owner.isKindOf(OdDbDictionary::desc())) return Place::kDictionary;
    throw OdError(eInvalidInput, odText("nothing can be cloned below an object of this class"));
}

bool fits(const DatabaseData& data, const Node& source, const Node& owner, Place place) {
    switch (place) {
    case Place::kBlock: // vertices and attributes stand below an entity and not in a block
        return source.has(Node::kEntity) && source.owner != nullptr && source.owner->has(Node::kTableRecord);
    case Place::kReference:
        return source.kind == kKindAttrib && source.has(Node::kEntity);
    case Place::kTable:
        return source.has(Node::kTableRecord) && source.owner == &owner;
    case Place::kDictionary:
        return !source.has(Node::kEntity) && !source.has(Node::kTableRecord) && source.kind != kKindTable &&
               source.kind != kKindBlock && source.kind != kKindEndblk && &source != data.fixed.dictionary;
    }
    return false;
}

/// The name that an object has in the dictionary that it stands in; a name of its own where it stands in
/// none.
OdString entryName(DatabaseData& data, const Node& source) {
    if (source.owner != nullptr)
        if (const auto* owner = OdDbDictionary::cast(data.bodyOf(source.owner)))
            for (const auto walk = owner->newIterator(); !walk->done(); walk->next())
                if (walk->objectId().node() == &source) return walk->name();
    return odText("OBJECT");
}

OdString freeEntryName(const OdDbDictionary& dictionary, const OdString& name) {
    OdString wanted = name;
    for (unsigned number = 1; dictionary.has(wanted); ++number)
        wanted = name + odText("_" + std::to_string(number));
    return wanted;
}

/// The live objects of an array that fit below an owner. Raises OdError when one doesn't.
std::vector<Node*> checkedSources(DatabaseData& data, const OdArray<OdDbObjectId>& ids, const Node& owner,
                                  Place place) {
    std::vector<Node*> sources;
    sources.reserve(ids.size());
    for (const OdDbObjectId id : ids) {
        if (id.isNull()) continue;
        if (id.database() != &data.database)
            throw OdError(eInvalidInput, odText("an object of another drawing can't be cloned"));
        if (!id.isValid() || id.isErased()) continue;
        if (!fits(data, *id.node(), owner, place))
            throw OdError(eInvalidInput, odText("an object can't be cloned below this owner"));
        sources.push_back(id.node());
    }
    return sources;
}

void cloneOne(DatabaseData& data, Cloner& cloner, Node& source, OdDbObject& owner, Place place) {
    switch (place) {
    case Place::kBlock:
        return cloner.entity(source, static_cast<OdDbBlockTableRecord&>(owner));
    case Place::kReference:
        return cloner.attribute(source, static_cast<OdDbBlockReference&>(owner));
    case Place::kTable: {
        Node& table = *owner.objectId().node();
        const auto& record = static_cast<OdDbSymbolTableRecord&>(*data.bodyOf(&source));
        cloner.record(source, table, freeRecordName(data, table, record.getName()));
        return;
    }
    case Place::kDictionary: {
        auto& dictionary = static_cast<OdDbDictionary&>(owner);
        const OdString name = freeEntryName(dictionary, entryName(data, source));
        dictionary.setAt(name, cloner.object(source, owner.objectId()));
        return;
    }
    }
}

/// Makes the clones; they wait in the cloner for their closing.
void makeClones(Cloner& cloner, DatabaseData& data, const OdArray<OdDbObjectId>& ids, OdDbObjectId owner,
                OdDbIdMapping& mapping) {
    OdDbDatabase& database = data.database;
    if (!owner.isValid() || owner.database() != &database) throw OdError(eInvalidInput);
    if (!owner.node()->isLive()) throw OdError(eWasErased);
    OdDbObject& body = *data.bodyOf(owner.node());
    const Place place = placeOf(body);
    const std::vector<Node*> sources = checkedSources(data, ids, *owner.node(), place);
    mapping.setDestDb(&database);
    std::size_t clones = mapping.pairs().size() + sources.size();
    for (const Node* source : sources)
        for (const Node* part = source->firstPart; part != nullptr; part = part->next) ++clones;
    // A mapping that grows by a few pairs at a time grows by itself.
    if (clones > 2 * mapping.pairs().size()) mapping.reserve(clones);
    const std::uint64_t firstNew = data.nextHandle;
    const OpenForWrite open(&body);
    for (Node* source : sources) {
        OdDbIdPair pair{OdDbObjectId(source)};
        // An id that stands in the array twice is cloned once.
        if (mapping.compute(pair) && pair.value().database() == &database &&
            pair.value().node()->handle >= firstNew)
            continue;
        cloneOne(data, cloner, *source, body, place);
    }
}

} // namespace

void deepCloneChanged(OdDbDatabase& database, const OdArray<OdDbObjectId>& ids, OdDbObjectId owner,
                      OdDbIdMapping& mapping, const std::function<void()>& change) {
    Cloner cloner(database.data(), database.data(), mapping);
    makeClones(cloner, database.data(), ids, owner, mapping);
    cloner.translate();
    std::exception_ptr first;
    try {
        change();
    } catch (...) {
        first = std::current_exception();
    }
    try {
        cloner.close();
    } catch (...) {
        if (!first) first = std::current_exception();
    }
    if (first) std::rethrow_exception(first);
}

} // namespace lm::drawing

void OdDbDatabase::deepCloneObjects(const OdArray<OdDbObjectId>& ids, OdDbObjectId owner,
                                    OdDbIdMapping& mapping, bool deferXlation) {
    lm::drawing::Cloner cloner(*m_data, *m_data, mapping);
    lm::drawing::makeClones(cloner, *m_data, ids, owner, mapping);
    if (!deferXlation) cloner.translate();
    cloner.close();
}
