// SPDX-License-Identifier: MIT
// Entities of kinds that the database doesn't read: their copies and their parts.
#include "base/rxclass.h"
#include "dxf/read.h"
#include "model/databasedata.h"
#include "model/names.h"
#include "model/pictures.h"
#include "model/rawtransform.h"

using lm::drawing::Node;
using lm::drawing::ObjectAccess;

LM_RX_DEFINE(OdDbUnreadEntity, OdDbEntity)

namespace {

/// Calls `visit` for the parts of an entity in a database, all live ones but the entry that closes their
/// list.
template<class F>
void forEachResidentPart(const OdDbEntity& entity, F&& visit) {
    Node* const node = entity.objectId().node();
    if (node == nullptr || node->database() == nullptr) return;
    for (Node* part = node->firstPart; part != nullptr; part = part->next)
        if (part->kind != lm::drawing::kKindSeqend && !part->isErased())
            visit(static_cast<OdDbEntity&>(*node->database()->data().bodyOf(part)));
}

} // namespace

OdDbUnreadEntity::OdDbUnreadEntity() = default;
OdDbUnreadEntity::~OdDbUnreadEntity() = default;

OdDbUnreadEntity::OdDbUnreadEntity(const OdDbUnreadEntity& other) : OdDbEntity(other) {
    const auto copy = [this](const OdDbEntity& part) {
        ObjectAccess::addPart(
            *this, OdSmartPtr<OdDbEntity>(static_cast<OdDbEntity*>(lm::drawing::cloneOutside(part)),
                                          lm::drawing::kAttach));
    };
    forEachResidentPart(other, copy);
    if (other.m_parts)
        for (const OdSmartPtr<OdDbEntity>& part : *other.m_parts) copy(*part.get());
}

OdDbUnreadEntity& OdDbUnreadEntity::operator=(const OdDbUnreadEntity& other) {
    OdDbEntity::operator=(other);
    return *this; // vertices are objects of their own
}

void OdDbUnreadEntity::subBecomeResident() {
    OdDbEntity::subBecomeResident();
    if (!m_parts) return;
    const auto waiting = std::move(m_parts);
    for (const OdSmartPtr<OdDbEntity>& part : *waiting) {
        Node* const entry = lm::drawing::makeResident(
            database()->data(), *part.get(), lm::drawing::entityKind(*part.get()), objectId().node(), true);
        entry->flags |= Node::kEntity;
        database()->data().pending.hold(*objectId().node(), part);
    }
}

OdResult OdDbUnreadEntity::transformBy(const OdGeMatrix3d& matrix) {
    const lm::drawing::RawPointer raw = lm::drawing::rawGroupsOf(*this);
    if (!raw) return eNotApplicable;
    const lm::drawing::RawMover mover(matrix, *raw.get());
    if (!mover.canMove()) return eNotApplicable;
    // The picture of a dimension stands where it is seen, in a block that a copy outside can't have.
    if (lm::drawing::isDimension(raw->kind()) && !isDBRO()) return eNotApplicable;
    const std::vector<OdDbEntity*> parts = ObjectAccess::partsOf(*this);
    beginChange();
    if (lm::drawing::isDimension(raw->kind())) {
        Node* const picture = lm::drawing::ownPictureOf(*this, *raw.get());
        ObjectAccess::setRaw(*this, mover.moved(*raw.get(), picture));
        if (picture != nullptr) lm::drawing::movePicture(*picture, matrix);
        return eOk;
    }
    ObjectAccess::setRaw(*this, mover.moved(*raw.get()));
    for (OdDbEntity* part : parts) {
        const lm::drawing::RawPointer groups = lm::drawing::rawGroupsOf(*part);
        if (!groups) continue;
        const OdSmartPtr<OdDbEntity> held(part);
        if (part->isDBRO()) part->upgradeOpen();
        part->assertWriteEnabled();
        ObjectAccess::setRaw(*part, mover.moved(*groups.get()));
    }
    return eOk;
}

namespace lm::drawing {

std::vector<OdDbEntity*> ObjectAccess::partsOf(const OdDbUnreadEntity& entity) {
    std::vector<OdDbEntity*> parts;
    forEachResidentPart(entity, [&](OdDbEntity& part) { parts.push_back(&part); });
    if (entity.m_parts)
        for (const OdSmartPtr<OdDbEntity>& part : *entity.m_parts) parts.push_back(part.get());
    return parts;
}

void ObjectAccess::addPart(OdDbUnreadEntity& entity, OdSmartPtr<OdDbEntity> part) {
    if (!entity.m_parts) entity.m_parts = std::make_unique<OdDbUnreadEntity::Parts>();
    entity.m_parts->push_back(std::move(part));
}

} // namespace lm::drawing
