// SPDX-License-Identifier: MIT
// Bodies of the modeller that newer files hold apart from their entities: a section of records, each of which
// names the entity that it belongs to by its handle.
#pragma once

#include "model/databasedata.h"

#include <string_view>
#include <vector>

namespace lm::drawing {

/// The section that holds them.
inline constexpr std::string_view kStoredBodies = "ACDSDATA";
/// What a record begins with, under the code 0.
inline constexpr std::string_view kStoredRecord = "ACDSRECORD";
/// The code of the handle of the entity.
inline constexpr int kBodyOf = 320;

/// A record: the entity, and the bytes of the source between its beginning and the next one.
struct StoredBody {
    Node* entity;
    const char* begin;
    const char* end;
};

/// The records that belong to entities of the database, in their order. Those of others, such as the pictures
/// of blocks, aren't among them.
std::vector<StoredBody> storedBodiesOf(const DatabaseData& data);

} // namespace lm::drawing
