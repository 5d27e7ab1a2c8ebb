// SPDX-License-Identifier: MIT
// Attributes that no attribute object holds: lines in the extended data of any object, read and written, and
// the virtual blocks whose records stand in a dictionary.
#include "cad/icad_detail.h"
#include "log.h"
#include "vocabulary/names.h"

#include "drawing/wildcard.h"

using lm::names::TVO_RZ_ATT_VIRTUAL;

namespace {

constexpr int kTag = 0, kValue = 1, kFlag = 2, kFields = 3;

/// Group codes of the chain: the application's name, then one text for each line.
constexpr int kApplication = 1001, kLine = 1000;

/// The fields of a line: tag, value and flag behind the separator. An empty value stands as one blank, since
/// separators in a row would otherwise fall together.
RZStringList fieldsOf(RZString line) {
    line.replace(RZString(RZString::char12, RZString::char12),
                 RZString(RZString::char12, " ", RZString::char12));
    return line.split(RZString::char12);
}

std::unique_ptr<CEAtributo> recordOf(const RZStringList& fields, bool invisible) {
    return std::make_unique<CEAtributo>(fields.getIndex(kTag), OdString(), fields.getIndex(kValue),
                                        OdDbObjectId(RZID::kNull), invisible);
}

OdSmartPtr<OdResBuf> linesOf(const OdDbObject& object) {
    return object.xData(TVO_RZ_ATT_VIRTUAL);
}

/// A line as it is stored. Nothing is escaped: a separator in a value makes a field more.
OdString lineOf(const RZString& tag, const RZString& value, bool invisible) {
    return RZString(tag, RZString::char12, value, RZString::char12, invisible ? "S" : "N");
}

/// Walks the texts of a chain until `visit` answers false.
template<class Visit>
void forEachText(const OdResBuf* chain, Visit&& visit) {
    for (const OdResBuf* at = chain; at != nullptr; at = at->next().get())
        if (!visit(RZString(at->getString()))) return;
}

/// Gives the first line of exactly this tag, whole and in fields, to `use`.
template<class Use>
void findLine(const OdDbObject& object, const RZString& tag, Use&& use) {
    const OdSmartPtr<OdResBuf> lines = linesOf(object);
    const RZString application{OdString(TVO_RZ_ATT_VIRTUAL)};
    forEachText(lines.get(), [&](const RZString& line) {
        if (line == application) return true;
        const RZStringList fields = fieldsOf(line);
        if (fields.getIndex(kTag) != tag) return true;
        use(line, fields);
        return false;
    });
}

} // namespace

CEAtributo* CICad::SearchAttributeVirtual(OdSmartPtr<OdDbObject> obj, RZString tag) {
    return lm::log::guarded("CICad::SearchAttributeVirtual", [&]() -> CEAtributo* {
        if (obj.isNull()) return nullptr;
        std::unique_ptr<CEAtributo> record;
        findLine(*obj, tag, [&](const RZString&, const RZStringList& fields) {
            record = recordOf(fields, fields.getIndex(kFlag).asUpper() == "S");
        });
        return record.release();
    });
}

CEAtributo* CICad::SearchAttributeVirtual(RZID id, RZString tag) {
    return lm::log::guarded("CICad::SearchAttributeVirtual",
                            [&] { return SearchAttributeVirtual(id.openObject(), tag); });
}

namespace {

template<class Source>
CEAtributo* searchVirtualRole(RZString (*nameOf)(int), const Source& source) {
    CEAtributo* record = nullptr;
    lm::cad::tryNames(nameOf, [&](const RZString& name) {
        record = CICad().SearchAttributeVirtual(source, name);
        return record != nullptr;
    });
    return record;
}

} // namespace

#define LM_VIRTUAL_SEARCH(Role)                                                                              \
    CEAtributo* CICad::SearchAttributeVirtual##Role(OdSmartPtr<OdDbObject> obj) {                            \
        return searchVirtualRole(&CMensagem::getAtt##Role, obj);                                             \
    }                                                                                                        \
    CEAtributo* CICad::SearchAttributeVirtual##Role(RZID id) {                                               \
        return searchVirtualRole(&CMensagem::getAtt##Role, id);                                              \
    }
LM_VIRTUAL_SEARCH(Number)
LM_VIRTUAL_SEARCH(Strip)
LM_VIRTUAL_SEARCH(Tag)
#undef LM_VIRTUAL_SEARCH

int CICad::SearchAttributesVirtual(OdSmartPtr<OdResBuf> dados, CEListaAtributos*& lista) {
    lm::cad::ListOwner list(new CEListaAtributos());
    forEachText(dados.get(), [&](const RZString& line) {
        const RZStringList fields = fieldsOf(line);
        if (fields.count() != kFields) return true;
        // Exactly "S": alone among the readers this one doesn't take a small letter for it.
        lm::cad::append(*list, recordOf(fields, fields.getIndex(kFlag) == "S"));
        return true;
    });
    lista = list.release();
    return 0;
}

int CICad::SearchAttributesVirtual(RZID id, CEListaAtributos*& lista) {
    const OdSmartPtr<OdDbObject> object = id.openObject();
    if (object.isNull()) return 1;
    return SearchAttributesVirtual(linesOf(*object), lista);
}

int CICad::SearchAttributesVirtual(RZID id, CEBloco* bloco) {
    if (id.isNull() || bloco == nullptr) return 1;
    const OdSmartPtr<OdDbObject> object = id.openObject();
    if (object.isNull()) return 0;
    const OdSmartPtr<OdResBuf> lines = linesOf(*object);
    lm::cad::RecordEntry records(*bloco);
    forEachText(lines.get(), [&](const RZString& line) {
        if (line.matchesNoCase(TVO_RZ_ATT_VIRTUAL.view())) return true;
        const RZStringList fields = fieldsOf(line);
        if (fields.count() == kFields)
            records.enter(recordOf(fields, fields.getIndex(kFlag).asUpper() == "S"));
        return true;
    });
    return 0;
}

namespace {

/// The first item whose text begins with a tag in capitals, whatever its own case. Nothing looks for the
/// separator behind the tag, and the record with the application's name is an item like the others: the way
/// in which lines have always been found for writing.
OdResBuf* findItem(OdResBuf* chain, const RZString& tag) {
    for (OdResBuf* at = chain; at != nullptr; at = at->next().get())
        if (RZString(at->getString()).asUpper().startsWith(tag)) return at;
    return nullptr;
}

/// Appends the stored line of an object's component tag, if it has one. It is copied as it stands: a record
/// would bring a blank for an empty value and a flag in capitals.
void appendTagLine(CICad& cad, const RZID& id, OdSmartPtr<OdResBuf>& last) {
    const std::unique_ptr<CEAtributo> record(cad.SearchAttributeVirtualTag(id));
    if (record == nullptr) return;
    findLine(*id.openObject(), RZString(record->GetTag().view()),
             [&](const RZString& line, const auto&) { last = last->append(OdResBuf::newRb(kLine, line)); });
}

} // namespace

bool CICad::AtualizarAtributoVirtual(OdSmartPtr<OdDbObject> obj, RZString tag, RZString valor,
                                     bool invisivel) {
    return lm::log::guarded("CICad::AtualizarAtributoVirtual", [&] {
        if (obj.isNull()) return false;
        RegisterAppName(TVO_RZ_ATT_VIRTUAL);
        const OdSmartPtr<OdResBuf> lines = linesOf(*obj);
        tag.makeUpper();
        if (OdResBuf* const item = findItem(lines.get(), tag); item != nullptr)
            item->setString(lineOf(tag, valor, invisivel));
        if (!obj->isWriteEnabled()) obj->upgradeOpen();
        obj->setXData(lines);
        return true;
    });
}

bool CICad::AtualizarAtributoVirtual(RZID id, RZString tag, RZString valor, bool invisivel) {
    return lm::log::guarded("CICad::AtualizarAtributoVirtual", [&] {
        return AtualizarAtributoVirtual(id.openObject(OdDb::kForWrite), tag, valor, invisivel);
    });
}

bool CICad::AtualizarAtributosVirtual(RZID id, CEListaAtributos* lista, bool preservarTag) {
    return lm::log::guarded("CICad::AtualizarAtributosVirtual", [&] {
        RegisterAppName(TVO_RZ_ATT_VIRTUAL);
        const OdSmartPtr<OdResBuf> chain = OdResBuf::newRb(kApplication, TVO_RZ_ATT_VIRTUAL);
        OdSmartPtr<OdResBuf> last = chain;
        if (preservarTag) appendTagLine(*this, id, last);
        for (int i = 0; lista != nullptr && i < lista->GetSize(); ++i) {
            const CEAtributo& record = *lista->GetAt(i);
            if (preservarTag && CMensagem::isAttTag(record.GetTag())) continue;
            // Unit by unit: what was read and is written back must not lose what the code page lacks.
            const OdString line = lineOf(RZString(record.GetTag().view()), RZString(record.GetValor().view()),
                                         record.GetInvisivel());
            last = last->append(OdResBuf::newRb(kLine, line));
        }
        const OdSmartPtr<OdDbObject> object = id.openObject(OdDb::kForWrite);
        if (!object.isNull()) object->setXData(chain);
        return true;
    });
}

namespace {

/// The name of a virtual block: the second item of its record's data, under group code 2.
RZString virtualName(const OdDbXrecord& record) {
    constexpr int kName = 2;
    const OdSmartPtr<OdResBuf> chain = record.rbChain();
    if (chain.isNull() || chain->next().isNull() || chain->next()->restype() != kName) return RZString();
    return chain->next()->getString();
}

} // namespace

std::map<lm::WideString, CEBloco*>* CICad::BuscarBlocosVirtuais(RZString padrao, RZString tagChave) {
    const OdSmartPtr<OdDbDictionary> dictionary = lm::cad::openVirtualSchematic();
    if (dictionary.isNull()) return nullptr;
    lm::cad::BlockMapOwner blocks;
    const OdSmartPtr<OdDbDictionaryIterator> entry = dictionary->newIterator();
    for (; !entry->done(); entry->next()) {
        const OdSmartPtr<OdDbObject> object = entry->getObject();
        const auto* record = OdDbXrecord::cast(object.get());
        if (record == nullptr) continue;
        const RZString name = virtualName(*record);
        if (!odutWcMatch(name, padrao)) continue;
        blocks.make();
        lm::cad::BlockOwner block(new CEBloco(name));
        SearchAttributesVirtual(RZID(entry->objectId()), block.get());
        block->SetObjectId(entry->objectId());
        blocks.enter(std::move(block), tagChave);
    }
    return blocks.release();
}
