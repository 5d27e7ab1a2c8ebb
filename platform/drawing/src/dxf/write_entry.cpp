// SPDX-License-Identifier: MIT
#include "dxf/write_entry.h"

#include "dxf/upgrade.h"
#include "dxf/write_chains.h"
#include "model/linetext.h"
#include "model/names.h"

#include "drawing/blockreference.h"

#include <optional>

namespace lm::drawing {

namespace {

constexpr int kHandle = 5, kDimstyleHandle = 105, kOwner = 330, kSubclass = 100, kBraces = 102, kCount = 70;
constexpr int kFollow = 66, kFirstXData = 1000, kComment = 999;

OutGroups::iterator at(OutGroups& groups, std::size_t index) {
    return groups.begin() + static_cast<std::ptrdiff_t>(index);
}

/// Where the head of an entry ends: at its first mark, or where it has none at the end of its fields.
std::size_t endOfHead(const OutGroups& groups) {
    std::size_t i = 0;
    while (i < groups.size() && groups[i].code != kSubclass && groups[i].code < kFirstXData) ++i;
    return i;
}

/// A group of the head that isn't in braces, or the number of groups.
std::size_t findInHead(const OutGroups& groups, int code) {
    bool braces = false;
    for (std::size_t i = 0; i < endOfHead(groups); ++i) {
        if (groups[i].code == kBraces) braces = stripped(groups[i].raw()).substr(0, 1) == "{";
        if (groups[i].code == code && !braces) return i;
    }
    return groups.size();
}

/// The group by which a block or a table is known: the first one that isn't in braces.
std::size_t findName(const OutGroups& groups) {
    constexpr int kName = 2;
    bool braces = false;
    for (std::size_t i = 0; i < groups.size() && groups[i].code < kFirstXData; ++i) {
        if (groups[i].code == kBraces) braces = stripped(groups[i].raw()).substr(0, 1) == "{";
        if (groups[i].code == kName && !braces) return i;
    }
    return groups.size();
}

/// Entries of this type may also stand where no records do.
bool isBlockRecord(const Node& node) {
    return node.kind == kKindBlockRecord && node.has(Node::kTableRecord);
}

std::span<const LayoutItem> layoutFor(const Node& node) {
    const std::span<const LayoutItem> own = layoutOf(node.kind);
    if (!own.empty()) return own;
    return layoutOfOthers(node.has(Node::kEntity));
}

} // namespace

EntryMaker::EntryMaker(WritePlan& plan, FileVersion version, const Skeleton& skeleton)
    : m_plan(plan), m_data(plan.data), m_version(version), m_skeleton(skeleton),
      m_completed(skeleton.changed().begin(), skeleton.changed().end()) {}

OutGroups EntryMaker::make(Node& node) {
    const bool isCopy = node.offset == 0;
    const bool isNew = isCopy && groupsOf(m_data, node).isEmpty();
    OutGroups groups = isNew ? fresh(node) : given(node);
    if (!isNew && (isCopy || m_plan.isEdited(node))) edit(groups, node, isCopy);
    m_plan.renamed.apply(node.kind, groups);
    if (m_plan.anyDead) dropDead(m_data, m_data.kinds.name(node.kind), groups);
    if (m_completed.count(&node) != 0) m_skeleton.addTo(node, groups);
    return groups;
}

/// The groups that an entry came with, upgraded where they are of an old file.
OutGroups EntryMaker::given(const Node& node) {
    OutGroups groups;
    const GroupSpan span = groupsOf(m_data, node);
    forEachGroupIn(span, [&](const Group& group, const char* begin, const char* end) {
        if (node.offset != 0 || group.code < kFirstXData)
            groups.push_back({group.code, SourceGroup{group, begin, end, span.form}});
        return true;
    });
    if (span.old || (span.isEmpty() && isOldSource(m_data))) upgradeEntry(m_data, m_skeleton, node, groups);
    return groups;
}

// --- changed entries
// ----------------------------------------------------------------------------------------------------

void EntryMaker::edit(OutGroups& groups, Node& node, bool isCopy) {
    editHandle(groups, node);
    editOwner(groups, node, isCopy);
    if (isCopy && node.has(Node::kEntity)) editPaper(groups, node);
    const bool known = node.kind == kKindBlock || node.kind == kKindEndblk || node.kind == kKindTable ||
                       node.kind == kKindSeqend;
    if (node.body != nullptr && !known)
        editBody(groups, node, {m_data, node, isCopy ? nullptr : m_data.source.get()});
    if (node.kind == kKindInsert && (isCopy || m_plan.attributesChanged.count(&node) != 0))
        editFollow(groups, node);
    if (node.kind == kKindTable && m_plan.recordsChanged.count(&node) != 0)
        setField(groups, layoutOf(kKindTable), OutGroup::integer(kCount, liveRecords(node)));
    if (node.kind == kKindBlock && node.owner != nullptr && isBlockRecord(*node.owner))
        editBlock(groups, node);
    if (node.kind == kKindDictionary || node.kind == kKindDictionaryWithDefault)
        editEntries(groups, m_data, OdDbDictionary::cast(node.body), isCopy);
    editXDataOf(groups, node, isCopy);
}

void EntryMaker::editHandle(OutGroups& groups, const Node& node) {
    const int code = node.kind == kKindDimstyle ? kDimstyleHandle : kHandle;
    const std::size_t found = findInHead(groups, code);
    if (found == groups.size()) {
        // A table has its name first.
        const std::size_t place = node.kind == kKindTable && !groups.empty() ? 1 : 0;
        groups.insert(at(groups, place), OutGroup::handle(code, node.handle));
    } else if (handleOf(groups[found]) != node.handle) {
        groups[found] = OutGroup::handle(code, node.handle);
    }
}

/// An owner in the file stays unless it is nobody: some programs name other owners than the database has.
void EntryMaker::editOwner(OutGroups& groups, const Node& node, bool isCopy) {
    const std::size_t found = findInHead(groups, kOwner);
    const std::uint64_t owner = node.owner != nullptr ? node.owner->handle : 0;
    // Of several blocks under one name only the owner tells which record is whose.
    const bool ofNewRecord = node.kind == kKindBlock && node.owner != nullptr && node.owner->offset == 0;
    if (found == groups.size()) {
        if (!isCopy && !ofNewRecord) return;
        std::size_t place = endOfHead(groups);
        while (place > 0 && groups[place - 1].code == kComment) --place;
        groups.insert(at(groups, place), OutGroup::handle(kOwner, owner));
        return;
    }
    const std::uint64_t named = handleOf(groups[found]);
    if (named == owner) return;
    const Node* const there = named != 0 ? m_data.handles.find(named) : nullptr;
    if (isCopy || ofNewRecord || (owner != 0 && (there == nullptr || !there->isLive())))
        groups[found] = OutGroup::handle(kOwner, owner);
}

/// A copy may stand in another space than what it was copied from.
void EntryMaker::editPaper(OutGroups& groups, const Node& node) {
    constexpr int kPaper = 67, kLayout = 410;
    for (const int code : {kPaper, kLayout}) {
        const std::size_t found = findField(groups, code);
        if (found != groups.size()) groups.erase(at(groups, found));
    }
    if (standsInPaper(node)) setField(groups, layoutOfOthers(true), OutGroup::integer(kPaper, 1));
}

namespace {

/// The text of an attribute whose file has it in the lines alone: it is no value of its own, and stays out of
/// the field as long as it is what the lines show.
class TextOfLines {
public:
    TextOfLines(const OutGroups& groups, const OdDbObject& body) {
        const auto* attribute = OdDbAttribute::cast(&body);
        const auto* definition = OdDbAttributeDefinition::cast(&body);
        if (attribute != nullptr && attribute->isMTextAttribute())
            m_isIt = shows(groups, *attribute, attribute->getMTextAttribute()->contents());
        if (definition != nullptr && definition->isMTextAttributeDefinition())
            m_isIt = shows(groups, *definition, definition->getMTextAttributeDefinition()->contents());
    }
    /// Puts the field back as it was.
    void restore(OutGroups& groups) const {
        const std::size_t now = m_isIt ? findField(groups, kText) : groups.size();
        if (now == groups.size()) return;
        if (m_was)
            groups[now] = *m_was;
        else
            groups.erase(at(groups, now));
    }

private:
    static constexpr int kText = 1, kPart = 3;

    bool shows(const OutGroups& groups, const OdDbText& text, const OdString& contents) {
        const std::size_t field = findField(groups, kText);
        if (field != groups.size()) m_was = groups[field];
        if (m_was && !textOf(*m_was).isEmpty()) return false;
        // By the lines of the file too: who changed them through the attribute has said nothing of its text.
        OdString read;
        forPlaces(groups, [&](std::size_t i, bool, bool embedded) {
            if (embedded && (groups[i].code == kText || groups[i].code == kPart))
                read = read + textOf(groups[i]);
        });
        return text.textString() == plainTextOf(contents) || text.textString() == plainTextOf(read);
    }

    std::optional<OutGroup> m_was;
    bool m_isIt = false;
};

} // namespace

void EntryMaker::editBody(OutGroups& groups, Node& node, const ReadGroups& read) {
    const OdDbObject& body = *node.body;
    const std::span<const LayoutItem> layout = layoutFor(node);
    const TextOfLines text(groups, body);
    editFields(groups, body, *specOf(node).fields, layout, read);
    text.restore(groups);
    if (const auto* polyline = OdDbPolyline::cast(&body)) editVertices(groups, *polyline);
    if (const auto* text = OdDbMText::cast(&body)) editContents(groups, *text, layout);
    if (const auto* record = OdDbXrecord::cast(&body)) editRecords(groups, *record);
    if (const auto* attribute = OdDbAttribute::cast(&body))
        editEmbedded(groups, attribute->getMTextAttribute().get(), false, read);
    if (const auto* definition = OdDbAttributeDefinition::cast(&body))
        editEmbedded(groups, definition->getMTextAttributeDefinition().get(), true, read);
}

void EntryMaker::editFollow(OutGroups& groups, const Node& node) {
    const bool follow = hasLiveAttributes(node);
    const std::size_t found = findField(groups, kFollow);
    if (found == groups.size() && !follow) return;
    if (found != groups.size() && (integerOf(groups[found]) != 0) == follow) return;
    setField(groups, layoutOf(kKindInsert), OutGroup::integer(kFollow, follow ? 1 : 0));
}

void EntryMaker::editXDataOf(OutGroups& groups, const Node& node, bool isCopy) {
    if (node.body == nullptr) return;
    if (isCopy)
        addXData(groups, *node.body);
    else if (ObjectAccess::hasFlag(*node.body, ObjectAccess::kXDataChanged))
        editXData(groups, *node.body);
}

/// Name and origin of a block are its record's.
void EntryMaker::editBlock(OutGroups& groups, Node& node) {
    constexpr int kName = 2, kNameAgain = 3;
    Node& record = *node.owner;
    const std::span<const LayoutItem> layout = layoutOf(kKindBlock);
    const auto& body = static_cast<const OdDbBlockTableRecord&>(*m_data.bodyOf(&record));
    const std::size_t name = findName(groups);
    if (name == groups.size() || textOf(groups[name]) != body.getName()) {
        if (name == groups.size())
            setField(groups, layout, OutGroup::text(kName, body.getName()));
        else
            groups[name] = OutGroup::text(kName, body.getName());
        setField(groups, layout, OutGroup::text(kNameAgain, body.getName()));
    }
    const double origin[] = {body.origin().x, body.origin().y, body.origin().z};
    for (int i = 0; i < 3; ++i) {
        const int code = 10 + 10 * i;
        const std::size_t found = findField(groups, code);
        const double before = found != groups.size() ? realOf(groups[found]) : 0;
        if (origin[i] != before) setField(groups, layout, OutGroup::real(code, origin[i]));
    }
    const std::size_t flags = findField(groups, kCount);
    const long long before = flags != groups.size() ? integerOf(groups[flags]) : 0;
    const long long now = blockFlags(record, before);
    if (now != before) setField(groups, layout, OutGroup::integer(kCount, now));
}

long long EntryMaker::blockFlags(const Node& record, long long before) {
    constexpr long long kHasDefinitions = 2;
    const auto isWritten = [](const Node& part) { return !part.isErased() && !part.has(Node::kGone); };
    bool changed = false, defined = false;
    for (const Node* part = record.firstPart; part != nullptr; part = part->next) {
        if (part->kind != kKindAttdef) continue;
        changed = changed || part->offset == 0 || !isWritten(*part);
        defined = defined || isWritten(*part);
    }
    if (!changed) return before;
    return defined ? before | kHasDefinitions : before & ~kHasDefinitions;
}

// --- new entries
// --------------------------------------------------------------------------------------------------------

OutGroups EntryMaker::fresh(Node& node) {
    OutGroups groups;
    const std::span<const LayoutItem> layout = layoutOf(node.kind);
    if (layout.empty()) return groups;
    const OdSmartPtr<OdDbObject> unset(specOf(node).make(), kAttach);
    for (const LayoutItem& item : layout)
        if (item.from <= m_version) addItem(groups, item, node, *unset.get());
    if (OdDbObject* const body = node.body) addXData(groups, *body);
    return groups;
}

void EntryMaker::addItem(OutGroups& groups, const LayoutItem& item, Node& node, const OdDbObject& unset) {
    const auto add = [&groups](OutGroup group) { groups.push_back(std::move(group)); };
    switch (item.what) {
    case LayoutItem::kHandle:
        return add(OutGroup::handle(item.code, node.handle));
    case LayoutItem::kOwner:
        return add(OutGroup::handle(item.code, node.owner != nullptr ? node.owner->handle : 0));
    case LayoutItem::kMark:
        return add(OutGroup::mark(item.text));
    case LayoutItem::kInteger:
        return add(OutGroup::integer(item.code, static_cast<long long>(item.number)));
    case LayoutItem::kReal:
        return add(OutGroup::real(item.code, item.number));
    case LayoutItem::kText:
        return add(OutGroup::ascii(item.code, item.text));
    case LayoutItem::kPaper:
        if (standsInPaper(node)) add(OutGroup::integer(item.code, 1));
        return;
    case LayoutItem::kFollow:
        if (hasLiveAttributes(node)) add(OutGroup::integer(item.code, 1));
        return;
    case LayoutItem::kPlotStyle:
        if (m_skeleton.plotStyle() != 0) add(OutGroup::handle(item.code, m_skeleton.plotStyle()));
        return;
    case LayoutItem::kTableName:
        return add(OutGroup::ascii(item.code, tableName(node)));
    case LayoutItem::kCount:
        return add(OutGroup::integer(item.code, liveRecords(node)));
    case LayoutItem::kList:
        return addList(groups, item, node);
    case LayoutItem::kEmbedded:
        return addEmbeddedText(groups, node);
    case LayoutItem::kAlways:
    case LayoutItem::kOptional:
        break;
    }
    const std::size_t before = groups.size();
    const OdDbObject& body = *m_data.bodyOf(&node);
    addField(groups, item, body, unset, *specOf(node).fields);
    constexpr int kLayer = 8, kLinetype = 6;
    if (groups.size() != before || item.what == LayoutItem::kOptional) return;
    if (item.code == kLayer) add(OutGroup::ascii(kLayer, "0"));
    if (item.code == kLinetype) add(OutGroup::ascii(kLinetype, "Continuous"));
}

void EntryMaker::addList(OutGroups& groups, const LayoutItem& item, Node& node) {
    constexpr int kVertexX = 10, kLastPart = 1;
    const OdDbObject& body = *m_data.bodyOf(&node);
    if (const auto* polyline = OdDbPolyline::cast(&body); polyline != nullptr && item.code == kVertexX)
        addVertices(groups, *polyline);
    if (const auto* text = OdDbMText::cast(&body); text != nullptr && item.code == kLastPart)
        addContents(groups, text->contents());
    if (const auto* dictionary = OdDbDictionary::cast(&body)) addEntries(groups, *dictionary);
    if (const auto* record = OdDbXrecord::cast(&body)) addRecords(groups, *record);
}

void EntryMaker::addEmbeddedText(OutGroups& groups, const Node& node) {
    if (const auto* attribute = OdDbAttribute::cast(node.body);
        attribute != nullptr && attribute->isMTextAttribute())
        addEmbedded(groups, *attribute->getMTextAttribute().get(), false);
    if (const auto* definition = OdDbAttributeDefinition::cast(node.body);
        definition != nullptr && definition->isMTextAttributeDefinition())
        addEmbedded(groups, *definition->getMTextAttributeDefinition().get(), true);
}

bool EntryMaker::standsInPaper(const Node& node) {
    const Node* owner = isBlockRecord(node) ? &node : node.owner;
    if (owner == m_lastOwner) return m_lastPaper;
    m_lastOwner = owner;
    while (owner != nullptr && !isBlockRecord(*owner)) owner = owner->owner;
    m_lastPaper = false;
    if (owner == nullptr || owner == m_data.fixed.modelSpace) return false;
    const auto& body = static_cast<const OdDbBlockTableRecord&>(*m_data.bodyOf(const_cast<Node*>(owner)));
    return m_lastPaper = isLayoutName(body.getName().view());
}

std::string_view EntryMaker::tableName(const Node& table) const {
    const FixedEntries& f = m_data.fixed;
    const std::pair<const Node*, std::string_view> names[] = {
        {f.viewportTable, "VPORT"}, {f.linetypeTable, "LTYPE"},    {f.layerTable, "LAYER"},
        {f.styleTable, "STYLE"},    {f.viewTable, "VIEW"},         {f.appTable, "APPID"},
        {f.ucsTable, "UCS"},        {f.dimstyleTable, "DIMSTYLE"}, {f.blockTable, "BLOCK_RECORD"}};
    for (const auto& [node, name] : names)
        if (node == &table) return name;
    return {};
}

long long EntryMaker::liveRecords(const Node& table) const {
    long long count = 0;
    for (const Node* record = table.firstPart; record != nullptr; record = record->next)
        if (!record->isErased() && !record->has(Node::kGone)) ++count;
    return count + static_cast<long long>(m_skeleton.records(table).size());
}

OutGroups EntryMaker::end(const Node& owner) {
    Node node;
    node.kind = kKindSeqend;
    node.handle = m_plan.ends.at(&owner);
    node.owner = const_cast<Node*>(&owner);
    OutGroups groups{OutGroup::handle(kHandle, node.handle), OutGroup::handle(kOwner, owner.handle),
                     OutGroup::mark("AcDbEntity")};
    if (standsInPaper(node)) groups.push_back(OutGroup::integer(67, 1));
    const auto* entity = OdDbEntity::cast(m_data.bodyOf(&const_cast<Node&>(owner)));
    groups.push_back(OutGroup::text(8, entity != nullptr ? entity->layer() : odText("0")));
    return groups;
}

OutGroups EntryMaker::blockBegin(Node& record) {
    OutGroups groups;
    for (const LayoutItem& item : layoutOf(kKindBlock)) addBlockHead(groups, item, record);
    return groups;
}

void EntryMaker::addBlockHead(OutGroups& groups, const LayoutItem& item, Node& record) {
    const auto& body = static_cast<const OdDbBlockTableRecord&>(*m_data.bodyOf(&record));
    const auto add = [&groups](OutGroup group) { groups.push_back(std::move(group)); };
    switch (item.what) {
    case LayoutItem::kHandle:
        return add(OutGroup::handle(item.code, m_plan.frameHandles.at(&record).begin));
    case LayoutItem::kOwner:
        return add(OutGroup::handle(item.code, record.handle));
    case LayoutItem::kList:
        break;
    default:
        return addItem(groups, item, record, body);
    }
    constexpr long long kAnonymous = 1;
    switch (item.code) {
    case kCount:
        return add(OutGroup::integer(item.code, blockFlags(record, body.isAnonymous() ? kAnonymous : 0)));
    case 10:
        return add(OutGroup::real(item.code, body.origin().x));
    case 20:
        return add(OutGroup::real(item.code, body.origin().y));
    case 30:
        return add(OutGroup::real(item.code, body.origin().z));
    default:
        return add(OutGroup::text(item.code, body.getName()));
    }
}

OutGroups EntryMaker::blockEnd(const Node& record) {
    OutGroups groups{OutGroup::handle(kHandle, m_plan.frameHandles.at(&record).end),
                     OutGroup::handle(kOwner, record.handle), OutGroup::mark("AcDbEntity")};
    if (standsInPaper(record)) groups.push_back(OutGroup::integer(67, 1));
    groups.push_back(OutGroup::ascii(8, "0"));
    groups.push_back(OutGroup::mark("AcDbBlockEnd"));
    return groups;
}

} // namespace lm::drawing
