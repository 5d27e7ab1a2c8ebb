// SPDX-License-Identifier: MIT
// Drawings that the tests of the writer change, and how they tell what changed.
#pragma once

#include "writer_support.h"

namespace drawing_test {

using dxf::Parts;

inline std::string header(const std::string& further = "") {
    return Parts::joined({"9 $INSBASE|10 0.0|20 0.0|30 0.0|9 $CLAYER|8 0|9 $HANDSEED|5 FFFF", further});
}

inline Parts drawing() {
    Parts parts;
    parts.header = header();
    return parts;
}

inline const std::string kLine =
    "0 LINE|5 100|330 1F|100 AcDbEntity|8 0|100 AcDbLine|10 1.50|20 2|30 0|11 3|21 4|31 0";
inline const std::string kReference =
    "0 INSERT|5 200|330 1F|100 AcDbEntity|8 0|100 AcDbBlockReference|66 1|2 B|10 1.0|20 2.0|30 0.0|70 2|71 3|"
    "0 ATTRIB|5 201|330 200|100 AcDbEntity|8 0|100 AcDbText|10 1.0|20 2.0|30 0.0|40 2.50|1 old|7 STANDARD|"
    "100 AcDbAttribute|280 0|2 TAG|70 0|280 1|1001 ACAD|1000 x|"
    "0 ATTRIB|5 202|330 200|100 AcDbEntity|8 0|100 AcDbText|10 1.0|20 2.0|30 0.0|40 2.50|1 b|"
    "100 AcDbAttribute|2 SECOND|70 1|"
    "0 SEQEND|5 203|330 200|100 AcDbEntity|8 0";

/// A drawing with a reference that has two attributes.
inline Parts withReference() {
    Parts parts = drawing();
    parts.blockRecords = Parts::record("BLOCK_RECORD", "60", "1", "B", "70 0|280 1|281 0");
    parts.blocks = Parts::block(
        "B", "61", "60", "0 CIRCLE|5 62|330 60|100 AcDbEntity|8 0|100 AcDbCircle|10 0.0|20 0.0|40 1.0");
    parts.entities = Parts::joined({kReference, kLine});
    return parts;
}

inline std::string bytesOf(const Parts& parts) {
    return dxf::text(parts.groups(), "\r\n", 3);
}

/// Changes a drawing and gives what is saved then.
template<class F>
inline std::string changed(const std::string& bytes, F&& change) {
    const auto db = readBytes(bytes);
    change(*db.get());
    return saved(*db.get());
}

/// The difference of two texts in the notation: "-group" and "+group" in the order of the file.
inline std::string difference(const std::string& before, const std::string& after) {
    const auto split = [](const std::string& bytes) {
        std::vector<std::string> groups;
        std::istringstream in(notationOf(bytes));
        for (std::string group; std::getline(in, group, '|');) groups.push_back(group);
        return groups;
    };
    const auto a = split(before), b = split(after);
    std::size_t head = 0, tail = 0;
    while (head < std::min(a.size(), b.size()) && a[head] == b[head]) ++head;
    while (tail < std::min(a.size(), b.size()) - head && a[a.size() - 1 - tail] == b[b.size() - 1 - tail])
        ++tail;
    std::string out;
    for (std::size_t i = head; i < a.size() - tail; ++i) out += "-" + a[i] + "|";
    for (std::size_t i = head; i < b.size() - tail; ++i) out += "+" + b[i] + "|";
    return out;
}

} // namespace drawing_test
