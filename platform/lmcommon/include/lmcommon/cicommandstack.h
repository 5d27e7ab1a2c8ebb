// SPDX-License-Identifier: MIT
// CICommandStack: decides which documents the application watches.
#pragma once

#include "lmcommon/export.h"

#include <functional>

class CHostDocument;

/// The one command stack of the process. Belongs to the host's main thread.
class LM_COMMON_API CICommandStack {
public:
    /// Says whether a document is a project of the application.
    using ProjectTest = std::function<bool(CHostDocument* document)>;

    /// The instance of this module; never null.
    static CICommandStack* instance();

    /// Whether a document that was loaded is to be watched. True unless setProjectTest says otherwise; always
    /// true for null, of which the test isn't asked.
    bool verifyProjectOnLoad(CHostDocument* document);

    /// Puts another decision in place; an empty function makes every document a project again.
    void setProjectTest(ProjectTest test);
    /// How often verifyProjectOnLoad was called, for null too. For tests.
    unsigned long verifications() const { return m_verifications; }

private:
    CICommandStack() = default;

    ProjectTest m_test;
    unsigned long m_verifications = 0;
};
