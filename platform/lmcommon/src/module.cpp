// SPDX-License-Identifier: MIT
// The module object of LMCommon, and the two functions that the host's loader looks for.
#include "lmcommon/entrypoint.h"

namespace {

/// LMCommon has no start-up work of its own: it is there for the modules that link to it.
class CLMCommonModule : public CCEntryPoint {
public:
    void initModule() override {}
};

} // namespace

LM_DEFINE_MODULE(CLMCommonModule)
