// SPDX-License-Identifier: MIT
// Calling functions of other modules by name, with texts as arguments.
//
//     if (rzInvokeBool("rzIsOpen", name)) ...
//
// Each function takes one list, or 1 to 10 texts. The first text names the function, whose case doesn't
// count; each further one arrives as an RTSTR. Without an active document, and for a name that nobody
// registered, each gives its neutral value. An exception of the called function passes to the caller.
#pragma once

#include "export.h"
#include "text/rzstring.h"
#include "text/rzstringlist.h"

#include "host/resbuf.h"

/// Declares one function in its eleven forms. The list must hold the function's name at least.
#define LM_DECLARE_CALLS(Result, name)                                                                       \
    LM_COMMONMFC_API Result name(RZStringList list);                                                         \
    LM_COMMONMFC_API Result name(RZString a);                                                                \
    LM_COMMONMFC_API Result name(RZString a, RZString b);                                                    \
    LM_COMMONMFC_API Result name(RZString a, RZString b, RZString c);                                        \
    LM_COMMONMFC_API Result name(RZString a, RZString b, RZString c, RZString d);                            \
    LM_COMMONMFC_API Result name(RZString a, RZString b, RZString c, RZString d, RZString e);                \
    LM_COMMONMFC_API Result name(RZString a, RZString b, RZString c, RZString d, RZString e, RZString f);    \
    LM_COMMONMFC_API Result name(RZString a, RZString b, RZString c, RZString d, RZString e, RZString f,     \
                                 RZString g);                                                                \
    LM_COMMONMFC_API Result name(RZString a, RZString b, RZString c, RZString d, RZString e, RZString f,     \
                                 RZString g, RZString h);                                                    \
    LM_COMMONMFC_API Result name(RZString a, RZString b, RZString c, RZString d, RZString e, RZString f,     \
                                 RZString g, RZString h, RZString i);                                        \
    LM_COMMONMFC_API Result name(RZString a, RZString b, RZString c, RZString d, RZString e, RZString f,     \
                                 RZString g, RZString h, RZString i, RZString j);

/// The result as the function left it, or null. The caller owns it and gives it to CHostAPI::relRb. An
/// OdError or a std::exception is written to the log as "rzInvoke2 : description" before it passes. The
/// copies of the argument texts stay allocated for good: a called function may keep their pointers.
LM_DECLARE_CALLS(hst_resbufW*, rzInvoke2)

/// False for no result and for nil; true for any other first record, the integer 0 too.
LM_DECLARE_CALLS(bool, rzInvokeBool)

/// The first record's RTSHORT or RTLONG; 0 for no result and any other type.
LM_DECLARE_CALLS(int, rzInvokeInt)

/// The first record's text if it is an RTSTR; else empty. A result of another type stays allocated.
LM_DECLARE_CALLS(RZString, rzInvokeStr)

/// Calls and lets the result go. A failure is written to the log twice, as "rzInvoke2 : description" and then
/// as "rzInvokeVoid : description", before it passes.
LM_DECLARE_CALLS(void, rzInvokeVoid)

#undef LM_DECLARE_CALLS
