// SPDX-License-Identifier: MIT
// What lies at a place: entities of one layer that a box touches.
#include "cad/icad.h"

#include "host/documentmanager.h"
#include "host/session.h"

#include <memory>
#include <utility>

namespace {

/// The session takes entities on layers that aren't shown while this is set.
const char kHiddenLayers[] = "SELECTHIDDENLAYERS";
constexpr short kLayerName = 8;
constexpr int kEverything = -1;

/// How far a box around a point reaches. It was once a number of single precision, and what lies at its very
/// border must stay found.
constexpr double kHalfSize = 0.3f;

/// Sets a setting of the session for as long as it lives.
class SettingScope {
public:
    SettingScope(CHostSession& session, const CHostString& name, int value)
        : m_session(session), m_name(name), m_before(session.setting(name)) {
        m_session.setSetting(m_name, value);
    }
    ~SettingScope() { m_session.setSetting(m_name, m_before); }
    SettingScope(const SettingScope&) = delete;
    SettingScope& operator=(const SettingScope&) = delete;

private:
    CHostSession& m_session;
    CHostString m_name;
    int m_before;
};

struct ChainRelease {
    CHostAPI* api;
    void operator()(hst_resbufW* chain) const { api->relRb(chain); }
};

using SetOwner = std::unique_ptr<CHostSelectionSet>;

void tellEach(const SetOwner& set, const std::function<void(OdDbObjectId)>& function) {
    if (set == nullptr) return;
    for (std::size_t i = 0; i < set->size(); ++i) function(set->id(i));
}

} // namespace

CHostSelectionSet* CICad::SSGetCrossing(OdGePoint3d primeiro, OdGePoint3d segundo, CHostString layer,
                                        CHostDatabase* db) {
    CHostDocument* const document = lm::host::documentManager().document(db);
    CHostSession* const session = hostSession();
    // Without a session there is nobody to make a filter, and unfiltered results are never wanted.
    if (document == nullptr || session == nullptr) return nullptr;
    SetOwner set(document->newSelectionSet());
    set->setOption(0);
    OdGePoint3d points[] = {primeiro, segundo};
    for (OdGePoint3d& point : points) db->coordinates().toDrawing(point);
    const std::unique_ptr<hst_resbufW, ChainRelease> filter(session->buildList(kLayerName, layer),
                                                            ChainRelease{document->getAPI()});
    const SettingScope scope(*session, kHiddenLayers, 1);
    const int result = set->crossing(points[0], points[1], document->view(), filter.get(), kEverything);
    return result == RTNORM ? set.release() : nullptr;
}

CHostSelectionSet* CICad::SSGetCrossing(OdGePoint3d ponto, CHostString layer, CHostDatabase* db) {
    const OdGePoint3d upper(ponto.x + kHalfSize, ponto.y + kHalfSize, ponto.z);
    const OdGePoint3d lower(ponto.x - kHalfSize, ponto.y - kHalfSize, ponto.z);
    return SSGetCrossing(upper, lower, layer, db);
}

void CICad::SSGetCrossing(OdGePoint3d primeiro, OdGePoint3d segundo, CHostString layer, CHostDatabase* db,
                          std::function<void(OdDbObjectId)> funcao) {
    tellEach(SetOwner(SSGetCrossing(primeiro, segundo, layer, db)), funcao);
}

void CICad::SSGetCrossing(OdGePoint3d ponto, CHostString layer, CHostDatabase* db,
                          std::function<void(OdDbObjectId)> funcao) {
    tellEach(SetOwner(SSGetCrossing(ponto, layer, db)), funcao);
}
