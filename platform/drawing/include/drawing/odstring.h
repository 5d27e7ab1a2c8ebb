// SPDX-License-Identifier: MIT
// OdString: the text of the drawing layer. A value of 16-bit units that shares its buffer between copies, so
// that handing out the tag or the text of an attribute costs one counted reference and no copy.
//
//     OdString name(u"NUMERO"_w.c_str());     const unsigned short* units = name.c_str();
#pragma once

#include "drawing/export.h"
#include "system/wide.h"

/// Wide text of the drawing layer, exact in all units. A null pointer counts as empty text. Copies share one
/// buffer with an atomic count; a text is never changed in place, so copies can be read on any thread.
class LM_DRAWING_API OdString {
public:
    OdString() noexcept : m_data(nullptr) {}
    OdString(const OdString& other) noexcept;
    OdString(OdString&& other) noexcept : m_data(other.m_data) { other.m_data = nullptr; }
    /// Units up to the first 0 unit.
    OdString(const unsigned short* text);
    /// All units of the view, a 0 unit inside it too.
    explicit OdString(lm::WideView text);
    /// Narrow text of code page 1252. The object holds the narrow form alone until syncUnicode or any reader
    /// of the wide form makes the other.
    OdString(const char* text);
    ~OdString();

    OdString& operator=(const OdString& other) noexcept;
    OdString& operator=(OdString&& other) noexcept;
    OdString& operator=(const unsigned short* text) { return *this = OdString(text); }

    /// The units, closed by a 0 unit. Valid until this object changes or ends.
    const unsigned short* c_str() const;
    /// Number of units.
    std::size_t getLength() const;
    bool isEmpty() const { return getLength() == 0; }
    lm::WideView view() const { return lm::WideView(c_str(), getLength()); }

    /// Whether only the narrow form is there.
    bool isNarrowOnly() const noexcept;
    /// Makes the wide form from the narrow one where that is missing.
    void syncUnicode() const;

    /// Order by unsigned units: -1, 0 or 1.
    int compare(const OdString& other) const { return lm::system::wideCompare(view(), other.view()); }

    friend bool operator==(const OdString& a, const OdString& b) {
        return a.m_data == b.m_data || lm::system::wideEquals(a.view(), b.view());
    }
    friend bool operator!=(const OdString& a, const OdString& b) { return !(a == b); }
    friend bool operator<(const OdString& a, const OdString& b) { return a.compare(b) < 0; }
    friend LM_DRAWING_API OdString operator+(const OdString& a, const OdString& b);

    /// Where the text lies, null for the empty text: to tell copies apart, and for the memory to be asked for
    /// it.
    const void* buffer() const noexcept { return m_data; }

private:
    struct Data;
    mutable Data* m_data; // null for the empty text
};

namespace lm::drawing {

/// Text of an ASCII constant of the code.
LM_DRAWING_API OdString odText(std::string_view ascii);

/// UTF-8 of a text, for messages and files.
LM_DRAWING_API std::string utf8(const OdString& text);

} // namespace lm::drawing
