// SPDX-License-Identifier: MIT
// The undo log of a database. Every change files a record that can swap what is for what was; a step is what
// stands between two marks. A record costs what changed, never what the drawing holds.
#pragma once

#include "model/node.h"

#include "drawing/geometry.h"
#include "drawing/odstring.h"

#include <memory>
#include <variant>
#include <vector>

namespace lm::drawing {

struct DatabaseData;

/// One change. Swapping it twice changes nothing.
struct UndoRecord {
    /// The fields of an object were changed; the state holds them as they were.
    struct State {
        std::unique_ptr<OdDbObject> image;
    };
    /// An object became resident: as the last part of its owner behind `previous`, or as a loose object.
    struct Append {
        Node* previous;
        bool asPart;
    };
    /// The erased mark was turned.
    struct Erase {};
    /// A name of a table (the node) stood for another record.
    struct Name {
        OdString name;
        Node* before;
        Node* after;
    };
    /// A reference (the node) left the list of one block at an index and went to the end of another's.
    struct Reference {
        Node* from;
        std::size_t index;
        Node* to;
    };
    /// A dictionary (the node) got an entry at its end.
    struct Entry {
        OdString name;
        OdDbObjectId id;
    };
    struct CurrentLayer {
        Node* layer;
    };
    struct BasePoint {
        OdGePoint3d point;
    };
    using Change = std::variant<State, Append, Erase, Name, Reference, Entry, CurrentLayer, BasePoint>;

    Node* node = nullptr;
    Change change;
};

/// The records of a database.
class UndoLog {
public:
    explicit UndoLog(DatabaseData& data) : m_data(data) {}
    UndoLog(const UndoLog&) = delete;
    UndoLog& operator=(const UndoLog&) = delete;
    ~UndoLog();

    /// Whether changes have to be filed now.
    bool isRecording() const noexcept { return m_filing && !m_swapping; }
    void setRecording(bool recording);
    bool isRecordingWanted() const noexcept { return m_recording; }

    /// Files a change that is about to come or has just come; only while recording.
    void file(Node* node, UndoRecord::Change change);
    /// Files the fields of an object once in a step, before they change.
    void fileState(OdDbObject& object);

    bool isBlockOpen() const noexcept { return m_block; }
    void setBlock(bool open);
    void mark();
    unsigned int marks() const noexcept { return static_cast<unsigned int>(m_marks.size()); }
    unsigned int redoSteps() const noexcept { return static_cast<unsigned int>(m_redo.size()); }
    std::size_t records() const noexcept { return m_records.size(); }
    unsigned long long changes() const noexcept { return m_changes; }
    bool undo();
    bool redo();

    void startTransaction();
    /// True when it was the outermost one.
    bool endTransaction();
    void abortTransaction();
    unsigned int transactions() const noexcept { return static_cast<unsigned int>(m_transactions.size()); }

private:
    struct Position {
        std::size_t record;
        std::size_t mark;
        bool block;
    };
    using Records = std::vector<UndoRecord>;

    /// What reactors are told of a record that was swapped.
    struct Told {
        Node* node;
        enum What : unsigned char { kUnAppended, kReAppended, kErased, kChanged } what;
    };

    void swapAll(Records& records, bool back);
    void swap(UndoRecord& record, bool back);
    std::vector<Told> eventsOf(const Records& records, bool back) const;
    void tell(const std::vector<Told>& events);
    void newStep() noexcept;
    void dropRedo() noexcept;
    void forget() noexcept;

    DatabaseData& m_data;
    Records m_records;
    std::vector<std::size_t> m_marks; ///< indices of the first record of each step
    std::vector<Records> m_redo;
    std::vector<Position> m_transactions;
    unsigned long long m_changes = 0;
    std::size_t m_stepStart = 0; ///< objects imaged from here on have their mark set
    bool m_recording = false;
    bool m_filing = false;
    bool m_swapping = false;
    bool m_block = false;
};

} // namespace lm::drawing
