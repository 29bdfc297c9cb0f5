#pragma once

#include <memory>

#include "rows/nested_list_row_widget.h"
#include "rows/row_interfaces.h"

namespace Ui {
class QBNestedListDummyRowWidget;
}

namespace QB {

/// A place where nothing is yet: a prompt and the controls that put something there.
/// Component: none is read.
class QBNestedListDummyRowWidget : public QBNestedListRowWidget,
                                   public IQBNestedListRowWidgetAddRowSupported,
                                   public IQBNestedListRowWidgetAddBracketSupported {
    Q_OBJECT

public:
    QBNestedListDummyRowWidget(Component::AbstractQueryComponent* component, QWidget* parent);
    ~QBNestedListDummyRowWidget() override;

    QBNestedListRowWidget* clone() override;
    void slotOnComponentChanged() override;

    /// @p text without angle brackets; empty, as at first, shows no prompt. A click on the prompt
    /// is a click on the control that adds a row.
    void setPromptText(const QString& text);
    QBLabel* promptLabel() const;

    QBLabel* addRowLabel() override;
    QBLabel* addBracketLabel() override;

Q_SIGNALS:
    void addRowButtonClicked();
    void addBracketButtonClicked();

private:
    QString m_promptText;
    const std::unique_ptr<Ui::QBNestedListDummyRowWidget> m_ui;
};

}  // namespace QB
