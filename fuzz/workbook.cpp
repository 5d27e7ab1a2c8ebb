// SPDX-License-Identifier: MIT
// Hands workbooks to CIExcel, guard and library together, asks for everything and saves. The first byte of an
// input says what the rest is: "0" an archive as it stands, another one the content of that part of a small
// workbook.
#include "office/ciexcel.h"

#include "system/wide.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <map>
#include <string>
#include <sys/mman.h>
#include <unistd.h>
#include <zip.h>

namespace {

constexpr char kOffice[] = "http://schemas.openxmlformats.org/officeDocument/2006/relationships";
/// The parts by the letter that names them.
const std::map<char, const char*> kParts = {{'w', "xl/workbook.xml"},
                                            {'W', "xl/_rels/workbook.xml.rels"},
                                            {'s', "xl/worksheets/sheet1.xml"},
                                            {'S', "xl/worksheets/_rels/sheet1.xml.rels"},
                                            {'y', "xl/styles.xml"},
                                            {'t', "xl/sharedStrings.xml"},
                                            {'d', "xl/drawings/drawing1.xml"},
                                            {'D', "xl/drawings/_rels/drawing1.xml.rels"},
                                            {'c', "xl/charts/chart1.xml"},
                                            {'C', "xl/chartsheets/sheet2.xml"},
                                            {'a', "docProps/app.xml"},
                                            {'o', "docProps/core.xml"},
                                            {'r', "_rels/.rels"},
                                            {'T', "[Content_Types].xml"}};

std::string relations(const std::string& list) {
    std::string result = "<Relationships>";
    std::size_t at = 0;
    for (int id = 1; at < list.size(); ++id) {
        const std::size_t blank = list.find(' ', at), end = std::min(list.find(';', at), list.size());
        result += "<Relationship Id='rId" + std::to_string(id) + "' Type='" + kOffice + "/" +
                  list.substr(at, blank - at) + "' Target='" + list.substr(blank + 1, end - blank - 1) +
                  "'/>";
        at = end + 1;
    }
    return result + "</Relationships>";
}

std::map<std::string, std::string> smallWorkbook() {
    const std::string space = std::string(" xmlns:r='") + kOffice + "'";
    return {
        {"[Content_Types].xml", "<Types/>"},
        {"_rels/.rels", relations("officeDocument xl/workbook.xml;extended-properties docProps/app.xml")},
        {"xl/workbook.xml", "<workbook" + space +
                                "><sheets><sheet name='A' sheetId='1' r:id='rId1'/>"
                                "<sheet name='B' sheetId='2' r:id='rId2'/></sheets></workbook>"},
        {"xl/_rels/workbook.xml.rels",
         relations("worksheet worksheets/sheet1.xml;chartsheet chartsheets/sheet2.xml;"
                   "styles styles.xml;sharedStrings sharedStrings.xml")},
        {"xl/worksheets/sheet1.xml",
         "<worksheet" + space +
             "><sheetData><row r='1'><c r='A1' s='0' t='s'><v>0</v></c>"
             "<c r='B1'><f>A1</f></c></row></sheetData><drawing r:id='rId1'/></worksheet>"},
        {"xl/worksheets/_rels/sheet1.xml.rels", relations("drawing ../drawings/drawing1.xml")},
        {"xl/chartsheets/sheet2.xml", "<chartsheet" + space + "/>"},
        {"xl/styles.xml",
         "<styleSheet><fills><fill/></fills><cellXfs><xf fillId='0'/></cellXfs></styleSheet>"},
        {"xl/sharedStrings.xml", "<sst><si><t>x</t></si></sst>"},
        {"xl/drawings/drawing1.xml", "<wsDr/>"},
        {"xl/drawings/_rels/drawing1.xml.rels",
         relations("chart ../charts/chart1.xml;image ../media/image1.png")},
        {"xl/charts/chart1.xml", "<chartSpace/>"},
        {"docProps/app.xml", "<Properties/>"},
    };
}

/// A file in memory with a path of its own.
class MemoryFile {
public:
    explicit MemoryFile(const char* name) : m_handle(::memfd_create(name, 0)) {}
    MemoryFile(const MemoryFile&) = delete;
    MemoryFile& operator=(const MemoryFile&) = delete;
    ~MemoryFile() { ::close(m_handle); }
    void write(const void* data, std::size_t size) const {
        if (::write(m_handle, data, size) != static_cast<ssize_t>(size)) std::abort();
    }
    std::string path() const { return "/proc/self/fd/" + std::to_string(m_handle); }

private:
    int m_handle;
};

void pack(const MemoryFile& file, const std::map<std::string, std::string>& parts) {
    zip_source_t* const target = zip_source_buffer_create(nullptr, 0, 0, nullptr);
    zip_source_keep(target);
    zip_t* const archive = zip_open_from_source(target, ZIP_CREATE | ZIP_TRUNCATE, nullptr);
    for (const auto& [name, content] : parts) {
        const zip_int64_t index = zip_file_add(
            archive, name.c_str(), zip_source_buffer(archive, content.data(), content.size(), 0), 0);
        zip_set_file_compression(archive, static_cast<zip_uint64_t>(index), ZIP_CM_STORE, 0);
    }
    zip_close(archive);
    zip_stat_t stat;
    zip_source_stat(target, &stat);
    std::string bytes(stat.size, '\0');
    zip_source_open(target);
    zip_source_read(target, bytes.data(), stat.size);
    zip_source_close(target);
    zip_source_free(target);
    file.write(bytes.data(), bytes.size());
}

void askForEverything(CIExcel& excel) {
    RZStringList sheets = excel.getWorkSheets();
    for (int i = 0; i < std::min(sheets.count(), 20); ++i) {
        const RZString sheet = sheets.getIndex(i);
        const int rows = std::min(excel.GetRowCount(sheet), 30),
                  columns = std::min(excel.GetColCount(sheet), 30);
        for (int row = 0; row < rows; ++row)
            for (int column = 0; column < columns; ++column) excel.GetValue(sheet, row, column);
        excel.VerifyRowCount(sheet);
        excel.GetColumnIndex(sheet, "none", 11);
        excel.SetCell(i, 2, 2, "text");
    }
    excel.SetCell(0, 0, 0, "text");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) return 0;
    const MemoryFile in("in"), out("out");
    const auto part = kParts.find(static_cast<char>(data[0]));
    if (part == kParts.end()) {
        in.write(data + 1, size - 1);
    } else {
        std::map<std::string, std::string> parts = smallWorkbook();
        parts[part->second] = std::string(reinterpret_cast<const char*>(data) + 1, size - 1);
        pack(in, parts);
    }
    CIExcel excel(RZString(lm::WideView(lm::system::widen(in.path()))));
    askForEverything(excel);
    excel.SaveAs(RZString(lm::WideView(lm::system::widen(out.path()))));
    return 0;
}
