// SPDX-License-Identifier: MIT
// Marks what the window side of the host offers to other modules.
#pragma once

#define LM_HOST_WINDOWS_API __attribute__((visibility("default")))
