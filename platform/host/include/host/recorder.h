// SPDX-License-Identifier: MIT
// Recorders: what writes down the events of open drawings, one line each. A module offers one, and the host
// program, which knows nothing of its events, lets it run as long as there is something to record.
//
//     lm::host::RecorderRegistration registration([](lm::host::RecorderSink sink) {
//         return std::make_unique<Recording>(std::move(sink));
//     });
#pragma once

#include "host/export.h"

#include <functional>
#include <memory>
#include <string_view>

namespace lm::host {

/// Takes one event: UTF-8 without line end.
using RecorderSink = std::function<void(std::string_view line)>;

/// A recording; it ends with the object, which must go before its module.
class LM_HOST_API Recording {
public:
    Recording() = default;
    Recording(const Recording&) = delete;
    Recording& operator=(const Recording&) = delete;
    virtual ~Recording();
};

/// Begins a recording of all documents, those that are open already too.
using Recorder = std::function<std::unique_ptr<Recording>(RecorderSink sink)>;

/// Offers a recorder for as long as it lives. Of several the latest is offered.
class LM_HOST_API RecorderRegistration {
public:
    RecorderRegistration() = default;
    /// An empty function registers nothing.
    explicit RecorderRegistration(Recorder recorder);
    RecorderRegistration(RecorderRegistration&& other) noexcept;
    RecorderRegistration& operator=(RecorderRegistration&& other) noexcept;
    ~RecorderRegistration() { reset(); }
    void reset() noexcept;

private:
    unsigned long m_id = 0;
};

/// Begins a recording; null when no module offers a recorder. Exceptions of the recorder pass.
LM_HOST_API std::unique_ptr<Recording> startRecording(RecorderSink sink);

} // namespace lm::host
