// SPDX-License-Identifier: MIT
// The user's undo: which marks of a database's undo log belong together as one step.
#pragma once

#include <cstddef>
#include <vector>

class OdDbDatabase;

namespace lm::host {

/// The steps of one document. A step is remembered as the numbers of marks before and after it, so that marks
/// and blocks which a command's own code sets go with the command. A step ends with a mark of its own, and
/// what comes outside of steps stands behind that mark; a step that leaves no change is none.
class UndoSteps {
public:
    /// Begins a step; inside another one nothing happens but counting.
    void begin(OdDbDatabase& database);
    /// Ends what begin began.
    void end(OdDbDatabase& database);
    bool isOpen() const { return m_depth != 0; }

    /// Takes back the last step, or what stands behind it. False when there is nothing, during a step that is
    /// open and during a transaction. The first exception of a reactor passes at the end.
    bool undo(OdDbDatabase& database);
    bool redo(OdDbDatabase& database);

private:
    struct Step {
        unsigned int before, after;
    };
    /// Marks that one undo took back: those behind the step, which were gone first, and those of the step.
    struct Undone {
        unsigned int behind, inStep;
        bool isEmpty;
    };
    bool isCurrent(const OdDbDatabase& database) const;

    std::vector<Step> m_done;
    std::vector<Undone> m_undone;
    unsigned int m_depth = 0;
    unsigned int m_before = 0;
    std::size_t m_recordsBefore = 0;
};

} // namespace lm::host
