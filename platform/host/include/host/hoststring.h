// SPDX-License-Identifier: MIT
// CHostString: the host's text. It holds wide text exactly and shares its buffer with OdString, so handing
// one out costs a counted reference. Only ansi_str loses what the code page lacks.
//
//     CHostString line = CHostString("[%2] %1").arg(message, number);
//     const char* bytes = line.ansi_str();
#pragma once

#include "host/export.h"

#include "drawing/odstring.h"

#include <QString>

#include <atomic>

/// Text of the host. Copies share one buffer and may be read on any thread; so may one object, which is why
/// the wide form is made at once and never on reading.
class LM_HOST_API CHostString {
public:
    CHostString() noexcept = default;
    CHostString(const CHostString& other) noexcept : m_text(other.m_text) {}
    CHostString(CHostString&& other) noexcept;
    /// Units up to the first 0 unit; null counts as empty.
    CHostString(const unsigned short* text) : m_text(text) {}
    /// Narrow text of code page 1252; null counts as empty.
    CHostString(const char* text) : m_text(text) { m_text.syncUnicode(); }
    /// All units of the text.
    CHostString(const QString& text);
    /// Shares the buffer; a text that holds its narrow form alone gets the wide one here.
    CHostString(const OdString& text) : m_text(text) { m_text.syncUnicode(); }
    /// All units of the view.
    explicit CHostString(lm::WideView text) : m_text(text) {}
    ~CHostString() { dropForms(); }

    CHostString& operator=(const CHostString& other) noexcept;
    CHostString& operator=(CHostString&& other) noexcept;

    /// The narrow form in code page 1252: one byte a unit, '?' for what it lacks. Valid until this object
    /// changes or ends.
    const char* ansi_str() const;
    /// The exact text. The reference is valid until this object changes or ends; binding it to a name doesn't
    /// prolong the life of a temporary object.
    operator const QString&() const;
    /// The exact text, sharing the buffer.
    operator OdString() const noexcept { return m_text; }

    /// The units, closed by a 0 unit. Valid until this object changes or ends.
    const unsigned short* c_str() const { return m_text.c_str(); }
    lm::WideView view() const { return m_text.view(); }
    std::size_t getLength() const { return m_text.getLength(); }
    bool isEmpty() const { return m_text.isEmpty(); }

    /// Order that ignores case by the system's one table: negative, 0 or positive.
    int compareNoCase(const CHostString& other) const {
        return lm::system::compareNoCase(view(), other.view());
    }

    /// This text with every "%1" replaced by `first`. The forms with more texts then replace every "%2", then
    /// every
    /// "%3", in what the step before gave: a "%2" that `first` brings along is replaced too.
    CHostString arg(const CHostString& first) const;
    CHostString arg(const CHostString& first, const CHostString& second) const;
    CHostString arg(const CHostString& first, const CHostString& second, const CHostString& third) const;

    friend bool operator==(const CHostString& a, const CHostString& b) { return a.m_text == b.m_text; }
    friend bool operator!=(const CHostString& a, const CHostString& b) { return !(a == b); }
    friend bool operator<(const CHostString& a, const CHostString& b) { return a.m_text < b.m_text; }

private:
    void dropForms() noexcept {
        if (m_narrow.load(std::memory_order_relaxed) != nullptr ||
            m_qt.load(std::memory_order_relaxed) != nullptr)
            freeForms();
    }
    void freeForms() noexcept;

    OdString m_text;
    // Other forms of the text, made when first asked for; whoever makes one first on several threads wins.
    mutable std::atomic<char*> m_narrow{nullptr};
    mutable std::atomic<QString*> m_qt{nullptr};
};
