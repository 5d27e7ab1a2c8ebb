// SPDX-License-Identifier: MIT
// The dialogs in which a user chooses the name of a file, behind a place where a program without a display,
// or a test, puts an answer of its own.
//
//     const QString path = lm::host::askOpenFileName({parent, "Open", "/home", "Drawings (*.dxf);;"});
#pragma once

#include "host/windows/export.h"

#include <QString>

#include <functional>

class QWidget;

namespace lm::host {

/// What a file dialog is opened with.
struct FileQuestion {
    QWidget* parent = nullptr; ///< the dialog is modal to it; null for none
    QString caption;           ///< empty for the toolkit's own
    QString directory;         ///< folder to start in, or a path whose last part is proposed as the name
    QString filter;            ///< "Text (*.txt);;All (*)"
};

/// Gives the chosen path, empty when the user cancelled.
using FileAnswer = std::function<QString(const FileQuestion&)>;

/// Asks for a file that exists, and for one to be written. Each shows the toolkit's own dialog and waits for
/// it, unless an answer was set. Main thread, with an application object.
LM_HOST_WINDOWS_API QString askOpenFileName(const FileQuestion& question);
LM_HOST_WINDOWS_API QString askSaveFileName(const FileQuestion& question);

/// Put `answer` in the place of the dialog; an empty one brings the dialog back. Give what stood there
/// before.
LM_HOST_WINDOWS_API FileAnswer setOpenFileAnswer(FileAnswer answer);
LM_HOST_WINDOWS_API FileAnswer setSaveFileAnswer(FileAnswer answer);

} // namespace lm::host
