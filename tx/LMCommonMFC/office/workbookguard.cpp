// SPDX-License-Identifier: MIT
#include "office/workbookguard.h"

#include "office/partscan.h"

#include "system/file.h"

#include <QDir>
#include <QtEndian>

#include <memory>
#include <unordered_map>
#include <zip.h>

namespace lm::office {

namespace {

/// What all parts may unpack to, those counted again that are loaded more than once. Beyond the smaller
/// number they mustn't have been packed tighter than real sheets are.
constexpr std::int64_t kLargest = std::int64_t(1) << 30, kLargestBomb = std::int64_t(256) << 20;
constexpr std::int64_t kTightest = 100;
/// Letters that cells copy from shared texts in several fragments.
constexpr std::int64_t kMostCopied = std::int64_t(256) << 20;

constexpr qsizetype kEndRecordSize = 22, kLongestComment = 0xFFFF;
constexpr char kEndRecord[] = "PK\5\6", kLargeEndRecord[] = "PK\6\7";

quint32 number32(const QByteArray& bytes, qsizetype at) {
    return qFromLittleEndian<quint32>(bytes.constData() + at);
}

quint16 number16(const QByteArray& bytes, qsizetype at) {
    return qFromLittleEndian<quint16>(bytes.constData() + at);
}

/// Whether every reader finds the same directory: there is one end record only whose comment reaches to the
/// end of the file, it is the last one, and nothing stands in the 64-bit form, which the library doesn't
/// know.
bool hasPlainDirectory(const QByteArray& archive) {
    // The search itself reads in front of an array that is shorter than what it looks for.
    if (archive.size() < kEndRecordSize) return false;
    const qsizetype last = archive.lastIndexOf(kEndRecord);
    if (last < 0 || last + kEndRecordSize > archive.size()) return false;
    const qsizetype earliest = std::max<qsizetype>(0, archive.size() - kEndRecordSize - kLongestComment);
    int ends = 0;
    for (qsizetype at = archive.indexOf(kEndRecord, earliest); at >= 0;
         at = archive.indexOf(kEndRecord, at + 1)) {
        if (at + kEndRecordSize > archive.size()) continue;
        if (at + kEndRecordSize + number16(archive, at + 20) == archive.size())
            ++ends;
        else if (at == last)
            return false;
    }
    if (ends != 1 || archive.mid(last - 20, 4) == kLargeEndRecord) return false;

    const int count = number16(archive, last + 10);
    qsizetype at = number32(archive, last + 16);
    for (int i = 0; i < count; ++i) {
        if (at + 46 > last) return false;
        for (const int field : {20, 24, 42})
            if (number32(archive, at + field) == 0xFFFFFFFFU) return false;
        at += 46 + number16(archive, at + 28) + number16(archive, at + 30) + number16(archive, at + 32);
    }
    return at <= last;
}

struct DiscardArchive {
    void operator()(zip_t* archive) const { zip_discard(archive); }
};
struct CloseFile {
    void operator()(zip_file_t* file) const { zip_fclose(file); }
};
using Archive = std::unique_ptr<zip_t, DiscardArchive>;

Archive opened(const QByteArray& bytes) {
    zip_source_t* const source =
        zip_source_buffer_create(bytes.constData(), static_cast<zip_uint64_t>(bytes.size()), 0, nullptr);
    if (source == nullptr) return nullptr;
    Archive archive(zip_open_from_source(source, ZIP_RDONLY | ZIP_CHECKCONS, nullptr));
    if (archive == nullptr) zip_source_free(source);
    return archive;
}

/// What a part costs whoever loads it.
struct Part {
    std::int64_t bytes = 0, cells = 0;
    QStringList references;
    QHash<QString, QString> targets;
};

/// The parts of one archive, and what they add up to.
class Parts {
public:
    explicit Parts(std::int64_t archiveSize) : m_archiveSize(archiveSize) {}

    bool add(zip_t* archive, zip_uint64_t index);
    bool isFitTogether() const;

private:
    bool unpack(zip_t* archive, zip_uint64_t index, qsizetype size);
    void note(const QString& name, PartScan&& scan);
    bool fits(std::int64_t bytes, std::int64_t cells) const;

    std::int64_t m_archiveSize;
    std::int64_t m_bytes = 0, m_cells = 0, m_elements = 0;
    QByteArray m_content;
    QHash<QString, Part> m_parts;
    std::vector<std::uint32_t> m_sharedLengths, m_sharedUses;
};

bool Parts::fits(std::int64_t bytes, std::int64_t cells) const {
    if (cells > kMostCells || bytes > kLargest) return false;
    return bytes <= kLargestBomb || bytes / kTightest <= m_archiveSize;
}

bool Parts::unpack(zip_t* archive, zip_uint64_t index, qsizetype size) {
    const std::unique_ptr<zip_file_t, CloseFile> file(zip_fopen_index(archive, index, 0));
    if (file == nullptr) return false;
    m_content.resize(size);
    if (zip_fread(file.get(), m_content.data(), static_cast<zip_uint64_t>(size)) != size) return false;
    // Only behind the last byte the sum of all is compared, and nothing more may come.
    char more = 0;
    return zip_fread(file.get(), &more, 1) == 0;
}

bool Parts::add(zip_t* archive, zip_uint64_t index) {
    constexpr zip_uint64_t kNeeded =
        ZIP_STAT_NAME | ZIP_STAT_SIZE | ZIP_STAT_COMP_METHOD | ZIP_STAT_ENCRYPTION_METHOD;
    zip_stat_t stat;
    if (zip_stat_index(archive, index, 0, &stat) != 0 || (stat.valid & kNeeded) != kNeeded) return false;
    if (stat.encryption_method != ZIP_EM_NONE) return false;
    if (stat.comp_method != ZIP_CM_STORE && stat.comp_method != ZIP_CM_DEFLATE) return false;
    if (stat.size > zip_uint64_t(kLargest)) return false;
    m_bytes += static_cast<std::int64_t>(stat.size);
    if (!fits(m_bytes, m_cells) || !unpack(archive, index, static_cast<qsizetype>(stat.size))) return false;

    const QString name = QString::fromUtf8(stat.name);
    PartScan scan;
    if (!scan.read(m_content, name.endsWith(QLatin1String(".xml")) || name.endsWith(QLatin1String(".rels"))))
        return false;
    m_cells += scan.cells;
    m_elements += scan.elements;
    note(name, std::move(scan));
    return fits(m_bytes, m_cells) && m_elements <= kMostElements;
}

void Parts::note(const QString& name, PartScan&& scan) {
    const auto grow = [](std::vector<std::uint32_t>& sums, std::size_t size) {
        if (sums.size() < size) sums.resize(size);
    };
    grow(m_sharedLengths, scan.sharedLengths.size());
    for (std::size_t i = 0; i < scan.sharedLengths.size(); ++i)
        m_sharedLengths[i] = std::max(m_sharedLengths[i], scan.sharedLengths[i]);
    grow(m_sharedUses, scan.sharedUses.size());
    for (std::size_t i = 0; i < scan.sharedUses.size(); ++i) m_sharedUses[i] += scan.sharedUses[i];
    // The library takes the first of two parts with one name.
    if (!m_parts.contains(name))
        m_parts.insert(name,
                       {m_content.size(), scan.cells, std::move(scan.references), std::move(scan.targets)});
}

bool Parts::isFitTogether() const {
    std::int64_t copied = 0;
    for (std::size_t i = 0; i < std::min(m_sharedLengths.size(), m_sharedUses.size()); ++i) {
        copied += std::int64_t(m_sharedLengths[i]) * m_sharedUses[i];
        if (copied > kMostCopied) return false;
    }
    // A part is loaded anew at each mention.
    std::int64_t bytes = 0, cells = 0;
    for (auto part = m_parts.cbegin(); part != m_parts.cend(); ++part) {
        if (part->references.isEmpty()) continue;
        const qsizetype slash = part.key().lastIndexOf(u'/');
        const QString folder = slash < 0 ? QString() : part.key().left(slash + 1);
        const Part relations = m_parts.value(folder + QLatin1String("_rels/") + part.key().mid(slash + 1) +
                                             QLatin1String(".rels"));
        for (const QString& id : part->references) {
            const Part loaded = m_parts.value(QDir::cleanPath(folder + relations.targets.value(id)));
            bytes += loaded.bytes;
            cells += loaded.cells;
            if (!fits(bytes, cells)) return false;
        }
    }
    return true;
}

} // namespace

bool isFitWorkbook(const QByteArray& archive) {
    if (!hasPlainDirectory(archive)) return false;
    const Archive opening = opened(archive);
    if (opening == nullptr) return false;
    const zip_int64_t count = zip_get_num_entries(opening.get(), 0);
    Parts parts(archive.size());
    for (zip_int64_t i = 0; i < count; ++i)
        if (!parts.add(opening.get(), static_cast<zip_uint64_t>(i))) return false;
    return parts.isFitTogether();
}

bool isFitWorkbookFile(const std::string& path) {
    // What lies on disk may be a hole of any size.
    const auto stamp = system::stampOf(path);
    if (!stamp || stamp->size > std::uint64_t(kLargest)) return false;
    system::FileBytes bytes;
    if (system::readWhole(path, bytes).status != system::FileStatus::kRead) return false;
    return isFitWorkbook(QByteArray::fromRawData(bytes.data(), static_cast<qsizetype>(bytes.size())));
}

} // namespace lm::office
