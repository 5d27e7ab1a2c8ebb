// SPDX-License-Identifier: MIT
// What the insertion and the redefinition of symbols share.
#pragma once

#include "text/rzstring.h"

#include "drawing/objectid.h"
#include "host/database.h"

#include <vector>

namespace lm::cad {

/// The blocks that a drawing has at one moment, so that those that came since can be taken out again.
class KnownBlocks {
public:
    explicit KnownBlocks(const OdDbDatabase& db);
    bool has(OdDbObjectId block) const;
    /// Erases the blocks that weren't there, with what is in them.
    void eraseOthers() const;

private:
    static std::vector<OdDbObjectId> blocksOf(const OdDbDatabase& db);

    const OdDbDatabase& m_db;
    std::vector<OdDbObjectId> m_ids; // sorted
};

/// Whether a block shows another one, itself or by way of blocks in it. Erased entities show nothing.
bool shows(OdDbObjectId outer, OdDbObjectId inner);

/// Tells the user that a symbol is refused since it would make a block contain itself.
void tellOfCircle(const RZString& name, const OdDbDatabase& source);

/// Reads a symbol file as a database of its own. Null in a host without services; OdError for a file that
/// can't be read.
OdSmartPtr<CHostDatabase> readSymbolFile(const RZString& path);

/// Makes a drawing a block of the current database, with the origin (0, 0, 0): where the drawing had its base
/// point. The source stays as it is. The null id when the name can't be made, and without a database; also,
/// with a line for the user that calls the block `told`, and with no new block, when a block would contain
/// itself. OdError, and no new block, for a drawing with an entity that can't be moved there.
OdDbObjectId insertSymbol(const RZString& name, OdDbDatabase& source, const RZString& told);

} // namespace lm::cad
