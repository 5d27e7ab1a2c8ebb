// SPDX-License-Identifier: MIT
// Small XML files, whole, from and to disk. Internal. Paths may have "\" or "/" between their parts.
#pragma once

#include "system/wide.h"

#include <QByteArray>
#include <QDomDocument>

namespace lm::settings {

/// The most levels of elements that a document may have, the root counted.
constexpr int kMostLevels = 1000;

/// The most characters by which entities and default attributes may lengthen a document.
constexpr qsizetype kMostExpansion = 1000000;

/// The most references of a document that declares entities of its own.
constexpr qsizetype kMostReferences = 1000;

/// The most bytes of a file that is read.
constexpr qint64 kMostBytes = qint64(64) << 20;

/// Whether a document may be parsed into a tree, by the limits above. A document that isn't well-formed may
/// pass; parsing it stops where its fault is.
bool isHarmless(const QByteArray& bytes);

/// Reads the file into the document. False when the file can't be opened, is too large, isn't well-formed or
/// isn't harmless; the document holds nothing of use then.
bool readXml(lm::WideView path, QDomDocument& document);

/// Writes the document over the file, in place: truncated first, without a copy beside it, so that a write
/// that breaks off leaves a torn file. Indented by 2, in the encoding that the document declares or in UTF-8.
/// False when the file can't be opened for writing; a failure after that isn't noticed.
bool writeXml(lm::WideView path, const QDomDocument& document);

} // namespace lm::settings
