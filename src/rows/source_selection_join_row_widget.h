#pragma once

#include <memory>

#include "rows/row_interfaces.h"
#include "rows/statement_row_widget.h"

namespace Ui {
class QBSourceSelectionJoinRowWidget;
}

namespace QB {

/// A join of the FROM clause, in one line: its kind and its condition or USING list.
/// Component: SQLJoinSourceNodeComponent.
class QBSourceSelectionJoinRowWidget : public QBStatementRowWidget,
                                       public IQBNestedListRowWidgetDeleteSupported {
    Q_OBJECT

public:
    QBSourceSelectionJoinRowWidget(Component::AbstractQueryComponent* component,
                                   QBDatabaseInfo info, const std::string& schema, QWidget* parent);
    ~QBSourceSelectionJoinRowWidget() override;

    QBNestedListRowWidget* clone() override;
    void slotOnComponentChanged() override;

    /// Marks the condition as invalid and says why; empty, as at first: it is not.
    void setConditionFault(const QString& fault);

    /// Where the choice of the kind opens.
    QBLabel* joinLabel() const;
    /// Where the condition is edited; hidden for a comma.
    QBLabel* conditionLabel() const;

    QBLabel* deleteLabel() override;

Q_SIGNALS:
    void deleteButtonClicked();
    void signalEditJoinTypeRequested();
    void signalEditConditionRequested();

private:
    void showKeptCondition(const Component::SQL::SQLJoinSourceNodeComponent* join);

    QString m_conditionFault;
    const std::unique_ptr<Ui::QBSourceSelectionJoinRowWidget> m_ui;
};

}  // namespace QB
