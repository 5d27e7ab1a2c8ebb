// SPDX-License-Identifier: MIT
#include "drawing/reader.h"

#include "dxf/build.h"
#include "dxf/resolver.h"
#include "dxf/scan.h"

#include "system/path.h"

#include <cstring>

namespace lm::drawing {

namespace {

/// The published mark at the start of binary DXF files.
constexpr char kBinaryMark[] = "AutoCAD Binary DXF\r\n\x1a";
constexpr std::size_t kBinaryMarkSize = sizeof kBinaryMark; // with its closing 0
constexpr std::size_t kLongestLine = std::size_t{16} << 20;

OdError errorOf(OdResult code, const std::string& line) {
    return OdError(code, OdString(WideView(system::fromUtf8(line))));
}

bool isBinary(const system::FileBytes& bytes) {
    return bytes.size() >= kBinaryMarkSize && std::memcmp(bytes.data(), kBinaryMark, kBinaryMarkSize) == 0;
}

/// Stops the reading of a file that can be no text drawing because a line doesn't end.
class LineWatch {
public:
    bool operator()(const system::FileBytes& bytes) {
        if (isBinary(bytes)) return true;
        const void* const end = ::memrchr(bytes.data() + m_seen, '\n', bytes.size() - m_seen);
        const void* const old =
            end == nullptr ? ::memrchr(bytes.data() + m_seen, '\r', bytes.size() - m_seen) : end;
        m_seen = bytes.size();
        if (old != nullptr)
            m_lineStart = static_cast<std::size_t>(static_cast<const char*>(old) - bytes.data()) + 1;
        return m_seen - m_lineStart <= kLongestLine;
    }

private:
    std::size_t m_seen = 0;
    std::size_t m_lineStart = 0;
};

/// Files of old machines end their lines with a carriage return alone.
void unifyLineEnds(system::FileBytes& bytes) {
    constexpr std::size_t kLooked = 4096;
    const std::size_t looked = std::min(bytes.size(), kLooked);
    if (std::memchr(bytes.data(), '\n', looked) != nullptr ||
        std::memchr(bytes.data(), '\r', looked) == nullptr)
        return;
    for (std::size_t i = 0; i < bytes.size(); ++i)
        if (bytes.data()[i] == '\r') bytes.data()[i] = '\n';
}

/// Drops a byte order mark by overwriting it with blanks, which the first group code may have.
void dropMark(system::FileBytes& bytes) {
    if (bytes.size() >= 3 && std::memcmp(bytes.data(), "\xEF\xBB\xBF", 3) == 0)
        std::memset(bytes.data(), ' ', 3);
}

/// Tells a text drawing by its first group: a comment, the start of a section, or the end of one too many.
bool looksLikeText(const system::FileBytes& bytes) {
    Source probe;
    TextCursor cursor(probe, bytes.data(), bytes.data() + std::min<std::size_t>(bytes.size(), 1 << 16));
    Group group;
    if (cursor.next(group) != Step::kGroup) return false;
    const std::string_view type = stripped(group.raw());
    return group.code == 999 || (group.code == 0 && (type == "SECTION" || type == "ENDSEC" || type == "EOF"));
}

void prepare(Source& source) {
    if (source.bytes.size() == 0) throw errorOf(eUnknownFormat, source.name + ": the file is empty");
    if (isBinary(source.bytes)) {
        source.binary = true;
        const char* const at = source.bytes.data() + kBinaryMarkSize;
        // Behind the mark stands group 0 with "SECTION": a short code is followed by the text at once. A
        // comment may come first, and its code begins with 255 only in the short form.
        source.shortCodes = source.bytes.size() > kBinaryMarkSize + 1 &&
                            ((at[0] == 0 && at[1] != 0) || static_cast<unsigned char>(at[0]) == 255);
        std::memmove(source.bytes.data(), at, source.bytes.size() - kBinaryMarkSize);
        source.bytes.setSize(source.bytes.size() - kBinaryMarkSize);
        return;
    }
    dropMark(source.bytes);
    unifyLineEnds(source.bytes);
    if (!looksLikeText(source.bytes))
        throw errorOf(eUnknownFormat,
                      source.name +
                          ": line 1: the file is no drawing, expected the group \"0\", \"SECTION\"");
}

void load(OdDbDatabase& database, const ReadOptions& options) {
    DatabaseData& data = database.data();
    ScanResult scanned;
    scan(data, options, scanned);
    build(data, options, scanned);
    if (!options.strict) return;
    data.nodes.forEach([&data](Node& node) {
        if (node.kind != kKindBlock && node.kind != kKindEndblk) data.bodyOf(&node);
    });
    if (data.report.total() != 0)
        throw errorOf(eBrokenFile, data.source->name + ": " + Report::text(data.report.repairs().front()));
}

} // namespace

void readMemory(OdDbDatabase& database, std::string bytes, const std::string& name,
                const ReadOptions& options) {
    auto source = std::make_unique<Source>();
    source->name = name;
    source->bytes = system::FileBytes(bytes.size());
    std::memcpy(source->bytes.data(), bytes.data(), bytes.size());
    source->bytes.setSize(bytes.size());
    prepare(*source);
    database.data().source = std::move(source);
    load(database, options);
}

void readInto(OdDbDatabase& database, const OdString& path, const ReadOptions& options) {
    const std::string file = system::nativePath(path.view());
    const std::string native = system::shownPath(file);
    auto source = std::make_unique<Source>();
    source->name = native;
    const system::FileOutcome outcome = system::readWhole(file, source->bytes, LineWatch());
    switch (outcome.status) {
    case system::FileStatus::kRead:
        break;
    case system::FileStatus::kNotFound:
        throw errorOf(eFileNotFound, native + ": the file doesn't exist");
    case system::FileStatus::kDirectory:
        throw errorOf(eFileUnreadable, native + ": a folder, expected a drawing file");
    case system::FileStatus::kUnreadable:
        throw errorOf(eFileUnreadable, native + ": can't be read: " + outcome.reason);
    case system::FileStatus::kChanged:
        throw errorOf(eFileChanged, native + ": the file changed while it was read");
    case system::FileStatus::kStopped: {
        const std::uint64_t line = source->placeOf(source->end());
        throw errorOf(eBrokenFile,
                      native + ": line " + std::to_string(line) + ": the line is longer than 16 MiB");
    }
    }
    prepare(*source);
    database.data().source = std::move(source);
    load(database, options);
    database.data().files[system::resolvedPath(file)] = outcome.stamp;
    database.setFilename(path);
}

OdSmartPtr<OdDbDatabase> readDrawing(const OdString& path, const ReadOptions& options) {
    OdSmartPtr<OdDbDatabase> database(new OdDbDatabase(OdDbDatabase::kNothing), kAttach);
    readInto(*database.get(), path, options);
    return database;
}

} // namespace lm::drawing
