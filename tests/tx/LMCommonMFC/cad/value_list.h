// SPDX-License-Identifier: MIT
// Attribute lists that a test writes into a drawing, and the lines that failures leave in the log.
#pragma once

#include "stored_data.h"

namespace lm::tests {

/// A list with its records, which go with it.
class ValueList {
public:
    ValueList() = default;
    ValueList(std::initializer_list<Attribute> records) {
        for (const Attribute& each : records)
            m_list.AdicionarAtributo(
                new CEAtributo(od(each.tag), od("prompt"), od(each.value), OdDbObjectId(), each.invisible));
    }
    ~ValueList() { m_list.releaseAllAttributes(); }
    ValueList(const ValueList&) = delete;
    ValueList& operator=(const ValueList&) = delete;
    operator CEListaAtributos*() { return &m_list; }

private:
    CEListaAtributos m_list;
};

/// The names in front of the descriptions, in order.
inline Texts namesIn(const lm::test::LogCapture& log) {
    Texts all;
    for (const std::string& line : log.lines()) {
        const std::size_t from = line.find("} ") + 2, to = line.find(" : ");
        EXPECT_NE(to, std::string::npos) << line;
        all.push_back(line.substr(from, to - from));
    }
    return all;
}

} // namespace lm::tests
