// SPDX-License-Identifier: MIT
// Marks what the host library offers to other modules.
#pragma once

#define LM_HOST_API __attribute__((visibility("default")))
