// SPDX-License-Identifier: MIT
#include "model/iterators.h"

#include "model/databasedata.h"
#include "model/fetch.h"

namespace lm::drawing {

namespace {

/// Parts of a resident owner. SEQEND entries close a list in files and are no parts to anybody else.
class ResidentWalk final : public OdDbObjectIterator {
public:
    explicit ResidentWalk(Node* owner) : m_owner(owner) {}

    void start(bool, bool skipErased) override {
        m_at = m_owner->firstPart;
        skip(skipErased);
    }
    bool done() const override { return m_at == nullptr; }
    void step(bool, bool skipErased) override {
        if (m_at == nullptr) return;
        m_at = m_at->next;
        skip(skipErased);
    }
    OdDbObjectId objectId() const override { return OdDbObjectId(m_at); }
    OdSmartPtr<OdDbEntity> entity() const override {
        // Whatever stands in a block or below a reference is an entity, so no cast has to be checked.
        if (m_at == nullptr || m_at->database() == nullptr) return {};
        OdDbObject* const body = m_at->body != nullptr ? m_at->body : m_at->database()->data().bodyOf(m_at);
        return OdSmartPtr<OdDbEntity>(static_cast<OdDbEntity*>(body));
    }

private:
    void skip(bool erased) {
        while (m_at != nullptr && (m_at->kind == kKindSeqend || (erased && m_at->isErased())))
            m_at = m_at->next;
        fetchAhead(m_at);
    }
    Node* m_owner;
    Node* m_at = nullptr;
};

/// Attributes of a reference outside a database.
class OutsideWalk final : public OdDbObjectIterator {
public:
    explicit OutsideWalk(const OdDbBlockReference& reference) : m_reference(&reference) {}

    void start(bool, bool skipErased) override {
        m_at = 0;
        skip(skipErased);
    }
    bool done() const override { return m_at >= size(); }
    void step(bool, bool skipErased) override {
        if (done()) return;
        ++m_at;
        skip(skipErased);
    }
    OdDbObjectId objectId() const override { return OdDbObjectId::kNull; }
    OdSmartPtr<OdDbEntity> entity() const override {
        if (done()) return {};
        return (*ObjectAccess::outsideAttributes(*m_reference))[m_at];
    }

private:
    std::size_t size() const {
        const auto* all = ObjectAccess::outsideAttributes(*m_reference);
        return all != nullptr ? all->size() : 0;
    }
    void skip(bool erased) {
        while (erased && !done() && (*ObjectAccess::outsideAttributes(*m_reference))[m_at]->isErased())
            ++m_at;
    }
    OdSmartPtr<OdDbBlockReference> m_reference;
    std::size_t m_at = 0;
};

OdDbBlockTableRecord* recordOf(OdDbObjectId block) {
    if (!block.isValid()) return nullptr;
    return OdDbBlockTableRecord::cast(block.database()->data().bodyOf(block.node()));
}

} // namespace

OdSmartPtr<OdDbObjectIterator> partsOf(Node* owner) {
    OdSmartPtr<OdDbObjectIterator> walk(new ResidentWalk(owner), kAttach);
    walk->start();
    return walk;
}

OdSmartPtr<OdDbObjectIterator> attributesOf(const OdDbBlockReference& reference) {
    if (reference.isDBRO()) return partsOf(reference.objectId().node());
    OdSmartPtr<OdDbObjectIterator> walk(new OutsideWalk(reference), kAttach);
    walk->start();
    return walk;
}

void moveReference(OdDbObjectId from, OdDbObjectId to, Node* reference) {
    if (from == to) return; // it keeps its place among the references of the block
    OdDbBlockTableRecord* const left = recordOf(from);
    OdDbBlockTableRecord* const entered = recordOf(to);
    UndoRecord::Reference change{nullptr, 0, entered != nullptr ? to.node() : nullptr};
    if (left != nullptr) {
        std::vector<Node*>& all = ObjectAccess::references(*left);
        const auto found = std::find(all.rbegin(), all.rend(), reference);
        if (found != all.rend()) {
            change.from = from.node();
            change.index = static_cast<std::size_t>(std::next(found).base() - all.begin());
            all.erase(std::next(found).base());
        }
    }
    if (entered != nullptr) ObjectAccess::references(*entered).push_back(reference);
    if (change.from != nullptr || change.to != nullptr)
        reference->database()->data().undo.file(reference, change);
}

} // namespace lm::drawing
