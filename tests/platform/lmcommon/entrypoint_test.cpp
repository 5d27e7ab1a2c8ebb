// SPDX-License-Identifier: MIT
// The base class of the modules: slots, life and document callbacks.
#include "lmcommon/entrypoint.h"

#include "host/documentmanager.h"
#include "host/modulecallbacks.h"
#include "host/moduleloader.h"
#include "host/session.h"

#include <gtest/gtest.h>

#include <cstring>
#include <dlfcn.h>
#include <stdexcept>
#include <type_traits>

namespace {

/// Number of a virtual operation in its class's table. The C++ ABI of this platform keeps one more than the
/// offset in the first word of a pointer to a virtual member.
template<class Member>
std::size_t slotOf(Member member) {
    std::ptrdiff_t words[2];
    static_assert(sizeof words == sizeof member);
    std::memcpy(words, &member, sizeof words);
    EXPECT_EQ(1, words[0] % 2) << "not virtual";
    return static_cast<std::size_t>(words[0] - 1) / sizeof(void*);
}

class Probe : public CCEntryPoint {
public:
    void initModule() override {
        told += "initModule ";
        if (throwsInInit) throw std::runtime_error("init");
    }
    void uninitModule() override {
        told += "uninitModule ";
        if (throwsInUninit) throw std::runtime_error("uninit");
    }
    void onDocumentActivated(CHostDocument*) override { told += "activated "; }
    void onDatabaseAttached(CHostDocument*) override { told += "attached "; }
    void onDatabaseDetached(CHostDocument*) override { told += "detached "; }
    void onDatabaseReady(CHostDocument*) override { told += "ready "; }
    void* sysData() override { return nullptr; }
    void deleteModule() override {}
    OdString moduleName() const override { return OdString(); }

    std::string told;
    bool throwsInInit = false;
    bool throwsInUninit = false;
};

TEST(EntryPoint, KeepsTheOrderOfItsSlots) {
    // The destructor is first in every class and takes two slots on this platform.
    const std::size_t places[] = {
        slotOf(&CCEntryPoint::queryX),
        slotOf(&CCEntryPoint::x),
        slotOf(&CCEntryPoint::isA),
        slotOf(&CCEntryPoint::addRef),
        slotOf(&CCEntryPoint::release),
        slotOf(&CCEntryPoint::numRefs),
        slotOf(&CCEntryPoint::clone),
        slotOf(&CCEntryPoint::copyFrom),
        slotOf(&CCEntryPoint::comparedTo),
        slotOf(&CCEntryPoint::isEqualTo),
        slotOf(&CCEntryPoint::sysData),
        slotOf(&CCEntryPoint::deleteModule),
        slotOf(&CCEntryPoint::initApp),
        slotOf(&CCEntryPoint::uninitApp),
        slotOf(&CCEntryPoint::moduleName),
        slotOf(&CCEntryPoint::initModule),
        slotOf(&CCEntryPoint::uninitModule),
        slotOf(&CCEntryPoint::onDocumentActivated),
        slotOf(&CCEntryPoint::onDatabaseAttached),
        slotOf(&CCEntryPoint::onDatabaseDetached),
        slotOf(&CCEntryPoint::onDatabaseReady),
    };
    for (std::size_t i = 0; i < std::size(places); ++i) EXPECT_EQ(i + 2, places[i]) << "operation " << i;
}

TEST(EntryPoint, HasOneBaseAndAProtectedConstructor) {
    EXPECT_TRUE((std::is_base_of_v<OdStaticRxObject<OdRxModule>, CCEntryPoint>));
    EXPECT_TRUE((std::is_convertible_v<CCEntryPoint*, OdRxModule*>));
    Probe probe;
    EXPECT_EQ(static_cast<void*>(&probe), static_cast<void*>(static_cast<OdRxObject*>(&probe)));
    EXPECT_FALSE(std::is_default_constructible_v<CCEntryPoint>);
    EXPECT_TRUE(std::has_virtual_destructor_v<CCEntryPoint>);
}

TEST(EntryPoint, ReachesTheModulesOwnStartAndEnd) {
    Probe probe;
    const std::size_t before = lm::host::moduleCallbacksCount();
    probe.initApp();
    EXPECT_EQ(before + 1, lm::host::moduleCallbacksCount());
    probe.uninitApp();
    EXPECT_EQ(before, lm::host::moduleCallbacksCount());
    EXPECT_EQ("initModule uninitModule ", probe.told);
}

TEST(EntryPoint, HearsOfDocumentsBetweenStartAndEnd) {
    CHostDocumentManager& manager = lm::host::documentManager();
    Probe probe;
    manager.closeDocument(manager.newDocument());
    EXPECT_EQ("", probe.told);
    probe.initApp();
    probe.initApp();
    probe.told.clear();
    manager.closeDocument(manager.newDocument());
    EXPECT_EQ("activated attached ready detached ", probe.told) << "once each";
    probe.uninitApp();
    probe.told.clear();
    manager.closeDocument(manager.newDocument());
    EXPECT_EQ("", probe.told);
}

TEST(EntryPoint, LeavesTheHostsListOnEveryWayOut) {
    const std::size_t before = lm::host::moduleCallbacksCount();
    Probe probe;
    probe.throwsInInit = true;
    EXPECT_THROW(probe.initApp(), std::runtime_error);
    EXPECT_EQ(before, lm::host::moduleCallbacksCount());
    probe.throwsInInit = false;
    probe.throwsInUninit = true;
    probe.initApp();
    EXPECT_THROW(probe.uninitApp(), std::runtime_error);
    EXPECT_EQ(before, lm::host::moduleCallbacksCount());
    {
        Probe forgotten;
        forgotten.initApp();
        EXPECT_EQ(before + 1, lm::host::moduleCallbacksCount());
    }
    EXPECT_EQ(before, lm::host::moduleCallbacksCount());
}

TEST(EntryPoint, DefaultCallbacksDoNothing) {
    class Bare : public CCEntryPoint {
    public:
        void initModule() override {}
        void* sysData() override { return nullptr; }
        void deleteModule() override {}
        OdString moduleName() const override { return OdString(); }
    } bare;
    bare.uninitModule();
    bare.onDocumentActivated(nullptr);
    bare.onDatabaseAttached(nullptr);
    bare.onDatabaseDetached(nullptr);
    bare.onDatabaseReady(nullptr);
}

TEST(EntryPoint, WorksInALoadedModule) {
    const std::string path = LM_BINARY_DIR "/test_tx/lmcommon/derived.tx";
    hostSession()->clearLines();
    lm::host::ModuleLoader loader;
    for (int round = 0; round < 3; ++round) {
        const auto loaded = loader.load(path);
        ASSERT_TRUE(loaded) << loaded.reason;
        CHostDocumentManager& manager = lm::host::documentManager();
        manager.closeDocument(manager.newDocument());
        ASSERT_TRUE(loader.unload(path));
        EXPECT_EQ(nullptr, dlopen(path.c_str(), RTLD_NOLOAD | RTLD_LAZY));
    }
    std::string told;
    for (const CHostString& line : hostSession()->lines()) told += std::string(line.ansi_str()) + " ";
    const std::string once = "initModule activated attached ready detached uninitModule ";
    EXPECT_EQ(once + once + once, told);
    hostSession()->clearLines();
}

TEST(LMCommonModule, IsAModuleOfItsOwn) {
    lm::host::ModuleLoader loader({LM_BINARY_DIR "/tx"});
    const auto loaded = loader.load("LMCommon_26.8_17.tx");
    ASSERT_TRUE(loaded) << loaded.reason;
    EXPECT_EQ(0, loaded.module->numRefs());
    const std::string name = lm::drawing::utf8(loaded.module->moduleName());
    EXPECT_TRUE(name.ends_with("/LMCommon_26.8_17.tx")) << name;
    EXPECT_TRUE(loader.unload("LMCommon_26.8_17"));
    EXPECT_TRUE(loader.load("LMCommon_26.8_17"));
}

} // namespace
