#pragma once

#include "frame/abstract_query_preview_panel_widget.h"

class QTextEdit;

namespace QB {

/// The plain preview: the text and nothing else; it marks nothing. Another text leaves what is
/// selected and scrolled to where it can.
class QB_EXPORT QBSimpleQueryPreviewPanelWidget : public QBAbstractQueryPreviewPanelWidget {
    Q_OBJECT

public:
    explicit QBSimpleQueryPreviewPanelWidget(QWidget* parent = nullptr);

    void setPreviewQuery(std::string query) override;
    void highlightText(HighlightType type, std::vector<QBRange> ranges) override;

protected:
    void changeEvent(QEvent* event) override;

private:
    void localizeControls();

    QTextEdit* m_textEdit;  // not owned: a child
    QString m_text;         // as it was set
};

}  // namespace QB
