#pragma once

#include <cstdint>
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
}

/// Remembers how the user arranged each layer: canvas size, scroll origin and the rectangle of
/// every item, as one JSON document a layer. A layout never makes items: it moves those that are
/// there, found again by alias, name and schema. docs/layout-files.md has the documents.
///
/// Layers are keyed by the id of their statement; exported, by the aliases of the subqueries on the
/// way down. A text that was imported is kept until a layer of that path turns up, see match().
/// Bad texts change nothing but the store: what is on the canvas stays usable whatever they say.
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
    /// Forgets all layouts, then takes those of @p text that fit a layer; the others wait.
    void importLayouts(const std::string& text, const LayerPaths& layerPaths);
    /// Gives layers without a layout those of the last import that nobody has taken yet.
    void match(const LayerPaths& layerPaths);

    static void writeLayout(LumoControl* control, DiagramLumo::QBLumoDiagram* diagram,
                            NuvoJson* json);
    /// True if everything fitted: all keys there, and every item placed. Items that found no entry
    /// stay; those that then overlap others, which did not before, move to free places.
    static bool readLayout(LumoControl* control, DiagramLumo::QBLumoDiagram* diagram,
                           const NuvoJsonValue& json);

private:
    std::map<std::uint64_t, std::unique_ptr<NuvoJson>> m_layouts;
    std::unique_ptr<NuvoJson> m_imported;  // what match() may still take; null without any
};

}  // namespace QB
