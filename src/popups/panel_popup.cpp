#include "popups/panel_popup.h"

#include <QFontMetricsF>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QVBoxLayout>
#include <memory>
#include <utility>

#include "model/callbacks.h"
#include "platform/tolk/tolk.h"
#include "popups/input_popup.h"
#include "widgets/fixed_width_font.h"

namespace QB {
namespace {

/// Accepts with Ctrl+Return or Ctrl+Enter in a text; it belongs to the text.
class TextAccepter : public QObject {
public:
    TextAccepter(QPlainTextEdit* text, QBInputPopup* popup) : QObject(text), m_popup(popup) {
        text->installEventFilter(this);
    }

protected:
    bool eventFilter(QObject*, QEvent* event) override {
        const bool isKey =
            event->type() == QEvent::KeyPress || event->type() == QEvent::ShortcutOverride;
        if (!isKey) return false;
        const auto* key = static_cast<QKeyEvent*>(event);
        const bool isReturn = key->key() == Qt::Key_Return || key->key() == Qt::Key_Enter;
        if (!isReturn || !(key->modifiers() & Qt::ControlModifier)) return false;
        event->accept();  // no shortcut of the host takes it
        if (event->type() == QEvent::KeyPress) m_popup->closePopup(true);
        return true;
    }

private:
    QBInputPopup* const m_popup;  // not owned: outlives its content
};

QPlainTextEdit* makeTextEdit(const QString& text) {
    auto* edit = new QPlainTextEdit;
    // A long line without blanks takes seconds to wrap.
    edit->setLineWrapMode(QPlainTextEdit::NoWrap);
    QFont font = fixedWidthFont();
    font.setFamily(QStringLiteral("Monospace"));
    edit->setFont(font);
    edit->setTabStopDistance(QFontMetricsF(edit->font()).horizontalAdvance(QLatin1String("  ")));
    edit->setMinimumSize(400, 60);
    edit->setPlainText(text);
    return edit;
}

/// @p edit above a line that says how to accept it.
QWidget* withHint(QPlainTextEdit* edit) {
    auto* content = new QWidget;
    auto* layout = new QVBoxLayout(content);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(edit);
    auto* hint = new QLabel(Tolk::localize(Tolk::TextAcceptTextHint));
    hint->setTextFormat(Qt::PlainText);
    hint->setMargin(3);
    hint->setWordWrap(true);
    layout->addWidget(hint);
    content->setFocusProxy(edit);
    return content;
}

/// From within its own answer, where a widget of the popup may still be handling a key, a popup has
/// to outlive the panel until it destroys itself.
void destroyOrDetach(QBInputPopup* popup) {
    if (popup->isAnswering())
        popup->setParent(nullptr, popup->windowFlags());
    else
        delete popup;
}

}  // namespace

QBPanelPopup::QBPanelPopup(QWidget* panel) : m_panel(panel) {}

QBPanelPopup::~QBPanelPopup() {
    // Else the end of the popup gives the focus back to a part of the panel, which is half
    // destroyed by now.
    QWidget* focus = m_panel->window()->focusWidget();
    if (m_popup && focus && m_panel->isAncestorOf(focus)) focus->clearFocus();
    // Also those that have their answer and wait to be destroyed.
    const auto popups = m_panel->findChildren<QBInputPopup*>(QString(), Qt::FindDirectChildrenOnly);
    for (QBInputPopup* popup : popups)
        destroyOrDetach(popup);
}

bool QBPanelPopup::isOpen() const {
    return m_popup != nullptr;
}

QBInputPopup* QBPanelPopup::open(QWidget* content, const QBPopupAnchor& anchor,
                                 std::function<void()> accepted, bool withMargins) {
    std::unique_ptr<QWidget> owned(content);
    if (isOpen()) return nullptr;
    auto* popup = new QBInputPopup(m_panel);
    popup->setContent(owned.release(), withMargins);
    QObject::connect(popup, &QBInputPopup::done, popup,
                     [this, accepted = std::move(accepted)](bool isAccepted) {
                         m_popup = nullptr;
                         if (isAccepted && accepted) accepted();  // last: it may destroy this
                     });
    m_popup = popup;
    popup->popup(anchor);
    return popup;
}

QLineEdit* QBPanelPopup::openLine(const QString& text, const QBPopupAnchor& anchor,
                                  std::function<void(const QString&)> accepted) {
    if (isOpen()) return nullptr;
    auto* line = new QLineEdit(text);
    line->setMinimumWidth(200);
    line->setAccessibleName(anchor.name);
    QBInputPopup* popup =
        open(line, anchor, [line, accepted = std::move(accepted)] { accepted(line->text()); });
    popup->setFullWidth(true);
    QObject::connect(line, &QLineEdit::returnPressed, popup, [popup] { popup->closePopup(true); });
    return line;
}

QPlainTextEdit* QBPanelPopup::openText(const QString& text, const QBPopupAnchor& anchor,
                                       std::function<void(const QString&)> accepted) {
    if (isOpen()) return nullptr;
    QPlainTextEdit* edit = makeTextEdit(text);
    edit->setAccessibleName(anchor.name);
    QBInputPopup* popup = open(withHint(edit), anchor, [edit, accepted = std::move(accepted)] {
        accepted(edit->toPlainText());
    });
    new TextAccepter(edit, popup);
    return edit;
}

void QBPanelPopup::editLine(const QString& text, const QBPopupAnchorFinder& where,
                            const Taker& take) {
    editLine(text, where, take, false);
}

void QBPanelPopup::editText(const QString& text, const QBPopupAnchorFinder& where,
                            const Taker& take) {
    editText(text, where, take, false);
}

void QBPanelPopup::editLine(const QString& text, const QBPopupAnchorFinder& where,
                            const Taker& take, bool isAgain) {
    const auto anchor = where();
    QLineEdit* const line =
        anchor ? openLine(text, *anchor, taking(text, where, take, &QBPanelPopup::editLine))
               : nullptr;
    if (line && isAgain) line->end(false);
}

void QBPanelPopup::editText(const QString& text, const QBPopupAnchorFinder& where,
                            const Taker& take, bool isAgain) {
    const auto anchor = where();
    QPlainTextEdit* const edit =
        anchor ? openText(text, *anchor, taking(text, where, take, &QBPanelPopup::editText))
               : nullptr;
    if (edit && isAgain) edit->moveCursor(QTextCursor::End);
}

/// Who takes the text, and the host that tells of a fault, may destroy this.
std::function<void(const QString&)> QBPanelPopup::taking(const QString& text,
                                                         const QBPopupAnchorFinder& where,
                                                         const Taker& take, Editing again) {
    return [=, life = std::weak_ptr<const bool>(m_life)](const QString& typed) {
        if (typed.trimmed() == text.trimmed()) return;
        const QString fault = take(typed);
        if (fault.isEmpty()) return;
        Callback::showError(fault.toStdString());
        if (!life.expired()) (this->*again)(typed, where, take, true);
    };
}

void QBPanelPopup::accept() {
    if (m_popup) m_popup->closePopup(true);
}

void QBPanelPopup::cancel() {
    if (m_popup) m_popup->closePopup(false);
}

}  // namespace QB
