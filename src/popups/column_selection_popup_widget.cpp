#include "popups/column_selection_popup_widget.h"

#include <QCompleter>
#include <QKeyEvent>
#include <QTimer>
#include <optional>

#include "platform/tolk/tolk.h"
#include "popups/choice_content.h"
#include "popups/edited_choice.h"
#include "ui_column_selection_popup_widget.h"
#include "widgets/fixed_width_font.h"
#include "widgets/panel_widget.h"

namespace QB {
namespace {

enum Tab { TreeTab, TextTab };

bool isReturn(const QKeyEvent& key) {
    return key.key() == Qt::Key_Return || key.key() == Qt::Key_Enter;
}

/// A letter, digit or sign that was typed. A blank selects in a tree.
bool isTyping(const QKeyEvent& key) {
    const auto others = key.modifiers() & ~(Qt::ShiftModifier | Qt::KeypadModifier);
    const bool hasText = !key.text().isEmpty() && key.text().at(0).isPrint();
    return hasText && others == Qt::NoModifier && key.key() != Qt::Key_Space;
}

void putInto(QBChosenColumn& chosen, const ChoiceRow& row) {
    switch (row.kind) {
        case ChoiceKind::Field:
            chosen.sourceId = row.componentId;
            chosen.fieldName = row.data.fieldName.toStdString();
            return;
        case ChoiceKind::Star:
            chosen.kind = QBChosenColumn::Star;
            chosen.sourceId = row.componentId;
            return;
        case ChoiceKind::SelectColumn:
            chosen.kind = QBChosenColumn::SelectColumn;
            chosen.selectColumnId = row.componentId;
            return;
        case ChoiceKind::Heading:
        case ChoiceKind::Notice:
        case ChoiceKind::Object:
            chosen = QBChosenColumn();
    }
}

/// The form, there before the members that work on it.
struct Form : Ui::QBColumnSelectionPopupWidget {
    explicit Form(QWidget* widget) { setupUi(widget); }
};

}  // namespace

class QBColumnSelectionPopupWidget::Private {
public:
    Private(QBColumnSelectionPopupWidget* widget, QBPanelWidget* panel, const QStringList& extra,
            const Component::AbstractQueryComponent* component, int* key);

    void setUpForm();
    void connectForm();
    void retranslate();
    void showEdited();
    void selectEdited();
    void selectionChanged();
    void lookAgain();
    void applyFilter();

    bool treeKeyPressed(QKeyEvent* key);
    bool filterKeyPressed(const QKeyEvent& key);
    void enterTree();
    void accept();
    void itemClicked(QTreeWidgetItem* item);

    bool isOnTree() const { return ui.tabWidget->currentIndex() == TreeTab; }
    bool isOf(QBColumnChoice choice) const { return content.choice() == choice; }
    bool isOfColumnList() const;
    bool isEditedFieldKept() const;
    bool hasOtherAggregate() const;
    std::string aggregate() const;

    QBColumnSelectionPopupWidget* const q;
    const Form ui;
    int* const selectedKey;  // not owned: the caller's
    const EditedChoice edited;
    ChoiceTree tree;
    ChoiceContent content;
    QString textAtFirst;
    std::optional<ChoiceRow> editedRow;  ///< while it shows
    bool hasUserSelected = false;
};

QBColumnSelectionPopupWidget::Private::Private(QBColumnSelectionPopupWidget* widget,
                                               QBPanelWidget* panel, const QStringList& extra,
                                               const Component::AbstractQueryComponent* component,
                                               int* key)
    : q(widget)
    , ui(widget)
    , selectedKey(key)
    , edited(EditedChoice::of(component, panel ? panel->engine() : nullptr))
    , tree(ui.treeWidget)
    , content(panel, tree, extra, nullptr) {}

// ---- the form -------------------------------------------------------------------------------

void QBColumnSelectionPopupWidget::Private::setUpForm() {
    ui.aggregateComboBox->addItems({QStringLiteral("SUM"), QStringLiteral("MAX"),
                                    QStringLiteral("MIN"), QStringLiteral("AVG"),
                                    QStringLiteral("COUNT")});
    ui.aggregateComboBox->setCurrentIndex(-1);
    ui.aggregateComboBox->lineEdit()->setClearButtonEnabled(true);
    // It completes what is typed, and leaves the case of the letters alone.
    ui.aggregateComboBox->completer()->setCaseSensitivity(Qt::CaseSensitive);
    ui.plainTextEdit->setFont(fixedWidthFont());
    ui.filterLineEdit->installEventFilter(q);
    ui.treeWidget->installEventFilter(q);
    ui.plainTextEdit->installEventFilter(q);
    ui.aggregateComboBox->lineEdit()->installEventFilter(q);
}

void QBColumnSelectionPopupWidget::Private::connectForm() {
    // Queued: keys that wait are typed first.
    connect(
        ui.filterLineEdit, &QLineEdit::textChanged, q, [this] { applyFilter(); },
        Qt::QueuedConnection);
    connect(ui.treeWidget, &QTreeWidget::itemSelectionChanged, q, [this] { selectionChanged(); });
    connect(ui.treeWidget, &QTreeWidget::itemClicked, q,
            [this](QTreeWidgetItem* item) { itemClicked(item); });
    connect(&content, &ChoiceContent::changed, q, [this] { selectEdited(); });
    connect(
        &content, &ChoiceContent::becameStale, q, [this] { lookAgain(); }, Qt::QueuedConnection);
}

void QBColumnSelectionPopupWidget::Private::retranslate() {
    const bool isOfSources = isOf(QBColumnChoice::Sources);
    const QString expression = Tolk::localize(Tolk::TextExpressionTab);
    const QString ownText =
        isOfSources ? expression + QLatin1Char('/') + Tolk::localize(Tolk::TextSubqueryTab)
                    : expression;
    ui.tabWidget->setTabText(TreeTab,
                             Tolk::localize(isOfSources ? Tolk::TextTableTab : Tolk::TextFieldTab));
    ui.tabWidget->setTabText(TextTab, ownText);
    ui.aggregateLabel->setText(Tolk::localize(Tolk::TextAggregate) + QLatin1Char(':'));
    ui.aggregateComboBox->lineEdit()->setPlaceholderText(Tolk::localize(Tolk::TextNoAggregate));
    ui.aggregateComboBox->setAccessibleName(Tolk::localize(Tolk::TextAggregate));
    const QString filter = Tolk::localize(Tolk::TextFilterChoices);
    ui.filterLineEdit->setPlaceholderText(filter);
    ui.filterLineEdit->setAccessibleName(filter);
    ui.treeWidget->setAccessibleName(
        Tolk::localize(isOfSources ? Tolk::TextTablesAndViews : Tolk::TextFieldsToChoose));
    ui.plainTextEdit->setPlaceholderText(
        Tolk::localize(isOfSources ? Tolk::TextSourceExample : Tolk::TextExpressionExample));
    ui.plainTextEdit->setAccessibleName(ownText);
    ui.acceptHintLabel->setText(Tolk::localize(Tolk::TextAcceptTextHint));
}

// ---- what is edited -------------------------------------------------------------------------

void QBColumnSelectionPopupWidget::Private::showEdited() {
    if (edited.kind == EditedChoice::Field)
        ui.aggregateComboBox->setCurrentText(QString::fromStdString(edited.aggregateFunction));
    if (edited.kind == EditedChoice::Expression)
        q->setExpression(QString::fromStdString(edited.expression));
}

void QBColumnSelectionPopupWidget::Private::selectEdited() {
    if (hasUserSelected) return;
    editedRow = edited.findIn(tree);
    tree.choose(editedRow);
}

void QBColumnSelectionPopupWidget::Private::selectionChanged() {
    hasUserSelected = true;
    tree.noteSelection();
}

void QBColumnSelectionPopupWidget::Private::lookAgain() {
    if (q->isVisible()) content.catchUp();
}

// ---- keys and clicks ------------------------------------------------------------------------

void QBColumnSelectionPopupWidget::Private::applyFilter() {
    tree.setFilter(ui.filterLineEdit->text().trimmed());
    content.updateNotice();
}

void QBColumnSelectionPopupWidget::Private::accept() {
    if (q->hasChoice()) Q_EMIT q->chosen();
}

/// The second half of a double click comes as such, and as no click.
void QBColumnSelectionPopupWidget::Private::itemClicked(QTreeWidgetItem* item) {
    const ChoiceRow* const row = ChoiceTree::rowOf(item);
    if (row && row->canBeChosen() && item->isSelected()) accept();
}

bool QBColumnSelectionPopupWidget::Private::treeKeyPressed(QKeyEvent* key) {
    QTreeWidgetItem* const current = ui.treeWidget->currentItem();
    if (isReturn(*key)) {
        const ChoiceRow* const row = ChoiceTree::rowOf(current);
        if (row && row->kind == ChoiceKind::Heading)
            current->setExpanded(!current->isExpanded());
        else
            accept();
        return true;
    }
    const bool isAtTop = !current || !ui.treeWidget->itemAbove(current);
    if (key->key() == Qt::Key_Up && isAtTop) {
        ui.filterLineEdit->setFocus(Qt::BacktabFocusReason);
        return true;
    }
    if (!isTyping(*key)) return false;
    ui.filterLineEdit->setFocus(Qt::OtherFocusReason);
    QCoreApplication::sendEvent(ui.filterLineEdit, key);
    return true;
}

bool QBColumnSelectionPopupWidget::Private::filterKeyPressed(const QKeyEvent& key) {
    if (key.key() == Qt::Key_Down || key.key() == Qt::Key_PageDown) {
        enterTree();
        ui.treeWidget->setFocus(Qt::TabFocusReason);
        return true;
    }
    if (!isReturn(key)) return false;
    applyFilter();
    if (tree.hasFilter()) enterTree();
    accept();
    return true;
}

/// Selects the first match, unless one is selected.
void QBColumnSelectionPopupWidget::Private::enterTree() {
    applyFilter();
    if (!tree.selectedRow() && tree.firstChoice())
        ui.treeWidget->setCurrentItem(tree.firstChoice());
}

bool QBColumnSelectionPopupWidget::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() != QEvent::KeyPress) return QWidget::eventFilter(watched, event);
    auto* key = static_cast<QKeyEvent*>(event);
    if (watched == d->ui.treeWidget) return d->treeKeyPressed(key);
    if (watched == d->ui.filterLineEdit) return d->filterKeyPressed(*key);
    const bool isOfText = watched == d->ui.plainTextEdit;
    const bool accepts =
        isReturn(*key) && (!isOfText || key->modifiers().testFlag(Qt::ControlModifier));
    if (accepts) d->accept();
    return accepts;
}

// ---- the widget -----------------------------------------------------------------------------

QBColumnSelectionPopupWidget::QBColumnSelectionPopupWidget(
    QBPanelWidget* panel, QStringList* extraSchemaList,
    Component::AbstractQueryComponent* editedComponent, int* selectedKey, QWidget* parent)
    : QWidget(parent)
    , d(std::make_unique<Private>(this, panel, extraSchemaList ? *extraSchemaList : QStringList(),
                                  editedComponent, selectedKey)) {
    d->setUpForm();
    d->connectForm();
    d->content.show(d->content.panelChoice());
    d->retranslate();
    d->showEdited();
    setAggregateVisible(d->isOfColumnList());
}

QBColumnSelectionPopupWidget::~QBColumnSelectionPopupWidget() = default;

QTabWidget* QBColumnSelectionPopupWidget::tabWidget() const {
    return d->ui.tabWidget;
}

QLineEdit* QBColumnSelectionPopupWidget::filterLineEdit() const {
    return d->ui.filterLineEdit;
}

QTreeWidget* QBColumnSelectionPopupWidget::treeWidget() const {
    return d->ui.treeWidget;
}

QPlainTextEdit* QBColumnSelectionPopupWidget::plainTextEdit() const {
    return d->ui.plainTextEdit;
}

QComboBox* QBColumnSelectionPopupWidget::aggregateComboBox() const {
    return d->ui.aggregateComboBox;
}

int* QBColumnSelectionPopupWidget::selectedKey() const {
    return d->selectedKey;
}

void QBColumnSelectionPopupWidget::setAggregateVisible(bool isVisible) {
    d->ui.aggregateWidget->setVisible(isVisible);
}

void QBColumnSelectionPopupWidget::setUseColumnSourceOption(bool isUsed) {
    d->content.setOffersStars(isUsed);
}

void QBColumnSelectionPopupWidget::setTextOnly() {
    d->ui.tabWidget->setTabVisible(TreeTab, false);
    d->ui.tabWidget->setCurrentIndex(TextTab);
}

void QBColumnSelectionPopupWidget::setExpression(const QString& text) {
    d->textAtFirst = text;
    d->ui.plainTextEdit->setPlainText(text);
    d->ui.tabWidget->setCurrentIndex(TextTab);
}

void QBColumnSelectionPopupWidget::prepareSourceColumnNodes() {
    d->content.show(QBColumnChoice::SelectFields);
}

void QBColumnSelectionPopupWidget::prepareConditionNodes() {
    d->content.show(QBColumnChoice::Fields);
}

void QBColumnSelectionPopupWidget::prepareColumnPickerNodes() {
    d->content.show(QBColumnChoice::PickedFields);
}

void QBColumnSelectionPopupWidget::prepareSourceNodes() {
    d->content.show(QBColumnChoice::Sources);
}

void QBColumnSelectionPopupWidget::addIdentifierComponent(
    const Component::SQL::SQLIdentifierSourceComponent* source,
    QList<QBIdentifierChoiceItemData>* listed, bool withStar,
    const std::function<void(QTreeWidgetItem*)>& onItem) {
    d->content.addTable(source, listed, withStar, onItem);
}

void QBColumnSelectionPopupWidget::addSubqueryComponent(
    const Component::SQL::SQLSubquerySourceComponent* source, QList<QBIdentifierChoiceItemData>*,
    bool withStar, const std::function<void(QTreeWidgetItem*)>& onItem) {
    d->content.addSubquery(source, withStar, onItem);
}

void QBColumnSelectionPopupWidget::changeEvent(QEvent* event) {
    if (event->type() == QEvent::LanguageChange) {
        d->retranslate();
        d->content.show(d->content.choice());
    }
    QWidget::changeEvent(event);
}

/// No focus proxy: the Tab key would come back to that instead of to the first widget.
void QBColumnSelectionPopupWidget::focusInEvent(QFocusEvent* event) {
    QWidget* const receiver =
        d->isOnTree() ? static_cast<QWidget*>(d->ui.treeWidget) : d->ui.plainTextEdit;
    receiver->setFocus(event->reason());
}

void QBColumnSelectionPopupWidget::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    d->content.catchUp();
    // The tree has its size only afterwards.
    QTimer::singleShot(0, this, [this] { d->tree.scrollToSelected(); });
}

// ---- the answer -----------------------------------------------------------------------------

bool QBColumnSelectionPopupWidget::Private::isOfColumnList() const {
    return isOf(QBColumnChoice::SelectFields) || isOf(QBColumnChoice::PickedFields);
}

std::string QBColumnSelectionPopupWidget::Private::aggregate() const {
    return ui.aggregateComboBox->currentText().trimmed().toStdString();
}

bool QBColumnSelectionPopupWidget::Private::hasOtherAggregate() const {
    return edited.kind == EditedChoice::Field && aggregate() != edited.aggregateFunction;
}

/// A field that does not show, or that nothing was chosen in place of, is kept.
bool QBColumnSelectionPopupWidget::Private::isEditedFieldKept() const {
    if (edited.kind != EditedChoice::Field) return false;
    const ChoiceRow* const selected = tree.selectedRow();
    return !selected || (editedRow && selected->isSameChoice(*editedRow));
}

bool QBColumnSelectionPopupWidget::hasChoice() const {
    if (d->isOnTree()) return d->tree.selectedRow() || d->hasOtherAggregate();
    return !d->isOfColumnList() || !expressionText().trimmed().isEmpty();
}

bool QBColumnSelectionPopupWidget::hasChanged() const {
    if (!d->isOnTree()) return expressionText() != d->textAtFirst;
    const ChoiceRow* const selected = d->tree.selectedRow();
    const bool isOther = selected && !(d->editedRow && selected->isSameChoice(*d->editedRow));
    return isOther || d->hasOtherAggregate();
}

QBChosenColumn QBColumnSelectionPopupWidget::chosenColumn() const {
    QBChosenColumn chosen;
    if (!hasChoice()) return chosen;
    if (!d->isOnTree()) {
        chosen.kind = QBChosenColumn::Expression;
        chosen.expression = expressionText().toStdString();
        return chosen;
    }
    chosen.kind = QBChosenColumn::Field;
    chosen.aggregateFunction = d->aggregate();
    if (d->isEditedFieldKept()) chosen.editedColumnId = d->edited.columnId;
    if (const ChoiceRow* const row = d->tree.selectedRow()) putInto(chosen, *row);
    return chosen;
}

QBIdentifierChoiceItemData QBColumnSelectionPopupWidget::chosenSource() const {
    const ChoiceRow* const row = d->isOnTree() ? d->tree.selectedRow() : nullptr;
    return row && row->kind == ChoiceKind::Object ? row->data : QBIdentifierChoiceItemData();
}

QString QBColumnSelectionPopupWidget::expressionText() const {
    return d->ui.plainTextEdit->toPlainText();
}

}  // namespace QB
