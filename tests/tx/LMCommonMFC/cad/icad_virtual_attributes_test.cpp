// SPDX-License-Identifier: MIT
// Attributes that stand as lines in extended data, and the virtual blocks.
#include "cad_drawing.h"

#include "drawing/alloc.h"
#include "vocabulary/cmensagem.h"

#include <gmock/gmock.h>

namespace {

using namespace lm::tests;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

class VirtualAttributes : public CadDrawing {
protected:
    /// The record that the single search gives for an object with these lines.
    std::string single(const Texts& lines, const char* tag) {
        const OdDbObjectId id = carrier(lines);
        Found byObject, byId;
        byObject.slot() = m_cad.SearchAttributeVirtual(id.openObject(), rz(tag));
        byId.slot() = m_cad.SearchAttributeVirtual(RZID(id), rz(tag));
        EXPECT_EQ(byObject.told(), byId.told());
        return byObject.told();
    }

    Texts list(const Texts& lines) {
        FoundList byId, byChain;
        EXPECT_EQ(m_cad.SearchAttributesVirtual(RZID(carrier(lines)), byId.slot()), 0);
        EXPECT_EQ(m_cad.SearchAttributesVirtual(chainOf(lines), byChain.slot()), 0);
        EXPECT_EQ(byId.told(), byChain.told());
        return byId.told();
    }

    /// The records under these tags that the block reader gives.
    Texts inBlock(const Texts& lines, const Texts& tags) {
        auto* bloco = new CEBloco("B");
        EXPECT_EQ(m_cad.SearchAttributesVirtual(RZID(carrier(lines)), bloco), 0);
        Texts all;
        for (const std::string& tag : tags) all.push_back(told(bloco->GetAtributo(rz(tag))));
        destroy(bloco, tags);
        return all;
    }
};

// --- one line ---

TEST_F(VirtualAttributes, AreFoundByExactlyTheirTag) {
    const Texts lines = {"A\f1\fN", "TAG\f M1 \fS", "TAG\fM2\fN"};
    EXPECT_EQ(single(lines, "TAG"), "TAG|| M1 |i") << "the first one, untrimmed";
    EXPECT_EQ(single(lines, "tag"), "null");
    EXPECT_EQ(single(lines, "TA"), "null");
    EXPECT_EQ(single({}, "TAG"), "null");
    EXPECT_EQ(single({"Ω\fµ→\fN"}, "Ω"), "Ω||µ→");
}

TEST_F(VirtualAttributes, HaveNoObject) {
    Found found;
    found.slot() = m_cad.SearchAttributeVirtual(RZID(carrier({"A\f1\fN"})), rz("A"));
    EXPECT_TRUE(found->GetObjectId().isNull());
    FoundList all;
    m_cad.SearchAttributesVirtual(chainOf({"A\f1\fN"}), all.slot());
    EXPECT_TRUE(all->GetAt(0)->GetObjectId().isNull());
}

TEST_F(VirtualAttributes, ThatAreNotThereGiveNull) {
    OdSmartPtr<OdDbPoint> bare = make(new OdDbPoint);
    append(m_db.getModelSpaceId(), bare);
    EXPECT_EQ(m_cad.SearchAttributeVirtual(OdSmartPtr<OdDbObject>(), rz("A")), nullptr);
    EXPECT_EQ(m_cad.SearchAttributeVirtual(RZID(), rz("A")), nullptr);
    EXPECT_EQ(m_cad.SearchAttributeVirtual(RZID(bare->objectId()), rz("A")), nullptr);
    bare->setXData(chainOf({"A\f1\fN"}, "ANOTHER"));
    EXPECT_EQ(m_cad.SearchAttributeVirtual(bare, rz("A")), nullptr) << "another application's data";
}

TEST_F(VirtualAttributes, CanHangOnReferencesAsWell) {
    const Reference reference = place(block("B"), {{"A", "real"}});
    reference->setXData(chainOf({"A\fvirtual\fN"}));
    Found found;
    found.slot() = m_cad.SearchAttributeVirtual(reference, rz("A"));
    EXPECT_EQ(found.told(), "A||virtual");
}

TEST_F(VirtualAttributes, FillTheFieldsThatALineLacks) {
    EXPECT_EQ(single({"A"}, "A"), "A||");
    EXPECT_EQ(single({"A\f1"}, "A"), "A||1");
    EXPECT_EQ(single({"A\f1\f2\fS"}, "A"), "A||1") << "the third field is no flag";
    EXPECT_EQ(single({"A\f1\fS\f3"}, "A"), "A||1|i");
}

TEST_F(VirtualAttributes, ReadAnEmptyValueAsOneBlank) {
    const Texts lines = {"A\f\fN", "B\f\f\fS"};
    EXPECT_EQ(single(lines, "A"), "A|| ");
    EXPECT_EQ(single(lines, "B"), "B|| |i") << "two separators in a row are looked for once, from the left";
    EXPECT_THAT(list(lines), ElementsAre("A|| ", "B|| |i"));
    EXPECT_THAT(inBlock(lines, {"A", "B"}), ElementsAre("A|| ", "B|| |i"));
    EXPECT_EQ(single({"\f\f1\fN"}, " "), " ||1") << "an empty tag too, behind another separator";
}

/// A value can't hold the separator; where one does, separators in a row are a blank field like an empty
/// value.
TEST_F(VirtualAttributes, FallApartAtSeparatorsInARowInsideAValue) {
    struct Row {
        const char* line;
        const char* single;
    };
    const Row rows[] = {
        {"A\f1\f\f2\fS", "A||1"},   // five fields: A, 1, a blank, 2, S
        {"A\f1\f\f\f2\fS", "A||1"}, // three in a row: the third falls together with the second
        {"A\f1\f\fS", "A||1"},      // at the value's end: the blank stands for the flag
        {"A\f\f1\fS", "A|| "},      // at its beginning: the blank is the value
        {"A\f\f\f\fS", "A|| "},     // four in a row are two blanks
        {"A\f\f\f\f\fS", "A|| "},   // and so are five
        {"A\f1\f\f2\f\fS\fS", "A||1"},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(single({row.line}, "A"), row.single) << row.line;
        EXPECT_THAT(list({row.line, "B\f2\fN"}), ElementsAre("B||2")) << row.line;
        EXPECT_THAT(inBlock({row.line, "B\f2\fN"}, {"A", "B"}), ElementsAre("null", "B||2")) << row.line;
    }
}

TEST_F(VirtualAttributes, PassOverTheApplicationsNameAsItIsSpelled) {
    const Texts lines = {"TVO_RZ_ATT_VIRTUAL", "tvo_rz_att_virtual"};
    EXPECT_EQ(single(lines, "TVO_RZ_ATT_VIRTUAL"), "null");
    EXPECT_EQ(single(lines, "tvo_rz_att_virtual"), "tvo_rz_att_virtual||")
        << "only the exact name is passed over";
    EXPECT_THAT(list(lines), IsEmpty());
    EXPECT_THAT(inBlock(lines, {"TVO_RZ_ATT_VIRTUAL", "tvo_rz_att_virtual"}), ElementsAre("null", "null"));
}

// --- all lines ---

struct Flag {
    const char* written;
    bool list, others;
};

TEST_F(VirtualAttributes, ReadTheFlagEachInItsWay) {
    for (const Flag& flag : {Flag{"S", true, true}, Flag{"s", false, true}, Flag{"N", false, false},
                             Flag{"n", false, false}, Flag{"SIM", false, false}, Flag{" S", false, false}}) {
        const Texts lines = {std::string("A\f1\f") + flag.written};
        EXPECT_EQ(single(lines, "A"), flag.others ? "A||1|i" : "A||1") << flag.written;
        EXPECT_THAT(inBlock(lines, {"A"}), ElementsAre(flag.others ? "A||1|i" : "A||1")) << flag.written;
        EXPECT_THAT(list(lines), ElementsAre(flag.list ? "A||1|i" : "A||1")) << flag.written;
    }
}

TEST_F(VirtualAttributes, InListsAndBlocksHaveExactlyThreeFields) {
    const Texts lines = {"A", "B\f1", "C\f1\fN", "D\f1\f2\fN", "", "\f", "C\f2\fS"};
    EXPECT_THAT(list(lines), ElementsAre("C||1", "C||2|i"));
    EXPECT_THAT(inBlock(lines, {"A", "B", "C", "D"}), ElementsAre("null", "null", "C||2|i", "null"));
}

TEST_F(VirtualAttributes, AreReadFromItemsOfAnyKind) {
    OdSmartPtr<OdResBuf> chain = chainOf({});
    chain->last()->append(OdResBuf::newRb(1071, 12));
    chain->last()->append(OdResBuf::newRb(1040, 1.5));
    chain->last()->append(OdResBuf::newRb(1070, od("A\f1\fS")));
    FoundList found;
    EXPECT_EQ(m_cad.SearchAttributesVirtual(chain, found.slot()), 0);
    EXPECT_THAT(found.told(), ElementsAre("A||1|i"));
}

TEST_F(VirtualAttributes, OfAChainReplaceTheListWithoutFreeingIt) {
    FoundList first, second;
    EXPECT_EQ(m_cad.SearchAttributesVirtual(chainOf({"A\f1\fN"}), first.slot()), 0);
    CEListaAtributos* result = first.get();
    EXPECT_EQ(m_cad.SearchAttributesVirtual(OdSmartPtr<OdResBuf>(), result), 0);
    second.slot() = result;
    EXPECT_NE(second.get(), first.get());
    EXPECT_THAT(second.told(), IsEmpty());
    EXPECT_THAT(first.told(), ElementsAre("A||1"));
}

TEST_F(VirtualAttributes, OfAnIdGiveOneOnlyWhenItCantBeOpened) {
    OdSmartPtr<OdDbPoint> bare = make(new OdDbPoint);
    append(m_db.getModelSpaceId(), bare);
    FoundList found;
    EXPECT_EQ(m_cad.SearchAttributesVirtual(RZID(bare->objectId()), found.slot()), 0);
    EXPECT_THAT(found.told(), IsEmpty());
    const OdDbObjectId gone = carrier({"A\f1\fN"});
    erase(gone);
    for (const RZID& id : {RZID(), RZID(gone)}) {
        CEListaAtributos* result = found.get();
        EXPECT_EQ(m_cad.SearchAttributesVirtual(id, result), 1);
        EXPECT_EQ(result, found.get());
    }
}

TEST_F(VirtualAttributes, IntoABlockGiveOneForANullIdOrBlock) {
    CEBloco bloco("B");
    const OdDbObjectId id = carrier({"A\f1\fN"});
    EXPECT_EQ(m_cad.SearchAttributesVirtual(RZID(), &bloco), 1);
    EXPECT_EQ(m_cad.SearchAttributesVirtual(RZID(id), static_cast<CEBloco*>(nullptr)), 1);
    erase(id);
    EXPECT_EQ(m_cad.SearchAttributesVirtual(RZID(id), &bloco), 0) << "erased, but no null id";
    EXPECT_EQ(bloco.GetAtributo("A"), nullptr);
}

TEST_F(VirtualAttributes, IntoABlockReplaceEarlierOnesAndLeaveNothingBehind) {
    const OdDbObjectId id = carrier({"A\f1\fN", "A\f2\fN", "A\f3\fN"});
    const std::unique_ptr<CEAtributo> old(
        new CEAtributo(od("A"), OdString(), od("old"), OdDbObjectId(), false));
    const std::size_t before = lm::drawing::liveBlocks();
    auto* bloco = new CEBloco("B");
    bloco->AdicionarAtributo(old.get());
    EXPECT_EQ(m_cad.SearchAttributesVirtual(RZID(id), bloco), 0);
    EXPECT_EQ(told(bloco->GetAtributo("A")), "A||3");
    EXPECT_EQ(told(old.get()), "A||old");
    destroy(bloco, {"A"});
    EXPECT_EQ(lm::drawing::liveBlocks(), before);
}

TEST_F(VirtualAttributes, ReadWhatAFileBrings) {
    const std::string file = "0\nSECTION\n2\nHEADER\n9\n$ACADVER\n1\nAC1032\n0\nENDSEC\n"
                             "0\nSECTION\n2\nENTITIES\n"
                             "0\nPOINT\n5\nA1\n100\nAcDbEntity\n8\n0\n100\nAcDbPoint\n10\n0\n20\n0\n"
                             "1001\nTVO_RZ_ATT_VIRTUAL\n1000\nTAG^L M1 ^LS\n1000\nNUMERO^L^LN\n"
                             "0\nPOINT\n5\nA2\n100\nAcDbEntity\n8\n0\n100\nAcDbPoint\n10\n0\n20\n0\n"
                             "1001\nTVO_RZ_ATT_VIRTUAL\n"
                             "0\nENDSEC\n0\nEOF\n";
    CHostDatabase read(CHostDatabase::kNothing);
    lm::drawing::readMemory(read, file, "memory", {});
    setDatabase(&read);
    FoundList lines, none;
    EXPECT_EQ(m_cad.SearchAttributesVirtual(RZID(rz("A1")), lines.slot()), 0);
    EXPECT_EQ(m_cad.SearchAttributesVirtual(RZID(rz("A2")), none.slot()), 0);
    setDatabase(nullptr);
    EXPECT_THAT(lines.told(), ElementsAre("TAG|| M1 |i", "NUMERO|| "));
    EXPECT_THAT(none.told(), IsEmpty()) << "the application's name alone is no line";
}

// --- by role ---

struct Role {
    const char* name;
    RZString (*nameIn)(int language);
    CEAtributo* (CICad::*ofObject)(OdSmartPtr<OdDbObject>);
    CEAtributo* (CICad::*ofId)(RZID);
};

class VirtualRole : public CadDrawing, public testing::WithParamInterface<Role> {};

TEST_P(VirtualRole, IsFoundByItsNamesInTheOrderOfLanguages) {
    const Role& role = GetParam();
    const std::string one = plain(role.nameIn(1)), two = plain(role.nameIn(2)), three = plain(role.nameIn(3));
    for (const std::string& name : {one, two, three}) {
        const OdDbObjectId id = carrier({"X\f0\fN", name + "\fV\fN"});
        Found byObject, byId;
        byObject.slot() = (m_cad.*role.ofObject)(id.openObject());
        byId.slot() = (m_cad.*role.ofId)(RZID(id));
        EXPECT_EQ(byObject.told(), name + "||V");
        EXPECT_EQ(byId.told(), name + "||V");
    }
    Found first;
    first.slot() = (m_cad.*role.ofId)(RZID(carrier({two + "\f2\fN", one + "\f1\fN"})));
    EXPECT_EQ(first.told(), one + "||1");
    EXPECT_EQ((m_cad.*role.ofId)(RZID(carrier({"X\f0\fN"}))), nullptr);
    EXPECT_EQ((m_cad.*role.ofId)(RZID()), nullptr);
    EXPECT_EQ((m_cad.*role.ofObject)(OdSmartPtr<OdDbObject>()), nullptr);
}

INSTANTIATE_TEST_SUITE_P(
    EachRole, VirtualRole,
    testing::Values(Role{"Number", &CMensagem::getAttNumber, &CICad::SearchAttributeVirtualNumber,
                         &CICad::SearchAttributeVirtualNumber},
                    Role{"Strip", &CMensagem::getAttStrip, &CICad::SearchAttributeVirtualStrip,
                         &CICad::SearchAttributeVirtualStrip},
                    Role{"Tag", &CMensagem::getAttTag, &CICad::SearchAttributeVirtualTag,
                         &CICad::SearchAttributeVirtualTag}),
    [](const auto& row) { return std::string(row.param.name); });

// --- virtual blocks ---

class VirtualBlocks : public CadDrawing {
protected:
    /// Key and block's name of each entry; "null" for no map. The map ends here.
    std::vector<std::pair<std::string, std::string>> found(const char* pattern, const char* tag) {
        std::vector<std::pair<std::string, std::string>> all;
        std::map<lm::WideString, CEBloco*>* blocks = m_cad.BuscarBlocosVirtuais(rz(pattern), rz(tag));
        if (blocks == nullptr) return {{"null", ""}};
        for (const auto& [key, block] : *blocks) {
            all.emplace_back(lm::system::toUtf8(key), plain(block->GetNome()));
            m_ids.push_back(block->GetObjectId());
            destroy(block, {"TAG", "NUMERO"});
        }
        delete blocks;
        return all;
    }
    std::vector<RZID> m_ids;
};

TEST_F(VirtualBlocks, AreNullWithoutTheDictionary) {
    EXPECT_THAT(found("*", "TAG"), ElementsAre(Pair("null", "")));
    virtualBlocks();
    EXPECT_THAT(found("*", "TAG"), ElementsAre(Pair("null", "")))
        << "an empty dictionary has no name to match";
}

TEST_F(VirtualBlocks, StandUnderTheValueOfTheTagInPlainOrder) {
    const OdDbObjectId b = virtualBlock("k1", "MOTOR", {"TAG\fB\fN", "NUMERO\f1\fN"});
    const OdDbObjectId aa = virtualBlock("k2", "MOTOR", {"NUMERO\f2\fN", "TAG\fAA\fN"});
    EXPECT_THAT(found("MOTOR", "TAG"), ElementsAre(Pair("AA", "MOTOR"), Pair("B", "MOTOR")))
        << "not the shorter key first";
    EXPECT_EQ(m_ids, (std::vector<RZID>{RZID(aa), RZID(b)}));
}

TEST_F(VirtualBlocks, MatchThePatternAsItIsGiven) {
    virtualBlock("k1", "MOTOR", {"TAG\f1\fN"});
    virtualBlock("k2", "MOTOR_2", {"TAG\f2\fN"});
    virtualBlock("k3", "motor", {"TAG\f3\fN"});
    EXPECT_THAT(found("MOTOR", "TAG"), ElementsAre(Pair("1", "MOTOR")));
    EXPECT_THAT(found("MOTOR*", "TAG"), ElementsAre(Pair("1", "MOTOR"), Pair("2", "MOTOR_2")));
    EXPECT_THAT(found("MOT", "TAG"), ElementsAre(Pair("null", "")));
    EXPECT_THAT(found("", "TAG"), ElementsAre(Pair("null", "")));
}

TEST_F(VirtualBlocks, WithoutTheAttributeGiveAnEmptyMap) {
    virtualBlock("k1", "MOTOR", {"NUMERO\f1\fN"});
    EXPECT_THAT(found("MOTOR", "TAG"), IsEmpty());
    EXPECT_THAT(found("MOTOR", "numero"), IsEmpty()) << "the tag is exact";
    EXPECT_THAT(found("RELE", "TAG"), ElementsAre(Pair("null", "")));
}

TEST_F(VirtualBlocks, ReplaceEarlierOnesOfTheSameValue) {
    virtualBlock("k1", "MOTOR_1", {"TAG\fM\fN"});
    virtualBlock("k2", "MOTOR_2", {"TAG\fM\fN"});
    virtualBlock("k3", "MOTOR_3", {"NUMERO\fM\fN"});
    found("*", "TAG");
    const std::size_t before = lm::drawing::liveBlocks();
    EXPECT_THAT(found("MOTOR*", "TAG"), ElementsAre(Pair("M", "MOTOR_2")));
    EXPECT_EQ(lm::drawing::liveBlocks(), before)
        << "blocks that nobody gets are destroyed with their records";
}

TEST_F(VirtualBlocks, TakeTheirNameFromTheSecondItemUnderCodeTwo) {
    virtualBlock("k1", "OTHER", {"TAG\f1\fN"}, 3);
    OdSmartPtr<OdDbXrecord> lone = make(new OdDbXrecord);
    lone->setFromRbChain(OdResBuf::newRb(2, od("FIRST")));
    lone->setXData(chainOf({"TAG\f2\fN"}));
    virtualBlocks()->setAt(od("k2"), lone);
    OdSmartPtr<OdDbXrecord> bare = make(new OdDbXrecord);
    bare->setXData(chainOf({"TAG\f3\fN"}));
    virtualBlocks()->setAt(od("k3"), bare);
    EXPECT_THAT(found("*", "TAG"), ElementsAre(Pair("1", ""), Pair("2", ""), Pair("3", "")));
    EXPECT_THAT(found("", "TAG"), ElementsAre(Pair("1", ""), Pair("2", ""), Pair("3", "")));
    EXPECT_THAT(found("?*", "TAG"), ElementsAre(Pair("null", "")));
}

TEST_F(VirtualBlocks, AreRecordsAndNoOtherEntries) {
    OdSmartPtr<OdDbDictionary> inner = make(new OdDbDictionary);
    inner->setXData(chainOf({"TAG\f1\fN"}));
    virtualBlocks()->setAt(od("k1"), inner);
    erase(virtualBlock("k2", "MOTOR", {"TAG\f2\fN"}));
    EXPECT_THAT(found("*", "TAG"), ElementsAre(Pair("null", "")));
}

TEST_F(VirtualBlocks, TakeTheirKeyByTheNarrowRoute) {
    virtualBlock("k1", "MOTOR", {"TAG\fµΩ\fN"});
    EXPECT_THAT(found("*", "TAG"), ElementsAre(Pair("µ?", "MOTOR")));
}

TEST_F(VirtualBlocks, NeedADatabase) {
    m_documents.manager.closeAll();
    EXPECT_EQ(m_cad.BuscarBlocosVirtuais(rz("*"), rz("TAG")), nullptr);
    EXPECT_FALSE(m_cad.isNoEsqVirtual(rz("1")));
}

// --- whether a component is there ---

TEST_F(VirtualBlocks, TellWhetherAComponentOfATagIsThere) {
    EXPECT_FALSE(m_cad.isNoEsqVirtual(rz("M1"))) << "no dictionary";
    virtualBlock("k1", "A", {"NUMERO\fM1\fN"});
    EXPECT_FALSE(m_cad.isNoEsqVirtual(rz("M1")));
    virtualBlock("k2", "A", {"tag\fm1\fN"});
    virtualBlock("k3", "A", {"RELACAO\f M2\fN", "TAG\fM3\fN"});
    virtualBlock("k4", "A", {"ETIQUETA\fM4\fN\fN", "ETIQUETA\fM5\fN"});
    EXPECT_TRUE(m_cad.isNoEsqVirtual(rz("M1")));
    EXPECT_FALSE(m_cad.isNoEsqVirtual(rz("M2"))) << "values aren't trimmed";
    EXPECT_TRUE(m_cad.isNoEsqVirtual(rz(" m2")));
    EXPECT_FALSE(m_cad.isNoEsqVirtual(rz("M3"))) << "the first attribute of the role counts";
    EXPECT_FALSE(m_cad.isNoEsqVirtual(rz("M4"))) << "four fields are no line";
    EXPECT_TRUE(m_cad.isNoEsqVirtual(rz("M5")));
    erase(virtualBlocks()->getAt(od("k4")));
    EXPECT_FALSE(m_cad.isNoEsqVirtual(rz("M5")));
}

TEST_F(VirtualBlocks, TellItOfEntriesOfAnyKindAndLeaveNoList) {
    OdSmartPtr<OdDbDictionary> inner = make(new OdDbDictionary);
    inner->setXData(chainOf({"TAG\fM1\fN"}));
    virtualBlocks()->setAt(od("k0"), make(new OdDbXrecord));
    virtualBlocks()->setAt(od("k1"), inner);
    EXPECT_TRUE(m_cad.isNoEsqVirtual(rz("M1")));
    const std::size_t before = lm::drawing::liveBlocks();
    EXPECT_TRUE(m_cad.isNoEsqVirtual(rz("M1")));
    EXPECT_FALSE(m_cad.isNoEsqVirtual(rz("M2")));
    EXPECT_EQ(lm::drawing::liveBlocks(), before);
}

} // namespace
