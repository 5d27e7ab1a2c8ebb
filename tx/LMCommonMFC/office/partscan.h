// SPDX-License-Identifier: MIT
// What stands in one part of a workbook's archive, as far as it decides whether the workbook library may see
// it.
//
//     PartScan scan;
//     if (!scan.read(bytes)) return false;      // the library would crash, hang or read garbage
//     total += scan.cells;
//
// The parts are read with the parser that the library uses, so both see the same elements. The rules don't
// ask what a part is for: any part may be named as a sheet. Rows and cells count once a "sheetData" was
// opened, descriptions of columns once a "cols" was; the library looks for them nowhere else.
#pragma once

#include <QHash>
#include <QStringList>
#include <QXmlStreamReader>

#include <cstdint>
#include <vector>

namespace lm::office {

/// The largest sheet that the format knows.
inline constexpr int kLastRow = 1048576, kLastColumn = 16384;

/// What a workbook may hold altogether. A cell costs the library some hundred bytes, so this is what keeps a
/// small file from filling the memory.
inline constexpr std::int64_t kMostCells = 8'000'000, kMostElements = 40'000'000;

/// A place in a sheet, from 1; -1 each for a text that names none.
struct CellPlace {
    int row = -1, column = -1;
    bool isValid() const { return row >= 1 && row <= kLastRow && column >= 1 && column <= kLastColumn; }
};

/// "B7", "$B$7": up to three capitals and decimal digits. A row beyond the range of int counts as 0.
CellPlace cellPlaceOf(QStringView text);

/// The findings in one part, which are of use when read() answered true.
class PartScan {
public:
    /// Reads a part. False when the library must not see it; a part that isn't XML at all is harmless.
    /// `mustBeXml` refuses a part that begins as XML and breaks off.
    bool read(const QByteArray& part, bool mustBeXml);

    std::int64_t cells = 0, elements = 0;
    /// Ids of the relations by which the library loads a further part, once for each mention.
    QStringList references;
    /// The targets of a part of relations by id; of two with one id the first counts.
    QHash<QString, QString> targets;
    /// For each shared text its length where the library makes a new copy for each cell, else 0.
    std::vector<std::uint32_t> sharedLengths;
    /// How often cells mention a shared text, by its index.
    std::vector<std::uint32_t> sharedUses;

private:
    using Attributes = QXmlStreamAttributes;
    using Rule = bool (PartScan::*)(const Attributes&);

    bool startElement();
    bool rareElement(QStringView name);
    bool endElement();
    void characters();
    static Rule ruleFor(QStringView name);

    bool cell(const Attributes& attributes);
    bool row(const Attributes& attributes);
    bool rows(const Attributes&);
    bool columns(const Attributes&);
    bool column(const Attributes& attributes);
    bool range(const Attributes& attributes);
    bool dimension(const Attributes& attributes);
    bool style(const Attributes& attributes);
    bool definedName(const Attributes& attributes);
    bool sheet(const Attributes& attributes);
    bool reference(const Attributes& attributes);
    bool relation(const Attributes& attributes);
    bool refused(const Attributes&) { return false; }
    void useShared(int index);
    /// Whether a walk over all columns of each row with cells ends in sensible time.
    bool isSheetWalkable() const;

    QXmlStreamReader m_reader;
    std::vector<int> m_namespaces; ///< declared by each open element
    int m_namespacesInScope = 0;
    /// Where such an element was opened, else 0.
    int m_validationDepth = 0, m_formulaDepth = 0, m_pictureDepth = 0;
    bool m_hasImage = false;
    int m_sheets = 0;
    bool m_hasRows = false, m_hasColumns = false;
    std::int64_t m_columnSpan = 0, m_rows = 0;
    int m_lastRow = 0, m_widest = 0;
    bool m_inSharedText = false, m_inText = false;
    std::uint32_t m_fragments = 0, m_length = 0;
    bool m_isSharedCell = false, m_inValue = false;
    QString m_value;
};

} // namespace lm::office
