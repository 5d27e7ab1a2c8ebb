// SPDX-License-Identifier: MIT
// A setting read and written, beside what Qt takes for the same file when nobody checks, locks or converts
// anything. The setting is the last one of the file.
#include "settings/ciregistro.h"

#include <benchmark/benchmark.h>

#include <QDomDocument>
#include <QFile>
#include <QTextStream>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include <unistd.h>

namespace {

namespace fs = std::filesystem;

const char kKey[] = "PLATFORM";

/// A file with so many settings in a folder for common data of this process.
class SettingsFile {
public:
    explicit SettingsFile(int count) {
        fs::create_directories(m_path.parent_path());
        std::ofstream file(m_path);
        file << "<settings>\n  <local>\n";
        for (int i = 1; i < count; ++i)
            file << "    <registro key=\"SETTING" << i << "\" value=\"the value of setting " << i << "\"/>\n";
        file << "    <registro key=\"" << kKey << "\" value=\"0\"/>\n  </local>\n</settings>\n";
        ::setenv("LM_COMMON_APPDATA", m_folder.c_str(), 1);
    }
    ~SettingsFile() { fs::remove_all(m_folder); }
    QString name() const { return QString::fromStdString(m_path.native()); }

private:
    const fs::path m_folder = fs::temp_directory_path() / ("lm_bench_settings_" + std::to_string(::getpid()));
    const fs::path m_path = m_folder / "LM" / "LMREG2022SP0.xml";
};

bool parse(const QString& name, QDomDocument& document) {
    QFile file(name);
    return file.open(QIODevice::ReadOnly) && document.setContent(&file);
}

QDomElement found(const QDomDocument& document) {
    const QDomNode container = document.documentElement().elementsByTagName("local").at(0);
    QDomElement at = container.firstChildElement();
    while (!at.isNull() && at.attribute("key").toUpper() != kKey) at = at.nextSiblingElement();
    return at;
}

void bareRead(benchmark::State& state) {
    const SettingsFile file(static_cast<int>(state.range(0)));
    for (auto _ : state) {
        QDomDocument document;
        if (!parse(file.name(), document) || found(document).attribute("value") != "0")
            state.SkipWithError("another value");
    }
}

void readSetting(benchmark::State& state) {
    const SettingsFile file(static_cast<int>(state.range(0)));
    CIRegistro settings;
    for (auto _ : state)
        if (settings.GetPlatform() != "0") state.SkipWithError("another value");
}

void bareWrite(benchmark::State& state) {
    const SettingsFile file(static_cast<int>(state.range(0)));
    int value = 0;
    for (auto _ : state) {
        QDomDocument document;
        if (!parse(file.name(), document)) state.SkipWithError("no file");
        found(document).setAttribute("value", QString::number(++value));
        QFile out(file.name());
        if (!out.open(QIODevice::WriteOnly)) state.SkipWithError("no file");
        QTextStream stream(&out);
        document.save(stream, 2, QDomNode::EncodingFromDocument);
    }
}

void writeSetting(benchmark::State& state) {
    const SettingsFile file(static_cast<int>(state.range(0)));
    CIRegistro settings;
    int value = 0;
    for (auto _ : state) settings.SetPlatform(RZString(++value, 0));
    if (settings.GetPlatform() != RZString(value, 0)) state.SkipWithError("another value");
}

BENCHMARK(bareRead)->Arg(40)->Arg(2000);
BENCHMARK(readSetting)->Arg(40)->Arg(2000);
BENCHMARK(bareWrite)->Arg(40)->Arg(2000);
BENCHMARK(writeSetting)->Arg(40)->Arg(2000);

} // namespace

BENCHMARK_MAIN();
