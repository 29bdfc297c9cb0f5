#pragma once

#include <QObject>

namespace QB::Desk {

/// Lets the window have the keys for undo and redo when the field with the focus has no typing to
/// take back, or to do again: a field takes these keys always, by itself. Main thread.
class UndoKeys : public QObject {
public:
    /// Works for the whole application, as long as it lives.
    explicit UndoKeys(QObject* parent);

protected:
    bool eventFilter(QObject* receiver, QEvent* event) override;
};

}  // namespace QB::Desk
