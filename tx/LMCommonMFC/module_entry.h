// SPDX-License-Identifier: MIT
// The library's own module class. Internal: other modules derive from CCEntryPointMFC.
#pragma once

#include "ccentrypointmfc.h"

/// The module object of the library. It has no commands and no start-up work; it is there to be the
/// singleton.
class CLMCommonMFCModule : public CCEntryPointMFC {
public:
    void initModule() override;
    void uninitModule() override;
};
