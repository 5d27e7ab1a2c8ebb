// SPDX-License-Identifier: MIT
#include "host/jsonwriter.h"

#include <gtest/gtest.h>

#include <functional>
#include <limits>

namespace {

using lm::host::JsonWriter;
using lm::host::ToolOutput;

std::string written(const std::function<void(JsonWriter&)>& write) {
    std::string text;
    ToolOutput out(text);
    JsonWriter json(out);
    write(json);
    out.flush();
    return text;
}

std::string asJson(const lm::WideString& text) {
    return written([&](JsonWriter& json) { json.value(lm::WideView(text)); });
}

TEST(JsonWriter, NestsObjectsAndArrays) {
    EXPECT_EQ("{\"a\":[],\"b\":[1,\"x\",{}],\"c\":{\"d\":true,\"e\":false}}\n", written([](JsonWriter& json) {
                  json.beginObject();
                  json.key("a");
                  json.beginArray();
                  json.endArray();
                  json.key("b");
                  json.beginArray();
                  json.value(1);
                  json.value("x");
                  json.beginObject();
                  json.endObject();
                  json.endArray();
                  json.key("c");
                  json.beginObject();
                  json.key("d");
                  json.value(true);
                  json.key("e");
                  json.value(false);
                  json.endObject();
                  json.endObject();
                  json.finish();
              }));
}

TEST(JsonWriter, EscapesWhatMustNotStandInAText) {
    const char* const expected = "\"\\\"\\\\\\n\\r\\t\\u0001\\u000C/\"";
    const std::string_view text("\"\\\n\r\t\x01\x0C/");
    EXPECT_EQ(expected, written([&](JsonWriter& json) { json.value(text); }));
    EXPECT_EQ(expected, asJson(lm::system::widen(text)));
    EXPECT_EQ("\"\"", asJson({}));
    EXPECT_EQ("\"a\\u0000b\"", asJson({'a', 0, 'b'}));
}

TEST(JsonWriter, KeepsEveryWideUnit) {
    EXPECT_EQ("\"ação Ω €\"", asJson(lm::system::fromUtf8("ação Ω €")));
    EXPECT_EQ("\"\xF0\x9F\x98\x80\"", asJson({0xD83D, 0xDE00}));
    EXPECT_EQ("\"\\uD83Dx\\uDE00\"", asJson({0xD83D, 'x', 0xDE00})) << "unpaired surrogates are escaped";
    EXPECT_EQ("\"\\uD83D\"", asJson({0xD83D}));
}

TEST(JsonWriter, WritesWhatIsNotThereAsNull) {
    EXPECT_EQ("[null,1,null]", written([](JsonWriter& json) {
                  json.beginArray();
                  json.null();
                  json.value(1);
                  json.null();
                  json.endArray();
              }));
}

TEST(JsonWriter, TakesLongTexts) {
    for (std::size_t size : {253, 254, 255, 256, 257, 1000}) {
        EXPECT_EQ("\"" + std::string(size, 'x') + "\"", asJson(lm::WideString(size, 'x')));
        EXPECT_EQ("\"" + std::string(size, 'x') + "\\n\"",
                  asJson(lm::WideString(size, 'x') + lm::WideChar('\n')));
    }
}

TEST(JsonWriter, WritesNumbersThatReadBackTheSame) {
    const auto number = [](double value) { return written([&](JsonWriter& json) { json.value(value); }); };
    EXPECT_EQ("0.1", number(0.1));
    EXPECT_EQ("-2", number(-2.0));
    EXPECT_EQ("1e+300", number(1e300));
    EXPECT_EQ("0.30000000000000004", number(0.1 + 0.2));
    EXPECT_EQ("null", number(std::numeric_limits<double>::infinity()));
    EXPECT_EQ("null", number(std::numeric_limits<double>::quiet_NaN()));
    EXPECT_EQ("-9223372036854775808",
              written([](JsonWriter& json) { json.value(std::numeric_limits<long long>::min()); }));
}

} // namespace
