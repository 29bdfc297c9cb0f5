#pragma once

#include <memory>

#include "rows/nested_list_row_widget.h"
#include "rows/row_database.h"
#include "rows/row_interfaces.h"

namespace Ui {
class QBColumnPanelFieldRowWidget;
}

namespace QB {

/// A column of the SELECT list and its alias.
/// Component: SQLFieldColumnComponent or SQLAnyExpressionColumnComponent.
class QBColumnPanelFieldRowWidget : public QBNestedListRowWidget,
                                    public IQBNestedListRowWidgetAddRowSupported,
                                    public IQBNestedListRowWidgetDeleteSupported,
                                    public IQBNestedListRowWidgetEditAliasSupported {
    Q_OBJECT

public:
    QBColumnPanelFieldRowWidget(Component::AbstractQueryComponent* component, QBDatabaseInfo info,
                                const std::string& schema, QWidget* parent);
    ~QBColumnPanelFieldRowWidget() override;

    QBNestedListRowWidget* clone() override;
    void slotOnComponentChanged() override;

    /// The server and the schema that may be left out; see schemaLeftOut().
    void setDatabase(QBDatabaseInfo info, const std::string& schema);

    /// Why the row is marked as invalid, one of Tools::Validation::InvalidReason; -1: it is not.
    void setInvalidReason(int reason);
    int invalidReason() const { return m_invalidReason; }

    /// Where the chooser of the column opens.
    QBLabel* fieldLabel() const;

    QBLabel* addRowLabel() override;
    QBLabel* deleteLabel() override;
    QBLabel* aliasLabel() override;
    /// A wildcard shows no alias in any case: it cannot have one.
    void setAliasVisible(bool isVisible) override;

Q_SIGNALS:
    void addRowButtonClicked();
    void deleteButtonClicked();
    void aliasLabelClicked();
    void identifierLabelClicked();

private:
    RowDatabase m_database;
    int m_invalidReason = -1;
    bool m_isAliasWanted = true;
    const std::unique_ptr<Ui::QBColumnPanelFieldRowWidget> m_ui;
};

}  // namespace QB
