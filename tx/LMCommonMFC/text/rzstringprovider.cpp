// SPDX-License-Identifier: MIT
#include "text/rzstringprovider.h"

#include "framework/windows/ccombobox.h"
#include "system/path.h"

#include <QFile>
#include <QStandardPaths>

#include <filesystem>
#include <string>

namespace {

/// Paths come in exactly, whatever their letters.
RZString textOf(const std::string& path) {
    return RZString(lm::system::pathText(path));
}

RZString folder(QStandardPaths::StandardLocation which) {
    return textOf(QFile::encodeName(QStandardPaths::writableLocation(which)).toStdString());
}

} // namespace

RZString RZStringProvider::getCurrentDirectory() {
    std::error_code failure;
    const std::filesystem::path current = std::filesystem::current_path(failure);
    return failure ? RZString::empty : textOf(current.native());
}

RZString RZStringProvider::getDesktopFolder() {
    return folder(QStandardPaths::DesktopLocation);
}

RZString RZStringProvider::getMyDocumentsFolder() {
    return folder(QStandardPaths::DocumentsLocation);
}

RZString RZStringProvider::getWindowText(HWND window) {
    const CWnd* const object = CWnd::FromHandle(window);
    return object != nullptr ? RZString(object->GetWindowText()) : RZString();
}

RZString RZStringProvider::getDlgItemText(HWND window, int id) {
    const CWnd* const object = CWnd::FromHandle(window);
    return object != nullptr ? RZString(object->GetDlgItemText(id)) : RZString();
}

RZString RZStringProvider::getLBText(CComboBox* combo, int index) {
    return RZString(combo->GetLBText(index));
}
