// SPDX-License-Identifier: MIT
// From the bytes of a drawing file to text. From R2007 on files hold UTF-8; before it, the code page that the
// header names. In all of them \U+XXXX stands for a unit, \M+nXXXX for a character of an Asian code page, and
// ^X for a control unit.
#pragma once

#include "drawing/odstring.h"

#include <memory>
#include <string>
#include <string_view>

namespace lm::drawing {

class TextDecoder {
public:
    /// UTF-8.
    TextDecoder();
    ~TextDecoder();
    /// Copies share what a decoder remembers; they belong to one thread.
    TextDecoder(const TextDecoder&);
    TextDecoder& operator=(const TextDecoder&);
    TextDecoder(TextDecoder&&) noexcept;
    TextDecoder& operator=(TextDecoder&&) noexcept;

    /// A decoder for the name of a code page as headers spell it, in any case. An unknown name, "UNDEFINED"
    /// and none at all stand for Windows-1252.
    static TextDecoder forCodePage(std::string_view name);

    /// The text of a value: code page, escapes and caret forms undone. Bytes that the code page doesn't know
    /// become the units of their own numbers, and `bad` is set. Bytes 0 are left out.
    OdString decode(std::string_view bytes, bool& bad) const;
    /// Decoded text of many equal values: tags, names. The same bytes give the same buffer.
    OdString decodeShared(std::string_view bytes, bool& bad) const;

    /// Whether bytes are text of a single-byte code page or of UTF-8, so that bytes below 0x80 are always
    /// themselves.
    bool isAsciiSafe() const;
    /// What the bytes are: "UTF-8", or a name that all headers' names for one code page share.
    const char* page() const;

private:
    struct State;
    std::shared_ptr<State> m_state;
};

} // namespace lm::drawing
