#pragma once

#include <memory>

#include "rows/row_interfaces.h"
#include "rows/statement_row_widget.h"

namespace Ui {
class QBNestedListSubqueryRowWidget;
}

namespace QB {

/// A derived table: its statement in one line, and its alias.
/// Component: SQLSubquerySourceComponent.
class QBNestedListSubqueryRowWidget : public QBStatementRowWidget,
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

    const std::unique_ptr<Ui::QBNestedListSubqueryRowWidget> m_ui;
};

}  // namespace QB
