// SPDX-License-Identifier: MIT
#include "host/editorreactor.h"

namespace lm::host {

EditorReactorBase::EditorReactorBase() = default;
EditorReactorBase::~EditorReactorBase() = default;
void EditorReactorBase::addRef() {}
void EditorReactorBase::release() {}
void EditorReactorBase::deleteModule() {}
OdString EditorReactorBase::moduleName() const {
    return OdString();
}
void* EditorReactorBase::sysData() {
    return nullptr;
}

} // namespace lm::host

OdEditorReactor::OdEditorReactor() = default;
OdEditorReactor::~OdEditorReactor() = default;

OdEdLispEngineReactor::OdEdLispEngineReactor() = default;
OdEdLispEngineReactor::~OdEdLispEngineReactor() = default;

CHostEditorReactor::CHostEditorReactor() = default;
CHostEditorReactor::~CHostEditorReactor() = default;
void CHostEditorReactor::addRef() {}
void CHostEditorReactor::release() {}
void CHostEditorReactor::deleteModule() {}
OdString CHostEditorReactor::moduleName() const {
    return OdString();
}
void* CHostEditorReactor::sysData() {
    return nullptr;
}
