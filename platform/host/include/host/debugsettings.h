// SPDX-License-Identifier: MIT
// CHostDebugSettings: the switches that modules announce for people who look for faults.
#pragma once

#include "host/hoststring.h"

#include <map>

/// Descriptions of switches by key. May be used while modules are loaded, before any of their code runs.
class LM_HOST_API CHostDebugSettings {
public:
    /// The settings of the process.
    static CHostDebugSettings& Get();
    /// Announces a switch; a later text replaces the earlier one.
    void SetDescription(const CHostString& key, const CHostString& text);
    /// The text of a key, compared exactly; empty for an unknown key.
    CHostString GetDescription(const CHostString& key) const;

private:
    std::map<CHostString, CHostString> m_descriptions;
};
