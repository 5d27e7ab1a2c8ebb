// SPDX-License-Identifier: MIT
// Opens a drawing into the database and ends. With "touch" behind the file every object is read as well;
// prints how many objects were found, so that the result can be checked.
#include "drawing/inventory.h"
#include "drawing/reader.h"

#include "drawing/blockreference.h"

#include <cstdio>
#include <cstring>

namespace {

std::size_t touch(const OdSmartPtr<OdDbObjectIterator>& walk) {
    std::size_t count = 0;
    for (; !walk->done(); walk->step()) {
        ++count;
        const OdSmartPtr<OdDbEntity> entity = walk->entity();
        if (const auto* reference = OdDbBlockReference::cast(entity.get()))
            count += touch(reference->attributeIterator());
    }
    return count;
}

} // namespace

int main(int argc, char** argv) {
    if (argc < 2) return 2;
    try {
        const auto database = lm::drawing::readDrawing(OdString(lm::WideView(lm::system::fromUtf8(argv[1]))));
        const OdSmartPtr<OdDbBlockTableRecord> space(database->getModelSpaceId().openObject());
        std::size_t count = 0;
        if (argc > 2 && std::strcmp(argv[2], "touch") == 0)
            count = touch(space->newIterator());
        else
            for (auto walk = space->newIterator(); !walk->done(); walk->step()) ++count;
        std::printf("%zu\n", count);
        // The process ends here: freeing what the system takes back anyway is no part of opening.
        std::fflush(stdout);
        std::_Exit(0);
    } catch (const OdError& error) {
        std::fprintf(stderr, "%s\n", lm::drawing::utf8(error.description()).c_str());
        return 3;
    }
}
