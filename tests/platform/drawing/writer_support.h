// SPDX-License-Identifier: MIT
// What the tests of the writer share: saving into memory, the groups of a file one by one, and an object's
// fields as a text.
#pragma once

#include "drawing_support.h"

#include "dxf/read.h"

#include "drawing/writer.h"

#include <cstdio>
#include <sstream>

namespace drawing_test {

using lm::drawing::FileVersion;
using lm::drawing::KeptKinds;
using lm::drawing::WriteOptions;

constexpr FileVersion kVersions[] = {FileVersion::kR2000, FileVersion::kR2004, FileVersion::kR2007,
                                     FileVersion::kR2010, FileVersion::kR2013, FileVersion::kR2018};

inline std::string saved(OdDbDatabase& db, const WriteOptions& options = {}, KeptKinds* kept = nullptr) {
    std::string bytes;
    lm::drawing::writeDrawing(
        db, [&bytes](const char* at, std::size_t size) { bytes.append(at, size); }, options, kept);
    return bytes;
}

inline OdSmartPtr<OdDbDatabase> savedAndRead(OdDbDatabase& db, const WriteOptions& options = {}) {
    return readBytes(saved(db, options));
}

/// Runs a check on what is read back in every version and form.
template<class F>
void inAllFiles(OdDbDatabase& db, F&& check) {
    for (const FileVersion version : kVersions)
        for (const bool binary : {false, true}) {
            SCOPED_TRACE(std::string(lm::drawing::versionText(version)) + (binary ? " binary" : " text"));
            check(*savedAndRead(db, {version, binary}).get());
        }
}

/// The lines of a text file as the notation of dxf_writer.h, blanks around codes taken away.
inline std::string notationOf(const std::string& bytes) {
    std::istringstream in(bytes);
    std::string out, code, value;
    while (std::getline(in, code) && std::getline(in, value)) {
        if (!value.empty() && value.back() == '\r') value.pop_back();
        out += (out.empty() ? "" : "|") + std::to_string(std::atoi(code.c_str())) + " " + value;
    }
    return out;
}

/// The groups of the entry of a handle in the notation, from its type on; empty when there is none.
inline std::string entryOf(const std::string& bytes, const std::string& handle) {
    const std::string all = "|" + notationOf(bytes) + "|";
    std::size_t at = all.find("|5 " + handle + "|");
    if (at == std::string::npos) at = all.find("|105 " + handle + "|");
    if (at == std::string::npos) return {};
    const std::size_t begin = all.rfind("|0 ", at);
    const std::size_t end = all.find("|0 ", at);
    return all.substr(begin + 1, end - begin - 1);
}

inline bool contains(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

class Description {
public:
    Description(const OdDbObject& object, bool withOwner) : m_object(object) {
        add("class", utf8(object.dxfName()));
        if (withOwner) add("owner", utf8(object.ownerId().getHandle().ascii()));
        if (const auto* entity = OdDbEntity::cast(&object)) addEntity(*entity);
        if (const auto* record = OdDbSymbolTableRecord::cast(&object)) addRecord(*record);
        if (const auto* record = OdDbXrecord::cast(&object)) add("chain", textOf(record->rbChain()));
        if (const auto* dictionary = OdDbDictionary::cast(&object)) addDictionary(*dictionary);
        add("xdata", textOf(object.xData()));
    }
    const std::string& text() const { return m_text; }

private:
    void add(const char* name, const std::string& value) { m_text += std::string(name) + "=" + value + "\n"; }
    void add(const char* name, double value) {
        char digits[40];
        std::snprintf(digits, sizeof digits, "%.17g", value);
        add(name, std::string(digits));
    }
    void angle(const char* name, double value) {
        char digits[40]; // angles go through degrees, which may cost the last bit
        std::snprintf(digits, sizeof digits, "%.14g", value);
        add(name, std::string(digits));
    }
    template<class P>
    void point(const char* name, const P& p) {
        add(name, p.x);
        add(name, p.y);
        add(name, p.z);
    }
    std::string nameOf(OdDbObjectId id) {
        const auto record = open<OdDbSymbolTableRecord>(id);
        return record.isNull() ? "none" : utf8(record->getName());
    }

    void addEntity(const OdDbEntity& entity) {
        add("layer", utf8(entity.layer()));
        add("color", static_cast<double>(entity.color().method()) * 1000 + entity.color().colorIndex());
        add("rgb", static_cast<double>(entity.color().rgb()));
        add("linetype", nameOf(entity.linetypeId()));
        add("linetype scale", entity.linetypeScale());
        add("line weight", static_cast<double>(entity.lineWeight()));
        add("transparency", static_cast<double>(entity.transparency()));
        add("visible", static_cast<double>(entity.isVisible()));
        if (const auto* at = OdDbText::cast(&entity)) addText(*at);
        if (const auto* at = OdDbMText::cast(&entity)) addMText(*at);
        if (const auto* at = OdDbBlockReference::cast(&entity)) {
            add("block", nameOf(at->blockTableRecord()));
            point("position", at->position());
            add("sx", at->scaleFactors().sx);
            add("sy", at->scaleFactors().sy);
            add("sz", at->scaleFactors().sz);
            angle("rotation", at->rotation());
            point("normal", at->normal());
            for (const std::string& attribute :
                 attributesOf(OdSmartPtr<OdDbBlockReference>(const_cast<OdDbBlockReference*>(at))))
                add("attribute", attribute);
        }
        addCurve(entity);
    }
    void addCurve(const OdDbEntity& entity) {
        if (const auto* at = OdDbPoint::cast(&entity)) point("position", at->position());
        if (const auto* at = OdDbLine::cast(&entity)) {
            point("start", at->startPoint());
            point("end", at->endPoint());
        }
        if (const auto* at = OdDbCircle::cast(&entity)) {
            point("center", at->center());
            add("radius", at->radius());
            point("normal", at->normal());
        }
        if (const auto* at = OdDbArc::cast(&entity)) {
            point("center", at->center());
            add("radius", at->radius());
            angle("from", at->startAngle());
            angle("to", at->endAngle());
        }
        if (const auto* at = OdDbEllipse::cast(&entity)) {
            point("center", at->center());
            point("axis", at->majorAxis());
            add("ratio", at->radiusRatio());
            add("from", at->startParam());
            add("to", at->endParam());
        }
        if (const auto* at = OdDbPolyline::cast(&entity)) {
            add("closed", static_cast<double>(at->isClosed()));
            for (unsigned i = 0; i < at->numVerts(); ++i) {
                point("vertex", at->getPointAt(i));
                add("bulge", at->getBulgeAt(i));
            }
        }
    }
    void addText(const OdDbText& text) {
        add("text", utf8(text.textString()));
        point("position", text.position());
        point("alignment", text.alignmentPoint());
        point("normal", text.normal());
        add("height", text.height());
        angle("rotation", text.rotation());
        angle("oblique", text.oblique());
        add("width factor", text.widthFactor());
        add("thickness", text.thickness());
        add("style", nameOf(text.textStyle()));
        add("modes", static_cast<double>(text.horizontalMode() * 10 + text.verticalMode()));
        add("mirror", static_cast<double>(text.isMirroredInX() * 2 + text.isMirroredInY()));
        if (const auto* at = OdDbAttribute::cast(&text)) {
            add("tag", utf8(at->tag()));
            add("flags", static_cast<double>(at->isInvisible() * 2 + at->isConstant()));
            add("field length", static_cast<double>(at->fieldLength()));
            if (at->isMTextAttribute()) addMText(*at->getMTextAttribute().get());
        }
        if (const auto* at = OdDbAttributeDefinition::cast(&text)) {
            add("tag", utf8(at->tag()));
            add("prompt", utf8(at->prompt()));
            add("flags", static_cast<double>(at->isInvisible() * 2 + at->isConstant()));
            add("field length", static_cast<double>(at->fieldLength()));
            if (at->isMTextAttributeDefinition()) addMText(*at->getMTextAttributeDefinition().get());
        }
    }
    void addMText(const OdDbMText& text) {
        add("contents", utf8(text.contents()));
        point("location", text.location());
        point("direction", text.direction());
        add("text height", text.textHeight());
        add("width", text.width());
        add("attachment", static_cast<double>(text.attachment()));
    }
    void addRecord(const OdDbSymbolTableRecord& record) {
        add("name", utf8(record.getName()));
        if (const auto* at = OdDbLayerTableRecord::cast(&record)) {
            add("state", static_cast<double>(at->isFrozen() * 4 + at->isLocked() * 2 + at->isOff()));
            add("color", static_cast<double>(at->color().method()) * 1000 + at->color().colorIndex());
            add("rgb", static_cast<double>(at->color().rgb()));
            // A layer of a file has a line type.
            add("linetype", at->linetypeObjectId().isNull() ? "Continuous" : nameOf(at->linetypeObjectId()));
        }
        if (const auto* at = OdDbLinetypeTableRecord::cast(&record)) add("comments", utf8(at->comments()));
        if (const auto* at = OdDbAbstractViewTableRecord::cast(&record)) {
            add("center", at->centerPoint().x);
            add("center", at->centerPoint().y);
            add("height", at->height());
            add("width", at->width());
        }
        if (const auto* at = OdDbBlockTableRecord::cast(&record)) {
            point("origin", at->origin());
            add("anonymous", static_cast<double>(at->isAnonymous()));
            const auto walk = at->newIterator();
            for (; !walk->done(); walk->step()) add("part", utf8(walk->objectId().getHandle().ascii()));
        }
    }
    void addDictionary(const OdDbDictionary& dictionary) {
        const auto walk = dictionary.newIterator();
        for (; !walk->done(); walk->next())
            add("entry", utf8(walk->name()) + "=" + utf8(walk->objectId().getHandle().ascii()));
    }

    const OdDbObject& m_object;
    std::string m_text;
};

inline std::string describe(const OdDbDatabase& db, const std::string& handle, bool withOwner = true) {
    const auto object = byHandle<OdDbObject>(db, handle);
    return object.isNull() ? "no object " + handle : Description(*object.get(), withOwner).text();
}

/// Whether every live object of one database is the same in another.
inline void expectSameObjects(const OdDbDatabase& expected, const OdDbDatabase& got) {
    expected.data().nodes.forEach([&](lm::drawing::Node& node) {
        const bool passed = node.kind == lm::drawing::kKindBlock || node.kind == lm::drawing::kKindEndblk ||
                            node.kind == lm::drawing::kKindSeqend || node.kind == lm::drawing::kKindTable;
        if (passed || !node.isLive()) return;
        const std::string handle = utf8(OdDbHandle(node.handle).ascii());
        // The file has dictionaries that every drawing needs.
        if (&node == expected.data().fixed.dictionary) return;
        // Old files name the owners of few objects.
        const bool owned = node.owner != nullptr;
        EXPECT_EQ(describe(expected, handle, owned), describe(got, handle, owned));
    });
}

} // namespace drawing_test
