// SPDX-License-Identifier: MIT
// Paths on their way to the operating system. Texts keep the separators that their writer chose; only the
// call that opens, reads or writes turns them round, at the last moment, with nativePath.
//
//     std::ifstream in(lm::system::nativePath(path.view()));
#pragma once

#include "system/wide.h"

namespace lm::system {

/// A path as the operating system takes it: each "\" becomes "/", and the text becomes UTF-8. Nothing else
/// changes: the path is neither completed nor looked up. A path without "\" keeps its bytes, and empty text
/// stays empty.
LM_SYSTEM_API std::string nativePath(WideView path);

} // namespace lm::system
