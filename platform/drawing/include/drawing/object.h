// SPDX-License-Identifier: MIT
// OdDbObject: what every object of a drawing has: an identity, an owner, open modes, the erased mark and
// extended data by application id.
#pragma once

#include "drawing/objectid.h"
#include "drawing/resbuf.h"

#include <cstdint>
#include <memory>
#include <vector>

namespace lm::drawing {
struct ClassSpecs;
struct ObjectAccess;
struct DatabaseData;
class RawGroups;
Node* makeResident(DatabaseData& data, OdDbObject& object, std::uint16_t kind, Node* owner, bool asPart);
} // namespace lm::drawing

/// The root of all objects that can stand in a database.
///
/// Opening never conflicts: any number of holders may have an object open in any mix of modes. An object is
/// closed when its last smart pointer is let go; that ends the write-enabled state. The database keeps its
/// own hold, which doesn't count. All calls belong to the host's thread.
class LM_DRAWING_API OdDbObject : public OdRxObject {
    LM_RX_CLASS(OdDbObject)
public:
    ~OdDbObject() override;

    /// The identity; null before the object is in a database.
    OdDbObjectId objectId() const { return OdDbObjectId(m_node); }
    OdDbHandle getDbHandle() const { return objectId().getHandle(); }
    OdDbObjectId ownerId() const;
    OdDbDatabase* database() const { return objectId().database(); }
    /// Whether the object stands in a database.
    bool isDBRO() const { return m_node != nullptr; }

    /// Whether changes are allowed now. An object outside a database is always writable.
    bool isWriteEnabled() const { return m_node == nullptr || (m_flags & kWriteEnabled) != 0; }
    /// Makes an object that is open for reading writable; does nothing on one that is.
    void upgradeOpen();
    /// Ends the write-enabled state while the object stays open.
    /// Reactors are told what the closing of an object tells them; what they raise passes.
    void downgradeOpen();
    /// Says that a change is coming. Raises OdError (eNotOpenForWrite) on an object of a database that isn't
    /// open for write. With `recordModified` the object counts as changed.
    /// Reactors are told before the first change since the opening, and the undo log gets the object as it
    /// was once in each step.
    void assertWriteEnabled(bool autoUndo = true, bool recordModified = true);
    /// Whether the object was changed since it was read or made.
    bool isModified() const { return (m_flags & kModified) != 0; }

    /// Sets or takes back the erased mark. A refusal is an answer, never an exception. Erasing an owner marks
    /// none of its parts. An object outside a database only gets the mark.
    virtual OdResult erase(bool erasing = true);
    /// The object's own mark.
    bool isErased() const;

    /// A copy of the chain of one application id, led by its 1001 record; null when there is none. An empty
    /// name gives the chains of all ids one after the other, in the order of first writing.
    OdSmartPtr<OdResBuf> xData(const OdString& application = OdString()) const;
    /// Replaces the chain of the id that the first record names; further 1001 records begin further ids. A
    /// chain that is a lone 1001 record deletes that id's data, silently also when there was none. A null
    /// chain changes nothing. An id that the database's application table lacks is registered silently.
    /// Raises OdError when the object isn't open for write, or when the chain doesn't begin with a 1001
    /// record.
    void setXData(OdSmartPtr<OdResBuf> chain);
    /// As setXData, but a lone 1001 record is stored as it stands, as a file can hold it.
    void setXDataRaw(OdSmartPtr<OdResBuf> chain);

    /// The type name that a drawing file has for the object, such as "INSERT".
    virtual OdString dxfName() const;

    OdRxObject* clone() const override;
    // Final, so that a pointer to any object counts without a virtual call.
    void addRef() final { ++m_refs; }
    void release() final {
        if (--m_refs == 0) lastReleased();
    }
    long numRefs() const override { return static_cast<long>(m_refs); }

    // Objects lie close together in large pages, which walks over large drawings live on.
    static void* operator new(std::size_t size);
    static void* operator new(std::size_t, void* place) noexcept { return place; }
    static void operator delete(void* memory, std::size_t size) noexcept;

protected:
    OdDbObject() = default;
    /// A copy outside any database, extended data included.
    OdDbObject(const OdDbObject& other);
    /// Takes the fields and the extended data, and nothing of the identity, the marks or the count.
    OdDbObject& operator=(const OdDbObject& other);

    /// Called once when the object becomes resident.
    virtual void subBecomeResident() {}
    /// A new object outside any database with the fields of this one, extended data too, but nothing of its
    /// place: what the undo log keeps.
    virtual OdDbObject* newState() const;
    /// Takes the fields of an object that newState of this class made.
    virtual void takeState(const OdDbObject& state);
    /// Called before setters change a field: the check of assertWriteEnabled(true, true).
    void beginChange() {
        if (m_node != nullptr) assertWriteEnabled();
    }

private:
    void lastReleased() noexcept;
    bool closeNeedsTelling() const { return (m_flags & (kNew | kChanged)) != 0 && m_node != nullptr; }
    void tellClosed();
    friend struct lm::drawing::ClassSpecs;
    friend struct lm::drawing::ObjectAccess;
    friend class OdDbObjectId;
    friend lm::drawing::Node* lm::drawing::makeResident(lm::drawing::DatabaseData& data, OdDbObject& object,
                                                        std::uint16_t kind, lm::drawing::Node* owner,
                                                        bool asPart);

    enum Flag : unsigned short {
        kWriteEnabled = 1,
        kModified = 2,
        kNew = 4,
        kXDataRead = 8,
        kErasedOutside = 16,
        kAnnounced = 32,    ///< reactors know of a change since the opening
        kChanged = 64,      ///< changed since the opening
        kImaged = 128,      ///< the current step of the undo log has the object as it was
        kXDataChanged = 256 ///< extended data differs from the source
    };
    struct XData {
        OdString application;
        OdSmartPtr<OdResBuf> chain;
    };
    const std::vector<XData>& allXData() const;
    std::vector<XData>& changeableXData();
    void storeXData(OdSmartPtr<OdResBuf> chain, bool keepLone);

    lm::drawing::Node* m_node = nullptr;
    unsigned int m_refs = 1;
    mutable unsigned short m_flags = 0;
    const lm::drawing::RawGroups* m_raw = nullptr;       // groups that the class doesn't read, of a copy
    mutable std::unique_ptr<std::vector<XData>> m_xdata; // valid when kXDataRead is set or outside a database
};

/// Gives a class its part in undo: see newState and takeState.
#define LM_DB_STATE(T)                                                                                       \
protected:                                                                                                   \
    OdDbObject* newState() const override {                                                                  \
        T* const state = new T();                                                                            \
        *state = *this;                                                                                      \
        return state;                                                                                        \
    }                                                                                                        \
    void takeState(const OdDbObject& state) override {                                                       \
        *this = static_cast<const T&>(state);                                                                \
    }

/// An object of a kind that the database keeps without reading it: it is listed, held and written back as it
/// came.
class LM_DRAWING_API OdDbUnreadObject : public OdDbObject {
    LM_RX_CLASS(OdDbUnreadObject)
public:
    OdDbUnreadObject() = default;
    OdDbUnreadObject(const OdDbUnreadObject&) = default;
    LM_DB_STATE(OdDbUnreadObject)
    OdDbUnreadObject& operator=(const OdDbUnreadObject&) = default;
};
