#pragma once

#include <memory>

#include "rows/row_interfaces.h"
#include "rows/statement_row_widget.h"

namespace Ui {
class QBNestedListAnyExpressionRowWidget;
}

namespace QB {

/// A source or column kept as free text: the text, its alias, and the direction of a column of
/// ORDER BY.
/// Component: SQLAnyExpressionSourceComponent or SQLAnyExpressionColumnComponent.
class QBNestedListAnyExpressionRowWidget : public QBStatementRowWidget,
                                           public IQBNestedListRowWidgetAddRowSupported,
                                           public IQBNestedListRowWidgetAddBracketSupported,
                                           public IQBNestedListRowWidgetDeleteSupported,
                                           public IQBNestedListRowWidgetEditAliasSupported {
    Q_OBJECT

public:
    QBNestedListAnyExpressionRowWidget(Component::AbstractQueryComponent* component,
                                       QWidget* parent);
    ~QBNestedListAnyExpressionRowWidget() override;

    QBNestedListRowWidget* clone() override;
    void slotOnComponentChanged() override;

    /// Hidden at first.
    void setOrderVisible(bool isVisible);

    /// Where the text is edited.
    QBLabel* valueLabel() const;
    QBLabel* orderLabel() const;

    QBLabel* addRowLabel() override;
    QBLabel* addBracketLabel() override;
    QBLabel* deleteLabel() override;
    QBLabel* aliasLabel() override;

Q_SIGNALS:
    void addRowButtonClicked();
    void addBracketButtonClicked();
    void deleteButtonClicked();
    void aliasLabelClicked();
    void valueLabelClicked();
    void orderLabelClicked();

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    const std::unique_ptr<Ui::QBNestedListAnyExpressionRowWidget> m_ui;
};

}  // namespace QB
