// SPDX-License-Identifier: MIT
// Copies of objects with everything that they own, placed in a database. Clones are made first, in order,
// then references among them are re-pointed, and at the end reactors hear of all of them.
//
//     Cloner cloner(data, data, mapping);
//     cloner.entity(source, ownerRecord);
//     cloner.translate();
//     cloner.close();
#pragma once

#include "model/databasedata.h"

#include <unordered_map>
#include <vector>

namespace lm::drawing {

class Cloner {
public:
    /// Clones come out of `from` into `to`, which may be the same; `mapping` gets their pairs.
    Cloner(DatabaseData& from, DatabaseData& to, OdDbIdMapping& mapping)
        : m_from(from), m_to(to), m_mapping(mapping) {}
    virtual ~Cloner() = default;
    Cloner(const Cloner&) = delete;
    Cloner& operator=(const Cloner&) = delete;

    /// Clones an entity to the end of a block, with its attributes or vertices.
    void entity(Node& source, OdDbBlockTableRecord& owner);
    /// Clones an attribute to the end of a reference.
    void attribute(Node& source, OdDbBlockReference& owner);
    /// Clones a record into a table under a name that is free there; with an empty name only behind the
    /// others. A block comes with its entities.
    Node* record(Node& source, Node& table, const OdString& name);
    /// Clones an object that is neither, with the entries that it owns.
    OdSmartPtr<OdDbObject> object(Node& source, OdDbObjectId owner);

    /// Gives a resident copy clones of what its groups own, which are those of an object of `from`. They stay
    /// open as long as the copy does.
    void own(OdDbObject& copy, const RawPointer& groups);

    /// Lets references inside the set point to the clones.
    void translate();
    /// Closes the clones one after the other; owned ones before their owners. An exception of a reactor keeps
    /// no other clone from being closed; the first one passes.
    void close();

protected:
    /// What an id becomes in a new copy; for copies inside one database itself, as translate comes later.
    virtual Node* resolve(Node& target) { return &target; }
    /// Whether `resolve` is to be asked.
    bool crosses() const { return &m_from != &m_to; }
    /// The handle for one in raw groups that stands for no clone.
    virtual std::uint64_t foreignHandle(const RawHandle& handle);
    /// A copy of raw groups is made: what they need comes along.
    virtual void need(const OdDbObject& source, const RawGroups& raw);
    /// A block was cloned; its entities are due.
    virtual void contents(Node& source, OdSmartPtr<OdDbBlockTableRecord> block);
    /// Clones what is due by now.
    virtual void finish() {}
    /// Gives the clone of a node, null for none.
    Node* cloneOf(const Node& source) const;

    /// A copy without parts, with raw groups and with ids that are good for the destination.
    OdSmartPtr<OdDbObject> bareCopy(Node& source);
    void note(Node& source, OdSmartPtr<OdDbObject> clone);
    void pair(Node& source, OdDbObjectId clone);
    void cloneEntities(Node& source, OdDbBlockTableRecord& block);
    /// Calls what makes a clone resident. What it owns is cloned when it is noted, not now.
    template<class F>
    OdDbObjectId resident(F&& make) {
        struct AtWork {
            DatabaseData& data;
            explicit AtWork(DatabaseData& to) : data(to) { ++data.clonersAtWork; }
            ~AtWork() { --data.clonersAtWork; }
        } const atWork(m_to);
        return make();
    }

    DatabaseData& m_from;
    DatabaseData& m_to;
    OdDbIdMapping& m_mapping;

private:
    /// A clone that waits for its closing.
    struct Made {
        OdSmartPtr<OdDbObject> object;
        Node* source;
        bool translateRaw;
    };
    void cloneParts(Node& source, OdDbEntity& copy,
                    std::vector<std::pair<Node*, OdSmartPtr<OdDbObject>>>& parts);
    void cloneOwned(Node& source, OdDbObject& clone);
    void cloneFrame(Node& source, Node& clone);
    bool hasOwnGroups(const OdDbObject& copy) const;
    bool canBeOwned(const Node& target) const;
    void translateObject(Made& made);
    void translateRaw(Made& made);
    void translateXrecord(OdDbXrecord& record);
    std::uint64_t translated(const RawHandle& handle);
    OdString translatedText(const OdString& handle, int code);
    std::string translatedName(int code, std::string_view bytes, const Source& form);

    std::vector<Made> m_made;
    std::unordered_map<const Source*, std::shared_ptr<const Source>> m_forms;
    std::unordered_map<const Node*, std::size_t> m_frames;
    std::unordered_map<std::string, std::string> m_renamed; ///< blocks by name in UTF-8
    bool m_framesKnown = false;
    bool m_hasTargets = false; ///< something was cloned that ids of fields may refer to
};

/// Opens an object for write and lets it be afterwards as it was.
class OpenForWrite {
public:
    explicit OpenForWrite(OdDbObject* object) : m_object(object), m_wasWritable(object->isWriteEnabled()) {
        m_object->upgradeOpen();
    }
    ~OpenForWrite() { ObjectAccess::setOpenForWrite(*m_object.get(), m_wasWritable); }
    OpenForWrite(const OpenForWrite&) = delete;
    OpenForWrite& operator=(const OpenForWrite&) = delete;

private:
    OdSmartPtr<OdDbObject> m_object;
    bool m_wasWritable;
};

/// A name for another record of a table that has one of this name already: the next free number for anonymous
/// blocks, for which copies of layouts count; "NAME_1" and so on for others.
OdString freeRecordName(DatabaseData& data, Node& table, const OdString& name);

/// Whether a name is that of an anonymous block.
bool isAnonymousName(WideView name) noexcept;

} // namespace lm::drawing
