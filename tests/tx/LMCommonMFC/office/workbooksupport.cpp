// SPDX-License-Identifier: MIT
#include "tx/LMCommonMFC/office/workbooksupport.h"

#include "system/path.h"

#include <gtest/gtest.h>

#include <fstream>
#include <unistd.h>
#include <vector>
#include <zip.h>

namespace tests {

namespace {

constexpr char kTypes[] =
    "<Types xmlns='http://schemas.openxmlformats.org/package/2006/content-types'>"
    "<Default Extension='rels' ContentType='application/vnd.openxmlformats-package.relationships+xml'/>"
    "<Default Extension='xml' ContentType='application/xml'/></Types>";
constexpr char kRelationships[] =
    "<Relationships xmlns='http://schemas.openxmlformats.org/package/2006/relationships'>";
constexpr char kOffice[] = "http://schemas.openxmlformats.org/officeDocument/2006/relationships";

std::string relation(const std::string& id, const std::string& type, const std::string& target) {
    return "<Relationship Id='" + id + "' Type='" + kOffice + "/" + type + "' Target='" + target + "'/>";
}

} // namespace

Parts smallWorkbook(const std::string& rows, const std::string& sheetRest, const std::string& sheetHead) {
    Parts parts;
    parts["[Content_Types].xml"] = kTypes;
    parts["_rels/.rels"] =
        kRelationships + relation("rId1", "officeDocument", "xl/workbook.xml") + "</Relationships>";
    parts["xl/_rels/workbook.xml.rels"] =
        kRelationships + relation("rId1", "worksheet", "worksheets/sheet1.xml") +
        relation("rId2", "styles", "styles.xml") + relation("rId3", "sharedStrings", "sharedStrings.xml") +
        "</Relationships>";
    parts["xl/workbook.xml"] = std::string("<workbook xmlns:r='") + kOffice +
                               "'><sheets><sheet name='Um' sheetId='1' r:id='rId1'/></sheets></workbook>";
    parts["xl/styles.xml"] = "<styleSheet><fills count='1'><fill/></fills>"
                             "<cellXfs count='1'><xf numFmtId='0' fillId='0'/></cellXfs></styleSheet>";
    parts["xl/sharedStrings.xml"] = "<sst><si><t>shared</t></si></sst>";
    parts["xl/worksheets/sheet1.xml"] =
        "<worksheet>" + sheetHead + "<sheetData>" + rows + "</sheetData>" + sheetRest + "</worksheet>";
    return parts;
}

QByteArray packed(const Parts& parts) {
    zip_error_t error;
    zip_error_init(&error);
    zip_source_t* const target = zip_source_buffer_create(nullptr, 0, 0, &error);
    zip_source_keep(target);
    zip_t* const archive = zip_open_from_source(target, ZIP_CREATE | ZIP_TRUNCATE, &error);
    for (const auto& [name, content] : parts)
        zip_file_add(archive, name.c_str(), zip_source_buffer(archive, content.data(), content.size(), 0), 0);
    EXPECT_EQ(zip_close(archive), 0);
    zip_stat_t stat;
    zip_source_stat(target, &stat);
    QByteArray bytes(static_cast<qsizetype>(stat.size), '\0');
    zip_source_open(target);
    zip_source_read(target, bytes.data(), stat.size);
    zip_source_close(target);
    zip_source_free(target);
    return bytes;
}

WorkbookFolder::WorkbookFolder()
    : m_folder(std::filesystem::path(testing::TempDir()) /
               ("workbooks-" + std::to_string(::getpid()) +
                testing::UnitTest::GetInstance()->current_test_info()->name())) {
    std::filesystem::create_directories(m_folder);
}

WorkbookFolder::~WorkbookFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(m_folder, ignored);
}

RZString WorkbookFolder::text(const std::string& name) const {
    return RZString(lm::WideView(lm::system::pathText(path(name))));
}

RZString WorkbookFolder::write(const std::string& name, const QByteArray& content) const {
    std::ofstream(path(name), std::ios::binary).write(content.constData(), content.size());
    return text(name);
}

} // namespace tests
