// SPDX-License-Identifier: MIT
// Values written into the attributes of references: which attribute, when a write is due, and what reactors
// and undo know of it.
#include "value_list.h"

#include "drawing/alloc.h"
#include "drawing/seams.h"

#include <gmock/gmock.h>

#include <stdexcept>

namespace {

using namespace lm::tests;
using testing::ElementsAre;
using testing::IsEmpty;

class AttributeUpdate : public StoredData {
protected:
    /// A reference that nobody holds, with attributes that nobody has open.
    RZID placed(const std::vector<Attribute>& attributes) { return place(m_block, attributes)->objectId(); }
    static Reference open(const RZID& id) { return Reference(id.openObject()); }
    static Texts values(const Reference& reference) {
        Texts all;
        for (const auto walk = reference->attributeIterator(); !walk->done(); walk->step()) {
            const OdSmartPtr<OdDbAttribute> each(walk->entity());
            all.push_back(plain(CHostString(each->tag())) + "=" + plain(CHostString(each->textString())) +
                          (each->isInvisible() ? "|i" : ""));
        }
        return all;
    }
    static Texts values(const RZID& id) { return values(open(id)); }
    /// The events since the last call.
    Texts events() { return m_recorder.taken(); }

    OdDbObjectId m_block = block("B");
    Recorder m_recorder{m_db};
};

const Texts kOneWrite = {"opened ATTRIB", "modified ATTRIB"};
const Texts kTwoWrites = {"opened ATTRIB", "modified ATTRIB", "opened ATTRIB", "modified ATTRIB"};

// --- one attribute ---

TEST_F(AttributeUpdate, FindsASingleTagByItsExactSpelling) {
    const RZID id = placed({{"Tag", "1"}, {"OTHER", "2"}});
    EXPECT_FALSE(m_cad.AtualizarAtributo(open(id), "TAG", "x"));
    EXPECT_FALSE(m_cad.AtualizarAtributo(open(id), "TAG", "x", false));
    EXPECT_FALSE(m_cad.AtualizarAtributo(id, "TAG", "x"));
    EXPECT_FALSE(m_cad.AtualizarAtributo(open(id), "Ta", "x"));
    EXPECT_FALSE(m_cad.AtualizarAtributo(open(id), "", "x"));
    EXPECT_THAT(values(id), ElementsAre("Tag=1", "OTHER=2"));
    EXPECT_TRUE(m_cad.AtualizarAtributo(open(id), "Tag", "x"));
    EXPECT_TRUE(m_cad.AtualizarAtributo(open(id), "OTHER", "y", true));
    EXPECT_THAT(values(id), ElementsAre("Tag=x", "OTHER=y|i"));
    EXPECT_TRUE(m_cad.AtualizarAtributo(id, "Tag", rz("Ω→")));
    EXPECT_THAT(values(id), ElementsAre("Tag=Ω→", "OTHER=y|i"));
}

TEST_F(AttributeUpdate, FindsTheTagsOfAListIgnoringCase) {
    const RZID id = placed({{"A", "1"}, {"Tag", "2"}, {"Numero", "3"}});
    EXPECT_TRUE(m_cad.AtualizarAtributo(open(id), RZStringList{"NUMERO", "TAG"}, "x"));
    EXPECT_THAT(values(id), ElementsAre("A=1", "Tag=x", "Numero=3"))
        << "the order of the attributes decides, and one is written";
    EXPECT_TRUE(m_cad.AtualizarAtributo(id, RZStringList{"numero"}, "y"));
    EXPECT_THAT(values(id), ElementsAre("A=1", "Tag=x", "Numero=y"));
    EXPECT_FALSE(m_cad.AtualizarAtributo(open(id), RZStringList{"NUM", "NUMEROS", ""}, "z"));
    EXPECT_FALSE(m_cad.AtualizarAtributo(open(id), RZStringList(), "z"));
    EXPECT_FALSE(m_cad.AtualizarAtributo(id, RZStringList(), "z"));
}

TEST_F(AttributeUpdate, WritesTheFirstOfEqualTagsAlone) {
    const RZID id = placed({{"A", "1"}, {"T", "2"}, {"T", "3"}});
    EXPECT_TRUE(m_cad.AtualizarAtributo(open(id), "T", "x"));
    EXPECT_TRUE(m_cad.AtualizarAtributo(open(id), RZStringList{"T"}, "y"));
    EXPECT_TRUE(m_cad.AtualizarAtributo(open(id), "T", "y", true));
    EXPECT_THAT(values(id), ElementsAre("A=1", "T=y|i", "T=3"));
    EXPECT_TRUE(m_cad.AtualizarAtributo(open(id), "T", "y"));
    EXPECT_THAT(values(id), ElementsAre("A=1", "T=y|i", "T=3"))
        << "the search ends at the first one also when nothing differs there";
}

TEST_F(AttributeUpdate, LeavesAnEqualValueUnopenedForWrite) {
    const RZID id = placed({{"T", "abc"}});
    events();
    const auto attribute = attributeOf(open(id), 0);
    EXPECT_TRUE(m_cad.AtualizarAtributo(open(id), "T", "abc"));
    EXPECT_TRUE(m_cad.AtualizarAtributo(open(id), "T", "abc", false));
    EXPECT_TRUE(m_cad.AtualizarAtributo(open(id), RZStringList{"t"}, "abc"));
    EXPECT_TRUE(m_cad.AtualizarAtributo(id, "T", "abc"));
    EXPECT_TRUE(m_cad.AtualizarAtributo(id, RZStringList{"t"}, "abc"));
    EXPECT_TRUE(m_cad.AtualizarAtributo(id, "T", "abc", false));
    EXPECT_TRUE(m_cad.SetValorAtributo(attribute->objectId(), "abc"));
    EXPECT_FALSE(attribute->isWriteEnabled());
    EXPECT_THAT(events(), IsEmpty());
    EXPECT_TRUE(m_cad.AtualizarAtributo(open(id), "T", "x"));
    EXPECT_TRUE(attribute->isWriteEnabled());
}

TEST_F(AttributeUpdate, ComparesTheValueExactly) {
    const RZID id = placed({{"T", "abc"}});
    const OdDbObjectId attribute = attributeOf(open(id), 0)->objectId();
    const auto rewritten = [&](bool result) {
        EXPECT_TRUE(result);
        EXPECT_THAT(values(id), ElementsAre("T=ABC"));
        EXPECT_TRUE(m_cad.AtualizarAtributo(id, "T", "abc"));
    };
    rewritten(m_cad.AtualizarAtributo(open(id), "T", "ABC"));
    rewritten(m_cad.AtualizarAtributo(open(id), "T", "ABC", false));
    rewritten(m_cad.AtualizarAtributo(open(id), RZStringList{"t"}, "ABC"));
    rewritten(m_cad.AtualizarAtributo(id, "T", "ABC"));
    rewritten(m_cad.AtualizarAtributo(id, RZStringList{"T"}, "ABC"));
    rewritten(m_cad.AtualizarAtributo(id, "T", "ABC", false));
    rewritten(m_cad.SetValorAtributo(attribute, "ABC"));
    EXPECT_TRUE(m_cad.AtualizarAtributo(id, "T", " abc"));
    EXPECT_THAT(values(id), ElementsAre("T= abc")) << "nothing is trimmed";
    EXPECT_TRUE(m_cad.AtualizarAtributo(id, "T", ""));
    EXPECT_THAT(values(id), ElementsAre("T="));
}

TEST_F(AttributeUpdate, WritesTextAndInvisibilityTogether) {
    const RZID id = placed({{"T", "1"}});
    events();
    EXPECT_TRUE(m_cad.AtualizarAtributo(open(id), "T", "2", false));
    EXPECT_THAT(values(id), ElementsAre("T=2"));
    EXPECT_EQ(events(), kOneWrite);
    EXPECT_TRUE(m_cad.AtualizarAtributo(open(id), "T", "2", true));
    EXPECT_THAT(values(id), ElementsAre("T=2|i"));
    EXPECT_EQ(events(), kOneWrite);
    EXPECT_TRUE(m_cad.AtualizarAtributo(open(id), "T", "3", false));
    EXPECT_THAT(values(id), ElementsAre("T=3"));
    EXPECT_EQ(events(), kOneWrite) << "one opening for both";
}

TEST_F(AttributeUpdate, LeavesTheInvisibilityAloneWhereItIsNotGiven) {
    const RZID id = placed({{"T", "1", true}});
    EXPECT_TRUE(m_cad.AtualizarAtributo(open(id), "T", "2"));
    EXPECT_TRUE(m_cad.AtualizarAtributo(open(id), RZStringList{"T"}, "3"));
    EXPECT_TRUE(m_cad.SetValorAtributo(attributeOf(open(id), 0)->objectId(), "4"));
    EXPECT_THAT(values(id), ElementsAre("T=4|i"));
}

TEST_F(AttributeUpdate, OfNothingToWalkOverIsFalse) {
    const Reference bare = place(m_block);
    EXPECT_FALSE(m_cad.AtualizarAtributo(bare, "T", "x"));
    const Reference reference = place(m_block, {{"T", "1"}});
    reference->setWithoutIterator(true);
    for (const Reference& each : {Reference(), reference}) {
        EXPECT_FALSE(m_cad.AtualizarAtributo(each, "T", "x"));
        EXPECT_FALSE(m_cad.AtualizarAtributo(each, "T", "x", true));
        EXPECT_FALSE(m_cad.AtualizarAtributo(each, RZStringList{"T"}, "x"));
    }
    EXPECT_FALSE(m_cad.AtualizarAtributo(RZID(reference->objectId()), "T", "x"));
    reference->setWithoutIterator(false);
    EXPECT_THAT(values(reference), ElementsAre("T=1"));
}

TEST_F(AttributeUpdate, PassesOverErasedAttributes) {
    const RZID id = placed({{"T", "1"}, {"T", "2"}});
    const OdDbObjectId first = attributeOf(open(id), 0)->objectId();
    erase(first);
    EXPECT_TRUE(m_cad.AtualizarAtributo(open(id), "T", "x"));
    int count = 0;
    EXPECT_TRUE(m_cad.AtualizarAtributos(open(id), ValueList{{"T", "y"}}, false, &count));
    EXPECT_FALSE(m_cad.SetValorAtributo(first, "z"));
    EXPECT_EQ(count, 1);
    EXPECT_THAT(values(id), ElementsAre("T=y"));
    EXPECT_EQ(
        plain(CHostString(OdSmartPtr<OdDbAttribute>(first.openObject(OdDb::kForRead, true))->textString())),
        "1");
}

TEST_F(AttributeUpdate, WorksOnAReferenceOutsideADrawing) {
    const Reference reference = loose(m_block, {{"A", "1"}, {"B", "2"}, {"C", "3"}});
    int count = 0;
    EXPECT_TRUE(m_cad.AtualizarAtributo(reference, "A", "x"));
    EXPECT_TRUE(m_cad.AtualizarAtributo(reference, "B", "y", true));
    EXPECT_TRUE(m_cad.AtualizarAtributos(reference, ValueList{{"c", "z"}}, true, &count));
    EXPECT_EQ(count, 1);
    EXPECT_THAT(values(reference), ElementsAre("A=x", "B=y|i", "C=z"));
}

// --- one attribute by the id of its reference ---

TEST_F(AttributeUpdate, ByIdNeedsABlockReference) {
    const OdDbObjectId record = virtualBlock("k", "V", {"P\f1\fN"}), gone = place(m_block)->objectId();
    const RZID line = append(m_db.getModelSpaceId(), make(new OdDbLine));
    erase(gone);
    for (const RZID& id : {RZID(), RZID(gone), RZID(record), line, RZID(m_block)}) {
        EXPECT_FALSE(m_cad.AtualizarAtributo(id, "P", "x"));
        EXPECT_FALSE(m_cad.AtualizarAtributo(id, RZStringList{"P"}, "x"));
    }
    EXPECT_EQ(data(record, "TVO_RZ_ATT_VIRTUAL"), "1001:TVO_RZ_ATT_VIRTUAL 1000:P\f1\fN");
}

TEST_F(AttributeUpdate, ByIdWithInvisibilityDoesNotTellWhetherTheTagWasThere) {
    const RZID id = placed({{"T", "1"}});
    EXPECT_TRUE(m_cad.AtualizarAtributo(id, "t", "x", true));
    EXPECT_TRUE(m_cad.AtualizarAtributo(RZID(place(m_block)->objectId()), "T", "x", true));
    EXPECT_THAT(values(id), ElementsAre("T=1"));
    EXPECT_TRUE(m_cad.AtualizarAtributo(id, "T", "x", true));
    EXPECT_THAT(values(id), ElementsAre("T=x|i"));
}

TEST_F(AttributeUpdate, ByIdWithInvisibilityReachesTheVirtualAttributesOfARecord) {
    const OdDbObjectId record = virtualBlock("k", "V", {"P\f1\fN"});
    EXPECT_TRUE(m_cad.AtualizarAtributo(RZID(record), "p", "x", true));
    EXPECT_EQ(data(record, "TVO_RZ_ATT_VIRTUAL"), "1001:TVO_RZ_ATT_VIRTUAL 1000:P\fx\fS");
    EXPECT_TRUE(m_cad.AtualizarAtributo(RZID(record), "MISSING", "y", true));
    EXPECT_EQ(data(record, "TVO_RZ_ATT_VIRTUAL"), "1001:TVO_RZ_ATT_VIRTUAL 1000:P\fx\fS");
    lm::drawing::refuseWriting(record);
    EXPECT_TRUE(m_cad.AtualizarAtributo(RZID(record), "P", "z", false))
        << "a record that refuses to be written is a record";
    lm::drawing::refuseWriting(OdDbObjectId());
    EXPECT_EQ(data(record, "TVO_RZ_ATT_VIRTUAL"), "1001:TVO_RZ_ATT_VIRTUAL 1000:P\fx\fS");
}

TEST_F(AttributeUpdate, ByIdWithInvisibilityIsFalseForAllOtherObjects) {
    const OdDbObjectId point = carrier({"P\f1\fN"}), gone = virtualBlock("k", "V", {"P\f1\fN"});
    const RZID id = placed({{"T", "1"}});
    erase(gone);
    EXPECT_FALSE(m_cad.AtualizarAtributo(RZID(), "T", "x", true));
    EXPECT_FALSE(m_cad.AtualizarAtributo(RZID(gone), "P", "x", true));
    EXPECT_FALSE(m_cad.AtualizarAtributo(RZID(point), "P", "x", true)) << "virtual attributes or not";
    EXPECT_EQ(data(point), "1001:TVO_RZ_ATT_VIRTUAL 1000:P\f1\fN");
    lm::drawing::refuseWriting(id);
    EXPECT_FALSE(m_cad.AtualizarAtributo(id, "T", "x", true));
    EXPECT_FALSE(m_cad.AtualizarAtributo(id, "T", "x"));
    lm::drawing::refuseWriting(OdDbObjectId());
    EXPECT_THAT(values(id), ElementsAre("T=1"));
}

// --- one attribute by its own id ---

TEST_F(AttributeUpdate, ByTheAttributesOwnIdWritesItsText) {
    const RZID id = placed({{"T", "1"}, {"T", "2"}});
    EXPECT_TRUE(m_cad.SetValorAtributo(attributeOf(open(id), 1)->objectId(), "x"));
    EXPECT_THAT(values(id), ElementsAre("T=1", "T=x"));
}

TEST_F(AttributeUpdate, ByTheAttributesOwnIdNeedsAnAttribute) {
    const OdDbObjectId line = append(m_db.getModelSpaceId(), make(new OdDbLine)),
                       text = append(m_db.getModelSpaceId(), make(new OdDbText)),
                       definition = define(m_block, {"T", "", "1"});
    const RZID reference = placed({{"T", "1"}});
    for (const RZID& id : {RZID(), RZID(line), RZID(text), RZID(definition), reference})
        EXPECT_FALSE(m_cad.SetValorAtributo(id, "x"));
    EXPECT_THAT(values(reference), ElementsAre("T=1"));
}

// --- many attributes ---

struct Due {
    const char* what;
    Attribute before, record;
    bool withFlag;
    const char* after;
    int count;
};

TEST_F(AttributeUpdate, OfAListWritesWhatDiffersIgnoringCaseOrInTheFlag) {
    for (const Due& due : {
             Due{"nothing differs", {"T", "abc"}, {"T", "abc"}, true, "T=abc", 0},
             Due{"case alone", {"T", "abc"}, {"T", "ABC"}, true, "T=abc", 0},
             Due{"case alone, accented", {"T", "ção"}, {"T", "ÇÃO"}, false, "T=ção", 0},
             Due{"value", {"T", "abc"}, {"T", "abd"}, false, "T=abd", 1},
             Due{"blanks count", {"T", "abc"}, {"T", "abc "}, false, "T=abc ", 1},
             Due{"empty value", {"T", "abc"}, {"T", ""}, false, "T=", 1},
             Due{"beyond the code page", {"T", "1"}, {"T", "Ω→"}, false, "T=Ω→", 1},
             Due{"case of the tag", {"Tag", "1"}, {"tAG", "2"}, false, "Tag=2", 1},
             Due{"flag set", {"T", "abc"}, {"T", "abc", true}, true, "T=abc|i", 1},
             Due{"flag cleared", {"T", "abc", true}, {"T", "abc"}, true, "T=abc", 1},
             Due{"flag not asked for", {"T", "abc"}, {"T", "abc", true}, false, "T=abc", 1},
             Due{"flag not asked for, set", {"T", "abc", true}, {"T", "abc"}, false, "T=abc|i", 1},
             Due{"flag brings the case along", {"T", "abc"}, {"T", "ABC", true}, false, "T=ABC", 1},
             Due{"value and flag", {"T", "abc"}, {"T", "x", true}, true, "T=x|i", 1},
             Due{"value, flag not asked for", {"T", "abc"}, {"T", "x", true}, false, "T=x", 1},
             Due{"another tag", {"T", "abc"}, {"T2", "x", true}, true, "T=abc", 0},
         }) {
        const RZID id = placed({due.before});
        events();
        int count = 0;
        EXPECT_TRUE(m_cad.AtualizarAtributos(open(id), ValueList{due.record}, due.withFlag, &count));
        EXPECT_THAT(values(id), ElementsAre(due.after)) << due.what;
        EXPECT_EQ(count, due.count) << due.what;
        EXPECT_EQ(events(), due.count == 0 ? Texts() : kOneWrite) << due.what;
    }
}

TEST_F(AttributeUpdate, OfAListGoesThroughAllRecordsAndAllAttributes) {
    const RZID id = placed({{"T", "1"}, {"OTHER", "2"}, {"t", "3"}});
    events();
    int count = 0;
    EXPECT_TRUE(m_cad.AtualizarAtributos(open(id), ValueList{{"T", "x"}, {"MISSING", "?"}, {"t", "y"}}, false,
                                         &count));
    EXPECT_THAT(values(id), ElementsAre("T=y", "OTHER=2", "t=y"));
    EXPECT_EQ(count, 4) << "two records in two attributes";
    EXPECT_THAT(events(), testing::SizeIs(8)) << "each write is told on its own";
    count = 0;
    EXPECT_TRUE(m_cad.AtualizarAtributos(open(id), ValueList{{"T", "y"}, {"T", "z"}}, false, &count));
    EXPECT_EQ(count, 2) << "the first record equals what is there";
    count = 0;
    EXPECT_TRUE(m_cad.AtualizarAtributos(open(id), ValueList{{"T", "1"}, {"T", "z"}}, false, &count));
    EXPECT_EQ(count, 4) << "though all is as before in the end";
    EXPECT_THAT(values(id), ElementsAre("T=z", "OTHER=2", "t=z"));
}

TEST_F(AttributeUpdate, OfAListOnlyAddsToTheCount) {
    int count = 5;
    const RZID a = placed({{"T", "1"}}), b = placed({{"T", "1"}, {"U", "1"}});
    ValueList list{{"T", "x"}, {"U", "x"}};
    EXPECT_TRUE(m_cad.AtualizarAtributos(open(a), list, false, &count));
    EXPECT_EQ(count, 6);
    EXPECT_TRUE(m_cad.AtualizarAtributos(b, list, false, &count));
    EXPECT_EQ(count, 8);
    EXPECT_TRUE(m_cad.AtualizarAtributos(b, list, false, &count));
    EXPECT_EQ(count, 8);
    EXPECT_TRUE(m_cad.AtualizarAtributos(a, ValueList{{"T", "y"}}, false, nullptr));
    EXPECT_THAT(values(a), ElementsAre("T=y"));
}

TEST_F(AttributeUpdate, OfAnEmptyListChangesNothing) {
    const RZID id = placed({{"T", "1"}});
    events();
    const auto attribute = attributeOf(open(id), 0);
    int count = 3;
    EXPECT_TRUE(m_cad.AtualizarAtributos(open(id), ValueList(), true, &count));
    EXPECT_TRUE(m_cad.AtualizarAtributos(open(id), nullptr, true, &count));
    EXPECT_TRUE(m_cad.AtualizarAtributos(place(m_block), ValueList{{"T", "1"}}, true, &count));
    events();
    EXPECT_EQ(count, 3);
    EXPECT_FALSE(attribute->isWriteEnabled());
}

TEST_F(AttributeUpdate, OfAListIsFalseForNullAndTrueWithoutAnIterator) {
    int count = 3;
    EXPECT_FALSE(m_cad.AtualizarAtributos(Reference(), ValueList{{"T", "x"}}, true, &count));
    EXPECT_FALSE(m_cad.AtualizarAtributos(Reference(), nullptr, true, nullptr));
    EXPECT_FALSE(m_cad.AtualizarAtributos(RZID(), ValueList{{"T", "x"}}, true, &count));
    const Reference reference = place(m_block, {{"T", "1"}});
    reference->setWithoutIterator(true);
    EXPECT_TRUE(m_cad.AtualizarAtributos(reference, ValueList{{"T", "x"}}, true, &count));
    EXPECT_EQ(count, 3);
    reference->setWithoutIterator(false);
    EXPECT_THAT(values(reference), ElementsAre("T=1"));
}

TEST_F(AttributeUpdate, OfAListOpensForWriteAndTellsNobody) {
    const RZID id = placed({{"T", "1"}, {"U", "2"}});
    events();
    const auto first = attributeOf(open(id), 0), second = attributeOf(open(id), 1);
    const std::size_t filed = m_db.undoRecords();
    EXPECT_TRUE(m_cad.AtualizarAtributos(open(id), ValueList{{"T", "1"}, {"V", "x"}}, true, nullptr));
    EXPECT_TRUE(first->isWriteEnabled());
    EXPECT_TRUE(second->isWriteEnabled()) << "also where no tag is its";
    EXPECT_THAT(events(), IsEmpty());
    EXPECT_EQ(m_db.undoRecords(), filed);
}

// --- an object of another class among the attributes ---

class NoAttribute : public OdDbAttribute {
public:
    OdRxClass* isA() const override { return OdDbLine::desc(); }
};

TEST_F(AttributeUpdate, StopsAtAStranger) {
    for (const bool resident : {true, false}) {
        const Reference reference = resident ? place(m_block, {{"A", "1"}}) : loose(m_block, {{"A", "1"}});
        reference->appendAttribute(filled(make<OdDbAttribute>(new NoAttribute), {"S", "0"}));
        reference->appendAttribute(attribute({"Z", "2"}));
        const lm::test::LogCapture log;
        EXPECT_TRUE(m_cad.AtualizarAtributo(reference, "A", "x")) << "it lies behind";
        EXPECT_THROW(m_cad.AtualizarAtributo(reference, "S", "x"), OdError_NotThatKindOfClass);
        EXPECT_THROW(m_cad.AtualizarAtributo(reference, "Z", "x", true), OdError_NotThatKindOfClass);
        EXPECT_THROW(m_cad.AtualizarAtributo(reference, RZStringList{"Z"}, "x"), OdError_NotThatKindOfClass);
        EXPECT_THAT(log.lines(), IsEmpty());
        int count = 0;
        EXPECT_THROW(m_cad.AtualizarAtributos(reference, ValueList{{"A", "y"}, {"Z", "y"}}, true, &count),
                     OdError_NotThatKindOfClass);
        EXPECT_THAT(namesIn(log), ElementsAre("CICad::AtualizarAtributos"));
        EXPECT_EQ(count, 1) << "what came before stays written and counted";
        EXPECT_EQ(plain(CHostString(attributeOf(reference, 0)->textString())), "y");
    }
}

TEST_F(AttributeUpdate, OfAListByIdRaisesForAnotherClass) {
    const lm::test::LogCapture log;
    const RZID line = append(m_db.getModelSpaceId(), make(new OdDbLine));
    int count = 3;
    EXPECT_THROW(m_cad.AtualizarAtributos(line, ValueList{{"T", "x"}}, true, &count),
                 OdError_NotThatKindOfClass);
    EXPECT_THAT(namesIn(log), ElementsAre("CICad::AtualizarAtributos")) << "before the other form begins";
    EXPECT_EQ(count, 3);
}

// --- failures ---

TEST_F(AttributeUpdate, ReportsFailuresOfTheListFormsAlone) {
    const RZID id = placed({{"T", "1"}});
    const OdDbObjectId attribute = attributeOf(open(id), 0)->objectId();
    const long held = id.openObject()->numRefs(), heldAttribute = attribute.openObject()->numRefs();
    const char name[] = "CICad::AtualizarAtributos";
    struct Call {
        std::function<void()> run;
        Texts lines;
    };
    ValueList list{{"T", "x"}};
    const Call calls[] = {
        {[&] { m_cad.AtualizarAtributo(open(id), "T", "x"); }, {}},
        {[&] { m_cad.AtualizarAtributo(open(id), "T", "x", true); }, {}},
        {[&] { m_cad.AtualizarAtributo(open(id), RZStringList{"T"}, "x"); }, {}},
        {[&] { m_cad.AtualizarAtributo(id, "T", "x"); }, {}},
        {[&] { m_cad.AtualizarAtributo(id, RZStringList{"T"}, "x"); }, {}},
        {[&] { m_cad.AtualizarAtributo(id, "T", "x", true); }, {}},
        {[&] { m_cad.SetValorAtributo(attribute, "x"); }, {}},
        {[&] { m_cad.AtualizarAtributos(open(id), list, true, nullptr); }, {name}},
        {[&] { m_cad.AtualizarAtributos(id, list, true, nullptr); }, {name, name}},
    };
    for (const Call& call : calls) {
        const lm::test::LogCapture odError;
        m_recorder.armed = [] { throw OdError(OdString("broken")); };
        EXPECT_THROW(call.run(), OdError);
        EXPECT_EQ(namesIn(odError), call.lines);
        for (const std::string& line : odError.lines()) EXPECT_TRUE(line.ends_with(" : broken")) << line;
        const lm::test::LogCapture standard;
        m_recorder.armed = [] { throw std::runtime_error("broken"); };
        EXPECT_THROW(call.run(), std::runtime_error);
        EXPECT_EQ(namesIn(standard), call.lines);
        const lm::test::LogCapture other;
        m_recorder.armed = [] { throw 7; };
        EXPECT_THROW(call.run(), int);
        EXPECT_THAT(other.lines(), IsEmpty());
        EXPECT_EQ(id.openObject()->numRefs(), held);
        EXPECT_EQ(attribute.openObject()->numRefs(), heldAttribute);
        EXPECT_THAT(values(id), ElementsAre("T=1"));
    }
    m_recorder.armed = nullptr;
}

TEST_F(AttributeUpdate, KeepsWhatWasWrittenBeforeAFailure) {
    const lm::test::LogCapture log;
    const RZID id = placed({{"T", "1"}, {"U", "2"}, {"V", "3"}});
    int openings = 0, count = 0;
    m_recorder.armed = [&] {
        if (++openings == 3) throw OdError(OdString("broken")); // opened and modified, then opened
    };
    EXPECT_THROW(
        m_cad.AtualizarAtributos(open(id), ValueList{{"T", "x"}, {"U", "y"}, {"V", "z"}}, true, &count),
        OdError);
    m_recorder.armed = nullptr;
    EXPECT_THAT(values(id), ElementsAre("T=x", "U=2", "V=3"));
    EXPECT_EQ(count, 1);
}

// --- events and undo ---

TEST_F(AttributeUpdate, IsTellingOfTheAttributeAndNotOfItsReference) {
    const RZID id = placed({{"T", "1"}, {"U", "2"}});
    events();
    m_cad.AtualizarAtributo(open(id), "T", "a");
    EXPECT_EQ(events(), kOneWrite);
    m_cad.AtualizarAtributo(id, "T", "b");
    EXPECT_EQ(events(), kOneWrite);
    m_cad.AtualizarAtributo(id, RZStringList{"t"}, "c");
    EXPECT_EQ(events(), kOneWrite);
    m_cad.AtualizarAtributo(id, "T", "d", true);
    EXPECT_EQ(events(), kOneWrite);
    m_cad.SetValorAtributo(attributeOf(open(id), 0)->objectId(), "e");
    EXPECT_EQ(events(), kOneWrite);
    m_cad.AtualizarAtributos(id, ValueList{{"T", "f"}, {"U", "g"}}, false, nullptr);
    EXPECT_EQ(events(), kTwoWrites);
    m_cad.AtualizarAtributo(id, "MISSING", "x");
    m_cad.AtualizarAtributo(id, "MISSING", "x", true);
    m_cad.AtualizarAtributos(id, ValueList{{"T", "F", true}, {"MISSING", "x"}}, false, nullptr);
    EXPECT_THAT(events(), IsEmpty()) << "opening for write alone is no event";
    EXPECT_FALSE(id.openObject()->isWriteEnabled());
}

TEST_F(AttributeUpdate, IsTakenBackWholeByOneStep) {
    const RZID a = placed({{"T", "1"}, {"U", "2", true}}), b = placed({{"T", "3"}});
    const OdDbObjectId record = virtualBlock("k", "V", {"P\f1\fN"});
    m_db.startUndoRecord();
    m_db.blockUndoRecording(true);
    m_cad.AtualizarAtributo(open(a), "T", "x");
    m_db.startUndoRecord();
    m_cad.AtualizarAtributo(a, "T", "y", true);
    m_cad.AtualizarAtributo(b, RZStringList{"t"}, "z");
    m_cad.SetValorAtributo(attributeOf(open(b), 0)->objectId(), "w");
    m_cad.AtualizarAtributos(a, ValueList{{"T", "p"}, {"U", "q"}, {"U", "r"}}, true, nullptr);
    m_cad.AtualizarAtributo(RZID(record), "P", "v", true);
    m_db.blockUndoRecording(false);
    const Texts ofA = values(a), ofB = values(b);
    EXPECT_THAT(ofA, ElementsAre("T=p", "U=r"));
    EXPECT_THAT(ofB, ElementsAre("T=w"));
    EXPECT_EQ(data(record, "TVO_RZ_ATT_VIRTUAL"), "1001:TVO_RZ_ATT_VIRTUAL 1000:P\fv\fS");
    ASSERT_TRUE(m_db.undo());
    EXPECT_THAT(values(a), ElementsAre("T=1", "U=2|i"));
    EXPECT_THAT(values(b), ElementsAre("T=3"));
    EXPECT_EQ(data(record, "TVO_RZ_ATT_VIRTUAL"), "1001:TVO_RZ_ATT_VIRTUAL 1000:P\f1\fN");
    ASSERT_TRUE(m_db.redo());
    EXPECT_EQ(values(a), ofA);
    EXPECT_EQ(values(b), ofB);
}

TEST_F(AttributeUpdate, WithoutAChangeLeavesNothingToUndo) {
    const RZID id = placed({{"T", "abc"}});
    m_db.startUndoRecord();
    const std::size_t filed = m_db.undoRecords();
    m_cad.AtualizarAtributo(id, "T", "abc");
    m_cad.AtualizarAtributo(id, "T", "abc", false);
    m_cad.AtualizarAtributo(id, RZStringList{"t"}, "abc");
    m_cad.AtualizarAtributos(id, ValueList{{"T", "ABC"}}, true, nullptr);
    m_cad.SetValorAtributo(attributeOf(open(id), 0)->objectId(), "abc");
    EXPECT_EQ(m_db.undoRecords(), filed);
    m_cad.AtualizarAtributos(id, ValueList{{"T", "abc", true}}, false, nullptr);
    EXPECT_EQ(m_db.undoRecords(), filed + 1) << "the text rewritten for a flag that isn't written";
}

TEST_F(AttributeUpdate, LeavesNoMemoryBehind) {
    const RZID id = placed({{"T", "1"}, {"U", "2"}});
    ValueList list{{"T", "x"}, {"U", "y"}};
    m_cad.AtualizarAtributos(id, list, true, nullptr);
    const std::size_t before = lm::drawing::liveBlocks();
    m_cad.AtualizarAtributos(id, list, true, nullptr);
    m_cad.AtualizarAtributo(id, "T", "x");
    m_cad.AtualizarAtributo(open(id), RZStringList{"u"}, "y");
    EXPECT_EQ(lm::drawing::liveBlocks(), before);
}

} // namespace
