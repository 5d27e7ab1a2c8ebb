// SPDX-License-Identifier: MIT
// CECryptography: keeps short secrets, such as a stored password, from being read at a glance.
//
//     QString stored = CECryptography().crypt(password);     // plain ASCII, fit for an XML attribute
#pragma once

#include "lmcommon/export.h"

#include <QString>

/// Encrypts and decrypts text with AES-256-GCM and a key that is part of the program. That guards a settings
/// file against readers and against unnoticed changes, not against somebody who has this program.
class LM_COMMON_API CECryptography {
public:
    /// The text encrypted: "LM1:" and Base64. Different at each call, for the empty text too. Raises
    /// std::runtime_error when the cipher library fails.
    QString crypt(QString text) const;
    /// The text that crypt was given, exact in all units; empty for the empty text, for text that crypt
    /// didn't make, and for text that was changed since.
    QString decrypt(QString text) const;
};
