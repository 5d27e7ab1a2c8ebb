// SPDX-License-Identifier: MIT
#include "system/path.h"

#include <algorithm>

namespace lm::system {

namespace {

constexpr WideChar kByteUnits = 0xDC00; ///< plus the byte
constexpr WideChar kFirstByte = kByteUnits + 0x80, kLastByte = kByteUnits + 0xFF;

/// The bytes from the front on that are well-formed UTF-8. Bytes below 0x80 are characters wherever they
/// stand, so the text is tried piece by piece.
std::size_t wellFormed(std::string_view bytes) {
    std::size_t at = 0;
    while (at < bytes.size()) {
        std::size_t length = 1;
        while (length < 4 && at + length < bytes.size() &&
               (static_cast<unsigned char>(bytes[at + length]) & 0xC0) == 0x80)
            ++length;
        while (length > 0 && !isUtf8(bytes.substr(at, length))) --length;
        if (length == 0) break;
        at += length;
    }
    return at;
}

/// Hands out the well-formed pieces and the single bytes between them.
template<class Piece, class Byte>
void forPieces(std::string_view bytes, Piece&& piece, Byte&& byte) {
    while (!bytes.empty()) {
        const std::size_t good = wellFormed(bytes);
        if (good != 0) piece(bytes.substr(0, good));
        bytes.remove_prefix(good);
        if (bytes.empty()) return;
        byte(static_cast<unsigned char>(bytes.front()));
        bytes.remove_prefix(1);
    }
}

bool isFirstHalf(WideChar unit) {
    return unit >= 0xD800 && unit < kByteUnits;
}

} // namespace

std::string nativePath(WideView path) {
    std::string native;
    native.reserve(path.size());
    std::size_t from = 0;
    for (std::size_t at = 0; at < path.size(); ++at) {
        const bool isByte =
            path[at] >= kFirstByte && path[at] <= kLastByte && (at == 0 || !isFirstHalf(path[at - 1]));
        if (!isByte) continue;
        appendUtf8(path.substr(from, at - from), native);
        native.push_back(static_cast<char>(path[at] - kByteUnits));
        from = at + 1;
    }
    appendUtf8(path.substr(from), native);
    std::replace(native.begin(), native.end(), '\\', '/');
    return native;
}

WideString pathText(std::string_view native) {
    WideString text;
    forPieces(
        native, [&text](std::string_view piece) { text += fromUtf8(piece); },
        [&text](unsigned char byte) { text.push_back(static_cast<WideChar>(kByteUnits + byte)); });
    return text;
}

std::string shownPath(std::string_view native) {
    constexpr const char* kDigits = "0123456789ABCDEF";
    std::string text;
    forPieces(
        native, [&text](std::string_view piece) { text += piece; },
        [&text](unsigned char byte) {
            text += "\\x";
            text += {kDigits[byte >> 4], kDigits[byte & 0xF]};
        });
    return text;
}

} // namespace lm::system
