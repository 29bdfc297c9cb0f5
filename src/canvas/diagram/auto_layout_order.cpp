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
    m_state.layers.resize(m_layerOf[met.back()] + 1);
    for (Index box : met) {
        m_state.layers[m_layerOf[box]].push_back(box);
        for (Index other : neighbours[box]) {
            Neighbours& side = m_layerOf[other] < m_layerOf[box]   ? m_before
                               : m_layerOf[other] > m_layerOf[box] ? m_behind
                                                                   : m_beside;
            side[box].push_back(other);
        }
    }
    for (Index layer = 0; layer < m_state.layers.size(); ++layer)
        number(layer);
    m_state.isChanged.assign(m_state.layers.size(), true);
    m_state.cost = countedCost();
}

void LayerOrder::restore(const State& state) {
    m_state = state;
    for (Index layer = 0; layer < m_state.layers.size(); ++layer)
        number(layer);
}

void LayerOrder::number(Index layer) {
    for (Index place = 0; place < m_state.layers[layer].size(); ++place)
        m_place[m_state.layers[layer][place]] = place;
}

void LayerOrder::markChanged(Index layer) {
    m_state.isChanged[layer] = true;
    if (layer > 0) m_state.isChanged[layer - 1] = true;
    if (layer + 1 < m_state.isChanged.size()) m_state.isChanged[layer + 1] = true;
}

int64_t LayerOrder::countedCost() const {
    int64_t sum = 0;
    for (Index layer = 0; layer < m_state.layers.size(); ++layer)
        sum += betweenLayers(layer) + insideLayer(layer);
    return sum;
}

/// The links to the layer before: pairs of ends that stand the wrong way round, counted with a tree
/// of sums (Fenwick 1994).
int64_t LayerOrder::betweenLayers(Index layer) const {
    if (layer == 0) return 0;
    std::vector<int64_t> sums(m_state.layers[layer - 1].size() + 1);
    int64_t crossings = 0;
    int64_t seen = 0;
    for (Index box : m_state.layers[layer]) {
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
    const std::vector<Index>& boxes = m_state.layers[layer];
    std::vector<int64_t> leaving(boxes.size() + 1);  // to the right, from the boxes above a place
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
        }
    }
    for (int64_t cover : covers(layer))
        crossings += pairs(cover);
    return crossings * crossingCost + apart;
}

/// How many links inside the layer pass from each place to the next.
std::vector<int64_t> LayerOrder::covers(Index layer) const {
    std::vector<int64_t> result(m_state.layers[layer].size());
    for (Index box : m_state.layers[layer])
        for (Index other : m_beside[box])
            result[m_place[box]] += m_place[box] < m_place[other] ? 1 : -1;
    std::partial_sum(result.begin(), result.end(), result.begin());
    return result;
}

void LayerOrder::sweep(Effort& effort) {
    for (Index layer = 1; layer < m_state.layers.size(); ++layer)
        sortByMeans(layer, m_before);
    for (Index layer = m_state.layers.size(); layer-- > 0;)
        sortByMeans(layer, m_behind);
    m_state.cost = countedCost();
    effort.spend(20 * m_place.size());
}

/// Boxes without a neighbour on that side keep their places among the others.
void LayerOrder::sortByMeans(Index layer, const Neighbours& side) {
    std::vector<std::pair<double, Index>> keys;
    for (Index box : m_state.layers[layer]) {
        double sum = 0;
        for (Index other : side[box])
            sum += static_cast<double>(m_place[other]);
        if (!side[box].empty()) keys.emplace_back(sum / static_cast<double>(side[box].size()), box);
    }
    std::stable_sort(keys.begin(), keys.end(),
                     [](const auto& a, const auto& b) { return a.first < b.first; });
    auto next = keys.begin();
    for (Index& box : m_state.layers[layer])
        if (!side[box].empty()) box = (next++)->second;
    number(layer);
    markChanged(layer);
}

void LayerOrder::sift(Effort& effort) {
    bool isBetter = true;
    while (isBetter && !effort.isSpent()) {
        isBetter = false;
        for (Index layer = 0; layer < m_state.layers.size(); ++layer)
            isBetter |= m_state.isChanged[layer] && siftLayer(layer, effort);
    }
}

bool LayerOrder::siftLayer(Index layer, Effort& effort) {
    m_state.isChanged[layer] = false;
    if (m_state.layers[layer].size() < 2) return false;
    prepare(layer);
    effort.spend(5 * m_state.layers[layer].size());
    bool isBetter = false;
    for (Index box : std::vector<Index>(m_state.layers[layer]))
        isBetter |= !effort.isSpent() && siftBox(layer, box, effort);
    if (isBetter) markChanged(layer);
    return isBetter;
}

void LayerOrder::prepare(Index layer) {
    const auto places = [&](const std::vector<Index>& boxes, std::vector<Index>& result) {
        result.clear();
        for (Index box : boxes)
            result.push_back(m_place[box]);
        std::sort(result.begin(), result.end());
    };
    m_cover = covers(layer);
    for (Index box : m_state.layers[layer]) {
        places(m_before[box], m_placesBefore[box]);
        places(m_behind[box], m_placesBehind[box]);
    }
}

/// Walks the box to the nearer end of its layer, to the other end, and back to the best place.
bool LayerOrder::siftBox(Index layer, Index box, Effort& effort) {
    const Index start = m_place[box];
    const Index last = m_state.layers[layer].size() - 1;
    const int64_t costAtStart = m_state.cost;
    int64_t least = costAtStart;
    Index best = start;
    const auto walkAndWatch = [&](Index goal) {
        while (m_place[box] != goal) {
            walkTo(layer, box, goal > m_place[box] ? m_place[box] + 1 : m_place[box] - 1, effort);
            if (m_state.cost >= least) continue;
            least = m_state.cost;
            best = m_place[box];
        }
    };
    walkAndWatch(start > last / 2 ? last : 0);
    walkAndWatch(start > last / 2 ? 0 : last);
    walkTo(layer, box, best, effort);
    return least < costAtStart;
}

void LayerOrder::walkTo(Index layer, Index box, Index goal, Effort& effort) {
    while (m_place[box] != goal) {
        swap(layer, goal > m_place[box] ? m_place[box] : m_place[box] - 1);
        effort.spend(4 + m_beside[box].size() + m_before[box].size() + m_behind[box].size());
    }
}

/// Changes @p place and the next. The layer is prepared.
void LayerOrder::swap(Index layer, Index place) {
    std::vector<Index>& boxes = m_state.layers[layer];
    const Index upper = boxes[place];
    const Index lower = boxes[place + 1];
    m_state.cost -= crossingCost * (wonBySwap(m_placesBefore[upper], m_placesBefore[lower]) +
                                    wonBySwap(m_placesBehind[upper], m_placesBehind[lower]));
    if (!m_beside[upper].empty() || !m_beside[lower].empty()) {
        m_state.cost += besideChange(upper, lower, true) + besideChange(lower, upper, false) +
                        overlapChange(layer, place);
    }
    std::swap(boxes[place], boxes[place + 1]);
    m_place[upper] = place + 1;
    m_place[lower] = place;
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
    const std::vector<Index>& boxes = m_state.layers[layer];
    int64_t turned = 0;
    for (Index other : m_beside[boxes[place]])
        if (other != boxes[place + 1]) turned += m_place[other] < place ? 1 : -1;
    for (Index other : m_beside[boxes[place + 1]])
        if (other != boxes[place]) turned += m_place[other] < place ? -1 : 1;
    const int64_t old = m_cover[place];
    m_cover[place] += turned;
    return (pairs(m_cover[place]) - pairs(old)) * crossingCost;
}

void LayerOrder::shake(uint32_t& seed, Effort& effort) {
    const Index layer = m_layerOf[pick(seed, m_place.size())];
    const std::vector<Index>& boxes = m_state.layers[layer];
    prepare(layer);
    for (Index moves = 1 + pick(seed, 3); moves > 0; --moves)
        walkTo(layer, boxes[pick(seed, boxes.size())], pick(seed, boxes.size()), effort);
    effort.spend(10 * boxes.size());
    markChanged(layer);
}

namespace {

/// More are not tried in a large part, where each takes long.
constexpr Index triedRoots = 128;

std::vector<Index> rootsByLinks(const Neighbours& neighbours) {
    std::vector<Index> roots(neighbours.size());
    std::iota(roots.begin(), roots.end(), Index{0});
    std::stable_sort(roots.begin(), roots.end(),
                     [&](Index a, Index b) { return neighbours[a].size() > neighbours[b].size(); });
    roots.resize(std::min(roots.size(), triedRoots));
    return roots;
}

LayerOrder firstOrder(const Neighbours& neighbours, Index root, Effort& effort) {
    LayerOrder order(neighbours, root);
    LayerOrder::State best = order.state();
    for (int sweeps = 0; sweeps < 4 && best.crossings() > 0; ++sweeps) {
        order.sweep(effort);
        if (order.cost() < best.cost) best = order.state();
    }
    order.restore(best);
    order.sift(effort);
    return order;
}

/// Keeps the best @p count.
void sortAndCut(std::vector<LayerOrder>& orders, Index count) {
    std::stable_sort(orders.begin(), orders.end(), [](const LayerOrder& a, const LayerOrder& b) {
        return a.crossings() < b.crossings();
    });
    while (orders.size() > count)
        orders.pop_back();
}

/// Shakes and sifts until nothing crosses, nothing has become better for long, or the effort is
/// spent.
void search(LayerOrder& order, Effort& effort) {
    constexpr int patience = 2000;
    uint32_t seed = 1;
    LayerOrder::State best = order.state();
    for (int idle = 0; idle < patience && !effort.isSpent() && best.crossings() > 0; ++idle) {
        order.shake(seed, effort);
        order.sift(effort);
        if (order.cost() > best.cost) {
            order.restore(best);
            continue;
        }
        if (order.cost() < best.cost) idle = 0;
        best = order.state();
    }
    order.restore(best);
}

/// Lets @p work spend a part of the effort.
template <typename Work>
void withShare(Effort& effort, int64_t units, Work work) {
    Effort share(units);
    work(share);
    effort.spend(static_cast<Index>(units - share.left()));
}

}  // namespace

std::vector<LayerOrder> bestOrders(const Neighbours& neighbours, Index count, Effort& effort) {
    const std::vector<Index> roots = rootsByLinks(neighbours);
    const int64_t perRoot = effort.left() / static_cast<int64_t>(3 * roots.size());
    std::vector<LayerOrder> orders;
    for (Index root : roots) {
        withShare(effort, perRoot,
                  [&](Effort& share) { orders.push_back(firstOrder(neighbours, root, share)); });
        if (orders.back().crossings() == 0) return {orders.back()};
        sortAndCut(orders, count);
    }
    const int64_t perOrder = effort.left() / static_cast<int64_t>(2 * orders.size());
    for (LayerOrder& order : orders)
        withShare(effort, perOrder, [&](Effort& share) { search(order, share); });
    sortAndCut(orders, count);
    search(orders.front(), effort);
    return orders;
}

}  // namespace QB::DiagramLumo::AutoLayout
