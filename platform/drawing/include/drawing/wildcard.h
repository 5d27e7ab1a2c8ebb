// SPDX-License-Identifier: MIT
// The wildcard language of names, as the LISP side of the host knows it.
#pragma once

#include "drawing/odstring.h"

/// Whether a text matches a pattern, exactly as to case. `*` any run, `?` one unit, `#` a digit, `@` a
/// letter, `.` neither letter nor digit, `[...]` one of a set (`[~...]` none of it; `a-z` a range), a leading
/// `~` not, `,` between alternatives, a back quote before a literal unit. An empty pattern matches empty text
/// only.
LM_DRAWING_API bool odutWcMatch(const OdString& text, const OdString& pattern);
