// SPDX-License-Identifier: MIT
#include "rzthread.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <memory>
#include <thread>
#include <type_traits>
#include <vector>

#include <unistd.h>

namespace {

using namespace std::chrono_literals;

static_assert(!std::has_virtual_destructor_v<RZThread>);
static_assert(std::is_abstract_v<RZThread>);
static_assert(RZThread::state(0) == RZThread::kNeverStarted && RZThread::state(1) == RZThread::kStarted &&
              RZThread::state(2) == RZThread::kFinished);

/// What a run shares with its test; kept for good, since a run may be stopped while it looks at it.
struct Signals {
    std::atomic<int> runs{0};
    std::atomic<bool> go{false};
    std::atomic<bool> unwound{false};
};

Signals& newSignals() {
    static auto* const all = new std::vector<std::unique_ptr<Signals>>;
    return *all->emplace_back(std::make_unique<Signals>());
}

class Worker : public RZThread {
public:
    explicit Worker(Signals& signals) : m_signals(&signals) {}
    void run() override {
        Signals& signals = *m_signals;
        struct Guard {
            Signals& watched;
            ~Guard() { watched.unwound = true; }
        } const guard{signals};
        ++signals.runs;
        while (!signals.go) std::this_thread::sleep_for(50us);
    }
    void end() { forceTerminate(); }

private:
    Signals* m_signals;
};

void waitForRun(const Signals& signals, int count = 1) {
    while (signals.runs < count) std::this_thread::sleep_for(50us);
}

TEST(RzThread, NeverStartedIsStateZeroAndWaitsForNothing) {
    Worker worker(newSignals());
    EXPECT_EQ(worker.getState(), RZThread::kNeverStarted);
    EXPECT_EQ(worker.wait(0xFFFFFFFFul), 0u);
    EXPECT_EQ(worker.wait(0), 0u);
}

TEST(RzThread, RunsFinishesAndCanBeStartedAgain) {
    Signals& signals = newSignals();
    const unsigned long handles = lm::system::openThreadHandles();
    {
        Worker worker(signals);
        worker.startThread();
        EXPECT_EQ(worker.getState(), RZThread::kStarted);
        EXPECT_EQ(worker.wait(1), 258u);
        signals.go = true;
        EXPECT_EQ(worker.wait(0xFFFFFFFFul), 0u);
        EXPECT_EQ(worker.getState(), RZThread::kFinished);
        EXPECT_EQ(worker.wait(0xFFFFFFFFul), 0u); // at once, in this state
        worker.startThread();
        worker.wait(0xFFFFFFFFul);
        EXPECT_EQ(signals.runs, 2);
        EXPECT_EQ(worker.getState(), RZThread::kFinished);
        EXPECT_EQ(lm::system::openThreadHandles(), handles + 1); // the first run's handle was closed
    }
    EXPECT_EQ(lm::system::openThreadHandles(), handles); // the end closes the handle of a finished thread
}

TEST(RzThread, ASecondStartWhileRunningChangesNothing) {
    Signals& signals = newSignals();
    Worker worker(signals);
    worker.startThread();
    waitForRun(signals);
    worker.startThread();
    worker.startThread();
    signals.go = true;
    worker.wait(0xFFFFFFFFul);
    EXPECT_EQ(signals.runs, 1);
}

class Brief : public RZThread {
public:
    void run() override { ++runs; }
    std::atomic<int> runs{0};
};

TEST(RzThread, KeepsOneHandleHoweverStartsAndEndsMeet) {
    const unsigned long handles = lm::system::openThreadHandles();
    {
        Brief brief;
        while (brief.runs < 100) brief.startThread();
        brief.wait(0xFFFFFFFFul);
        EXPECT_EQ(lm::system::openThreadHandles(), handles + 1);
    }
    EXPECT_EQ(lm::system::openThreadHandles(), handles);
}

TEST(RzThread, ForcedEndUnwindsNothingAndLeavesTheState) {
    Signals& signals = newSignals();
    Worker worker(signals);
    worker.startThread();
    waitForRun(signals);
    worker.end();
    EXPECT_EQ(worker.getState(), RZThread::kStarted);
    EXPECT_EQ(worker.wait(0), 0xFFFFFFFFul); // no thread to wait for
    worker.end();                            // nothing is left to end
    signals.go = true;
    std::this_thread::sleep_for(5ms);
    EXPECT_FALSE(signals.unwound);
    worker.startThread(); // the state says that it runs
    EXPECT_EQ(signals.runs, 1);
}

TEST(RzThread, TheDestructorStopsARun) {
    Signals& signals = newSignals();
    const unsigned long handles = lm::system::openThreadHandles();
    {
        Worker worker(signals);
        worker.startThread();
        waitForRun(signals);
    }
    signals.go = true;
    std::this_thread::sleep_for(5ms);
    EXPECT_FALSE(signals.unwound);
    EXPECT_EQ(lm::system::openThreadHandles(), handles);
}

TEST(RzThread, ACopyIsASecondViewOfTheSameThread) {
    Signals& signals = newSignals();
    Worker worker(signals);
    worker.startThread();
    waitForRun(signals);
    {
        Worker copy(worker);
        EXPECT_EQ(copy.getState(), RZThread::kStarted);
        EXPECT_EQ(copy.wait(0), 258u);
        Worker assigned(newSignals());
        assigned = copy;
        EXPECT_EQ(assigned.wait(0), 258u);
        copy.startThread(); // it runs already
        EXPECT_EQ(signals.runs, 1);
    } // both views end the thread; the second finds its handle closed
    EXPECT_EQ(worker.getState(), RZThread::kStarted);
    EXPECT_EQ(worker.wait(0xFFFFFFFFul), 0xFFFFFFFFul);
    signals.go = true;
    std::this_thread::sleep_for(5ms);
    EXPECT_FALSE(signals.unwound);
}

TEST(RzThread, ACopyKeepsItsStateWhenTheThreadFinishes) {
    Signals& signals = newSignals();
    Worker worker(signals);
    worker.startThread();
    waitForRun(signals);
    Worker copy(worker);
    signals.go = true;
    EXPECT_EQ(copy.wait(0xFFFFFFFFul), 0u);
    EXPECT_EQ(worker.getState(), RZThread::kFinished);
    EXPECT_EQ(copy.getState(), RZThread::kStarted);
    EXPECT_EQ(copy.wait(0xFFFFFFFFul), 0u);
}

TEST(RzThread, AThreadThatCannotBeMadeLeavesTheStateAtStarted) {
    Worker worker(newSignals());
    lm::system::failNextThread();
    worker.startThread();
    EXPECT_EQ(worker.getState(), RZThread::kStarted);
    EXPECT_EQ(worker.wait(0xFFFFFFFFul), 0xFFFFFFFFul);
    worker.startThread();
    EXPECT_EQ(worker.wait(0), 0xFFFFFFFFul);
}

class Thrower : public RZThread {
public:
    void run() override { throw 7; }
};

TEST(RzThreadDeathTest, AnExceptionOutOfTheRunEndsTheProcessInStateStarted) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_DEATH(
        {
            static Thrower thrower;
            std::set_terminate([] {
                std::fprintf(stderr, "terminated in state %d\n", static_cast<int>(thrower.getState()));
                std::_Exit(1);
            });
            thrower.startThread();
            ::sleep(60);
        },
        "terminated in state 1");
}

} // namespace
