// SPDX-License-Identifier: MIT
// RZThread: the base of background work. Derive, supply run, start.
//
//     class Export : public RZThread { void run() override { ... } };
//     Export work;   work.startThread();   if (work.wait(500) == 0) ...
#pragma once

#include "export.h"

#include "system/thread.h"

#include <atomic>

/// Wraps one thread. A copy is a second view of the same thread, and nothing counts the views: each one's end
/// stops the thread. So an object must outlive its run, and a caller that needs certainty about the end uses
/// wait.
///
/// The destructor isn't virtual: objects are not deleted through this class.
class LM_COMMONMFC_API RZThread {
public:
    enum state {
        kNeverStarted = 0,
        kStarted = 1, ///< started or running; stays so after a forced end
        kFinished = 2
    };

    RZThread() = default;
    RZThread(const RZThread& other);
    RZThread& operator=(const RZThread& other);
    /// Ends the thread by force, wherever it stands.
    ~RZThread();

    /// Runs `run` on a thread of its own; again after it has finished. Nothing while it runs. When the system
    /// refuses another thread, the state is kStarted all the same, with no thread behind it.
    void startThread();
    /// While the state is kStarted: waits up to `timeout` milliseconds (0xFFFFFFFF for ever) and gives 0 for
    /// ended, 258 for timed out and 0xFFFFFFFF when there is no thread to wait for. In any other state: 0 at
    /// once.
    unsigned long wait(unsigned long timeout);
    state getState() const { return static_cast<state>(m_state.load()); }

    /// The work, on its own thread. An exception out of it ends the process.
    virtual void run() = 0;

protected:
    /// Stops the thread wherever it stands, unwinds nothing, and lets its handle go. The state stays as it
    /// was. Meant for shutdown.
    void forceTerminate();

private:
    void internallRun();

    lm::system::ThreadHandle m_thread = 0;
    std::atomic<int> m_state{kNeverStarted};
};
