#include "frame/simple_query_preview_panel_widget.h"

#include <QEvent>
#include <QGridLayout>
#include <QScrollBar>
#include <QTextCursor>
#include <QTextDocument>
#include <QTextEdit>
#include <algorithm>

#include "platform/tolk/text_ids.h"
#include "platform/tolk/tolk.h"
#include "widgets/fixed_width_font.h"

namespace QB {
namespace {

/// Selects from @p anchor to @p position, if that is @p selected in the new text, too.
void selectAgain(QTextEdit* edit, int anchor, int position, const QString& selected) {
    if (selected.isEmpty() || std::max(anchor, position) >= edit->document()->characterCount())
        return;
    QTextCursor cursor(edit->document());
    cursor.setPosition(anchor);
    cursor.setPosition(position, QTextCursor::KeepAnchor);
    if (cursor.selectedText() == selected) edit->setTextCursor(cursor);
}

}  // namespace

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
    // Wrapping a long line without blanks takes seconds.
    m_textEdit->setLineWrapMode(QTextEdit::NoWrap);
    m_textEdit->setFont(fixedWidthFont());
    grid->addWidget(m_textEdit, 0, 0);
    setContent(content);
    localizeControls();
}

void QBSimpleQueryPreviewPanelWidget::setPreviewQuery(std::string query) {
    const QString text = QString::fromStdString(query);
    if (text == m_text) return;
    m_text = text;
    // Read now: the cursor goes along with the change.
    const QTextCursor cursor = m_textEdit->textCursor();
    const int anchor = cursor.anchor();
    const int position = cursor.position();
    const QString selected = cursor.selectedText();
    const int horizontal = m_textEdit->horizontalScrollBar()->value();
    const int vertical = m_textEdit->verticalScrollBar()->value();
    m_textEdit->setPlainText(text);
    selectAgain(m_textEdit, anchor, position, selected);
    m_textEdit->horizontalScrollBar()->setValue(horizontal);
    m_textEdit->verticalScrollBar()->setValue(vertical);
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
