// SPDX-License-Identifier: MIT
// Cuts any bytes into parts of a script, asking for items, answers and rests of lines in turn, and checks
// that every step moves on.
#include "../platform/host/src/scriptreader.h"

#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using lm::host::ScriptPart;
    lm::host::ScriptReader reader(std::string(reinterpret_cast<const char*>(data), size));
    std::size_t parts = 0;
    for (ScriptPart part = reader.nextItem(); part.kind != ScriptPart::kEnd; part = reader.nextItem()) {
        if (++parts > size) std::abort(); // each item takes at least one byte
        if (part.line < 1) std::abort();
        if (parts % 3 == 0) reader.nextAnswer();
        if (parts % 3 == 1) reader.nextOfLine();
        if (parts % 5 == 0) reader.skipLine();
    }
    return reader.nextAnswer().kind == ScriptPart::kEnd ? 0 : (std::abort(), 0);
}
