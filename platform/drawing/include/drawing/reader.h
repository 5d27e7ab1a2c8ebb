// SPDX-License-Identifier: MIT
// Reading drawing files: DXF as text and binary, every version from R12 on, told apart by content.
#pragma once

#include "drawing/database.h"

namespace lm::drawing {

/// How a drawing is read.
struct ReadOptions {
    /// Whether damage stops the reading (an OdError with file, place and reason) or is mended and reported.
    bool strict = false;
    /// Whether the text of older files goes through the code page that they name; without it through
    /// Windows-1252.
    bool convertCodePage = true;
};

/// Reads a file into `database`, which must hold nothing yet. Raises OdError, whose description is one line
/// with file, place and reason: eFileNotFound, eFileUnreadable (a folder too), eFileChanged (by somebody
/// while it was read), eUnknownFormat, eUnsupportedVersion, eBrokenFile. "\" and "/" part folders alike. The
/// path becomes the database's file name.
LM_DRAWING_API void readInto(OdDbDatabase& database, const OdString& path, const ReadOptions& options);

/// Reads a file into a new database that ends with its last smart pointer.
LM_DRAWING_API OdSmartPtr<OdDbDatabase> readDrawing(const OdString& path, const ReadOptions& options = {});

/// Reads a drawing from memory, as readInto; `name` stands for the file in messages.
LM_DRAWING_API void readMemory(OdDbDatabase& database, std::string bytes, const std::string& name,
                               const ReadOptions& options);

} // namespace lm::drawing
