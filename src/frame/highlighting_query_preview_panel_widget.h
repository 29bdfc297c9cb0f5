#pragma once

#include "frame/abstract_query_preview_panel_widget.h"

class QPushButton;

namespace QB {

class QBSqlTextView;

/// The preview with colours: keywords, strings, numbers and comments by the rules of the engine's
/// family, a mark on the focused components, and a button that copies the whole text.
/// Main thread only.
class QB_EXPORT QBHighlightingQueryPreviewPanelWidget : public QBAbstractQueryPreviewPanelWidget {
    Q_OBJECT

public:
    explicit QBHighlightingQueryPreviewPanelWidget(QWidget* parent = nullptr);

    void setPreviewQuery(std::string query) override;
    /// The marks cover the indentation in front of a range, too.
    void highlightText(HighlightType type, std::vector<QBRange> ranges) override;

    /// Puts the whole text on the clipboard, as it was generated.
    void copyQuery() const;

protected:
    void changeEvent(QEvent* event) override;

private:
    void localizeControls();

    std::string m_query;        // UTF-8, as generated
    QBSqlTextView* m_textView;  // not owned: a child
    QPushButton* m_copyButton;  // not owned: a child
};

}  // namespace QB
