// SPDX-License-Identifier: MIT
// A drawing in the active document that a test fills piece by piece, and what CICad gives for it as plain
// text.
#pragma once

#include "arguments.h"
#include "cad/icad.h"
#include "tx/LMCommonMFC/callsupport.h"

#include "drawing/drawing.h"
#include "host/documentmanager.h"
#include "lmcommon/ceatributo.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

namespace lm::tests {

/// Takes over a new object.
template<class T>
OdSmartPtr<T> make(T* object) {
    return OdSmartPtr<T>(object, lm::drawing::kAttach);
}

inline OdString od(std::string_view utf8) {
    return OdString(WideView(system::fromUtf8(utf8)));
}
inline RZString rz(std::string_view utf8) {
    return RZString(WideView(system::fromUtf8(utf8)));
}
inline std::string plain(const CHostString& text) {
    return system::toUtf8(text.view());
}
inline std::string plain(const RZString& text) {
    return system::toUtf8(text.view());
}

/// One record as "tag|prompt|value", with "|i" behind an invisible one; "null" for none.
inline std::string told(const CEAtributo* record) {
    if (record == nullptr) return "null";
    return plain(record->GetTag()) + "|" + plain(record->GetPrompt()) + "|" + plain(record->GetValor()) +
           (record->GetInvisivel() ? "|i" : "");
}

using Texts = std::vector<std::string>;

/// A result of the single searches; deletes the record at the end.
class Found {
public:
    ~Found() { delete m_record; }
    CEAtributo*& slot() { return m_record; }
    CEAtributo* get() const { return m_record; }
    CEAtributo* operator->() const { return m_record; }
    std::string told() const { return tests::told(m_record); }

private:
    CEAtributo* m_record = nullptr;
};

/// A result of the list searches; deletes the list with its records at the end.
class FoundList {
public:
    ~FoundList() { clear(); }
    CEListaAtributos*& slot() { return m_list; }
    CEListaAtributos* get() const { return m_list; }
    CEListaAtributos* operator->() const { return m_list; }
    void clear() {
        if (m_list == nullptr) return;
        m_list->releaseAllAttributes();
        delete m_list;
        m_list = nullptr;
    }
    Texts told() const {
        if (m_list == nullptr) return {"null"};
        Texts all;
        for (long long i = 0; i < m_list->GetSize(); ++i) all.push_back(tests::told(m_list->GetAt(i)));
        return all;
    }

private:
    CEListaAtributos* m_list = nullptr;
};

/// Deletes a block with the records under the given tags.
inline void destroy(CEBloco* block, const Texts& tags) {
    for (const std::string& tag : tags) delete block->GetAtributo(rz(tag));
    delete block;
}

struct Attribute {
    const char* tag;
    const char* value;
    bool invisible = false;
};

struct Definition {
    const char* tag;
    const char* prompt;
    const char* value;
    bool constant = false;
};

using Reference = OdSmartPtr<OdDbBlockReference>;

class CadDrawing : public testing::Test {
protected:
    OdDbObjectId layer(const char* name) {
        OdSmartPtr<OdDbSymbolTable> table(m_db.getLayerTableId().openObject(OdDb::kForWrite));
        OdSmartPtr<OdDbLayerTableRecord> record = make(new OdDbLayerTableRecord);
        record->setName(od(name));
        return table->add(record);
    }

    OdDbObjectId block(const char* name, const std::vector<Definition>& definitions = {}) {
        return block(make(new OdDbBlockTableRecord), name, definitions);
    }

    OdDbObjectId block(OdSmartPtr<OdDbBlockTableRecord> record, const char* name,
                       const std::vector<Definition>& definitions = {}) {
        OdSmartPtr<OdDbSymbolTable> table(m_db.getBlockTableId().openObject(OdDb::kForWrite));
        record->setName(od(name));
        const OdDbObjectId id = table->add(record);
        for (const Definition& definition : definitions) define(id, definition);
        return id;
    }

    static OdDbObjectId define(OdDbObjectId block, const Definition& from) {
        OdSmartPtr<OdDbAttributeDefinition> definition = make(new OdDbAttributeDefinition);
        definition->setTag(od(from.tag));
        definition->setPrompt(od(from.prompt));
        definition->setTextString(od(from.value));
        definition->setConstant(from.constant);
        return append(block, definition);
    }

    static OdDbObjectId append(OdDbObjectId block, OdSmartPtr<OdDbEntity> entity) {
        return OdSmartPtr<OdDbBlockTableRecord>(block.openObject(OdDb::kForWrite))->appendOdDbEntity(entity);
    }

    static OdSmartPtr<OdDbAttribute> attribute(const Attribute& from) {
        return filled(make(new OdDbAttribute), from);
    }

    static OdSmartPtr<OdDbAttribute> filled(OdSmartPtr<OdDbAttribute> made, const Attribute& from) {
        made->setTag(od(from.tag));
        made->setTextString(od(from.value));
        made->setInvisible(from.invisible);
        return made;
    }

    /// A reference outside the drawing.
    static Reference loose(OdDbObjectId block, const std::vector<Attribute>& attributes = {}) {
        Reference reference = make(new OdDbBlockReference);
        reference->setBlockTableRecord(block);
        for (const Attribute& each : attributes) reference->appendAttribute(attribute(each));
        return reference;
    }

    /// A reference in model space, or in another block.
    Reference place(OdDbObjectId block, const std::vector<Attribute>& attributes = {},
                    const char* layer = "0", OdDbObjectId owner = {}) {
        Reference reference = loose(block);
        append(owner.isNull() ? m_db.getModelSpaceId() : owner, reference);
        reference->setLayer(od(layer));
        for (const Attribute& each : attributes) reference->appendAttribute(attribute(each));
        return reference;
    }

    /// The object of the attribute number `index` of a reference.
    static OdSmartPtr<OdDbAttribute> attributeOf(const Reference& reference, int index) {
        OdSmartPtr<OdDbObjectIterator> walk = reference->attributeIterator();
        for (; index > 0; --index) walk->step();
        return OdSmartPtr<OdDbAttribute>(walk->entity());
    }

    static void erase(OdDbObjectId id) { id.openObject(OdDb::kForWrite)->erase(); }

    /// Extended data of virtual attributes: the line of the application, then one text for each line.
    static OdSmartPtr<OdResBuf> chainOf(const Texts& lines, const char* application = "TVO_RZ_ATT_VIRTUAL") {
        OdSmartPtr<OdResBuf> chain = OdResBuf::newRb(1001, od(application));
        OdSmartPtr<OdResBuf> last = chain;
        for (const std::string& line : lines) last = last->append(OdResBuf::newRb(1000, od(line)));
        return chain;
    }

    /// An object with lines that stands in the drawing and is no block reference.
    OdDbObjectId carrier(const Texts& lines) {
        OdSmartPtr<OdDbPoint> point = make(new OdDbPoint);
        append(m_db.getModelSpaceId(), point);
        point->setXDataRaw(chainOf(lines));
        return point->objectId();
    }

    OdSmartPtr<OdDbDictionary> namedObjects() {
        return OdSmartPtr<OdDbDictionary>(m_db.getNamedObjectsDictionaryId().openObject(OdDb::kForWrite));
    }

    /// The dictionary of virtual blocks, made when it isn't there.
    OdSmartPtr<OdDbDictionary> virtualBlocks() {
        const OdString name = od("ESQ_VIRTUAL_RZ");
        if (!namedObjects()->has(name)) namedObjects()->setAt(name, make(new OdDbDictionary));
        return OdSmartPtr<OdDbDictionary>(namedObjects()->getAt(name, OdDb::kForWrite));
    }

    /// A record with a name under a group code behind a first item that nobody reads.
    OdDbObjectId virtualBlock(const char* key, const char* name, const Texts& lines, int code = 2) {
        return virtualBlock(make(new OdDbXrecord), key, name, lines, code);
    }

    OdDbObjectId virtualBlock(OdSmartPtr<OdDbXrecord> record, const char* key, const char* name,
                              const Texts& lines, int code = 2) {
        OdSmartPtr<OdResBuf> chain = OdResBuf::newRb(70, 1);
        chain->append(OdResBuf::newRb(code, od(name)));
        record->setFromRbChain(chain);
        record->setXDataRaw(chainOf(lines));
        return virtualBlocks()->setAt(od(key), record);
    }

    lm::test::Documents m_documents;
    CHostDocument* m_document = m_documents.manager.newDocument();
    CHostDatabase& m_db = *m_document->database();
    CICad m_cad;
};

} // namespace lm::tests
