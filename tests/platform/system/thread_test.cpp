// SPDX-License-Identifier: MIT
#include "system/thread.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <iterator>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include <malloc.h>
#include <pthread.h>
#include <unistd.h>

namespace {

using namespace lm::system;
using namespace std::chrono_literals;

/// What a test thread shares with its test. Kept for good: a thread ended by force may stand inside any of
/// it.
struct Work {
    std::atomic<bool> started{false};
    std::atomic<bool> go{false};
    std::atomic<bool> unwound{false};
    std::atomic<unsigned long> rounds{0};
};

struct Guard {
    explicit Guard(Work& watched) : work(watched) {}
    ~Guard() { work.unwound = true; }
    Work& work;
};

Work& newWork() {
    static std::vector<std::unique_ptr<Work>>* const all = new std::vector<std::unique_ptr<Work>>;
    return *all->emplace_back(std::make_unique<Work>());
}

void waitStarted(const Work& work) {
    while (!work.started) std::this_thread::sleep_for(100us);
}

void waitForGo(void* given) {
    Work& work = *static_cast<Work*>(given);
    work.started = true;
    while (!work.go) std::this_thread::sleep_for(100us);
}

void spin(void* given) {
    Work& work = *static_cast<Work*>(given);
    const Guard guard(work);
    work.started = true;
    for (;;) ++work.rounds;
}

void sleepLong(void* given) {
    Work& work = *static_cast<Work*>(given);
    const Guard guard(work);
    work.started = true;
    for (;;) ::pause();
}

/// Allocates blocks beyond the size that the allocator keeps for each thread, so that each takes its lock.
void allocate(void* given) {
    Work& work = *static_cast<Work*>(given);
    void* blocks[16] = {};
    for (unsigned round = 0;; ++round) {
        void*& block = blocks[round % std::size(blocks)];
        std::free(block);
        block = std::malloc(2000 + round * 997 % 30000);
        work.started = true;
        ++work.rounds;
    }
}

TEST(Thread, RunsItsEntryOnAnotherThread) {
    static std::atomic<pthread_t> other{};
    const ThreadHandle handle = createThread([](void*) { other = ::pthread_self(); }, nullptr);
    ASSERT_NE(handle, 0u);
    EXPECT_EQ(waitThread(handle, kForever), kWaitEnded);
    EXPECT_EQ(::pthread_equal(other, ::pthread_self()), 0);
    closeThread(handle);
}

TEST(Thread, WaitTellsEndedTimedOutAndFailed) {
    Work& work = newWork();
    const ThreadHandle handle = createThread(&waitForGo, &work);
    EXPECT_EQ(waitThread(handle, 0), 258u);
    const auto before = std::chrono::steady_clock::now();
    EXPECT_EQ(waitThread(handle, 30), 258u);
    EXPECT_GE(std::chrono::steady_clock::now() - before, 30ms);
    work.go = true;
    EXPECT_EQ(waitThread(handle, 60000), 0u);
    EXPECT_EQ(waitThread(handle, 0), 0u); // and at each further wait
    closeThread(handle);
    EXPECT_EQ(waitThread(handle, 0), 0xFFFFFFFFul);
    EXPECT_EQ(waitThread(0, 0), 0xFFFFFFFFul);
    EXPECT_EQ(waitThread(handle + 1000, kForever), 0xFFFFFFFFul);
}

TEST(Thread, HandlesAreNeverGivenTwice) {
    const ThreadHandle first = createThread([](void*) {}, nullptr);
    waitThread(first, kForever);
    closeThread(first);
    const ThreadHandle second = createThread([](void*) {}, nullptr);
    EXPECT_NE(first, second);
    EXPECT_EQ(waitThread(first, kForever), kWaitFailed);
    EXPECT_EQ(waitThread(second, kForever), kWaitEnded);
    closeThread(second);
}

TEST(Thread, ClosingTwiceOrAForeignHandleIsHarmless) {
    const unsigned long before = openThreadHandles();
    Work& work = newWork();
    const ThreadHandle handle = createThread(&waitForGo, &work);
    EXPECT_EQ(openThreadHandles(), before + 1);
    waitStarted(work);
    closeThread(handle);
    closeThread(handle);
    closeThread(0);
    closeThread(~ThreadHandle{0});
    EXPECT_EQ(openThreadHandles(), before);
    work.go = true;
}

TEST(Thread, AClosedHandleLeavesTheThreadRunning) {
    Work& work = newWork();
    const ThreadHandle handle = createThread(
        [](void* given) {
            waitForGo(given);
            static_cast<Work*>(given)->rounds = 7;
        },
        &work);
    closeThread(handle);
    endThread(handle); // out of the table: nothing happens
    work.go = true;
    while (work.rounds != 7) std::this_thread::sleep_for(100us);
}

TEST(Thread, ARefusedThreadGivesZero) {
    failNextThread();
    EXPECT_EQ(createThread([](void*) {}, nullptr), 0u);
    const ThreadHandle next = createThread([](void*) {}, nullptr);
    EXPECT_NE(next, 0u);
    waitThread(next, kForever);
    closeThread(next);
}

TEST(Thread, ForcedEndStopsAComputationAndUnwindsNothing) {
    Work& work = newWork();
    const ThreadHandle handle = createThread(&spin, &work);
    waitStarted(work);
    endThread(handle);
    EXPECT_EQ(waitThread(handle, 0), kWaitEnded);
    const unsigned long rounds = work.rounds;
    std::this_thread::sleep_for(20ms);
    EXPECT_EQ(work.rounds, rounds);
    EXPECT_FALSE(work.unwound);
    closeThread(handle);
}

TEST(Thread, ForcedEndStopsABlockedCall) {
    Work& work = newWork();
    const ThreadHandle handle = createThread(&sleepLong, &work);
    waitStarted(work);
    std::this_thread::sleep_for(5ms);
    endThread(handle);
    EXPECT_EQ(waitThread(handle, 0), kWaitEnded);
    EXPECT_FALSE(work.unwound);
    closeThread(handle);
}

TEST(Thread, ForcedEndStopsAThreadThatWaitsForAnother) {
    static ThreadHandle inner = 0;
    static std::atomic<bool> waiting{false};
    inner = createThread(&spin, &newWork());
    const ThreadHandle outer = createThread(
        [](void*) {
            waiting = true;
            waitThread(inner, kForever);
        },
        nullptr);
    while (!waiting) std::this_thread::sleep_for(100us);
    endThread(outer);
    EXPECT_EQ(waitThread(outer, 0), kWaitEnded);
    EXPECT_EQ(waitThread(inner, 0), kWaitTimeout);
    endThread(inner);
    EXPECT_EQ(waitThread(inner, 0), kWaitEnded);
    closeThread(outer);
    closeThread(inner);
}

TEST(Thread, ForcedEndOfAnEndedThreadDoesNothing) {
    const ThreadHandle handle = createThread([](void*) {}, nullptr);
    waitThread(handle, kForever);
    endThread(handle);
    endThread(handle);
    endThread(0);
    closeThread(handle);
}

TEST(Thread, WakesEveryWaiterAtAForcedEnd) {
    Work& work = newWork();
    const ThreadHandle handle = createThread(&spin, &work);
    waitStarted(work);
    std::atomic<int> ended{0};
    std::vector<std::thread> waiters;
    for (int i = 0; i < 4; ++i)
        waiters.emplace_back([&] { ended += waitThread(handle, kForever) == kWaitEnded ? 1 : 0; });
    std::this_thread::sleep_for(5ms);
    endThread(handle);
    for (std::thread& waiter : waiters) waiter.join();
    EXPECT_EQ(ended, 4);
    closeThread(handle);
}

TEST(Thread, AThreadThatEndsItselfNeverComesBack) {
    static std::atomic<ThreadHandle> own{0};
    static std::atomic<bool> cameBack{false};
    const ThreadHandle handle = createThread(
        [](void*) {
            while (own == 0) std::this_thread::sleep_for(100us);
            endThread(own);
            cameBack = true;
        },
        nullptr);
    own = handle;
    EXPECT_EQ(waitThread(handle, 60000), kWaitEnded);
    std::this_thread::sleep_for(5ms);
    EXPECT_FALSE(cameBack);
    closeThread(handle);
}

TEST(Thread, EndingAThreadBeforeItReachedItsEntryWorks) {
    for (int i = 0; i < 50; ++i) {
        const ThreadHandle handle = createThread(&sleepLong, &newWork());
        endThread(handle);
        EXPECT_EQ(waitThread(handle, 0), kWaitEnded);
        closeThread(handle);
    }
}

// A thread that was stopped with the allocator's lock in its hands would let the next allocation wait for
// ever.
TEST(Thread, TwoHundredThreadsEndedWhileTheyAllocateLeaveTheProcessWorking) {
    ::mallopt(M_ARENA_MAX, 1); // one lock for all threads
    ::alarm(200);              // a standstill ends the process
    for (int round = 0; round < 50; ++round) {
        std::vector<ThreadHandle> handles;
        std::vector<Work*> works;
        for (int i = 0; i < 4; ++i) {
            works.push_back(&newWork());
            handles.push_back(createThread(&allocate, works.back()));
            ASSERT_NE(handles.back(), 0u);
        }
        for (const Work* work : works) waitStarted(*work);
        for (const ThreadHandle handle : handles) {
            endThread(handle);
            EXPECT_EQ(waitThread(handle, 0), kWaitEnded);
            closeThread(handle);
        }
    }
    std::vector<std::string> texts;
    for (int i = 0; i < 2000; ++i) texts.emplace_back(static_cast<std::size_t>(i % 500 * 20 + 1), 'x');
    std::thread([] { std::free(std::malloc(5000)); }).join();
    EXPECT_EQ(texts.size(), 2000u);
    ::alarm(0);
}

TEST(Thread, AThreadMayStartWaitForAndEndOthers) {
    const ThreadHandle handle = createThread(
        [](void*) {
            const ThreadHandle inner = createThread(&spin, &newWork());
            if (waitThread(inner, 1) != kWaitTimeout) std::abort();
            endThread(inner);
            if (waitThread(inner, 0) != kWaitEnded) std::abort();
            closeThread(inner);
        },
        nullptr);
    EXPECT_EQ(waitThread(handle, 60000), kWaitEnded);
    closeThread(handle);
}

TEST(Thread, AThreadWithAllSignalsHeldBackByItsMakerCanBeEnded) {
    sigset_t all;
    sigset_t before;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &before);
    Work& work = newWork();
    const ThreadHandle handle = createThread(&spin, &work);
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
    waitStarted(work);
    endThread(handle);
    EXPECT_EQ(waitThread(handle, 0), kWaitEnded);
    closeThread(handle);
}

TEST(ThreadDeathTest, AnExceptionOutOfTheEntryEndsTheProcess) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_DEATH(
        {
            const ThreadHandle handle = createThread([](void*) { throw 1; }, nullptr);
            waitThread(handle, kForever);
            ::sleep(60);
        },
        "terminate");
}

} // namespace
