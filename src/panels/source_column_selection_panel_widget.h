#pragma once

#include <memory>
#include <vector>

#include "panels/column_list_panel_widget.h"
#include "panels/select_options.h"

class QButtonGroup;

namespace Ui {
class QBSourceColumnSelectionPanelWidget;
}

namespace QB {

/// The panel of the SELECT list: its columns with their aliases, and a check box for each option
/// word.
/// Thread: main.
class QB_EXPORT QBSourceColumnSelectionPanelWidget : public QBColumnListPanelWidget {
    Q_OBJECT

public:
    explicit QBSourceColumnSelectionPanelWidget(QWidget* parent = nullptr);
    ~QBSourceColumnSelectionPanelWidget() override;

    QBColumnChoice columnChoice() const override { return QBColumnChoice::SelectFields; }

public Q_SLOTS:
    /// Both act on the current row.
    void slotMoveUpSelectedRows() { slotMoveUpSelectedRow(); }
    void slotMoveDownSelectedRows() { slotMoveDownSelectedRow(); }
    void slotEditSelectedRowAlias() override;
    /// Stores the words of the checked boxes.
    void slotExtraOptionChanged();

protected:
    QString promptText() const override;
    QBNestedListRowWidget* createFieldRow(Component::AbstractQueryComponent* component,
                                          QWidget* parent) override;
    void markFieldRow(QBNestedListRowWidget* widget, const Column& column, int reason) override;
    void setupExpressionRow(QBNestedListAnyExpressionRowWidget* widget) override;
    void setupChooser(QBColumnSelectionPopupWidget* chooser) override;
    void retranslate() override;
    void renewRoot() override;
    void rowsRefreshed() override;

private:
    /// Shows the option words of the family and those of the statement. A box that is still wanted
    /// stays, with its focus.
    void setupExtraOptions(DatabaseType family);
    void showOptions(const std::vector<QBSelectOption>& options);
    QAbstractButton* createBox(const QString& option);
    void explainBox(QAbstractButton* box);
    void showEffect(QAbstractButton* box);
    std::vector<QBSelectOption> shownOptions() const;
    void storeOptions(const std::vector<QBSelectOption>& options);
    void setAlias(QBRowKey key, const QString& alias);

    const std::unique_ptr<Ui::QBSourceColumnSelectionPanelWidget> m_ui;
    long m_optionsOf = -1;                    // the statement whose options are shown
    QStringList m_uncheckedOptions;           // what its user took back and may want again
    QButtonGroup* const m_extraOptionsGroup;  // not owned: a child
};

}  // namespace QB
