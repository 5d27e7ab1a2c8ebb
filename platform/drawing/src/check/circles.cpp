// SPDX-License-Identifier: MIT
// Looks for what contains itself. A walk with a stack of its own, since drawings nest as deep as they like,
// which meets each reference once.
#include "check/steps.h"

#include "dxf/read.h"

namespace lm::drawing {

namespace {

/// Things that contain each other, by index.
class Nesting {
public:
    struct Edge {
        std::size_t to;
        const Node* by; ///< the reference or entry that contains it
    };

    std::size_t indexOf(Node* node) {
        const auto [at, isNew] = m_indices.try_emplace(node, m_nodes.size());
        if (isNew) {
            m_nodes.push_back(node);
            m_edges.emplace_back();
        }
        return at->second;
    }
    void contain(std::size_t outer, Node* inner, const Node* by) {
        const std::size_t to = indexOf(inner);
        m_edges[outer].push_back({to, by});
    }

    /// Calls `found(path, edge)` for each edge that closes a circle; the path leads from the edge's target to
    /// the one that has the edge.
    template<class Found>
    void findCircles(Found&& found) const {
        constexpr std::size_t kNowhere = ~std::size_t{0};
        struct Step {
            std::size_t index, next;
        };
        std::vector<std::size_t> place(m_nodes.size(), kNowhere); // on the stack
        std::vector<bool> done(m_nodes.size(), false);
        std::vector<Step> stack;
        for (std::size_t start = 0; start < m_nodes.size(); ++start) {
            if (done[start]) continue;
            stack.push_back({start, 0});
            place[start] = 0;
            while (!stack.empty()) {
                Step& top = stack.back();
                const auto& edges = m_edges[top.index];
                if (top.next == edges.size()) {
                    done[top.index] = true;
                    place[top.index] = kNowhere;
                    stack.pop_back();
                    continue;
                }
                const Edge& edge = edges[top.next++];
                if (place[edge.to] != kNowhere) {
                    std::vector<Node*> path;
                    for (std::size_t at = place[edge.to]; at < stack.size() && path.size() < kShown; ++at)
                        path.push_back(m_nodes[stack[at].index]);
                    found(path, stack.size() - place[edge.to], edge);
                } else if (!done[edge.to]) {
                    place[edge.to] = stack.size();
                    stack.push_back({edge.to, 0});
                }
            }
        }
    }

    static constexpr std::size_t kShown = 5; ///< names of a path

private:
    std::unordered_map<Node*, std::size_t> m_indices;
    std::vector<Node*> m_nodes;
    std::vector<std::vector<Edge>> m_edges;
};

/// A path in words; `length` counts those that aren't shown, too.
template<class Name>
std::string pathText(const std::vector<Node*>& path, std::size_t length, Name&& name) {
    std::string text;
    for (Node* node : path) text += name(node) + " > ";
    if (length > path.size()) text += std::to_string(length - path.size()) + " more > ";
    return text + name(path.front());
}

void checkBlocks(CheckContext& context) {
    DatabaseData& data = context.data;
    Nesting nesting;
    for (Node* block = data.fixed.blockTable->firstPart; block != nullptr; block = block->next) {
        if (!block->isLive()) continue;
        const std::size_t outer = nesting.indexOf(block);
        for (Node* part = block->firstPart; part != nullptr; part = part->next) {
            if (part->isErased() || part->kind != kKindInsert) continue;
            const auto* reference = OdDbBlockReference::cast(data.bodyOf(part));
            Node* const inner = reference != nullptr ? reference->blockTableRecord().node() : nullptr;
            if (inner != nullptr && inner->isLive()) nesting.contain(outer, inner, part);
        }
    }
    nesting.findCircles([&](const std::vector<Node*>& path, std::size_t length, const Nesting::Edge& edge) {
        context.add(Flaw::kBlockCircle, edge.by, [&] {
            return pathText(path, length, [&](Node* node) { return quoted(recordName(data, node)); });
        });
    });
}

void checkDictionaries(CheckContext& context) {
    DatabaseData& data = context.data;
    Nesting nesting;
    data.nodes.forEach([&](Node& node) {
        const OdDbDictionary* const body = dictionaryOf(data, node);
        if (body == nullptr) return;
        const std::size_t outer = nesting.indexOf(&node);
        for (const auto& [name, id] : ObjectAccess::entries(*body)) {
            Node* const inner = id.node();
            if (inner != nullptr && isDictionary(*inner) && inner->isLive())
                nesting.contain(outer, inner, &node);
        }
    });
    nesting.findCircles([&](const std::vector<Node*>& path, std::size_t length, const Nesting::Edge& edge) {
        context.add(Flaw::kDictionaryCircle, edge.by,
                    [&] { return pathText(path, length, [](Node* node) { return hexText(node->handle); }); });
    });
}

} // namespace

void checkCircles(CheckContext& context) {
    if (context.data.fixed.blockTable != nullptr) checkBlocks(context);
    checkDictionaries(context);
}

} // namespace lm::drawing
