// SPDX-License-Identifier: MIT
#include "model/rawgroups.h"

#include "model/databasedata.h"

#include <cstring>

namespace lm::drawing {

namespace {

constexpr int kSubclass = 100;
constexpr int kBraces = 102;
constexpr int kOwnerCode = 330;
constexpr int kFirstXData = 1000;
constexpr std::size_t kPadding = 64;
/// Entries are upgraded when they come from files older than this.
constexpr std::string_view kFirstNewVersion = "AC1015";

bool isHandleCode(int code) {
    return (code >= 320 && code <= 369) || (code >= 390 && code <= 399) || code == 480 || code == 481;
}

/// Tells the groups of an entry by what they are: fields, or handles in one of their places.
class HandleReader {
public:
    explicit HandleReader(std::string_view kind)
        : m_ownCode(kind == "DIMSTYLE" ? 105 : 5), m_sortTable(kind == "SORTENTSTABLE") {}

    enum What { kPlain, kOpens, kCloses, kHandle };
    /// What the next group is; the place of a handle is in `place`.
    What next(const Group& group, HandlePlace& place) {
        if (group.code == kSubclass) m_marked = true;
        if (group.code == kBraces) return brace(stripped(group.raw()));
        if (group.code == m_ownCode && !m_marked && !m_ownSeen) {
            m_ownSeen = true;
            place = HandlePlace::kOwn;
            return kHandle;
        }
        const bool sortHandle = m_sortTable && m_marked && group.code == 5;
        if (!isHandleCode(group.code) && !sortHandle) return kPlain;
        place = m_brace;
        if (!m_inBraces)
            place = group.code == kOwnerCode && !m_marked ? HandlePlace::kOwner : HandlePlace::kField;
        return kHandle;
    }
    /// Whether the braces that are open belong to reactors or to an extension dictionary.
    bool inNamedBraces() const { return m_inBraces && m_brace != HandlePlace::kField; }

private:
    What brace(std::string_view mark) {
        if (mark.empty() || mark.front() != '{') {
            const bool named = inNamedBraces();
            m_inBraces = false;
            return named ? kCloses : kPlain;
        }
        m_inBraces = true;
        // Lists that a program keeps in braces of its own are like fields, but for those that say who uses a
        // block, which are like reactors.
        m_brace = mark == "{ACAD_REACTORS" || mark == "{BLKREFS" ? HandlePlace::kReactor
                  : mark == "{ACAD_XDICTIONARY"                  ? HandlePlace::kExtension
                                                                 : HandlePlace::kField;
        return m_brace != HandlePlace::kField ? kOpens : kPlain;
    }
    int m_ownCode;
    bool m_sortTable;
    bool m_ownSeen = false;
    bool m_marked = false;
    bool m_inBraces = false;
    HandlePlace m_brace = HandlePlace::kField;
};

/// Material, visual style and plot style, which an entry that names none doesn't mention.
bool isOptional(int code) {
    return code == 347 || code == 348 || code == 390;
}

std::uint64_t handleIn(const GroupSpan& span, const Group& group) {
    bool bad = false;
    return Values(*span.form).handle(group, bad);
}

/// Codes of names of blocks and styles by kind. The names of layers and line types are read with every
/// entity.
bool isNameCode(std::string_view kind, int code) {
    if (kind == "DIMSTYLE") return code == 5 || code == 6 || code == 7; // arrow blocks before R2000
    if (code == 2) return kind.ends_with("DIMENSION") || kind == "ACAD_TABLE";
    if (code == 3) return kind.ends_with("DIMENSION") || kind == "LEADER" || kind == "TOLERANCE";
    return code == 7;
}

} // namespace

RawGroups::RawGroups(std::shared_ptr<const Source> source, const GroupSpan& span, std::string_view kind,
                     std::shared_ptr<const Home> home)
    : m_form(std::move(source)), m_home(std::move(home)), m_begin(span.begin),
      m_size(static_cast<std::uint32_t>(span.size)), m_old(span.old), m_kind(kind) {}

RawGroups::RawGroups(std::shared_ptr<const Source> form, const std::string& groups, bool old,
                     std::string_view kind, std::shared_ptr<const Home> home)
    : m_form(std::move(form)), m_home(std::move(home)),
      m_own(std::make_unique<char[]>(groups.size() + kPadding)), m_begin(m_own.get()),
      m_size(static_cast<std::uint32_t>(groups.size())), m_old(old), m_kind(kind) {
    std::memcpy(m_own.get(), groups.data(), groups.size());
}

GroupSpan groupsOf(const DatabaseData& data, const Node& node) noexcept {
    if (node.body != nullptr)
        if (const RawGroups* raw = ObjectAccess::raw(*node.body)) return raw->span();
    if (data.source == nullptr || node.length == 0) return {};
    return {data.source.get(), data.source->begin() + node.offset, node.length,
            data.version < kFirstNewVersion};
}

RawPointer rawGroupsOf(const OdDbObject& object) {
    if (const RawGroups* raw = ObjectAccess::raw(object)) {
        raw->addRef();
        return RawPointer(raw);
    }
    const Node* const node = object.objectId().node();
    if (node == nullptr || node->database() == nullptr) return {};
    const DatabaseData& data = node->database()->data();
    const GroupSpan span = groupsOf(data, *node);
    if (span.isEmpty()) return {};
    return RawPointer(new RawGroups(data.source, span, data.kinds.name(node->kind), data.identity));
}

void ObjectAccess::setRaw(OdDbObject& object, RawPointer raw) {
    const RawPointer old(std::exchange(object.m_raw, raw.detach()));
    const Node* const node = object.m_node;
    if (node != nullptr && node->database() != nullptr) node->database()->data().spatial.changed(*node);
}

void forEachHandle(const GroupSpan& span, std::string_view kind,
                   const std::function<bool(const RawHandle&)>& visit) {
    HandleReader reader(kind);
    forEachGroupIn(span, [&](const Group& group, const char*, const char*) {
        if (group.code >= kFirstXData) return false;
        HandlePlace place{};
        if (reader.next(group, place) != HandleReader::kHandle) return true;
        return visit({place, group.code, handleIn(span, group)});
    });
}

void forEachName(const GroupSpan& span, std::string_view kind,
                 const std::function<void(int code, std::string_view bytes)>& visit) {
    forEachGroupIn(span, [&](const Group& group, const char*, const char*) {
        if (group.code >= kFirstXData) return false;
        if (isNameCode(kind, group.code)) visit(group.code, group.raw());
        return true;
    });
}

std::string translatedGroups(const GroupSpan& span, std::string_view kind,
                             const GroupTranslation& translation) {
    std::string out;
    out.reserve(span.size + 16);
    HandleReader reader(kind);
    std::size_t opened = 0; // where the open braces begin in `out`
    bool kept = false;      // whether something stands in them
    // The value of a group is replaced where it stands, so that the looks of the group stay.
    const auto put = [&](const Group& group, const char* begin, const char* end, std::string_view value) {
        out.append(begin, group.data);
        out += value;
        out.append(group.data + group.size, end);
    };
    forEachGroupIn(span, [&](const Group& group, const char* begin, const char* end) {
        if (group.code >= kFirstXData) return false;
        HandlePlace place{};
        switch (reader.next(group, place)) {
        case HandleReader::kOpens:
            opened = out.size();
            kept = false;
            break;
        case HandleReader::kCloses:
            if (!kept) {
                out.resize(opened);
                return true;
            }
            break;
        case HandleReader::kHandle: {
            const std::uint64_t handle = translation.handle({place, group.code, handleIn(span, group)});
            if (handle == 0 && (reader.inNamedBraces() || isOptional(group.code))) return true;
            kept = true;
            put(group, begin, end, utf8(OdDbHandle(handle).ascii()));
            return true;
        }
        case HandleReader::kPlain:
            if (translation.name == nullptr || !isNameCode(kind, group.code)) break;
            if (const std::string name = translation.name(group.code, group.raw()); !name.empty()) {
                put(group, begin, end, name);
                return true;
            }
            break;
        }
        out.append(begin, end);
        return true;
    });
    return out;
}

std::shared_ptr<const Source> emptyLike(const Source& source) {
    auto form = std::make_shared<Source>();
    form->name = source.name;
    form->binary = source.binary;
    form->shortCodes = source.shortCodes;
    form->decoder = source.decoder;
    return form;
}

RawPointer withoutHandles(const RawPointer& raw, std::shared_ptr<const Home> home) {
    if (!raw) return {};
    const GroupTranslation none{[](const RawHandle&) { return std::uint64_t{0}; }, nullptr};
    return RawPointer(new RawGroups(emptyLike(*raw->form()), translatedGroups(raw->span(), raw->kind(), none),
                                    raw->span().old, raw->kind(), std::move(home)));
}

} // namespace lm::drawing
