#include "conditions/row_selection_limit_panel_widget.h"

#include <QApplication>
#include <QKeyEvent>
#include <QLineEdit>
#include <QPointer>
#include <QToolTip>
#include <algorithm>
#include <limits>
#include <optional>

#include "engine/engine_linux.h"
#include "platform/tolk/text_ids.h"
#include "platform/tolk/tolk.h"
#include "ui_row_selection_limit_panel_widget.h"

namespace QB {
namespace {

constexpr int noValue = -1;
constexpr int largestValue = std::numeric_limits<int>::max();

QString shownText(int value, unsigned prompt) {
    if (value != noValue) return QString::number(value);
    return QLatin1Char('<') + Tolk::localize(prompt) + QLatin1Char('>');
}

/// @p value counted on; nothing counts as the number before 0.
int stepped(int value, int step) {
    if (step < 0) return value == noValue ? noValue : std::max(value - 1, 0);
    return value == largestValue ? largestValue : value + 1;
}

/// 1, -1, or 0 for another key.
int stepOfKey(int key) {
    if (key == Qt::Key_Up) return 1;
    return key == Qt::Key_Down ? -1 : 0;
}

/// What @p text says; empty for anything that is no value.
std::optional<int> valueOfText(const QString& text) {
    if (text.isEmpty()) return noValue;
    bool isNumber = false;
    const int value = text.toInt(&isNumber);
    if (!isNumber || value < 0) return std::nullopt;
    return value;
}

QString refusal() {
    return Tolk::localizeWithArgs(Tolk::TextRowLimitRefused, largestValue);
}

void tellRefusal(QLineEdit* line) {
    line->setAccessibleDescription(refusal());
    QToolTip::showText(line->mapToGlobal(line->rect().bottomLeft()), refusal(), line);
}

int widthOf(const QLabel* label, const QString& text) {
    return label->fontMetrics().horizontalAdvance(text);
}

}  // namespace

QBRowSelectionIntValidator::QBRowSelectionIntValidator(QObject* parent)
    : QIntValidator(0, largestValue, parent) {
    QLocale plain = QLocale::c();
    plain.setNumberOptions(QLocale::RejectGroupSeparator | QLocale::OmitGroupSeparator);
    setLocale(plain);
}

QValidator::State QBRowSelectionIntValidator::validate(QString& input, int& position) const {
    return input.isEmpty() ? Acceptable : QIntValidator::validate(input, position);
}

QBRowSelectionLimitPanelWidget::QBRowSelectionLimitPanelWidget(QWidget* parent)
    : QBTopLevelElementPanelWidget(parent)
    , ui(std::make_unique<Ui::QBRowSelectionLimitPanelWidget>())
    , m_popup(this) {
    ui->setupUi(this);
    setupUi();
    connect(this, &QBPanelWidget::engineSet, this,
            [this] { topLevelQueryComponentLayerChanged(nullptr); });
}

QBRowSelectionLimitPanelWidget::~QBRowSelectionLimitPanelWidget() = default;

void QBRowSelectionLimitPanelWidget::setupUi() {
    setBackgroundRole(QPalette::Base);
    setAutoFillBackground(true);
    applyPalette();
    for (QBLabel* label : {ui->clicklabel_offset, ui->clicklabel_rowCount}) {
        connect(label, &QBLabel::clicked, this, &QBRowSelectionLimitPanelWidget::editValue);
        // A right edge goes before a centre.
        label->setAlignment(Qt::AlignRight | Qt::AlignHCenter | Qt::AlignVCenter);
        label->setClickable(true);
        label->setFocusPolicy(Qt::StrongFocus);
        label->installEventFilter(this);
    }
    ui->refusalLabel->setLabelColour(LabelColour::Invalid);
    ui->refusalLabel->hide();
    setFocusProxy(ui->clicklabel_offset);
    localizeControls();
}

void QBRowSelectionLimitPanelWidget::localizeControls() {
    ui->label_offset->setText(Tolk::localize(Tolk::TextRowOffset) + QLatin1Char(':'));
    ui->label_rowCount->setText(Tolk::localize(Tolk::TextRowCount) + QLatin1Char(':'));
    updateDisplay();
    ui->refusalLabel->setText(refusal());

    // The two lines are layouts of their own; they shall look like one table all the same.
    const int titles =
        std::max(ui->label_offset->sizeHint().width(), ui->label_rowCount->sizeHint().width());
    for (QLabel* title : {ui->label_offset, ui->label_rowCount})
        title->setMinimumWidth(titles);
    int values = 0;
    for (QBLabel* label : {ui->clicklabel_offset, ui->clicklabel_rowCount})
        for (const QString& text :
             {QString::number(largestValue), shownText(noValue, Tolk::TextRowOffsetPrompt),
              shownText(noValue, Tolk::TextRowCountPrompt)})
            values = std::max(values, widthOf(label, text + QLatin1Char(' ')));
    for (QBLabel* label : {ui->clicklabel_offset, ui->clicklabel_rowCount})
        label->setMinimumWidth(values);
}

/// The colours of a list, as the other clauses are lists.
void QBRowSelectionLimitPanelWidget::applyPalette() {
    QPalette palette = QApplication::palette("qtreeview");
    palette.setBrush(QPalette::WindowText, palette.brush(QPalette::Text));
    setPalette(palette);
}

// ---- What the statement says

const ELEMSQLLimitExpr* QBRowSelectionLimitPanelWidget::limit() const {
    if (engine() == nullptr) return nullptr;
    const auto* statement = dynamic_cast<const Component::SQL::SQLSelectStmtComponent*>(
        engine()->currentTopLevelQueryComponent());
    return statement == nullptr ? nullptr : statement->limitExpr;
}

int QBRowSelectionLimitPanelWidget::shownValue(const QBLabel* label) const {
    const ELEMSQLLimitExpr* shown = limit();
    if (shown == nullptr) return noValue;
    return label == ui->clicklabel_offset ? shown->offset : shown->rowCount;
}

void QBRowSelectionLimitPanelWidget::updateDisplay() {
    const ELEMSQLLimitExpr* shown = limit();
    ui->refusalLabel->hide();
    ui->percentLabel->setVisible(shown != nullptr && shown->isPercent);
    showValue(ui->clicklabel_offset, shownValue(ui->clicklabel_offset), Tolk::TextRowOffsetPrompt,
              Tolk::localize(Tolk::TextRowOffset));
    showValue(ui->clicklabel_rowCount, shownValue(ui->clicklabel_rowCount),
              Tolk::TextRowCountPrompt, Tolk::localize(Tolk::TextRowCount));
}

void QBRowSelectionLimitPanelWidget::showValue(QBLabel* label, int value, unsigned prompt,
                                               const QString& title) {
    label->setText(shownText(value, prompt));
    label->setLabelColour(value == noValue ? LabelColour::Placeholder : LabelColour::Value);
    const bool isPercent = label == ui->clicklabel_rowCount && !ui->percentLabel->isHidden();
    label->setAccessibleName(title + QLatin1String(": ") + label->fullText() +
                             (isPercent ? QLatin1String(" %") : QLatin1String()));
    label->setAccessibleDescription(QString());
}

void QBRowSelectionLimitPanelWidget::relatedElementModified(
    void*, const QSet<TopLevelQueryComponentElementEnum>&) {
    if (!m_isModifying) updateDisplay();
}

void QBRowSelectionLimitPanelWidget::topLevelQueryComponentLayerChanged(
    Component::AbstractTopLevelQueryComponent*) {
    const auto* current = engine() == nullptr ? nullptr : engine()->currentTopLevelQueryComponent();
    if (current == nullptr || current->id() != m_popupStatementId) m_popup.cancel();
    for (QBLabel* label : {ui->clicklabel_offset, ui->clicklabel_rowCount})
        label->forgetPress();
    updateDisplay();
}

void QBRowSelectionLimitPanelWidget::panelBecomeInactive() {
    m_popup.cancel();
}

// ---- Editing

bool QBRowSelectionLimitPanelWidget::mayAct() const {
    return !m_popup.isOpen() && !m_isModifying && limit() != nullptr && !engine()->isParsingQuery();
}

void QBRowSelectionLimitPanelWidget::editValue() {
    auto* label = qobject_cast<QBLabel*>(sender());
    if (label != nullptr && mayAct()) openLine(label);
}

void QBRowSelectionLimitPanelWidget::openLine(QBLabel* label) {
    const long statementId = engine()->currentTopLevelQueryComponent()->id();
    const int value = shownValue(label);
    m_popupStatementId = statementId;
    QLineEdit* line = m_popup.openLine(
        value == noValue ? QString() : QString::number(value), label,
        [this, label, statementId](const QString& text) { takeText(label, statementId, text); });
    if (line == nullptr) return;
    line->setValidator(new QBRowSelectionIntValidator(line));
    line->setAccessibleName(label == ui->clicklabel_offset ? Tolk::localize(Tolk::TextRowOffset)
                                                           : Tolk::localize(Tolk::TextRowCount));
    line->installEventFilter(this);
    connect(line, &QLineEdit::inputRejected, line, [line] { tellRefusal(line); });
}

/// The label asks at any time; the statement that the line was opened for may have gone.
void QBRowSelectionLimitPanelWidget::takeText(QBLabel* label, long statementId,
                                              const QString& text) {
    if (!mayAct() || engine()->currentTopLevelQueryComponent()->id() != statementId) return;
    const std::optional<int> value = valueOfText(text);
    // Beside the value: a click outside, with which it came, would hide a tooltip.
    ui->refusalLabel->setVisible(!value);
    if (!value) return label->setAccessibleDescription(refusal());
    setValue(label, *value);
}

void QBRowSelectionLimitPanelWidget::setValue(const QBLabel* label, int value) {
    const QPointer<QBRowSelectionLimitPanelWidget> self(this);
    m_isModifying = true;
    engine()->modifyInTopLevelQueryComponentElement<ELEMSQLLimitExpr*>(
        ElementLimit, engine()->currentTopLevelQueryComponentLayer(),
        [this, label, value](ELEMSQLLimitExpr* changed) {
            if (label == ui->clicklabel_offset) changed->offset = value;
            if (label == ui->clicklabel_rowCount) changed->rowCount = value;
            return true;
        },
        this);
    if (!self) return;  // who was told may have done anything
    m_isModifying = false;
    // The notification may have come inside, where it was passed over, or comes later.
    updateDisplay();
}

bool QBRowSelectionLimitPanelWidget::stepLabel(QBLabel* label, int step) {
    if (step == 0 || !mayAct()) return false;
    const int value = shownValue(label);
    if (stepped(value, step) != value) setValue(label, stepped(value, step));
    return true;
}

bool QBRowSelectionLimitPanelWidget::pressLineKey(QLineEdit* line, int key) {
    const int step = stepOfKey(key);
    const std::optional<int> value = valueOfText(line->text());
    if (step == 0) {
        const bool isAnswer = key == Qt::Key_Return || key == Qt::Key_Enter;
        if (isAnswer && !value) tellRefusal(line);
        return isAnswer && !value;
    }
    const int next = stepped(value.value_or(noValue), step);
    line->setText(next == noValue ? QString() : QString::number(next));
    return true;
}

bool QBRowSelectionLimitPanelWidget::eventFilter(QObject* watched, QEvent* event) {
    auto* label = qobject_cast<QBLabel*>(watched);
    if (label != nullptr && (event->type() == QEvent::FocusIn || event->type() == QEvent::FocusOut))
        label->setCurrentPart(event->type() == QEvent::FocusIn);
    if (event->type() != QEvent::KeyPress)
        return QBTopLevelElementPanelWidget::eventFilter(watched, event);
    const int key = static_cast<QKeyEvent*>(event)->key();
    auto* line = qobject_cast<QLineEdit*>(watched);
    if (line != nullptr) return pressLineKey(line, key);
    return label != nullptr && stepLabel(label, stepOfKey(key));
}

void QBRowSelectionLimitPanelWidget::changeEvent(QEvent* event) {
    QBTopLevelElementPanelWidget::changeEvent(event);
    const auto type = event->type();
    if (type == QEvent::ApplicationPaletteChange || type == QEvent::StyleChange) applyPalette();
    if (type == QEvent::LanguageChange || type == QEvent::FontChange) localizeControls();
}

}  // namespace QB
