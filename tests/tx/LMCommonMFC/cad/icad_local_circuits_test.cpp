// SPDX-License-Identifier: MIT
// Local circuits: numbers out of a drawing, and what is asked of an owner that the test plays itself.
#include "stored_data.h"

#include "drawing/writer.h"
#include "host/functions.h"

#include <gmock/gmock.h>

#include <functional>
#include <stdexcept>

#include <malloc.h>

namespace {

using namespace lm::tests;
using lm::host::FunctionRegistration;
using lm::host::newRecord;
using testing::ElementsAre;
using testing::IsEmpty;

/// A record of a result: a text, a number as RTSHORT, or a bare type.
struct Item {
    Item(const char* text) : type(RTSTR), text(text) {}
    Item(int number) : type(RTSHORT), number(static_cast<short>(number)) {}
    Item(HostRecordType type) : type(type) {}
    HostRecordType type;
    const char* text = nullptr;
    short number = 0;
};
using Items = std::vector<Item>;

hst_resbufW* chain(const Items& items) {
    hst_resbufW* head = nullptr;
    for (std::size_t i = items.size(); i-- > 0;) {
        hst_resbufW* record = nullptr;
        if (items[i].type == RTSTR && items[i].text != nullptr)
            record = lm::test::textRecord(items[i].text);
        else
            record = newRecord(items[i].type);
        if (items[i].type == RTSHORT) record->value.int16 = items[i].number;
        record->rbnext = head;
        head = record;
    }
    return head;
}

/// The arguments of a call, as in "5005:abc 5002:1,2,0".
std::string toldArguments(const hst_resbufW* list) {
    std::string line;
    for (; list != nullptr; list = list->rbnext) {
        line += (line.empty() ? "" : " ") + std::to_string(list->restype);
        if (list->restype == RTSTR) line += ":" + plain(CHostString(list->value.text));
        if (list->restype == RTSHORT) line += ":" + std::to_string(list->value.int16);
        if (list->restype != RTPOINT) continue;
        for (int i = 0; i < 3; ++i)
            line += (i == 0 ? ":" : ",") + std::to_string(static_cast<int>(list->value.point[i] * 10));
    }
    return line;
}

/// The owner of the circuits: one function that notes its arguments and answers as it was told.
class Owner {
public:
    Owner(const char* name, Items answer, bool answers = true)
        : m_answer(std::move(answer)), m_registration(name, [this, answers](CHostAPI& api) {
              hst_resbufW* const arguments = api.getArgs();
              calls.push_back(toldArguments(arguments));
              api.relRb(arguments);
              if (answers) api.retList(chain(m_answer));
          }) {}
    Texts calls;

private:
    Items m_answer;
    FunctionRegistration m_registration;
};

class LocalCircuits : public StoredData {
protected:
    /// Gives an object a number.
    void number(OdDbObjectId object, int value) {
        enroll("TVO_RZ_CIRCLOC");
        const Chain data = OdResBuf::newRb(1001, od("TVO_RZ_CIRCLOC"));
        data->append(OdResBuf::newRb(1071, value));
        object.openObject(OdDb::kForWrite)->setXData(data);
    }
    std::string texts() const { return plain(a) + "|" + plain(b) + "|" + plain(c); }

    const OdDbObjectId m_schematic = point(), m_panel = point();
    RZString a = "a", b = "b", c = "c";
    int n = 77;
};

// --- the number of a component ---

TEST_F(LocalCircuits, HaveTheirNumberOnTheSchematicObject) {
    number(m_schematic, 123456);
    number(m_panel, 5);
    give(m_panel, "TVO_LAYOUT_PAINEL", {handle(m_schematic)});
    EXPECT_TRUE(m_cad.buscaCircuitoLocal(read(m_panel), n));
    EXPECT_EQ(n, 123456) << "not the number that the appearance bears itself";
    number(m_schematic, -4);
    EXPECT_TRUE(m_cad.buscaCircuitoLocal(read(m_schematic), n));
    EXPECT_EQ(n, -4);
}

TEST_F(LocalCircuits, WithoutANumberAreTheFirst) {
    EXPECT_TRUE(m_cad.buscaCircuitoLocal(read(m_schematic), n));
    EXPECT_EQ(n, 1);
    give(m_schematic, "TVO_RZ_CIRCLOC", {});
    n = 77;
    EXPECT_TRUE(m_cad.buscaCircuitoLocal(read(m_schematic), n));
    EXPECT_EQ(n, 1) << "a mark without a record";
}

TEST_F(LocalCircuits, HaveANumberWhateverTheRecordHolds) {
    give(m_schematic, "TVO_RZ_CIRCLOC", {"12 or so", "9"});
    EXPECT_TRUE(m_cad.buscaCircuitoLocal(read(m_schematic), n));
    EXPECT_EQ(n, 12);
    give(m_schematic, "TVO_RZ_CIRCLOC", {"none"});
    EXPECT_TRUE(m_cad.buscaCircuitoLocal(read(m_schematic), n));
    EXPECT_EQ(n, 0);
}

TEST_F(LocalCircuits, OfAComponentThatCannotBeOpenedAreNotKnown) {
    EXPECT_FALSE(m_cad.buscaCircuitoLocal(OdSmartPtr<OdDbObject>(), n));
    EXPECT_FALSE(m_cad.buscaCircuitoLocal(make(new OdDbPoint), n)) << "outside a drawing";
    give(m_panel, "TVO_LAYOUT_PAINEL", {handle(m_schematic)});
    erase(m_schematic);
    EXPECT_FALSE(m_cad.buscaCircuitoLocal(read(m_panel), n)) << "the link leads to an erased object";
    EXPECT_EQ(n, 77);
}

TEST_F(LocalCircuits, OfAnAppearanceWhoseSchematicObjectIsUnknownAreItsOwn) {
    give(m_panel, "TVO_LAYOUT_PAINEL", {"FFFFF"});
    EXPECT_TRUE(m_cad.buscaCircuitoLocal(read(m_panel), n));
    EXPECT_EQ(n, 1);
    number(m_panel, 5);
    EXPECT_TRUE(m_cad.buscaCircuitoLocal(read(m_panel), n));
    EXPECT_EQ(n, 5);
}

TEST_F(LocalCircuits, OfAnErasedSchematicObjectAreTheAppearancesOwnOnceTheDrawingIsReadAgain) {
    give(m_panel, "TVO_LAYOUT_PAINEL", {handle(m_schematic)});
    number(m_schematic, 9);
    number(m_panel, 5);
    const OdDbObjectId other = point();
    give(other, "TVO_RZ_UNIFILAR", {handle(m_schematic)});
    erase(m_schematic);
    EXPECT_FALSE(m_cad.buscaCircuitoLocal(read(m_panel), n));
    EXPECT_EQ(n, 77);
    const lm::test::TemporaryFolder folder;
    const OdString path = lm::test::odPath((folder.path() / "saved.dxf").string());
    const OdDbHandle panelHandle = m_panel.getHandle(), otherHandle = other.getHandle();
    lm::drawing::saveDrawing(m_db, path);
    m_documents.manager.openDocument(path);
    EXPECT_TRUE(m_cad.buscaCircuitoLocal(read(RZID(panelHandle)), n));
    EXPECT_EQ(n, 5);
    EXPECT_TRUE(m_cad.buscaCircuitoLocal(read(RZID(otherHandle)), n));
    EXPECT_EQ(n, 1);
}

TEST_F(LocalCircuits, AreReadFromObjectsThatAreOpenForReading) {
    const Owner owner("rzGetCircuitoLocalInfo", {RTLB, "1", "2", "3"});
    give(m_panel, "TVO_LAYOUT_PAINEL", {handle(m_schematic)});
    number(m_schematic, 9);
    const OdSmartPtr<OdDbObject> schematic = read(m_schematic), panel = read(m_panel);
    schematic->downgradeOpen();
    panel->downgradeOpen();
    EXPECT_TRUE(m_cad.buscaCircuitoLocal(panel, n));
    EXPECT_TRUE(m_cad.buscaCircuitoLocal(RZID(m_panel), a, b, c));
    EXPECT_EQ(m_cad.buscaTodosBlocosComCircuitoLocal().size(), 1u);
    EXPECT_FALSE(schematic->isWriteEnabled());
    EXPECT_FALSE(panel->isWriteEnabled());
}

// --- the texts of a circuit ---

TEST_F(LocalCircuits, HaveTheTextsThatTheOwnerTells) {
    Owner owner("rzGetCircuitoLocalInfo", {RTLB, "One Ω", "", "Three", "Four"});
    EXPECT_TRUE(m_cad.buscaCircuitoLocal(7, a, b, c));
    EXPECT_EQ(texts(), "One Ω||Three");
    EXPECT_TRUE(m_cad.buscaCircuitoLocal(70000, a, b, c));
    EXPECT_THAT(owner.calls, ElementsAre("5003:7", "5003:4464")) << "sixteen bits travel";
}

TEST_F(LocalCircuits, KeepTheCallersTextsWithoutAProperAnswer) {
    const Items answers[] = {
        {RTNIL},
        {RTT},
        {"1", "2", "3"},
        {RTLB},
        {RTLB, "1", "2"},
        {RTLB, "1", "2", RTLE},
        {RTLB, "1", "2", 3},
        {RTLB, 1, "2", "3"},
        {RTLB, RTLB, "1", "2", "3", RTLE},
        {7, "1", "2", "3"},
    };
    for (const Items& answer : answers) {
        const Owner owner("rzGetCircuitoLocalInfo", answer);
        EXPECT_FALSE(m_cad.buscaCircuitoLocal(1, a, b, c)) << toldArguments(chain(answer));
        EXPECT_EQ(texts(), "a|b|c") << answer.size();
    }
    const Owner mute("rzGetCircuitoLocalInfo", {}, false);
    EXPECT_FALSE(m_cad.buscaCircuitoLocal(1, a, b, c));
    EXPECT_EQ(texts(), "a|b|c");
}

TEST_F(LocalCircuits, MayHaveATextThatIsNoText) {
    Items answer = {RTLB, "1", RTSTR, "3"}; // the second record has a null pointer
    const Owner owner("rzGetCircuitoLocalInfo", answer);
    EXPECT_TRUE(m_cad.buscaCircuitoLocal(1, a, b, c));
    EXPECT_EQ(texts(), "1||3");
}

TEST_F(LocalCircuits, OfAComponentAreAskedForByItsNumber) {
    Owner owner("rzGetCircuitoLocalInfo", {RTLB, "1", "2", "3"});
    number(m_schematic, 9);
    give(m_panel, "TVO_RZ_UNIFILAR", {handle(m_schematic)});
    EXPECT_TRUE(m_cad.buscaCircuitoLocal(read(m_panel), a, b, c));
    EXPECT_EQ(texts(), "1|2|3");
    EXPECT_TRUE(m_cad.buscaCircuitoLocal(read(m_panel), a, b, c, n));
    EXPECT_EQ(n, 9);
    EXPECT_TRUE(m_cad.buscaCircuitoLocal(RZID(m_panel), a, b, c));
    EXPECT_TRUE(m_cad.buscaCircuitoLocal(RZID(point()), a, b, c));
    EXPECT_THAT(owner.calls, ElementsAre("5003:9", "5003:9", "5003:9", "5003:1"));
}

TEST_F(LocalCircuits, OfNoComponentAreNotAskedFor) {
    Owner owner("rzGetCircuitoLocalInfo", {RTLB, "1", "2", "3"});
    EXPECT_FALSE(m_cad.buscaCircuitoLocal(OdSmartPtr<OdDbObject>(), a, b, c));
    EXPECT_FALSE(m_cad.buscaCircuitoLocal(OdSmartPtr<OdDbObject>(), a, b, c, n));
    EXPECT_FALSE(m_cad.buscaCircuitoLocal(RZID(), a, b, c));
    const OdDbObjectId gone = point();
    erase(gone);
    EXPECT_FALSE(m_cad.buscaCircuitoLocal(RZID(gone), a, b, c));
    EXPECT_THAT(owner.calls, IsEmpty());
    EXPECT_EQ(texts(), "a|b|c");
    EXPECT_EQ(n, 77) << "the caller's number is left alone in every form that hands it out";
}

TEST_F(LocalCircuits, HaveANumberEvenWithoutTexts) {
    number(m_schematic, 9);
    EXPECT_FALSE(m_cad.buscaCircuitoLocal(read(m_schematic), a, b, c, n));
    EXPECT_EQ(n, 9);
    EXPECT_EQ(texts(), "a|b|c");
}

TEST_F(LocalCircuits, OfAnIdNeedACurrentDatabase) {
    Owner owner("rzGetCircuitoLocalInfo", {RTLB, "1", "2", "3"});
    CHostDatabase elsewhere;
    const RZID layer = elsewhere.getLayerZeroId();
    EXPECT_TRUE(m_cad.buscaCircuitoLocal(layer, a, b, c)) << "of any drawing while there is a current one";
    m_documents.manager.closeAll();
    EXPECT_FALSE(m_cad.buscaCircuitoLocal(layer, a, b, c));
    EXPECT_EQ(owner.calls.size(), 1u);
}

// --- all components with a number ---

TEST_F(LocalCircuits, AreFoundOnTheEntitiesThemselves) {
    const OdDbObjectId first = point(), gone = point(), last = point(), linked = point();
    number(last, 2);
    number(first, 3);
    number(gone, 4);
    number(m_schematic, 5);
    give(linked, "TVO_LAYOUT_PAINEL", {handle(m_schematic)});
    give(m_panel, "TVO_RZ", {"mark"});
    const OdDbObjectId lone = point();
    give(lone, "TVO_RZ_CIRCLOC", {});
    erase(gone);
    const OdDbObjectId inBlock = append(block("B"), make(new OdDbPoint));
    number(inBlock, 6);
    number(m_db.getLayerZeroId(), 7);
    std::vector<OdDbObjectId> found;
    for (const auto& each : m_cad.buscaTodosBlocosComCircuitoLocal()) found.push_back(each->objectId());
    EXPECT_THAT(found, ElementsAre(m_schematic, first, last, lone)) << "in drawing order";
}

TEST_F(LocalCircuits, AreNoneWithoutAModelSpace) {
    EXPECT_THAT(m_cad.buscaTodosBlocosComCircuitoLocal(), IsEmpty());
    CHostDatabase bare(CHostDatabase::kNothing);
    setDatabase(&bare);
    EXPECT_THAT(m_cad.buscaTodosBlocosComCircuitoLocal(), IsEmpty());
    setDatabase(nullptr);
    m_documents.manager.closeAll();
    EXPECT_THAT(m_cad.buscaTodosBlocosComCircuitoLocal(), IsEmpty());
}

// --- all circuits ---

/// What the listing gives, as "1=a,b; 2=c; ", or "null".
std::string listing(CICad& cad) {
    using Map = std::map<int, std::list<RZString>*>;
    const std::unique_ptr<Map> all(cad.buscaTodosCircuitosLocais());
    if (all == nullptr) return "null";
    std::string told;
    for (const auto& [number, list] : *all) {
        const std::unique_ptr<std::list<RZString>> texts(list);
        told += std::to_string(number) + "=";
        for (const RZString& text : *texts) told += plain(text) + ",";
        told += "; ";
    }
    return told;
}

TEST_F(LocalCircuits, AreListedByNumber) {
    struct Case {
        const char* what;
        Items answer;
        const char* listed;
    };
    const Case cases[] = {
        {"two", {RTLB, RTLB, 2, "c", RTLE, RTLB, 1, "a", "b Ω", RTLE, RTLE}, "1=a,b Ω,; 2=c,; "},
        {"as the owner leaves the end open", {RTLB, RTLB, 2, "c", RTLE, RTLB, 1, "a", RTLE}, "1=a,; 2=c,; "},
        {"none", {RTLB}, "null"},
        {"none, closed", {RTLB, RTLE}, "null"},
        {"a nil", {RTNIL}, "null"},
        {"no list", {"a", RTLB, 1, "a", RTLE}, "null"},
        {"a number without opening", {RTLB, 1, "a", RTLE}, "null"},
        {"twice", {RTLB, RTLB, 1, "first", RTLE, RTLB, 1, "second", RTLE}, "1=first,; "},
        {"no text", {RTLB, RTLB, 1, RTLE, RTLB, 2, "a", RTLE}, "2=a,; "},
        {"no text, then with text", {RTLB, RTLB, 1, RTLE, RTLB, 1, "a", RTLE}, "1=a,; "},
        {"an empty text", {RTLB, RTLB, 1, "", RTLE}, "1=,; "},
        {"a text without a pointer", {RTLB, RTLB, 1, RTSTR, RTLE}, "1=,; "},
        {"other types between", {RTLB, RTLB, 1, 8, "a", RTNIL, RTT, "b", RTLE}, "1=a,b,; "},
        {"a number below 0", {RTLB, RTLB, -3, "a", RTLE}, "-3=a,; "},
        {"strange records between",
         {RTLB, "x", RTT, RTLB, 1, "a", RTLE, 5, RTLB, 2, "b", RTLE},
         "1=a,; 2=b,; "},
        {"an opening without number", {RTLB, RTLB, "x", RTLE, RTLB, 2, "b", RTLE}, "2=b,; "},
        {"two openings", {RTLB, RTLB, RTLB, 2, "b", RTLE}, "2=b,; "},
        {"an opening at the end", {RTLB, RTLB, 2, "b", RTLE, RTLB}, "2=b,; "},
        {"a number at the end", {RTLB, RTLB, 2, "b", RTLE, RTLB, 3}, "2=b,; "},
        {"an opening inside", {RTLB, RTLB, 1, "a", RTLB, 2, "b", RTLE, RTLE}, "1=a,b,; "},
        {"without end", {RTLB, RTLB, 1, "a", "b"}, "1=a,b,; "},
    };
    for (const Case& each : cases) {
        Owner owner("rzGetAllCircuitosLocaisInfo", each.answer);
        EXPECT_EQ(listing(m_cad), each.listed) << each.what;
        EXPECT_THAT(owner.calls, ElementsAre("")) << "no arguments";
    }
    EXPECT_EQ(listing(m_cad), "null") << "nobody answers";
    const Owner mute("rzGetAllCircuitosLocaisInfo", {}, false);
    EXPECT_EQ(listing(m_cad), "null");
}

// --- what is only passed on ---

TEST_F(LocalCircuits, ArePassedOnAsTheyStand) {
    Owner update("rzAtualizarSimbCircuitoLocal", {RTT}), clear("rzClearCircLocal", {RTT}),
        erased("rzProcessarRegiaoApagada", {RTT}), at("rzGetCircuitoLocalLocation", {12});
    EXPECT_TRUE(m_cad.atualizarCiruitoLocal("one", OdGePoint2d(1.5, -2.5), rz("twö")));
    EXPECT_TRUE(m_cad.clearCircLocal());
    EXPECT_TRUE(m_cad.processaRegiaoApagada(""));
    EXPECT_TRUE(m_cad.findCircuitoLocalLocation("page", OdGePoint2d(3, 4), n));
    EXPECT_EQ(n, 12);
    EXPECT_THAT(update.calls, ElementsAre("5005:one 5002:15,-25,0 5005:twö"));
    EXPECT_THAT(clear.calls, ElementsAre(""));
    EXPECT_THAT(erased.calls, ElementsAre("5005:"));
    EXPECT_THAT(at.calls, ElementsAre("5005:page 5002:30,40,0"));
}

TEST_F(LocalCircuits, AreRefusedByNilAndByNoAnswer) {
    const auto ask = [&] {
        return Texts{m_cad.atualizarCiruitoLocal("x", OdGePoint2d(), "y") ? "T" : "F",
                     m_cad.clearCircLocal() ? "T" : "F", m_cad.processaRegiaoApagada("x") ? "T" : "F"};
    };
    EXPECT_THAT(ask(), ElementsAre("F", "F", "F")) << "nobody registered";
    struct Case {
        Items answer;
        bool answers;
        const char* taken;
    };
    const Case cases[] = {{{RTNIL}, true, "F"}, {{}, false, "F"},      {{RTT}, true, "T"},
                          {{0}, true, "T"},     {{"text"}, true, "T"}, {{RTLB, RTLE}, true, "T"}};
    for (const Case& each : cases) {
        const Owner update("rzAtualizarSimbCircuitoLocal", each.answer, each.answers),
            clear("rzClearCircLocal", each.answer, each.answers),
            erased("rzProcessarRegiaoApagada", each.answer, each.answers);
        EXPECT_THAT(ask(), ElementsAre(each.taken, each.taken, each.taken));
    }
}

TEST_F(LocalCircuits, OfAPlaceAreReadWithoutAskingForTheType) {
    EXPECT_FALSE(m_cad.findCircuitoLocalLocation("x", OdGePoint2d(), n)) << "nobody registered";
    EXPECT_EQ(n, 77);
    {
        const Owner mute("rzGetCircuitoLocalLocation", {}, false);
        EXPECT_FALSE(m_cad.findCircuitoLocalLocation("x", OdGePoint2d(), n));
        EXPECT_EQ(n, 77);
    }
    for (const auto& [answer, number] :
         {std::pair<Items, int>{{-3}, -3}, {{RTNIL}, 0}, {{RTLB, 4}, 0}, {{RTT}, 0}}) {
        const Owner owner("rzGetCircuitoLocalLocation", answer);
        n = 77;
        EXPECT_TRUE(m_cad.findCircuitoLocalLocation("x", OdGePoint2d(), n));
        EXPECT_EQ(n, number);
    }
    const FunctionRegistration nil("rzGetCircuitoLocalLocation", [](CHostAPI& api) { api.retNil(); });
    n = 77;
    EXPECT_TRUE(m_cad.findCircuitoLocalLocation("x", OdGePoint2d(), n));
    EXPECT_EQ(n, 0) << "the host's own nil";
}

TEST_F(LocalCircuits, AreNotAskedForWithoutADocument) {
    std::vector<std::unique_ptr<Owner>> owners;
    for (const char* name :
         {"rzAtualizarSimbCircuitoLocal", "rzClearCircLocal", "rzProcessarRegiaoApagada",
          "rzGetCircuitoLocalLocation", "rzGetCircuitoLocalInfo", "rzGetAllCircuitosLocaisInfo"})
        owners.push_back(std::make_unique<Owner>(name, Items{RTLB, "1", "2", "3"}));
    m_documents.manager.closeAll();
    EXPECT_FALSE(m_cad.atualizarCiruitoLocal("x", OdGePoint2d(), "y"));
    EXPECT_FALSE(m_cad.clearCircLocal());
    EXPECT_FALSE(m_cad.processaRegiaoApagada("x"));
    EXPECT_FALSE(m_cad.findCircuitoLocalLocation("x", OdGePoint2d(), n));
    EXPECT_FALSE(m_cad.buscaCircuitoLocal(1, a, b, c));
    EXPECT_EQ(listing(m_cad), "null");
    EXPECT_EQ(n, 77);
    EXPECT_EQ(texts(), "a|b|c");
    for (const auto& owner : owners) EXPECT_THAT(owner->calls, IsEmpty());
}

/// The records of a call end with it, so what a function keeps must be its own copy.
TEST_F(LocalCircuits, LeaveTheFunctionItsOwnCopyOfTheArguments) {
    hst_resbufW* kept = nullptr;
    const FunctionRegistration keeping("rzProcessarRegiaoApagada",
                                       [&](CHostAPI& api) { kept = api.getArgs(); });
    EXPECT_FALSE(m_cad.processaRegiaoApagada("a text that is long enough to stand on the heap"));
    ASSERT_NE(kept, nullptr);
    EXPECT_EQ(toldArguments(kept), "5005:a text that is long enough to stand on the heap");
    lm::host::releaseChain(kept);
}

TEST_F(LocalCircuits, LeaveNoRecordBehind) {
    const Owner info("rzGetCircuitoLocalInfo", {RTLB, "1", "2", "3"}),
        all("rzGetAllCircuitosLocaisInfo", {RTLB, RTLB, 1, "a", RTLE, RTLB, 1, "b", RTLE}),
        at("rzGetCircuitoLocalLocation", {RTLB, "x"}), clear("rzClearCircLocal", {"x", "y"}),
        update("rzAtualizarSimbCircuitoLocal", {"x", "y"}), erased("rzProcessarRegiaoApagada", {RTLB, RTLE});
    const auto askAll = [&] {
        m_cad.buscaCircuitoLocal(1, a, b, c);
        listing(m_cad);
        m_cad.findCircuitoLocalLocation("x", OdGePoint2d(), n);
        m_cad.clearCircLocal();
        m_cad.atualizarCiruitoLocal("x", OdGePoint2d(), "y");
        m_cad.processaRegiaoApagada("x");
    };
    askAll();
    const std::size_t before = lm::drawing::liveBlocks();
    askAll();
    EXPECT_EQ(lm::drawing::liveBlocks(), before);
}

#ifndef __SANITIZE_ADDRESS__ // its allocator tells no sizes; there the leak checker looks at these copies
/// Other than the calls that take texts alone, these don't leave the copies of their texts behind.
TEST_F(LocalCircuits, LeaveNoTextOfACallBehind) {
    const FunctionRegistration update("rzAtualizarSimbCircuitoLocal", [](CHostAPI&) {}),
        erased("rzProcessarRegiaoApagada", [](CHostAPI&) {}),
        at("rzGetCircuitoLocalLocation", [](CHostAPI&) {});
    const RZString text(0, 10000);
    const std::function<void()> calls[] = {
        [&] { m_cad.atualizarCiruitoLocal(text, OdGePoint2d(), text); },
        [&] { m_cad.processaRegiaoApagada(text); },
        [&] { m_cad.findCircuitoLocalLocation(text, OdGePoint2d(), n); },
    };
    const auto used = [] {
        const struct mallinfo2 memory = ::mallinfo2();
        return memory.uordblks + memory.hblkhd;
    };
    for (const auto& call : calls) {
        call();
        const std::size_t before = used();
        for (int i = 0; i < 10; ++i) call();
        EXPECT_LT(used(), before + 10000 * sizeof(unsigned short)) << &call - calls;
    }
}
#endif

// --- failures ---

TEST_F(LocalCircuits, ReportAFailureUnderAnObjectAndPassTheOthersOn) {
    const FunctionRegistration failing("rzGetCircuitoLocalInfo",
                                       [](CHostAPI&) { throw std::runtime_error("no"); });
    const auto raising = [](const char* function) {
        return FunctionRegistration(function, [](CHostAPI&) { throw OdError(OdString("no")); });
    };
    const FunctionRegistration others[] = {
        raising("rzClearCircLocal"), raising("rzAtualizarSimbCircuitoLocal"),
        raising("rzProcessarRegiaoApagada"), raising("rzGetCircuitoLocalLocation"),
        raising("rzGetAllCircuitosLocaisInfo")};
    const auto linesOf = [](auto&& run) {
        const lm::test::LogCapture log;
        EXPECT_ANY_THROW(run());
        Texts names;
        for (const std::string& line : log.lines()) {
            const std::size_t from = line.find("} ") + 2;
            names.push_back(line.substr(from, line.find(" : ") - from));
        }
        return names;
    };
    const std::string name = "CICad::buscaCircuitoLocal";
    EXPECT_THAT(linesOf([&] { m_cad.buscaCircuitoLocal(1, a, b, c); }), IsEmpty());
    EXPECT_THAT(linesOf([&] { m_cad.clearCircLocal(); }), IsEmpty());
    EXPECT_THAT(linesOf([&] { m_cad.atualizarCiruitoLocal("x", OdGePoint2d(), "y"); }), IsEmpty());
    EXPECT_THAT(linesOf([&] { m_cad.processaRegiaoApagada("x"); }), IsEmpty());
    EXPECT_THAT(linesOf([&] { m_cad.findCircuitoLocalLocation("x", OdGePoint2d(), n); }), IsEmpty());
    EXPECT_EQ(n, 77);
    EXPECT_THAT(linesOf([&] { m_cad.buscaTodosCircuitosLocais(); }), ElementsAre("rzInvoke2"))
        << "asked like any function of another module";
    EXPECT_THAT(linesOf([&] { m_cad.buscaCircuitoLocal(read(m_panel), a, b, c); }), ElementsAre(name));
    EXPECT_THAT(linesOf([&] { m_cad.buscaCircuitoLocal(read(m_panel), a, b, c, n); }), ElementsAre(name));
    EXPECT_THAT(linesOf([&] { m_cad.buscaCircuitoLocal(RZID(m_panel), a, b, c); }), ElementsAre(name));
    EXPECT_EQ(texts(), "a|b|c");
}

TEST_F(LocalCircuits, ReportADrawingThatCannotBeRead) {
    number(m_schematic, 3);
    const OdSmartPtr<OdDbObject> held = read(m_schematic);
    const lm::test::LogCapture log;
    n = 77;
    lm::drawing::failAllocationAfter(0);
    EXPECT_THROW(m_cad.buscaCircuitoLocal(held, n), std::bad_alloc);
    lm::drawing::failAllocationAfter(0);
    EXPECT_THROW(m_cad.buscaTodosBlocosComCircuitoLocal(), std::bad_alloc);
    lm::drawing::failAllocationAfter(-1);
    EXPECT_EQ(n, 77);
    ASSERT_EQ(log.lines().size(), 2u);
    EXPECT_NE(log.lines()[0].find("CICad::buscaCircuitoLocal : "), std::string::npos);
    EXPECT_NE(log.lines()[1].find("CICad::buscaTodosBlocosComCircuitoLocal : "), std::string::npos);
}

} // namespace
