// SPDX-License-Identifier: MIT
// What a database holds inside.
#pragma once

#include "dxf/source.h"
#include "model/events.h"
#include "model/handleindex.h"
#include "model/kinds.h"
#include "model/pending.h"
#include "model/pictureusers.h"
#include "model/rawgroups.h"
#include "model/spatialindex.h"
#include "model/undolog.h"

#include "drawing/blockreference.h"
#include "drawing/database.h"
#include "drawing/report.h"

#include <map>

namespace lm::drawing {

/// A variable of the file's header: its groups lie in the source.
struct HeaderVariable {
    std::string name; ///< with its "$"
    std::uint64_t offset = 0;
    std::uint32_t length = 0;
};

/// A section of the file, in file order. What isn't read stays in the source between the two offsets.
struct Section {
    std::string name;
    std::uint64_t offset = 0;
    std::uint64_t length = 0;
};

/// The two entries that a file has around the entities of a block.
struct BlockFrame {
    Node* record = nullptr;
    Node* begin = nullptr;
    Node* end = nullptr; ///< null where the file lacks it
};

/// The fixed entries of a database.
struct FixedEntries {
    Node* blockTable = nullptr;
    Node* layerTable = nullptr;
    Node* linetypeTable = nullptr;
    Node* styleTable = nullptr;
    Node* appTable = nullptr;
    Node* viewportTable = nullptr;
    Node* viewTable = nullptr;
    Node* dictionary = nullptr;
    Node* modelSpace = nullptr;
    Node* paperSpace = nullptr;
    Node* layerZero = nullptr;
    Node* byBlock = nullptr;
    Node* byLayer = nullptr;
    Node* continuous = nullptr;
    Node* standardStyle = nullptr;
    Node* dimstyleTable = nullptr; ///< null where the drawing has none, as the next one
    Node* ucsTable = nullptr;
};

struct DatabaseData {
    explicit DatabaseData(OdDbDatabase& db);
    ~DatabaseData();

    OdDbDatabase& database;
    NodeArena nodes;
    HandleIndex handles;
    KindList kinds;
    FixedEntries fixed;
    std::uint64_t nextHandle = 1;

    /// The files that hold the drawing as far as it knows: that it was read from, and those that it was saved
    /// to. Keyed by path with all links followed.
    std::map<std::string, system::FileStamp> files;
    std::shared_ptr<Source> source; ///< null for a drawing that came from no file; copies of objects share it
    std::vector<HeaderVariable> header;
    std::vector<Section> sections;
    std::vector<BlockFrame> frames;
    std::vector<Node*> strays; ///< entries that stand nowhere, kept for writing
    Report report;
    OdString fileName;
    std::string version;
    std::string codePage;

    Node* currentLayer = nullptr;
    bool currentLayerAsText = false;
    OdGePoint3d basePoint;

    unsigned int silentRegistrations = 0;
    /// The home of raw groups whose handles are handles of this database.
    std::shared_ptr<Home> identity = std::make_shared<Home>(Home{this});
    /// By the letters that names of anonymous blocks begin with, the lowest number that may be free.
    std::unordered_map<std::string, unsigned> nextAnonymous;
    PictureUsers pictureUsers;
    SpatialIndexes spatial;
    UndoLog undo;
    Events events;
    Pending pending;
    /// Above 0 while a Cloner makes objects resident, which sees to what their groups own by itself.
    unsigned clonersAtWork = 0;

    /// An entry with a body, a free handle and a place in the index.
    Node* adopt(OdDbObject* body, std::uint16_t kind);
    /// An entry without a body yet, with a free handle.
    Node* makeEntry(std::uint16_t kind);
    std::uint64_t freeHandle();
    /// The body of an entry, read from the source at the first call.
    OdDbObject* bodyOf(Node* node);
    Node* tableRecord(Node* table, const OdString& name) const;

    // Name look-ups of the reader; they live as long as bodies can still be read.
    struct Resolver;
    std::unique_ptr<Resolver> resolver;
};

/// What the drawing layer itself does with objects beyond their public operations.
struct ObjectAccess {
    static constexpr int kChangePending = OdDbObject::kChanged | OdDbObject::kAnnounced | OdDbObject::kImaged;
    static void clearFlags(OdDbObject& object, int pending) {
        const bool wasPending = object.closeNeedsTelling();
        object.m_flags = static_cast<unsigned short>(object.m_flags & ~pending);
        if (wasPending && !object.closeNeedsTelling())
            object.m_node->database()->data().pending.remove(*object.m_node);
    }
    static void setNode(OdDbObject& object, Node* node) { object.m_node = node; }
    static void setOpenForWrite(OdDbObject& object, bool write) {
        if (write)
            object.m_flags |= OdDbObject::kWriteEnabled;
        else
            object.m_flags &= static_cast<unsigned short>(~OdDbObject::kWriteEnabled);
    }
    static void detachFromDatabase(OdDbObject& object);
    static void becomeResident(OdDbObject& object) { object.subBecomeResident(); }
    enum Flag : unsigned short { kImaged = OdDbObject::kImaged, kXDataChanged = OdDbObject::kXDataChanged };
    static bool hasFlag(const OdDbObject& object, Flag flag) { return (object.m_flags & flag) != 0; }
    static void setFlag(OdDbObject& object, Flag flag, bool on) {
        object.m_flags = static_cast<unsigned short>(on ? object.m_flags | flag : object.m_flags & ~flag);
    }
    static OdDbObject* newState(const OdDbObject& object) { return object.newState(); }
    /// The groups that an object carries along; null for none. See rawgroups.h.
    static const RawGroups* raw(const OdDbObject& object) { return object.m_raw; }
    static void setRaw(OdDbObject& object, RawPointer raw);
    static bool hasXData(const OdDbObject& object) { return !object.allXData().empty(); }
    /// Calls `visit` with the name of each application that an object has data of.
    template<class F>
    static void forEachApplication(const OdDbObject& object, F&& visit) {
        for (const auto& entry : object.allXData()) visit(entry.application);
    }
    /// Gives the handles under 1005 of an object that is new in its database other values.
    static void translateXData(OdDbObject& object, const std::function<OdString(const OdString&)>& handle);
    static void takeState(OdDbObject& object, const OdDbObject& state) { object.takeState(state); }
    /// Whether the closing of an object has something to tell.
    static bool isPending(const OdDbObject& object) { return object.closeNeedsTelling(); }
    /// Lets an object forget what it would tell at its closing.
    static void clearPending(OdDbObject& object) { clearFlags(object, OdDbObject::kNew | kChangePending); }
    /// Lets it forget a change alone: that an object came is still to be told.
    static void clearPendingChange(OdDbObject& object) { clearFlags(object, kChangePending); }
    static void tellClosed(OdDbObject& object) {
        if (object.closeNeedsTelling()) object.tellClosed();
    }
    static void addEntry(OdDbDictionary& dictionary, const OdString& name, OdDbObjectId id);
    static void takeEntry(OdDbDictionary& dictionary);
    /// All entries of a dictionary, those without an object and those with an erased one, too; files nothing.
    static std::vector<std::pair<OdString, OdDbObjectId>> entries(const OdDbDictionary& dictionary);
    static void setEntries(OdDbDictionary& dictionary,
                           const std::vector<std::pair<OdString, OdDbObjectId>>& entries);
    /// Lets a name of a table stand for a record, or for nothing; files nothing.
    static void setNamed(OdDbSymbolTable& table, const OdString& name, Node* node);
    static void setRefs(OdDbObject& object, unsigned refs) { object.m_refs = refs; }
    static unsigned refs(const OdDbObject& object) { return object.m_refs; }
    static void setName(OdDbSymbolTableRecord& record, const OdString& name) { record.m_name = name; }
    static void enterName(OdDbSymbolTable& table, const OdString& name, Node* node);
    /// Enters a name that the table lacks; false for one that it has.
    static bool enterNewName(OdDbSymbolTable& table, const OdString& name, Node* node);
    static void expectNames(OdDbSymbolTable& table, std::size_t names);
    static void leaveName(OdDbSymbolTable& table, const OdString& name, Node* node);
    static Node* findName(const OdDbSymbolTable& table, const OdString& name);
    /// The first live record of a table in a database whose name differs from this one in its case at most.
    static Node* findFolded(const OdDbSymbolTable& table, WideView name);
    /// The live vertices of an entity, whether it is in a database or not.
    static std::vector<OdDbEntity*> partsOf(const OdDbUnreadEntity& entity);
    static void addPart(OdDbUnreadEntity& entity, OdSmartPtr<OdDbEntity> part);
    static std::vector<Node*>& references(OdDbBlockTableRecord& block) { return block.m_references; }
    /// Stretches the distances between the copies of an array.
    static void stretchArray(OdDbBlockReference& reference, double columns, double rows) {
        reference.beginChange();
        reference.m_columnSpacing *= columns;
        reference.m_rowSpacing *= rows;
    }
    static OdDbObjectId& layerOf(OdDbEntity& entity) { return entity.m_layer; }
    static std::vector<OdSmartPtr<OdDbAttribute>>* outsideAttributes(const OdDbBlockReference& reference) {
        return reference.m_outside.get();
    }
};

/// Makes an object resident under an owner: entry, handle, applications of its extended data, and whatever
/// its class does then. The object is left write-enabled.
Node* makeResident(DatabaseData& data, OdDbObject& object, std::uint16_t kind, Node* owner, bool asPart);

/// Gives an object that was copied outside any drawing and has just become resident copies of its own of what
/// its groups own, such as the extension dictionary: the groups name those of its source. What it doesn't own
/// and belongs to the source, such as reactors, goes.
void copyOwned(DatabaseData& data, OdDbObject& copy, const RawPointer& groups);
/// The same for groups of another drawing. What they need of that comes along, as far as insert brings it;
/// nothing when the other drawing has gone.
void bringOwned(DatabaseData& data, OdDbObject& copy, const RawPointer& groups);

/// Enters an application id that the table lacks; the silent registration of extended data.
void registerApplication(DatabaseData& data, const OdString& name);

/// A new table without records.
Node* makeTable(DatabaseData& data);
/// Fills a database with what every drawing has.
void addDefaults(DatabaseData& data);
/// Makes the parts that every drawing has and this one lacks; tells which.
void completeDefaults(DatabaseData& data, bool report);

} // namespace lm::drawing
