#pragma once

#include <algorithm>
#include <map>
#include <memory>
#include <stdexcept>
#include <utility>
#include <vector>

#include "layouts/components_list_layout_impl.h"

namespace QB::QBComponentsListLayout_Private {

enum class PlaceKind {
    Empty,  ///< an empty list or an empty bracket
    Node,   ///< anything but a bracket
    Open,
    Close  ///< the component is the bracket's
};

/// What one row of a nested structure shows, and where in the model that stands.
template <typename Slot, typename Shown>
struct Place {
    PlaceKind kind;
    Slot slot;
    Shown* component;  ///< null for an empty place
    int level;         ///< number of brackets around it
};

/// Rows over a nested structure. Each has a slot, the address of the pointer in the model through
/// which what it shows is reached.
///
/// An edit changes what stands in a few slots, but which rows these belong to depends on much. So
/// the forms take the places of the whole structure after each edit, in text order: the slots are
/// noted from them, and rows that read otherwise are found at once.
template <typename Slot>
class SlottedLayout : public BasicQBComponentsListLayoutImpl {
public:
    /// Null for a row that is not here, and for one that has no slot.
    Slot slotOf(Item* item) const {
        const auto found = m_slots.find(item);
        return found == m_slots.end() ? nullptr : found->second;
    }

protected:
    static std::unique_ptr<Item> makeRow(Component::AbstractQueryComponent* component, int level) {
        auto row = std::make_unique<Item>();
        row->component = component;
        row->level = level;
        return row;
    }

    static std::unique_ptr<Item> makePlaceholder(int level) {
        auto row = makeRow(nullptr, level);
        row->isPlaceholder = true;
        return row;
    }

    static std::unique_ptr<Item> makeClose(Item* open) {
        auto row = makeRow(nullptr, open->level);
        row->partnerItem = open;
        return row;
    }

    template <typename Places>
    static Rows makeRows(const Places& places) {
        Rows rows;
        Items open;
        for (const auto& place : places) {
            switch (place.kind) {
                case PlaceKind::Empty:
                    rows.push_back(makePlaceholder(place.level));
                    break;
                case PlaceKind::Node:
                    rows.push_back(makeRow(place.component, place.level));
                    break;
                case PlaceKind::Open:
                    rows.push_back(makeRow(place.component, place.level));
                    open.push_back(rows.back().get());
                    break;
                case PlaceKind::Close:
                    rows.push_back(makeClose(open.back()));
                    open.pop_back();
                    break;
            }
        }
        return rows;
    }

    /// Notes the slot of each row.
    /// Errors: throws std::out_of_range if the rows do not show @p places.
    template <typename Places>
    void noteSlots(const Places& places) {
        using Place = typename Places::value_type;
        if (!std::equal(m_items.begin(), m_items.end(), places.begin(), places.end(),
                        shows<Place>)) {
            throw std::out_of_range("rows differ from what they show");
        }
        m_slots.clear();
        for (std::size_t i = 0; i < places.size(); ++i)
            m_slots.emplace(m_items[i], places[i].slot);
    }

    std::map<Item*, Slot> m_slots;

private:
    template <typename Place>
    static bool shows(const Item* item, const Place& place) {
        if (item->level != place.level) return false;
        switch (place.kind) {
            case PlaceKind::Empty:
                return item->isPlaceholder;
            case PlaceKind::Node:
            case PlaceKind::Open:
                return item->component == place.component;
            case PlaceKind::Close:
                return isClose(item) && item->partnerItem->component == place.component;
        }
        return false;
    }
};

}  // namespace QB::QBComponentsListLayout_Private
