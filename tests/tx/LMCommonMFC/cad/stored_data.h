// SPDX-License-Identifier: MIT
// What the tests of extended data, dictionaries and layers share: data as plain text, and a reactor that
// writes down what it is told or raises instead.
#pragma once

#include "cad_drawing.h"

#include "drawing/reactor.h"

#include <functional>

namespace lm::tests {

/// A chain as "code:text", with "#" in place of ":" before a number; "null" for none.
inline std::string told(const OdSmartPtr<OdResBuf>& chain) {
    if (chain.isNull()) return "null";
    std::string text;
    for (const OdResBuf* at = chain.get(); at != nullptr; at = at->next().get())
        text += (text.empty() ? "" : " ") + std::to_string(at->restype()) +
                (at->payload() == OdResBuf::kInteger ? "#" : ":") + plain(CHostString(at->getString()));
    return text;
}

inline Texts told(const RZStringList& list) {
    Texts all;
    for (const RZString& each : list) all.push_back(plain(each));
    return all;
}

/// The names of a table's live records in order.
inline Texts recordsOf(OdDbObjectId table) {
    Texts all;
    const auto walk = OdSmartPtr<OdDbSymbolTable>(table.openObject())->newIterator();
    for (; !walk->done(); walk->step()) all.push_back(plain(CHostString(walk->getRecord()->getName())));
    return all;
}

/// Writes down the events of a database as "event TYPE name" while it is attached, and does what it is armed
/// with at each of them.
class Recorder : public OdDbDatabaseReactor {
public:
    explicit Recorder(OdDbDatabase& database) : m_database(database) { database.addReactor(this); }
    ~Recorder() override { m_database.removeReactor(this); }

    void objectAppended(const OdDbDatabase*, const OdDbObject* object) override {
        record("appended", *object);
    }
    void objectOpenedForModify(const OdDbDatabase*, const OdDbObject* object) override {
        record("opened", *object);
    }
    void objectModified(const OdDbDatabase*, const OdDbObject* object) override {
        record("modified", *object);
    }
    void objectErased(const OdDbDatabase*, const OdDbObject* object, bool erased) override {
        record(erased ? "erased" : "unerased", *object);
    }

    /// The events since the last call.
    Texts taken() {
        Texts all;
        all.swap(m_events);
        return all;
    }
    std::function<void()> armed;

private:
    void record(const char* event, const OdDbObject& object) {
        std::string line = std::string(event) + " " + plain(CHostString(object.dxfName()));
        if (const auto* named = OdDbSymbolTableRecord::cast(&object))
            line += " " + plain(CHostString(named->getName()));
        m_events.push_back(line);
        if (armed) armed();
    }
    OdDbDatabase& m_database;
    Texts m_events;
};

/// A drawing with points that carry data.
class StoredData : public CadDrawing {
protected:
    using Chain = OdSmartPtr<OdResBuf>;

    /// A closed point in model space.
    OdDbObjectId point() {
        OdSmartPtr<OdDbPoint> made = make(new OdDbPoint);
        return append(m_db.getModelSpaceId(), made);
    }
    /// A closed point with a chain of texts under an id that is registered.
    OdDbObjectId pointWith(const char* id, const Texts& texts) {
        const OdDbObjectId made = point();
        give(made, id, texts);
        return made;
    }
    /// Adds a chain of texts to an object; no texts give a lone record with the id, as files may hold it.
    void give(OdDbObjectId object, const char* id, const Texts& texts) {
        enroll(id);
        object.openObject(OdDb::kForWrite)->setXDataRaw(chainOf(texts, id));
    }
    void enroll(const char* id) {
        OdSmartPtr<OdDbSymbolTable> table(m_db.getRegAppTableId().openObject(OdDb::kForWrite));
        if (table->has(od(id))) return;
        OdSmartPtr<OdDbRegAppTableRecord> record = make(new OdDbRegAppTableRecord);
        record->setName(od(id));
        table->add(record);
    }
    bool isRegistered(const char* id, const OdDbDatabase* in = nullptr) const {
        const OdDbDatabase& db = in == nullptr ? m_db : *in;
        return OdSmartPtr<OdDbSymbolTable>(db.getRegAppTableId().openObject())->has(od(id));
    }
    static std::string data(OdDbObjectId object, const char* id = "") {
        return told(object.openObject(OdDb::kForRead, true)->xData(od(id)));
    }
    static OdSmartPtr<OdDbObject> read(OdDbObjectId id) { return id.openObject(OdDb::kForRead); }
    static std::string handle(OdDbObjectId id) { return plain(CHostString(id.getHandle().ascii())); }
    static bool isWriteEnabled(OdDbObjectId id) { return id.openObject()->isWriteEnabled(); }
};

} // namespace lm::tests
