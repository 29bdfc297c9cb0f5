#pragma once

#include <QTimer>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "model/export.h"
#include "model/vocabulary.h"
#include "widgets/panel_widget.h"

namespace QB {

class QBLoadingIndicatorWidget;
namespace Component {
class AbstractQueryComponent;
class AbstractTopLevelQueryComponent;
}  // namespace Component

/// Shows the SQL text of the query as it stands and marks the part that belongs to the row or
/// diagram item with the focus.
///
/// The text is generated on a dispatched thread, at most once for each tick of a timer and only
/// while the panel is shown; a change during a run is taken up by the next one. The engine, the
/// statement and the panel may go away meanwhile. Main thread only.
class QB_EXPORT QBAbstractQueryPreviewPanelWidget : public QBPanelWidget {
    Q_OBJECT

public:
    enum HighlightType {
        HighlightTypeFocusedComponent = 1,
    };

    /// Where the components of the last text stand in it, in bytes. The addresses serve as keys
    /// only: what they pointed at may be gone.
    using ComponentRanges = std::map<const Component::AbstractQueryComponent*, QBRange>;

    explicit QBAbstractQueryPreviewPanelWidget(QWidget* parent = nullptr);
    ~QBAbstractQueryPreviewPanelWidget() override;

    /// Starts a generation if the query has changed since the last one and none is running.
    void updatePreviewQuery();

    bool needsUpdateQuery() const { return m_needsUpdateQuery; }
    void setNeedsUpdateQuery(bool needsUpdate) { m_needsUpdateQuery = needsUpdate; }

    bool showsCurrentLayerOnly() const { return m_showsCurrentLayerOnly; }

    void markFocusedComponent(Component::AbstractQueryComponent* component, bool focused);
    /// Marks the ranges of all focused components that the last text has, possibly none.
    void highlightAllFocusedComponent();

public Q_SLOTS:
    /// Shows @p query, UTF-8, in the place of the earlier text.
    virtual void setPreviewQuery(std::string query) = 0;
    /// Marks @p ranges of the text shown, in bytes, instead of those marked before.
    virtual void highlightText(HighlightType type, std::vector<QBRange> ranges) = 0;

public:
    /// Another layer is the current one; see QBTopLevelElementPanelWidget.
    virtual void topLevelQueryComponentLayerChanged(
        Component::AbstractTopLevelQueryComponent* poppedLayer);

public Q_SLOTS:
    /// Disables the panel and lays the ring over it, or takes both back. What had the keyboard
    /// focus gets it back, unless something else has taken it. A short time of loading is not
    /// painted: while a user types, the panel shall not flicker.
    void setLoading(bool loading);
    /// True: the text of the layer under edit; false: the whole statement.
    void setShowsCurrentLayerOnly(bool currentLayerOnly);

protected:
    /// Puts what a subclass shows below the loading ring.
    /// Ownership: the panel takes @p content.
    void setContent(QWidget* content);

    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    using ComponentIds = std::map<const Component::AbstractQueryComponent*, long>;
    struct Generation;
    struct Result;

    void connectEngine();
    void forgetFocus();
    void forgetFocusOf(const Component::AbstractQueryComponent* component);
    Component::AbstractTopLevelQueryComponent* shownStatement() const;
    static void run(const Generation& generation);
    static void generateText(const Generation& generation, Result& result);
    void finishGeneration(const Generation& generation, bool isEngineAlive, const Result& result);
    void rememberFocus();
    void giveFocusBack();

    QTimer m_timer;
    bool m_needsUpdateQuery = false;
    bool m_showsCurrentLayerOnly = false;
    ComponentRanges m_componentRanges;
    ComponentIds m_componentIds;                // of the same components
    ComponentIds m_focusedIds;                  // after an undo these stand at other addresses
    QBLoadingIndicatorWidget* m_loadingWidget;  // not owned: a child
    QTimer m_unpaintedTimer;                    // runs while loading is not painted yet
    bool m_isGenerating = false;
    QPointer<QWidget> m_focusedBeforeLoading;
};

}  // namespace QB
