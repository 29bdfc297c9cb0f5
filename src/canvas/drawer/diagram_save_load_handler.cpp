#include "canvas/drawer/diagram_save_load_handler.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <optional>
#include <utility>

#include "canvas/diagram/diagram.h"
#include "canvas/items/database_item_body.h"
#include "canvas/items/item.h"
#include "canvas/items/text_based_item_body.h"
#include "platform/lumo/lumo_control.h"
#include "platform/nuvo/nuvo_json.h"

namespace QB {

using namespace DiagramLumo;

namespace {

using Path = std::vector<std::string>;

Path asStored(Path path) {
    for (std::string& name : path)
        name = NuvoJson::asStored(name);
    return path;
}

/// The path of an exported layout; none if this is something else.
std::optional<Path> pathOf(const NuvoJsonValue& layout) {
    const NuvoJsonValue* const id = layout.find("ID");
    if (!id || !id->isArray()) return std::nullopt;
    Path path;
    for (std::size_t i = 0; i < id->size(); ++i) {
        if (!id->at(i)->isString()) return std::nullopt;
        path.push_back(id->at(i)->stringValue());
    }
    return path;
}

void writePath(const Path& path, NuvoJsonValue* json) {
    json->writeArray();
    for (const std::string& name : path)
        json->append()->writeString(name);
}

void writeSource(const QBLumoBaseItemBody* body, NuvoJsonValue* json) {
    if (dynamic_cast<const QBLumoTextBasedItemBody*>(body))
        json->create("Alias")->writeString(body->getAlias());
    const auto* const table = dynamic_cast<const QBLumoDatabaseItemBody*>(body);
    if (!table) return;
    json->create("Alias")->writeString(table->getAlias());
    json->create("Name")->writeString(table->getTableName());
    json->create("Schema")->writeString(table->getSchema());
}

void writePoint(LumoPoint point, NuvoJsonValue* json) {
    json->create("X")->writeInteger(point.x);
    json->create("Y")->writeInteger(point.y);
}

void writeSize(LumoSize size, NuvoJsonValue* json) {
    json->create("Width")->writeInteger(size.width);
    json->create("Height")->writeInteger(size.height);
}

void writeItem(const QBLumoItem* item, NuvoJsonValue* json) {
    json->writeObject();
    if (!item->getBody()) return;
    writeSource(item->getBody(), json);
    writePoint(item->getRect().origin, json);
    writeSize(item->getRect().size, json);
}

/// In the diagram's space, so that the document needs no zoom.
LumoPoint scrollOriginOf(const LumoControl* control) {
    const LumoControlPoint origin = control->getScrollOrigin();
    return {int32_t(std::lround(origin.x / control->getZoom())),
            int32_t(std::lround(origin.y / control->getZoom()))};
}

}  // namespace

QBLumoDiagramSaveLoadHandler::QBLumoDiagramSaveLoadHandler() = default;

QBLumoDiagramSaveLoadHandler::~QBLumoDiagramSaveLoadHandler() = default;

void QBLumoDiagramSaveLoadHandler::save(std::uint64_t layerId, LumoControl* control,
                                        QBLumoDiagram* diagram) {
    if (!control || !diagram) return;
    std::unique_ptr<NuvoJson>& layout = m_layouts[layerId];
    if (!layout) layout = std::make_unique<NuvoJson>();
    writeLayout(control, diagram, layout.get());
}

bool QBLumoDiagramSaveLoadHandler::load(std::uint64_t layerId, LumoControl* control,
                                        QBLumoDiagram* diagram) {
    const auto found = m_layouts.find(layerId);
    return found != m_layouts.end() && readLayout(control, diagram, *found->second);
}

void QBLumoDiagramSaveLoadHandler::writeLayout(LumoControl* control, QBLumoDiagram* diagram,
                                               NuvoJson* json) {
    json->writeObject();
    if (!control || !diagram) return;
    writeSize(diagram->getRect().size, json);
    writePoint(scrollOriginOf(control), json);
    NuvoJsonValue* const objects = json->create("Objects");
    objects->writeArray();
    for (const QBLumoItem* item : itemsOf(diagram))
        writeItem(item, objects->append());
}

std::vector<QBLumoItem*> QBLumoDiagramSaveLoadHandler::itemsOf(const QBLumoDiagram* diagram) {
    std::vector<QBLumoItem*> items = diagram->items();
    std::stable_sort(items.begin(), items.end(), [](const QBLumoItem* a, const QBLumoItem* b) {
        return a->order() < b->order();
    });
    return items;
}

// ---- texts ----

std::string QBLumoDiagramSaveLoadHandler::exportLayouts(const LayerPaths& layerPaths) const {
    NuvoJson root;
    root.writeArray();
    for (const auto& [layerId, path] : layerPaths) {
        const auto found = m_layouts.find(layerId);
        if (found == m_layouts.end()) continue;
        const std::unique_ptr<NuvoJson> layout(found->second->copy());
        writePath(path, layout->create("ID"));
        root.appendCopy(layout.get());
    }
    return root.serialise();
}

void QBLumoDiagramSaveLoadHandler::importLayouts(const std::string& text,
                                                 const LayerPaths& layerPaths) {
    m_layouts.clear();
    m_imported.clear();
    m_formerLayers.clear();
    if (text.size() > largestText) return;
    const NuvoJson root(text);
    for (std::size_t i = 0; i < root.size(); ++i)
        if (const std::optional<Path> path = pathOf(*root.at(i)))
            m_imported[*path].push_back(NuvoJson::copyOf(*root.at(i)));
    match(layerPaths);
}

void QBLumoDiagramSaveLoadHandler::match(const LayerPaths& layerPaths) {
    for (const auto& [layerId, path] : layerPaths) {
        if (contains(layerId)) continue;
        std::unique_ptr<NuvoJson> layout = takeImported(asStored(path));
        if (!layout) layout = copyOfFormer(asStored(path), layerPaths);
        if (layout) m_layouts[layerId] = std::move(layout);
    }
    for (const auto& [layerId, path] : layerPaths)
        m_formerLayers[asStored(path)] = layerId;
    forgetOldest(layerPaths);
}

void QBLumoDiagramSaveLoadHandler::forgetOldest(const LayerPaths& layerPaths) {
    const std::size_t most = layerPaths.size() + mostOtherLayers;
    for (auto each = m_layouts.begin(); each != m_layouts.end() && m_layouts.size() > most;)
        each = layerPaths.count(each->first) > 0 ? std::next(each) : m_layouts.erase(each);
    for (auto each = m_formerLayers.begin(); each != m_formerLayers.end();)
        each = contains(each->second) || layerPaths.count(each->second) > 0
                   ? std::next(each)
                   : m_formerLayers.erase(each);
}

std::unique_ptr<NuvoJson> QBLumoDiagramSaveLoadHandler::takeImported(const Path& path) {
    const auto found = m_imported.find(path);
    if (found == m_imported.end()) return nullptr;
    std::unique_ptr<NuvoJson> first = std::move(found->second.front());
    found->second.pop_front();
    if (found->second.empty()) m_imported.erase(found);
    return first;
}

std::unique_ptr<NuvoJson> QBLumoDiagramSaveLoadHandler::copyOfFormer(
    const Path& path, const LayerPaths& layerPaths) const {
    const auto former = m_formerLayers.find(path);
    if (former == m_formerLayers.end() || layerPaths.count(former->second) > 0) return nullptr;
    const auto found = m_layouts.find(former->second);
    return found == m_layouts.end() ? nullptr : NuvoJson::copyOf(*found->second);
}

}  // namespace QB
