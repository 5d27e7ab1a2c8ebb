// SPDX-License-Identifier: MIT
#include "model/cloner.h"

#include "model/names.h"
#include "model/references.h"

#include <cstring>
#include <exception>

namespace lm::drawing {

namespace {

/// Parts of an entity that are cloned with it: all live ones but the entry that closes their list.
template<class F>
void forEachPart(const Node& owner, F&& visit) {
    for (Node* part = owner.firstPart; part != nullptr; part = part->next)
        if (!part->isErased() && part->kind != kKindSeqend) visit(*part);
}

bool isAsciiDigit(WideChar unit) {
    return unit >= '0' && unit <= '9';
}

/// Whether groups hold braces in which objects name others.
bool hasNamedBraces(const GroupSpan& span) {
    constexpr std::string_view kMark = "{ACAD_";
    return ::memmem(span.begin, span.size, kMark.data(), kMark.size()) != nullptr;
}

} // namespace

bool isAnonymousName(WideView name) noexcept {
    return !name.empty() && name.front() == '*';
}

OdString freeRecordName(DatabaseData& data, Node& table, const OdString& name) {
    const auto& body = static_cast<OdDbSymbolTable&>(*data.bodyOf(&table));
    // A name of an erased record isn't taken, since the erasing may be taken back.
    const auto isFree = [&](const OdString& wanted) {
        return ObjectAccess::findName(body, wanted) == nullptr;
    };
    if (&table != data.fixed.blockTable || !isAnonymousName(name.view())) {
        for (unsigned number = 1;; ++number)
            if (const OdString wanted = name + odText("_" + std::to_string(number)); isFree(wanted))
                return wanted;
    }
    WideView front = name.view();
    while (isAsciiDigit(front.back())) front.remove_suffix(1);
    const OdString letters = front.size() == 1 || isLayoutName(name.view()) ? odText("*U") : OdString(front);
    unsigned& next = data.nextAnonymous[utf8(letters)];
    for (;;)
        if (const OdString wanted = letters + odText(std::to_string(++next)); isFree(wanted)) return wanted;
}

// --- making
// -----------------------------------------------------------------------------------------------------

Node* Cloner::cloneOf(const Node& source) const {
    OdDbIdPair pair{OdDbObjectId(const_cast<Node*>(&source))};
    return m_mapping.compute(pair) ? pair.value().node() : nullptr;
}

bool Cloner::hasOwnGroups(const OdDbObject& copy) const {
    const RawGroups* const raw = ObjectAccess::raw(copy);
    if (raw == nullptr) return false;
    // The groups of a class that is read refer to nothing that a copy inside the drawing would need another
    // one of, but for those in braces.
    const bool readEntity = copy.isKindOf(OdDbEntity::desc()) && !copy.isKindOf(OdDbUnreadEntity::desc());
    return crosses() || !readEntity || hasNamedBraces(raw->span());
}

OdSmartPtr<OdDbObject> Cloner::bareCopy(Node& source) {
    const OdDbObject& body = *m_from.bodyOf(&source);
    OdSmartPtr<OdDbObject> copy(ObjectAccess::newState(body), kAttach);
    RawPointer raw = rawGroupsOf(body);
    if (raw && crosses()) {
        need(body, *raw.get());
        raw = RawPointer(new RawGroups(raw->form(), raw->span(), raw->kind(), m_to.identity));
    }
    ObjectAccess::setRaw(*copy.get(), std::move(raw));
    if (!crosses()) return copy;
    mapIds(*copy.get(), [this](OdDbObjectId id) {
        if (!id.isValid()) return OdDbObjectId::kNull;
        return OdDbObjectId(id.database() == &m_from.database ? resolve(*id.node()) : nullptr);
    });
    ObjectAccess::forEachApplication(*copy.get(), [this](const OdString& name) {
        if (Node* const record = m_from.tableRecord(m_from.fixed.appTable, name)) resolve(*record);
    });
    return copy;
}

void Cloner::pair(Node& source, OdDbObjectId clone) {
    m_mapping.assign(OdDbIdPair(OdDbObjectId(&source), clone));
}

void Cloner::note(Node& source, OdSmartPtr<OdDbObject> clone) {
    const bool raw = hasOwnGroups(*clone.get());
    if (raw) cloneOwned(source, *clone.get());
    m_made.push_back({std::move(clone), &source, raw});
}

void Cloner::cloneParts(Node& source, OdDbEntity& copy,
                        std::vector<std::pair<Node*, OdSmartPtr<OdDbObject>>>& parts) {
    auto* const reference = OdDbBlockReference::cast(&copy);
    auto* const unread = OdDbUnreadEntity::cast(&copy);
    forEachPart(source, [&](Node& part) {
        OdSmartPtr<OdDbObject> clone = bareCopy(part);
        if (reference != nullptr) {
            // What hangs on a reference and is no attribute can't be copied with it.
            auto* const attribute = OdDbAttribute::cast(clone.get());
            if (attribute == nullptr) return;
            reference->appendAttribute(OdSmartPtr<OdDbAttribute>(attribute));
        } else if (unread != nullptr) {
            ObjectAccess::addPart(*unread, OdSmartPtr<OdDbEntity>(static_cast<OdDbEntity*>(clone.get())));
        } else {
            return;
        }
        parts.emplace_back(&part, std::move(clone));
    });
}

void Cloner::entity(Node& source, OdDbBlockTableRecord& owner) {
    const OdSmartPtr<OdDbObject> copy = bareCopy(source);
    auto& entity = static_cast<OdDbEntity&>(*copy.get());
    std::vector<std::pair<Node*, OdSmartPtr<OdDbObject>>> parts;
    if (source.firstPart != nullptr) cloneParts(source, entity, parts);
    pair(source, resident([&] { return owner.appendOdDbEntity(OdSmartPtr<OdDbEntity>(&entity)); }));
    for (auto& [part, clone] : parts) {
        pair(*part, clone->objectId());
        note(*part, std::move(clone));
    }
    note(source, copy);
}

void Cloner::attribute(Node& source, OdDbBlockReference& owner) {
    const OdSmartPtr<OdDbObject> copy = bareCopy(source);
    const OdSmartPtr<OdDbAttribute> attribute(static_cast<OdDbAttribute*>(copy.get()));
    pair(source, resident([&] { return owner.appendAttribute(attribute); }));
    note(source, copy);
}

Node* Cloner::record(Node& source, Node& table, const OdString& name) {
    const OdSmartPtr<OdDbObject> copy = bareCopy(source);
    auto& record = static_cast<OdDbSymbolTableRecord&>(*copy.get());
    if (record.getName() != name && source.kind == kKindBlockRecord)
        m_renamed[utf8(record.getName())] = utf8(name);
    ObjectAccess::setName(record, name);
    auto& owner = static_cast<OdDbSymbolTable&>(*m_to.bodyOf(&table));
    resident([&] {
        if (name.isEmpty()) {
            makeResident(m_to, record, kKindNone, &table, true)->flags |= Node::kTableRecord;
            return record.objectId();
        }
        const OpenForWrite open(&owner);
        return owner.add(OdSmartPtr<OdDbSymbolTableRecord>(&record));
    });
    m_hasTargets = true;
    pair(source, record.objectId());
    Node* const node = record.objectId().node();
    if (auto* block = OdDbBlockTableRecord::cast(&record)) {
        cloneFrame(source, *node);
        contents(source, OdSmartPtr<OdDbBlockTableRecord>(block));
        return node; // the record itself is noted behind its entities
    }
    note(source, copy);
    return node;
}

void Cloner::contents(Node& source, OdSmartPtr<OdDbBlockTableRecord> block) {
    cloneEntities(source, *block.get());
    note(source, block);
}

void Cloner::cloneEntities(Node& source, OdDbBlockTableRecord& block) {
    // What is appended meanwhile, to the very block perhaps, isn't cloned again.
    const Node* const last = source.lastPart;
    for (Node* part = source.firstPart; part != nullptr; part = part->next) {
        if (!part->isErased()) entity(*part, block);
        if (part == last) break;
    }
}

OdSmartPtr<OdDbObject> Cloner::object(Node& source, OdDbObjectId owner) {
    const OdSmartPtr<OdDbObject> copy = bareCopy(source);
    pair(source, resident([&] { return m_to.database.addOdDbObject(copy, owner); }));
    m_hasTargets = true;
    const auto* const from = OdDbDictionary::cast(m_from.bodyOf(&source));
    if (auto* const dictionary = OdDbDictionary::cast(copy.get()); dictionary != nullptr && from != nullptr) {
        for (const auto walk = from->newIterator(); !walk->done(); walk->next()) {
            Node& entry = *walk->objectId().node();
            if (entry.owner == &source) {
                dictionary->setAt(walk->name(), object(entry, copy->objectId()));
            } else if (Node* const there = resolve(entry)) {
                dictionary->setAt(walk->name(), OdDbObjectId(there).openObject());
            }
        }
    }
    note(source, copy);
    return copy;
}

/// Whether an object is of those that groups own: no entity and no record, and not what owns all others.
bool Cloner::canBeOwned(const Node& target) const {
    return !target.has(Node::kEntity) && !target.has(Node::kTableRecord) && target.kind != kKindTable &&
           &target != m_from.fixed.dictionary;
}

/// What the groups of an object own beside its parts: its extension dictionary, and what it holds by handles.
void Cloner::cloneOwned(Node& source, OdDbObject& clone) {
    constexpr int kHardOwner = 360;
    const RawPointer raw = rawGroupsOf(clone);
    std::vector<Node*> owned;
    forEachHandle(raw->span(), raw->kind(), [&](const RawHandle& handle) {
        const bool owns = handle.place == HandlePlace::kExtension ||
                          (handle.place == HandlePlace::kField && handle.code == kHardOwner);
        Node* const target = owns ? m_from.handles.find(handle.handle) : nullptr;
        if (target != nullptr && target->owner == &source && target->isLive() && canBeOwned(*target) &&
            cloneOf(*target) == nullptr)
            owned.push_back(target);
        return true;
    });
    for (Node* target : owned) object(*target, clone.objectId());
}

void Cloner::own(OdDbObject& copy, const RawPointer& groups) {
    constexpr int kHardOwner = 360;
    if (!hasOwnGroups(copy)) return;
    Node& node = *copy.objectId().node();
    const bool isDictionary = OdDbDictionary::cast(&copy) != nullptr; // its fields are its entries
    // Who owns something is the source, which the groups don't name when it is a copy itself.
    const auto isSource = [&](const Node* owner) {
        return owner != nullptr && m_from.kinds.name(owner->kind) == groups->kind();
    };
    std::vector<Node*> owned;
    bool anyNamed = false;
    forEachHandle(groups->span(), groups->kind(), [&](const RawHandle& handle) {
        const bool extension = handle.place == HandlePlace::kExtension;
        const bool field = handle.place == HandlePlace::kField && handle.code == kHardOwner && !isDictionary;
        anyNamed = anyNamed || extension || handle.place == HandlePlace::kReactor;
        Node* const target = extension || field ? m_from.handles.find(handle.handle) : nullptr;
        if (target == nullptr || target->isErased() || target->owner == &node || !canBeOwned(*target))
            return true;
        if (extension || isSource(target->owner)) owned.push_back(target);
        return true;
    });
    if (owned.empty() && !anyNamed && !crosses()) return;
    if (crosses()) need(copy, *groups.get());
    for (Node* const target : owned) {
        if (isSource(target->owner) && cloneOf(*target->owner) == nullptr)
            pair(*target->owner, copy.objectId());
        if (cloneOf(*target) == nullptr) object(*target, copy.objectId());
    }
    finish();
    if (crosses())
        ObjectAccess::setRaw(
            copy, RawPointer(new RawGroups(groups->form(), groups->span(), groups->kind(), m_to.identity)));
    m_made.push_back({OdSmartPtr<OdDbObject>(&copy), &node, true});
    translate();
    for (Made& made : m_made)
        if (made.object.get() != &copy) m_to.pending.hold(node, std::move(made.object));
    m_made.clear();
}

/// The head and the end of a block keep what only they hold, such as the description.
void Cloner::cloneFrame(Node& source, Node& clone) {
    if (!m_framesKnown) {
        m_framesKnown = true;
        for (std::size_t i = 0; i < m_from.frames.size(); ++i) m_frames.emplace(m_from.frames[i].record, i);
    }
    const auto known = m_frames.find(&source);
    if (known == m_frames.end()) return;
    const BlockFrame frame = m_from.frames[known->second];
    const auto part = [&](Node* from) -> Node* {
        if (from == nullptr) return nullptr;
        const OdSmartPtr<OdDbObject> copy = bareCopy(*from);
        Node* const node = m_to.adopt(copy.get(), from->kind);
        node->owner = &clone;
        m_made.push_back({copy, from, hasOwnGroups(*copy.get())});
        return node;
    };
    Node* const begin = part(frame.begin);
    m_to.frames.push_back({&clone, begin, part(frame.end)});
    clone.flags |= Node::kFramed;
}

// --- translation
// ------------------------------------------------------------------------------------------------

std::uint64_t Cloner::foreignHandle(const RawHandle& handle) {
    switch (handle.place) {
    case HandlePlace::kReactor:
    case HandlePlace::kExtension:
        return 0; // belongs to the source
    default:
        return handle.handle;
    }
}

void Cloner::need(const OdDbObject&, const RawGroups&) {}

std::uint64_t Cloner::translated(const RawHandle& handle) {
    const Node* const target = m_from.handles.find(handle.handle);
    const Node* const clone = target != nullptr ? cloneOf(*target) : nullptr;
    return clone != nullptr ? clone->handle : foreignHandle(handle);
}

OdString Cloner::translatedText(const OdString& handle, int code) {
    const OdDbHandle old(handle.c_str());
    const std::uint64_t now = translated({HandlePlace::kField, code, old.value()});
    return now == old.value() ? handle : OdDbHandle(now).ascii();
}

std::string Cloner::translatedName(int, std::string_view bytes, const Source& form) {
    if (m_renamed.empty()) return {};
    bool bad = false;
    const std::string name = utf8(form.decoder.decode(bytes, bad));
    const auto found = m_renamed.find(name);
    if (found == m_renamed.end()) return {};
    // Anonymous names are ASCII; others got an ending behind what stands there.
    if (name.front() == '*') return found->second;
    return std::string(bytes) + found->second.substr(name.size());
}

void Cloner::translateRaw(Made& made) {
    const RawPointer raw = rawGroupsOf(*made.object.get());
    const Node& node = *made.object->objectId().node();
    const Source& form = *raw->form();
    GroupTranslation translation;
    translation.handle = [&](const RawHandle& handle) -> std::uint64_t {
        // Inside one drawing it goes on telling what this is a copy of: a body that the file holds apart is
        // found by it.
        if (handle.place == HandlePlace::kOwn) return crosses() ? node.handle : handle.handle;
        if (handle.place == HandlePlace::kOwner) return node.owner != nullptr ? node.owner->handle : 0;
        return handle.handle != 0 ? translated(handle) : 0;
    };
    translation.name = [&](int code, std::string_view bytes) { return translatedName(code, bytes, form); };
    std::string groups = translatedGroups(raw->span(), raw->kind(), translation);
    // Inside one drawing the source stays in memory anyway; a library file needn't.
    std::shared_ptr<const Source> kept = raw->form();
    if (crosses()) {
        std::shared_ptr<const Source>& light = m_forms[&form];
        if (light == nullptr) light = emptyLike(form);
        kept = light;
    }
    ObjectAccess::setRaw(
        *made.object.get(),
        RawPointer(new RawGroups(std::move(kept), groups, raw->span().old, raw->kind(), m_to.identity)));
}

void Cloner::translateXrecord(OdDbXrecord& record) {
    const OdSmartPtr<OdResBuf> chain = record.rbChain();
    bool changed = false;
    for (OdSmartPtr<OdResBuf> at = chain; !at.isNull(); at = at->next()) {
        if (!isXrecordHandle(at->restype())) continue;
        if (at->payload() == OdResBuf::kId) {
            const OdDbObjectId old = at->getObjectId();
            if (!old.isValid()) continue;
            const std::uint64_t now =
                translated({HandlePlace::kField, at->restype(), old.getHandle().value()});
            at->setObjectId(OdDbObjectId(m_to.handles.find(now)));
            changed |= at->getObjectId() != old;
        } else if (const OdString now = translatedText(at->getString(), at->restype());
                   now != at->getString()) {
            at->setString(now);
            changed = true;
        }
    }
    if (changed) record.setFromRbChain(chain);
}

void Cloner::translateObject(Made& made) {
    constexpr int kHandleData = 1005;
    OdDbObject& object = *made.object.get();
    if (m_hasTargets && !crosses())
        mapIds(object, [this](OdDbObjectId id) {
            const Node* const clone = id.isNull() ? nullptr : cloneOf(*id.node());
            return clone != nullptr ? OdDbObjectId(const_cast<Node*>(clone)) : id;
        });
    if (ObjectAccess::hasXData(object))
        ObjectAccess::translateXData(
            object, [this](const OdString& text) { return translatedText(text, kHandleData); });
    if (auto* record = OdDbXrecord::cast(&object)) translateXrecord(*record);
    if (made.translateRaw) translateRaw(made);
}

void Cloner::translate() {
    for (std::size_t i = 0; i < m_made.size(); ++i) translateObject(m_made[i]);
}

void Cloner::close() {
    std::exception_ptr first;
    const std::vector<Made> made = std::move(m_made);
    m_made.clear();
    for (const Made& clone : made) {
        try {
            clone.object->downgradeOpen();
        } catch (...) {
            if (!first) first = std::current_exception();
        }
    }
    if (first) std::rethrow_exception(first);
}

void copyOwned(DatabaseData& data, OdDbObject& copy, const RawPointer& groups) {
    OdDbIdMapping pairs; // of this object alone
    Cloner(data, data, pairs).own(copy, groups);
}

void ObjectAccess::translateXData(OdDbObject& object,
                                  const std::function<OdString(const OdString&)>& handle) {
    constexpr int kHandleData = 1005;
    for (auto& entry : *object.m_xdata) {
        OdSmartPtr<OdResBuf> chain; // chains are shared, so a changed one is a new one
        for (OdSmartPtr<OdResBuf> at = entry.chain; !at.isNull() && chain.isNull(); at = at->next())
            if (at->restype() == kHandleData && handle(at->getString()) != at->getString())
                chain = entry.chain->cloneChain();
        for (OdSmartPtr<OdResBuf> at = chain; !at.isNull(); at = at->next())
            if (at->restype() == kHandleData) at->setString(handle(at->getString()));
        if (!chain.isNull()) entry.chain = chain;
    }
}

} // namespace lm::drawing
