// SPDX-License-Identifier: MIT
// CELstItens: the children of a node in the tree of symbols, in order and by key.
//
//     for (items->Start(); !items->Done(); items->MoveNext()) show(items->GetItem());
#pragma once

#include "export.h"
#include "text/pointerarrays.h"
#include "text/rzstring.h"

#include <cstddef>
#include <map>

class CEPasta;

/// A list of nodes. The array keeps the order of insertion, a map gives access by key, and only Add and
/// remove keep the two in step: what the array's own operations do, the map doesn't follow. Keys are exact.
/// The list doesn't own its nodes; only RemoveTodos deletes any. A bad index raises CInvalidArgException.
/// Not locked: one thread at a time.
class LM_COMMONMFC_API CELstItens : public CArray<CEPasta*, CEPasta*> {
public:
    CELstItens();
    /// Frees the array and the map and leaves the nodes alone.
    ~CELstItens() override;

    /// Appends a node and gives its index; a key that is present then stands for the new node. A null node
    /// has the empty key.
    long long Add(CEPasta* item);
    /// The node of a key by the map, or null.
    CEPasta* GetItem(RZString key);
    /// The index of the first node with the key of `item`, or -1.
    int GetIndex(CEPasta* item);

    /// Puts the cursor to the first node; gives 0.
    int Start();
    /// Gives the cursor and then moves it on.
    int MoveNext();
    /// Whether the cursor stands right behind the last node. One moved farther is not done.
    bool Done();
    /// The node at the cursor.
    CEPasta* GetItem();

    /// The nodes of a level (`nivel`), in order, as a new list that belongs to the caller.
    CELstItens* ItensNivel(RZString nivel);

    /// Takes nodes out of the array; the map keeps their keys.
    void RemoveAt(long long i, long long n = 1);
    /// Takes all nodes of a key out of array and map, but for the first node of the list, which stays
    /// whatever its key is. No node is deleted.
    void remove(RZString key);
    /// Deletes all nodes but the first of the list, which stays in the array, and clears the map, its entry
    /// too. Always false. A node must not stand in the list twice.
    bool RemoveTodos();

    void* operator new(std::size_t size);
    void operator delete(void* block) noexcept;

private:
    std::map<lm::WideString, CEPasta*> m_itens;
    int m_cursor = 0;
};
