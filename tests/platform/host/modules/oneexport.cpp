// SPDX-License-Identifier: MIT
// A shared library with the right version and nothing to create.
extern "C" __attribute__((visibility("default"))) void odrxGetAPIVersion(unsigned int& a, unsigned int& b,
                                                                         unsigned int& c, unsigned int& d) {
    a = 26;
    b = 8;
    c = 0;
    d = 54832;
}
