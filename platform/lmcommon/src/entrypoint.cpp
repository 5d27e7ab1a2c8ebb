// SPDX-License-Identifier: MIT
#include "lmcommon/entrypoint.h"

#include "host/modulecallbacks.h"

#include <utility>

namespace {

/// Hands the host's calls on to an entry point.
class Relay final : public lm::host::ModuleCallbacks {
public:
    explicit Relay(CCEntryPoint& entry) : m_entry(entry) { lm::host::addModuleCallbacks(this); }
    Relay(const Relay&) = delete;
    Relay& operator=(const Relay&) = delete;
    ~Relay() override { lm::host::removeModuleCallbacks(this); }

    void onDocumentActivated(CHostDocument* document) override { m_entry.onDocumentActivated(document); }
    void onDatabaseAttached(CHostDocument* document) override { m_entry.onDatabaseAttached(document); }
    void onDatabaseDetached(CHostDocument* document) override { m_entry.onDatabaseDetached(document); }
    void onDatabaseReady(CHostDocument* document) override { m_entry.onDatabaseReady(document); }

private:
    CCEntryPoint& m_entry;
};

} // namespace

CCEntryPoint::CCEntryPoint() = default;

CCEntryPoint::~CCEntryPoint() {
    leave();
}

void CCEntryPoint::leave() noexcept {
    delete std::exchange(m_callbacks, nullptr);
}

void CCEntryPoint::initApp() {
    if (m_callbacks == nullptr) m_callbacks = new Relay(*this);
    try {
        initModule();
    } catch (...) {
        leave();
        throw;
    }
}

void CCEntryPoint::uninitApp() {
    try {
        uninitModule();
    } catch (...) {
        leave();
        throw;
    }
    leave();
}

void CCEntryPoint::uninitModule() {}
void CCEntryPoint::onDocumentActivated(CHostDocument*) {}
void CCEntryPoint::onDatabaseAttached(CHostDocument*) {}
void CCEntryPoint::onDatabaseDetached(CHostDocument*) {}
void CCEntryPoint::onDatabaseReady(CHostDocument*) {}
