// SPDX-License-Identifier: MIT
#include "dxf/cursor.h"

#include <algorithm>
#include <charconv>
#include <cmath>

namespace lm::drawing {

namespace {

struct Range {
    int first, last;
    ValueType type;
};

constexpr Range kRanges[] = {
    {0, 9, ValueType::kText},         {10, 59, ValueType::kReal},     {60, 79, ValueType::kInt16},
    {90, 99, ValueType::kInt32},      {100, 105, ValueType::kText},   {110, 149, ValueType::kReal},
    {160, 169, ValueType::kInt64},    {170, 179, ValueType::kInt16},  {210, 239, ValueType::kReal},
    {270, 289, ValueType::kInt16},    {290, 299, ValueType::kBool},   {300, 309, ValueType::kText},
    {310, 319, ValueType::kBinary},   {320, 369, ValueType::kText},   {370, 389, ValueType::kInt16},
    {390, 399, ValueType::kText},     {400, 409, ValueType::kInt16},  {410, 419, ValueType::kText},
    {420, 429, ValueType::kInt32},    {430, 439, ValueType::kText},   {440, 459, ValueType::kInt32},
    {460, 469, ValueType::kReal},     {470, 481, ValueType::kText},   {999, 1003, ValueType::kText},
    {1004, 1004, ValueType::kBinary}, {1005, 1009, ValueType::kText}, {1010, 1059, ValueType::kReal},
    {1060, 1070, ValueType::kInt16},  {1071, 1071, ValueType::kInt32}};

constexpr std::array<ValueType, kHighestCode + 1> buildTypes() {
    std::array<ValueType, kHighestCode + 1> types{};
    for (ValueType& type : types) type = ValueType::kUnknown;
    for (const Range& range : kRanges)
        for (int code = range.first; code <= range.last; ++code)
            types[static_cast<std::size_t>(code)] = range.type;
    return types;
}

constexpr std::array<ValueType, kHighestCode + 1> kTypes = buildTypes();

template<class T>
T load(const char* at) noexcept {
    T value;
    std::memcpy(&value, at, sizeof value);
    return value;
}

} // namespace

ValueType valueTypeOf(int code) noexcept {
    if (code == -666 || code < 0) return ValueType::kUnknown;
    return code <= kHighestCode ? kTypes[static_cast<std::size_t>(code)] : ValueType::kUnknown;
}

std::string_view stripped(std::string_view text) noexcept {
    while (!text.empty() && (text.front() == ' ' || text.front() == '\t')) text.remove_prefix(1);
    while (!text.empty() && (text.back() == ' ' || text.back() == '\t' || text.back() == '\r'))
        text.remove_suffix(1);
    return text;
}

Step BinaryCursor::next(Group& group) noexcept {
    const auto left = [this](const char* at) { return static_cast<std::size_t>(m_end - at); };
    const char* at = m_at;
    if (at == m_end) return Step::kEnd;
    if (m_shortCodes) {
        group.code = static_cast<unsigned char>(*at++);
        if (group.code == 255) {
            if (left(at) < 2) return Step::kCut;
            group.code = load<std::uint16_t>(at);
            at += 2;
        }
    } else {
        if (left(at) < 2) return Step::kCut;
        group.code = load<std::int16_t>(at);
        at += 2;
    }
    std::size_t size = 0;
    switch (valueTypeOf(group.code)) {
    case ValueType::kText: {
        const void* const zero = std::memchr(at, 0, left(at));
        if (zero == nullptr) return Step::kCut;
        group.data = at;
        group.size = static_cast<std::size_t>(static_cast<const char*>(zero) - at);
        m_at = at + group.size + 1;
        return Step::kGroup;
    }
    case ValueType::kBinary:
        if (left(at) < 1) return Step::kCut;
        size = static_cast<unsigned char>(*at++);
        break;
    case ValueType::kReal:
    case ValueType::kInt64:
        size = 8;
        break;
    case ValueType::kInt16:
        size = 2;
        break;
    case ValueType::kInt32:
        size = 4;
        break;
    case ValueType::kBool:
        size = 1;
        break;
    case ValueType::kUnknown:
        return Step::kBadCode;
    }
    if (left(at) < size) return Step::kCut;
    group.data = at;
    group.size = size;
    m_at = at + size;
    return Step::kGroup;
}

double Values::real(const Group& group, bool& bad) const noexcept {
    double value = 0;
    if (m_source.binary) {
        if (valueTypeOf(group.code) != ValueType::kReal) return static_cast<double>(integer(group, bad));
        value = load<double>(group.data);
    } else {
        const char* at = group.data;
        const char* const end = at + group.size;
        while (at < end && (*at == ' ' || *at == '\t')) ++at;
        if (at < end && *at == '+') ++at;
        auto parsed = std::from_chars(at, end, value);
        if (parsed.ec == std::errc() && parsed.ptr < end && *parsed.ptr == ',') {
            // Some programs write the comma of their language; a copy with a point is read in its place.
            std::string copy(at, end);
            std::replace(copy.begin(), copy.end(), ',', '.');
            parsed = std::from_chars(copy.data(), copy.data() + copy.size(), value);
            parsed.ptr = parsed.ptr == copy.data() + copy.size() ? end : at;
        }
        if (parsed.ec == std::errc::result_out_of_range) parsed.ec = std::errc(), value = 0, bad = true;
        if (parsed.ec != std::errc() ||
            !stripped({parsed.ptr, static_cast<std::size_t>(end - parsed.ptr)}).empty())
            bad = true;
        if (parsed.ec != std::errc()) value = 0;
    }
    if (!std::isfinite(value)) {
        bad = true;
        value = 0;
    }
    return value;
}

long long Values::integer(const Group& group, bool& bad) const noexcept {
    if (m_source.binary) {
        switch (valueTypeOf(group.code)) {
        case ValueType::kInt16:
            return load<std::int16_t>(group.data);
        case ValueType::kInt32:
            return load<std::int32_t>(group.data);
        case ValueType::kInt64:
            return load<std::int64_t>(group.data);
        case ValueType::kBool:
            return static_cast<unsigned char>(*group.data);
        case ValueType::kReal:
            return std::llround(real(group, bad));
        default:
            break;
        }
    }
    const std::string_view text = stripped(group.raw());
    const char* at = text.data();
    const char* const end = at + text.size();
    if (at < end && *at == '+') ++at;
    long long value = 0;
    const auto parsed = std::from_chars(at, end, value);
    if (parsed.ec != std::errc()) {
        bad = true;
        return 0;
    }
    // Some programs write whole numbers with a point.
    if (parsed.ptr != end && *parsed.ptr != '.') bad = true;
    return value;
}

std::uint64_t parseHandle(std::string_view text, bool& bad) noexcept {
    text = stripped(text);
    while (text.size() > 1 && text.front() == '0') text.remove_prefix(1);
    std::uint64_t value = 0;
    const auto parsed = std::from_chars(text.data(), text.data() + text.size(), value, 16);
    if (parsed.ec == std::errc() && parsed.ptr == text.data() + text.size() && !text.empty()) return value;
    bad = true;
    return 0;
}

std::uint64_t Values::handle(const Group& group, bool& bad) const noexcept {
    return parseHandle(group.raw(), bad);
}

std::string Values::binary(const Group& group, bool& bad) const {
    if (m_source.binary) return std::string(group.raw());
    const std::string_view text = stripped(group.raw());
    std::string bytes;
    for (std::size_t i = 0; i + 1 < text.size(); i += 2) {
        unsigned value = 0;
        const auto parsed = std::from_chars(text.data() + i, text.data() + i + 2, value, 16);
        if (parsed.ptr != text.data() + i + 2) {
            bad = true;
            break;
        }
        bytes.push_back(static_cast<char>(value));
    }
    return bytes;
}

std::uint64_t Source::placeOf(const char* at) const {
    const auto offset = static_cast<std::uint64_t>(at - begin());
    if (binary) return offset;
    return 1 + static_cast<std::uint64_t>(std::count(begin(), at, '\n'));
}

std::string Source::placeText(const char* at) const {
    return (binary ? "byte " : "line ") + std::to_string(placeOf(at));
}

} // namespace lm::drawing
