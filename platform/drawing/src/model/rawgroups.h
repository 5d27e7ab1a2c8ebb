// SPDX-License-Identifier: MIT
// The groups that an object came with. What its class doesn't read is kept in them, copied with them and
// written back around the fields of the class.
//
// An entry that came from the file of its database has its groups there (Node::offset, Node::length). A copy
// has them in a RawGroups object that hangs on its body: still in the file while they can stay as they are,
// else in bytes of its own, in which handles and names are translated already. So whoever writes an entry
// asks groupsOf, and finds nothing in there that belongs to another object:
//
// - own handle (5, 105), owner (330 in front of the first 100) and extended data (1000 and up) are the node's
//   and the body's; groups with these codes may be in there with any value, or be missing, and count for
//   nothing, but that a copy inside the drawing keeps the handle of what it was copied from, if it has any
// - handles in all other places are valid in the database of the node, or 0
// - what the class reads may stand in there with an old value: the body's fields count
// - a copied POLYLINE or INSERT has no SEQEND among its parts: whoever writes parts closes their list
#pragma once

#include "dxf/cursor.h"
#include "model/node.h"

#include <functional>
#include <memory>
#include <utility>

namespace lm::drawing {

struct DatabaseData;

/// Where the groups of an entry lie. `form` tells how they are to be understood (text or binary, decoder);
/// they need not lie inside it.
struct GroupSpan {
    const Source* form = nullptr;
    const char* begin = nullptr;
    std::size_t size = 0;
    bool old = false; ///< from a file older than R2000: to be upgraded when they are written
    bool isEmpty() const noexcept { return size == 0; }
    std::string_view bytes() const noexcept { return {begin, size}; }
};

/// What tells the databases of raw groups apart: groups with this mark hold handles of this database.
struct Home {
    DatabaseData* data; ///< null when the database has gone
};

/// Groups that an object carries along outside the file of its database. Never changed; counted, since copies
/// and the images of the undo log share them.
class RawGroups {
public:
    /// Groups inside a source, which stays in memory as long as they do. `kind` is the DXF name of the entry,
    /// `home` the identity of the database that the handles in the groups belong to.
    RawGroups(std::shared_ptr<const Source> source, const GroupSpan& span, std::string_view kind,
              std::shared_ptr<const Home> home);
    /// Groups of its own in the form of `form`.
    RawGroups(std::shared_ptr<const Source> form, const std::string& groups, bool old, std::string_view kind,
              std::shared_ptr<const Home> home);
    RawGroups(const RawGroups&) = delete;
    RawGroups& operator=(const RawGroups&) = delete;

    GroupSpan span() const noexcept { return {m_form.get(), m_begin, m_size, m_old}; }
    const std::shared_ptr<const Source>& form() const noexcept { return m_form; }
    const std::shared_ptr<const Home>& home() const noexcept { return m_home; }
    const std::string& kind() const noexcept { return m_kind; }

    void addRef() const noexcept { ++m_refs; }
    void release() const noexcept {
        if (--m_refs == 0) delete this;
    }

private:
    ~RawGroups() = default;
    std::shared_ptr<const Source> m_form;
    std::shared_ptr<const Home> m_home;
    std::unique_ptr<char[]> m_own; ///< with the padding that cursors look into
    const char* m_begin;
    std::uint32_t m_size;
    mutable unsigned m_refs = 1;
    bool m_old;
    std::string m_kind;
};

/// A count of a RawGroups.
class RawPointer {
public:
    RawPointer() = default;
    /// Takes over a count.
    explicit RawPointer(const RawGroups* raw) noexcept : m_raw(raw) {}
    RawPointer(const RawPointer& other) noexcept : m_raw(other.m_raw) {
        if (m_raw != nullptr) m_raw->addRef();
    }
    RawPointer(RawPointer&& other) noexcept : m_raw(other.detach()) {}
    RawPointer& operator=(RawPointer other) noexcept {
        std::swap(m_raw, other.m_raw);
        return *this;
    }
    ~RawPointer() {
        if (m_raw != nullptr) m_raw->release();
    }
    const RawGroups* get() const noexcept { return m_raw; }
    const RawGroups* operator->() const noexcept { return m_raw; }
    explicit operator bool() const noexcept { return m_raw != nullptr; }
    const RawGroups* detach() noexcept { return std::exchange(m_raw, nullptr); }

private:
    const RawGroups* m_raw = nullptr;
};

/// The groups of an entry, wherever they lie; empty for an entry that has none.
GroupSpan groupsOf(const DatabaseData& data, const Node& node) noexcept;

/// The groups of an object as another may take them: those that it carries, else those of its entry. Null for
/// an object that has none.
RawPointer rawGroupsOf(const OdDbObject& object);

/// Where a handle stands in the groups of an entry.
enum class HandlePlace : unsigned char {
    kOwn,       ///< 5, 105
    kOwner,     ///< 330 in front of the first 100
    kReactor,   ///< in braces of reactors
    kExtension, ///< in braces of an extension dictionary
    kField      ///< anywhere else
};

/// A handle in the groups of an entry.
struct RawHandle {
    HandlePlace place;
    int code;
    std::uint64_t handle;
};

/// Visits the handles in groups of a kind until `visit` answers false.
void forEachHandle(const GroupSpan& span, std::string_view kind,
                   const std::function<bool(const RawHandle&)>& visit);

/// Visits the names of blocks and styles that an entry of a kind that the database doesn't read refers to:
/// code and bytes as they stand.
void forEachName(const GroupSpan& span, std::string_view kind,
                 const std::function<void(int code, std::string_view bytes)>& visit);

/// What the groups of an entry get to hold.
struct GroupTranslation {
    /// The handle that stands for one; 0 for none. Reactors and extension dictionaries of which nothing is
    /// left go with their braces.
    std::function<std::uint64_t(const RawHandle&)> handle;
    /// The bytes to put for a name that forEachName visits; empty to leave it. Null leaves all.
    std::function<std::string(int code, std::string_view bytes)> name;
};
/// Groups in the same form with other handles and names, and without extended data.
std::string translatedGroups(const GroupSpan& span, std::string_view kind,
                             const GroupTranslation& translation);

/// A source without bytes in the form of another: what groups of their own need of it.
std::shared_ptr<const Source> emptyLike(const Source& source);

/// Groups without any handle, for an object that leaves its database for another. Null for null.
RawPointer withoutHandles(const RawPointer& raw, std::shared_ptr<const Home> home = {});

/// Visits groups until `visit` answers false. `visit` gets the group, where it begins and where the next
/// begins.
template<class F>
void forEachGroupIn(const GroupSpan& span, F&& visit) {
    if (span.isEmpty()) return;
    const auto walk = [&](auto cursor) {
        Group group;
        for (const char* start = cursor.position(); cursor.next(group) == Step::kGroup;
             start = cursor.position())
            if (!visit(static_cast<const Group&>(group), start, cursor.position())) return;
    };
    if (span.form->binary)
        walk(BinaryCursor(*span.form, span.begin, span.begin + span.size));
    else
        walk(TextCursor(*span.form, span.begin, span.begin + span.size));
}

} // namespace lm::drawing
