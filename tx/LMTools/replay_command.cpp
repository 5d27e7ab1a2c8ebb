// SPDX-License-Identifier: MIT
// _LMREPLAY: tells a recorded stream of events, one line each.
#include "commands.h"
#include "event_stream.h"

#include "system/file.h"
#include "system/path.h"

namespace lmtools {

namespace {

/// Says each event as a line: its name, object, block, layer, and the command in which it happened.
class Teller : public EventListener {
public:
    explicit Teller(const OdEdCommandContext& context) : m_context(context) {}
    void happened(const Event& event) override {
        m_context.checkTime();
        std::string line = nameOf(event);
        add(line, " ", event.handle);
        add(line, " ", event.block);
        add(line, " on ", event.layer);
        add(line, event.family == Family::kCommand ? " " : "  in ", event.command);
        if (event.document != 0) line += "  document " + std::to_string(event.document);
        say(line);
    }

private:
    static void add(std::string& line, const char* lead, const lm::WideString& text) {
        if (!text.empty()) line += lead + lm::system::toUtf8(text);
    }
    const OdEdCommandContext& m_context;
};

/// Asks for the file.
void run(OdEdCommandContext& context) {
    const std::string path = context.input().name("Event file");
    lm::system::FileBytes bytes;
    const lm::system::FileOutcome outcome =
        lm::system::readWhole(lm::system::nativePath(lm::system::fromUtf8(path)), bytes);
    if (outcome.status == lm::system::FileStatus::kNotFound) fail("no file " + inQuotes(path));
    if (outcome.status != lm::system::FileStatus::kRead)
        fail(inQuotes(path) + " can't be read" + (outcome.reason.empty() ? "" : ": " + outcome.reason));
    Teller teller(context);
    try {
        say(counted(replay({bytes.data(), bytes.size()}, teller), "event"));
    } catch (const BadEvent& bad) {
        fail(inQuotes(path) + ": " + bad.what());
    }
}

} // namespace

void addReplayCommand(Commands& commands) {
    commands.emplace_back("_LMREPLAY", &run);
}

} // namespace lmtools
