#pragma once

#include <QHash>

namespace QB {

/// Names a row by what it shows. Popups, menus and the view keep this over a refresh, never the
/// number or the record of a row, nor the address of a component.
struct QBRowKey {
    enum Part { None, Component, CloseBracket, Placeholder };

    Part part = None;
    /// Of the component; of the bracket for its close row and for the placeholder in it. -1 for the
    /// placeholder of an empty list.
    long componentId = -1;

    bool isValid() const { return part != None; }
};

inline bool operator==(QBRowKey a, QBRowKey b) {
    return a.part == b.part && a.componentId == b.componentId;
}
inline bool operator!=(QBRowKey a, QBRowKey b) {
    return !(a == b);
}
inline uint qHash(QBRowKey key, uint seed = 0) {
    return ::qHash(key.componentId, seed) ^ static_cast<uint>(key.part);
}

}  // namespace QB
