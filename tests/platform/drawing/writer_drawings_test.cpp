// SPDX-License-Identifier: MIT
// Real drawings, compared group by group with what is written of them, in their own version and in all
// others. What may differ stands in `allowed`; docs/formats/dxf.md tells the same.
#include "writer_support.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <map>
#include <set>

namespace drawing_test {
namespace {

using lm::drawing::Group;
using lm::drawing::Source;
using lm::drawing::Values;
using lm::drawing::ValueType;

std::string fileText(const std::filesystem::path& path) {
    std::ifstream in(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), {});
}

/// The shared drawings, beside the tree or where LM_SHARED says.
std::vector<std::filesystem::path> sharedDrawings() {
    const char* const named = std::getenv("LM_SHARED");
    const std::filesystem::path folder =
        (named != nullptr ? std::filesystem::path(named)
                          : std::filesystem::path(LM_SOURCE_DIR) / ".." / "shared") /
        "drawings";
    std::vector<std::filesystem::path> files;
    if (std::filesystem::is_directory(folder))
        for (const auto& entry : std::filesystem::directory_iterator(folder))
            if (entry.path().extension() == ".dxf") files.push_back(entry.path());
    if (files.empty()) std::printf("shared drawings not found: %s\n", folder.c_str());
    std::sort(files.begin(), files.end());
    return files;
}

/// A group as what it means: number or text, whatever form and encoding it stands in.
struct Meaning {
    int code;
    std::string value;
    bool operator==(const Meaning&) const = default;
};

struct Entry {
    std::string type;
    std::vector<Meaning> groups;
};

std::string meaningOf(const Values& values, const Group& group) {
    bool bad = false;
    switch (lm::drawing::valueTypeOf(group.code)) {
    case ValueType::kReal:
        return utf8(OdResBuf::newRb(0, values.real(group, bad))->getString());
    case ValueType::kInt16:
    case ValueType::kInt32:
    case ValueType::kInt64:
    case ValueType::kBool:
        return std::to_string(values.integer(group, bad));
    case ValueType::kBinary: {
        std::string hex;
        for (const unsigned char byte : values.binary(group, bad)) hex += std::to_string(byte) + ",";
        return hex;
    }
    default: {
        const std::string text = utf8(values.text(group, bad));
        return group.code == 0 ? std::string(lm::drawing::stripped(text)) : text;
    }
    }
}

/// All entries of a drawing as its source has them: sections, ends and comments too.
std::vector<Entry> entriesOf(const OdDbDatabase& db) {
    const Source& source = *db.data().source;
    const Values values(source);
    std::vector<Entry> entries{{"start", {}}};
    lm::drawing::GroupSpan all{&source, source.begin(), source.bytes.size()};
    lm::drawing::forEachGroupIn(all, [&](const Group& group, const char*, const char*) {
        const std::string meaning = meaningOf(values, group);
        if (group.code == 0)
            entries.push_back({meaning, {}});
        else
            entries.back().groups.push_back({group.code, meaning});
        return !(group.code == 0 && meaning == "EOF");
    });
    return entries;
}

std::string keyOf(const Entry& entry) {
    const int code = entry.type == "DIMSTYLE" ? 105 : entry.type == "SECTION" ? 2 : 5;
    for (const Meaning& group : entry.groups)
        if (group.code == code) return entry.type + " " + group.value;
    for (const Meaning& group : entry.groups)
        if (group.code == 2) return entry.type + " " + group.value;
    return entry.type;
}

/// Variables of the header by name.
std::map<std::string, std::vector<Meaning>> variablesOf(const Entry& header) {
    std::map<std::string, std::vector<Meaning>> variables;
    std::string name;
    for (const Meaning& group : header.groups) {
        if (group.code == 9) name = group.value;
        if (!name.empty()) variables[name].push_back(group);
    }
    return variables;
}

/// Variables that a save may change or add.
const std::set<std::string> kOwnVariables = {"$ACADVER", "$DWGCODEPAGE", "$HANDSEED", "$CLAYER", "$INSBASE"};

bool allowedVariable(const std::string& name) {
    return kOwnVariables.count(name) != 0;
}

/// What a save may add to a drawing of R2000 or later: what every drawing has, in tables and blocks.
bool allowedAddition(const Entry& entry) {
    static const std::set<std::string> types = {"TABLE", "ENDTAB", "VPORT",        "LTYPE", "LAYER",
                                                "STYLE", "APPID",  "BLOCK_RECORD", "BLOCK", "ENDBLK"};
    return types.count(entry.type) != 0;
}

class Comparison {
public:
    Comparison(const OdDbDatabase& before, const std::vector<Entry>& entries, const OdDbDatabase& after,
               bool binary)
        : m_before(entries), m_after(entriesOf(after)), m_mended(mendedOf(before)), m_binary(binary) {}

    std::vector<std::string> run() {
        std::size_t at = 0;
        for (const Entry& entry : m_before) {
            const std::size_t found = find(entry, at);
            if (found == m_after.size()) {
                m_differences.push_back("missing: " + keyOf(entry));
                continue;
            }
            for (; at < found; ++at)
                if (!allowedAddition(m_after[at])) m_differences.push_back("added: " + keyOf(m_after[at]));
            compare(entry, m_after[at++]);
        }
        for (; at < m_after.size(); ++at) m_differences.push_back("added: " + keyOf(m_after[at]));
        return m_differences;
    }

private:
    /// Handles of entries that the reader mended: they are written mended.
    static std::set<std::string> mendedOf(const OdDbDatabase& db) {
        std::set<std::string> handles;
        for (const auto& repair : db.report().repairs())
            handles.insert(utf8(OdDbHandle(repair.handle).ascii()));
        return handles;
    }

    bool isMended(const Entry& entry) const {
        const std::string key = keyOf(entry);
        const std::size_t blank = key.find(' ');
        return blank != std::string::npos && m_mended.count(key.substr(blank + 1)) != 0;
    }

    std::size_t find(const Entry& entry, std::size_t from) const {
        const std::string key = keyOf(entry);
        for (std::size_t i = from; i < m_after.size(); ++i)
            if (keyOf(m_after[i]) == key) return i;
        return m_after.size();
    }

    void compare(const Entry& before, const Entry& after) {
        if (!before.groups.empty() && before.groups.front() == Meaning{2, "HEADER"})
            return compareHeader(before, after);
        std::vector<Meaning> a = expected(before), b = after.groups;
        if (a == b || isMended(before)) return;
        // A table counts its records, and gets those that every drawing has.
        const auto uncounted = [](std::vector<Meaning>& groups) {
            std::erase_if(groups, [](const Meaning& group) { return group.code == 70; });
        };
        if (before.type == "TABLE") uncounted(a), uncounted(b);
        if (a == b) return;
        std::size_t i = 0;
        while (i < a.size() && i < b.size() && a[i] == b[i]) ++i;
        const auto text = [](const std::vector<Meaning>& groups, std::size_t at) {
            return at < groups.size() ? std::to_string(groups[at].code) + " " + groups[at].value
                                      : std::string("nothing");
        };
        m_differences.push_back(keyOf(before) + ": " + text(a, i) + " became " + text(b, i));
    }

    /// What a binary file makes of groups: codes of no known type are left out, long chunks are parted,
    /// integers have so many bits.
    std::vector<Meaning> expected(const Entry& entry) const {
        if (!m_binary) return entry.groups;
        std::vector<Meaning> groups;
        for (const Meaning& group : entry.groups) {
            const ValueType type = lm::drawing::valueTypeOf(group.code);
            if (type == ValueType::kUnknown) continue;
            groups.push_back(group);
            const long long number = std::atoll(group.value.c_str());
            if (type == ValueType::kInt16)
                groups.back().value = std::to_string(static_cast<std::int16_t>(number));
            if (type == ValueType::kInt32)
                groups.back().value = std::to_string(static_cast<std::int32_t>(number));
            if (type == ValueType::kBool) groups.back().value = std::to_string(number != 0);
        }
        return groups;
    }

    void compareHeader(const Entry& before, const Entry& after) {
        const auto a = variablesOf({before.type, expected(before)}), b = variablesOf(after);
        for (const auto& [name, groups] : a) {
            const auto found = b.find(name);
            if (found == b.end())
                m_differences.push_back("missing: " + name);
            else if (groups != found->second && !allowedVariable(name))
                m_differences.push_back(name + " differs");
        }
        for (const auto& [name, groups] : b)
            if (a.count(name) == 0 && !allowedVariable(name)) m_differences.push_back("added: " + name);
    }

    const std::vector<Entry>& m_before;
    std::vector<Entry> m_after;
    std::set<std::string> m_mended;
    bool m_binary;
    std::vector<std::string> m_differences;
};

std::string firstOf(const std::vector<std::string>& differences) {
    std::string text;
    for (std::size_t i = 0; i < std::min<std::size_t>(differences.size(), 10); ++i)
        text += "\n  " + differences[i];
    return text;
}

bool isOld(const OdDbDatabase& db) {
    return utf8(db.originalFileVersion()) < "AC1015";
}

TEST(WriterDrawings, KeepEveryGroupInEveryVersionAndForm) {
    for (const auto& path : sharedDrawings()) {
        SCOPED_TRACE(path.filename().string());
        const std::string bytes = fileText(path);
        const auto before = readBytes(bytes);
        if (isOld(*before.get())) continue;
        const std::vector<Entry> entries = entriesOf(*before.get());
        for (const FileVersion version : kVersions)
            for (const bool binary : {false, true}) {
                const auto after = savedAndRead(*before.get(), {version, binary});
                const auto differences = Comparison(*before.get(), entries, *after.get(), binary).run();
                EXPECT_TRUE(differences.empty())
                    << lm::drawing::versionText(version) << (binary ? " binary" : "") << firstOf(differences);
            }
    }
}

/// An old drawing gets what newer ones have, but keeps each entry and each value.
TEST(WriterDrawings, KeepEveryEntryOfOldFiles) {
    for (const auto& path : sharedDrawings()) {
        SCOPED_TRACE(path.filename().string());
        const auto before = readBytes(fileText(path));
        if (!isOld(*before.get())) continue;
        const auto after = savedAndRead(*before.get(), {FileVersion::kR2000});
        std::map<std::string, long> counts;
        for (const Entry& entry : entriesOf(*before.get())) ++counts[entry.type];
        for (const Entry& entry : entriesOf(*after.get())) --counts[entry.type];
        for (const auto& [type, count] : counts) EXPECT_LE(count, 0) << type;
        expectSameObjects(*before.get(), *after.get());
    }
}

TEST(WriterDrawings, SaveTheSameTwiceInEveryVersionAndForm) {
    for (const auto& path : sharedDrawings()) {
        SCOPED_TRACE(path.filename().string());
        const auto source = readBytes(fileText(path));
        for (const FileVersion version : kVersions)
            for (const bool binary : {false, true}) {
                const std::string first = saved(*source.get(), {version, binary});
                const std::string second = saved(*readBytes(first).get(), {version, binary});
                EXPECT_TRUE(first == second)
                    << lm::drawing::versionText(version) << (binary ? " binary" : "");
            }
    }
}

TEST(WriterDrawings, ComeBackThroughBinaryWithTheSameGroups) {
    for (const auto& path : sharedDrawings()) {
        SCOPED_TRACE(path.filename().string());
        const auto text = savedAndRead(*readBytes(fileText(path)).get());
        const auto binary = savedAndRead(*text.get(), {FileVersion::kR2018, true});
        const auto again = savedAndRead(*binary.get());
        const std::vector<Entry> entries = entriesOf(*binary.get());
        const auto differences = Comparison(*binary.get(), entries, *again.get(), false).run();
        EXPECT_TRUE(differences.empty()) << firstOf(differences);
    }
}

} // namespace
} // namespace drawing_test
