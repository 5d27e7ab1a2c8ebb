// SPDX-License-Identifier: MIT
// Loads any bytes as a configuration file, changes the first value of each section and saves. A change is
// read back in memory, and a failed Load shuts the values.
#include "settings/cefilecfg.h"

#include <QtGlobal>

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include <unistd.h>

namespace {

namespace fs = std::filesystem;

struct Place {
    Place() {
        // Qt warns of encodings that it reads but doesn't write.
        qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) {});
    }
    ~Place() { fs::remove(file); }

    const fs::path file = fs::temp_directory_path() / ("lm_fuzz_configuration_" + std::to_string(::getpid()));
    const RZString name{file.c_str()};
};

RZString exact(const QString& text) {
    return RZString(lm::WideView(text.utf16(), static_cast<std::size_t>(text.size())));
}

void change(electrical::CEFileCfg& file, const QDomNode& section) {
    const QDomNode value = section.firstChild();
    const RZString inSection = exact(section.nodeName()), key = exact(value.nodeName());
    const bool isChanged = file.SetValor(inSection, key, "set");
    const RZString read = file.GetValor(inSection, key);
    if (isChanged ? read != "set" && !read.isEmpty() : !read.isEmpty()) __builtin_trap();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const Place place;
    std::ofstream(place.file, std::ios::binary)
        .write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(size));
    electrical::CEFileCfg file;
    if (!file.Load(place.name)) {
        if (!file.isNull() || file.SetValor("s", "k", "v")) __builtin_trap();
        return 0;
    }
    constexpr int kMostSections = 100;
    QDomNode section = file.documentElement().firstChild();
    for (int i = 0; i < kMostSections && !section.isNull(); ++i, section = section.nextSibling())
        change(file, section);
    if (!file.save(place.name)) __builtin_trap();
    file.Load(place.name);
    return 0;
}
