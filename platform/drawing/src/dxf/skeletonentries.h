// SPDX-License-Identifier: MIT
// The entries that a drawing file of R2000 and later has in any case, as this program writes them.
#pragma once

#include "dxf/outgroups.h"

#include <span>

namespace lm::drawing {

/// Names in the dictionary of named objects.
inline constexpr std::string_view kGroups = "ACAD_GROUP";
inline constexpr std::string_view kLayouts = "ACAD_LAYOUT";
inline constexpr std::string_view kLineStyles = "ACAD_MLINESTYLE";
inline constexpr std::string_view kPageSetups = "ACAD_PLOTSETTINGS";
inline constexpr std::string_view kPlotStyles = "ACAD_PLOTSTYLENAME";
inline constexpr std::string_view kRootNames[] = {kGroups, kLayouts, kLineStyles, kPageSetups, kPlotStyles};

/// A class that entries made here belong to.
struct ClassRow {
    std::string_view type;
    std::string_view name;
};
std::span<const ClassRow> skeletonClasses();

/// An entry with nothing but handle and owner.
OutEntry bareEntry(std::string_view type, std::uint64_t handle, std::uint64_t owner);
/// A record of a table with flags 0.
OutEntry recordEntry(std::string_view type, std::uint64_t handle, std::uint64_t table, std::string_view mark,
                     std::string_view name);
OutEntry tableEntry(std::string_view name, std::uint64_t handle, int records);
/// The dimension style "Standard".
OutEntry dimensionStyleEntry(std::uint64_t handle, std::uint64_t table, std::uint64_t textStyle);
/// A dictionary without items.
OutEntry dictionaryEntry(std::string_view type, std::uint64_t handle, std::uint64_t owner);
void addItem(OutGroups& groups, const OdString& name, std::uint64_t handle);
/// The dictionary of plot styles with "Normal", its default.
OutEntry plotStylesEntry(std::uint64_t handle, std::uint64_t owner, std::uint64_t normal);
/// The style "Standard" of multiple lines.
OutEntry lineStyleEntry(std::uint64_t handle, std::uint64_t owner);

/// A layout: its name and place, and what its space has in the header.
struct LayoutFacts {
    std::string name;
    int order = 0; ///< of the tabs; 0 is model space
    std::uint64_t handle = 0, owner = 0, record = 0;
    OdGePoint3d limitsFrom, limitsTo, base, extentsFrom, extentsTo;
};
OutEntry layoutEntry(const LayoutFacts& facts, FileVersion version);

} // namespace lm::drawing
