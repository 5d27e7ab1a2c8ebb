// SPDX-License-Identifier: MIT
#include "undosteps.h"

#include "drawing/database.h"

#include <exception>
#include <utility>

namespace lm::host {

namespace {

/// Goes on with a series of undos or redos when a reactor raises in the middle of it.
class Series {
public:
    template<class Act>
    bool run(Act act) {
        try {
            return act();
        } catch (...) {
            if (!m_first) m_first = std::current_exception();
            return true; // the log has done its part before it tells the reactors
        }
    }
    void finish() {
        if (m_first) std::rethrow_exception(std::exchange(m_first, nullptr));
    }

private:
    std::exception_ptr m_first;
};

} // namespace

void UndoSteps::begin(OdDbDatabase& database) {
    if (m_depth++ != 0) return;
    m_before = database.undoMarks();
    m_recordsBefore = database.undoRecords();
    database.startUndoRecord();
}

void UndoSteps::end(OdDbDatabase& database) {
    if (--m_depth != 0 || database.undoRecords() == m_recordsBefore) return;
    const unsigned int after = database.undoMarks();
    if (after <= m_before) return; // a block of the undo log was open all the time: it is the step
    while (!m_done.empty() && m_done.back().after > m_before) m_done.pop_back();
    m_done.push_back({m_before, after});
    database.startUndoRecord();
}

bool UndoSteps::undo(OdDbDatabase& database) {
    if (m_depth != 0 || database.numActiveTransactions() != 0) return false;
    if (!isCurrent(database)) m_undone.clear();
    Series series;
    Undone undone{0, 0, true};
    for (;;) {
        const unsigned int marks = database.undoMarks();
        while (!m_done.empty() && m_done.back().before >= marks) m_done.pop_back();
        if (!m_done.empty() && marks <= m_done.back().after) break;
        const std::size_t records = database.undoRecords();
        if (!series.run([&] { return database.undo(); })) break;
        ++undone.behind;
        if (database.undoRecords() == records) continue; // a mark with nothing behind it
        undone.isEmpty = false;
        break;
    }
    if (undone.isEmpty && !m_done.empty() && database.undoMarks() <= m_done.back().after) {
        const Step step = m_done.back();
        m_done.pop_back();
        while (database.undoMarks() > step.before && series.run([&] { return database.undo(); }))
            ++undone.inStep;
        undone.isEmpty = false;
    }
    if (undone.behind + undone.inStep != 0) m_undone.push_back(undone);
    series.finish();
    return !undone.isEmpty;
}

bool UndoSteps::redo(OdDbDatabase& database) {
    if (m_depth != 0 || database.numActiveTransactions() != 0) return false;
    if (!isCurrent(database)) m_undone.clear();
    Series series;
    bool done = false;
    while (!done && !m_undone.empty()) {
        const Undone undone = m_undone.back();
        m_undone.pop_back();
        const unsigned int before = database.undoMarks();
        for (unsigned int i = 0; i < undone.inStep; ++i) series.run([&] { return database.redo(); });
        if (undone.inStep != 0) m_done.push_back({before, database.undoMarks()});
        for (unsigned int i = 0; i < undone.behind; ++i) series.run([&] { return database.redo(); });
        done = !undone.isEmpty;
    }
    series.finish();
    return done;
}

/// Whether the log still has what was taken back: any change makes it forget.
bool UndoSteps::isCurrent(const OdDbDatabase& database) const {
    unsigned int marks = 0;
    for (const Undone& undone : m_undone) marks += undone.behind + undone.inStep;
    return marks == database.redoSteps();
}

} // namespace lm::host
