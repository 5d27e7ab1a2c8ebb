// SPDX-License-Identifier: MIT
// CEListaAtributos: the attributes of a block in the drawing's order, as a search has read them.
//
//     CEAtributo* pin = list->GetAtributoPin();     // null if there is none; the list keeps it
//     ...
//     list->releaseAllAttributes();                 // the records
//     delete list;                                  // the list
#pragma once

#include "export.h"
#include "text/pointerarrays.h"
#include "text/rzstring.h"

#include "lmcommon/ceatributo.h"

#include <cstddef>

/// A list of attribute records in order of insertion; a tag may stand in it twice. It owns nothing: neither
/// its destructor nor a removal frees a record, only releaseAllAttributes does. Elements must not be null,
/// except for releaseAllAttributes. Not locked: one thread at a time.
class LM_COMMONMFC_API CEListaAtributos : public CArray<CEAtributo*, CEAtributo*> {
public:
    CEListaAtributos();
    /// Frees the array and leaves the records alone.
    ~CEListaAtributos() override;

    /// Appends a record; returns it.
    CEAtributo* AdicionarAtributo(CEAtributo* atributo);
    /// The first record whose tag equals `tag` ignoring case, else null.
    CEAtributo* GetAtributo(RZString tag);

    /// @name The first record that plays a role, by any of the role's names, else null
    /// @{
    CEAtributo* GetAtributoCabo();   ///< Cable.
    CEAtributo* GetAtributoNumber(); ///< Number.
    CEAtributo* GetAtributoPin();    ///< Pin.
    CEAtributo* GetAtributoPosCtt(); ///< Contact position.
    CEAtributo* GetAtributoStrip();  ///< Terminal strip.
    CEAtributo* GetAtributoTag();    ///< Tag, that is the name of a component.
    /// @}

    /// Takes the first record whose tag equals `tag` ignoring case out of the list, if there is one. The
    /// record lives on: a caller that wants it gone keeps the pointer and deletes it.
    void RemoveAttribute(RZString tag);

    /// @name Takes every record that plays a role out of the list; the records live on
    /// @{
    void RemoveAttributeCabo();
    void RemoveAttributeNumber();
    void RemoveAttributePin();
    void RemoveAttributePosCtt();
    void RemoveAttributeStrip();
    void RemoveAttributeTag();
    /// @}

    /// Deletes every record, from the last to the first, and empties the list, which can be used again. An
    /// empty list stays as it is, its spare memory included.
    void releaseAllAttributes();

    void* operator new(std::size_t size);
    void operator delete(void* block) noexcept;
};
