#pragma once

#include <QStringList>
#include <QWidget>
#include <functional>
#include <memory>

#include "model/components.h"
#include "popups/column_choice.h"

class QComboBox;
class QLineEdit;
class QPlainTextEdit;
class QTabWidget;
class QTreeWidget;
class QTreeWidgetItem;

namespace QB {

class QBPanelWidget;

/// The chooser that opens when a row needs a database object, a field or free text. Tab 0 is a
/// tree with a filter, tab 1 a text. What the tree lists is asked of the panel
/// (IQBColumnChoiceHost). It never changes the model: the panel reads it on acceptance.
///
/// The tree stays up to date while it is open: objects that the host fetches meanwhile appear, and
/// sources that leave the statement go. What was chosen, or is edited, is selected whenever it
/// shows. Items have the roles of ChoiceTree.
/// The focus goes on to the tree, or to the text on tab 1. What is typed into the tree goes to the
/// filter, Down leads from there into the tree, and Return in either accepts; without a selection
/// Return in the filter takes the first match. Thread: main.
class QBColumnSelectionPopupWidget : public QWidget {
    Q_OBJECT

public:
    /// @p panel gives the engine and outlives the widget. @p extraSchemaList, which may be null, is
    /// read at once: schemas to list behind the current one. @p editedComponent, null when adding,
    /// is read at once: what to select. @p selectedKey is stored for the caller.
    QBColumnSelectionPopupWidget(QBPanelWidget* panel, QStringList* extraSchemaList,
                                 Component::AbstractQueryComponent* editedComponent,
                                 int* selectedKey, QWidget* parent);
    ~QBColumnSelectionPopupWidget() override;

    QTabWidget* tabWidget() const;
    QLineEdit* filterLineEdit() const;
    QTreeWidget* treeWidget() const;
    QPlainTextEdit* plainTextEdit() const;
    QComboBox* aggregateComboBox() const;
    int* selectedKey() const;

    /// At first it shows where columns are chosen for a list.
    void setAggregateVisible(bool isVisible);
    /// Offers a star below each source.
    void setUseColumnSourceOption(bool isUsed);
    /// Only tab 1, for what can be nothing but a text.
    void setTextOnly();
    /// Goes to tab 1 with @p text in it.
    void setExpression(const QString& text);

    /// Each fills the tree anew; that of the panel was called by the constructor.
    void prepareSourceColumnNodes();
    void prepareConditionNodes();
    void prepareColumnPickerNodes();
    void prepareSourceNodes();
    /// Append a source with its fields, as they are known or as soon as they are. @p listed, which
    /// may be null, lists the sources that are there already, each as qualifiers, name and alias:
    /// one that is among them is left out, another one is added to them.
    /// @p onItem, which may be empty, is called with the item.
    void addIdentifierComponent(const Component::SQL::SQLIdentifierSourceComponent* source,
                                QList<QBIdentifierChoiceItemData>* listed, bool withStar,
                                const std::function<void(QTreeWidgetItem*)>& onItem);
    /// Likewise; no two subqueries are the same, so @p listed does not matter.
    void addSubqueryComponent(const Component::SQL::SQLSubquerySourceComponent* source,
                              QList<QBIdentifierChoiceItemData>* listed, bool withStar,
                              const std::function<void(QTreeWidgetItem*)>& onItem);

    /// Tab 0 with a selectable item selected, or with another aggregate for the field that is
    /// edited; or tab 1, for a list of columns only with a text. An item that is merely current,
    /// such as the heading of a schema, is no choice.
    bool hasChoice() const;
    /// Whether what is there now differs from what the chooser was opened with. Panels need not
    /// modify anything otherwise.
    bool hasChanged() const;
    /// For a panel of columns or conditions; Nothing without a choice.
    QBChosenColumn chosenColumn() const;
    /// For the panel of sources, on tab 0: schema and object; empty names without a choice.
    QBIdentifierChoiceItemData chosenSource() const;
    /// The text of tab 1.
    QString expressionText() const;

Q_SIGNALS:
    /// An item that can be chosen was clicked, double clicked or activated by key; or Ctrl+Return
    /// in the text, or Return in the aggregate. Once for each, and only with a choice.
    void chosen();

protected:
    void changeEvent(QEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void showEvent(QShowEvent* event) override;

private:
    class Private;
    const std::unique_ptr<Private> d;
};

}  // namespace QB
