// SPDX-License-Identifier: MIT
#include "dxf/skeleton.h"

#include "dxf/headerdefaults.h"
#include "dxf/read.h"
#include "dxf/skeletonentries.h"

#include "drawing/dictionary.h"

#include <algorithm>

namespace lm::drawing {

namespace {

constexpr std::string_view kFirstObjectVersion = "AC1012"; // R13: before it there are no objects
constexpr int kFirstXData = 1000;

const OdDbDictionary* dictionaryOf(DatabaseData& data, const Node* node) {
    if (node == nullptr) return nullptr;
    return OdDbDictionary::cast(data.bodyOf(const_cast<Node*>(node)));
}

/// The table of dimension styles has a part of its own.
void addDimensionMark(OutGroups& groups) {
    groups.push_back(OutGroup::mark("AcDbDimStyleTable"));
    groups.push_back(OutGroup::integer(71, 0));
}

bool hasRecords(const Node& table) {
    for (const Node* record = table.firstPart; record != nullptr; record = record->next)
        if (!record->isErased() && !record->has(Node::kGone)) return true;
    return false;
}

} // namespace

Skeleton::Skeleton(DatabaseData& data, FileVersion version, SpareHandles& handles)
    : m_data(data), m_version(version), m_handles(handles),
      m_complete(data.source == nullptr || isOldSource(data)), m_blocks(data.fixed.blockTable),
      m_layers(data.fixed.layerTable) {
    if (m_complete) {
        planTables();
        planRoot();
        planLayouts();
        findOwners();
    }
    const Node* const styles = m_data.fixed.dimstyleTable;
    if (styles != nullptr && styles->offset == 0) m_changed.push_back(styles);
    findPlotStyle();
}

// --- planning
// -----------------------------------------------------------------------------------------------------------

void Skeleton::planTables() {
    m_ucsTable = m_handles.take();
    m_dimstyleTable = m_handles.take();
    m_dimstyle = m_handles.take();
    if (RecordNames(m_data.fixed.appTable).find(odText("ACAD")) == nullptr) m_application = m_handles.take();
}

void Skeleton::planRoot() {
    const OdDbDictionary* const root = dictionaryOf(m_data, m_data.fixed.dictionary);
    if (root == nullptr || root->has(odText(kLayouts))) return; // whoever made layouts made the rest
    for (const std::string_view name : kRootNames)
        if (!root->has(odText(name))) m_root.push_back({name, m_handles.take()});
    if (isMade(kLineStyles)) m_lineStyle = m_handles.take();
    if (isMade(kPlotStyles)) m_plotStyle = m_handles.take();
    if (!m_root.empty()) m_changed.push_back(m_data.fixed.dictionary);
}

void Skeleton::planLayouts() {
    if (!isMade(kLayouts)) return;
    int papers = 0;
    for (Node* record = m_data.fixed.blockTable->firstPart; record != nullptr; record = record->next) {
        if (record->isErased()) continue;
        const auto* block = OdDbBlockTableRecord::cast(m_data.bodyOf(record));
        if (block == nullptr || !block->isLayout()) continue;
        const bool model = record == m_data.fixed.modelSpace;
        const int order = model ? 0 : ++papers;
        const std::string name = model ? "Model" : "Layout" + std::to_string(order);
        m_layouts.push_back({record, name, order, m_handles.take()});
        m_layoutHandles.emplace(record, m_layouts.back().handle);
        m_changed.push_back(record);
    }
}

/// A drawing that has plot styles calls the ordinary one "Normal".
void Skeleton::findPlotStyle() {
    if (m_plotStyle != 0) return;
    const OdDbDictionary* const root = dictionaryOf(m_data, m_data.fixed.dictionary);
    if (root == nullptr) return;
    const OdDbDictionary* const styles = dictionaryOf(m_data, root->getAt(odText(kPlotStyles)).node());
    if (styles == nullptr) return;
    const OdDbObjectId normal = styles->getAt(odText("Normal"));
    if (!normal.isNull()) m_plotStyle = normal.node()->handle;
}

bool Skeleton::isMade(std::string_view rootName) const {
    return std::any_of(m_root.begin(), m_root.end(),
                       [&](const RootEntry& made) { return made.name == rootName; });
}

// --- owners
// -----------------------------------------------------------------------------------------------------------

void Skeleton::findOwners() {
    if (m_data.source == nullptr || m_data.version < kFirstObjectVersion) return;
    m_data.nodes.forEach([this](const Node& node) { noteOwners(node); });
}

/// Notes what a dictionary lists, and the extension dictionary of any entry. The first one to name an object
/// owns it; whoever an object reports to owns it when nobody lists it.
void Skeleton::noteOwners(const Node& node) {
    enum class List { kNone, kExtension, kReactors, kOther } list = List::kNone;
    const bool lists = node.kind == kKindDictionary || node.kind == kKindDictionaryWithDefault;
    const Values values(*m_data.source);
    std::uint64_t reactor = 0;
    forEachGroup(*m_data.source, node, [&](const Group& group) {
        bool bad = false;
        if (group.code == 102) {
            const std::string_view name = stripped(group.raw());
            list = name == "{ACAD_XDICTIONARY" ? List::kExtension
                   : name == "{ACAD_REACTORS"  ? List::kReactors
                   : name == "}"               ? List::kNone
                                               : List::kOther;
        } else if (group.code == 350 || group.code == 360) {
            if (list == List::kExtension || (lists && list == List::kNone))
                m_owners.emplace(values.handle(group, bad), node.handle);
        } else if (group.code == 330 && list == List::kReactors && reactor == 0) {
            reactor = values.handle(group, bad);
        }
        return group.code < kFirstXData;
    });
    const bool object = !node.has(Node::kEntity) && !node.has(Node::kTableRecord);
    if (object && reactor != 0 && m_data.handles.find(reactor) != nullptr)
        m_reactors.emplace(node.handle, reactor);
}

std::uint64_t Skeleton::ownerOf(const Node& object) const {
    for (const auto* owners : {&m_owners, &m_reactors})
        if (const auto found = owners->find(object.handle); found != owners->end()) return found->second;
    return 0;
}

// --- header, classes, tables
// -----------------------------------------------------------------------------------------------------------

OutGroups Skeleton::header() const {
    return m_data.source == nullptr ? newDrawingHeader() : OutGroups();
}

std::vector<OutEntry> Skeleton::classes() const {
    std::vector<std::string_view> known;
    for (const Section& section : m_data.sections) {
        if (section.name != "CLASSES") continue;
        Node place;
        place.offset = section.offset;
        place.length = static_cast<std::uint32_t>(section.length);
        forEachGroup(*m_data.source, place, [&known](const Group& group) {
            if (group.code == 1) known.push_back(stripped(group.raw()));
            return true;
        });
    }
    std::vector<OutEntry> made;
    for (const ClassRow& row : skeletonClasses()) {
        const bool used = row.type == "LAYOUT" ? !m_layouts.empty() : isMade(kPlotStyles);
        if (!used || std::find(known.begin(), known.end(), row.type) != known.end()) continue;
        OutGroups groups = {OutGroup::ascii(1, row.type), OutGroup::ascii(2, row.name),
                            OutGroup::ascii(3, "ObjectDBX Classes"), OutGroup::integer(90, 0)};
        const auto count = row.type == "LAYOUT" ? static_cast<long long>(m_layouts.size()) : 1;
        if (m_version >= FileVersion::kR2004) groups.push_back(OutGroup::integer(91, count));
        groups.push_back(OutGroup::integer(280, 0));
        groups.push_back(OutGroup::integer(281, 0));
        made.push_back({"CLASS", std::move(groups)});
    }
    return made;
}

std::vector<OutEntry> Skeleton::table(std::string_view name) const {
    std::vector<OutEntry> made;
    if (!m_complete) return made;
    if (name == "UCS") made.push_back(tableEntry(name, m_ucsTable, 0));
    if (name != "DIMSTYLE") return made;
    made.push_back(tableEntry(name, m_dimstyleTable, 1));
    addDimensionMark(made.back().groups);
    made.push_back(dimensionStyleEntry(m_dimstyle, m_dimstyleTable, m_data.fixed.standardStyle->handle));
    return made;
}

std::vector<OutEntry> Skeleton::records(const Node& table) const {
    std::vector<OutEntry> made;
    if (m_application != 0 && &table == m_data.fixed.appTable)
        made.push_back(recordEntry("APPID", m_application, table.handle, "AcDbRegAppTableRecord", "ACAD"));
    const bool lacksStandard = m_data.source == nullptr
                                   ? RecordNames(&table).find(odText("Standard")) == nullptr
                                   : !hasRecords(table);
    if (m_complete && &table == m_data.fixed.dimstyleTable && lacksStandard)
        made.push_back(dimensionStyleEntry(m_dimstyle, table.handle, m_data.fixed.standardStyle->handle));
    return made;
}

// --- objects
// -----------------------------------------------------------------------------------------------------------

std::vector<OutEntry> Skeleton::objects() const {
    std::vector<OutEntry> made;
    for (const RootEntry& item : m_root) {
        made.push_back(rootEntry(item));
        if (item.name == kLineStyles) made.push_back(lineStyleEntry(m_lineStyle, item.handle));
        if (item.name == kPlotStyles) made.push_back(bareEntry("ACDBPLACEHOLDER", m_plotStyle, item.handle));
        if (item.name != kLayouts) continue;
        for (const Layout& layout : m_layouts) made.push_back(layoutOf(layout, item.handle));
    }
    return made;
}

OutEntry Skeleton::rootEntry(const RootEntry& item) const {
    const std::uint64_t owner = m_data.fixed.dictionary->handle;
    if (item.name == kPlotStyles) return plotStylesEntry(item.handle, owner, m_plotStyle);
    OutEntry made = dictionaryEntry("DICTIONARY", item.handle, owner);
    if (item.name == kLineStyles) addItem(made.groups, odText("Standard"), m_lineStyle);
    if (item.name == kLayouts)
        for (const Layout& layout : m_layouts) addItem(made.groups, odText(layout.name), layout.handle);
    return made;
}

/// Limits, base point and extents of a space stand in the header up to R14, and there as well since.
OutEntry Skeleton::layoutOf(const Layout& layout, std::uint64_t owner) const {
    constexpr double kFar = 1e20;
    LayoutFacts facts;
    facts.name = layout.name;
    facts.order = layout.order;
    facts.handle = layout.handle;
    facts.owner = owner;
    facts.record = layout.record->handle;
    facts.limitsFrom = headerPoint(layout, "LIMMIN", {0, 0, 0});
    facts.limitsTo = headerPoint(layout, "LIMMAX", {420, 297, 0});
    facts.base = layout.order == 0 ? m_data.basePoint : OdGePoint3d{0, 0, 0};
    facts.extentsFrom = headerPoint(layout, "EXTMIN", {kFar, kFar, kFar});
    facts.extentsTo = headerPoint(layout, "EXTMAX", {-kFar, -kFar, -kFar});
    return layoutEntry(facts, m_version);
}

OdGePoint3d Skeleton::headerPoint(const Layout& layout, const char* name,
                                  const OdGePoint3d& otherwise) const {
    if (layout.order > 1) return otherwise;
    const OdSmartPtr<OdResBuf> value =
        readHeaderVariable(m_data, (layout.order == 0 ? "" : "P") + std::string(name));
    return value.isNull() ? otherwise : value->getPoint3d();
}

// --- entries of the database
// -----------------------------------------------------------------------------------------------------------

void Skeleton::addTo(const Node& node, OutGroups& groups) const {
    if (&node == m_data.fixed.dictionary) return addRootEntries(groups);
    if (&node == m_data.fixed.dimstyleTable) return addDimensionMark(groups);
    const auto layout = m_layoutHandles.find(&node);
    if (layout == m_layoutHandles.end()) return;
    const OutGroup link = OutGroup::handle(340, layout->second);
    const auto at = [&groups](int code) {
        return std::find_if(groups.begin(), groups.end(),
                            [code](const OutGroup& g) { return g.code == code; });
    };
    if (const auto there = at(340); there != groups.end())
        *there = link;
    else if (const auto name = at(2); name != groups.end())
        groups.insert(name + 1, link);
}

void Skeleton::addRootEntries(OutGroups& groups) const {
    OutGroups items;
    for (const RootEntry& item : m_root) addItem(items, odText(item.name), item.handle);
    const auto behind = std::find_if(groups.begin(), groups.end(), [](const OutGroup& g) {
        return g.code == 999 || g.code >= kFirstXData;
    });
    groups.insert(behind, std::make_move_iterator(items.begin()), std::make_move_iterator(items.end()));
}

} // namespace lm::drawing
