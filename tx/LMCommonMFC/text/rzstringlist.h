// SPDX-License-Identifier: MIT
// RZStringList: a list of texts, passed by value.
//
//     RZStringList names{"NUMERO", "TAG"};     if (names.containsNoCase(tag)) ...
#pragma once

#include "text/celist.h"
#include "text/cemap.h"
#include "text/rzstring.h"

#include <QList>

class CStringList;

extern template class LM_COMMONMFC_API CEList<RZString>;

/// A list of texts. An index outside, or the head of an empty list, gives the empty text.
class LM_COMMONMFC_API RZStringList : public CEList<RZString> {
public:
    RZStringList() = default;
    RZStringList(std::initializer_list<RZString> items) : CEList(items) {}
    /// One element for each string, by the narrow route of RZString; null gives an empty list.
    RZStringList(QList<QString>* strings);
    /// One element for each text, in list order; null gives an empty list.
    RZStringList(CStringList* strings);

    /// Whether an element equals `text` but for case.
    bool containsNoCase(RZString text) const;
    /// Whether `text` begins with one of the elements, ignoring case: the elements are the prefixes. An empty
    /// element begins every text.
    bool startsWithAnyNoCase(RZString text) const;
    /// A new list that the caller deletes.
    CStringList* toCStringList() const;
    /// The elements with `separator` between them. The units of the separator are then removed from the right
    /// end as a set, from the end of the last element too.
    RZString toRZString(RZString separator) const;
};
