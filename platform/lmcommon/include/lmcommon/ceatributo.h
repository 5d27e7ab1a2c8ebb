// SPDX-License-Identifier: MIT
// CEAtributo: one attribute of a block as it was when it was read. Searches build these records by the
// million.
#pragma once

#include "lmcommon/export.h"

#include "drawing/alloc.h"
#include "drawing/objectid.h"
#include "host/hoststring.h"

#include <new>
#include <utility>

/// An attribute: tag, prompt, value, object and invisibility. Never changes after construction. Texts share
/// their buffers with the drawing and with the strings handed out. Records come from odrxAlloc, so that any
/// module may free them.
class LM_COMMON_API CEAtributo {
public:
    /// `objectId` is the drawing object behind the record, null for a virtual attribute.
    CEAtributo(OdString tag, OdString prompt, OdString valor, OdDbObjectId objectId, bool invisivel)
        : m_tag(std::move(tag)), m_prompt(std::move(prompt)), m_valor(std::move(valor)), m_objectId(objectId),
          m_invisivel(invisivel) {}
    ~CEAtributo() = default;

    /// The tag, exactly as given in.
    CHostString GetTag() const { return m_tag; }
    /// The value, exactly as given in.
    CHostString GetValor() const { return m_valor; }
    /// The prompt, exactly as given in.
    CHostString GetPrompt() const { return m_prompt; }
    /// Whether the attribute is invisible.
    bool GetInvisivel() const { return m_invisivel; }
    /// The drawing object behind the record, null for a virtual attribute.
    OdDbObjectId GetObjectId() const { return m_objectId; }

    /// Whether a tag names a connection: "LIGACAO", "CONNECTION" or "CONEXION", ignoring case.
    static bool isAttLigacao(CHostString tag);

    static void* operator new(std::size_t size) {
        if (void* block = odrxAlloc(size)) return block;
        throw std::bad_alloc();
    }
    static void* operator new(std::size_t, void* place) noexcept { return place; }
    static void operator delete(void* block) noexcept { odrxFree(block); }
    static void operator delete(void*, void*) noexcept {}

private:
    OdString m_tag;
    OdString m_prompt;
    OdString m_valor;
    OdDbObjectId m_objectId;
    bool m_invisivel;
};
