// SPDX-License-Identifier: MIT
#include "settings/xmlfile.h"

#include "settings/xmllevels.h"

#include "system/path.h"

#include <QBuffer>
#include <QFile>
#include <QTextStream>
#include <QXmlStreamReader>

namespace lm::settings {

namespace {

/// The name for Qt's file classes, up to the first 0 unit. They complain of an empty name and of a 0 in it.
QString nativeName(lm::WideView path) {
    return QString::fromStdString(lm::system::nativePath(path.substr(0, path.find(lm::WideChar{0}))));
}

/// Opens a file that has a name.
bool open(QFile& file, QIODevice::OpenMode mode) {
    return !file.fileName().isEmpty() && file.open(mode);
}

/// Whether the document declares entities and refers so often that they may fill the memory. The parser hands
/// a text out whole, however long entities have made it, so this is told before it starts; of an entity by
/// itself it refuses more than 4,096 characters.
bool mayGrowWithoutEnd(QByteArray bytes) {
    if (bytes.count('&') <= kMostReferences) return false;
    bytes.replace('\0', ""); // between the letters of wider units
    return bytes.contains("<!ENTITY");
}

/// Goes through the whole document as the tree's own parser does, entities and all, without making a tree.
bool isHarmlessStepByStep(const QByteArray& bytes) {
    QXmlStreamReader reader(bytes);
    reader.setNamespaceProcessing(false);
    const qsizetype mostCharacters = bytes.size() + kMostExpansion;
    qsizetype characters = 0;
    int level = 0;
    while (!reader.atEnd()) {
        const QXmlStreamReader::TokenType token = reader.readNext();
        if (token == QXmlStreamReader::EndElement) --level;
        if (token == QXmlStreamReader::Characters) characters += reader.text().size();
        if (token == QXmlStreamReader::StartElement) {
            if (++level > kMostLevels) return false;
            for (const QXmlStreamAttribute& attribute : reader.attributes())
                characters += attribute.value().size();
        }
        if (characters > mostCharacters) return false;
    }
    return true;
}

} // namespace

bool isHarmless(const QByteArray& bytes) {
    if (const std::optional<int> levels =
            levelsOf({bytes.constData(), static_cast<std::size_t>(bytes.size())}))
        return *levels <= kMostLevels;
    return !mayGrowWithoutEnd(bytes) && isHarmlessStepByStep(bytes);
}

bool readXml(lm::WideView path, QDomDocument& document) {
    QFile file(nativeName(path));
    if (!open(file, QIODevice::ReadOnly)) return false;
    // One more than it may have, so that a file that grows meanwhile is noticed too.
    if (file.size() > kMostBytes) return false;
    QByteArray bytes = file.read(kMostBytes + 1);
    file.close();
    if (bytes.size() > kMostBytes) return false;
    // The tree walks up to its root for each element that it gets, and recurses to be saved and to end: a
    // deep document would take hours or the whole stack.
    if (!isHarmless(bytes)) return false;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::ReadOnly);
    return document.setContent(&buffer);
}

bool writeXml(lm::WideView path, const QDomDocument& document) {
    QFile file(nativeName(path));
    if (!open(file, QIODevice::WriteOnly)) return false;
    constexpr int kIndent = 2;
    QTextStream out(&file);
    document.QDomNode::save(out, kIndent, QDomNode::EncodingFromDocument);
    return true;
}

} // namespace lm::settings
