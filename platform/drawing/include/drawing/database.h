// SPDX-License-Identifier: MIT
// OdDbDatabase: one drawing in memory. Objects are found by handle in constant time, owners know their parts,
// and blocks know their references. A drawing read from a file keeps the file's own groups, so that what
// nobody reads is neither lost nor paid for.
//
//     OdSmartPtr<OdDbDatabase> db = lm::drawing::readDrawing(path, {});
//     OdDbObjectId id = db->getOdDbObjectId(OdDbHandle(0x2F), false, 0);
#pragma once

#include "drawing/dictionary.h"
#include "drawing/idmapping.h"
#include "drawing/reactor.h"
#include "drawing/symboltable.h"

namespace lm::drawing {
struct DatabaseData;
class Report;
/// The objects of a drawing by handle, as far as handles follow one another.
struct DenseHandles {
    Node* const* nodes = nullptr;
    unsigned long long count = 0;
};
} // namespace lm::drawing

/// A drawing. A database belongs to one thread. Its objects end with it; a smart pointer that outlives it
/// keeps its object alive outside any database.
class LM_DRAWING_API OdDbDatabase : public OdRxObject {
    LM_RX_CLASS(OdDbDatabase)
public:
    /// What a new database holds: everything that a drawing needs, or nothing yet (for readers).
    enum Content { kDefaults, kNothing };

    explicit OdDbDatabase(Content content = kDefaults);
    ~OdDbDatabase() override;
    OdDbDatabase(const OdDbDatabase&) = delete;
    OdDbDatabase& operator=(const OdDbDatabase&) = delete;

    /// Ids of the tables and of the fixed entries; null where a damaged or stripped database has none.
    OdDbObjectId getBlockTableId() const;
    OdDbObjectId getLayerTableId() const;
    OdDbObjectId getLinetypeTableId() const;
    OdDbObjectId getTextStyleTableId() const;
    OdDbObjectId getRegAppTableId() const;
    OdDbObjectId getViewportTableId() const;
    OdDbObjectId getViewTableId() const;
    OdDbObjectId getNamedObjectsDictionaryId() const;
    OdDbObjectId getModelSpaceId() const;
    OdDbObjectId getPaperSpaceId() const;
    OdDbObjectId getLayerZeroId() const;
    OdDbObjectId getLinetypeByBlockId() const;
    OdDbObjectId getLinetypeByLayerId() const;
    OdDbObjectId getLinetypeContinuousId() const;
    OdDbObjectId getTextStyleStandardId() const;

    /// The id of a handle: null for 0 and for an unknown handle. An erased object's handle still gives its
    /// id. Nothing is created; `createIfNotFound` and `xref` are accepted and not used.
    OdDbObjectId getOdDbObjectId(const OdDbHandle& handle, bool createIfNotFound = false,
                                 unsigned int xref = 0) const {
        static_cast<void>(createIfNotFound);
        static_cast<void>(xref);
        // Nearly all handles stand in one array; 0 has no object there.
        if (handle.value() < m_handles.count) return OdDbObjectId(m_handles.nodes[handle.value()]);
        return findFarHandle(handle);
    }
    /// Adds an object that is no entity and no table record under an owner; gives its id.
    OdDbObjectId addOdDbObject(OdSmartPtr<OdDbObject> object, OdDbObjectId owner);

    /// A system variable as a record, or null: "CLAYER" under group 330 with the layer's id; "DWGNAME" and
    /// "DWGPREFIX" as texts, none for a drawing without a file; other names as the file's header has them,
    /// without the "$".
    OdSmartPtr<OdResBuf> getSysVar(const OdString& name) const;
    /// Sets "CLAYER" from a record with group 330. False, with nothing changed, for a null, erased or foreign
    /// id, an id of no layer, and any other name.
    bool setSysVar(const OdString& name, OdSmartPtr<OdResBuf> value);
    /// Lets "CLAYER" answer as a text instead of an id. For tests.
    void setCurrentLayerAsText(bool asText);
    OdDbObjectId getCLAYER() const;
    /// The base point: where a drawing is held when it is inserted as a block.
    OdGePoint3d getINSBASE() const;
    void setINSBASE(const OdGePoint3d& point);

    /// Clones objects under a new owner, in order: entities into a block, records into a table, others below
    /// a dictionary. `mapping` gets a pair for each clone, owned attributes included. References inside the
    /// set are re-pointed, others kept; extended data is copied as it stands, but for handles under 1005,
    /// which follow their objects; erased ids are passed over. Reactors are told at the end. With
    /// `deferXlation` references are left as they are. Raises OdError for an owner that can't take the
    /// objects.
    void deepCloneObjects(const OdArray<OdDbObjectId>& ids, OdDbObjectId owner, OdDbIdMapping& mapping,
                          bool deferXlation = false);
    /// Makes model space of another drawing a block of this one. Layers, line types, styles, inner blocks and
    /// application ids come along, found by name first; anonymous inner blocks get the next free number. The
    /// other drawing's base point becomes the block's origin. `preserve` keeps the source as it is, which is
    /// the only way there is. An empty or existing name gives the null id; a body held apart raises OdError.
    OdDbObjectId insert(const OdString& name, OdDbDatabase* source, bool preserve = true);
    /// Takes out of `ids` everything that a live object or a header variable refers to, one level deep: what
    /// is used by something in `ids` stays used. Layer "0", the current layer, model and paper space are
    /// always used. Erased ids stay in; null ids and those of other drawings don't.
    void purge(OdArray<OdDbObjectId>& ids) const;

    /// Attaches a reactor; adding it twice counts once, null is ignored. Not owned.
    void addReactor(OdDbDatabaseReactor* reactor);
    /// Removing what isn't there is silent.
    void removeReactor(OdDbDatabaseReactor* reactor);
    void addTransactionReactor(OdDbTransactionReactor* reactor);
    void removeTransactionReactor(OdDbTransactionReactor* reactor);

    /// Opens a transaction; they nest.
    void startTransaction();
    /// Commits the innermost one. At the end of the outermost, reactors first get what waits for a close,
    /// then transactionEnded. Without a transaction nothing happens.
    void endTransaction();
    /// Takes back everything since the innermost transaction was opened, marks of the undo log too.
    void abortTransaction();
    unsigned int numActiveTransactions() const;

    /// Whether changes are kept for undo: off for a new database, on for that of a document. Turning it off
    /// forgets what was kept.
    bool isUndoRecording() const;
    void setUndoRecording(bool recording);
    /// Takes back everything since the last mark, the mark too; without a mark everything that was kept.
    /// False, with nothing changed, when there is nothing to take back and during a transaction.
    bool undo();
    /// Repeats the step that was taken back last; any change in between forgets it. False when there is none.
    bool redo();
    unsigned int redoSteps() const;
    /// Changes kept for undo now: tells whether a step holds any.
    std::size_t undoRecords() const;
    /// Grows with every change that is filed for undo, taken back or repeated: tells whether anything was
    /// changed between two moments of which the first set a mark.
    unsigned long long changeCount() const;

    /// Whether blockUndoRecording(true) is open.
    bool isUndoBlockStarted() const;
    /// Opens (true) or closes (false) a block of which everything belongs to one step. Blocks don't nest.
    void blockUndoRecording(bool begin);
    /// Sets a mark that one undo step goes back to.
    void startUndoRecord();
    /// Marks that can be gone back to, a block counting as one.
    unsigned int undoMarks() const;

    /// Full path of the file, empty for a new drawing.
    OdString getFilename() const;
    void setFilename(const OdString& path);
    /// Version text of the file that was read, such as "AC1032".
    OdString originalFileVersion() const;
    /// Code page as the file named it, empty when it named none.
    OdString originalCodePage() const;
    /// How many application ids extended data brought along that nobody had registered before.
    unsigned int silentRegistrations() const;
    /// What the reader mended.
    const lm::drawing::Report& report() const;

    /// Whether the last smart pointer ends the database. A document's database is not managed by its count.
    void setCountManaged(bool managed) { m_countManaged = managed; }
    void addRef() override { ++m_refs; }
    void release() override;
    long numRefs() const override { return m_refs; }

    lm::drawing::DatabaseData& data() const { return *m_data; }

private:
    friend struct lm::drawing::DatabaseData;
    OdDbObjectId findFarHandle(const OdDbHandle& handle) const;

    lm::drawing::DenseHandles m_handles; // kept up to date by the index in the data
    std::unique_ptr<lm::drawing::DatabaseData> m_data;
    long m_refs = 1;
    bool m_countManaged = true;
};
