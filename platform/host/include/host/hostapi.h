// SPDX-License-Identifier: MIT
// CHostAPI: a document's interface for calls by name with argument lists, for the symbols of its LISP
// session, for entity names and for console output.
//
//     hst_resbufW* result = nullptr;
//     document->getAPI()->invoke(first, result);     // the first record names the function
//     document->getAPI()->relRb(result);
#pragma once

#include "host/resbuf.h"

#include "drawing/objectid.h"

#include <cstdarg>
#include <memory>
#include <vector>

namespace lm::host {
class LispSession;
}

/// A document's interface. Belongs to the host's main thread.
class LM_HOST_API CHostAPI {
public:
    CHostAPI();
    CHostAPI(const CHostAPI&) = delete;
    CHostAPI& operator=(const CHostAPI&) = delete;
    ~CHostAPI();

    /// The arguments of the call in progress, without the record that names the function: a fresh copy that
    /// the caller owns and hands to relRb. Null without arguments and outside a call.
    hst_resbufW* getArgs();
    /// Releases a chain of the host, of a module or of invoke: records by odrxFree, texts by the C runtime.
    /// Null is allowed. Records that are not from the heap must not be given.
    void relRb(hst_resbufW* list);

    /// Makes nil the result of the call in progress. Of several results the last one counts, an earlier one
    /// is released; outside a call nothing happens.
    void retNil();
    /// Makes true the result of the call in progress, as retNil.
    void retT();
    /// Makes a chain the result of the call in progress and takes it over, outside a call too, where it is
    /// released. Null takes a result back.
    void retList(hst_resbufW* list);

    /// Calls the function that the first record (RTSTR) names, ignoring case, with copies of the records
    /// behind it. The caller's records are neither kept nor released. `result` becomes the function's result,
    /// which the caller owns, or null when it left none. Gives RTNORM, or RTERROR with a null result for an
    /// unknown function and for a first record that is no text. Calls nest. An exception of the function
    /// passes; `result` is null then and the call is taken down.
    int invoke(const hst_resbufW* first, hst_resbufW*& result);
    /// Calls in progress, each in the other.
    std::size_t callDepth() const { return m_calls.size(); }

    /// Reads a symbol of the document's LISP session by its exact name. RTNORM, and `*result` is a chain that
    /// the caller owns; see LispSession::read for its records. RTERROR with null for a symbol that nothing
    /// was stored in, which a symbol that holds nil is not, and for a null name.
    int getSym(const unsigned short* name, hst_resbufW** result);
    int getSym(const unsigned short* name, hst_resbufW*& result) { return getSym(name, &result); }
    /// Stores a copy of a chain in a symbol of an exact name; the chain stays the caller's. Null stands for
    /// nil. RTERROR for a name or a chain that LispSession::store refuses.
    int putSym(const unsigned short* name, const hst_resbufW* list);
    /// Evaluates LISP text in the document's session. RTNORM, or RTERROR when the text or its program is
    /// wrong: that writes one line to the console and never throws. Exceptions of called C++ functions pass.
    int evalLisp(const unsigned short* text);
    /// The document's LISP session, made at the first call.
    lm::host::LispSession& lisp();
    /// Whether LISP is being evaluated.
    bool isEvaluating() const;

    /// Resolves an entity name: word 0 is the handle, word 1 the number of the database. RTERROR for a name
    /// whose database is gone or doesn't know the handle; `id` stays as it was then. An erased object
    /// resolves.
    int GetObjectId(const unsigned long long name[2], OdDbObjectId& id) const;
    /// The entity name of an object. RTERROR for an id that isn't valid; `name` stays as it was then.
    int GetADSName(OdDbObjectId id, unsigned long long name[2]) const;

    /// Writes formatted text to the console; gives the number of units written. Conversions as the C runtime
    /// has them in its wide form, without a locale: %s and %c take wide text and a wide character, %S, %hs,
    /// %C and %hc narrow ones of code page 1252. Widths and precisions end at 65,535; %n and unknown
    /// conversions are written as they stand.
    int printf(const unsigned short* format, ...);
    int vprintf(const unsigned short* format, va_list arguments);

private:
    struct Call {
        hst_resbufW* arguments = nullptr;
        hst_resbufW* result = nullptr;
    };
    std::vector<Call*> m_calls;
    std::unique_ptr<lm::host::LispSession> m_lisp; // null until it is asked for
};
