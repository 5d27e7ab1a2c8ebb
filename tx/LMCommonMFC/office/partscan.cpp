// SPDX-License-Identifier: MIT
#include "office/partscan.h"

#include <algorithm>

namespace lm::office {

namespace {

/// Beyond these the parser itself takes time by the square.
constexpr int kMostAttributes = 4096, kMostNamespaces = 1024, kDeepest = 256;
/// A sheet holds no more links than this, and the library looks them up one by one.
constexpr qsizetype kMostRelations = 65530;
/// Cells that are looked at when each row is walked over its whole width.
constexpr std::int64_t kLongestWalk = 400'000'000;
/// Indexes of shared texts beyond this name none.
constexpr int kMostSharedTexts = 1 << 24;

/// Whether the parser gets past the first byte: XML begins with "<", behind a byte order mark perhaps.
bool beginsAsXml(const QByteArray& part) {
    const unsigned char first = part.isEmpty() ? 0 : static_cast<unsigned char>(part[0]);
    return first == '<' || first == 0 || first >= 0xEF || first <= ' ';
}

/// The attributes of one element stand between two "<". Counted before the parser sees them.
bool hasManyAttributes(const QByteArray& part) {
    int count = 0;
    for (const char byte : part) {
        if (byte == '<')
            count = 0;
        else if (byte == '=' && ++count > kMostAttributes)
            return true;
    }
    return false;
}

} // namespace

CellPlace cellPlaceOf(QStringView text) {
    // The library's pattern lets one line end stand behind the number.
    if (text.endsWith(u'\n')) text.chop(1);
    qsizetype at = text.startsWith(u'$') ? 1 : 0;
    int column = 0, letters = 0;
    for (; at < text.size() && text[at] >= u'A' && text[at] <= u'Z'; ++at, ++letters) {
        if (letters == 3) return {};
        column = column * 26 + (text[at].unicode() - u'A' + 1);
    }
    if (letters == 0) return {};
    if (at < text.size() && text[at] == u'$') ++at;
    const QStringView digits = text.mid(at);
    if (digits.isEmpty()) return {};
    for (const QChar digit : digits)
        if (digit < u'0' || digit > u'9') return {};
    return {digits.toInt(), column};
}

bool PartScan::read(const QByteArray& part, bool mustBeXml) {
    if (!mustBeXml && !beginsAsXml(part)) return true;
    if (hasManyAttributes(part)) return false;
    m_reader.addData(part);
    while (!m_reader.atEnd()) {
        switch (m_reader.readNext()) {
        case QXmlStreamReader::StartElement:
            if (!startElement()) return false;
            break;
        case QXmlStreamReader::EndElement:
            if (!endElement()) return false;
            break;
        case QXmlStreamReader::Characters:
            characters();
            break;
        // No part of a workbook declares a type, and its entities could grow without end.
        case QXmlStreamReader::DTD:
            return false;
        default:
            break;
        }
    }
    if (!isSheetWalkable()) return false;
    if (!m_reader.hasError()) return true;
    // The library looks for the end of a validation even behind the end of the part.
    return m_validationDepth == 0 && m_pictureDepth == 0 && (!mustBeXml || elements == 0);
}

bool PartScan::startElement() {
    if (++elements > kMostElements || m_namespaces.size() >= kDeepest) return false;
    m_namespaces.push_back(static_cast<int>(m_reader.namespaceDeclarations().size()));
    m_namespacesInScope += m_namespaces.back();
    if (m_namespacesInScope > kMostNamespaces) return false;
    // The library reads the text of these and stops at an element, which it then never gets past.
    if (m_formulaDepth != 0) return false;

    const QStringView name = m_reader.name();
    // Elsewhere these names mean something else: a chain of calculations has its own "c".
    if (name == u"c") return !m_hasRows || cell(m_reader.attributes());
    if (name == u"v") {
        m_inValue = m_isSharedCell;
        m_value.resize(0);
        return true;
    }
    if (name == u"row") return !m_hasRows || row(m_reader.attributes());
    if (name == u"t") {
        m_inText = m_inSharedText;
        m_fragments += m_inSharedText;
        return true;
    }
    if (name == u"si") {
        m_inSharedText = true;
        m_fragments = m_length = 0;
        return true;
    }
    return rareElement(name);
}

bool PartScan::rareElement(QStringView name) {
    const int depth = static_cast<int>(m_namespaces.size());
    if (name == u"dataValidation" && m_validationDepth == 0) m_validationDepth = depth;
    if (m_validationDepth != 0 && (name == u"formula1" || name == u"formula2")) m_formulaDepth = depth;
    if (name == u"pic") {
        if (m_pictureDepth != 0) return false;
        m_pictureDepth = depth;
        m_hasImage = false;
    }
    m_hasImage = m_hasImage || name == u"blip";
    const Rule rule = ruleFor(name);
    return rule == nullptr || (this->*rule)(m_reader.attributes());
}

PartScan::Rule PartScan::ruleFor(QStringView name) {
    struct Entry {
        QStringView name;
        Rule rule;
    };
    static constexpr Entry kRules[] = {
        {u"sheetData", &PartScan::rows},
        {u"cols", &PartScan::columns},
        {u"col", &PartScan::column},
        {u"dimension", &PartScan::dimension},
        {u"mergeCell", &PartScan::range},
        {u"hyperlink", &PartScan::range},
        {u"xf", &PartScan::style},
        {u"definedName", &PartScan::definedName},
        {u"sheet", &PartScan::sheet},
        {u"externalReference", &PartScan::reference},
        {u"drawing", &PartScan::reference},
        {u"Relationship", &PartScan::relation},
        // The format writes it with a capital V. The library waits for the end of this one for ever, and
        // takes the number of a sheet from it unchecked.
        {u"bookviews", &PartScan::refused},
    };
    const auto* const found =
        std::find_if(std::begin(kRules), std::end(kRules), [&](const Entry& at) { return at.name == name; });
    return found == std::end(kRules) ? nullptr : found->rule;
}

bool PartScan::endElement() {
    const int depth = static_cast<int>(m_namespaces.size());
    if (m_formulaDepth == depth) m_formulaDepth = 0;
    if (m_validationDepth == depth) m_validationDepth = 0;
    if (m_pictureDepth == depth) {
        m_pictureDepth = 0;
        // A picture without an image is read, and crashes the library when it is saved.
        if (!m_hasImage) return false;
    }
    m_namespacesInScope -= m_namespaces.back();
    m_namespaces.pop_back();

    const QStringView name = m_reader.name();
    if (name == u"v" && m_inValue) {
        m_inValue = false;
        useShared(m_value.toInt());
    } else if (name == u"c") {
        m_isSharedCell = false;
    } else if (name == u"t") {
        m_inText = false;
    } else if (name == u"si" && m_inSharedText) {
        m_inSharedText = false;
        sharedLengths.push_back(m_fragments > 1 ? m_length : 0);
    }
    return true;
}

void PartScan::characters() {
    if (m_inText) m_length += static_cast<std::uint32_t>(m_reader.text().size());
    if (m_inValue) m_value += m_reader.text();
}

void PartScan::useShared(int index) {
    if (index < 0 || index >= kMostSharedTexts) return;
    if (sharedUses.size() <= std::size_t(index)) sharedUses.resize(std::size_t(index) + 1);
    ++sharedUses[std::size_t(index)];
}

bool PartScan::cell(const Attributes& attributes) {
    if (++cells > kMostCells) return false;
    // The library takes a cell without a place for one at any place.
    const CellPlace place = cellPlaceOf(attributes.value(QLatin1String("r")));
    if (!place.isValid()) return false;
    m_rows += place.row != m_lastRow;
    m_lastRow = place.row;
    m_widest = std::max(m_widest, place.column);
    m_isSharedCell = attributes.value(QLatin1String("t")) == QLatin1String("s");
    return true;
}

bool PartScan::row(const Attributes& attributes) {
    const int row = attributes.value(QLatin1String("r")).toInt();
    return row >= 0 && row <= kLastRow;
}

bool PartScan::rows(const Attributes&) {
    m_hasRows = true;
    return true;
}

bool PartScan::columns(const Attributes&) {
    m_hasColumns = true;
    return true;
}

bool PartScan::column(const Attributes& attributes) {
    if (!m_hasColumns) return true;
    const int first = attributes.value(QLatin1String("min")).toInt();
    const int last = attributes.value(QLatin1String("max")).toInt();
    if (first < 0 || last > kLastColumn) return false;
    m_columnSpan += std::max(0, last - first + 1);
    return m_columnSpan <= 2 * kLastColumn;
}

bool PartScan::range(const Attributes& attributes) {
    const QList<QStringView> corners = attributes.value(QLatin1String("ref")).split(u':');
    if (!cellPlaceOf(corners.first()).isValid()) return false;
    return corners.size() != 2 || cellPlaceOf(corners.last()).isValid();
}

bool PartScan::dimension(const Attributes& attributes) {
    if (!range(attributes)) return false;
    for (const QStringView corner : attributes.value(QLatin1String("ref")).split(u':'))
        m_widest = std::max(m_widest, cellPlaceOf(corner).column);
    return true;
}

bool PartScan::style(const Attributes& attributes) {
    // Too large an index is passed over by the library, one below 0 isn't.
    for (const char* const name : {"fontId", "fillId", "borderId"})
        if (attributes.value(QLatin1String(name)).toInt() < 0) return false;
    return true;
}

bool PartScan::definedName(const Attributes& attributes) {
    if (!attributes.hasAttribute(QLatin1String("localSheetId"))) return true;
    const int sheet = attributes.value(QLatin1String("localSheetId")).toInt();
    return sheet >= 0 && sheet < m_sheets;
}

bool PartScan::sheet(const Attributes& attributes) {
    ++m_sheets;
    return reference(attributes);
}

bool PartScan::reference(const Attributes& attributes) {
    references.append(attributes.value(QLatin1String("r:id")).toString());
    return references.size() <= kMostRelations;
}

bool PartScan::relation(const Attributes& attributes) {
    const QString id = attributes.value(QLatin1String("Id")).toString();
    if (!targets.contains(id)) targets.insert(id, attributes.value(QLatin1String("Target")).toString());
    return targets.size() <= kMostRelations;
}

bool PartScan::isSheetWalkable() const {
    return m_rows * m_widest <= kLongestWalk;
}

} // namespace lm::office
