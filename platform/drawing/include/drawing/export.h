// SPDX-License-Identifier: MIT
// Marks what the drawing library offers to other modules.
#pragma once

#define LM_DRAWING_API __attribute__((visibility("default")))
