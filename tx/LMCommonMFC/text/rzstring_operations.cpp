// SPDX-License-Identifier: MIT
// Case, searching, parts, editing and splitting.
#include "text/rzstring.h"

#include <algorithm>

using lm::WideChar;
using lm::WideString;
using lm::WideView;

namespace {

using lm::text::cut;

std::size_t clamped(int number, std::size_t limit) {
    return number < 0 ? 0 : std::min(static_cast<std::size_t>(number), limit);
}

int indexOf(std::size_t at) {
    return at == WideView::npos ? -1 : static_cast<int>(at);
}

WideString changed(WideView text, WideChar (*change)(WideChar) noexcept) {
    WideString result(text);
    for (WideChar& unit : result) unit = change(unit);
    return result;
}

WideView withoutLeft(WideView text, WideView set) {
    return text.substr(std::min(text.find_first_not_of(set), text.size()));
}

WideView withoutRight(WideView text, WideView set) {
    return text.substr(0, text.find_last_not_of(set) + 1); // npos + 1 is 0: nothing is left
}

/// The fields of a text as views; a 0 unit separates like a separator.
std::list<WideView> fieldsOf(WideView text, WideView separators) {
    std::list<WideView> fields;
    std::size_t first = 0;
    for (std::size_t at = 0; at <= text.size(); ++at) {
        const bool ends = at == text.size() || text[at] == 0 || separators.find(text[at]) != WideView::npos;
        if (!ends) continue;
        if (at > first) fields.push_back(text.substr(first, at - first));
        first = at + 1;
    }
    return fields;
}

RZStringList listOf(const std::list<WideView>& fields) {
    RZStringList list;
    for (const WideView field : fields) list.addTail(RZString(field));
    return list;
}

/// Writes the fields into as many outputs. They are copied first: an output may be the text that is split.
template<class... Output>
bool deal(WideView text, WideView separators, Output&... output) {
    const std::list<WideView> fields = fieldsOf(text, separators);
    if (fields.size() != sizeof...(Output)) return false;
    RZStringList copies = listOf(fields);
    ((output = copies.head(), copies.removeHead()), ...);
    return true;
}

} // namespace

RZString RZString::asLower() const {
    return RZString(changed(cut(m_text), lm::system::toLower));
}

RZString RZString::asUpper() const {
    return RZString(changed(cut(m_text), lm::system::toUpper));
}

void RZString::makeLower() {
    m_text = changed(cut(m_text), lm::system::toLower);
}

void RZString::makeUpper() {
    m_text = changed(cut(m_text), lm::system::toUpper);
}

int RZString::firstIndexOf(unsigned short unit) const noexcept {
    return indexOf(cut(m_text).find(unit));
}

int RZString::lastIndexOf(unsigned short unit) const noexcept {
    return indexOf(cut(m_text).rfind(unit));
}

int RZString::charCount(unsigned short unit) const noexcept {
    const WideView text = cut(m_text);
    return static_cast<int>(std::count(text.begin(), text.end(), unit));
}

int RZString::find(RZString text) const noexcept {
    return indexOf(cut(m_text).find(cut(text.m_text)));
}

bool RZString::contains(RZString text) const noexcept {
    return cut(m_text).find(cut(text.m_text)) != WideView::npos;
}

bool RZString::startsWith(unsigned short unit) const noexcept {
    return cut(m_text).starts_with(unit);
}

bool RZString::endsWith(unsigned short unit) const noexcept {
    return cut(m_text).ends_with(unit);
}

bool RZString::startsWith(RZString text) const noexcept {
    return cut(m_text).starts_with(cut(text.m_text));
}

bool RZString::endsWith(RZString text) const noexcept {
    return cut(m_text).ends_with(cut(text.m_text));
}

RZString RZString::left(int count) const {
    const WideView text = cut(m_text);
    return RZString(text.substr(0, clamped(count, text.size())));
}

RZString RZString::right(int count) const {
    const WideView text = cut(m_text);
    return RZString(text.substr(text.size() - clamped(count, text.size())));
}

RZString RZString::mid(int first) const {
    const WideView text = cut(m_text);
    return RZString(text.substr(clamped(first, text.size())));
}

RZString RZString::mid(int first, int count) const {
    const WideView text = cut(m_text);
    const std::size_t from = clamped(first, text.size());
    return RZString(text.substr(from, clamped(count, text.size() - from)));
}

void RZString::replace(RZString from, RZString to) {
    const WideView text = cut(m_text);
    const WideView pattern = cut(from.m_text);
    if (pattern.empty()) return;
    WideString result;
    std::size_t rest = 0;
    for (std::size_t at; (at = text.find(pattern, rest)) != WideView::npos; rest = at + pattern.size())
        result.append(text, rest, at - rest).append(cut(to.m_text));
    m_text = std::move(result.append(text, rest));
}

RZString& RZString::trim() {
    m_text = WideString(lm::system::trimmed(cut(m_text)));
    return *this;
}

RZString& RZString::trim(RZString set) {
    m_text = WideString(withoutLeft(withoutRight(cut(m_text), cut(set.m_text)), cut(set.m_text)));
    return *this;
}

RZString& RZString::trimLeft(RZString set) {
    m_text = WideString(withoutLeft(cut(m_text), cut(set.m_text)));
    return *this;
}

RZString& RZString::trimRight(RZString set) {
    m_text = WideString(withoutRight(cut(m_text), cut(set.m_text)));
    return *this;
}

RZStringList RZString::split(unsigned short separator) const {
    return listOf(fieldsOf(m_text, WideView(&separator, 1)));
}

RZStringList RZString::split(RZString separators) const {
    return listOf(fieldsOf(m_text, cut(separators.m_text)));
}

bool RZString::split(RZString separators, RZString& a, RZString& b) const {
    RZString none;
    if (deal(m_text, cut(separators.m_text), a, b)) return true;
    RZString only;
    if (!deal(m_text, cut(separators.m_text), only)) return false;
    a = std::move(only);
    b = std::move(none);
    return true;
}

bool RZString::split(RZString separators, RZString& a, RZString& b, RZString& c) const {
    return deal(m_text, cut(separators.m_text), a, b, c);
}

bool RZString::split(RZString separators, RZString& a, RZString& b, RZString& c, RZString& d) const {
    return deal(m_text, cut(separators.m_text), a, b, c, d);
}
