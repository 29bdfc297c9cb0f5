// Reading a layout: any document may come, and the diagram must stay usable.

#include <algorithm>
#include <array>
#include <cmath>
#include <optional>
#include <utility>

#include "canvas/diagram/diagram.h"
#include "canvas/diagram/placement.h"
#include "canvas/drawer/diagram_save_load_handler.h"
#include "canvas/items/database_item_body.h"
#include "canvas/items/item.h"
#include "canvas/items/text_based_item_body.h"
#include "platform/lumo/lumo_control.h"
#include "platform/nuvo/nuvo_json.h"

namespace QB {

using namespace DiagramLumo;

namespace {

/// Of either side of an item: more than any screen.
constexpr int32_t largestItem = 1 << 15;
/// Of either side of a canvas: an item at its default size, and room to move it.
constexpr int32_t smallestCanvas = 400;

/// Two numbers that are there together or not at all.
std::optional<std::pair<int32_t, int32_t>> pairOf(const NuvoJsonValue& object, const char* first,
                                                  const char* second) {
    const NuvoJsonValue* const a = object.find(first);
    const NuvoJsonValue* const b = object.find(second);
    if (!a || !b || !a->isInteger() || !b->isInteger()) return std::nullopt;
    return std::make_pair(a->integerValue(), b->integerValue());
}

std::optional<std::string> textOf(const NuvoJsonValue& object, const char* name) {
    const NuvoJsonValue* const text = object.find(name);
    if (!text || !text->isString()) return std::nullopt;
    return text->stringValue();
}

std::optional<LumoRect> rectOf(const NuvoJsonValue& entry) {
    const auto origin = pairOf(entry, "X", "Y");
    const auto size = pairOf(entry, "Width", "Height");
    if (!origin || !size) return std::nullopt;
    return LumoRect(origin->first, origin->second, size->first, size->second);
}

LumoSize canvasSizeOf(const std::pair<int32_t, int32_t>& asked) {
    return {std::clamp(asked.first, smallestCanvas, largestCanvas),
            std::clamp(asked.second, smallestCanvas, largestCanvas)};
}

/// What @p item takes by itself: of a table, what the fields need that are known.
LumoSize defaultSizeOf(const QBLumoItem* item) {
    const auto* const table = dynamic_cast<const QBLumoDatabaseItemBody*>(item->getBody());
    if (!table) return itemSizeFor(defaultTextBodySize());
    const int fields = int(table->fieldNames().size());
    const int rows = fields == 0 ? mostDefaultRows : fields + 1;
    return itemSizeFor({defaultTableBodySize().width, tableBodyHeightFor(rows)});
}

/// Nobody can have made an item smaller than its least size: that is none.
LumoSize usableSize(const QBLumoItem* item, const LumoSize& asked) {
    const LumoSize least = itemSizeFor(item->getBody()->minimumSize());
    if (asked.width < least.width || asked.height < least.height) return defaultSizeOf(item);
    return {std::min(asked.width, largestItem), std::min(asked.height, largestItem)};
}

/// What @p item can be of @p asked.
LumoRect usableRect(const QBLumoItem* item, const LumoRect& asked) {
    const LumoSize size = usableSize(item, asked.size);
    return {{std::clamp(asked.origin.x, 0, largestCanvas - size.width),
             std::clamp(asked.origin.y, 0, largestCanvas - size.height)},
            size};
}

/// True for a size that items take by themselves: of a table the height that its fields need, and
/// while these are not known, any height that fields may need.
bool isDefaultSize(const QBLumoItem* item, LumoSize size) {
    if (size == defaultSizeOf(item)) return true;
    const auto* const table = dynamic_cast<const QBLumoDatabaseItemBody*>(item->getBody());
    if (!table || !table->fieldNames().empty()) return false;
    for (int rows = fewestDefaultRows; rows < mostDefaultRows; ++rows)
        if (size == itemSizeFor({defaultTableBodySize().width, tableBodyHeightFor(rows)}))
            return true;
    return false;
}

/// The items of a diagram and what a layout says of them.
class Places {
public:
    explicit Places(QBLumoDiagram* diagram) : m_diagram(diagram) {
        for (QBLumoItem* item : QBLumoDiagramSaveLoadHandler::itemsOf(diagram)) {
            enter(item->getBody());
            m_items.push_back({item, item->getRect()});
        }
    }

    /// Places the first item that fits @p entry and has no place yet, if there is one.
    void place(const NuvoJsonValue& entry) {
        const std::optional<LumoRect> rect = rectOf(entry);
        if (!rect) return;
        const std::optional<std::size_t> index = take(entry);
        if (!index) return;
        Item& found = m_items[*index];
        const LumoRect usable = usableRect(found.item, *rect);
        found.isPlaced = true;
        found.isAsAsked = usable == *rect;
        found.item->setSizedByUser(!isDefaultSize(found.item, usable.size));
        found.item->setRect(usable);
    }

    bool areAllPlaced() const {
        return std::all_of(m_items.begin(), m_items.end(),
                           [](const Item& each) { return each.isPlaced; });
    }

    void growCanvas() const {
        LumoSize canvas = m_diagram->getRect().size;
        for (const Item& each : m_items)
            canvas = grownToHold(canvas, each.item->getRect());
        m_diagram->setRect({{0, 0}, canvas});
    }

    /// Takes items to free places until nothing overlaps that may not.
    void separate() {
        std::vector<Item*> order;
        for (Item& each : m_items)
            order.push_back(&each);
        std::stable_sort(order.begin(), order.end(), [](const Item* a, const Item* b) {
            return a->item->getRect().origin.x < b->item->getRect().origin.x;
        });
        for (std::size_t i = 0; i < order.size(); ++i) {
            const int32_t right = lumoMaxX(order[i]->item->getRect());
            for (std::size_t k = i + 1; k < order.size(); ++k) {
                if (order[k]->item->getRect().origin.x >= right) break;
                markIfInTheWay(order[i], order[k]);
            }
        }
        for (const Item& each : m_items)
            if (each.isInTheWay) m_diagram->autoLayoutChild(each.item);
    }

private:
    struct Item {
        QBLumoItem* item;  // not owned: a child of the diagram
        LumoRect before;
        bool isPlaced = false;   // by the layout
        bool isAsAsked = false;  // just where the layout has it
        bool isInTheWay = false;
    };
    using TableKey = std::array<std::string, 3>;  // alias, name, schema
    using Indices = std::deque<std::size_t>;      // in the order of the items

    void enter(const QBLumoBaseItemBody* body) {
        const std::size_t index = m_items.size();
        if (!body) return;
        const std::string alias = NuvoJson::asStored(body->getAlias());
        if (dynamic_cast<const QBLumoTextBasedItemBody*>(body)) m_texts[alias].push_back(index);
        if (const auto* const table = dynamic_cast<const QBLumoDatabaseItemBody*>(body))
            m_tables[{alias, NuvoJson::asStored(table->getTableName()),
                      NuvoJson::asStored(table->getSchema())}]
                .push_back(index);
    }

    /// An alias alone fits a text; with name and schema it may fit a table, too. Where there is no
    /// alias, the name tells the entry of a table, whose place no text shall take.
    std::optional<std::size_t> take(const NuvoJsonValue& entry) {
        const std::optional<std::string> alias = textOf(entry, "Alias");
        if (!alias) return std::nullopt;
        const std::optional<std::string> name = textOf(entry, "Name");
        Indices* const texts = alias->empty() && name ? nullptr : waiting(&m_texts, *alias);
        const std::optional<std::string> schema = textOf(entry, "Schema");
        Indices* const tables =
            name && schema ? waiting(&m_tables, TableKey{*alias, *name, *schema}) : nullptr;
        Indices* const first = texts && tables ? std::min(texts, tables, isEarlier)
                               : texts         ? texts
                                               : tables;
        if (!first) return std::nullopt;
        const std::size_t index = first->front();
        first->pop_front();
        return index;
    }

    /// Null if none is left.
    template <typename Map>
    static Indices* waiting(Map* map, const typename Map::key_type& key) {
        const auto found = map->find(key);
        return found == map->end() || found->second.empty() ? nullptr : &found->second;
    }

    static bool isEarlier(const Indices* a, const Indices* b) { return a->front() < b->front(); }

    /// They did before, or the user has laid them so: not one wholly over the other.
    static bool mayOverlap(const Item& a, const Item& b) {
        if (lumoIntersectsRect(a.before, b.before)) return true;
        return a.isAsAsked && b.isAsAsked && a.item->getRect() != b.item->getRect();
    }

    /// What the layout has placed stays; of two alike the later one goes.
    static void markIfInTheWay(Item* a, Item* b) {
        if (a->isInTheWay || b->isInTheWay || mayOverlap(*a, *b)) return;
        if (!lumoIntersectsRect(a->item->getRect(), b->item->getRect())) return;
        Item* const unplaced = a->isPlaced ? b : a;
        Item* const goes = a->isPlaced == b->isPlaced ? std::max(a, b) : unplaced;
        goes->isInTheWay = true;
    }

    QBLumoDiagram* const m_diagram;  // not owned
    std::vector<Item> m_items;
    std::map<std::string, Indices> m_texts;
    std::map<TableKey, Indices> m_tables;
};

void scrollTo(const std::pair<int32_t, int32_t>& asked, LumoControl* control, LumoSize canvas) {
    const double x = std::clamp(asked.first, 0, canvas.width);
    const double y = std::clamp(asked.second, 0, canvas.height);
    control->setScrollOrigin({int32_t(std::lround(x * control->getZoom())),
                              int32_t(std::lround(y * control->getZoom()))});
}

}  // namespace

bool QBLumoDiagramSaveLoadHandler::readLayout(LumoControl* control, QBLumoDiagram* diagram,
                                              const NuvoJsonValue& json) {
    if (!control || !diagram || !json.isObject()) return false;
    Places places(diagram);
    const auto canvas = pairOf(json, "Width", "Height");
    if (canvas) diagram->setRect({{0, 0}, canvasSizeOf(*canvas)});
    const NuvoJsonValue* const objects = json.find("Objects");
    const bool hasObjects = objects && objects->isArray();
    for (std::size_t i = 0; hasObjects && i < objects->size(); ++i)
        places.place(*objects->at(i));
    places.growCanvas();
    places.separate();
    // Last: until now the canvas may have been too small for it.
    const auto origin = pairOf(json, "X", "Y");
    if (origin) scrollTo(*origin, control, diagram->getRect().size);
    return canvas && origin && hasObjects && places.areAllPlaced();
}

}  // namespace QB
