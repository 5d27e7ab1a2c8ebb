// SPDX-License-Identifier: MIT
// Entity names and selection sets as values of LISP.
#pragma once

#include "value.h"

#include "drawing/object.h"

#include <unordered_set>

namespace lm::host::lisp {

/// The name of an object of a drawing. An object that entmakex made waits here until dictadd puts it into the
/// drawing.
class EntityName final : public Foreign {
public:
    static constexpr ForeignKind kKind = ForeignKind::kEntityName;
    EntityName(Heap& heap, OdDbObjectId id) : Foreign(kKind, heap), m_id(id) {}
    EntityName(Heap& heap, OdSmartPtr<OdDbObject> waiting)
        : Foreign(kKind, heap), m_waiting(std::move(waiting)) {}
    /// The end of the attributes of a reference, which a walk over them meets though it is no object.
    struct EndOf {
        OdDbObjectId reference;
    };
    EntityName(Heap& heap, EndOf end) : Foreign(kKind, heap), m_endOf(end.reference) {}

    /// The reference whose attributes end here; null for an ordinary name.
    OdDbObjectId endOf() const noexcept { return m_endOf; }
    /// Null while the object waits, and for an end.
    OdDbObjectId id() const { return m_waiting.isNull() ? m_id : m_waiting->objectId(); }
    /// The object that waits or waited, else null.
    const OdSmartPtr<OdDbObject>& waiting() const noexcept { return m_waiting; }

    WideString printed() const override;
    const char* typeName() const override { return "ENAME"; }
    bool sameAs(const Foreign& other) const override;
    std::size_t bytes() const override { return sizeof(*this); }

private:
    OdDbObjectId m_id;
    OdDbObjectId m_endOf;
    OdSmartPtr<OdDbObject> m_waiting;
};

/// A selection set: objects without doubles, in the order of joining. It is the one value that programs
/// change.
class SelectionSet final : public Foreign {
public:
    static constexpr ForeignKind kKind = ForeignKind::kSelectionSet;
    explicit SelectionSet(Heap& heap);

    const std::vector<OdDbObjectId>& ids() const noexcept { return m_ids; }
    bool has(OdDbObjectId id) const { return m_members.count(id.node()) != 0; }
    /// Adds an object that isn't there yet. Raises LispError without memory.
    void add(OdDbObjectId id);
    /// False for an object that isn't there.
    bool remove(OdDbObjectId id);

    WideString printed() const override;
    const char* typeName() const override { return "PICKSET"; }
    std::size_t bytes() const override { return sizeof(*this) + m_charged; }

private:
    static constexpr std::size_t kBytesEach = 64;
    Heap& m_heap;
    std::size_t m_charged = 0;
    int m_number;
    std::vector<OdDbObjectId> m_ids;
    std::unordered_set<const void*> m_members;
};

} // namespace lm::host::lisp
