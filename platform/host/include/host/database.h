// SPDX-License-Identifier: MIT
// CHostDatabase: the drawing database as the host hands it out. Every database of the host is one, those read
// as a separate database too.
#pragma once

#include "host/export.h"
#include "host/view.h"

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

    /// The record of the active viewport; null for a database without one. The argument names the view that
    /// is asked for; there is only the one of model space, so every id gives the same.
    OdDbObjectId GetActiveViewportId(OdDbObjectId view = OdDbObjectId::kNull) const;
    /// Converts points that a user gave.
    CHostCoordinateService& coordinates() { return m_coordinates; }

private:
    unsigned long long m_number;
    CHostCoordinateService m_coordinates;
};
