#pragma once

#include <memory>

#include "rows/nested_list_row_widget.h"
#include "rows/row_interfaces.h"

namespace Ui {
class QBNestedListOpenBracketRowWidget;
}

namespace QB {

/// The opening bracket of a group of sources or conditions, and the NOT before a group of
/// conditions: in full colour if the group is negated, else dimmed while one can reach for it.
/// Component: SQLBracketedSourceNodeComponent or SQLBracketedConditionComponent.
class QBNestedListOpenBracketRowWidget : public QBNestedListRowWidget,
                                         public IQBNestedListRowWidgetDeleteSupported,
                                         public IQBNestedListRowWidgetNegateSupported {
    Q_OBJECT

public:
    QBNestedListOpenBracketRowWidget(Component::AbstractQueryComponent* component, QWidget* parent);
    ~QBNestedListOpenBracketRowWidget() override;

    QBNestedListRowWidget* clone() override;
    void slotOnComponentChanged() override;
    /// The NOT, null where it is only offered: a key must not hit a control instead.
    QBLabel* mainPart() const override;

    QBLabel* deleteLabel() override;
    QBLabel* negatorLabel() override;

Q_SIGNALS:
    void deleteButtonClicked();
    void negateToggleTriggered();

protected:
    void showLitControls() override;

private:
    void showNegator();

    const std::unique_ptr<Ui::QBNestedListOpenBracketRowWidget> m_ui;
};

}  // namespace QB
