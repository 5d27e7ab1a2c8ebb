// SPDX-License-Identifier: MIT
// What the tests of the host share: wide texts, records, and guards that put the host back as it was.
#pragma once

#include "host/documentmanager.h"
#include "host/functions.h"
#include "host/session.h"

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>
#include <unistd.h>

namespace lm::test {

inline lm::WideString wide(std::string_view utf8) {
    return lm::system::fromUtf8(utf8);
}
inline CHostString hostText(std::string_view utf8) {
    return CHostString(lm::WideView(wide(utf8)));
}
inline std::string utf8(const CHostString& text) {
    return lm::system::toUtf8(text.view());
}

/// A record with a text of the C runtime, as modules build them.
inline hst_resbufW* textRecord(std::string_view text, hst_resbufW* next = nullptr) {
    hst_resbufW* record = lm::host::newRecord(RTSTR);
    const lm::WideString units = wide(text);
    const std::size_t bytes = (units.size() + 1) * sizeof(unsigned short);
    record->value.text = static_cast<unsigned short*>(std::memcpy(std::malloc(bytes), units.c_str(), bytes));
    record->rbnext = next;
    return record;
}

inline hst_resbufW* shortRecord(short value, hst_resbufW* next = nullptr) {
    hst_resbufW* record = lm::host::newRecord(RTSHORT);
    record->value.int16 = value;
    record->rbnext = next;
    return record;
}

/// One line for a chain, such as "5005:abc 5003:7".
inline std::string told(const hst_resbufW* list) {
    std::string line;
    for (; list != nullptr; list = list->rbnext) {
        if (!line.empty()) line += ' ';
        line += std::to_string(list->restype);
        if (list->restype == RTSTR) line += ":" + utf8(CHostString(list->value.text));
        if (list->restype == RTSHORT) line += ":" + std::to_string(list->value.int16);
    }
    return line;
}

/// Collects console text for as long as it lives.
class ConsoleCapture {
public:
    ConsoleCapture() {
        m_before =
            lm::host::setConsoleSink([this](lm::WideView text) { lm::system::appendUtf8(text, m_text); });
    }
    ~ConsoleCapture() { lm::host::setConsoleSink(m_before); }
    const std::string& text() const { return m_text; }

private:
    std::string m_text;
    lm::host::TextSink m_before;
};

/// A temporary folder with a blank and accented letters in its name; it goes with the object.
class TemporaryFolder {
public:
    TemporaryFolder() {
        std::string name = (std::filesystem::temp_directory_path() / "pasta çã XXXXXX").string();
        m_path = mkdtemp(name.data());
    }
    ~TemporaryFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(m_path, ignored);
    }
    std::string file(const std::string& name, std::string_view content) const {
        const std::filesystem::path path = m_path / name;
        std::ofstream(path, std::ios::binary) << content;
        return path.string();
    }
    const std::filesystem::path& path() const { return m_path; }

private:
    std::filesystem::path m_path;
};

inline OdString odPath(const std::string& path) {
    return OdString(lm::WideView(wide(path)));
}

/// A drawing file without any object of its own.
inline constexpr std::string_view kEmptyDrawing = "0\nSECTION\n2\nENTITIES\n0\nENDSEC\n0\nEOF\n";

/// Closes what a test left open.
class Documents {
public:
    ~Documents() { manager.closeAll(); }
    CHostDocumentManager& manager = lm::host::documentManager();
};

} // namespace lm::test
