// SPDX-License-Identifier: MIT
// The main of every test program. Any Qt message that a test didn't announce ends the test as failed.
#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QString>

namespace {

void failOnMessage(QtMsgType type, const QMessageLogContext&, const QString& text) {
    if (type == QtDebugMsg || type == QtInfoMsg) return;
    ADD_FAILURE() << "unannounced Qt message: " << text.toStdString();
}

} // namespace

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    qInstallMessageHandler(failOnMessage);
    QCoreApplication application(argc, argv);
    return RUN_ALL_TESTS();
}
