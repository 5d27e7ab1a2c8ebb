// SPDX-License-Identifier: MIT
#include "rzthread.h"

RZThread::RZThread(const RZThread& other) : m_thread(other.m_thread), m_state(other.m_state.load()) {}

RZThread& RZThread::operator=(const RZThread& other) {
    m_thread = other.m_thread;
    m_state = other.m_state.load();
    return *this;
}

RZThread::~RZThread() {
    forceTerminate();
}

void RZThread::startThread() {
    // Read once: a run that ends between two looks would start anew without its old handle being closed.
    const int before = m_state;
    if (before == kStarted) return;
    if (before == kFinished) lm::system::closeThread(m_thread);
    m_state = kStarted;
    m_thread =
        lm::system::createThread([](void* self) { static_cast<RZThread*>(self)->internallRun(); }, this);
}

unsigned long RZThread::wait(unsigned long timeout) {
    return m_state == kStarted ? lm::system::waitThread(m_thread, timeout) : lm::system::kWaitEnded;
}

void RZThread::forceTerminate() {
    if (m_thread == 0) return;
    lm::system::endThread(m_thread);
    lm::system::closeThread(m_thread);
    m_thread = 0;
}

void RZThread::internallRun() {
    m_state = kStarted;
    run();
    m_state = kFinished;
}
