// SPDX-License-Identifier: MIT
// What goes between the parts of the writer: entries as lists of groups, before they become bytes. A group
// either stands in the source, where its bytes are kept with their looks, or has a typed value.
//
// How the parts work together. The writer goes through the source in its order and copies what needs no
// change. For every other entry it makes a list of groups, in this order:
//   1. the groups of the source, or for an object that came from no file the complete groups of its class
//      with handle, owner and subclass marks,
//   2. for a source older than R2000: upgradeEntry (upgrade.h), so that from here on every list looks as
//   R2000
//      and later have it,
//   3. fields and extended data that the database changed, in place,
//   4. Skeleton::addTo (skeleton.h), for the entries that it names,
// and turns the list into bytes of the wanted form and encoding. What a drawing needs and has no entry for
// comes from the Skeleton, which is made before the first byte is written.
#pragma once

#include "dxf/cursor.h"
#include "model/databasedata.h"

#include "drawing/writer.h"

#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace lm::drawing {

/// The oldest version that is written. Sources before it have to be upgraded: no handles or no owners, no
/// subclass marks.
constexpr std::string_view kOldestWritten = "AC1015";
/// Whether a drawing came from a file older than that, or from one that names no version.
inline bool isOldSource(const DatabaseData& data) {
    return data.source != nullptr && data.version < kOldestWritten;
}

/// A group as it stands in a source, from its code to behind its value. The source needn't be that of the
/// drawing: copied objects carry groups of others.
struct SourceGroup {
    Group group;
    const char* begin = nullptr;
    const char* end = nullptr;
    const Source* form = nullptr;
};
/// The handle of an object; 0 is written as "0".
struct HandleValue {
    std::uint64_t handle = 0;
};
/// Text of letters, digits and signs below 0x80 that stays where it is while the drawing is written:
/// literals.
struct AsciiValue {
    std::string_view text;
};
/// Bytes of a binary chunk.
struct BinaryValue {
    std::string bytes;
};

/// One group on its way into a file. The type of the value needn't be that of the code: it is written by
/// group code, a number under a text code as its decimal text, a text under a number code as its leading
/// number.
struct OutGroup {
    using Value =
        std::variant<SourceGroup, OdString, AsciiValue, double, long long, HandleValue, BinaryValue>;

    int code = 0;
    Value value;

    /// The group in the source, null for a typed one. Its value is read by Values, see cursor.h.
    const Group* source() const {
        const auto* held = std::get_if<SourceGroup>(&value);
        return held != nullptr ? &held->group : nullptr;
    }
    /// The value as the source's bytes or the ASCII text has it; empty for other values.
    std::string_view raw() const {
        if (const Group* group = source()) return group->raw();
        const auto* ascii = std::get_if<AsciiValue>(&value);
        return ascii != nullptr ? ascii->text : std::string_view();
    }
    /// Whether this is the group 100 of a class.
    bool isMark(std::string_view name) const { return code == 100 && stripped(raw()) == name; }

    static OutGroup text(int code, const OdString& text) { return {code, text}; }
    static OutGroup ascii(int code, std::string_view literal) { return {code, AsciiValue{literal}}; }
    static OutGroup mark(std::string_view className) { return ascii(100, className); }
    static OutGroup real(int code, double value) { return {code, value}; }
    static OutGroup integer(int code, long long value) { return {code, value}; }
    static OutGroup handle(int code, std::uint64_t handle) { return {code, HandleValue{handle}}; }
    static OutGroup binary(int code, std::string bytes) { return {code, BinaryValue{std::move(bytes)}}; }
};

/// The groups of one entry behind its type, comments included.
using OutGroups = std::vector<OutGroup>;

/// An entry that stands in no database: its type, such as "LAYOUT", and its groups. The text of the type
/// stays where it is while the drawing is written.
struct OutEntry {
    std::string_view type;
    OutGroups groups;
};

/// Handles for entries that a file needs and the database has no object for. They lie behind those of the
/// database, which doesn't change by it, so that two writes of one state give the same file.
class SpareHandles {
public:
    explicit SpareHandles(const DatabaseData& data) : m_data(data), m_next(data.nextHandle) {}
    std::uint64_t take() {
        while (m_next == 0 || m_data.handles.find(m_next) != nullptr) ++m_next;
        return m_next++;
    }
    /// What $HANDSEED says: behind all handles.
    std::uint64_t seed() {
        while (m_next == 0 || m_data.handles.find(m_next) != nullptr) ++m_next;
        return m_next;
    }

private:
    const DatabaseData& m_data;
    std::uint64_t m_next;
};

// Of other programs it is known: before R2007 strict readers refuse layer and block names with \U+XXXX, since
// a backslash is no part of a name; names go out in a code page that has them wherever there is one. The
// texts of a binary source may hold line feeds, which a text file must write as ^J. Everything else of R2018
// (header variables, classes with a count, groups of later versions) is accepted in a file of R2000 as it
// stands.

// What the writer asks of upgrade.h and skeleton.h. They are declared there just like this.
//
//     /// Turns the groups of an entry of a source older than R2000 into how R2000 and later have them: 5
//     (105
//     /// in DIMSTYLE) with node.handle, 330 with the owner's handle, 100 marks in their places, codes that
//     /// moved. Called for every live entry of such a source, in file order. Groups that mean nothing to it
//     /// stay, in their order, comments (999) and extended data (1000 on) behind everything else.
//     /// `groups` are the source's own, one for one; new ones are typed. Embedded handles of other entries
//     come
//     /// from their nodes (Node::handle). The text of literals must stay valid.
//     void upgradeEntry(const DatabaseData& data, const Skeleton& skeleton, const Node& node, OutGroups&
//     groups);
//
//     class Skeleton {
//     public:
//         /// Looks what the drawing lacks and takes handles for all of it. `data.source` is null for a new
//         /// drawing. Nothing is lacking in an ordinary drawing of R2000 and later, whose file then comes
//         out
//         /// as it came. Must not change the database. Body of a node: data.bodyOf(node).
//         Skeleton(DatabaseData& data, FileVersion version, SpareHandles& handles);
//
//         /// Groups to put at the end of HEADER, each variable beginning with its group 9 ("$NAME"). All but
//         /// $ACADVER, $HANDSEED, $DWGCODEPAGE, $CLAYER, $INSBASE, which the writer itself sees to.
//         OutGroups header() const;
//         /// Entries of type CLASS for the end of CLASSES.
//         std::vector<OutEntry> classes() const;
//         /// A table that the database has no node for ("UCS", "DIMSTYLE"; the writer asks for each of
//         VPORT,
//         /// LTYPE, LAYER, STYLE, VIEW, UCS, APPID, DIMSTYLE, BLOCK_RECORD that neither the source nor the
//         /// database has): its TABLE entry and its records; ENDTAB follows by itself. Empty when it isn't
//         /// needed.
//         std::vector<OutEntry> table(std::string_view name) const;
//         /// Records for the end of a table that the database has a node for, in the same form (the
//         /// application ACAD, where it is missing). They count in the table's group 70.
//         std::vector<OutEntry> records(const Node& table) const;
//         /// Entries for the end of OBJECTS: layouts and the like.
//         std::vector<OutEntry> objects() const;
//         /// Entries of the database that addTo has something for: the root dictionary, block records that
//         /// get the handle of their layout (340)...
//         const std::vector<const Node*>& changed() const;
//         /// Puts groups into such an entry; `groups` are complete otherwise, upgraded and up to date.
//         void addTo(const Node& node, OutGroups& groups) const;
//         /// Handle for group 390 of layers that the database made, 0 for none.
//         std::uint64_t plotStyle() const;
//     };
//
// The writer itself sees to: sections and ENDSEC, ENDTAB, EOF; every node of the database, new ones as well
// (tables that completeDefaults made, their records; BLOCK and ENDBLK of block records that have none, with
// spare handles; SEQEND); the count (70) of tables; references (66); leaving out what isn't live. For the
// groups of new objects see write_new.cpp: the Skeleton gets to see them in addTo as well.

} // namespace lm::drawing
