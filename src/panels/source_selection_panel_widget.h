#pragma once

#include <QStringList>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "popups/column_choice_host.h"
#include "popups/panel_popup.h"
#include "rows/row_list_panel_widget.h"
#include "widgets/per_layer.h"

class QPlainTextEdit;

namespace Ui {
class QBSourceSelectionPanelWidget;
}

namespace QB {

class QBColumnSelectionPopupWidget;
class QBJoinSelectionPopupWidget;
class SourceEdits;
enum class SourcePlace;
struct SourceJoinChoice;
struct TextLanguage;

/// Edits the FROM clause as a list of rows: tables, free texts and subqueries with the joins
/// between them, and brackets. A subquery opens as a layer.
/// Thread: main.
class QB_EXPORT QBSourceSelectionPanelWidget : public QBRowListPanelWidget,
                                               public IQBColumnChoiceHost {
    Q_OBJECT

public:
    using Source = Component::SQL::SQLAbstractSourceComponent;
    using Join = Component::SQL::SQLJoinSourceNodeComponent;
    using Expression = Component::SQL::SQLAnyExpressionSourceComponent;
    using Subquery = Component::SQL::SQLSubquerySourceComponent;

    explicit QBSourceSelectionPanelWidget(QWidget* parent = nullptr);
    ~QBSourceSelectionPanelWidget() override;

    /// Also marks joins whose condition names a table out of their sight, though no table is gone.
    void checkInvalidComponents() override;
    /// Subqueries made of a typed text count only after the panel was left once.
    bool hasInvalidComponents() const override;
    void panelBecomeInactive() override;

    /// Whether a source that is put before row @p row, or at the end of its group, needs a kind of
    /// join: there is one before it then.
    bool shouldShowJoinPanel(int row, bool insert) const;
    /// Whether something can be inserted before that row: not before the end of a bracket.
    bool allowInsert(int row) const;
    /// The sources that the condition of the join in @p row can name; none for a negative row.
    QList<Source*> obtainJoinConditionRelatedComponents(int row);
    /// The schemas of the statement's tables in order of appearance, the current one left out.
    QStringList obtainExtraSchemaList() const;

    QBColumnChoice columnChoice() const override { return QBColumnChoice::Sources; }
    std::vector<Source*> choiceSources() const override { return {}; }

    int rowKind(int row) const override;
    QBNestedListRowWidget* createRowWidget(int row, QWidget* parent) override;

public Q_SLOTS:
    void slotAddRow() override;
    void slotInsertRow() override;
    void slotAddBracketRow() override;
    void slotInsertBracketRow() override;
    void slotRemoveSelectedRow() override;
    void slotEditSelectedRowAlias() override;
    void slotEditSelectedRowIdentifier();
    void slotEditSelectedRowJoinType();
    void slotEditJoinCondition();
    void slotConvertToSubquery();
    void slotOpenSubquery();
    void showCellContextMenu(const QPoint& position) override;

protected:
    std::unique_ptr<QBComponentsListLayout::Impl> createLayout() override;
    void renewRoot() override { m_schemaLeftOut.reset(); }
    void markRow(QBNestedListRowWidget* widget, const Item& item) override;
    bool needsCheck(void* sender,
                    const QSet<TopLevelQueryComponentElementEnum>& elements) const override;
    void adjustLayers(int currentLayer) override {
        m_invalidComponentsPerLayer.adjustTo(currentLayer);
    }
    bool isPopupOpen() const override { return m_popup.isOpen(); }
    void cancelPopup() override { m_popup.cancel(); }
    QBRowKey popupRow() const override { return m_popupRow; }
    void changeEvent(QEvent* event) override;

private:
    /// Where a popup is about to add something.
    struct Place {
        QBRowKey row;
        SourcePlace place;
    };

    void retranslate();
    TextLanguage language() const;
    const std::string& schemaLeftOut();
    int validityOf(const Component::AbstractQueryComponent* component) const;
    /// The component of the current row, if it is of that kind and the user may act.
    template <typename Kind>
    Kind* currentForAction();
    template <typename Kind>
    Kind* componentAt(int row) const;

    /// Runs @p edit as one of the panel's own, and tells what it did to conditions.
    void apply(const std::function<int(SourceEdits&)>& edit);
    /// The same for the row of @p key, if it is still there and of that kind; for the answers of
    /// popups and menus.
    template <typename Kind>
    void applyTo(QBRowKey key, const std::function<void(SourceEdits&, int row, Kind*)>& edit);

    void popupForAddValueComponent(bool insert);
    void addBracketComponent(bool insert);
    Place placeOfNew(int row, bool insert, bool withJoin);
    QBColumnSelectionPopupWidget* makeSourceChooser(Component::AbstractQueryComponent* edited);
    QPlainTextEdit* openChoosers(const Place& place, const std::optional<SourceJoinChoice>& join,
                                 const QString& text = {});
    void openAt(const Place& place, QWidget* content, std::function<void()> accepted);
    void addChosen(const Place& place, QBColumnSelectionPopupWidget* chooser,
                   QBJoinSelectionPopupWidget* joins);
    void addSource(const Place& place, std::unique_ptr<Source> source,
                   const std::optional<SourceJoinChoice>& join);
    void replaceByChosen(QBRowKey key, QBColumnSelectionPopupWidget* chooser);
    std::unique_ptr<Source> makeSource(QBColumnSelectionPopupWidget* chooser, QString* errorOut);
    void updateComponent(Source* source, QBColumnSelectionPopupWidget* chooser, QString* errorOut);
    void fetchIdentifierForComponent(const Source* source);

    std::unique_ptr<Subquery> convertExpressionToSubquery(const Expression& expression,
                                                          QString* error);
    void editSubqueryAsPlaintext(QBRowKey key, const QString& text);
    void editOnCondition(QBRowKey key, Join* join);
    // These return what is wrong with the text, in words; empty if nothing.
    QString takeAlias(QBRowKey key, const QString& typed);
    QString takeUsingList(QBRowKey key, const QString& typed);
    QString takeSubqueryText(QBRowKey key, const QString& typed);
    QBPopupAnchorFinder atRow(QBRowKey key, const std::function<QWidget*(QWidget*)>& partOf);
    void openLayerOf(Subquery* subquery, int row);
    void addActionsOfKind(QMenu* menu, QBRowKey key);
    void addBracketActions(QMenu* menu);
    void changeBrackets(bool isGrouping);

    const std::unique_ptr<Ui::QBSourceSelectionPanelWidget> m_ui;
    /// By id, for each layer.
    PerLayer<std::map<long, int>> m_invalidComponentsPerLayer;
    std::set<long> m_freshSubqueries;  // ids
    std::optional<std::string> m_schemaLeftOut;
    QBRowKey m_popupRow;
    QBPanelPopup m_popup;  // last, so that it goes before what its answers use
};

}  // namespace QB
