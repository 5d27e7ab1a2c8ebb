// SPDX-License-Identifier: MIT
#include "mainwindow.h"

#include "framework/windows/cwnd.h"
#include "host/services.h"

#include <QWidget>

CWnd* GetMainWindow() {
    if (CWnd* const own = lm::windows::threadMainWindow()) return own;
    const CHostSystemServices* const services = GetHostSystemServices();
    QWidget* const window = services != nullptr ? services->mainWindow() : nullptr;
    // By the number that the window system knows the top level by, as other toolkits' windows are reached.
    return window != nullptr ? CWnd::FromHandle(FwHandleOf(QWidget::find(window->winId()))) : nullptr;
}
