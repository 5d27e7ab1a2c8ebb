// SPDX-License-Identifier: MIT
// CCEntryPointMFC: the base of the module class of a command module.
//
//     class MyModule : public CCEntryPointMFC {
//     public:
//         void initModule() override { ... }
//     };
//     LM_DEFINE_MODULE(MyModule)
#pragma once

#include "export.h"

#include "lmcommon/entrypoint.h"

/// Entry point of a module with a user interface. It adds nothing to CCEntryPoint: a module supplies
/// initModule, and overrides uninitModule and the four document callbacks as it needs them. Only
/// OdRxWin32Module makes objects of it.
class LM_COMMONMFC_API CCEntryPointMFC : public CCEntryPoint {
public:
    ~CCEntryPointMFC() override;

protected:
    CCEntryPointMFC();
};
