// SPDX-License-Identifier: MIT
#include "dxf/upgrade.h"

#include "dxf/skeleton.h"
#include "dxf/subclasses.h"
#include "dxf/upgradeview.h"
#include "dxf/write_fields.h"
#include "model/rawgroups.h"

#include <algorithm>
#include <tuple>

namespace lm::drawing {

namespace {

constexpr int kFlags = 70;
constexpr int kRows = 71;
constexpr int kMark = 100;
constexpr int kList = 102;
constexpr int kOwner = 330;
constexpr int kComment = 999;
constexpr int kFirstXData = 1000;

/// The code that a group is ordered by: that of x for the parts of a point.
int baseOf(int code) {
    if (code == 38 || code == 39) return code; // elevation and thickness lie between the points
    if (code >= 10 && code <= 39) return 10 + code % 10;
    if (code >= 110 && code <= 139) return 110 + code % 10;
    if (code >= 210 && code <= 239) return 210 + code % 10;
    return code;
}

class Upgrade {
public:
    Upgrade(const DatabaseData& data, const Skeleton& skeleton, const Node& node, OutGroups& groups)
        : m_data(data), m_skeleton(skeleton), m_node(node), m_groups(groups),
          m_kind(data.kinds.name(node.kind)) {}

    void run() {
        split();
        if (m_node.kind == kKindTable)
            table();
        else if (m_node.has(Node::kTableRecord))
            record();
        else if (m_node.has(Node::kEntity) || m_node.kind == kKindBlock || m_node.kind == kKindEndblk)
            entity();
        else
            object();
        join();
    }

private:
    // --- taking apart and putting together
    // -------------------------------------------------------------------------------------------------------

    /// Head: handle, lists in braces and owner. Tail: comments and extended data. The rest is the body.
    void split() {
        const int handleCode = m_node.kind == kKindDimstyle ? 105 : 5;
        m_marked =
            std::any_of(m_groups.begin(), m_groups.end(), [](const OutGroup& g) { return g.code == kMark; });
        bool listed = false, hasHandle = false, hasOwner = false, behindMark = false;
        OutGroups lists, comments, xdata;
        std::size_t lastList = 0;
        OutGroup handle = OutGroup::handle(handleCode, m_node.handle);
        for (OutGroup& group : m_groups) {
            behindMark = behindMark || group.code == kMark;
            // Behind extended data there are no fields, whatever the codes are.
            if (group.code >= kFirstXData || !xdata.empty()) {
                xdata.push_back(std::move(group));
            } else if (group.code == kComment) {
                comments.push_back(std::move(group));
            } else if (behindMark) {
                m_body.push_back(std::move(group));
            } else if (group.code == handleCode && !hasHandle) {
                hasHandle = true;
                if (handleOf(group) == m_node.handle) handle = std::move(group);
            } else if (listed || (group.code == kList && opensList(group))) {
                if (!listed) lastList = lists.size();
                listed = group.code != kList || opensList(group);
                lists.push_back(std::move(group));
            } else if (group.code == kOwner && !hasOwner) {
                hasOwner = true;
                m_namedOwner = std::move(group);
            } else {
                m_body.push_back(std::move(group));
            }
        }
        m_head.push_back(std::move(handle));
        if (listed) { // what nobody closed would take in all that follows
            const auto open = lists.begin() + static_cast<std::ptrdiff_t>(lastList);
            m_tail.assign(std::make_move_iterator(open), std::make_move_iterator(lists.end()));
            lists.erase(open, lists.end());
        }
        move(lists, m_head);
        move(comments, m_tail);
        move(xdata, m_tail);
    }

    void join() {
        m_groups.clear();
        move(m_head, m_groups);
        move(m_body, m_groups);
        move(m_tail, m_groups);
    }

    static void move(OutGroups& from, OutGroups& to) {
        to.insert(to.end(), std::make_move_iterator(from.begin()), std::make_move_iterator(from.end()));
        from.clear();
    }

    static bool opensList(const OutGroup& group) {
        const std::string_view text = stripped(group.raw());
        return !text.empty() && text.front() == '{';
    }

    bool has(int code) const {
        return std::any_of(m_body.begin(), m_body.end(),
                           [code](const OutGroup& group) { return group.code == code; });
    }

    OutGroups::iterator markAt(std::string_view name) {
        return std::find_if(m_body.begin(), m_body.end(),
                            [name](const OutGroup& group) { return group.isMark(name); });
    }

    /// Names the owner, in the file's own bytes where they are right. An owner that nobody knows stays as the
    /// file has it.
    void putOwner(std::uint64_t owner, bool known) {
        const bool named = m_namedOwner.code == kOwner;
        if (named && (!known || handleOf(m_namedOwner) == owner))
            m_head.push_back(std::move(m_namedOwner));
        else if (known)
            m_head.push_back(OutGroup::handle(kOwner, owner));
    }

    void putNodeOwner() {
        putOwner(m_node.owner != nullptr ? m_node.owner->handle : 0, m_node.owner != nullptr);
    }

    // --- entities
    // -------------------------------------------------------------------------------------------------------

    void entity() {
        putNodeOwner();
        if (m_node.kind == kKindBlock) nameBlock();
        if (!m_marked) markEntity();
        if (m_kind == "VIEWPORT") addView(m_skeleton.layers(), m_body, m_tail);
    }

    void markEntity() {
        OutGroups own = std::move(m_body);
        m_body.clear();
        EntryFacts facts = factsOf(own);
        m_body.push_back(OutGroup::mark("AcDbEntity"));
        takeCommon(own);
        arrange(partsOfEntity(m_kind, facts), own);
    }

    EntryFacts factsOf(const OutGroups& own) const {
        EntryFacts facts;
        int columns = 1, rows = 1;
        for (const OutGroup& group : own) {
            if (group.code != kFlags && group.code != kRows) continue;
            const int value = static_cast<int>(integerOf(group));
            if (group.code == kFlags) facts.flags = columns = value;
            if (group.code == kRows) rows = value;
        }
        facts.array = columns > 1 || rows > 1;
        if (m_node.kind == kKindVertex && m_node.owner != nullptr) facts.ownerFlags = flagsOf(*m_node.owner);
        return facts;
    }

    int flagsOf(const Node& node) const {
        int flags = 0;
        const GroupSpan span = groupsOf(m_data, node);
        forEachGroupIn(span, [&](const Group& group, const char*, const char*) {
            bool bad = false;
            if (group.code == kFlags) flags = static_cast<int>(Values(*span.form).integer(group, bad));
            return group.code != kFlags;
        });
        return flags;
    }

    /// Takes layer, colour and the like over. A kind that isn't known may use their codes for other things
    /// further on.
    void takeCommon(OutGroups& own) {
        const bool known = isKnownEntity(m_kind);
        OutGroups left;
        bool layer = false, open = true;
        for (OutGroup& group : own) {
            open = open && (known || isCommonCode(group.code));
            const bool common = open && isCommonCode(group.code);
            layer = layer || group.code == 8;
            (common ? m_body : left).push_back(std::move(group));
        }
        if (!layer) m_body.push_back(OutGroup::ascii(8, "0"));
        own = std::move(left);
    }

    struct Place {
        std::size_t part;
        std::size_t rank;
        std::size_t from;
    };

    static Place placeOf(std::span<const Subclass> parts, int code, std::size_t from) {
        constexpr std::size_t kBehind = 1000;
        Place place{0, kBehind, from};
        for (std::size_t i = 0; i < parts.size(); ++i) {
            const auto& codes = parts[i].codes;
            const auto found = std::find(codes.begin(), codes.end(), baseOf(code));
            if (found != codes.end()) return {i, static_cast<std::size_t>(found - codes.begin()), from};
            if (parts[i].rest) place.part = i;
        }
        return place;
    }

    /// Puts groups behind the marks that they belong to.
    void arrange(std::span<const Subclass> parts, OutGroups& own) {
        std::vector<Place> places;
        for (std::size_t i = 0; i < own.size(); ++i) places.push_back(placeOf(parts, own[i].code, i));
        std::sort(places.begin(), places.end(), [](const Place& a, const Place& b) {
            return std::tie(a.part, a.rank, a.from) < std::tie(b.part, b.rank, b.from);
        });
        auto next = places.begin();
        for (std::size_t i = 0; i < parts.size(); ++i) {
            m_body.push_back(OutGroup::mark(parts[i].mark));
            for (; next != places.end() && next->part == i; ++next)
                m_body.push_back(std::move(own[next->from]));
        }
        for (; next != places.end(); ++next) m_body.push_back(std::move(own[next->from]));
    }

    /// R12 spells the blocks of the layouts with a dollar sign; their records have the names of later times.
    void nameBlock() {
        if (m_node.owner == nullptr || m_node.owner->body == nullptr) return;
        const auto* record = OdDbBlockTableRecord::cast(m_node.owner->body);
        if (record == nullptr || !record->isLayout()) return;
        for (OutGroup& group : m_body) {
            if ((group.code == 2 || group.code == 3) && textOf(group) != record->getName())
                group = OutGroup::text(group.code, record->getName());
        }
    }

    // --- tables and records
    // -------------------------------------------------------------------------------------------------------

    void table() {
        putOwner(0, true);
        const auto name =
            std::find_if(m_body.begin(), m_body.end(), [](const OutGroup& g) { return g.code == 2; });
        if (name == m_body.end()) return;
        const bool dimensions = stripped(name->raw()) == "DIMSTYLE";
        m_head.insert(m_head.begin(), std::move(*name)); // the name of a table stands before its handle
        m_body.erase(name);
        if (!m_marked) m_body.insert(m_body.begin(), OutGroup::mark("AcDbSymbolTable"));
        if (!dimensions || markAt("AcDbDimStyleTable") != m_body.end()) return;
        m_body.push_back(OutGroup::mark("AcDbDimStyleTable"));
        m_body.push_back(OutGroup::integer(71, 0));
    }

    void record() {
        putNodeOwner();
        const char* const mark = markOfRecord(m_kind);
        if (!m_marked && mark != nullptr)
            m_body.insert(m_body.begin(), {OutGroup::mark("AcDbSymbolTableRecord"), OutGroup::mark(mark)});
        switch (m_node.kind) {
        case kKindLtype:
            tellDashes();
            break;
        case kKindLayer:
            completeLayer();
            break;
        case kKindDimstyle:
            resolveArrows();
            break;
        default:
            break;
        }
    }

    /// From R13 on each dash says whether it is a plain one.
    void tellDashes() {
        constexpr int kDash = 49, kSort = 74;
        if (has(kSort)) return;
        OutGroups told;
        for (OutGroup& group : m_body) {
            const bool dash = group.code == kDash;
            told.push_back(std::move(group));
            if (dash) told.push_back(OutGroup::integer(kSort, 0));
        }
        m_body = std::move(told);
    }

    void completeLayer() {
        constexpr int kWeight = 370, kPlotStyle = 390, kDefaultWeight = -3;
        if (!has(kWeight)) m_body.push_back(OutGroup::integer(kWeight, kDefaultWeight));
        if (!has(kPlotStyle) && m_skeleton.plotStyle() != 0)
            m_body.push_back(OutGroup::handle(kPlotStyle, m_skeleton.plotStyle()));
    }

    /// Arrow blocks are named by 5, 6 and 7 up to R14 and by handles since; an empty name is the plain arrow,
    /// which needs no group. A name that no block has stays.
    void resolveArrows() {
        constexpr int kTextStyle = 340, kFirstArrow = 342;
        OutGroups kept, arrows;
        for (OutGroup& group : m_body) {
            const bool arrow = group.code >= 5 && group.code <= 7;
            const OdString name = arrow ? textOf(group) : OdString();
            if (arrow && name.isEmpty()) continue;
            const Node* const block = arrow ? arrowBlock(name) : nullptr;
            if (block != nullptr)
                arrows.push_back(OutGroup::handle(kFirstArrow + group.code - 5, block->handle));
            else
                kept.push_back(std::move(group));
        }
        m_body = std::move(kept);
        if (!has(kTextStyle) && m_data.fixed.standardStyle != nullptr)
            m_body.push_back(OutGroup::handle(kTextStyle, m_data.fixed.standardStyle->handle));
        std::sort(arrows.begin(), arrows.end(),
                  [](const OutGroup& a, const OutGroup& b) { return a.code < b.code; });
        move(arrows, m_body);
    }

    /// The block of an arrow. Arrows that programs bring along have an underscore before their name.
    const Node* arrowBlock(const OdString& name) const {
        const Node* const block = m_skeleton.blocks().find(name);
        return block != nullptr ? block : m_skeleton.blocks().find(odText("_") + name);
    }

    // --- objects
    // -------------------------------------------------------------------------------------------------------

    void object() {
        const bool root = &m_node == m_data.fixed.dictionary;
        std::uint64_t owner = m_node.owner != nullptr ? m_node.owner->handle : 0;
        if (owner == 0 && !root) owner = m_skeleton.ownerOf(m_node);
        putOwner(owner, root || owner != 0);
        const char* const mark = markOfObject(m_kind);
        if (!m_marked && mark != nullptr) m_body.insert(m_body.begin(), OutGroup::mark(mark));
    }

    const DatabaseData& m_data;
    const Skeleton& m_skeleton;
    const Node& m_node;
    OutGroups& m_groups;
    const std::string_view m_kind;
    bool m_marked = false;
    OutGroup m_namedOwner; // code 0: the file names none
    OutGroups m_head, m_body, m_tail;
};

} // namespace

void upgradeEntry(const DatabaseData& data, const Skeleton& skeleton, const Node& node, OutGroups& groups) {
    Upgrade(data, skeleton, node, groups).run();
}

} // namespace lm::drawing
