// SPDX-License-Identifier: MIT
// EditorReactorBase: what the reactors of the editor have in common.
#pragma once

#include "host/export.h"

#include "drawing/rxobject.h"

namespace lm::host {

/// The root of the editor's reactors. A reactor belongs to whoever made it: the host never deletes one, and
/// its count means nothing unless a class below gives it a meaning. So a reactor may stand on the stack, and
/// smart pointers to it come and go.
class LM_HOST_API EditorReactorBase : public OdRxObject {
public:
    EditorReactorBase();
    ~EditorReactorBase() override;
    void addRef() override;
    void release() override;
    /// Does nothing: the owner ends the reactor.
    virtual void deleteModule();
    /// File name of the reactor's module; empty unless a class below knows one.
    virtual OdString moduleName() const;
    /// Handle of the reactor's module; null unless a class below knows one.
    virtual void* sysData();
};

} // namespace lm::host
