// SPDX-License-Identifier: MIT
// Which documents may become a tree, and that the quick look at the levels of a document never sees fewer
// than a parser.
#include "settings/xmlfile.h"

#include "settings/xmllevels.h"

#include <gtest/gtest.h>

#include <QStringEncoder>
#include <QXmlStreamReader>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <random>

namespace {

using lm::settings::isHarmless;
using lm::settings::levelsOf;

std::string nested(int levels, const std::string& inside = {}) {
    std::string document;
    for (int i = 0; i < levels; ++i) document += "<n a='>'>";
    document += inside;
    for (int i = 0; i < levels; ++i) document += "</n>";
    return document;
}

bool harmless(const std::string& document) {
    return isHarmless(QByteArray::fromStdString(document));
}

TEST(XmlLevels, AreThoseOfTheDeepestElement) {
    const struct {
        const char* document;
        int levels;
    } rows[] = {
        {"", 0},
        {"text", 0},
        {"<a/>", 1},
        {"<a></a>", 1},
        {"<a><b/><c/><d/></a>", 2},
        {"<a><b/><c><d/></c><e/></a>", 3},
        {"\xEF\xBB\xBF<a/>", 1},
        {"<?xml version='1.0'?><a><b/></a>", 2},
        {"<?xml version='1.0' encoding='UTF-8'?><a><b/></a>", 2},
        {"<?xml version='1.0' encoding=\"utf-8\"?><a><b/></a>", 2},
        {"<a><!-- <b><c><d> </a></a> > --><b/></a>", 2},
        {"<a><![CDATA[<b><c></a></a>]] ]]><b/></a>", 2},
        {"<a><?pi <b></a> ?><b/></a>", 2},
        {"<a x='/>' y=\"</a>\"><b z='\">'/></a>", 2},
        {"<a x='1'\n/>", 1},
        {"<a>&lt;b&gt; > <b/></a>", 2},
        {"<a><b", 2},
        {"<a><b x='", 2},
        {"<a><!-- ", 1},
        {"<", 1},
    };
    for (const auto& row : rows) EXPECT_EQ(levelsOf(row.document), row.levels) << row.document;
}

TEST(XmlLevels, AreNotToldByBytesThatMayMeanSomethingElse) {
    for (const std::string& document :
         {std::string("<!DOCTYPE a><a/>"), std::string("<a/><!x"),
          std::string("<?xml version='1.0' encoding='UTF-7'?><a/>"),
          std::string("<?xml version='1.0' encoding='ISO-2022-JP'?><a/>"), std::string("\xFF\xFE<\0", 4),
          std::string("\xFE\xFF\0<", 4), std::string("<\0a\0", 4), std::string("\0<\0a", 4)})
        EXPECT_EQ(levelsOf(document), std::nullopt) << document;
}

/// The most levels that a parser goes through up to the end or the first fault.
int levelsOfParser(const std::string& document) {
    QXmlStreamReader reader(QByteArray::fromStdString(document));
    reader.setNamespaceProcessing(false);
    int level = 0, most = 0;
    while (!reader.atEnd()) {
        const auto token = reader.readNext();
        if (token == QXmlStreamReader::StartElement) most = std::max(most, ++level);
        if (token == QXmlStreamReader::EndElement) --level;
    }
    return most;
}

TEST(XmlLevels, AreNeverFewerThanAParserSees) {
    const char* const pieces[] = {"<a>",  "<a>",  "<b x='1'>", "</a>", "</a>", "</b>", "<a/>",
                                  "<!--", "-->",  "<![CDATA[", "]]>",  "<?p ", "?>",   "'",
                                  "\"",   ">",    "/>",        "<",    "/",    " ",    "x='",
                                  "y=\"", "&lt;", "--",        "text", "]]",   "</a >"};
    std::mt19937 random(7);
    int deep = 0;
    for (int i = 0; i < 60000; ++i) {
        std::string document = i % 2 == 0 ? "<a>" : "<a><a x='>'><b x='1'>";
        for (std::size_t n = random() % 12; n > 0; --n) document += pieces[random() % std::size(pieces)];
        const std::optional<int> told = levelsOf(document);
        if (!told) continue;
        const int parsed = levelsOfParser(document);
        ASSERT_GE(*told, parsed) << document;
        deep += parsed > 3;
    }
    EXPECT_GT(deep, 500) << "the documents say nothing";
}

TEST(XmlFile, IsHarmlessUpToItsMostLevels) {
    EXPECT_TRUE(harmless(nested(1000, "text<!-- note -->")));
    EXPECT_FALSE(harmless(nested(1001)));
    EXPECT_TRUE(harmless("<!DOCTYPE n>" + nested(1000)));
    EXPECT_FALSE(harmless("<!DOCTYPE n>" + nested(1001)));
    const std::string entity = "<!DOCTYPE n [<!ENTITY e '<n><n/></n>'>]>";
    EXPECT_TRUE(harmless(entity + nested(998, "&e;")));
    EXPECT_FALSE(harmless(entity + nested(999, "&e;"))) << "levels of an entity count";
    const std::string hidden = "<!DOCTYPE n [<!ENTITY e '&#60;n>&#60;n/>&#60;/n>'>]>";
    EXPECT_TRUE(harmless(hidden + nested(998, "&e;")));
    EXPECT_FALSE(harmless(hidden + nested(999, "&e;"))) << "however they are written";
    for (const auto encoding : {QStringConverter::Utf16LE, QStringConverter::Utf16BE}) {
        const auto wide = [&](int levels) {
            return QByteArray(QStringEncoder(encoding, QStringConverter::Flag::WriteBom)
                                  .encode(QString::fromStdString(nested(levels))));
        };
        EXPECT_TRUE(isHarmless(wide(1000)));
        EXPECT_FALSE(isHarmless(wide(1001)));
    }
}

TEST(XmlFile, IsHarmlessUpToWhatItsEntitiesMakeOfIt) {
    const std::string head = "<!DOCTYPE n [<!ENTITY e '" + std::string(4000, 'x') + "'>]>";
    const auto referring = [&](int times, const std::string& open, const std::string& close) {
        std::string document = head + open;
        for (int i = 0; i < times; ++i) document += "&e;";
        return document + close;
    };
    EXPECT_TRUE(harmless(referring(200, "<n>", "</n>")));
    EXPECT_FALSE(harmless(referring(300, "<n>", "</n>")));
    EXPECT_FALSE(harmless(referring(300, "<n><b/>", "</n>")));
    std::string attributes = head + "<n>";
    for (int i = 0; i < 300; ++i) attributes += "<b a='&e;'/>";
    EXPECT_FALSE(harmless(attributes + "</n>")) << "in attributes too";
    std::string defaults =
        "<!DOCTYPE n [<!ENTITY e '" + std::string(4000, 'x') + "'><!ATTLIST b a CDATA '&e;'>]><n>";
    for (int i = 0; i < 300; ++i) defaults += "<b/>";
    EXPECT_FALSE(harmless(defaults + "</n>")) << "and in those that elements have by default";
}

TEST(XmlFile, MayReferOftenUnlessItDeclaresEntities) {
    const auto referring = [](const std::string& head, int times) {
        std::string document = head + "<n>";
        for (int i = 0; i < times; ++i) document += "&amp;";
        return document + "</n>";
    };
    EXPECT_TRUE(harmless(referring("", 50000)));
    EXPECT_TRUE(harmless(referring("<!DOCTYPE n>", 50000)));
    const std::string head = "<!DOCTYPE n [<!ENTITY e 'x'>]>";
    EXPECT_TRUE(harmless(referring(head, 1000)));
    EXPECT_FALSE(harmless(referring(head, 1001)));
    for (const auto encoding : {QStringConverter::Utf16BE, QStringConverter::Utf32LE}) {
        const auto wide = [&](const std::string& document) {
            return QByteArray(QStringEncoder(encoding, QStringConverter::Flag::WriteBom)
                                  .encode(QString::fromStdString(document)));
        };
        EXPECT_TRUE(isHarmless(wide(referring("", 2000))));
        EXPECT_FALSE(isHarmless(wide(referring(head, 1001))));
    }
}

/// Reads a file of these bytes into a tree; how long it took, in seconds.
double timeOf(const std::string& bytes, bool isRead) {
    const std::string path = testing::TempDir() + "lm_xmlfile_" + std::to_string(::getpid());
    std::FILE* const file = std::fopen(path.c_str(), "wb");
    std::fwrite(bytes.data(), 1, bytes.size(), file);
    std::fclose(file);
    const auto start = std::chrono::steady_clock::now();
    {
        QDomDocument document;
        EXPECT_EQ(lm::settings::readXml(lm::system::fromUtf8(path), document), isRead);
    }
    const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - start;
    std::remove(path.c_str());
    return taken.count();
}

TEST(XmlFile, IsRefusedSoonWhenEntitiesExpandWithoutEnd) {
    std::string doubling = "<!DOCTYPE a [<!ENTITY e0 'lol'>";
    for (int i = 1; i < 40; ++i)
        doubling += "<!ENTITY e" + std::to_string(i) + " '&e" + std::to_string(i - 1) + ";&e" +
                    std::to_string(i - 1) + ";'>";
    EXPECT_LT(timeOf(doubling + "]><a>&e39;</a>", false), 5);
    EXPECT_LT(timeOf(doubling + "]><a b='&e39;'/>", false), 5);
    std::string often = "<!DOCTYPE a [<!ENTITY e '" + std::string(4000, 'x') + "'>]><a>";
    for (int i = 0; i < 100000; ++i) often += "&e;"; // 800 MB of text
    EXPECT_LT(timeOf(often + "</a>", false), 1);
    EXPECT_LT(timeOf("<!DOCTYPE a [<!ENTITY e '&f;'><!ENTITY f '&e;'>]><a>&e;</a>", false), 5);
}

TEST(XmlFile, IsRefusedSoonWhenItIsDeep) {
    EXPECT_LT(timeOf(nested(200000), false), 5);
    EXPECT_LT(timeOf(nested(200000).substr(0, 1000000), false), 5) << "and cut off";
    EXPECT_LT(timeOf("<!DOCTYPE n>" + nested(200000), false), 5);
}

TEST(XmlFile, IsRefusedUnreadWhenItIsLarge) {
    const std::string path = testing::TempDir() + "lm_xmlfile_large_" + std::to_string(::getpid());
    std::ofstream(path) << "<a/>" << std::string(100, ' ');
    const auto isRead = [&](std::uintmax_t size) {
        std::filesystem::resize_file(path, size);
        QDomDocument document;
        return lm::settings::readXml(lm::system::fromUtf8(path), document);
    };
    const auto start = std::chrono::steady_clock::now();
    EXPECT_FALSE(isRead(std::uintmax_t(100) << 30)) << "a hole on the disk";
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(1));
    EXPECT_TRUE(isRead(104));
    // One too many, and each of them well-formed.
    std::ofstream(path) << "<a>" << std::string(std::size_t(lm::settings::kMostBytes) - 7, ' ') << "</a>";
    EXPECT_TRUE(isRead(std::uintmax_t(lm::settings::kMostBytes)));
    std::ofstream(path, std::ios::app) << ' ';
    EXPECT_FALSE(isRead(std::uintmax_t(lm::settings::kMostBytes) + 1));
    std::remove(path.c_str());
}

TEST(XmlFile, HasAPath) {
    QDomDocument document;
    EXPECT_FALSE(lm::settings::readXml({}, document));
    EXPECT_FALSE(lm::settings::writeXml({}, document));
    const lm::WideChar zero[] = {0, 'x'};
    EXPECT_FALSE(lm::settings::readXml({zero, 2}, document));
    EXPECT_FALSE(lm::settings::writeXml({zero, 2}, document));
}

} // namespace
