#include "diagrampanel/lumo_join_selection_popup_widget.h"

#include <QEvent>
#include <QKeyEvent>
#include <QPointer>
#include <QPushButton>
#include <utility>

#include "conditions/condition_builder_panel_widget.h"
#include "conditions/join_condition_panel.h"
#include "engine/engine_linux.h"
#include "layouts/source_tree_layout.h"
#include "platform/tolk/tolk.h"
#include "popups/join_choice.h"
#include "popups/join_selection_popup_widget.h"
#include "popups/panel_popup.h"
#include "rows/invalid_reason.h"
#include "rows/row_texts.h"
#include "tools/join_tools.h"
#include "tools/source_edits.h"
#include "tools/subquery_conversion.h"
#include "tools/validation_scope.h"
#include "ui_lumo_join_selection_popup_widget.h"
#include "widgets/join_words.h"
#include "widgets/plain_tool_tip.h"

namespace QB {

using namespace Component::SQL;
using Join = SQLJoinSourceNodeComponent;
using Source = SQLAbstractSourceComponent;

namespace {

/// Of the words on a button; the tooltip has all.
constexpr int mostCharacters = 30;

long idOf(const Source* source) {
    return source ? source->id() : -1;
}

/// A text as a button shows it, which would take "&" for the mark of a key.
QString onButton(const QString& text, const QPushButton* button) {
    const QFontMetrics metrics = button->fontMetrics();
    const int width = mostCharacters * metrics.averageCharWidth();
    return metrics.elidedText(text, Qt::ElideRight, width)
        .replace(QLatin1Char('&'), QLatin1String("&&"));
}

bool isReturn(const QEvent* event) {
    if (event->type() != QEvent::KeyPress) return false;
    const int key = static_cast<const QKeyEvent*>(event)->key();
    return key == Qt::Key_Return || key == Qt::Key_Enter;
}

}  // namespace

class QBLumoJoinSelectionPopupWidget::Private {
public:
    Private(QBLumoJoinSelectionPopupWidget* widget, QBEngine_LINUX* usedEngine, const Join* join,
            const Source* left, const Source* right)
        : q(widget)
        , engine(usedEngine)
        , joinId(join->id())
        , leftId(idOf(left))
        , rightId(idOf(right))
        , popup(widget) {}

    void connectEngine();
    Join* find() const;
    Join* findForAnswer() const;
    QList<Source*> sourcesInSight() const;
    TextLanguage language() const { return {engine->databaseInfo(), engine->currentSchema()}; }
    QString nameOf(long sourceId) const;

    void refresh();
    void leave();
    void showKind(const Join* join);
    void showCondition(const Join* join);

    bool isForTheLink(const QEvent* event);
    void takeKind(const SourceJoinChoice& choice);
    void editUsingList();
    QString takeUsingList(const QString& typed);

    QBLumoJoinSelectionPopupWidget* const q;
    QBEngine_LINUX* engine;  // not owned: null once it is gone
    const long joinId;
    const long leftId;
    const long rightId;
    bool isGone = false;
    bool isTouched = false;  // the user has done something in here
    Ui::QBLumoJoinSelectionPopupWidget ui;
    QBConditionBuilderPanelWidget* conditions = nullptr;  // owned by the container
    QBPanelPopup popup;  // last, so that it goes before what its answers use
};

// ---- what is edited ---------------------------------------------------------------------------

void QBLumoJoinSelectionPopupWidget::Private::connectEngine() {
    const QBEngineSignalEmitter* const emitter = engine->signalEmitter();
    using Emitter = QBEngineSignalEmitter;
    connect(emitter, &Emitter::topLevelQueryComponentElementModified, q, [this] { refresh(); });
    connect(emitter, &Emitter::topLevelQueryComponentLayerChanged, q, [this] { refresh(); });
    connect(emitter, &Emitter::databaseTypeChanged, q, [this] { refresh(); });
    connect(emitter, &QObject::destroyed, q, [this] {
        engine = nullptr;
        refresh();
    });
}

Join* QBLumoJoinSelectionPopupWidget::Private::find() const {
    if (isGone || !engine) return nullptr;
    auto* const join = dynamic_cast<Join*>(findSource(engine, joinId));
    return join && join->joinType != SQLJoinTypeComma ? join : nullptr;
}

/// A parse under way replaces what is there.
Join* QBLumoJoinSelectionPopupWidget::Private::findForAnswer() const {
    return engine && !engine->isParsingQuery() ? find() : nullptr;
}

QList<Source*> QBLumoJoinSelectionPopupWidget::Private::sourcesInSight() const {
    SQLSelectStmtComponent* const statement = Tools::Validation::currentStatement(engine);
    if (!statement) return {};
    auto rows = std::make_unique<SourceEdits::Rows>(&statement->sourceExpr->root);
    rows->rebuildItems();
    QBComponentsListLayout layout(std::move(rows));
    const auto& items = layout.items();
    int row = 0;
    while (row < int(items.size()) &&
           idOf(dynamic_cast<const Source*>(items[std::size_t(row)]->component)) != joinId)
        ++row;
    const std::unique_ptr<std::vector<Source*>> seen(
        Tools::SQL::joinConditionRelatedSources(&layout, row));
    return seen ? QList<Source*>(seen->begin(), seen->end()) : QList<Source*>();
}

/// The alias, or what the source is without one.
QString QBLumoJoinSelectionPopupWidget::Private::nameOf(long sourceId) const {
    const Source* const source = findSource(engine, sourceId);
    if (!source) return {};
    if (!source->alias.empty()) return QString::fromStdString(source->alias);
    if (const auto* table = dynamic_cast<const SQLIdentifierSourceComponent*>(source))
        return QString::fromStdString(table->name);
    if (const auto* text = dynamic_cast<const SQLAnyExpressionSourceComponent*>(source))
        return oneLine(text->expression);
    const auto* subquery = dynamic_cast<const SQLSubquerySourceComponent*>(source);
    return subquery ? oneLine(subqueryText(subquery->subquery, language())) : QString();
}

// ---- what is shown ----------------------------------------------------------------------------

void QBLumoJoinSelectionPopupWidget::Private::refresh() {
    const Join* const join = find();
    if (!join) return leave();
    ui.leftTableLabel->setText(nameOf(leftId));
    ui.rightTableLabel->setText(nameOf(rightId));
    showKind(join);
    showCondition(join);
}

/// What is open over it goes first, and changes nothing.
void QBLumoJoinSelectionPopupWidget::Private::leave() {
    if (std::exchange(isGone, true)) return;
    popup.cancel();
    q->setEnabled(false);
    Q_EMIT q->goneAway();
}

void QBLumoJoinSelectionPopupWidget::Private::showKind(const Join* join) {
    const bool isCustom = join->joinType == SQLJoinTypeCustom;
    const QString word =
        isCustom && join->joinText.empty() ? joinTitle(SQLJoinTypeCustom) : joinWord(join);
    ui.joinButton->setIcon(joinPixmap(join->joinType));
    ui.joinButton->setText(onButton(word, ui.joinButton));
    ui.joinButton->setToolTip(plainToolTip(isCustom ? word : joinDescription(join->joinType)));
    ui.joinButton->setAccessibleName(
        Tolk::localizeWithArgs(Tolk::TextJoinKindIs, word.toUtf8().constData()));
}

void QBLumoJoinSelectionPopupWidget::Private::showCondition(const Join* join) {
    const QString columns = oneLine(usingListText(join));
    const QString prompt = Tolk::localize(Tolk::TextPromptUsingColumns);
    const QString list = columns.isEmpty() ? QStringLiteral("USING <%1...>").arg(prompt)
                                           : QStringLiteral("USING (%1)").arg(columns);
    ui.usingButton->setText(onButton(list, ui.usingButton));
    ui.usingButton->setToolTip(plainToolTip(list));
    ui.usingButton->setAccessibleName(list);
    ui.usingButton->setVisible(join->isUsing);
    conditions->setVisible(!join->isUsing);
    conditions->setRelatedComponents(sourcesInSight());
    ui.conditionBuilderContainerWidget->setEnabled(join->needsCondition());
    const QString hint = join->needsCondition() ? joinLackText(join, engine->databaseType())
                                                : Tolk::localize(Tolk::TextJoinTakesNoCondition);
    ui.hintLabel->setText(hint);
    ui.hintLabel->setVisible(!hint.isEmpty());
    QWidget* const edited = join->isUsing ? static_cast<QWidget*>(ui.usingButton) : conditions;
    q->setFocusProxy(join->needsCondition() ? edited : ui.joinButton);
}

// ---- answers ----------------------------------------------------------------------------------

void QBLumoJoinSelectionPopupWidget::Private::takeKind(const SourceJoinChoice& choice) {
    if (!findForAnswer() || refuseWithoutWords(choice)) return;
    const QPointer<QBLumoJoinSelectionPopupWidget> self(q);
    editSource(engine, q, joinId, [&](SourceEdits& edits, int row) { edits.setJoin(row, choice); });
    if (self) refresh();  // the notification may come later
}

void QBLumoJoinSelectionPopupWidget::Private::editUsingList() {
    const Join* const join = findForAnswer();
    if (!join || !join->isUsing) return;
    const auto atButton = [this]() -> std::optional<QBPopupAnchor> {
        const Join* const edited = findForAnswer();
        if (!edited || !edited->isUsing) return std::nullopt;
        return QBPopupAnchor(ui.usingButton);
    };
    popup.editText(QString::fromStdString(usingListText(join)), atButton,
                   [this](const QString& typed) { return takeUsingList(typed); });
}

QString QBLumoJoinSelectionPopupWidget::Private::takeUsingList(const QString& typed) {
    const Join* const join = findForAnswer();
    if (!join || !join->isUsing) return {};
    UsingReading reading = readUsingList(typed.trimmed().toStdString(), language());
    if (!reading.error.isEmpty()) return reading.error;
    const QPointer<QBLumoJoinSelectionPopupWidget> self(q);
    editSource(engine, q, joinId, [&](SourceEdits& edits, int row) {
        edits.setUsingList(row, std::move(reading.list));
    });
    if (self) refresh();
    return {};
}

/// A link opens the editor a while after it was clicked. A Delete that comes first was meant for
/// the link: it must not take a condition.
bool QBLumoJoinSelectionPopupWidget::Private::isForTheLink(const QEvent* event) {
    const bool isKey = event->type() == QEvent::KeyPress;
    const bool isDelete = isKey && static_cast<const QKeyEvent*>(event)->key() == Qt::Key_Delete;
    isTouched |= (isKey && !isDelete) || event->type() == QEvent::MouseButtonPress;
    return isDelete && !isTouched;
}

// ---- the widget -------------------------------------------------------------------------------

QBLumoJoinSelectionPopupWidget::QBLumoJoinSelectionPopupWidget(QBEngine_LINUX* engine, Join* join,
                                                               Source* left, Source* right,
                                                               QWidget* parent)
    : QWidget(parent), d(std::make_unique<Private>(this, engine, join, left, right)) {
    d->ui.setupUi(this);
    d->conditions = makeJoinConditionPanel(engine, join, d->sourcesInSight(),
                                           d->ui.conditionBuilderContainerWidget);
    d->ui.containerLayout->addWidget(d->conditions);
    auto* const rows = d->conditions->rowView();
    for (QWidget* const watched :
         {static_cast<QWidget*>(d->ui.joinButton), static_cast<QWidget*>(d->ui.usingButton),
          static_cast<QWidget*>(rows), rows->viewport()})
        watched->installEventFilter(this);
    connect(d->ui.joinButton, &QPushButton::clicked, this,
            &QBLumoJoinSelectionPopupWidget::slotEditJoinType);
    connect(d->ui.usingButton, &QPushButton::clicked, this, [this] { d->editUsingList(); });
    connect(d->conditions, &QBConditionBuilderPanelWidget::rootLost, this,
            [this] { d->refresh(); });
    d->connectEngine();
    d->refresh();
}

QBLumoJoinSelectionPopupWidget::~QBLumoJoinSelectionPopupWidget() = default;

void QBLumoJoinSelectionPopupWidget::slotEditJoinType() {
    const Join* const join = d->findForAnswer();
    if (!join || d->popup.isOpen()) return;
    auto* const kinds =
        makeJoinChooser({join->joinType, join->joinText}, d->engine->databaseType(), false);
    kinds->setAcceptCheck([this] { return d->findForAnswer() != nullptr; });
    connect(kinds, &QBJoinSelectionPopupWidget::chosen, this, [this] { d->popup.accept(); });
    d->popup.open(kinds, d->ui.joinButton, [this, kinds] { d->takeKind(chosenJoin(kinds)); });
}

/// The rows come with the first showing.
void QBLumoJoinSelectionPopupWidget::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    if (!event->spontaneous()) d->conditions->rowView()->selectOnly(0);
}

/// In a popup no button is the default one, which Return would press.
bool QBLumoJoinSelectionPopupWidget::eventFilter(QObject* watched, QEvent* event) {
    if (d->isForTheLink(event)) return true;
    auto* const button = qobject_cast<QPushButton*>(watched);
    if (!button || !isReturn(event)) return QWidget::eventFilter(watched, event);
    button->click();
    return true;
}

void QBLumoJoinSelectionPopupWidget::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (!d->conditions) return;  // in the making
    if (event->type() == QEvent::LanguageChange || event->type() == QEvent::PaletteChange)
        d->refresh();
}

}  // namespace QB
