// SPDX-License-Identifier: MIT
// Marks what the framework's value library offers to other modules.
#pragma once

#define LM_VALUES_API __attribute__((visibility("default")))
