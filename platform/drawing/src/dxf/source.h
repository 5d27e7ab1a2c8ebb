// SPDX-License-Identifier: MIT
// The file that a drawing came from, in memory: its bytes, its form and how its text is encoded. Every object
// keeps its place in here until it is changed.
#pragma once

#include "dxf/encoding.h"
#include "system/file.h"

#include <string>

namespace lm::drawing {

struct Source {
    system::FileBytes bytes;
    std::string name;        ///< for messages
    bool binary = false;     ///< binary DXF
    bool shortCodes = false; ///< binary DXF of R12: group codes of one byte
    TextDecoder decoder;

    const char* begin() const { return bytes.data(); }
    const char* end() const { return bytes.data() + bytes.size(); }
    /// Line (counted from 1) of a place in a text file; byte offset in a binary one.
    std::uint64_t placeOf(const char* at) const;
    /// The place in words, such as "line 12".
    std::string placeText(const char* at) const;
};

} // namespace lm::drawing
