// SPDX-License-Identifier: MIT
#include "base/objectmemory.h"
#include "base/rxclass.h"
#include "dxf/read.h"
#include "model/databasedata.h"
#include "model/names.h"

#include "drawing/alloc.h"

#include <unordered_map>

using lm::drawing::DatabaseData;
using lm::drawing::Node;
using lm::drawing::ObjectAccess;

LM_RX_DEFINE_ABSTRACT(OdDbObject, OdRxObject)
LM_RX_DEFINE(OdDbUnreadObject, OdDbObject)

const OdDbObjectId OdDbObjectId::kNull;

bool OdDbObjectId::isValid() const noexcept {
    return m_node != nullptr && m_node->database() != nullptr;
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

OdSmartPtr<OdDbObject> OdDbObjectId::openObject(OdDb::OpenMode mode, bool openErased) const {
    if (!isValid() || (m_node->isErased() && !openErased)) return {};
    OdDbObject* body = m_node->body;
    if (body == nullptr) body = m_node->database()->data().bodyOf(m_node);
    if (mode == OdDb::kForWrite) ObjectAccess::setOpenForWrite(*body, true);
    return OdSmartPtr<OdDbObject>(body);
}

OdDbObject::OdDbObject(const OdDbObject& other) : OdRxObject(other), m_flags(kNew) {
    const std::vector<XData>& source = other.allXData();
    if (source.empty()) return;
    m_xdata = std::make_unique<std::vector<XData>>();
    for (const XData& entry : source)
        m_xdata->push_back(
            {entry.application, entry.chain.isNull() ? entry.chain : entry.chain->cloneChain()});
}

OdDbObject::~OdDbObject() = default;

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

void OdDbObject::lastReleased() {
    if (m_node == nullptr) {
        delete this;
        return;
    }
    m_flags &= static_cast<unsigned short>(~kWriteEnabled);
}

void OdDbObject::upgradeOpen() {
    if (m_node != nullptr) m_flags |= kWriteEnabled;
}

void OdDbObject::downgradeOpen() {
    m_flags &= static_cast<unsigned short>(~kWriteEnabled);
}

void OdDbObject::assertWriteEnabled(bool, bool recordModified) {
    if (!isWriteEnabled()) throw OdError(eNotOpenForWrite);
    if (m_node == nullptr || !recordModified) return;
    m_flags |= kModified;
    m_node->flags |= Node::kDirty;
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
    if (erasing)
        m_node->flags |= Node::kErased;
    else
        m_node->flags &= static_cast<std::uint8_t>(~Node::kErased);
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
    beginChange();
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
    object.m_node = nullptr;
}

Node* makeResident(DatabaseData& data, OdDbObject& object, std::uint16_t kind, Node* owner, bool asPart) {
    if (object.isDBRO()) throw OdError(eAlreadyInDatabase);
    const bool erased = object.isErased();
    Node* const node = data.adopt(&object, kind);
    if (erased) node->flags |= Node::kErased;
    if (asPart)
        owner->appendPart(node);
    else
        node->owner = owner;
    object.m_flags |= OdDbObject::kWriteEnabled | OdDbObject::kModified | OdDbObject::kXDataRead;
    if (object.m_xdata)
        for (const auto& entry : *object.m_xdata) registerApplication(data, entry.application);
    ObjectAccess::becomeResident(object);
    return node;
}

} // namespace lm::drawing
