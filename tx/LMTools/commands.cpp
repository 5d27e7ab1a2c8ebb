// SPDX-License-Identifier: MIT
#include "commands.h"

#include "rzprintf.h"
#include "tools.h"
#include "vocabulary/names.h"

#include "drawing/recordsearch.h"
#include "system/path.h"

#include <filesystem>

namespace lmtools {

using lm::host::Answer;
using lm::host::CommandInput;

CHostDatabase& drawingOf(const OdEdCommandContext& context) {
    if (context.document() == nullptr || context.document()->database() == nullptr)
        fail("no drawing is open");
    return *context.document()->database();
}

void fail(const std::string& why) {
    throw lm::host::CommandFailed(why);
}

void say(const std::string& line) {
    rzPrintf("%s\n", wide(line));
}

RZString wide(std::string_view text) {
    return RZString(lm::system::fromUtf8(text));
}

std::string narrow(const RZString& text) {
    return lm::system::toUtf8(text.view());
}

std::string inQuotes(std::string_view text) {
    return "\"" + std::string(text) + "\"";
}

std::string counted(std::size_t number, const std::string& noun) {
    return std::to_string(number) + " " + noun + (number == 1 ? "" : "s");
}

std::string handleOf(OdDbObjectId id) {
    return lm::drawing::utf8(id.getHandle().ascii());
}

std::string described(CICad& cad, OdDbObjectId id) {
    const OdSmartPtr<OdDbObject> object = id.openObject();
    if (object.isNull()) return handleOf(id) + " (erased)";
    std::string text = handleOf(id) + " ";
    const auto* entity = OdDbEntity::cast(object.get());
    if (OdDbBlockReference* const reference = OdDbBlockReference::cast(object.get()))
        text += utf8(cad.GetNomeBloco(OdSmartPtr<OdDbBlockReference>(reference)));
    else
        text += lm::drawing::utf8(object->dxfName());
    return entity != nullptr ? text + " on " + lm::drawing::utf8(entity->layer()) : text;
}

std::vector<TagValue> askValues(CommandInput& input) {
    std::vector<TagValue> values;
    for (std::string tag = input.text("Tag"); !tag.empty(); tag = input.text("Tag"))
        values.push_back({tag, input.text("Value of " + tag)});
    return values;
}

namespace {

std::string tagsOf(CICad& cad, const OdSmartPtr<OdDbBlockReference>& reference) {
    const AttributeList list = attributesOf(cad, reference, false);
    std::string tags;
    for (int i = 0; i < list->GetSize(); ++i) tags += (i == 0 ? "" : ", ") + utf8(list->GetAt(i)->GetTag());
    return tags.empty() ? "none" : tags;
}

} // namespace

void setValues(CICad& cad, const OdSmartPtr<OdDbBlockReference>& reference,
               const std::vector<TagValue>& values) {
    for (const TagValue& item : values) {
        // The form for a list of tags: it ignores their case, and still writes a value that differs in case.
        if (cad.AtualizarAtributo(reference, RZStringList{wide(item.tag)}, wide(item.value))) continue;
        fail("no attribute " + inQuotes(item.tag) + " on " + described(cad, reference->objectId()) +
             ", which has " + tagsOf(cad, reference));
    }
}

std::vector<OdSmartPtr<OdDbBlockReference>> askReferences(OdEdCommandContext& context) {
    drawingOf(context);
    CICad cad;
    std::vector<OdSmartPtr<OdDbBlockReference>> references;
    for (const OdDbObjectId id : context.input().selection("Block references")) {
        const OdSmartPtr<OdDbObject> object = id.openObject();
        OdDbBlockReference* const reference = OdDbBlockReference::cast(object.get());
        if (reference == nullptr) fail(described(cad, id) + " was chosen, expected block references alone");
        references.emplace_back(reference);
    }
    if (references.empty()) fail("nothing was chosen, expected block references");
    return references;
}

OdDbObjectId virtualEntry(CHostDatabase& drawing, const std::string& key) {
    const OdSmartPtr<OdDbObject> root = drawing.getNamedObjectsDictionaryId().openObject();
    const auto* named = OdDbDictionary::cast(root.get());
    if (named == nullptr) return {};
    const OdSmartPtr<OdDbObject> object = named->getAt(lm::names::ESQ_VIRTUAL_RZ, OdDb::kForRead);
    const auto* schematic = OdDbDictionary::cast(object.get());
    return schematic != nullptr ? schematic->getAt(wide(key)) : OdDbObjectId();
}

OdDbObjectId askObject(OdEdCommandContext& context, std::string_view prompt) {
    CHostDatabase& drawing = drawingOf(context);
    const Answer answer = context.input().ask(prompt);
    if (answer.kind == Answer::kEntities && answer.entities.size() == 1) return answer.entities.front();
    const std::string text = answer.asText();
    OdDbObjectId id = virtualEntry(drawing, text);
    if (id.isNull()) id = RZID(wide(text), &drawing);
    if (!id.isValid() || id.isErased())
        fail(inQuotes(prompt) + ": expected an entity, a handle or a key of the virtual schematic, found " +
             inQuotes(text));
    return id;
}

namespace {

std::filesystem::path nativeOf(const std::string& path) {
    return lm::system::nativePath(lm::system::fromUtf8(path));
}

} // namespace

bool isFile(const std::string& path) {
    std::error_code ignored;
    return std::filesystem::is_regular_file(nativeOf(path), ignored);
}

bool isFolder(const std::string& path) {
    std::error_code ignored;
    return std::filesystem::is_directory(nativeOf(path), ignored);
}

std::string blockNameOf(const std::string& path) {
    std::string name = path.substr(path.find_last_of("/\\") + 1);
    if (const std::size_t dot = name.rfind('.'); dot != std::string::npos && dot != 0) name.resize(dot);
    return name;
}

RZString knownName(OdDbObjectId table, const RZString& name) {
    const OdSmartPtr<OdDbObject> object = table.openObject();
    const auto* records = OdDbSymbolTable::cast(object.get());
    if (records == nullptr) return {};
    const OdSmartPtr<OdDbObject> found = lm::drawing::recordCalled(*records, OdString(name)).openObject();
    const auto* record = OdDbSymbolTableRecord::cast(found.get());
    return record != nullptr ? RZString(record->getName()) : RZString();
}

namespace {

/// The known name, or the given one where it can name a new record.
RZString nameToUse(OdDbObjectId table, const char* what, const std::string& name) {
    const RZString known = knownName(table, wide(name));
    if (known.length() != 0) return known;
    if (!lm::drawing::isValidName(wide(name).view()))
        fail(inQuotes(name) + " can't name a " + what +
             ", expected 1 to 255 signs without controls and <>/\\\":;?*,=|`");
    return wide(name);
}

} // namespace

RZString blockToUse(CHostDatabase& drawing, const std::string& name) {
    const RZString used = nameToUse(drawing.getBlockTableId(), "block", name);
    const OdSmartPtr<OdDbSymbolTable> blocks(drawing.getBlockTableId().openObject());
    const OdSmartPtr<OdDbObject> object = blocks->getAt(OdString(used)).openObject();
    const auto* record = OdDbBlockTableRecord::cast(object.get());
    if (record != nullptr && record->isLayout()) fail(inQuotes(name) + " is a layout, expected a block");
    return used;
}

RZString layerToUse(CICad& cad, CHostDatabase& drawing, const std::string& name) {
    if (name.empty()) return cad.GetLayerCorrente(&drawing);
    return nameToUse(drawing.getLayerTableId(), "layer", name);
}

std::size_t referencesOf(OdDbObjectId block) {
    const OdSmartPtr<OdDbObject> object = block.openObject();
    const auto* record = OdDbBlockTableRecord::cast(object.get());
    return record != nullptr ? record->getBlockReferenceIds().size() : 0;
}

} // namespace lmtools
