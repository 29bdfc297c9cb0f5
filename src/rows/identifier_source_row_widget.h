#pragma once

#include <memory>

#include "rows/nested_list_row_widget.h"
#include "rows/row_database.h"
#include "rows/row_interfaces.h"

namespace Ui {
class QBIdentifierSourceRowWidget;
}

namespace QB {

/// A table, view or stored query of the FROM clause: its name and its alias.
/// Component: SQLIdentifierSourceComponent.
class QBIdentifierSourceRowWidget : public QBNestedListRowWidget,
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

    /// The server and the schema that may be left out; see schemaLeftOut().
    void setDatabase(QBDatabaseInfo info, const std::string& schema);

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
    RowDatabase m_database;
    const std::unique_ptr<Ui::QBIdentifierSourceRowWidget> m_ui;
};

}  // namespace QB
