#include "popups/join_selection_popup_widget.h"

#include <QFontMetrics>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPainter>
#include <QVBoxLayout>
#include <utility>
#include <vector>

#include "platform/tolk/tolk.h"
#include "ui_join_selection_popup_widget.h"
#include "widgets/join_words.h"
#include "widgets/label_palette.h"

namespace QB {
namespace {

constexpr int joinTypeRole = Qt::UserRole + 1;
constexpr double separatorStrength = 0.7;
constexpr double descriptionStrength = 0.7;  // of the text colour over the background

/// @p share of @p front over @p back.
QColor mixed(const QColor& front, const QColor& back, double share) {
    const auto channel = [share](double f, double b) {
        return b + (f - b) * share;
    };
    return QColor::fromRgbF(channel(front.redF(), back.redF()),
                            channel(front.greenF(), back.greenF()),
                            channel(front.blueF(), back.blueF()));
}

/// A description that can be read on a row, selected or not.
QColor descriptionColour(const QPalette& palette) {
    const QColor base = palette.color(QPalette::Base);
    const QColor dimmed = mixed(palette.color(QPalette::Text), base, descriptionStrength);
    return readableColour(readableColour(dimmed, base), palette.color(QPalette::Highlight));
}

QLabel* makeLabel(const QString& text, QWidget* row) {
    auto* label = new QLabel(text, row);
    label->setTextFormat(Qt::PlainText);
    label->setForegroundRole(QPalette::Text);
    return label;
}

QHBoxLayout* makeRowLayout(QWidget* row, SQLJoinType type) {
    auto* layout = new QHBoxLayout(row);
    const QStyle* style = row->style();
    layout->setContentsMargins(style->pixelMetric(QStyle::PM_LayoutLeftMargin, nullptr, row), 0,
                               style->pixelMetric(QStyle::PM_LayoutRightMargin, nullptr, row), 0);
    auto* icon = new QLabel(row);
    icon->setPixmap(joinPixmap(type));
    layout->addWidget(icon);
    return layout;
}

/// All descriptions take three lines, so that all rows are of one height.
int descriptionHeight(const QLabel* label) {
    const QFontMetrics metrics(label->font());
    return metrics.boundingRect(QRect(), Qt::AlignLeft, QStringLiteral("\n\n")).height() + 2;
}

/// The width at which the longest description fits its three lines in any font.
int leastWidth(const QWidget* list) {
    constexpr int characters = 50;
    return characters * list->fontMetrics().averageCharWidth();
}

}  // namespace

class QBJoinSelectionPopupWidget::Private {
public:
    explicit Private(QBJoinSelectionPopupWidget* widget) : q(widget) {}

    bool offers(SQLJoinType type) const;
    void buildList();
    QWidget* makeRow(SQLJoinType type);
    QWidget* makeKindRow(SQLJoinType type);
    QWidget* makeCustomRow();
    void start(int joinType, const QString* customText);
    QListWidgetItem* itemOf(int joinType) const;
    int currentType() const;
    void onCurrentItemChanged();
    void onClicked(const QListWidgetItem* item);
    void choose();
    bool handleListKey(const QKeyEvent* event);
    bool handleLineKey(QKeyEvent* event);
    void applyPalette();

    QBJoinSelectionPopupWidget* const q;
    Ui::QBJoinSelectionPopupWidget ui;
    bool showFullOuterJoin = false;
    bool showCommaJoin = false;
    bool showCustomJoin = false;
    QListWidgetItem* customItem = nullptr;  // owned by the list; null where not offered
    QLineEdit* customTextEdit = nullptr;    // owned by its row; null where not offered
    std::vector<QLabel*> descriptions;      // owned by their rows
    std::function<void()> onCurrentChanged;
    std::function<bool()> extraAcceptCheck;
};

bool QBJoinSelectionPopupWidget::Private::offers(SQLJoinType type) const {
    switch (type) {
        case SQLJoinTypeFullOuter:
            return showFullOuterJoin;
        case SQLJoinTypeComma:
            return showCommaJoin;
        case SQLJoinTypeCustom:
            return showCustomJoin;
        default:
            return true;
    }
}

void QBJoinSelectionPopupWidget::Private::buildList() {
    for (const SQLJoinType type : joinTypesInOrder()) {
        if (!offers(type)) continue;
        // The text is not painted: it serves type-ahead and screen readers.
        auto* item = new QListWidgetItem(joinTitle(type), ui.listWidget);
        item->setData(joinTypeRole, static_cast<int>(type));
        item->setData(Qt::AccessibleDescriptionRole, joinDescription(type));
        if (type == SQLJoinTypeCustom) customItem = item;
        ui.listWidget->setItemWidget(item, makeRow(type));
    }
}

QWidget* QBJoinSelectionPopupWidget::Private::makeRow(SQLJoinType type) {
    return type == SQLJoinTypeCustom ? makeCustomRow() : makeKindRow(type);
}

QWidget* QBJoinSelectionPopupWidget::Private::makeKindRow(SQLJoinType type) {
    auto* row = new QWidget;
    QHBoxLayout* layout = makeRowLayout(row, type);
    QLabel* description = makeLabel(joinDescription(type), row);
    description->setWordWrap(true);
    description->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    description->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
    description->setFixedHeight(descriptionHeight(description));
    descriptions.push_back(description);
    auto* texts = new QVBoxLayout;
    texts->addWidget(makeLabel(joinTitle(type), row));
    texts->addWidget(description);
    layout->addLayout(texts, 1);
    return row;
}

QWidget* QBJoinSelectionPopupWidget::Private::makeCustomRow() {
    auto* row = new QWidget;
    QHBoxLayout* layout = makeRowLayout(row, SQLJoinTypeCustom);
    customTextEdit = new QLineEdit(row);
    customTextEdit->setAccessibleName(joinTitle(SQLJoinTypeCustom));
    customTextEdit->installEventFilter(q);
    connect(customTextEdit, &QLineEdit::textEdited, q,
            [this] { ui.listWidget->setCurrentItem(customItem); });
    QLabel* label = makeLabel(joinTitle(SQLJoinTypeCustom) + QLatin1Char(':'), row);
    label->setBuddy(customTextEdit);
    layout->addWidget(label);
    layout->addWidget(customTextEdit, 1);
    return row;
}

QListWidgetItem* QBJoinSelectionPopupWidget::Private::itemOf(int joinType) const {
    for (int row = 0; row < ui.listWidget->count(); ++row) {
        QListWidgetItem* item = ui.listWidget->item(row);
        if (item->data(joinTypeRole).toInt() == joinType) return item;
    }
    return ui.listWidget->item(0);
}

void QBJoinSelectionPopupWidget::Private::start(int joinType, const QString* customText) {
    QListWidgetItem* item = itemOf(joinType);
    const bool isCustom = customItem && item == customItem;
    if (isCustom && customText) customTextEdit->setText(*customText);
    ui.listWidget->setCurrentItem(item);
    if (customTextEdit) customTextEdit->setEnabled(isCustom || customTextEdit->text().isEmpty());
    // What is being edited takes the keys first.
    q->setFocusProxy(isCustom ? static_cast<QWidget*>(customTextEdit) : ui.listWidget);
}

/// -1 without a current item.
int QBJoinSelectionPopupWidget::Private::currentType() const {
    const QListWidgetItem* item = ui.listWidget->currentItem();
    return item ? item->data(joinTypeRole).toInt() : -1;
}

void QBJoinSelectionPopupWidget::Private::onCurrentItemChanged() {
    if (customTextEdit) {
        const bool isCustom = currentType() == SQLJoinTypeCustom;
        if (!isCustom && customTextEdit->hasFocus()) ui.listWidget->setFocus();
        customTextEdit->setEnabled(isCustom || customTextEdit->text().isEmpty());
        if (isCustom) customTextEdit->setFocus();
    }
    if (onCurrentChanged) onCurrentChanged();
}

/// A click on the custom row begins to edit its text, so it is no answer.
void QBJoinSelectionPopupWidget::Private::onClicked(const QListWidgetItem* item) {
    if (item == customItem)
        customTextEdit->setFocus();
    else
        choose();
}

void QBJoinSelectionPopupWidget::Private::choose() {
    if (q->canBeAccepted()) Q_EMIT q->chosen();
}

bool QBJoinSelectionPopupWidget::Private::handleListKey(const QKeyEvent* event) {
    if (event->key() != Qt::Key_Return && event->key() != Qt::Key_Enter) return false;
    choose();
    return true;
}

/// The arrows go through the kinds from the line, too.
bool QBJoinSelectionPopupWidget::Private::handleLineKey(QKeyEvent* event) {
    switch (event->key()) {
        case Qt::Key_Return:
        case Qt::Key_Enter:
            choose();
            return true;
        case Qt::Key_Up:
        case Qt::Key_Down:
        case Qt::Key_PageUp:
        case Qt::Key_PageDown:
            QCoreApplication::sendEvent(ui.listWidget, event);
            return true;
        default:
            return false;
    }
}

/// Selected rows are tinted only, so that texts keep their colours on them.
void QBJoinSelectionPopupWidget::Private::applyPalette() {
    QPalette palette = q->palette();
    palette.setColor(QPalette::Highlight, selectedRowColour(q->palette()));
    palette.setColor(QPalette::HighlightedText, palette.color(QPalette::Text));
    ui.listWidget->setPalette(palette);
    QPalette dimmed;
    dimmed.setColor(QPalette::Text, descriptionColour(palette));
    for (QLabel* description : descriptions)
        description->setPalette(dimmed);
}

QBJoinSelectionPopupWidget::QBJoinSelectionPopupWidget(int joinType, const QString* customText,
                                                       bool showFullOuterJoin, bool showCommaJoin,
                                                       bool showCustomJoin, QWidget* parent)
    : QWidget(parent), d(std::make_unique<Private>(this)) {
    d->ui.setupUi(this);
    d->showFullOuterJoin = showFullOuterJoin;
    d->showCommaJoin = showCommaJoin;
    d->showCustomJoin = showCustomJoin;
    QListWidget* list = d->ui.listWidget;
    list->setAccessibleName(Tolk::localize(Tolk::TextJoinKinds));
    list->setMinimumWidth(qMax(list->minimumWidth(), leastWidth(list)));
    list->setItemDelegate(new QBJoinSelectionPopupWidgetTreeItemDelegate(list));
    list->installEventFilter(this);
    d->buildList();
    d->applyPalette();
    d->start(joinType, customText);
    connect(list, &QListWidget::currentItemChanged, this, [this] { d->onCurrentItemChanged(); });
    connect(list, &QListWidget::itemClicked, this,
            [this](const QListWidgetItem* item) { d->onClicked(item); });
}

QBJoinSelectionPopupWidget::~QBJoinSelectionPopupWidget() = default;

void QBJoinSelectionPopupWidget::setCurrentChangedCallback(std::function<void()> callback) {
    d->onCurrentChanged = std::move(callback);
}

void QBJoinSelectionPopupWidget::setAcceptCheck(std::function<bool()> check) {
    d->extraAcceptCheck = std::move(check);
}

void QBJoinSelectionPopupWidget::joinSelection(int* type, QString* customText) const {
    const QList<QListWidgetItem*> selected = d->ui.listWidget->selectedItems();
    *type =
        selected.isEmpty() ? int(SQLJoinTypeCustom) : selected.first()->data(joinTypeRole).toInt();
    if (selected.isEmpty() || *type != SQLJoinTypeCustom) return;
    if (d->customTextEdit->text().trimmed() == QLatin1String(","))
        *type = SQLJoinTypeComma;
    else
        *customText = d->customTextEdit->text();
}

bool QBJoinSelectionPopupWidget::isSelectionValid() const {
    const int type = d->currentType();
    return type > SQLJoinTypeCustom && (!d->extraAcceptCheck || d->extraAcceptCheck());
}

bool QBJoinSelectionPopupWidget::canBeAccepted() const {
    if (d->currentType() != SQLJoinTypeCustom) return isSelectionValid();
    const bool hasText = !d->customTextEdit->text().trimmed().isEmpty();
    return hasText && (!d->extraAcceptCheck || d->extraAcceptCheck());
}

QListWidget* QBJoinSelectionPopupWidget::listWidget() const {
    return d->ui.listWidget;
}

QLineEdit* QBJoinSelectionPopupWidget::customTextEdit() const {
    return d->customTextEdit;
}

/// All kinds without scrolling, where the screen is high enough.
QSize QBJoinSelectionPopupWidget::sizeHint() const {
    const QListWidget* list = d->ui.listWidget;
    int height = 2 * list->frameWidth();
    for (int row = 0; row < list->count(); ++row)
        height += list->sizeHintForRow(row);
    return QSize(list->minimumWidth(), height).expandedTo(minimumSize());
}

bool QBJoinSelectionPopupWidget::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() != QEvent::KeyPress) return QWidget::eventFilter(watched, event);
    auto* key = static_cast<QKeyEvent*>(event);
    return watched == d->customTextEdit ? d->handleLineKey(key) : d->handleListKey(key);
}

/// The list has its size only now.
void QBJoinSelectionPopupWidget::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    d->ui.listWidget->scrollToItem(d->ui.listWidget->currentItem());
}

void QBJoinSelectionPopupWidget::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::PaletteChange) d->applyPalette();
}

void QBJoinSelectionPopupWidgetTreeItemDelegate::paint(QPainter* painter,
                                                       const QStyleOptionViewItem& option,
                                                       const QModelIndex&) const {
    painter->save();
    painter->setClipRect(option.rect);
    const bool isSelected = option.state.testFlag(QStyle::State_Selected);
    const QPalette& palette = option.palette;
    painter->fillRect(option.rect,
                      palette.brush(isSelected ? QPalette::Highlight : QPalette::Base));
    QColor line = palette.color(QPalette::Mid);
    line.setAlphaF(separatorStrength);
    painter->setPen(line);
    painter->drawLine(option.rect.bottomLeft(), option.rect.bottomRight());
    painter->restore();
}

QSize QBJoinSelectionPopupWidgetTreeItemDelegate::sizeHint(const QStyleOptionViewItem& option,
                                                           const QModelIndex& index) const {
    const auto* view = qobject_cast<const QAbstractItemView*>(option.widget);
    const QWidget* row = view ? view->indexWidget(index) : nullptr;
    return row ? row->sizeHint() : QStyledItemDelegate::sizeHint(option, index);
}

}  // namespace QB
