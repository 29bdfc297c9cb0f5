#pragma once

#include <QObject>

class QWidget;

namespace QB::Desk {

/// While active, it keeps input from the builder: a query that is being replaced must not be
/// edited. It takes a moment only, so nothing is greyed out and the focus stays. Main thread.
class InputGuard : public QObject {
    Q_OBJECT

public:
    /// @param guarded owns the guard. @param exempt not owned: a part of it that takes input
    /// always.
    InputGuard(QWidget* guarded, QWidget* exempt);

    void setActive(bool isActive);

protected:
    bool eventFilter(QObject* receiver, QEvent* event) override;

private:
    QWidget* m_guarded;  // not owned: the parent
    QWidget* m_exempt;   // not owned
};

}  // namespace QB::Desk
