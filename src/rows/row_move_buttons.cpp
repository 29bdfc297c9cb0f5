#include "rows/row_move_buttons.h"

#include <QAbstractButton>
#include <QEvent>
#include <QKeySequence>
#include <QLayout>

#include "platform/tolk/tolk.h"
#include "widgets/drawn_icons.h"

namespace QB {

QBRowMoveButtons::QBRowMoveButtons(QAbstractButton* up, QAbstractButton* down, QWidget* panel)
    : QObject(panel), m_up(up), m_down(down), m_panel(panel) {
    showSigns();
    // What the layout asks of the panel is the width without words.
    for (QAbstractButton* button : {m_up, m_down})
        button->setMinimumWidth(button->sizeHint().width());
    explain();
    showWords();
    panel->installEventFilter(this);
}

void QBRowMoveButtons::setEnabled(bool canMoveUp, bool canMoveDown) {
    m_up->setEnabled(canMoveUp);
    m_down->setEnabled(canMoveDown);
}

bool QBRowMoveButtons::eventFilter(QObject*, QEvent* event) {
    switch (event->type()) {
        case QEvent::PaletteChange:
            showSigns();
            break;
        case QEvent::LanguageChange:
            explain();
            showWords();
            break;
        case QEvent::Resize:
            showWords();
            break;
        default:
            break;
    }
    return false;
}

void QBRowMoveButtons::showSigns() {
    const QPalette& palette = m_panel->palette();
    m_up->setIcon(
        iconOrSign(QStringLiteral(":/images/BB_Previous_Record.png"), DrawnSign::Up, palette));
    m_down->setIcon(
        iconOrSign(QStringLiteral(":/images/BB_Next_Record.png"), DrawnSign::Down, palette));
}

void QBRowMoveButtons::explain() {
    const auto explainButton = [](QAbstractButton* button, Tolk::TextId id, const char* keys) {
        const QString hint = Tolk::localize(id);
        const QKeySequence shortcut{QLatin1String(keys)};
        button->setAccessibleName(hint);
        button->setToolTip(hint + QLatin1String(" (") +
                           shortcut.toString(QKeySequence::NativeText) + QLatin1Char(')'));
    };
    explainButton(m_up, Tolk::TextMoveUpHint, "Ctrl+Up");
    explainButton(m_down, Tolk::TextMoveDownHint, "Ctrl+Down");
}

/// In a narrow panel the signs must do without words.
void QBRowMoveButtons::showWords() {
    m_up->setText(Tolk::localize(Tolk::TextMoveUp));
    m_down->setText(Tolk::localize(Tolk::TextMoveDown));
    if (m_up->parentWidget()->layout()->sizeHint().width() <= m_panel->width()) return;
    m_up->setText(QString());
    m_down->setText(QString());
}

}  // namespace QB
