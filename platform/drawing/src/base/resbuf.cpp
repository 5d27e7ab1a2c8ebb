// SPDX-License-Identifier: MIT
#include "drawing/resbuf.h"

#include "base/rxclass.h"

#include <charconv>
#include <climits>
#include <cmath>

LM_RX_DEFINE_ABSTRACT(OdResBuf, OdRxObject)

namespace {

std::string asciiOf(const OdString& text) {
    std::string out;
    for (const lm::WideChar unit : text.view()) out.push_back(unit < 0x80 ? static_cast<char>(unit) : '?');
    return out;
}

/// The leading decimal number of a text, else 0; white space and a sign may stand before it.
long long leadingInteger(const OdString& text) {
    const std::string ascii = asciiOf(text);
    std::size_t at = 0;
    while (at < ascii.size() && lm::system::isSpace(static_cast<unsigned char>(ascii[at]))) ++at;
    if (at + 1 < ascii.size() && ascii[at] == '+' && ascii[at + 1] != '-') ++at;
    long long value = 0;
    std::from_chars(ascii.data() + at, ascii.data() + ascii.size(), value);
    return value;
}

double leadingReal(const OdString& text) {
    const std::string ascii = asciiOf(text);
    std::size_t at = 0;
    while (at < ascii.size() && lm::system::isSpace(static_cast<unsigned char>(ascii[at]))) ++at;
    if (at + 1 < ascii.size() && ascii[at] == '+' && ascii[at + 1] != '-') ++at;
    double value = 0;
    std::from_chars(ascii.data() + at, ascii.data() + ascii.size(), value);
    return value;
}

long long integerOf(double value) {
    if (!(value > -9.2e18 && value < 9.2e18)) return 0; // not a number, or nothing that an integer can hold
    return static_cast<long long>(value);
}

std::string decimal(double value) {
    char digits[40];
    const auto end = std::to_chars(digits, digits + sizeof digits, value);
    return std::string(digits, end.ptr);
}

} // namespace

OdSmartPtr<OdResBuf> OdResBuf::newRb(int restype) {
    OdSmartPtr<OdResBuf> record(new OdResBuf(), lm::drawing::kAttach);
    record->m_restype = restype;
    return record;
}

OdSmartPtr<OdResBuf> OdResBuf::newRb(int restype, const OdString& text) {
    OdSmartPtr<OdResBuf> record = newRb(restype);
    record->setString(text);
    return record;
}

OdSmartPtr<OdResBuf> OdResBuf::newRb(int restype, int value) {
    OdSmartPtr<OdResBuf> record = newRb(restype);
    record->setInt32(value);
    return record;
}

OdSmartPtr<OdResBuf> OdResBuf::newRb(int restype, double value) {
    OdSmartPtr<OdResBuf> record = newRb(restype);
    record->setDouble(value);
    return record;
}

OdResBuf::~OdResBuf() {
    // A chain is let go from its head on, one record at a time: its length must not become the depth of the
    // stack.
    OdResBuf* rest = m_next.detach();
    while (rest != nullptr && --rest->m_refs == 0) {
        OdResBuf* const after = rest->m_next.detach();
        delete rest;
        rest = after;
    }
}

void OdResBuf::release() {
    if (--m_refs == 0) delete this;
}

OdString OdResBuf::getString() const {
    switch (payload()) {
    case kText:
        return std::get<OdString>(m_payload);
    case kInteger:
        return lm::drawing::odText(std::to_string(std::get<long long>(m_payload)));
    case kReal:
        return lm::drawing::odText(decimal(std::get<double>(m_payload)));
    case kId:
        return getObjectId().getHandle().ascii();
    default:
        return OdString();
    }
}

long long OdResBuf::getInt64() const {
    switch (payload()) {
    case kText:
        return leadingInteger(std::get<OdString>(m_payload));
    case kInteger:
        return std::get<long long>(m_payload);
    case kReal:
        return integerOf(std::get<double>(m_payload));
    default:
        return 0;
    }
}

int OdResBuf::getInt32() const {
    return static_cast<int>(getInt64());
}
short OdResBuf::getInt16() const {
    return static_cast<short>(getInt64());
}

double OdResBuf::getDouble() const {
    switch (payload()) {
    case kText:
        return leadingReal(std::get<OdString>(m_payload));
    case kInteger:
        return static_cast<double>(std::get<long long>(m_payload));
    case kReal:
        return std::get<double>(m_payload);
    default:
        return 0;
    }
}

OdGePoint3d OdResBuf::getPoint3d() const {
    return payload() == kPoint ? std::get<OdGePoint3d>(m_payload) : OdGePoint3d();
}

std::string OdResBuf::getBinary() const {
    return payload() == kBinary ? std::get<std::string>(m_payload) : std::string();
}

OdDbObjectId OdResBuf::getObjectId() const {
    return payload() == kId ? std::get<OdDbObjectId>(m_payload) : OdDbObjectId::kNull;
}

OdSmartPtr<OdResBuf> OdResBuf::append(OdSmartPtr<OdResBuf> record) {
    m_next = record;
    return record;
}

OdSmartPtr<OdResBuf> OdResBuf::last() {
    OdResBuf* at = this;
    while (at->m_next.get() != nullptr) at = at->m_next.get();
    return OdSmartPtr<OdResBuf>(at);
}

OdSmartPtr<OdResBuf> OdResBuf::cloneChain() const {
    OdSmartPtr<OdResBuf> head;
    OdResBuf* tail = nullptr;
    for (const OdResBuf* at = this; at != nullptr; at = at->m_next.get()) {
        OdSmartPtr<OdResBuf> copy = newRb(at->m_restype);
        copy->m_payload = at->m_payload;
        if (tail == nullptr)
            head = copy;
        else
            tail->m_next = copy;
        tail = copy.get();
    }
    return head;
}
