// SPDX-License-Identifier: MIT
// Blocks that would come to contain themselves, by insertion and by redefinition: no call makes one.
#include "symbols.h"

#include "platform/drawing/drawing_dump.h"

#include "drawing/check.h"

#include <sstream>

namespace {

using namespace lm::tests;
using drawing_test::dumpOf;
using testing::ElementsAre;
using testing::IsEmpty;

const std::string kRefusal = "\nInvalid block error - Block containing blocks: ";

class SymbolCircles : public Symbols {
protected:
    static Reference referTo(OdDbObjectId block, OdDbObjectId owner) {
        const Reference made = make(new OdDbBlockReference);
        made->setBlockTableRecord(block);
        append(owner, made);
        return made;
    }
    /// A drawing that holds to the rules of a symbol file and shows a named block inside an anonymous one.
    static Source hiding(const char* name) {
        const Source db = symbol();
        const OdDbObjectId anonymous = blockIn(*db, "*U1"), named = blockIn(*db, name);
        line(named, {0, 0, 0}, {1, 0, 0});
        referTo(named, anonymous);
        refer(*db, anonymous);
        return db;
    }
    std::size_t circles() { return lm::drawing::check(m_db).count(lm::drawing::Flaw::kBlockCircle); }
    std::size_t defects() { return lm::drawing::check(m_db).total(); }
    /// The drawing, but for the begin and the end of blocks that were taken back: they wait for a redo, and
    /// no file gets them.
    std::string state() {
        std::istringstream dump(dumpOf(m_db));
        std::string kept;
        for (std::string line; std::getline(dump, line);)
            if (line.find(" OdDbUnreadObject of ") == std::string::npos ||
                line.find("? found") == std::string::npos)
                kept += line + "\n";
        return kept;
    }
    /// Tries to give the block "MOTOR" a new content, which must be refused with nothing changed but for what
    /// is erased again, and undone whole.
    void expectRefused(const std::function<bool()>& redefine, const std::string& path) {
        const OdDbObjectId motor = blockNamed("MOTOR");
        const Texts content = entitiesOf(motor), names = blocks(), space = modelSpace();
        const std::size_t found = defects();
        const std::string before = state();
        const lm::test::ConsoleCapture console;
        undoBlockBegin(&m_db);
        EXPECT_FALSE(redefine());
        undoBlockEnd(&m_db);
        EXPECT_EQ(console.text(), kRefusal + "MOTOR = " + path + "\n");
        EXPECT_EQ(circles(), 0u);
        EXPECT_EQ(defects(), found);
        EXPECT_EQ(entitiesOf(motor), content);
        EXPECT_EQ(blocks(), names);
        EXPECT_EQ(modelSpace(), space);
        if (state() != before) {
            EXPECT_TRUE(m_db.undo());
        }
        EXPECT_EQ(state(), before);
    }
};

TEST_F(SymbolCircles, AreRefusedForAFileThatHidesTheBlockInAnAnonymousOne) {
    place(block("MOTOR", {{"A", "", "1"}}), {{"A", "value"}});
    const RZString path = file("motor.dxf", *hiding("MOTOR"));
    expectRefused([&] { return m_cad.RedefinirBloco(path, "MOTOR"); }, plain(path));
    EXPECT_THAT(attributesOf(openReference(openBlock(m_db.getModelSpaceId())->newIterator()->objectId())),
                ElementsAre("A=value"));
}

TEST_F(SymbolCircles, AreRefusedForADrawingThatShowsTheBlock) {
    block("MOTOR");
    const Source db = symbol();
    refer(*db, blockIn(*db, "MOTOR"));
    expectRefused([&] { return m_cad.RedefinirBloco(db, "MOTOR"); }, "");
    const Source other = symbol();
    refer(*other, blockIn(*other, "motor"));
    expectRefused([&] { return m_cad.RedefinirBloco(other, "MOTOR"); }, "");
}

/// The blocks inside are the drawing's own, whatever the symbol has under their names.
TEST_F(SymbolCircles, AreRefusedByWayOfBlocksOfTheDrawing) {
    const OdDbObjectId motor = block("MOTOR"), middle = block("MIDDLE"), outer = block("OUTER");
    referTo(motor, middle);
    referTo(middle, outer);
    const Source db = symbol();
    refer(*db, blockIn(*db, "OUTER"));
    expectRefused([&] { return m_cad.RedefinirBloco(db, "MOTOR"); }, "");
    const RZString path = file("hiding.dxf", *hiding("OUTER"));
    expectRefused([&] { return m_cad.RedefinirBloco(path, "MOTOR"); }, plain(path));
}

TEST_F(SymbolCircles, AreNoneWhereReferencesAreErased) {
    const OdDbObjectId motor = block("MOTOR"), outer = block("OUTER");
    referTo(motor, outer)->erase();
    const Source db = symbol();
    refer(*db, blockIn(*db, "OUTER"));
    const Reference gone = referTo(blockIn(*db, "MOTOR"), db->getModelSpaceId());
    gone->erase();
    EXPECT_TRUE(m_cad.RedefinirBloco(db, "MOTOR"));
    EXPECT_THAT(entitiesOf(motor), ElementsAre("LINE 0 0,0,0 10,0,0", "INSERT 0 0,0,0 shows OUTER"));
    EXPECT_EQ(circles(), 0u);
}

TEST_F(SymbolCircles, AreNoneWhereBlocksAreShownTwice) {
    const OdDbObjectId motor = block("MOTOR");
    const Source db = symbol();
    const OdDbObjectId inner = blockIn(*db, "INNER"), left = blockIn(*db, "LEFT"),
                       right = blockIn(*db, "RIGHT");
    for (const OdDbObjectId each : {left, right}) {
        referTo(inner, each);
        refer(*db, each);
        refer(*db, each);
    }
    refer(*db, inner);
    EXPECT_TRUE(m_cad.RedefinirBloco(db, "MOTOR"));
    EXPECT_EQ(entitiesOf(motor).size(), 6u);
    EXPECT_EQ(circles(), 0u);
    EXPECT_TRUE(m_cad.RedefinirBloco(db, "OTHER")) << "with the blocks that are there now";
    EXPECT_EQ(circles(), 0u);
}

TEST_F(SymbolCircles, OfADrawingWithoutTheBlockMakeNone) {
    for (const Source& db : {hiding("MOTOR"), hiding("motor")}) {
        const RZString path = file("motor.dxf", *db);
        const Texts before = blocks();
        const lm::test::ConsoleCapture console;
        EXPECT_TRUE(m_cad.carregaBTR("MOTOR", path).isNull());
        EXPECT_FALSE(m_cad.RedefinirBloco(path, "MOTOR"));
        EXPECT_FALSE(m_cad.RedefinirBloco(db, "MOTOR"));
        const std::string line = kRefusal + "MOTOR = " + plain(path) + "\n";
        EXPECT_THAT(console.text(), testing::StartsWith(line + line + kRefusal + "MOTOR = "));
        EXPECT_EQ(blocks(), before);
        EXPECT_EQ(circles(), 0u);
    }
    EXPECT_TRUE(m_cad.carregaBTR("MOTOR", file("motor.dxf", *hiding("PUMP"))).isValid());
    EXPECT_THAT(blocks(), testing::Contains("PUMP"));
}

TEST_F(SymbolCircles, OfTheSymbolItselfStayThere) {
    const Source own = symbol(), inner = symbol(), byCase = symbol();
    refer(*own, own->getModelSpaceId());
    const OdDbObjectId anonymous = blockIn(*inner, "*U1"), second = blockIn(*inner, "*U2");
    referTo(second, anonymous);
    referTo(anonymous, second);
    refer(*inner, anonymous);
    // Other programs take names for one that differ in their case.
    const OdDbObjectId large = blockIn(*byCase, "INNER"), small = blockIn(*byCase, "inner");
    referTo(small, large);
    refer(*byCase, large);
    block("MOTOR");
    for (const Source& db : {own, inner, byCase}) {
        expectRefused([&] { return m_cad.RedefinirBloco(db, "MOTOR"); }, "");
        const Texts before = blocks();
        const lm::test::ConsoleCapture console;
        EXPECT_FALSE(m_cad.RedefinirBloco(db, "FRESH"));
        EXPECT_EQ(console.text(), kRefusal + "FRESH = \n");
        EXPECT_EQ(blocks(), before);
        EXPECT_EQ(circles(), 0u);
    }
}

/// A drawing that came with a circle isn't to blame on a symbol that shows one of its blocks.
TEST_F(SymbolCircles, OfTheDrawingKeepNoSymbolOut) {
    const OdDbObjectId motor = block("MOTOR"), left = block("LEFT"), right = block("RIGHT");
    referTo(left, right);
    referTo(right, left);
    ASSERT_EQ(circles(), 1u);
    const Source db = symbol();
    refer(*db, blockIn(*db, "LEFT"));
    EXPECT_TRUE(m_cad.RedefinirBloco(db, "MOTOR"));
    EXPECT_TRUE(m_cad.RedefinirBloco(db, "FRESH"));
    EXPECT_EQ(entitiesOf(motor).size(), 2u);
    EXPECT_EQ(circles(), 1u);
}

TEST_F(SymbolCircles, AreLookedForInBlocksNestedDeeperThanAnyStack) {
    const OdDbObjectId motor = block("MOTOR");
    OdDbObjectId inner = motor;
    for (int i = 0; i < 20000; ++i) {
        const OdDbObjectId outer = blockIn(m_db, ("N" + std::to_string(i)).c_str());
        referTo(inner, outer);
        inner = outer;
    }
    const Source db = symbol();
    refer(*db, blockIn(*db, "N19999"));
    const lm::test::ConsoleCapture console;
    EXPECT_FALSE(m_cad.RedefinirBloco(db, "MOTOR"));
    EXPECT_EQ(console.text(), kRefusal + "MOTOR = \n");
    EXPECT_THAT(entitiesOf(motor), IsEmpty());
    EXPECT_TRUE(m_cad.RedefinirBloco(db, "TOP"));
}

TEST_F(SymbolCircles, OfModelSpaceAreNotInserted) {
    const OdDbObjectId outer = block("OUTER");
    referTo(m_db.getModelSpaceId(), outer);
    place(block("PLAIN"));
    const Texts before = modelSpace();
    for (const char* name : {"*Model_Space", "OUTER"}) {
        const lm::test::LogCapture log;
        EXPECT_THROW(m_cad.InserirBloco(missing(), name, "0", 0, 0, 0, 0), OdError) << name;
        EXPECT_THAT(linesOf(log), ElementsAre(testing::StartsWith("CICad::InserirBloco : ")));
        EXPECT_EQ(modelSpace(), before);
    }
    EXPECT_FALSE(m_cad.InserirBloco(missing(), "PLAIN", "0", 0, 0, 0, 0).isNull());
    EXPECT_FALSE(m_cad.InserirBloco(missing(), "*Paper_Space", "0", 0, 0, 0, 0).isNull())
        << "odd, but it shows itself nowhere";
    EXPECT_EQ(circles(), 0u);
}

} // namespace
