// SPDX-License-Identifier: MIT
// What every drawing has, and the making of what one lacks.
#include "model/databasedata.h"
#include "model/names.h"

namespace lm::drawing {

Node* makeTable(DatabaseData& data) {
    auto* table = new OdDbSymbolTable();
    Node* const node = data.adopt(table, kKindTable);
    ObjectAccess::setRefs(*table, 0);
    return node;
}

namespace {

template<class T>
Node* addRecord(DatabaseData& data, Node* table, std::uint16_t kind, std::string_view name) {
    auto* record = new T();
    const OdString text = odText(name);
    ObjectAccess::setName(*record, text);
    Node* const node = data.adopt(record, kind);
    node->flags |= Node::kTableRecord;
    table->appendPart(node);
    ObjectAccess::enterName(*static_cast<OdDbSymbolTable*>(data.bodyOf(table)), text, node);
    ObjectAccess::setRefs(*record, 0);
    return node;
}

Node* findNoCase(DatabaseData& data, Node* table, std::string_view name) {
    const WideString wanted = system::widen(name);
    for (Node* record = table->firstPart; record != nullptr; record = record->next) {
        const auto* body = static_cast<OdDbSymbolTableRecord*>(data.bodyOf(record));
        if (system::equalsNoCase(body->getName().view(), wanted)) return record;
    }
    return nullptr;
}

/// Makes what is missing of a table and its fixed records, and says so where that is a repair.
class Completion {
public:
    Completion(DatabaseData& data, bool report) : m_data(data), m_report(report) {}

    void table(Node*& table, const char* name) {
        if (table != nullptr) return;
        table = makeTable(m_data);
        if (m_report)
            m_data.report.add({Defect::kMissingTable, table->handle, 0, std::string("table ") + name});
    }

    template<class T>
    void record(Node*& record, Node* table, std::uint16_t kind, const char* name) {
        if (record == nullptr) record = findNoCase(m_data, table, name);
        if (record == nullptr) record = addRecord<T>(m_data, table, kind, name);
    }

private:
    DatabaseData& m_data;
    bool m_report;
};

} // namespace

void completeDefaults(DatabaseData& data, bool report) {
    FixedEntries& f = data.fixed;
    Completion make(data, report);
    make.table(f.viewportTable, "VPORT");
    make.table(f.linetypeTable, "LTYPE");
    make.table(f.layerTable, "LAYER");
    make.table(f.styleTable, "STYLE");
    make.table(f.viewTable, "VIEW");
    make.table(f.appTable, "APPID");
    make.table(f.blockTable, "BLOCK_RECORD");
    Node* activeViewport = nullptr;
    make.record<OdDbViewportTableRecord>(activeViewport, f.viewportTable, kKindVport, "*Active");
    make.record<OdDbLinetypeTableRecord>(f.byBlock, f.linetypeTable, kKindLtype, "ByBlock");
    make.record<OdDbLinetypeTableRecord>(f.byLayer, f.linetypeTable, kKindLtype, "ByLayer");
    make.record<OdDbLinetypeTableRecord>(f.continuous, f.linetypeTable, kKindLtype, "Continuous");
    make.record<OdDbLayerTableRecord>(f.layerZero, f.layerTable, kKindLayer, "0");
    make.record<OdDbTextStyleTableRecord>(f.standardStyle, f.styleTable, kKindStyle, "Standard");
    make.record<OdDbBlockTableRecord>(f.modelSpace, f.blockTable, kKindBlockRecord, "*Model_Space");
    make.record<OdDbBlockTableRecord>(f.paperSpace, f.blockTable, kKindBlockRecord, "*Paper_Space");
    if (f.dictionary == nullptr) {
        auto* dictionary = new OdDbDictionary();
        f.dictionary = data.adopt(dictionary, kKindDictionary);
        ObjectAccess::setRefs(*dictionary, 0);
    }
    if (data.currentLayer == nullptr) data.currentLayer = f.layerZero;
}

void addDefaults(DatabaseData& data) {
    completeDefaults(data, false);
}

} // namespace lm::drawing
