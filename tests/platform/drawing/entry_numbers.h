// SPDX-License-Identifier: MIT
// The numbers of an entry as tests compare them.
#pragma once

#include "dxf_writer.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <string>

namespace drawing_test {

/// The values of a code in an entry, rounded to six digits, with a blank behind each.
inline std::string numbers(const std::string& entry, int code) {
    std::string out;
    for (const auto& [c, value] : dxf::split(entry))
        if (c == code) {
            char text[32];
            std::snprintf(text, sizeof text, "%g ",
                          std::round(std::strtod(value.c_str(), nullptr) * 1e6) / 1e6 + 0.0);
            out += text;
        }
    return out;
}

} // namespace drawing_test
