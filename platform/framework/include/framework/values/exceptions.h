// SPDX-License-Identifier: MIT
// What the framework raises: a root of its own, which is no std::exception, so that callers who catch the
// standard ones let these pass. They are raised and caught by value and reference.
#pragma once

#include "framework/values/cstring.h"
#include "framework/values/object.h"

/// The root of the framework's exceptions.
class LM_VALUES_API CException : public CObject {
    LM_RUNTIME_CLASS(CException)
public:
    CException() = default;
    ~CException() override;
    /// What happened, in words for a developer.
    virtual CString description() const;
};

/// An argument that an operation doesn't take, such as an index outside an array.
class LM_VALUES_API CInvalidArgException : public CException {
    LM_RUNTIME_CLASS(CInvalidArgException)
public:
    ~CInvalidArgException() override;
    CString description() const override;
};

/// A failure of an archive.
class LM_VALUES_API CArchiveException : public CException {
    LM_RUNTIME_CLASS(CArchiveException)
public:
    /// What went wrong. wrongDirection: read from an archive for writing, or the other way round.
    enum Cause { none, endOfFile, wrongDirection };

    explicit CArchiveException(Cause cause) : m_cause(cause) {}
    ~CArchiveException() override;
    Cause cause() const { return m_cause; }
    CString description() const override;

private:
    Cause m_cause;
};

/// Raises CInvalidArgException.
[[noreturn]] LM_VALUES_API void AfxThrowInvalidArgException();

/// Raises CArchiveException with the cause.
[[noreturn]] LM_VALUES_API void AfxThrowArchiveException(CArchiveException::Cause cause);
