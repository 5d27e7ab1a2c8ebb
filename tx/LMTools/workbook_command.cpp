// SPDX-License-Identifier: MIT
// _LMEXPORT and _LMIMPORT: the components of a drawing as rows of a workbook, and back again by their
// handles.
#include "commands.h"
#include "tools.h"

#include "office/ciexcel.h"

#include "drawing/drawing.h"
#include "system/file.h"
#include "system/path.h"
#include "system/savefile.h"

#include <cerrno>
#include <charconv>
#include <cstring>
#include <map>
#include <set>

#include <sys/mman.h>
#include <unistd.h>

namespace lmtools {

namespace {

/// Rows from 0: the names of the columns stand in the eleventh row, the components below it.
constexpr int kTitleRow = 0, kHeaderRow = 10, kFirstRow = 11;
/// No tag has a blank, so none of these is taken for one.
constexpr char kHandle[] = "(handle of component)", kBlock[] = "(name of block)", kPage[] = "(layer of page)";
/// Stands for a value that a workbook would make something else of.
constexpr char kOnlyInDrawing[] = "(only in the drawing)";
/// More letters than this are cut by the programs that show sheets.
constexpr std::size_t kLongestCell = 32767;

bool has(lm::WideView text, std::string_view part) {
    return text.find(lm::system::widen(part)) != lm::WideView::npos;
}

/// "http://", "ftps://" and their like, as the workbook library tells links.
bool isLink(lm::WideView text) {
    for (const char* const scheme : {"http", "https", "ftp", "ftps", "htp", "htps", "fttp", "fttps"})
        if (text.starts_with(lm::system::widen(std::string(scheme) + "://"))) return true;
    return has(text, "mailto:") || has(text, "file://");
}

/// Whether a unit may stand in a sheet: no control and no half of a pair.
bool isPlain(lm::WideChar unit) {
    return unit >= ' ' && (unit < 0xD800 || unit > 0xDFFF) && unit < 0xFFFE;
}

/// Programs read "_x0041_" as "A".
bool hasEscape(lm::WideView text) {
    for (std::size_t at = 0; at + 7 <= text.size(); ++at) {
        if (text[at] != '_' || text[at + 1] != 'x' || text[at + 6] != '_') continue;
        const std::string digits = lm::system::toUtf8(text.substr(at + 2, 4));
        if (digits.find_first_not_of("0123456789abcdefABCDEF") == std::string::npos) return true;
    }
    return false;
}

/// What a text is in a workbook instead of that text; null for one that can be written and stays itself.
const char* otherThanText(lm::WideView text) {
    if (text.starts_with(lm::WideChar{'='})) return "a formula";
    if (isLink(text)) return "a link";
    if (has(text, "\n") || has(text, "\r")) return "a text with a line break";
    if (!std::all_of(text.begin(), text.end(), &isPlain)) return "a text with a control";
    if (hasEscape(text)) return "a text with an escape";
    return text.size() > kLongestCell ? "a text of more than 32767 letters" : nullptr;
}

bool canStand(lm::WideView text) {
    return otherThanText(text) == nullptr;
}

/// Text in quotes for a report of one line.
std::string shown(const RZString& text) {
    std::string line;
    for (const char c : narrow(text)) {
        const auto unit = static_cast<unsigned char>(c);
        constexpr char kDigits[] = "0123456789ABCDEF";
        if (c == '\n')
            line += "\\n";
        else if (c == '\r')
            line += "\\r";
        else if (c == '\t')
            line += "\\t";
        else if (unit < ' ')
            line += {'\\', 'x', kDigits[unit / 16], kDigits[unit % 16]};
        else
            line += c;
    }
    return inQuotes(line);
}

/// Why a changed cell isn't written into the drawing; null where it is.
const char* whyNotTaken(lm::WideView text) {
    if (const char* const what = otherThanText(text)) return what;
    for (const char* const error : {"#DIV/0!", "#N/A", "#NAME?", "#NULL!", "#NUM!", "#REF!", "#VALUE!"})
        if (lm::system::equalsNoCase(text, lm::system::widen(error))) return "an error";
    // Cells are read through the code page, so this may have been any letter that the code page lacks.
    return has(text, "?") ? "a \"?\" may be a letter that can't be read" : nullptr;
}

/// Whether a text has the form of a mask, whose "9" stands for any digit.
bool hasForm(std::string_view text, std::string_view mask) {
    return std::equal(text.begin(), text.end(), mask.begin(), mask.end(),
                      [](char c, char form) { return form == '9' ? c >= '0' && c <= '9' : c == form; });
}

/// Whether a cell of this text may hold a number, a date or a truth value, which sheets show in other ways.
bool mayBeNoText(const std::string& text) {
    if (text == "true" || text == "false") return true;
    for (const char* const mask : {"9999-99-99", "9999-99-99T99:99:99.999", "99:99:99.999"})
        if (hasForm(text, mask)) return true;
    const std::string_view digits = std::string_view(text).substr(text.starts_with('-') ? 1 : 0);
    if (digits.empty() || digits[0] < '0' || digits[0] > '9') return false;
    // No number is written with a "0" in front.
    if (digits.size() > 1 && digits[0] == '0' && digits[1] != '.') return false;
    double number = 0;
    const auto result = std::from_chars(digits.data(), digits.data() + digits.size(), number);
    return result.ptr == digits.data() + digits.size();
}

/// The text as it is read from a workbook, where a letter outside the code page is "?".
RZString readBack(const RZString& text) {
    return RZString(QString(text));
}

/// Whether a value comes back from a workbook as it went.
bool comesBack(const RZString& value) {
    return canStand(value.view()) && readBack(value) == value;
}

struct Value {
    RZString tag, text;
};

/// The values of a reference, exactly; of several attributes with one tag the first counts.
std::vector<Value> valuesOf(CICad& cad, const OdSmartPtr<OdDbBlockReference>& reference) {
    std::vector<Value> values;
    std::set<lm::WideString> seen;
    const AttributeList list = attributesOf(cad, reference, false);
    for (int i = 0; i < list->GetSize(); ++i) {
        const OdSmartPtr<OdDbAttribute> attribute(list->GetAt(i)->GetObjectId().openObject());
        const RZString tag(attribute->tag());
        if (seen.insert(tag.asUpper().str()).second)
            values.push_back({tag, RZString(attribute->textString())});
    }
    return values;
}

std::string nameOf(const RZString& tag, const std::string& handle) {
    return shown(tag) + " of " + handle;
}

std::string askWorkbook(OdEdCommandContext& context) {
    const std::string path = context.input().name("Workbook");
    // Anything else could be the drawing itself.
    if (!lm::system::equalsNoCase(RZString(wide(path)).right(5).view(), lm::system::widen(".xlsx")))
        fail("expected a file name that ends in .xlsx, found " + inQuotes(path));
    return path;
}

/// A file without a name, in memory: nothing is left of it, wherever the program ends.
class MemoryFile {
public:
    MemoryFile() : m_file(::memfd_create("workbook", MFD_CLOEXEC)) {
        if (m_file < 0) fail(std::string("no memory for the workbook: ") + std::strerror(errno));
    }
    ~MemoryFile() { ::close(m_file); }
    MemoryFile(const MemoryFile&) = delete;
    MemoryFile& operator=(const MemoryFile&) = delete;
    /// Under which it can be opened in this process.
    std::string path() const { return "/proc/self/fd/" + std::to_string(m_file); }

private:
    int m_file;
};

// ----------------------------------------------------------------------------------------------------

/// Fills a new workbook, row by row.
class Export {
public:
    explicit Export(OdEdCommandContext& context) : m_context(context) {}

    void run(const std::string& path);

private:
    struct Written {
        int row, column;
        RZString text;
    };

    void add(const OdSmartPtr<OdDbBlockReference>& reference);
    int columnOf(const RZString& tag);
    void write(int row, int column, const RZString& text);
    void check(const RZString& file, const std::string& path) const;
    void save(const std::string& path);

    OdEdCommandContext& m_context;
    CICad m_cad;
    CIExcel m_workbook{RZString()};
    std::map<lm::WideString, int> m_columns; ///< by the tag in capitals
    std::vector<Written> m_written;
    std::vector<std::string> m_notKept;
    int m_columnCount = 0, m_row = kFirstRow;
};

void Export::write(int row, int column, const RZString& text) {
    m_workbook.SetCell(0, row, column, text);
    m_written.push_back({row, column, readBack(text)});
}

int Export::columnOf(const RZString& tag) {
    const auto [at, isNew] = m_columns.try_emplace(tag.asUpper().str(), m_columnCount);
    if (isNew) write(kHeaderRow, m_columnCount++, tag);
    return at->second;
}

void Export::add(const OdSmartPtr<OdDbBlockReference>& reference) {
    m_context.checkTime();
    const std::string handle = handleOf(reference->objectId());
    const auto place = [&](int column, const RZString& text) {
        write(m_row, column, canStand(text.view()) ? text : RZString(kOnlyInDrawing));
    };
    place(0, wide(handle));
    place(1, RZString(m_cad.GetNomeBloco(reference)));
    place(2, RZString(reference->layer()));
    for (const Value& value : valuesOf(m_cad, reference)) {
        // A tag that can't stand in the header has no column.
        if (!comesBack(value.tag)) {
            m_notKept.push_back(nameOf(value.tag, handle));
            continue;
        }
        place(columnOf(value.tag), value.text);
        if (!comesBack(value.text)) m_notKept.push_back(nameOf(value.tag, handle) + ": " + shown(value.text));
    }
    ++m_row;
}

/// The workbook tells of no failure, so the file is read again. `path` is what messages name.
void Export::check(const RZString& file, const std::string& path) const {
    CIExcel workbook(file);
    RZStringList sheets = workbook.getWorkSheets();
    if (sheets.count() == 0) fail(inQuotes(path) + " can't be written");
    for (const Written& cell : m_written)
        if (workbook.GetValue(sheets.getIndex(0), cell.row, cell.column) != cell.text)
            fail(inQuotes(path) + " wasn't written whole: row " + std::to_string(cell.row + 1) + " differs");
}

/// CIExcel writes in place and tells nothing. So it writes into memory, and only what was found whole there
/// takes the place of an older workbook.
void Export::save(const std::string& path) {
    try {
        // First, as most of what can fail fails here.
        lm::system::SaveFile target(lm::system::nativePath(lm::system::fromUtf8(path)));
        const MemoryFile memory;
        m_workbook.SaveAs(wide(memory.path()));
        check(wide(memory.path()), path);
        lm::system::FileBytes bytes;
        if (lm::system::readWhole(memory.path(), bytes).status != lm::system::FileStatus::kRead)
            fail(inQuotes(path) + " can't be written");
        target.append(bytes.data(), bytes.size());
        target.commit();
    } catch (const lm::system::SaveError& error) {
        fail(error.what());
    }
}

void Export::run(const std::string& path) {
    write(kTitleRow, 0, "Components");
    for (const char* const name : {kHandle, kBlock, kPage}) write(kHeaderRow, m_columnCount++, name);
    const RZStringList furniture = m_cad.MontarLstBlocosNaoSimbolos();
    forEachReference(*m_context.document(), [&](const OdSmartPtr<OdDbBlockReference>& reference) {
        if (!m_cad.IsBlocoNaoSimbolo(m_cad.GetNomeBloco(reference), furniture)) add(reference);
    });
    save(path);
    for (const std::string& value : m_notKept) say("a workbook doesn't keep as text " + value);
    say("exported " + counted(static_cast<std::size_t>(m_row - kFirstRow), "component") + " to " +
        inQuotes(path));
}

// ----------------------------------------------------------------------------------------------------

/// Carries the values of a workbook into the drawing, where they differ.
class Import {
public:
    Import(OdEdCommandContext& context, const std::string& path)
        : m_context(context), m_drawing(drawingOf(context)), m_path(path), m_workbook(wide(path)) {}

    void run();

private:
    void findColumns();
    void readRow(int row);
    void apply(int row, const Value& value, int column, const OdSmartPtr<OdDbBlockReference>& reference);
    OdSmartPtr<OdDbBlockReference> referenceIn(int row);
    void compare(int row, int column, const RZString& value, const char* name, const std::string& handle);
    bool hasValues(int row);
    [[noreturn]] void failAt(int row, const std::string& why) {
        fail(inQuotes(m_path) + ", row " + std::to_string(row + 1) + ": " + why);
    }

    OdEdCommandContext& m_context;
    CHostDatabase& m_drawing;
    std::string m_path;
    CIExcel m_workbook;
    CICad m_cad;
    RZString m_sheet;
    int m_handles = -1, m_blocks = -1, m_pages = -1;
    std::map<lm::WideString, int> m_columns; ///< of tags in capitals
    std::map<OdDbObjectId, int> m_rows;      ///< where a component stood
    std::size_t m_values = 0, m_components = 0;
};

void Import::findColumns() {
    RZStringList sheets = m_workbook.getWorkSheets();
    if (sheets.count() == 0) fail(inQuotes(m_path) + " is no workbook that can be read");
    m_sheet = sheets.getIndex(0);
    if (m_workbook.GetRowCount(m_sheet) <= 0)
        fail(inQuotes(m_path) +
             ": no cells can be read from the first sheet. It is empty, or the workbook names "
             "its parts by absolute paths: save it once with another program");
    m_handles = m_workbook.GetColumnIndex(m_sheet, kHandle, kHeaderRow + 1);
    if (m_handles < 0)
        fail(inQuotes(m_path) + ": expected a column " + inQuotes(kHandle) + " in row " +
             std::to_string(kHeaderRow + 1) + " of the first sheet");
    m_blocks = m_workbook.GetColumnIndex(m_sheet, kBlock, kHeaderRow + 1);
    m_pages = m_workbook.GetColumnIndex(m_sheet, kPage, kHeaderRow + 1);
    const std::set<std::string> own = {kHandle, kBlock, kPage, ""};
    for (int column = 0; column < m_workbook.GetColCount(m_sheet); ++column) {
        const RZString name = m_workbook.GetColumnName(m_sheet, column);
        if (own.count(narrow(name)) != 0) continue;
        if (!m_columns.try_emplace(name.asUpper().str(), column).second)
            fail(inQuotes(m_path) + ": two columns are named " + shown(name));
    }
}

OdSmartPtr<OdDbBlockReference> Import::referenceIn(int row) {
    const RZString handle = m_workbook.GetValue(m_sheet, row, m_handles);
    const OdDbObjectId id = RZID(handle, &m_drawing);
    OdSmartPtr<OdDbBlockReference> reference;
    if (id.isValid() && !id.isErased()) reference = OdDbBlockReference::cast(id.openObject());
    if (reference.isNull()) failAt(row, "no component has the handle " + shown(handle));
    const auto [at, isNew] = m_rows.try_emplace(id, row);
    if (!isNew) failAt(row, narrow(handle) + " stands in row " + std::to_string(at->second + 1) + " already");
    return reference;
}

void Import::apply(int row, const Value& value, int column, const OdSmartPtr<OdDbBlockReference>& reference) {
    const RZString text = m_workbook.GetValue(m_sheet, row, column);
    if (text == RZString(kOnlyInDrawing) || text == readBack(value.text)) return;
    const std::string name = nameOf(value.tag, handleOf(reference->objectId()));
    // What didn't go out as text doesn't come back, and neither does what is none there.
    if (!comesBack(value.text)) return say("kept as it is: " + name + ", " + shown(value.text));
    if (const char* const why = whyNotTaken(text.view()))
        return say(std::string(why) + ", so not written: " + name + ", " + shown(text));
    if (mayBeNoText(narrow(text)))
        say("the sheet may show a number, a date or a truth value otherwise: " + name + " is now " +
            shown(text));
    m_cad.AtualizarAtributo(reference, value.tag, text);
    ++m_values;
}

/// Tells that a cell of a column that is only for people was changed.
void Import::compare(int row, int column, const RZString& value, const char* name,
                     const std::string& handle) {
    if (column < 0) return;
    const RZString text = m_workbook.GetValue(m_sheet, row, column);
    if (text == RZString(kOnlyInDrawing) || text == readBack(value)) return;
    say("not taken from the workbook: " + nameOf(name, handle) + ", " + shown(text) +
        ", where the drawing has " + shown(value));
}

bool Import::hasValues(int row) {
    for (const auto& [tag, column] : m_columns)
        if (!m_workbook.GetValue(m_sheet, row, column).isEmpty()) return true;
    return false;
}

void Import::readRow(int row) {
    m_context.checkTime();
    if (m_workbook.GetValue(m_sheet, row, m_handles).isEmpty()) {
        if (hasValues(row)) say("row " + std::to_string(row + 1) + " has no handle, so it is passed over");
        return;
    }
    const OdSmartPtr<OdDbBlockReference> reference = referenceIn(row);
    const std::string handle = handleOf(reference->objectId());
    compare(row, m_blocks, RZString(m_cad.GetNomeBloco(reference)), kBlock, handle);
    compare(row, m_pages, RZString(reference->layer()), kPage, handle);
    const std::size_t before = m_values;
    std::set<lm::WideString> known;
    for (const Value& value : valuesOf(m_cad, reference)) {
        const lm::WideString key = value.tag.asUpper().str();
        known.insert(key);
        const auto column = m_columns.find(key);
        if (column != m_columns.end()) apply(row, value, column->second, reference);
    }
    for (const auto& [tag, column] : m_columns)
        if (known.count(tag) == 0 && !m_workbook.GetValue(m_sheet, row, column).isEmpty())
            failAt(row, described(m_cad, reference->objectId()) + " has no attribute " +
                            inQuotes(lm::system::toUtf8(tag)));
    m_components += m_values != before;
}

void Import::run() {
    findColumns();
    const int end = m_workbook.VerifyRowCount(m_sheet);
    for (int row = kFirstRow; row < end; ++row) readRow(row);
    say("imported " + counted(m_values, "value") + " into " + counted(m_components, "component") + " from " +
        inQuotes(m_path));
}

/// Asks for the file, which is made or overwritten.
void exportComponents(OdEdCommandContext& context) {
    drawingOf(context);
    Export(context).run(askWorkbook(context));
}

/// Asks for the file.
void importComponents(OdEdCommandContext& context) {
    drawingOf(context);
    const std::string path = askWorkbook(context);
    if (!isFile(path)) fail("no file " + inQuotes(path));
    Import(context, path).run();
}

} // namespace

void addWorkbookCommands(Commands& commands) {
    commands.emplace_back("_LMEXPORT", &exportComponents);
    commands.emplace_back("_LMIMPORT", &importComponents);
}

} // namespace lmtools
