// SPDX-License-Identifier: MIT
// _LMINSERT: places a symbol on a layer and gives its attributes their values.
#include "commands.h"

namespace lmtools {

namespace {

using lm::host::CommandInput;

constexpr double kRadians = 3.141592653589793 / 180;

struct Symbol {
    RZString name;
    std::string path;
};

bool isBlock(CHostDatabase& drawing, const std::string& name) {
    return knownName(drawing.getBlockTableId(), wide(name)).length() != 0;
}

/// A block of the drawing, a symbol file, or NAME=FILE for a file under another name. What the drawing lacks
/// is loaded.
Symbol loadSymbol(CICad& cad, CHostDatabase& drawing, const std::string& given) {
    if (isBlock(drawing, given)) return {blockToUse(drawing, given), ""};
    std::string name = blockNameOf(given), path = given;
    const std::size_t equals = given.find('=');
    if (equals != std::string::npos && equals != 0 && !isFile(given)) {
        name = given.substr(0, equals);
        path = given.substr(equals + 1);
    }
    if (isBlock(drawing, name)) return {blockToUse(drawing, name), path};
    if (!isFile(path))
        fail("no block in the drawing and no symbol file " + inQuotes(path) + ", found by " +
             inQuotes(given));
    const Symbol symbol{blockToUse(drawing, name), path};
    if (!cad.carregaBTR(symbol.name, wide(path)).isValid())
        fail(inQuotes(path) + " can't become block " + inQuotes(name) +
             ", expected a drawing with layer 0 alone and without blocks");
    return symbol;
}

/// The library takes places in single precision. Where that lost something, the reference is put right and
/// its attributes are made anew at their exact places.
void placeExactly(CICad& cad, const OdSmartPtr<OdDbBlockReference>& reference, const OdGePoint3d& point,
                  double turn) {
    const OdGePoint3d rough = reference->position();
    const bool isExact = rough.x == point.x && rough.y == point.y && rough.z == point.z;
    if (isExact && reference->rotation() == turn) return;
    reference->setPosition(point);
    reference->setRotation(turn);
    const OdSmartPtr<OdDbObjectIterator> walk = reference->attributeIterator();
    for (; !walk->done(); walk->step()) {
        const OdSmartPtr<OdDbEntity> attribute = walk->entity();
        attribute->upgradeOpen();
        attribute->erase();
    }
    cad.CriarAtributos(RZID(reference->blockTableRecord()), reference);
}

/// Asks for the symbol, the layer (empty: the current one), the place, the turn in degrees, and tags with
/// values.
void insert(OdEdCommandContext& context) {
    CHostDatabase& drawing = drawingOf(context);
    CommandInput& input = context.input();
    CICad cad;
    const Symbol symbol = loadSymbol(cad, drawing, input.name("Symbol"));
    const RZString layer = layerToUse(cad, drawing, input.text("Layer"));
    const OdGePoint3d point = input.point("Insertion point");
    const double turn = input.number("Turn in degrees", 0) * kRadians;
    const std::vector<TagValue> values = askValues(input);
    const OdSmartPtr<OdDbBlockReference> reference =
        cad.InserirBloco(wide(symbol.path), symbol.name, layer, static_cast<float>(point.x),
                         static_cast<float>(point.y), static_cast<float>(point.z), static_cast<float>(turn));
    if (reference.isNull()) fail("the drawing has no model space");
    placeExactly(cad, reference, point, turn);
    setValues(cad, reference, values);
    say("inserted " + described(cad, reference->objectId()));
}

} // namespace

void addInsertCommand(Commands& commands) {
    commands.emplace_back("_LMINSERT", &insert);
}

} // namespace lmtools
