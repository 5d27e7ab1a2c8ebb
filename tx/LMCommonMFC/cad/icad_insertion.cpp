// SPDX-License-Identifier: MIT
// Symbols into the drawing: references with fresh attributes, and references turned into plain geometry.
#include "arguments.h"
#include "cad/icad_detail.h"
#include "cad/icad_symbols.h"
#include "log.h"

#include "drawing/attributeplace.h"
#include "host/database.h"

namespace {

/// Whether a block is a space or shows it, so that a reference in that space would show itself.
bool showsSpace(OdDbObjectId block, const OdDbBlockTableRecord& space) {
    if (block == space.objectId()) return true;
    return !space.getBlockReferenceIds().isEmpty() && lm::cad::shows(block, space.objectId());
}

} // namespace

OdSmartPtr<OdDbBlockReference> CICad::InserirBloco(RZString arquivo, RZString nome, RZString layer, float x,
                                                   float y, float z, float rotacao) {
    return lm::log::guarded("CICad::InserirBloco", [&]() -> OdSmartPtr<OdDbBlockReference> {
        RZID id;
        // Whether the file gave a block isn't asked: without one the reference shows nothing.
        if (!ExisteBloco(nome, id, getDatabase())) id = carregaBTR(nome, arquivo);
        if (!ExisteLayer(layer, getDatabase())) CriarLayer(layer, getDatabase());
        const OdSmartPtr<OdDbBlockTableRecord> space = lm::cad::openModelSpace(OdDb::kForWrite);
        if (space.isNull()) return {};
        if (showsSpace(id, *space)) throw OdError(eInvalidInput);
        const OdSmartPtr<OdDbBlockReference> ref(new OdDbBlockReference(), lm::drawing::kAttach);
        ref->setPosition(OdGePoint3d(x, y, z));
        ref->setBlockTableRecord(id);
        ref->setRotation(rotacao);
        space->appendOdDbEntity(ref);
        ref->setLayer(layer); // by name, which only a reference in a drawing can do
        CriarAtributos(id, ref);
        ref->recordGraphicsModified(true);
        return ref;
    });
}

namespace {

OdSmartPtr<OdDbAttribute> attributeOf(const OdDbAttributeDefinition& definition,
                                      const OdDbBlockReference& ref) {
    OdSmartPtr<OdDbAttribute> attribute(new OdDbAttribute(), lm::drawing::kAttach);
    attribute->setPropertiesFrom(&definition);
    attribute->setInvisible(definition.isInvisible());
    attribute->setTag(definition.tag());
    attribute->setHeight(definition.height());
    attribute->setRotation(definition.rotation());
    attribute->setTextStyle(definition.textStyle());
    attribute->setColor(definition.color());
    attribute->setLinetype(definition.linetypeId());
    attribute->setLinetypeScale(definition.linetypeScale());
    attribute->setLineWeight(definition.lineWeight());
    attribute->setNormal(definition.normal());
    attribute->setThickness(definition.thickness());
    attribute->setTransparency(definition.transparency());
    attribute->setWidthFactor(definition.widthFactor());
    attribute->setHorizontalMode(definition.horizontalMode());
    attribute->setVerticalMode(definition.verticalMode());
    attribute->setFieldLength(definition.fieldLength());
    if (definition.isMTextAttributeDefinition()) {
        const OdSmartPtr<OdRxObject> copy(definition.getMTextAttributeDefinition()->clone(),
                                          lm::drawing::kAttach);
        attribute->setMTextAttribute(OdSmartPtr<OdDbMText>(copy));
    }
    lm::drawing::placeAttribute(*attribute, definition, ref);
    return attribute;
}

} // namespace

int CICad::CriarAtributos(RZID btrId, OdSmartPtr<OdDbBlockReference> ref) {
    return lm::log::guarded("CICad::CriarAtributos", [&] {
        const OdSmartPtr<OdDbBlockTableRecord> block(btrId.openObject());
        if (block.isNull()) return 0;
        const OdSmartPtr<OdDbObjectIterator> walk = block->newIterator();
        for (; !walk->done(); walk->step()) {
            const OdSmartPtr<OdDbEntity> entity = walk->entity();
            const auto* const definition = OdDbAttributeDefinition::cast(entity.get());
            if (definition == nullptr || definition->isConstant()) continue;
            ref->appendAttribute(attributeOf(*definition, *ref));
        }
        return 0;
    });
}

namespace {

using Entities = std::vector<OdSmartPtr<OdDbEntity>>;

OdSmartPtr<OdDbText> textOf(const OdDbAttributeDefinition& definition, const OdString& value) {
    OdSmartPtr<OdDbText> text(new OdDbText(), lm::drawing::kAttach);
    text->setTextString(value);
    text->setPropertiesFrom(&definition);
    text->setPosition(definition.position());
    text->setAlignmentPoint(definition.alignmentPoint());
    text->setColor(definition.color());
    text->setHeight(definition.height());
    text->setHorizontalMode(definition.horizontalMode());
    text->setLinetype(definition.linetypeId());
    text->setLinetypeScale(definition.linetypeScale());
    text->setLineWeight(definition.lineWeight());
    text->setNormal(definition.normal());
    text->setOblique(definition.oblique());
    text->setRotation(definition.rotation());
    text->setTextStyle(definition.textStyle());
    text->setThickness(definition.thickness());
    text->setWidthFactor(definition.widthFactor());
    text->setMirrorInX(definition.isMirroredInX());
    text->setMirrorInY(definition.isMirroredInY());
    text->setTransparency(definition.transparency());
    text->setVerticalMode(definition.verticalMode());
    return text;
}

/// Adds the pieces of a reference. A definition gives a text where its attribute is there, visible and empty,
/// and nothing otherwise: a value that stands in the drawing as an attribute is not to stay behind as text.
/// Raises OdError for a reference that can't be exploded: it would be erased with nothing in its place.
void addPieces(CICad& cad, OdDbBlockReference& ref, Entities& entities) {
    CEListaAtributos* read = nullptr;
    cad.SearchAttributes(OdSmartPtr<OdDbBlockReference>(&ref), read, false, false, RZString());
    if (read == nullptr) return;
    const lm::cad::ListOwner list(read);
    OdArray<OdSmartPtr<OdDbEntity>> pieces;
    if (const OdResult refused = ref.explode(pieces); refused != eOk) throw OdError(refused);
    const CHostString nothing;
    for (const OdSmartPtr<OdDbEntity>& piece : pieces) {
        const auto* const definition = OdDbAttributeDefinition::cast(piece.get());
        if (definition == nullptr) {
            entities.push_back(piece);
            continue;
        }
        const CEAtributo* const record = list->GetAtributo(RZString(definition->tag()));
        if (record != nullptr && !record->GetInvisivel() && record->GetValor().compareNoCase(nothing) == 0)
            entities.emplace_back(textOf(*definition, record->GetValor()));
        piece->erase(true);
    }
}

/// Removes the extended data of all applications.
void clearExtendedData(OdDbObject& object) {
    constexpr int kApplication = 1001;
    for (OdSmartPtr<OdResBuf> at = object.xData(); !at.isNull(); at = at->next())
        if (at->restype() == kApplication) object.setXData(OdResBuf::newRb(kApplication, at->getString()));
}

} // namespace

bool CICad::explodeEntitiesToLayer(CList<RZID, const RZID&>* ids, RZString layer) {
    return lm::log::guarded("CICad::explodeEntitiesToLayer", [&] {
        if (ids == nullptr || layer.isEmpty()) return false;
        const OdSmartPtr<OdDbBlockTableRecord> space = lm::cad::openModelSpace(OdDb::kForWrite);
        if (space.isNull()) return false;
        Entities entities;
        for (POSITION at = ids->GetHeadPosition(); at != nullptr;) {
            const OdSmartPtr<OdDbObject> object = ids->GetNext(at).openObject();
            if (OdDbBlockReference* const ref = OdDbBlockReference::cast(object.get()))
                addPieces(*this, *ref, entities);
            else if (const OdDbEntity* const entity = OdDbEntity::cast(object.get()))
                entities.emplace_back(static_cast<OdDbEntity*>(entity->clone()), lm::drawing::kAttach);
        }
        for (OdSmartPtr<OdDbEntity>& each : entities) {
            const OdSmartPtr<OdDbEntity> entity = std::move(each); // closed before the next one
            space->appendOdDbEntity(entity);
            if (!entity->isWriteEnabled()) entity->upgradeOpen();
            entity->setLayer(layer);
            clearExtendedData(*entity);
        }
        // Last, so that a failure before has taken nothing away.
        for (POSITION at = ids->GetHeadPosition(); at != nullptr;) {
            const OdSmartPtr<OdDbObject> source = ids->GetNext(at).openObject(OdDb::kForWrite);
            if (!source.isNull()) source->erase(true);
        }
        return true;
    });
}
