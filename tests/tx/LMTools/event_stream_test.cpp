// SPDX-License-Identifier: MIT
// The lines of the stream of events: how they are written, what is refused, and how they are told again.
#include "LMTools/event_stream.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <vector>

namespace {

using lmtools::BadEvent;
using lmtools::Event;
using lmtools::EventListener;
using lmtools::eventOf;
using lmtools::Family;
using lmtools::lineOf;
using lmtools::Phase;
using lmtools::replay;
using testing::ElementsAre;

const char kContact[] = R"({"phase":"appended","family":"cto","document":1,"handle":"2F","block":"NAF-01",)"
                        R"("layer":"P01","command":"_LMINSERT"})";

lm::WideString wide(std::string_view text) {
    return lm::system::fromUtf8(text);
}

Event contact() {
    return {Phase::kAppended, Family::kCto, 1, wide("2F"), wide("NAF-01"), wide("P01"), wide("_LMINSERT")};
}

/// What a line is refused with; empty for an event.
std::string refusal(const std::string& line) {
    try {
        eventOf(line);
        return "";
    } catch (const BadEvent& bad) {
        return bad.what();
    }
}

/// The good line with one piece in place of another.
std::string changed(const std::string& piece, const std::string& by) {
    std::string line = kContact;
    const std::size_t at = line.find(piece);
    EXPECT_NE(at, line.npos) << piece;
    return line.replace(at, piece.size(), by);
}

class Heard : public EventListener {
public:
    void happened(const Event& event) override { lines.push_back(lineOf(event)); }
    std::vector<std::string> lines;
};

TEST(EventStream, WritesAnEventAsOneObject) {
    EXPECT_EQ(lineOf(contact()), kContact);
    EXPECT_EQ(lineOf({Phase::kEndedEnd, Family::kTransaction, 0, {}, {}, {}, {}}),
              R"({"phase":"endedEnd","family":"transaction","document":null,"handle":null,"block":null,)"
              R"("layer":null,"command":null})");
}

TEST(EventStream, HasTheEventsOfTheReactorAndNoOthers) {
    std::vector<std::string> names;
    for (int family = 0; family <= static_cast<int>(Family::kTransaction); ++family) {
        for (int phase = 0; phase <= static_cast<int>(Phase::kEndedEnd); ++phase) {
            Event event{static_cast<Phase>(phase), static_cast<Family>(family), 0, {}, {}, {}, {}};
            const bool isObject = event.family < Family::kCommand;
            if (isObject) event.handle = wide("1");
            if (event.family == Family::kCommand) event.command = wide("_X");
            if (isEvent(event.family, event.phase)) {
                names.push_back(nameOf(event));
                EXPECT_EQ(eventOf(lineOf(event)), event) << nameOf(event);
            } else {
                EXPECT_EQ(refusal(lineOf(event)), "there is no event \"" + nameOf(event) + "\"");
            }
        }
    }
    EXPECT_EQ(names.size(), 41u);
    for (const char* const name :
         {"blockDefined", "entityAppended", "attForModify", "plineModified", "layerErased", "ctoAppended",
          "insErased", "contaModified", "gradeForModify", "commandWillStart", "commandCancelled",
          "cargaInicial", "transactionEndedBegin", "transactionEndedEnd"})
        EXPECT_THAT(names, testing::Contains(name));
}

TEST(EventStream, KeepsEveryText) {
    for (const lm::WideString& text :
         {wide("ação Ω €"), wide("\"\\/\b\f\n\r\t\x01"), lm::WideString{0xD83D, 0xDE00},
          lm::WideString{'a', 0xD83D, 'b'}, lm::WideString{0xDE00}}) {
        Event event = contact();
        event.block = text;
        event.layer = text;
        EXPECT_EQ(eventOf(lineOf(event)), event) << lineOf(event);
    }
}

TEST(EventStream, TakesAnySpellingOfAnObject) {
    EXPECT_EQ(eventOf(R"( { "command" : "_LMINSERT" ,"layer":"\u0050\u00301","block":"NAF\u002d01",)"
                      R"("handle":"2F","document":1,"family":"cto","phase":"appended"} )"
                      "\r"),
              contact());
}

TEST(EventStream, RefusesWhatIsNoEvent) {
    EXPECT_EQ(refusal(kContact), "");
    const std::pair<std::string, const char*> rows[] = {
        {"", "expected an object, found its end"},
        {"[]", "expected an object, found \"[]\""},
        {"{}", "\"phase\" is missing"},
        {changed("{\"phase", "{,\"phase"), "expected a key, found \",\"phase\":\"ap\""},
        {changed("\"phase\":", "\"phase\" "), "expected a colon, found \"\"appended\",\"\""},
        {changed("1,\"handle", "1 \"handle"),
         "expected a comma or the end of the object, found \"\"handle\":\"2F\""},
        {std::string(kContact) + "x", "expected the end of the line, found \"x\""},
        {std::string(kContact, 34), "expected a comma or the end of the object, found its end"},
        {std::string(kContact, 20), "expected a key, found its end"},
        {std::string(kContact, 40), "a text isn't closed"},
        {changed("NAF-01", "NAF\t01"), "a text holds a control sign, expected an escape"},
        {changed("NAF-01", "NAF\\x01"), "a text holds an escape that JSON doesn't know"},
        {changed("NAF-01", "NAF\\u00g1"), "a text holds an escape that JSON doesn't know"},
        {changed("NAF-01", "NAF\xFF"
                           "01"),
         "expected UTF-8"},
        {changed("\"cto\"", "true"), "expected a text, a whole number or null, found \"true,\"docume\""},
        {changed(":1,", ":1.5,"), "expected a text, a whole number or null, found \"1.5,\"handle\"\""},
        {changed(":1,", ":1e3,"), "expected a text, a whole number or null, found \"1e3,\"handle\"\""},
        {changed(":1,", ":99999999999999999999,"),
         "expected a text, a whole number or null, found \"999999999999\""},
        {changed(":1,", ":0,"), "\"document\" needs null or a number from 1"},
        {changed(":1,", ":2147483648,"), "\"document\" needs null or a number from 1"},
        {changed(":1,", ":\"1\","), "\"document\" needs null or a number from 1"},
        {changed("\"layer\"", "\"colour\""), "unknown key \"colour\""},
        {changed("\"layer\"", "\"block\""), "\"block\" is given twice"},
        {changed(",\"layer\":\"P01\"", ""), "\"layer\" is missing"},
        {changed("\"appended\"", "\"APPENDED\""), "unknown phase \"APPENDED\""},
        {changed("\"appended\"", "null"), "unknown phase \"\""},
        {changed("\"cto\"", "\"relay\""), "unknown family \"relay\""},
        {changed("\"appended\"", "\"inicial\""), "there is no event \"ctoInicial\""},
        {changed("\"P01\"", "\"\""), "\"layer\" needs null or a text that isn't empty"},
        {changed("\"P01\"", "5"), "\"layer\" needs null or a text that isn't empty"},
        {changed("\"2F\"", "null"),
         "ctoAppended needs a handle of 1 to 16 hexadecimal digits in capitals, found \"\""},
        {changed("\"2F\"", "\"2f\""),
         "ctoAppended needs a handle of 1 to 16 hexadecimal digits in capitals, found \"2f\""},
        {changed("\"2F\"", "\"12345678901234567\""),
         "ctoAppended needs a handle of 1 to 16 hexadecimal digits in capitals, found \"12345678901234567\""},
        {changed("\"appended\",\"family\":\"cto\"", "\"ended\",\"family\":\"command\""),
         "commandEnded has no handle, block and layer"},
        {R"({"phase":"ended","family":"command","document":1,"handle":null,"block":null,"layer":null,)"
         R"("command":null})",
         "commandEnded needs a command"},
        {R"({"phase":"endedEnd","family":"transaction","document":1,"handle":null,"block":null,"layer":null,)"
         R"("command":null})",
         "transactionEndedEnd has no document"},
    };
    for (const auto& [line, why] : rows) EXPECT_EQ(refusal(line), why) << line;
}

TEST(EventStream, RefusesEveryLineThatWasCutOff) {
    const std::string line = kContact;
    for (std::size_t size = 0; size < line.size(); ++size)
        EXPECT_NE(refusal(line.substr(0, size)), "") << size;
}

TEST(EventStream, IsToldAgainInItsOrder) {
    Event other = contact();
    other.phase = Phase::kErased;
    const std::string text = lineOf(contact()) + "\n" + lineOf(other) + "\n" + lineOf(contact());
    for (const char* const end : {"", "\n", "\r\n"}) {
        Heard heard;
        EXPECT_EQ(replay(text + end, heard), 3u);
        EXPECT_THAT(heard.lines, ElementsAre(lineOf(contact()), lineOf(other), lineOf(contact())));
    }
    Heard none;
    EXPECT_EQ(replay("", none), 0u);
}

TEST(EventStream, EndsAtABadLineWithItsNumber) {
    for (const std::string bad : {"", "x", R"({"phase":1})"}) {
        Heard heard;
        try {
            replay(lineOf(contact()) + "\n" + lineOf(contact()) + "\n" + bad + "\n" + lineOf(contact()) +
                       "\n",
                   heard);
            FAIL() << "expected a refusal of " << bad;
        } catch (const BadEvent& refused) {
            EXPECT_EQ(refused.what(), "line 3: " + refusal(bad));
        }
        EXPECT_EQ(heard.lines.size(), 2u) << "those before it were told";
    }
}

} // namespace
