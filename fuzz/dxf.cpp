// SPDX-License-Identifier: MIT
// Reads any bytes as a drawing and opens everything that it holds. Only an OdError may come out of a broken
// file.
#include "visit_all.h"

#include "drawing/reader.h"

#include <cstdint>
#include <string>

namespace {

void readAndVisit(const std::string& bytes, const lm::drawing::ReadOptions& options) {
    const OdSmartPtr<OdDbDatabase> db(new OdDbDatabase(OdDbDatabase::kNothing), lm::drawing::kAttach);
    try {
        lm::drawing::readMemory(*db.get(), bytes, "fuzz.dxf", options);
    } catch (const OdError& error) {
        if (error.description().isEmpty()) __builtin_trap(); // an error without a reason helps nobody
        return;
    }
    drawing_test::visitAll(*db.get());
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string bytes(reinterpret_cast<const char*>(data), size);
    readAndVisit(bytes, {});
    lm::drawing::ReadOptions strict;
    strict.strict = true;
    strict.convertCodePage = false;
    constexpr std::size_t kSmall = 4096;
    if (size <= kSmall) readAndVisit(bytes, strict);
    return 0;
}
