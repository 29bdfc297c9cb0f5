#include "widgets/navigation_bar.h"

#include <QApplication>
#include <QButtonGroup>
#include <QHBoxLayout>
#include <QIcon>
#include <QLabel>
#include <QMouseEvent>
#include <QScopedValueRollback>
#include <QScrollArea>
#include <QScrollBar>
#include <QTimer>
#include <cstdlib>

#include "platform/tolk/text_ids.h"
#include "platform/tolk/tolk.h"
#include "widgets/mouse_over_border_button.h"
#include "widgets/plain_tool_tip.h"

namespace QB {
namespace {

/// A name is shown up to this width, in characters of average width.
constexpr int nameColumns = 40;

/// As high as its content, however large the font: a line that scrolls only sideways.
class LineScrollArea : public QScrollArea {
public:
    using QScrollArea::QScrollArea;

    QSize sizeHint() const override { return widget()->sizeHint(); }
    QSize minimumSizeHint() const override { return QSize(0, widget()->sizeHint().height()); }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override {
        if (watched == widget() && event->type() == QEvent::LayoutRequest) updateGeometry();
        return QScrollArea::eventFilter(watched, event);
    }
};

}  // namespace

QBNavigationBar::QBNavigationBar(QWidget* parent)
    : QWidget(parent)
    , m_scrollArea(new LineScrollArea(this))
    , m_buttonGroup(new QButtonGroup(this)) {
    auto* content = new QWidget;
    content->setObjectName(QStringLiteral("scrollAreaContentWidget"));
    m_layout = new QHBoxLayout(content);
    m_layout->setObjectName(QStringLiteral("horizontalLayout"));
    m_layout->setContentsMargins(0, 0, 0, 0);

    m_scrollArea->setObjectName(QStringLiteral("scrollArea"));
    m_scrollArea->setFrameShape(QFrame::NoFrame);
    m_scrollArea->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_scrollArea->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_scrollArea->setWidgetResizable(true);
    m_scrollArea->setFocusPolicy(Qt::NoFocus);  // its buttons take the focus
    m_scrollArea->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    m_scrollArea->setWidget(content);
    m_scrollArea->installEventFilter(this);

    auto* layout = new QVBoxLayout(this);
    layout->setObjectName(QStringLiteral("verticalLayout"));
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_scrollArea);
    connect(m_scrollArea->horizontalScrollBar(), &QScrollBar::rangeChanged, this,
            &QBNavigationBar::showCurrentLayer);
    connect(m_buttonGroup, &QButtonGroup::idClicked, this, &QBNavigationBar::layerClicked);
    localizeControls();
}

void QBNavigationBar::localizeControls() {
    setAccessibleName(Tolk::localize(Tolk::TextLayerPath));
}

void QBNavigationBar::setLayerNames(const QStringList& names) {
    removeAllItems();
    for (int layer = 0; layer < names.size(); ++layer) {
        if (layer > 0) addArrow();
        addButton(names[layer], layer, layer == names.size() - 1);
    }
    m_layout->addStretch();
    // Where the buttons stand is known when the layout has run.
    QTimer::singleShot(0, this, &QBNavigationBar::showCurrentLayer);
}

/// It stands at the end, from right to left, too.
void QBNavigationBar::showCurrentLayer() {
    m_scrollArea->horizontalScrollBar()->setValue(m_scrollArea->horizontalScrollBar()->maximum());
}

void QBNavigationBar::removeAllItems() {
    while (QLayoutItem* item = m_layout->takeAt(0)) {
        if (QWidget* widget = item->widget()) {
            // The click of one of these buttons may have led here: it must return first.
            widget->hide();
            widget->setParent(nullptr);
            widget->deleteLater();
        }
        delete item;
    }
    const auto buttons = m_buttonGroup->buttons();
    for (QAbstractButton* button : buttons)
        m_buttonGroup->removeButton(button);
}

void QBNavigationBar::addArrow() {
    auto* arrow = new QLabel;
    const int extent = fontMetrics().height();
    arrow->setPixmap(QIcon(QStringLiteral(":/images/TB_Path_Arrow.png")).pixmap(extent, extent));
    m_layout->addWidget(arrow);
}

void QBNavigationBar::addButton(const QString& name, int layer, bool isCurrent) {
    auto* button = new QBMouseOverBorderButton;
    // A layer may be named after an alias: an ampersand in it is no mnemonic, a "<" no markup.
    const QString shown = fontMetrics().elidedText(name.simplified(), Qt::ElideRight,
                                                   nameColumns * fontMetrics().averageCharWidth());
    button->setText(QString(shown).replace(QLatin1Char('&'), QLatin1String("&&")));
    if (shown != name) button->setToolTip(plainToolTip(name));
    button->setAccessibleName(name);
    button->installEventFilter(this);
    if (isCurrent) button->setStyleSheet(QStringLiteral("font-weight:bold"));
    m_buttonGroup->addButton(button, layer);
    m_layout->addWidget(button);
}

bool QBNavigationBar::eventFilter(QObject* watched, QEvent* event) {
    const bool isButton = watched != m_scrollArea;
    switch (event->type()) {
        case QEvent::Wheel:
            passToScrollBar(event);
            return true;
        case QEvent::MouseButtonPress:
            m_dragPosition = positionInBar(static_cast<QMouseEvent*>(event));
            m_isDragging = !isButton;  // a button waits whether it becomes a click
            return !isButton;
        case QEvent::MouseMove:
            dragTo(static_cast<QMouseEvent*>(event));
            // A button that is not down takes the release for no click.
            if (isButton && m_isDragging) static_cast<QAbstractButton*>(watched)->setDown(false);
            return m_isDragging || !isButton;
        case QEvent::MouseButtonRelease:
            m_dragPosition = -1;
            m_isDragging = false;
            return !isButton;
        default:
            return QWidget::eventFilter(watched, event);
    }
}

void QBNavigationBar::passToScrollBar(QEvent* wheelEvent) {
    // A scroll bar at its end lets the event go on to its parent, which is the watched area.
    if (m_isScrolling) return;
    const QScopedValueRollback<bool> guard(m_isScrolling, true);
    QCoreApplication::sendEvent(m_scrollArea->horizontalScrollBar(), wheelEvent);
}

int QBNavigationBar::positionInBar(const QMouseEvent* event) const {
    // The buttons move along with the mouse, the bar stands.
    return mapFromGlobal(event->globalPos()).x();
}

void QBNavigationBar::dragTo(const QMouseEvent* event) {
    if (m_dragPosition == -1) return;
    const int position = positionInBar(event);
    if (std::abs(position - m_dragPosition) >= QApplication::startDragDistance())
        m_isDragging = true;
    if (!m_isDragging) return;
    QScrollBar* scrollBar = m_scrollArea->horizontalScrollBar();
    // The content goes with the mouse, the slider therefore against it.
    const int change = m_dragPosition - position;
    scrollBar->setValue(scrollBar->value() + (isRightToLeft() ? -change : change));
    m_dragPosition = position;
}

void QBNavigationBar::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::LanguageChange) localizeControls();
}

}  // namespace QB
