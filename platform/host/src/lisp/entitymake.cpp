// SPDX-License-Identifier: MIT
// New objects from lists: entities, attributes behind their reference, blocks entity by entity, records of
// tables, and objects for dictionaries.
#include "document.h"
#include "entityfields.h"
#include "entityname.h"
#include "hoststate.h"

#include "drawing/drawing.h"
#include "drawing/entitygroups.h"
#include "drawing/partwalk.h"
#include "drawing/recordsearch.h"

namespace lm::host::lisp {

namespace {

template<class T>
OdSmartPtr<T> made() {
    return OdSmartPtr<T>(new T(), lm::drawing::kAttach);
}

/// Makes one object from a list. Each way gives the object's name, or nil for a list that doesn't do.
class Maker {
public:
    Maker(Machine& machine, const Value& list)
        : m_machine(machine), m_list(list), m_database(requireDatabase(machine)), m_host(machine.host()) {}

    Value make() {
        const Value type = valueOfCode(m_list, 0);
        if (!type.isText()) return Value();
        const std::string name = system::toUtf8(type.text());
        if (name == "BLOCK") return beginBlock();
        if (name == "ENDBLK") return endBlock();
        if (name == "SEQEND") return endAttributes();
        if (name == "ATTRIB") return attribute();
        if (name == "LAYER") return layer();
        if (name == "STYLE")
            return record(m_database.getTextStyleTableId(), made<OdDbTextStyleTableRecord>());
        if (name == "LTYPE") return record(m_database.getLinetypeTableId(), made<OdDbLinetypeTableRecord>());
        if (name == "APPID") return record(m_database.getRegAppTableId(), made<OdDbRegAppTableRecord>());
        if (name == "XRECORD") return waiting(made<OdDbXrecord>());
        if (name == "DICTIONARY") return waiting(made<OdDbDictionary>());
        const EntityClass* entityClass = classOfType(type.text());
        return entityClass == nullptr ? Value() : entity(*entityClass);
    }

private:
    bool apply(OdDbObject& object) { return applyList(m_machine, m_database, object, m_list); }

    /// Where an entity goes: the open block, else the layout of group 410, else paper space for group 67,
    /// else model space. Null for groups that name no space, or two.
    OdDbObjectId space() const {
        if (m_host.openBlock.isValid() && !m_host.openBlock.isErased()) return m_host.openBlock;
        const OdDbObjectId model = m_database.getModelSpaceId();
        const Value paper = valueOfCode(m_list, 67), layout = valueOfCode(m_list, 410);
        if (!paper.isUnbound() && !(paper.isInteger() && (paper.integer() == 0 || paper.integer() == 1)))
            return OdDbObjectId();
        const bool isPaper = paper.isInteger() && paper.integer() == 1;
        if (layout.isUnbound()) return isPaper ? m_database.getPaperSpaceId() : model;
        if (!layout.isText()) return OdDbObjectId();
        const OdString name{WideView(layout.text())};
        const OdDbObjectId block = lm::drawing::blockOfLayout(m_database, name);
        const bool agrees = paper.isUnbound() || isPaper == (block != model);
        return agrees ? block : OdDbObjectId();
    }

    /// A circle or an arc without a radius would be nothing.
    static bool isDrawn(const OdDbObject& object) {
        if (const auto* circle = OdDbCircle::cast(&object)) return circle->radius() > 0;
        const auto* arc = OdDbArc::cast(&object);
        return arc == nullptr || arc->radius() > 0;
    }

    Value entity(const EntityClass& entityClass) {
        const OdSmartPtr<OdDbObject> object = entityClass.make();
        OdDbEntity* entity = OdDbEntity::cast(object.get());
        if (valueOfCode(m_list, 8).isUnbound() && m_database.getCLAYER().isValid())
            entity->setLayer(m_database.getCLAYER());
        if (!apply(*object) || !isDrawn(*object)) return Value();
        const auto* reference = OdDbBlockReference::cast(entity);
        const OdSmartPtr<OdDbBlockTableRecord> block(space().openObject(OdDb::kForWrite));
        if (block.isNull()) return Value();
        // A reference needs a block, and not the one that it is to stand in.
        const OdDbObjectId referred = reference == nullptr ? OdDbObjectId() : reference->blockTableRecord();
        if (reference != nullptr && (referred.isNull() || referred == block->objectId())) return Value();
        const OdDbObjectId id = block->appendOdDbEntity(OdSmartPtr<OdDbEntity>(object));
        const Value follow = valueOfCode(m_list, 66);
        if (reference != nullptr && follow.isInteger() && follow.integer() == 1) m_host.openReference = id;
        return nameValue(m_machine, id);
    }

    Value attribute() {
        const OdSmartPtr<OdDbObject> owner = m_host.openReference.openObject(OdDb::kForWrite);
        if (owner.isNull()) return Value();
        const OdSmartPtr<OdDbAttribute> attribute = made<OdDbAttribute>();
        auto* reference = static_cast<OdDbBlockReference*>(owner.get());
        if (valueOfCode(m_list, 8).isUnbound()) attribute->setLayer(reference->layerId());
        if (!apply(*attribute)) return Value();
        return nameValue(m_machine, reference->appendAttribute(attribute));
    }

    Value endAttributes() {
        if (m_host.openReference.isNull()) return Value();
        return nameValue(m_machine, std::exchange(m_host.openReference, OdDbObjectId()));
    }

    /// The next free name of a block without one.
    OdString freeBlockName(const OdDbSymbolTable& blocks) {
        for (int number = 1;; ++number) {
            m_machine.tick();
            const OdString name = lm::drawing::odText("*U" + std::to_string(number));
            if (!blocks.has(name)) return name;
        }
    }

    /// Whether the head of a block tells only what a block can keep: not where it comes from or what it is
    /// for.
    bool isPlainBlock() const {
        constexpr int kPath = 1, kDescription = 4, kFlags = 70, kExternal = 4;
        for (const int code : {kPath, kDescription}) {
            const Value text = valueOfCode(m_list, code);
            if (!text.isUnbound() && !(text.isText() && text.text().empty())) return false;
        }
        const Value flags = valueOfCode(m_list, kFlags);
        return flags.isUnbound() ||
               (flags.isInteger() && flags.integer() >= 0 && flags.integer() < kExternal);
    }

    // A block that is there already is emptied and filled anew.
    Value beginBlock() {
        const Value name = valueOfCode(m_list, 2);
        const OdSmartPtr<OdDbSymbolTable> blocks(m_database.getBlockTableId().openObject(OdDb::kForWrite));
        if (!name.isText() || name.text().empty() || blocks.isNull()) return Value();
        const bool anonymous = name.text()[0] == '*';
        const OdString wanted = anonymous ? freeBlockName(*blocks) : OdString(WideView(name.text()));
        const OdDbObjectId known = lm::drawing::recordCalled(*blocks, wanted);
        if (known.isNull() && !anonymous && !lm::drawing::isValidName(wanted.view())) return Value();
        const Value origin = valueOfCode(m_list, 10);
        const OdSmartPtr<OdDbBlockTableRecord> asked = made<OdDbBlockTableRecord>();
        if (!isPlainBlock() || (!origin.isUnbound() && !applyOrigin(*asked, origin))) return Value();
        if (known.isNull()) {
            const OdSmartPtr<OdDbBlockTableRecord> block = made<OdDbBlockTableRecord>();
            block->setName(wanted);
            m_host.openBlock = blocks->add(block);
        } else {
            for (lm::drawing::PartWalk part(known); !part.done(); part.next())
                part.id().openObject(OdDb::kForWrite)->erase();
            m_host.openBlock = known;
        }
        const OdSmartPtr<OdDbBlockTableRecord> block(m_host.openBlock.openObject(OdDb::kForWrite));
        if (!origin.isUnbound() && !applyOrigin(*block, origin)) return Value();
        return nameValue(m_machine, m_host.openBlock);
    }

    bool applyOrigin(OdDbBlockTableRecord& block, const Value& origin) {
        const Value list = m_machine.list(m_machine.heap().cons(Value::integer(10), origin));
        return applyList(m_machine, m_database, block, list);
    }

    Value endBlock() {
        const OdSmartPtr<OdDbObject> block = std::exchange(m_host.openBlock, OdDbObjectId()).openObject();
        if (block.isNull()) return Value();
        return m_machine.text(static_cast<const OdDbSymbolTableRecord*>(block.get())->getName().view());
    }

    Value layer() {
        const OdSmartPtr<OdDbLayerTableRecord> made = lisp::made<OdDbLayerTableRecord>();
        made->setLinetypeObjectId(m_database.getLinetypeContinuousId());
        return record(m_database.getLayerTableId(), made);
    }

    Value record(OdDbObjectId tableId, OdSmartPtr<OdDbSymbolTableRecord> record) {
        const Value name = valueOfCode(m_list, 2);
        const OdSmartPtr<OdDbSymbolTable> table(tableId.openObject(OdDb::kForWrite));
        if (!name.isText() || name.text().empty() || table.isNull()) return Value();
        const bool isTaken = !lm::drawing::recordCalled(*table, OdString(WideView(name.text()))).isNull();
        if (isTaken || !apply(*record)) return Value();
        return nameValue(m_machine, table->add(record));
    }

    /// An object that belongs nowhere yet.
    Value waiting(OdSmartPtr<OdDbObject> object) {
        if (!apply(*object)) return Value();
        return m_machine.heap().foreign<EntityName>(object);
    }

    Machine& m_machine;
    const Value& m_list;
    OdDbDatabase& m_database;
    HostState& m_host;
};

// The list, or the name of the block that ENDBLK closes.
Value entmake(Machine& machine, Arguments a) {
    const Value result = Maker(machine, machine.listAt(a, 0)).make();
    return result.isForeign() ? a[0] : result;
}

Value entmakex(Machine& machine, Arguments a) {
    return Maker(machine, machine.listAt(a, 0)).make();
}

const Builtin kMakers[] = {{"ENTMAKE", 1, 1, &entmake}, {"ENTMAKEX", 1, 1, &entmakex}};

} // namespace

std::span<const Builtin> entityMakers() {
    return kMakers;
}

} // namespace lm::host::lisp
