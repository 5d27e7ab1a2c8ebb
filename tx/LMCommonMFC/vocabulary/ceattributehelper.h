// SPDX-License-Identifier: MIT
// CEAttributeHelper: finds an attribute of a block by a list of synonyms, so that a symbol from the library
// of any language is read alike.
//
//     CEAtributo* number = nullptr;
//     if (CEAttributeHelper::findAtt(blockId, ATT_NUMBER, number)) {
//         use(number->GetValor());
//         delete number;
//     }
#pragma once

#include "export.h"
#include "text/rzid.h"
#include "text/rzstring.h"
#include "text/rzstringlist.h"

#include "drawing/rxobject.h"

class CEAtributo;
class CEListaAtributos;
class OdDbBlockReference;
class OdDbBlockTableRecord;

/// Look-up by synonyms. All names compare ignoring case. A suffix is glued to each name before it is
/// compared; the suffix "-" is no text but asks for a prefix test: the name "PIN" then fits "PIN", "PIN1" and
/// "PINO".
///
/// The order of the attributes in the block decides which attribute is found; the order of the names only
/// decides which name counts as matched when a tag fits several. Nothing found is a false result and leaves
/// `out` alone.
class LM_COMMONMFC_API CEAttributeHelper {
public:
    /// Every element of `first` followed by every element of `second`, the first list in the outer loop;
    /// empty if either list is.
    static RZStringList composesAttribute(const RZStringList& first, const RZStringList& second);

    /// Whether `tag` is one of the names.
    static bool isAtt(const RZString& tag, const RZStringList& names, const RZString& suffix);
    /// The same; `matched` becomes name and suffix in the spelling of the caller, or the bare name for the
    /// suffix
    /// "-". Left alone when no name fits.
    static bool isAtt(const RZString& tag, const RZStringList& names, const RZString& suffix,
                      RZString& matched);

    /// @name Search in the object behind an identifier
    /// A block reference is searched through its attributes (prompts stay empty), a block table record
    /// through its definitions; any other object, an erased one and a null identifier give false. The caller
    /// owns `out`. Errors as in the forms below.
    /// @{
    static bool findAtt(const RZID& id, const RZString& name, CEAtributo*& out);
    static bool findAtt(const RZID& id, const RZStringList& names, CEAtributo*& out);
    static bool findAtt(const RZID& id, const RZStringList& names, const RZString& suffix, CEAtributo*& out);
    /// @}

    /// Search among the live attributes of a block reference. The new record, which the caller owns, has the
    /// matched name as its tag, the text without white space at both ends, and id and invisibility of the
    /// attribute. With `withPrompt` the prompt is that of the block's definition by the same names, empty if
    /// there is none. An OdError, a null reference's too, is written to the log and raised again.
    static bool findAtt(OdSmartPtr<OdDbBlockReference> reference, const RZStringList& names,
                        const RZString& suffix, CEAtributo*& out, bool withPrompt);

    /// Search among the attribute definitions of a block; false for null. The new record, which the caller
    /// owns, has the matched name as its tag, prompt and text of the definition as they stand, the id of the
    /// block (not of the definition) and is not invisible. An OdError is written to the log and raised again.
    static bool findAtt(OdSmartPtr<OdDbBlockTableRecord> block, const RZStringList& names,
                        const RZString& suffix, CEAtributo*& out);

    /// Search in a list that was read before. `out` is the element itself: the list keeps it, don't delete
    /// it.
    static bool findAtt(const CEListaAtributos* list, const RZStringList& names, const RZString& suffix,
                        CEAtributo*& out);

    /// @name Collecting by prefix
    /// Appends a record to `list` for every live attribute whose tag begins with one of the prefixes,
    /// ignoring case: tag as it stands in the drawing, empty prompt, text without white space at both ends.
    /// True if the list holds anything at the end, what it held before included. False, and nothing added,
    /// for null and for what is no block reference. The records belong to whoever owns the list's records.
    /// @{
    static bool findAttByPrefix(const RZID& id, const RZStringList& prefixes, CEListaAtributos* list);
    static bool findAttByPrefix(OdSmartPtr<OdDbBlockReference> reference, const RZStringList& prefixes,
                                CEListaAtributos* list);
    /// @}
};
