// SPDX-License-Identifier: MIT
// CCEntryPoint: the base of the module class of every module.
//
//     class MyModule : public CCEntryPoint {
//         void initModule() override { ... }
//     };
//     LM_DEFINE_MODULE(MyModule)
#pragma once

#include "lmcommon/export.h"

#include "drawing/module.h"

class CHostDocument;

namespace lm::host {
class ModuleCallbacks;
}

/// A module's entry point. The order of the virtual operations is part of the interface between modules: new
/// ones may only be added at the end.
class LM_COMMON_API CCEntryPoint : public OdStaticRxObject<OdRxModule> {
public:
    CCEntryPoint(const CCEntryPoint&) = delete;
    CCEntryPoint& operator=(const CCEntryPoint&) = delete;
    /// Leaves the host's list of modules if the module was never uninitialised.
    ~CCEntryPoint() override;

    /// Joins the host's list of modules that hear of documents and calls initModule. An exception of
    /// initModule passes, after the list was left again.
    void initApp() override;
    /// Calls uninitModule and leaves the host's list, also when uninitModule raises an exception, which
    /// passes.
    void uninitApp() override;

    /// The module's own start.
    virtual void initModule() = 0;
    /// The module's own end. Does nothing here.
    virtual void uninitModule();

    /// A document became the active one. Does nothing here.
    virtual void onDocumentActivated(CHostDocument* document);
    /// A drawing was loaded into a document. Does nothing here.
    virtual void onDatabaseAttached(CHostDocument* document);
    /// A document is about to go with its drawing. Does nothing here.
    virtual void onDatabaseDetached(CHostDocument* document);
    /// Everybody was told of a new drawing; it is ready for commands. Does nothing here.
    virtual void onDatabaseReady(CHostDocument* document);

protected:
    CCEntryPoint();

private:
    void leave() noexcept;

    // This object's place in the host's list; the class has no second base that could stand there itself.
    lm::host::ModuleCallbacks* m_callbacks = nullptr;
};
