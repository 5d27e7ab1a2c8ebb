// SPDX-License-Identifier: MIT
// GetMainWindow: the window that dialogs of command modules open over.
#pragma once

#include "export.h"

class CWnd;

/// The main window of the calling thread, else that of the host; null where neither is. The object belongs to
/// whoever made the window, or to the framework for as long as the window lives.
LM_COMMONMFC_API CWnd* GetMainWindow();
