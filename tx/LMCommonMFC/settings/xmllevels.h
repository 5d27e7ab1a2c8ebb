// SPDX-License-Identifier: MIT
// How deep the elements of an XML document are nested, told from its bytes at a small part of what a parser
// takes. Internal.
#pragma once

#include <optional>
#include <string_view>

namespace lm::settings {

/// The most levels of elements up to the document's end or its first fault, the root counted. Nothing when
/// bytes alone don't tell: for a document type, whose entities may hold elements, and for an encoding that
/// isn't known to write markup in ASCII.
std::optional<int> levelsOf(std::string_view bytes);

} // namespace lm::settings
