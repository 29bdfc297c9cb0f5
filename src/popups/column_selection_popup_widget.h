#pragma once

#include <QStringList>
#include <QWidget>
#include <functional>
#include <memory>

#include "model/components.h"
#include "popups/column_choice.h"

class QComboBox;
class QPlainTextEdit;
class QTabWidget;
class QTreeWidget;
class QTreeWidgetItem;

namespace QB {

class QBPanelWidget;

/// The chooser that opens when a row needs a database object, a field or free text. Tab 0 is a
/// tree with a filter, tab 1 a text. What the tree lists is asked of the panel
/// (IQBColumnChoiceHost). It never changes the model: the panel reads it on acceptance.
/// Thread: main.
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
    QTreeWidget* treeWidget() const;
    QPlainTextEdit* plainTextEdit() const;
    QComboBox* aggregateComboBox() const;

    void setAggregateVisible(bool isVisible);
    /// Offers a star below each source.
    void setUseColumnSourceOption(bool isUsed);
    /// Goes to tab 1 with @p text in it.
    void setExpression(const QString& text);

    void prepareSourceColumnNodes();
    void prepareConditionNodes();
    void prepareColumnPickerNodes();
    void prepareSourceNodes();
    void addIdentifierComponent(const Component::SQL::SQLIdentifierSourceComponent* source,
                                QList<QBIdentifierChoiceItemData>* data, bool withStar,
                                const std::function<void(QTreeWidgetItem*)>& onItem);
    void addSubqueryComponent(const Component::SQL::SQLSubquerySourceComponent* source,
                              QList<QBIdentifierChoiceItemData>* data, bool withStar,
                              const std::function<void(QTreeWidgetItem*)>& onItem);

    /// Tab 0 with a selectable item selected, or tab 1. An item that is merely current, such as the
    /// heading of a schema, is no choice.
    bool hasChoice() const;
    /// For a panel of columns or conditions; Nothing without a choice.
    QBChosenColumn chosenColumn() const;
    /// For the panel of sources, on tab 0: schema and object; empty names without a choice.
    QBIdentifierChoiceItemData chosenSource() const;
    /// The text of tab 1.
    QString expressionText() const;

Q_SIGNALS:
    /// An item that can be chosen was clicked, double clicked or activated by key; or Ctrl+Return
    /// in the text. Once for each.
    void chosen();

private:
    class Private;
    const std::unique_ptr<Private> d;
};

}  // namespace QB
