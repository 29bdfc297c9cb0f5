#include "frame/highlighting_query_preview_panel_widget.h"

#include <QClipboard>
#include <QEvent>
#include <QGuiApplication>
#include <QPushButton>
#include <QVBoxLayout>
#include <utility>

#include "engine/engine_linux.h"
#include "frame/sql_text_view.h"
#include "platform/tolk/text_ids.h"
#include "platform/tolk/tolk.h"

namespace QB {

QBHighlightingQueryPreviewPanelWidget::QBHighlightingQueryPreviewPanelWidget(QWidget* parent)
    : QBAbstractQueryPreviewPanelWidget(parent)
    , m_textView(new QBSqlTextView)
    , m_copyButton(new QPushButton) {
    m_textView->setObjectName(QStringLiteral("textEdit"));
    m_copyButton->setObjectName(QStringLiteral("copyButton"));
    m_copyButton->setAutoDefault(false);
    m_copyButton->setEnabled(false);
    connect(m_copyButton, &QPushButton::clicked, this,
            &QBHighlightingQueryPreviewPanelWidget::copyQuery);

    auto* content = new QWidget;
    auto* column = new QVBoxLayout(content);
    column->setContentsMargins(0, 0, 0, 0);
    column->addWidget(m_textView);
    column->addWidget(m_copyButton, 0, Qt::AlignRight);
    setContent(content);
    localizeControls();
}

void QBHighlightingQueryPreviewPanelWidget::setPreviewQuery(std::string query) {
    if (engine() != nullptr) m_textView->setFamily(engine()->databaseType());
    m_textView->setSqlText(query);
    m_query = std::move(query);
    m_copyButton->setEnabled(!m_query.empty());
}

void QBHighlightingQueryPreviewPanelWidget::highlightText(HighlightType type,
                                                          std::vector<QBRange> ranges) {
    if (type != HighlightTypeFocusedComponent) return;
    for (QBRange& range : ranges)
        range = widenedOverIndentation(m_query, range);
    m_textView->setMarks(documentSpans(m_query, ranges));
}

void QBHighlightingQueryPreviewPanelWidget::copyQuery() const {
    QGuiApplication::clipboard()->setText(QString::fromStdString(m_query));
}

void QBHighlightingQueryPreviewPanelWidget::changeEvent(QEvent* event) {
    QBAbstractQueryPreviewPanelWidget::changeEvent(event);
    if (event->type() == QEvent::LanguageChange) localizeControls();
}

void QBHighlightingQueryPreviewPanelWidget::localizeControls() {
    m_textView->setAccessibleName(Tolk::localize(Tolk::TextQueryPreview));
    m_copyButton->setText(Tolk::localize(Tolk::TextCopyQuery));
    m_copyButton->setToolTip(Tolk::localize(Tolk::TextCopyQueryHint));
    m_copyButton->setAccessibleName(Tolk::localize(Tolk::TextCopyQueryHint));
}

}  // namespace QB
