// SPDX-License-Identifier: MIT
#include "framework/values/cstring.h"

#include "framework/values/exceptions.h"

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <new>

using lm::WideChar;
using lm::WideView;

namespace {

std::atomic<std::size_t> liveBlocks{0};

/// A count or a start as the parts of a text take it: 0 for a negative number, else at most `limit`.
std::size_t clamped(int number, std::size_t limit) {
    return number < 0 ? 0 : std::min(static_cast<std::size_t>(number), limit);
}

int indexOf(std::size_t at) {
    return at == WideView::npos ? -1 : static_cast<int>(at);
}

} // namespace

CString::CString(const unsigned short* text) : CString(WideView(text, lm::system::wideLength(text))) {}

CString::CString(lm::WideView text) {
    if (!text.empty())
        m_text = text; // an empty view may lack a pointer, which the string's copying doesn't take
}

CString::CString(const QString& text)
    : m_text(reinterpret_cast<const WideChar*>(text.utf16()), static_cast<std::size_t>(text.size())) {}

CString& CString::operator=(const unsigned short* text) {
    m_text.assign(text, lm::system::wideLength(text));
    return *this;
}

QString CString::toQString() const {
    return QString(reinterpret_cast<const QChar*>(m_text.data()), static_cast<qsizetype>(m_text.size()));
}

unsigned short CString::GetAt(int index) const {
    if (index < 0 || index > GetLength()) AfxThrowInvalidArgException();
    return m_text[static_cast<std::size_t>(index)];
}

void CString::SetAt(int index, unsigned short unit) {
    if (index < 0 || index >= GetLength()) AfxThrowInvalidArgException();
    m_text[static_cast<std::size_t>(index)] = unit;
}

CString& CString::operator+=(const CString& text) {
    m_text += text.m_text;
    return *this;
}

CString& CString::operator+=(const unsigned short* text) {
    m_text.append(text, lm::system::wideLength(text));
    return *this;
}

CString& CString::operator+=(unsigned short unit) {
    m_text += unit;
    return *this;
}

unsigned short* CString::AllocSysString() const {
    const std::size_t units = m_text.size() + 1;
    auto* block = static_cast<unsigned short*>(std::malloc(units * sizeof(unsigned short)));
    if (block == nullptr) throw std::bad_alloc();
    std::copy_n(m_text.c_str(), units, block);
    ++liveBlocks;
    return block;
}

CString& CString::MakeUpper() {
    for (WideChar& unit : m_text) unit = lm::system::toUpper(unit);
    return *this;
}

CString& CString::MakeLower() {
    for (WideChar& unit : m_text) unit = lm::system::toLower(unit);
    return *this;
}

int CString::Find(unsigned short unit, int start) const noexcept {
    return indexOf(view().find(unit, clamped(start, m_text.size())));
}

int CString::Find(const CString& text, int start) const noexcept {
    return indexOf(view().find(text.view(), clamped(start, m_text.size())));
}

int CString::ReverseFind(unsigned short unit) const noexcept {
    return indexOf(view().rfind(unit));
}

CString CString::Left(int count) const {
    return CString(view().substr(0, clamped(count, m_text.size())));
}

CString CString::Right(int count) const {
    return CString(view().substr(m_text.size() - clamped(count, m_text.size())));
}

CString CString::Mid(int first) const {
    return CString(view().substr(clamped(first, m_text.size())));
}

CString CString::Mid(int first, int count) const {
    const std::size_t from = clamped(first, m_text.size());
    return CString(view().substr(from, clamped(count, m_text.size() - from)));
}

int CString::Replace(const CString& from, const CString& to) {
    if (from.IsEmpty()) return 0;
    lm::WideString result;
    int count = 0;
    std::size_t rest = 0;
    for (std::size_t at; (at = m_text.find(from.m_text, rest)) != WideView::npos; ++count) {
        result.append(m_text, rest, at - rest).append(to.m_text);
        rest = at + from.m_text.size();
    }
    if (count > 0) m_text = std::move(result.append(m_text, rest));
    return count;
}

CString& CString::Trim() {
    m_text = lm::WideString(lm::system::trimmed(m_text));
    return *this;
}

CString& CString::Trim(const CString& set) {
    const lm::WideString units = set.m_text; // a copy, since the set may be this text
    return TrimRight(CString(WideView(units))).TrimLeft(CString(WideView(units)));
}

CString& CString::TrimLeft(const CString& set) {
    m_text.erase(0, std::min(view().find_first_not_of(set.view()), m_text.size()));
    return *this;
}

CString& CString::TrimRight(const CString& set) {
    m_text.erase(view().find_last_not_of(set.view()) + 1); // npos + 1 is 0: everything goes
    return *this;
}

namespace lm::values {

void freeSystemString(unsigned short* block) noexcept {
    if (block == nullptr) return;
    std::free(block);
    --liveBlocks;
}

std::size_t liveSystemStrings() noexcept {
    return liveBlocks;
}

} // namespace lm::values
