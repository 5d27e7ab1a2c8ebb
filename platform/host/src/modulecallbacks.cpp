// SPDX-License-Identifier: MIT
#include "host/modulecallbacks.h"

#include "stillthere.h"

namespace lm::host {

namespace {

// Never destroyed: a module may leave the list while the process ends.
std::vector<ModuleCallbacks*>& members() {
    static std::vector<ModuleCallbacks*>& list = *new std::vector<ModuleCallbacks*>;
    return list;
}

} // namespace

ModuleCallbacks::~ModuleCallbacks() = default;

void addModuleCallbacks(ModuleCallbacks* callbacks) {
    addOnce(members(), callbacks);
}

void removeModuleCallbacks(ModuleCallbacks* callbacks) noexcept {
    std::erase(members(), callbacks);
}

std::size_t moduleCallbacksCount() noexcept {
    return members().size();
}

void tellModules(ModuleCallback callback, CHostDocument* document) {
    visitThoseStillThere(members(), [&](ModuleCallbacks& member) { (member.*callback)(document); });
}

} // namespace lm::host
