// SPDX-License-Identifier: MIT
// Single attributes: by exact name and by role.
#include "cad_drawing.h"

#include "vocabulary/cmensagem.h"

#include <gmock/gmock.h>

#include <functional>

namespace {

using namespace lm::tests;
using testing::ElementsAre;
using testing::IsEmpty;

class AttributeSearch : public CadDrawing {
protected:
    /// The record that a search of a reference gives.
    std::string search(const Reference& reference, const char* tag, bool withPrompt = false) {
        Found found;
        const int code = m_cad.SearchAttribute(rz(tag), reference, found.slot(), withPrompt);
        EXPECT_EQ(code, found.get() != nullptr ? 0 : 2);
        return found.told();
    }

    Texts list(const Reference& reference, bool withPrompt, bool withDefault = false,
               const char* prefix = "") {
        FoundList found;
        EXPECT_EQ(m_cad.SearchAttributes(reference, found.slot(), withPrompt, withDefault, rz(prefix)), 0);
        return found.told();
    }

    const OdDbObjectId m_motor = block("MOTOR");
};

// --- one attribute by its name ---

TEST_F(AttributeSearch, IgnoresCaseAndKeepsTheCallersSpelling) {
    const Reference reference = place(m_motor, {{"X", "0"}, {"Cabo", " \tW 1\f ", true}});
    Found found;
    ASSERT_EQ(m_cad.SearchAttribute(rz("CABO"), reference, found.slot(), false), 0);
    EXPECT_EQ(found.told(), "CABO||W 1|i");
    EXPECT_EQ(found->GetObjectId(), attributeOf(reference, 1)->objectId());
    EXPECT_EQ(search(reference, "cAbO"), "cAbO||W 1|i");
    EXPECT_EQ(search(place(m_motor, {{"Ligação", "1"}}), "LIGAÇÃO"), "LIGAÇÃO||1");
}

TEST_F(AttributeSearch, ComparesTheWholeTagAsItStands) {
    const Reference reference = place(m_motor, {{" CABO", "1"}, {"CABO2", "2"}});
    EXPECT_EQ(search(reference, "CABO"), "null");
    EXPECT_EQ(search(reference, " cabo"), " cabo||1");
}

TEST_F(AttributeSearch, TakesTheFirstOfEqualTags) {
    EXPECT_EQ(search(place(m_motor, {{"tag", "1"}, {"TAG", "2"}}), "TAG"), "TAG||1");
}

TEST_F(AttributeSearch, PassesOverErasedAttributes) {
    const Reference reference = place(m_motor, {{"TAG", "1"}, {"TAG", "2"}});
    erase(attributeOf(reference, 0)->objectId());
    EXPECT_EQ(search(reference, "TAG"), "TAG||2");
    EXPECT_THAT(list(reference, false), ElementsAre("TAG||2"));
    const Reference outside = loose(m_motor, {{"TAG", "1"}, {"TAG", "2"}});
    attributeOf(outside, 0)->erase();
    EXPECT_EQ(search(outside, "TAG"), "TAG||2");
    EXPECT_THAT(list(outside, false), ElementsAre("TAG||2"));
}

TEST_F(AttributeSearch, LooksUpThePromptByTheCallersSpelling) {
    const OdDbObjectId block =
        this->block("B", {{"Cabo", " Constant ", "", true}, {"Cabo", " First ", ""}, {"Cabo", "Second", ""}});
    const Reference reference = place(block, {{"Cabo", "1"}, {"Cabo", "2"}});
    EXPECT_EQ(search(reference, "Cabo", true), "Cabo| First |1");
    EXPECT_EQ(search(reference, "CABO", true), "CABO|CABO|1") << "no definition has this tag";
    EXPECT_EQ(search(reference, "Cabo", false), "Cabo||1");
}

TEST_F(AttributeSearch, KeepsAnEmptyPromptEmptyUnlikeTheList) {
    const Reference reference = place(block("B", {{"A", "", ""}}), {{"A", "1"}});
    EXPECT_EQ(search(reference, "A", true), "A||1");
    EXPECT_THAT(list(reference, true), ElementsAre("A|A|1"));
}

TEST_F(AttributeSearch, GoesOnWithoutPromptWhenTheBlockCantBeOpened) {
    const Reference nothing = place(OdDbObjectId(), {{"A", "1"}});
    EXPECT_EQ(search(nothing, "A", true), "A||1");
    EXPECT_THAT(list(nothing, true, true), ElementsAre("A||1"));
    const OdDbObjectId gone = block("GONE", {{"A", "P", "D"}});
    const Reference erased = place(gone, {{"A", "1"}, {"B", ""}});
    erase(gone);
    EXPECT_EQ(search(erased, "A", true), "A||1");
    EXPECT_THAT(list(erased, true, true), ElementsAre("A||1", "B||"));
}

TEST_F(AttributeSearch, SetsTheResultToNullFirst) {
    Found keep;
    ASSERT_EQ(m_cad.SearchAttribute(rz("A"), place(m_motor, {{"A", "1"}}), keep.slot(), false), 0);
    Reference without = place(m_motor, {{"A", "1"}});
    without->setWithoutIterator(true);
    for (const Reference& reference : {Reference(), without, place(m_motor), place(m_motor, {{"B", "1"}})}) {
        CEAtributo* result = keep.get();
        EXPECT_EQ(m_cad.SearchAttribute(rz("A"), reference, result, true), 2);
        EXPECT_EQ(result, nullptr);
    }
}

TEST_F(AttributeSearch, ReadsReferencesOutsideTheDrawing) {
    const Reference outside = loose(block("B", {{"TAG", "Prompt", ""}}), {{"X", "0"}, {"TAG", " M1 "}});
    Found found;
    ASSERT_EQ(m_cad.SearchAttribute(rz("TAG"), outside, found.slot(), true), 0);
    EXPECT_EQ(found.told(), "TAG|Prompt|M1");
    EXPECT_TRUE(found->GetObjectId().isNull());
    EXPECT_THAT(list(outside, true), ElementsAre("X|X|0", "TAG|Prompt|M1"));
}

TEST_F(AttributeSearch, KeepsTextOutsideTheCodePageInTheRecord) {
    const Reference reference = place(m_motor, {{"Ω", "µ→Ω"}});
    EXPECT_EQ(search(reference, "Ω"), "Ω||µ→Ω");
    EXPECT_EQ(plain(m_cad.GetValorAtributo(rz("Ω"), reference, false)), "µ??") << "the narrow route";
}

TEST_F(AttributeSearch, OfAnObjectReadsReferencesAndElseVirtualAttributes) {
    const OdSmartPtr<OdDbObject> reference = place(m_motor, {{"Tag", "1"}});
    const OdSmartPtr<OdDbObject> other = carrier({"TAG\fV\fS"}).openObject();
    Found real, made;
    EXPECT_EQ(m_cad.SearchAttribute(rz("TAG"), reference, real.slot(), false), 0);
    EXPECT_EQ(real.told(), "TAG||1");
    EXPECT_EQ(m_cad.SearchAttribute(rz("TAG"), other, made.slot(), true), 0);
    EXPECT_EQ(made.told(), "TAG||V|i");
    EXPECT_TRUE(made->GetObjectId().isNull());
}

TEST_F(AttributeSearch, OfAnObjectLeavesTheResultWhenNothingIsFound) {
    const OdSmartPtr<OdDbObject> reference = place(m_motor, {{"Tag", "1"}});
    const OdSmartPtr<OdDbObject> other = carrier({"TAG\fV\fS"}).openObject();
    Found keep;
    ASSERT_EQ(m_cad.SearchAttribute(rz("TAG"), reference, keep.slot(), false), 0);
    CEAtributo* result = keep.get();
    EXPECT_EQ(m_cad.SearchAttribute(rz("tag"), other, result, false), 2) << "virtual tags are exact";
    EXPECT_EQ(m_cad.SearchAttribute(rz("TAG"), OdSmartPtr<OdDbObject>(), result, false), 2);
    EXPECT_EQ(result, keep.get());
    EXPECT_EQ(m_cad.SearchAttribute(rz("X"), reference, result, false), 2);
    EXPECT_EQ(result, nullptr) << "a reference goes by the rule of references";
}

TEST_F(AttributeSearch, OfAnIdOpensTheObject) {
    const Reference reference = place(m_motor, {{"TAG", "1"}});
    const RZID id = reference->objectId();
    Found real, made;
    EXPECT_EQ(m_cad.SearchAttribute(rz("tag"), id, real.slot(), false), 0);
    EXPECT_EQ(real.told(), "tag||1");
    EXPECT_EQ(m_cad.SearchAttribute(rz("TAG"), RZID(carrier({"TAG\fV\fN"})), made.slot(), false), 0);
    EXPECT_EQ(made.told(), "TAG||V");
    CEAtributo* result = real.get();
    EXPECT_EQ(m_cad.SearchAttribute(rz("TAG"), RZID(), result, false), 2);
    erase(reference->objectId());
    EXPECT_EQ(m_cad.SearchAttribute(rz("TAG"), id, result, false), 2);
    EXPECT_EQ(result, real.get());
}

TEST_F(AttributeSearch, GivesTheValueAlone) {
    const Reference reference = place(m_motor, {{"Tag", " M1 "}, {"EMPTY", ""}});
    EXPECT_EQ(plain(m_cad.GetValorAtributo(rz("TAG"), reference, true)), "M1");
    EXPECT_EQ(plain(m_cad.GetValorAtributo(rz("EMPTY"), reference, false)), "");
    EXPECT_EQ(plain(m_cad.GetValorAtributo(rz("NONE"), reference, false)), "");
    EXPECT_EQ(plain(m_cad.GetValorAtributo(rz("TAG"), Reference(), true)), "");
}

// --- one attribute by its role ---

struct Role {
    const char* name;
    RZString (*nameIn)(int language);
    int (CICad::*ofReference)(OdSmartPtr<OdDbBlockReference>, CEAtributo*&, bool);
    int (CICad::*ofObject)(OdSmartPtr<OdDbObject>, CEAtributo*&, bool);
    int (CICad::*ofId)(RZID, CEAtributo*&, bool);
};

const Role kRoles[] = {
    {"Number", &CMensagem::getAttNumber, &CICad::SearchAttributeNumber, &CICad::SearchAttributeNumber,
     &CICad::SearchAttributeNumber},
    {"Pin", &CMensagem::getAttPin, &CICad::SearchAttributePin, &CICad::SearchAttributePin,
     &CICad::SearchAttributePin},
    {"Strip", &CMensagem::getAttStrip, &CICad::SearchAttributeStrip, &CICad::SearchAttributeStrip,
     &CICad::SearchAttributeStrip},
    {"Tag", &CMensagem::getAttTag, &CICad::SearchAttributeTag, &CICad::SearchAttributeTag,
     &CICad::SearchAttributeTag},
};

class RoleSearch : public CadDrawing, public testing::WithParamInterface<Role> {
protected:
    std::string nameIn(int language) { return plain(GetParam().nameIn(language)); }
    const OdDbObjectId m_motor = block("MOTOR");
};

TEST_P(RoleSearch, FindsTheNameOfEachLanguageInEachForm) {
    for (const int language : {1, 2, 3}) {
        const std::string name = nameIn(language);
        const Reference reference = place(m_motor, {{"X", "0"}, {name.c_str(), " 7 "}});
        const OdSmartPtr<OdDbObject> object = reference;
        Found first, second, third;
        EXPECT_EQ((m_cad.*GetParam().ofReference)(reference, first.slot(), true), 0);
        EXPECT_EQ((m_cad.*GetParam().ofObject)(object, second.slot(), false), 0);
        EXPECT_EQ((m_cad.*GetParam().ofId)(RZID(reference->objectId()), third.slot(), false), 0);
        EXPECT_EQ(first.told(), name + "|" + name + "|7") << "no definition: the tag is the prompt";
        EXPECT_EQ(second.told(), name + "||7");
        EXPECT_EQ(third.told(), name + "||7");
    }
}

TEST_P(RoleSearch, LetsTheOrderOfLanguagesWinOverTheDrawings) {
    const std::string one = nameIn(1), two = nameIn(2), three = nameIn(3);
    Found found;
    const Reference all = place(m_motor, {{three.c_str(), "3"}, {two.c_str(), "2"}, {one.c_str(), "1"}});
    EXPECT_EQ((m_cad.*GetParam().ofReference)(all, found.slot(), false), 0);
    const std::string value = three == one ? "3" : "1"; // one name may serve two languages
    EXPECT_EQ(found.told(), one + "||" + value);
    Found later;
    const Reference two3 = place(m_motor, {{three.c_str(), "3"}, {two.c_str(), "2"}});
    EXPECT_EQ((m_cad.*GetParam().ofReference)(two3, later.slot(), false), 0);
    const bool thirdIsKnown = three == one || three == two;
    EXPECT_EQ(plain(later->GetValor()), thirdIsKnown ? "3" : "2");
}

TEST_P(RoleSearch, GivesTwoWhenNoNameIsFound) {
    Found found;
    const Reference reference = place(m_motor, {{"CABO", "1"}});
    EXPECT_EQ((m_cad.*GetParam().ofReference)(reference, found.slot(), true), 2);
    EXPECT_EQ((m_cad.*GetParam().ofReference)(Reference(), found.slot(), true), 2);
    EXPECT_EQ((m_cad.*GetParam().ofId)(RZID(), found.slot(), true), 2);
    EXPECT_EQ(found.get(), nullptr);
    Found keep;
    ASSERT_EQ(m_cad.SearchAttribute(rz("CABO"), reference, keep.slot(), false), 0);
    CEAtributo* result = keep.get();
    const OdSmartPtr<OdDbObject> object = carrier({"CABO\f1\fN"}).openObject();
    EXPECT_EQ((m_cad.*GetParam().ofObject)(object, result, true), 2);
    EXPECT_EQ(result, keep.get());
}

TEST_P(RoleSearch, ReadsVirtualAttributesOfOtherObjects) {
    const OdDbObjectId id = carrier({nameIn(2) + "\f2\fN", nameIn(1) + "\f1\fs"});
    Found object, byId;
    EXPECT_EQ((m_cad.*GetParam().ofObject)(id.openObject(), object.slot(), true), 0);
    EXPECT_EQ((m_cad.*GetParam().ofId)(RZID(id), byId.slot(), true), 0);
    EXPECT_EQ(object.told(), nameIn(1) + "||1|i");
    EXPECT_EQ(byId.told(), nameIn(1) + "||1|i");
}

INSTANTIATE_TEST_SUITE_P(EachRole, RoleSearch, testing::ValuesIn(kRoles),
                         [](const auto& row) { return std::string(row.param.name); });

// --- an object of another class among the attributes ---

/// Hangs on a reference like an attribute and is none.
class NoAttribute : public OdDbAttribute {
public:
    OdRxClass* isA() const override { return OdDbLine::desc(); }
};

class StrangerAmongAttributes : public AttributeSearch {
protected:
    static OdSmartPtr<OdDbAttribute> stranger() {
        return filled(make<OdDbAttribute>(new NoAttribute), {"TAG", "0"});
    }

    /// A resident reference and one outside, both with the stranger in the middle.
    std::vector<Reference> references() {
        std::vector<Reference> both = {place(m_motor, {{"A", "1"}}), loose(m_motor, {{"A", "1"}})};
        for (const Reference& reference : both) {
            reference->appendAttribute(stranger());
            reference->appendAttribute(attribute({"Z", "2"}));
        }
        return both;
    }
};

TEST_F(StrangerAmongAttributes, StopsASearchThatReachesIt) {
    const lm::test::LogCapture log;
    for (const Reference& reference : references()) {
        Found found;
        EXPECT_EQ(m_cad.SearchAttribute(rz("A"), reference, found.slot(), false), 0) << "it lies behind";
        CEAtributo* result = found.get();
        EXPECT_THROW(m_cad.SearchAttribute(rz("Z"), reference, result, false), OdError_NotThatKindOfClass);
        EXPECT_EQ(result, nullptr);
        EXPECT_THROW(m_cad.SearchAttributeTag(reference, result, false), OdError_NotThatKindOfClass);
    }
    EXPECT_EQ(log.lines().size(), 4u);
}

TEST_F(StrangerAmongAttributes, StopsTheListWhateverThePrefix) {
    const lm::test::LogCapture log;
    for (const Reference& reference : references()) {
        FoundList found;
        ASSERT_EQ(m_cad.SearchAttributes(place(m_motor), found.slot(), false, false, rz("")), 0);
        CEListaAtributos* result = found.get();
        EXPECT_THROW(m_cad.SearchAttributes(reference, result, true, true, rz("A")),
                     OdError_NotThatKindOfClass);
        EXPECT_EQ(result, nullptr);
    }
    EXPECT_EQ(log.lines().size(), 2u);
}

TEST_F(StrangerAmongAttributes, LeavesABlockWithWhatCameBeforeIt) {
    for (const Reference& reference : references()) {
        auto* bloco = new CEBloco("B");
        EXPECT_THROW(m_cad.SearchAttributes(reference, bloco), OdError_NotThatKindOfClass);
        EXPECT_EQ(told(bloco->GetAtributo("A")), "A||1");
        EXPECT_EQ(bloco->GetAtributo("Z"), nullptr);
        destroy(bloco, {"A"});
    }
}

TEST_F(StrangerAmongAttributes, IsPassedOverOnceErased) {
    const Reference reference = references().front();
    OdSmartPtr<OdDbObjectIterator> walk = reference->attributeIterator();
    walk->step();
    erase(walk->objectId());
    EXPECT_EQ(search(reference, "Z"), "Z||2");
}

/// A file can't bring one: a reference's sequence ends at the first entry that is no attribute.
TEST_F(StrangerAmongAttributes, InAFileEndsTheAttributes) {
    const std::string file = "0\nSECTION\n2\nBLOCKS\n0\nBLOCK\n2\nB\n0\nENDBLK\n0\nENDSEC\n"
                             "0\nSECTION\n2\nENTITIES\n0\nINSERT\n5\nA1\n66\n1\n2\nB\n"
                             "0\nATTRIB\n2\nA\n1\n1\n0\nLINE\n8\n0\n0\nATTRIB\n2\nZ\n1\n2\n0\nSEQEND\n"
                             "0\nENDSEC\n0\nEOF\n";
    CHostDatabase read(CHostDatabase::kNothing);
    lm::drawing::readMemory(read, file, "memory", {});
    setDatabase(&read);
    FoundList found;
    EXPECT_EQ(m_cad.SearchAttributes(RZID(rz("A1")), found.slot(), true, true, rz("")), 0);
    setDatabase(nullptr);
    EXPECT_THAT(found.told(), ElementsAre("A|A|1"));
}

} // namespace
