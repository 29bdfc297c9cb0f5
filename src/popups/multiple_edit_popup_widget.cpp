#include "popups/multiple_edit_popup_widget.h"

#include <QSignalBlocker>
#include <utility>

#include "platform/tolk/tolk.h"
#include "ui_multiple_edit_popup_widget.h"
#include "widgets/drawn_icons.h"

namespace {

constexpr int itemMargin = 4;  // as in the style sheet of the list

}  // namespace

class QBMultipleEditPopupWidget::Private {
public:
    explicit Private(QBMultipleEditPopupWidget* widget) : q(widget) {}

    void showCurrentPage();
    void removeCurrentItem();
    void retranslate();
    void renewIcons();

    QBMultipleEditPopupWidget* const q;
    Ui::QBMultipleEditPopupWidget ui;
    std::function<void(int)> onCurrentRowChanged;
    std::function<void(int)> onItemRemoved;
};

void QBMultipleEditPopupWidget::Private::showCurrentPage() {
    const int row = ui.listWidget->currentRow();
    ui.pagesWidget->setCurrentIndex(row);
    ui.removeItemButton->setEnabled(ui.listWidget->count() > 1);
    if (onCurrentRowChanged) onCurrentRowChanged(row);
}

void QBMultipleEditPopupWidget::Private::removeCurrentItem() {
    const int row = ui.listWidget->currentRow();
    if (row < 0 || ui.listWidget->count() < 2) return;
    {
        // Told half-way, the owner would see rows and pages that do not correspond.
        const QSignalBlocker blocker(ui.listWidget);
        delete ui.listWidget->takeItem(row);
    }
    QWidget* page = ui.pagesWidget->widget(row);
    ui.pagesWidget->removeWidget(page);
    page->deleteLater();
    showCurrentPage();
    if (onItemRemoved) onItemRemoved(row);
}

void QBMultipleEditPopupWidget::Private::retranslate() {
    const auto name = [](QWidget* button, const QString& text) {
        button->setToolTip(text);
        button->setAccessibleName(text);
    };
    name(ui.addItemButton, Tolk::localize(Tolk::TextAddItem));
    name(ui.removeItemButton, Tolk::localize(Tolk::TextRemoveItem));
    ui.listWidget->setAccessibleName(Tolk::localize(Tolk::TextEditedItems));
}

void QBMultipleEditPopupWidget::Private::renewIcons() {
    ui.addItemButton->setIcon(QB::iconOrSign(QStringLiteral(":/images/TB_Linux_Add.png"),
                                             QB::DrawnSign::Plus, q->palette()));
    ui.removeItemButton->setIcon(QB::iconOrSign(QStringLiteral(":/images/TB_Linux_Remove.png"),
                                                QB::DrawnSign::Minus, q->palette()));
}

QBMultipleEditPopupWidget::QBMultipleEditPopupWidget(QWidget* parent)
    : QWidget(parent), d(std::make_unique<Private>(this)) {
    d->ui.setupUi(this);
    d->retranslate();
    d->renewIcons();
    d->showCurrentPage();
    setFocusProxy(d->ui.listWidget);
    connect(d->ui.listWidget, &QListWidget::currentRowChanged, this,
            [this] { d->showCurrentPage(); });
    connect(d->ui.addItemButton, &QToolButton::clicked, this,
            [this] { Q_EMIT signalMultipleEditRowWidgetAddItem(this); });
    connect(d->ui.removeItemButton, &QToolButton::clicked, this,
            [this] { d->removeCurrentItem(); });
}

QBMultipleEditPopupWidget::~QBMultipleEditPopupWidget() = default;

void QBMultipleEditPopupWidget::addItem(QWidget* row, QWidget* page) {
    d->ui.pagesWidget->addWidget(page);
    auto* item = new QListWidgetItem;
    const int margins = 2 * itemMargin;
    item->setSizeHint(row->sizeHint() + QSize(margins, margins));
    d->ui.listWidget->addItem(item);
    d->ui.listWidget->setItemWidget(item, row);
    d->ui.listWidget->setCurrentItem(item);
}

void QBMultipleEditPopupWidget::setCurrentRowChangedCallback(
    std::function<void(int row)> callback) {
    d->onCurrentRowChanged = std::move(callback);
}

void QBMultipleEditPopupWidget::setItemRemovedCallback(std::function<void(int row)> callback) {
    d->onItemRemoved = std::move(callback);
}

QListWidget* QBMultipleEditPopupWidget::listWidget() const {
    return d->ui.listWidget;
}

QStackedWidget* QBMultipleEditPopupWidget::pagesWidget() const {
    return d->ui.pagesWidget;
}

void QBMultipleEditPopupWidget::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::LanguageChange) d->retranslate();
    if (event->type() == QEvent::PaletteChange) d->renewIcons();
}
