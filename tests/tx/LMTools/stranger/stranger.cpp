// SPDX-License-Identifier: MIT
// A command module: it offers one function by name, "rzStrangerJoin", which joins two texts.
#include "arguments.h"
#include "ccentrypointmfc.h"
#include "rzprintf.h"
#include "vocabulary/cmensagem.h"

#include "host/functions.h"

namespace {

void join(CHostAPI&) {
    RZString first;
    RZString second;
    if (!getAllArgs(first, second)) return returnBool(false);
    rzPrintf("joined: %s\n", first + "+" + second);
    returnList(RZStringList{first, second});
}

class StrangerModule : public CCEntryPointMFC {
public:
    void initModule() override { m_join = lm::host::FunctionRegistration("rzStrangerJoin", &join); }
    void uninitModule() override { m_join.reset(); }

private:
    lm::host::FunctionRegistration m_join;
    CMensagem m_roles;
};

} // namespace

LM_DEFINE_MODULE(StrangerModule)
