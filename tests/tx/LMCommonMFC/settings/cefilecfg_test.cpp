// SPDX-License-Identifier: MIT
// Configuration files: which of them are read, what counts in them, and what a change makes of them.
#include "settings/cefilecfg.h"

#include "settingssupport.h"

#include <QTextStream>

namespace settings_test {

LM_OPEN(IsValid, electrical::CEFileCfg, IsValid, bool (electrical::CEFileCfg::*)());

} // namespace settings_test

namespace {

using namespace settings_test;
using electrical::CEFileCfg;

const char kFile[] = "<Cfg><!-- note --><printer><paper value='A4'/><none/><paper value='A3'/></printer>"
                     "<printer><paper value='A2'/><own x='1'/></printer><empty/></Cfg>";

class ConfigFile : public testing::Test {
protected:
    bool load(std::string_view content) {
        write(m_path, content);
        return m_file.Load(m_name);
    }
    std::string value(const char* section, const char* key) {
        return told(m_file.GetValor(rz(section), rz(key)));
    }
    std::string saved() {
        EXPECT_TRUE(m_file.save(m_folder.text("saved.xml")));
        return contentOf(m_folder.path() / "saved.xml");
    }
    bool isValid() { return (m_file.*open(IsValid()))(); }

    const Folder m_folder;
    const fs::path m_path = m_folder.path() / "file.xml";
    const RZString m_name = m_folder.text("file.xml");
    CEFileCfg m_file;
};

TEST_F(ConfigFile, GivesTheAttributeOfAValueInASection) {
    ASSERT_TRUE(load(kFile));
    EXPECT_TRUE(isValid());
    EXPECT_EQ(value("printer", "paper"), "A4") << "the first of two values and of two sections";
    EXPECT_EQ(value("printer", "own"), "") << "a second section of the name isn't looked into";
    EXPECT_EQ(value("printer", "none"), "") << "no attribute";
    EXPECT_EQ(value("empty", "paper"), "");
    EXPECT_EQ(value("none", "paper"), "");
    EXPECT_EQ(value("Printer", "paper"), "") << "names go by case";
    EXPECT_EQ(value("printer", "Paper"), "");
    EXPECT_EQ(value("", ""), "");
}

TEST_F(ConfigFile, NamesNeitherRootNorAttributes) {
    ASSERT_TRUE(load("<a><s><k anything='\xC3\xA7 \xCE\xA9'/></s></a>"));
    EXPECT_EQ(value("s", "k"), "\xC3\xA7 ?") << "through the narrow code page";
    ASSERT_TRUE(load("<a><s><k one='1' two='2' three='3'/></s></a>"));
    const QString first = m_file.GetNode(m_file.GetNodeMain("s"), "k").attributes().item(0).nodeValue();
    EXPECT_EQ(value("s", "k"), first.toStdString()) << "of several, the first by Qt's order";
}

TEST_F(ConfigFile, HasDirectChildrenOnly) {
    ASSERT_TRUE(load("<a><b><s><k v='1'/></s></b><s><c><k v='2'/></c></s></a>"));
    EXPECT_EQ(value("s", "k"), "");
}

TEST_F(ConfigFile, IsNamedByATrimmedPath) {
    write(m_path, kFile);
    EXPECT_TRUE(m_file.Load(rz(" \t") + m_name + rz("\r\n ")));
    EXPECT_EQ(value("printer", "paper"), "A4");
    EXPECT_TRUE(m_file.Load(text(m_folder.path().native() + "\\file.xml"))) << "either separator";
    for (const char* blank : {"", " ", " \t\r\n"}) EXPECT_FALSE(m_file.Load(rz(blank)));
    EXPECT_EQ(value("printer", "paper"), "") << "a Load of nothing shuts the values";
}

TEST_F(ConfigFile, KeepsItsTreeWhenALoadFails) {
    ASSERT_TRUE(load(kFile));
    for (const char* broken :
         {"", "plain", "<a><b></a>", "<Cfg><printer><paper value='A4'/></printer>", "<a/><b/>"}) {
        EXPECT_FALSE(load(broken)) << broken;
        EXPECT_EQ(value("printer", "paper"), "") << "the values are shut";
        EXPECT_FALSE(m_file.SetValor("printer", "paper", "lost"));
        EXPECT_EQ(treeOf(saved()), treeOf(std::string(kFile))) << "the tree is there";
        EXPECT_FALSE(m_file.GetNodeMain("printer").isNull()) << "and nodes can be had";
    }
    EXPECT_FALSE(m_file.Load(m_folder.text("none")));
    EXPECT_FALSE(m_file.Load(m_folder.text(""))) << "a folder";
    ASSERT_TRUE(load(kFile));
    EXPECT_EQ(value("printer", "paper"), "A4") << "open again";
}

TEST_F(ConfigFile, MayHaveTheMostLevels) {
    const auto nested = [](int levels) {
        std::string file;
        for (int i = 0; i < levels; ++i) file += "<n>";
        for (int i = 0; i < levels; ++i) file += "</n>";
        return file;
    };
    EXPECT_TRUE(load(nested(1000)));
    saved();
    for (const int levels : {1001, 5000, 200000}) EXPECT_FALSE(load(nested(levels))) << levels;
}

TEST_F(ConfigFile, ChangesInMemoryUntilItIsSaved) {
    ASSERT_TRUE(load(kFile));
    EXPECT_TRUE(m_file.SetValor("printer", "paper", text("<\xC3\xA7&\" \xCE\xA9>")));
    EXPECT_EQ(contentOf(m_path), kFile);
    EXPECT_EQ(value("printer", "paper"), "<\xC3\xA7&\" ?>");
    std::string changed = kFile;
    changed.replace(changed.find("A4"), 2, "&lt;\xC3\xA7&amp;&quot; \xCE\xA9>");
    EXPECT_EQ(treeOf(saved()), treeOf(changed));
    EXPECT_NE(saved().find("\n  <printer>\n    <paper value="), std::string::npos) << "indented by two";
    EXPECT_EQ(contentOf(m_path), kFile) << "the path of the last Load counts for nothing";
}

TEST_F(ConfigFile, GetsNothingNewByAChange) {
    ASSERT_TRUE(load(kFile));
    EXPECT_FALSE(m_file.SetValor("none", "paper", "x"));
    EXPECT_FALSE(m_file.SetValor("printer", "missing", "x"));
    EXPECT_FALSE(m_file.SetValor("Printer", "paper", "x"));
    EXPECT_FALSE(m_file.SetValor("empty", "paper", "x"));
    EXPECT_TRUE(m_file.SetValor("printer", "none", "lost")) << "without an attribute, true all the same";
    EXPECT_EQ(value("printer", "none"), "");
    EXPECT_EQ(treeOf(saved()), treeOf(std::string(kFile)));
}

TEST_F(ConfigFile, IsEmptyUntilItIsLoaded) {
    EXPECT_FALSE(isValid());
    EXPECT_TRUE(m_file.isNull());
    EXPECT_EQ(value("s", "k"), "");
    EXPECT_FALSE(m_file.SetValor("s", "k", "x"));
    EXPECT_TRUE(m_file.GetNodeMain("s").isNull());
    EXPECT_EQ(saved(), "");
    EXPECT_TRUE(fs::exists(m_folder.path() / "saved.xml"));
}

TEST_F(ConfigFile, HasSectionsThatCannotBeChanged) {
    ASSERT_TRUE(load("<a><!-- note --><?do this?><s><k v='1'/></s></a>"));
    const std::string before = saved();
    EXPECT_EQ(value("#comment", "k"), "");
    EXPECT_EQ(value("do", "k"), "");
    m_file.SetValor("#comment", "k", "2");
    m_file.SetValor("do", "k", "2");
    EXPECT_EQ(treeOf(saved()), treeOf(before));
}

TEST_F(ConfigFile, IsSavedOverAnotherWhole) {
    ASSERT_TRUE(load("<a><s><k v='1'/></s></a>"));
    write(m_folder.path() / "saved.xml", std::string(5000, 'x'));
    fs::create_hard_link(m_folder.path() / "saved.xml", m_folder.path() / "same file");
    EXPECT_EQ(treeOf(saved()), treeOf(std::string("<a><s><k v='1'/></s></a>")));
    EXPECT_EQ(contentOf(m_folder.path() / "same file"), saved()) << "in place";
    EXPECT_FALSE(m_file.save(m_folder.text("none/file.xml")));
    EXPECT_FALSE(m_file.save(m_folder.text(""))) << "a folder";
    EXPECT_FALSE(m_file.save(""));
    EXPECT_TRUE(m_file.save(text(m_folder.path().native() + "\\other.xml")));
    EXPECT_TRUE(fs::exists(m_folder.path() / "other.xml"));
    EXPECT_FALSE(m_file.save(m_folder.text("other.xml") + " /x")) << "a path isn't trimmed here";
}

TEST_F(ConfigFile, GivesNodesByName) {
    ASSERT_TRUE(load(kFile));
    const QDomNode section = m_file.GetNodeMain("printer");
    EXPECT_EQ(section.nodeName(), "printer");
    EXPECT_EQ(m_file.GetNode(section, "paper").toElement().attribute("value"), "A4");
    EXPECT_TRUE(m_file.GetNode(section, "missing").isNull());
    EXPECT_TRUE(m_file.GetNode(m_file.GetNodeMain("empty"), "paper").isNull());
    EXPECT_TRUE(m_file.GetNode(QDomNode(), "paper").isNull());
    EXPECT_TRUE(m_file.GetNodeMain("none").isNull());
}

TEST_F(ConfigFile, SharesItsTreeWithItsCopies) {
    ASSERT_TRUE(load(kFile));
    CEFileCfg copy(m_file), assigned;
    assigned = m_file;
    EXPECT_TRUE(copy.SetValor("printer", "paper", "A0"));
    EXPECT_EQ(value("printer", "paper"), "A0");
    EXPECT_EQ(assigned.GetValor("printer", "paper"), "A0") << "the state comes along";
    EXPECT_FALSE(m_file.Load("")) << "the state is each one's own";
    EXPECT_EQ(copy.GetValor("printer", "paper"), "A0");
    const CEFileCfg shut(m_file);
    EXPECT_EQ(CEFileCfg(shut).GetValor("printer", "paper"), "");
    ASSERT_TRUE(load("<a><printer><paper value='new'/></printer></a>"));
    EXPECT_EQ(copy.GetValor("printer", "paper"), "A0") << "a Load brings a tree of its own";
}

TEST_F(ConfigFile, IsADocumentOfQt) {
    ASSERT_TRUE(load(kFile));
    EXPECT_EQ(m_file.documentElement().tagName(), "Cfg");
    QString out;
    QTextStream stream(&out);
    m_file.save(stream, 1);
    EXPECT_TRUE(out.contains("<paper"));
    static_assert(std::is_base_of_v<QDomDocument, CEFileCfg>);
}

} // namespace
