// SPDX-License-Identifier: MIT
// Threads behind handles: start one, wait for it with a time-out, end it by force, let its handle go. A
// handle is a number in a table, so a second view of a thread, a handle closed twice and a wait on a closed
// one are harmless.
//
//     const ThreadHandle handle = createThread(&work, &data);
//     if (waitThread(handle, 500) == kWaitTimeout) endThread(handle);
//     closeThread(handle);
#pragma once

#include "system/export.h"

#include <cstdint>

namespace lm::system {

/// Names a thread in the table; a number is never given twice. 0 is no thread.
using ThreadHandle = std::uint64_t;

/// Results of waitThread.
inline constexpr unsigned long kWaitEnded = 0;
inline constexpr unsigned long kWaitTimeout = 258;
inline constexpr unsigned long kWaitFailed = 0xFFFFFFFFul;
/// The time-out of waitThread that means "for ever".
inline constexpr unsigned long kForever = 0xFFFFFFFFul;

/// Starts `entry(argument)` on a thread of its own with the default stack. Gives 0 when the system refuses
/// another thread. An exception that leaves `entry` ends the process by std::terminate.
LM_SYSTEM_API ThreadHandle createThread(void (*entry)(void*), void* argument);

/// Waits until the thread ended, by itself or by force, or until `milliseconds` went by: kWaitEnded or
/// kWaitTimeout; kWaitFailed at once for 0, an unknown and a closed handle. A time-out of 0 only looks;
/// kForever and more never end.
LM_SYSTEM_API unsigned long waitThread(ThreadHandle handle, unsigned long milliseconds);

/// Stops the thread wherever it stands and returns when it does; from then on its handle counts as ended.
/// Nothing of the thread is unwound: no destructor runs, its stack and the locks of its own code stay as they
/// are. A thread is not stopped inside the C library, where it may hold the allocator's lock, but as soon as
/// it has left it; one that is blocked in a call there is stopped in the call. Does nothing for an ended
/// thread and for a handle that isn't in the table. A thread that ends itself this way never returns from the
/// call.
LM_SYSTEM_API void endThread(ThreadHandle handle);

/// Takes the handle out of the table. The thread itself runs on. Closing an unknown handle does nothing.
LM_SYSTEM_API void closeThread(ThreadHandle handle);

/// Number of handles in the table. For tests that look for what was left behind.
LM_SYSTEM_API unsigned long openThreadHandles();

/// Lets the next createThread give 0. For tests of what its callers then do.
LM_SYSTEM_API void failNextThread();

} // namespace lm::system
