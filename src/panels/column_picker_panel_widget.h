#pragma once

#include <memory>

#include "panels/column_list_panel_widget.h"

namespace Ui {
class QBColumnPickerPanelWidget;
}

namespace QB {

/// The panel of GROUP BY or of ORDER BY: setRelatedElements() says which. Rows of ORDER BY have a
/// direction.
/// Thread: main.
class QB_EXPORT QBColumnPickerPanelWidget : public QBColumnListPanelWidget {
    Q_OBJECT

public:
    explicit QBColumnPickerPanelWidget(QWidget* parent = nullptr);
    ~QBColumnPickerPanelWidget() override;

    /// And the SELECT list, whose columns can be picked.
    QSet<TopLevelQueryComponentElementEnum> relatedElements() const override;
    QBColumnChoice columnChoice() const override { return QBColumnChoice::PickedFields; }

public Q_SLOTS:
    /// Steps the direction of the current row: none, ascending, descending, and none again. Not in
    /// GROUP BY.
    void slotEditSelectedRowOrder();

protected:
    QString promptText() const override;
    QBNestedListRowWidget* createFieldRow(Component::AbstractQueryComponent* component,
                                          QWidget* parent) override;
    void markFieldRow(QBNestedListRowWidget* widget, const Column& column, int reason) override;
    void setupExpressionRow(QBNestedListAnyExpressionRowWidget* widget) override;
    void settleExtraData(Column& column, OrderDirection direction) override;
    OrderDirection directionOf(const Column& column) const override;
    void addMenuActions(QMenu* menu) override;
    void retranslate() override;
    bool needsCheck(void* sender,
                    const QSet<TopLevelQueryComponentElementEnum>& elements) const override;

private:
    bool isOrderBy() const { return firstRelatedElement() == ElementOrderBy; }
    void setDirection(QBRowKey key, OrderDirection direction);

    const std::unique_ptr<Ui::QBColumnPickerPanelWidget> m_ui;
};

}  // namespace QB
