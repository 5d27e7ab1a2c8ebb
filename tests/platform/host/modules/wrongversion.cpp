// SPDX-License-Identifier: MIT
// A module of another interface version. Its object must never be made.
#include "drawing/module.h"

#include <cstdlib>

extern "C" __attribute__((visibility("default"))) OdRxModule* odrxCreateModuleObject(void*&) {
    std::abort();
}

extern "C" __attribute__((visibility("default"))) void odrxGetAPIVersion(unsigned int& a, unsigned int& b,
                                                                         unsigned int& c, unsigned int& d) {
    a = 26;
    b = 8;
    c = 0;
    d = 54831;
}
