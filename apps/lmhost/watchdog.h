// SPDX-License-Identifier: MIT
// Ends the process when a step of a script doesn't end: what runs inside a module's function can't be stopped
// in any other way. Evaluations and the host's commands keep their time limit themselves, well before that.
#pragma once

#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <string>
#include <thread>

namespace lmhost {

/// Watches steps from a thread of its own.
class Watchdog {
public:
    /// A step may take twice the limit (an evaluation and the last command in it) and two seconds more. A
    /// limit of 0 watches nothing. `error` takes the last line of the process, on the watchdog's thread.
    Watchdog(double timeLimit, std::function<void(const std::string&)> error);
    ~Watchdog();
    Watchdog(const Watchdog&) = delete;
    Watchdog& operator=(const Watchdog&) = delete;

    /// A step begins or has ended.
    void step(bool begins) const;

    /// One step for as long as it lives.
    class Step {
    public:
        explicit Step(const Watchdog& watchdog) : m_watchdog(watchdog) { watchdog.step(true); }
        ~Step() { m_watchdog.step(false); }
        Step(const Step&) = delete;
        Step& operator=(const Step&) = delete;

    private:
        const Watchdog& m_watchdog;
    };

private:
    using Clock = std::chrono::steady_clock;
    void watch();

    double m_limit;
    std::function<void(const std::string&)> m_error;
    mutable std::mutex m_mutex;
    mutable std::condition_variable m_changed;
    mutable Clock::time_point m_deadline = Clock::time_point::max();
    bool m_isOver = false;
    std::thread m_thread;
};

} // namespace lmhost
