// SPDX-License-Identifier: MIT
// CHostEditorReactor: the one base for a class that watches the editor. It joins the three kinds of editor
// reactors; only that of the command stack is ever called.
//
//     class Watcher : public CHostEditorReactor { void commandEnded(...) override; };
//     odedRegCmds()->addReactor(&watcher);
#pragma once

#include "host/command.h"

/// A reactor of the editor. Nothing is called on it.
class LM_HOST_API OdEditorReactor : public lm::host::EditorReactorBase {
public:
    OdEditorReactor();
    ~OdEditorReactor() override;
};

/// A reactor of the LISP engine. Nothing is called on it.
class LM_HOST_API OdEdLispEngineReactor : public lm::host::EditorReactorBase {
public:
    OdEdLispEngineReactor();
    ~OdEdLispEngineReactor() override;
};

/// The three reactors of the editor in one.
class LM_HOST_API CHostEditorReactor : public OdEditorReactor,
                                       public OdEdCommandStackReactor,
                                       public OdEdLispEngineReactor {
public:
    CHostEditorReactor();
    ~CHostEditorReactor() override;
    void addRef() override;
    void release() override;
    void deleteModule() override;
    OdString moduleName() const override;
    void* sysData() override;
};
