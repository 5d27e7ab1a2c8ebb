// SPDX-License-Identifier: MIT
// The tool "blocks": block references in model space with their attributes.
#include "tools.h"

#include "drawing/wildcard.h"

namespace lmtools {

namespace {

using lm::host::JsonWriter;
using lm::host::ToolContext;
using lm::host::ToolOutput;

bool isWanted(const Options& options, const OdString& name) {
    if (!options.names) return true;
    for (const OdString& pattern : *options.names)
        if (odutWcMatch(name, pattern)) return true;
    return false;
}

void writeTriple(JsonWriter& json, std::string_view key, double x, double y, double z) {
    json.key(key);
    json.beginArray();
    json.value(x);
    json.value(y);
    json.value(z);
    json.endArray();
}

void writeJson(JsonWriter& json, const OdDbBlockReference& reference, const OdString& name,
               const CEListaAtributos& list) {
    const OdGePoint3d position = reference.position();
    const OdGeVector3d normal = reference.normal();
    const OdGeScale3d scale = reference.scaleFactors();
    json.beginObject();
    json.key("handle");
    json.value(reference.getDbHandle().ascii());
    json.key("name");
    json.value(name);
    json.key("layer");
    json.value(reference.layer());
    writeTriple(json, "position", position.x, position.y, position.z);
    json.key("rotation");
    json.value(reference.rotation());
    writeTriple(json, "normal", normal.x, normal.y, normal.z);
    writeTriple(json, "scale", scale.sx, scale.sy, scale.sz);
    json.key("attributes");
    json.beginArray();
    for (int i = 0; i < list.GetSize(); ++i) {
        const CEAtributo& record = *list.GetAt(i);
        json.beginObject();
        json.key("tag");
        json.value(record.GetTag().view());
        json.key("prompt");
        json.value(record.GetPrompt().view());
        json.key("value");
        json.value(record.GetValor().view());
        json.key("invisible");
        json.value(record.GetInvisivel());
        json.key("handle");
        json.value(record.GetObjectId().getHandle().ascii());
        json.endObject();
    }
    json.endArray();
    json.endObject();
}

void writeText(ToolOutput& out, const OdDbBlockReference& reference, const OdString& name,
               const CEListaAtributos& list) {
    const OdGePoint3d p = reference.position();
    const OdGeScale3d s = reference.scaleFactors();
    out.write(lm::drawing::utf8(reference.getDbHandle().ascii()) + "  " + lm::drawing::utf8(name) +
              "  layer " + lm::drawing::utf8(reference.layer()) + "  at " + decimal(p.x) + " " +
              decimal(p.y) + " " + decimal(p.z) + "  rotation " + decimal(reference.rotation()) + "  scale " +
              decimal(s.sx) + " " + decimal(s.sy) + " " + decimal(s.sz) + "\n");
    for (int i = 0; i < list.GetSize(); ++i) {
        const CEAtributo& record = *list.GetAt(i);
        std::string line = "    " + utf8(record.GetTag());
        if (!record.GetPrompt().isEmpty() && record.GetPrompt() != record.GetTag())
            line += " (" + utf8(record.GetPrompt()) + ")";
        line += " = " + utf8(record.GetValor());
        if (record.GetInvisivel()) line += "  [invisible]";
        out.write(line + "\n");
    }
}

int runBlocks(ToolContext& context) {
    const std::optional<Options> options = readOptions(context, {"--json", "--name", "--no-prompts"});
    if (!options) return 2;
    CICad cad;
    JsonWriter json(context.out);
    if (options->json) json.beginArray();
    forEachReference(*context.document, [&](const OdSmartPtr<OdDbBlockReference>& reference) {
        const OdString name = cad.GetNomeBloco(reference);
        if (!isWanted(*options, name)) return;
        const AttributeList list = attributesOf(cad, reference, options->prompts);
        if (options->json)
            writeJson(json, *reference, name, *list);
        else
            writeText(context.out, *reference, name, *list);
    });
    if (options->json) {
        json.endArray();
        json.finish();
    }
    return 0;
}

} // namespace

lm::host::Tool blocksTool() {
    return {"blocks", "block references in model space [--name PATTERNS] [--no-prompts] [--json]", runBlocks};
}

} // namespace lmtools
