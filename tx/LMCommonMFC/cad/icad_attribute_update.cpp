// SPDX-License-Identifier: MIT
// Values that are written back into the attributes that references have.
#include "cad/icad_detail.h"
#include "log.h"

#include <algorithm>

namespace {

/// Gives the first attribute whose tag `matches` to `write`; false when there is none to give.
template<class Matches, class Write>
bool updateFirst(const OdDbBlockReference* ref, Matches&& matches, Write&& write) {
    if (ref == nullptr) return false;
    const OdSmartPtr<OdDbObjectIterator> walk = ref->attributeIterator();
    if (walk.isNull()) return false;
    const bool resident = ref->isDBRO();
    for (walk->start(); !walk->done(); walk->step()) {
        const OdSmartPtr<OdDbAttribute> attribute = lm::cad::attributeAt(*walk, resident);
        if (attribute.isNull() || !matches(attribute->tag())) continue;
        write(*attribute);
        return true;
    }
    return false;
}

void writeText(OdDbAttribute& attribute, const RZString& value) {
    if (value == attribute.textString()) return;
    attribute.upgradeOpen();
    attribute.setTextString(value);
}

bool updateByTag(const OdDbBlockReference* ref, const RZString& tag, const RZString& value) {
    return updateFirst(
        ref, [&](const OdString& each) { return tag == each; },
        [&](OdDbAttribute& attribute) { writeText(attribute, value); });
}

bool updateByTag(const OdDbBlockReference* ref, const RZString& tag, const RZString& value, bool invisible) {
    return updateFirst(
        ref, [&](const OdString& each) { return tag == each; },
        [&](OdDbAttribute& attribute) {
            if (value == attribute.textString() && attribute.isInvisible() == invisible) return;
            attribute.upgradeOpen();
            attribute.setTextString(value);
            attribute.setInvisible(invisible);
        });
}

/// Unlike the single tag, those of a list ignore case; the value counts exactly all the same.
bool updateByTags(const OdDbBlockReference* ref, const RZStringList& tags, const RZString& value) {
    const auto isListed = [&](const OdString& each) {
        return std::any_of(tags.begin(), tags.end(),
                           [&](const RZString& tag) { return tag.matchesNoCase(each.view()); });
    };
    return updateFirst(ref, isListed, [&](OdDbAttribute& attribute) { writeText(attribute, value); });
}

/// The reference behind an id, open for write; null for any other object.
OdSmartPtr<OdDbBlockReference> openReference(const RZID& id) {
    const OdSmartPtr<OdDbObject> object = id.openObject(OdDb::kForWrite);
    return OdDbBlockReference::cast(object.get());
}

OdSmartPtr<OdDbAttribute> openForWrite(const OdDbObjectIterator& walk) {
    OdSmartPtr<OdDbAttribute> attribute(walk.entity());
    attribute->upgradeOpen();
    return attribute;
}

/// Writes a record into an attribute of its tag unless nothing differs; tells whether it wrote. A flag that
/// differs makes a write due even where the flag itself isn't written.
bool writeRecord(OdDbAttribute& attribute, const CEAtributo& record, bool withFlag) {
    using lm::system::equalsNoCase;
    if (!equalsNoCase(attribute.tag().view(), record.GetTag().view())) return false;
    const bool invisible = record.GetInvisivel();
    if (equalsNoCase(attribute.textString().view(), record.GetValor().view()) &&
        attribute.isInvisible() == invisible)
        return false;
    attribute.setTextString(record.GetValor());
    if (withFlag) attribute.setInvisible(invisible);
    return true;
}

} // namespace

bool CICad::AtualizarAtributo(OdSmartPtr<OdDbBlockReference> ref, RZString tag, RZString valor) {
    return updateByTag(ref, tag, valor);
}

bool CICad::AtualizarAtributo(OdSmartPtr<OdDbBlockReference> ref, RZString tag, RZString valor,
                              bool invisivel) {
    return updateByTag(ref, tag, valor, invisivel);
}

bool CICad::AtualizarAtributo(OdSmartPtr<OdDbBlockReference> ref, RZStringList tags, RZString valor) {
    return updateByTags(ref, tags, valor);
}

bool CICad::AtualizarAtributo(RZID id, RZString tag, RZString valor) {
    return updateByTag(openReference(id), tag, valor);
}

bool CICad::AtualizarAtributo(RZID id, RZStringList tags, RZString valor) {
    return updateByTags(openReference(id), tags, valor);
}

bool CICad::AtualizarAtributo(RZID id, RZString tag, RZString valor, bool invisivel) {
    // Whether the attribute was found isn't told here, unlike in the other forms.
    if (const OdSmartPtr<OdDbBlockReference> ref = openReference(id); !ref.isNull()) {
        updateByTag(ref, tag, valor, invisivel);
        return true;
    }
    const OdSmartPtr<OdDbObject> object = id.openObject(OdDb::kForRead);
    if (OdDbXrecord::cast(object.get()) == nullptr) return false;
    AtualizarAtributoVirtual(id, tag, valor, invisivel);
    return true;
}

bool CICad::AtualizarAtributos(OdSmartPtr<OdDbBlockReference> ref, CEListaAtributos* lista,
                               bool atualizarInvisivel, int* alterados) {
    return lm::log::guarded("CICad::AtualizarAtributos", [&] {
        if (ref.isNull()) return false;
        const OdSmartPtr<OdDbObjectIterator> walk = ref->attributeIterator();
        if (walk.isNull() || lista == nullptr) return true;
        // An attribute is opened anew for each record, so reactors hear of each write on its own.
        for (walk->start(); !walk->done(); walk->step())
            for (int i = 0; i < lista->GetSize(); ++i)
                if (writeRecord(*openForWrite(*walk), *lista->GetAt(i), atualizarInvisivel) &&
                    alterados != nullptr)
                    ++*alterados;
        return true;
    });
}

bool CICad::AtualizarAtributos(RZID id, CEListaAtributos* lista, bool atualizarInvisivel, int* alterados) {
    return lm::log::guarded("CICad::AtualizarAtributos", [&] {
        return AtualizarAtributos(OdSmartPtr<OdDbBlockReference>(id.openObject(OdDb::kForWrite)), lista,
                                  atualizarInvisivel, alterados);
    });
}

bool CICad::SetValorAtributo(RZID id, RZString valor) {
    const OdSmartPtr<OdDbObject> object = id.openObject(OdDb::kForRead);
    OdDbAttribute* const attribute = OdDbAttribute::cast(object.get());
    if (attribute == nullptr) return false;
    writeText(*attribute, valor);
    return true;
}
