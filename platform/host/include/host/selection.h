// SPDX-License-Identifier: MIT
// CHostSelectionSet: entities of a document that were chosen, by a box, by a filter or one by one.
//
//     std::unique_ptr<CHostSelectionSet> set(document->newSelectionSet());
//     hst_resbufW* filter = hostSession()->buildList(8, "P01");
//     if (set->crossing(lower, upper, document->view(), filter) == RTNORM) ... set->id(0) ...
//     document->getAPI()->relRb(filter);
#pragma once

#include "host/hostapi.h"

#include "drawing/geometry.h"

#include <vector>

class CHostDocument;
class CHostView;

/// A set of entities in the order of choosing, each once. The document makes it, the caller owns and deletes
/// it. It may outlive the document: its ids then answer as null ids do, and nothing more can be chosen.
class LM_HOST_API CHostSelectionSet {
public:
    ~CHostSelectionSet();
    CHostSelectionSet(const CHostSelectionSet&) = delete;
    CHostSelectionSet& operator=(const CHostSelectionSet&) = delete;

    /// 0, as a new set has it: what is chosen replaces what the set held. Any other value: it is added.
    void setOption(int option) { m_option = option; }
    int option() const { return m_option; }

    /// Chooses the live entities of model space, in drawing order, that a box touches or crosses. The corners
    /// may come in any order; only x and y count. Lines, polylines with their bulges, circles and arcs count
    /// by their shape, other entities by their extents; an entity without known extents is never chosen.
    /// Touching counts. Whether a layer is frozen, off or locked isn't looked at, nor is the view. `filter`
    /// is null or a chain of records that must all fit: group 8 the layer's name, group 0 the DXF name, both
    /// exact; any other group fits nothing. At most `limit` entities are chosen, all with a negative one.
    /// Gives RTNORM when something was chosen, else RTERROR, and the set is then left as it was. Costs what
    /// the box touches: see partsNear, which measures model space at the first time.
    int crossing(const OdGePoint3d& first, const OdGePoint3d& second, const CHostView* view,
                 const hst_resbufW* filter, int limit = -1);
    /// As crossing, for entities whose extents lie in the box as a whole.
    int window(const OdGePoint3d& first, const OdGePoint3d& second, const CHostView* view,
               const hst_resbufW* filter, int limit = -1);
    /// Chooses all live entities of model space that the filter fits.
    int all(const hst_resbufW* filter, int limit = -1);

    std::size_t size() const { return m_ids.size(); }
    /// The member at an index from 0, or the null id outside.
    OdDbObjectId id(std::size_t index) const {
        return index < m_ids.size() ? m_ids[index] : OdDbObjectId::kNull;
    }
    const std::vector<OdDbObjectId>& ids() const { return m_ids; }
    /// Adds an object at the end; false for an id that isn't valid and for one that is there already.
    bool add(OdDbObjectId id);
    void clear() { m_ids.clear(); }

private:
    friend class CHostDocument;
    explicit CHostSelectionSet(const CHostDocument& document);
    int take(std::vector<OdDbObjectId> chosen);

    OdDbObjectId m_space; ///< model space of the document; null for a document without a database
    int m_option = 0;
    std::vector<OdDbObjectId> m_ids;
};
