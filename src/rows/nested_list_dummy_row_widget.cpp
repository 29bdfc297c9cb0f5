#include "rows/nested_list_dummy_row_widget.h"

#include "rows/row_control.h"
#include "rows/row_texts.h"
#include "ui_nested_list_dummy_row_widget.h"

namespace QB {

QBNestedListDummyRowWidget::QBNestedListDummyRowWidget(Component::AbstractQueryComponent* component,
                                                       QWidget* parent)
    : QBNestedListRowWidget(component, parent)
    , m_ui(std::make_unique<Ui::QBNestedListDummyRowWidget>()) {
    m_ui->setupUi(this);
    connectClick(m_ui->promptLabel, this, &QBNestedListDummyRowWidget::addRowButtonClicked);
    connectControls(this);
    slotOnComponentChanged();
}

QBNestedListDummyRowWidget::~QBNestedListDummyRowWidget() = default;

QBNestedListRowWidget* QBNestedListDummyRowWidget::clone() {
    auto* twin = new QBNestedListDummyRowWidget(component(), nullptr);
    twin->setPromptText(m_promptText);
    copyVisibility(this, twin);
    return twin;
}

void QBNestedListDummyRowWidget::slotOnComponentChanged() {
    const QString text =
        m_promptText.isEmpty() ? QString() : QLatin1Char('<') + m_promptText + QLatin1Char('>');
    showRowText(m_ui->promptLabel, {text, LabelColour::Placeholder});
    m_ui->promptLabel->setClickable(!text.isEmpty());
}

void QBNestedListDummyRowWidget::setPromptText(const QString& text) {
    if (m_promptText == text) return;
    m_promptText = text;
    slotOnComponentChanged();
}

QBLabel* QBNestedListDummyRowWidget::addRowLabel() {
    return m_ui->addLabel;
}

QBLabel* QBNestedListDummyRowWidget::addBracketLabel() {
    return m_ui->addBracketLabel;
}

QBLabel* QBNestedListDummyRowWidget::promptLabel() const {
    return m_ui->promptLabel;
}

}  // namespace QB
