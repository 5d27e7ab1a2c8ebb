// SPDX-License-Identifier: MIT
// _INSERT: places a block, one of the drawing or one from a file.
#include "hostcommands.h"

#include "drawing/attributeplace.h"
#include "drawing/recordsearch.h"
#include "host/services.h"
#include "../readdatabase.h"
#include "system/path.h"

#include <filesystem>
#include <memory>

namespace lm::host {

namespace {

constexpr double kRadians = 3.141592653589793 / 180;

/// The name that a file's block gets: the file's without folders and ending.
std::string blockNameOf(const std::string& path) {
    const std::size_t slash = path.find_last_of("/\\");
    std::string name = slash == std::string::npos ? path : path.substr(slash + 1);
    if (const std::size_t dot = name.rfind('.'); dot != std::string::npos && dot != 0) name.resize(dot);
    return name;
}

bool isFile(const std::string& path) {
    std::error_code ignored;
    return std::filesystem::is_regular_file(lm::system::nativePath(lm::system::fromUtf8(path)), ignored);
}

OdDbObjectId insertFile(OdDbDatabase& database, const std::string& name, const std::string& path) {
    const std::unique_ptr<CHostDatabase> source = readDatabase(wideText(path), true);
    const OdDbObjectId id = database.insert(wideText(name), source.get(), true);
    if (!id.isValid()) throw CommandFailed("\"" + path + "\" can't be inserted as block \"" + name + "\"");
    return id;
}

/// A block of the drawing, a file's path, or "name=path" for a file under another name.
OdDbObjectId blockFor(OdDbDatabase& database, const std::string& given) {
    const OdSmartPtr<OdDbSymbolTable> blocks(database.getBlockTableId().openObject());
    if (const OdDbObjectId id = lm::drawing::recordCalled(*blocks, wideText(given)); !id.isNull()) return id;
    const std::size_t equals = given.find('=');
    const bool isNamed = equals != std::string::npos && equals != 0 && isFile(given.substr(equals + 1));
    const std::string path = isNamed ? given.substr(equals + 1) : given;
    if (!isFile(path)) throw CommandFailed("no block and no file \"" + given + "\"");
    const std::string name = isNamed ? given.substr(0, equals) : blockNameOf(path);
    if (const OdDbObjectId id = lm::drawing::recordCalled(*blocks, wideText(name)); !id.isNull()) return id;
    requireName(name);
    return insertFile(database, name, path);
}

/// An attribute with a value; an empty one takes the default, of a multi-line definition with its formatting.
OdSmartPtr<OdDbAttribute> attributeFrom(const OdDbAttributeDefinition& definition, const OdString& value,
                                        const OdDbBlockReference& reference) {
    OdSmartPtr<OdDbAttribute> attribute(new OdDbAttribute, lm::drawing::kAttach);
    attribute->setPropertiesFrom(&definition);
    attribute->setTag(definition.tag());
    attribute->setInvisible(definition.isInvisible());
    attribute->setFieldLength(definition.fieldLength());
    if (definition.isMTextAttributeDefinition()) {
        const OdSmartPtr<OdDbMText> given = definition.getMTextAttributeDefinition();
        const OdSmartPtr<OdDbMText> lines(static_cast<OdDbMText*>(given->clone()), lm::drawing::kAttach);
        attribute->setMTextAttribute(lines);
    }
    lm::drawing::placeAttribute(*attribute, definition, reference);
    if (!value.isEmpty()) attribute->setTextString(value);
    return attribute;
}

/// Asks for the value of each definition and gives the reference its attributes. An empty answer takes the
/// default.
void addAttributes(CommandInput& input, OdDbBlockReference& reference, const OdDbBlockTableRecord& block) {
    const OdSmartPtr<OdDbObjectIterator> walk = block.newIterator();
    for (; !walk->done(); walk->step()) {
        const OdSmartPtr<OdDbEntity> entity = walk->entity();
        const auto* definition = OdDbAttributeDefinition::cast(entity.get());
        if (definition == nullptr || definition->isConstant()) continue;
        const OdString& prompt = definition->prompt().isEmpty() ? definition->tag() : definition->prompt();
        const std::string value = input.text(lm::drawing::utf8(prompt));
        reference.appendAttribute(attributeFrom(*definition, wideText(value), reference));
    }
}

/// Asks for the block, its place, the scale in x and in y, the turn in degrees and the attributes.
void insert(OdEdCommandContext& context) {
    OdDbDatabase& database = *documentOf(context).database();
    CommandInput& input = context.input();
    const OdDbObjectId blockId = blockFor(database, input.name("Block"));
    const OdSmartPtr<OdDbBlockTableRecord> block(blockId.openObject());
    if (block->isLayout()) throw CommandFailed("a layout can't be inserted");
    const OdSmartPtr<OdDbBlockReference> reference(new OdDbBlockReference, lm::drawing::kAttach);
    reference->setPosition(input.point("Insertion point"));
    const double sx = input.number("Scale in x", 1), sy = input.number("Scale in y", sx);
    if (sx == 0 || sy == 0) throw CommandFailed("the scale can't be 0");
    reference->setScaleFactors({sx, sy, sx});
    reference->setRotation(input.number("Turn in degrees", 0) * kRadians);
    const OdSmartPtr<OdDbBlockTableRecord> space(database.getModelSpaceId().openObject(OdDb::kForWrite));
    if (space.isNull()) throw CommandFailed("the drawing has no model space");
    space->appendOdDbEntity(reference);
    reference->setBlockTableRecord(blockId);
    reference->setLayer(database.getCLAYER());
    addAttributes(input, *reference, *block);
    requireFinite(*reference);
}

} // namespace

void addInsertCommand(OdEdCommandStack& stack) {
    addCommand(stack, "_INSERT", &insert);
}

} // namespace lm::host
