// SPDX-License-Identifier: MIT
// Puts any bytes in the place of the file of the settings, reads and sets. Afterwards the file is as it was,
// or what was set can be read, or there was an attribute missing or a document that Qt can't write back.
#include "settings/ciregistro.h"

#include <QtGlobal>

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include <unistd.h>

namespace {

namespace fs = std::filesystem;

/// The file of the settings in a folder of this process.
struct Place {
    Place() {
        fs::create_directories(file.parent_path());
        ::setenv("LM_COMMON_APPDATA", folder.c_str(), 1);
        // Qt warns of encodings that it reads but doesn't write.
        qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) {});
    }
    ~Place() { fs::remove_all(folder); }

    const fs::path folder = fs::temp_directory_path() / ("lm_fuzz_settings_" + std::to_string(::getpid()));
    const fs::path file = folder / "LM" / "LMREG2022SP0.xml";
};

std::string contentOf(const fs::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const Place place;
    const std::string bytes(reinterpret_cast<const char*>(data), size);
    std::ofstream(place.file, std::ios::binary) << bytes;
    CIRegistro settings;
    settings.GetPlatform();
    settings.GetPadraoInsFio();
    settings.GetAnguloLayout();
    settings.GetPassBD();
    if (contentOf(place.file) != bytes) __builtin_trap(); // no getter writes
    settings.SetPlatform("set");
    const std::string written = contentOf(place.file);
    const RZString read = settings.GetPlatform();
    if (written != bytes && read != "set" && !read.isEmpty()) __builtin_trap();
    settings.SetPadraoInsFio(7);
    settings.SetUserPassword("secret");
    return 0;
}
