// SPDX-License-Identifier: MIT
// A small drawing for the tests of the look-up by synonyms, and what they share.
#pragma once

#include "cad/celistaatributos.h"
#include "vocabulary/ceattributehelper.h"
#include "vocabulary/namelists.h"

#include "drawing/drawing.h"
#include "host/documentmanager.h"
#include "host/session.h"
#include "lmcommon/ceatributo.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace lm::tests {

using Attributes = std::vector<std::pair<const char*, const char*>>; // tag and text

template<class T>
OdSmartPtr<T> make(T* object) {
    return OdSmartPtr<T>(object, lm::drawing::kAttach);
}

inline std::string text(const CHostString& value) {
    return lm::system::toUtf8(value.view());
}

inline OdSmartPtr<OdDbAttribute> makeAttribute(const char* tag, const char* value) {
    OdSmartPtr<OdDbAttribute> attribute = make(new OdDbAttribute);
    attribute->setTag(OdString(tag));
    attribute->setTextString(OdString(value));
    return attribute;
}

inline OdSmartPtr<OdDbAttributeDefinition> makeDefinition(const char* tag, const char* prompt,
                                                          const char* value) {
    OdSmartPtr<OdDbAttributeDefinition> definition = make(new OdDbAttributeDefinition);
    definition->setTag(OdString(tag));
    definition->setPrompt(OdString(prompt));
    definition->setTextString(OdString(value));
    return definition;
}

inline RZStringList list(std::initializer_list<RZString> names) {
    return RZStringList(names);
}

/// A drawing with one block and what a test puts into it; the log is emptied before and after.
class AttributeSearch : public testing::Test {
protected:
    void SetUp() override {
        hostSession()->clearLines();
        OdSmartPtr<OdDbSymbolTable> table(m_database->getBlockTableId().openObject(OdDb::kForWrite));
        m_block = make(new OdDbBlockTableRecord);
        m_block->setName(OdString("MOTOR"));
        m_blockId = table->add(m_block);
    }

    void TearDown() override { hostSession()->clearLines(); }

    OdDbObjectId define(OdSmartPtr<OdDbEntity> entity) { return m_block->appendOdDbEntity(entity); }

    OdSmartPtr<OdDbBlockReference> place(const Attributes& attributes) {
        OdSmartPtr<OdDbBlockReference> reference = make(new OdDbBlockReference);
        reference->setBlockTableRecord(m_blockId);
        OdSmartPtr<OdDbBlockTableRecord> space(m_database->getModelSpaceId().openObject(OdDb::kForWrite));
        space->appendOdDbEntity(reference);
        for (const auto& [tag, value] : attributes) append(reference, tag, value);
        return reference;
    }

    static OdSmartPtr<OdDbAttribute> append(OdSmartPtr<OdDbBlockReference> reference, const char* tag,
                                            const char* value) {
        OdSmartPtr<OdDbAttribute> attribute = makeAttribute(tag, value);
        reference->appendAttribute(attribute);
        return attribute;
    }

    /// Searches a reference; null when nothing was found.
    static std::unique_ptr<CEAtributo> find(OdSmartPtr<OdDbBlockReference> reference,
                                            const RZStringList& names, const char* suffix = "",
                                            bool withPrompt = false) {
        CEAtributo* out = nullptr;
        const bool found = CEAttributeHelper::findAtt(reference, names, RZString(suffix), out, withPrompt);
        EXPECT_EQ(found, out != nullptr);
        return std::unique_ptr<CEAtributo>(out);
    }

    static std::unique_ptr<CEAtributo> find(OdSmartPtr<OdDbBlockTableRecord> block, const RZStringList& names,
                                            const char* suffix = "") {
        CEAtributo* out = nullptr;
        const bool found = CEAttributeHelper::findAtt(block, names, RZString(suffix), out);
        EXPECT_EQ(found, out != nullptr);
        return std::unique_ptr<CEAtributo>(out);
    }

    static std::vector<std::string> lines() {
        std::vector<std::string> result;
        for (const CHostString& line : hostSession()->lines()) result.push_back(text(line));
        return result;
    }

    OdSmartPtr<OdDbDatabase> m_database = make(new OdDbDatabase);
    OdSmartPtr<OdDbBlockTableRecord> m_block;
    OdDbObjectId m_blockId;
};

} // namespace lm::tests
