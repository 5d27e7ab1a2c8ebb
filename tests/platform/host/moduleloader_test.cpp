// SPDX-License-Identifier: MIT
// Loading, refusing and unloading of modules. The modules stand in the folder modules.
#include "hostsupport.h"

#include "drawing/alloc.h"
#include "host/debugsettings.h"
#include "host/modulecallbacks.h"
#include "host/moduleloader.h"
#include "host/tools.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <dlfcn.h>
#include <stdexcept>
#include <sys/stat.h>

namespace {

using namespace lm::test;
using lm::host::ModuleLoader;
using lm::host::ModuleResult;
using lm::host::ModuleStatus;
using testing::EndsWith;
using testing::HasSubstr;

const std::string kFolder = LM_BINARY_DIR "/test_tx/host";

std::string pathOf(const std::string& name) {
    return kFolder + "/" + name;
}

/// Whether a library is in memory, without loading it.
bool isLoaded(const std::string& path) {
    void* library = dlopen(path.c_str(), RTLD_NOLOAD | RTLD_LAZY);
    if (library == nullptr) return false;
    dlclose(library);
    return true;
}

std::string logText() {
    std::string text;
    for (const CHostString& line : hostSession()->lines()) text += (text.empty() ? "" : "|") + utf8(line);
    return text;
}

/// What modules can leave behind in the host.
struct Footprint {
    std::size_t functions = lm::host::functionCount();
    std::size_t tools = lm::host::tools().size();
    std::size_t callbacks = lm::host::moduleCallbacksCount();
    std::size_t reactors = lm::host::documentManager().reactorCount();
    std::size_t blocks = lm::drawing::liveBlocks();
    friend bool operator==(const Footprint&, const Footprint&) = default;
};

class Loader : public testing::Test {
protected:
    void SetUp() override { hostSession()->clearLines(); }
    void TearDown() override { hostSession()->clearLines(); }

    ModuleResult expectRefused(const std::string& name, ModuleStatus status, const std::string& reason) {
        const Footprint before;
        ModuleResult result = loader.load(name);
        EXPECT_EQ(status, result.status);
        EXPECT_FALSE(result);
        EXPECT_EQ(nullptr, result.module);
        EXPECT_THAT(result.reason, HasSubstr(reason));
        EXPECT_EQ(std::string::npos, result.reason.find('\n'));
        EXPECT_EQ(0u, loader.count());
        EXPECT_FALSE(isLoaded(pathOf(name)));
        EXPECT_TRUE(Footprint() == before);
        return result;
    }
    ModuleLoader loader{{kFolder}};
};

TEST_F(Loader, LoadsByNameAndInitialises) {
    const ModuleResult result = loader.load("good.tx");
    ASSERT_TRUE(result) << result.reason;
    EXPECT_EQ("", result.reason);
    ASSERT_NE(nullptr, result.module);
    EXPECT_EQ(result.module, loader.find("good.tx"));
    EXPECT_EQ(result.module, loader.find("good"));
    EXPECT_EQ(0, result.module->numRefs());
    EXPECT_THAT(lm::drawing::utf8(result.module->moduleName()), EndsWith("/good.tx"));
    EXPECT_EQ("good: initApp", logText());
    EXPECT_EQ(CHostString("described at load"), CHostDebugSettings::Get().GetDescription("GoodModuleSwitch"));
    EXPECT_NE(nullptr, lm::host::findTool("good"));
}

TEST_F(Loader, CutsAVeryLongModuleName) {
    EXPECT_TRUE(lm::drawing::moduleFileName(nullptr).isEmpty());
    TemporaryFolder folder;
    const auto deep = folder.path() / std::string(200, 'a') / std::string(200, 'b');
    std::filesystem::create_directories(deep);
    const std::string path = (deep / "good.tx").string();
    std::filesystem::copy_file(pathOf("good.tx"), path);
    const ModuleResult result = loader.load(path);
    ASSERT_TRUE(result) << result.reason;
    const lm::WideString whole = wide(path);
    EXPECT_EQ(lm::WideView(whole).substr(0, 260), result.module->moduleName().view());
}

TEST_F(Loader, FindsModulesByPathAndInSeveralFolders) {
    EXPECT_TRUE(loader.load(pathOf("good.tx")));
    EXPECT_TRUE(loader.unload(pathOf("good")));
    ModuleLoader other({"/nonexistent", kFolder});
    EXPECT_TRUE(other.load("good"));
    ModuleLoader nowhere{std::vector<std::string>{}};
    EXPECT_EQ(ModuleStatus::kNotFound, nowhere.load("good.tx").status);
}

TEST_F(Loader, DoesNotInitialiseTwice) {
    OdRxModule* const module = loader.load("good.tx").module;
    EXPECT_EQ(module, loader.load("good").module);
    EXPECT_EQ(module, loader.load(pathOf("good.tx")).module);
    std::filesystem::remove(pathOf("alias.tx"));
    std::filesystem::create_symlink("good.tx", pathOf("alias.tx"));
    EXPECT_EQ(module, loader.load("alias.tx").module);
    std::filesystem::remove(pathOf("alias.tx"));
    EXPECT_EQ(1u, loader.count());
    EXPECT_EQ("good: initApp", logText());
}

TEST_F(Loader, ModulesHearOfDocumentsAndAreCalledByName) {
    ASSERT_TRUE(loader.load("good.tx"));
    Documents documents;
    CHostDocument* document = documents.manager.newDocument();
    hst_resbufW* call = textRecord("lmgoodecho", textRecord("á"));
    hst_resbufW* result = nullptr;
    EXPECT_EQ(RTNORM, document->getAPI()->invoke(call, result));
    EXPECT_EQ("5005:á", told(result));
    document->getAPI()->relRb(result);
    document->getAPI()->relRb(call);
    documents.manager.closeDocument(document);
    EXPECT_EQ("good: initApp|good: activated|good: attached|good: ready|good: detached", logText());
}

TEST_F(Loader, ExceptionsOfAModulesFunctionReachTheCaller) {
    ASSERT_TRUE(loader.load("good.tx"));
    CHostAPI api;
    hst_resbufW* call = textRecord("lmGoodThrow");
    hst_resbufW* result = nullptr;
    try {
        api.invoke(call, result);
        ADD_FAILURE() << "no exception";
    } catch (const std::runtime_error& error) {
        EXPECT_STREQ("thrown by a module", error.what());
    }
    EXPECT_EQ(0u, api.callDepth());
    api.relRb(call);
}

TEST_F(Loader, UnloadsInReverseOrder) {
    ASSERT_TRUE(loader.load("good"));
    ASSERT_TRUE(loader.load("plain"));
    hostSession()->clearLines();
    EXPECT_TRUE(loader.unloadAll().empty());
    EXPECT_EQ("plain: uninitApp|good: uninitApp|good: end", logText());
    EXPECT_EQ(0u, loader.count());
    EXPECT_EQ(nullptr, loader.find("good"));
}

TEST_F(Loader, UnloadsWhenItEnds) {
    {
        ModuleLoader other({kFolder});
        ASSERT_TRUE(other.load("good"));
        EXPECT_TRUE(isLoaded(pathOf("good.tx")));
    }
    EXPECT_FALSE(isLoaded(pathOf("good.tx")));
}

TEST_F(Loader, RefusesToUnloadWhatIsNotLoaded) {
    const ModuleResult result = loader.unload("good.tx");
    EXPECT_EQ(ModuleStatus::kNotLoaded, result.status);
    EXPECT_THAT(result.reason, HasSubstr("good.tx"));
}

TEST_F(Loader, LeavesNothingBehindInAHundredRounds) {
    const Footprint before;
    for (int round = 0; round < 100; ++round) {
        ASSERT_TRUE(loader.load("good.tx"));
        ASSERT_TRUE(isLoaded(pathOf("good.tx")));
        ASSERT_FALSE(Footprint() == before);
        ASSERT_TRUE(loader.unload("good.tx"));
        ASSERT_FALSE(isLoaded(pathOf("good.tx"))) << "round " << round;
        hostSession()->clearLines();
        if (round == 0) continue; // the description of the debug switch stays from the first round on
        ASSERT_EQ(before.functions, Footprint().functions);
    }
    Footprint after;
    EXPECT_EQ(before.tools, after.tools);
    EXPECT_EQ(before.callbacks, after.callbacks);
    EXPECT_EQ(before.reactors, after.reactors);
    CHostDebugSettings::Get().SetDescription("GoodModuleSwitch", "described at load");
    for (int round = 0; round < 3; ++round) {
        const std::size_t blocks = lm::drawing::liveBlocks();
        ASSERT_TRUE(loader.load("good.tx"));
        ASSERT_TRUE(loader.unload("good.tx"));
        hostSession()->clearLines();
        EXPECT_EQ(blocks, lm::drawing::liveBlocks());
    }
}

TEST_F(Loader, RefusesAMissingFile) {
    const ModuleResult result =
        expectRefused("absent.tx", ModuleStatus::kNotFound, "absent.tx: module not found");
    EXPECT_THAT(result.reason, HasSubstr(kFolder));
    EXPECT_EQ(ModuleStatus::kNotFound, loader.load("./absent.tx").status);
    EXPECT_EQ(ModuleStatus::kNotFound, loader.load(".\\absent.tx").status);
    EXPECT_EQ(ModuleStatus::kNotFound, loader.load("").status);
}

TEST_F(Loader, RefusesAFolderATextAPipeAndACutOffLibrary) {
    TemporaryFolder folder;
    std::filesystem::create_directory(folder.path() / "folder.tx");
    folder.file("text.tx", "not a library");
    folder.file("empty.tx", "");
    std::ifstream whole(pathOf("good.tx"), std::ios::binary);
    const std::string bytes(std::istreambuf_iterator<char>(whole), {});
    ASSERT_EQ(0, ::mkfifo((folder.path() / "pipe.tx").c_str(), 0600));
    ModuleLoader other({folder.path().string()});
    for (const char* name : {"folder.tx", "text.tx", "empty.tx", "pipe.tx"}) {
        const ModuleResult result = other.load(name);
        EXPECT_EQ(ModuleStatus::kNotLoadable, result.status) << name;
        EXPECT_THAT(result.reason, HasSubstr(name));
    }
    for (const std::size_t size : {3, 40, 64, 100, 2000, 6000, 12000}) {
        folder.file("cut.tx", std::string_view(bytes).substr(0, size));
        EXPECT_EQ(ModuleStatus::kNotLoadable, other.load("cut.tx").status) << size;
    }
}

TEST_F(Loader, RefusesLibrariesWithoutTheExports) {
    expectRefused("noexports.tx", ModuleStatus::kNoExports, "odrxGetAPIVersion is missing");
    expectRefused("oneexport.tx", ModuleStatus::kNoExports, "odrxCreateModuleObject is missing");
}

TEST_F(Loader, RefusesAWrongVersionBeforeAnObjectIsMade) {
    expectRefused("wrongversion.tx", ModuleStatus::kWrongVersion,
                  "interface version 26.8.0.54831 found, 26.8.0.54832 expected");
}

TEST_F(Loader, RefusesThrowingEntryPoints) {
    expectRefused("throws_version.tx", ModuleStatus::kEntryThrew,
                  "odrxGetAPIVersion failed: version on purpose");
    expectRefused("throws_create.tx", ModuleStatus::kEntryThrew,
                  "odrxCreateModuleObject failed: create on purpose");
    expectRefused("throws_init.tx", ModuleStatus::kInitThrew, "initApp failed: init on purpose");
    expectRefused("throws_null.tx", ModuleStatus::kNoObject, "no module object");
}

TEST_F(Loader, UnloadsAModuleThatThrowsAtItsEnd) {
    const Footprint before;
    ASSERT_TRUE(loader.load("throws_uninit"));
    const ModuleResult result = loader.unload("throws_uninit");
    EXPECT_EQ(ModuleStatus::kUninitThrew, result.status);
    EXPECT_THAT(result.reason, HasSubstr("uninitApp failed: an exception without a text"));
    EXPECT_FALSE(isLoaded(pathOf("throws_uninit.tx")));
    EXPECT_TRUE(Footprint() == before);
    ASSERT_TRUE(loader.load("throws_uninit"));
    EXPECT_EQ(1u, loader.unloadAll().size());
    EXPECT_EQ(0u, loader.count());
}

TEST_F(Loader, SearchesBesideTheProgramUnlessToldOtherwise) {
    const auto folders = ModuleLoader::defaultFolders();
    ASSERT_FALSE(folders.empty());
    EXPECT_EQ(std::string(LM_BINARY_DIR "/tx"), folders[0]);
}

TEST(ModuleSingleton, IsMadeOnceAndKeepsItsHandle) {
    void* library = dlopen(pathOf("plain.tx").c_str(), RTLD_NOW | RTLD_LOCAL);
    ASSERT_NE(nullptr, library) << dlerror();
    const auto make = reinterpret_cast<OdRxModule* (*)(void*&)>(dlsym(library, "odrxCreateModuleObject"));
    const auto version = reinterpret_cast<void (*)(unsigned&, unsigned&, unsigned&, unsigned&)>(
        dlsym(library, "odrxGetAPIVersion"));
    unsigned a = 0, b = 0, c = 0, d = 0;
    version(a, b, c, d);
    EXPECT_EQ("26.8.0.54832",
              std::to_string(a) + "." + std::to_string(b) + "." + std::to_string(c) + "." + std::to_string(d))
        << "before any object exists";
    void* handle = library;
    OdRxModule* module = make(handle);
    ASSERT_NE(nullptr, module);
    EXPECT_EQ(nullptr, handle);
    EXPECT_EQ(library, module->sysData());
    void* other = &handle;
    EXPECT_EQ(module, make(other));
    EXPECT_EQ(&handle, other) << "left alone for the second caller";
    module->addRef();
    module->release();
    module->release();
    EXPECT_EQ(-1, module->numRefs());
    module->deleteModule();
    handle = library;
    module = make(handle);
    EXPECT_EQ(0, module->numRefs());
    module->deleteModule();
    dlclose(library);
    EXPECT_FALSE(isLoaded(pathOf("plain.tx")));
}

} // namespace
