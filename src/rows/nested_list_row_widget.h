#pragma once

#include <QList>
#include <QString>
#include <QWidget>

namespace QB {

class QBLabel;
namespace Component {
class AbstractQueryComponent;
}

/// One row of a list: reads its component, fills its labels and signals clicks; it never edits.
///
/// A list makes widgets only for the rows that show and uses them again for others, so a row can be
/// given another component of the same class at any time.
/// The keyboard focus stays in the list: the list moves a mark along the parts of its current row
/// and clicks them.
/// Thread: main.
class QBNestedListRowWidget : public QWidget {
    Q_OBJECT

public:
    /// @p component is not owned and may be null.
    QBNestedListRowWidget(Component::AbstractQueryComponent* component, QWidget* parent);
    ~QBNestedListRowWidget() override;

    int indentLevel() const { return m_indentLevel; }
    void setIndentLevel(int level) { m_indentLevel = level; }
    /// Logical pixels from the leading edge of the list.
    int indentPixels() const { return m_indentLevel << 4; }

    Component::AbstractQueryComponent* component() const { return m_component; }
    /// Shows another component of the same class; null: none, the row then keeps its last texts
    /// and reads nothing until the next call.
    void setComponent(Component::AbstractQueryComponent* component);

    /// A new widget of the same class over the same component, as the picture of a dragged row.
    /// Ownership: the caller's.
    virtual QBNestedListRowWidget* clone() = 0;
    /// See slotOnComponentChanged().
    virtual void refreshFromComponent();

    /// What can be clicked at present, in reading order: the clickable labels that are not hidden.
    QList<QBLabel*> parts() const;
    /// What Return and F2 click when no part is marked; null if the row has nothing to edit. The
    /// first part here.
    virtual QBLabel* mainPart() const;

    /// Marks one of parts() for the keyboard; null: none.
    void setCurrentPart(QBLabel* part);
    QBLabel* currentPart() const { return m_currentPart; }

    /// Whether the row stands on the highlight: its colours are chosen to be readable there.
    void setSelectedLook(bool isSelected);
    /// Shows the controls that otherwise only the mouse brings up: the row is the current one.
    void setCurrentLook(bool isCurrent);
    /// The row is the current one or the mouse is over it.
    bool areControlsLit() const { return m_areControlsLit; }

    /// The row read aloud: the texts of the labels that show, marks in words.
    virtual QString accessibleText() const;

public Q_SLOTS:
    /// Reads the component and fills the labels. Does nothing for a null component where the class
    /// reads one.
    virtual void slotOnComponentChanged();

Q_SIGNALS:
    /// Texts changed in a way that a list may have to tell a screen reader.
    void accessibleTextChanged();

protected:
    /// areControlsLit() has changed. Nothing here; for a row that shows more then.
    virtual void showLitControls() {}

    void enterEvent(QEvent* event) override;
    void leaveEvent(QEvent* event) override;
    /// Fills the labels again on a change of language, palette or font.
    void changeEvent(QEvent* event) override;

private:
    void updateControls();

    Component::AbstractQueryComponent* m_component;  // not owned: part of the model
    int m_indentLevel = 0;
    QBLabel* m_currentPart = nullptr;  // not owned: a child
    bool m_hasSelectedLook = false;
    bool m_hasCurrentLook = false;
    bool m_isUnderMouse = false;
    bool m_areControlsLit = false;
};

}  // namespace QB
