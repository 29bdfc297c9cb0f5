#pragma once

#include <QIntValidator>
#include <memory>

#include "model/export.h"
#include "popups/panel_popup.h"
#include "widgets/panel_widget.h"

class QLineEdit;

namespace Ui {
class QBRowSelectionLimitPanelWidget;
}

namespace QB {

class ELEMSQLLimitExpr;
class QBLabel;

/// Takes a number of rows as a program writes it, in every locale: digits without group
/// separators. Nothing at all is acceptable, too, so that a value can be cleared.
class QBRowSelectionIntValidator : public QIntValidator {
    Q_OBJECT

public:
    /// From 0 on.
    explicit QBRowSelectionIntValidator(QObject* parent = nullptr);

    State validate(QString& input, int& position) const override;
};

/// Edits the row limit of the current layer's statement: how many rows are left out and how many
/// are wanted. What else a limit can say (a percentage, ties) comes from parsed text only; the
/// panel leaves it as it is and shows the first.
///
/// The two values are labels that work as buttons. The arrow keys count a value up and down, on the
/// label and in the line that it opens.
/// Thread: main.
class QB_EXPORT QBRowSelectionLimitPanelWidget : public QBTopLevelElementPanelWidget {
    Q_OBJECT

public:
    explicit QBRowSelectionLimitPanelWidget(QWidget* parent = nullptr);
    ~QBRowSelectionLimitPanelWidget() override;

    /// Shows what the statement says; the prompts without one.
    void updateDisplay();

    void relatedElementModified(void* sender,
                                const QSet<TopLevelQueryComponentElementEnum>& elements) override;
    /// Also closes a line that was opened for another statement.
    void topLevelQueryComponentLayerChanged(
        Component::AbstractTopLevelQueryComponent* poppedLayer) override;
    /// Closes an open line without taking its text.
    void panelBecomeInactive() override;

public Q_SLOTS:
    /// Opens a line for the value of the label that sends the signal; nothing while one is open,
    /// without a statement, and during a parse.
    void editValue();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    void setupUi();
    void localizeControls();
    void applyPalette();
    void showValue(QBLabel* label, int value, unsigned prompt, const QString& title);
    const ELEMSQLLimitExpr* limit() const;
    bool mayAct() const;
    int shownValue(const QBLabel* label) const;
    void openLine(QBLabel* label);
    void takeText(QBLabel* label, long statementId, const QString& text);
    void setValue(const QBLabel* label, int value);
    bool stepLabel(QBLabel* label, int step);
    bool pressLineKey(QLineEdit* line, int key);

    const std::unique_ptr<Ui::QBRowSelectionLimitPanelWidget> ui;
    bool m_isModifying = false;
    long m_popupStatementId = -1;  // that of the statement which the line was opened for
    QBPanelPopup m_popup;
};

}  // namespace QB
