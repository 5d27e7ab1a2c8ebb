// SPDX-License-Identifier: MIT
// ModuleLoader: loads modules, shared libraries with the suffix .tx, by name and unloads them in reverse
// order.
//
//     lm::host::ModuleLoader loader;
//     if (auto loaded = loader.load("LMCommon_26.8_17.tx"); !loaded) complain(loaded.reason);
#pragma once

#include "host/export.h"

#include "drawing/module.h"

#include <string>
#include <string_view>
#include <vector>

namespace lm::host {

/// How loading or unloading went.
enum class ModuleStatus {
    kDone,
    kNotFound,    ///< no such file in the search folders
    kNotLoadable, ///< the system can't load the file
    kNoExports,   ///< the file lacks one of the two exports of a module
    kWrongVersion,
    kEntryThrew, ///< an exception out of one of the two exports
    kNoObject,   ///< the module gave no module object
    kInitThrew,  ///< an exception out of initApp
    kNotLoaded,  ///< nothing to unload under this name
    kUninitThrew ///< an exception out of uninitApp or deleteModule; the module was unloaded all the same
};

/// A status with its reason.
struct ModuleResult {
    ModuleStatus status = ModuleStatus::kDone;
    std::string reason;           ///< one line, UTF-8, with the module's name or file; empty when done
    OdRxModule* module = nullptr; ///< the module object after loading; it lives until the module is unloaded
    explicit operator bool() const { return status == ModuleStatus::kDone; }
};

/// The modules that this loader loaded. A module that was refused leaves nothing behind. Belongs to the main
/// thread.
class LM_HOST_API ModuleLoader {
public:
    /// Searches `folders` in order.
    explicit ModuleLoader(std::vector<std::string> folders = defaultFolders());
    ModuleLoader(const ModuleLoader&) = delete;
    ModuleLoader& operator=(const ModuleLoader&) = delete;
    /// Unloads all modules.
    ~ModuleLoader();

    /// Loads a module by its file name, with or without ".tx"; a name with a separator is a path and is not
    /// searched for. Asks the module for the version of its interface, creates its object and calls initApp.
    /// A module that is loaded already is given again and not initialised twice.
    ModuleResult load(std::string_view name);
    /// Calls uninitApp and deleteModule, then lets the library go. Exceptions are caught and told in the
    /// result.
    ModuleResult unload(std::string_view name);
    /// Unloads all, the latest first; gives the results of those that threw.
    std::vector<ModuleResult> unloadAll();

    /// The object of a loaded module, or null.
    OdRxModule* find(std::string_view name) const;
    std::size_t count() const { return m_modules.size(); }

    /// "../tx" and "../lib/tx" seen from the program's folder.
    static std::vector<std::string> defaultFolders();

private:
    struct Module {
        std::string path;
        void* library;
        OdRxModule* object;
    };
    std::string locate(std::string_view name) const;
    std::vector<Module>::const_iterator position(std::string_view name) const;
    ModuleResult finish(Module module);

    std::vector<std::string> m_folders;
    std::vector<Module> m_modules;
};

} // namespace lm::host
