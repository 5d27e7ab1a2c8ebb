// SPDX-License-Identifier: MIT
// What loaded modules are told of documents. The entry point class of the modules lies above the host, so it
// joins this list itself while its module is initialised.
#pragma once

#include "host/export.h"

#include <cstddef>

class CHostDocument;

namespace lm::host {

/// A module that hears of documents. Called on the host's main thread; an exception passes to whoever opened,
/// closed or activated the document.
class LM_HOST_API ModuleCallbacks {
public:
    virtual ~ModuleCallbacks();
    virtual void onDocumentActivated(CHostDocument* document) = 0;
    virtual void onDatabaseAttached(CHostDocument* document) = 0;
    virtual void onDatabaseDetached(CHostDocument* document) = 0;
    virtual void onDatabaseReady(CHostDocument* document) = 0;
};

/// Joins the list, which doesn't own its members. Twice counts once; null is ignored.
LM_HOST_API void addModuleCallbacks(ModuleCallbacks* callbacks);
/// Leaves the list; silent for what isn't there.
LM_HOST_API void removeModuleCallbacks(ModuleCallbacks* callbacks) noexcept;
/// Members of the list.
LM_HOST_API std::size_t moduleCallbacksCount() noexcept;

/// One of the four callbacks.
using ModuleCallback = void (ModuleCallbacks::*)(CHostDocument*);
/// Calls `callback` of each member, in the order of joining, leaving out who left meanwhile. All are called;
/// the first exception passes after that.
LM_HOST_API void tellModules(ModuleCallback callback, CHostDocument* document);

} // namespace lm::host
