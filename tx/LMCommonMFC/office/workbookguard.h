// SPDX-License-Identifier: MIT
// Looks into a workbook before the workbook library does, which trusts its files: some make it crash, never
// come to an end, or fill the memory.
//
//     if (!lm::office::isFitWorkbook(bytes)) ...     // treat it as a workbook that can't be read
#pragma once

#include <QByteArray>

#include <string>

namespace lm::office {

/// Whether the library may be given this archive: a plain zip whose parts unpack to what its directory says,
/// to no more than a memory holds, and keep to the rules of PartScan. Whether the library can read it is
/// another question. Says nothing and changes nothing; any thread may ask.
bool isFitWorkbook(const QByteArray& archive);

/// The same for the file at a native path. False for a file that isn't there or can't be read, a folder, a
/// pipe and a device.
bool isFitWorkbookFile(const std::string& path);

} // namespace lm::office
