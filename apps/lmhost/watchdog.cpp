// SPDX-License-Identifier: MIT
#include "watchdog.h"

#include <algorithm>
#include <cstdio>
#include <utility>

#include <unistd.h>

namespace lmhost {

namespace {

constexpr int kCommandFailed = 5;
constexpr double kLongest = 1e8; // seconds, so that no sum of times overflows

} // namespace

Watchdog::Watchdog(double timeLimit, std::function<void(const std::string&)> error)
    : m_limit(std::min(timeLimit, kLongest)), m_error(std::move(error)) {
    if (m_limit > 0) m_thread = std::thread([this] { watch(); });
}

Watchdog::~Watchdog() {
    if (!m_thread.joinable()) return;
    {
        const std::lock_guard lock(m_mutex);
        m_isOver = true;
    }
    m_changed.notify_one();
    m_thread.join();
}

void Watchdog::step(bool begins) const {
    if (m_limit <= 0) return;
    const std::chrono::duration<double> patience(2 * m_limit + 2);
    const std::lock_guard lock(m_mutex);
    const bool isFirst = m_deadline == Clock::time_point::max();
    m_deadline = begins ? Clock::now() + std::chrono::duration_cast<Clock::duration>(patience)
                        : Clock::time_point::max();
    // Only a thread that waits for ever must hear of it: another one looks when its time has come.
    if (begins && isFirst) m_changed.notify_one();
}

void Watchdog::watch() {
    std::unique_lock lock(m_mutex);
    while (!m_isOver) {
        const Clock::time_point deadline = m_deadline;
        if (deadline == Clock::time_point::max()) {
            m_changed.wait(lock);
            continue;
        }
        m_changed.wait_until(lock, deadline);
        if (m_isOver || m_deadline > Clock::now()) continue;
        m_error("what was called doesn't end: given up long after the time limit");
        std::fflush(stderr);
        _exit(kCommandFailed);
    }
}

} // namespace lmhost
