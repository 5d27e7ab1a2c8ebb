// SPDX-License-Identifier: MIT
#include "model/names.h"

#include "model/kinds.h"

#include "drawing/blockreference.h"
#include "drawing/curves.h"

namespace lm::drawing {

namespace {

bool startsWithNoCase(WideView text, std::string_view start) {
    if (text.size() < start.size()) return false;
    for (std::size_t i = 0; i < start.size(); ++i)
        if (system::toLower(text[i]) != system::toLower(static_cast<unsigned char>(start[i]))) return false;
    return true;
}

struct KindRow {
    OdRxClass* (*desc)();
    Kind kind;
};

constexpr KindRow kEntityKinds[] = {{&OdDbBlockReference::desc, kKindInsert},
                                    {&OdDbPolyline::desc, kKindLwPolyline},
                                    {&OdDbLine::desc, kKindLine},
                                    {&OdDbText::desc, kKindText},
                                    {&OdDbMText::desc, kKindMText},
                                    {&OdDbAttributeDefinition::desc, kKindAttdef},
                                    {&OdDbCircle::desc, kKindCircle},
                                    {&OdDbArc::desc, kKindArc},
                                    {&OdDbEllipse::desc, kKindEllipse},
                                    {&OdDbPoint::desc, kKindPoint},
                                    {&OdDbAttribute::desc, kKindAttrib}};

} // namespace

bool isLayoutName(WideView name) noexcept {
    constexpr std::string_view kModel = "*Model_Space";
    constexpr std::string_view kPaper = "*Paper_Space";
    if (startsWithNoCase(name, kModel)) return name.size() == kModel.size();
    if (!startsWithNoCase(name, kPaper)) return false;
    for (const WideChar unit : name.substr(kPaper.size()))
        if (unit < '0' || unit > '9') return false;
    return true;
}

std::uint16_t entityKind(const OdDbEntity& entity) {
    for (const KindRow& row : kEntityKinds)
        if (entity.isA() == row.desc()) return row.kind;
    return kKindNone;
}

} // namespace lm::drawing
