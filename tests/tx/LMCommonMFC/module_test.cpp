// SPDX-License-Identifier: MIT
// The module as the host's loader sees it: this program doesn't link to the library and knows its file name
// alone.
#include "module_entry.h"

#include "drawing/alloc.h"
#include "host/debugsettings.h"
#include "host/moduleloader.h"

#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>
#include <new>
#include <string>
#include <thread>
#include <type_traits>
#include <utility>
#include <vector>

#include <dlfcn.h>

namespace {

const std::string kFolder = LM_BINARY_DIR "/tx/";
const std::string kFile = "LMCommonMFC_26.8_17.tx";

using Create = OdRxModule* (*)(void*&);
using Version = void (*)(unsigned int&, unsigned int&, unsigned int&, unsigned int&);

/// The library, opened without the loader.
class Library {
public:
    Library() : m_handle(::dlopen((kFolder + kFile).c_str(), RTLD_NOW | RTLD_LOCAL)) {
        if (m_handle == nullptr) ADD_FAILURE() << ::dlerror();
    }
    Library(const Library&) = delete;
    Library& operator=(const Library&) = delete;
    ~Library() {
        if (m_handle != nullptr) ::dlclose(m_handle);
    }
    void* handle() const { return m_handle; }
    OdRxModule* create(void*& handle) const { return symbol<Create>("odrxCreateModuleObject")(handle); }
    template<class Function>
    Function symbol(const char* name) const {
        return reinterpret_cast<Function>(::dlsym(m_handle, name));
    }

private:
    void* m_handle;
};

bool isInMemory(const std::string& file) {
    void* const handle = ::dlopen((kFolder + file).c_str(), RTLD_NOW | RTLD_NOLOAD);
    if (handle != nullptr) ::dlclose(handle);
    return handle != nullptr;
}

std::string utf8(const OdString& text) {
    return lm::drawing::utf8(text);
}

TEST(Module, TellsItsVersionBeforeAnyObjectExists) {
    const Library library;
    for (int round = 0; round < 2; ++round) {
        unsigned int a = 0, b = 0, c = 1, d = 0;
        library.symbol<Version>("odrxGetAPIVersion")(a, b, c, d);
        EXPECT_EQ(a, 26u);
        EXPECT_EQ(b, 8u);
        EXPECT_EQ(c, 0u);
        EXPECT_EQ(d, 54832u);
    }
}

TEST(Module, CreationTakesTheHandleOver) {
    const Library library;
    void* given = library.handle();
    OdRxModule* const module = library.create(given);
    ASSERT_NE(module, nullptr);
    EXPECT_EQ(given, nullptr);
    EXPECT_EQ(module->sysData(), library.handle());
    EXPECT_EQ(module->numRefs(), 0);
    EXPECT_TRUE(utf8(module->moduleName()).ends_with(kFile)) << utf8(module->moduleName());
    module->deleteModule();
}

TEST(Module, SecondCreationGivesTheSameObjectAndLeavesTheHandleAlone) {
    const Library library;
    void* given = library.handle();
    OdRxModule* const module = library.create(given);
    int other = 0;
    void* second = &other;
    EXPECT_EQ(library.create(second), module);
    EXPECT_EQ(second, &other);
    EXPECT_EQ(module->sysData(), library.handle());
    module->deleteModule();
}

TEST(Module, IsNotManagedByItsCount) {
    const Library library;
    void* given = library.handle();
    OdRxModule* const module = library.create(given);
    module->addRef();
    module->addRef();
    EXPECT_EQ(module->numRefs(), 2);
    for (int i = 0; i < 5; ++i) module->release();
    EXPECT_EQ(module->numRefs(), -3);
    void* second = nullptr;
    EXPECT_EQ(library.create(second), module); // it is still there
    module->deleteModule();
}

TEST(Module, CountsTheHoldersOfEveryThread) {
    const Library library;
    void* given = library.handle();
    OdRxModule* const module = library.create(given);
    constexpr int kThreads = 4, kRounds = 50000;
    std::vector<std::thread> holders;
    for (int i = 0; i < kThreads; ++i)
        holders.emplace_back([module] {
            for (int round = 0; round < kRounds; ++round) {
                module->addRef();
                module->addRef();
                module->release();
            }
        });
    for (std::thread& holder : holders) holder.join();
    EXPECT_EQ(module->numRefs(), kThreads * kRounds);
    module->deleteModule();
}

TEST(Module, CreationAfterDeletionGivesAFreshObject) {
    const Library library;
    const std::size_t blocks = lm::drawing::liveBlocks();
    for (int i = 0; i < 3; ++i) {
        void* given = library.handle();
        OdRxModule* const module = library.create(given);
        EXPECT_EQ(module->numRefs(), 0);
        EXPECT_EQ(given, nullptr);
        module->addRef();
        module->deleteModule();
        EXPECT_EQ(lm::drawing::liveBlocks(), blocks);
    }
}

TEST(Module, HasNoNameWithoutAHandle) {
    const Library library;
    void* given = nullptr;
    OdRxModule* const module = library.create(given);
    EXPECT_EQ(module->sysData(), nullptr);
    EXPECT_EQ(utf8(module->moduleName()), "");
    module->deleteModule();
}

int handlerCalls = 0;

/// Puts the new-handler and the allocator back.
struct Exhaustion {
    explicit Exhaustion(std::new_handler handler) : before(std::set_new_handler(handler)) {
        handlerCalls = 0;
        lm::drawing::failAllocationAfter(0);
    }
    ~Exhaustion() {
        lm::drawing::failAllocationAfter(-1);
        std::set_new_handler(before);
    }
    std::new_handler before;
};

TEST(ModuleExhaustion, AReturningNewHandlerIsCalledOnceAndGivesNullAndClearsTheHandle) {
    const Library library;
    void* given = library.handle();
    {
        const Exhaustion exhaustion([] { ++handlerCalls; });
        EXPECT_EQ(library.create(given), nullptr);
    }
    EXPECT_EQ(handlerCalls, 1);
    EXPECT_EQ(given, nullptr);
    given = library.handle();
    OdRxModule* const module = library.create(given); // the singleton had stayed null
    ASSERT_NE(module, nullptr);
    EXPECT_EQ(module->sysData(), library.handle());
    module->deleteModule();
}

TEST(ModuleExhaustion, WithoutANewHandlerBadAllocationIsThrown) {
    const Library library;
    void* given = library.handle();
    {
        const Exhaustion exhaustion(nullptr);
        try {
            library.create(given);
            ADD_FAILURE() << "nothing was thrown";
        } catch (const std::bad_alloc& error) {
            EXPECT_STREQ(error.what(), "bad allocation");
        }
    }
    EXPECT_EQ(given, library.handle());
}

TEST(ModuleExhaustion, AThrowingNewHandlerPasses) {
    const Library library;
    void* given = library.handle();
    {
        const Exhaustion exhaustion([] { throw 7; });
        EXPECT_THROW(library.create(given), int);
    }
    EXPECT_EQ(given, library.handle());
}

// --- the classes that a module is made of

static_assert(std::is_base_of_v<CCEntryPoint, CCEntryPointMFC>);
static_assert(sizeof(CCEntryPointMFC) == sizeof(CCEntryPoint), "it adds no data");
static_assert(std::is_abstract_v<CCEntryPointMFC>, "a module supplies its own start");
static_assert(!std::is_default_constructible_v<CCEntryPointMFC> && std::is_destructible_v<CCEntryPointMFC>);
static_assert(std::has_virtual_destructor_v<CCEntryPointMFC>);

/// A module that asks for its singleton while it is being destroyed.
class Mourner : public CCEntryPoint {
public:
    ~Mourner() override {
        if (std::exchange(s_asks, false)) s_successor = create();
    }
    void initModule() override {}
    static OdRxModule* create() {
        void* handle = nullptr;
        return OdRxWin32Module<Mourner, Mourner>::createModule(handle);
    }
    inline static bool s_asks = true;
    inline static OdRxModule* s_successor = nullptr;
};

TEST(Module, DeletionClearsTheSingletonBeforeItDestroys) {
    OdRxModule* const module = Mourner::create();
    module->deleteModule();
    ASSERT_NE(Mourner::s_successor, nullptr);
    EXPECT_NE(Mourner::s_successor, module) << "the object that was going was handed out";
    EXPECT_EQ(Mourner::create(), Mourner::s_successor);
    Mourner::s_successor->deleteModule();
}

// --- the virtual table
// ------------------------------------------------------------------------------------------

/// Place of a virtual operation in the table of its class, counted in pointers: the destructor takes two.
template<class Member>
std::size_t slotOf(Member member) {
    std::ptrdiff_t words[2];
    static_assert(sizeof member == sizeof words);
    std::memcpy(words, &member, sizeof words);
    EXPECT_EQ(words[0] & 1, 1) << "not virtual";
    EXPECT_EQ(words[1], 0) << "not in the first table";
    return static_cast<std::size_t>(words[0] - 1) / sizeof(void*);
}

using Concrete = OdRxWin32Module<CLMCommonMFCModule, CLMCommonMFCModule>;

TEST(ModuleSlots, StandInTheOrderThatModulesAgreeOn) {
    const std::size_t found[] = {
        slotOf(&Concrete::queryX),
        slotOf(&Concrete::x),
        slotOf(&Concrete::isA),
        slotOf(&Concrete::addRef),
        slotOf(&Concrete::release),
        slotOf(&Concrete::numRefs),
        slotOf(&Concrete::clone),
        slotOf(&Concrete::copyFrom),
        slotOf(&Concrete::comparedTo),
        slotOf(&Concrete::isEqualTo),
        slotOf(&Concrete::sysData),
        slotOf(&Concrete::deleteModule),
        slotOf(&Concrete::initApp),
        slotOf(&Concrete::uninitApp),
        slotOf(&Concrete::moduleName),
        slotOf(&Concrete::initModule),
        slotOf(&Concrete::uninitModule),
        slotOf(&Concrete::onDocumentActivated),
        slotOf(&Concrete::onDatabaseAttached),
        slotOf(&Concrete::onDatabaseDetached),
        slotOf(&Concrete::onDatabaseReady),
    };
    std::size_t expected = 2;
    for (const std::size_t slot : found) EXPECT_EQ(slot, expected++);
}

TEST(ModuleSlots, HoldTheCodeOfTheClassThatSuppliesEach) {
    const Library library;
    void* given = library.handle();
    OdRxModule* const module = library.create(given);
    void* const* const table = *reinterpret_cast<void* const* const*>(module);
    const char* const own = "LMCommonMFC_26.8_17.tx";
    const char* const common = "LMCommon_26.8_17.tx";
    const char* const drawing = "libLMDrawing.so";
    const char* const files[] = {own,     own,     drawing, drawing, drawing, own,    own,    own,
                                 drawing, drawing, drawing, drawing, own,     own,    common, common,
                                 own,     own,     own,     common,  common,  common, common};
    for (std::size_t i = 0; i < std::size(files); ++i) {
        Dl_info info{};
        ASSERT_NE(::dladdr(table[i], &info), 0) << i;
        EXPECT_EQ(std::filesystem::path(info.dli_fname).filename(), files[i]) << "slot " << i;
    }
    module->deleteModule();
}

TEST(ModuleSlots, TheConcreteClassAddsACountAndAHandle) {
    struct Layout : CLMCommonMFCModule {
        std::int32_t count;
        void* handle;
    };
    EXPECT_EQ(sizeof(Concrete), sizeof(Layout));
}

// --- loading
// ----------------------------------------------------------------------------------------------------

TEST(ModuleLoading, AnnouncesItsDebugSwitch) {
    const Library library;
    const CHostString text = CHostDebugSettings::Get().GetDescription("HostThreadsDisable");
    EXPECT_STREQ(text.ansi_str(), "Disable multi threading for the Foreach template");
}

TEST(ModuleLoading, LoadsAndUnloadsAHundredTimesWithNothingLeftBehind) {
    ASSERT_FALSE(isInMemory(kFile)) << "the test program must not link to the library";
    std::size_t blocks = 0;
    for (int round = 0; round < 100; ++round) {
        {
            lm::host::ModuleLoader loader({kFolder});
            const lm::host::ModuleResult result = loader.load(kFile);
            ASSERT_TRUE(result) << result.reason;
            ASSERT_TRUE(isInMemory(kFile));
            EXPECT_EQ(result.module->numRefs(), 0);
            ASSERT_TRUE(loader.unload(kFile));
        }
        ASSERT_FALSE(isInMemory(kFile)) << "round " << round;
        if (round == 0) blocks = lm::drawing::liveBlocks();
    }
    EXPECT_EQ(lm::drawing::liveBlocks(), blocks);
}

TEST(ModuleLoading, GoesAfterItsSiblingWhenBothWereLoaded) {
    {
        lm::host::ModuleLoader loader({kFolder});
        ASSERT_TRUE(loader.load("LMCommon_26.8_17.tx"));
        ASSERT_TRUE(loader.load(kFile));
        EXPECT_NE(loader.find("LMCommon_26.8_17.tx"), loader.find(kFile));
    }
    EXPECT_FALSE(isInMemory(kFile));
}

} // namespace
