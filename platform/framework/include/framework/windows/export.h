// SPDX-License-Identifier: MIT
// Marks what the framework's window library offers to other modules.
#pragma once

#define LM_WINDOWS_API __attribute__((visibility("default")))
