// SPDX-License-Identifier: MIT
#include "check/steps.h"

#include "drawing/report.h"

#include <algorithm>

namespace lm::drawing {

std::size_t CheckResult::count(int number) const {
    const auto found = m_counts.find(number);
    return found != m_counts.end() ? found->second.found : 0;
}

CheckResult::Count CheckResult::sum() const {
    Count all;
    for (const auto& [number, count] : m_counts) {
        all.found += count.found;
        all.mended += count.mended;
    }
    return all;
}

void CheckResult::add(Finding finding) {
    const bool kept = keeps(finding.number);
    addCount(finding.number, {1, finding.mended ? std::size_t{1} : std::size_t{0}});
    if (kept) m_findings.push_back(std::move(finding));
}

void CheckResult::addCount(int number, Count count) {
    if (count.found == 0) return;
    Count& sum = m_counts[number];
    sum.found += count.found;
    sum.mended += count.mended;
}

void CheckResult::sort() {
    std::stable_sort(m_findings.begin(), m_findings.end(),
                     [](const Finding& a, const Finding& b) { return a.number < b.number; });
}

const char* CheckResult::describe(int number) {
    switch (static_cast<Flaw>(number)) {
    case Flaw::kUnknownOwner:
        return "an owner that isn't there";
    case Flaw::kOtherOwner:
        return "an owner other than the place";
    case Flaw::kUnknownEntry:
        return "a dictionary entry without its object";
    case Flaw::kDoubledEntry:
        return "a dictionary entry whose name stands twice";
    case Flaw::kNamesByCase:
        return "a name that differs from another in its case only";
    case Flaw::kEntriesByCase:
        return "a dictionary entry that differs from another in its case only";
    case Flaw::kUnknownInXData:
        return "a handle in extended data without its object";
    case Flaw::kUnknownReactor:
        return "a reactor that isn't there";
    case Flaw::kUnknownExtension:
        return "an extension dictionary that isn't there";
    case Flaw::kUnknownPointer:
        return "a reference to an object that isn't there";
    case Flaw::kUnregistered:
        return "extended data of an application that isn't registered";
    case Flaw::kUnknownLinetype:
        return "a line type that the table lacks";
    case Flaw::kUnknownStyle:
        return "a text style that the table lacks";
    case Flaw::kBlockCircle:
        return "a block that contains itself";
    case Flaw::kStrayPart:
        return "a part that belongs to nothing";
    case Flaw::kMissingRecord:
        return "a record that every drawing has is missing";
    case Flaw::kDictionaryCircle:
        return "a dictionary that contains itself";
    case Flaw::kLowSeed:
        return "a seed for handles that are in use";
    case Flaw::kBadText:
        return "text that isn't valid in its encoding";
    case Flaw::kNoRecord:
        return "a block without a record";
    case Flaw::kNoBlock:
        return "a block record without a block";
    case Flaw::kUnknownPicture:
        return "a block for the picture of an entity that isn't there";
    case Flaw::kUnknownSetting:
        return "a setting that names what isn't there";
    case Flaw::kBadXData:
        return "extended data that can't be read";
    case Flaw::kNoVersion:
        return "a version that is empty";
    }
    return Report::describe(static_cast<Defect>(number));
}

std::string CheckResult::text(const Finding& finding) {
    std::string line = std::to_string(finding.number) + ": " + describe(finding.number);
    if (!finding.kind.empty()) line += ", " + finding.kind;
    if (finding.handle != 0) line += (finding.kind.empty() ? ", handle " : " ") + hexText(finding.handle);
    if (!finding.text.empty()) line += ": " + finding.text;
    return finding.mended ? line + " (mended)" : line;
}

std::string hexText(std::uint64_t handle) {
    return utf8(OdDbHandle(handle).ascii());
}

std::string quoted(const OdString& name) {
    return "\"" + utf8(name) + "\"";
}

OdString recordName(DatabaseData& data, Node* node) {
    const auto* record = OdDbSymbolTableRecord::cast(data.bodyOf(node));
    return record != nullptr ? record->getName() : OdString();
}

WideString foldedName(WideView name) {
    WideString lower(name);
    for (WideChar& unit : lower) unit = system::toLower(unit);
    return lower;
}

bool isDictionary(const Node& node) {
    return node.kind == kKindDictionary || node.kind == kKindDictionaryWithDefault;
}

OdDbDictionary* dictionaryOf(DatabaseData& data, Node& node) {
    return isDictionary(node) && node.isLive() ? OdDbDictionary::cast(data.bodyOf(&node)) : nullptr;
}

namespace {

/// Reads every object, so that the reader's report is whole.
void readEverything(DatabaseData& data) {
    data.nodes.forEach([&data](Node& node) {
        if (node.kind != kKindNone && node.kind != kKindBlock && node.kind != kKindEndblk && node.isLive())
            data.bodyOf(&node);
    });
}

/// Whether what the reader did about a defect also stands in a file that is saved afterwards. The other
/// entries are kept as they came.
bool isMendedByReading(Defect defect) {
    switch (defect) {
    case Defect::kMissingHandle:
    case Defect::kDoubledHandle:
    case Defect::kBadHandle:
    case Defect::kMissingName:
    case Defect::kMissingEnd:
    case Defect::kUnlistedLayer:
    case Defect::kMissingTable:
        return true;
    case Defect::kDoubledName: // some of these three are, see ReportTaker::isMended
    case Defect::kUnknownOwner:
    case Defect::kStrayEntry:
    case Defect::kUnknownBlock:
    case Defect::kBadNumber:
    case Defect::kBadText:
    case Defect::kBrokenGroup:
        return false;
    }
    return false;
}

/// Handles that the reader names for doubled records which still are.
std::unordered_set<std::uint64_t> stillDoubledHandles(const CheckContext& context) {
    std::unordered_set<std::uint64_t> handles;
    for (const Node* record : context.stillDoubled) handles.insert(record->handle);
    for (const BlockFrame& frame : context.data.frames)
        if (context.stillDoubled.count(frame.record) != 0) handles.insert(frame.begin->handle);
    return handles;
}

/// Takes over what the reader found.
class ReportTaker {
public:
    explicit ReportTaker(CheckContext& context)
        : m_context(context), m_report(context.data.report), m_doubled(stillDoubledHandles(context)) {}

    void run() {
        for (const Repair& repair : m_report.repairs()) take(repair);
        for (const auto& [defect, count] : m_taken) {
            // The rest of a kind is only counted; it fares like those that were kept.
            const std::size_t rest = m_report.count(defect) - count.found;
            std::size_t mended = count.mended == count.found ? rest : 0;
            if (defect == Defect::kUnknownOwner)
                mended =
                    std::min(rest, m_context.placed.size() - std::min(m_context.placed.size(), count.mended));
            m_context.result.addCount(static_cast<int>(defect), {rest, mended});
        }
    }

private:
    bool isMended(const Repair& repair, const Node* node) const {
        if (repair.defect == Defect::kDoubledName)
            return m_context.fix && m_doubled.count(repair.handle) == 0;
        if (repair.defect == Defect::kUnknownOwner) return m_context.placed.count(node) != 0;
        if (repair.defect == Defect::kStrayEntry) // where a table was missing, its loose records made it
            return node != nullptr && node->has(Node::kTableRecord) && node->owner != nullptr &&
                   node->owner->length == 0;
        return isMendedByReading(repair.defect);
    }

    void take(const Repair& repair) {
        const Node* const node = repair.handle != 0 ? m_context.data.handles.find(repair.handle) : nullptr;
        Finding finding{
            static_cast<int>(repair.defect), repair.handle, {}, repair.detail, isMended(repair, node)};
        if (node != nullptr) finding.kind = std::string(m_context.data.kinds.name(node->kind));
        if (repair.line != 0)
            finding.text =
                "place " + std::to_string(repair.line) + (finding.text.empty() ? "" : ": ") + finding.text;
        CheckResult::Count& count = m_taken[repair.defect];
        ++count.found;
        if (finding.mended) ++count.mended;
        m_context.result.add(std::move(finding));
    }

    CheckContext& m_context;
    const Report& m_report;
    std::unordered_set<std::uint64_t> m_doubled;
    std::map<Defect, CheckResult::Count> m_taken;
};

} // namespace

CheckResult check(OdDbDatabase& database, const CheckOptions& options) {
    CheckResult result;
    CheckContext context{database.data(), options.fix, result, {}, {}, {}};
    readEverything(context.data);
    checkEntries(context);
    checkNames(context);
    checkCircles(context);
    checkStructure(context);
    ReportTaker(context).run();
    result.sort();
    return result;
}

} // namespace lm::drawing
