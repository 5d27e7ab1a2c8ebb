// SPDX-License-Identifier: MIT
// RZString: the one text type of the library's interfaces, a value of 16-bit units between the texts of the
// drawing (OdString), of the host (CHostString), of the framework (CString) and of Qt (QString).
//
//     RZString layer(head, "$", name);                       // any number of parts from 2 to 30
//     if (layer.startsWith("RZ_") && layer != other) ...
//
// Two routes stay apart. OdString, CString and wide pointers come in exactly. CHostString, QString and narrow
// pointers pass through code page 1252, whether they are constructed from, assigned, compared or appended: a
// unit that the code page lacks becomes "?". On the way out every route is exact.
#pragma once

#include "export.h"
#include "text/joinedtext.h"
#include "text/units.h"

#include "drawing/handle.h"
#include "framework/values/cstring.h"

#include <QString>

class CHostString;
class RZID;
class RZStringList;
struct hst_resbufW;

/// Text by value: each copy copies the units. Length, index and order count units; surrogate pairs are two.
/// The buffer is always closed by a 0 unit. A text may hold a 0 unit; it ends there for every conversion and
/// for most operations, and such a text isn't even equal to itself, since the right side of a comparison ends
/// at its 0.
class LM_COMMONMFC_API RZString : private lm::text::JoinedText<30> {
public:
    /// The empty text, and the text of the one unit U+000C that separates the halves of a composite key. Both
    /// are ready before the other constants of the library are made.
    static const RZString empty;
    static const RZString char12;

    constexpr RZString() = default;
    RZString(const RZString&) = default;
    RZString(RZString&&) noexcept = default;
    ~RZString() = default;

    /// The concatenation of 2 to 30 texts: the first one whole, each further one up to its first 0 unit.
    using JoinedText::JoinedText;

    /// Up to the first 0 unit; null gives the empty text.
    RZString(const unsigned short* text);
    RZString(unsigned short* text) : RZString(static_cast<const unsigned short*>(text)) {}
    /// Narrow text in code page 1252; null gives the empty text.
    RZString(const char* text);
    RZString(const CString& text) : RZString(lm::text::cut(text.view())) {}
    RZString(const OdString& text);
    /// By the narrow route.
    RZString(const CHostString& text);
    RZString(const QString& text);
    /// The handle's hexadecimal text.
    RZString(OdDbHandle handle);
    /// The text of the identifier's handle.
    explicit RZString(const RZID& id);
    /// All units of the view.
    explicit RZString(lm::WideView text) : JoinedText(lm::text::FromUnits{}, text) {}
    /// Takes over the units of a string that ends.
    explicit RZString(lm::WideString&& text) : JoinedText(lm::text::FromUnits{}, std::move(text)) {}

    /// Decimal text with "0" in front up to `width` units. The sign counts as part of the text: -5 with width
    /// 4 is "00-5".
    RZString(int value, int width);
    /// A number as printf writes it, always with a decimal point: "%.<decimals>f" for `decimals` of 0 or
    /// more, whatever `general` says; else "%g" if `general`, else "%f".
    RZString(float value, bool general, int decimals) : RZString(double(value), general, decimals) {}
    RZString(double value, bool general, int decimals);

    /// Assignments convert like the constructor of the same type, but a wide pointer must not be null.
    RZString& operator=(const RZString&) = default;
    RZString& operator=(RZString&&) noexcept = default;
    RZString& operator=(const CString& text) { return *this = RZString(text); }
    RZString& operator=(const CHostString& text) { return *this = RZString(text); }
    RZString& operator=(const OdString& text);
    RZString& operator=(const QString& text) { return *this = RZString(text); }
    RZString& operator=(const char* text) { return *this = RZString(text); }
    RZString& operator=(const unsigned short* text);
    /// The hexadecimal text of the identifier's handle.
    RZString& operator=(const RZID& id);

    /// The internal buffer, valid until the text changes.
    operator const unsigned short*() const noexcept { return m_text.c_str(); }
    /// A new block at each call, which the caller gives to lm::values::freeSystemString.
    operator unsigned short*() const;
    operator CString() const;
    operator CHostString() const;
    operator OdString() const;
    operator QString() const;
    /// The text read as hexadecimal; the null handle if it isn't.
    operator OdDbHandle() const;
    /// A record of type RTSTR without a successor. Its text is a copy by the C runtime's malloc and belongs
    /// to whoever takes the record.
    operator hst_resbufW() const;

    /// All units, for reading without a copy; valid until the text changes.
    lm::WideView view() const noexcept { return m_text; }
    const lm::WideString& str() const noexcept { return m_text; }

    RZString operator+(const RZString& text) const { return plus(text.view()); }
    RZString operator+(const CString& text) const { return plus(lm::text::cut(text.view())); }
    RZString operator+(const CHostString& text) const { return plus(RZString(text).view()); }
    RZString operator+(const OdString& text) const { return plus(lm::text::cut(text.view())); }
    RZString operator+(const QString& text) const { return plus(RZString(text).view()); }
    RZString operator+(unsigned short unit) const { return plus(lm::WideView(&unit, 1)); }
    RZString operator+(const char* text) const { return plus(RZString(text).view()); }
    RZString operator+(const unsigned short* text) const;

    void operator+=(const RZString& text) { m_text += text.m_text; }
    void operator+=(const CString& text) { m_text += lm::text::cut(text.view()); }
    void operator+=(const CHostString& text) { m_text += RZString(text).m_text; }
    void operator+=(const OdString& text) { m_text += lm::text::cut(text.view()); }
    void operator+=(const QString& text) { m_text += RZString(text).m_text; }
    void operator+=(unsigned short unit) { m_text += unit; }
    void operator+=(const char* text) { m_text += RZString(text).m_text; }
    void operator+=(const unsigned short* text);

    /// Equal lengths and units. False for a right side that holds a 0 unit.
    bool operator==(const RZString& other) const noexcept {
        return m_text.size() == other.m_text.size()
                   ? lm::text::equalAndWithoutZero(m_text.data(), other.m_text.data(), m_text.size())
                   : equalsInLowBits(other);
    }
    bool operator!=(const RZString& other) const noexcept { return !(*this == other); }

/// The order is by unsigned unit, the shorter text first where one is the start of the other; it knows
/// neither case nor numbers. The right side is converted as by the constructor of its type and ends at its
/// first 0 unit.
#define LM_TEXT_ORDER(Operand, units)                                                                        \
    bool operator<(Operand other) const {                                                                    \
        return compare(units) < 0;                                                                           \
    }                                                                                                        \
    bool operator<=(Operand other) const {                                                                   \
        return compare(units) <= 0;                                                                          \
    }                                                                                                        \
    bool operator>(Operand other) const {                                                                    \
        return compare(units) > 0;                                                                           \
    }                                                                                                        \
    bool operator>=(Operand other) const {                                                                   \
        return compare(units) >= 0;                                                                          \
    }
#define LM_TEXT_COMPARISONS(Operand, units)                                                                  \
    bool operator==(Operand other) const {                                                                   \
        return equals(units);                                                                                \
    }                                                                                                        \
    bool operator!=(Operand other) const {                                                                   \
        return !equals(units);                                                                               \
    }                                                                                                        \
    LM_TEXT_ORDER(Operand, units)

    LM_TEXT_ORDER(const RZString&, lm::text::cut(other.view()))
    LM_TEXT_COMPARISONS(const CString&, lm::text::cut(other.view()))
    LM_TEXT_COMPARISONS(const CHostString&, RZString(other).view())
    LM_TEXT_COMPARISONS(const OdString&, lm::text::cut(other.view()))
    LM_TEXT_COMPARISONS(const QString&, RZString(other).view())
    LM_TEXT_COMPARISONS(const unsigned short*, lm::WideView(other, lm::system::wideLength(other)))
#undef LM_TEXT_COMPARISONS
#undef LM_TEXT_ORDER

    /// Narrow text, taken as by its constructor. A template, so that other types never convert to a pointer
    /// here.
    template<lm::text::NarrowText Text>
    bool operator==(const Text& other) const {
        return equalsNarrow(other);
    }

    /// Whether the texts are equal but for case, by the system's one table. Both end at their first 0 unit.
    bool equalsNoCase(RZString other) const {
        return matchesNoCase(lm::text::cut(other.view()));
    }
    /// The same without a copy of the other text, which must hold no 0 unit.
    bool matchesNoCase(lm::WideView other) const noexcept {
        return lm::system::equalsNoCase(lm::text::cut(m_text), other);
    }

    /// Stored number of units, behind a 0 unit too.
    unsigned int length() const noexcept {
        return static_cast<unsigned int>(m_text.size());
    }
    bool isEmpty() const noexcept {
        return m_text.empty();
    }
    /// The unit at an index below the length, which isn't checked.
    unsigned short getAt(int index) const noexcept {
        return m_text.data()[index];
    }
    void setAt(int index, unsigned short unit) noexcept {
        m_text.data()[index] = unit;
    }

    // From here on a text ends at its first 0 unit, and what these functions make ends there too.

    RZString asLower() const;
    RZString asUpper() const;
    void makeLower();
    void makeUpper();

    /// Index of the first or last occurrence, else -1. A unit of 0 is never found.
    int firstIndexOf(unsigned short unit) const noexcept;
    int lastIndexOf(unsigned short unit) const noexcept;
    /// Number of occurrences; 0 for a unit of 0.
    int charCount(unsigned short unit) const noexcept;
    bool contains(unsigned short unit) const noexcept {
        return firstIndexOf(unit) != -1;
    }
    /// Index of the first occurrence of a text, else -1. Empty text stands at 0.
    int find(RZString text) const noexcept;
    bool contains(RZString text) const noexcept;
    /// Whether the first or last unit is this one; false for empty text.
    bool startsWith(unsigned short unit) const noexcept;
    bool endsWith(unsigned short unit) const noexcept;
    /// Whether the text begins or ends with another, case counting. True for an empty one.
    bool startsWith(RZString text) const noexcept;
    bool endsWith(RZString text) const noexcept;

    /// Parts of the text: a negative number counts as 0, and what reaches beyond the end is cut there.
    RZString left(int count) const;
    RZString right(int count) const;
    RZString mid(int first) const;
    RZString mid(int first, int count) const;

    /// Replaces every occurrence from left to right in one pass; replaced text isn't read again. An empty
    /// `from` changes nothing.
    void replace(RZString from, RZString to);
    /// Removes white space at both ends (U+0009 to U+000D, so the separator of composite keys as well, the
    /// blank, U+0085 and U+00A0).
    RZString& trim();
    /// Removes the units that occur in `set` at both ends, at the left or at the right.
    RZString& trim(RZString set);
    RZString& trimLeft(RZString set);
    RZString& trimRight(RZString set);

    /// The number at the start, behind white space and a sign; what follows it is passed over. 0 without a
    /// number, the nearest limit for one beyond the range.
    int toInt() const noexcept;
    float toFloat() const;
    /// Widens every run of decimal digits to ten with zeros in front, so that the plain order sorts by
    /// number. A longer run is cut into tens from the left, and its rest is widened like a run of its own.
    void normalizeNumbers();

    /// The fields between separators, in order. Empty fields are dropped, so the list may be empty. A text as
    /// argument is a set of separating units. A 0 unit in the text separates as well.
    RZStringList split(unsigned short separator) const;
    RZStringList split(RZString separators) const;
    /// Two fields, or one, which clears `b`. Otherwise false, and the outputs stay as they were.
    bool split(RZString separators, RZString& a, RZString& b) const;
    /// Exactly three or four fields. Otherwise false, and the outputs stay as they were.
    bool split(RZString separators, RZString& a, RZString& b, RZString& c) const;
    bool split(RZString separators, RZString& a, RZString& b, RZString& c, RZString& d) const;

private:
    friend class lm::text::TextStore;
    struct Constant {};
    constexpr RZString(Constant, unsigned short unit) : JoinedText(lm::text::FromUnits{}, unit) {}

    explicit RZString(std::string_view bytes);
    RZString plus(lm::WideView text) const;
    /// Against units without a 0 among them.
    bool equals(lm::WideView other) const noexcept;
    /// For lengths that differ: they may still agree in the low 32 bits, and the order decides then.
    bool equalsInLowBits(const RZString& other) const noexcept {
        return length() == other.length() && compare(lm::text::cut(other.m_text)) == 0;
    }
    bool equalsNarrow(const char* other) const noexcept;
    /// -1, 0 or 1, against units without a 0 among them.
    int compare(lm::WideView other) const noexcept {
        return lm::system::wideCompare(m_text, other);
    }
};

static_assert(sizeof(RZString) == sizeof(lm::WideString), "a text is its units and nothing else");

/// A null pointer counts as empty text.
LM_COMMONMFC_API RZString operator+(const char* left, RZString right);
LM_COMMONMFC_API RZString operator+(const unsigned short* left, RZString right);
LM_COMMONMFC_API bool operator==(CString left, RZString right);

// Splitting gives lists, so whoever has the text has them too.
#include "text/rzstringlist.h"
