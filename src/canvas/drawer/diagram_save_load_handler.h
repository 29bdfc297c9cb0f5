#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <map>
#include <memory>
#include <string>
#include <vector>

class LumoControl;
class NuvoJson;
class NuvoJsonValue;

namespace QB {

namespace DiagramLumo {
class QBLumoDiagram;
class QBLumoItem;
}  // namespace DiagramLumo

/// Remembers how the user arranged each layer: canvas size, scroll origin and the rectangle of
/// every item, as one JSON document a layer. A layout never makes items: it moves those that are
/// there, found again by alias, name and schema. docs/layout-files.md has the documents.
///
/// Layers are keyed by the id of their statement; exported, by the aliases of the subqueries on the
/// way down. A text that was imported is kept until a layer of that path turns up, see match().
/// Any text may come: a bad one changes nothing but the store, and whatever a layout says, items
/// keep sizes that can be used, lie inside a canvas that holds them all, and overlap only where
/// they did before or where the layout has them overlap in part.
/// Thread: main.
class QBLumoDiagramSaveLoadHandler {
public:
    using LayerPaths = std::map<std::uint64_t, std::vector<std::string>>;

    QBLumoDiagramSaveLoadHandler();
    virtual ~QBLumoDiagramSaveLoadHandler();
    QBLumoDiagramSaveLoadHandler(const QBLumoDiagramSaveLoadHandler&) = delete;
    QBLumoDiagramSaveLoadHandler& operator=(const QBLumoDiagramSaveLoadHandler&) = delete;

    /// Nothing with a null control or diagram.
    void save(std::uint64_t layerId, LumoControl* control, DiagramLumo::QBLumoDiagram* diagram);
    /// As readLayout; false if there is no layout of that layer.
    bool load(std::uint64_t layerId, LumoControl* control, DiagramLumo::QBLumoDiagram* diagram);
    bool contains(std::uint64_t layerId) const { return m_layouts.count(layerId) > 0; }

    /// An array of the layouts of those layers that have one, each with its path as "ID".
    std::string exportLayouts(const LayerPaths& layerPaths) const;
    /// Forgets all layouts, then takes those of @p text that fit a layer; the others wait. Of more
    /// than largestText none is taken.
    void importLayouts(const std::string& text, const LayerPaths& layerPaths);
    /// Gives layers without a layout those of the last import that nobody has taken yet, else a
    /// copy of that of a layer with the same path which is gone: a parse makes new statements of
    /// all subqueries. @p layerPaths: all layers that there are now and have a path. Of all others
    /// the newest mostOtherLayers are kept: they have no path, or an undo may bring them back.
    void match(const LayerPaths& layerPaths);
    /// In bytes: 50,000 items.
    static constexpr std::size_t largestText = 8 << 20;
    static constexpr std::size_t mostOtherLayers = 200;

    static void writeLayout(LumoControl* control, DiagramLumo::QBLumoDiagram* diagram,
                            NuvoJson* json);
    /// True if everything fitted: all keys there, and every item placed. Items that found no entry
    /// stay; those that then overlap others, which did not before, move to free places, and so do
    /// items with entries of equal rectangles. Sizes and places are brought into what the canvas
    /// can have; it grows to hold all. The size of a placed item counts as the user's, if it is no
    /// default size.
    static bool readLayout(LumoControl* control, DiagramLumo::QBLumoDiagram* diagram,
                           const NuvoJsonValue& json);
    /// In the order in which entries are written and taken: as QBLumoItem::order, those of one
    /// order as they are painted.
    static std::vector<DiagramLumo::QBLumoItem*> itemsOf(const DiagramLumo::QBLumoDiagram* diagram);

private:
    using Path = std::vector<std::string>;  // as stored

    void forgetOldest(const LayerPaths& layerPaths);
    std::unique_ptr<NuvoJson> takeImported(const Path& path);
    std::unique_ptr<NuvoJson> copyOfFormer(const Path& path, const LayerPaths& layerPaths) const;

    std::map<std::uint64_t, std::unique_ptr<NuvoJson>> m_layouts;
    std::map<Path, std::deque<std::unique_ptr<NuvoJson>>> m_imported;  // what match() may take
    std::map<Path, std::uint64_t> m_formerLayers;  // that had these paths, gone or not
};

}  // namespace QB
