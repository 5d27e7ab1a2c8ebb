// SPDX-License-Identifier: MIT
#include "base/objectmemory.h"
#include "base/rxclass.h"
#include "dxf/read.h"
#include "model/databasedata.h"
#include "model/names.h"

#include "drawing/alloc.h"
#include "drawing/seams.h"

#include <unordered_map>

using lm::drawing::DatabaseData;
using lm::drawing::Node;
using lm::drawing::ObjectAccess;

LM_RX_DEFINE_ABSTRACT(OdDbObject, OdRxObject)
LM_RX_DEFINE(OdDbUnreadObject, OdDbObject)

const OdDbObjectId OdDbObjectId::kNull;

bool OdDbObjectId::isValid() const noexcept {
    return m_node != nullptr && m_node->database() != nullptr && !m_node->has(Node::kGone);
}

bool OdDbObjectId::isErased() const noexcept {
    return isValid() && m_node->isErased();
}

OdDbDatabase* OdDbObjectId::database() const noexcept {
    return m_node != nullptr ? m_node->database() : nullptr;
}

OdDbHandle OdDbObjectId::getHandle() const noexcept {
    return OdDbHandle(m_node != nullptr ? m_node->handle : 0);
}

namespace {

const Node* g_refusesWriting = nullptr; // belongs to the host's thread, like every opening

/// Whether a chain of extended data only deletes what an object doesn't have.
bool deletesNothing(const OdDbObject& object, const OdResBuf* chain) {
    constexpr int kApplication = 1001;
    bool nothing = true;
    for (const OdResBuf* at = chain; nothing && at != nullptr; at = at->next().get()) {
        if (at->restype() != kApplication) return false;
        ObjectAccess::forEachApplication(object, [&, gone = at->getString()](const OdString& there) {
            nothing = nothing && there != gone;
        });
    }
    return nothing;
}

} // namespace

namespace lm::drawing {
void refuseWriting(OdDbObjectId id) noexcept {
    g_refusesWriting = id.node();
}
} // namespace lm::drawing

OdSmartPtr<OdDbObject> OdDbObjectId::openObject(OdDb::OpenMode mode, bool openErased) const {
    if (!isValid() || (m_node->isErased() && !openErased)) return {};
    OdDbObject* body = m_node->body;
    if (body == nullptr) body = m_node->database()->data().bodyOf(m_node);
    if (mode == OdDb::kForWrite && m_node == g_refusesWriting) return {};
    if (mode == OdDb::kForWrite) ObjectAccess::setOpenForWrite(*body, true);
    return OdSmartPtr<OdDbObject>(body);
}

OdDbObject::OdDbObject(const OdDbObject& other) : OdRxObject(other) {
    *this = other;
    if (m_raw == nullptr) ObjectAccess::setRaw(*this, lm::drawing::rawGroupsOf(other));
}

OdDbObject& OdDbObject::operator=(const OdDbObject& other) {
    // A stored chain is never changed, only replaced, so copies share it.
    const std::vector<XData>& source = other.allXData();
    m_xdata = source.empty() ? nullptr : std::make_unique<std::vector<XData>>(source);
    m_flags |= kXDataRead | kXDataChanged;
    if (other.m_raw != nullptr) other.m_raw->addRef();
    ObjectAccess::setRaw(*this, lm::drawing::RawPointer(other.m_raw));
    return *this;
}

OdDbObject* OdDbObject::newState() const {
    throw OdError(eNotApplicable, lm::drawing::odText("an object of this class can't be changed"));
}

void OdDbObject::takeState(const OdDbObject&) {
    throw OdError(eNotApplicable, lm::drawing::odText("an object of this class can't be changed"));
}

OdDbObject::~OdDbObject() {
    if (m_raw != nullptr) m_raw->release();
}

void* OdDbObject::operator new(std::size_t size) {
    if (lm::drawing::allocationFailsNow()) throw std::bad_alloc();
    void* const memory = lm::drawing::takeObjectMemory(size);
    lm::drawing::countBlock(true);
    return memory;
}

void OdDbObject::operator delete(void* memory, std::size_t size) noexcept {
    if (memory == nullptr) return;
    lm::drawing::countBlock(false);
    lm::drawing::giveObjectMemory(memory, size);
}

OdDbObjectId OdDbObject::ownerId() const {
    return OdDbObjectId(m_node != nullptr && m_node->database() != nullptr ? m_node->owner : nullptr);
}

void OdDbObject::lastReleased() noexcept {
    if (m_node == nullptr) {
        delete this;
        return;
    }
    m_flags &= static_cast<unsigned short>(~(kWriteEnabled | kAnnounced));
    if (!closeNeedsTelling()) return;
    try {
        tellClosed();
    } catch (...) {
        lm::drawing::dropException();
    }
}

void OdDbObject::tellClosed() {
    OdDbDatabase* const db = m_node->database();
    if (db == nullptr) {
        m_flags &= static_cast<unsigned short>(~(kNew | kChanged | kAnnounced));
        return;
    }
    DatabaseData& data = db->data();
    const OdSmartPtr<OdDbObject> held(this);
    std::exception_ptr first;
    if (data.pending.holds(*m_node)) {
        try {
            data.pending.closeHeld(*m_node); // parts before their owner
        } catch (...) {
            first = std::current_exception();
        }
    }
    if (closeNeedsTelling()) { // else a callback for a part closed this object itself
        const bool isNew = (m_flags & kNew) != 0;
        m_flags &= static_cast<unsigned short>(~(kNew | kChanged | kAnnounced));
        data.pending.remove(*m_node);
        try {
            data.events.tell([&](OdDbDatabaseReactor& reactor) {
                if (isNew)
                    reactor.objectAppended(db, this);
                else
                    reactor.objectModified(db, this);
            });
        } catch (...) {
            if (!first) first = std::current_exception();
        }
    }
    if (first) std::rethrow_exception(first);
}

void OdDbObject::upgradeOpen() {
    if (m_node != nullptr) m_flags |= kWriteEnabled;
}

void OdDbObject::downgradeOpen() {
    m_flags &= static_cast<unsigned short>(~(kWriteEnabled | kAnnounced));
    if (closeNeedsTelling()) tellClosed();
}

void OdDbObject::assertWriteEnabled(bool autoUndo, bool recordModified) {
    if (!isWriteEnabled()) throw OdError(eNotOpenForWrite);
    if (m_node == nullptr) return;
    if (!autoUndo && !recordModified) return;
    DatabaseData& data = m_node->database()->data();
    if ((m_flags & (kAnnounced | kNew)) == 0) {
        m_flags |= kAnnounced;
        data.events.tell(
            [&](OdDbDatabaseReactor& reactor) { reactor.objectOpenedForModify(&data.database, this); });
    }
    if (autoUndo) data.undo.fileState(*this);
    if (!recordModified) return;
    if (!closeNeedsTelling()) data.pending.add(*m_node);
    m_flags |= kModified | kChanged;
    m_node->flags |= Node::kDirty;
    // Behind all callbacks: who asks in one where the object lies measures it as it still is.
    data.spatial.changed(*m_node);
}

OdResult OdDbObject::erase(bool erasing) {
    if (m_node == nullptr) {
        if (erasing)
            m_flags |= kErasedOutside;
        else
            m_flags &= static_cast<unsigned short>(~kErasedOutside);
        return eOk;
    }
    if (!isWriteEnabled()) throw OdError(eNotOpenForWrite);
    if (m_node->isErased() == erasing) return eOk;
    // Who hears that an object went has heard before that it came.
    if ((m_flags & kNew) != 0) tellClosed();
    if (m_node->isErased() == erasing) return eOk; // one of them was faster
    DatabaseData& data = m_node->database()->data();
    data.undo.file(m_node, lm::drawing::UndoRecord::Erase());
    m_node->flags ^= Node::kErased;
    data.spatial.changed(*m_node);
    data.events.tell(
        [&](OdDbDatabaseReactor& reactor) { reactor.objectErased(&data.database, this, erasing); });
    return eOk;
}

bool OdDbObject::isErased() const {
    return m_node != nullptr ? m_node->isErased() : (m_flags & kErasedOutside) != 0;
}

OdString OdDbObject::dxfName() const {
    if (m_node == nullptr || m_node->database() == nullptr) return OdString();
    return lm::drawing::odText(m_node->database()->data().kinds.name(m_node->kind));
}

OdRxObject* OdDbObject::clone() const {
    return lm::drawing::cloneOutside(*this);
}

const std::vector<OdDbObject::XData>& OdDbObject::allXData() const {
    static const std::vector<XData> kNone;
    if (m_node != nullptr && (m_flags & kXDataRead) == 0) {
        m_flags |= kXDataRead;
        auto read = std::make_unique<std::vector<XData>>();
        // Keys lie in the texts of the entries. Files may name thousands of ids, or one id thousands of
        // times.
        std::unordered_map<lm::WideView, OdSmartPtr<OdResBuf>, lm::drawing::WideHash, lm::drawing::WideSame>
            tails;
        lm::drawing::readXData(*m_node, [&](const OdString& application, OdSmartPtr<OdResBuf> chain) {
            const OdSmartPtr<OdResBuf> tail = chain->last();
            const auto [known, isNew] = tails.try_emplace(application.view(), tail);
            if (isNew) {
                read->push_back({application, chain});
            } else if (tail.get() !=
                       chain.get()) { // the data of an id that is named again goes on: one id, one chain
                known->second->setNext(chain->next());
                known->second = tail;
            }
        });
        if (!read->empty()) m_xdata = std::move(read);
    }
    return m_xdata ? *m_xdata : kNone;
}

std::vector<OdDbObject::XData>& OdDbObject::changeableXData() {
    allXData();
    if (!m_xdata) m_xdata = std::make_unique<std::vector<XData>>();
    return *m_xdata;
}

OdSmartPtr<OdResBuf> OdDbObject::xData(const OdString& application) const {
    OdSmartPtr<OdResBuf> head;
    OdSmartPtr<OdResBuf> tail;
    for (const XData& entry : allXData()) {
        if (!application.isEmpty() && entry.application != application) continue;
        OdSmartPtr<OdResBuf> copy = entry.chain->cloneChain();
        if (!application.isEmpty()) return copy;
        if (head.isNull())
            head = copy;
        else
            tail->setNext(copy);
        tail = copy->last();
    }
    return head;
}

void OdDbObject::setXData(OdSmartPtr<OdResBuf> chain) {
    storeXData(chain, false);
}
void OdDbObject::setXDataRaw(OdSmartPtr<OdResBuf> chain) {
    storeXData(chain, true);
}

void OdDbObject::storeXData(OdSmartPtr<OdResBuf> chain, bool keepLone) {
    constexpr int kApplication = 1001;
    if (chain.isNull()) return;
    if (chain->restype() != kApplication) throw OdError(eInvalidInput);
    if (!keepLone && deletesNothing(*this, chain.get())) {
        assertWriteEnabled(false, false);
        return;
    }
    beginChange();
    m_flags |= kXDataChanged;
    std::vector<XData>& all = changeableXData();
    OdSmartPtr<OdResBuf> at = chain->cloneChain();
    while (!at.isNull()) {
        OdSmartPtr<OdResBuf> head = at;
        OdResBuf* last = head.get();
        at = head->next();
        while (!at.isNull() && at->restype() != kApplication) {
            last = at.get();
            at = at->next();
        }
        last->setNext({});
        const OdString application = head->getString();
        const auto entry = std::find_if(all.begin(), all.end(),
                                        [&](const XData& x) { return x.application == application; });
        if (head->next().isNull() && !keepLone) {
            if (entry != all.end()) all.erase(entry);
            continue;
        }
        if (entry != all.end())
            entry->chain = head;
        else
            all.push_back({application, head});
        if (m_node != nullptr) lm::drawing::registerApplication(database()->data(), application);
    }
}

namespace lm::drawing {

void ObjectAccess::detachFromDatabase(OdDbObject& object) {
    object.allXData();
    setRaw(object, withoutHandles(rawGroupsOf(object)));
    object.m_node = nullptr;
}

namespace {

/// Raises OdError for an entity whose body the file of its drawing holds apart: in another drawing it would
/// be empty.
void refuseWithoutBody(const RawGroups& raw) {
    constexpr int kSubclass = 100, kInlineBody = 1, kFirstXData = 1000;
    bool isModel = false, whole = false;
    forEachGroupIn(raw.span(), [&](const Group& group, const char*, const char*) {
        isModel = isModel || (group.code == kSubclass && stripped(group.raw()) == "AcDbModelerGeometry");
        whole = whole || (isModel && group.code == kInlineBody);
        return group.code < kFirstXData;
    });
    if (isModel && !whole)
        throw OdError(eNotApplicable, odText("a " + raw.kind() +
                                             " has its body in a part of the file that can't be brought to "
                                             "another drawing"));
}

} // namespace

Node* makeResident(DatabaseData& data, OdDbObject& object, std::uint16_t kind, Node* owner, bool asPart) {
    if (object.isDBRO()) throw OdError(eAlreadyInDatabase);
    const bool erased = object.isErased();
    RawPointer copied;
    const bool isStranger = object.m_raw != nullptr && object.m_raw->home() != data.identity;
    if (object.m_raw != nullptr) {
        if (kind == kKindNone || kind == kKindDictionary) kind = data.kinds.indexOf(object.m_raw->kind());
        if (object.m_raw->kind() != data.kinds.name(kind))
            ObjectAccess::setRaw(object, {}); // a text that was made of an attribute
        else if (isStranger || data.clonersAtWork == 0)
            copied = rawGroupsOf(object);
        if (copied && isStranger) {
            refuseWithoutBody(*copied.get());
            ObjectAccess::setRaw(object, withoutHandles(copied, data.identity));
        }
    }
    Node* const node = data.adopt(&object, kind);
    if (erased) node->flags |= Node::kErased;
    data.undo.file(node, UndoRecord::Append{asPart ? owner->lastPart : nullptr, asPart});
    if (asPart)
        owner->appendPart(node);
    else
        node->owner = owner;
    // An object that came in this step goes whole when the step is taken back, and needs no image.
    const int imaged = data.undo.isRecording() ? OdDbObject::kImaged : 0;
    object.m_flags = static_cast<unsigned short>(
        (object.m_flags & ~OdDbObject::kErasedOutside) | OdDbObject::kWriteEnabled | OdDbObject::kModified |
        OdDbObject::kXDataRead | OdDbObject::kXDataChanged | OdDbObject::kNew | imaged);
    data.pending.add(*node);
    if (object.m_xdata)
        for (const auto& entry : *object.m_xdata) registerApplication(data, entry.application);
    ObjectAccess::becomeResident(object);
    data.spatial.came(*node, asPart);
    if (copied && isStranger)
        bringOwned(data, object, copied);
    else if (copied)
        copyOwned(data, object, copied);
    return node;
}

} // namespace lm::drawing
