// SPDX-License-Identifier: MIT
// Construction, conversion, comparison and concatenation; the operations on the text stand in their own
// sources.
#include "text/rzstring.h"

#include "host/hoststring.h"
#include "host/resbuf.h"
#include "system/codepage.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <new>

using lm::WideChar;
using lm::WideString;
using lm::WideView;

// Other constants of the library are made from these, in whatever order their sources come: a compiler that
// can't make them while it compiles makes them before all others.
[[gnu::init_priority(101)]] const RZString RZString::empty;
[[gnu::init_priority(101)]] const RZString RZString::char12{RZString::Constant{}, 0x000C};

namespace {

WideView viewOf(const unsigned short* text) {
    std::size_t size = 0;
    if (text != nullptr)
        while (text[size] != 0) ++size;
    return WideView(text, size);
}

/// The unit of a byte. All but those from 0x80 to 0x9F have the same number.
WideChar unitOf(unsigned char byte) {
    return byte >= 0x80 && byte < 0xA0 ? lm::system::widenByte(byte) : byte;
}

std::string_view bytesOf(const char* text) {
    return text == nullptr ? std::string_view() : std::string_view(text);
}

std::uint64_t eightBytes(const char* bytes) {
    std::uint64_t block;
    std::memcpy(&block, bytes, sizeof block);
    return block;
}

bool isAscii(std::string_view bytes) {
    std::uint64_t all = 0;
    if (bytes.size() < 8) {
        for (const char byte : bytes) all |= static_cast<unsigned char>(byte);
    } else {
        for (std::size_t at = 0; at + 8 <= bytes.size(); at += 8) all |= eightBytes(bytes.data() + at);
        all |= eightBytes(bytes.data() + bytes.size() - 8);
    }
    return (all & 0x8080808080808080) == 0;
}

/// Copies a text up to its first 0 unit and gives how many units that were.
std::size_t copyCut(WideChar* to, WideView text) {
    const std::size_t size = text.size();
    std::size_t at = 0;
    while (at < size && size >= 4) {
        const std::size_t from = std::min(at, size - 4); // the last four overlap those before them
        const std::uint64_t block = lm::text::fourUnits(text.data() + from);
        if (lm::text::hasZero(block)) break;
        std::memcpy(to + from, &block, sizeof block);
        at = from + 4;
    }
    for (; at < size && text[at] != 0; ++at) to[at] = text[at];
    return at;
}

WideView unitsOf(const QString& text) {
    return {reinterpret_cast<const WideChar*>(text.utf16()), static_cast<std::size_t>(text.size())};
}

/// Whether each unit is one byte of the code page with the same number. A 0 unit isn't, as texts end there.
bool isSameInCodePage(WideView text) {
    for (const WideChar unit : text)
        if (unit - 1U >= 0x7FU && unit - 0xA0U >= 0x60U) return false;
    return true;
}

} // namespace

namespace lm::text {

void TextStore::join(const RZString* const* parts, std::size_t count) {
    std::size_t size = 0;
    for (std::size_t i = 0; i < count; ++i) size += parts[i]->view().size();
    m_text.resize(size);
    WideChar* units = m_text.data();
    const WideView first = parts[0]->view();
    std::size_t used = first.copy(units, first.size());
    for (std::size_t i = 1; i < count; ++i) used += copyCut(units + used, parts[i]->view());
    if (used != size) m_text.resize(used);
}

} // namespace lm::text

RZString::RZString(const unsigned short* text) : RZString(viewOf(text)) {}

RZString::RZString(const char* text) : RZString(bytesOf(text)) {}

RZString::RZString(std::string_view bytes)
    : JoinedText(lm::text::FromUnits{}, reinterpret_cast<const unsigned char*>(bytes.data()), bytes.size()) {
    if (isAscii(bytes)) return;
    for (WideChar& unit : m_text) unit = unitOf(static_cast<unsigned char>(unit));
}

// Looking at the units makes the wide form of a text that holds only its narrow one.
RZString::RZString(const OdString& text) : RZString(lm::text::cut(text.view())) {}

RZString::RZString(const CHostString& text) : RZString(text.ansi_str()) {}

// The narrow form of a text that the code page holds unit for unit is the text, so it needn't be made.
RZString::RZString(const QString& text)
    : RZString(isSameInCodePage(unitsOf(text)) ? RZString(unitsOf(text)) : RZString(CHostString(text))) {}

RZString::RZString(OdDbHandle handle) : RZString(handle.ascii()) {}

RZString& RZString::operator=(const OdString& text) {
    m_text = lm::text::cut(text.view());
    return *this;
}

RZString& RZString::operator=(const unsigned short* text) {
    m_text.assign(text, lm::system::wideLength(text));
    return *this;
}

RZString::operator unsigned short*() const {
    return CString(m_text.c_str()).AllocSysString();
}

RZString::operator CString() const {
    return CString(m_text.c_str());
}

RZString::operator CHostString() const {
    return CHostString(m_text.c_str());
}

RZString::operator OdString() const {
    return OdString(m_text.c_str());
}

RZString::operator QString() const {
    return CString(m_text.c_str()).toQString();
}

RZString::operator OdDbHandle() const {
    OdDbHandle handle;
    handle = m_text.c_str();
    return handle;
}

RZString::operator hst_resbufW() const {
    const WideView text = lm::text::cut(m_text);
    const std::size_t bytes = (text.size() + 1) * sizeof(WideChar);
    hst_resbufW record{};
    record.restype = RTSTR;
    record.value.text = static_cast<unsigned short*>(std::malloc(bytes));
    if (record.value.text == nullptr) throw std::bad_alloc();
    std::memcpy(record.value.text, m_text.c_str(), bytes - sizeof(WideChar));
    record.value.text[text.size()] = 0;
    return record;
}

RZString RZString::plus(WideView text) const {
    WideString sum;
    sum.reserve(m_text.size() + text.size());
    sum.append(m_text).append(text);
    return RZString(std::move(sum));
}

RZString RZString::operator+(const unsigned short* text) const {
    return plus(viewOf(text));
}

void RZString::operator+=(const unsigned short* text) {
    m_text += viewOf(text);
}

bool RZString::equals(WideView other) const noexcept {
    if (length() != static_cast<unsigned int>(other.size())) return false;
    return other.empty() ? m_text.empty() : lm::system::wideEquals(m_text, other);
}

bool RZString::equalsNarrow(const char* other) const noexcept {
    const std::size_t size = other == nullptr ? 0 : std::strlen(other);
    if (m_text.size() != size) return false;
    for (std::size_t i = 0; i < size; ++i)
        if (m_text[i] != unitOf(static_cast<unsigned char>(other[i]))) return false;
    return true;
}

RZString operator+(const char* left, RZString right) {
    return RZString(left) + right;
}

RZString operator+(const unsigned short* left, RZString right) {
    return RZString(left) + right;
}

bool operator==(CString left, RZString right) {
    return RZString(left) == right;
}
