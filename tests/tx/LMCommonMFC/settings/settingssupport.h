// SPDX-License-Identifier: MIT
// What the tests of settings share: a folder for common data of the test's own with the file in it, trees to
// compare files by, and the store's private operations.
#pragma once

#include "settings/ciregistro.h"

#include "platform/host/hostsupport.h"
#include "tx/LMCommonMFC/callsupport.h"

#include <gtest/gtest.h>

#include <QDomDocument>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sys/fsuid.h>
#include <unistd.h>

namespace settings_test {

namespace fs = std::filesystem;
using lm::test::rz;
using lm::test::told;

/// Text of UTF-8, exactly.
inline RZString text(std::string_view utf8) {
    return RZString(lm::WideView(lm::system::fromUtf8(utf8)));
}

inline void write(const fs::path& path, std::string_view content) {
    std::ofstream(path, std::ios::binary) << content;
}

inline std::string contentOf(const fs::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

/// A node with what it holds, the attributes by name: their order in a file means nothing.
inline std::string treeOf(const QDomNode& node) {
    std::string tree = node.nodeName().toStdString() + "=" + node.nodeValue().toStdString();
    std::map<std::string, std::string> attributes;
    for (int i = 0; i < node.attributes().size(); ++i) {
        const QDomNode attribute = node.attributes().item(i);
        attributes[attribute.nodeName().toStdString()] = attribute.nodeValue().toStdString();
    }
    for (const auto& [name, value] : attributes) tree += " " + name + "='" + value + "'";
    tree += "(";
    for (QDomNode child = node.firstChild(); !child.isNull(); child = child.nextSibling())
        tree += treeOf(child);
    return tree + ")";
}

/// The tree of an XML text; what it tells of a text that isn't well-formed can't be mistaken for one.
inline std::string treeOf(const std::string& xml) {
    QDomDocument document;
    QString reason;
    if (!document.setContent(QByteArray::fromStdString(xml), &reason))
        return "not well-formed: " + reason.toStdString() + "\n" + xml;
    return treeOf(document.documentElement());
}

/// A folder that is there as long as the object, with a space and an accent in its name.
class Folder {
public:
    Folder()
        : m_path(fs::path(testing::TempDir()) /
                 ("lm \xC3\xA7" + std::to_string(::getpid()) +
                  testing::UnitTest::GetInstance()->current_test_info()->test_suite_name() +
                  testing::UnitTest::GetInstance()->current_test_info()->name())) {
        fs::create_directories(m_path);
    }
    ~Folder() { fs::remove_all(m_path); }
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;
    const fs::path& path() const { return m_path; }
    RZString text(const char* name) const { return settings_test::text((m_path / name).native()); }

private:
    fs::path m_path;
};

/// A folder for common data of the test's own, and the file of the settings in it.
class SettingsTest : public testing::Test {
protected:
    SettingsTest() {
        fs::create_directories(m_folder.path() / "LM");
        ::setenv("LM_COMMON_APPDATA", m_folder.path().c_str(), 1);
    }
    ~SettingsTest() override { ::unsetenv("LM_COMMON_APPDATA"); }

    void lay(std::string_view content) { write(m_file, content); }
    /// The file with these children of its container.
    void layContainer(const std::string& settings) { lay("<any><local>" + settings + "</local></any>"); }
    std::string content() const { return contentOf(m_file); }

    const Folder m_folder;
    const fs::path m_file = m_folder.path() / "LM" / "LMREG2022SP0.xml";
    CIRegistro m_settings;
};

/// Acts for another user in files, as long as the object is there: one to whom the rights of files apply.
class AsNobody {
public:
    AsNobody() : m_before(::setfsuid(65534)) {}
    ~AsNobody() { ::setfsuid(static_cast<uid_t>(m_before)); }

private:
    int m_before;
};

// Private operations: an explicit instantiation may name them.
template<class Operation, typename Operation::Type Pointer>
struct Opener {
    friend typename Operation::Type open(Operation) { return Pointer; }
};
#define LM_OPEN(Name, Class, operation, ...)                                                                 \
    struct Name {                                                                                            \
        using Type = __VA_ARGS__;                                                                            \
        friend Type open(Name);                                                                              \
    };                                                                                                       \
    template struct Opener<Name, &Class::operation>

LM_OPEN(ReadValue, CIRegistro, readValue, RZString (CIRegistro::*)(RZString) const);
LM_OPEN(SaveValue, CIRegistro, saveValue, void (CIRegistro::*)(RZString, RZString));
LM_OPEN(GetFileReg, CIRegistro, getFileReg, lm::WideString (CIRegistro::*)() const);
LM_OPEN(GetSizeOfFile, CIRegistro, GetSizeOfFile, std::uint64_t (CIRegistro::*)(const lm::WideString&) const);

inline std::string read(const RZString& key) {
    return told((CIRegistro().*open(ReadValue()))(key));
}
inline void save(const RZString& key, const RZString& value) {
    CIRegistro settings;
    (settings.*open(SaveValue()))(key, value);
}

} // namespace settings_test
