// SPDX-License-Identifier: MIT
// A module that joins everything a module can join, and writes what happens to it into the log.
#include "drawing/module.h"
#include "host/debugsettings.h"
#include "host/document.h"
#include "host/functions.h"
#include "host/modulecallbacks.h"
#include "host/session.h"
#include "host/tools.h"

#include <stdexcept>

namespace {

class GoodModule : public OdStaticRxObject<OdRxModule>, private lm::host::ModuleCallbacks {
public:
    void initApp() override {
        log("good: initApp");
        lm::host::addModuleCallbacks(this);
        m_echo =
            lm::host::FunctionRegistration("lmGoodEcho", [](CHostAPI& api) { api.retList(api.getArgs()); });
        m_throw = lm::host::FunctionRegistration(
            "lmGoodThrow", [](CHostAPI&) { throw std::runtime_error("thrown by a module"); });
        m_tool = lm::host::ToolRegistration({"good", "says good", [](lm::host::ToolContext& context) {
                                                 context.out.write("good\n");
                                                 return 0;
                                             }});
    }
    void uninitApp() override {
        log("good: uninitApp");
        lm::host::removeModuleCallbacks(this);
        m_echo.reset();
        m_throw.reset();
        m_tool.reset();
    }
    ~GoodModule() override { log("good: end"); }

    void onDocumentActivated(CHostDocument*) override { log("good: activated"); }
    void onDatabaseAttached(CHostDocument*) override { log("good: attached"); }
    void onDatabaseDetached(CHostDocument*) override { log("good: detached"); }
    void onDatabaseReady(CHostDocument*) override { log("good: ready"); }

private:
    static void log(const char* line) { hostSession()->log(line); }

    lm::host::FunctionRegistration m_echo;
    lm::host::FunctionRegistration m_throw;
    lm::host::ToolRegistration m_tool;
};

// Runs while the library is loaded, before any of its exports is called.
[[maybe_unused]] const bool described = [] {
    CHostDebugSettings::Get().SetDescription("GoodModuleSwitch", "described at load");
    return true;
}();

} // namespace

LM_DEFINE_MODULE(GoodModule)
