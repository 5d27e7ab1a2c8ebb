// SPDX-License-Identifier: MIT
#include "drawing/odstring.h"

#include "drawing/alloc.h"
#include "system/codepage.h"

#include <atomic>
#include <cstring>
#include <new>
#include <utility>

/// One block of memory: the head, then the units (with a closing 0) or, in the narrow form, the bytes.
struct OdString::Data {
    std::atomic<int> refs;
    bool narrow;
    std::size_t length;

    lm::WideChar* units() { return reinterpret_cast<lm::WideChar*>(this + 1); }
    char* bytes() { return reinterpret_cast<char*>(this + 1); }

    static Data* make(std::size_t length, bool narrow) {
        const std::size_t unit = narrow ? sizeof(char) : sizeof(lm::WideChar);
        void* const memory = odrxAlloc(sizeof(Data) + (length + 1) * unit);
        if (memory == nullptr) throw std::bad_alloc();
        return ::new (memory) Data{{1}, narrow, length};
    }
    static void let(Data* data) {
        if (data != nullptr && data->refs.fetch_sub(1, std::memory_order_acq_rel) == 1) odrxFree(data);
    }
};

namespace {
constexpr lm::WideChar kEmpty[1] = {0};
}

OdString::OdString(const OdString& other) noexcept : m_data(other.m_data) {
    if (m_data != nullptr) m_data->refs.fetch_add(1, std::memory_order_relaxed);
}

OdString::OdString(const unsigned short* text) : OdString(lm::WideView(text, lm::system::wideLength(text))) {}

OdString::OdString(lm::WideView text) : m_data(nullptr) {
    if (text.empty()) return;
    m_data = Data::make(text.size(), false);
    std::memcpy(m_data->units(), text.data(), text.size() * sizeof(lm::WideChar));
    m_data->units()[text.size()] = 0;
}

OdString::OdString(const char* text) : m_data(nullptr) {
    if (text == nullptr || *text == '\0') return;
    const std::size_t length = std::strlen(text);
    m_data = Data::make(length, true);
    std::memcpy(m_data->bytes(), text, length + 1);
}

OdString::~OdString() {
    Data::let(m_data);
}

OdString& OdString::operator=(const OdString& other) noexcept {
    OdString copy(other);
    std::swap(m_data, copy.m_data);
    return *this;
}

OdString& OdString::operator=(OdString&& other) noexcept {
    OdString taken(std::move(other));
    std::swap(m_data, taken.m_data);
    return *this;
}

const unsigned short* OdString::c_str() const {
    if (m_data == nullptr) return kEmpty;
    if (m_data->narrow) syncUnicode();
    return m_data->units();
}

std::size_t OdString::getLength() const {
    return m_data == nullptr ? 0 : m_data->length;
}

bool OdString::isNarrowOnly() const noexcept {
    return m_data != nullptr && m_data->narrow;
}

void OdString::syncUnicode() const {
    if (!isNarrowOnly()) return;
    Data* const wide = Data::make(m_data->length, false);
    for (std::size_t i = 0; i < m_data->length; ++i)
        wide->units()[i] = lm::system::widenByte(static_cast<unsigned char>(m_data->bytes()[i]));
    wide->units()[m_data->length] = 0;
    Data::let(m_data);
    m_data = wide;
}

OdString operator+(const OdString& a, const OdString& b) {
    lm::WideString text(a.view());
    text += b.view();
    return OdString(lm::WideView(text));
}

namespace lm::drawing {

OdString odText(std::string_view ascii) {
    return OdString(lm::WideView(lm::system::widen(ascii)));
}

std::string utf8(const OdString& text) {
    return lm::system::toUtf8(text.view());
}

} // namespace lm::drawing
