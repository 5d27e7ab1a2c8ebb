// SPDX-License-Identifier: MIT
// References that show their block in columns and rows, among the symbols: their attributes, redefinition and
// explosion.
#include "symbols.h"

#include "platform/drawing/drawing_dump.h"

#include "drawing/check.h"

namespace {

using namespace lm::tests;
using drawing_test::dumpOf;
using testing::ElementsAre;
using testing::HasSubstr;

/// An opened drawing with a block "MOTOR", a line and the definition of "TAG", and an array of it with three
/// columns and two rows, turned by a quarter, which has an attribute "TAG".
class SymbolArrays : public Symbols {
protected:
    SymbolArrays() {
        const std::string attribute = "0\nATTRIB\n5\nA1\n330\nA0\n100\nAcDbEntity\n8\n0\n100\nAcDbText\n10\n"
                                      "100.0\n20\n50.0\n40\n2.5\n1\nM7\n100\nAcDbAttribute\n2\nTAG\n70\n0\n"
                                      "0\nSEQEND\n5\nA2\n330\nA0\n100\nAcDbEntity\n8\n0\n";
        const std::string path = m_folder.file(
            "array.dxf",
            "0\nSECTION\n2\nHEADER\n9\n$ACADVER\n1\nAC1027\n0\nENDSEC\n0\nSECTION\n2\nBLOCKS\n0\nBLOCK\n5\n"
            "B1\n100\nAcDbEntity\n8\n0\n100\nAcDbBlockBegin\n2\nMOTOR\n70\n2\n10\n0.0\n20\n0.0\n30\n0.0\n"
            "0\nLINE\n5\nB2\n100\nAcDbEntity\n8\n0\n100\nAcDbLine\n10\n0.0\n20\n0.0\n30\n0.0\n11\n1.0\n21\n"
            "0.0\n31\n0.0\n0\nATTDEF\n5\nB3\n100\nAcDbEntity\n8\n0\n100\nAcDbText\n10\n2.0\n20\n0.0\n40\n"
            "2.5\n1\nM?\n100\nAcDbAttributeDefinition\n3\nTag?\n2\nTAG\n70\n0\n0\nENDBLK\n5\nB4\n100\n"
            "AcDbEntity\n8\n0\n100\nAcDbBlockEnd\n0\nENDSEC\n0\nSECTION\n2\nENTITIES\n0\nINSERT\n5\nA0\n100\n"
            "AcDbEntity\n8\n0\n100\nAcDbMInsertBlock\n66\n1\n2\nMOTOR\n10\n100.0\n20\n50.0\n30\n0.0\n50\n90."
            "0\n"
            "70\n3\n71\n2\n44\n10.0\n45\n20.0\n" +
                attribute + "0\nENDSEC\n0\nEOF\n");
        m_documents.manager.openDocument(od(path));
    }
    static CHostDatabase& drawn() { return *getDatabase(); }
    static OdDbObjectId array() { return drawn().getOdDbObjectId(OdDbHandle(0xA0)); }
    static OdDbObjectId motor() {
        return OdSmartPtr<OdDbSymbolTable>(drawn().getBlockTableId().openObject())->getAt(od("MOTOR"));
    }
    static std::string grid(const OdDbBlockReference& reference) {
        return std::to_string(reference.columns()) + "x" + std::to_string(reference.rows()) + " " +
               number(reference.columnSpacing()) + " " + number(reference.rowSpacing());
    }
    /// The array's entry in a file, up to its first attribute.
    static std::string saved() {
        std::string bytes;
        lm::drawing::writeDrawing(drawn(), [&](const char* at, std::size_t size) { bytes.append(at, size); });
        std::string text;
        for (const char unit : bytes)
            if (unit != '\r' && unit != ' ') text += unit;
        const std::size_t from = text.find("\nAcDbMInsertBlock\n");
        EXPECT_NE(from, std::string::npos) << "still an array";
        return from == std::string::npos ? "" : text.substr(from, text.find("\n0\n", from) - from + 3);
    }
};

TEST_F(SymbolArrays, GetOneSetOfAttributesInTheirFirstCopy) {
    const Reference reference(array().openObject(OdDb::kForWrite));
    attributeOf(reference, 0)->objectId().openObject(OdDb::kForWrite)->erase();
    ASSERT_EQ(m_cad.CriarAtributos(motor(), reference), 0);
    EXPECT_THAT(attributesOf(reference), ElementsAre("TAG=M?"));
    const OdSmartPtr<OdDbAttribute> made = attributeOf(reference, 0);
    EXPECT_EQ(told(made->position()), "100,52,0");
    EXPECT_NEAR(made->rotation(), std::acos(0.0), 1e-12);
    EXPECT_EQ(grid(*reference), "3x2 10 20");
}

TEST_F(SymbolArrays, StayArraysWhenTheirBlockIsRedefined) {
    const Source db = symbol({{"TAG", "", "d"}, {"NEW", "", "n"}});
    const OdDbObjectId definition = db->getOdDbObjectId(
        openBlock(db->getModelSpaceId())->newIterator()->objectId().getHandle()); // the line
    OdSmartPtr<OdDbEntity>(definition.openObject(OdDb::kForWrite))
        ->transformBy(OdGeMatrix3d::scaling({2, 2, 2}));
    const std::string before = dumpOf(drawn());
    const std::size_t defects = lm::drawing::check(drawn()).total(); // the file is a bare one
    undoBlockBegin(&drawn());
    ASSERT_TRUE(m_cad.RedefinirBloco(db, "MOTOR"));
    undoBlockEnd(&drawn());
    const Reference reference = openReference(array());
    EXPECT_EQ(grid(*reference), "3x2 10 20");
    EXPECT_EQ(told(reference->position()), "100,50,0");
    EXPECT_THAT(attributesOf(reference), ElementsAre("TAG=M7", "NEW=n")) << "values are kept once";
    EXPECT_EQ(told(attributeOf(reference, 0)->position()), "100,50,0");
    const std::string entry = saved();
    for (const char* group : {"\n70\n3\n", "\n71\n2\n", "\n44\n10.0\n", "\n45\n20.0\n", "\n66\n1\n"})
        EXPECT_THAT(entry, HasSubstr(group));
    EXPECT_EQ(lm::drawing::check(drawn()).total(), defects);
    ASSERT_TRUE(drawn().undo());
    EXPECT_EQ(dumpOf(drawn()), before);
    EXPECT_EQ(grid(*openReference(array())), "3x2 10 20");
}

TEST_F(SymbolArrays, KeepTheirCopiesInAFileWhenTheirValuesAreWritten) {
    EXPECT_TRUE(m_cad.AtualizarAtributo(RZID(array()), "TAG", "M8"));
    EXPECT_THAT(attributesOf(openReference(array())), ElementsAre("TAG=M8"));
    EXPECT_THAT(saved(), HasSubstr("\n70\n3\n71\n2\n44\n10.0\n45\n20.0\n"));
}

TEST_F(SymbolArrays, FallIntoTheGeometryOfAllTheirCopies) {
    const OdDbObjectId id = array();
    m_cad.AtualizarAtributo(RZID(id), "TAG", "");
    layerIn(drawn(), "L");
    CList<RZID, const RZID&> list;
    list.AddTail(RZID(id));
    EXPECT_TRUE(m_cad.explodeEntitiesToLayer(&list, "L"));
    EXPECT_TRUE(id.isErased());
    Texts lines, texts;
    const auto walk = openBlock(drawn().getModelSpaceId())->newIterator();
    for (; !walk->done(); walk->step()) {
        const OdSmartPtr<OdDbEntity> piece = walk->entity();
        if (const auto* text = OdDbText::cast(piece.get()))
            texts.push_back(told(text->position()));
        else
            lines.push_back(told(*piece));
    }
    EXPECT_THAT(lines, ElementsAre("LINE L 100,50,0 100,51,0", "LINE L 100,60,0 100,61,0",
                                   "LINE L 100,70,0 100,71,0", "LINE L 80,50,0 80,51,0",
                                   "LINE L 80,60,0 80,61,0", "LINE L 80,70,0 80,71,0"));
    EXPECT_THAT(texts, ElementsAre("100,52,0", "100,62,0", "100,72,0", "80,52,0", "80,62,0", "80,72,0"))
        << "an empty value shows in each copy";
}

} // namespace
