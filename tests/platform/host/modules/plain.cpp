// SPDX-License-Identifier: MIT
// A second module without any part in anything.
#include "drawing/module.h"
#include "host/session.h"

namespace {

class PlainModule : public OdStaticRxObject<OdRxModule> {
public:
    void initApp() override { hostSession()->log("plain: initApp"); }
    void uninitApp() override { hostSession()->log("plain: uninitApp"); }
};

} // namespace

LM_DEFINE_MODULE(PlainModule)
