#include "canvas/diagram/auto_layout_place.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace QB::DiagramLumo::AutoLayout {
namespace {

/// Tops of the boxes of one part, moved layer by layer towards where their links are level.
class LevelLinks {
public:
    LevelLinks(const Part& part, const Layers& layers, const std::vector<Index>& layerOf,
               const std::vector<LumoSize>& sizes, int below)
        : m_neighbours(part.neighbours)
        , m_layers(layers)
        , m_layerOf(layerOf)
        , m_sizes(sizes)
        , m_below(below)
        , m_tops(sizes.size()) {}

    /// Enough rounds that a further one moves nothing by a pixel a user would see.
    std::vector<int> tops() {
        for (Index layer = 0; layer < m_layers.size(); ++layer)
            settle(layer, true);
        for (int round = 0; round < 12; ++round) {
            for (Index layer = m_layers.size(); layer-- > 0;)
                settle(layer, false);
            for (Index layer = 0; layer < m_layers.size(); ++layer)
                settle(layer, false);
        }
        return rounded();
    }

private:
    /// Boxes whose wishes are met together, by their mean.
    struct Pool {
        double sum = 0;
        double weight = 0;
        Index count = 0;
        double mean() const { return sum / weight; }
    };

    /// The tops of a layer that are nearest to what its boxes wish for and keep the order. Wishes
    /// are compared less the heights above, so that keeping apart means not falling.
    void settle(Index layer, bool onlyBefore) {
        std::vector<Pool> pools;
        double above = 0;
        for (Index box : m_layers[layer]) {
            pools.push_back(wishOf(box, above, onlyBefore));
            while (pools.size() > 1 && pools[pools.size() - 2].mean() > pools.back().mean())
                mergeLast(pools);
            above += m_sizes[box].height + m_below;
        }
        above = 0;
        auto box = m_layers[layer].begin();
        for (const Pool& pool : pools) {
            for (Index i = 0; i < pool.count; ++i, ++box) {
                m_tops[*box] = pool.mean() + above;
                above += m_sizes[*box].height + m_below;
            }
        }
    }

    Pool wishOf(Index box, double above, bool onlyBefore) const {
        Pool wish;
        wish.count = 1;
        for (Index other : m_neighbours[box]) {
            if (m_layerOf[other] == m_layerOf[box]) continue;
            if (onlyBefore && m_layerOf[other] > m_layerOf[box]) continue;
            wish.sum += m_tops[other] - above;
            wish.weight += 1;
        }
        if (wish.weight > 0) return wish;
        wish.sum = m_tops[box] - above;
        wish.weight = 1;
        return wish;
    }

    static void mergeLast(std::vector<Pool>& pools) {
        const Pool last = pools.back();
        pools.pop_back();
        pools.back().sum += last.sum;
        pools.back().weight += last.weight;
        pools.back().count += last.count;
    }

    /// Whole pixels, from 0.
    std::vector<int> rounded() const {
        const double top = *std::min_element(m_tops.begin(), m_tops.end());
        std::vector<int> result(m_tops.size());
        for (const std::vector<Index>& layer : m_layers) {
            int free = 0;
            for (Index box : layer) {
                result[box] = std::max(free, static_cast<int>(std::lround(m_tops[box] - top)));
                free = result[box] + m_sizes[box].height + m_below;
            }
        }
        return result;
    }

    const Neighbours& m_neighbours;
    const Layers& m_layers;
    const std::vector<Index>& m_layerOf;
    const std::vector<LumoSize>& m_sizes;
    const int m_below;
    std::vector<double> m_tops;
};

std::vector<Index> layersByBox(const Layers& layers, Index boxes) {
    std::vector<Index> layerOf(boxes);
    for (Index layer = 0; layer < layers.size(); ++layer)
        for (Index box : layers[layer])
            layerOf[box] = layer;
    return layerOf;
}

int widest(const std::vector<Index>& layer, const std::vector<LumoSize>& sizes) {
    int width = 0;
    for (Index box : layer)
        width = std::max(width, sizes[box].width);
    return width;
}

/// From the layer before. Where links fan out far up and down it grows, up to three times, so that
/// they do not run side by side.
int gapBefore(const std::vector<Index>& layer, const Part& part, const std::vector<Index>& layerOf,
              const std::vector<int>& tops, int between) {
    int steepest = 0;
    for (Index box : layer)
        for (Index other : part.neighbours[box])
            if (layerOf[other] < layerOf[box])
                steepest = std::max(steepest, std::abs(tops[other] - tops[box]));
    return std::clamp(steepest / 4, between, 3 * between);
}

/// A screen is about this much wider than high.
constexpr double proportion = 1.6;

int rowWidth(const std::vector<Block>& blocks, const LayoutSpacing& spacing) {
    double area = 0;
    int width = 0;
    for (const Block& block : blocks) {
        area += (double(block.size.width) + spacing.between) *
                (double(block.size.height) + spacing.below);
        width = std::max(width, block.size.width);
    }
    return std::max(width, static_cast<int>(std::sqrt(area * proportion)));
}

}  // namespace

Block placeLayers(const Part& part, const Layers& layers, const std::vector<LumoSize>& sizes,
                  const LayoutSpacing& spacing) {
    Block block{part.boxes, std::vector<LumoPoint>(sizes.size()), {}};
    const std::vector<Index> layerOf = layersByBox(layers, sizes.size());
    const std::vector<int> tops = LevelLinks(part, layers, layerOf, sizes, spacing.below).tops();
    int left = 0;
    for (const std::vector<Index>& layer : layers) {
        if (&layer != &layers.front())
            left += gapBefore(layer, part, layerOf, tops, spacing.between);
        const int width = widest(layer, sizes);
        for (Index box : layer) {
            // From the middle line: what two boxes round is then the same.
            block.origins[box] = {left + width / 2 - sizes[box].width / 2, tops[box]};
            block.size.height = std::max(block.size.height, tops[box] + sizes[box].height);
        }
        left += width;
        block.size.width = left;
    }
    return block;
}

std::vector<LumoPoint> packInRows(const std::vector<Block>& blocks, const LayoutSpacing& spacing) {
    std::vector<Index> order(blocks.size());
    std::iota(order.begin(), order.end(), Index{0});
    const auto isSingle = [&](Index block) {
        return blocks[block].boxes.size() == 1;
    };
    std::stable_sort(order.begin(), order.end(), [&](Index a, Index b) {
        if (isSingle(a) || isSingle(b)) return isSingle(a) < isSingle(b);
        return blocks[a].size.height > blocks[b].size.height;
    });
    const int width = rowWidth(blocks, spacing);
    std::vector<LumoPoint> corners(blocks.size());
    LumoPoint next;
    int bottom = 0;
    for (Index i = 0; i < order.size(); ++i) {
        const LumoSize size = blocks[order[i]].size;
        const bool isFirstSingle = i > 0 && isSingle(order[i]) && !isSingle(order[i - 1]);
        if (next.x > 0 && (next.x + size.width > width || isFirstSingle)) next = {0, bottom};
        corners[order[i]] = next;
        next.x += size.width + spacing.between;
        bottom = std::max(bottom, next.y + size.height + spacing.below);
    }
    return corners;
}

}  // namespace QB::DiagramLumo::AutoLayout
