// SPDX-License-Identifier: MIT
// OdDbHandle: the permanent number of an object in its drawing, written as hexadecimal text.
#pragma once

#include "drawing/odstring.h"

/// A 64-bit handle; 0 is the null handle.
class LM_DRAWING_API OdDbHandle {
public:
    OdDbHandle() = default;
    OdDbHandle(unsigned long long value) : m_value(value) {}
    explicit OdDbHandle(const unsigned short* text) { *this = text; }

    /// Parses hexadecimal text of either case. After leading zeros are dropped, the whole text must be 1 to
    /// 16 digits; anything else, null and empty text too, gives the null handle. A prefix is never taken for
    /// the whole.
    OdDbHandle& operator=(const unsigned short* text);
    OdDbHandle& operator=(unsigned long long value) {
        m_value = value;
        return *this;
    }

    /// Upper-case hexadecimal text without leading zeros; "0" for the null handle.
    OdString ascii() const;
    bool isNull() const { return m_value == 0; }
    unsigned long long value() const { return m_value; }

    friend bool operator==(OdDbHandle a, OdDbHandle b) { return a.m_value == b.m_value; }
    friend bool operator!=(OdDbHandle a, OdDbHandle b) { return a.m_value != b.m_value; }
    friend bool operator<(OdDbHandle a, OdDbHandle b) { return a.m_value < b.m_value; }

private:
    unsigned long long m_value = 0;
};
