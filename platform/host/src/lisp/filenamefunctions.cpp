// SPDX-License-Identifier: MIT
// Names of files taken apart, and files as a whole: sizes, times, copies, folders. Both separators count.
#include "files.h"
#include "hoststate.h"

#include "drawing/wildcard.h"

#include <algorithm>
#include <chrono>
#include <ctime>
#include <unistd.h>

namespace lm::host::lisp {

namespace {

namespace fs = std::filesystem;

constexpr WideChar kSeparators[] = {'/', '\\', 0};

std::size_t nameStart(const WideString& path) {
    const std::size_t separator = path.find_last_of(kSeparators);
    return separator == WideString::npos ? 0 : separator + 1;
}

/// Where the ending begins, with its dot; the text's end without one.
std::size_t endingStart(const WideString& path) {
    const std::size_t dot = path.rfind(WideChar('.'));
    return dot == WideString::npos || dot < nameStart(path) ? path.size() : dot;
}

Value base(Machine& machine, Arguments a) {
    const WideString& path = machine.textAt(a, 0);
    const std::size_t start = nameStart(path);
    return machine.text(path.substr(start, endingStart(path) - start));
}

Value folder(Machine& machine, Arguments a) {
    const WideString& path = machine.textAt(a, 0);
    const std::size_t start = nameStart(path);
    return machine.text(path.substr(0, start == 0 ? 0 : start - 1));
}

Value ending(Machine& machine, Arguments a) {
    const WideString& path = machine.textAt(a, 0);
    const std::size_t dot = endingStart(path);
    return dot == path.size() ? Value() : machine.text(path.substr(dot));
}

// A name that no file has yet: pattern, folder and ending are optional.
Value temporaryName(Machine& machine, Arguments a) {
    const auto part = [&](std::size_t index) {
        return index < a.size() && !a[index].isNil() ? machine.textAt(a, index) : WideString();
    };
    std::error_code ignored;
    const WideString pattern = part(0), where = part(1);
    WideString suffix = part(2), stem = pattern;
    if (suffix.empty()) suffix = pattern.substr(endingStart(pattern));
    stem.resize(endingStart(pattern));
    if (stem.empty()) stem = system::widen("lisp");
    fs::path parent = nativeName(machine, where);
    if (parent.empty() && nameStart(stem) == 0) parent = fs::temp_directory_path(ignored);
    constexpr int kMost = 100000;
    for (int number = 1; number < kMost; ++number) {
        const std::string middle = "-" + std::to_string(getpid()) + "-" + std::to_string(number);
        const fs::path path = parent / nativeName(machine, stem + system::widen(middle) + suffix);
        if (!fs::exists(path, ignored)) return machine.text(nameOf(path));
        machine.tick();
    }
    return Value();
}

Value deleteFile(Machine& machine, Arguments a) {
    const fs::path path = nativeName(machine, machine.textAt(a, 0));
    std::error_code error;
    return machine.boolean(!fs::is_directory(path, error) && fs::remove(path, error));
}

// An existing target is left alone.
Value renameFile(Machine& machine, Arguments a) {
    const fs::path from = nativeName(machine, machine.textAt(a, 0));
    const fs::path to = nativeName(machine, machine.textAt(a, 1));
    std::error_code error;
    if (!fs::exists(from, error) || fs::exists(to, error)) return Value();
    fs::rename(from, to, error);
    return machine.boolean(!error);
}

// Gives the number of bytes. An existing target is left alone unless a third argument says to append.
Value copyFile(Machine& machine, Arguments a) {
    const fs::path from = nativeName(machine, machine.textAt(a, 0));
    const fs::path to = nativeName(machine, machine.textAt(a, 1));
    const bool append = a.size() > 2 && !a[2].isNil();
    std::error_code error;
    if (!fs::is_regular_file(from, error) || fs::equivalent(from, to, error)) return Value();
    const bool exists = fs::exists(to, error);
    if (exists && (!append || !fs::is_regular_file(to, error))) return Value();
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> source(std::fopen(from.c_str(), "rb"),
                                                                 &std::fclose);
    std::FILE* target = std::fopen(to.c_str(), exists ? "ab" : "wb");
    if (source == nullptr || target == nullptr) {
        if (target != nullptr) std::fclose(target);
        return Value();
    }
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> closing(target, &std::fclose);
    char block[16384];
    long long bytes = 0;
    for (std::size_t read = 0; (read = std::fread(block, 1, sizeof block, source.get())) != 0;) {
        machine.tick(read);
        if (std::fwrite(block, 1, read, target) != read) return Value();
        bytes += static_cast<long long>(read);
    }
    return std::fflush(target) == 0 ? Machine::integerOrReal(bytes) : Value();
}

// Nil for what isn't there, 0 for a folder.
Value fileSize(Machine& machine, Arguments a) {
    const fs::path path = nativeName(machine, machine.textAt(a, 0));
    std::error_code error;
    if (fs::is_directory(path, error)) return Value::integer(0);
    const std::uintmax_t size = fs::file_size(path, error);
    return error ? Value() : Machine::integerOrReal(static_cast<long long>(size));
}

// Year, month, day of the week from 0 for Sunday, day, hour, minute, second and thousandths, local time.
Value fileTime(Machine& machine, Arguments a) {
    const fs::path path = nativeName(machine, machine.textAt(a, 0));
    std::error_code error;
    const auto written = fs::last_write_time(path, error);
    if (error) return Value();
    const auto inSystem = std::chrono::file_clock::to_sys(written);
    const auto milliseconds =
        std::chrono::duration_cast<std::chrono::milliseconds>(inSystem.time_since_epoch()).count();
    const auto seconds = static_cast<std::time_t>(milliseconds / 1000);
    std::tm local{};
    if (localtime_r(&seconds, &local) == nullptr) return Value();
    const int parts[] = {
        local.tm_year + 1900, local.tm_mon + 1, local.tm_wday, local.tm_mday,
        local.tm_hour,        local.tm_min,     local.tm_sec,  static_cast<int>(milliseconds % 1000)};
    ListBuilder list(machine.heap());
    for (const int part : parts) list.add(Value::integer(part));
    return list.take();
}

Value isFolder(Machine& machine, Arguments a) {
    std::error_code error;
    return machine.boolean(fs::is_directory(nativeName(machine, machine.textAt(a, 0)), error));
}

// Names in a folder that match a pattern, in order: 1 files, -1 folders, 0 both.
Value folderFiles(Machine& machine, Arguments a) {
    const bool named = !a.empty() && !a[0].isNil();
    const WideString where = named ? machine.textAt(a, 0) : WideString(1, '.');
    const OdString pattern = a.size() > 1 && !a[1].isNil() ? OdString(WideView(machine.textAt(a, 1))) : "*";
    const int wanted = a.size() > 2 && !a[2].isNil() ? machine.integerAt(a, 2) : 0;
    std::error_code error;
    std::vector<WideString> names;
    fs::directory_iterator entry(nativeName(machine, where), error);
    for (; !error && entry != fs::directory_iterator(); entry.increment(error)) {
        machine.tick();
        std::error_code ignored;
        const bool isFolderEntry = entry->is_directory(ignored);
        if ((wanted > 0 && isFolderEntry) || (wanted < 0 && !isFolderEntry)) continue;
        WideString name = nameOf(entry->path().filename());
        if (odutWcMatch(OdString(WideView(name)), pattern)) names.push_back(std::move(name));
    }
    std::sort(names.begin(), names.end(),
              [](const WideString& x, const WideString& y) { return system::wideCompare(x, y) < 0; });
    ListBuilder list(machine.heap());
    for (WideString& name : names) list.add(machine.text(std::move(name)));
    return list.take();
}

Value makeFolder(Machine& machine, Arguments a) {
    std::error_code error;
    return machine.boolean(fs::create_directory(nativeName(machine, machine.textAt(a, 0)), error));
}

const Builtin kFileNames[] = {
    {"VL-FILENAME-BASE", 1, 1, &base},          {"VL-FILENAME-DIRECTORY", 1, 1, &folder},
    {"VL-FILENAME-EXTENSION", 1, 1, &ending},   {"VL-FILENAME-MKTEMP", 0, 3, &temporaryName},
    {"VL-FILE-DELETE", 1, 1, &deleteFile},      {"VL-FILE-RENAME", 2, 2, &renameFile},
    {"VL-FILE-COPY", 2, 3, &copyFile},          {"VL-FILE-SIZE", 1, 1, &fileSize},
    {"VL-FILE-SYSTIME", 1, 1, &fileTime},       {"VL-FILE-DIRECTORY-P", 1, 1, &isFolder},
    {"VL-DIRECTORY-FILES", 0, 3, &folderFiles}, {"VL-MKDIR", 1, 1, &makeFolder},
};

} // namespace

std::span<const Builtin> fileNameFunctions() {
    return kFileNames;
}

} // namespace lm::host::lisp
