#include "canvas/diagram/auto_layout_parts.h"

#include <algorithm>

namespace QB::DiagramLumo::AutoLayout {
namespace {

Neighbours neighboursOf(const LayoutGraph& graph) {
    Neighbours neighbours(graph.boxes.size());
    for (const auto& [a, b] : distinctLinks(graph)) {
        neighbours[a].push_back(b);
        neighbours[b].push_back(a);
    }
    for (auto& list : neighbours)
        std::sort(list.begin(), list.end());
    return neighbours;
}

/// What can be reached from @p first, ascending; marks it in @p isSeen.
std::vector<Index> reachable(const Neighbours& neighbours, Index first, std::vector<bool>& isSeen) {
    std::vector<Index> found{first};
    isSeen[first] = true;
    for (Index next = 0; next < found.size(); ++next) {
        for (Index other : neighbours[found[next]]) {
            if (isSeen[other]) continue;
            isSeen[other] = true;
            found.push_back(other);
        }
    }
    std::sort(found.begin(), found.end());
    return found;
}

}  // namespace

std::vector<std::pair<Index, Index>> distinctLinks(const LayoutGraph& graph) {
    const auto exists = [&](int box) {
        return box >= 0 && static_cast<Index>(box) < graph.boxes.size();
    };
    std::vector<std::pair<Index, Index>> links;
    for (const LayoutGraph::Edge& edge : graph.edges) {
        if (edge.from == edge.to || !exists(edge.from) || !exists(edge.to)) continue;
        const auto [low, high] = std::minmax(edge.from, edge.to);
        links.emplace_back(static_cast<Index>(low), static_cast<Index>(high));
    }
    std::sort(links.begin(), links.end());
    links.erase(std::unique(links.begin(), links.end()), links.end());
    return links;
}

std::vector<Part> connectedParts(const LayoutGraph& graph) {
    const Neighbours neighbours = neighboursOf(graph);
    std::vector<bool> isSeen(neighbours.size());
    std::vector<Index> inPart(neighbours.size());
    std::vector<Part> parts;
    for (Index first = 0; first < neighbours.size(); ++first) {
        if (isSeen[first]) continue;
        Part part{reachable(neighbours, first, isSeen), {}};
        for (Index i = 0; i < part.boxes.size(); ++i)
            inPart[part.boxes[i]] = i;
        for (Index box : part.boxes) {
            auto& list = part.neighbours.emplace_back(neighbours[box]);
            for (Index& other : list)
                other = inPart[other];
        }
        parts.push_back(std::move(part));
    }
    return parts;
}

}  // namespace QB::DiagramLumo::AutoLayout
