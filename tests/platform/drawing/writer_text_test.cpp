// SPDX-License-Identifier: MIT
// Text: what is written reads back as the same units, in UTF-8 and in every code page; and numbers as text.
#include "writer_support.h"

#include "dxf/write_groups.h"

#include <cmath>
#include <limits>
#include <random>

namespace drawing_test {
namespace {

using lm::WideChar;
using lm::WideString;
using lm::WideView;
using lm::drawing::TextDecoder;
using lm::drawing::TextEncoder;

const char* const kPages[] = {"ANSI_874",  "ANSI_932",  "ANSI_936",  "ANSI_949",  "ANSI_950",
                              "ANSI_1250", "ANSI_1251", "ANSI_1252", "ANSI_1253", "ANSI_1254",
                              "ANSI_1255", "ANSI_1256", "ANSI_1257", "ANSI_1258", "DOS437",
                              "DOS850",    "JOHAB",     "BIG5",      "MACINTOSH"};

std::string encoded(const TextEncoder& encoder, const WideString& text) {
    std::string bytes;
    encoder.encode(text, bytes);
    return bytes;
}

WideString decoded(const TextDecoder& decoder, const std::string& bytes) {
    bool bad = false;
    const OdString text = decoder.decode(bytes, bad);
    EXPECT_FALSE(bad) << bytes;
    return WideString(text.view());
}

WideString units(std::initializer_list<int> list) {
    WideString text;
    for (const int unit : list) text.push_back(static_cast<WideChar>(unit));
    return text;
}

/// A text that is hard on encodings.
WideString randomText(std::mt19937& random) {
    static const char* const kPieces[] = {"\\U+00E9", "\\u+", "\\M+1",  "^L",  "^ ",
                                          "^",        "\\",   "U+0041", "%%c", " "};
    WideString text;
    const std::size_t pieces = random() % 12;
    for (std::size_t i = 0; i < pieces; ++i) switch (random() % 6) {
        case 0:
            text += lm::system::widen(kPieces[random() % std::size(kPieces)]);
            break;
        case 1:
            text.push_back(static_cast<WideChar>(1 + random() % 0x1F));
            break;
        case 2:
            text.push_back(static_cast<WideChar>(0xD800 + random() % 0x800));
            break;
        case 3:
            text.push_back(static_cast<WideChar>(0x80 + random() % 0x80));
            break;
        case 4:
            text.push_back(static_cast<WideChar>(1 + random() % 0xFFFF));
            break;
        default:
            text.push_back(static_cast<WideChar>(' ' + random() % 95));
        }
    return text;
}

TEST(WriterText, WritesControlUnitsAndCaretsInTheCaretForm) {
    const TextEncoder encoder;
    EXPECT_EQ(encoded(encoder, units({0x0C})), "^L");
    EXPECT_EQ(encoded(encoder, units({'a', '^', 'b'})), "a^ b");
    EXPECT_EQ(encoded(encoder, units({'^', 'L'})), "^ L");
    EXPECT_EQ(encoded(encoder, units({1, 0x1F, '\n', '\r', '\t'})), "^A^_^J^M^I");
    EXPECT_EQ(encoded(encoder, units({'a', 0, 'b'})), "ab");
}

TEST(WriterText, KeepsTextThatLooksLikeAnEscape) {
    const TextEncoder encoder;
    EXPECT_EQ(encoded(encoder, lm::system::widen("\\U+00E9")), "\\U+005CU+00E9");
    EXPECT_EQ(encoded(encoder, lm::system::widen("\\M+18140")), "\\U+005CM+18140");
    EXPECT_EQ(encoded(encoder, lm::system::widen("C:\\Users \\P")), "C:\\Users \\P");
}

TEST(WriterText, EscapesWhatTheBytesCantHold) {
    const TextEncoder latin(TextDecoder::forCodePage("ANSI_1252"));
    EXPECT_EQ(encoded(latin, units({0xE9, 0x20AC, 0x3A9})), "\xE9\x80\\U+03A9");
    EXPECT_EQ(encoded(latin, units({0x81})), "\x81");
    EXPECT_EQ(encoded(latin, units({0xD83D, 0xDE00})), "\\U+D83D\\U+DE00");
    const TextEncoder utf;
    EXPECT_EQ(encoded(utf, units({0xD83D, 0xDE00})), "\xF0\x9F\x98\x80");
    EXPECT_EQ(encoded(utf, units({0xDE00, 0xD83D})), "\\U+DE00\\U+D83D");
    EXPECT_EQ(encoded(TextEncoder(TextDecoder::forCodePage("ANSI_932")), units({0x8868, 0xFF71, 0xE9})),
              "\x95\\\xB1\\U+00E9");
}

TEST(WriterText, ReadsBackEverySingleUnitInEveryPage) {
    const auto check = [](const TextDecoder& decoder, const char* page) {
        const TextEncoder encoder(decoder);
        for (int unit = 1; unit < 0x10000; ++unit) {
            const WideString text = units({unit});
            ASSERT_EQ(decoded(decoder, encoded(encoder, text)), text) << page << " " << unit;
        }
    };
    check(TextDecoder(), "UTF-8");
    for (const char* page : kPages) check(TextDecoder::forCodePage(page), page);
}

TEST(WriterText, ReadsBackRandomTextsInEveryPage) {
    std::mt19937 random(7);
    std::vector<TextDecoder> decoders(1);
    for (const char* page : kPages) decoders.push_back(TextDecoder::forCodePage(page));
    for (const TextDecoder& decoder : decoders) {
        const TextEncoder encoder(decoder);
        for (int i = 0; i < 3000; ++i) {
            const WideString text = randomText(random);
            const std::string bytes = encoded(encoder, text);
            for (const char byte : bytes) ASSERT_GE(static_cast<unsigned char>(byte), 0x20);
            ASSERT_EQ(decoded(decoder, bytes), text) << decoder.page() << ": " << bytes;
        }
    }
}

TEST(WriterText, ReadsBackRandomTextsInEveryFile) {
    std::mt19937 random(11);
    const auto db = newDatabase();
    std::vector<std::pair<OdDbObjectId, OdString>> texts;
    for (int i = 0; i < 400; ++i) {
        const auto text = make<OdDbText>();
        const OdDbObjectId id = append(*db.get(), text);
        text->setTextString(OdString(WideView(randomText(random))));
        texts.emplace_back(id, text->textString());
    }
    inAllFiles(*db.get(), [&](OdDbDatabase& read) {
        for (const auto& [id, text] : texts)
            ASSERT_EQ(open<OdDbText>(read.getOdDbObjectId(id.getHandle()))->textString(), text);
    });
}

TEST(WriterText, ReadsBackNamesWithControlUnitsAndCarets) {
    const auto db = newDatabase();
    const OdString name(
        WideView(units({'a', 0x0C, '^', 'L', '\\', 'U', '+', '0', '0', '4', '1', 0xD800, ' '})));
    const auto layer = make<OdDbLayerTableRecord>();
    layer->setName(name);
    layerTable(*db.get(), OdDb::kForWrite)->add(layer);
    const auto line = make<OdDbLine>();
    const OdDbObjectId id = append(*db.get(), line);
    line->setLayer(name);
    line->setXData([&] {
        auto chain = OdResBuf::newRb(1001, name);
        chain->append(OdResBuf::newRb(1000, name));
        return chain;
    }());
    inAllFiles(*db.get(), [&](OdDbDatabase& read) {
        const auto line = open<OdDbLine>(read.getOdDbObjectId(id.getHandle()));
        EXPECT_EQ(line->layer(), name);
        EXPECT_FALSE(line->xData(name).isNull());
        EXPECT_EQ(line->xData(name)->next()->getString(), name);
    });
}

TEST(WriterText, WritesLongTextsAsTheyAre) {
    const auto db = newDatabase();
    WideString longText;
    for (int i = 0; i < 65536; ++i)
        longText.push_back(static_cast<WideChar>(i % 3 == 0 ? 0xE9 : 'a' + i % 26));
    const OdString wide{WideView(longText)};
    const auto text = make<OdDbText>();
    const OdDbObjectId one = append(*db.get(), text);
    text->setTextString(wide);
    auto chain = OdResBuf::newRb(1001, od("RZ"));
    chain->append(OdResBuf::newRb(1000, wide));
    text->setXData(chain);
    const auto lines = make<OdDbMText>();
    const OdDbObjectId two = append(*db.get(), lines);
    lines->setContents(wide);
    inAllFiles(*db.get(), [&](OdDbDatabase& read) {
        const auto text = open<OdDbText>(read.getOdDbObjectId(one.getHandle()));
        EXPECT_TRUE(text->textString() == wide);
        EXPECT_TRUE(text->xData(od("RZ"))->next()->getString() == wide);
        EXPECT_TRUE(text->xData(od("RZ"))->next()->next().isNull());
        EXPECT_TRUE(open<OdDbMText>(read.getOdDbObjectId(two.getHandle()))->contents() == wide);
    });
}

TEST(WriterText, SplitsLongContentsOutsideEscapesAndPairs) {
    WideString text(249, 'x');
    text += units({'\\', 'U', '+', '0', '0', '4', '1'});
    text += WideString(242, 'y');
    text += units({0xD83D, 0xDE00});
    text += WideString(600, '^');
    const auto db = newDatabase();
    const auto lines = make<OdDbMText>();
    const OdDbObjectId id = append(*db.get(), lines);
    lines->setContents(OdString(WideView(text)));
    const std::string bytes = notationOf(saved(*db.get()));
    EXPECT_TRUE(contains(bytes, "|3 " + std::string(249, 'x') + "|3 \\U+005CU+0041"));
    EXPECT_FALSE(contains(bytes, "\\U+D83D"));
    EXPECT_TRUE(
        open<OdDbMText>(readBytes(saved(*db.get()))->getOdDbObjectId(id.getHandle()))->contents().view() ==
        WideView(text));
}

/// A file of the time before UTF-8 whose bytes happen to be well-formed UTF-8 would be read as that.
TEST(WriterText, KeepsAPageFromBeingTakenForUtf8) {
    const auto db = newDatabase();
    const auto text = make<OdDbText>();
    const OdDbObjectId id = append(*db.get(), text);
    text->setTextString(OdString(WideView(units({0xC3, 0xA9}))));
    const std::string bytes = saved(*db.get(), {FileVersion::kR2000});
    EXPECT_TRUE(contains(bytes, "999\r\n\xA0\r\n"));
    const auto read = readBytes(bytes);
    EXPECT_EQ(open<OdDbText>(read->getOdDbObjectId(id.getHandle()))->textString(), text->textString());
    EXPECT_EQ(saved(*read.get(), {FileVersion::kR2000}), bytes);
    EXPECT_FALSE(contains(saved(*db.get(), {FileVersion::kR2007}), "999"));
    EXPECT_FALSE(contains(saved(*db.get(), {FileVersion::kR2000, true}), "\xA0"));
    text->upgradeOpen();
    text->setTextString(od("é"));
    EXPECT_FALSE(contains(saved(*db.get(), {FileVersion::kR2000}), "999"));
}

TEST(WriterText, KeepsThePageOfTheDrawing) {
    dxf::Parts parts;
    parts.version = "AC1015";
    parts.codePage = "ANSI_1251";
    parts.layers = dxf::Parts::layer("40", "\xCF\xEB\xE0\xED");
    parts.entities =
        "0 TEXT|5 50|330 1F|100 AcDbEntity|8 \xCF\xEB\xE0\xED|100 AcDbText|10 0.0|20 0.0|40 1.0|1 x";
    const std::string bytes = dxf::text(parts.groups());
    const auto db = readBytes(bytes);
    byHandle<OdDbText>(*db.get(), "50", OdDb::kForWrite)->setTextString(od("Ы é"));
    const std::string old = saved(*db.get(), {FileVersion::kR2004});
    EXPECT_TRUE(contains(old, "ANSI_1251"));
    EXPECT_TRUE(contains(entryOf(old, "50"), "|8 \xCF\xEB\xE0\xED|"));
    EXPECT_TRUE(contains(entryOf(old, "50"), "|1 \xDB \\U+00E9"));
    const std::string now = saved(*db.get(), {FileVersion::kR2018});
    EXPECT_TRUE(contains(entryOf(now, "50"), "|8 План|"));
    EXPECT_TRUE(contains(entryOf(now, "40"), "|2 План|"));
    EXPECT_TRUE(
        contains(entryOf(saved(*readBytes(now).get(), {FileVersion::kR2000}), "40"), "|2 \xCF\xEB\xE0\xED|"));
}

TEST(WriterText, KeepsAnOldFileOfUtf8AsItIs) {
    dxf::Parts parts;
    parts.version = "AC1015";
    parts.layers = dxf::Parts::layer("40", "Página");
    const std::string bytes = dxf::text(parts.groups());
    const auto db = readBytes(bytes);
    EXPECT_TRUE(contains(entryOf(saved(*db.get(), {FileVersion::kR2000}), "40"), "|2 Página|"));
    const auto read = savedAndRead(*db.get(), {FileVersion::kR2000, true});
    EXPECT_EQ(utf8(byHandle<OdDbLayerTableRecord>(*read.get(), "40")->getName()), "Página");
}

TEST(WriterText, WritesTheShortestNumberThatReadsBack) {
    using lm::drawing::realText;
    EXPECT_EQ(realText(0), "0.0");
    EXPECT_EQ(realText(-0.0), "-0.0");
    EXPECT_EQ(realText(1), "1.0");
    EXPECT_EQ(realText(0.1), "0.1");
    EXPECT_EQ(realText(1.0 / 3), "0.3333333333333333");
    EXPECT_EQ(realText(1e20), "1.0e+20");
    EXPECT_EQ(realText(123456), "123456.0");
    EXPECT_EQ(realText(1e300), "1.0e+300");
    EXPECT_EQ(realText(1.5e-9), "1.5e-09");
    std::mt19937_64 random(3);
    for (int i = 0; i < 20000; ++i) {
        const std::uint64_t bits = random();
        double value;
        std::memcpy(&value, &bits, sizeof value);
        if (!std::isfinite(value)) continue;
        const std::string text = realText(value);
        ASSERT_NE(text.find('.'), std::string::npos);
        ASSERT_EQ(std::strtod(text.c_str(), nullptr), value) << text;
    }
}

TEST(WriterText, WritesAnglesThatReadBack) {
    const auto db = newDatabase();
    std::vector<double> angles;
    for (const double degrees : {0.0, 45.0, 90.0, 225.0, 359.99, 0.1, -30.0})
        angles.push_back(degrees * 0.017453292519943295);
    std::mt19937 random(5);
    std::uniform_real_distribution<double> any(-7, 7);
    for (int i = 0; i < 500; ++i) angles.push_back(any(random));
    std::vector<OdDbObjectId> ids;
    for (const double angle : angles) {
        const auto text = make<OdDbText>();
        ids.push_back(append(*db.get(), text));
        text->setRotation(angle);
    }
    inAllFiles(*db.get(), [&](OdDbDatabase& read) {
        // Files hold degrees: an angle that no number of degrees gives comes back as its neighbour.
        for (std::size_t i = 0; i < ids.size(); ++i) {
            const double got = open<OdDbText>(read.getOdDbObjectId(ids[i].getHandle()))->rotation();
            ASSERT_NEAR(got, angles[i], i < 7 ? 0 : 2e-15);
        }
    });
}

/// Code and payload of a record are independent; the file has what the code says.
TEST(WriterText, WritesRecordsByGroupCode) {
    const auto db = newDatabase();
    const auto point = make<OdDbPoint>();
    const OdDbObjectId id = append(*db.get(), point);
    auto chain = OdResBuf::newRb(1001, od("RZ"));
    const auto add = [&chain](OdSmartPtr<OdResBuf> record) { chain->last()->append(record); };
    add(OdResBuf::newRb(1000, 5));
    add(OdResBuf::newRb(1000, 0.5));
    add(OdResBuf::newRb(1071, od("12 volts")));
    add(OdResBuf::newRb(1070, od("none")));
    add(OdResBuf::newRb(1040, od("1.5")));
    add(OdResBuf::newRb(1040, 3));
    add(OdResBuf::newRb(1010, 2.0));
    add(OdResBuf::newRb(1000));
    add(OdResBuf::newRb(1004, od("no bytes")));
    add(OdResBuf::newRb(5005, od("no code of a file")));
    add(OdResBuf::newRb(70, 1));
    const auto reference = OdResBuf::newRb(1005);
    reference->setObjectId(db->getModelSpaceId());
    add(reference);
    point->setXData(chain);
    const std::string space = utf8(db->getModelSpaceId().getHandle().ascii());
    const std::string expected =
        "1001 RZ|1000 5|1000 0.5|1071 12|1070 0|1040 1.5|1040 3|1010 2,0,0|1000 |1004 |1005 " + space;
    inAllFiles(*db.get(), [&](OdDbDatabase& read) {
        EXPECT_EQ(textOf(open<OdDbPoint>(read.getOdDbObjectId(id.getHandle()))->xData()), expected);
    });
}

TEST(WriterText, WritesChainsOfAHundredThousandRecords) {
    constexpr int kRecords = 100000;
    const auto db = newDatabase();
    const auto point = make<OdDbPoint>();
    const OdDbObjectId id = append(*db.get(), point);
    auto chain = OdResBuf::newRb(1001, od("RZ"));
    OdSmartPtr<OdResBuf> tail = chain;
    for (int i = 0; i < kRecords; ++i) {
        const auto next = OdResBuf::newRb(1071, i);
        tail->append(next);
        tail = next;
    }
    point->setXData(chain);
    for (const bool binary : {false, true}) {
        const auto read = savedAndRead(*db.get(), {FileVersion::kR2018, binary});
        const auto there = open<OdDbPoint>(read->getOdDbObjectId(id.getHandle()), OdDb::kForWrite);
        auto got = there->xData(od("RZ"));
        EXPECT_TRUE(textOf(got) == textOf(chain));
        got->next()->setInt32(-1);
        there->setXData(got);
        EXPECT_TRUE(
            textOf(open<OdDbPoint>(savedAndRead(*read.get())->getOdDbObjectId(id.getHandle()))->xData()) ==
            textOf(got));
    }
}

} // namespace
} // namespace drawing_test
