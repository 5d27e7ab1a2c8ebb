// SPDX-License-Identifier: MIT
// The stream of typed events of drawings: what one event is, its line of text, and reading a stream back.
//
//     {"phase":"appended","family":"cto","document":1,"handle":"2F","block":"NAF-01","layer":"P01",
//      "command":"_LMINSERT"}                                                       (on one line)
//
//     lmtools::replay(text, listener);
#pragma once

#include "system/wide.h"

#include <stdexcept>
#include <string>
#include <string_view>

namespace lmtools {

/// What an event is about, and what befell it. Together they name the operation of the reactor that was
/// called, as in blockAppended; not every pair is an event.
enum class Family {
    kBlock,
    kAtt,
    kPline,
    kLayer,
    kCto,
    kIns,
    kConta,
    kGrade,
    kEntity,
    kCommand,
    kCarga,
    kTransaction
};
enum class Phase {
    kAppended,
    kForModify,
    kModified,
    kErased,
    kDefined,
    kWillStart,
    kEnded,
    kCancelled,
    kFailed,
    kInicial,
    kEndedBegin,
    kEndedEnd
};

/// Whether the reactor has such an event.
bool isEvent(Family family, Phase phase);

/// One event. What an event doesn't have is 0 or empty.
struct Event {
    Phase phase = Phase::kAppended;
    Family family = Family::kEntity;
    int document = 0;       ///< the number of the document; transactions have none
    lm::WideString handle;  ///< of an object, in hexadecimal digits
    lm::WideString block;   ///< the block that a reference shows, that an attribute's reference shows, or a
                            ///< block's own name
    lm::WideString layer;   ///< the layer of an entity, or a layer's own name
    lm::WideString command; ///< the global name of the command itself, or of the innermost one that runs
    bool operator==(const Event&) const = default;
};

/// The name of the reactor's operation, as in "blockAppended".
std::string nameOf(const Event& event);
/// The line of an event, without its end: one JSON object in UTF-8 with all seven keys in the order of the
/// example; what the event doesn't have is null.
std::string lineOf(const Event& event);

/// A line that is no event. The text says why; that of replay says in which line, from 1.
class BadEvent : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// The event of a line: any spelling of such an object, with its keys in any order. Raises BadEvent for
/// anything else, for a key that is missing, unknown or given twice, and for what no reactor tells, such as
/// an object without a handle.
Event eventOf(std::string_view line);

/// Hears of events, in their order.
class EventListener {
public:
    EventListener() = default;
    EventListener(const EventListener&) = delete;
    EventListener& operator=(const EventListener&) = delete;
    virtual ~EventListener();
    virtual void happened(const Event& event) = 0;
};

/// Reads a recorded stream and tells a listener each event as it once happened; gives their number. Raises
/// BadEvent at the first line that is none, after those before it were told. The last line may lack its end.
std::size_t replay(std::string_view text, EventListener& listener);

} // namespace lmtools
