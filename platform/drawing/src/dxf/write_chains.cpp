// SPDX-License-Identifier: MIT
#include "dxf/write_chains.h"

#include "dxf/read.h"
#include "model/names.h"

#include <algorithm>
#include <cstring>
#include <unordered_map>
#include <unordered_set>

namespace lm::drawing {

namespace {

constexpr int kComment = 999;
constexpr int kFirstXData = 1000;
constexpr int kApplication = 1001;
constexpr int kCloning = 280;
constexpr std::string_view kXrecordMark = "AcDbXrecord";

void addPoint(OutGroups& groups, const OdResBuf& record) {
    OdGePoint3d point = record.getPoint3d();
    if (record.payload() != OdResBuf::kPoint) point = {record.getDouble(), 0, 0};
    const int code = record.restype();
    groups.push_back(OutGroup::real(code, point.x));
    groups.push_back(OutGroup::real(code + 10, point.y));
    groups.push_back(OutGroup::real(code + 20, point.z));
}

void addRecord(OutGroups& groups, const OdResBuf& record) {
    const int code = record.restype();
    switch (valueTypeOf(code)) {
    case ValueType::kReal:
        if (pointBase(code) == code)
            addPoint(groups, record);
        else
            groups.push_back(OutGroup::real(code, record.getDouble()));
        break;
    case ValueType::kInt16:
    case ValueType::kInt32:
    case ValueType::kInt64:
    case ValueType::kBool:
        groups.push_back(OutGroup::integer(code, record.getInt64()));
        break;
    case ValueType::kBinary:
        groups.push_back(OutGroup::binary(code, record.getBinary()));
        break;
    default:
        groups.push_back(OutGroup::text(code, record.getString()));
    }
}

bool sameRecord(const OdResBuf& a, const OdResBuf& b) {
    if (a.restype() != b.restype() || a.payload() != b.payload()) return false;
    const auto sameReal = [](double x, double y) { return std::memcmp(&x, &y, sizeof x) == 0; };
    switch (a.payload()) {
    case OdResBuf::kText:
        return a.getString() == b.getString();
    case OdResBuf::kInteger:
        return a.getInt64() == b.getInt64();
    case OdResBuf::kReal:
        return sameReal(a.getDouble(), b.getDouble());
    case OdResBuf::kPoint: {
        const OdGePoint3d p = a.getPoint3d(), q = b.getPoint3d();
        return sameReal(p.x, q.x) && sameReal(p.y, q.y) && sameReal(p.z, q.z);
    }
    case OdResBuf::kId:
        return a.getObjectId() == b.getObjectId();
    case OdResBuf::kBinary:
        return a.getBinary() == b.getBinary();
    default:
        return true;
    }
}

/// A record of a chain and the groups that it was read from, comments behind it included.
struct Piece {
    OdSmartPtr<OdResBuf> record;
    std::size_t first = 0, end = 0;
};

/// Reads records back from groups, as the reader did.
class PieceReader {
public:
    explicit PieceReader(const OutGroups& groups) : m_groups(groups) {}

    /// `counts` tells whether a group belongs to the chain.
    template<class F>
    std::vector<Piece> read(std::size_t first, std::size_t end, F&& counts) {
        std::vector<Piece> pieces;
        std::vector<OutGroup> parts;
        const auto close = [&](std::size_t at) {
            if (pieces.empty()) return;
            pieces.back().end = at;
            pieces.back().record = recordOf(parts);
            parts.clear();
        };
        for (std::size_t i = first; i < end; ++i) {
            const OutGroup& group = m_groups[i];
            if (group.code == kComment || !counts(group)) continue;
            const bool goesOn = !parts.empty() && pointBase(parts.front().code) == parts.front().code &&
                                parts.size() < 3 &&
                                group.code == parts.front().code + 10 * static_cast<int>(parts.size());
            if (!goesOn) {
                close(i);
                pieces.push_back({{}, i, i});
            }
            parts.push_back(group);
        }
        close(end);
        return pieces;
    }

private:
    static OdSmartPtr<OdResBuf> recordOf(const std::vector<OutGroup>& parts) {
        const OutGroup& head = parts.front();
        OdSmartPtr<OdResBuf> record = OdResBuf::newRb(head.code);
        switch (valueTypeOf(head.code)) {
        case ValueType::kReal:
            if (pointBase(head.code) == head.code)
                record->setPoint3d({realOf(head), parts.size() > 1 ? realOf(parts[1]) : 0,
                                    parts.size() > 2 ? realOf(parts[2]) : 0});
            else
                record->setDouble(realOf(head));
            break;
        case ValueType::kInt16:
        case ValueType::kInt32:
        case ValueType::kInt64:
        case ValueType::kBool:
            record->setInt64(integerOf(head));
            break;
        case ValueType::kBinary: {
            bool bad = false;
            const auto* source = std::get_if<SourceGroup>(&head.value);
            if (source != nullptr) record->setBinary(Values(*source->form).binary(source->group, bad));
            break;
        }
        default:
            record->setString(textOf(head));
        }
        return record;
    }

    const OutGroups& m_groups;
};

using Chain = std::vector<OdSmartPtr<OdResBuf>>;

Chain recordsOf(OdSmartPtr<OdResBuf> chain) {
    Chain records;
    for (; !chain.isNull(); chain = chain->next()) records.push_back(chain);
    return records;
}

/// The groups of a chain: those of the records at both ends that are as they were, and new ones between them.
void mergeChain(OutGroups& out, const OutGroups& groups, const std::vector<Piece>& old, const Chain& now,
                int first, int last) {
    const std::size_t most = std::min(old.size(), now.size());
    std::size_t head = 0, tail = 0;
    while (head < most && sameRecord(*old[head].record.get(), *now[head].get())) ++head;
    while (tail < most - head &&
           sameRecord(*old[old.size() - 1 - tail].record.get(), *now[now.size() - 1 - tail].get()))
        ++tail;
    const auto keep = [&](const Piece& piece) {
        for (std::size_t i = piece.first; i < piece.end; ++i) out.push_back(groups[i]);
    };
    for (std::size_t i = 0; i < head; ++i) keep(old[i]);
    for (std::size_t i = head; i < now.size() - tail; ++i) {
        const int code = now[i]->restype();
        if (code >= first && code <= last && code != kComment) addRecord(out, *now[i].get());
    }
    for (std::size_t i = old.size() - tail; i < old.size(); ++i) keep(old[i]);
}

} // namespace

void addChain(OutGroups& groups, const OdResBuf* chain, int first, int last) {
    for (; chain != nullptr; chain = chain->next().get()) {
        const int code = chain->restype();
        if (code >= first && code <= last && code != kComment) addRecord(groups, *chain);
    }
}

// --- extended data
// ------------------------------------------------------------------------------------------------------

namespace {

/// Extended data of one application, as the object has it.
struct Application {
    OdString name;
    Chain records;
    bool written = false;
};

std::vector<Application> applicationsOf(const OdDbObject& object) {
    std::vector<Application> applications;
    for (OdSmartPtr<OdResBuf> at = object.xData(); !at.isNull(); at = at->next()) {
        if (at->restype() == kApplication || applications.empty())
            applications.push_back({at->getString(), {}, false});
        applications.back().records.push_back(at);
    }
    return applications;
}

/// Extended data of one application, as the groups have it.
struct OldApplication {
    OdString name;
    std::vector<Piece> pieces;
    std::size_t first, end;
};

std::vector<OldApplication> oldApplications(const OutGroups& groups, std::size_t from) {
    std::vector<OldApplication> applications;
    PieceReader reader(groups);
    const auto close = [&](std::size_t end) {
        if (applications.empty()) return;
        OldApplication& last = applications.back();
        last.end = end;
        last.pieces = reader.read(last.first, end, [](const OutGroup& g) { return g.code >= kFirstXData; });
    };
    for (std::size_t i = from; i < groups.size(); ++i) {
        if (groups[i].code != kApplication) continue;
        close(i);
        applications.push_back({textOf(groups[i]), {}, i, i});
    }
    close(groups.size());
    return applications;
}

bool namesTwice(const std::vector<OldApplication>& applications) {
    std::unordered_set<std::string> names;
    return std::any_of(applications.begin(), applications.end(), [&names](const OldApplication& application) {
        return !names.insert(utf8(application.name)).second;
    });
}

void addRecords(OutGroups& groups, const Chain& records) {
    for (const OdSmartPtr<OdResBuf>& record : records)
        if (record->restype() >= kFirstXData && record->restype() <= kHighestCode)
            addRecord(groups, *record.get());
}

} // namespace

void addXData(OutGroups& groups, const OdDbObject& object) {
    for (const Application& application : applicationsOf(object)) addRecords(groups, application.records);
}

void editXData(OutGroups& groups, const OdDbObject& object) {
    std::size_t from = 0;
    while (from < groups.size() && groups[from].code < kFirstXData) ++from;
    std::vector<Application> now = applicationsOf(object);
    const std::vector<OldApplication> old = oldApplications(groups, from);
    OutGroups out(groups.begin(), groups.begin() + static_cast<std::ptrdiff_t>(from));
    if (!old.empty()) // data before any application belongs to nobody
        out.insert(out.end(), groups.begin() + static_cast<std::ptrdiff_t>(from),
                   groups.begin() + static_cast<std::ptrdiff_t>(old.front().first));
    // Of an application that is named twice the object has one chain, whose parts can't be told apart any
    // more.
    if (!namesTwice(old)) {
        std::unordered_map<std::string, std::size_t> byName;
        for (std::size_t i = 0; i < now.size(); ++i) byName.emplace(utf8(now[i].name), i);
        for (const OldApplication& application : old) {
            const auto found = byName.find(utf8(application.name));
            if (found == byName.end()) continue;
            Application& there = now[found->second];
            mergeChain(out, groups, application.pieces, there.records, kFirstXData, kHighestCode);
            there.written = true;
        }
    }
    for (const Application& application : now)
        if (!application.written) addRecords(out, application.records);
    groups = std::move(out);
}

// --- xrecords
// -----------------------------------------------------------------------------------------------------------

void addRecords(OutGroups& groups, const OdDbXrecord& record) {
    addChain(groups, record.rbChain().get(), 1, kFirstXData - 1);
}

void editRecords(OutGroups& groups, const OdDbXrecord& record) {
    std::size_t first = 0;
    while (first < groups.size() && !groups[first].isMark(kXrecordMark) && groups[first].code < kFirstXData)
        ++first;
    std::size_t end = first;
    while (end < groups.size() && groups[end].code < kFirstXData) ++end;
    if (first == end) {
        groups.insert(groups.begin() + static_cast<std::ptrdiff_t>(first), OutGroup::mark(kXrecordMark));
        ++end;
    }
    ++first;
    const bool hasCloning = first < end && groups[first].code == kCloning;
    const std::vector<Piece> old =
        PieceReader(groups).read(hasCloning ? first + 1 : first, end, [](const OutGroup&) { return true; });
    const Chain now = recordsOf(record.rbChain());
    const auto same = [](const Piece& a, const OdSmartPtr<OdResBuf>& b) {
        return sameRecord(*a.record.get(), *b.get());
    };
    if (std::equal(old.begin(), old.end(), now.begin(), now.end(), same)) return;
    OutGroups out(groups.begin(), groups.begin() + static_cast<std::ptrdiff_t>(first));
    out.push_back(hasCloning ? groups[first] : OutGroup::integer(kCloning, 1));
    mergeChain(out, groups, old, now, 1, kFirstXData - 1);
    out.insert(out.end(), groups.begin() + static_cast<std::ptrdiff_t>(end), groups.end());
    groups = std::move(out);
}

// --- dictionaries
// -------------------------------------------------------------------------------------------------------

namespace {

constexpr int kName = 3, kSoftOwner = 350, kHardOwner = 360;

bool isEntryHandle(int code) {
    return code == kSoftOwner || code == kHardOwner;
}

struct EntryKey {
    OdString name;
    const Node* object;
    bool operator==(const EntryKey&) const = default;
};
struct EntryHash {
    std::size_t operator()(const EntryKey& key) const noexcept {
        // Many entries may have no object.
        return std::hash<const void*>{}(key.object) ^ WideHash()(key.name.view());
    }
};

} // namespace

void addEntries(OutGroups& groups, const OdDbDictionary& dictionary) {
    for (const auto& [name, id] : ObjectAccess::entries(dictionary)) {
        if (!id.isValid() || !id.node()->isLive()) continue;
        groups.push_back(OutGroup::text(kName, name));
        groups.push_back(OutGroup::handle(kSoftOwner, id.node()->handle));
    }
}

void editEntries(OutGroups& groups, const DatabaseData& data, const OdDbDictionary* dictionary, bool isCopy) {
    std::vector<bool> remove(groups.size());
    std::unordered_set<EntryKey, EntryHash> there;
    // An entry without an object, or a second one of a name, stays as long as the dictionary has it: the
    // check of drawings takes such entries out and renames them.
    std::unordered_map<EntryKey, int, EntryHash> held;
    if (dictionary != nullptr)
        for (const auto& [entryName, id] : ObjectAccess::entries(*dictionary)) ++held[{entryName, id.node()}];
    const auto isHeld = [&](const EntryKey& entry) {
        if (dictionary == nullptr) return true;
        const auto found = held.find(entry);
        return found != held.end() && found->second-- > 0;
    };
    std::size_t name = groups.size(), last = groups.size();
    int code = kSoftOwner;
    forPlaces(groups, [&](std::size_t i, bool field, bool) {
        if (!field) return;
        if (groups[i].code == kName) {
            name = i;
            if (isCopy) remove[i] = true;
            return;
        }
        if (!isEntryHandle(groups[i].code) || name == groups.size()) return;
        const Node* const object = data.handles.find(handleOf(groups[i]));
        last = i;
        code = groups[i].code;
        const EntryKey entry{textOf(groups[name]), object};
        if (isCopy || (object != nullptr && !object->isLive()) || !isHeld(entry))
            remove[i] = remove[name] = true;
        else
            there.insert(entry);
        name = groups.size();
    });
    OutGroups added;
    if (dictionary != nullptr)
        for (const auto& [entryName, id] : ObjectAccess::entries(*dictionary)) {
            if (!id.isValid() || !id.node()->isLive() || there.count({entryName, id.node()}) != 0) continue;
            added.push_back(OutGroup::text(kName, entryName));
            added.push_back(OutGroup::handle(code, id.node()->handle));
        }
    std::size_t place = last != groups.size() ? last + 1 : placeFor(groups, layoutOf(kKindDictionary), kName);
    place -= static_cast<std::size_t>(
        std::count(remove.begin(), remove.begin() + static_cast<std::ptrdiff_t>(place), true));
    removeMarked(groups, remove);
    groups.insert(groups.begin() + static_cast<std::ptrdiff_t>(place), added.begin(), added.end());
}

bool hasDeadEntry(const DatabaseData& data, const Node& dictionary) {
    bool dead = false;
    const Values values(*data.source);
    forEachGroup(*data.source, dictionary, [&](const Group& group) {
        if (!isEntryHandle(group.code)) return true;
        bool bad = false;
        const Node* const object = data.handles.find(values.handle(group, bad));
        dead = object != nullptr && !object->isLive();
        return !dead;
    });
    return dead;
}

} // namespace lm::drawing
