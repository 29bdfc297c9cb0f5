#include "frame/simple_query_preview_panel_widget.h"

#include <QEvent>
#include <QGridLayout>
#include <QTextEdit>

#include "platform/tolk/text_ids.h"
#include "platform/tolk/tolk.h"

namespace QB {

QBSimpleQueryPreviewPanelWidget::QBSimpleQueryPreviewPanelWidget(QWidget* parent)
    : QBAbstractQueryPreviewPanelWidget(parent) {
    auto* content = new QWidget;
    auto* grid = new QGridLayout(content);
    grid->setObjectName(QStringLiteral("gridLayout"));
    grid->setContentsMargins(0, 0, 0, 0);
    m_textEdit = new QTextEdit;
    m_textEdit->setObjectName(QStringLiteral("textEdit"));
    m_textEdit->setReadOnly(true);
    m_textEdit->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    grid->addWidget(m_textEdit, 0, 0);
    setContent(content);
    localizeControls();
}

void QBSimpleQueryPreviewPanelWidget::setPreviewQuery(std::string query) {
    m_textEdit->setPlainText(QString::fromStdString(query));
}

void QBSimpleQueryPreviewPanelWidget::highlightText(HighlightType, std::vector<QBRange>) {}

void QBSimpleQueryPreviewPanelWidget::changeEvent(QEvent* event) {
    QBAbstractQueryPreviewPanelWidget::changeEvent(event);
    if (event->type() == QEvent::LanguageChange) localizeControls();
}

void QBSimpleQueryPreviewPanelWidget::localizeControls() {
    m_textEdit->setAccessibleName(Tolk::localize(Tolk::TextQueryPreview));
}

}  // namespace QB
