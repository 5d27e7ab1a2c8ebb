// SPDX-License-Identifier: MIT
// The tree of symbols: nodes, their lists, and who deletes what.
#include "library/celstitens.h"
#include "library/cepasta.h"

#include "drawing/alloc.h"
#include "framework/values/exceptions.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <deque>
#include <memory>
#include <type_traits>
#include <vector>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

static_assert(!std::is_polymorphic_v<CEPasta>);
static_assert(!std::is_copy_constructible_v<CEPasta>);
static_assert(std::is_base_of_v<CArray<CEPasta*, CEPasta*>, CELstItens>);

/// Nodes that the test owns, and those that it gave away.
class LibraryTree : public testing::Test {
protected:
    CEPasta* node(const char* key, const char* level = "", int type = 0) {
        CEPasta& made = m_nodes.emplace_back();
        return filled(&made, key, level, type);
    }
    /// A node that somebody else deletes.
    static CEPasta* given(const char* key) { return filled(new CEPasta, key, "", 0); }
    static std::vector<CEPasta*> content(const CELstItens& list) {
        return {list.GetData(), list.GetData() + list.GetSize()};
    }

    CELstItens m_list;

private:
    static CEPasta* filled(CEPasta* made, const char* key, const char* level, int type) {
        made->setKey(key);
        made->SetNivel(level);
        made->SetTipo(type);
        return made;
    }
    std::deque<CEPasta> m_nodes;
};

// --- nodes ---

TEST_F(LibraryTree, ANewNodeIsEmpty) {
    const CEPasta node;
    EXPECT_EQ(node.GetKey(), "");
    EXPECT_EQ(node.GetNivel(), "");
    for (int i = 0; i < 15; ++i) EXPECT_EQ(node.getDescricao(i), "") << i;
    EXPECT_EQ(node.GetTipo(), 0);
    EXPECT_EQ(node.GetNivelAderenciaPesquisa(), 0);
    EXPECT_EQ(node.GetPastaPai(), nullptr);
    ASSERT_NE(node.GetItensFilhos(), nullptr);
    EXPECT_TRUE(node.GetItensFilhos()->IsEmpty());
    EXPECT_EQ(node.GetTreeItem(0), nullptr);
    EXPECT_FALSE(node.hasChildren());
    EXPECT_FALSE(node.marcado);
    EXPECT_FALSE(node.filhoMarcado);
    EXPECT_FALSE(node.isTemp());
}

TEST_F(LibraryTree, ANodeKeepsWhatItIsGiven) {
    CEPasta node;
    node.setKey("k");
    node.SetNivel("n");
    node.SetTipo(1);
    node.SetNivelAderenciaPesquisa(-5);
    EXPECT_EQ(node.GetKey(), "k");
    EXPECT_EQ(node.GetNivel(), "n");
    EXPECT_EQ(node.GetTipo(), 1);
    EXPECT_EQ(node.GetNivelAderenciaPesquisa(), -5);
    node.SetNovoNivel("m");
    EXPECT_EQ(node.GetNivel(), "m");
}

TEST_F(LibraryTree, ANodeTellsOfChildrenWhatItsConstructorWasTold) {
    CEPasta with(true), without(false), plain;
    EXPECT_TRUE(with.hasChildren());
    EXPECT_FALSE(without.hasChildren());
    plain.AdicionarItem(node("a"));
    EXPECT_FALSE(plain.hasChildren()) << "however many it has";
    EXPECT_EQ(plain.GetItensFilhos()->GetSize(), 1);
}

TEST_F(LibraryTree, AFolderIsTemporaryByItsLevel) {
    EXPECT_EQ(CEPasta::TempFolderKey, "-1000");
    EXPECT_TRUE(node("a", "-1000")->isTemp());
    EXPECT_FALSE(node("-1000", "1")->isTemp());
    EXPECT_FALSE(node("a", " -1000")->isTemp());
}

TEST_F(LibraryTree, ANodeHasFifteenDescriptions) {
    CEPasta from, to;
    for (int i = 0; i < 15; ++i) from.setDescricao(i, RZString(i, 2));
    to.setDescricao(3, "before");
    to.setKey("k");
    to.copyDescricoes(&from);
    for (int i = 0; i < 15; ++i) EXPECT_EQ(to.getDescricao(i), RZString(i, 2)) << i;
    EXPECT_EQ(to.GetKey(), "k");
    to.copyDescricoes(&to);
    EXPECT_EQ(to.getDescricao(14), "14");
}

TEST_F(LibraryTree, AMarkedChildMarksItsParent) {
    CEPasta first, second;
    CEPasta *plain = node("a"), *marked = node("b");
    marked->marcado = true;
    first.AdicionarItem(plain);
    plain->SetPastaPai(&first);
    EXPECT_FALSE(first.filhoMarcado);
    first.AdicionarItem(marked);
    EXPECT_TRUE(first.filhoMarcado);
    marked->SetPastaPai(&second);
    EXPECT_TRUE(second.filhoMarcado);
    EXPECT_EQ(second.GetItensFilhos()->GetSize(), 0) << "a parent alone makes no child";
    marked->SetPastaPai(nullptr);
    EXPECT_EQ(marked->GetPastaPai(), nullptr);
    EXPECT_TRUE(first.filhoMarcado) << "the mark is never taken back";
    CEPasta grandparent;
    grandparent.AdicionarItem(&first);
    EXPECT_FALSE(grandparent.filhoMarcado) << "a marked child isn't a marked node";
}

TEST_F(LibraryTree, AnItemGetsItsParent) {
    CEPasta folder;
    CEPasta* const child = node("a");
    folder.AdicionarItem(child);
    EXPECT_EQ(child->GetPastaPai(), &folder);
    EXPECT_EQ(folder.GetItensFilhos()->GetItem("a"), child);
    folder.AdicionarItem(nullptr);
    EXPECT_EQ(folder.GetItensFilhos()->GetSize(), 2);
}

TEST_F(LibraryTree, AnItemThatIsRemovedIsStillFoundByKey) {
    CEPasta folder;
    CEPasta *first = node("a"), *second = node("b"), *third = node("c");
    for (CEPasta* each : {first, second, third}) folder.AdicionarItem(each);
    EXPECT_TRUE(folder.RemoverItem(second));
    EXPECT_THAT(content(*folder.GetItensFilhos()), ElementsAre(first, third));
    EXPECT_EQ(folder.GetItensFilhos()->GetItem("b"), second);
    EXPECT_EQ(second->GetPastaPai(), &folder);
    EXPECT_FALSE(folder.RemoverItem(second)) << "a second time";
    EXPECT_TRUE(folder.RemoverItem(first)) << "the first one too";
    EXPECT_TRUE(folder.RemoverItem(node("c"))) << "the key counts, not the node";
    EXPECT_THAT(content(*folder.GetItensFilhos()), IsEmpty());
    EXPECT_EQ(folder.GetItensFilhos()->GetData(), nullptr) << "spare storage is given back";
}

TEST_F(LibraryTree, AnAncestorIsFoundByItsKey) {
    CEPasta root, folder;
    root.setKey("root");
    folder.setKey("folder");
    root.AdicionarItem(&folder);
    CEPasta* const leaf = node("leaf");
    folder.AdicionarItem(leaf);
    EXPECT_TRUE(leaf->VerificaPai("folder"));
    EXPECT_TRUE(leaf->VerificaPai("root"));
    EXPECT_FALSE(leaf->VerificaPai("leaf")) << "the node itself isn't asked";
    EXPECT_FALSE(leaf->VerificaPai("Root"));
    EXPECT_FALSE(root.VerificaPai("root"));
    root.setKey("leaf");
    EXPECT_TRUE(leaf->VerificaPai("leaf")) << "an ancestor has it too";
}

TEST_F(LibraryTree, FoldersAndSymbolsAreCountedAmongTheDirectChildren) {
    CEPasta folder;
    CEPasta* const inner = node("f", "", 0);
    inner->AdicionarItem(node("deep", "", 1));
    for (CEPasta* each : {inner, node("s", "", 1), node("t", "", 1), node("other", "", 2)})
        folder.AdicionarItem(each);
    folder.AdicionarItem(nullptr);
    EXPECT_EQ(folder.GetCountPastas(), 1);
    EXPECT_EQ(folder.GetCountSimbolos(), 2);
    EXPECT_EQ(folder.GetItensFilhos()->GetSize(), 5) << "a child of another type is neither";
}

TEST_F(LibraryTree, ANodeKnowsItsItemInEachTree) {
    int one = 0, two = 0;
    const auto item = [](int& place) { return reinterpret_cast<_TREEITEM*>(&place); };
    CEPasta node;
    node.SetTreeItem(1, item(one));
    node.SetTreeItem(65535, item(two));
    EXPECT_EQ(node.GetTreeItem(1), item(one));
    EXPECT_EQ(node.GetTreeItem(65535), item(two));
    EXPECT_EQ(node.GetTreeItem(2), nullptr);
    node.SetTreeItem(1, nullptr);
    EXPECT_EQ(node.GetTreeItem(1), nullptr);
}

TEST_F(LibraryTree, ADeletedFolderLeavesItsChildrenAlive) {
    const std::size_t before = lm::drawing::liveBlocks();
    CEPasta* const child = given("child");
    {
        CEPasta* const folder = new CEPasta(true);
        folder->AdicionarItem(child);
        delete folder;
    }
    EXPECT_EQ(child->GetKey(), "child");
    delete child;
    EXPECT_EQ(lm::drawing::liveBlocks(), before) << "nodes and their lists come from the shared heap";
}

// --- lists ---

TEST_F(LibraryTree, AListKeepsOrderAndKeys) {
    CEPasta *b = node("b"), *a = node("a");
    EXPECT_EQ(m_list.Add(b), 0);
    EXPECT_EQ(m_list.Add(a), 1);
    EXPECT_THAT(content(m_list), ElementsAre(b, a));
    EXPECT_EQ(m_list.GetItem("a"), a);
    EXPECT_EQ(m_list.GetItem("A"), nullptr) << "keys are exact";
    EXPECT_EQ(m_list.GetItem(""), nullptr);
}

TEST_F(LibraryTree, AKeyThatIsPresentStandsForTheLaterNode) {
    CEPasta *first = node("k"), *second = node("k");
    m_list.Add(first);
    EXPECT_EQ(m_list.Add(second), 1);
    EXPECT_EQ(m_list.GetItem("k"), second);
    EXPECT_THAT(content(m_list), ElementsAre(first, second));
    EXPECT_EQ(m_list.GetIndex(second), 0) << "the index is that of the first with the key";
}

TEST_F(LibraryTree, ANullNodeHasTheEmptyKey) {
    CEPasta* const empty = node("");
    m_list.Add(empty);
    EXPECT_EQ(m_list.Add(nullptr), 1);
    EXPECT_EQ(m_list.GetItem(""), nullptr) << "overwritten by the null node";
    EXPECT_EQ(m_list.GetIndex(nullptr), 0);
    m_list.Add(empty);
    EXPECT_EQ(m_list.GetItem(""), empty);
}

TEST_F(LibraryTree, AnIndexGoesByKey) {
    for (const char* key : {"a", "b", "b"}) m_list.Add(node(key));
    EXPECT_EQ(m_list.GetIndex(node("b")), 1);
    EXPECT_EQ(m_list.GetIndex(node("B")), -1);
    EXPECT_EQ(CELstItens().GetIndex(node("a")), -1);
    m_list.GetAt(0)->setKey("z");
    EXPECT_EQ(m_list.GetIndex(node("z")), 0) << "the key that a node has now";
    EXPECT_EQ(m_list.GetItem("a"), m_list.GetAt(0)) << "the map keeps the one that it came with";
}

TEST_F(LibraryTree, ACursorWalksTheList) {
    CEPasta *a = node("a"), *b = node("b");
    EXPECT_TRUE(m_list.Done()) << "an empty list is done from the start";
    EXPECT_THROW(m_list.GetItem(), CInvalidArgException);
    m_list.Add(a);
    m_list.Add(b);
    EXPECT_EQ(m_list.Start(), 0);
    std::vector<CEPasta*> seen;
    for (; !m_list.Done(); m_list.MoveNext()) seen.push_back(m_list.GetItem());
    EXPECT_THAT(seen, ElementsAre(a, b));
    EXPECT_THROW(m_list.GetItem(), CInvalidArgException);
    EXPECT_EQ(m_list.MoveNext(), 2) << "gives the cursor as it was";
    EXPECT_FALSE(m_list.Done()) << "moved past the end it isn't done";
    EXPECT_THROW(m_list.GetItem(), CInvalidArgException);
    EXPECT_EQ(m_list.Start(), 0);
    EXPECT_EQ(m_list.MoveNext(), 0);
    EXPECT_EQ(m_list.GetItem(), b);
}

TEST_F(LibraryTree, ALevelIsAListOfItsOwn) {
    CEPasta *a = node("a", "2"), *b = node("b", "1"), *c = node("c", "2");
    for (CEPasta* each : {a, b, c}) m_list.Add(each);
    m_list.Add(nullptr);
    const std::unique_ptr<CELstItens> level(m_list.ItensNivel("2")), none(m_list.ItensNivel("3")),
        empty(m_list.ItensNivel(""));
    EXPECT_THAT(content(*level), ElementsAre(a, c));
    EXPECT_EQ(level->GetItem("c"), c);
    EXPECT_THAT(content(*none), IsEmpty());
    EXPECT_THAT(content(*empty), IsEmpty());
    EXPECT_EQ(m_list.GetSize(), 4);
}

TEST_F(LibraryTree, RemovingByIndexLeavesTheMap) {
    CEPasta *a = node("a"), *b = node("b"), *c = node("c");
    for (CEPasta* each : {a, b, c}) m_list.Add(each);
    m_list.RemoveAt(0, 2);
    EXPECT_THAT(content(m_list), ElementsAre(c));
    EXPECT_EQ(m_list.GetItem("a"), a);
    EXPECT_EQ(m_list.GetItem("b"), b);
    EXPECT_THROW(m_list.RemoveAt(0, 2), CInvalidArgException);
    EXPECT_THROW(m_list.RemoveAt(-1, 1), CInvalidArgException);
    EXPECT_THAT(content(m_list), ElementsAre(c));
}

TEST_F(LibraryTree, RemovingByKeyTakesAllButTheFirstNode) {
    CEPasta *a = node("k"), *b = node("k"), *c = node("other"), *d = node("k");
    for (CEPasta* each : {a, b, c, d}) m_list.Add(each);
    m_list.remove("K");
    EXPECT_EQ(m_list.GetSize(), 4) << "keys are exact";
    m_list.remove("k");
    EXPECT_THAT(content(m_list), ElementsAre(a, c));
    EXPECT_EQ(m_list.GetItem("k"), nullptr) << "the entry goes, though the first node stays";
    EXPECT_EQ(m_list.GetItem("other"), c);
    EXPECT_EQ(b->GetKey(), "k") << "no node is deleted";
}

TEST_F(LibraryTree, RemovingTheKeyOfTheFirstNodeChangesNothing) {
    CEPasta *a = node("a"), *b = node("b");
    m_list.remove("a");
    m_list.Add(a);
    m_list.Add(b);
    m_list.remove("a");
    EXPECT_THAT(content(m_list), ElementsAre(a, b));
    EXPECT_EQ(m_list.GetItem("a"), a);
}

TEST_F(LibraryTree, RemovingAllDeletesAllButTheFirstNode) {
    const std::size_t before = lm::drawing::liveBlocks();
    CEPasta* const first = given("a");
    const std::size_t one = lm::drawing::liveBlocks();
    m_list.Add(first);
    m_list.Add(given("b"));
    m_list.Add(given("c"));
    EXPECT_FALSE(m_list.RemoveTodos());
    EXPECT_EQ(lm::drawing::liveBlocks(), one) << "two nodes and their lists are gone";
    EXPECT_THAT(content(m_list), ElementsAre(first));
    for (const char* key : {"a", "b", "c"}) EXPECT_EQ(m_list.GetItem(key), nullptr) << key;
    delete first;
    EXPECT_EQ(lm::drawing::liveBlocks(), before);
}

TEST_F(LibraryTree, RemovingAllOfAListOfOneDeletesNothing) {
    CEPasta* const only = node("a");
    m_list.Add(only);
    EXPECT_FALSE(m_list.RemoveTodos());
    EXPECT_THAT(content(m_list), ElementsAre(only));
    EXPECT_EQ(m_list.GetItem("a"), nullptr);
    EXPECT_FALSE(CELstItens().RemoveTodos());
}

TEST_F(LibraryTree, RemovingAllPassesOverNullNodes) {
    m_list.Add(node("a"));
    m_list.Add(nullptr);
    m_list.Add(given("c"));
    EXPECT_FALSE(m_list.RemoveTodos());
    EXPECT_EQ(m_list.GetSize(), 1);
}

TEST_F(LibraryTree, AListIsAnObjectOfTheFramework) {
    const CObject& object = m_list;
    EXPECT_TRUE(object.IsKindOf(CObject::runtimeClass()));
    EXPECT_THROW(m_list.GetAt(0), CInvalidArgException);
    EXPECT_THROW(m_list.SetAt(-1, nullptr), CInvalidArgException);
    const std::size_t before = lm::drawing::liveBlocks();
    std::unique_ptr<CObject>(new CELstItens).reset();
    EXPECT_EQ(lm::drawing::liveBlocks(), before);
}

} // namespace
