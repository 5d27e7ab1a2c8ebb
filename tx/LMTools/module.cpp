// SPDX-License-Identifier: MIT
// LMTools: the command module that comes with the library, and the sample for others. It uses the library as
// any module of a stranger would.
#include "tools.h"

#include "ccentrypointmfc.h"

namespace lmtools {

class Module : public CCEntryPointMFC {
public:
    void initModule() override {
        m_tools.emplace_back(blocksTool());
        m_tools.emplace_back(componentsTool());
    }
    void uninitModule() override { m_tools.clear(); }

private:
    std::vector<lm::host::ToolRegistration> m_tools;
};

} // namespace lmtools

LM_DEFINE_MODULE(lmtools::Module)
