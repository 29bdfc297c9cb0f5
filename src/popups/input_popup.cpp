#include "popups/input_popup.h"

#include <QAction>
#include <QApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMouseEvent>
#include <QPainter>
#include <QPlainTextEdit>
#include <QPointer>
#include <QScreen>
#include <QTextCursor>

#include "popups/popup_content.h"
#include "popups/second_press_guard.h"
#include "ui_input_popup.h"
#include "widgets/visible_edges.h"

namespace QB {
namespace {

constexpr int longestFirstPaint = 1000;  // milliseconds

QWidget* endOfFocusProxies(QWidget* widget) {
    while (widget->focusProxy())
        widget = widget->focusProxy();
    return widget;
}

/// So that typing replaces the text. The cursor of a long text stays at its start.
void selectText(QWidget* widget) {
    if (auto* line = qobject_cast<QLineEdit*>(widget)) line->selectAll();
    auto* text = qobject_cast<QPlainTextEdit*>(widget);
    if (!text) return;
    QTextCursor cursor = text->textCursor();
    cursor.movePosition(QTextCursor::End);
    cursor.movePosition(QTextCursor::Start, QTextCursor::KeepAnchor);
    text->setTextCursor(cursor);
}

/// What the window below @p popup does at a key for undo or redo; null for other keys.
QAction* historyAction(const QWidget* popup, const QKeyEvent& key) {
    if (!key.matches(QKeySequence::Undo) && !key.matches(QKeySequence::Redo)) return nullptr;
    const QWidget* window = popup;
    while (window->parentWidget() && window->windowType() == Qt::Popup)
        window = window->parentWidget()->window();
    const QKeySequence pressed(static_cast<int>(key.modifiers()) + key.key());
    for (QAction* action : window->findChildren<QAction*>())
        if (action->isEnabled() && action->shortcuts().contains(pressed)) return action;
    return nullptr;
}

/// @p start, moved so that @p length from there lie inside [low, high], or begin there.
int movedInside(int start, int length, int low, int high) {
    return qMax(low, qMin(start, high + 1 - length));
}

}  // namespace

class QBInputPopup::Private {
public:
    explicit Private(QBInputPopup* popup) : q(popup) {}

    void noteAnchor(const QBPopupAnchor& anchor);
    void fit();
    void place(const QRect& room);
    void takeFocus();
    bool holdsFocus() const;
    void giveFocusBack();
    void closeWhenHidden();
    void notePress(const QMouseEvent* event);
    bool isClosedByClick() const;
    bool handleCancelKey(QEvent* event);

    QBInputPopup* const q;
    Ui::QBInputPopup ui;
    QWidget* content = nullptr;  // owned by the layout's widget
    QRect anchorArea;            // on the screen; empty for a mere point
    int anchorWidth = 0;
    QPointer<QScreen> screen;
    QPointer<QWidget> focusBefore;
    bool isFullWidth = false;
    bool isCancelled = false;
    bool isFinished = false;
    bool isAnswering = false;
    bool isKeyOfAnother = false;
    QPoint lastPress;          // on the screen
    QElapsedTimer sincePress;  // not started before the first press in the popup
};

/// Notes where the popup belongs, rather than the anchor, which a refresh may destroy.
void QBInputPopup::Private::noteAnchor(const QBPopupAnchor& anchor) {
    const QPoint point = anchor.widget->mapToGlobal(anchor.area.topLeft());
    anchorArea = QRect(point, anchor.area.size());
    anchorWidth = anchor.area.isEmpty() ? anchor.widget->width() : anchor.area.width();
    screen = QGuiApplication::screenAt(point);
    if (!screen) screen = anchor.widget->screen();
    q->setLayoutDirection(anchor.widget->layoutDirection());
    q->setAccessibleName(anchor.name);
}

/// Takes the size of the content, and the place for that.
void QBInputPopup::Private::fit() {
    if (!screen) screen = QGuiApplication::primaryScreen();
    if (!screen) return;
    const QRect room = screen->availableGeometry();
    if (isFullWidth) q->setMinimumWidth(qMin(anchorWidth, room.width()));
    // Not adjustSize(), which makes a popup at least 200 by 100 and at most two thirds of a screen.
    q->layout()->activate();
    QSize size = q->layout()->totalSizeHint().boundedTo(room.size());
    // A content that can do with less does not cover the anchor.
    const int free = qMax(room.bottom() + 1 - (anchorArea.y() + anchorArea.height()),
                          anchorArea.y() - room.top() - 1);
    const int least = q->layout()->totalMinimumSize().height();
    size.setHeight(qMax(qMin(size.height(), free), least));
    q->resize(size);
    place(room);
}

void QBInputPopup::Private::place(const QRect& room) {
    const QSize size = q->size();
    const bool isMirrored = q->layoutDirection() == Qt::RightToLeft;
    const int left =
        isMirrored ? anchorArea.x() + anchorArea.width() - size.width() : anchorArea.x();
    const int below = anchorArea.y() + anchorArea.height();
    const bool fitsBelow = below + size.height() <= room.bottom() + 1;
    const int top = fitsBelow ? below : anchorArea.y() - size.height() - 1;
    q->move(movedInside(left, size.width(), room.left(), room.right()),
            movedInside(top, size.height(), room.top(), room.bottom()));
}

void QBInputPopup::Private::takeFocus() {
    if (!content) return;
    const QWidget* present = q->focusWidget();
    if (!present || !(present == content || content->isAncestorOf(present)))
        content->setFocus(Qt::PopupFocusReason);
    selectText(q->focusWidget() ? q->focusWidget() : endOfFocusProxies(content));
}

/// Whether the focus lies in the popup, or nowhere.
bool QBInputPopup::Private::holdsFocus() const {
    const QWidget* present = QApplication::focusWidget();
    return !present || present == q || q->isAncestorOf(present);
}

/// Qt gives the focus to what the window below has kept for it; where that is gone, to nothing.
void QBInputPopup::Private::giveFocusBack() {
    QWidget* receiver = focusBefore;
    if (!receiver && holdsFocus()) receiver = q->parentWidget();
    if (receiver && receiver->isVisible() && !receiver->hasFocus())
        receiver->setFocus(Qt::PopupFocusReason);
}

void QBInputPopup::Private::closeWhenHidden() {
    const QWidget* parent = q->parentWidget();
    if (!q->isVisible() || (parent && !parent->isVisible())) q->closePopup(false);
}

void QBInputPopup::Private::notePress(const QMouseEvent* event) {
    if (!q->frameGeometry().contains(event->globalPos())) return;
    lastPress = event->globalPos();
    sincePress.start();
}

bool QBInputPopup::Private::isClosedByClick() const {
    return sincePress.isValid() && sincePress.elapsed() < QApplication::doubleClickInterval();
}

/// One press of a key comes as several events. A list that is open over the popup may close with
/// the first; the others are not for the popup then, though it is the topmost by now.
bool QBInputPopup::Private::handleCancelKey(QEvent* event) {
    if (QApplication::activePopupWidget() != q) {
        isKeyOfAnother = true;
        QMetaObject::invokeMethod(
            q, [this] { isKeyOfAnother = false; }, Qt::QueuedConnection);
        return false;
    }
    event->accept();  // neither a shortcut of the host nor the popup's base class takes it
    if (event->type() == QEvent::KeyPress && !isKeyOfAnother) q->closePopup(false);
    return true;
}

QBInputPopup::QBInputPopup(QWidget* parent)
    : QWidget(parent, Qt::Popup | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint)
    , d(std::make_unique<Private>(this)) {
    d->ui.setupUi(this);
    setAttribute(Qt::WA_DeleteOnClose);
    // Queued: the loop runs when the popup is shown wholly. Nothing may follow it in the lambda,
    // since the popup may die in it.
    connect(
        this, &QBInputPopup::onShow, this,
        [] { QEventLoop().processEvents(QEventLoop::ExcludeUserInputEvents, longestFirstPaint); },
        Qt::QueuedConnection);
    qApp->installEventFilter(this);
}

QBInputPopup::~QBInputPopup() {
    qApp->removeEventFilter(this);
}

void QBInputPopup::setContent(QWidget* content, bool withMargins) {
    replaceContent(d->ui.gridLayout_2, d->content, content);
    d->content = content;
    const auto margin = [&](QStyle::PixelMetric metric) {
        return withMargins ? style()->pixelMetric(metric, nullptr, this) : 0;
    };
    d->ui.gridLayout_2->setContentsMargins(
        margin(QStyle::PM_LayoutLeftMargin), margin(QStyle::PM_LayoutTopMargin),
        margin(QStyle::PM_LayoutRightMargin), margin(QStyle::PM_LayoutBottomMargin));
}

QWidget* QBInputPopup::content() const {
    return d->content;
}

void QBInputPopup::setFullWidth(bool isFullWidth) {
    d->isFullWidth = isFullWidth;
    if (isVisible()) d->fit();
}

bool QBInputPopup::isAnswering() const {
    return d->isAnswering;
}

void QBInputPopup::popup(QWidget* nextToWidget, const QPoint* pivot) {
    QBPopupAnchor anchor(nextToWidget);
    if (pivot) anchor.area = QRect(*pivot, QSize(0, 0));
    popup(anchor);
}

void QBInputPopup::popup(const QBPopupAnchor& anchor) {
    d->noteAnchor(anchor);
    d->focusBefore = QApplication::focusWidget();
    d->fit();
    d->takeFocus();
    show();
}

void QBInputPopup::closePopup(bool accepted) {
    if (d->isFinished) return;
    d->isCancelled = !accepted;
    close();
}

bool QBInputPopup::event(QEvent* event) {
    const bool result = QWidget::event(event);
    if (event->type() == QEvent::LayoutRequest && isVisible()) d->fit();
    return result;
}

/// Sees every event of the application, so what it does for most must stay next to nothing.
bool QBInputPopup::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::Hide && (watched == this || watched == parent()) &&
        !event->spontaneous() && !d->isFinished) {
        // Queued: where the parent is hidden because it is being destroyed there is no answer.
        QMetaObject::invokeMethod(
            this, [this] { d->closeWhenHidden(); }, Qt::QueuedConnection);
    }
    if (event->type() == QEvent::MouseButtonPress && watched->isWindowType())
        d->notePress(static_cast<QMouseEvent*>(event));
    const bool isKey =
        event->type() == QEvent::KeyPress || event->type() == QEvent::ShortcutOverride;
    if (!isKey || !static_cast<QKeyEvent*>(event)->matches(QKeySequence::Cancel)) return false;
    return d->handleCancelKey(event);
}

void QBInputPopup::keyPressEvent(QKeyEvent* event) {
    QAction* const action = historyAction(this, *event);
    if (!action) return QWidget::keyPressEvent(event);
    event->accept();
    action->trigger();  // last: what is undone may be what the popup is for
}

void QBInputPopup::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    showEdges(this);
    Q_EMIT onShow();
}

/// Hidden before it answers: Qt closes popups until none is left when a receiver shows a window.
void QBInputPopup::closeEvent(QCloseEvent* event) {
    QWidget::closeEvent(event);
    if (d->isFinished) return;
    d->isFinished = true;
    const bool hadFocus = d->holdsFocus();
    hide();
    if (d->isClosedByClick()) swallowSecondPress(d->lastPress);
    if (hadFocus) d->giveFocusBack();
    const QPointer<QBInputPopup> self(this);
    d->isAnswering = true;
    Q_EMIT done(!d->isCancelled);
    if (self) d->isAnswering = false;
}

void QBInputPopup::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setPen(edgeColour(palette()));
    painter.drawRect(rect().adjusted(0, 0, -1, -1));
}

}  // namespace QB
