// SPDX-License-Identifier: MIT
// OdDbObjectId: one pointer that names an object of a database for as long as the process lives.
#pragma once

#include "drawing/handle.h"
#include "drawing/rxobject.h"

class OdDbObject;
class OdDbDatabase;

namespace lm::drawing {
struct Node;
}

namespace OdDb {
enum OpenMode { kForRead = 0, kForWrite = 1 };
}

/// The identity of an object in a database. A plain value, the size of a pointer. It may outlive its
/// database: it is then not valid, and every query answers as for null.
class LM_DRAWING_API OdDbObjectId {
public:
    static const OdDbObjectId kNull;

    OdDbObjectId() = default;
    /// The id of a database entry; null gives the null id. For the drawing layer itself.
    explicit OdDbObjectId(lm::drawing::Node* node) : m_node(node) {}

    bool isNull() const noexcept { return m_node == nullptr; }
    /// True for every id whose object its database holds, an erased one too; false for null and for an id
    /// whose database is gone.
    bool isValid() const noexcept;
    /// The object's own mark, at the moment of the call; false for null.
    bool isErased() const noexcept;
    /// The database, or null for an id that isn't valid.
    OdDbDatabase* database() const noexcept;
    /// 0 for an id that isn't valid.
    OdDbHandle getHandle() const noexcept;
    /// Opens the object. Never throws for what isn't there: null for a null, invalid or, without
    /// `openErased`, erased object. Opening never conflicts with other openings.
    OdSmartPtr<OdDbObject> openObject(OdDb::OpenMode mode = OdDb::kForRead, bool openErased = false) const;

    lm::drawing::Node* node() const noexcept { return m_node; }
    friend bool operator==(OdDbObjectId a, OdDbObjectId b) noexcept { return a.m_node == b.m_node; }
    friend bool operator!=(OdDbObjectId a, OdDbObjectId b) noexcept { return a.m_node != b.m_node; }
    friend bool operator<(OdDbObjectId a, OdDbObjectId b) noexcept { return a.m_node < b.m_node; }

private:
    lm::drawing::Node* m_node = nullptr;
};
