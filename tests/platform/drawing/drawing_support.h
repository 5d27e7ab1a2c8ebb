// SPDX-License-Identifier: MIT
// What the tests of the drawing layer share: texts, objects with one count, chains, short ways into a
// database.
#pragma once

#include "dxf_writer.h"

#include "drawing/blockreference.h"
#include "drawing/curves.h"
#include "drawing/database.h"
#include "drawing/reader.h"
#include "drawing/report.h"

#include <gtest/gtest.h>

namespace drawing_test {

using lm::drawing::Defect;
using lm::drawing::ReadOptions;
using lm::drawing::Report;
using lm::drawing::utf8;

/// A text of the drawing layer from UTF-8.
inline OdString od(const std::string& text) {
    return OdString(lm::WideView(lm::system::fromUtf8(text)));
}

/// A new object whose only count is the pointer's.
template<class T>
OdSmartPtr<T> make() {
    return OdSmartPtr<T>(new T(), lm::drawing::kAttach);
}

inline OdSmartPtr<OdDbDatabase> newDatabase() {
    return OdSmartPtr<OdDbDatabase>(new OdDbDatabase(), lm::drawing::kAttach);
}

/// The object of an id, checked for its class; null when it can't be opened.
template<class T>
OdSmartPtr<T> open(OdDbObjectId id, OdDb::OpenMode mode = OdDb::kForRead, bool openErased = false) {
    return OdSmartPtr<T>(id.openObject(mode, openErased));
}

/// The object of a handle in hexadecimal digits.
template<class T>
OdSmartPtr<T> byHandle(const OdDbDatabase& db, const std::string& handle,
                       OdDb::OpenMode mode = OdDb::kForRead) {
    return open<T>(db.getOdDbObjectId(OdDbHandle(std::stoull(handle, nullptr, 16))), mode);
}

inline OdSmartPtr<OdDbBlockTableRecord> modelSpace(const OdDbDatabase& db,
                                                   OdDb::OpenMode mode = OdDb::kForRead) {
    return open<OdDbBlockTableRecord>(db.getModelSpaceId(), mode);
}

inline OdSmartPtr<OdDbSymbolTable> layerTable(const OdDbDatabase& db, OdDb::OpenMode mode = OdDb::kForRead) {
    return open<OdDbSymbolTable>(db.getLayerTableId(), mode);
}

inline OdSmartPtr<OdDbSymbolTable> blockTable(const OdDbDatabase& db, OdDb::OpenMode mode = OdDb::kForRead) {
    return open<OdDbSymbolTable>(db.getBlockTableId(), mode);
}

/// Puts a new entity into model space.
template<class T>
OdDbObjectId append(OdDbDatabase& db, OdSmartPtr<T> entity) {
    return modelSpace(db, OdDb::kForWrite)->appendOdDbEntity(entity);
}

inline OdDbObjectId addLayer(OdDbDatabase& db, const std::string& name) {
    const auto layer = make<OdDbLayerTableRecord>();
    layer->setName(od(name));
    return layerTable(db, OdDb::kForWrite)->add(layer);
}

inline OdDbObjectId addBlock(OdDbDatabase& db, const std::string& name) {
    const auto block = make<OdDbBlockTableRecord>();
    block->setName(od(name));
    return blockTable(db, OdDb::kForWrite)->add(block);
}

/// Names of the live records of a table, in table order.
inline std::vector<std::string> namesOf(OdDbObjectId table) {
    std::vector<std::string> names;
    const auto walk = open<OdDbSymbolTable>(table)->newIterator();
    for (walk->start(); !walk->done(); walk->step()) names.push_back(utf8(walk->getRecord()->getName()));
    return names;
}

/// Handles of the parts that a walk meets.
inline std::vector<std::string> handlesOf(OdSmartPtr<OdDbObjectIterator> walk) {
    std::vector<std::string> handles;
    for (walk->start(); !walk->done(); walk->step())
        handles.push_back(utf8(walk->objectId().getHandle().ascii()));
    return handles;
}

/// "TAG=value" of the attributes of a reference.
inline std::vector<std::string> attributesOf(const OdSmartPtr<OdDbBlockReference>& reference) {
    std::vector<std::string> all;
    const auto walk = reference->attributeIterator();
    for (walk->start(); !walk->done(); walk->step()) {
        const OdSmartPtr<OdDbAttribute> attribute(walk->entity());
        all.push_back(utf8(attribute->tag()) + "=" + utf8(attribute->textString()));
    }
    return all;
}

/// A chain of texts under codes, in the notation of dxf_writer.h.
inline OdSmartPtr<OdResBuf> chainOf(const std::string& notation) {
    OdSmartPtr<OdResBuf> head, tail;
    for (const auto& [code, value] : dxf::split(notation)) {
        const auto record = OdResBuf::newRb(code, od(value));
        if (head.isNull())
            head = record;
        else
            tail->setNext(record);
        tail = record;
    }
    return head;
}

/// A chain in the notation of dxf_writer.h; points as x,y,z and binary data in hexadecimal digits.
inline std::string textOf(OdSmartPtr<OdResBuf> chain) {
    std::string out;
    for (; !chain.isNull(); chain = chain->next()) {
        if (!out.empty()) out += '|';
        out += std::to_string(chain->restype()) + " ";
        if (chain->payload() == OdResBuf::kPoint) {
            const OdGePoint3d p = chain->getPoint3d();
            for (const double part : {p.x, p.y, p.z})
                out += utf8(OdResBuf::newRb(0, part)->getString()) + ",";
            out.pop_back();
        } else if (chain->payload() == OdResBuf::kBinary) {
            constexpr char kDigits[] = "0123456789ABCDEF";
            for (const unsigned char byte : chain->getBinary()) {
                out += kDigits[byte >> 4];
                out += kDigits[byte & 15];
            }
        } else {
            out += utf8(chain->getString());
        }
    }
    return out;
}

/// The code of the OdError that a call raises; eOk when it raises none.
template<class F>
OdResult codeOf(F&& call) {
    try {
        call();
    } catch (const OdError& error) {
        return error.code();
    }
    return eOk;
}

/// The description of the OdError that a call raises.
template<class F>
std::string errorOf(F&& call) {
    try {
        call();
    } catch (const OdError& error) {
        return utf8(error.description());
    }
    return "no error";
}

inline OdSmartPtr<OdDbDatabase> readBytes(std::string bytes, const ReadOptions& options = {}) {
    OdSmartPtr<OdDbDatabase> db(new OdDbDatabase(OdDbDatabase::kNothing), lm::drawing::kAttach);
    lm::drawing::readMemory(*db.get(), std::move(bytes), "test.dxf", options);
    return db;
}

/// Reads groups in text form.
inline OdSmartPtr<OdDbDatabase> readGroups(const std::string& notation, const ReadOptions& options = {}) {
    return readBytes(dxf::text(notation), options);
}

/// Runs a check on the text form and on the binary form of the same groups.
template<class F>
void inBothForms(const std::string& notation, F&& check) {
    {
        SCOPED_TRACE("text");
        check(*readBytes(dxf::text(notation)).get());
    }
    SCOPED_TRACE("binary");
    check(*readBytes(dxf::binary(notation)).get());
}

inline std::string reportOf(const OdDbDatabase& db) {
    std::string all;
    for (const auto& repair : db.report().repairs()) all += Report::text(repair) + "\n";
    return all;
}

} // namespace drawing_test
