// SPDX-License-Identifier: MIT
// Two real modules: the library asks for local circuits, the owner answers from the drawing.
#include "tx/LMCommonMFC/cad/stored_data.h"

#include "drawing/writer.h"
#include "host/functions.h"
#include "host/lisp.h"
#include "host/moduleloader.h"

#include <gmock/gmock.h>

#include <stdexcept>

namespace {

using namespace lm::tests;
using lm::host::AnswerList;
using lm::host::ModuleLoader;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* kModules[] = {"LMCommon_26.8_17.tx", "LMCommonMFC_26.8_17.tx", "LMCircuits_26.8_17.tx"};
constexpr const char* kFunctions[] = {"rzGetCircuitoLocalInfo",
                                      "rzGetAllCircuitosLocaisInfo",
                                      "rzAtualizarSimbCircuitoLocal",
                                      "rzGetCircuitoLocalLocation",
                                      "rzClearCircLocal",
                                      "rzProcessarRegiaoApagada"};

class OwnedCircuits : public StoredData {
protected:
    OwnedCircuits() { load(); }
    ~OwnedCircuits() override {
        m_documents.manager.closeAll();
        EXPECT_THAT(m_loader.unloadAll(), IsEmpty());
    }
    void load() {
        for (const char* name : kModules) {
            const auto loaded = m_loader.load(name);
            if (!loaded) throw std::runtime_error(loaded.reason);
        }
    }
    /// Defines a circuit with a region by the module's command.
    static void define(const char* number, const Texts& texts, const char* page, const char* corner,
                       const char* opposite) {
        AnswerList answers{number, texts[0], texts[1], texts[2], page, corner, opposite};
        ASSERT_EQ(lm::host::executeCommand(ACTIVE_DOCUMENT(), od("LMDEFCIRCLOCAL"), answers), RTNORM);
    }
    /// All circuits, as "1=a,b,c; ".
    std::string listing() {
        using Map = std::map<int, std::list<RZString>*>;
        const std::unique_ptr<Map> all(m_cad.buscaTodosCircuitosLocais());
        if (all == nullptr) return "none";
        std::string told;
        for (const auto& [number, list] : *all) {
            const std::unique_ptr<std::list<RZString>> texts(list);
            told += std::to_string(number) + "=";
            for (const RZString& text : *texts) told += plain(text) + ",";
            told += "; ";
        }
        return told;
    }
    /// The circuit at a place, or what the answer was.
    std::string at(const char* page, double x, double y) {
        int number = 77;
        const bool isFound = m_cad.findCircuitoLocalLocation(rz(page), OdGePoint2d(x, y), number);
        return (isFound ? "T" : "F") + std::to_string(number);
    }
    /// Calls a function with records of its own; gives the result's type, 0 for none.
    static int typeOfResult(const char* function, hst_resbufW* arguments) {
        hst_resbufW* const first = lm::test::textRecord(function, arguments);
        hst_resbufW* result = nullptr;
        ACTIVE_DOCUMENT()->getAPI()->invoke(first, result);
        lm::host::releaseChain(first);
        const int type = result == nullptr ? 0 : result->restype;
        lm::host::releaseChain(result);
        return type;
    }

    ModuleLoader m_loader{std::vector<std::string>{LM_BINARY_DIR "/tx"}};
};

TEST_F(OwnedCircuits, AreThereWhileTheirModuleIsLoaded) {
    for (const char* name : kFunctions) EXPECT_TRUE(lm::host::hasFunction(CHostString(name))) << name;
    EXPECT_TRUE(m_cad.clearCircLocal());
    const std::size_t functions = lm::host::functionCount();
    for (int round = 0; round < 3; ++round) {
        ASSERT_TRUE(m_loader.unload(kModules[2]));
        EXPECT_EQ(lm::host::functionCount(), functions - std::size(kFunctions));
        EXPECT_TRUE(odedRegCmds()->lookupCmd(od("LMDEFCIRCLOCAL")).isNull());
        EXPECT_FALSE(m_cad.clearCircLocal());
        EXPECT_EQ(listing(), "none");
        load();
        EXPECT_EQ(lm::host::functionCount(), functions);
        EXPECT_TRUE(m_cad.clearCircLocal());
    }
}

TEST_F(OwnedCircuits, AreListedWithTheirTexts) {
    EXPECT_EQ(listing(), "none");
    define("2", {"Motor Ω", "", "Hall 2"}, "P1", "0,0", "10,5");
    define("1", {"Pump", "cooling", "Hall 1"}, "P1", "20,0", "30,5");
    EXPECT_EQ(listing(), "1=Pump,cooling,Hall 1,; 2=Motor Ω,,Hall 2,; ");
    RZString a = "a", b = "b", c = "c";
    EXPECT_TRUE(m_cad.buscaCircuitoLocal(2, a, b, c));
    EXPECT_EQ(plain(a) + "|" + plain(b) + "|" + plain(c), "Motor Ω||Hall 2");
    EXPECT_FALSE(m_cad.buscaCircuitoLocal(3, a, b, c));
    EXPECT_EQ(plain(a), "Motor Ω") << "a circuit that isn't there leaves the texts alone";
    define("2", {"Fan", "", ""}, "P2", "0,0", "1,1");
    EXPECT_EQ(listing(), "1=Pump,cooling,Hall 1,; 2=Fan,,,; ") << "a number is defined anew";
}

TEST_F(OwnedCircuits, AreFoundByTheComponentsThatBearTheirNumber) {
    define("12", {"Motor", "Drive", "Hall"}, "P1", "0,0", "1,1");
    define("1", {"Main", "", ""}, "P1", "0,0", "1,1");
    const OdDbObjectId schematic = point(), panel = point(), other = point();
    give(panel, "TVO_LAYOUT_PAINEL", {handle(schematic)});
    enroll("TVO_RZ_CIRCLOC");
    const Chain number = OdResBuf::newRb(1001, od("TVO_RZ_CIRCLOC"));
    number->append(OdResBuf::newRb(1071, 12));
    schematic.openObject(OdDb::kForWrite)->setXData(number);
    RZString a, b, c;
    int found = 0;
    EXPECT_TRUE(m_cad.buscaCircuitoLocal(read(panel), a, b, c, found));
    EXPECT_EQ(found, 12);
    EXPECT_EQ(plain(a) + plain(b) + plain(c), "MotorDriveHall");
    EXPECT_TRUE(m_cad.buscaCircuitoLocal(RZID(other), a, b, c));
    EXPECT_EQ(plain(a), "Main") << "a component without a number is in the first circuit";
}

TEST_F(OwnedCircuits, AreFoundByAPlaceInTheirRegion) {
    define("5", {"a", "b", "c"}, "P1", "10,5", "0,-5");
    define("3", {"a", "b", "c"}, "P1", "10,0", "20,5");
    EXPECT_EQ(at("P1", 5, 0), "T5");
    EXPECT_EQ(at("P1", 0, -5), "T5") << "the corners belong to it, in whichever order they were given";
    EXPECT_EQ(at("P1", 10, 3), "T3") << "the lower number where regions meet";
    EXPECT_EQ(at("P1", 20.5, 3), "T0") << "nil reads as 0";
    EXPECT_EQ(at("P1", 5, 5.5), "T0");
    EXPECT_EQ(at("p1", 5, 0), "T0") << "another page";
}

TEST_F(OwnedCircuits, AreUpdatedAtAPlace) {
    define("5", {"a", "b", "c"}, "P1", "0,0", "10,10");
    EXPECT_TRUE(m_cad.atualizarCiruitoLocal("P1", OdGePoint2d(10, 10), rz("nöw")));
    EXPECT_EQ(listing(), "5=nöw,b,c,; ");
    EXPECT_EQ(at("P1", 1, 1), "T5") << "the region stays";
    EXPECT_FALSE(m_cad.atualizarCiruitoLocal("P1", OdGePoint2d(11, 10), "x"));
    EXPECT_FALSE(m_cad.atualizarCiruitoLocal("P2", OdGePoint2d(1, 1), "x"));
    EXPECT_EQ(listing(), "5=nöw,b,c,; ");
}

TEST_F(OwnedCircuits, GoWithTheirRegionAndAllTogether) {
    define("1", {"a", "", ""}, "P1", "0,0", "1,1");
    define("2", {"b", "", ""}, "P2", "0,0", "1,1");
    define("3", {"c", "", ""}, "P1", "5,5", "6,6");
    EXPECT_TRUE(m_cad.processaRegiaoApagada("P1"));
    EXPECT_EQ(listing(), "2=b,,,; ");
    EXPECT_FALSE(m_cad.processaRegiaoApagada("P1")) << "there is none any more";
    EXPECT_TRUE(m_cad.clearCircLocal());
    EXPECT_EQ(listing(), "none");
    EXPECT_TRUE(m_cad.clearCircLocal()) << "also when there is nothing to clear";
    define("2", {"again", "", ""}, "P2", "0,0", "1,1");
    EXPECT_EQ(listing(), "2=again,,,; ");
}

TEST_F(OwnedCircuits, SurviveASave) {
    define("7", {"Motor Ω", "line\\with", ""}, "P1", "1.5,2.5", "-3,4");
    define("32767", {"", "", ""}, "", "0,0", "0,0");
    ASSERT_TRUE(m_cad.processaRegiaoApagada("")) << "no page is a page";
    const lm::test::TemporaryFolder folder;
    const OdString path = lm::test::odPath((folder.path() / "saved.dxf").string());
    lm::drawing::saveDrawing(m_db, path);
    m_documents.manager.closeAll();
    EXPECT_EQ(listing(), "none");
    EXPECT_FALSE(m_cad.clearCircLocal()) << "no drawing is open";
    m_documents.manager.openDocument(path);
    EXPECT_EQ(listing(), "7=Motor Ω,line\\with,,; ");
    EXPECT_EQ(at("P1", -3, 2.5), "T7");
    EXPECT_EQ(at("P1", 1.5, 4), "T7");
    EXPECT_EQ(at("P1", 1.6, 4), "T0");
}

TEST_F(OwnedCircuits, BelongToTheDrawingThatIsCurrent) {
    define("1", {"here", "", ""}, "P1", "0,0", "1,1");
    CHostDocument* const other = m_documents.manager.newDocument();
    EXPECT_EQ(listing(), "none");
    define("1", {"there", "", ""}, "P1", "0,0", "1,1");
    EXPECT_EQ(listing(), "1=there,,,; ");
    m_documents.manager.setActiveDocument(m_document);
    EXPECT_EQ(listing(), "1=here,,,; ");
    setDatabase(other->database());
    EXPECT_EQ(listing(), "1=there,,,; ");
    setDatabase(nullptr);
}

TEST_F(OwnedCircuits, AreDefinedInOneStepOfUndo) {
    define("1", {"one", "", ""}, "P1", "0,0", "1,1");
    define("1", {"two", "", ""}, "P1", "0,0", "1,1");
    AnswerList none;
    lm::host::executeCommand(m_document, od("_U"), none);
    EXPECT_EQ(listing(), "1=one,,,; ");
    lm::host::executeCommand(m_document, od("_U"), none);
    EXPECT_EQ(listing(), "none");
}

TEST_F(OwnedCircuits, AreNotDefinedByWrongAnswers) {
    for (const char* number : {"0", "-1", "32768", "x"}) {
        AnswerList answers{number, "a", "b", "c", "P1", "0,0", "1,1"};
        EXPECT_THROW(lm::host::executeCommand(m_document, od("LMDEFCIRCLOCAL"), answers),
                     lm::host::CommandFailed)
            << number;
    }
    AnswerList short_{"1", "a", "b", "c", "P1", "0,0"};
    EXPECT_THROW(lm::host::executeCommand(m_document, od("LMDEFCIRCLOCAL"), short_), lm::host::CommandFailed);
    EXPECT_EQ(listing(), "none");
}

TEST_F(OwnedCircuits, AreNilForArgumentsOfAnotherKind) {
    define("1", {"a", "b", "c"}, "P1", "0,0", "1,1");
    using lm::test::shortRecord;
    using lm::test::textRecord;
    const auto pointRecord = [](hst_resbufW* next = nullptr) {
        hst_resbufW* const record = lm::host::newRecord(RTPOINT);
        record->rbnext = next;
        return record;
    };
    EXPECT_EQ(typeOfResult("rzGetCircuitoLocalInfo", nullptr), RTNIL);
    EXPECT_EQ(typeOfResult("rzGetCircuitoLocalInfo", textRecord("1")), RTNIL);
    EXPECT_EQ(typeOfResult("rzGetCircuitoLocalInfo", shortRecord(1)), RTLB);
    EXPECT_EQ(typeOfResult("rzGetCircuitoLocalLocation", textRecord("P1")), RTNIL);
    EXPECT_EQ(typeOfResult("rzGetCircuitoLocalLocation", textRecord("P1", pointRecord())), RTSHORT);
    EXPECT_EQ(typeOfResult("rzProcessarRegiaoApagada", shortRecord(1)), RTNIL);
    EXPECT_EQ(typeOfResult("rzAtualizarSimbCircuitoLocal", nullptr), RTNIL);
    EXPECT_EQ(typeOfResult("rzAtualizarSimbCircuitoLocal", textRecord("P1", pointRecord(shortRecord(1)))),
              RTNIL);
    EXPECT_EQ(
        typeOfResult("rzAtualizarSimbCircuitoLocal", textRecord("P1", textRecord("P1", textRecord("x")))),
        RTNIL);
    EXPECT_EQ(typeOfResult("rzAtualizarSimbCircuitoLocal", textRecord("P1", pointRecord(textRecord("x")))),
              RTT);
    EXPECT_EQ(listing(), "1=x,b,c,; ");
}

/// Somebody else may have entered things under the name of the module's dictionary.
TEST_F(OwnedCircuits, PassOverWhatIsNoCircuit) {
    define("1", {"a", "b", "c"}, "P1", "0,0", "1,1");
    const OdSmartPtr<OdDbDictionary> dictionary = m_cad.getNamedDic("LM_LOCAL_CIRCUITS", &m_db);
    const OdSmartPtr<OdDbXrecord> half = make(new OdDbXrecord), beyond = make(new OdDbXrecord);
    half->setFromRbChain(OdResBuf::newRb(70, 2));
    dictionary->setAt(od("2"), half);
    const Chain chain = OdSmartPtr<OdDbXrecord>(dictionary->getAt(od("1"), OdDb::kForRead))->rbChain();
    chain->setInt32(40000);
    beyond->setFromRbChain(chain);
    dictionary->setAt(od("40000"), beyond);
    dictionary->setAt(od("3"), make(new OdDbDictionary));
    EXPECT_EQ(listing(), "1=a,b,c,; ");
}

/// A circuit is dropped by the name of its entry, so one that has another name isn't taken for one.
TEST_F(OwnedCircuits, PassOverACircuitUnderTheNameOfAnother) {
    define("1", {"a", "b", "c"}, "P1", "0,0", "1,1");
    define("9", {"d", "e", "f"}, "P2", "0,0", "1,1");
    const OdSmartPtr<OdDbDictionary> dictionary = m_cad.getNamedDic("LM_LOCAL_CIRCUITS", &m_db);
    const Chain nine = OdSmartPtr<OdDbXrecord>(dictionary->getAt(od("9"), OdDb::kForRead))->rbChain();
    ASSERT_TRUE(m_cad.processaRegiaoApagada("P2"));
    for (const char* name : {"5", "09", "nine"}) {
        const OdSmartPtr<OdDbXrecord> record = make(new OdDbXrecord);
        record->setFromRbChain(nine);
        dictionary->setAt(od(name), record);
    }
    EXPECT_EQ(listing(), "1=a,b,c,; ");
    EXPECT_EQ(at("P2", 1, 1), "T0");
    EXPECT_FALSE(m_cad.processaRegiaoApagada("P2"));
    EXPECT_TRUE(m_cad.clearCircLocal());
    EXPECT_EQ(listing(), "none");
    EXPECT_EQ(dictionary->numEntries(), 3u) << "what is somebody else's stays";
}

TEST_F(OwnedCircuits, AreAListToLisp) {
    define("1", {"a", "b", "c"}, "P1", "0,0", "1,1");
    define("4", {"d", "e", "f"}, "P1", "0,0", "1,1");
    const auto valueOf = [&](const char* expression) {
        const auto outcome = m_document->getAPI()->lisp().evaluate(lm::test::wide(expression));
        return lm::system::toUtf8(outcome.ok ? outcome.value : outcome.error);
    };
    EXPECT_EQ(valueOf("(rzGetAllCircuitosLocaisInfo)"), R"(((1 "a" "b" "c") (4 "d" "e" "f")))");
    EXPECT_EQ(valueOf("(rzGetCircuitoLocalInfo 4)"), R"(("d" "e" "f"))");
    EXPECT_EQ(valueOf("(rzGetCircuitoLocalInfo 2)"), "nil");
}

} // namespace
