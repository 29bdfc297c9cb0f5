#include "rows/nested_list_row_widget.h"

#include <QEvent>
#include <QLayout>
#include <algorithm>

#include "rows/row_interfaces.h"
#include "widgets/label.h"

namespace QB {
namespace {

void collectLabels(const QWidget* widget, QList<QBLabel*>& labels);

void collectLabel(QWidget* widget, QList<QBLabel*>& labels) {
    if (widget->isHidden()) return;
    auto* label = qobject_cast<QBLabel*>(widget);
    if (label == nullptr) return collectLabels(widget, labels);
    labels << label;
}

// A layout knows the reading order, which the order of the children need not be.
void collectLabels(const QLayout* layout, QList<QBLabel*>& labels) {
    for (int i = 0; i < layout->count(); ++i) {
        QLayoutItem* item = layout->itemAt(i);
        if (item->widget() != nullptr) collectLabel(item->widget(), labels);
        if (item->layout() != nullptr) collectLabels(item->layout(), labels);
    }
}

void collectLabels(const QWidget* widget, QList<QBLabel*>& labels) {
    if (widget->layout() != nullptr) return collectLabels(widget->layout(), labels);
    for (QObject* child : widget->children()) {
        if (child->isWidgetType()) collectLabel(static_cast<QWidget*>(child), labels);
    }
}

/// Those that are not hidden, in reading order.
QList<QBLabel*> labelsOf(const QWidget* row) {
    QList<QBLabel*> labels;
    collectLabels(row, labels);
    return labels;
}

}  // namespace

QBNestedListRowWidget::QBNestedListRowWidget(Component::AbstractQueryComponent* component,
                                             QWidget* parent)
    : QWidget(parent), m_component(component) {}

QBNestedListRowWidget::~QBNestedListRowWidget() = default;

void QBNestedListRowWidget::setComponent(Component::AbstractQueryComponent* component) {
    m_component = component;
    if (component != nullptr) refreshFromComponent();
}

void QBNestedListRowWidget::refreshFromComponent() {
    slotOnComponentChanged();
}

void QBNestedListRowWidget::slotOnComponentChanged() {}

QList<QBLabel*> QBNestedListRowWidget::parts() const {
    QList<QBLabel*> parts = labelsOf(this);
    const auto isText = [](const QBLabel* label) {
        return !label->isClickable();
    };
    parts.erase(std::remove_if(parts.begin(), parts.end(), isText), parts.end());
    return parts;
}

QBLabel* QBNestedListRowWidget::mainPart() const {
    return parts().value(0);
}

void QBNestedListRowWidget::setCurrentPart(QBLabel* part) {
    if (m_currentPart == part) return;
    if (m_currentPart != nullptr) m_currentPart->setCurrentPart(false);
    m_currentPart = part;
    if (part != nullptr) part->setCurrentPart(true);
}

void QBNestedListRowWidget::setSelectedLook(bool isSelected) {
    if (m_hasSelectedLook == isSelected) return;
    m_hasSelectedLook = isSelected;
    for (QBLabel* label : findChildren<QBLabel*>())
        label->setSelectedLook(isSelected);
}

void QBNestedListRowWidget::setCurrentLook(bool isCurrent) {
    m_hasCurrentLook = isCurrent;
    updateControls();
}

void QBNestedListRowWidget::updateControls() {
    // An image fades under the mouse: on a row that is merely the current one it would read as
    // disabled.
    auto* deletable = dynamic_cast<IQBNestedListRowWidgetDeleteSupported*>(this);
    if (deletable != nullptr) deletable->deleteLabel()->setHovered(m_isUnderMouse);
    const bool isLit = m_hasCurrentLook || m_isUnderMouse;
    if (m_areControlsLit == isLit) return;
    m_areControlsLit = isLit;
    showLitControls();
}

QString QBNestedListRowWidget::accessibleText() const {
    auto* negatable = dynamic_cast<IQBNestedListRowWidgetNegateSupported*>(
        const_cast<QBNestedListRowWidget*>(this));
    const QBLabel* negator = negatable == nullptr ? nullptr : negatable->negatorLabel();
    QStringList texts;
    for (const QBLabel* label : labelsOf(this)) {
        // A dimmed NOT is offered; the row does not say it.
        const bool isOffer = label == negator && label->colour() == LabelColour::Placeholder;
        if (isOffer || label->fullText().isEmpty()) continue;
        texts << label->fullText();
        // Why it is marked as invalid.
        if (!label->accessibleDescription().isEmpty()) texts << label->accessibleDescription();
    }
    return texts.join(QLatin1Char(' '));
}

void QBNestedListRowWidget::enterEvent(QEvent* event) {
    QWidget::enterEvent(event);
    m_isUnderMouse = true;
    updateControls();
}

void QBNestedListRowWidget::leaveEvent(QEvent* event) {
    QWidget::leaveEvent(event);
    m_isUnderMouse = false;
    updateControls();
}

void QBNestedListRowWidget::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    const bool concernsTexts = event->type() == QEvent::LanguageChange ||
                               event->type() == QEvent::PaletteChange ||
                               event->type() == QEvent::FontChange;
    if (concernsTexts) slotOnComponentChanged();
}

}  // namespace QB
