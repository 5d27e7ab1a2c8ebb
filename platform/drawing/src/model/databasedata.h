// SPDX-License-Identifier: MIT
// What a database holds inside.
#pragma once

#include "dxf/source.h"
#include "model/handleindex.h"
#include "model/kinds.h"

#include "drawing/blockreference.h"
#include "drawing/database.h"
#include "drawing/report.h"

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

    std::unique_ptr<Source> source; ///< null for a drawing that came from no file
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
    bool undoBlock = false;
    unsigned int undoMarkCount = 0;

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
    static void setNode(OdDbObject& object, Node* node) { object.m_node = node; }
    static void setOpenForWrite(OdDbObject& object, bool write) {
        if (write)
            object.m_flags |= OdDbObject::kWriteEnabled;
        else
            object.m_flags &= static_cast<unsigned short>(~OdDbObject::kWriteEnabled);
    }
    static void detachFromDatabase(OdDbObject& object);
    static void becomeResident(OdDbObject& object) { object.subBecomeResident(); }
    static void setRefs(OdDbObject& object, unsigned refs) { object.m_refs = refs; }
    static unsigned refs(const OdDbObject& object) { return object.m_refs; }
    static void setName(OdDbSymbolTableRecord& record, const OdString& name) { record.m_name = name; }
    static void enterName(OdDbSymbolTable& table, const OdString& name, Node* node);
    /// Enters a name that the table lacks; false for one that it has.
    static bool enterNewName(OdDbSymbolTable& table, const OdString& name, Node* node);
    static void expectNames(OdDbSymbolTable& table, std::size_t names);
    static void leaveName(OdDbSymbolTable& table, const OdString& name, Node* node);
    static Node* findName(const OdDbSymbolTable& table, const OdString& name);
    static std::vector<Node*>& references(OdDbBlockTableRecord& block) { return block.m_references; }
    static OdDbObjectId& layerOf(OdDbEntity& entity) { return entity.m_layer; }
    static std::vector<OdSmartPtr<OdDbAttribute>>* outsideAttributes(const OdDbBlockReference& reference) {
        return reference.m_outside.get();
    }
};

/// Makes an object resident under an owner: entry, handle, applications of its extended data, and whatever
/// its class does then. The object is left write-enabled.
Node* makeResident(DatabaseData& data, OdDbObject& object, std::uint16_t kind, Node* owner, bool asPart);

/// Enters an application id that the table lacks; the silent registration of extended data.
void registerApplication(DatabaseData& data, const OdString& name);

/// Fills a database with what every drawing has.
void addDefaults(DatabaseData& data);
/// Makes the parts that every drawing has and this one lacks; tells which.
void completeDefaults(DatabaseData& data, bool report);

} // namespace lm::drawing
