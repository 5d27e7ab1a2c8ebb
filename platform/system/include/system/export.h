// SPDX-License-Identifier: MIT
// Marks what the system library offers to other modules.
#pragma once

#define LM_SYSTEM_API __attribute__((visibility("default")))
