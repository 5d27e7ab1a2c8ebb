// SPDX-License-Identifier: MIT
#include "event_stream.h"

#include "event_names.h"

#include "host/jsonwriter.h"

#include <algorithm>

namespace lmtools {

EventListener::~EventListener() = default;

bool isEvent(Family family, Phase phase) {
    switch (family) {
    case Family::kEntity:
        return phase == Phase::kAppended;
    case Family::kCommand:
        return phase >= Phase::kWillStart && phase <= Phase::kFailed;
    case Family::kCarga:
        return phase == Phase::kInicial;
    case Family::kTransaction:
        return phase == Phase::kEndedBegin || phase == Phase::kEndedEnd;
    case Family::kBlock:
        return phase <= Phase::kDefined;
    default:
        return phase <= Phase::kErased;
    }
}

std::string nameOf(const Event& event) {
    std::string phase = kPhaseNames[static_cast<std::size_t>(event.phase)];
    phase[0] = static_cast<char>(phase[0] - 'a' + 'A');
    return kFamilyNames[static_cast<std::size_t>(event.family)] + phase;
}

namespace {

void write(lm::host::JsonWriter& json, std::string_view key, const lm::WideString& text) {
    json.key(key);
    if (text.empty())
        json.null();
    else
        json.value(lm::WideView(text));
}

} // namespace

std::string lineOf(const Event& event) {
    std::string line;
    lm::host::ToolOutput out(line);
    lm::host::JsonWriter json(out);
    json.beginObject();
    json.key("phase");
    json.value(kPhaseNames[static_cast<std::size_t>(event.phase)]);
    json.key("family");
    json.value(kFamilyNames[static_cast<std::size_t>(event.family)]);
    json.key("document");
    if (event.document == 0)
        json.null();
    else
        json.value(event.document);
    write(json, "handle", event.handle);
    write(json, "block", event.block);
    write(json, "layer", event.layer);
    write(json, "command", event.command);
    json.endObject();
    out.flush();
    return line;
}

std::size_t replay(std::string_view text, EventListener& listener) {
    std::size_t number = 0;
    while (!text.empty()) {
        ++number;
        const std::string_view line = text.substr(0, text.find('\n'));
        Event event;
        try {
            event = eventOf(line);
        } catch (const BadEvent& bad) {
            throw BadEvent("line " + std::to_string(number) + ": " + bad.what());
        }
        listener.happened(event);
        text.remove_prefix(std::min(line.size() + 1, text.size()));
    }
    return number;
}

} // namespace lmtools
