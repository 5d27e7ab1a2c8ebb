// SPDX-License-Identifier: MIT
// A shared library that is no module.
extern "C" __attribute__((visibility("default"))) int lmTestNothing() {
    return 0;
}
