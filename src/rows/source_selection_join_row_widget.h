#pragma once

#include <memory>

#include "rows/nested_list_row_widget.h"
#include "rows/row_database.h"
#include "rows/row_interfaces.h"

namespace Ui {
class QBSourceSelectionJoinRowWidget;
}

namespace QB {

/// A join of the FROM clause, in one line: its kind and its condition or USING list.
/// Component: SQLJoinSourceNodeComponent.
class QBSourceSelectionJoinRowWidget : public QBNestedListRowWidget,
                                       public IQBNestedListRowWidgetDeleteSupported {
    Q_OBJECT

public:
    QBSourceSelectionJoinRowWidget(Component::AbstractQueryComponent* component,
                                   QBDatabaseInfo info, const std::string& schema, QWidget* parent);
    ~QBSourceSelectionJoinRowWidget() override;

    QBNestedListRowWidget* clone() override;
    void slotOnComponentChanged() override;

    /// The server and the schema that may be left out; see schemaLeftOut().
    void setDatabase(QBDatabaseInfo info, const std::string& schema);

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
    RowDatabase m_database;
    QString m_conditionFault;
    const std::unique_ptr<Ui::QBSourceSelectionJoinRowWidget> m_ui;
};

}  // namespace QB
