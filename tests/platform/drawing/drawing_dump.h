// SPDX-License-Identifier: MIT
// Everything that a database holds as one text, so that two states can be compared. Handles that were given
// out and taken back count as nothing.
#pragma once

#include "drawing_support.h"

#include "model/databasedata.h"

#include <map>
#include <set>

namespace drawing_test {

class Dump {
public:
    explicit Dump(const OdDbDatabase& db) : m_db(db) {}

    std::string text() {
        line("current layer", handle(m_db.getCLAYER()));
        line("base", point(m_db.getINSBASE()));
        for (const OdDbObjectId table :
             {m_db.getLinetypeTableId(), m_db.getLayerTableId(), m_db.getTextStyleTableId(),
              m_db.getRegAppTableId(), m_db.getViewportTableId(), m_db.getViewTableId(),
              m_db.getBlockTableId()})
            this->table(table);
        object(m_db.getNamedObjectsDictionaryId());
        m_db.data().nodes.forEach([&](lm::drawing::Node& node) {
            const OdDbObjectId id(&node);
            if (id.isValid() && m_db.getOdDbObjectId(node.handle) == id && m_seen.insert(&node).second)
                object(id);
        });
        return m_out;
    }

private:
    void line(const std::string& name, const std::string& value) { m_out += name + " " + value + "\n"; }
    static std::string number(double value) { return utf8(OdResBuf::newRb(0, value)->getString()); }
    static std::string point(const OdGePoint3d& p) {
        return number(p.x) + "," + number(p.y) + "," + number(p.z);
    }
    static std::string handle(OdDbObjectId id) {
        return utf8(id.getHandle().ascii()) + (id.isErased() ? "x" : "") + (id.isValid() ? "" : "?");
    }

    void table(OdDbObjectId id) {
        const auto table = open<OdDbSymbolTable>(id);
        line("table", handle(id));
        std::set<std::string> names;
        const auto walk = table->newIterator();
        for (walk->start(true, false); !walk->done(); walk->step(true, false)) {
            object(walk->getRecordId());
            names.insert(utf8(walk->getRecord()->getName()));
        }
        for (const std::string& name : names) line("name " + name, handle(table->getAt(od(name))));
    }

    void object(OdDbObjectId id) {
        m_seen.insert(id.node());
        const OdSmartPtr<OdDbObject> object = id.openObject(OdDb::kForRead, true);
        std::string text = handle(id) + " " + object->isA()->asciiName() + " of " + handle(object->ownerId());
        text += " found " + handle(m_db.getOdDbObjectId(id.getHandle()));
        if (const auto* record = OdDbSymbolTableRecord::cast(object)) text += " " + utf8(record->getName());
        if (const auto* layer = OdDbLayerTableRecord::cast(object)) {
            text += layer->isFrozen() ? " frozen" : "";
            text += layer->isLocked() ? " locked" : "";
            text += layer->isOff() ? " off" : "";
            text += " " + std::to_string(layer->color().colorIndex());
        }
        if (const auto* view = OdDbAbstractViewTableRecord::cast(object))
            text += " " + number(view->height()) + " " + number(view->width()) + " " +
                    number(view->centerPoint().x);
        if (const auto* entity = OdDbEntity::cast(object)) text += entityText(*entity);
        if (const auto* xrecord = OdDbXrecord::cast(object)) text += " {" + textOf(xrecord->rbChain()) + "}";
        if (const auto* block = OdDbBlockTableRecord::cast(object)) text += blockText(*block);
        if (const auto* dictionary = OdDbDictionary::cast(object)) {
            for (auto walk = dictionary->newIterator(); !walk->done(); walk->next())
                text += " " + utf8(walk->name()) + "=" + handle(walk->objectId());
        }
        text += " [" + textOf(object->xData()) + "]";
        line("object", text);
        if (const auto* block = OdDbBlockTableRecord::cast(object)) parts(block->newIterator());
        if (const auto* reference = OdDbBlockReference::cast(object)) parts(reference->attributeIterator());
    }

    void parts(OdSmartPtr<OdDbObjectIterator> walk) {
        for (walk->start(true, false); !walk->done(); walk->step(true, false)) object(walk->objectId());
        line("end", "");
    }

    std::string blockText(const OdDbBlockTableRecord& block) {
        std::string text = " origin " + point(block.origin()) + " references";
        for (const OdDbObjectId id : block.getBlockReferenceIds()) text += " " + handle(id);
        return text;
    }

    std::string entityText(const OdDbEntity& entity) {
        std::string text = " on " + utf8(entity.layer()) + " " + std::to_string(entity.color().colorIndex()) +
                           " " + handle(entity.linetypeId()) + " " + number(entity.linetypeScale()) + " " +
                           std::to_string(entity.lineWeight()) + (entity.isVisible() ? "" : " hidden");
        if (const auto* e = OdDbText::cast(&entity))
            text += " '" + utf8(e->textString()) + "' " + point(e->position()) + " " + number(e->height()) +
                    " " + number(e->rotation());
        if (const auto* e = OdDbAttribute::cast(&entity))
            text += " tag " + utf8(e->tag()) + (e->isInvisible() ? " invisible" : "");
        if (const auto* e = OdDbAttributeDefinition::cast(&entity))
            text += " tag " + utf8(e->tag()) + " prompt " + utf8(e->prompt());
        if (const auto* e = OdDbLine::cast(&entity))
            text += " " + point(e->startPoint()) + " " + point(e->endPoint());
        if (const auto* e = OdDbPoint::cast(&entity)) text += " " + point(e->position());
        if (const auto* e = OdDbCircle::cast(&entity))
            text += " " + point(e->center()) + " " + number(e->radius());
        if (const auto* e = OdDbPolyline::cast(&entity))
            for (unsigned i = 0; i < e->numVerts(); ++i)
                text += " " + point(e->getPointAt(i)) + "/" + number(e->getBulgeAt(i));
        if (const auto* e = OdDbBlockReference::cast(&entity))
            text += " shows " + handle(e->blockTableRecord()) + " " + point(e->position()) + " " +
                    number(e->rotation()) + " " + number(e->scaleFactors().sx);
        return text;
    }

    const OdDbDatabase& m_db;
    std::string m_out;
    std::set<const lm::drawing::Node*> m_seen;
};

inline std::string dumpOf(const OdDbDatabase& db) {
    return Dump(db).text();
}

} // namespace drawing_test
