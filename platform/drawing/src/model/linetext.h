// SPDX-License-Identifier: MIT
// Contents of multi-line texts, with their formatting codes, and the plain text that they show.
#pragma once

#include "drawing/odstring.h"

namespace lm::drawing {

/// The contents of a multi-line text that show a text: its codes stand for themselves.
OdString contentsOf(const OdString& text);

/// The text that contents show: line ends as line feeds, a fraction as "upper/lower", no formatting. A code
/// that isn't known shows as it stands.
OdString plainTextOf(const OdString& contents);

} // namespace lm::drawing
