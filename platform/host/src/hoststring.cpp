// SPDX-License-Identifier: MIT
#include "host/hoststring.h"

#include "system/codepage.h"

#include <cstring>
#include <utility>

namespace {

/// `text` with every occurrence of '%' and the digit replaced by `with`, in one pass.
lm::WideString filled(lm::WideView text, char digit, lm::WideView with) {
    const lm::WideChar mark[2] = {'%', static_cast<lm::WideChar>(digit)};
    const lm::WideView wanted(mark, 2);
    lm::WideString result;
    std::size_t from = 0;
    for (std::size_t at; (at = text.find(wanted, from)) != lm::WideView::npos; from = at + wanted.size()) {
        result.append(text.substr(from, at - from));
        result.append(with);
    }
    result.append(text.substr(from));
    return result;
}

} // namespace

CHostString::CHostString(CHostString&& other) noexcept : m_text(std::move(other.m_text)) {
    other.dropForms();
}

CHostString::CHostString(const QString& text)
    : m_text(lm::WideView(reinterpret_cast<const lm::WideChar*>(text.utf16()),
                          static_cast<std::size_t>(text.size()))) {}

CHostString& CHostString::operator=(const CHostString& other) noexcept {
    if (this != &other) {
        dropForms();
        m_text = other.m_text;
    }
    return *this;
}

CHostString& CHostString::operator=(CHostString&& other) noexcept {
    if (this != &other) {
        dropForms();
        other.dropForms();
        // By way of a third text: the moved-from object is empty, whatever assignment leaves in its source.
        OdString text(std::move(other.m_text));
        m_text = std::move(text);
    }
    return *this;
}

const char* CHostString::ansi_str() const {
    if (const char* made = m_narrow.load(std::memory_order_acquire)) return made;
    const lm::WideView units = m_text.view();
    if (units.empty()) return "";
    char* bytes = new char[units.size() + 1];
    for (std::size_t i = 0; i < units.size(); ++i)
        bytes[i] = static_cast<char>(lm::system::narrowUnit(units[i]));
    bytes[units.size()] = 0;
    char* earlier = nullptr;
    if (m_narrow.compare_exchange_strong(earlier, bytes, std::memory_order_acq_rel)) return bytes;
    delete[] bytes;
    return earlier;
}

CHostString::operator const QString&() const {
    if (const QString* made = m_qt.load(std::memory_order_acquire)) return *made;
    const lm::WideView units = m_text.view();
    QString* text =
        new QString(reinterpret_cast<const QChar*>(units.data()), static_cast<qsizetype>(units.size()));
    QString* earlier = nullptr;
    if (m_qt.compare_exchange_strong(earlier, text, std::memory_order_acq_rel)) return *text;
    delete text;
    return *earlier;
}

void CHostString::freeForms() noexcept {
    delete[] m_narrow.exchange(nullptr, std::memory_order_relaxed);
    delete m_qt.exchange(nullptr, std::memory_order_relaxed);
}

CHostString CHostString::arg(const CHostString& first) const {
    return CHostString(lm::WideView(filled(view(), '1', first.view())));
}

CHostString CHostString::arg(const CHostString& first, const CHostString& second) const {
    const lm::WideString one = filled(view(), '1', first.view());
    return CHostString(lm::WideView(filled(one, '2', second.view())));
}

CHostString CHostString::arg(const CHostString& first, const CHostString& second,
                             const CHostString& third) const {
    const lm::WideString one = filled(view(), '1', first.view());
    const lm::WideString two = filled(one, '2', second.view());
    return CHostString(lm::WideView(filled(two, '3', third.view())));
}
