// SPDX-License-Identifier: MIT
// One walk over the groups of all entries. Objects that were changed since they were read are asked
// themselves for what they changed.
#include "check/steps.h"

#include "dxf/read.h"
#include "dxf/resolver.h"
#include "model/names.h"

#include <algorithm>
#include <cstring>

namespace lm::drawing {

namespace {

enum GroupCode {
    kText = 1,
    kName = 2,
    kEntryName = 3,
    kLinetypeName = 6,
    kStyleName = 7,
    kSubclass = 100,
    kEmbedded = 101,
    kBraces = 102,
    kOwner = 330,
    kSoftEntry = 350,
    kHardEntry = 360,
    kFirstXData = 1000,
    kApplication = 1001,
    kXDataBytes = 1004,
    kXDataHandle = 1005,
    kXDataShort = 1070,
    kXDataLong = 1071
};
constexpr int kComment = 999;

/// Codes whose values are handles that must lead somewhere. Those from 320 to 329 may lead anywhere.
bool isPointer(int code) {
    return (code >= 330 && code <= 369) || (code >= 390 && code <= 399) || code == 480 || code == 481;
}

/// Entities that show a block of the drawing as their picture and name it in group 2.
bool hasPicture(std::string_view kind) {
    return kind == "DIMENSION" || kind == "ARC_DIMENSION" || kind == "LARGE_RADIAL_DIMENSION" ||
           kind == "ACAD_TABLE";
}

bool hasStyle(std::uint16_t kind) {
    return kind == kKindText || kind == kKindAttrib || kind == kKindAttdef || kind == kKindMText;
}

/// What is known about a use of an application that isn't registered.
struct Unregistered {
    OdString name;
    const Node* first;
    std::size_t objects;
};

class EntryCheck {
public:
    explicit EntryCheck(CheckContext& context) : m_context(context), m_data(context.data) {
        for (const Section& section : m_data.sections)
            if (section.name == "ENTITIES")
                m_entities.emplace_back(section.offset, section.offset + section.length);
        for (Node* app = firstApplication(); app != nullptr; app = app->next)
            if (!app->isErased()) m_registered.insert(foldedName(recordName(m_data, app).view()));
    }

    void run() {
        m_data.nodes.forEach([this](Node& node) {
            if (node.kind != kKindNone && node.isLive()) one(node);
        });
        reportApplications();
    }

private:
    Node* firstApplication() const {
        return m_data.fixed.appTable != nullptr ? m_data.fixed.appTable->firstPart : nullptr;
    }

    // --- one entry
    // ----------------------------------------------------------------------------------------------

    /// Where the walk stands in an entry.
    struct Place {
        bool changed = false; ///< the object differs from its groups
        bool owner = false;   ///< the owner's group came
        bool subclass = false;
        bool xrecord = false;
        bool embedded = false;
        bool named = false;     ///< the name's group came
        std::string_view brace; ///< the mark of the open braces
        std::string_view entry; ///< name of the dictionary entry
        std::string_view application;
        int pointRest = 0; ///< the code that a point of extended data has to go on with
        bool isField() const { return brace.empty() && !xrecord && !embedded; }
    };

    void one(Node& node) {
        const bool changed = node.has(Node::kDirty) && node.body != nullptr;
        if (m_context.isFromFile() && node.length != 0) {
            Place place;
            place.changed = changed;
            const ClassSpec* const spec =
                node.kind == kKindBlock || node.kind == kKindEndblk ? &blockSpec() : specOf(node).fields;
            forEachGroup(*m_data.source, node, [&](const Group& group) {
                if (group.code >= kFirstXData && changed) return false;
                group.code >= kFirstXData ? xdata(node, group, place) : field(node, group, place, *spec);
                return true;
            });
            if (!changed) pointInXData(node, 0, place);
        }
        if (changed || node.length == 0) changedXData(node);
    }

    void field(Node& node, const Group& group, Place& place, const ClassSpec& spec) {
        switch (group.code) {
        case kBraces: {
            const std::string_view mark = stripped(group.raw());
            place.brace = !mark.empty() && mark.front() == '{' ? mark : std::string_view();
            return;
        }
        case kSubclass:
            place.subclass = true;
            place.xrecord = place.xrecord || stripped(group.raw()) == "AcDbXrecord";
            return;
        case kEmbedded:
            place.embedded = true;
            return;
        case kComment:
            return;
        default:
            break;
        }
        if (isPointer(group.code)) {
            // What these two hold is theirs alone: after a change it isn't what the file has.
            if (!place.changed || !(isDictionary(node) || node.kind == kKindXrecord))
                pointer(node, group, place);
            return;
        }
        if (place.isField()) names(node, group, place);
        text(node, group, place, spec);
    }

    // --- handles
    // ------------------------------------------------------------------------------------------------

    /// False for 0 and for nothing, which lead nowhere on purpose, and for the handle of something that is
    /// there.
    bool isUnknown(const Group& group, std::uint64_t& handle) const {
        bool bad = false;
        handle = stripped(group.raw()).empty() ? 0 : Values(*m_data.source).handle(group, bad);
        return bad || (handle != 0 && m_data.handles.find(handle) == nullptr);
    }

    static std::string found(const Group& group, std::uint64_t handle) {
        if (handle != 0) return hexText(handle);
        return "\"" + std::string(group.raw().substr(0, 40)) + "\"";
    }

    void pointer(Node& node, const Group& group, Place& place) {
        std::uint64_t handle = 0;
        const bool unknown = isUnknown(group, handle);
        if (group.code == kOwner && place.brace.empty() && !place.subclass && !place.owner) {
            place.owner = true;
            owner(node, group, handle, unknown);
            return;
        }
        if (!unknown) return;
        const auto code = [&] { return "group " + std::to_string(group.code) + ", " + found(group, handle); };
        if (place.brace == "{ACAD_REACTORS")
            m_context.add(Flaw::kUnknownReactor, &node, [&] { return found(group, handle); });
        else if (place.brace == "{ACAD_XDICTIONARY")
            m_context.add(Flaw::kUnknownExtension, &node, [&] { return found(group, handle); });
        else if (isDictionary(node) && (group.code == kSoftEntry || group.code == kHardEntry) &&
                 place.isField())
            // The second step takes such entries out, unless the dictionary was changed before.
            m_context.add(
                Flaw::kUnknownEntry, &node,
                [&] { return quoted(decoded(place.entry)) + ", " + found(group, handle); }, m_context.fix);
        else
            m_context.add(Flaw::kUnknownPointer, &node, code);
    }

    /// Compares the owner that an entry names with the place that it stands in. Whoever writes a changed
    /// entry gives it its own owner in place of one that isn't there.
    void owner(Node& node, const Group& group, std::uint64_t handle, bool unknown) {
        const bool inBlock = node.owner != nullptr && node.owner->kind == kKindBlockRecord;
        if (inBlock && isInEntities(node)) {
            // The reader has placed it, and reports it under a number of its own.
            if (unknown && m_context.fix) node.flags |= Node::kDirty;
            if (unknown && node.has(Node::kDirty)) m_context.placed.insert(&node);
            return;
        }
        if (unknown && node.owner == nullptr && node.kind != kKindTable) {
            m_context.ownerless.push_back(&node);
        } else if (unknown) {
            if (node.owner != nullptr && node.has(Node::kDirty)) return;
            // The head of a block whose record was made or changed is always written anew.
            const bool renewed = node.kind == kKindBlock && node.owner != nullptr &&
                                 (node.owner->length == 0 || node.owner->has(Node::kDirty));
            const bool mended = node.owner != nullptr && (m_context.fix || renewed);
            m_context.add(
                Flaw::kUnknownOwner, &node,
                [&] {
                    return found(group, handle) + (node.owner != nullptr
                                                       ? ", it stands in " + hexText(node.owner->handle)
                                                       : ", a table has none");
                },
                mended);
            if (m_context.fix && mended) node.flags |= Node::kDirty;
        } else {
            otherOwner(node, handle, inBlock);
        }
    }

    void otherOwner(const Node& node, std::uint64_t handle, bool inBlock) {
        const bool record = node.has(Node::kTableRecord);
        if (!(inBlock && node.has(Node::kEntity)) && !record) return;
        const Node* const named = handle != 0 ? m_data.handles.find(handle) : nullptr;
        if (named == nullptr || named == node.owner || node.owner == nullptr) return;
        if (record && named->kind == kKindTable) return; // of one table in two pieces
        m_context.add(Flaw::kOtherOwner, &node,
                      [&] { return hexText(handle) + ", it stands in " + hexText(node.owner->handle); });
    }

    bool isInEntities(const Node& node) const {
        return std::any_of(m_entities.begin(), m_entities.end(), [&](const auto& range) {
            return node.offset >= range.first && node.offset < range.second;
        });
    }

    // --- names
    // --------------------------------------------------------------------------------------------------

    OdString decoded(std::string_view bytes) const {
        bool bad = false;
        return m_data.source->decoder.decode(bytes, bad);
    }

    bool isMissing(Names table, std::string_view name) const {
        return !stripped(name).empty() && m_data.resolver->find(table, name) == nullptr;
    }

    void names(Node& node, const Group& group, Place& place) {
        const std::string_view name = group.raw();
        const auto what = [&] { return quoted(decoded(name)); };
        switch (group.code) {
        case kName:
            if (!place.named && node.has(Node::kEntity) && hasPicture(m_data.kinds.name(node.kind)) &&
                isMissing(Names::kBlocks, name))
                m_context.add(Flaw::kUnknownPicture, &node, what);
            place.named = true;
            break;
        case kEntryName:
            place.entry = name;
            break;
        case kLinetypeName:
            if (!place.changed && (node.has(Node::kEntity) || node.kind == kKindLayer) &&
                isMissing(Names::kLinetypes, name))
                m_context.add(Flaw::kUnknownLinetype, &node, what);
            break;
        case kStyleName:
            if (!place.changed && hasStyle(node.kind) && isMissing(Names::kStyles, name))
                m_context.add(Flaw::kUnknownStyle, &node, what);
            break;
        default:
            break;
        }
    }

    // --- text
    // ---------------------------------------------------------------------------------------------------

    /// Whether the bytes may need more than a look: nearly all text is plain.
    static bool isPlain(std::string_view bytes) {
        for (const char c : bytes)
            if ((c & 0x80) != 0) return false;
        return bytes.find("\\M+") == std::string_view::npos;
    }

    void text(Node& node, const Group& group, const Place& place, const ClassSpec& spec) {
        if (valueTypeOf(group.code) != ValueType::kText || isPlain(group.raw())) return;
        const FieldSpec* const row = place.isField()                         ? spec.find(group.code)
                                     : place.embedded && hasStyle(node.kind) ? mtextSpec().find(group.code)
                                                                             : nullptr;
        // The reader reports what it decodes itself under a number of its own.
        if (row != nullptr && std::strstr(row->type, "text") == row->type) return;
        checkText(node, group);
    }

    void checkText(Node& node, const Group& group) {
        bool bad = false;
        m_data.source->decoder.decode(group.raw(), bad);
        if (bad) m_context.add(Flaw::kBadText, &node, [&] { return "group " + std::to_string(group.code); });
    }

    // --- extended data
    // ------------------------------------------------------------------------------------------

    /// Three groups make a point; `code` 0 stands for the end of the entry.
    void pointInXData(Node& node, int code, Place& place) {
        if (place.pointRest != 0 && code != place.pointRest)
            m_context.add(Flaw::kBadXData, &node,
                          [&] { return "a point without its group " + std::to_string(place.pointRest); });
        const bool isFirst = code >= 1010 && code <= 1013;
        const bool isSecond = code == place.pointRest && code >= 1020 && code <= 1023;
        place.pointRest = isFirst || isSecond ? code + 10 : 0;
    }

    static bool isXDataCode(int code) {
        return code <= kXDataHandle || (code >= 1010 && code <= 1013) || (code >= 1020 && code <= 1023) ||
               (code >= 1030 && code <= 1033) || (code >= 1040 && code <= 1042) || code == kXDataShort ||
               code == kXDataLong;
    }

    /// Whether a value is what its code says.
    bool isXDataValue(const Group& group) const {
        bool bad = false;
        if (valueTypeOf(group.code) == ValueType::kReal) {
            Values(*m_data.source).real(group, bad);
            return !bad;
        }
        if (m_data.source->binary) return true;
        const std::string_view text = stripped(group.raw());
        if (group.code == kXDataBytes)
            return text.size() % 2 == 0 && text.find_first_not_of("0123456789abcdefABCDEF") == text.npos;
        if (group.code != kXDataShort && group.code != kXDataLong) return true;
        // Some programs write the same bits without a sign.
        const int bits = group.code == kXDataShort ? 16 : 32;
        const long long value = Values(*m_data.source).integer(group, bad);
        return !bad && value >= -(1LL << (bits - 1)) && value < (1LL << bits);
    }

    void formOfXData(Node& node, const Group& group, Place& place) {
        pointInXData(node, group.code, place);
        if (isXDataCode(group.code) && isXDataValue(group)) return;
        m_context.add(Flaw::kBadXData, &node, [&] {
            const std::string_view value = m_data.source->binary ? "?" : group.raw().substr(0, 40);
            return "group " + std::to_string(group.code) +
                   (isXDataCode(group.code) ? ", \"" + std::string(value) + "\"" : "");
        });
    }

    void xdata(Node& node, const Group& group, Place& place) {
        formOfXData(node, group, place);
        if (group.code == kApplication) {
            useApplication(node, group.raw());
        } else if (group.code == kXDataHandle) {
            std::uint64_t handle = 0;
            if (isUnknown(group, handle))
                m_context.add(Flaw::kUnknownInXData, &node, [&] { return found(group, handle); });
            return;
        }
        if (valueTypeOf(group.code) == ValueType::kText && !isPlain(group.raw())) checkText(node, group);
    }

    /// An object that was changed, or came from no file, is asked itself.
    void changedXData(Node& node) {
        if (node.body == nullptr) return;
        const OdSmartPtr<OdResBuf> chain = node.body->xData();
        for (const OdResBuf* at = chain.get(); at != nullptr; at = at->next().get()) {
            if (at->restype() == kApplication) useApplication(node, at->getString());
            if (at->restype() != kXDataHandle || at->payload() != OdResBuf::kText) continue;
            bool bad = false;
            const std::string digits = utf8(at->getString());
            const std::uint64_t handle = parseHandle(digits, bad);
            if (bad || (handle != 0 && m_data.handles.find(handle) == nullptr))
                m_context.add(Flaw::kUnknownInXData, &node, [&] { return "\"" + digits + "\""; });
        }
    }

    void useApplication(Node& node, std::string_view bytes) {
        const auto known = m_knownBytes.find(bytes);
        std::size_t use = kRegistered;
        if (known != m_knownBytes.end())
            use = known->second;
        else
            m_knownBytes.emplace(bytes, use = useOf(node, decoded(bytes)));
        count(use);
    }
    void useApplication(Node& node, const OdString& name) { count(useOf(node, name)); }

    static constexpr std::size_t kRegistered = ~std::size_t{0};

    std::size_t useOf(const Node& node, const OdString& name) {
        const WideString folded = foldedName(name.view());
        if (name.isEmpty() || m_registered.count(folded) != 0) return kRegistered;
        const auto [use, isNew] = m_uses.try_emplace(folded, m_unregistered.size());
        if (isNew) m_unregistered.push_back({name, &node, 0});
        return use->second;
    }
    void count(std::size_t use) {
        if (use != kRegistered) ++m_unregistered[use].objects;
    }

    void reportApplications() {
        for (const Unregistered& use : m_unregistered) {
            m_context.add(
                Flaw::kUnregistered, use.first,
                [&] {
                    return quoted(use.name) +
                           (use.objects > 1 ? ", here first of " + std::to_string(use.objects) + " times"
                                            : "");
                },
                m_context.fix);
            if (m_context.fix) registerApplication(m_data, use.name);
        }
    }

    CheckContext& m_context;
    DatabaseData& m_data;
    std::vector<std::pair<std::uint64_t, std::uint64_t>> m_entities; // where the sections lie in the source
    std::unordered_set<WideString, WideHash> m_registered;
    std::unordered_map<std::string_view, std::size_t> m_knownBytes; // keys lie in the source
    std::unordered_map<WideString, std::size_t, WideHash> m_uses;
    std::vector<Unregistered> m_unregistered;
};

} // namespace

void checkEntries(CheckContext& context) {
    EntryCheck(context).run();
}

} // namespace lm::drawing
