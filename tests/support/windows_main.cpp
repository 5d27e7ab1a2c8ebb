// SPDX-License-Identifier: MIT
// The main of a test program that shows windows. It needs no display unless QT_QPA_PLATFORM asks for one. Any
// Qt message that a test didn't announce ends the test as failed.
#include <gtest/gtest.h>

#include <QApplication>
#include <QTemporaryDir>

namespace {

void failOnMessage(QtMsgType type, const QMessageLogContext&, const QString& text) {
    if (type == QtDebugMsg || type == QtInfoMsg) return;
    // What the platform without a display says of what it can't do.
    if (text.startsWith("This plugin does not support")) return;
    ADD_FAILURE() << "unannounced Qt message: " << text.toStdString();
}

/// The look of the windows must not follow the desktop of whoever runs the tests.
void leaveTheDesktopOut() {
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    qunsetenv("QT_QPA_PLATFORMTHEME");
    qunsetenv("QT_STYLE_OVERRIDE");
    QApplication::setDesktopSettingsAware(false);
}

} // namespace

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    leaveTheDesktopOut();
    // A folder of its own, as a session has one.
    const QTemporaryDir runtimeFolder;
    if (!qEnvironmentVariableIsSet("XDG_RUNTIME_DIR"))
        qputenv("XDG_RUNTIME_DIR", runtimeFolder.path().toUtf8());
    qInstallMessageHandler(failOnMessage);
    QApplication application(argc, argv);
    return RUN_ALL_TESTS();
}
