// SPDX-License-Identifier: MIT
// CEBloco: one block reference with its attributes by tag, as a search has read it.
//
//     if (CEAtributo* tag = bloco->GetAtributo("TAG")) use(tag->GetValor());
#pragma once

#include "export.h"
#include "text/cemap.h"
#include "text/rzid.h"
#include "text/rzstring.h"

#include "lmcommon/ceatributo.h"

#include <cstddef>

namespace lm::cad {
struct BlockAccess;
}

/// A snapshot of a block. It never deletes its attribute records, and a copy points at the same records:
/// whoever received them frees them, once. Keys are exact here, unlike in CEListaAtributos: "TAG" and "tag"
/// are two entries. Not locked: one thread at a time.
class LM_COMMONMFC_API CEBloco {
public:
    /// A block without attributes and with a null id.
    CEBloco(RZString nome);
    CEBloco(const CEBloco& outro);
    CEBloco& operator=(const CEBloco& outro);
    ~CEBloco();

    /// The block's name; for a virtual block the name that its record holds.
    RZString GetNome();
    /// The object that the block was read from; null until it is set.
    RZID GetObjectId();
    void SetObjectId(RZID objectId);

    /// Enters a record under its tag (as an RZString, so in the narrow form). A record that was there under
    /// this tag is dropped without being deleted. Returns the number of entries. `atributo` must not be null.
    int AdicionarAtributo(CEAtributo* atributo);
    /// The record under exactly this tag, or null.
    CEAtributo* GetAtributo(RZString tag);

    void* operator new(std::size_t size);
    void operator delete(void* block) noexcept;

private:
    friend struct lm::cad::BlockAccess;
    RZString m_nome;
    RZID m_objectId;
    CEMap<CEAtributo*> m_atributos;
};
