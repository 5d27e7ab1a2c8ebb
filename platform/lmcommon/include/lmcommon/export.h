// SPDX-License-Identifier: MIT
// Marks what the module LMCommon offers to other modules.
#pragma once

#define LM_COMMON_API __attribute__((visibility("default")))
