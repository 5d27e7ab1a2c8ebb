// SPDX-License-Identifier: MIT
// What is used in a drawing, and so can't be purged.
#include "dxf/read.h"
#include "model/references.h"

#include <unordered_map>
#include <unordered_set>

namespace lm::drawing {

namespace {

/// Takes ids out of a set of candidates as it meets them. One walk over the live objects serves them all.
class UseFinder {
public:
    UseFinder(DatabaseData& data, const OdArray<OdDbObjectId>& ids) : m_data(data) {
        for (const OdDbObjectId id : ids)
            if (id.isValid() && id.database() == &data.database && !id.isErased()) add(*id.node());
    }

    void run() {
        useFixed();
        useReferencedBlocks();
        if (m_left.empty()) return;
        for (const FixedEntries& f = m_data.fixed;
             Node * table : {f.blockTable, f.layerTable, f.linetypeTable, f.styleTable, f.dimstyleTable,
                             f.viewportTable, f.appTable})
            foldNames(table);
        useHeader();
        m_data.nodes.forEach([this](Node& node) {
            if (!m_left.empty()) useOf(node);
        });
    }
    bool isUsed(const Node& node) const { return m_left.count(&node) == 0; }

private:
    void add(Node& node) {
        m_left.insert(&node);
        m_onlyBlocks = m_onlyBlocks && node.kind == kKindBlockRecord && node.has(Node::kTableRecord);
        m_onlyRecords = m_onlyRecords && node.has(Node::kTableRecord);
    }
    void use(const Node* node) {
        if (node != nullptr) m_left.erase(node);
    }
    void use(OdDbObjectId id) { use(id.node()); }

    /// What every drawing needs.
    void useFixed() {
        const FixedEntries& f = m_data.fixed;
        for (const Node* node :
             {f.blockTable, f.layerTable, f.linetypeTable, f.styleTable, f.appTable, f.viewportTable,
              f.viewTable, f.dimstyleTable, f.ucsTable, f.dictionary, f.modelSpace, f.paperSpace, f.layerZero,
              f.byBlock, f.byLayer, f.continuous, f.standardStyle, static_cast<Node*>(m_data.currentLayer)})
            use(node);
        if (f.appTable != nullptr) use(m_data.tableRecord(f.appTable, odText("ACAD")));
        std::vector<const Node*> layouts;
        for (const Node* node : m_left)
            if (node->kind == kKindBlockRecord && node->has(Node::kTableRecord)) {
                const auto& record =
                    static_cast<OdDbBlockTableRecord&>(*m_data.bodyOf(const_cast<Node*>(node)));
                if (record.isLayout()) layouts.push_back(node);
            }
        for (const Node* node : layouts) use(node);
    }

    /// Blocks know who refers to them.
    void useReferencedBlocks() {
        std::vector<const Node*> used;
        for (const Node* node : m_left) {
            if (node->kind != kKindBlockRecord || !node->has(Node::kTableRecord)) continue;
            auto& record = static_cast<OdDbBlockTableRecord&>(*m_data.bodyOf(const_cast<Node*>(node)));
            for (const Node* reference : ObjectAccess::references(record)) {
                if (!reference->isLive()) continue;
                used.push_back(node);
                break;
            }
        }
        for (const Node* node : used) use(node);
    }

    /// Names of the candidates as files may spell them.
    void foldNames(Node* table) {
        if (table == nullptr) return;
        for (const Node* node : m_left) {
            if (node->owner != table || !node->has(Node::kTableRecord)) continue;
            const auto& record = static_cast<OdDbSymbolTableRecord&>(*m_data.bodyOf(const_cast<Node*>(node)));
            m_names[folded(record.getName())].push_back(node);
        }
    }
    static std::string folded(const OdString& name) {
        WideString lower(name.view());
        for (WideChar& unit : lower) unit = system::toLower(unit);
        return system::toUtf8(lower);
    }
    void useName(const OdString& name) {
        const auto found = m_names.find(folded(name));
        if (found == m_names.end()) return;
        for (const Node* node : found->second) use(node);
    }

    /// A variable that holds the name of a record uses it, whatever else bears that name.
    void useHeader() {
        for (const HeaderVariable& variable : m_data.header) {
            if (variable.name == "$CLAYER") continue; // the current layer may be another one by now
            for (OdSmartPtr<OdResBuf> at =
                     readHeaderVariable(m_data, std::string_view(variable.name).substr(1));
                 !at.isNull(); at = at->next()) {
                if (at->payload() != OdResBuf::kText) continue;
                useName(at->getString());
                if (isXrecordHandle(at->restype()))
                    use(m_data.handles.find(OdDbHandle(at->getString().c_str()).value()));
            }
        }
    }

    /// The objects that a node refers to. Its owner isn't among them, nor what it owns.
    void useOf(Node& node) {
        if (node.has(Node::kGone) || !node.isLive() || node.handle == 0) return;
        if (node.kind == kKindBlock || node.kind == kKindEndblk) useLayer(node);
        if (node.kind == kKindBlock || node.kind == kKindEndblk || node.kind == kKindTable) return;
        useXData(node);
        // References are known by the lists of their blocks, and further classes that are read refer to no
        // block.
        const bool read = isReadKind(static_cast<Kind>(node.kind)) && !mayNameBlocks(node);
        if (m_onlyBlocks && read) return;
        const bool namesById = read && node.has(Node::kEntity) && m_onlyRecords;
        OdDbObject& body = *m_data.bodyOf(&node);
        mapIds(body, [this](OdDbObjectId id) {
            use(id);
            return id;
        });
        if (const auto* dictionary = OdDbDictionary::cast(&body)) useEntries(*dictionary, node);
        if (const auto* record = OdDbXrecord::cast(&body)) useChain(*record);
        if (!namesById) useGroups(node, body);
    }
    /// The layer of the entry that begins or ends a block.
    void useLayer(const Node& frame) {
        constexpr int kLayer = 8;
        const GroupSpan span = groupsOf(m_data, frame);
        forEachGroupIn(span, [&](const Group& group, const char*, const char*) {
            if (group.code != kLayer) return true;
            bool bad = false;
            useName(span.form->decoder.decode(group.raw(), bad));
            return false;
        });
    }
    /// Applications, layers and handles in extended data.
    void useXData(Node& node) {
        constexpr int kApplication = 1001, kLayer = 1003, kHandleData = 1005;
        if (m_data.bodyOf(&node) == nullptr || !ObjectAccess::hasXData(*node.body)) return;
        for (OdSmartPtr<OdResBuf> at = node.body->xData(OdString()); !at.isNull(); at = at->next()) {
            if (at->restype() == kApplication || at->restype() == kLayer) useName(at->getString());
            if (at->restype() == kHandleData)
                use(m_data.handles.find(OdDbHandle(at->getString().c_str()).value()));
        }
    }
    static bool isAbove(const Node* owner, const Node& node) {
        for (const Node* at = &node; at != nullptr; at = at->owner)
            if (at == owner) return true;
        return false;
    }
    static bool mayNameBlocks(const Node& node) {
        return node.kind == kKindXrecord || node.kind == kKindDictionary ||
               node.kind == kKindDictionaryWithDefault;
    }
    void useEntries(const OdDbDictionary& dictionary, const Node& node) {
        for (const auto walk = dictionary.newIterator(); !walk->done(); walk->next())
            if (walk->objectId().node()->owner != &node) use(walk->objectId());
    }
    void useChain(const OdDbXrecord& record) {
        for (OdSmartPtr<OdResBuf> at = record.rbChain(); !at.isNull(); at = at->next()) {
            if (!isXrecordHandle(at->restype())) continue;
            if (at->payload() == OdResBuf::kId)
                use(at->getObjectId());
            else
                use(m_data.handles.find(OdDbHandle(at->getString().c_str()).value()));
        }
    }
    /// Handles and names in what isn't read: soft handles too, such as the layers that a viewport has frozen,
    /// since a handle that leads nowhere is damage. What belongs to an object doesn't use it.
    void useGroups(const Node& node, const OdDbObject& body) {
        const GroupSpan span = groupsOf(m_data, node);
        if (span.isEmpty()) return;
        const std::string_view kind = m_data.kinds.name(node.kind);
        forEachHandle(span, kind, [this, &node](const RawHandle& handle) {
            const Node* const target = m_data.handles.find(handle.handle);
            if (handle.place == HandlePlace::kField && !isAbove(target, node)) use(target);
            return true;
        });
        if (!body.isKindOf(OdDbUnreadEntity::desc()) && node.kind != kKindDimstyle) return;
        forEachName(span, kind, [&](int, std::string_view bytes) {
            bool bad = false;
            useName(span.form->decoder.decode(bytes, bad));
        });
    }

    DatabaseData& m_data;
    bool m_onlyBlocks = true;
    bool m_onlyRecords = true;
    std::unordered_set<const Node*> m_left;
    std::unordered_map<std::string, std::vector<const Node*>> m_names;
};

} // namespace

} // namespace lm::drawing

void OdDbDatabase::purge(OdArray<OdDbObjectId>& ids) const {
    lm::drawing::UseFinder finder(*m_data, ids);
    finder.run();
    OdArray<OdDbObjectId> unused;
    for (const OdDbObjectId id : ids) {
        if (!id.isValid() || id.database() != this) continue; // nothing that could be erased here
        if (id.isErased() || !finder.isUsed(*id.node())) unused.append(id);
    }
    ids = unused;
}
