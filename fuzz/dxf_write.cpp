// SPDX-License-Identifier: MIT
// Reads any bytes as a drawing, writes what was read, reads that and writes it again: the second writing must
// be the first byte for byte, in text and in binary form, and in an old and in the newest version. A step of
// undo in between must leave no trace.
#include "drawing/reader.h"
#include "drawing/writer.h"

#include <cstdint>
#include <string>

namespace {

using Drawing = OdSmartPtr<OdDbDatabase>;

/// Null for bytes that are no drawing.
Drawing read(const std::string& bytes) {
    Drawing db(new OdDbDatabase(OdDbDatabase::kNothing), lm::drawing::kAttach);
    try {
        lm::drawing::readMemory(*db, bytes, "fuzz.dxf", {});
    } catch (const OdError&) {
        db.release();
    }
    return db;
}

std::string write(OdDbDatabase& db, const lm::drawing::WriteOptions& options) {
    std::string out;
    lm::drawing::writeDrawing(
        db, [&](const char* bytes, std::size_t size) { out.append(bytes, size); }, options);
    return out;
}

/// Opens each object once for write and says that it changes, so that all are written anew.
void touchAll(OdDbDatabase& db) {
    db.setUndoRecording(true);
    db.startUndoRecord();
    const OdSmartPtr<OdDbBlockTableRecord> space(db.getModelSpaceId().openObject());
    if (space.isNull()) return;
    for (auto walk = space->newIterator(); !walk->done(); walk->step())
        walk->objectId().openObject(OdDb::kForWrite)->assertWriteEnabled();
    db.undo();
}

void goRound(const std::string& bytes, const lm::drawing::WriteOptions& options, bool touch) {
    const Drawing db = read(bytes);
    if (db.isNull()) return;
    if (touch) touchAll(*db);
    const std::string first = write(*db, options);
    const Drawing again = read(first);
    if (again.isNull()) __builtin_trap(); // what is written can be read
    if (write(*again, options) != first) __builtin_trap();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) return 0;
    const std::string bytes(reinterpret_cast<const char*>(data), size);
    // The last byte picks the form, so that the corpus of the reader serves here as it is.
    lm::drawing::WriteOptions options;
    options.binary = (data[size - 1] & 1) != 0;
    if ((data[size - 1] & 2) != 0) options.version = lm::drawing::FileVersion::kR2000;
    goRound(bytes, options, false);
    goRound(bytes, options, true);
    return 0;
}
