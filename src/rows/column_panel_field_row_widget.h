#pragma once

#include <memory>

#include "rows/row_interfaces.h"
#include "rows/statement_row_widget.h"

namespace Ui {
class QBColumnPanelFieldRowWidget;
}

namespace QB {

/// A column of the SELECT list and its alias.
/// Component: SQLFieldColumnComponent or SQLAnyExpressionColumnComponent.
class QBColumnPanelFieldRowWidget : public QBStatementRowWidget,
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
    bool m_isAliasWanted = true;
    const std::unique_ptr<Ui::QBColumnPanelFieldRowWidget> m_ui;
};

}  // namespace QB
