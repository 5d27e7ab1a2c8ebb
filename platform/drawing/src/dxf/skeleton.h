// SPDX-License-Identifier: MIT
// What a drawing file of R2000 and later needs and a database needn't have: header variables, classes, the
// tables UCS and DIMSTYLE, the application ACAD, layouts, and the dictionaries that every program looks for.
// They exist in the file only. Read again they are ordinary objects, and nothing is lacking any more.
#pragma once

#include "dxf/recordnames.h"

#include <unordered_map>

namespace lm::drawing {

/// Looks what a drawing lacks, and makes it. Only new drawings and those from files older than R2000 are
/// completed; a file of R2000 or later is what its program made it.
class Skeleton {
public:
    /// Takes handles for all that is lacking. The database doesn't change.
    Skeleton(DatabaseData& data, FileVersion version, SpareHandles& handles);

    /// Variables for the end of HEADER, each beginning with its name (9).
    OutGroups header() const;
    /// Entries for the end of CLASSES.
    std::vector<OutEntry> classes() const;
    /// A table that neither the source nor the database has, and its records; empty when it isn't needed.
    std::vector<OutEntry> table(std::string_view name) const;
    /// Records for the end of a table of the database.
    std::vector<OutEntry> records(const Node& table) const;
    /// Entries for the end of OBJECTS.
    std::vector<OutEntry> objects() const;

    /// Entries of the database that addTo has something for.
    const std::vector<const Node*>& changed() const { return m_changed; }
    /// Puts groups into one of them, whose groups are complete otherwise.
    void addTo(const Node& node, OutGroups& groups) const;

    /// The plot style of layers that name none, 0 where the drawing has none.
    std::uint64_t plotStyle() const { return m_plotStyle; }
    /// The owner of an object that names none in an old source; 0 when nobody is known to own it.
    std::uint64_t ownerOf(const Node& object) const;
    /// Blocks and layers by the names that old entries have for them.
    const RecordNames& blocks() const { return m_blocks; }
    const RecordNames& layers() const { return m_layers; }

private:
    /// A dictionary that the named objects dictionary lacks.
    struct RootEntry {
        std::string_view name;
        std::uint64_t handle = 0;
    };
    /// A block that is a layout, and the layout that it gets.
    struct Layout {
        const Node* record = nullptr;
        std::string name;
        int order = 0; // of the tabs; 0 is model space
        std::uint64_t handle = 0;
    };

    void planRoot();
    void planLayouts();
    void planTables();
    void findPlotStyle();
    void findOwners();
    void noteOwners(const Node& node);
    bool isMade(std::string_view rootName) const;
    void addRootEntries(OutGroups& groups) const;
    OutEntry rootEntry(const RootEntry& entry) const;
    OutEntry layoutOf(const Layout& layout, std::uint64_t owner) const;
    OdGePoint3d headerPoint(const Layout& layout, const char* name, const OdGePoint3d& otherwise) const;

    DatabaseData& m_data;
    const FileVersion m_version;
    SpareHandles& m_handles;
    const bool m_complete; ///< whether this drawing is completed at all
    std::vector<const Node*> m_changed;
    std::vector<RootEntry> m_root;
    std::vector<Layout> m_layouts;
    std::unordered_map<const Node*, std::uint64_t> m_layoutHandles; ///< by block record
    RecordNames m_blocks, m_layers;
    std::uint64_t m_plotStyle = 0;
    std::uint64_t m_lineStyle = 0;
    std::uint64_t m_ucsTable = 0, m_dimstyleTable = 0, m_dimstyle = 0;
    std::uint64_t m_application = 0;
    std::unordered_map<std::uint64_t, std::uint64_t> m_owners; ///< by the handle of the object
    std::unordered_map<std::uint64_t, std::uint64_t>
        m_reactors; ///< the first entry that an object reports to
};

} // namespace lm::drawing
