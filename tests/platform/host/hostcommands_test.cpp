// SPDX-License-Identifier: MIT
// The commands that the host brings: what each does with its answers, and what it refuses.
#include "commandsupport.h"

#include "platform/drawing/dxf_writer.h"

#include "drawing/report.h"

#include <algorithm>
#include <fstream>

namespace {

using namespace lm::test;

TEST(EraseCommand, ErasesWhatIsChosenButOnLockedLayers) {
    const Drawing drawing;
    const OdDbObjectId kept = drawing.circle(0, 0, 1), gone = drawing.circle(5, 5, 1);
    const OdDbObjectId locked = drawing.layer("LOCKED");
    OdSmartPtr<OdDbEntity>(kept.openObject(OdDb::kForWrite))->setLayer(locked);
    OdSmartPtr<OdDbLayerTableRecord>(locked.openObject(OdDb::kForWrite))->setIsLocked(true);
    Events events;
    EXPECT_EQ(RTNORM, drawing.document().executeCommand("_ERASE", {"ALL", ""}));
    EXPECT_EQ(std::vector<OdDbObjectId>{kept}, drawing.entities());
    EXPECT_EQ((Lines{"commandWillStart _ERASE", "objectErased CIRCLE " + drawing.handle(gone),
                     "transactionEnded", "commandEnded _ERASE"}),
              events.take());
}

TEST(EraseCommand, FailsWithoutAnAnswerAndChangesNothing) {
    const Drawing drawing;
    drawing.circle(0, 0, 1);
    EXPECT_THROW(drawing.document().executeCommand("_ERASE"), CommandFailed);
    EXPECT_THROW(drawing.document().executeCommand("_ERASE", {"ALL"}), CommandFailed);
    EXPECT_THROW(drawing.document().executeCommand("_ERASE", {"NONSENSE", ""}), CommandFailed);
    EXPECT_EQ(1u, drawing.entities().size());
}

TEST(MoveCommand, MovesByTheDifferenceOfTwoPoints) {
    const Drawing drawing;
    const OdDbObjectId id = drawing.circle(1, 1, 1);
    const auto center = [&] { return OdSmartPtr<OdDbCircle>(id.openObject())->center(); };
    drawing.document().executeCommand("_MOVE", {Answer(id), "", "10,10", "13,14"});
    EXPECT_EQ(OdGePoint3d(4, 5, 0), center());
    drawing.document().executeCommand("_MOVE", {Answer(id), "", "0,0", "@1,-2"});
    EXPECT_EQ(OdGePoint3d(5, 3, 0), center());
    drawing.document().executeCommand("_MOVE", {Answer(id), "", OdGePoint3d(1, 1, 1), ""});
    EXPECT_EQ(OdGePoint3d(6, 4, 1), center());
    drawing.document().executeCommand("_MOVE", {"P", "", "0,0", "@2<90"});
    EXPECT_NEAR(6, center().y, 1e-12);
}

TEST(CopyCommand, RunsOneSmallTransactionForEachObject) {
    const Drawing drawing;
    drawing.circle(0, 0, 1);
    drawing.circle(5, 0, 1);
    Events events;
    EXPECT_EQ(RTNORM, drawing.document().executeCommand("_COPY", {"ALL", "", "0,0", "100,0", ""}));
    ASSERT_EQ(4u, drawing.entities().size());
    Lines shape;
    for (const std::string& line : events.take())
        if (line.find("object") != 0) shape.push_back(line);
    EXPECT_EQ((Lines{"commandWillStart _COPY", "transactionEnded", "transactionEnded", "commandEnded _COPY"}),
              shape);
    EXPECT_EQ(OdGePoint3d(105, 0, 0), OdSmartPtr<OdDbCircle>(drawing.entities()[3].openObject())->center());
}

TEST(CopyCommand, KeepsItsTwoMappingsForModules) {
    const Drawing drawing;
    EXPECT_TRUE(drawing.document().copyMapping(0).isNull());
    const OdDbObjectId source = drawing.circle(0, 0, 1);
    drawing.document().executeCommand("_COPY", {Answer(source), "", "0,0", "1,1", ""});
    const OdSmartPtr<OdDbIdMapping> first = drawing.document().copyMapping(0);
    const OdSmartPtr<OdDbIdMapping> second = drawing.document().copyMapping(1);
    ASSERT_FALSE(first.isNull());
    ASSERT_FALSE(second.isNull());
    OdDbIdPair pair(source);
    ASSERT_TRUE(first->compute(pair));
    EXPECT_EQ(drawing.entities().at(1), pair.value());
    EXPECT_EQ(1u, first->pairs().size());
    EXPECT_TRUE(second->pairs().empty());
    EXPECT_EQ(&drawing.database(), first->destDb());
    EXPECT_TRUE(drawing.document().copyMapping(2).isNull());
}

TEST(CopyCommand, ThatFailsTakesBackEveryTransactionAndLetsTheCallbackChangeThings) {
    const Drawing drawing;
    const OdDbObjectId source = drawing.circle(0, 0, 1);
    Lines lines;
    Watcher watcher(lines);
    std::size_t left = 99;
    watcher.also = [&](const std::string& what, auto*) {
        if (what != "failed") return;
        left = drawing.entities().size();
        drawing.line(0, 0, 1, 1);
    };
    // The second place is no point, when the copy to the first is committed already.
    EXPECT_THROW(drawing.document().executeCommand("_COPY", {Answer(source), "", "0,0", "1,1", "nowhere"}),
                 CommandFailed);
    EXPECT_EQ((Lines{"start _COPY", "failed _COPY"}), lines);
    EXPECT_EQ(1u, left);
    EXPECT_EQ(2u, drawing.entities().size());
    EXPECT_TRUE(drawing.document().undo());
    EXPECT_EQ(std::vector<OdDbObjectId>{source}, drawing.entities());
}

TEST(CopyCommand, ThatFailsInsideAnUndoBlockTakesBackItsOwnPartOnly) {
    const Drawing drawing;
    drawing.database().startUndoRecord();
    drawing.database().blockUndoRecording(true);
    const OdDbObjectId source = drawing.circle(0, 0, 1);
    EXPECT_THROW(drawing.document().executeCommand("_COPY", {Answer(source), "", "0,0", "1,1", "nowhere"}),
                 CommandFailed);
    EXPECT_EQ(std::vector<OdDbObjectId>{source}, drawing.entities());
    EXPECT_TRUE(drawing.database().isUndoBlockStarted());
}

TEST(CopyCommand, InsideAnotherCommandEndsNoTransactionOfTheOuterOne) {
    const Drawing drawing;
    const OdDbObjectId source = drawing.circle(0, 0, 1);
    Events events;
    run(drawing.document(), "_OUTER", [&](OdEdCommandContext& context) {
        context.document()->executeCommand("_COPY", {Answer(source), "", "0,0", "1,1", ""});
        EXPECT_THROW(
            context.document()->executeCommand("_COPY", {Answer(source), "", "0,0", "1,1", "nowhere"}),
            CommandFailed);
    });
    EXPECT_EQ(2u, drawing.entities().size());
    const Lines all = events.take();
    EXPECT_EQ(1, std::count(all.begin(), all.end(), "transactionEnded"));
}

TEST(LayerCommand, MakesSetsAndChangesLayersUntilAnEmptyAnswer) {
    const Drawing drawing;
    const ConsoleCapture console;
    drawing.document().executeCommand("_LAYER", {"_M", "P01", "New", "P02", "N", "PX", ""});
    EXPECT_EQ(drawing.layerCalled("P01")->objectId(), drawing.database().getCLAYER());
    drawing.document().executeCommand("-LAYER", {
                                                    "F",
                                                    "P*",
                                                    "OF",
                                                    "P02",
                                                    "LO",
                                                    "PX",
                                                    "S",
                                                    "0",
                                                    "",
                                                });
    EXPECT_FALSE(drawing.layerCalled("P01")->isFrozen()) << "the current layer isn't frozen";
    EXPECT_NE(std::string::npos, console.text().find("P01"));
    EXPECT_TRUE(drawing.layerCalled("P02")->isFrozen());
    EXPECT_TRUE(drawing.layerCalled("P02")->isOff());
    EXPECT_TRUE(drawing.layerCalled("PX")->isLocked());
    EXPECT_EQ(drawing.database().getLayerZeroId(), drawing.database().getCLAYER());
    drawing.document().executeCommand("_LAYER", {"Thaw", "P02,PX", "ON", "*", "U", "P?", ""});
    EXPECT_FALSE(drawing.layerCalled("P02")->isFrozen());
    EXPECT_FALSE(drawing.layerCalled("P02")->isOff());
    EXPECT_FALSE(drawing.layerCalled("PX")->isLocked());
}

TEST(LayerCommand, RefusesUnknownOptionsAndNames) {
    const Drawing drawing;
    EXPECT_THROW(drawing.document().executeCommand("_LAYER", {"X", "P01", ""}), CommandFailed);
    EXPECT_THROW(drawing.document().executeCommand("_LAYER", {"O", "0", ""}), CommandFailed) << "ON or OFf";
    EXPECT_THROW(drawing.document().executeCommand("_LAYER", {"S", "NONE", ""}), CommandFailed);
    EXPECT_THROW(drawing.document().executeCommand("_LAYER", {"N", "MADE", "F", "NONE", ""}), CommandFailed);
    EXPECT_TRUE(drawing.layerCalled("MADE").isNull()) << "taken back";
}

/// A block with a circle and the definitions of two attributes.
OdDbObjectId blockWithAttributes(const Drawing& drawing, const char* name) {
    const OdSmartPtr<OdDbSymbolTable> table(drawing.database().getBlockTableId().openObject(OdDb::kForWrite));
    const OdSmartPtr<OdDbBlockTableRecord> block(new OdDbBlockTableRecord, lm::drawing::kAttach);
    block->setName(OdString(name));
    const OdDbObjectId id = table->add(block);
    block->appendOdDbEntity(OdSmartPtr<OdDbCircle>(new OdDbCircle, lm::drawing::kAttach));
    for (const char* tag : {"TAG", "NUMERO"}) {
        const OdSmartPtr<OdDbAttributeDefinition> definition(new OdDbAttributeDefinition,
                                                             lm::drawing::kAttach);
        block->appendOdDbEntity(definition);
        definition->setTag(OdString(tag));
        definition->setPrompt(OdString(tag));
        definition->setTextString(OdString("default"));
        definition->setPosition({1, 0, 0});
        definition->setHeight(2.5);
    }
    return id;
}

TEST(InsertCommand, PlacesABlockOfTheDrawingWithItsAttributes) {
    const Drawing drawing;
    const OdDbObjectId block = blockWithAttributes(drawing, "MOTOR");
    drawing.document().executeCommand("_LAYER", {"M", "P01", ""});
    drawing.document().executeCommand("_INSERT", {"MOTOR", "10,20", "2", "", "90", "-M1", ""});
    ASSERT_EQ(1u, drawing.entities().size());
    const OdSmartPtr<OdDbBlockReference> reference(drawing.entities()[0].openObject());
    EXPECT_EQ(block, reference->blockTableRecord());
    EXPECT_EQ(OdGePoint3d(10, 20, 0), reference->position());
    EXPECT_EQ(OdGeScale3d(2, 2, 2), reference->scaleFactors());
    EXPECT_NEAR(1.5707963, reference->rotation(), 1e-6);
    EXPECT_EQ("P01", utf8(reference->layer()));
    Lines values;
    const OdSmartPtr<OdDbObjectIterator> walk = reference->attributeIterator();
    for (; !walk->done(); walk->step()) {
        const OdSmartPtr<OdDbAttribute> attribute(walk->entity());
        values.push_back(utf8(attribute->tag()) + "=" + utf8(attribute->textString()));
        EXPECT_NEAR(10, attribute->position().x, 1e-9);
        EXPECT_NEAR(22, attribute->position().y, 1e-9);
        EXPECT_NEAR(5, attribute->height(), 1e-9);
    }
    EXPECT_EQ((Lines{"TAG=-M1", "NUMERO=default"}), values);
    EXPECT_TRUE(drawing.document().undo());
    EXPECT_TRUE(drawing.entities().empty());
}

TEST(InsertCommand, BringsAFileInAsABlockOnce) {
    const Drawing drawing;
    const TemporaryFolder folder;
    const std::string path = folder.file("símbolo um.dwg", kEmptyDrawing);
    drawing.document().executeCommand("_INSERT", {Answer(path), "0,0", "", "", ""});
    drawing.document().executeCommand("_INSERT", {Answer(path), "5,0", "", "", ""});
    drawing.document().executeCommand("_INSERT", {Answer("OTHER=" + path), "9,0", "", "", ""});
    ASSERT_EQ(3u, drawing.entities().size());
    const auto nameOf = [&](std::size_t index) {
        const OdSmartPtr<OdDbBlockReference> reference(drawing.entities()[index].openObject());
        return utf8(OdSmartPtr<OdDbBlockTableRecord>(reference->blockTableRecord().openObject())->getName());
    };
    EXPECT_EQ("símbolo um", nameOf(0));
    EXPECT_EQ("símbolo um", nameOf(1));
    EXPECT_EQ("OTHER", nameOf(2));
}

TEST(InsertCommand, RefusesWhatItCannotInsertAndChangesNothing) {
    const Drawing drawing;
    const TemporaryFolder folder;
    blockWithAttributes(drawing, "MOTOR");
    EXPECT_THROW(drawing.document().executeCommand("_INSERT", {"NONE", "0,0", "", "", ""}), CommandFailed);
    EXPECT_THROW(drawing.document().executeCommand("_INSERT", {"*Model_Space", "0,0", "", "", ""}),
                 CommandFailed);
    EXPECT_THROW(drawing.document().executeCommand("_INSERT", {"MOTOR", "0,0", "0", "", ""}), CommandFailed);
    EXPECT_THROW(drawing.document().executeCommand("_INSERT", {"MOTOR", "0,0", "", "", ""}), CommandFailed)
        << "the attributes want answers";
    EXPECT_THROW(drawing.document().executeCommand("_INSERT", {Answer(folder.file("x.dwg", "no drawing"))}),
                 OdError);
    EXPECT_TRUE(drawing.entities().empty());
}

TEST(ExplodeCommand, PutsThePartsInPlaceOfTheReference) {
    const Drawing drawing;
    const ConsoleCapture console;
    blockWithAttributes(drawing, "MOTOR");
    drawing.document().executeCommand("_INSERT", {"MOTOR", "10,20", "", "", "", "", ""});
    const OdDbObjectId line = drawing.line(0, 0, 1, 1);
    drawing.document().executeCommand("_EXPLODE", {"ALL", ""});
    const std::vector<OdDbObjectId> left = drawing.entities();
    ASSERT_EQ(4u, left.size()) << "the line, the circle and two definitions";
    EXPECT_EQ(line, left[0]);
    EXPECT_EQ("can't be exploded: LINE " + drawing.handle(line) + "\n", console.text());
    EXPECT_EQ(OdGePoint3d(10, 20, 0), OdSmartPtr<OdDbCircle>(left[1].openObject())->center());
    EXPECT_TRUE(drawing.document().undo());
    EXPECT_EQ(2u, drawing.entities().size());
}

/// A drawing with a line, two bodies of the modeller and a region in model space, and a block with a body
/// that a reference shows at (10, 0); a second block is shown by an array of two rows and three columns.
class OpaqueDrawing {
public:
    OpaqueDrawing() {
        const auto entity = [](const char* kind, const char* handle, const char* owner) {
            return std::string("0\n") + kind + "\n5\n" + handle + "\n330\n" + owner +
                   "\n100\nAcDbEntity\n8\n0\n100\nAcDbModelerGeometry\n70\n1\n1\ntext\n";
        };
        const auto line = [](const char* handle, const char* owner) {
            return std::string("0\nLINE\n5\n") + handle + "\n330\n" + owner +
                   "\n100\nAcDbEntity\n8\n0\n100\nAcDbLine\n10\n0.0\n20\n0.0\n30\n0.0\n11\n1.0\n21\n0."
                   "0\n31\n0.0\n";
        };
        const auto block = [](const char* name, const std::string& content) {
            return std::string("0\nBLOCK\n5\n") + name +
                   "1\n100\nAcDbEntity\n8\n0\n100\nAcDbBlockBegin\n2\n" + name +
                   "\n70\n0\n10\n0.0\n20\n0.0\n30\n0.0\n3\n" + name + "\n1\n\n" + content + "0\nENDBLK\n5\n" +
                   name + "2\n100\nAcDbEntity\n8\n0\n100\nAcDbBlockEnd\n";
        };
        const auto insert = [](const char* handle, const char* name, const char* array) {
            return std::string("0\nINSERT\n5\n") + handle +
                   "\n100\nAcDbEntity\n8\n0\n100\nAcDbBlockReference\n2\n" + name +
                   "\n10\n10.0\n20\n0.0\n30\n0.0\n" + array;
        };
        const std::string text =
            "0\nSECTION\n2\nHEADER\n9\n$ACADVER\n1\nAC1032\n0\nENDSEC\n0\nSECTION\n2\nBLOCKS\n" +
            block("A", entity("3DSOLID", "A3", "A0") + line("A4", "A0")) + block("B", line("B3", "B0")) +
            "0\nENDSEC\n0\nSECTION\n2\nENTITIES\n" + line("100", "1F") + entity("3DSOLID", "101", "1F") +
            entity("3DSOLID", "102", "1F") + entity("REGION", "103", "1F") + insert("104", "A", "") +
            insert("105", "B", "70\n3\n71\n2\n44\n5.0\n45\n7.0\n") + "0\nENDSEC\n0\nEOF\n";
        m_document = m_documents.manager.openDocument(odPath(m_folder.file("opaque.dxf", text)));
    }
    CHostDocument& document() const { return *m_document; }
    std::vector<std::string> kinds() const {
        std::vector<std::string> all;
        const OdSmartPtr<OdDbBlockTableRecord> space(m_document->database()->getModelSpaceId().openObject());
        for (const auto walk = space->newIterator(); !walk->done(); walk->step())
            all.push_back(utf8(walk->entity()->dxfName()));
        return all;
    }

private:
    TemporaryFolder m_folder;
    Documents m_documents;
    CHostDocument* m_document = nullptr;
};

TEST(MoveCommand, LeavesOutWhatCannotBeMovedAndSaysSoInOneLine) {
    const OpaqueDrawing drawing;
    const ConsoleCapture console;
    EXPECT_EQ(RTNORM, drawing.document().executeCommand("_MOVE", {"ALL", "", "0,0", "5,5"}));
    EXPECT_EQ("can't be moved: 2 3DSOLID, 1 REGION\n", console.text());
}

TEST(CopyCommand, MakesNoCopyOnTopOfWhatItCannotMove) {
    const OpaqueDrawing drawing;
    const ConsoleCapture console;
    EXPECT_EQ(RTNORM, drawing.document().executeCommand("_COPY", {"ALL", "", "0,0", "5,5", "10,10", ""}));
    EXPECT_EQ("can't be copied: 2 3DSOLID, 1 REGION\n", console.text()) << "each counts once for both places";
    const Lines kinds = drawing.kinds();
    EXPECT_EQ(2, std::count(kinds.begin(), kinds.end(), "3DSOLID"));
    EXPECT_EQ(1, std::count(kinds.begin(), kinds.end(), "REGION"));
    EXPECT_EQ(3, std::count(kinds.begin(), kinds.end(), "LINE"));
    EXPECT_EQ(6, std::count(kinds.begin(), kinds.end(), "INSERT"));
}

TEST(ExplodeCommand, KeepsAReferenceThatHoldsWhatCannotBeMovedAndGivesAllCopiesOfAnArray) {
    const OpaqueDrawing drawing;
    const ConsoleCapture console;
    EXPECT_EQ(RTNORM, drawing.document().executeCommand("_EXPLODE", {"ALL", ""}));
    EXPECT_NE(console.text().find("can't be exploded: INSERT 104, which holds 1 3DSOLID\n"),
              std::string::npos)
        << console.text();
    const Lines kinds = drawing.kinds();
    EXPECT_EQ(1, std::count(kinds.begin(), kinds.end(), "INSERT"));
    EXPECT_EQ(1 + 6, std::count(kinds.begin(), kinds.end(), "LINE"));
}

TEST(PurgeCommand, ErasesWhatNothingRefersTo) {
    const Drawing drawing;
    const ConsoleCapture console;
    const OdDbObjectId used = blockWithAttributes(drawing, "USED"),
                       spare = blockWithAttributes(drawing, "SPARE");
    const OdDbObjectId free = drawing.layer("FREE"), kept = drawing.layer("KEPT");
    drawing.document().executeCommand("_INSERT", {"USED", "0,0", "", "", "", "", ""});
    drawing.document().executeCommand("_PURGE", {"LA", "F*", "N"});
    EXPECT_TRUE(free.isErased());
    EXPECT_FALSE(kept.isErased());
    EXPECT_FALSE(spare.isErased());
    drawing.document().executeCommand("-PURGE", {"All", "", "Yes", "N", "Y"});
    EXPECT_FALSE(spare.isErased()) << "asked for, and refused";
    EXPECT_TRUE(kept.isErased());
    drawing.document().executeCommand("-PURGE", {"A", "*", "No"});
    EXPECT_TRUE(spare.isErased());
    EXPECT_FALSE(used.isErased());
    EXPECT_FALSE(drawing.database().getTextStyleStandardId().isErased());
    EXPECT_EQ("purged: 1\npurged: 1\npurged: 1\n", console.text());
}

TEST(SaveCommands, WriteTheDrawingAndClearItsModifiedMark) {
    const Drawing drawing;
    const TemporaryFolder folder;
    const std::string path = (folder.path() / "novo.dxf").string(),
                      other = (folder.path() / "b.dxf").string();
    drawing.circle(0, 0, 1);
    EXPECT_TRUE(drawing.document().isModified());
    EXPECT_THROW(drawing.document().executeCommand("_SAVE"), CommandFailed) << "it has no file yet";
    drawing.document().executeCommand("_SAVE", {Answer(path)});
    EXPECT_EQ(path, utf8(drawing.document().fileName()));
    EXPECT_FALSE(drawing.document().isModified());
    drawing.circle(0, 0, 2);
    EXPECT_TRUE(drawing.document().isModified());
    drawing.document().executeCommand("_QSAVE");
    EXPECT_FALSE(drawing.document().isModified());
    drawing.document().executeCommand("_SAVEAS", {"r2000", "binary", Answer(other)});
    EXPECT_EQ(other, utf8(drawing.document().fileName()));
    CHostDocument* const read = drawing.manager().openDocument(odPath(other));
    EXPECT_EQ("AC1015", utf8(read->database()->originalFileVersion()));
    std::ifstream file(other, std::ios::binary);
    EXPECT_NE(' ', file.get()) << "text begins with the blank of a group code";
}

TEST(SaveCommands, ThatFailLeaveTheDrawingModifiedAndItsNameAlone) {
    const Drawing drawing;
    const TemporaryFolder folder;
    drawing.circle(0, 0, 1);
    const std::string path = (folder.path() / "none" / "x.dxf").string();
    EXPECT_THROW(drawing.document().executeCommand("_SAVE", {Answer(path)}), OdError);
    EXPECT_THROW(drawing.document().executeCommand("_SAVEAS", {Answer(path)}), OdError);
    EXPECT_TRUE(drawing.document().isModified());
    EXPECT_TRUE(drawing.document().fileName().isEmpty());
}

/// A reference to a block whose circle has an extension dictionary with one record.
std::string symbolWithData() {
    dxf::Parts parts;
    parts.blockRecords = dxf::Parts::record("BLOCK_RECORD", "30", "1", "B");
    parts.blocks =
        dxf::Parts::block("B", "31", "30",
                          "0 CIRCLE|5 35|102 {ACAD_XDICTIONARY|360 36|102 }|330 30|100 AcDbEntity|8 0|100 "
                          "AcDbCircle|10 0.0|20 0.0|30 0.0|40 1.0");
    parts.entities =
        "0 INSERT|5 40|330 1F|100 AcDbEntity|8 0|100 AcDbBlockReference|2 B|10 5.0|20 5.0|30 0.0";
    parts.objects = "0 DICTIONARY|5 36|330 35|100 AcDbDictionary|280 1|281 1|3 DATA|360 37|"
                    "0 XRECORD|5 37|330 36|100 AcDbXrecord|280 1|1 kept";
    return dxf::text(parts.groups());
}

/// How often a file holds the text of that record.
std::size_t recordsIn(const std::string& path) {
    std::ifstream file(path);
    const std::string bytes((std::istreambuf_iterator<char>(file)), {});
    std::size_t count = 0;
    for (std::size_t at = bytes.find("kept"); at != std::string::npos; at = bytes.find("kept", at + 1))
        ++count;
    return count;
}

TEST(ExplodeCommand, PiecesKeepTheirDataWhenTheBlockIsPurged) {
    const Drawing drawing;
    const TemporaryFolder folder;
    const std::string path = folder.file("symbol.dxf", symbolWithData()),
                      out = (folder.path() / "out.dxf").string(),
                      again = (folder.path() / "again.dxf").string();
    CHostDocument* const document = drawing.manager().openDocument(odPath(path));
    ASSERT_NE(nullptr, document);
    document->executeCommand("_EXPLODE", {"L", ""});
    document->executeCommand("_PURGE", {"A", "*", "N"});
    document->executeCommand("_SAVEAS", {Answer(out)});
    EXPECT_EQ(1u, recordsIn(out)) << "the piece's; the block has gone with its own";
    document->executeCommand("_UNDO", {"2"});
    document->executeCommand("_SAVEAS", {Answer(again)});
    EXPECT_EQ(1u, recordsIn(again)) << "the block's; the piece has gone with its own";
    CHostDocument* const read = drawing.manager().openDocument(odPath(out));
    EXPECT_TRUE(read->database()->report().repairs().empty());
}

TEST(SaveCommands, RefuseAVersionThatIsNotKnown) {
    const Drawing drawing;
    const TemporaryFolder folder;
    const std::string path = (folder.path() / "x.dxf").string();
    for (const char* word : {"R1999", "r2017", "R14", "R20180"}) {
        SCOPED_TRACE(word);
        try {
            drawing.document().executeCommand("_SAVEAS", {word, Answer(path)});
            FAIL() << "must fail";
        } catch (const CommandFailed& failure) {
            EXPECT_EQ("unknown version \"" + std::string(word) +
                          "\": one of R2000, R2004, R2007, R2010, R2013, R2018",
                      failure.what());
        }
        EXPECT_FALSE(std::filesystem::exists(word)) << "taken for a file";
    }
    EXPECT_FALSE(std::filesystem::exists(path));
    EXPECT_TRUE(drawing.document().fileName().isEmpty());
    for (const char* name : {"R1999.dxf", "R", "R19x"}) {
        const std::string file = (folder.path() / name).string();
        drawing.document().executeCommand("_SAVEAS", {Answer(file)});
        EXPECT_TRUE(std::filesystem::exists(file)) << file;
    }
    const std::string bare = (folder.path() / "R1999").string();
    drawing.document().executeCommand("_SAVEAS", {Answer(bare)});
    EXPECT_TRUE(std::filesystem::exists(bare)) << "with its folder it is a file";
}

TEST(RegenCommand, RegeneratesTheView) {
    const Drawing drawing;
    drawing.document().executeCommand("_REGEN");
    EXPECT_EQ(1u, drawing.document().view()->regenerations());
    CHostView other;
    drawing.document().regen(&other);
    drawing.document().regen(nullptr);
    EXPECT_EQ(1u, drawing.document().view()->regenerations());
}

TEST(ActiveViewport, IsTheOneOfThatNameWhereverItStands) {
    const Drawing drawing;
    const OdDbObjectId first = drawing.database().GetActiveViewportId();
    const auto text = [](const char* name) { return lm::drawing::odText(name); };
    OdSmartPtr<OdDbViewportTableRecord>(first.openObject(OdDb::kForWrite))->setName(text("LEFTVIEW"));
    EXPECT_TRUE(drawing.database().GetActiveViewportId().isNull()) << "a saved view is none";
    const OdSmartPtr<OdDbViewportTableRecord> record(new OdDbViewportTableRecord, lm::drawing::kAttach);
    record->setName(text("*active"));
    const OdDbObjectId second =
        OdSmartPtr<OdDbSymbolTable>(drawing.database().getViewportTableId().openObject(OdDb::kForWrite))
            ->add(record);
    EXPECT_EQ(second, drawing.database().GetActiveViewportId());
    record->erase();
    EXPECT_TRUE(drawing.database().GetActiveViewportId().isNull());
}

TEST(Reactors, WhatNobodyCouldTakeStandsInTheLog) {
    struct Raising : OdDbDatabaseReactor {
        void objectAppended(const OdDbDatabase*, const OdDbObject*) override { throw OdError(eInvalidInput); }
    } raising;
    const Drawing drawing;
    drawing.database().addReactor(&raising);
    hostSession()->clearLines();
    drawing.circle(0, 0, 1);
    drawing.database().removeReactor(&raising);
    const std::vector<CHostString> lines = hostSession()->lines();
    ASSERT_EQ(1u, lines.size());
    EXPECT_EQ(lines[0].view(),
              (lm::drawing::odText("reactor : ") + OdError(eInvalidInput).description()).view());
}

TEST(ZoomCommand, FitsTheViewOrShowsAWindow) {
    const Drawing drawing;
    const auto viewport = [&] {
        return OdSmartPtr<OdDbViewportTableRecord>(drawing.database().GetActiveViewportId().openObject());
    };
    drawing.document().executeCommand("_ZOOM", {"W", "10,20", "30,10"});
    EXPECT_EQ(OdGePoint2d(20, 15), viewport()->centerPoint());
    EXPECT_DOUBLE_EQ(10, viewport()->height());
    drawing.circle(5, 5, 1);
    drawing.document().executeCommand("_ZOOM", {"_E"});
    EXPECT_NEAR(5, viewport()->centerPoint().x, 1e-9);
    EXPECT_THROW(drawing.document().executeCommand("_ZOOM", {"Sideways"}), CommandFailed);
}

} // namespace
