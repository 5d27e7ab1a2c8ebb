// SPDX-License-Identifier: MIT
// What the class offers beside the settings: look-ups on the machine, folders, and files that are read once.
#include "settings/ciregistro.h"

#include "log.h"

#include "system/entries.h"
#include "system/file.h"
#include "system/folders.h"
#include "system/identity.h"
#include "system/path.h"
#include "system/registry.h"

#include <cstring>
#include <filesystem>
#include <fstream>

namespace {

/// The text that bytes make when they are taken as 16-bit units, up to the first 0 unit. An odd last byte is
/// the low half of a unit.
RZString takenAsUnits(const std::string& bytes) {
    constexpr std::size_t kUnit = sizeof(lm::WideChar);
    lm::WideString units((bytes.size() + 1) / kUnit + 1, 0);
    std::memcpy(units.data(), bytes.data(), bytes.size());
    return RZString(units.c_str());
}

/// All lines of an open file, each with a line feed behind it. What stands in the file isn't decoded: its
/// bytes without the 0 among them are units, two by two, and those who use it count on that.
void readLines(std::ifstream& file, RZString& output) {
    // A device that fails in the middle must not look like the end of the file, which would be deleted.
    file.exceptions(std::ios::badbit);
    for (std::string line; std::getline(file, line);) {
        std::erase(line, '\0');
        output += takenAsUnits(line);
        output += "\n";
    }
}

} // namespace

bool CIRegistro::ReadTextFile(RZString path, RZString& output) {
    return lm::log::guarded("CIRegistro::ReadTextFile", [&] {
        output = "";
        const std::string native = lm::system::nativePath(path.view());
        std::error_code unknown;
        // A folder could be opened, and only reading it would fail.
        if (std::filesystem::is_directory(native, unknown)) return false;
        std::ifstream file(native);
        if (!file) return false;
        readLines(file, output);
        file.close();
        // Who reads such a file takes it over; that it is gone is part of the result.
        lm::system::deleteFile(native);
        return true;
    });
}

RZString CIRegistro::GetRegistryValue(RZString path, RZString name) {
    const std::optional<std::string> value = lm::system::registryValue(
        lm::system::RegistryRoot::kMachine, lm::text::cut(path.view()), lm::text::cut(name.view()));
    constexpr std::size_t kMostBytes = 1024; // the 0 unit at the end of a text counted
    return value && value->size() <= kMostBytes ? takenAsUnits(*value) : RZString();
}

RZString CIRegistro::GetCaminhoTemp() {
    const RZString folder{lm::WideView(lm::system::temporaryFolder())};
    CreateFullDirectory(folder);
    return folder;
}

void CIRegistro::CreateFullDirectory(RZString path) {
    path.replace("/", "\\");
    // Splitting drops empty pieces, and with the one in front of a leading separator the root would go.
    RZString folder = path.startsWith("\\") ? "\\" : "";
    for (const RZString& piece : path.split("\\")) {
        folder += piece + "\\";
        lm::system::createFolder(lm::system::nativePath(folder.view()));
    }
}

std::uint64_t CIRegistro::GetSizeOfFile(const lm::WideString& path) const {
    const std::optional<lm::system::FileStamp> stamp = lm::system::stampOf(lm::system::nativePath(path));
    return stamp ? stamp->size : 0;
}

RZString CIRegistro::GetLocalComputerName() {
    return RZString(lm::system::computerName());
}

RZString CIRegistro::GetLocalUserName() {
    return RZString(lm::system::userName());
}
