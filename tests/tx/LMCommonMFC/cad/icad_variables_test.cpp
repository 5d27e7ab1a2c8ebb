// SPDX-License-Identifier: MIT
#include "stored_data.h"

#include <gmock/gmock.h>

#include <functional>

namespace {

using namespace lm::tests;
using testing::ElementsAre;
using testing::IsEmpty;

hst_resbufW* record(short type, hst_resbufW* next = nullptr) {
    hst_resbufW* const made = lm::host::newRecord(type);
    made->rbnext = next;
    return made;
}
hst_resbufW* text(std::string_view utf8, hst_resbufW* next = nullptr) {
    return lm::test::textRecord(utf8, next);
}
hst_resbufW* shortNumber(short value, hst_resbufW* next = nullptr) {
    return lm::test::shortRecord(value, next);
}
hst_resbufW* longNumber(int value) {
    hst_resbufW* const made = record(RTLONG);
    made->value.int32 = value;
    return made;
}
hst_resbufW* real(double value, hst_resbufW* next = nullptr) {
    hst_resbufW* const made = record(RTREAL, next);
    made->value.real = value;
    return made;
}
hst_resbufW* point() {
    hst_resbufW* const made = record(RTPOINT);
    made->value.point[0] = 1.5;
    return made;
}

class Variables : public CadDrawing {
protected:
    CHostAPI& api() { return *m_document->getAPI(); }

    /// Sets a symbol as a routine would and releases the chain.
    void put(const char* name, hst_resbufW* chain) {
        api().putSym(rz(name), chain);
        api().relRb(chain);
    }
    /// The value of a symbol as the host gives it, such as "5005:abc"; "none" for a symbol that isn't there.
    std::string got(const char* name) {
        hst_resbufW* chain = nullptr;
        if (api().getSym(rz(name), &chain) != RTNORM) return "none";
        const std::string line = lm::test::told(chain);
        api().relRb(chain);
        return line;
    }
};

constexpr int kInt = 77;
constexpr double kReal = -7.5;

struct Row {
    const char* what;
    std::function<hst_resbufW*()> value;
    bool nil;
    int asInt;
    double asReal;
    const char* asText;
    Texts asTexts;
};

/// What each reader makes of each type of record.
const std::vector<Row>& rows() {
    static const std::vector<Row> all = {
        {"real", [] { return real(2.75); }, false, kInt, 2.75, "", {}},
        {"point", [] { return point(); }, false, kInt, kReal, "", {}},
        {"short", [] { return shortNumber(-3); }, false, -3, -3.0, "", {}},
        {"zero", [] { return shortNumber(0); }, false, 0, 0.0, "", {}},
        {"text", [] { return text("abc"); }, false, kInt, kReal, "abc", {"abc"}},
        {"text of a zero", [] { return text("0"); }, false, kInt, kReal, "0", {"0"}},
        {"empty text", [] { return text(""); }, false, kInt, kReal, "", {""}},
        {"long", [] { return longNumber(100000); }, false, kInt, kReal, "", {}},
        {"long that fits a short", [] { return longNumber(-5); }, false, -5, -5.0, "", {}},
        {"nil", [] { return record(RTNIL); }, true, kInt, kReal, "", {}},
        {"true", [] { return record(RTT); }, false, kInt, kReal, "", {}},
        {"list",
         [] { return record(RTLB, text("a", shortNumber(1, text("b", record(RTLE))))); },
         false,
         kInt,
         kReal,
         "",
         {"a", "b"}},
        {"nested list",
         [] { return record(RTLB, real(1, record(RTLB, text("a", record(RTLE, text("b", record(RTLE))))))); },
         false,
         kInt,
         kReal,
         "",
         {"a", "b"}},
        {"list of a short",
         [] { return record(RTLB, shortNumber(9, record(RTLE))); },
         false,
         kInt,
         kReal,
         "",
         {}},
    };
    return all;
}

TEST_F(Variables, AreReadByTheTypeOfTheFirstRecord) {
    for (const Row& row : rows()) {
        put("X", row.value());
        EXPECT_EQ(m_cad.GetVarBool("X", false, m_document), !row.nil) << row.what;
        EXPECT_TRUE(m_cad.GetVarBool("X", true, m_document)) << row.what << ": nil is the default, not false";
        EXPECT_EQ(m_cad.GetVarInt("X", kInt, m_document), row.asInt) << row.what;
        EXPECT_EQ(m_cad.GetVarReal("X", kReal, m_document), row.asReal) << row.what;
        EXPECT_EQ(plain(m_cad.GetVarStr("X", "default", m_document)), row.asText) << row.what;
        EXPECT_EQ(told(m_cad.GetVarLstStr("X", m_document)), row.asTexts) << row.what;
    }
}

TEST_F(Variables, ThatAreNotThereAreTheDefault) {
    EXPECT_FALSE(m_cad.GetVarBool("X", false, m_document));
    EXPECT_TRUE(m_cad.GetVarBool("X", true, m_document));
    EXPECT_EQ(m_cad.GetVarInt("X", kInt, m_document), kInt);
    EXPECT_EQ(m_cad.GetVarReal("X", kReal, m_document), kReal);
    EXPECT_EQ(plain(m_cad.GetVarStr("X", "default", m_document)), "default");
    EXPECT_THAT(told(m_cad.GetVarLstStr("X", m_document)), IsEmpty());
    EXPECT_EQ(got("X"), "none") << "asking makes no symbol";
}

TEST_F(Variables, OfNoDocumentAreTheDefault) {
    EXPECT_TRUE(m_cad.GetVarBool("X", true, nullptr));
    EXPECT_FALSE(m_cad.GetVarBool("X", false, nullptr));
    EXPECT_EQ(m_cad.GetVarInt("X", kInt, nullptr), kInt);
    EXPECT_EQ(m_cad.GetVarReal("X", kReal, nullptr), kReal);
    EXPECT_EQ(plain(m_cad.GetVarStr("X", "default", nullptr)), "default");
    EXPECT_THAT(told(m_cad.GetVarLstStr("X", nullptr)), IsEmpty());
}

TEST_F(Variables, OfNilAndOfNothingDiffer) {
    EXPECT_EQ(plain(m_cad.GetVarStr("X", "d", m_document)), "d");
    m_cad.SetVarBool("X", false, m_document);
    EXPECT_EQ(plain(m_cad.GetVarStr("X", "d", m_document)), "");
}

TEST_F(Variables, AreWrittenAsOneRecord) {
    m_cad.SetVarBool("B", true, m_document);
    EXPECT_EQ(got("B"), "5021");
    m_cad.SetVarBool("B", false, m_document);
    EXPECT_EQ(got("B"), "5019");
    m_cad.SetVarInt("I", -7, m_document);
    EXPECT_EQ(got("I"), "5003:-7");
    m_cad.SetVarReal("R", 0.1, m_document);
    EXPECT_EQ(got("R"), "5001");
    EXPECT_EQ(m_cad.GetVarReal("R", kReal, m_document), 0.1);
    m_cad.SetVarReal("R", 5, m_document);
    EXPECT_EQ(got("R"), "5001") << "a whole real stays a real";
    EXPECT_EQ(m_cad.GetVarInt("R", kInt, m_document), kInt);
    m_cad.SetVarStr("S", "text", m_document);
    EXPECT_EQ(got("S"), "5005:text");
}

TEST_F(Variables, OfIntegersKeepTheLowSixteenBits) {
    for (const auto& [value, read] :
         {std::pair(0, 0), std::pair(-1, -1), std::pair(32767, 32767), std::pair(-32768, -32768),
          std::pair(40000, -25536), std::pair(70000, 4464), std::pair(32768, -32768)}) {
        m_cad.SetVarInt("X", value, m_document);
        EXPECT_EQ(m_cad.GetVarInt("X", kInt, m_document), read) << value;
        EXPECT_EQ(m_cad.GetVarReal("X", kReal, m_document), read) << value;
    }
}

TEST_F(Variables, OfTextAreExact) {
    const std::string large(65536, 'x');
    for (const std::string& value : {std::string(), std::string("ação Ω →"), std::string("a\fb"),
                                     std::string("\"quoted\" \\n"), large}) {
        m_cad.SetVarStr("X", rz(value), m_document);
        EXPECT_EQ(plain(m_cad.GetVarStr("X", "default", m_document)), value);
    }
}

TEST_F(Variables, OfListsAreWrittenBetweenMarkersInBothForms) {
    m_cad.SetVarLstStr("L", RZStringList{"b", rz("Ω"), ""}, m_document);
    EXPECT_EQ(got("L"), "5016 5005:b 5005:Ω 5005: 5017");
    EXPECT_THAT(told(m_cad.GetVarLstStr("L", m_document)), ElementsAre("b", "Ω", ""));
    m_cad.SetVarLstStr("V", std::vector<RZString>{"x", "y"}, m_document);
    EXPECT_EQ(got("V"), "5016 5005:x 5005:y 5017");
    EXPECT_THAT(told(m_cad.GetVarLstStr("V", m_document)), ElementsAre("x", "y"));
}

TEST_F(Variables, OfEmptyListsAreNil) {
    m_cad.SetVarLstStr("L", RZStringList(), m_document);
    EXPECT_EQ(got("L"), "5019");
    EXPECT_THAT(told(m_cad.GetVarLstStr("L", m_document)), IsEmpty());
    m_cad.SetVarLstStr("V", std::vector<RZString>(), m_document);
    EXPECT_EQ(got("V"), "5019");
    EXPECT_EQ(plain(m_cad.GetVarStr("V", "d", m_document)), "");
}

TEST_F(Variables, GoByTheirNameAsItStands) {
    m_cad.SetVarStr("abc", "small", m_document);
    EXPECT_EQ(plain(m_cad.GetVarStr("ABC", "d", m_document)), "d");
    m_cad.SetVarStr("ABC", "large", m_document);
    EXPECT_EQ(plain(m_cad.GetVarStr("abc", "d", m_document)), "small");
    m_cad.SetVarBool("*IS_NOT_RZ_PROJECT*", true, m_document);
    EXPECT_EQ(got("*IS_NOT_RZ_PROJECT*"), "5021");
    EXPECT_EQ(got("IS_NOT_RZ_PROJECT"), "none");
}

TEST_F(Variables, BelongToTheirDocument) {
    CHostDocument* const other = m_documents.manager.newDocument();
    m_cad.SetVarStr("X", "first", m_document);
    EXPECT_EQ(plain(m_cad.GetVarStr("X", "d", other)), "d");
    m_cad.SetVarStr("X", "second", other);
    EXPECT_EQ(plain(m_cad.GetVarStr("X", "d", m_document)), "first");
    m_documents.manager.closeDocument(other);
    CHostDocument* const next = m_documents.manager.newDocument();
    EXPECT_EQ(plain(m_cad.GetVarStr("X", "d", next)), "d") << "they end with it";
}

TEST_F(Variables, NeedNoDrawing) {
    CHostDocument* const bare = m_documents.manager.newDocumentWithoutDatabase();
    m_cad.SetVarInt("X", 3, bare);
    EXPECT_EQ(m_cad.GetVarInt("X", 0, bare), 3);
}

TEST_F(Variables, AreSharedWithTheRoutinesOfTheDocument) {
    api().evalLisp(rz("(setq X 5 y \"text\" *FLAG* T L (list \"a\" 1 \"b\") Z nil)"));
    EXPECT_EQ(m_cad.GetVarInt("X", kInt, m_document), 5);
    EXPECT_EQ(plain(m_cad.GetVarStr("Y", "d", m_document)), "text") << "a routine's names are in capitals";
    EXPECT_EQ(plain(m_cad.GetVarStr("y", "d", m_document)), "d");
    EXPECT_TRUE(m_cad.GetVarBool("*FLAG*", false, m_document));
    EXPECT_FALSE(m_cad.GetVarBool("Z", false, m_document));
    EXPECT_THAT(told(m_cad.GetVarLstStr("L", m_document)), ElementsAre("a", "b"));
    m_cad.SetVarInt("X", 40, m_document);
    m_cad.SetVarLstStr("L", RZStringList{"c", "d"}, m_document);
    api().evalLisp(rz("(setq X (+ X 2) L (reverse L))"));
    EXPECT_EQ(m_cad.GetVarInt("X", kInt, m_document), 42);
    EXPECT_THAT(told(m_cad.GetVarLstStr("L", m_document)), ElementsAre("d", "c"));
}

// --- what they leave behind ---

struct Call {
    const char* name; // in the log
    std::function<void(CICad&, CHostDocument*)> run;
};

const std::vector<Call>& calls() {
    static const std::vector<Call> all = {
        {"CICad::GetVarBool", [](CICad& cad, CHostDocument* doc) { cad.GetVarBool("L", true, doc); }},
        {"CICad::GetVarInt", [](CICad& cad, CHostDocument* doc) { cad.GetVarInt("L", 1, doc); }},
        {"CICad::GetVarReal", [](CICad& cad, CHostDocument* doc) { cad.GetVarReal("L", 1, doc); }},
        {"CICad::GetVarStr", [](CICad& cad, CHostDocument* doc) { cad.GetVarStr("L", "", doc); }},
        {"CICad::GetVarLstStr", [](CICad& cad, CHostDocument* doc) { cad.GetVarLstStr("L", doc); }},
        {"CICad::SetVarBool", [](CICad& cad, CHostDocument* doc) { cad.SetVarBool("B", true, doc); }},
        {"CICad::SetVarInt", [](CICad& cad, CHostDocument* doc) { cad.SetVarInt("I", 1, doc); }},
        {"CICad::SetVarReal", [](CICad& cad, CHostDocument* doc) { cad.SetVarReal("R", 1, doc); }},
        {"CICad::SetVarStr", [](CICad& cad, CHostDocument* doc) { cad.SetVarStr("S", "text", doc); }},
        {"CICad::SetVarLstStr",
         [](CICad& cad, CHostDocument* doc) {
             cad.SetVarLstStr("M", RZStringList{"a", "b"}, doc);
         }},
        {"CICad::SetVarLstStr",
         [](CICad& cad, CHostDocument* doc) { cad.SetVarLstStr("N", std::vector<RZString>{"a"}, doc); }},
    };
    return all;
}

TEST_F(Variables, LeaveNoChainBehind) {
    m_cad.SetVarLstStr("L", RZStringList{"a", "b"}, m_document);
    for (const Call& call : calls()) call.run(m_cad, m_document); // symbols are there from here on
    const std::size_t before = lm::drawing::liveBlocks();
    for (const Call& call : calls()) {
        call.run(m_cad, m_document);
        EXPECT_EQ(lm::drawing::liveBlocks(), before) << call.name;
    }
}

TEST_F(Variables, ReportAFailureAndRaiseItAgain) {
    m_cad.SetVarLstStr("L", RZStringList{"a", "b"}, m_document);
    for (const Call& call : calls()) {
        const lm::test::LogCapture log;
        lm::drawing::failAllocationAfter(0);
        EXPECT_THROW(call.run(m_cad, m_document), std::bad_alloc) << call.name;
        lm::drawing::failAllocationAfter(-1);
        const std::string number = std::to_string(m_document->number());
        EXPECT_THAT(log.lines(), ElementsAre("[" + number + "] {now} " + call.name + " : std::bad_alloc"));
    }
    hostSession()->clearLines();
}

/// Lets each allocation fail in turn, until the member gets through.
TEST_F(Variables, LeaveNothingBehindWhereverMemoryEnds) {
    m_cad.SetVarLstStr("L", RZStringList{"a", "b"}, m_document);
    for (const Call& call : calls()) call.run(m_cad, m_document);
    const std::size_t before = lm::drawing::liveBlocks();
    for (const Call& call : calls()) {
        long successes = 0;
        for (bool failed = true; failed && successes < 100; ++successes) {
            failed = false;
            lm::drawing::failAllocationAfter(successes);
            try {
                call.run(m_cad, m_document);
            } catch (const std::bad_alloc&) {
                failed = true;
            }
            lm::drawing::failAllocationAfter(-1);
            hostSession()->clearLines();
            EXPECT_EQ(lm::drawing::liveBlocks(), before) << call.name << " after " << successes;
        }
        EXPECT_GT(successes, 1) << call.name;
        EXPECT_LT(successes, 100) << call.name;
    }
}

} // namespace
