// SPDX-License-Identifier: MIT
// A module for the tests of scripts: a command of its own, and functions that throw and that never come back.
#include "drawing/module.h"
#include "host/command.h"
#include "host/functions.h"
#include "host/session.h"

#include <stdexcept>
#include <unistd.h>

namespace {

class ScriptedModule : public OdStaticRxObject<OdRxModule> {
public:
    void initApp() override {
        using lm::host::FunctionRegistration;
        m_echo = FunctionRegistration("lmEcho", [](CHostAPI& api) { api.retList(api.getArgs()); });
        m_throw = FunctionRegistration("lmThrow",
                                       [](CHostAPI&) { throw std::runtime_error("thrown by a module"); });
        m_hang = FunctionRegistration("lmHang", [](CHostAPI&) {
            for (;;) pause();
        });
        m_greet = lm::host::CommandRegistration("_LMGREET", [](OdEdCommandContext& context) {
            const std::string name = context.input().name("Name");
            lm::host::writeConsole(lm::system::fromUtf8("hello " + name + "\n"));
        });
        m_cancel = lm::host::CommandRegistration(
            "_LMCANCEL", [](OdEdCommandContext&) { throw lm::host::CommandCancelled(); });
    }
    void uninitApp() override {
        m_echo.reset();
        m_throw.reset();
        m_hang.reset();
        m_greet.reset();
        m_cancel.reset();
    }

private:
    lm::host::FunctionRegistration m_echo, m_throw, m_hang;
    lm::host::CommandRegistration m_greet, m_cancel;
};

} // namespace

LM_DEFINE_MODULE(ScriptedModule)
