// SPDX-License-Identifier: MIT
// What the tests of symbols share: symbol files in a folder that goes with the test, and references as plain
// text.
#pragma once

#include "stored_data.h"

#include "drawing/writer.h"

#include <gmock/gmock.h>

namespace lm::tests {

/// A number without what a file's digits may lose.
inline std::string number(double value) {
    const double rounded = std::round(value * 1e6) / 1e6;
    return plain(CHostString(OdResBuf::newRb(0, rounded == 0 ? 0.0 : rounded)->getString()));
}
inline std::string told(const OdGePoint3d& point) {
    return number(point.x) + "," + number(point.y) + "," + number(point.z);
}

/// An entity as "TYPE layer", with a line's ends, a text's text, or the block that a reference shows.
inline std::string told(const OdDbEntity& entity) {
    std::string line = plain(CHostString(entity.dxfName())) + " " + plain(CHostString(entity.layer()));
    if (const auto* e = OdDbLine::cast(&entity))
        line += " " + told(e->startPoint()) + " " + told(e->endPoint());
    if (const auto* e = OdDbText::cast(&entity)) line += " '" + plain(CHostString(e->textString())) + "'";
    if (const auto* e = OdDbBlockReference::cast(&entity))
        line += " " + told(e->position()) + " shows " +
                plain(CICad().GetNomeBloco(OdSmartPtr<OdDbBlockReference>(e)));
    return line;
}

/// The live entities of a block.
inline Texts entitiesOf(OdDbObjectId block) {
    Texts all;
    const auto walk = OdSmartPtr<OdDbBlockTableRecord>(block.openObject())->newIterator();
    for (; !walk->done(); walk->step()) all.push_back(told(*walk->entity()));
    return all;
}

/// The live attributes of a reference as "TAG=value", with "|i" behind an invisible one.
inline Texts attributesOf(const Reference& reference) {
    Texts all;
    const auto walk = reference->attributeIterator();
    for (; !walk->done(); walk->step()) {
        const OdSmartPtr<OdDbAttribute> attribute(walk->entity());
        all.push_back(plain(CHostString(attribute->tag())) + "=" +
                      plain(CHostString(attribute->textString())) + (attribute->isInvisible() ? "|i" : ""));
    }
    return all;
}

/// The lines of a log without document and time.
inline Texts linesOf(const lm::test::LogCapture& log) {
    Texts all = log.lines();
    for (std::string& line : all) line.erase(0, line.find("} ") + 2);
    return all;
}

class Symbols : public StoredData {
protected:
    using Source = OdSmartPtr<OdDbDatabase>;

    static Source drawing() { return make(new OdDbDatabase); }
    /// A drawing with one line, and with definitions in model space.
    static Source symbol(const std::vector<Definition>& definitions = {}) {
        const Source db = drawing();
        line(db->getModelSpaceId(), {0, 0, 0}, {10, 0, 0});
        for (const Definition& each : definitions) define(db->getModelSpaceId(), each);
        return db;
    }
    static OdDbObjectId line(OdDbObjectId block, OdGePoint3d from, OdGePoint3d to) {
        const OdSmartPtr<OdDbLine> made = make(new OdDbLine);
        made->setStartPoint(from);
        made->setEndPoint(to);
        return append(block, made);
    }
    static OdDbObjectId layerIn(OdDbDatabase& db, const char* name) {
        const OdSmartPtr<OdDbSymbolTable> table(db.getLayerTableId().openObject(OdDb::kForWrite));
        const OdSmartPtr<OdDbLayerTableRecord> record = make(new OdDbLayerTableRecord);
        record->setName(od(name));
        return table->add(record);
    }
    static OdDbObjectId blockIn(OdDbDatabase& db, const char* name) {
        const OdSmartPtr<OdDbSymbolTable> table(db.getBlockTableId().openObject(OdDb::kForWrite));
        const OdSmartPtr<OdDbBlockTableRecord> record = make(new OdDbBlockTableRecord);
        record->setName(od(name));
        return table->add(record);
    }
    static OdDbObjectId refer(OdDbDatabase& db, OdDbObjectId block) {
        const Reference made = make(new OdDbBlockReference);
        made->setBlockTableRecord(block);
        return append(db.getModelSpaceId(), made);
    }
    /// Saves a drawing as a file of the test's folder and gives its path.
    RZString file(const char* name, OdDbDatabase& db) {
        const std::string path = (m_folder.path() / name).string();
        lm::drawing::saveDrawing(db, od(path));
        return rz(path);
    }
    /// A symbol file with a line and an entity that can't be moved, and with its base point at an x.
    RZString unmovable(const char* x) {
        return rz(m_folder.file(
            "unmovable.dxf",
            std::string("0\nSECTION\n2\nHEADER\n9\n$ACADVER\n1\nAC1027\n9\n$INSBASE\n10\n") + x +
                "\n20\n0.0\n30\n0.0\n0\nENDSEC\n0\nSECTION\n2\nENTITIES\n0\nLINE\n5\nA1\n100\n"
                "AcDbEntity\n8\n0\n100\nAcDbLine\n10\n100.0\n20\n0.0\n30\n0.0\n11\n101.0\n"
                "21\n0.0\n31\n0.0\n0\nOLE2FRAME\n5\nA2\n100\nAcDbEntity\n8\n0\n100\n"
                "AcDbOle2Frame\n70\n2\n10\n100.0\n20\n5.0\n30\n0.0\n0\nENDSEC\n0\nEOF\n"));
    }
    RZString missing() { return rz((m_folder.path() / "missing.dxf").string()); }
    RZString damaged() { return rz(m_folder.file("damaged.dxf", "no drawing at all")); }

    OdDbObjectId blockNamed(const char* name) {
        return OdSmartPtr<OdDbSymbolTable>(m_db.getBlockTableId().openObject())->getAt(od(name));
    }
    static OdSmartPtr<OdDbBlockTableRecord> openBlock(OdDbObjectId id, OdDb::OpenMode mode = OdDb::kForRead) {
        return OdSmartPtr<OdDbBlockTableRecord>(id.openObject(mode, true));
    }
    static Reference openReference(OdDbObjectId id) { return Reference(id.openObject()); }
    Texts modelSpace() { return entitiesOf(m_db.getModelSpaceId()); }
    Texts blocks() { return recordsOf(m_db.getBlockTableId()); }

    lm::test::TemporaryFolder m_folder;
};

} // namespace lm::tests
