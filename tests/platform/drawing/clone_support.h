// SPDX-License-Identifier: MIT
// What the tests of clones share: what a drawing's file would hold, and a reactor that writes down what it is
// told.
#pragma once

#include "drawing_support.h"

#include "drawing/writer.h"

#include <functional>

namespace drawing_test {

inline std::string written(OdDbDatabase& db) {
    std::string bytes;
    lm::drawing::writeDrawing(db, [&](const char* part, std::size_t size) { bytes.append(part, size); });
    return bytes;
}

/// The groups of a written entry in the notation of dxf_writer.h, its type first; empty when there is none.
inline std::string entryOf(OdDbDatabase& db, OdDbObjectId id) {
    const std::string bytes = written(db);
    const std::string handle = utf8(id.getHandle().ascii());
    std::vector<std::string> lines;
    for (std::size_t at = 0; at < bytes.size();) {
        const std::size_t end = std::min(bytes.find('\n', at), bytes.size());
        std::string line = bytes.substr(at, end - at);
        if (!line.empty() && line.back() == '\r') line.pop_back();
        lines.push_back(line);
        at = end + 1;
    }
    std::string entry;
    bool found = false;
    for (std::size_t i = 0; i + 1 < lines.size(); i += 2) {
        const int code = std::atoi(lines[i].c_str());
        if (code == 0) {
            if (found) return entry;
            entry.clear();
        }
        if ((code == 5 || code == 105) && lines[i + 1] == handle) found = true;
        if (!entry.empty()) entry += '|';
        entry += std::to_string(code) + " " + lines[i + 1];
    }
    return found ? entry : std::string();
}

inline bool contains(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

inline std::string handleText(OdDbObjectId id) {
    return utf8(id.getHandle().ascii());
}

/// The clone of an object; null for none.
inline OdDbObjectId cloneIn(const OdDbIdMapping& mapping, OdDbObjectId id) {
    OdDbIdPair pair(id);
    return mapping.compute(pair) ? pair.value() : OdDbObjectId::kNull;
}

/// A reference to a block in model space, with attributes in the form "TAG=value".
inline OdDbObjectId placeSymbol(OdDbDatabase& db, OdDbObjectId block,
                                std::initializer_list<const char*> attributes) {
    const auto reference = make<OdDbBlockReference>();
    reference->setBlockTableRecord(block);
    for (const std::string text : attributes) {
        const auto attribute = make<OdDbAttribute>();
        attribute->setTag(od(text.substr(0, text.find('='))));
        attribute->setTextString(od(text.substr(text.find('=') + 1)));
        reference->appendAttribute(attribute);
    }
    return append(db, reference);
}

/// Ids of the live parts of a block or of a reference.
inline std::vector<OdDbObjectId> partsIn(OdSmartPtr<OdDbObjectIterator> walk) {
    std::vector<OdDbObjectId> ids;
    for (walk->start(); !walk->done(); walk->step()) ids.push_back(walk->objectId());
    return ids;
}
inline std::vector<OdDbObjectId> entitiesOf(OdDbObjectId block) {
    return partsIn(open<OdDbBlockTableRecord>(block)->newIterator());
}
inline std::vector<OdDbObjectId> attributeIdsOf(OdDbObjectId reference) {
    return partsIn(open<OdDbBlockReference>(reference)->attributeIterator());
}

/// Writes down "appended TYPE" and the like.
struct CloneRecorder : OdDbDatabaseReactor {
    std::vector<std::string> calls;
    std::function<void(const OdDbObject*)> onAppended;

    void objectAppended(const OdDbDatabase*, const OdDbObject* object) override {
        calls.push_back("appended " + utf8(object->dxfName()));
        if (onAppended) onAppended(object);
    }
    void objectOpenedForModify(const OdDbDatabase*, const OdDbObject* object) override {
        calls.push_back("opened " + utf8(object->dxfName()));
    }
    void objectModified(const OdDbDatabase*, const OdDbObject* object) override {
        calls.push_back("modified " + utf8(object->dxfName()));
    }
    void objectErased(const OdDbDatabase*, const OdDbObject* object, bool) override {
        calls.push_back("erased " + utf8(object->dxfName()));
    }
    std::vector<std::string> take() { return std::exchange(calls, {}); }
};

} // namespace drawing_test
