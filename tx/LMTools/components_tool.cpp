// SPDX-License-Identifier: MIT
// The tool "components": what a project is made of. A component is a reference of a symbol, not of a frame or
// a page mark, or an entry of the virtual schematic; it is told by its tag and number, and by the page that
// it stands on.
#include "tools.h"

#include "vocabulary/cmensagem.h"

#include "drawing/dictionary.h"

#include <set>

namespace lmtools {

namespace {

using lm::host::JsonWriter;
using lm::host::ToolContext;

struct Component {
    OdString handle;
    OdString block;
    OdString page; ///< empty for a component of the virtual schematic
    CHostString tag;
    CHostString number;
    AttributeList attributes;
};

/// A page is a layer; its companions bear its name in front of a "$".
OdString pageOf(const OdString& layer) {
    const lm::WideView name = layer.view();
    return OdString(name.substr(0, name.find(lm::WideChar{'$'})));
}

CHostString valueOf(CEAtributo* record) {
    const std::unique_ptr<CEAtributo> held(record);
    return held != nullptr ? held->GetValor() : CHostString();
}

Component placed(CICad& cad, const OdSmartPtr<OdDbBlockReference>& reference, const OdString& name) {
    CEAtributo* tag = nullptr;
    CEAtributo* number = nullptr;
    cad.SearchAttributeTag(reference, tag, false);
    cad.SearchAttributeNumber(reference, number, false);
    return {
        reference->getDbHandle().ascii(),  name, pageOf(reference->layer()), valueOf(tag), valueOf(number),
        attributesOf(cad, reference, true)};
}

/// Deletes a block of a search with its records: the block owns none, and each of its tags names one.
void releaseBlock(CEBloco* block, const CEListaAtributos& tags) {
    std::set<CEAtributo*> records;
    for (int i = 0; i < tags.GetSize(); ++i) records.insert(block->GetAtributo(tags.GetAt(i)->GetTag()));
    for (CEAtributo* record : records) delete record;
    delete block;
}

/// The components that are drawn on no page.
std::vector<Component> virtualComponents(CICad& cad) {
    constexpr int kLanguages = 3;
    std::vector<Component> found;
    std::set<OdDbObjectId> seen;
    for (int language = 1; language <= kLanguages; ++language) {
        const std::unique_ptr<std::map<lm::WideString, CEBloco*>> blocks(
            cad.BuscarBlocosVirtuais("*", CMensagem::getAttTag(language)));
        if (blocks == nullptr) continue;
        for (const auto& [key, block] : *blocks) {
            const RZID id = block->GetObjectId();
            const RZString name = block->GetNome();
            CEListaAtributos* read = nullptr;
            cad.SearchAttributesVirtual(id, read);
            AttributeList list(read != nullptr ? read : new CEListaAtributos());
            releaseBlock(block, *list);
            if (!seen.insert(id).second) continue;
            found.push_back({static_cast<OdDbHandle>(id).ascii(), name, OdString(),
                             valueOf(cad.SearchAttributeVirtualTag(id)),
                             valueOf(cad.SearchAttributeVirtualNumber(id)), std::move(list)});
        }
    }
    return found;
}

void writeJson(JsonWriter& json, const Component& component) {
    json.beginObject();
    const auto text = [&json](std::string_view key, lm::WideView value) {
        json.key(key);
        json.value(value);
    };
    text("handle", component.handle.view());
    text("block", component.block.view());
    text("tag", component.tag.view());
    text("number", component.number.view());
    text("page", component.page.view());
    json.key("virtual");
    json.value(component.page.isEmpty());
    json.key("attributes");
    json.beginArray();
    for (int i = 0; i < component.attributes->GetSize(); ++i) {
        const CEAtributo& record = *component.attributes->GetAt(i);
        json.beginObject();
        text("tag", record.GetTag().view());
        text("value", record.GetValor().view());
        json.key("invisible");
        json.value(record.GetInvisivel());
        json.endObject();
    }
    json.endArray();
    json.endObject();
}

void writeText(lm::host::ToolOutput& out, const Component& component) {
    const auto orDash = [](std::string text) { return text.empty() ? std::string("-") : text; };
    out.write("tag " + orDash(utf8(component.tag)) + "  number " + orDash(utf8(component.number)) +
              "  page " +
              (component.page.isEmpty() ? std::string("(virtual)") : lm::drawing::utf8(component.page)) +
              "  block " + lm::drawing::utf8(component.block) + "  handle " +
              lm::drawing::utf8(component.handle) + "\n");
    for (int i = 0; i < component.attributes->GetSize(); ++i) {
        const CEAtributo& record = *component.attributes->GetAt(i);
        out.write("    " + utf8(record.GetTag()) + " = " + utf8(record.GetValor()) +
                  (record.GetInvisivel() ? "  [invisible]\n" : "\n"));
    }
}

int runComponents(ToolContext& context) {
    const std::optional<Options> options = readOptions(context, {"--json"});
    if (!options) return 2;
    CICad cad;
    JsonWriter json(context.out);
    std::size_t count = 0;
    const auto write = [&](const Component& component) {
        ++count;
        if (options->json)
            writeJson(json, component);
        else
            writeText(context.out, component);
    };
    if (options->json) json.beginArray();
    const RZStringList furniture = cad.MontarLstBlocosNaoSimbolos();
    forEachReference(*context.document, [&](const OdSmartPtr<OdDbBlockReference>& reference) {
        const OdString name = cad.GetNomeBloco(reference);
        if (!cad.IsBlocoNaoSimbolo(name, furniture)) write(placed(cad, reference, name));
    });
    for (const Component& component : virtualComponents(cad)) write(component);
    if (options->json) {
        json.endArray();
        json.finish();
    } else {
        context.out.write(std::to_string(count) + " components\n");
    }
    return 0;
}

} // namespace

lm::host::Tool componentsTool() {
    return {"components", "components of a project with tag, number, page and attributes [--json]",
            runComponents};
}

} // namespace lmtools
