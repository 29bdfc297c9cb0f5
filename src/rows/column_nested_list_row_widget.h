#pragma once

#include <memory>

#include "rows/row_interfaces.h"
#include "rows/statement_row_widget.h"

namespace Ui {
class QBColumnNestedListRowWidget;
}

namespace QB {

/// A column of GROUP BY or ORDER BY, with its alias behind it, and its direction.
/// Component: SQLAbstractColumnComponent.
class QBColumnNestedListRowWidget : public QBStatementRowWidget,
                                    public IQBNestedListRowWidgetAddRowSupported,
                                    public IQBNestedListRowWidgetDeleteSupported {
    Q_OBJECT

public:
    QBColumnNestedListRowWidget(Component::AbstractQueryComponent* component, QBDatabaseInfo info,
                                const std::string& schema, QWidget* parent);
    ~QBColumnNestedListRowWidget() override;

    QBNestedListRowWidget* clone() override;
    void slotOnComponentChanged() override;

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
    const std::unique_ptr<Ui::QBColumnNestedListRowWidget> m_ui;
};

}  // namespace QB
