// SPDX-License-Identifier: MIT
// Symbol tables and their records: layers, line types, text styles, applications, viewports, views and
// blocks. Names are compared exactly, by unit; erased records are not found.
#pragma once

#include "drawing/odarray.h"
#include "drawing/entity.h"

class OdDbSymbolTableRecord;

/// A walk over the records of a table, in order of creation.
class LM_DRAWING_API OdDbSymbolTableIterator : public OdRxObject {
    LM_RX_CLASS(OdDbSymbolTableIterator)
public:
    explicit OdDbSymbolTableIterator(lm::drawing::Node* table);
    void start(bool atBeginning = true, bool skipErased = true);
    bool done() const { return m_at == nullptr; }
    void step(bool forward = true, bool skipErased = true);
    OdDbObjectId getRecordId() const { return OdDbObjectId(m_at); }
    /// The record in a mode, null at the end.
    OdSmartPtr<OdDbSymbolTableRecord> getRecord(OdDb::OpenMode mode = OdDb::kForRead) const;

    void addRef() override { ++m_refs; }
    void release() override {
        if (--m_refs == 0) delete this;
    }
    long numRefs() const override { return m_refs; }

private:
    void skip(bool erased);
    lm::drawing::Node* m_table;
    lm::drawing::Node* m_at = nullptr;
    long m_refs = 1;
};

/// A table of named records.
class LM_DRAWING_API OdDbSymbolTable : public OdDbObject {
    LM_RX_CLASS(OdDbSymbolTable)
public:
    OdDbSymbolTable();
    ~OdDbSymbolTable() override;

    /// Id of the record of a name; null when it is missing or erased.
    OdDbObjectId getAt(const OdString& name) const;
    /// The record of a name in a mode; null when it is missing or, without `openErased`, erased.
    OdSmartPtr<OdDbSymbolTableRecord> getAt(const OdString& name, OdDb::OpenMode mode,
                                            bool openErased = false) const;
    bool has(const OdString& name) const { return !getAt(name).isNull(); }
    /// Adds a record; the table must be open for write. An empty name or the name of a live record raises
    /// OdError, and the record stays outside. The record is left write-enabled.
    OdDbObjectId add(OdSmartPtr<OdDbSymbolTableRecord> record);
    /// A walk from the start, past erased records.
    OdSmartPtr<OdDbSymbolTableIterator> newIterator() const;

    LM_DB_STATE(OdDbSymbolTable)
    OdDbSymbolTable& operator=(const OdDbSymbolTable&);

private:
    friend struct lm::drawing::ClassSpecs;
    friend struct lm::drawing::ObjectAccess;
    friend class OdDbSymbolTableRecord;
    struct Names;
    std::unique_ptr<Names> m_names;
};

/// A named record of a table.
class LM_DRAWING_API OdDbSymbolTableRecord : public OdDbObject {
    LM_RX_CLASS(OdDbSymbolTableRecord)
public:
    /// The name. The reference holds until the record is renamed.
    const OdString& getName() const { return m_name; }
    /// Renames; the table follows. An empty name, or that of another live record, raises OdError.
    virtual void setName(const OdString& name);
    OdResult erase(bool erasing = true) override;

protected:
    OdDbSymbolTableRecord() = default;
    OdDbSymbolTableRecord(const OdDbSymbolTableRecord&) = default;
    OdDbSymbolTableRecord& operator=(const OdDbSymbolTableRecord&) = default;
    short m_recordFlags = 0;

private:
    friend struct lm::drawing::ClassSpecs;
    friend struct lm::drawing::ObjectAccess;
    friend class OdDbSymbolTable;
    OdString m_name;
};

/// A layer. Pages of a project are layers.
class LM_DRAWING_API OdDbLayerTableRecord : public OdDbSymbolTableRecord {
    LM_RX_CLASS(OdDbLayerTableRecord)
public:
    OdDbLayerTableRecord() = default;
    OdDbLayerTableRecord(const OdDbLayerTableRecord&) = default;
    /// Layer "0" keeps its name: OdError.
    void setName(const OdString& name) override;
    bool isFrozen() const { return (m_recordFlags & 1) != 0; }
    /// Sets the state; counts as a change even when the value is the same. Any layer may be frozen.
    void setIsFrozen(bool frozen);
    bool isLocked() const { return (m_recordFlags & 4) != 0; }
    void setIsLocked(bool locked);
    bool isOff() const { return m_off; }
    void setIsOff(bool off);
    OdCmColor color() const { return m_color; }
    void setColor(const OdCmColor& color);
    OdDbObjectId linetypeObjectId() const { return m_linetype; }
    void setLinetypeObjectId(OdDbObjectId id);
    /// Refuses for layer "0", the current layer and a layer that a live entity stands on.
    OdResult erase(bool erasing = true) override;

    LM_DB_STATE(OdDbLayerTableRecord)
    OdDbLayerTableRecord& operator=(const OdDbLayerTableRecord&) = default;

private:
    friend struct lm::drawing::ClassSpecs;
    OdCmColor m_color = OdCmColor::fromIndex(7);
    OdDbObjectId m_linetype;
    bool m_off = false;
};

/// A line type.
class LM_DRAWING_API OdDbLinetypeTableRecord : public OdDbSymbolTableRecord {
    LM_RX_CLASS(OdDbLinetypeTableRecord)
public:
    OdDbLinetypeTableRecord() = default;
    OdDbLinetypeTableRecord(const OdDbLinetypeTableRecord&) = default;
    OdString comments() const { return m_comments; }

    LM_DB_STATE(OdDbLinetypeTableRecord)
    OdDbLinetypeTableRecord& operator=(const OdDbLinetypeTableRecord&) = default;

private:
    friend struct lm::drawing::ClassSpecs;
    OdString m_comments;
};

/// A text style.
class LM_DRAWING_API OdDbTextStyleTableRecord : public OdDbSymbolTableRecord {
    LM_RX_CLASS(OdDbTextStyleTableRecord)
public:
    OdDbTextStyleTableRecord() = default;
    OdDbTextStyleTableRecord(const OdDbTextStyleTableRecord&) = default;

    LM_DB_STATE(OdDbTextStyleTableRecord)
    OdDbTextStyleTableRecord& operator=(const OdDbTextStyleTableRecord&) = default;
};

/// An application id, which objects carry extended data under.
class LM_DRAWING_API OdDbRegAppTableRecord : public OdDbSymbolTableRecord {
    LM_RX_CLASS(OdDbRegAppTableRecord)
public:
    OdDbRegAppTableRecord() = default;
    OdDbRegAppTableRecord(const OdDbRegAppTableRecord&) = default;

    LM_DB_STATE(OdDbRegAppTableRecord)
    OdDbRegAppTableRecord& operator=(const OdDbRegAppTableRecord&) = default;
};

/// What views and viewports share: a centre and a size, in drawing units.
class LM_DRAWING_API OdDbAbstractViewTableRecord : public OdDbSymbolTableRecord {
    LM_RX_CLASS(OdDbAbstractViewTableRecord)
public:
    OdGePoint2d centerPoint() const { return m_center; }
    void setCenterPoint(const OdGePoint2d& point);
    double height() const { return m_height; }
    void setHeight(double height);
    double width() const { return m_width; }
    void setWidth(double width);

protected:
    OdDbAbstractViewTableRecord() = default;
    OdDbAbstractViewTableRecord(const OdDbAbstractViewTableRecord&) = default;
    OdDbAbstractViewTableRecord& operator=(const OdDbAbstractViewTableRecord&) = default;

private:
    friend struct lm::drawing::ClassSpecs;
    OdGePoint2d m_center;
    double m_height = 1;
    double m_width = 1;
};

/// A named view.
class LM_DRAWING_API OdDbViewTableRecord : public OdDbAbstractViewTableRecord {
    LM_RX_CLASS(OdDbViewTableRecord)
public:
    OdDbViewTableRecord() = default;
    OdDbViewTableRecord(const OdDbViewTableRecord&) = default;

    LM_DB_STATE(OdDbViewTableRecord)
    OdDbViewTableRecord& operator=(const OdDbViewTableRecord&) = default;
};

/// A viewport of the screen; the one named "*Active" comes first.
class LM_DRAWING_API OdDbViewportTableRecord : public OdDbAbstractViewTableRecord {
    LM_RX_CLASS(OdDbViewportTableRecord)
public:
    OdDbViewportTableRecord() = default;
    /// Fits the view to the live entities of model space on layers that are neither frozen nor off; without
    /// one the view stays. The record must be open for write.
    void zoomExtents();
    OdDbViewportTableRecord(const OdDbViewportTableRecord&) = default;

    LM_DB_STATE(OdDbViewportTableRecord)
    OdDbViewportTableRecord& operator=(const OdDbViewportTableRecord&) = default;
};

/// A record of a table that the database keeps without reading more than its name.
class LM_DRAWING_API OdDbUnreadTableRecord : public OdDbSymbolTableRecord {
    LM_RX_CLASS(OdDbUnreadTableRecord)
public:
    OdDbUnreadTableRecord() = default;
    OdDbUnreadTableRecord(const OdDbUnreadTableRecord&) = default;

    LM_DB_STATE(OdDbUnreadTableRecord)
    OdDbUnreadTableRecord& operator=(const OdDbUnreadTableRecord&) = default;
};

/// A block: its entities, and the references to it. Model space and the paper layouts are blocks as well.
class LM_DRAWING_API OdDbBlockTableRecord : public OdDbSymbolTableRecord {
    LM_RX_CLASS(OdDbBlockTableRecord)
public:
    OdDbBlockTableRecord();
    OdDbBlockTableRecord(const OdDbBlockTableRecord& other);
    ~OdDbBlockTableRecord() override;

    OdGePoint3d origin() const { return m_origin; }
    void setOrigin(const OdGePoint3d& origin);
    /// A name that begins with "*" and is no layout block.
    bool isAnonymous() const;
    /// Model space or a paper layout.
    bool isLayout() const;
    /// A walk over the entities in drawing order.
    OdSmartPtr<OdDbObjectIterator> newIterator(bool atBeginning = true, bool skipErased = true) const;
    /// Adds an entity at the end and gives its id. The entity becomes resident, is left write-enabled, and
    /// stands on layer "0" unless it has one. An entity that is in a database already raises OdError.
    OdDbObjectId appendOdDbEntity(OdSmartPtr<OdDbEntity> entity);
    /// The live references to this block itself, in any owner, in order of creation. Costs what it gives.
    OdArray<OdDbObjectId> getBlockReferenceIds(bool directOnly = true) const;
    /// Model and paper space refuse.
    OdResult erase(bool erasing = true) override;

    LM_DB_STATE(OdDbBlockTableRecord)
    OdDbBlockTableRecord& operator=(const OdDbBlockTableRecord&);

private:
    friend struct lm::drawing::ClassSpecs;
    friend struct lm::drawing::ObjectAccess;
    friend class OdDbBlockReference;
    OdGePoint3d m_origin;
    std::vector<lm::drawing::Node*> m_references;
};
