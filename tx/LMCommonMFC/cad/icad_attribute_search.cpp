// SPDX-License-Identifier: MIT
// Reading attributes of references and of definitions.
#include "cad/icad_definition_texts.h"
#include "cad/icad_detail.h"
#include "log.h"

#include <optional>

using lm::cad::append;
using lm::cad::attributeAt;
using lm::cad::forEachDefinition;
using lm::cad::ListOwner;
using lm::cad::trimmed;

namespace {

OdSmartPtr<OdDbBlockTableRecord> blockOf(const OdDbBlockReference& ref) {
    return OdSmartPtr<OdDbBlockTableRecord>(ref.blockTableRecord().openObject());
}

/// The prompt of a definition, before anybody puts the tag in its place.
OdString findPrompt(const OdDbBlockTableRecord& btr, const OdString& tag, int index) {
    OdString prompt = tag;
    int match = 0;
    forEachDefinition(btr, false, [&](const OdDbAttributeDefinition& definition) {
        if (definition.tag() != tag || match++ != index) return true;
        prompt = definition.prompt();
        return false;
    });
    return prompt;
}

OdString findDefault(const OdDbBlockTableRecord& btr, const OdString& tag) {
    OdString text;
    forEachDefinition(btr, false, [&](const OdDbAttributeDefinition& definition) {
        if (definition.tag() != tag) return true;
        text = definition.textString();
        return false;
    });
    return text;
}

/// Prompts and defaults for the attributes of one reference. The block is read at the first question, and
/// once.
class ReferenceTexts {
public:
    explicit ReferenceTexts(const OdDbBlockTableRecord* block) : m_block(block) {}

    /// The prompt for the next attribute of a tag, which is taken as it stands; empty without a block.
    OdString nextPrompt(const OdString& tag) {
        if (m_block == nullptr) return OdString();
        const OdString prompt = texts().prompt(tag, m_counts.of(tag));
        m_counts.add(trimmed(tag)); // attributes before are known by the tags of their records
        return prompt.isEmpty() ? tag : prompt;
    }
    OdString defaultText(const OdString& tag) {
        return m_block == nullptr ? OdString() : texts().defaultText(tag);
    }

private:
    const lm::cad::DefinitionTexts& texts() {
        if (!m_texts) lm::log::guarded("CICad::GetPrompt", [&] { m_texts.emplace(*m_block); });
        return *m_texts;
    }
    const OdDbBlockTableRecord* m_block;
    std::optional<lm::cad::DefinitionTexts> m_texts;
    lm::cad::TagCounts m_counts;
};

/// An attribute of a list search: through its id, or else from the walk; null when neither gives one.
OdSmartPtr<OdDbAttribute> attributeOrEntityAt(const OdDbObjectIterator& walk) {
    const OdSmartPtr<OdDbObject> object = walk.objectId().openObject();
    if (!object.isNull()) return OdSmartPtr<OdDbAttribute>(object);
    return OdSmartPtr<OdDbAttribute>(walk.entity());
}

void appendDefinitions(const OdDbBlockTableRecord& btr, bool constant, bool withPrompt,
                       CEListaAtributos& list) {
    forEachDefinition(btr, constant, [&](const OdDbAttributeDefinition& definition) {
        append(list,
               std::make_unique<CEAtributo>(definition.tag(), withPrompt ? definition.prompt() : OdString(),
                                            definition.textString(), definition.objectId(), false));
        return true;
    });
}

} // namespace

int CICad::SearchAttribute(RZString tag, OdSmartPtr<OdDbBlockReference> ref, CEAtributo*& atributo,
                           bool comPrompt) {
    return lm::log::guarded("CICad::SearchAttribute", [&] {
        atributo = nullptr;
        if (ref.isNull()) return 2;
        OdSmartPtr<OdDbBlockTableRecord> btr;
        if (comPrompt) btr = blockOf(*ref);
        const OdSmartPtr<OdDbObjectIterator> walk = ref->attributeIterator();
        if (walk.isNull()) return 2;
        const bool resident = ref->isDBRO();
        for (walk->start(); !walk->done(); walk->step()) {
            const OdSmartPtr<OdDbAttribute> attribute = attributeAt(*walk, resident);
            if (attribute.isNull() || !tag.matchesNoCase(attribute->tag().view())) continue;
            const OdString prompt = btr.isNull() ? OdString() : static_cast<OdString>(GetPrompt(btr, tag, 0));
            atributo = new CEAtributo(tag, prompt, trimmed(attribute->textString()), attribute->objectId(),
                                      attribute->isInvisible());
            return 0;
        }
        return 2;
    });
}

int CICad::SearchAttribute(RZString tag, OdSmartPtr<OdDbObject> obj, CEAtributo*& atributo, bool comPrompt) {
    return lm::log::guarded("CICad::SearchAttribute", [&] {
        if (OdDbBlockReference* const ref = OdDbBlockReference::cast(obj.get()))
            return SearchAttribute(tag, OdSmartPtr<OdDbBlockReference>(ref), atributo, comPrompt);
        CEAtributo* const found = SearchAttributeVirtual(obj, tag);
        if (found == nullptr) return 2;
        atributo = found;
        return 0;
    });
}

int CICad::SearchAttribute(RZString tag, RZID id, CEAtributo*& atributo, bool comPrompt) {
    return lm::log::guarded("CICad::SearchAttribute",
                            [&] { return SearchAttribute(tag, id.openObject(), atributo, comPrompt); });
}

RZString CICad::GetValorAtributo(RZString tag, OdSmartPtr<OdDbBlockReference> ref, bool comPrompt) {
    CEAtributo* found = nullptr;
    if (SearchAttribute(tag, ref, found, comPrompt) != 0) return RZString();
    const std::unique_ptr<CEAtributo> record(found);
    return record->GetValor();
}

namespace {

template<class Source>
int searchRole(RZString (*nameOf)(int), Source&& source, CEAtributo*& atributo, bool comPrompt) {
    const bool found = lm::cad::tryNames(nameOf, [&](const RZString& name) {
        return CICad().SearchAttribute(name, source, atributo, comPrompt) == 0;
    });
    return found ? 0 : 2;
}

} // namespace

#define LM_ROLE_SEARCH(Role)                                                                                 \
    int CICad::SearchAttribute##Role(OdSmartPtr<OdDbBlockReference> ref, CEAtributo*& atributo,              \
                                     bool comPrompt) {                                                       \
        return searchRole(&CMensagem::getAtt##Role, ref, atributo, comPrompt);                               \
    }                                                                                                        \
    int CICad::SearchAttribute##Role(OdSmartPtr<OdDbObject> obj, CEAtributo*& atributo, bool comPrompt) {    \
        return searchRole(&CMensagem::getAtt##Role, obj, atributo, comPrompt);                               \
    }                                                                                                        \
    int CICad::SearchAttribute##Role(RZID id, CEAtributo*& atributo, bool comPrompt) {                       \
        return searchRole(&CMensagem::getAtt##Role, id, atributo, comPrompt);                                \
    }
LM_ROLE_SEARCH(Number)
LM_ROLE_SEARCH(Pin)
LM_ROLE_SEARCH(Strip)
LM_ROLE_SEARCH(Tag)
#undef LM_ROLE_SEARCH

int CICad::SearchAttributes(OdSmartPtr<OdDbBlockReference> ref, CEListaAtributos*& lista, bool comPrompt,
                            bool usarPadrao, RZString prefixo) {
    return lm::log::guarded("CICad::SearchAttributes", [&] {
        lista = nullptr;
        if (ref.isNull()) return 2;
        const OdSmartPtr<OdDbObjectIterator> walk = ref->attributeIterator();
        if (walk.isNull()) return 2;
        OdSmartPtr<OdDbBlockTableRecord> btr;
        if (comPrompt) btr = blockOf(*ref);
        ListOwner list(new CEListaAtributos());
        ReferenceTexts texts(btr.get());
        const lm::WideView prefix = prefixo.view();
        for (walk->start(); !walk->done(); walk->step()) {
            const OdSmartPtr<OdDbAttribute> attribute = attributeOrEntityAt(*walk);
            if (attribute.isNull()) continue;
            OdString tag = attribute->tag();
            if (!prefix.empty() && tag.view().substr(0, prefix.size()) != prefix) continue;
            const OdString prompt = trimmed(texts.nextPrompt(tag));
            tag = trimmed(tag);
            OdString value = trimmed(attribute->textString());
            if (value.isEmpty() && usarPadrao) value = trimmed(texts.defaultText(tag));
            append(*list, std::make_unique<CEAtributo>(std::move(tag), prompt, std::move(value),
                                                       attribute->objectId(), attribute->isInvisible()));
        }
        lista = list.release();
        return 0;
    });
}

int CICad::SearchAttributes(RZID id, CEListaAtributos*& lista, bool comPrompt, bool usarPadrao,
                            RZString prefixo) {
    return lm::log::guarded("CICad::SearchAttributes", [&] {
        const OdSmartPtr<OdDbObject> object = id.openObject();
        OdDbBlockReference* const ref = OdDbBlockReference::cast(object.get());
        if (ref == nullptr) return 2;
        return SearchAttributes(OdSmartPtr<OdDbBlockReference>(ref), lista, comPrompt, usarPadrao, prefixo);
    });
}

int CICad::SearchAttributes(OdSmartPtr<OdDbBlockTableRecord> btr, CEListaAtributos*& lista) {
    return lm::log::guarded("CICad::SearchAttributes", [&] {
        // The records of an earlier list are left to whoever took them out of it.
        delete lista;
        lista = nullptr;
        ListOwner list(new CEListaAtributos());
        if (!btr.isNull()) appendDefinitions(*btr, false, true, *list);
        lista = list.release();
        return 0;
    });
}

CEBloco* CICad::SearchAttributes(OdSmartPtr<OdDbBlockReference> ref, CEBloco* bloco) {
    return lm::log::guarded("CICad::SearchAttributes", [&]() -> CEBloco* {
        if (ref.isNull() || bloco == nullptr) return nullptr;
        const OdSmartPtr<OdDbObjectIterator> walk = ref->attributeIterator();
        if (walk.isNull()) return bloco;
        lm::cad::RecordEntry records(*bloco);
        for (walk->start(); !walk->done(); walk->step()) {
            const OdSmartPtr<OdDbAttribute> attribute = attributeOrEntityAt(*walk);
            if (attribute.isNull()) continue;
            records.enter(std::make_unique<CEAtributo>(attribute->tag(), OdString(), attribute->textString(),
                                                       attribute->objectId(), attribute->isInvisible()));
        }
        return bloco;
    });
}

bool CICad::SearchAttributesConst(OdSmartPtr<OdDbBlockReference> ref, CEListaAtributos*& lista) {
    return lm::log::guarded("CICad::SearchAttributesConst", [&] {
        if (lista != nullptr) lm::cad::ListDeleter()(lista);
        lista = nullptr;
        ListOwner list(new CEListaAtributos());
        if (!ref.isNull())
            if (const OdSmartPtr<OdDbBlockTableRecord> btr = blockOf(*ref); !btr.isNull())
                appendDefinitions(*btr, true, false, *list);
        lista = list.release();
        return true;
    });
}

RZString CICad::GetPrompt(OdSmartPtr<OdDbBlockTableRecord> btr, RZString tag, int indice) {
    return lm::log::guarded("CICad::GetPrompt", [&]() -> RZString { return findPrompt(*btr, tag, indice); });
}

RZString CICad::GetValue(OdSmartPtr<OdDbBlockTableRecord> btr, RZString tag) {
    if (btr.isNull()) return RZString();
    return findDefault(*btr, tag);
}

namespace {

OdGePoint3d placeOf(const OdDbText& text) {
    return text.isDefaultAlignment() ? text.position() : text.alignmentPoint();
}

OdGePoint3d placeOfRecord(const CEAtributo& record, const OdSmartPtr<OdDbBlockReference>& ref) {
    const OdSmartPtr<OdDbObject> object = record.GetObjectId().openObject();
    if (const auto* attribute = OdDbAttribute::cast(object.get())) return placeOf(*attribute);
    const auto* definition = OdDbAttributeDefinition::cast(object.get());
    if (definition == nullptr || ref.isNull()) return OdGePoint3d();
    return placeOf(*definition) + ref->position().asVector();
}

} // namespace

CEAtributo* CICad::getAttPosicaoPto(OdSmartPtr<OdDbBlockReference> ref, CEListaAtributos* lista,
                                    OdGePoint3d ponto) {
    return lm::log::guarded("CICad::getAttPosicaoPto", [&]() -> CEAtributo* {
        if (lista == nullptr) return nullptr;
        CEAtributo* nearest = nullptr;
        double least = 0;
        for (int i = 0; i < lista->GetSize(); ++i) {
            CEAtributo* const record = lista->GetAt(i);
            if (!CEAtributo::isAttLigacao(record->GetTag())) continue;
            const double distance = placeOfRecord(*record, ref).distanceTo(ponto);
            if (nearest != nullptr && !(distance < least)) continue;
            nearest = record;
            least = distance;
        }
        return nearest;
    });
}
