#include "canvas/diagram/auto_layout_order.h"

#include <algorithm>
#include <numeric>
#include <tuple>

namespace QB::DiagramLumo::AutoLayout {
namespace {

/// Distances from @p root, and the boxes in the order in which a walk by layers meets them.
std::pair<std::vector<Index>, std::vector<Index>> walk(const Neighbours& neighbours, Index root) {
    constexpr Index unseen = SIZE_MAX;
    std::vector<Index> distance(neighbours.size(), unseen);
    std::vector<Index> met{root};
    distance[root] = 0;
    for (Index next = 0; next < met.size(); ++next) {
        const Index box = met[next];
        for (Index neighbour : neighbours[box]) {
            if (distance[neighbour] != unseen) continue;
            distance[neighbour] = distance[box] + 1;
            met.push_back(neighbour);
        }
    }
    return {std::move(distance), std::move(met)};
}

/// How many pairs stand the wrong way round, less those that stand right: what is won when the
/// owner of @p upper and that of @p lower, just below it, change places.
int64_t wonBySwap(const std::vector<Index>& upper, const std::vector<Index>& lower) {
    int64_t won = 0;
    Index above = 0;  // of lower, those above the place of upper
    Index notBelow = 0;
    for (Index place : upper) {
        while (above < lower.size() && lower[above] < place)
            ++above;
        while (notBelow < lower.size() && lower[notBelow] <= place)
            ++notBelow;
        won += static_cast<int64_t>(above) - static_cast<int64_t>(lower.size() - notBelow);
    }
    return won;
}

int64_t pairs(int64_t count) {
    return count * (count - 1) / 2;
}

/// Numerical Recipes' generator: the same everywhere, and enough to shake an order.
Index pick(uint32_t& seed, Index count) {
    seed = seed * 1664525u + 1013904223u;
    return (seed >> 8) % count;
}

}  // namespace

LayerOrder::LayerOrder(const Neighbours& neighbours, Index root)
    : m_before(neighbours.size())
    , m_behind(neighbours.size())
    , m_beside(neighbours.size())
    , m_place(neighbours.size())
    , m_placesBefore(neighbours.size())
    , m_placesBehind(neighbours.size()) {
    std::vector<Index> met;
    std::tie(m_layerOf, met) = walk(neighbours, root);
    m_layers.resize(m_layerOf[met.back()] + 1);
    for (Index box : met) {
        m_layers[m_layerOf[box]].push_back(box);
        for (Index other : neighbours[box]) {
            Neighbours& side = m_layerOf[other] < m_layerOf[box]   ? m_before
                               : m_layerOf[other] > m_layerOf[box] ? m_behind
                                                                   : m_beside;
            side[box].push_back(other);
        }
    }
    for (Index layer = 0; layer < m_layers.size(); ++layer)
        number(layer);
}

void LayerOrder::number(Index layer) {
    for (Index place = 0; place < m_layers[layer].size(); ++place)
        m_place[m_layers[layer][place]] = place;
}

int64_t LayerOrder::cost() const {
    int64_t sum = 0;
    for (Index layer = 0; layer < m_layers.size(); ++layer)
        sum += betweenLayers(layer) + insideLayer(layer);
    return sum;
}

/// The links to the layer before: pairs of ends that stand the wrong way round, counted with a tree
/// of sums (Fenwick 1994).
int64_t LayerOrder::betweenLayers(Index layer) const {
    if (layer == 0) return 0;
    std::vector<int64_t> sums(m_layers[layer - 1].size() + 1);
    int64_t crossings = 0;
    int64_t seen = 0;
    for (Index box : m_layers[layer]) {
        for (Index other : m_before[box]) {
            crossings += seen;
            for (Index i = m_place[other] + 1; i > 0; i &= i - 1)
                crossings -= sums[i];
        }
        for (Index other : m_before[box]) {
            ++seen;
            for (Index i = m_place[other] + 1; i < sums.size(); i += i & (~i + 1))
                ++sums[i];
        }
    }
    return crossings * crossingCost;
}

int64_t LayerOrder::insideLayer(Index layer) const {
    const std::vector<Index>& boxes = m_layers[layer];
    std::vector<int64_t> leaving(boxes.size() + 1);  // to the right, from the boxes above a place
    std::vector<int64_t> begun(boxes.size() + 1);
    for (Index place = 0; place < boxes.size(); ++place)
        leaving[place + 1] = leaving[place] + static_cast<int64_t>(m_behind[boxes[place]].size());
    int64_t crossings = 0;
    int64_t apart = 0;
    for (Index upper = 0; upper < boxes.size(); ++upper) {
        for (Index other : m_beside[boxes[upper]]) {
            const Index lower = m_place[other];
            if (lower < upper) continue;
            crossings += leaving[lower] - leaving[upper + 1];
            apart += static_cast<int64_t>(lower - upper) - 1;
            ++begun[upper];
            --begun[lower];
        }
    }
    int64_t cover = 0;
    for (int64_t change : begun) {
        cover += change;
        crossings += pairs(cover);
    }
    return crossings * crossingCost + apart;
}

void LayerOrder::sweep() {
    for (Index layer = 1; layer < m_layers.size(); ++layer)
        sortByMeans(layer, m_before);
    for (Index layer = m_layers.size(); layer-- > 0;)
        sortByMeans(layer, m_behind);
}

/// Boxes without a neighbour on that side keep their places among the others.
void LayerOrder::sortByMeans(Index layer, const Neighbours& side) {
    std::vector<std::pair<double, Index>> keys;
    for (Index box : m_layers[layer]) {
        double sum = 0;
        for (Index other : side[box])
            sum += static_cast<double>(m_place[other]);
        if (!side[box].empty()) keys.emplace_back(sum / static_cast<double>(side[box].size()), box);
    }
    std::stable_sort(keys.begin(), keys.end(),
                     [](const auto& a, const auto& b) { return a.first < b.first; });
    auto next = keys.begin();
    for (Index& box : m_layers[layer])
        if (!side[box].empty()) box = (next++)->second;
    number(layer);
}

void LayerOrder::sift(Effort& effort) {
    bool isBetter = true;
    while (isBetter && !effort.isSpent()) {
        isBetter = false;
        for (Index layer = 0; layer < m_layers.size(); ++layer)
            isBetter |= siftLayer(layer, effort);
    }
}

bool LayerOrder::siftLayer(Index layer, Effort& effort) {
    if (m_layers[layer].size() < 2) return false;
    prepare(layer);
    int64_t won = 0;
    for (Index box : std::vector<Index>(m_layers[layer]))
        if (!effort.isSpent()) won += siftBox(layer, box, effort);
    return won > 0;
}

void LayerOrder::prepare(Index layer) {
    const auto places = [&](const std::vector<Index>& boxes, std::vector<Index>& result) {
        result.clear();
        for (Index box : boxes)
            result.push_back(m_place[box]);
        std::sort(result.begin(), result.end());
    };
    m_cover.assign(m_layers[layer].size(), 0);
    for (Index box : m_layers[layer]) {
        places(m_before[box], m_placesBefore[box]);
        places(m_behind[box], m_placesBehind[box]);
        for (Index other : m_beside[box])
            for (Index place = m_place[box]; place < m_place[other]; ++place)
                ++m_cover[place];
    }
}

/// Walks the box to the nearer end of its layer, to the other end, and back to the best place.
int64_t LayerOrder::siftBox(Index layer, Index box, Effort& effort) {
    const Index start = m_place[box];
    const Index last = m_layers[layer].size() - 1;
    int64_t won = 0;
    int64_t best = 0;
    Index bestPlace = start;
    const auto walkTo = [&](Index goal) {
        while (m_place[box] != goal) {
            const Index place = m_place[box];
            won += swap(layer, goal > place ? place : place - 1);
            effort.spend(4 + m_beside[box].size() + m_before[box].size() + m_behind[box].size());
            if (won <= best) continue;
            best = won;
            bestPlace = m_place[box];
        }
    };
    walkTo(start > last / 2 ? last : 0);
    walkTo(start > last / 2 ? 0 : last);
    walkTo(bestPlace);
    return best;
}

/// Changes @p place and the next. Returns what is won.
int64_t LayerOrder::swap(Index layer, Index place) {
    std::vector<Index>& boxes = m_layers[layer];
    const Index upper = boxes[place];
    const Index lower = boxes[place + 1];
    int64_t won = crossingCost * (wonBySwap(m_placesBefore[upper], m_placesBefore[lower]) +
                                  wonBySwap(m_placesBehind[upper], m_placesBehind[lower]));
    if (!m_beside[upper].empty() || !m_beside[lower].empty()) {
        won -= besideChange(upper, lower, true) + besideChange(lower, upper, false);
        won -= overlapChange(layer, place);
    }
    std::swap(boxes[place], boxes[place + 1]);
    m_place[upper] = place + 1;
    m_place[lower] = place;
    return won;
}

/// What the links inside the layer of @p moved cost more when it changes places with @p passed.
int64_t LayerOrder::besideChange(Index moved, Index passed, bool isMovedDown) const {
    const int64_t passing = static_cast<int64_t>(m_behind[passed].size()) * crossingCost + 1;
    int64_t change = 0;
    for (Index other : m_beside[moved]) {
        if (other == passed) continue;
        const bool isAbove = m_place[other] < m_place[moved];
        change += isAbove == isMovedDown ? passing : -passing;
    }
    return change;
}

/// What overlapping links inside the layer cost more; of those only what passes between the two
/// places changes.
int64_t LayerOrder::overlapChange(Index layer, Index place) {
    const std::vector<Index>& boxes = m_layers[layer];
    int64_t turned = 0;
    for (Index other : m_beside[boxes[place]])
        if (other != boxes[place + 1]) turned += m_place[other] < place ? 1 : -1;
    for (Index other : m_beside[boxes[place + 1]])
        if (other != boxes[place]) turned += m_place[other] < place ? -1 : 1;
    const int64_t old = m_cover[place];
    m_cover[place] += turned;
    return (pairs(m_cover[place]) - pairs(old)) * crossingCost;
}

void LayerOrder::shake(uint32_t& seed) {
    for (Index moves = 2 + pick(seed, 3); moves > 0; --moves) {
        std::vector<Index>& boxes = m_layers[pick(seed, m_layers.size())];
        const auto from = boxes.begin() + static_cast<std::ptrdiff_t>(pick(seed, boxes.size()));
        const auto to = boxes.begin() + static_cast<std::ptrdiff_t>(pick(seed, boxes.size()));
        if (from < to) {
            std::rotate(from, from + 1, to + 1);
        } else {
            std::rotate(to, from, from + 1);
        }
        number(m_layerOf[boxes.front()]);
    }
}

namespace {

std::vector<Index> rootsByLinks(const Neighbours& neighbours) {
    std::vector<Index> roots(neighbours.size());
    std::iota(roots.begin(), roots.end(), Index{0});
    std::stable_sort(roots.begin(), roots.end(),
                     [&](Index a, Index b) { return neighbours[a].size() > neighbours[b].size(); });
    return roots;
}

LayerOrder sweptOrder(const Neighbours& neighbours, Index root, Effort& effort) {
    LayerOrder order(neighbours, root);
    LayerOrder best = order;
    for (int sweeps = 0; sweeps < 4; ++sweeps) {
        order.sweep();
        effort.spend(neighbours.size());
        if (order.cost() < best.cost()) best = order;
    }
    best.sift(effort);
    return best;
}

/// Shakes and sifts until nothing crosses or the effort is spent.
void search(LayerOrder& best, int rounds, Effort& effort) {
    uint32_t seed = 1;
    LayerOrder current = best;
    int64_t cost = best.cost();
    for (int round = 0; round < rounds && !effort.isSpent() && best.crossings() > 0; ++round) {
        current.shake(seed);
        current.sift(effort);
        const int64_t now = current.cost();
        if (now <= cost) {
            best = current;
            cost = now;
        } else {
            current = best;
        }
    }
}

}  // namespace

std::vector<LayerOrder> bestOrders(const Neighbours& neighbours, Index count, Effort& effort) {
    std::vector<LayerOrder> best;
    for (Index root : rootsByLinks(neighbours)) {
        best.push_back(sweptOrder(neighbours, root, effort));
        if (best.back().crossings() == 0 || effort.isSpent()) break;
    }
    std::stable_sort(best.begin(), best.end(), [](const LayerOrder& a, const LayerOrder& b) {
        return a.crossings() < b.crossings();
    });
    best.erase(best.begin() + static_cast<std::ptrdiff_t>(std::min(count, best.size())),
               best.end());
    for (LayerOrder& order : best)
        search(order, 200, effort);
    return best;
}

}  // namespace QB::DiagramLumo::AutoLayout
