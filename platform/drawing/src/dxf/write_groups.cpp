// SPDX-License-Identifier: MIT
#include "dxf/write_groups.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>

namespace lm::drawing {

namespace {

constexpr int kComment = 999;

/// The value as a record of a chain, which knows what a number is as text and the other way round.
OdSmartPtr<OdResBuf> recordOf(const OutGroup& group) {
    return std::visit(
        [&group](const auto& value) -> OdSmartPtr<OdResBuf> {
            using T = std::decay_t<decltype(value)>;
            OdSmartPtr<OdResBuf> record = OdResBuf::newRb(group.code);
            if constexpr (std::is_same_v<T, OdString>)
                record->setString(value);
            else if constexpr (std::is_same_v<T, AsciiValue>)
                record->setString(odText(value.text));
            else if constexpr (std::is_same_v<T, double>)
                record->setDouble(value);
            else if constexpr (std::is_same_v<T, long long>)
                record->setInt64(value);
            else if constexpr (std::is_same_v<T, HandleValue>)
                record->setString(OdDbHandle(value.handle).ascii());
            else if constexpr (std::is_same_v<T, BinaryValue>)
                record->setBinary(value.bytes);
            return record;
        },
        group.value);
}

std::string hexText(std::string_view bytes) {
    constexpr const char* kDigits = "0123456789ABCDEF";
    std::string text;
    text.reserve(bytes.size() * 2);
    for (const char byte : bytes) {
        text.push_back(kDigits[static_cast<unsigned char>(byte) >> 4]);
        text.push_back(kDigits[static_cast<unsigned char>(byte) & 0xF]);
    }
    return text;
}

/// A number as an integer of fewer bits: its bits where they can be meant, else the nearest one.
template<class T>
T narrowed(long long value) {
    using Limits = std::numeric_limits<T>;
    constexpr long long kMostUnsigned = std::numeric_limits<std::make_unsigned_t<T>>::max();
    if (value > Limits::max() && value <= kMostUnsigned) return static_cast<T>(value);
    return static_cast<T>(std::clamp<long long>(value, Limits::min(), Limits::max()));
}

/// Text that isn't free: handles, marks, types. Blanks around it mean nothing.
bool isFixedText(int code) {
    return code == 0 || code == 5 || code == 100 || code == 102 || code == 105 || code == 1005 ||
           (code >= 320 && code <= 369) || (code >= 390 && code <= 399) || code == 480 || code == 481;
}

/// Whether bytes mean the same in every encoding and form.
bool isPlainText(std::string_view bytes) {
    return std::all_of(bytes.begin(), bytes.end(), [](char c) {
        const auto byte = static_cast<unsigned char>(c);
        return byte >= ' ' && byte < 0x80;
    });
}

bool hasControl(std::string_view bytes) {
    return std::any_of(bytes.begin(), bytes.end(),
                       [](char c) { return static_cast<unsigned char>(c) < ' '; });
}

} // namespace

std::string realText(double value) {
    char digits[40];
    const auto end = std::to_chars(digits, digits + sizeof digits, value);
    std::string text(digits, end.ptr);
    if (text.find('.') != std::string::npos) return text;
    const std::size_t exponent = std::min(text.find('e'), text.size());
    return text.insert(exponent, ".0");
}

GroupWriter::GroupWriter(const ByteSink& sink, const FileForm& form, const TextEncoder& encoder,
                         const Source* own, bool watch)
    : m_sink(sink), m_form(form), m_encoder(encoder), m_own(own), m_watching(watch) {
    constexpr std::size_t kLongGroup = 4096;
    m_buffer.reserve(kBuffer + kLongGroup);
}

void GroupWriter::flush() {
    if (m_buffer.empty()) return;
    if (m_watching) m_watch.see(m_buffer.data(), m_buffer.data() + m_buffer.size());
    m_sink(m_buffer.data(), m_buffer.size());
    m_last = m_buffer.back();
    m_buffer.clear();
}

void GroupWriter::endLine() {
    const char last = m_buffer.empty() ? m_last : m_buffer.back();
    if (m_form.binary || last == '\n') return;
    if (last == '\r')
        m_buffer.push_back('\n');
    else
        m_buffer += m_form.lineEnd;
}

void GroupWriter::copy(const char* begin, const char* end) {
    constexpr std::size_t kLarge = kBuffer / 4; // worth a call of its own
    const auto size = static_cast<std::size_t>(end - begin);
    if (size < kLarge) {
        m_buffer.append(begin, size);
        mayFlush();
        return;
    }
    flush();
    for (const char* at = begin; at < end;) {
        const char* const next = at + std::min(static_cast<std::size_t>(end - at), kBuffer);
        if (m_watching) m_watch.see(at, next);
        m_sink(at, static_cast<std::size_t>(next - at));
        m_last = next[-1];
        at = next;
    }
}

void GroupWriter::putCode(int code) {
    if (m_form.binary) {
        raw(static_cast<std::int16_t>(code));
        return;
    }
    char digits[12];
    const auto end = std::to_chars(digits, digits + sizeof digits, code);
    const auto size = static_cast<std::size_t>(end.ptr - digits);
    if (size < m_form.codeWidth) m_buffer.append(m_form.codeWidth - size, ' ');
    m_buffer.append(digits, size);
    m_buffer += m_form.lineEnd;
}

void GroupWriter::putText(int code, std::string_view bytes) {
    putCode(code);
    m_buffer += bytes;
    if (m_form.binary)
        m_buffer.push_back('\0');
    else
        m_buffer += m_form.lineEnd;
    mayFlush();
}

void GroupWriter::putReal(int code, double value) {
    if (!std::isfinite(value)) throw NotFinite{code};
    if (!m_form.binary) return putText(code, realText(value));
    putCode(code);
    raw(value);
    mayFlush();
}

void GroupWriter::putInteger(int code, long long value) {
    if (!m_form.binary) {
        char digits[24];
        const auto end = std::to_chars(digits, digits + sizeof digits, value);
        return putText(code, {digits, static_cast<std::size_t>(end.ptr - digits)});
    }
    putCode(code);
    switch (valueTypeOf(code)) {
    case ValueType::kInt16:
        raw(narrowed<std::int16_t>(value));
        break;
    case ValueType::kInt32:
        raw(narrowed<std::int32_t>(value));
        break;
    case ValueType::kBool:
        m_buffer.push_back(value != 0 ? 1 : 0);
        break;
    default:
        raw(static_cast<std::int64_t>(value));
    }
    mayFlush();
}

void GroupWriter::putBinary(int code, std::string_view bytes) {
    if (!m_form.binary) return putText(code, hexText(bytes));
    // The length of a chunk is one byte; what is longer takes several groups of the usual size.
    constexpr std::size_t kMost = 255, kUsual = 127;
    do {
        const std::size_t size = bytes.size() > kMost ? kUsual : bytes.size();
        putCode(code);
        m_buffer.push_back(static_cast<char>(size));
        m_buffer += bytes.substr(0, size);
        bytes.remove_prefix(size);
        mayFlush();
    } while (!bytes.empty());
}

void GroupWriter::putEncoded(int code, const OdString& text) {
    m_scratch.clear();
    m_encoder.encode(text.view(), m_scratch);
    putText(code, m_scratch);
}

void GroupWriter::put(const OutGroup& group) {
    if (const auto* source = std::get_if<SourceGroup>(&group.value)) return put(*source);
    const int code = group.code;
    switch (valueTypeOf(code)) {
    case ValueType::kReal:
        if (const double* real = std::get_if<double>(&group.value)) return putReal(code, *real);
        return putReal(code, recordOf(group)->getDouble());
    case ValueType::kInt16:
    case ValueType::kInt32:
    case ValueType::kInt64:
    case ValueType::kBool:
        if (const long long* integer = std::get_if<long long>(&group.value))
            return putInteger(code, *integer);
        return putInteger(code, recordOf(group)->getInt64());
    case ValueType::kBinary:
        return putBinary(code, recordOf(group)->getBinary());
    case ValueType::kUnknown:
        // Nobody knows how long such a value is in the binary form.
        if (m_form.binary) return;
        break;
    case ValueType::kText:
        break;
    }
    if (const auto* ascii = std::get_if<AsciiValue>(&group.value)) return putText(code, ascii->text);
    putEncoded(code, recordOf(group)->getString());
}

void GroupWriter::put(const SourceGroup& group) {
    const Source& source = *group.form;
    const std::string_view all(group.begin, static_cast<std::size_t>(group.end - group.begin));
    const bool closed =
        source.binary || (!all.empty() && all.back() == '\n'); // the last line may lack its end
    if (&source == m_own && closed && hasForm(source) && (hasPage(source) || isAscii(all)))
        return copy(group.begin, group.end);
    convert(group);
}

void GroupWriter::convert(const SourceGroup& group) {
    const Values values(*group.form);
    const int code = group.group.code;
    bool bad = false;
    const bool sameForm = group.form->binary == m_form.binary;
    switch (valueTypeOf(code)) {
    case ValueType::kReal:
        if (sameForm && !m_form.binary) break;
        return putReal(code, values.real(group.group, bad));
    case ValueType::kInt16:
    case ValueType::kInt32:
    case ValueType::kInt64:
    case ValueType::kBool:
        if (sameForm && !m_form.binary) break;
        return putInteger(code, values.integer(group.group, bad));
    case ValueType::kBinary:
        if (sameForm && !m_form.binary) break;
        return putBinary(code, values.binary(group.group, bad));
    case ValueType::kUnknown:
        if (m_form.binary) return;
        break;
    case ValueType::kText:
        break;
    }
    convertText(group);
}

void GroupWriter::convertText(const SourceGroup& group) {
    const int code = group.group.code;
    std::string_view bytes = group.group.raw();
    const bool otherForm = group.form->binary != m_form.binary;
    if (isFixedText(code) && otherForm) bytes = stripped(bytes);
    // Control bytes are harmless where they were, and in a caret form everywhere.
    if (isPlainText(bytes) || (hasPage(*group.form) && !(otherForm && hasControl(bytes))))
        return putText(code, bytes);
    bool bad = false;
    putEncoded(code, group.form->decoder.decode(bytes, bad));
}

void GroupWriter::putPageMark() {
    if (!m_watching) return;
    flush();
    // A byte that can't begin a character of UTF-8; a blank that doesn't break in most code pages.
    if (m_watch.looksLikeUtf8()) putText(kComment, "\xA0");
}

} // namespace lm::drawing
