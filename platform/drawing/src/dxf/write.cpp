// SPDX-License-Identifier: MIT
#include "dxf/write.h"

#include "system/path.h"
#include "system/savefile.h"

#include <algorithm>
#include <cstring>

namespace lm::drawing {

namespace {

struct VersionRow {
    FileVersion version;
    const char* text;
    std::string_view name;
};

constexpr VersionRow kVersions[] = {
    {FileVersion::kR2000, "AC1015", "R2000"}, {FileVersion::kR2004, "AC1018", "R2004"},
    {FileVersion::kR2007, "AC1021", "R2007"}, {FileVersion::kR2010, "AC1024", "R2010"},
    {FileVersion::kR2013, "AC1027", "R2013"}, {FileVersion::kR2018, "AC1032", "R2018"}};

constexpr int kComment = 999;

/// The published mark at the start of binary DXF files, with its closing 0.
constexpr char kBinaryMark[] = "AutoCAD Binary DXF\r\n\x1a";

constexpr std::string_view kOrdinaryPage = "ANSI_1252";
constexpr std::string_view kUtf8 = "UTF-8";

bool isUtf8Version(FileVersion version) {
    return version >= FileVersion::kR2007;
}

/// Whether a header's name for a code page is one that newer programs know.
bool isNewPageName(std::string_view name) {
    return name.size() > 5 && system::equalsNoCase(system::widen(name.substr(0, 5)), system::widen("ANSI_"));
}

/// What $DWGCODEPAGE says in the file. A name that was good enough for a file of R2000 or later stays.
std::string pageName(const DatabaseData& data) {
    const bool keep = !data.codePage.empty() && (!isOldSource(data) || isNewPageName(data.codePage));
    return keep ? data.codePage : std::string(kOrdinaryPage);
}

/// How codes and lines look in a text source, by its first lines.
void takeLooks(const Source& source, FileForm& form) {
    const char* at = source.begin();
    const char* line = findLineEnd(at, source.end());
    form.lineEnd = line > at && line < source.end() && line[-1] == '\r' ? "\r\n" : "\n";
    form.codeWidth = 0;
    constexpr int kLooked = 20;
    for (int i = 0; i < kLooked && line < source.end(); ++i) {
        const std::string_view code(at, static_cast<std::size_t>(line - at) - (form.lineEnd.size() - 1));
        // A code of three digits is the same with and without blanks.
        if (stripped(code).size() < 3) {
            if (stripped(code).size() < code.size()) form.codeWidth = code.size();
            return;
        }
        at = findLineEnd(line + 1, source.end()) + 1; // passes over the value
        if (at >= source.end()) return;
        line = findLineEnd(at, source.end());
    }
}

/// Chooses form and encoding; `decoder` gets that of the code page where one is wanted.
FileForm chooseForm(const DatabaseData& data, const WriteOptions& options, TextDecoder& decoder) {
    FileForm form;
    form.binary = options.binary;
    const Source* const source = data.source.get();
    if (source != nullptr && !source->binary) takeLooks(*source, form);
    if (isUtf8Version(options.version)) return form;
    // An older file that is UTF-8 all the same is read as that; it stays so as long as it is text.
    const bool unusual = source != nullptr && !source->binary && !options.binary &&
                         source->decoder.page() == kUtf8 && data.version < versionText(FileVersion::kR2007) &&
                         !isOldSource(data);
    if (unusual) return form;
    decoder = TextDecoder::forCodePage(pageName(data));
    form.page = decoder.page();
    return form;
}

} // namespace

const char* versionText(FileVersion version) noexcept {
    for (const VersionRow& row : kVersions)
        if (row.version == version) return row.text;
    return kVersions[0].text;
}

bool versionByName(std::string_view name, FileVersion& version) noexcept {
    const auto upper = [](char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; };
    for (const VersionRow& row : kVersions) {
        if (!std::equal(name.begin(), name.end(), row.name.begin(), row.name.end(),
                        [&](char a, char b) { return upper(a) == b; }))
            continue;
        version = row.version;
        return true;
    }
    return false;
}

DrawingWriter::DrawingWriter(DatabaseData& data, const WriteOptions& options, const FileForm& form,
                             const TextEncoder& encoder, bool watch, const ByteSink& sink)
    : m_data(data), m_options(options), m_plan(data), m_skeleton(data, options.version, m_plan.handles),
      m_maker(m_plan, options.version, m_skeleton), m_out(sink, form, encoder, data.source.get(), watch),
      m_source(data.source.get()), m_codePage(pageName(data)), m_old(isOldSource(data)) {
    if (m_source == nullptr) return;
    m_sameForm = m_out.hasForm(*m_source);
    m_samePage = m_out.hasPage(*m_source);
    m_pos = m_lastEnd = m_source->begin();
}

void DrawingWriter::run() {
    if (m_options.binary) m_out.copy(kBinaryMark, kBinaryMark + sizeof kBinaryMark);
    if (m_source != nullptr) {
        planChanges();
        writeSource();
    } else {
        for (const std::string_view name : kSectionOrder) writeSection(name);
        m_out.putPageMark();
        m_out.put(0, "EOF");
    }
    m_out.flush();
}

// --- through the source
// -------------------------------------------------------------------------------------------------

void DrawingWriter::writeSource() {
    m_data.nodes.forEach([this](Node& node) {
        if (node.offset != 0) visit(node);
    });
    copyTo(m_source->end());
    applyChangesAt(m_source->end());
}

void DrawingWriter::visit(Node& node) {
    const char* const begin = at(node.offset);
    const char* const end = begin + node.length;
    const bool unwanted = node.kind == kKindSeqend && node.owner != nullptr &&
                          m_plan.attributesChanged.count(node.owner) != 0 && !hasLiveAttributes(*node.owner);
    if (!m_plan.isLive(node) || unwanted || m_gathered.count(&node) != 0) return drop(typeStart(node), end);
    if (m_old || m_plan.isEdited(node)) {
        copyTo(begin);
        m_writing = &node;
        m_out.put(m_maker.make(node));
        m_pos = end;
    } else if (m_sameForm && needsConversion(end)) {
        // What stands in front of the gap before this entry needs none, and goes as one piece.
        copyTo(std::max(m_pos, m_lastEnd));
        copyTo(begin);
        copyTo(end);
    }
    m_lastEnd = end;
}

/// Leaves an entry out. Comments behind its last group belong to what follows.
void DrawingWriter::drop(const char* begin, const char* end) {
    copyTo(begin);
    applyChangesAt(begin);
    const char* kept = end;
    const auto look = [&](auto cursor) {
        Group group;
        for (const char* start = cursor.position(); cursor.next(group) == Step::kGroup;
             start = cursor.position()) {
            if (group.code != kComment) kept = end;
            if (group.code == kComment && kept == end) kept = start;
        }
    };
    if (m_source->binary)
        look(BinaryCursor(*m_source, begin, end));
    else
        look(TextCursor(*m_source, begin, end));
    m_pos = kept;
    copyTo(end);
}

const char* DrawingWriter::typeStart(const Node& node) const {
    const char* const begin = m_source->begin();
    const char* at = begin + node.offset;
    if (m_source->binary) {
        const std::ptrdiff_t code = m_source->shortCodes ? 1 : 2;
        --at; // the closing 0 of the type
        while (at - code > begin && at[-1] != '\0') --at;
        return at - code;
    }
    for (int lines = 0; at > begin; --at)
        if (at[-1] == '\n' && ++lines == 3) break;
    return at;
}

void DrawingWriter::copyTo(const char* to) {
    while (m_next < m_changes.size() && this->at(m_changes[m_next].offset) < to) {
        const Change& change = m_changes[m_next];
        copyBytes(m_pos, this->at(change.offset));
        m_pos = this->at(change.offset + change.skip);
        ++m_next;
        change.write();
    }
    copyBytes(m_pos, to);
    m_pos = std::max(m_pos, to);
}

void DrawingWriter::applyChangesAt(const char* place) {
    while (m_next < m_changes.size() && this->at(m_changes[m_next].offset) == place) {
        const Change& change = m_changes[m_next++];
        change.write();
    }
}

bool DrawingWriter::needsConversion(const char* to) {
    if (m_samePage) return false;
    if (m_high == nullptr || m_high < m_pos) m_high = findHighByte(m_pos, m_source->end());
    return m_high < to;
}

void DrawingWriter::copyBytes(const char* from, const char* to) {
    if (from >= to || m_ended) return;
    if (m_sameForm && !needsConversion(to)) return m_out.copy(from, to);
    const auto convert = [&](auto cursor) {
        Group group;
        for (const char* start = cursor.position(); cursor.next(group) == Step::kGroup;
             start = cursor.position()) {
            m_out.put(SourceGroup{group, start, cursor.position(), m_source});
            m_ended = group.code == 0 && stripped(group.raw()) == "EOF";
            if (m_ended) return;
        }
    };
    if (m_source->binary)
        convert(BinaryCursor(*m_source, from, to));
    else
        convert(TextCursor(*m_source, from, to));
}

std::string DrawingWriter::describe(const NotFinite& number) const {
    std::string line = "the number under group " + std::to_string(number.code) + " of ";
    if (m_writing == nullptr)
        line += "the header";
    else
        line += std::string(m_data.kinds.name(m_writing->kind)) + " " +
                utf8(OdDbHandle(m_writing->handle).ascii());
    return line + " is infinite or no number";
}

namespace {

OdError cannotSave(const std::string& line) {
    return OdError(eFilerError, OdString(WideView(system::fromUtf8(line))));
}

/// Refuses to write over what somebody else made of a file since this drawing was read from it or saved to
/// it.
void refuseChanged(const DatabaseData& data, const std::string& native, const std::string& resolved) {
    const auto known = data.files.find(resolved);
    if (known == data.files.end()) return;
    const std::optional<system::FileStamp> now = system::stampOf(resolved);
    if (now && *now != known->second)
        throw cannotSave(
            system::shownPath(native) +
            ": can't be saved, the file was changed by somebody else since the drawing was read; "
            "save under another name");
}

} // namespace

void writeDrawing(OdDbDatabase& database, const ByteSink& sink, const WriteOptions& options,
                  KeptKinds* kept) {
    DatabaseData& data = database.data();
    TextDecoder decoder;
    const FileForm form = chooseForm(data, options, decoder);
    const TextEncoder encoder(decoder);
    const bool watch = !options.binary && !isUtf8Version(options.version) && form.page != kUtf8;
    DrawingWriter writer(data, options, form, encoder, watch, sink);
    try {
        writer.run();
    } catch (const NotFinite& number) {
        throw cannotSave(writer.describe(number));
    }
    if (kept != nullptr) *kept = writer.kept();
}

void saveDrawing(OdDbDatabase& database, const OdString& path, const WriteOptions& options, KeptKinds* kept) {
    const std::string native = system::nativePath(path.view());
    const std::string resolved = system::resolvedPath(native);
    DatabaseData& data = database.data();
    refuseChanged(data, native, resolved);
    try {
        system::SaveFile file(native);
        const ByteSink sink = [&file](const char* bytes, std::size_t size) { file.append(bytes, size); };
        try {
            writeDrawing(database, sink, options, kept);
        } catch (const OdError& error) {
            if (error.code() != eFilerError) throw;
            throw cannotSave(system::shownPath(native) + ": can't be saved, " + utf8(error.description()));
        }
        refuseChanged(data, native, resolved);
        file.commit();
        data.files[resolved] = file.stamp();
    } catch (const system::SaveError& error) {
        // The new file may stand there although its folder couldn't be flushed.
        if (error.replaced())
            if (const auto now = system::stampOf(resolved)) data.files[resolved] = *now;
        throw cannotSave(error.what());
    }
}

} // namespace lm::drawing
