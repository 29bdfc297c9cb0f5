#pragma once

#include <string>

#include "frame/abstract_query_preview_panel_widget.h"

namespace QB::Desk {

/// The SQL text of the query, generated on a worker when it is asked for. It is a preview that is
/// never shown: it learns of the engine and of every change as the visible one does. Main thread.
class BuilderText : public QBAbstractQueryPreviewPanelWidget {
    Q_OBJECT

public:
    enum class Extent { LayerUnderEdit, WholeQuery };

    BuilderText(Extent extent, QWidget* parent);

    /// ready() follows, at once if the query has not changed since it came last.
    void request();
    /// As of the last ready(), UTF-8; empty for an empty statement.
    const std::string& text() const { return m_text; }
    /// True if nothing was chosen yet, or there is no statement at all.
    bool isStatementEmpty() const;

    void setPreviewQuery(std::string query) override;
    void highlightText(HighlightType type, std::vector<QBRange> ranges) override;

Q_SIGNALS:
    void ready();

protected:
    void changeEvent(QEvent* event) override;

private:
    void answer();

    std::string m_text;
    bool m_isRequested = false;
};

}  // namespace QB::Desk
