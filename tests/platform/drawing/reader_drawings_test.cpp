// SPDX-License-Identifier: MIT
// Opens every object of real drawings that others made. They stand in a folder beside the tree, or where
// LM_SHARED says; without them the test says so and passes.
#include "drawing_support.h"

#include "visit_all.h"

#include <cstdlib>
#include <filesystem>
#include <iostream>

using namespace drawing_test;
namespace fs = std::filesystem;

namespace {

fs::path drawingsFolder() {
    const char* const shared = std::getenv("LM_SHARED");
    return (shared != nullptr ? fs::path(shared) : fs::path(LM_SOURCE_DIR) / ".." / "shared") / "drawings";
}

} // namespace

TEST(RealDrawings, OpenWithAllTheirObjects) {
    if (!fs::is_directory(drawingsFolder())) {
        std::cout << "no drawings at " << drawingsFolder() << ", nothing to open\n";
        return;
    }
    std::size_t files = 0;
    for (const auto& entry : fs::directory_iterator(drawingsFolder())) {
        if (entry.path().extension() != ".dxf") continue;
        SCOPED_TRACE(entry.path().filename());
        ++files;
        try {
            const auto db = lm::drawing::readDrawing(od(entry.path().string()));
            EXPECT_GT(visitAll(*db.get()), 10u);
            EXPECT_TRUE(db->getModelSpaceId().isValid());
        } catch (const OdError& error) {
            const std::string text = utf8(error.description());
            EXPECT_EQ(text.find('\n'), std::string::npos) << text;
            ADD_FAILURE() << text;
        }
    }
    EXPECT_GT(files, 0u);
}
