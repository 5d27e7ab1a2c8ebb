// SPDX-License-Identifier: MIT
// The session of the host: its log and its settings; and the console that formatted text goes to.
//
//     if (CHostSession* session = hostSession()) session->log("a line");
#pragma once

#include "host/hoststring.h"
#include "host/resbuf.h"

#include "drawing/objectid.h"

#include <functional>
#include <memory>
#include <vector>

class CHostSelectionSet;

namespace lm::host {
struct SessionData;
/// Takes text; a log line comes without its line end.
using TextSink = std::function<void(lm::WideView text)>;
} // namespace lm::host

/// The session. The log can be written on any thread, all else belongs to the main thread.
class LM_HOST_API CHostSession {
public:
    /// Lines that the session remembers; older ones are dropped.
    static constexpr std::size_t kKeptLines = 10000;

    CHostSession();
    ~CHostSession();

    /// Adds a line to the log: it is remembered and handed to the sink.
    void log(const CHostString& line);
    /// The remembered lines, oldest first.
    std::vector<CHostString> lines() const;
    void clearLines();
    /// Where lines go besides; an empty function for nowhere. Gives the sink before.
    lm::host::TextSink setLogSink(lm::host::TextSink sink);

    /// An integer setting by its name, ignoring case; 0 for one that was never set.
    int setting(const CHostString& name) const;
    void setSetting(const CHostString& name, int value);

    /// One record with a text, for filters: group 8 for a layer's name, 0 for a DXF name. `group` must be a
    /// code that holds text, else the result is null. The caller owns the record and releases it by
    /// CHostAPI::relRb.
    hst_resbufW* buildList(short group, const CHostString& text) const;
    /// Adds the object of an entity name to a selection set; RTERROR for a name that names nothing, for one
    /// that is in the set already, and for a null set.
    int addToSelection(CHostSelectionSet* set, const unsigned long long name[2]) const;
    /// Makes a copy of a set's members the current selection; null leaves none.
    void setCurrentSelection(const CHostSelectionSet* set);
    /// What is selected now.
    const std::vector<OdDbObjectId>& currentSelection() const;

private:
    std::unique_ptr<lm::host::SessionData> m_data;
};

/// The session, or null in a host without one.
LM_HOST_API CHostSession* hostSession();

/// The time for the log, local, as in "2026-01-31 08:15:00"; never with a "%".
LM_HOST_API CHostString GetHistoryTimestamp();

namespace lm::host {

/// Whether hostSession gives the session. For tests.
LM_HOST_API void setSessionPresent(bool present);
/// Fixes the text of GetHistoryTimestamp, without its "%"; an empty text gives the clock back. For tests.
LM_HOST_API void setHistoryTimestamp(const CHostString& text);

/// Writes text to the console.
LM_HOST_API void writeConsole(lm::WideView text);
/// Where console text goes; an empty function for standard error, in UTF-8, which is the default. Gives the
/// sink before.
LM_HOST_API TextSink setConsoleSink(TextSink sink);

} // namespace lm::host
