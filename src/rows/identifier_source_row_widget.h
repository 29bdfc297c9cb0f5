#pragma once

#include <memory>

#include "rows/row_interfaces.h"
#include "rows/statement_row_widget.h"

namespace Ui {
class QBIdentifierSourceRowWidget;
}

namespace QB {

/// A table, view or stored query of the FROM clause: its name and its alias.
/// Component: SQLIdentifierSourceComponent.
class QBIdentifierSourceRowWidget : public QBStatementRowWidget,
                                    public IQBNestedListRowWidgetAddRowSupported,
                                    public IQBNestedListRowWidgetAddBracketSupported,
                                    public IQBNestedListRowWidgetDeleteSupported,
                                    public IQBNestedListRowWidgetEditAliasSupported {
    Q_OBJECT

public:
    QBIdentifierSourceRowWidget(Component::AbstractQueryComponent* component, QBDatabaseInfo info,
                                const std::string& schema, QWidget* parent);
    ~QBIdentifierSourceRowWidget() override;

    QBNestedListRowWidget* clone() override;
    void slotOnComponentChanged() override;

    /// Where the chooser of the table opens.
    QBLabel* identifierLabel() const;

    QBLabel* addRowLabel() override;
    QBLabel* addBracketLabel() override;
    QBLabel* deleteLabel() override;
    QBLabel* aliasLabel() override;

Q_SIGNALS:
    void signalEditIdentifierRequested();
    void addRowButtonClicked();
    void addBracketButtonClicked();
    void deleteButtonClicked();
    void aliasLabelClicked();

private:
    const std::unique_ptr<Ui::QBIdentifierSourceRowWidget> m_ui;
};

}  // namespace QB
