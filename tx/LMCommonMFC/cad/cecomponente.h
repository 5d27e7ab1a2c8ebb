// SPDX-License-Identifier: MIT
// CEComponente: one component of the catalogue with its attributes by tag.
#pragma once

#include "export.h"
#include "text/cemap.h"
#include "text/rzstring.h"

#include "framework/values/containers.h"
#include "lmcommon/ceatributo.h"

#include <cstddef>

/// A snapshot of a catalogue component. It never deletes its attribute records: whoever received them frees
/// them. Not locked: one thread at a time.
class LM_COMMONMFC_API CEComponente {
public:
    CEComponente();
    CEComponente(RZString key, RZString descricao);
    /// Copies `textos`, which have no reader here.
    CEComponente(RZString key, RZString descricao, CStringArray& textos);

    /// The component's key.
    RZString GetKey();
    /// The component's description.
    RZString GetDescricao();

    /// Enters a record under its tag, in the spelling of the record (as an RZString, so in the narrow form).
    /// A record that was there under this tag is dropped without being deleted. `atributo` must not be null.
    void AdicionarAtributo(CEAtributo* atributo);
    /// The record under exactly this tag, or null.
    CEAtributo* GetAtributo(RZString tag);

    void* operator new(std::size_t size);
    void operator delete(void* block) noexcept;

private:
    RZString m_texto; // never filled and never read: it holds its place in the layout that modules share
    RZString m_key;
    RZString m_descricao;
    CEMap<CEAtributo*> m_atributos;
    CStringArray m_textos;
};
