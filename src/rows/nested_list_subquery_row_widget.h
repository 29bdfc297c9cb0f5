#pragma once

#include <memory>

#include "rows/nested_list_row_widget.h"
#include "rows/row_database.h"
#include "rows/row_interfaces.h"

namespace Ui {
class QBNestedListSubqueryRowWidget;
}

namespace QB {

/// A derived table: its statement in one line, and its alias.
/// Component: SQLSubquerySourceComponent.
class QBNestedListSubqueryRowWidget : public QBNestedListRowWidget,
                                      public IQBNestedListRowWidgetAddRowSupported,
                                      public IQBNestedListRowWidgetAddBracketSupported,
                                      public IQBNestedListRowWidgetDeleteSupported,
                                      public IQBNestedListRowWidgetEditAliasSupported {
    Q_OBJECT

public:
    QBNestedListSubqueryRowWidget(Component::AbstractQueryComponent* component, QBDatabaseInfo info,
                                  const std::string& schema, QWidget* parent);
    ~QBNestedListSubqueryRowWidget() override;

    QBNestedListRowWidget* clone() override;
    void slotOnComponentChanged() override;

    /// The server and the current schema, by which the statement is written.
    void setDatabase(QBDatabaseInfo info, const std::string& schema);

    /// Why the row is marked as invalid, one of Tools::Validation::InvalidReason; -1: it is not.
    void setInvalidReason(int reason);
    int invalidReason() const { return m_invalidReason; }

    QBLabel* valueLabel() const;

    QBLabel* addRowLabel() override;
    QBLabel* addBracketLabel() override;
    QBLabel* deleteLabel() override;
    QBLabel* aliasLabel() override;

Q_SIGNALS:
    void signalJumpToSubqueryRequested();
    void aliasLabelClicked();
    void addRowButtonClicked();
    void addBracketButtonClicked();
    void deleteButtonClicked();

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    bool eventFilter(QObject* watched, QEvent* event) override;

    RowDatabase m_database;
    int m_invalidReason = -1;
    const std::unique_ptr<Ui::QBNestedListSubqueryRowWidget> m_ui;
};

}  // namespace QB
