// SPDX-License-Identifier: MIT
#include "readdatabase.h"

#include "drawing/reader.h"

namespace lm::host {

std::unique_ptr<CHostDatabase> readDatabase(const OdString& path, bool convertCodePage) {
    auto database = std::make_unique<CHostDatabase>(OdDbDatabase::kNothing);
    lm::drawing::ReadOptions options;
    options.convertCodePage = convertCodePage;
    lm::drawing::readInto(*database, path, options);
    return database;
}

} // namespace lm::host
