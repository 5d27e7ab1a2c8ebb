// SPDX-License-Identifier: MIT
#include "framework/values/exceptions.h"

LM_RUNTIME_CLASS_BODY(CException, CObject)
LM_RUNTIME_CLASS_BODY(CInvalidArgException, CException)
LM_RUNTIME_CLASS_BODY(CArchiveException, CException)

CException::~CException() = default;
CInvalidArgException::~CInvalidArgException() = default;
CArchiveException::~CArchiveException() = default;

CString CException::description() const {
    return CString(lm::system::widen("framework exception"));
}

CString CInvalidArgException::description() const {
    return CString(lm::system::widen("invalid argument"));
}

CString CArchiveException::description() const {
    switch (m_cause) {
    case endOfFile:
        return CString(lm::system::widen("archive: end of file"));
    case wrongDirection:
        return CString(lm::system::widen("archive: opened for the other direction"));
    case none:
        break;
    }
    return CString(lm::system::widen("archive: no failure"));
}

void AfxThrowInvalidArgException() {
    throw CInvalidArgException();
}

void AfxThrowArchiveException(CArchiveException::Cause cause) {
    throw CArchiveException(cause);
}
