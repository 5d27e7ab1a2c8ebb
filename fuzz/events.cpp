// SPDX-License-Identifier: MIT
// Reads any text as a recorded stream of events. Whatever it is, it ends with its events or with one line
// that begins with a number; and events that were read are written as lines that read the same.
#include "../tx/LMTools/event_stream.h"

#include <cstdint>
#include <cstdlib>
#include <vector>

namespace {

class Heard : public lmtools::EventListener {
public:
    void happened(const lmtools::Event& event) override { events.push_back(event); }
    std::vector<lmtools::Event> events;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    Heard heard;
    try {
        if (lmtools::replay(text, heard) != heard.events.size()) std::abort();
    } catch (const lmtools::BadEvent& bad) {
        const std::string line = "line " + std::to_string(heard.events.size() + 1) + ": ";
        if (std::string_view(bad.what()).substr(0, line.size()) != line) std::abort();
    }
    std::string lines;
    for (const lmtools::Event& event : heard.events) lines += lineOf(event) + "\n";
    Heard again;
    if (lmtools::replay(lines, again) != heard.events.size() || again.events != heard.events) std::abort();
    return 0;
}
