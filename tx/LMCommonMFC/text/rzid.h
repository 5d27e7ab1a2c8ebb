// SPDX-License-Identifier: MIT
// RZID: the application's reference to an object in a drawing. Inside it is an object id; to its users it is
// also a text, the object's handle in hexadecimal, which is what attributes, extended data and files keep.
//
//     RZID id(handleText);                                     // in the active document, or the override
//     if (OdSmartPtr<OdDbObject> object = id.openObject(OdDb::kForRead)) ...
#pragma once

#include "export.h"
#include "text/rzstring.h"

#include "drawing/objectid.h"

#include <cstddef>

class CHostDatabase;

/// An object id that also reads as text. A plain value that may outlive what it names; it isn't bound to a
/// database: text becomes an id at the moment of construction, in getDatabase() or in the database given.
/// Nothing here raises: text that is no handle (the whole of it must be hexadecimal), an unknown handle and a
/// missing database all give the null id. Null wide pointers count as empty text.
class LM_COMMONMFC_API RZID {
public:
    /// The null id.
    static const RZID kNull;

    constexpr RZID() = default;
    RZID(OdDbObjectId id) : m_id(id) {}
    RZID(OdDbHandle handle);

    RZID(const unsigned short* text);
    RZID(RZString text) : RZID(static_cast<const unsigned short*>(text)) {}
    RZID(CString text) : RZID(static_cast<const unsigned short*>(text)) {}
    RZID(OdString text) : RZID(text.c_str()) {}

    /// In the given database and no other; a null database gives the null id.
    RZID(const unsigned short* text, OdDbDatabase* database);
    RZID(RZString text, OdDbDatabase* database) : RZID(static_cast<const unsigned short*>(text), database) {}
    RZID(CString text, OdDbDatabase* database) : RZID(static_cast<const unsigned short*>(text), database) {}
    RZID(OdString text, OdDbDatabase* database) : RZID(text.c_str(), database) {}
    RZID(const unsigned short* text, CHostDatabase* database);
    RZID(RZString text, CHostDatabase* database) : RZID(static_cast<const unsigned short*>(text), database) {}
    RZID(CString text, CHostDatabase* database) : RZID(static_cast<const unsigned short*>(text), database) {}
    RZID(OdString text, CHostDatabase* database) : RZID(text.c_str(), database) {}
    template<class Text>
    RZID(const Text&, std::nullptr_t) {}

    /// An entity name in the host's form of two words, resolved by the active document; the null id without a
    /// document or for a name that doesn't resolve.
    RZID(unsigned long long* const name);

    operator OdDbObjectId() const { return m_id; }
    /// The handle, 0 for an id that isn't valid.
    operator OdDbHandle() const { return m_id.getHandle(); }
    /// The handle's text as OdDbHandle::ascii writes it, "0" for an id that isn't valid.
    operator RZString() const { return RZString(m_id.getHandle()); }
    /// The same text in a buffer of the thread, valid until the thread's next call.
    const unsigned short* toLPCWSTR() const;

    /// The database, or null for an id that isn't valid.
    OdDbDatabase* database() const { return m_id.database(); }
    /// Whether a database holds the object, an erased one too.
    bool isValid() const { return m_id.isValid(); }
    /// The opposite of isValid: an id whose database is gone counts as null, an erased object doesn't.
    bool isNull() const { return !isValid(); }
    bool isErased() const { return m_id.isErased(); }
    /// Opens the object. Null for an id without database, and for an erased object unless `openErased`.
    OdSmartPtr<OdDbObject> openObject(OdDb::OpenMode mode = OdDb::kForRead, bool openErased = false) const;

    /// Ids compare as ids, whatever the way round.
    friend bool operator==(const RZID& a, const RZID& b) { return a.m_id == b.m_id; }
    friend bool operator==(const RZID& a, const OdDbObjectId& b) { return a.m_id == b; }
    /// An id compares with a text by its own text, exactly: the same handle in other case or with leading
    /// zeros isn't equal, although it would construct the same id.
    friend bool operator==(const RZID& a, const RZString& b) { return static_cast<RZString>(a) == b; }

private:
    OdDbObjectId m_id;
};

static_assert(sizeof(RZID) == sizeof(void*), "an id is one pointer");
