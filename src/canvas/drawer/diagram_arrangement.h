#pragma once

#include <vector>

#include "platform/lumo/lumo_types.h"

namespace QB {

/// Where the items of a diagram stand, by the ids of their components: exact, within one run of the
/// program.
struct DiagramArrangement {
    struct Entry {
        long componentId = 0;
        LumoRect rect;
        bool isSizedByUser = false;
        bool isSelected = false;
        bool operator==(const Entry& other) const {
            return componentId == other.componentId && rect == other.rect &&
                   isSizedByUser == other.isSizedByUser && isSelected == other.isSelected;
        }
    };
    LumoSize canvas;
    LumoPoint scrollOrigin;      // in the diagram's space
    std::vector<Entry> entries;  // in the order of painting, the topmost last

    bool operator==(const DiagramArrangement& other) const {
        return canvas == other.canvas && scrollOrigin == other.scrollOrigin &&
               entries == other.entries;
    }
    bool operator!=(const DiagramArrangement& other) const { return !(*this == other); }
};

}  // namespace QB
