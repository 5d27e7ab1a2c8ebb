// SPDX-License-Identifier: MIT
// Names in the groups of a file: which entry of a table a layer, line type, style or block name stands for. A
// name resolves exactly first, then ignoring case, since files are lenient about it.
#pragma once

#include "dxf/cursor.h"
#include "model/databasedata.h"

#include <unordered_map>

namespace lm::drawing {

enum class Names { kLayers, kLinetypes, kStyles, kBlocks };

struct DatabaseData::Resolver {
    explicit Resolver(DatabaseData& owner) : data(owner) {}

    /// The entry of a name as the file's bytes have it; null when the table lacks it.
    Node* find(Names table, std::string_view bytes) {
        Memo& memo = memos[static_cast<int>(table)];
        if (memo.lastNode != nullptr && memo.lastBytes == bytes) return memo.lastNode;
        return findSlowly(table, bytes);
    }
    /// Lets a name stand for an entry.
    void set(Names table, std::string_view bytes, Node* node);
    /// Lets the name that a record has in the source stand for it from now on, whatever it is called
    /// afterwards.
    void keepName(Node& record);
    /// Forgets everything: the tables changed.
    void clear() {
        for (Memo& memo : memos) memo = Memo();
    }

private:
    struct Memo {
        std::string_view lastBytes;
        Node* lastNode = nullptr;
        std::unordered_map<std::string_view, Node*> known; // keys lie in the source
        std::unordered_map<std::string, Node*> folded;
        bool foldedReady = false;
    };
    Node* findSlowly(Names table, std::string_view bytes);
    Node* lookUp(Names table, Memo& memo, std::string_view bytes);
    Node* tableOf(Names table) const;

    DatabaseData& data;
    Memo memos[4];
};

} // namespace lm::drawing
