#pragma once

#include <memory>

#include "rows/nested_list_row_widget.h"
#include "rows/row_database.h"
#include "rows/row_interfaces.h"

namespace Ui {
class QBColumnNestedListRowWidget;
}

namespace QB {

/// A column of GROUP BY or ORDER BY, with its alias behind it, and its direction.
/// Component: SQLAbstractColumnComponent.
class QBColumnNestedListRowWidget : public QBNestedListRowWidget,
                                    public IQBNestedListRowWidgetAddRowSupported,
                                    public IQBNestedListRowWidgetDeleteSupported {
    Q_OBJECT

public:
    QBColumnNestedListRowWidget(Component::AbstractQueryComponent* component, QBDatabaseInfo info,
                                const std::string& schema, QWidget* parent);
    ~QBColumnNestedListRowWidget() override;

    QBNestedListRowWidget* clone() override;
    void slotOnComponentChanged() override;

    /// The server and the schema that may be left out; see schemaLeftOut().
    void setDatabase(QBDatabaseInfo info, const std::string& schema);

    /// Why the row is marked as invalid, one of Tools::Validation::InvalidReason; -1: it is not.
    void setInvalidReason(int reason);
    int invalidReason() const { return m_invalidReason; }

    /// Shown at first.
    void setOrderVisible(bool isVisible);

    /// Where the chooser of the column opens.
    QBLabel* identifierLabel() const;
    QBLabel* orderLabel() const;

    QBLabel* addRowLabel() override;
    QBLabel* deleteLabel() override;

Q_SIGNALS:
    void addRowButtonClicked();
    void deleteButtonClicked();
    void identifierLabelClicked();
    void orderLabelClicked();

private:
    RowDatabase m_database;
    int m_invalidReason = -1;
    const std::unique_ptr<Ui::QBColumnNestedListRowWidget> m_ui;
};

}  // namespace QB
