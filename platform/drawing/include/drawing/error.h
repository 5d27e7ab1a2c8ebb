// SPDX-License-Identifier: MIT
// OdError: what the drawing layer raises, and the codes that its operations answer with.
#pragma once

#include "drawing/odstring.h"

class OdRxClass;

/// Codes of the drawing layer. eOk is success; an operation with a result of this type doesn't throw for the
/// cases that its comment names.
enum OdResult {
    eOk = 0,
    eNotOpenForWrite,
    eNullObjectPointer,
    eInvalidIndex,
    eNotThatKindOfClass,
    eKeyNotFound,
    eDuplicateKey,
    eInvalidKey,
    eInvalidInput,
    eWasErased,
    eCannotBeErased,
    eNotInDatabase,
    eAlreadyInDatabase,
    eNotApplicable,
    eFileNotFound,
    eFileUnreadable,
    eFileChanged,
    eUnknownFormat,
    eUnsupportedVersion,
    eBrokenFile,
    eOutOfMemory,
    eFilerError
};

/// An error of the drawing layer. It is no std::exception on purpose: callers tell the two kinds apart.
class LM_DRAWING_API OdError {
public:
    /// The description is the code's own text.
    explicit OdError(OdResult code);
    /// A text of the caller; the code is eInvalidInput.
    explicit OdError(const OdString& description);
    OdError(OdResult code, const OdString& description);
    OdError(const OdError&) = default;
    OdError& operator=(const OdError&) = default;
    virtual ~OdError();

    OdResult code() const { return m_code; }
    /// What happened, in words.
    OdString description() const { return m_description; }

private:
    OdResult m_code;
    OdString m_description;
};

/// A checked cast met another class; the description names both.
class LM_DRAWING_API OdError_NotThatKindOfClass : public OdError {
public:
    OdError_NotThatKindOfClass(const OdRxClass* from, const OdRxClass* to);
    ~OdError_NotThatKindOfClass() override;
};

/// An index outside an array; the description names it.
class LM_DRAWING_API OdError_InvalidIndex : public OdError {
public:
    explicit OdError_InvalidIndex(long index);
    ~OdError_InvalidIndex() override;
};
