// SPDX-License-Identifier: MIT
// Writing drawing files: DXF as text and binary, R2000 to R2018. What the database keeps unread is written
// back in its place.
#pragma once

#include "drawing/database.h"

#include <functional>
#include <map>

namespace lm::drawing {

/// Versions that can be written, oldest first.
enum class FileVersion { kR2000, kR2004, kR2007, kR2010, kR2013, kR2018 };

/// "AC1015" and so on.
LM_DRAWING_API const char* versionText(FileVersion version) noexcept;
/// The version of a name such as "R2010", ignoring case. False for another name.
LM_DRAWING_API bool versionByName(std::string_view name, FileVersion& version) noexcept;

/// How a drawing is written.
struct WriteOptions {
    FileVersion version = FileVersion::kR2018;
    bool binary = false;
};

/// What was kept without being read, by DXF name of the kind or "section NAME", and how often.
using KeptKinds = std::map<std::string, std::size_t>;

/// Takes the bytes of a file in order. What it throws ends the writing.
using ByteSink = std::function<void(const char* bytes, std::size_t size)>;

/// Writes a drawing. The database stays as it is, but for handles that older files lack. Erased objects, and
/// those below an erased owner, are left out. Raises OdError (eFilerError) for a number that is infinite or
/// none; what was handed out until then is no file.
LM_DRAWING_API void writeDrawing(OdDbDatabase& database, const ByteSink& sink,
                                 const WriteOptions& options = {}, KeptKinds* kept = nullptr);

/// Saves a drawing under a path: beside the target, flushed, renamed, so that a file is old or new and never
/// half. Raises OdError (eFilerError) with one line that names the path and the reason; the old file stands
/// then, and the database can be saved again. A file that somebody else changed since the database was read
/// from it or saved to it is such a reason. Only where the last flush of all fails, that of the folder, the
/// new file stands there already.
LM_DRAWING_API void saveDrawing(OdDbDatabase& database, const OdString& path,
                                const WriteOptions& options = {}, KeptKinds* kept = nullptr);

} // namespace lm::drawing
