// SPDX-License-Identifier: MIT
// Lists of attributes, definitions, and the connection attribute at a point.
#include "cad_drawing.h"

#include "drawing/alloc.h"

#include <gmock/gmock.h>

namespace {

using namespace lm::tests;
using testing::ElementsAre;
using testing::IsEmpty;

class AttributeList : public CadDrawing {
protected:
    Texts list(const Reference& reference, bool withPrompt, bool withDefault = false,
               const char* prefix = "") {
        FoundList found;
        EXPECT_EQ(m_cad.SearchAttributes(reference, found.slot(), withPrompt, withDefault, rz(prefix)), 0);
        return found.told();
    }

    OdSmartPtr<OdDbBlockTableRecord> open(OdDbObjectId block) {
        return OdSmartPtr<OdDbBlockTableRecord>(block.openObject());
    }

    std::string prompt(OdDbObjectId block, const char* tag, int index) {
        return plain(m_cad.GetPrompt(open(block), rz(tag), index));
    }
    std::string value(OdDbObjectId block, const char* tag) {
        return plain(m_cad.GetValue(open(block), rz(tag)));
    }

    const OdDbObjectId m_motor = block("MOTOR");
};

// --- of a reference ---

TEST_F(AttributeList, HoldsAllAttributesInDrawingOrderAndTrimmed) {
    const Reference reference = place(m_motor, {{"B", " 2 "}, {" A ", "\t1\f", true}, {"B", ""}});
    FoundList found;
    ASSERT_EQ(m_cad.SearchAttributes(reference, found.slot(), false, false, rz("")), 0);
    EXPECT_THAT(found.told(), ElementsAre("B||2", "A||1|i", "B||"));
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(found->GetAt(i)->GetObjectId(), attributeOf(reference, i)->objectId());
}

TEST_F(AttributeList, BecomesNullFirstAndIsNotFreed) {
    FoundList keep;
    ASSERT_EQ(m_cad.SearchAttributes(place(m_motor, {{"A", "1"}}), keep.slot(), false, false, rz("")), 0);
    Reference without = place(m_motor, {{"A", "1"}});
    without->setWithoutIterator(true);
    for (const Reference& reference : {Reference(), without}) {
        CEListaAtributos* result = keep.get();
        EXPECT_EQ(m_cad.SearchAttributes(reference, result, true, true, rz("")), 2);
        EXPECT_EQ(result, nullptr);
    }
    CEListaAtributos* result = keep.get();
    EXPECT_EQ(m_cad.SearchAttributes(place(m_motor), result, false, false, rz("")), 0);
    FoundList second;
    second.slot() = result;
    EXPECT_THAT(second.told(), IsEmpty()) << "no attributes give an empty list";
    EXPECT_THAT(keep.told(), ElementsAre("A||1")) << "the earlier list lives on";
}

TEST_F(AttributeList, GivesTheNthAttributeOfATagTheNthPrompt) {
    const OdDbObjectId block =
        this->block("B", {{"T", "c", "", true}, {"T", " p1 ", ""}, {"X", "x", ""}, {"T", "p2", ""}});
    EXPECT_THAT(list(place(block, {{"T", "1"}, {"T", "2"}, {"T", "3"}}), true),
                ElementsAre("T|p1|1", "T|p2|2", "T|T|3"));
    EXPECT_THAT(list(place(block, {{"T", "1"}, {"T", "2"}}), false), ElementsAre("T||1", "T||2"));
}

TEST_F(AttributeList, CountsEarlierTagsIgnoringCaseButAsksForThemExactly) {
    const OdDbObjectId block =
        this->block("B", {{"T", "p1", ""}, {"T", "p2", ""}, {"t", "q1", ""}, {"t", "q2", ""}});
    EXPECT_THAT(list(place(block, {{"T", "1"}, {"t", "2"}}), true), ElementsAre("T|p1|1", "t|q2|2"));
}

TEST_F(AttributeList, PutsTheTagInPlaceOfAPromptThatIsEmptyOrMissing) {
    const OdDbObjectId block =
        this->block("B", {{"EMPTY", "", ""}, {"BLANK", "  ", ""}, {"other", "p", "d"}});
    EXPECT_THAT(
        list(place(block, {{"EMPTY", "1"}, {"BLANK", "2"}, {"OTHER", ""}, {"NONE", "4"}}), true, true),
        ElementsAre("EMPTY|EMPTY|1", "BLANK||2", "OTHER|OTHER|", "NONE|NONE|4"));
}

TEST_F(AttributeList, TrimsTheTagBehindThePromptAndBeforeTheDefault) {
    const OdDbObjectId block = this->block("B", {{" A ", "padded", "x"}, {"A", "bare", " y "}});
    EXPECT_THAT(list(place(block, {{" A ", ""}, {" A ", ""}}), true, true),
                ElementsAre("A|padded|y", "A|padded|y"))
        << "the count looks for the tag as it stands, and the list has it trimmed";
    EXPECT_THAT(list(place(block, {{" B ", "1"}}), true), ElementsAre("B|B|1"));
}

TEST_F(AttributeList, TakesTheDefaultForAnEmptyValueWhenAskedTo) {
    const OdDbObjectId block =
        this->block("B", {{"A", "p", "constant", true}, {"A", "p", " first "}, {"A", "p", "second"}});
    const Reference reference = place(block, {{"A", "own"}, {"A", "  "}, {"A", ""}});
    EXPECT_THAT(list(reference, true, true), ElementsAre("A|p|own", "A|p|first", "A|A|first"));
    EXPECT_THAT(list(reference, true, false), ElementsAre("A|p|own", "A|p|", "A|A|"));
    EXPECT_THAT(list(reference, false, true), ElementsAre("A||own", "A||", "A||"))
        << "no block to read it from";
}

TEST_F(AttributeList, TakesOnlyTagsThatBeginWithThePrefix) {
    const Reference reference =
        place(m_motor, {{"CONTA", "1"}, {"Conta", "2"}, {" CONTA", "3"}, {"CON", "4"}, {"CO", "5"}});
    EXPECT_THAT(list(reference, false, false, "CON"), ElementsAre("CONTA||1", "CON||4"));
    EXPECT_THAT(list(reference, false, false, " "), ElementsAre("CONTA||3"));
    EXPECT_THAT(list(reference, false, false, "X"), IsEmpty());
}

TEST_F(AttributeList, CountsOnlyTheTagsThatItTook) {
    const OdDbObjectId block = this->block("B", {{"CA", "p1", ""}, {"ca", "q1", ""}, {"ca", "q2", ""}});
    EXPECT_THAT(list(place(block, {{"CA", "1"}, {"ca", "2"}}), true, false, "c"), ElementsAre("ca|q1|2"));
}

TEST_F(AttributeList, OfAnIdLeavesTheListForWhatIsNoReference) {
    const Reference reference = place(m_motor, {{"A", "1"}});
    const RZID id = reference->objectId();
    FoundList found;
    ASSERT_EQ(m_cad.SearchAttributes(id, found.slot(), true, false, rz("")), 0);
    EXPECT_THAT(found.told(), ElementsAre("A|A|1"));
    erase(reference->objectId());
    for (const RZID& other : {RZID(), RZID(carrier({"A\f1\fN"})), RZID(m_motor), id}) {
        CEListaAtributos* result = found.get();
        EXPECT_EQ(m_cad.SearchAttributes(other, result, true, false, rz("")), 2);
        EXPECT_EQ(result, found.get());
    }
}

// --- into a block ---

TEST_F(AttributeList, IntoABlockTakesTextsAsTheyStandAndKeepsTheLast) {
    const OdDbObjectId defined = block("B", {{"A", "p", "d"}});
    const Reference reference = place(defined, {{"A", "1"}, {" A ", " 2 ", true}, {"a", ""}, {"A", " 3"}});
    auto* bloco = new CEBloco("B");
    EXPECT_EQ(m_cad.SearchAttributes(reference, bloco), bloco);
    EXPECT_EQ(told(bloco->GetAtributo("A")), "A|| 3");
    EXPECT_EQ(bloco->GetAtributo("A")->GetObjectId(), attributeOf(reference, 3)->objectId());
    EXPECT_EQ(told(bloco->GetAtributo(" A ")), " A || 2 |i");
    EXPECT_EQ(told(bloco->GetAtributo("a")), "a||");
    destroy(bloco, {"A", " A ", "a"});
}

TEST_F(AttributeList, IntoABlockLeavesTheRecordsThatItBroughtToTheirOwner) {
    const std::unique_ptr<CEAtributo> old(
        new CEAtributo(od("A"), OdString(), od("old"), OdDbObjectId(), false));
    auto* bloco = new CEBloco("B");
    bloco->AdicionarAtributo(old.get());
    m_cad.SearchAttributes(place(m_motor, {{"A", "1"}, {"A", "2"}}), bloco);
    EXPECT_EQ(told(bloco->GetAtributo("A")), "A||2");
    EXPECT_EQ(told(old.get()), "A||old");
    destroy(bloco, {"A"});
}

TEST_F(AttributeList, IntoABlockLeavesNoRecordBehindThatNobodyHolds) {
    const Reference reference = place(m_motor, {{"A", "1"}, {"A", "2"}, {"B", "3"}, {"A", "4"}});
    const std::size_t before = lm::drawing::liveBlocks();
    auto* bloco = new CEBloco("B");
    m_cad.SearchAttributes(reference, bloco);
    destroy(bloco, {"A", "B"});
    EXPECT_EQ(lm::drawing::liveBlocks(), before);
}

TEST_F(AttributeList, IntoABlockGivesNullForNull) {
    CEBloco bloco("B");
    Reference without = place(m_motor, {{"A", "1"}});
    without->setWithoutIterator(true);
    EXPECT_EQ(m_cad.SearchAttributes(Reference(), &bloco), nullptr);
    EXPECT_EQ(m_cad.SearchAttributes(without, static_cast<CEBloco*>(nullptr)), nullptr);
    EXPECT_EQ(m_cad.SearchAttributes(without, &bloco), &bloco);
    EXPECT_EQ(bloco.GetAtributo("A"), nullptr);
}

// --- definitions ---

class Definitions : public AttributeList {
protected:
    OdDbObjectId fill() {
        const OdDbObjectId id = block("B", {{" A ", " p ", " d "}, {"C", "cp", " c ", true}, {"A", "", ""}});
        append(id, make(new OdDbLine));
        OdSmartPtr<OdDbAttributeDefinition> invisible = make(new OdDbAttributeDefinition);
        invisible->setTag(od("I"));
        invisible->setInvisible(true);
        append(id, invisible);
        erase(define(id, {"GONE", "p", "d"}));
        erase(define(id, {"GONE", "p", "d", true}));
        return id;
    }
};

TEST_F(Definitions, ThatAreNotConstantAreListedAsTheyStand) {
    const OdDbObjectId id = fill();
    FoundList found;
    ASSERT_EQ(m_cad.SearchAttributes(open(id), found.slot()), 0);
    EXPECT_THAT(found.told(), ElementsAre(" A | p | d ", "A||", "I||"));
    OdSmartPtr<OdDbObjectIterator> walk = open(id)->newIterator();
    EXPECT_EQ(found->GetAt(0)->GetObjectId(), walk->objectId()) << "the definition, not the block";
}

TEST_F(Definitions, ReplaceAListWithoutItsRecords) {
    const OdDbObjectId id = fill();
    FoundList found;
    ASSERT_EQ(m_cad.SearchAttributes(open(id), found.slot()), 0);
    std::vector<std::unique_ptr<CEAtributo>> records;
    for (int i = 0; i < 3; ++i) records.emplace_back(found->GetAt(i));
    const std::size_t before = lm::drawing::liveBlocks();
    EXPECT_EQ(m_cad.SearchAttributes(OdSmartPtr<OdDbBlockTableRecord>(), found.slot()), 0);
    EXPECT_THAT(found.told(), IsEmpty());
    EXPECT_EQ(lm::drawing::liveBlocks(), before) << "one list for the other";
    EXPECT_EQ(told(records[0].get()), " A | p | d ");
}

TEST_F(Definitions, ThatAreConstantAreListedWithoutPrompt) {
    const Reference reference = place(fill(), {{"A", "1"}});
    FoundList found;
    EXPECT_TRUE(m_cad.SearchAttributesConst(reference, found.slot()));
    EXPECT_THAT(found.told(), ElementsAre("C|| c "));
    OdSmartPtr<OdDbObjectIterator> walk = open(reference->blockTableRecord())->newIterator();
    walk->step();
    EXPECT_EQ(found->GetAt(0)->GetObjectId(), walk->objectId());
}

TEST_F(Definitions, ThatAreConstantReplaceAListWithItsRecords) {
    const Reference reference = place(fill());
    const std::size_t before = lm::drawing::liveBlocks();
    FoundList found;
    EXPECT_TRUE(m_cad.SearchAttributesConst(reference, found.slot()));
    const std::size_t one = lm::drawing::liveBlocks();
    EXPECT_TRUE(m_cad.SearchAttributesConst(reference, found.slot()));
    EXPECT_EQ(lm::drawing::liveBlocks(), one) << "the earlier records are gone";
    EXPECT_TRUE(m_cad.SearchAttributesConst(Reference(), found.slot()));
    EXPECT_THAT(found.told(), IsEmpty());
    EXPECT_TRUE(m_cad.SearchAttributesConst(loose(OdDbObjectId()), found.slot()));
    EXPECT_THAT(found.told(), IsEmpty());
    found.clear();
    EXPECT_EQ(lm::drawing::liveBlocks(), before);
}

TEST_F(Definitions, GiveThePromptOfANumberAmongExactlyEqualTags) {
    const OdDbObjectId id = block(
        "B", {{"A", "c", "", true}, {"A", "p0", ""}, {"a", "q0", ""}, {"A", "", ""}, {"A", " p2 ", ""}});
    EXPECT_EQ(prompt(id, "A", 0), "p0");
    EXPECT_EQ(prompt(id, "A", 1), "") << "an empty prompt stays empty";
    EXPECT_EQ(prompt(id, "A", 2), " p2 ");
    EXPECT_EQ(prompt(id, "A", 3), "A");
    EXPECT_EQ(prompt(id, "A", -1), "A");
    EXPECT_EQ(prompt(id, "a", 0), "q0");
    EXPECT_EQ(prompt(id, "a", 1), "a");
    EXPECT_EQ(prompt(id, "X", 0), "X");
    OdSmartPtr<OdDbObjectIterator> walk = open(id)->newIterator();
    walk->step();
    erase(walk->objectId());
    EXPECT_EQ(prompt(id, "A", 0), "") << "an erased definition doesn't count";
}

TEST_F(Definitions, GiveTheDefaultOfTheFirstExactlyEqualTag) {
    const OdDbObjectId id =
        block("B", {{"A", "", "constant", true}, {"a", "", "small"}, {"A", "", " d "}, {"A", "", "e"}});
    EXPECT_EQ(value(id, "A"), " d ");
    EXPECT_EQ(value(id, "a"), "small");
    EXPECT_EQ(value(id, "X"), "");
    EXPECT_EQ(plain(m_cad.GetValue(OdSmartPtr<OdDbBlockTableRecord>(), rz("A"))), "");
}

TEST_F(Definitions, KeepTextOutsideTheCodePage) {
    const OdDbObjectId id = block("B", {{"Ω", "→", "µΩ"}});
    EXPECT_EQ(prompt(id, "Ω", 0), "→");
    EXPECT_EQ(value(id, "Ω"), "µΩ");
    EXPECT_THAT(list(place(id, {{"Ω", ""}}), true, true), ElementsAre("Ω|→|µΩ"));
}

// --- the connection attribute at a point ---

class ConnectionAtAPoint : public CadDrawing {
protected:
    ~ConnectionAtAPoint() override { m_list.releaseAllAttributes(); }

    CEAtributo* add(const char* tag, OdDbObjectId id) {
        return m_list.AdicionarAtributo(new CEAtributo(od(tag), OdString(), OdString(), id, false));
    }

    OdDbObjectId attributeAt(const OdGePoint3d& place) {
        OdSmartPtr<OdDbAttribute> made = attribute({"X", ""});
        made->setPosition(place);
        return m_reference->appendAttribute(made);
    }

    CEAtributo* nearest(const OdGePoint3d& point) {
        return m_cad.getAttPosicaoPto(m_reference, &m_list, point);
    }

    const OdDbObjectId m_block = block("B");
    const Reference m_reference = place(m_block);
    CEListaAtributos m_list;
};

TEST_F(ConnectionAtAPoint, IsNullWithoutAListOrAConnection) {
    EXPECT_EQ(m_cad.getAttPosicaoPto(m_reference, nullptr, OdGePoint3d()), nullptr);
    EXPECT_EQ(nearest({}), nullptr);
    add("TAG", attributeAt({}));
    add("CON", attributeAt({}));
    EXPECT_EQ(nearest({}), nullptr);
}

TEST_F(ConnectionAtAPoint, IsTheNearestInSpaceWhateverItsLanguage) {
    CEAtributo* const low = add("LIGACAO", attributeAt({1, 1, 0}));
    CEAtributo* const high = add("connection", attributeAt({1, 1, 9}));
    CEAtributo* const far = add("Conexion", attributeAt({5, 1, 0}));
    add("TAG", attributeAt({1, 1, 9}));
    EXPECT_EQ(nearest({1, 1, 8}), high);
    EXPECT_EQ(nearest({1, 1, 3}), low);
    EXPECT_EQ(nearest({4, 1, 0}), far);
}

TEST_F(ConnectionAtAPoint, IsTheFirstOfEquallyNearOnes) {
    CEAtributo* const first = add("CONEXION", attributeAt({1, 0, 0}));
    add("CONEXION", attributeAt({-1, 0, 0}));
    add("CONEXION", attributeAt({0, 1, 0}));
    EXPECT_EQ(nearest({}), first);
}

TEST_F(ConnectionAtAPoint, StandsAtTheAlignmentPointUnlessAlignedByDefault) {
    const OdDbObjectId aligned = attributeAt({0, 0, 0});
    OdSmartPtr<OdDbAttribute> body(aligned.openObject(OdDb::kForWrite));
    body->setAlignmentPoint({9, 0, 0});
    CEAtributo* const first = add("CONEXION", aligned);
    CEAtributo* const second = add("CONEXION", attributeAt({4, 0, 0}));
    EXPECT_EQ(nearest({9, 0, 0}), second) << "the alignment point doesn't count yet";
    body->setHorizontalMode(OdDbText::kCenter);
    EXPECT_EQ(nearest({9, 0, 0}), first);
    body->setHorizontalMode(OdDbText::kLeft);
    body->setVerticalMode(OdDbText::kTop);
    EXPECT_EQ(nearest({9, 0, 0}), first);
}

TEST_F(ConnectionAtAPoint, OfADefinitionIsShiftedByTheReferenceAndNotTurnedOrScaled) {
    const OdDbObjectId id = define(m_block, {"X", "", ""});
    OdSmartPtr<OdDbAttributeDefinition> definition(id.openObject(OdDb::kForWrite));
    definition->setPosition({1, 0, 0});
    definition->setAlignmentPoint({0, 5, 0});
    m_reference->setPosition({10, 10, 10});
    m_reference->setRotation(3.14159265358979);
    m_reference->setScaleFactors({7, 7, 7});
    CEAtributo* const defined = add("CONEXION", id);
    CEAtributo* const near = add("CONEXION", attributeAt({11, 10, 9.5}));
    EXPECT_EQ(nearest({11, 10, 10}), defined);
    EXPECT_EQ(nearest({11, 10, 9.6}), near);
    definition->setHorizontalMode(OdDbText::kRight);
    EXPECT_EQ(nearest({11, 10, 10}), near);
    EXPECT_EQ(nearest({10, 15, 10}), defined);
}

TEST_F(ConnectionAtAPoint, WithoutAPlaceStandsAtTheOrigin) {
    const OdDbObjectId definition = define(m_block, {"X", "", ""});
    OdSmartPtr<OdDbAttributeDefinition>(definition.openObject(OdDb::kForWrite))->setPosition({50, 0, 0});
    const OdDbObjectId gone = attributeAt({50, 0, 0});
    erase(gone);
    OdSmartPtr<OdDbText> text = make(new OdDbText);
    append(m_db.getModelSpaceId(), text);
    text->setPosition({50, 0, 0});
    const OdDbObjectId away = attributeAt({3, 0, 0});
    for (const OdDbObjectId& placeless : {OdDbObjectId(), definition, gone, text->objectId()}) {
        m_list.releaseAllAttributes();
        CEAtributo* const other = add("CONEXION", away);
        CEAtributo* const atOrigin = add("CONEXION", placeless);
        EXPECT_EQ(m_cad.getAttPosicaoPto(Reference(), &m_list, {1, 0, 0}), atOrigin);
        EXPECT_EQ(m_cad.getAttPosicaoPto(Reference(), &m_list, {2, 0, 0}), other);
        EXPECT_EQ(m_cad.getAttPosicaoPto(Reference(), &m_list, {50, 0, 0}), other);
    }
}

} // namespace
