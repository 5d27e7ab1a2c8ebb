// SPDX-License-Identifier: MIT
// What the tests of old sources share: an R12 drawing around one piece of notation, and the entries of what
// is written.
#pragma once

#include "writer_support.h"

namespace drawing_test {

/// A drawing of an old version in the notation of dxf_writer.h.
struct OldDrawing {
    std::string version = "AC1009";
    std::string header;
    std::string tables; ///< whole tables
    std::string blocks; ///< whole blocks
    std::string entities;
    std::string objects; ///< R13 and R14 only

    std::string groups() const {
        using dxf::Parts;
        return Parts::joined({Parts::section("HEADER", Parts::joined({"9 $ACADVER|1 " + version, header})),
                              tables.empty() ? "" : Parts::section("TABLES", tables),
                              blocks.empty() ? "" : Parts::section("BLOCKS", blocks),
                              Parts::section("ENTITIES", entities),
                              objects.empty() ? "" : Parts::section("OBJECTS", objects), "0 EOF"});
    }
    OdSmartPtr<OdDbDatabase> read() const { return readBytes(dxf::text(groups())); }
    OdSmartPtr<OdDbDatabase> readBinary() const { return readBytes(dxf::binaryShort(groups())); }
};

/// All entries of a file in the notation.
inline std::vector<std::string> entriesOf(const std::string& bytes) {
    std::vector<std::string> entries;
    const std::string all = notationOf(bytes) + "|0 ";
    for (std::size_t at = 0, next; (next = all.find("|0 ", at)) != std::string::npos; at = next + 1)
        entries.push_back(all.substr(at, next - at));
    return entries;
}

inline std::string firstOf(const std::string& bytes, const std::string& type, const std::string& part = "") {
    for (const std::string& entry : entriesOf(bytes))
        if (entry.rfind("0 " + type + "|", 0) == 0 && contains(entry + "|", part)) return entry;
    return {};
}

/// The value of the first group of a code in an entry.
inline std::string valueIn(const std::string& entry, int code) {
    for (const auto& [at, value] : dxf::split(entry))
        if (at == code) return value;
    return {};
}

/// The handle of a record, or of a table for the type "TABLE"; case of names aside.
inline std::string handleOfRecord(const std::string& bytes, const std::string& type,
                                  const std::string& name) {
    const lm::WideString wanted = lm::system::fromUtf8(name);
    for (const std::string& entry : entriesOf(bytes))
        if (entry.rfind("0 " + type + "|", 0) == 0 &&
            lm::system::equalsNoCase(lm::system::fromUtf8(valueIn(entry, 2)), wanted))
            return valueIn(entry, type == "DIMSTYLE" ? 105 : 5);
    return "no " + type + " " + name;
}

/// Notation with names of records in place of their handles: {TYPE NAME}.
inline std::string withHandles(const std::string& notation, const std::string& bytes) {
    std::string out;
    std::size_t at = 0;
    for (std::size_t open; (open = notation.find('{', at)) != std::string::npos;) {
        const std::size_t close = notation.find('}', open);
        const std::string inside =
            close != std::string::npos ? notation.substr(open + 1, close - open - 1) : "";
        const std::size_t blank = inside.find(' ');
        if (blank == std::string::npos ||
            inside.find('|') != std::string::npos) { // a brace of the file's own
            out += notation.substr(at, open + 1 - at);
            at = open + 1;
            continue;
        }
        out += notation.substr(at, open - at);
        out += handleOfRecord(bytes, inside.substr(0, blank), inside.substr(blank + 1));
        at = close + 1;
    }
    return out + notation.substr(at);
}

} // namespace drawing_test
