// SPDX-License-Identifier: MIT
#include "lmcommon/cicommandstack.h"

#include <utility>

CICommandStack* CICommandStack::instance() {
    static CICommandStack stack;
    return &stack;
}

bool CICommandStack::verifyProjectOnLoad(CHostDocument* document) {
    ++m_verifications;
    return document == nullptr || !m_test || m_test(document);
}

void CICommandStack::setProjectTest(ProjectTest test) {
    m_test = std::move(test);
}
