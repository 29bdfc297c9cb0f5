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
    /// The logic word, null where it does not show: a key must not hit a control instead.
    QBLabel* mainPart() const override;

    QBLabel* addRowLabel() override;
    QBLabel* addBracketLabel() override;
    QBLabel* deleteLabel() override;
    QBLabel* logicGateLabel() override;

Q_SIGNALS:
    void logicGateLabelClicked();
    void addRowButtonClicked();
    void addBracketButtonClicked();
    void deleteButtonClicked();

private:
    const std::unique_ptr<Ui::QBNestedListCloseBracketRowWidget> m_ui;
};

}  // namespace QB
