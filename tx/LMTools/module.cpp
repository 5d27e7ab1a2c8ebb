// SPDX-License-Identifier: MIT
// LMTools: the command module that comes with the library, and the sample for others. It uses the library as
// any module of a stranger would.
#include "commands.h"
#include "tools.h"

#include "ccentrypointmfc.h"

namespace lmtools {

class Module : public CCEntryPointMFC {
public:
    void initModule() override {
        m_tools.emplace_back(blocksTool());
        m_tools.emplace_back(componentsTool());
        for (const auto add : {&addInsertCommand, &addAttributeCommands, &addVirtualCommand,
                               &addBlockCommands, &addShapeCommands, &addLinkCommands, &addCircuitCommand})
            add(m_commands);
    }
    void uninitModule() override {
        m_commands.clear();
        m_tools.clear();
    }

private:
    std::vector<lm::host::ToolRegistration> m_tools;
    Commands m_commands;
};

} // namespace lmtools

LM_DEFINE_MODULE(lmtools::Module)
