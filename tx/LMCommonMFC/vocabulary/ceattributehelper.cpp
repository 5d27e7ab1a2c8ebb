// SPDX-License-Identifier: MIT
#include "vocabulary/ceattributehelper.h"

#include "cad/celistaatributos.h"
#include "log.h"

#include "drawing/blockreference.h"
#include "drawing/symboltable.h"
#include "host/hoststring.h"
#include "lmcommon/ceatributo.h"

#include <memory>
#include <utility>
#include <vector>

namespace {

/// The names of one search, widened by its suffix once for all tags that it meets.
class Synonyms {
public:
    Synonyms(const RZStringList& names, const RZString& suffix)
        : m_prefixes(suffix.equalsNoCase(RZString("-"))) {
        for (const RZString& name : names) m_names.push_back(m_prefixes ? name : name + suffix);
    }

    /// The first name that fits the tag, or null.
    const RZString* match(lm::WideView tag) const {
        for (const RZString& name : m_names)
            if (fits(tag, name)) return &name;
        return nullptr;
    }

private:
    bool fits(lm::WideView tag, const RZString& name) const {
        return name.matchesNoCase(m_prefixes ? tag.substr(0, name.length()) : tag);
    }

    std::vector<RZString> m_names;
    bool m_prefixes;
};

/// A walk over the live attributes of a reference; what is no attribute is passed over.
class AttributeWalk {
public:
    explicit AttributeWalk(const OdDbBlockReference& reference)
        : m_iterator(reference.attributeIterator()), m_resident(reference.isDBRO()) {
        if (!m_iterator.isNull()) m_iterator->start(true, true);
    }

    /// Whether the reference gave no iterator.
    bool isMissing() const { return m_iterator.isNull(); }

    /// The next attribute, open for reading; null at the end.
    OdSmartPtr<OdDbAttribute> next() {
        while (!m_iterator->done()) {
            const OdSmartPtr<OdDbObject> element = current();
            m_iterator->step(true, true);
            if (OdDbAttribute* attribute = OdDbAttribute::cast(element.get())) return attribute;
        }
        return nullptr;
    }

private:
    OdSmartPtr<OdDbObject> current() const {
        if (m_resident) return m_iterator->objectId().openObject(OdDb::kForRead);
        return m_iterator->entity();
    }

    OdSmartPtr<OdDbObjectIterator> m_iterator;
    bool m_resident;
};

/// The text of an attribute without white space at both ends.
OdString trimmedText(const OdDbAttribute& attribute) {
    return RZString(attribute.textString()).trim();
}

/// The prompt of the first definition that one of the names fits, in the block that a reference shows; empty
/// if there is none.
OdString promptOf(const OdDbBlockReference& reference, const RZStringList& names, const RZString& suffix) {
    const OdSmartPtr<OdDbBlockTableRecord> block(reference.blockTableRecord().openObject(OdDb::kForRead));
    CEAtributo* found = nullptr;
    if (!CEAttributeHelper::findAtt(block, names, suffix, found)) return OdString();
    const std::unique_ptr<CEAtributo> definition(found);
    return definition->GetPrompt();
}

bool findInReference(const OdDbBlockReference& reference, const RZStringList& names, const RZString& suffix,
                     CEAtributo*& out, bool withPrompt) {
    AttributeWalk walk(reference);
    if (walk.isMissing()) return false;
    const Synonyms synonyms(names, suffix);
    while (const OdSmartPtr<OdDbAttribute> attribute = walk.next()) {
        const OdString tag = attribute->tag();
        const RZString* matched = synonyms.match(tag.view());
        if (matched == nullptr) continue;
        // The caller sees the spelling of its own list, not that of the drawing.
        out = new CEAtributo(*matched, withPrompt ? promptOf(reference, names, suffix) : OdString(),
                             trimmedText(*attribute), attribute->objectId(), attribute->isInvisible());
        return true;
    }
    return false;
}

bool findInDefinitions(const OdDbBlockTableRecord& block, const RZStringList& names, const RZString& suffix,
                       CEAtributo*& out) {
    const Synonyms synonyms(names, suffix);
    const OdSmartPtr<OdDbObjectIterator> iterator = block.newIterator();
    for (iterator->start(true, true); !iterator->done(); iterator->step(true, true)) {
        const OdDbObjectId id = iterator->objectId();
        if (!id.isValid() || id.isErased()) continue;
        const OdSmartPtr<OdDbObject> entity = id.openObject(OdDb::kForRead);
        const OdDbAttributeDefinition* definition = OdDbAttributeDefinition::cast(entity.get());
        if (definition == nullptr) continue;
        const OdString tag = definition->tag();
        const RZString* matched = synonyms.match(tag.view());
        if (matched == nullptr) continue;
        // The record names the block, not the definition, and keeps the text as it stands: callers count on
        // both.
        out =
            new CEAtributo(*matched, definition->prompt(), definition->textString(), block.objectId(), false);
        return true;
    }
    return false;
}

/// Runs a search. An error of the drawing layer, and no other, is written to the log before it goes on.
template<class Search>
bool reported(const Search& search) {
    return lm::log::guardedFromOdError("CEAttributeHelper::findAtt", search);
}

} // namespace

RZStringList CEAttributeHelper::composesAttribute(const RZStringList& first, const RZStringList& second) {
    RZStringList composed;
    for (const RZString& head : first)
        for (const RZString& tail : second) composed.addTail(head + tail);
    return composed;
}

bool CEAttributeHelper::isAtt(const RZString& tag, const RZStringList& names, const RZString& suffix) {
    RZString matched;
    return isAtt(tag, names, suffix, matched);
}

bool CEAttributeHelper::isAtt(const RZString& tag, const RZStringList& names, const RZString& suffix,
                              RZString& matched) {
    const Synonyms synonyms(names, suffix);
    const RZString* name = synonyms.match(tag.view());
    if (name == nullptr) return false;
    matched = *name;
    return true;
}

bool CEAttributeHelper::findAtt(const RZID& id, const RZString& name, CEAtributo*& out) {
    return findAtt(id, RZStringList{name}, out);
}

bool CEAttributeHelper::findAtt(const RZID& id, const RZStringList& names, CEAtributo*& out) {
    return findAtt(id, names, RZString(), out);
}

bool CEAttributeHelper::findAtt(const RZID& id, const RZStringList& names, const RZString& suffix,
                                CEAtributo*& out) {
    const OdSmartPtr<OdDbObject> object = id.openObject(OdDb::kForRead, false);
    if (OdDbBlockReference* reference = OdDbBlockReference::cast(object.get()))
        return findAtt(OdSmartPtr<OdDbBlockReference>(reference), names, suffix, out, false);
    if (OdDbBlockTableRecord* block = OdDbBlockTableRecord::cast(object.get()))
        return findAtt(OdSmartPtr<OdDbBlockTableRecord>(block), names, suffix, out);
    return false;
}

bool CEAttributeHelper::findAtt(OdSmartPtr<OdDbBlockReference> reference, const RZStringList& names,
                                const RZString& suffix, CEAtributo*& out, bool withPrompt) {
    return reported([&] { return findInReference(*reference, names, suffix, out, withPrompt); });
}

bool CEAttributeHelper::findAtt(OdSmartPtr<OdDbBlockTableRecord> block, const RZStringList& names,
                                const RZString& suffix, CEAtributo*& out) {
    if (block.isNull()) return false;
    return reported([&] { return findInDefinitions(*block, names, suffix, out); });
}

bool CEAttributeHelper::findAtt(const CEListaAtributos* list, const RZStringList& names,
                                const RZString& suffix, CEAtributo*& out) {
    const Synonyms synonyms(names, suffix);
    for (long long i = 0; i < list->GetSize(); ++i) {
        CEAtributo* const element = list->GetAt(i);
        if (synonyms.match(RZString(element->GetTag()).view()) == nullptr) continue;
        out = element;
        return true;
    }
    return false;
}

bool CEAttributeHelper::findAttByPrefix(const RZID& id, const RZStringList& prefixes,
                                        CEListaAtributos* list) {
    const OdSmartPtr<OdDbObject> object = id.openObject(OdDb::kForRead, false);
    return findAttByPrefix(OdSmartPtr<OdDbBlockReference>(OdDbBlockReference::cast(object.get())), prefixes,
                           list);
}

bool CEAttributeHelper::findAttByPrefix(OdSmartPtr<OdDbBlockReference> reference,
                                        const RZStringList& prefixes, CEListaAtributos* list) {
    if (reference.isNull()) return false;
    AttributeWalk walk(*reference);
    if (walk.isMissing()) return false;
    while (const OdSmartPtr<OdDbAttribute> attribute = walk.next()) {
        if (!prefixes.startsWithAnyNoCase(attribute->tag())) continue;
        list->AdicionarAtributo(new CEAtributo(attribute->tag(), OdString(), trimmedText(*attribute),
                                               attribute->objectId(), attribute->isInvisible()));
    }
    // What the list brought along counts too.
    return !list->IsEmpty();
}
