// SPDX-License-Identifier: MIT
// Small drawing files for tests, from a short notation: groups parted by "|", each a code, a blank and the
// value.
//
//     text("0 SECTION|2 ENTITIES|0 LINE|8 0|0 ENDSEC|0 EOF")      the text form
//     binary(...), binaryShort(...)                               the two binary forms of the same groups
//     Parts parts; parts.entities = "0 LINE|5 100|8 0"; parts.groups()      a whole drawing without a defect
#pragma once

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>
#include <utility>
#include <vector>

namespace dxf {

using Groups = std::vector<std::pair<int, std::string>>;

inline Groups split(const std::string& notation) {
    Groups groups;
    std::size_t at = 0;
    while (at < notation.size()) {
        const std::size_t end = std::min(notation.find('|', at), notation.size());
        const std::string group = notation.substr(at, end - at);
        const std::size_t blank = group.find(' ');
        groups.emplace_back(std::atoi(group.c_str()),
                            blank == std::string::npos ? "" : group.substr(blank + 1));
        at = end + 1;
    }
    return groups;
}

/// The text form. `width` is the field that codes are set to the right of, as many writers do.
inline std::string text(const std::string& notation, const std::string& lineEnd = "\n",
                        std::size_t width = 0) {
    std::string out;
    for (const auto& [code, value] : split(notation)) {
        const std::string digits = std::to_string(code);
        if (digits.size() < width) out.append(width - digits.size(), ' ');
        out += digits + lineEnd + value + lineEnd;
    }
    return out;
}

template<class T>
void put(std::string& out, T value) {
    char bytes[sizeof value];
    std::memcpy(bytes, &value, sizeof value);
    out.append(bytes, sizeof value);
}

inline std::string unhex(const std::string& digits) {
    std::string bytes;
    for (std::size_t i = 0; i + 1 < digits.size(); i += 2)
        bytes.push_back(static_cast<char>(std::stoi(digits.substr(i, 2), nullptr, 16)));
    return bytes;
}

inline bool within(int code, int first, int last) {
    return code >= first && code <= last;
}

/// The value of a group as a binary file has it, by the ranges of the DXF reference.
inline void putValue(std::string& out, int code, const std::string& value) {
    if (within(code, 10, 59) || within(code, 110, 149) || within(code, 210, 239) || within(code, 460, 469) ||
        within(code, 1010, 1059)) {
        put(out, std::strtod(value.c_str(), nullptr));
    } else if (within(code, 60, 79) || within(code, 170, 179) || within(code, 270, 289) ||
               within(code, 370, 389) || within(code, 400, 409) || within(code, 1060, 1070)) {
        put(out, static_cast<std::int16_t>(std::atoi(value.c_str())));
    } else if (within(code, 90, 99) || within(code, 420, 429) || within(code, 440, 459) || code == 1071) {
        put(out, static_cast<std::int32_t>(std::atoll(value.c_str())));
    } else if (within(code, 160, 169)) {
        put(out, static_cast<std::int64_t>(std::atoll(value.c_str())));
    } else if (within(code, 290, 299)) {
        out.push_back(static_cast<char>(std::atoi(value.c_str())));
    } else if (within(code, 310, 319) || code == 1004) {
        const std::string bytes = unhex(value);
        out.push_back(static_cast<char>(bytes.size()));
        out += bytes;
    } else {
        out += value;
        out.push_back('\0');
    }
}

/// The mark that binary files begin with, a fixed part of the format.
inline std::string binaryMark() {
    return std::string("AutoCAD Binary DXF\r\n\x1a\0", 22);
}

/// The binary form from R13 on: codes of two bytes.
inline std::string binary(const std::string& notation) {
    std::string out = binaryMark();
    for (const auto& [code, value] : split(notation)) {
        put(out, static_cast<std::int16_t>(code));
        putValue(out, code, value);
    }
    return out;
}

/// The binary form of R12: codes of one byte, larger ones behind a byte 255.
inline std::string binaryShort(const std::string& notation) {
    std::string out = binaryMark();
    for (const auto& [code, value] : split(notation)) {
        if (code < 255) {
            out.push_back(static_cast<char>(code));
        } else {
            out.push_back(static_cast<char>(255));
            put(out, static_cast<std::int16_t>(code));
        }
        putValue(out, code, value);
    }
    return out;
}

/// Parts of a drawing in the notation above. As it stands it is a drawing of R2018 without a defect; members
/// are replaced, extended or emptied (a section without text is left out).
struct Parts {
    std::string version = "AC1032";
    std::string codePage = "ANSI_1252";
    std::string header;       ///< further variables
    std::string layers;       ///< further records of the layer table
    std::string tables;       ///< further tables
    std::string blockRecords; ///< further records
    std::string blocks;       ///< further blocks
    std::string entities;
    std::string objects; ///< behind the dictionary
    bool withHeader = true, withTables = true, withBlocks = true, withEntities = true, withObjects = true;
    bool withEnd = true;
    std::string before; ///< in front of the first section
    std::string after;  ///< further sections, in front of the end

    static std::string joined(std::initializer_list<std::string> parts) {
        std::string all;
        for (const std::string& part : parts) {
            if (part.empty()) continue;
            if (!all.empty()) all += '|';
            all += part;
        }
        return all;
    }
    static std::string section(const std::string& name, const std::string& content) {
        return joined({"0 SECTION|2 " + name, content, "0 ENDSEC"});
    }
    static std::string table(const std::string& name, const std::string& handle, const std::string& records) {
        return joined(
            {"0 TABLE|2 " + name + "|5 " + handle + "|330 0|100 AcDbSymbolTable|70 1", records, "0 ENDTAB"});
    }
    static std::string record(const std::string& type, const std::string& handle, const std::string& owner,
                              const std::string& name, const std::string& further = "") {
        return joined({"0 " + type + "|5 " + handle + "|330 " + owner + "|100 AcDbSymbolTableRecord|2 " +
                           name + "|70 0",
                       further});
    }
    static std::string layer(const std::string& handle, const std::string& name,
                             const std::string& further = "") {
        return record("LAYER", handle, "2", name, further);
    }
    static std::string block(const std::string& name, const std::string& handle, const std::string& record,
                             const std::string& content = "") {
        return joined(
            {"0 BLOCK|5 " + handle + "|330 " + record + "|100 AcDbEntity|8 0|100 AcDbBlockBegin|2 " + name +
                 "|70 0|10 0.0|20 0.0|30 0.0|3 " + name + "|1 ",
             content, "0 ENDBLK|5 " + handle + "E|330 " + record + "|100 AcDbEntity|8 0|100 AcDbBlockEnd"});
    }

    std::string groups() const {
        const std::string variables =
            joined({version.empty() ? "" : "9 $ACADVER|1 " + version,
                    codePage.empty() ? "" : "9 $DWGCODEPAGE|3 " + codePage, header});
        const std::string allTables = joined(
            {table("VPORT", "8", record("VPORT", "29", "8", "*Active", "12 5.0|22 6.0|40 100.0|41 1.5")),
             table("LTYPE", "5",
                   joined({record("LTYPE", "14", "5", "ByBlock"), record("LTYPE", "15", "5", "ByLayer"),
                           record("LTYPE", "16", "5", "Continuous", "3 Solid line")})),
             table("LAYER", "2", joined({layer("10", "0", "62 7|6 Continuous"), layers})),
             table("STYLE", "3", record("STYLE", "11", "3", "Standard")), table("VIEW", "6", ""),
             table("UCS", "7", ""), table("APPID", "9", record("APPID", "12", "9", "ACAD")), tables,
             table("BLOCK_RECORD", "1",
                   joined({record("BLOCK_RECORD", "1F", "1", "*Model_Space"),
                           record("BLOCK_RECORD", "1B", "1", "*Paper_Space"), blockRecords}))});
        const std::string allBlocks =
            joined({block("*Model_Space", "20", "1F"), block("*Paper_Space", "1C", "1B"), blocks});
        return joined(
            {before, withHeader ? section("HEADER", variables) : "",
             withTables ? section("TABLES", allTables) : "", withBlocks ? section("BLOCKS", allBlocks) : "",
             withEntities ? section("ENTITIES", entities) : "",
             withObjects ? section("OBJECTS", joined({"0 DICTIONARY|5 C|330 0|100 AcDbDictionary", objects}))
                         : "",
             after, withEnd ? "0 EOF" : ""});
    }
};

} // namespace dxf
