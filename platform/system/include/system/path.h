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
/// Units that pathText made of bytes become those bytes again.
LM_SYSTEM_API std::string nativePath(WideView path);

/// The text of a path that the operating system gave: wide text of its UTF-8. A name may be any bytes; one
/// that is no part of well-formed UTF-8 becomes the unit 0xDC00 plus its number, which nothing else stands
/// for, so that nativePath finds the file again.
LM_SYSTEM_API WideString pathText(std::string_view native);

/// A native path or a line with such paths for people: UTF-8, with bytes that are none as "\xE9".
LM_SYSTEM_API std::string shownPath(std::string_view native);

} // namespace lm::system
