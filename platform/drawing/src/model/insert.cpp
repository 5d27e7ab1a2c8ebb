// SPDX-License-Identifier: MIT
// Model space of another drawing as a block of this one.
#include "model/cloner.h"

#include "dxf/storedbodies.h"
#include "model/names.h"

#include "drawing/recordsearch.h"

#include <deque>

namespace lm::drawing {

namespace {

/// Clones entities of another drawing, and with them what they need: found by name first, else cloned as
/// well.
class Importer final : public Cloner {
public:
    Importer(DatabaseData& from, DatabaseData& to, OdDbIdMapping& mapping) : Cloner(from, to, mapping) {}

    /// Makes the block that takes the source's model space.
    OdDbObjectId run(const OdString& name) {
        const OdSmartPtr<OdDbBlockTableRecord> block(new OdDbBlockTableRecord(), kAttach);
        block->setName(name);
        block->setOrigin(m_from.basePoint);
        {
            const OpenForWrite open(m_to.bodyOf(m_to.fixed.blockTable));
            static_cast<OdDbSymbolTable&>(*m_to.fixed.blockTable->body).add(block);
        }
        Node& space = *m_from.fixed.modelSpace;
        m_known[&space] = block->objectId().node();
        cloneEntities(space, *block.get());
        finish();
        translate();
        std::exception_ptr raised;
        try {
            close();
        } catch (...) {
            raised = std::current_exception();
        }
        const OdDbObjectId id = block->objectId();
        block->downgradeOpen(); // reactors find the block with its entities
        if (raised) std::rethrow_exception(raised);
        return id;
    }

protected:
    Node* resolve(Node& target) override {
        if (!crosses()) return &target;
        const auto [known, isNew] = m_known.try_emplace(&target, nullptr);
        if (!isNew) return known->second; // null as well while it is on its way: files may refer in circles
        if (m_depth > kDeepest) return nullptr;
        ++m_depth;
        Node* const brought = bring(target);
        --m_depth;
        return keep(target, brought);
    }

    std::uint64_t foreignHandle(const RawHandle& handle) override {
        if (!crosses()) return Cloner::foreignHandle(handle);
        const Node* const target = m_from.handles.find(handle.handle);
        const auto known = target != nullptr ? m_known.find(target) : m_known.end();
        // What didn't come along isn't there: its handle is another object's here.
        return known != m_known.end() && known->second != nullptr ? known->second->handle : 0;
    }

    void finish() override {
        while (!m_due.empty()) {
            const Due due = m_due.front();
            m_due.pop_front();
            cloneEntities(*due.source, *due.block.get());
            note(*due.source, due.block);
        }
    }

    void need(const OdDbObject& source, const RawGroups& raw) override {
        forEachHandle(raw.span(), raw.kind(), [&](const RawHandle& handle) {
            const bool hard =
                (handle.code >= 340 && handle.code <= 349) || (handle.code >= 390 && handle.code <= 399);
            if (handle.place == HandlePlace::kField && hard)
                if (Node* const target = m_from.handles.find(handle.handle)) resolve(*target);
            return true;
        });
        const bool unread = source.isKindOf(OdDbUnreadEntity::desc());
        const bool style = raw.kind() == "DIMSTYLE";
        if (unread || style)
            forEachName(raw.span(), raw.kind(), [&](int code, std::string_view bytes) {
                Node* const table = tableNamedBy(code, style);
                bool bad = false;
                const OdString name = raw.span().form->decoder.decode(bytes, bad);
                if (Node* const record = m_from.tableRecord(table, name)) resolve(*record);
            });
    }

    void contents(Node& source, OdSmartPtr<OdDbBlockTableRecord> block) override {
        // One after the other and not one inside the other: blocks may be nested deeper than any stack.
        m_due.push_back({&source, std::move(block)});
    }

private:
    struct Due {
        Node* source;
        OdSmartPtr<OdDbBlockTableRecord> block;
    };

    Node* tableNamedBy(int code, bool style) const {
        if (style || code == 2) return m_from.fixed.blockTable;
        return code == 3 ? m_from.fixed.dimstyleTable : m_from.fixed.styleTable;
    }

    /// The destination's table for the records of one of the source's.
    Node* tableFor(const Node& table) {
        const FixedEntries& f = m_from.fixed;
        FixedEntries& t = m_to.fixed;
        Node** const pairs[][2] = {{const_cast<Node**>(&f.layerTable), &t.layerTable},
                                   {const_cast<Node**>(&f.linetypeTable), &t.linetypeTable},
                                   {const_cast<Node**>(&f.styleTable), &t.styleTable},
                                   {const_cast<Node**>(&f.appTable), &t.appTable},
                                   {const_cast<Node**>(&f.viewTable), &t.viewTable},
                                   {const_cast<Node**>(&f.blockTable), &t.blockTable},
                                   {const_cast<Node**>(&f.dimstyleTable), &t.dimstyleTable},
                                   {const_cast<Node**>(&f.ucsTable), &t.ucsTable}};
        for (auto& [from, to] : pairs) {
            if (*from != &table) continue;
            if (*to == nullptr) *to = makeTable(m_to);
            return *to;
        }
        return nullptr;
    }

    Node* bring(Node& target) {
        if (!target.isLive() || target.has(Node::kEntity)) return nullptr;
        return target.has(Node::kTableRecord) ? bringRecord(target) : bringObject(target);
    }

    Node* bringRecord(Node& target) {
        Node* const table = target.owner != nullptr ? tableFor(*target.owner) : nullptr;
        if (table == nullptr) return nullptr;
        const OdString name = static_cast<OdDbSymbolTableRecord&>(*m_from.bodyOf(&target)).getName();
        if (target.kind == kKindBlockRecord && isAnonymousName(name.view()))
            return record(target, *table, freeRecordName(m_to, *table, name));
        if (!name.isEmpty())
            if (Node* const there =
                    recordCalled(static_cast<OdDbSymbolTable&>(*m_to.bodyOf(table)), name).node())
                return there; // in either case: other programs take both for one
        return record(target, *table, name);
    }

    /// An object that stands in named dictionaries comes under the same names; a name that is there already
    /// is taken for the same object. Layouts belong to their drawing.
    Node* bringObject(Node& target) {
        if (&target == m_from.fixed.dictionary) return m_to.fixed.dictionary;
        if (target.kind == kKindLayout || target.owner == nullptr) return nullptr;
        const auto* const from = OdDbDictionary::cast(m_from.bodyOf(target.owner));
        Node* const owner = from != nullptr ? resolve(*target.owner) : nullptr;
        if (owner == nullptr) return nullptr;
        auto& dictionary = static_cast<OdDbDictionary&>(*m_to.bodyOf(owner));
        const OdString name = nameIn(*from, target);
        if (name.isEmpty()) return nullptr;
        if (const OdDbObjectId there = dictionary.getAt(name); !there.isNull()) return there.node();
        const OdSmartPtr<OdDbObject> clone = OdDbDictionary::cast(m_from.bodyOf(&target)) != nullptr
                                                 ? emptyDictionary(target, OdDbObjectId(owner))
                                                 : object(target, OdDbObjectId(owner));
        const OpenForWrite open(&dictionary);
        dictionary.setAt(name, clone);
        return clone->objectId().node();
    }

    /// A dictionary on the way to an object comes without what else stands in it.
    OdSmartPtr<OdDbObject> emptyDictionary(Node& source, OdDbObjectId owner) {
        const OdSmartPtr<OdDbObject> copy = bareCopy(source);
        pair(source, resident([&] { return m_to.database.addOdDbObject(copy, owner); }));
        note(source, copy);
        return copy;
    }

    static OdString nameIn(const OdDbDictionary& dictionary, const Node& entry) {
        for (const auto walk = dictionary.newIterator(); !walk->done(); walk->next())
            if (walk->objectId().node() == &entry) return walk->name();
        return OdString();
    }

    Node* keep(Node& source, Node* clone) {
        m_known[&source] = clone;
        return clone;
    }

    static constexpr int kDeepest = 64;
    int m_depth = 0;
    std::unordered_map<const Node*, Node*>
        m_known;           ///< what stands for an object of the source; null for nothing
    std::deque<Due> m_due; ///< blocks whose entities are to be cloned
};

/// Whether an entity stands where it comes along: in model space, or in a block that something shows.
bool comesAlong(DatabaseData& from, const Node& entity) {
    Node* const owner = entity.owner;
    if (!entity.isLive() || owner == nullptr || owner == from.fixed.modelSpace) return entity.isLive();
    auto* const block = OdDbBlockTableRecord::cast(from.bodyOf(owner));
    return block != nullptr && !ObjectAccess::references(*block).empty();
}

/// Bodies that the file holds apart from their entities would stay behind, and the entities would be empty.
void refuseStoredBodies(DatabaseData& from) {
    for (const StoredBody& body : storedBodiesOf(from))
        if (comesAlong(from, *body.entity))
            throw OdError(eNotApplicable, odText(std::string(from.kinds.name(body.entity->kind)) + " " +
                                                 utf8(OdDbHandle(body.entity->handle).ascii()) +
                                                 " has its body in a part of the file that can't be "
                                                 "brought to another drawing"));
}

} // namespace

void bringOwned(DatabaseData& data, OdDbObject& copy, const RawPointer& groups) {
    DatabaseData* const from = groups->home() != nullptr ? groups->home()->data : nullptr;
    if (from == nullptr) return;
    OdDbIdMapping pairs; // of this object alone
    Importer(*from, data, pairs).own(copy, groups);
}

} // namespace lm::drawing

OdDbObjectId OdDbDatabase::insert(const OdString& name, OdDbDatabase* source, bool) {
    using namespace lm::drawing;
    if (name.isEmpty() || source == nullptr) return OdDbObjectId::kNull;
    DatabaseData& data = *m_data;
    DatabaseData& from = source->data();
    if (data.fixed.blockTable == nullptr || from.fixed.modelSpace == nullptr) return OdDbObjectId::kNull;
    if (data.tableRecord(data.fixed.blockTable, name) != nullptr) return OdDbObjectId::kNull;
    refuseStoredBodies(from);
    OdDbIdMapping pairs; // of this call alone
    return Importer(from, data, pairs).run(name);
}
