#pragma once

#include <QObject>

class QAbstractButton;
class QWidget;

namespace QB {

/// The look of the two buttons of a list panel that move its row: their signs, and their words
/// where the panel has room for them. Follows the language, the theme and the width of the panel.
/// What they do is the panel's.
/// Ownership: @p panel owns this and, as descendants, the buttons.
/// Thread: main.
class QBRowMoveButtons : public QObject {
    Q_OBJECT

public:
    QBRowMoveButtons(QAbstractButton* up, QAbstractButton* down, QWidget* panel);

    void setEnabled(bool canMoveUp, bool canMoveDown);

    bool eventFilter(QObject* panel, QEvent* event) override;

private:
    void showSigns();
    void explain();
    void showWords();

    QAbstractButton* const m_up;    // not owned
    QAbstractButton* const m_down;  // not owned
    QWidget* const m_panel;         // not owned
};

}  // namespace QB
