// SPDX-License-Identifier: MIT
// The file of the settings: where it lies, and how a setting is found, changed and added.
#include "settings/ciregistro.h"

#include "settings/xmlfile.h"

#include "log.h"

#include "system/folders.h"
#include "system/path.h"

#include <QDomDocument>

#include <filesystem>
#include <mutex>

namespace {

/// Held from the opening of the file to the end of the search or the writing, so that threads see whole files
/// only and lose no change. Not recursive.
std::mutex g_access;

constexpr lm::WideChar kSlash = '/', kBackslash = '\\';

bool isSeparator(lm::WideChar unit) {
    return unit == kSlash || unit == kBackslash;
}

/// The folder of the running program, without separators at its end.
lm::WideString programFolder() {
    lm::WideString path = lm::system::programPath();
    while (!path.empty() && !isSeparator(path.back())) path.pop_back();
    while (!path.empty() && isSeparator(path.back())) path.pop_back();
    return path;
}

/// The first element "local" below the root, which holds the settings; null when there is none.
QDomElement containerIn(const QDomDocument& document) {
    return document.documentElement().elementsByTagName(QStringLiteral("local")).at(0).toElement();
}

/// The first child whose attribute "key" is this one but for case, whatever the child's own name; null when
/// there is none. The key is in capitals.
QDomElement settingIn(const QDomElement& container, const RZString& key) {
    for (QDomNode at = container.firstChild(); !at.isNull(); at = at.nextSibling()) {
        QDomElement setting = at.toElement();
        if (RZString(setting.attribute(QStringLiteral("key"))).asUpper() == key) return setting;
    }
    return {};
}

void addSetting(QDomDocument& document, QDomElement& container, const RZString& key, const RZString& value) {
    QDomElement setting = document.createElement(QStringLiteral("registro"));
    setting.setAttribute(QStringLiteral("key"), QString(key));
    setting.setAttribute(QStringLiteral("value"), QString(value));
    container.appendChild(setting);
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
    return programFolder() + lm::system::widen("\\Program\\LMREG.xml");
}

lm::WideString CIRegistro::GetPathToProgramFolder() const {
    return programFolder() + kBackslash;
}

RZString CIRegistro::readValue(RZString key) const {
    return lm::log::guarded("CIRegistro::readValue", [&]() -> RZString {
        const lm::WideString path = getFileReg();
        if (path.empty()) return {};
        const std::lock_guard<std::mutex> lock(g_access);
        QDomDocument document;
        if (!lm::settings::readXml(path, document)) return {};
        const QDomElement container = containerIn(document);
        if (!container.hasChildNodes()) return {};
        return RZString(settingIn(container, key.asUpper()).attribute(QStringLiteral("value")));
    });
}

void CIRegistro::saveValue(RZString key, RZString value) {
    lm::log::guarded("CIRegistro::saveValue", [&] {
        const lm::WideString path = getFileReg();
        if (path.empty()) return;
        const std::lock_guard<std::mutex> lock(g_access);
        QDomDocument document;
        if (!lm::settings::readXml(path, document)) return;
        QDomElement container = containerIn(document);
        // An installation lays the first setting down; an empty container takes none.
        if (!container.hasChildNodes()) return;
        const RZString wanted = key.asUpper();
        const QDomElement setting = settingIn(container, wanted);
        if (setting.isNull())
            addSetting(document, container, wanted, value);
        else // A setting without the attribute stays without it: setting a value on nothing does nothing.
            setting.attributes().namedItem(QStringLiteral("value")).setNodeValue(value);
        lm::settings::writeXml(path, document);
    });
}
