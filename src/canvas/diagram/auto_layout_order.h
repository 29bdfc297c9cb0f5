#pragma once

#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

/// The order of the boxes in the layers of one connected part, by the layer by layer method of
/// Sugiyama, Tagawa and Toda (1981): sweeps by the mean place of the neighbours, then every box is
/// tried at every place of its layer (sifting; Matuszewski, Schönfeld and Molitor 1999).
///
/// Layers by distance from the root leave no link that spans two layers, so that no line runs
/// behind a box. Links inside a layer run down its right side: they cross what leaves the boxes
/// between their ends to the right.
namespace QB::DiagramLumo::AutoLayout {

using Index = std::size_t;

/// Neighbours by box, ascending, each once, never the box itself.
using Neighbours = std::vector<std::vector<Index>>;

/// The boxes of each layer from top to bottom. The first layer holds the root alone.
using Layers = std::vector<std::vector<Index>>;

/// What is left to spend; one unit is about one comparison of two places.
class Effort {
public:
    explicit Effort(int64_t units) : m_left(units) {}
    void spend(Index units) { m_left -= static_cast<int64_t>(units); }
    bool isSpent() const { return m_left <= 0; }
    int64_t left() const { return m_left; }

private:
    int64_t m_left;
};

/// One order that is made better step by step.
class LayerOrder {
public:
    struct State {
        Layers layers;
        std::vector<bool> isChanged;  // by layer: it or one beside it, since it was sifted
        int64_t cost = 0;             // crossings first, then how far links inside a layer reach
        int64_t crossings() const { return cost / crossingCost; }
    };

    /// Layers by distance from @p root, in the order in which a walk meets the boxes. All boxes are
    /// connected.
    LayerOrder(const Neighbours& neighbours, Index root);

    const Layers& layers() const { return m_state.layers; }
    const State& state() const { return m_state; }
    void restore(const State& state);

    /// As counted between boxes of one width.
    int64_t crossings() const { return m_state.crossings(); }
    int64_t cost() const { return m_state.cost; }
    /// The cost counted anew; cost() is kept up to date by what each change wins.
    int64_t countedCost() const;

    /// Sorts each layer by the mean place of the neighbours before it, then of those behind it.
    void sweep(Effort& effort);
    /// Tries every box at every place of its layer until nothing becomes better. Layers around
    /// which nothing has changed since are left out.
    void sift(Effort& effort);
    /// Moves a few boxes of one layer to places picked by @p seed, which is changed.
    void shake(uint32_t& seed, Effort& effort);

private:
    static constexpr int64_t crossingCost = int64_t{1} << 20;

    void number(Index layer);
    void markChanged(Index layer);
    void sortByMeans(Index layer, const Neighbours& side);
    int64_t betweenLayers(Index layer) const;
    int64_t insideLayer(Index layer) const;
    std::vector<int64_t> covers(Index layer) const;
    bool siftLayer(Index layer, Effort& effort);
    void prepare(Index layer);
    bool siftBox(Index layer, Index box, Effort& effort);
    void walkTo(Index layer, Index box, Index goal, Effort& effort);
    void swap(Index layer, Index place);
    int64_t besideChange(Index moved, Index passed, bool isMovedDown) const;
    int64_t overlapChange(Index layer, Index place);

    Neighbours m_before;  // neighbours in the layer before
    Neighbours m_behind;
    Neighbours m_beside;
    State m_state;
    std::vector<Index> m_layerOf;
    std::vector<Index> m_place;  // in the layer
    // Of the layer being sifted:
    std::vector<std::vector<Index>> m_placesBefore;  // of the neighbours, ascending, by box
    std::vector<std::vector<Index>> m_placesBehind;
    std::vector<int64_t> m_cover;  // links inside the layer that pass from a place to the next
};

/// The best orders found, the best first: never empty, at most @p count, each from another root. Of
/// orders that are equally good that whose root has more links comes first.
std::vector<LayerOrder> bestOrders(const Neighbours& neighbours, Index count, Effort& effort);

}  // namespace QB::DiagramLumo::AutoLayout
