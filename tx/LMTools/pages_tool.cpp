// SPDX-License-Identifier: MIT
// The tool "pages": what a project keeps of itself, and its pages in table order.
#include "commands.h"
#include "pages.h"
#include "tools.h"

#include "drawing/curves.h"
#include "drawing/partwalk.h"
#include "vocabulary/names.h"

#include <algorithm>
#include <map>

namespace lmtools {

namespace {

using lm::host::JsonWriter;
using lm::host::ToolContext;
using lm::host::ToolOutput;

constexpr int kApplication = 1001;

struct Counts {
    std::size_t references = 0, polylines = 0;
};

struct Group {
    RZString name;
    int order;
};

/// What one walk over model space finds.
struct Contents {
    std::map<OdDbObjectId, Counts> layers; ///< those that an entity stands on
    bool hasCarrier = false;
    std::vector<Group> groups; ///< in the order of the carrier's ids
};

/// The groups whose order of pages a carrier knows. Of several carriers the first that has a value counts.
void collectGroups(const OdDbObject& carrier, std::vector<Group>& groups) {
    const RZString prefix(kOrderOfPages);
    for (OdSmartPtr<OdResBuf> at = carrier.xData(); !at.isNull(); at = at->next()) {
        const OdSmartPtr<OdResBuf> value = at->next();
        const bool isLone = value.isNull() || value->restype() == kApplication;
        const RZString id = at->getString();
        if (at->restype() != kApplication || isLone || !id.view().starts_with(prefix.view())) continue;
        const RZString name(id.view().substr(prefix.view().size()));
        const auto isSame = [&name](const Group& group) { return group.name == name; };
        if (std::none_of(groups.begin(), groups.end(), isSame))
            groups.push_back({name, RZString(value->getString()).toInt()});
    }
}

OdDbObjectId layerCalled(const CHostDatabase& drawing, const char* name) {
    const OdSmartPtr<OdDbSymbolTable> layers(drawing.getLayerTableId().openObject());
    return layers.isNull() ? OdDbObjectId() : layers->getAt(OdString(name));
}

Contents contentsOf(const CHostDatabase& drawing) {
    Contents contents;
    const OdDbObjectId carrierLayer = layerCalled(drawing, kCarrierLayer);
    for (lm::drawing::PartWalk walk(drawing.getModelSpaceId()); !walk.done(); walk.next()) {
        const OdDbEntity* const entity = walk.entity();
        const OdDbObjectId layer = entity->layerId();
        Counts& counts = contents.layers[layer];
        if (walk.isReference()) {
            ++counts.references;
        } else if (OdDbPolyline::cast(entity) != nullptr) {
            ++counts.polylines;
        } else if (layer == carrierLayer && OdDbPoint::cast(entity) != nullptr) {
            contents.hasCarrier = true;
            collectGroups(*entity, contents.groups);
        }
    }
    return contents;
}

struct Page {
    RZString name, number;
    std::vector<RZString> companions; ///< those that exist
    bool isCover, isIndex;
    std::optional<RZString> description; ///< when it was asked for
    Counts counts;
};

/// What the stamp says of a page. It stands on the page, or where asked for on the layer that the page has
/// for it.
RZString descriptionOf(CICad& cad, const RZString& page, const Options& options) {
    const RZString tag = wide(*options.tag), block = wide(*options.stamp);
    return cad.BuscarDescricaoPagina(tag, block, options.onStampLayer ? stampLayerOf(page) : page);
}

std::vector<Page> pagesOf(CICad& cad, const CHostDatabase& drawing, const Contents& contents,
                          const Options& options) {
    std::vector<Page> pages;
    const OdSmartPtr<OdDbSymbolTable> layers(drawing.getLayerTableId().openObject());
    if (layers.isNull()) return pages;
    for (auto walk = layers->newIterator(); !walk->done(); walk->step()) {
        const RZString name(walk->getRecord()->getName());
        if (!canBePage(name)) continue;
        const OdDbObjectId id = walk->getRecordId();
        const auto found = contents.layers.find(id);
        const bool isDrawn = found != contents.layers.end();
        Page page{name, RZString(), {}, cad.isPaginaCapa(RZID(id)), cad.isPaginaIndice(RZID(id)), {}, {}};
        if (!isDrawn && !page.isCover && !page.isIndex) continue;
        page.number = cad.FormataNumeroPagina(static_cast<int>(pages.size()) + 1);
        for (const RZString& companion : companionsOf(name))
            if (layers->has(OdString(companion))) page.companions.push_back(companion);
        if (isDrawn) page.counts = found->second;
        if (options.stamp) page.description = descriptionOf(cad, name, options);
        pages.push_back(std::move(page));
    }
    return pages;
}

/// What a project keeps beside its pages.
struct Project {
    Project(CICad& cad, CHostDatabase& drawing)
        : numbering(cad.GetNumeracaoPaginas(&drawing)), order(cad.GetOrdemGrupos(&drawing)),
          version(cad.getVersaoProjeto()), configuration(cad.GetCfgProjeto()),
          panels(cad.GetPaineisDefinidos(&drawing)) {}
    int numbering, order;
    RZString version, configuration;
    OdSmartPtr<OdResBuf> panels; ///< with their id in front; null without any
};

// --- As JSON ---

void writeValue(JsonWriter& json, const OdResBuf& record) {
    if (record.payload() == OdResBuf::kInteger) return json.value(record.getInt64());
    if (record.payload() == OdResBuf::kReal) return json.value(record.getDouble());
    if (record.payload() != OdResBuf::kPoint) return json.value(record.getString());
    const OdGePoint3d point = record.getPoint3d();
    json.beginArray();
    for (const double number : {point.x, point.y, point.z}) json.value(number);
    json.endArray();
}

void writePanels(JsonWriter& json, const OdSmartPtr<OdResBuf>& panels) {
    if (panels.isNull()) return json.null();
    json.beginArray();
    for (OdSmartPtr<OdResBuf> at = panels->next(); !at.isNull(); at = at->next()) {
        json.beginObject();
        json.key("code");
        json.value(at->restype());
        json.key("value");
        writeValue(json, *at);
        json.endObject();
    }
    json.endArray();
}

void writeText(JsonWriter& json, std::string_view key, const RZString& text) {
    json.key(key);
    json.value(text.view());
}

void writeProject(JsonWriter& json, const Project& project, const Contents& contents) {
    json.key("numbering");
    json.value(project.numbering);
    json.key("order");
    json.value(project.order);
    writeText(json, "version", project.version);
    writeText(json, "configuration", project.configuration);
    json.key("panels");
    writePanels(json, project.panels);
    json.key("carrier");
    json.value(contents.hasCarrier);
    json.key("groups");
    json.beginArray();
    for (const Group& group : contents.groups) {
        json.beginObject();
        writeText(json, "name", group.name);
        json.key("order");
        json.value(group.order);
        json.endObject();
    }
    json.endArray();
}

void writePage(JsonWriter& json, const Page& page) {
    json.beginObject();
    writeText(json, "name", page.name);
    writeText(json, "head", headOf(page.name));
    json.key("companions");
    json.beginArray();
    for (const RZString& companion : page.companions) json.value(companion.view());
    json.endArray();
    json.key("cover");
    json.value(page.isCover);
    json.key("index");
    json.value(page.isIndex);
    writeText(json, "number", page.number);
    json.key("description");
    if (page.description)
        json.value(page.description->view());
    else
        json.null();
    json.key("references");
    json.value(page.counts.references);
    json.key("polylines");
    json.value(page.counts.polylines);
    json.endObject();
}

void writeJson(ToolOutput& out, const Project& project, const Contents& contents,
               const std::vector<Page>& pages) {
    JsonWriter json(out);
    json.beginObject();
    writeProject(json, project, contents);
    json.key("pages");
    json.beginArray();
    for (const Page& page : pages) writePage(json, page);
    json.endArray();
    json.endObject();
    json.finish();
}

// --- As text ---

std::string orNone(const RZString& text) {
    return text.isEmpty() ? "none" : narrow(text);
}

std::string shown(const OdSmartPtr<OdResBuf>& panels) {
    std::string line;
    for (OdSmartPtr<OdResBuf> at = panels; !at.isNull(); at = at->next())
        if (at->restype() != kApplication)
            line += (line.empty() ? "" : ", ") + lm::drawing::utf8(at->getString());
    return line.empty() ? "none" : line;
}

void writeLines(ToolOutput& out, const Project& project, const Contents& contents,
                const std::vector<Page>& pages) {
    out.write("numbering: " + std::to_string(project.numbering) + "\n");
    out.write("order of groups: " + std::to_string(project.order) + "\n");
    for (const Group& group : contents.groups)
        out.write("order of pages: " + std::to_string(group.order) + " in group \"" + narrow(group.name) +
                  "\"\n");
    out.write("version: " + orNone(project.version) + "\n");
    out.write("configuration file: " + orNone(project.configuration) + "\n");
    out.write("panels: " + shown(project.panels) + "\n");
    out.write(std::string("settings carrier: ") + (contents.hasCarrier ? "yes" : "no") + "\n");
    out.write("pages: " + std::to_string(pages.size()) + "\n");
    for (const Page& page : pages) {
        std::string line = "    " + narrow(page.number) + "  " + narrow(page.name);
        if (page.isCover) line += "  [cover]";
        if (page.isIndex) line += "  [index]";
        if (page.description && !page.description->isEmpty())
            line += "  \"" + narrow(*page.description) + "\"";
        line += "  " + counted(page.counts.references, "reference") + ", " +
                counted(page.counts.polylines, "polyline");
        for (std::size_t i = 0; i < page.companions.size(); ++i)
            line += (i == 0 ? "  with " : " ") + narrow(page.companions[i]);
        out.write(line + "\n");
    }
}

int runPages(ToolContext& context) {
    const std::optional<Options> options =
        readOptions(context, {"--json", "--stamp", "--tag", "--on-stamp-layer"});
    if (!options) return 2;
    if (options->stamp.has_value() != options->tag.has_value()) {
        context.error("--stamp and --tag tell together where descriptions stand, found " +
                      std::string(options->stamp ? "--stamp" : "--tag") + " alone");
        return 2;
    }
    if (options->onStampLayer && !options->stamp) {
        context.error("--on-stamp-layer needs --stamp and --tag");
        return 2;
    }
    CHostDatabase& drawing = *context.document->database();
    CICad cad;
    const Project project(cad, drawing);
    const Contents contents = contentsOf(drawing);
    const std::vector<Page> pages = pagesOf(cad, drawing, contents, *options);
    const auto write = options->json ? &writeJson : &writeLines;
    write(context.out, project, contents, pages);
    return 0;
}

} // namespace

lm::host::Tool pagesTool() {
    return {"pages",
            "pages of the project [--stamp BLOCK --tag TAG [--on-stamp-layer]] [--json]:\n"
            "in table order\n"
            "the layers but \"0\", \"RZ_FREEZE\" and those that belong to\n"
            "another (names that end with \"$DE\", \"$FORMATO\", \"$SELO\"),\n"
            "as far as they carry an entity or a mark; the description is the\n"
            "attribute TAG of the stamp BLOCK on the page, or on its \"$SELO\"",
            runPages};
}

} // namespace lmtools
