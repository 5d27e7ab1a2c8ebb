// SPDX-License-Identifier: MIT
// Virtual attributes that are written: one line rewritten, or all of them replaced.
#include "value_list.h"

#include "drawing/alloc.h"
#include "drawing/seams.h"
#include "vocabulary/cmensagem.h"

#include <gmock/gmock.h>

#include <stdexcept>

namespace {

using namespace lm::tests;
using testing::ElementsAre;
using testing::IsEmpty;

const char kApplication[] = "TVO_RZ_ATT_VIRTUAL";

class VirtualWriting : public StoredData {
protected:
    /// The lines of an object as they are stored, without the application's record; "none" for no chain.
    static Texts lines(OdDbObjectId id) {
        const OdSmartPtr<OdResBuf> chain = id.openObject()->xData(od(kApplication));
        if (chain.isNull()) return {"none"};
        EXPECT_EQ(chain->restype(), 1001);
        Texts all;
        for (const OdResBuf* at = chain->next().get(); at != nullptr; at = at->next().get()) {
            EXPECT_EQ(at->restype(), 1000);
            all.push_back(plain(CHostString(at->getString())));
        }
        return all;
    }
    /// What becomes of lines when one attribute is updated by the object and by its id.
    Texts updated(const Texts& before, const char* tag, const char* value, bool invisible) {
        const OdDbObjectId one = carrier(before), two = carrier(before);
        EXPECT_TRUE(m_cad.AtualizarAtributoVirtual(one.openObject(), rz(tag), rz(value), invisible));
        EXPECT_TRUE(m_cad.AtualizarAtributoVirtual(RZID(two), rz(tag), rz(value), invisible));
        EXPECT_EQ(data(one), data(two));
        return lines(one);
    }
    /// What becomes of lines when all of them are replaced.
    Texts replaced(const Texts& before, ValueList&& list, bool keepTag) {
        const OdDbObjectId id = carrier(before);
        EXPECT_TRUE(m_cad.AtualizarAtributosVirtual(RZID(id), list, keepTag));
        return lines(id);
    }
    Texts events() { return m_recorder.taken(); }

    Recorder m_recorder{m_db};
};

const Texts kOneWrite = {"opened POINT", "modified POINT"};

// --- one line ---

TEST_F(VirtualWriting, RewritesALineOfATagInAnyCase) {
    EXPECT_THAT(updated({"A\f1\fN", "TAG\fM1\fN", "B\f2\fS"}, "tag", "M2", true),
                ElementsAre("A\f1\fN", "TAG\fM2\fS", "B\f2\fS"));
    EXPECT_THAT(updated({"TAG\fM1\fS"}, "Tag", "", false), ElementsAre("TAG\f\fN"));
    EXPECT_THAT(updated({"Descrição\f1\fN"}, "DESCRIÇÃO", "Ω→", false), ElementsAre("DESCRIÇÃO\fΩ→\fN"));
    EXPECT_THAT(updated({"P\f1\fN", "P\f2\fN"}, "P", "x", false), ElementsAre("P\fx\fN", "P\f2\fN"));
    EXPECT_THAT(updated({"P\f1\fN"}, "P", "a\fb", false), ElementsAre("P\fa\fb\fN")) << "nothing is escaped";
}

TEST_F(VirtualWriting, PutsTheTagInCapitals) {
    const OdDbObjectId id = carrier({"Tag\fM1\fN"});
    Found mixed, lower, capital, after;
    mixed.slot() = m_cad.SearchAttributeVirtual(RZID(id), "Tag");
    EXPECT_EQ(mixed.told(), "Tag||M1");
    EXPECT_EQ(m_cad.SearchAttributeVirtual(RZID(id), "tag"), nullptr) << "the search is exact";
    EXPECT_TRUE(m_cad.AtualizarAtributoVirtual(RZID(id), "tag", "M2", false)) << "and the update isn't";
    EXPECT_THAT(lines(id), ElementsAre("TAG\fM2\fN"));
    EXPECT_EQ(m_cad.SearchAttributeVirtual(RZID(id), "Tag"), nullptr);
    after.slot() = m_cad.SearchAttributeVirtual(RZID(id), "TAG");
    EXPECT_EQ(after.told(), "TAG||M2");
}

TEST_F(VirtualWriting, TakesTheFirstLineThatBeginsWithTheTag) {
    EXPECT_THAT(updated({"TAG1\f1\fS", "TAG\f2\fN"}, "TAG", "x", false),
                ElementsAre("TAG\fx\fN", "TAG\f2\fN"))
        << "another tag's line, which loses its tag by this";
    EXPECT_THAT(updated({"TAG\f2\fN", "TAG1\f1\fS"}, "TAG", "x", false),
                ElementsAre("TAG\fx\fN", "TAG1\f1\fS"));
    EXPECT_THAT(updated({"TAG"}, "tag", "x", true), ElementsAre("TAG\fx\fS")) << "a line without fields";
    EXPECT_THAT(updated({"TAG\f1\fN"}, "TAG\f1", "x", true), ElementsAre("TAG\f1\fx\fS"));
    EXPECT_THAT(updated({"TAG\f1\fN"}, "AG", "x", true), ElementsAre("TAG\f1\fN"));
    EXPECT_THAT(updated({"TAG\f1\fN"}, "TAGS", "x", true), ElementsAre("TAG\f1\fN"));
}

TEST_F(VirtualWriting, LeavesTheLinesAsTheyAreWithoutOneOfTheTag) {
    const Texts before = {"a\f1\fs", "B\f\fN", "C"};
    EXPECT_THAT(updated(before, "D", "x", true), ElementsAre("a\f1\fs", "B\f\fN", "C"));
    const OdDbObjectId bare = point();
    EXPECT_TRUE(m_cad.AtualizarAtributoVirtual(RZID(bare), "D", "x", true));
    EXPECT_EQ(data(bare), "null") << "no line is added";
}

TEST_F(VirtualWriting, OfATagThatBeginsTheApplicationsNameCopiesTheLinesToAnotherName) {
    for (const char* tag : {"TVO", "tvo_rz", "", "TVO_RZ_ATT_VIRTUAL"}) {
        const OdDbObjectId id = carrier({"A\f1\fN"});
        EXPECT_TRUE(m_cad.AtualizarAtributoVirtual(id.openObject(), rz(tag), "x", true));
        const std::string name = plain(rz(tag).asUpper()) + "\fx\fS";
        EXPECT_EQ(data(id), "1001:TVO_RZ_ATT_VIRTUAL 1000:A\f1\fN 1001:" + name + " 1000:A\f1\fN")
            << "the old chain stays";
        EXPECT_THAT(lines(id), ElementsAre("A\f1\fN"));
    }
}

TEST_F(VirtualWriting, EscapesNoSeparatorsOfAValue) {
    EXPECT_THAT(updated({"A\f0\fN"}, "A", "1\f\f2", true), ElementsAre("A\f1\f\f2\fS"));
    EXPECT_THAT(updated({"A\f1\f\f2\fS"}, "A", "3", true), ElementsAre("A\f3\fS")) << "found and mended";
    EXPECT_THAT(replaced({}, {{"A", "\f\f"}, {"B", "1\f", true}}, false),
                ElementsAre("A\f\f\f\fN", "B\f1\f\fS"));
}

TEST_F(VirtualWriting, FindsItemsOfAnyKindAndKeepsTheirCodes) {
    const OdDbObjectId id = carrier({"A\f1\fN"});
    OdSmartPtr<OdResBuf> chain = id.openObject()->xData(od(kApplication));
    chain->last()->append(OdResBuf::newRb(1071, 12));
    chain->last()->append(OdResBuf::newRb(1005, od("2F")));
    id.openObject(OdDb::kForWrite)->setXData(chain);
    EXPECT_TRUE(m_cad.AtualizarAtributoVirtual(RZID(id), "1", "x", false));
    EXPECT_EQ(data(id), "1001:TVO_RZ_ATT_VIRTUAL 1000:A\f1\fN 1071:1\fx\fN 1005:2F");
    EXPECT_TRUE(m_cad.AtualizarAtributoVirtual(RZID(id), "2f", "y", false));
    EXPECT_EQ(data(id), "1001:TVO_RZ_ATT_VIRTUAL 1000:A\f1\fN 1071:1\fx\fN 1005:2F\fy\fN");
}

/// A record with the application's name and nothing behind it, as files may hold it, is what tells a drawing
/// to drop the data.
TEST_F(VirtualWriting, DropsALoneRecordOfTheApplication) {
    const OdDbObjectId id = carrier({});
    ASSERT_EQ(data(id), "1001:TVO_RZ_ATT_VIRTUAL");
    EXPECT_TRUE(m_cad.AtualizarAtributoVirtual(RZID(id), "A", "x", false));
    EXPECT_EQ(data(id), "null");
}

TEST_F(VirtualWriting, LeavesTheDataOfOtherApplicationsAlone) {
    const OdDbObjectId id = pointWith("OTHER", {"P\f1\fN"});
    give(id, kApplication, {"P\f2\fN"});
    EXPECT_TRUE(m_cad.AtualizarAtributoVirtual(RZID(id), "P", "x", false));
    EXPECT_EQ(data(id, "OTHER"), "1001:OTHER 1000:P\f1\fN");
    EXPECT_TRUE(m_cad.AtualizarAtributosVirtual(RZID(id), ValueList(), false));
    EXPECT_EQ(data(id), "1001:OTHER 1000:P\f1\fN");
}

TEST_F(VirtualWriting, OfNothingIsFalseAndRegistersNothing) {
    const OdDbObjectId gone = point(), closed = pointWith("OTHER", {});
    erase(gone);
    EXPECT_FALSE(m_cad.AtualizarAtributoVirtual(OdSmartPtr<OdDbObject>(), "P", "x", true));
    EXPECT_FALSE(m_cad.AtualizarAtributoVirtual(RZID(), "P", "x", true));
    EXPECT_FALSE(m_cad.AtualizarAtributoVirtual(RZID(gone), "P", "x", true));
    lm::drawing::refuseWriting(closed);
    EXPECT_FALSE(m_cad.AtualizarAtributoVirtual(RZID(closed), "P", "x", true));
    lm::drawing::refuseWriting(OdDbObjectId());
    EXPECT_FALSE(isRegistered(kApplication));
}

TEST_F(VirtualWriting, RegistersTheApplicationAlsoWhenNothingIsFound) {
    EXPECT_TRUE(m_cad.AtualizarAtributoVirtual(point().openObject(), "P", "x", true));
    EXPECT_TRUE(isRegistered(kApplication));
    CHostDatabase other;
    setDatabase(&other);
    EXPECT_TRUE(m_cad.AtualizarAtributosVirtual(RZID(), nullptr, false));
    setDatabase(nullptr);
    EXPECT_TRUE(isRegistered(kApplication, &other));
}

TEST_F(VirtualWriting, UpgradesAReadersPointer) {
    const OdDbObjectId id = carrier({"P\f1\fN"});
    const OdSmartPtr<OdDbObject> object = read(id);
    ASSERT_FALSE(object->isWriteEnabled());
    EXPECT_TRUE(m_cad.AtualizarAtributoVirtual(object, "P", "x", false));
    EXPECT_TRUE(object->isWriteEnabled());
    EXPECT_THAT(lines(id), ElementsAre("P\fx\fN"));
}

TEST_F(VirtualWriting, WorksOnAnObjectOutsideADrawing) {
    const OdSmartPtr<OdDbPoint> loose = make(new OdDbPoint);
    loose->setXData(chainOf({"P\f1\fN"}));
    EXPECT_TRUE(m_cad.AtualizarAtributoVirtual(loose, "P", "x", false));
    EXPECT_EQ(told(loose->xData(od(kApplication))), "1001:TVO_RZ_ATT_VIRTUAL 1000:P\fx\fN");
}

// --- all lines ---

TEST_F(VirtualWriting, ReplacesAllLinesInTheOrderOfTheList) {
    EXPECT_THAT(replaced({"OLD\f1\fN", "B\f9\fN"}, {{"b", "2"}, {"A", "", true}, {"b", "Ω→"}}, false),
                ElementsAre("b\f2\fN", "A\f\fS", "b\fΩ→\fN"))
        << "tags as they are spelled, doubled ones too, and values unit for unit";
    EXPECT_THAT(replaced({}, {{"A", "1"}}, false), ElementsAre("A\f1\fN"));
    const OdDbObjectId bare = point();
    EXPECT_TRUE(m_cad.AtualizarAtributosVirtual(RZID(bare), ValueList{{"A", "1"}}, true));
    EXPECT_THAT(lines(bare), ElementsAre("A\f1\fN")) << "where nothing was";
}

TEST_F(VirtualWriting, OfAnEmptyListLeavesNoLine) {
    EXPECT_THAT(replaced({"A\f1\fN", "TAG\fM1\fN"}, {}, false), ElementsAre("none"));
    const OdDbObjectId id = carrier({"A\f1\fN"});
    EXPECT_TRUE(m_cad.AtualizarAtributosVirtual(RZID(id), nullptr, false));
    EXPECT_EQ(data(id), "null");
}

TEST_F(VirtualWriting, KeepsTheComponentsTagWhenAsked) {
    const std::string one = plain(CMensagem::getAttTag(1)), two = plain(CMensagem::getAttTag(2)),
                      three = plain(CMensagem::getAttTag(3));
    for (const std::string& name : {one, two, three}) {
        const std::string kept = name + "\fM1\fS", other = name == one ? two : one;
        EXPECT_THAT(replaced({"A\f1\fN", kept, "B\f2\fN"},
                             {{"C", "3"}, {other.c_str(), "NEW"}, {name.c_str(), "NEW"}}, true),
                    ElementsAre(kept, "C\f3\fN"))
            << "in front, whatever the list says, and in whatever language";
        EXPECT_THAT(replaced({"A\f1\fN", kept}, {}, true), ElementsAre(kept));
        EXPECT_THAT(replaced({kept}, {{name.c_str(), "NEW"}}, false), ElementsAre(name + "\fNEW\fN"));
    }
    EXPECT_THAT(replaced({two + "\f2\fN", one + "\f1\fN"}, {}, true), ElementsAre(one + "\f1\fN"))
        << "the first language that has one";
    EXPECT_THAT(replaced({one + "\f1\fN", one + "\f2\fN"}, {}, true), ElementsAre(one + "\f1\fN"));
}

TEST_F(VirtualWriting, PassesOverComponentTagsOfTheListWhereNoneIsKept) {
    EXPECT_THAT(replaced({"A\f1\fN"}, {{"RELACAO", "x"}, {"tag", "y"}, {"Etiqueta", "z"}, {"B", "2"}}, true),
                ElementsAre("B\f2\fN"))
        << "also in other case";
    EXPECT_THAT(replaced({"tag\fM1\fN"}, {{"TAG", "y"}}, true), ElementsAre("none"))
        << "a line in small letters isn't found by the search for the role";
}

TEST_F(VirtualWriting, KeepsTheComponentsTagAsItIsStored) {
    for (const char* line : {"TAG\f\fN", "TAG\f Ω→ \fs", "TAG\fM1", "TAG\fa\fb\fN"})
        EXPECT_THAT(replaced({"A\f1\fN", line}, {{"B", "2"}}, true), ElementsAre(line, "B\f2\fN")) << line;
}

TEST_F(VirtualWriting, IsTrueAlsoForWhatCannotBeOpened) {
    const OdDbObjectId gone = carrier({"TAG\f1\fN"}), closed = carrier({"TAG\f1\fN"});
    erase(gone);
    for (const bool keepTag : {false, true}) {
        EXPECT_TRUE(m_cad.AtualizarAtributosVirtual(RZID(), ValueList{{"A", "1"}}, keepTag));
        EXPECT_TRUE(m_cad.AtualizarAtributosVirtual(RZID(gone), ValueList{{"A", "1"}}, keepTag));
        lm::drawing::refuseWriting(closed);
        EXPECT_TRUE(m_cad.AtualizarAtributosVirtual(RZID(closed), ValueList{{"A", "1"}}, keepTag));
        lm::drawing::refuseWriting(OdDbObjectId());
        EXPECT_THAT(lines(closed), ElementsAre("TAG\f1\fN"));
        EXPECT_EQ(data(gone), "1001:TVO_RZ_ATT_VIRTUAL 1000:TAG\f1\fN");
    }
}

TEST_F(VirtualWriting, IsReadBackByAllReaders) {
    const OdDbObjectId id = virtualBlock("k", "MOTOR", {"TAG\fM1\fN"});
    EXPECT_TRUE(
        m_cad.AtualizarAtributosVirtual(RZID(id), ValueList{{"POWER", "5", true}, {"NOTE", ""}}, true));
    EXPECT_TRUE(m_cad.AtualizarAtributo(RZID(id), "tag", "M2", false));
    FoundList list;
    EXPECT_EQ(m_cad.SearchAttributesVirtual(RZID(id), list.slot()), 0);
    EXPECT_THAT(list.told(), ElementsAre("TAG||M2", "POWER||5|i", "NOTE|| "));
    EXPECT_TRUE(m_cad.AtualizarAtributosVirtual(RZID(id), list.get(), false))
        << "what was read, written back";
    EXPECT_THAT(lines(id), ElementsAre("TAG\fM2\fN", "POWER\f5\fS", "NOTE\f \fN"));
    EXPECT_TRUE(m_cad.isNoEsqVirtual("m2"));
    std::unique_ptr<std::map<lm::WideString, CEBloco*>> blocks(m_cad.BuscarBlocosVirtuais("MOTOR", "TAG"));
    ASSERT_NE(blocks, nullptr);
    ASSERT_EQ(blocks->size(), 1u);
    EXPECT_EQ(told(blocks->begin()->second->GetAtributo("POWER")), "POWER||5|i");
    destroy(blocks->begin()->second, {"TAG", "POWER", "NOTE"});
}

// --- failures, events and undo ---

TEST_F(VirtualWriting, ReportsFailuresOnceForEachGuard) {
    const char one[] = "CICad::AtualizarAtributoVirtual", all[] = "CICad::AtualizarAtributosVirtual";
    const OdDbObjectId id = carrier({"TAG\f1\fN"}), record = virtualBlock("k", "V", {"TAG\f1\fN"});
    const long held = id.openObject()->numRefs();
    ValueList list{{"A", "x"}};
    struct Call {
        std::function<void()> run;
        Texts lines;
    };
    const Call calls[] = {
        {[&] { m_cad.AtualizarAtributoVirtual(id.openObject(), "TAG", "x", true); }, {one}},
        {[&] { m_cad.AtualizarAtributoVirtual(RZID(id), "TAG", "x", true); }, {one, one}},
        {[&] { m_cad.AtualizarAtributo(RZID(record), "TAG", "x", true); }, {one, one}},
        {[&] { m_cad.AtualizarAtributosVirtual(RZID(id), list, true); }, {all}},
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
        EXPECT_THAT(lines(id), ElementsAre("TAG\f1\fN"));
        EXPECT_THAT(lines(record), ElementsAre("TAG\f1\fN"));
    }
    m_recorder.armed = nullptr;
}

TEST_F(VirtualWriting, ReportsAFailingSearchForTheTagUnderBothNames) {
    const lm::test::LogCapture log;
    const OdDbObjectId id = carrier({"TAG\f1\fN"});
    m_cad.AtualizarAtributosVirtual(RZID(), nullptr, false); // the application is registered
    bool reported = false;
    for (long successes = 0; successes < 50 && !reported; ++successes) {
        lm::drawing::failAllocationAfter(successes);
        try {
            m_cad.AtualizarAtributosVirtual(RZID(id), nullptr, true);
        } catch (const std::bad_alloc&) {
        }
        lm::drawing::failAllocationAfter(-1);
        const Texts names = namesIn(log);
        const std::string one = "CICad::SearchAttributeVirtual";
        if (names.size() >= 3 && names[names.size() - 2] == one) {
            EXPECT_EQ(names[names.size() - 3], one) << "the search by id calls the one by object";
            EXPECT_EQ(names.back(), "CICad::AtualizarAtributosVirtual");
            reported = true;
        }
        EXPECT_THAT(lines(id), ElementsAre("TAG\f1\fN"));
    }
    EXPECT_TRUE(reported);
}

TEST_F(VirtualWriting, TellsReactorsOfEachWrite) {
    const OdDbObjectId id = carrier({"P\f1\fN"}), bare = point();
    events();
    m_cad.AtualizarAtributoVirtual(id.openObject(), "P", "x", false);
    EXPECT_EQ(events(), kOneWrite);
    m_cad.AtualizarAtributoVirtual(RZID(id), "P", "x", false);
    EXPECT_EQ(events(), kOneWrite) << "nothing compares the value";
    m_cad.AtualizarAtributoVirtual(RZID(id), "MISSING", "x", false);
    EXPECT_EQ(events(), kOneWrite) << "the chain is written back also when nothing was found in it";
    m_cad.AtualizarAtributoVirtual(RZID(bare), "P", "x", false);
    EXPECT_THAT(events(), IsEmpty()) << "opened for write, with nothing to write";
    m_cad.AtualizarAtributosVirtual(RZID(id), ValueList{{"A", "1"}, {"B", "2"}}, true);
    EXPECT_EQ(events(), kOneWrite);
    m_cad.AtualizarAtributosVirtual(RZID(), ValueList{{"A", "1"}}, true);
    EXPECT_THAT(events(), IsEmpty());
}

TEST_F(VirtualWriting, TellsReactorsOfTheApplicationWhenItIsNew) {
    const OdDbObjectId bare = point();
    events();
    m_cad.AtualizarAtributosVirtual(RZID(bare), ValueList{{"A", "1"}}, false);
    EXPECT_THAT(events(), ElementsAre("appended APPID TVO_RZ_ATT_VIRTUAL", "opened POINT", "modified POINT"));
}

TEST_F(VirtualWriting, IsTakenBackWholeByOneStep) {
    const OdDbObjectId a = carrier({"P\f1\fN"}), b = point(), c = carrier({"TAG\f1\fN", "U\f2\fN"});
    m_db.startUndoRecord();
    m_cad.AtualizarAtributoVirtual(RZID(a), "P", "x", true);
    m_cad.AtualizarAtributoVirtual(RZID(a), "", "y", true);
    m_cad.AtualizarAtributosVirtual(RZID(b), ValueList{{"A", "1"}}, false);
    m_cad.AtualizarAtributosVirtual(RZID(c), nullptr, true);
    m_cad.AtualizarAtributosVirtual(RZID(c), nullptr, false);
    EXPECT_EQ(data(c), "null");
    ASSERT_TRUE(m_db.undo());
    EXPECT_EQ(data(a), "1001:TVO_RZ_ATT_VIRTUAL 1000:P\f1\fN");
    EXPECT_EQ(data(b), "null");
    EXPECT_THAT(lines(c), ElementsAre("TAG\f1\fN", "U\f2\fN"));
    ASSERT_TRUE(m_db.redo());
    EXPECT_THAT(lines(a), ElementsAre("P\fx\fS"));
    EXPECT_THAT(lines(b), ElementsAre("A\f1\fN"));
    EXPECT_EQ(data(c), "null");
}

} // namespace
