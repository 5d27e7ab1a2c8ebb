// SPDX-License-Identifier: MIT
// Modules that fail at one place, which THROWS_IN names: version, create, null, init or uninit.
#include "drawing/module.h"
#include "host/functions.h"

#include <stdexcept>
#include <string_view>

namespace {

constexpr std::string_view kWhere = THROWS_IN;

/// An exception whose class only this module knows.
class OwnError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

class ThrowingModule : public OdStaticRxObject<OdRxModule> {
public:
    void initApp() override {
        m_function = lm::host::FunctionRegistration("lmThrowingModule", [](CHostAPI&) {});
        if (kWhere == "init") throw OdError(OdString(lm::drawing::odText("init on purpose")));
    }
    void uninitApp() override {
        if (kWhere == "uninit") throw 5;
    }

private:
    lm::host::FunctionRegistration m_function;
};

} // namespace

extern "C" __attribute__((visibility("default"))) OdRxModule* odrxCreateModuleObject(void*& handle) {
    if (kWhere == "create") throw OwnError("create on purpose");
    if (kWhere == "null") return nullptr;
    return OdRxWin32Module<ThrowingModule, ThrowingModule>::createModule(handle);
}

extern "C" __attribute__((visibility("default"))) void odrxGetAPIVersion(unsigned int& a, unsigned int& b,
                                                                         unsigned int& c, unsigned int& d) {
    if (kWhere == "version") throw OwnError("version on purpose");
    a = lm::drawing::kApiMajor;
    b = lm::drawing::kApiMinor;
    c = lm::drawing::kApiBuildMajor;
    d = lm::drawing::kApiBuildMinor;
}
