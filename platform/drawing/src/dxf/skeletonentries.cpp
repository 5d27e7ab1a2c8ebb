// SPDX-License-Identifier: MIT
#include "dxf/skeletonentries.h"

namespace lm::drawing {

namespace {

constexpr ClassRow kClasses[] = {{"ACDBDICTIONARYWDFLT", "AcDbDictionaryWithDefault"},
                                 {"ACDBPLACEHOLDER", "AcDbPlaceHolder"},
                                 {"LAYOUT", "AcDbLayout"}};

/// Plot settings that name no device: the drawing's own size, one to one.
void addPlotSettings(OutGroups& groups, bool model, FileVersion version) {
    constexpr int kStandardScale = 16, kWithStyles = 32, kWithWeights = 128, kViewportsFirst = 512,
                  kModel = 1024;
    groups.push_back(OutGroup::mark("AcDbPlotSettings"));
    for (const int code : {1, 2, 4, 6})
        groups.push_back(OutGroup::ascii(code, code == 2 ? "none_device" : ""));
    for (int code = 40; code <= 49; ++code) groups.push_back(OutGroup::real(code, 0));
    for (int code = 140; code <= 143; ++code) groups.push_back(OutGroup::real(code, code < 142 ? 0 : 1));
    groups.push_back(OutGroup::integer(70, kStandardScale | kWithStyles | kWithWeights | kViewportsFirst |
                                               (model ? kModel : 0)));
    groups.push_back(OutGroup::integer(72, 1)); // millimetres
    groups.push_back(OutGroup::integer(73, 0));
    groups.push_back(OutGroup::integer(74, 5)); // the whole layout
    groups.push_back(OutGroup::ascii(7, ""));
    groups.push_back(OutGroup::integer(75, 16)); // one to one
    if (version >= FileVersion::kR2004) {
        groups.push_back(OutGroup::integer(76, 0));
        groups.push_back(OutGroup::integer(77, 2));
        groups.push_back(OutGroup::integer(78, 300));
    }
    groups.push_back(OutGroup::real(147, 1));
    groups.push_back(OutGroup::real(148, 0));
    groups.push_back(OutGroup::real(149, 0));
}

void addPoint(OutGroups& groups, int code, const OdGePoint3d& point, bool flat = false) {
    groups.push_back(OutGroup::real(code, point.x));
    groups.push_back(OutGroup::real(code + 10, point.y));
    if (!flat) groups.push_back(OutGroup::real(code + 20, point.z));
}

} // namespace

std::span<const ClassRow> skeletonClasses() {
    return kClasses;
}

OutEntry bareEntry(std::string_view type, std::uint64_t handle, std::uint64_t owner) {
    const int code = type == "DIMSTYLE" ? 105 : 5;
    return {type, {OutGroup::handle(code, handle), OutGroup::handle(330, owner)}};
}

OutEntry recordEntry(std::string_view type, std::uint64_t handle, std::uint64_t table, std::string_view mark,
                     std::string_view name) {
    OutEntry made = bareEntry(type, handle, table);
    OutGroups& groups = made.groups;
    groups.push_back(OutGroup::mark("AcDbSymbolTableRecord"));
    groups.push_back(OutGroup::mark(mark));
    groups.push_back(OutGroup::ascii(2, name));
    groups.push_back(OutGroup::integer(70, 0));
    return made;
}

OutEntry tableEntry(std::string_view name, std::uint64_t handle, int records) {
    return {"TABLE",
            {OutGroup::ascii(2, name), OutGroup::handle(5, handle), OutGroup::handle(330, 0),
             OutGroup::mark("AcDbSymbolTable"), OutGroup::integer(70, records)}};
}

OutEntry dictionaryEntry(std::string_view type, std::uint64_t handle, std::uint64_t owner) {
    OutEntry made = bareEntry(type, handle, owner);
    made.groups.push_back(OutGroup::mark("AcDbDictionary"));
    made.groups.push_back(OutGroup::integer(281, 1)); // a name that is imported twice keeps the first object
    return made;
}

void addItem(OutGroups& groups, const OdString& name, std::uint64_t handle) {
    groups.push_back(OutGroup::text(3, name));
    groups.push_back(OutGroup::handle(350, handle));
}

OutEntry lineStyleEntry(std::uint64_t handle, std::uint64_t owner) {
    OutEntry made = bareEntry("MLINESTYLE", handle, owner);
    OutGroups& groups = made.groups;
    groups.push_back(OutGroup::mark("AcDbMlineStyle"));
    groups.push_back(OutGroup::ascii(2, "Standard"));
    groups.push_back(OutGroup::integer(70, 0));
    groups.push_back(OutGroup::ascii(3, ""));
    groups.push_back(OutGroup::integer(62, 256));
    groups.push_back(OutGroup::real(51, 90));
    groups.push_back(OutGroup::real(52, 90));
    groups.push_back(OutGroup::integer(71, 2));
    for (const double offset : {0.5, -0.5}) {
        groups.push_back(OutGroup::real(49, offset));
        groups.push_back(OutGroup::integer(62, 256));
        groups.push_back(OutGroup::ascii(6, "BYLAYER"));
    }
    return made;
}

OutEntry dimensionStyleEntry(std::uint64_t handle, std::uint64_t table, std::uint64_t textStyle) {
    OutEntry made = recordEntry("DIMSTYLE", handle, table, "AcDbDimStyleTableRecord", "Standard");
    made.groups.push_back(OutGroup::handle(340, textStyle));
    return made;
}

OutEntry plotStylesEntry(std::uint64_t handle, std::uint64_t owner, std::uint64_t normal) {
    OutEntry made = dictionaryEntry("ACDBDICTIONARYWDFLT", handle, owner);
    addItem(made.groups, odText("Normal"), normal);
    made.groups.push_back(OutGroup::mark("AcDbDictionaryWithDefault"));
    made.groups.push_back(OutGroup::handle(340, normal));
    return made;
}

OutEntry layoutEntry(const LayoutFacts& facts, FileVersion version) {
    OutEntry made = bareEntry("LAYOUT", facts.handle, facts.owner);
    OutGroups& groups = made.groups;
    addPlotSettings(groups, facts.order == 0, version);
    groups.push_back(OutGroup::mark("AcDbLayout"));
    groups.push_back(OutGroup::text(1, odText(facts.name)));
    groups.push_back(OutGroup::integer(70, 1));
    groups.push_back(OutGroup::integer(71, facts.order));
    addPoint(groups, 10, facts.limitsFrom, true);
    addPoint(groups, 11, facts.limitsTo, true);
    addPoint(groups, 12, facts.base);
    addPoint(groups, 14, facts.extentsFrom);
    addPoint(groups, 15, facts.extentsTo);
    groups.push_back(OutGroup::real(146, 0));
    addPoint(groups, 13, {0, 0, 0});
    addPoint(groups, 16, {1, 0, 0});
    addPoint(groups, 17, {0, 1, 0});
    groups.push_back(OutGroup::integer(76, 0));
    groups.push_back(OutGroup::handle(330, facts.record));
    return made;
}

} // namespace lm::drawing
