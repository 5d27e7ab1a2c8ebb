// SPDX-License-Identifier: MIT
#include "host/recorder.h"

#include "namedstack.h"

#include <utility>

namespace lm::host {

namespace {

// All under one name, so that a later one hides an earlier one until it goes.
using RecorderTable = NamedStack<int, Recorder, std::less<>>;
constexpr int kOnlyName = 0;

// Never destroyed: a module may leave the table while the process ends.
RecorderTable& table() {
    static RecorderTable& offered = *new RecorderTable;
    return offered;
}

} // namespace

Recording::~Recording() = default;

RecorderRegistration::RecorderRegistration(Recorder recorder) {
    if (recorder) m_id = table().add(kOnlyName, std::move(recorder));
}

RecorderRegistration::RecorderRegistration(RecorderRegistration&& other) noexcept
    : m_id(std::exchange(other.m_id, 0)) {}

RecorderRegistration& RecorderRegistration::operator=(RecorderRegistration&& other) noexcept {
    if (this != &other) {
        reset();
        m_id = std::exchange(other.m_id, 0);
    }
    return *this;
}

void RecorderRegistration::reset() noexcept {
    if (m_id != 0) table().remove(std::exchange(m_id, 0));
}

std::unique_ptr<Recording> startRecording(RecorderSink sink) {
    const auto recorder = table().find(kOnlyName);
    return recorder == nullptr ? nullptr : (*recorder)(std::move(sink));
}

} // namespace lm::host
