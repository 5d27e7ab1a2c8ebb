// SPDX-License-Identifier: MIT
// CString: the text of the framework, a value of 16-bit units. It goes to QString and back without loss.
//
//     CString text(units);     text.TrimRight(set);     if (text.CompareNoCase(other) == 0) ...
#pragma once

#include "framework/values/export.h"
#include "system/wide.h"

#include <QString>

/// Wide text, exact in all units. Indexes and lengths count units. Functions that take a pointer read up to
/// its first 0 unit and take null for empty text. Case goes by the one table of the system (system/wide.h).
class LM_VALUES_API CString {
public:
    CString() = default;
    CString(const unsigned short* text);
    /// A text of one unit.
    explicit CString(unsigned short unit) : m_text(1, unit) {}
    /// All units of the view, 0 units too.
    explicit CString(lm::WideView text);
    /// All units of the string, 0 units too.
    CString(const QString& text);

    CString& operator=(const unsigned short* text);

    /// The internal buffer, closed by a 0 unit; valid until the text changes.
    operator const unsigned short*() const noexcept { return m_text.c_str(); }
    QString toQString() const;
    lm::WideView view() const noexcept { return m_text; }

    int GetLength() const noexcept { return static_cast<int>(m_text.size()); }
    bool IsEmpty() const noexcept { return m_text.empty(); }
    void Empty() noexcept { m_text.clear(); }
    /// The unit at an index from 0 to GetLength(), where the closing 0 stands; another index raises
    /// CInvalidArgException.
    unsigned short GetAt(int index) const;
    /// Writes a unit at an index below GetLength(); another index raises CInvalidArgException.
    void SetAt(int index, unsigned short unit);

    CString& operator+=(const CString& text);
    CString& operator+=(const unsigned short* text);
    CString& operator+=(unsigned short unit);

    /// A new block of memory with the units and a closing 0, another one at each call. The caller gives it to
    /// lm::values::freeSystemString.
    unsigned short* AllocSysString() const;

    /// Order by unsigned units: -1, 0 or 1.
    int Compare(const CString& other) const noexcept { return lm::system::wideCompare(m_text, other.m_text); }
    /// Order that ignores case; 0 for equal texts.
    int CompareNoCase(const CString& other) const noexcept {
        return lm::system::compareNoCase(m_text, other.m_text);
    }
    CString& MakeUpper();
    CString& MakeLower();

    /// Index of the first occurrence at or behind `start`, else -1. Empty text is found at `start`.
    int Find(unsigned short unit, int start = 0) const noexcept;
    int Find(const CString& text, int start = 0) const noexcept;
    /// Index of the last occurrence, else -1.
    int ReverseFind(unsigned short unit) const noexcept;

    /// Parts of the text: a negative number counts as 0, and what reaches beyond the end is cut there.
    CString Left(int count) const;
    CString Right(int count) const;
    CString Mid(int first) const;
    CString Mid(int first, int count) const;

    /// Replaces every occurrence from left to right in one pass and gives their number. Replaced text isn't
    /// read again; an empty `from` changes nothing.
    int Replace(const CString& from, const CString& to);

    /// Removes white space at both ends.
    CString& Trim();
    /// Removes units that occur in `set` at both ends, at the left or at the right; an empty set removes
    /// nothing.
    CString& Trim(const CString& set);
    CString& TrimLeft(const CString& set);
    CString& TrimRight(const CString& set);

    /// Makes the text of a pattern: each "%d" (also i, u, x, X, with flags, width and precision) stands for
    /// the value, "%%" for a percent sign. Everything else is copied as it stands.
    void Format(const unsigned short* pattern, int value);

    friend CString operator+(const CString& a, const CString& b) { return CString(a) += b; }
    friend CString operator+(const CString& a, const unsigned short* b) { return CString(a) += b; }
    friend CString operator+(const unsigned short* a, const CString& b) { return CString(a) += b; }
    friend CString operator+(const CString& a, unsigned short b) { return CString(a) += b; }

    friend bool operator==(const CString& a, const CString& b) noexcept {
        return lm::system::wideEquals(a.m_text, b.m_text);
    }
    friend bool operator==(const CString& a, const unsigned short* b) noexcept {
        const std::size_t size = lm::system::wideLength(b);
        return size == 0 ? a.m_text.empty() : lm::system::wideEquals(a.m_text, lm::WideView(b, size));
    }
    friend bool operator<(const CString& a, const CString& b) noexcept { return a.Compare(b) < 0; }

private:
    lm::WideString m_text;
};

namespace lm::values {

/// Gives back a block of CString::AllocSysString; null is allowed.
LM_VALUES_API void freeSystemString(unsigned short* block) noexcept;

/// Number of blocks of AllocSysString that are alive now. For tests that look for what was left behind.
LM_VALUES_API std::size_t liveSystemStrings() noexcept;

} // namespace lm::values
