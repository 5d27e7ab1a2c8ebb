// SPDX-License-Identifier: MIT
#include "text/rzstringlist.h"

#include "framework/values/containers.h"

#include <memory>

using lm::WideView;
using lm::text::cut;

template class CEList<RZString>;

bool CEMapComparador::operator()(const std::basic_string<unsigned short>& a,
                                 const std::basic_string<unsigned short>& b) const {
    return a.size() != b.size() ? a.size() < b.size() : lm::system::wideCompare(a, b) < 0;
}

RZStringList::RZStringList(QList<QString>* strings) {
    if (strings == nullptr) return;
    for (const QString& string : *strings) addTail(RZString(string));
}

RZStringList::RZStringList(CStringList* strings) {
    if (strings == nullptr) return;
    for (POSITION at = strings->GetHeadPosition(); at != nullptr;) addTail(RZString(strings->GetNext(at)));
}

bool RZStringList::containsNoCase(RZString text) const {
    const WideView wanted = cut(text.view());
    for (const RZString& item : *this)
        if (item.matchesNoCase(wanted)) return true;
    return false;
}

bool RZStringList::startsWithAnyNoCase(RZString text) const {
    const WideView whole = cut(text.view());
    for (const RZString& item : *this) {
        const WideView prefix = cut(item.view());
        if (lm::system::equalsNoCase(whole.substr(0, prefix.size()), prefix)) return true;
    }
    return false;
}

CStringList* RZStringList::toCStringList() const {
    auto list = std::make_unique<CStringList>(10);
    for (const RZString& item : *this) list->AddTail(item);
    return list.release();
}

RZString RZStringList::toRZString(RZString separator) const {
    RZString result;
    for (const RZString& item : *this) {
        result += item;
        result += separator;
    }
    return result.trimRight(separator);
}
