// SPDX-License-Identifier: MIT
// Marks what the library offers to other modules.
#pragma once

#define LM_COMMONMFC_API __attribute__((visibility("default")))
