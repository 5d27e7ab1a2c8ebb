// SPDX-License-Identifier: MIT
// A module as command modules are: its class derives from CCEntryPoint. It writes what happens to it into the
// log.
#include "host/session.h"
#include "lmcommon/entrypoint.h"

namespace {

class DerivedModule : public CCEntryPoint {
public:
    void initModule() override { log("initModule"); }
    void uninitModule() override { log("uninitModule"); }
    void onDocumentActivated(CHostDocument*) override { log("activated"); }
    void onDatabaseAttached(CHostDocument*) override { log("attached"); }
    void onDatabaseDetached(CHostDocument*) override { log("detached"); }
    void onDatabaseReady(CHostDocument*) override { log("ready"); }

private:
    static void log(const char* line) { hostSession()->log(line); }
};

} // namespace

LM_DEFINE_MODULE(DerivedModule)
