#pragma once

#include <memory>

#include "rows/nested_list_row_widget.h"
#include "rows/row_interfaces.h"

namespace Ui {
class QBNestedListCloseBracketRowWidget;
}

namespace QB {

class QBNestedListOpenBracketRowWidget;

/// The closing bracket of a group, and the logic word towards the condition behind it.
/// Component: that of the opening bracket, which is not owned either; null: none, as for a row
/// from a pool, whose bracket setComponent() names.
class QBNestedListCloseBracketRowWidget : public QBNestedListRowWidget,
                                          public IQBNestedListRowWidgetAddRowSupported,
                                          public IQBNestedListRowWidgetAddBracketSupported,
                                          public IQBNestedListRowWidgetDeleteSupported,
                                          public IQBNestedListRowWidgetEditLogicGateSupported {
    Q_OBJECT

public:
    /// @p openRow is only asked for its component; may be null.
    QBNestedListCloseBracketRowWidget(const QBNestedListOpenBracketRowWidget* openRow,
                                      QWidget* parent);
    ~QBNestedListCloseBracketRowWidget() override;

    QBNestedListRowWidget* clone() override;
    void slotOnComponentChanged() override;

    QBLabel* addRowLabel() override;
    void setAddRowVisible(bool isVisible) override;
    QBLabel* addBracketLabel() override;
    void setAddBracketVisible(bool isVisible) override;
    QBLabel* deleteLabel() override;
    void setDeleteVisible(bool isVisible) override;
    QBLabel* logicGateLabel() override;
    void setLogicGateVisible(bool isVisible) override;

Q_SIGNALS:
    void logicGateLabelClicked();
    void addRowButtonClicked();
    void addBracketButtonClicked();
    void deleteButtonClicked();

private:
    QString gateWord() const;

    const std::unique_ptr<Ui::QBNestedListCloseBracketRowWidget> m_ui;
};

}  // namespace QB
