// SPDX-License-Identifier: MIT
// LMTools: the command module that comes with the library, and the sample for others. It uses the library as
// any module of a stranger would.
#include "commands.h"
#include "event_recorder.h"
#include "tools.h"

#include "ccentrypointmfc.h"

namespace lmtools {

class Module : public CCEntryPointMFC {
public:
    void initModule() override {
        m_tools.emplace_back(blocksTool());
        m_tools.emplace_back(componentsTool());
        m_tools.emplace_back(pagesTool());
        for (const auto add :
             {&addInsertCommand, &addAttributeCommands, &addVirtualCommand, &addBlockCommands,
              &addShapeCommands, &addLinkCommands, &addCircuitCommand, &addPageCommands, &addProjectCommands,
              &addReplayCommand, &addWorkbookCommands})
            add(m_commands);
        m_recorder = lm::host::RecorderRegistration(&startEventRecording);
    }
    void uninitModule() override {
        m_recorder.reset();
        m_commands.clear();
        m_tools.clear();
    }

private:
    std::vector<lm::host::ToolRegistration> m_tools;
    Commands m_commands;
    lm::host::RecorderRegistration m_recorder;
};

} // namespace lmtools

LM_DEFINE_MODULE(lmtools::Module)
