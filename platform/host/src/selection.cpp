// SPDX-License-Identifier: MIT
#include "host/selection.h"

#include "host/document.h"
#include "host/hoststring.h"
#include "selectiongeometry.h"

#include "drawing/nearparts.h"
#include "drawing/partwalk.h"

#include <algorithm>
#include <set>
#include <utility>

namespace {

/// What a chain of records asks of an entity.
class Filter {
public:
    explicit Filter(const hst_resbufW* record) {
        for (; record != nullptr; record = record->rbnext) {
            const CHostString text(lm::host::isTextCode(record->restype) ? record->value.text : nullptr);
            if (record->restype == 8)
                m_layers.push_back(text);
            else if (record->restype == 0)
                m_kinds.push_back(text);
            else
                m_isImpossible = true;
        }
    }
    bool fits(const OdDbEntity& entity) const {
        if (m_isImpossible) return false;
        const auto isSame = [](const OdString& text) {
            return [&text](const OdString& wanted) { return wanted == text; };
        };
        return std::all_of(m_layers.begin(), m_layers.end(), isSame(entity.layer())) &&
               (m_kinds.empty() || std::all_of(m_kinds.begin(), m_kinds.end(), isSame(entity.dxfName())));
    }

private:
    std::vector<OdString> m_layers, m_kinds;
    bool m_isImpossible = false;
};

using Ids = std::vector<OdDbObjectId>;

bool isFull(const Ids& chosen, int limit) {
    return limit >= 0 && chosen.size() >= static_cast<std::size_t>(limit);
}

template<class Test>
Ids choose(OdDbObjectId space, const hst_resbufW* chain, int limit, Test test) {
    Ids chosen;
    const Filter filter(chain);
    for (lm::drawing::PartWalk walk(space); !walk.done() && !isFull(chosen, limit); walk.next()) {
        const OdDbEntity& entity = *walk.entity();
        if (filter.fits(entity) && test(entity)) chosen.push_back(walk.id());
    }
    return chosen;
}

/// The same among the entities that may touch a box, which the database knows without a walk.
template<class Test>
Ids chooseNear(const lm::host::Box& box, OdDbObjectId space, const hst_resbufW* chain, int limit, Test test) {
    std::vector<const OdDbEntity*> near;
    if (!lm::drawing::partsNear(space, box.bounds(), near)) return choose(space, chain, limit, test);
    Ids chosen;
    const Filter filter(chain);
    for (const OdDbEntity* const entity : near) {
        if (isFull(chosen, limit)) break;
        if (filter.fits(*entity) && test(*entity)) chosen.push_back(entity->objectId());
    }
    return chosen;
}

} // namespace

CHostSelectionSet::CHostSelectionSet(const CHostDocument& document)
    : m_space(document.database() != nullptr ? document.database()->getModelSpaceId() : OdDbObjectId::kNull) {
}

CHostSelectionSet::~CHostSelectionSet() = default;

int CHostSelectionSet::take(std::vector<OdDbObjectId> chosen) {
    if (chosen.empty()) return RTERROR;
    if (m_option == 0 || m_ids.empty()) {
        m_ids = std::move(chosen);
        return RTNORM;
    }
    std::set<OdDbObjectId> known(m_ids.begin(), m_ids.end());
    for (const OdDbObjectId id : chosen)
        if (known.insert(id).second) m_ids.push_back(id);
    return RTNORM;
}

int CHostSelectionSet::crossing(const OdGePoint3d& first, const OdGePoint3d& second, const CHostView*,
                                const hst_resbufW* filter, int limit) {
    const lm::host::Box box(first, second);
    return take(chooseNear(box, m_space, filter, limit,
                           [&box](const OdDbEntity& entity) { return box.touches(entity); }));
}

int CHostSelectionSet::window(const OdGePoint3d& first, const OdGePoint3d& second, const CHostView*,
                              const hst_resbufW* filter, int limit) {
    const lm::host::Box box(first, second);
    return take(chooseNear(box, m_space, filter, limit,
                           [&box](const OdDbEntity& entity) { return box.holds(entity); }));
}

int CHostSelectionSet::all(const hst_resbufW* filter, int limit) {
    return take(choose(m_space, filter, limit, [](const OdDbEntity&) { return true; }));
}

bool CHostSelectionSet::add(OdDbObjectId id) {
    if (!id.isValid() || std::find(m_ids.begin(), m_ids.end(), id) != m_ids.end()) return false;
    m_ids.push_back(id);
    return true;
}
