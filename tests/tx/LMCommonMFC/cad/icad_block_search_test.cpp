// SPDX-License-Identifier: MIT
// Blocks by name, layer, pattern and attribute value, and which blocks are no symbols.
#include "cad_drawing.h"

#include "drawing/alloc.h"

#include <gmock/gmock.h>

namespace {

using namespace lm::tests;
using testing::ElementsAre;
using testing::IsEmpty;

class BlockSearch : public CadDrawing {
protected:
    /// "name tag|prompt|value ..." of a block for the tags that the tests use; the block ends here.
    std::string taken(CEBloco* block) {
        m_ids.push_back(block->GetObjectId());
        std::string line = plain(block->GetNome());
        for (const char* tag : {"TAG", "tag", "X"})
            if (CEAtributo* record = block->GetAtributo(tag)) line += " " + told(record);
        destroy(block, {"TAG", "tag", "X"});
        return line;
    }

    /// The blocks of a list, "null" for none. The list ends here.
    Texts taken(std::list<CEBloco*>* blocks) {
        m_ids.clear();
        if (blocks == nullptr) return {"null"};
        Texts all;
        for (CEBloco* block : *blocks) all.push_back(taken(block));
        delete blocks;
        return all;
    }

    /// The same of a map, each block with its key in front.
    Texts taken(std::map<lm::WideString, CEBloco*>* blocks) {
        m_ids.clear();
        if (blocks == nullptr) return {"null"};
        Texts all;
        for (const auto& [key, block] : *blocks) all.push_back(lm::system::toUtf8(key) + ": " + taken(block));
        delete blocks;
        return all;
    }

    Texts byPrefix(const char* name) { return taken(m_cad.BuscarBlocos(rz(name))); }
    Texts byPrefix(const char* name, const char* tag) { return taken(m_cad.BuscarBlocos(rz(name), rz(tag))); }
    Texts byItems(const char* names) { return taken(m_cad.BuscarBlocos2(rz(names))); }
    Texts byValue(const char* tag, const char* value) {
        return taken(m_cad.BuscarBlocos3(rz(tag), rz(value)));
    }

    std::vector<RZID> idsOf(std::initializer_list<Reference> references) {
        std::vector<RZID> ids;
        for (const Reference& each : references) ids.push_back(each->objectId());
        return ids;
    }

    const OdDbObjectId m_paper = m_db.getPaperSpaceId();
    std::vector<RZID> m_ids; // of the blocks taken last
};

// --- by exact name and layer ---

TEST_F(BlockSearch, ByNameAndLayerGivesTheFirstInModelSpace) {
    layer("PAG1");
    const OdDbObjectId motor = block("MOTOR"), other = block("OTHER");
    place(motor, {}, "0");
    place(motor, {}, "PAG1", m_paper);
    place(motor, {}, "PAG1", other);
    erase(place(motor, {}, "PAG1")->objectId());
    const Reference first = place(motor, {}, "PAG1");
    place(motor, {}, "PAG1");
    EXPECT_EQ(m_cad.BuscarBloco(rz("MOTOR"), rz("PAG1")).get(), first.get());
}

TEST_F(BlockSearch, ByNameAndLayerIsExact) {
    layer("PAG1");
    layer("PAG2");
    const OdDbObjectId motor = block("MOTOR");
    place(motor, {}, "PAG1");
    place(motor, {}, "PAG2", m_paper);
    for (const auto& [name, on] :
         {std::pair("motor", "PAG1"), std::pair("MOT*", "PAG1"), std::pair("MOTOR", "pag1"),
          std::pair("MOTOR", "PAG*"), std::pair("MOTOR", "0"), std::pair("NONE", "PAG1"),
          std::pair("MOTOR", "PAG2")})
        EXPECT_TRUE(m_cad.BuscarBloco(rz(name), rz(on)).isNull()) << name << " on " << on;
    erase(motor);
    EXPECT_TRUE(m_cad.BuscarBloco(rz("MOTOR"), rz("PAG1")).isNull()) << "an erased block isn't found";
}

// --- by the beginning of the name ---

TEST_F(BlockSearch, ByPrefixFindsAllBlocksThatBeginSo) {
    const OdDbObjectId second = block("MOTOR_2"), motor = block("MOTOR"), relay = block("RELE");
    const Reference a = place(motor, {{"TAG", " M1 ", true}, {"tag", "x"}});
    const Reference b = place(second, {{"TAG", "M2"}});
    const Reference c = place(motor);
    place(relay);
    EXPECT_THAT(byPrefix("MOTOR"), ElementsAre("MOTOR_2 TAG||M2", "MOTOR TAG|| M1 |i tag||x", "MOTOR"))
        << "in the order of the block table, with raw texts and no prompts";
    EXPECT_EQ(m_ids, idsOf({b, a, c}));
    EXPECT_THAT(byPrefix("motor"), ElementsAre("null"));
    EXPECT_THAT(byPrefix("OTOR"), ElementsAre("null"));
    EXPECT_EQ(byPrefix("").size(), 4u);
    EXPECT_EQ(byPrefix("?OTOR_").size(), 1u) << "the name is a pattern";
}

TEST_F(BlockSearch, ByPrefixStaysInModelSpace) {
    const OdDbObjectId motor = block("MOTOR"), other = block("OTHER"), gone = block("MOTOR_GONE");
    place(motor, {{"TAG", "1"}}, "0", m_paper);
    place(motor, {{"TAG", "2"}}, "0", other);
    place(other);
    place(gone, {{"TAG", "3"}});
    erase(gone);
    erase(place(motor, {{"TAG", "4"}})->objectId());
    EXPECT_THAT(byPrefix("MOTOR"), ElementsAre("null"));
    EXPECT_THAT(byPrefix("MOTOR", "TAG"), ElementsAre("null"));
    place(motor, {{"TAG", "5"}});
    EXPECT_THAT(byPrefix("MOTOR"), ElementsAre("MOTOR TAG||5"));
}

TEST_F(BlockSearch, ByPrefixAndTagGivesAMapInPlainOrder) {
    const OdDbObjectId motor = block("MOTOR");
    const Reference b = place(motor, {{"TAG", "B"}});
    const Reference aa = place(motor, {{"TAG", "AA"}});
    const Reference blank = place(motor, {{"TAG", " B"}});
    EXPECT_THAT(byPrefix("MOT", "TAG"),
                ElementsAre(" B: MOTOR TAG|| B", "AA: MOTOR TAG||AA", "B: MOTOR TAG||B"));
    EXPECT_EQ(m_ids, idsOf({blank, aa, b}));
}

TEST_F(BlockSearch, ByPrefixAndTagKeepsTheLastOfAValue) {
    const OdDbObjectId motor = block("MOTOR");
    place(motor, {{"TAG", "M1"}, {"X", "old"}});
    place(motor, {{"X", "no key"}});
    const Reference last = place(motor, {{"TAG", "M1"}, {"X", "new"}});
    const std::size_t before = lm::drawing::liveBlocks();
    EXPECT_THAT(byPrefix("MOTOR", "TAG"), ElementsAre("M1: MOTOR TAG||M1 X||new"));
    EXPECT_EQ(m_ids, idsOf({last}));
    EXPECT_EQ(lm::drawing::liveBlocks(), before) << "dropped blocks are destroyed with their records";
}

TEST_F(BlockSearch, ByPrefixAndTagIsEmptyWhenNoneHasTheTag) {
    place(block("MOTOR"), {{"tag", "M1"}});
    EXPECT_THAT(byPrefix("MOTOR", "TAG"), IsEmpty()) << "the tag is exact";
    EXPECT_THAT(byPrefix("MOTOR", "tag"), ElementsAre("M1: MOTOR tag||M1"));
    EXPECT_THAT(byPrefix("RELE", "tag"), ElementsAre("null"));
}

TEST_F(BlockSearch, ByPrefixAndTagHasItsKeysByTheNarrowRoute) {
    const OdDbObjectId motor = block("MOTOR");
    place(motor, {{"TAG", "Ω"}});
    const Reference last = place(motor, {{"TAG", "→"}});
    EXPECT_THAT(byPrefix("MOTOR", "TAG"), ElementsAre("?: MOTOR TAG||→"));
    EXPECT_EQ(m_ids, idsOf({last}));
}

// --- by a list of patterns ---

TEST_F(BlockSearch, ByItemsWalksModelSpaceInDrawingOrder) {
    const OdDbObjectId second = block("MOTOR_2"), motor = block("MOTOR"), relay = block("RELE");
    const Reference a = place(motor, {{"TAG", " M1 "}});
    const Reference b = place(relay);
    const Reference c = place(second);
    append(m_db.getModelSpaceId(), make(new OdDbLine));
    const Reference d = place(motor);
    erase(place(motor)->objectId());
    place(motor, {}, "0", m_paper);
    EXPECT_THAT(byItems("MOTOR"), ElementsAre("MOTOR TAG|| M1 ", "MOTOR")) << "nothing is added to an item";
    EXPECT_EQ(m_ids, idsOf({a, d}));
    EXPECT_THAT(byItems("RELE;MOTOR*"), ElementsAre("MOTOR TAG|| M1 ", "RELE", "MOTOR_2", "MOTOR"));
    EXPECT_EQ(m_ids, idsOf({a, b, c, d}));
    for (const char* none : {"", ";", "motor", "MOT", " MOTOR", "MOTOR "})
        EXPECT_THAT(byItems(none), ElementsAre("null")) << none;
}

TEST_F(BlockSearch, ByItemsListsABlockOnceForEachItemThatMatches) {
    const Reference a = place(block("MOTOR"), {{"TAG", "1"}});
    std::list<CEBloco*>* blocks = m_cad.BuscarBlocos2(rz("M*;X;MOTOR;;MOTOR"));
    ASSERT_NE(blocks, nullptr);
    ASSERT_EQ(blocks->size(), 3u);
    EXPECT_NE(blocks->front(), blocks->back());
    EXPECT_NE(blocks->front()->GetAtributo("TAG"), blocks->back()->GetAtributo("TAG"));
    EXPECT_THAT(taken(blocks), ElementsAre("MOTOR TAG||1", "MOTOR TAG||1", "MOTOR TAG||1"));
    EXPECT_EQ(m_ids, idsOf({a, a, a}));
}

// --- by the value of an attribute ---

TEST_F(BlockSearch, ByValueIsExactAboutTheValueAndNotAboutTheTag) {
    const OdDbObjectId motor = block("MOTOR", {{"TAG", " p ", ""}});
    const Reference a = place(motor, {{"TAG", " ABC "}, {"X", "1"}});
    place(motor, {{"TAG", "abc"}});
    place(motor, {{"X", "ABC"}});
    const Reference b = place(block("OTHER"), {{"tag", "ABC"}});
    place(motor, {{"TAG", "ABC"}}, "0", m_paper);
    erase(place(motor, {{"TAG", "ABC"}})->objectId());
    EXPECT_THAT(byValue("Tag", "ABC"), ElementsAre("MOTOR TAG|p|ABC X|X|1", "OTHER tag|tag|ABC"))
        << "trimmed texts with prompts";
    EXPECT_EQ(m_ids, idsOf({a, b}));
    for (const char* none : {" ABC ", "AB", "ABC*", ""})
        EXPECT_THAT(byValue("TAG", none), ElementsAre("null")) << none;
    EXPECT_THAT(byValue("TA", "ABC"), ElementsAre("null"));
}

TEST_F(BlockSearch, ByValueTakesAnyRecordAndKeepsTheLastOfATag) {
    const OdDbObjectId motor = block("MOTOR");
    place(motor, {{"TAG", "1"}, {"TAG", "2"}, {"tag", "3"}});
    const std::size_t before = lm::drawing::liveBlocks();
    for (const char* value : {"1", "2", "3"})
        EXPECT_THAT(byValue("TAG", value), ElementsAre("MOTOR TAG|TAG|2 tag|tag|3")) << value;
    EXPECT_THAT(byValue("TAG", "4"), ElementsAre("null"));
    EXPECT_EQ(lm::drawing::liveBlocks(), before);
}

TEST_F(BlockSearch, ByValuePassesOverAReferenceWithoutIterator) {
    const OdDbObjectId motor = block("MOTOR");
    place(motor, {{"TAG", "1"}})->setWithoutIterator(true);
    EXPECT_THAT(byValue("TAG", "1"), ElementsAre("null"));
    place(motor, {{"TAG", "1"}});
    EXPECT_THAT(byValue("TAG", "1"), ElementsAre("MOTOR TAG|TAG|1"));
}

TEST_F(BlockSearch, ByValueFindsEmptyValuesAndTextOutsideTheCodePage) {
    const OdDbObjectId motor = block("MOTOR", {{"TAG", "", "default"}});
    place(motor, {{"TAG", "  "}});
    place(motor, {{"TAG", "Ω"}});
    EXPECT_THAT(byValue("TAG", ""), ElementsAre("MOTOR TAG|TAG|")) << "the default doesn't take its place";
    EXPECT_THAT(byValue("TAG", "Ω"), ElementsAre("MOTOR TAG|TAG|Ω"));
    EXPECT_THAT(byValue("TAG", "?"), ElementsAre("null"));
}

// --- names and existence ---

TEST_F(BlockSearch, GivesTheNameOfAReferencesBlock) {
    const OdDbObjectId motor = block("MOTOR Ω");
    EXPECT_EQ(plain(m_cad.GetNomeBloco(place(motor))), "MOTOR Ω");
    EXPECT_EQ(plain(m_cad.GetNomeBloco(loose(motor))), "MOTOR Ω");
    EXPECT_EQ(plain(m_cad.GetNomeBloco(Reference())), "");
    EXPECT_EQ(plain(m_cad.GetNomeBloco(loose(OdDbObjectId()))), "");
    const Reference left = place(motor);
    erase(motor);
    EXPECT_EQ(plain(m_cad.GetNomeBloco(left)), "");
}

TEST_F(BlockSearch, TellsWhetherADatabaseHasABlockOfExactlyThisName) {
    const OdDbObjectId motor = block("MOTOR"), gone = block("GONE");
    erase(gone);
    const OdSmartPtr<OdDbDatabase> db(&m_db);
    RZID id;
    EXPECT_TRUE(m_cad.ExisteBloco(rz("MOTOR"), id, db));
    EXPECT_EQ(id, motor);
    for (const char* none : {"M*", "motor", "MOTO", "GONE", ""}) {
        id = motor;
        EXPECT_FALSE(m_cad.ExisteBloco(rz(none), id, db)) << none;
        EXPECT_TRUE(id.isNull()) << none;
    }
    block("M*");
    EXPECT_TRUE(m_cad.ExisteBloco(rz("M*"), id, db)) << "a block may have that very name";
    EXPECT_FALSE(m_cad.ExisteBloco(rz("MOTOR"), id, OdSmartPtr<OdDbDatabase>()));
    OdSmartPtr<OdDbDatabase> other = make<OdDbDatabase>(new CHostDatabase);
    EXPECT_FALSE(m_cad.ExisteBloco(rz("MOTOR"), id, other)) << "the given database and no other";
    EXPECT_TRUE(m_cad.ExisteBloco(rz("*Model_Space"), id, other));
    EXPECT_EQ(id, other->getModelSpaceId());
}

TEST_F(BlockSearch, TellsWhetherAReferenceStandsOnALayerInAnyOwner) {
    for (const char* name : {"P1", "P2", "P3"}) layer(name);
    const OdDbObjectId motor = block("MOTOR"), other = block("OTHER");
    const Reference plainOne = place(motor, {}, "P1");
    const Reference paper = place(motor, {}, "P2", m_paper);
    const Reference nested = place(motor, {}, "P3", other);
    RZID id;
    for (const Reference& each : {plainOne, paper, nested}) {
        EXPECT_TRUE(m_cad.ExisteBloco(rz("MOTOR"), id, RZString(each->layer())));
        EXPECT_EQ(id, each->objectId());
    }
    EXPECT_TRUE(m_cad.BuscarBloco(rz("MOTOR"), rz("P2")).isNull()) << "there only model space counts";
    const RZID kept = id;
    for (const auto& [name, on] :
         {std::pair("MOTOR", "0"), std::pair("MOTOR", "p1"), std::pair("motor", "P1"), std::pair("MOT", "P1"),
          std::pair("OTHER", "P1"), std::pair("MOTOR", "")}) {
        EXPECT_FALSE(m_cad.ExisteBloco(rz(name), id, rz(on))) << name << " on " << on;
        EXPECT_EQ(id, kept);
    }
    EXPECT_TRUE(m_cad.ExisteBloco(rz("M*"), id, rz("P1"))) << "the name is a pattern";
    erase(plainOne->objectId());
    EXPECT_FALSE(m_cad.ExisteBloco(rz("M*"), id, rz("P1")));
}

TEST_F(BlockSearch, TellsItForAnyOfSeveralLayers) {
    for (const char* name : {"P1", "P2"}) layer(name);
    const OdDbObjectId motor = block("MOTOR");
    const Reference first = place(motor, {}, "P2");
    place(motor, {}, "P1");
    RZID id;
    RZStringList layers{rz("P1"), rz("P2")}, none;
    EXPECT_TRUE(m_cad.ExisteBloco(rz("MOTOR"), id, &layers));
    EXPECT_EQ(id, first->objectId()) << "the order of the references decides, not that of the layers";
    EXPECT_FALSE(m_cad.ExisteBloco(rz("MOTOR"), id, &none));
    EXPECT_FALSE(m_cad.ExisteBloco(rz("MOTOR"), id, static_cast<RZStringList*>(nullptr)));
    EXPECT_EQ(id, first->objectId());
}

TEST_F(BlockSearch, WorksOnTheCurrentDatabase) {
    place(block("MOTOR"), {{"TAG", "1"}});
    CHostDatabase other;
    setDatabase(&other);
    EXPECT_THAT(byPrefix("MOTOR"), ElementsAre("null"));
    EXPECT_THAT(byItems("*"), ElementsAre("null"));
    setDatabase(nullptr);
    EXPECT_EQ(byPrefix("MOTOR").size(), 1u);
}

TEST_F(BlockSearch, FindsNothingWithoutADatabaseOrItsTables) {
    CHostDatabase bare(CHostDatabase::kNothing);
    for (CHostDatabase* database : {static_cast<CHostDatabase*>(nullptr), &bare}) {
        m_documents.manager.closeAll();
        setDatabase(database);
        RZID id;
        EXPECT_TRUE(m_cad.BuscarBloco(rz("A"), rz("0")).isNull());
        EXPECT_THAT(byPrefix("A"), ElementsAre("null"));
        EXPECT_THAT(byPrefix("A", "TAG"), ElementsAre("null"));
        EXPECT_THAT(byItems("A"), ElementsAre("null"));
        EXPECT_THAT(byValue("A", "1"), ElementsAre("null"));
        EXPECT_FALSE(m_cad.ExisteBloco(rz("A"), id, rz("0")));
        EXPECT_FALSE(m_cad.ExisteBloco(rz("A"), id, OdSmartPtr<OdDbDatabase>(database)));
        EXPECT_FALSE(m_cad.isNoEsqVirtual(rz("A")));
        setDatabase(nullptr);
    }
}

// --- blocks that are no symbols ---

TEST_F(BlockSearch, NamesTheBeginningsOfBlocksThatAreNoSymbolsInOrder) {
    Texts all;
    for (const RZString& each : m_cad.MontarLstBlocosNaoSimbolos()) all.push_back(plain(each));
    EXPECT_THAT(all,
                ElementsAre("BLK_CTR_", "FORMATO_", "SELO_", "IDENTIFY_", "PAGINA_", "DE_", "*Model_Space",
                            "*Paper_Space", "*Paper_Space0", "NA-", "NF-", "NAF-", "BT-"));
}

TEST_F(BlockSearch, TellsSymbolsByTheBeginningOfTheNameIgnoringCase) {
    for (const char* name : {"selo_a3", "Pagina_1", "*PAPER_SPACE12", "BLK_CTR_", "na-01", "NAF-", "bt-x",
                             "*model_space", "FORMATO_A4", "Identify_", "de_1", "NF-2", "*Paper_Space0"})
        EXPECT_TRUE(m_cad.IsBlocoNaoSimbolo(rz(name))) << name;
    for (const char* name : {"BLK", "", "SELO", "XSELO_", "NA", "MOTOR", "Model_Space"})
        EXPECT_FALSE(m_cad.IsBlocoNaoSimbolo(rz(name))) << name;
}

TEST_F(BlockSearch, TellsItByAListOfTheCaller) {
    EXPECT_TRUE(m_cad.IsBlocoNaoSimbolo(rz("motor_1"), RZStringList{rz("X"), rz("MOTOR")}));
    EXPECT_FALSE(m_cad.IsBlocoNaoSimbolo(rz("selo_a3"), RZStringList{rz("X")}));
    EXPECT_FALSE(m_cad.IsBlocoNaoSimbolo(rz("selo_a3"), RZStringList()));
    EXPECT_TRUE(m_cad.IsBlocoNaoSimbolo(rz("A"), RZStringList{rz("")})) << "every name begins with nothing";
}

} // namespace
