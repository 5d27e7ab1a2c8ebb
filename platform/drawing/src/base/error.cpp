// SPDX-License-Identifier: MIT
#include "drawing/error.h"

#include "drawing/rxobject.h"

namespace {

const char* textOf(OdResult code) {
    switch (code) {
    case eOk:
        return "No error";
    case eNotOpenForWrite:
        return "Object is not open for write";
    case eNullObjectPointer:
        return "Object pointer is null";
    case eInvalidIndex:
        return "Invalid index";
    case eNotThatKindOfClass:
        return "Object is not of the wanted class";
    case eKeyNotFound:
        return "Key not found";
    case eDuplicateKey:
        return "Key is there already";
    case eInvalidKey:
        return "Invalid key";
    case eInvalidInput:
        return "Invalid input";
    case eWasErased:
        return "Object was erased";
    case eCannotBeErased:
        return "Object can't be erased";
    case eNotInDatabase:
        return "Object is not in a database";
    case eAlreadyInDatabase:
        return "Object is in a database already";
    case eNotApplicable:
        return "Operation doesn't apply to the object";
    case eFileNotFound:
        return "File not found";
    case eFileUnreadable:
        return "File can't be read";
    case eFileChanged:
        return "File changed while it was read";
    case eUnknownFormat:
        return "File is no drawing";
    case eUnsupportedVersion:
        return "Version of the drawing isn't supported";
    case eBrokenFile:
        return "File is broken";
    case eOutOfMemory:
        return "Out of memory";
    case eFilerError:
        return "File can't be written";
    }
    return "Unknown error";
}

} // namespace

OdError::OdError(OdResult code) : m_code(code), m_description(lm::drawing::odText(textOf(code))) {}
OdError::OdError(const OdString& description) : m_code(eInvalidInput), m_description(description) {}
OdError::OdError(OdResult code, const OdString& description) : m_code(code), m_description(description) {}
OdError::~OdError() = default;

OdError_NotThatKindOfClass::OdError_NotThatKindOfClass(const OdRxClass* from, const OdRxClass* to)
    : OdError(eNotThatKindOfClass,
              lm::drawing::odText(std::string("An object of class ") +
                                  (from != nullptr ? from->asciiName() : "?") + " is not of class " +
                                  (to != nullptr ? to->asciiName() : "?"))) {}
OdError_NotThatKindOfClass::~OdError_NotThatKindOfClass() = default;

OdError_InvalidIndex::OdError_InvalidIndex(long index)
    : OdError(eInvalidIndex, lm::drawing::odText("Invalid index " + std::to_string(index))) {}
OdError_InvalidIndex::~OdError_InvalidIndex() = default;
