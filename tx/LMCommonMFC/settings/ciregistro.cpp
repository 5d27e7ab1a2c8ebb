// SPDX-License-Identifier: MIT
#include "settings/ciregistro.h"

#include "log.h"

#include "system/folders.h"
#include "system/path.h"

#include <QDomDocument>
#include <QFile>

#include <filesystem>
#include <mutex>

namespace {

/// Held from the opening of the file to the end of the search, so that threads see whole files only.
std::mutex g_access;

constexpr lm::WideChar kSlash = '/', kBackslash = '\\';

bool isSeparator(lm::WideChar unit) {
    return unit == kSlash || unit == kBackslash;
}

/// The text without its last element and the separators in front of it.
lm::WideString withoutLastElement(lm::WideString path) {
    while (!path.empty() && !isSeparator(path.back())) path.pop_back();
    while (!path.empty() && isSeparator(path.back())) path.pop_back();
    return path;
}

QString nativeName(const lm::WideString& path) {
    return QString::fromStdString(lm::system::nativePath(path));
}

/// The attribute "value" of the first child whose "key" is this one, which is in capitals.
RZString valueOf(const RZString& key, const QDomNode& settings) {
    for (QDomNode at = settings.firstChild(); !at.isNull(); at = at.nextSibling()) {
        const QDomElement setting = at.toElement();
        if (RZString(setting.attribute(QStringLiteral("key"))).asUpper() == key)
            return RZString(setting.attribute(QStringLiteral("value")));
    }
    return {};
}

} // namespace

lm::WideString CIRegistro::getFileReg() const {
    lm::WideString folder = lm::system::commonDataFolder();
    if (folder.empty() || !isSeparator(folder.back())) folder += kBackslash;
    folder += lm::system::widen("LM\\");
    // Raises for any failure but absence.
    const std::filesystem::file_status status = std::filesystem::status(lm::system::nativePath(folder));
    if (std::filesystem::is_directory(status)) return folder + lm::system::widen("LMREG2022SP0.xml");
    // The name differs: only the file that all programs share bears the release.
    return withoutLastElement(lm::system::programPath()) + lm::system::widen("\\Program\\LMREG.xml");
}

RZString CIRegistro::readValue(RZString key) const {
    return lm::log::guarded("CIRegistro::readValue", [&]() -> RZString {
        const QString path = nativeName(getFileReg());
        const std::lock_guard<std::mutex> lock(g_access);
        QFile file(path);
        if (!file.open(QIODevice::ReadOnly)) return {};
        QDomDocument document;
        if (!document.setContent(&file)) return {};
        file.close();
        const QDomNodeList containers = document.documentElement().elementsByTagName(QStringLiteral("local"));
        return containers.isEmpty() ? RZString() : valueOf(key.asUpper(), containers.at(0));
    });
}

RZString CIRegistro::GetVersionInternal() {
    return readValue("VersionIN");
}
