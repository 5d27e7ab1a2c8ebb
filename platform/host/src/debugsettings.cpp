// SPDX-License-Identifier: MIT
#include "host/debugsettings.h"

// Never destroyed: modules reach it while the process ends.
CHostDebugSettings& CHostDebugSettings::Get() {
    static CHostDebugSettings& settings = *new CHostDebugSettings;
    return settings;
}

void CHostDebugSettings::SetDescription(const CHostString& key, const CHostString& text) {
    m_descriptions[key] = text;
}

CHostString CHostDebugSettings::GetDescription(const CHostString& key) const {
    const auto at = m_descriptions.find(key);
    return at != m_descriptions.end() ? at->second : CHostString();
}
