// SPDX-License-Identifier: MIT
// Names and numbers that commands refuse, and records that are meant although the case differs.
#include "commandsupport.h"

namespace {

using namespace lm::test;

std::vector<std::string> layersOf(const Drawing& drawing) {
    std::vector<std::string> names;
    const OdSmartPtr<OdDbSymbolTable> table(drawing.database().getLayerTableId().openObject());
    for (const auto walk = table->newIterator(); !walk->done(); walk->step())
        names.push_back(utf8(walk->getRecord()->getName()));
    return names;
}

TEST(LayerNames, CommasSeparateNewOnes) {
    const Drawing drawing;
    drawing.document().executeCommand("_LAYER", {"N", "A,B", "N", "C", ""});
    EXPECT_EQ((Lines{"0", "A", "B", "C"}), layersOf(drawing));
}

TEST(LayerNames, InvalidOnesAreRefused) {
    const Drawing drawing;
    for (const char* name : {"a*b", "a<b", "x|y", "a=b", "a\nb", "A,", ",", "A,,B", "a\"b", "a`b"}) {
        EXPECT_THROW(drawing.document().executeCommand("_LAYER", {"N", name, ""}), CommandFailed) << name;
        EXPECT_THROW(drawing.document().executeCommand("_LAYER", {"M", name, ""}), CommandFailed) << name;
        EXPECT_EQ((Lines{"0"}), layersOf(drawing)) << name;
    }
    drawing.document().executeCommand("_LAYER", {"N", "P03$SELO 1", "N", "Página", ""});
    EXPECT_EQ((Lines{"0", "P03$SELO 1", "Página"}), layersOf(drawing));
}

TEST(LayerNames, KeepWhatCameFromAFile) {
    const Drawing drawing;
    drawing.layer("a*b");
    drawing.layer("x,y");
    drawing.document().executeCommand("_LAYER", {"S", "a*b", "M", "a*b", "N", "x,y", ""});
    EXPECT_EQ((Lines{"0", "a*b", "x,y"}), layersOf(drawing));
}

TEST(LayerNames, IgnoreCase) {
    const Drawing drawing;
    drawing.document().executeCommand("_LAYER", {"N", "Página", "N", "PÁGINA", "M", "página", "F", "0", ""});
    EXPECT_EQ((Lines{"0", "Página"}), layersOf(drawing));
    EXPECT_EQ(drawing.layerCalled("Página")->objectId(), drawing.database().getCLAYER());
    drawing.document().executeCommand("_LAYER", {"LO", "PÁGINA", ""});
    EXPECT_TRUE(drawing.layerCalled("Página")->isLocked());
    // The very name is meant first.
    drawing.layer("PÁGINA");
    drawing.document().executeCommand("_LAYER", {"S", "PÁGINA", ""});
    EXPECT_EQ(drawing.layerCalled("PÁGINA")->objectId(), drawing.database().getCLAYER());
}

TEST(InfiniteNumbers, EndAMoveAndTakeItBack) {
    const Drawing drawing;
    const OdDbObjectId far = drawing.circle(0, 0, 1), near = drawing.circle(0, 0, 1);
    const auto center = [](OdDbObjectId id) { return OdSmartPtr<OdDbCircle>(id.openObject())->center(); };
    drawing.document().executeCommand("_MOVE", {Answer(far), "", "0,0", "1e308,0"});
    EXPECT_THROW(
        drawing.document().executeCommand("_MOVE", {Answer(near), Answer(far), "", "0,0", "1e308,0"}),
        CommandFailed);
    EXPECT_EQ(OdGePoint3d(1e308, 0, 0), center(far));
    EXPECT_EQ(OdGePoint3d(0, 0, 0), center(near));
    EXPECT_THROW(drawing.document().executeCommand("_COPY", {Answer(far), "", "0,0", "1e308,0", ""}),
                 CommandFailed);
    EXPECT_EQ(2u, drawing.entities().size());
    EXPECT_THROW(
        drawing.document().executeCommand(
            "_MOVE", {Answer(near), "", "0,0", OdGePoint3d(std::numeric_limits<double>::infinity(), 0, 0)}),
        CommandFailed);
    EXPECT_EQ(OdGePoint3d(0, 0, 0), center(near));
}

} // namespace
