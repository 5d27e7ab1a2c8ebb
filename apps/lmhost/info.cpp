// SPDX-License-Identifier: MIT
#include "info.h"

#include "drawing/inventory.h"
#include "drawing/report.h"
#include "host/jsonwriter.h"

namespace lmhost {

namespace {

using lm::drawing::Inventory;
using lm::drawing::Repair;
using lm::drawing::Report;
using lm::drawing::utf8;
using lm::host::JsonWriter;
using lm::host::ToolOutput;

struct Layer {
    OdString name;
    bool frozen, locked, off;
};

std::vector<Layer> layersOf(const OdDbDatabase& db) {
    std::vector<Layer> layers;
    const OdSmartPtr<OdDbSymbolTable> table(db.getLayerTableId().openObject());
    const OdSmartPtr<OdDbSymbolTableIterator> walk = table->newIterator();
    for (; !walk->done(); walk->step()) {
        const OdSmartPtr<OdDbLayerTableRecord> layer(walk->getRecord());
        layers.push_back({layer->getName(), layer->isFrozen(), layer->isLocked(), layer->isOff()});
    }
    return layers;
}

std::vector<OdString> blocksOf(const OdDbDatabase& db) {
    std::vector<OdString> names;
    const OdSmartPtr<OdDbSymbolTable> table(db.getBlockTableId().openObject());
    const OdSmartPtr<OdDbSymbolTableIterator> walk = table->newIterator();
    for (; !walk->done(); walk->step()) names.push_back(walk->getRecord()->getName());
    return names;
}

class JsonInfo {
public:
    explicit JsonInfo(JsonWriter& json) : m_json(json) {}

    void text(std::string_view key, const OdString& value) {
        m_json.key(key);
        m_json.value(value);
    }
    void flag(std::string_view key, bool value) {
        m_json.key(key);
        m_json.value(value);
    }
    template<class Items, class Write>
    void array(std::string_view key, const Items& items, Write&& write) {
        m_json.key(key);
        m_json.beginArray();
        for (const auto& item : items) write(item);
        m_json.endArray();
    }
    void names(std::string_view key, const std::vector<OdString>& items) {
        array(key, items, [this](const OdString& name) { m_json.value(name); });
    }
    void counts(std::string_view key, const std::vector<std::pair<std::string, std::size_t>>& items) {
        m_json.key(key);
        m_json.beginObject();
        for (const auto& [name, count] : items) {
            m_json.key(name);
            m_json.value(count);
        }
        m_json.endObject();
    }
    void layer(const Layer& layer) {
        m_json.beginObject();
        text("name", layer.name);
        flag("frozen", layer.frozen);
        flag("locked", layer.locked);
        flag("off", layer.off);
        m_json.endObject();
    }
    void owner(const lm::drawing::XDataOwner& owner) {
        m_json.beginObject();
        text("handle", owner.id.getHandle().ascii());
        m_json.key("type");
        m_json.value(owner.kind);
        names("apps", owner.applications);
        m_json.endObject();
    }
    void repair(const Repair& repair) {
        m_json.beginObject();
        m_json.key("number");
        m_json.value(static_cast<int>(repair.defect));
        m_json.key("what");
        m_json.value(Report::describe(repair.defect));
        text("handle", OdDbHandle(repair.handle).ascii());
        m_json.key("place");
        m_json.value(static_cast<long long>(repair.line));
        m_json.key("detail");
        m_json.value(repair.detail);
        m_json.endObject();
    }

private:
    JsonWriter& m_json;
};

void writeJson(const OdDbDatabase& db, const Inventory& inventory, ToolOutput& out) {
    JsonWriter json(out);
    JsonInfo info(json);
    json.beginObject();
    info.text("version", db.originalFileVersion());
    info.text("codepage", db.originalCodePage());
    info.array("layers", layersOf(db), [&info](const Layer& layer) { info.layer(layer); });
    info.names("blocks", blocksOf(db));
    info.counts("modelspace", inventory.modelSpace);
    info.array("xdata", inventory.xdata,
               [&info](const lm::drawing::XDataOwner& owner) { info.owner(owner); });
    info.names("dictionaries", inventory.dictionaries);
    info.counts("kept", inventory.kept);
    info.array("repairs", db.report().repairs(), [&info](const Repair& repair) { info.repair(repair); });
    json.endObject();
    json.finish();
}

void writeCounts(ToolOutput& out, const char* title,
                 const std::vector<std::pair<std::string, std::size_t>>& counts) {
    out.write(std::string(title) + ":\n");
    for (const auto& [name, count] : counts) out.write("    " + name + " " + std::to_string(count) + "\n");
}

void writeNames(ToolOutput& out, const char* title, const std::vector<OdString>& names) {
    out.write(std::string(title) + " (" + std::to_string(names.size()) + "):\n");
    for (const OdString& name : names) out.write("    " + utf8(name) + "\n");
}

void writeText(const OdDbDatabase& db, const Inventory& inventory, ToolOutput& out) {
    out.write("version " + utf8(db.originalFileVersion()) + "\ncode page " + utf8(db.originalCodePage()) +
              "\n");
    const std::vector<Layer> layers = layersOf(db);
    out.write("layers (" + std::to_string(layers.size()) + "):\n");
    for (const Layer& layer : layers)
        out.write("    " + utf8(layer.name) + (layer.frozen ? "  frozen" : "") +
                  (layer.locked ? "  locked" : "") + (layer.off ? "  off" : "") + "\n");
    writeNames(out, "blocks", blocksOf(db));
    writeCounts(out, "model space", inventory.modelSpace);
    out.write("objects with extended data: " + std::to_string(inventory.xdata.size()) + "\n");
    writeNames(out, "dictionaries", inventory.dictionaries);
    writeCounts(out, "kept unread", inventory.kept);
    out.write("repairs (" + std::to_string(db.report().total()) + "):\n");
    for (const Repair& repair : db.report().repairs()) out.write("    " + Report::text(repair) + "\n");
}

} // namespace

void writeInfo(CHostDocument& document, ToolOutput& out, bool json) {
    const OdDbDatabase& db = *document.database();
    const Inventory inventory = lm::drawing::takeInventory(db);
    if (json)
        writeJson(db, inventory, out);
    else
        writeText(db, inventory, out);
}

} // namespace lmhost
