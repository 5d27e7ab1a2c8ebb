// SPDX-License-Identifier: MIT
// The run-time object model: the root class, run-time classes and the counting pointer.
//
//     OdSmartPtr<OdDbEntity> entity = ...;
//     if (OdDbBlockReference* ref = OdDbBlockReference::cast(entity)) ...        // null for another class
//     OdSmartPtr<OdDbBlockReference> checked(entity);                            // raises for another class
#pragma once

#include "drawing/error.h"

class OdRxObject;

/// A run-time class: a name, the class above it, and how an object of it is made.
class LM_DRAWING_API OdRxClass {
public:
    using Constructor = OdRxObject* (*)();
    /// `constructor` is null for a class of which no object can be made by name.
    OdRxClass(const char* name, OdRxClass* parent, Constructor constructor);
    /// Leaves the list of classes: a module that is unloaded takes its classes along.
    ~OdRxClass();
    OdRxClass(const OdRxClass&) = delete;
    OdRxClass& operator=(const OdRxClass&) = delete;

    OdString name() const;
    const char* asciiName() const { return m_name; }
    OdRxClass* parent() const { return m_parent; }
    /// Whether this is `other` or stands below it.
    bool isDerivedFrom(const OdRxClass* other) const noexcept {
        for (const OdRxClass* at = this; at != nullptr; at = at->m_parent)
            if (at == other) return true;
        return false;
    }

    /// A new object with a count of one, or null while the class isn't loaded or can't be made.
    OdRxObject* create() const;
    /// Whether objects can be made. Tests switch a class off to reach what its users then do.
    bool isLoaded() const { return m_loaded; }
    void setLoaded(bool loaded) { m_loaded = loaded; }

    /// The protocol extension registered for `protocol` on this class or the nearest class above it, or null.
    OdRxObject* getX(const OdRxClass* protocol) const noexcept;
    /// Registers an extension (not owned); null removes it.
    void setX(const OdRxClass* protocol, OdRxObject* extension);

    /// The class of a name, or null.
    static OdRxClass* find(const char* name) noexcept;

private:
    struct Extension {
        const OdRxClass* protocol;
        OdRxObject* object;
        Extension* next;
    };
    const char* m_name;
    OdRxClass* m_parent;
    Constructor m_constructor;
    Extension* m_extensions = nullptr;
    bool m_loaded = true;
    OdRxClass* m_nextClass;
};

/// The root of all run-time objects. The order of the virtual operations is part of the interface between
/// modules.
class LM_DRAWING_API OdRxObject {
public:
    virtual ~OdRxObject();
    /// This object if it is of class `desc`, else the class's protocol extension for `desc`, else null. Not
    /// counted.
    virtual OdRxObject* queryX(const OdRxClass* desc) const;
    /// The class's protocol extension for `desc`, or null. Not counted.
    virtual OdRxObject* x(const OdRxClass* desc) const;
    virtual OdRxClass* isA() const;
    virtual void addRef() = 0;
    virtual void release() = 0;
    virtual long numRefs() const;
    /// A copy with a count of one; null for a class that has none.
    virtual OdRxObject* clone() const;
    virtual OdResult copyFrom(const OdRxObject* source);
    /// Order between objects; 1 where the class has none and the objects differ, 0 for the same object.
    virtual int comparedTo(const OdRxObject* other) const;
    virtual bool isEqualTo(const OdRxObject* other) const;

    static OdRxClass* desc();
    bool isKindOf(const OdRxClass* desc) const { return isA()->isDerivedFrom(desc); }

    void* operator new(std::size_t size);
    void operator delete(void* block) noexcept;
};

/// Declares the run-time class of T and the soft cast `T::cast`, which gives null for null and for another
/// class.
#define LM_RX_CLASS(T)                                                                                       \
public:                                                                                                      \
    static OdRxClass* desc();                                                                                \
    OdRxClass* isA() const override;                                                                         \
    static T* cast(const OdRxObject* object) {                                                               \
        return object != nullptr && object->isKindOf(T::desc())                                              \
                   ? static_cast<T*>(const_cast<OdRxObject*>(object))                                        \
                   : nullptr;                                                                                \
    }

namespace lm::drawing {
/// The way of OdSmartPtr to take over a count that the caller holds.
enum AttachTag { kAttach };

[[noreturn]] LM_DRAWING_API void raiseNullPointer();
[[noreturn]] LM_DRAWING_API void raiseWrongClass(const OdRxObject* object, const OdRxClass* wanted);
} // namespace lm::drawing

/// A counting pointer. Implicit from T* and from pointers to derived classes; explicit, and checked, from any
/// other class: taking an object of a class that isn't T raises OdError_NotThatKindOfClass. `->` on null
/// raises OdError.
template<class T>
class OdSmartPtr {
public:
    OdSmartPtr() noexcept : m_object(nullptr) {}
    OdSmartPtr(std::nullptr_t) noexcept : m_object(nullptr) {}
    OdSmartPtr(T* object) : m_object(object) { hold(); }
    OdSmartPtr(const T* object) : m_object(const_cast<T*>(object)) { hold(); }
    /// Takes over the count that the caller holds.
    OdSmartPtr(T* object, lm::drawing::AttachTag) noexcept : m_object(object) {}
    OdSmartPtr(const OdSmartPtr& other) : m_object(other.m_object) { hold(); }
    OdSmartPtr(OdSmartPtr&& other) noexcept : m_object(other.m_object) { other.m_object = nullptr; }

    template<class D>
    requires std::is_convertible_v<D*, T*> OdSmartPtr(const OdSmartPtr<D>& other) : m_object(other.get()) {
        hold();
    }
    template<class D>
    requires std::is_convertible_v<D*, T*> OdSmartPtr(OdSmartPtr<D>&& other)
    noexcept : m_object(other.detach()) {}

    template<class D>
    requires(!std::is_convertible_v<D*, T*>) explicit OdSmartPtr(const OdSmartPtr<D>& other)
        : m_object(checked(other.get())) {
        hold();
    }
    template<class D>
    requires(!std::is_convertible_v<D*, T*> && std::is_base_of_v<OdRxObject, D>) explicit OdSmartPtr(D* other)
        : m_object(checked(other)) {
        hold();
    }

    ~OdSmartPtr() {
        if (m_object != nullptr) m_object->release();
    }

    OdSmartPtr& operator=(const OdSmartPtr& other) {
        OdSmartPtr(other).swap(*this);
        return *this;
    }
    OdSmartPtr& operator=(OdSmartPtr&& other) {
        OdSmartPtr(static_cast<OdSmartPtr&&>(other)).swap(*this);
        return *this;
    }

    T* operator->() const {
        if (m_object == nullptr) lm::drawing::raiseNullPointer();
        return m_object;
    }
    T& operator*() const { return *operator->(); }
    T* get() const noexcept { return m_object; }
    operator T*() const noexcept { return m_object; }
    bool isNull() const noexcept { return m_object == nullptr; }
    /// Lets the object go; the pointer is null then.
    void release() { OdSmartPtr().swap(*this); }
    /// Hands the count to the caller; the pointer is null then.
    T* detach() noexcept {
        T* object = m_object;
        m_object = nullptr;
        return object;
    }
    void swap(OdSmartPtr& other) noexcept {
        T* object = m_object;
        m_object = other.m_object;
        other.m_object = object;
    }

private:
    void hold() {
        if (m_object != nullptr) m_object->addRef();
    }
    template<class D>
    static T* checked(D* object) {
        if (object == nullptr) return nullptr;
        if (!object->isKindOf(T::desc())) lm::drawing::raiseWrongClass(object, T::desc());
        return static_cast<T*>(static_cast<OdRxObject*>(object));
    }
    T* m_object;
};
