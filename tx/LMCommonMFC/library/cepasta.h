// SPDX-License-Identifier: MIT
// CEPasta: one node of the tree in which the symbol library is shown, a folder or a symbol.
//
//     CEPasta* folder = new CEPasta(true);
//     folder->setKey("12");
//     root->AdicionarItem(folder);
#pragma once

#include "export.h"
#include "text/rzstring.h"

#include "framework/values/containers.h"

#include <cstddef>

class CELstItens;
struct _TREEITEM; // an item of a tree control

/// A node. It owns the list of its children but not the children: deleting a folder leaves them alive, and
/// `parent->GetItensFilhos()->RemoveTodos()` deletes those that it reaches. Nothing here reads a file or a
/// drawing. Not locked: a tree belongs to the thread that built it.
class LM_COMMONMFC_API CEPasta {
public:
    /// The level key (`nivel`) of temporary folders, "-1000".
    static const RZString TempFolderKey;

    /// A node without texts, parent and children.
    CEPasta();
    /// The same; `temFilhos` is what hasChildren answers.
    explicit CEPasta(bool temFilhos);
    CEPasta(const CEPasta&) = delete;
    CEPasta& operator=(const CEPasta&) = delete;
    ~CEPasta();

    /// The key, unique among the children of a list. Lists keep the key that a node had when it came.
    RZString GetKey() const { return m_key; }
    void setKey(RZString key) { m_key = key; }
    /// The level key; the two setters do the same.
    RZString GetNivel() const { return m_nivel; }
    void SetNivel(RZString nivel) { m_nivel = nivel; }
    void SetNovoNivel(RZString nivel) { m_nivel = nivel; }
    /// 0 for a folder, 1 for a symbol.
    int GetTipo() const { return m_tipo; }
    void SetTipo(int tipo) { m_tipo = tipo; }
    /// How well the node fits the current search.
    int GetNivelAderenciaPesquisa() const { return m_nivelAderenciaPesquisa; }
    void SetNivelAderenciaPesquisa(int nivel) { m_nivelAderenciaPesquisa = nivel; }
    /// What the constructor was told; it doesn't follow the list of children.
    bool hasChildren() const { return m_temFilhos; }
    /// Whether the level key is that of temporary folders.
    bool isTemp() const { return m_nivel == TempFolderKey; }

    /// One of 15 descriptions. `i` must be in 0 to 14 and isn't checked.
    RZString getDescricao(int i) const { return m_descricoes[i]; }
    void setDescricao(int i, RZString descricao) { m_descricoes[i] = descricao; }
    void copyDescricoes(CEPasta* origem);

    /// The parent, null at the root. Setting it marks the parent when this node is marked; it doesn't enter
    /// the node in the parent's list.
    CEPasta* GetPastaPai() const { return m_pastaPai; }
    void SetPastaPai(CEPasta* pai);
    /// Whether an ancestor has a key; the node itself isn't asked.
    bool VerificaPai(RZString key) const;

    /// The children; never null, and this node's.
    CELstItens* GetItensFilhos() const { return m_itensFilhos; }
    /// Appends a child and makes this node its parent. Null is entered under the empty key.
    void AdicionarItem(CEPasta* filho);
    /// Takes the first child with the key of `filho` out of the list's order; false when there is none. The
    /// list still finds it by key, and no node is deleted.
    bool RemoverItem(CEPasta* filho);
    /// How many direct children are folders, and how many symbols. Other types are neither.
    int GetCountPastas() const;
    int GetCountSimbolos() const;

    /// The item that stands for this node in a tree control, by the control's number; null when unknown.
    _TREEITEM* GetTreeItem(unsigned short arvore) const;
    void SetTreeItem(unsigned short arvore, _TREEITEM* item);

    void* operator new(std::size_t size);
    void operator delete(void* block) noexcept;

private:
    static constexpr int kDescriptions = 15;

    RZString m_key;
    RZString m_nivel;
    CEPasta* m_pastaPai = nullptr;
    RZString m_descricoes[kDescriptions];
    bool m_temFilhos = false;
    int m_nivelAderenciaPesquisa = 0;
    int m_tipo = 0;
    CELstItens* m_itensFilhos;
    CMapWordToPtr m_treeItems{10};

public:
    /// Set on a parent when a marked child is attached to it.
    bool filhoMarcado = false;
    /// Marks this node; set by whoever fills the tree, before the node is attached.
    bool marcado = false;
};
