// SPDX-License-Identifier: MIT
// CIRegistro: the settings that all users of a machine share, kept in one small XML file.
//
//     RZString version = CIRegistro().GetVersionInternal();
//
// The file is "LM/LMREG2022SP0.xml" in the folder for common data where that has a folder "LM", be the file
// there or not, and else "Program/LMREG.xml" beside the program. The first element "local" below the root
// holds the settings as children with the attributes "key" and "value"; keys go without regard to case, and
// the first one counts.
#pragma once

#include "export.h"
#include "text/rzstring.h"

/// Access to the settings. Has no state: each call finds and reads the file anew, and any thread may call. A
/// setting that isn't there, and a file that can't be opened or isn't well-formed, read as the empty text. A
/// std::exception, such as for a folder whose state can't be told, is written to the log behind
/// "CIRegistro::readValue" and raised again.
class LM_COMMONMFC_API CIRegistro {
public:
    CIRegistro() {}
    CIRegistro(const CIRegistro&) {}
    CIRegistro& operator=(const CIRegistro&) { return *this; }
    ~CIRegistro() {}

    /// The internal version of the installed product.
    RZString GetVersionInternal();

private:
    RZString readValue(RZString key) const;
    /// The path of the file. Raises std::filesystem::filesystem_error when the folder can't be looked at, and
    /// std::system_error when the program's own path can't be told.
    lm::WideString getFileReg() const;
};
