// SPDX-License-Identifier: MIT
#include "module_entry.h"

#include "host/debugsettings.h"

CCEntryPointMFC::CCEntryPointMFC() = default;

CCEntryPointMFC::~CCEntryPointMFC() = default;

void CLMCommonMFCModule::initModule() {}

void CLMCommonMFCModule::uninitModule() {}

namespace {

/// Announces the one switch that the library has in the host, at load. It is for people who look for faults;
/// the library itself never reads it.
struct DebugSwitch {
    DebugSwitch() {
        CHostDebugSettings::Get().SetDescription("HostThreadsDisable",
                                                 "Disable multi threading for the Foreach template");
    }
};

const DebugSwitch debugSwitch;

} // namespace

LM_DEFINE_MODULE(CLMCommonMFCModule)
