// SPDX-License-Identifier: MIT
#include "model/undolog.h"

#include "model/databasedata.h"

#include <unordered_map>

namespace lm::drawing {

namespace {

/// Lets an object leave its owner's list. Records are swapped in order, so it is the last part there.
void detachPart(Node& node, Node* previous) noexcept {
    Node& owner = *node.owner;
    owner.lastPart = previous;
    (previous != nullptr ? previous->next : owner.firstPart) = nullptr;
    node.next = nullptr;
}

std::vector<Node*>* referencesOf(Node* block) {
    if (block == nullptr) return nullptr;
    auto* const record = OdDbBlockTableRecord::cast(block->database()->data().bodyOf(block));
    return record != nullptr ? &ObjectAccess::references(*record) : nullptr;
}

void swapReference(Node* node, const UndoRecord::Reference& change, bool back) {
    std::vector<Node*>* const from = referencesOf(change.from);
    std::vector<Node*>* const to = referencesOf(change.to);
    if (back) {
        if (to != nullptr)
            if (const auto found = std::find(to->rbegin(), to->rend(), node); found != to->rend())
                to->erase(std::next(found).base());
        if (from != nullptr) from->insert(from->begin() + static_cast<std::ptrdiff_t>(change.index), node);
    } else {
        if (from != nullptr) from->erase(from->begin() + static_cast<std::ptrdiff_t>(change.index));
        if (to != nullptr) to->push_back(node);
    }
}

/// Ends the object of an entry that no id finds any more.
void endObject(Node& node) noexcept {
    if (node.body == nullptr || ObjectAccess::refs(*node.body) != 0) return;
    delete node.body;
    node.body = nullptr;
}

/// Forgets records. What an object was appended by is gone with them, so its object can't come back.
void endObjectsOf(const std::vector<UndoRecord>& records) noexcept {
    for (const UndoRecord& record : records)
        if (std::holds_alternative<UndoRecord::Append>(record.change)) endObject(*record.node);
}

} // namespace

UndoLog::~UndoLog() = default;

void UndoLog::setRecording(bool recording) {
    m_recording = recording;
    m_filing = recording || !m_transactions.empty();
    if (!m_filing) forget();
}

void UndoLog::file(Node* node, UndoRecord::Change change) {
    if (!isRecording()) return;
    if (!m_redo.empty()) dropRedo();
    m_records.push_back({node, std::move(change)});
    ++m_changes;
}

void UndoLog::fileState(OdDbObject& object) {
    if (!isRecording() || ObjectAccess::hasFlag(object, ObjectAccess::kImaged)) return;
    file(object.objectId().node(),
         UndoRecord::State{std::unique_ptr<OdDbObject>(ObjectAccess::newState(object))});
    ObjectAccess::setFlag(object, ObjectAccess::kImaged, true);
}

void UndoLog::setBlock(bool open) {
    m_block = open;
}

void UndoLog::mark() {
    if (m_block) return; // what comes inside a block belongs to its one step
    newStep();
    m_marks.push_back(m_records.size());
}

void UndoLog::newStep() noexcept {
    for (; m_stepStart < m_records.size(); ++m_stepStart) {
        const Node* const node = m_records[m_stepStart].node;
        if (node != nullptr && node->body != nullptr)
            ObjectAccess::setFlag(*node->body, ObjectAccess::kImaged, false);
    }
}

bool UndoLog::undo() {
    if (!m_transactions.empty() || m_swapping || (m_records.empty() && m_marks.empty())) return false;
    newStep();
    const std::size_t start = m_marks.empty() ? 0 : m_marks.back();
    Records step(std::make_move_iterator(m_records.begin() + static_cast<std::ptrdiff_t>(start)),
                 std::make_move_iterator(m_records.end()));
    m_records.resize(start);
    m_stepStart = start;
    if (!m_marks.empty()) m_marks.pop_back();
    m_block = false;
    m_redo.push_back(std::move(step));
    const std::vector<Told> events = eventsOf(m_redo.back(), true);
    swapAll(m_redo.back(), true);
    tell(events);
    return true;
}

bool UndoLog::redo() {
    if (!m_transactions.empty() || m_swapping || m_redo.empty()) return false;
    newStep();
    Records step = std::move(m_redo.back());
    m_redo.pop_back();
    const std::vector<Told> events = eventsOf(step, false);
    swapAll(step, false);
    m_marks.push_back(m_records.size());
    m_records.insert(m_records.end(), std::make_move_iterator(step.begin()),
                     std::make_move_iterator(step.end()));
    newStep();
    tell(events);
    return true;
}

void UndoLog::startTransaction() {
    // What was imaged before the transaction must be imaged again in it, so that an abort finds the state at
    // its start.
    newStep();
    m_transactions.push_back({m_records.size(), m_marks.size(), m_block});
    m_filing = true;
}

bool UndoLog::endTransaction() {
    m_transactions.pop_back();
    if (!m_transactions.empty()) return false;
    m_filing = m_recording;
    if (!m_filing) forget();
    return true;
}

void UndoLog::abortTransaction() {
    const Position at = m_transactions.back();
    newStep();
    Records gone(std::make_move_iterator(m_records.begin() + static_cast<std::ptrdiff_t>(at.record)),
                 std::make_move_iterator(m_records.end()));
    m_records.resize(at.record);
    m_stepStart = at.record;
    m_marks.resize(std::min(m_marks.size(), at.mark));
    m_block = at.block;
    m_transactions.pop_back();
    const std::vector<Told> events = eventsOf(gone, true);
    swapAll(gone, true);
    m_filing = m_recording || !m_transactions.empty();
    const auto clear = [&] {
        endObjectsOf(gone);
        if (!m_filing) forget();
    };
    try {
        tell(events);
    } catch (...) {
        clear();
        throw;
    }
    clear();
}

void UndoLog::swapAll(Records& records, bool back) {
    m_changes += records.size();
    m_swapping = true;
    if (back)
        for (auto record = records.rbegin(); record != records.rend(); ++record) swap(*record, true);
    else
        for (UndoRecord& record : records) swap(record, false);
    m_swapping = false;
}

void UndoLog::swap(UndoRecord& record, bool back) {
    Node* const node = record.node;
    if (auto* state = std::get_if<UndoRecord::State>(&record.change)) {
        OdDbObject& body = *node->body;
        std::unique_ptr<OdDbObject> now(ObjectAccess::newState(body));
        ObjectAccess::takeState(body, *state->image);
        state->image = std::move(now);
        ObjectAccess::clearPendingChange(body);
        m_data.spatial.changed(*node);
    } else if (const auto* append = std::get_if<UndoRecord::Append>(&record.change)) {
        if (back) {
            if (append->asPart) detachPart(*node, append->previous);
            node->flags |= Node::kGone;
            m_data.handles.remove(node->handle, node);
            m_data.spatial.left(*node, append->asPart);
            if (node->body != nullptr) ObjectAccess::clearPending(*node->body);
            m_data.pending.dropHeld(*node);
        } else {
            if (append->asPart) node->owner->appendPart(node);
            node->flags &= static_cast<std::uint8_t>(~Node::kGone);
            m_data.handles.insert(node->handle, node);
            m_data.spatial.came(*node, append->asPart);
        }
    } else if (std::holds_alternative<UndoRecord::Erase>(record.change)) {
        node->flags ^= Node::kErased;
        m_data.spatial.changed(*node);
    } else if (const auto* name = std::get_if<UndoRecord::Name>(&record.change)) {
        auto& table = static_cast<OdDbSymbolTable&>(*m_data.bodyOf(node));
        ObjectAccess::setNamed(table, name->name, back ? name->before : name->after);
        for (const Node* const record : {name->before, name->after})
            if (record != nullptr) m_data.spatial.changed(*record);
    } else if (const auto* reference = std::get_if<UndoRecord::Reference>(&record.change)) {
        swapReference(node, *reference, back);
    } else if (const auto* entry = std::get_if<UndoRecord::Entry>(&record.change)) {
        auto& dictionary = static_cast<OdDbDictionary&>(*m_data.bodyOf(node));
        if (back)
            ObjectAccess::takeEntry(dictionary);
        else
            ObjectAccess::addEntry(dictionary, entry->name, entry->id);
    } else if (auto* layer = std::get_if<UndoRecord::CurrentLayer>(&record.change)) {
        std::swap(layer->layer, m_data.currentLayer);
    } else if (auto* base = std::get_if<UndoRecord::BasePoint>(&record.change)) {
        std::swap(base->point, m_data.basePoint);
    }
}

std::vector<UndoLog::Told> UndoLog::eventsOf(const Records& records, bool back) const {
    std::vector<Told> events;
    if (!m_data.events.isAnybodyThere()) return events;
    // Others hear what became of an object on the whole: several images are one change, marks that cancel
    // each other out are none, and what came in the step comes or goes once.
    struct Sum {
        bool came = false;
        bool marked = false;
        bool changed = false;
    };
    std::unordered_map<const Node*, Sum> sums;
    for (const UndoRecord& record : records) {
        if (std::holds_alternative<UndoRecord::Append>(record.change)) sums[record.node].came = true;
        if (std::holds_alternative<UndoRecord::Erase>(record.change)) sums[record.node].marked ^= true;
    }
    const auto add = [&](const UndoRecord& record) {
        const bool append = std::holds_alternative<UndoRecord::Append>(record.change);
        const bool mark = std::holds_alternative<UndoRecord::Erase>(record.change);
        if (!append && !mark && !std::holds_alternative<UndoRecord::State>(record.change)) return;
        Sum& sum = sums[record.node];
        if (append) {
            events.push_back({record.node, back ? Told::kUnAppended : Told::kReAppended});
        } else if (mark && sum.marked && !(sum.came && back)) {
            events.push_back({record.node, Told::kErased});
            sum.marked = false;
        } else if (!mark && !sum.came && !sum.changed) {
            events.push_back({record.node, Told::kChanged});
            sum.changed = true;
        }
    };
    if (back)
        std::for_each(records.rbegin(), records.rend(), add);
    else
        std::for_each(records.begin(), records.end(), add);
    return events;
}

void UndoLog::tell(const std::vector<Told>& events) {
    std::exception_ptr first;
    for (const Told& event : events) {
        // Who is told holds the object meanwhile, since a callback may end it.
        const OdSmartPtr<OdDbObject> object(m_data.bodyOf(event.node));
        const bool erased = event.node->isErased();
        try {
            m_data.events.tell([&](OdDbDatabaseReactor& reactor) {
                switch (event.what) {
                case Told::kUnAppended:
                    return reactor.objectUnAppended(&m_data.database, object);
                case Told::kReAppended:
                    return reactor.objectReAppended(&m_data.database, object);
                case Told::kErased:
                    return reactor.objectErased(&m_data.database, object, erased);
                case Told::kChanged:
                    return reactor.modifyUndone(&m_data.database, object);
                }
            });
        } catch (...) {
            if (!first) first = std::current_exception();
        }
    }
    if (first) std::rethrow_exception(first);
}

void UndoLog::dropRedo() noexcept {
    const std::vector<Records> gone = std::move(m_redo);
    m_redo.clear();
    for (const Records& step : gone) endObjectsOf(step);
}

void UndoLog::forget() noexcept {
    newStep();
    m_records.clear();
    m_marks.clear();
    m_stepStart = 0;
    dropRedo();
}

} // namespace lm::drawing
