// SPDX-License-Identifier: MIT
#include "host/moduleloader.h"

#include "libraryfile.h"

#include "host/script.h"

#include <algorithm>
#include <dlfcn.h>
#include <exception>
#include <filesystem>
#include <memory>
#include <utility>

namespace lm::host {

namespace {

using CreateModule = OdRxModule* (*)(void*&);
using GetVersion = void (*)(unsigned int&, unsigned int&, unsigned int&, unsigned int&);

constexpr std::string_view kSuffix = ".tx";

/// Runs module code. The exception is over when this returns, so that the library that it came from can be
/// let go.
template<class Call>
bool runs(Call call, std::string& thrown) {
    try {
        call();
        return true;
    } catch (...) {
        thrown = describeCurrentException();
        return false;
    }
}

std::string versionText(unsigned int a, unsigned int b, unsigned int c, unsigned int d) {
    return std::to_string(a) + "." + std::to_string(b) + "." + std::to_string(c) + "." + std::to_string(d);
}

struct LibraryCloser {
    void operator()(void* library) const { dlclose(library); }
};
using Library = std::unique_ptr<void, LibraryCloser>;

bool hasSeparator(std::string_view name) {
    return name.find_first_of("/\\") != std::string_view::npos;
}

std::string withSuffix(std::string_view name) {
    std::string file(name);
    if (!name.ends_with(kSuffix)) file += kSuffix;
    std::replace(file.begin(), file.end(), '\\', '/');
    return file;
}

std::string fileOf(const std::string& path) {
    return std::filesystem::path(path).filename().string();
}

ModuleResult refused(ModuleStatus status, const std::string& subject, const std::string& reason) {
    return {status, subject + ": " + reason, nullptr};
}

/// Asks the library for its version and its object; `object` is null when refused.
ModuleResult create(void* library, const std::string& path, OdRxModule*& object) {
    const auto version = reinterpret_cast<GetVersion>(dlsym(library, "odrxGetAPIVersion"));
    const auto make = reinterpret_cast<CreateModule>(dlsym(library, "odrxCreateModuleObject"));
    if (version == nullptr || make == nullptr)
        return refused(ModuleStatus::kNoExports, path,
                       std::string("no module: export ") +
                           (version == nullptr ? "odrxGetAPIVersion" : "odrxCreateModuleObject") +
                           " is missing");
    using namespace lm::drawing;
    unsigned int a = 0, b = 0, c = 0, d = 0;
    std::string thrown;
    if (!runs([&] { version(a, b, c, d); }, thrown))
        return refused(ModuleStatus::kEntryThrew, path, "odrxGetAPIVersion failed: " + thrown);
    if (a != kApiMajor || b != kApiMinor || c != kApiBuildMajor || d != kApiBuildMinor)
        return refused(ModuleStatus::kWrongVersion, path,
                       "interface version " + versionText(a, b, c, d) + " found, " +
                           versionText(kApiMajor, kApiMinor, kApiBuildMajor, kApiBuildMinor) + " expected");
    void* handle = library;
    if (!runs([&] { object = make(handle); }, thrown))
        return refused(ModuleStatus::kEntryThrew, path, "odrxCreateModuleObject failed: " + thrown);
    if (object == nullptr) return refused(ModuleStatus::kNoObject, path, "the module gave no module object");
    return {};
}

} // namespace

ModuleLoader::ModuleLoader(std::vector<std::string> folders) : m_folders(std::move(folders)) {}

ModuleLoader::~ModuleLoader() {
    unloadAll();
}

std::vector<std::string> ModuleLoader::defaultFolders() {
    std::error_code error;
    const auto program = std::filesystem::read_symlink("/proc/self/exe", error);
    if (error) return {};
    const auto above = program.parent_path().parent_path();
    return {(above / "tx").string(), (above / "lib" / "tx").string()};
}

std::string ModuleLoader::locate(std::string_view name) const {
    const std::string file = withSuffix(name);
    std::error_code error;
    // A name without a separator would make the system search on its own, so every path given on is absolute.
    if (hasSeparator(name)) {
        const auto path = std::filesystem::absolute(file, error);
        return !error && std::filesystem::exists(path, error) ? path.lexically_normal().string()
                                                              : std::string();
    }
    for (const std::string& folder : m_folders) {
        const auto path = std::filesystem::absolute(std::filesystem::path(folder) / file, error);
        if (!error && std::filesystem::exists(path, error)) return path.lexically_normal().string();
    }
    return {};
}

std::vector<ModuleLoader::Module>::const_iterator ModuleLoader::position(std::string_view name) const {
    const std::string file = withSuffix(name);
    if (!hasSeparator(name))
        return std::find_if(m_modules.begin(), m_modules.end(),
                            [&](const Module& module) { return fileOf(module.path) == file; });
    std::error_code error;
    const std::string path = std::filesystem::absolute(file, error).lexically_normal().string();
    return std::find_if(m_modules.begin(), m_modules.end(),
                        [&](const Module& module) { return module.path == path; });
}

OdRxModule* ModuleLoader::find(std::string_view name) const {
    const auto at = position(name);
    return at != m_modules.end() ? at->object : nullptr;
}

ModuleResult ModuleLoader::load(std::string_view name) {
    if (OdRxModule* loaded = find(name)) return {ModuleStatus::kDone, {}, loaded};
    const std::string path = locate(name);
    if (path.empty()) {
        std::string reason = "module not found";
        if (!hasSeparator(name))
            for (std::size_t i = 0; i < m_folders.size(); ++i)
                reason += (i == 0 ? " in " : ", ") + m_folders[i];
        return refused(ModuleStatus::kNotFound, std::string(name), reason);
    }
    if (const std::string defect = libraryDefect(path); !defect.empty())
        return refused(ModuleStatus::kNotLoadable, path, defect);
    Library library(dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL));
    if (!library) {
        const char* reason = dlerror();
        return refused(ModuleStatus::kNotLoadable, path, reason != nullptr ? reason : "can't be loaded");
    }
    // The same file under another name must not be initialised twice.
    for (const Module& module : m_modules)
        if (module.library == library.get()) return {ModuleStatus::kDone, {}, module.object};
    OdRxModule* object = nullptr;
    if (ModuleResult result = create(library.get(), path, object); !result) return result;
    std::string thrown;
    if (!runs([&] { object->initApp(); }, thrown)) {
        std::string again;
        runs([&] { object->deleteModule(); }, again);
        return refused(ModuleStatus::kInitThrew, path, "initApp failed: " + thrown);
    }
    m_modules.push_back({path, library.release(), object});
    return {ModuleStatus::kDone, {}, object};
}

ModuleResult ModuleLoader::finish(Module module) {
    const Library library(module.library);
    std::string thrown, deleting;
    const bool left = runs([&] { module.object->uninitApp(); }, thrown);
    const bool deleted = runs([&] { module.object->deleteModule(); }, deleting);
    if (!left) return refused(ModuleStatus::kUninitThrew, module.path, "uninitApp failed: " + thrown);
    if (!deleted) return refused(ModuleStatus::kUninitThrew, module.path, "deleteModule failed: " + deleting);
    return {};
}

ModuleResult ModuleLoader::unload(std::string_view name) {
    const auto at = position(name);
    if (at == m_modules.end())
        return refused(ModuleStatus::kNotLoaded, std::string(name), "module is not loaded");
    Module module = *at;
    m_modules.erase(at);
    return finish(std::move(module));
}

std::vector<ModuleResult> ModuleLoader::unloadAll() {
    std::vector<ModuleResult> failed;
    while (!m_modules.empty()) {
        Module module = std::move(m_modules.back());
        m_modules.pop_back();
        if (ModuleResult result = finish(std::move(module)); !result) failed.push_back(std::move(result));
    }
    return failed;
}

} // namespace lm::host
