// SPDX-License-Identifier: MIT
// Run-time modules: the base of a module object and the concrete class that a module wraps its own in.
//
//     class MyModule : public CCEntryPoint { ... };
//     LM_DEFINE_MODULE(MyModule)
#pragma once

#include "drawing/alloc.h"
#include "drawing/rxobject.h"

#include <atomic>
#include <new>

/// The base of every module object. It isn't managed by its count: only deleteModule ends its life.
class LM_DRAWING_API OdRxModule : public OdRxObject {
    LM_RX_CLASS(OdRxModule)
public:
    ~OdRxModule() override;
    OdRxObject* queryX(const OdRxClass* desc) const override;
    /// The operating-system handle of the module.
    virtual void* sysData() = 0;
    /// Ends the module object.
    virtual void deleteModule() = 0;
    /// Called by the loader after creation and before deletion.
    virtual void initApp() = 0;
    virtual void uninitApp() = 0;
    /// File name of the module, cut at 260 units; empty for a null handle.
    virtual OdString moduleName() const = 0;
};

/// An object whose life isn't counted.
template<class T>
class OdStaticRxObject : public T {
public:
    void addRef() override {}
    void release() override {}
};

namespace lm::drawing {
/// The path of a loaded module by its handle, cut at 260 units; empty for null.
LM_DRAWING_API OdString moduleFileName(void* handle);

/// Thrown when the memory of a module object can't be had and no new-handler is there; its text is fixed,
/// unlike that of the runtime's own class.
class LM_DRAWING_API ModuleAllocationError : public std::bad_alloc {
public:
    ~ModuleAllocationError() override;
    const char* what() const noexcept override;
};
} // namespace lm::drawing

/// The concrete class of a module's singleton: T with an atomic count and the module's handle. `Owner` is the
/// class whose module this is; it keeps the singletons of two modules apart.
template<class T, class Owner>
class OdRxWin32Module : public T {
public:
    void addRef() override { m_numRefs.fetch_add(1); }
    void release() override { m_numRefs.fetch_sub(1); }
    long numRefs() const override { return m_numRefs.load(); }
    void* sysData() override { return m_handle; }
    /// Clears the singleton first, then ends the object.
    void deleteModule() override {
        OdRxWin32Module* object = s_singleton;
        s_singleton = nullptr;
        delete object;
    }
    OdString moduleName() const override { return lm::drawing::moduleFileName(m_handle); }

    /// The singleton, made at the first call; it then takes over the caller's handle, whose variable becomes
    /// null. With no memory the current new-handler is called once, without another try, and the result is
    /// null; without a new-handler std::bad_alloc is thrown.
    static OdRxModule* createModule(void*& handle) {
        if (s_singleton != nullptr) return s_singleton;
        void* const given = handle;
        void* memory = odrxAlloc(sizeof(OdRxWin32Module));
        if (memory != nullptr) {
            s_singleton = ::new (memory) OdRxWin32Module(given);
        } else if (const std::new_handler handler = std::get_new_handler(); handler != nullptr) {
            handler();
        } else {
            throw lm::drawing::ModuleAllocationError();
        }
        handle = nullptr;
        return s_singleton;
    }

    void operator delete(void* block) noexcept { odrxFree(block); }

protected:
    explicit OdRxWin32Module(void* handle) : m_numRefs(0), m_handle(handle) {}

private:
    std::atomic<int> m_numRefs;
    void* m_handle;
    static OdRxWin32Module* s_singleton;
};

template<class T, class Owner>
OdRxWin32Module<T, Owner>* OdRxWin32Module<T, Owner>::s_singleton = nullptr;

/// The version that the loader asks every module for.
namespace lm::drawing {
inline constexpr unsigned int kApiMajor = 26, kApiMinor = 8, kApiBuildMajor = 0, kApiBuildMinor = 54832;
}

/// Defines the two exports of a module whose class is T.
#define LM_DEFINE_MODULE(T)                                                                                  \
    extern "C" __attribute__((visibility("default"))) OdRxModule* odrxCreateModuleObject(void*& handle) {    \
        return OdRxWin32Module<T, T>::createModule(handle);                                                  \
    }                                                                                                        \
    extern "C" __attribute__((visibility("default"))) void odrxGetAPIVersion(                                \
        unsigned int& a, unsigned int& b, unsigned int& c, unsigned int& d) {                                \
        a = lm::drawing::kApiMajor;                                                                          \
        b = lm::drawing::kApiMinor;                                                                          \
        c = lm::drawing::kApiBuildMajor;                                                                     \
        d = lm::drawing::kApiBuildMinor;                                                                     \
    }
