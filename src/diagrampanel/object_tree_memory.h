#pragma once

#include <QString>

#include "diagrampanel/object_tree_store.h"

namespace QB {

/// Brings the current row and the scroll position back after rows were replaced by others of the
/// same names, which may take several loads. (What is expanded, the store knows.)
class ObjectTreeMemory {
public:
    explicit ObjectTreeMemory(ObjectTreeStore& store);

    /// To be called before rows go. What waits to be brought back already, stays.
    void rememberCurrent();
    void rememberScrollPosition();

    /// Brings back what can be; the rest goes on waiting.
    void restore();

    /// The user has chosen another row or place, or what is missing will not come back.
    void forget();
    void forgetScrollPosition() { m_topKey.clear(); }

private:
    void restoreCurrent();
    void restoreScrollPosition();

    ObjectTreeStore& m_store;
    QString m_currentKey;  ///< empty: nothing to bring back
    bool m_isCurrentSelected = false;
    QString m_topKey;  ///< the first row that was in sight
};

}  // namespace QB
