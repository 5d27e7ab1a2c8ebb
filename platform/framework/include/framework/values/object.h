// SPDX-License-Identifier: MIT
// CObject: the root of the framework's objects, with a run-time class and a way into an archive.
//
//     class Page : public CObject { LM_RUNTIME_CLASS(Page) ... };      // in the header
//     LM_RUNTIME_CLASS_BODY(Page, CObject)                             // in the source
//     if (object->GetRuntimeClass()->isDerivedFrom(Page::runtimeClass())) ...
#pragma once

#include "framework/values/export.h"

#include <cstddef>

class CArchive;

/// A class that can be asked for while the program runs. One object for each class, which lives as long as
/// the module of the class.
class LM_VALUES_API CRuntimeClass {
public:
    /// `name` must live as long as the object; `base` is null for the root.
    constexpr CRuntimeClass(const char* name, std::size_t objectSize, const CRuntimeClass* base) noexcept
        : m_name(name), m_objectSize(objectSize), m_base(base) {}

    const char* name() const noexcept { return m_name; }
    /// Bytes of one object.
    std::size_t objectSize() const noexcept { return m_objectSize; }
    /// The class above, or null for the root.
    const CRuntimeClass* base() const noexcept { return m_base; }
    /// Whether this is `other` or stands below it; false for null.
    bool isDerivedFrom(const CRuntimeClass* other) const noexcept;

private:
    const char* m_name;
    std::size_t m_objectSize;
    const CRuntimeClass* m_base;
};

/// The root. The order of the three virtual operations is part of the interface between modules.
class LM_VALUES_API CObject {
public:
    /// The run-time class of the object. A class that declares none answers with the nearest class above it.
    virtual const CRuntimeClass* GetRuntimeClass() const;
    virtual ~CObject();
    /// Writes the object into an archive or reads it back. Nothing here.
    virtual void Serialize(CArchive& archive);

    /// Whether the object is of `wanted` or of a class below it; false for null.
    bool IsKindOf(const CRuntimeClass* wanted) const;
    static const CRuntimeClass* runtimeClass() noexcept;

protected:
    CObject() = default;
    CObject(const CObject&) = default;
    CObject& operator=(const CObject&) = default;
};

/// Declares the run-time class of T inside the class.
#define LM_RUNTIME_CLASS(T)                                                                                  \
public:                                                                                                      \
    static const CRuntimeClass* runtimeClass() noexcept;                                                     \
    const CRuntimeClass* GetRuntimeClass() const override;

/// Defines what LM_RUNTIME_CLASS declared. `Base` is the next class above that declares one.
#define LM_RUNTIME_CLASS_BODY(T, Base)                                                                       \
    const CRuntimeClass* T::runtimeClass() noexcept {                                                        \
        static const CRuntimeClass description(#T, sizeof(T), Base::runtimeClass());                         \
        return &description;                                                                                 \
    }                                                                                                        \
    const CRuntimeClass* T::GetRuntimeClass() const {                                                        \
        return runtimeClass();                                                                               \
    }
