// SPDX-License-Identifier: MIT
// One pass over a drawing file: finds its sections and entries, and of each entry what must be known before
// it is read. Nothing is decoded here, since the code page may stand further on.
#pragma once

#include "model/databasedata.h"

#include "drawing/reader.h"

#include <string_view>

namespace lm::drawing {

/// A table as the file has it; its records are the parts of the entry.
struct ScannedTable {
    Node* head = nullptr;
    std::string_view name;
};

/// A block as the file has it; its entities are the parts of the BLOCK entry until they get their record.
struct ScannedBlock {
    Node* begin = nullptr;
    Node* end = nullptr;
    std::string_view name;
    std::uint64_t owner = 0;
    bool named = false;
};

/// A reference and the name of its block.
struct ScannedInsert {
    Node* insert = nullptr;
    std::string_view name;
};

/// Entries from `first` on name this owner, until the next run.
struct OwnerRun {
    Node* first = nullptr;
    std::uint64_t owner = 0;
};

/// An entry whose handle can't be read. An entry that names none has no record here: its entry shows it.
struct BadHandle {
    Node* node = nullptr;
    std::string found;
};

/// A layer name that entities stand on, and the first of them.
struct UsedLayer {
    std::string_view name;
    Node* first = nullptr;
};

struct ScanResult {
    std::vector<ScannedTable> tables;
    std::vector<ScannedBlock> blocks;
    std::vector<ScannedInsert> inserts;
    Node entities; ///< holds the entities of the ENTITIES section as parts
    std::vector<OwnerRun> entityOwners;
    std::vector<Node*> objects;
    std::vector<std::uint64_t> objectOwners;
    std::vector<BadHandle> badHandles;
    std::vector<UsedLayer> layers;
    std::uint64_t highestHandle = 0;
    std::size_t handled = 0;
};

/// Scans the source of `data`. Raises OdError for a file that can't be understood; with `strict` for every
/// defect.
void scan(DatabaseData& data, const ReadOptions& options, ScanResult& result);

} // namespace lm::drawing
