// SPDX-License-Identifier: MIT
// CHostDatabase: the drawing database as the host hands it out. Every database of the host is one, those read
// as a separate database too.
#pragma once

#include "host/export.h"

#include "drawing/database.h"

/// A drawing database with a number of its own, which entity names carry.
class LM_HOST_API CHostDatabase : public OdDbDatabase {
    LM_RX_CLASS(CHostDatabase)
public:
    explicit CHostDatabase(Content content = kDefaults);
    ~CHostDatabase() override;

    /// Unique in the process and never used again; at least 1.
    unsigned long long number() const { return m_number; }
    /// The living database of a number, or null.
    static CHostDatabase* byNumber(unsigned long long number);

private:
    unsigned long long m_number;
};
