#pragma once

#include <QAccessible>
#include <QAccessibleWidget>

#include "canvas/view/diagram_accessible.h"

namespace QB::DiagramLumo {

class QBLumoBaseItemBody;
class QBLumoItem;
class QBLumoJoinLink;
class QBLumoTextBasedItemBody;

/// The view. Its role is LayeredPane, that of a desktop with icons: a container whose children may
/// cover one another and can be selected. Canvas stands for one drawing, whose inside nobody
/// enters.
class AccessibleDiagramView : public QAccessibleWidget {
public:
    explicit AccessibleDiagramView(QBLumoUIView* view);

    QString text(QAccessible::Text kind) const override;
    QAccessible::State state() const override;
    int childCount() const override;
    QAccessibleInterface* child(int index) const override;
    int indexOfChild(const QAccessibleInterface* child) const override;
    QAccessibleInterface* childAt(int x, int y) const override;
    QAccessibleInterface* focusChild() const override;

private:
    DiagramAccessible* tree() const;
    /// The widgets over the canvas and the bars around it.
    std::vector<QAccessibleInterface*> widgets() const;
};

/// An item, a link or a part of an item. Invalid as soon as that has left the diagram; all other
/// calls then give nothing.
class AccessiblePart : public QAccessibleInterface, public QAccessibleActionInterface {
public:
    AccessiblePart(DiagramAccessible* tree, const DiagramAccessible::Place& place);
    ~AccessiblePart() override;

    const DiagramAccessible::Place& place() const { return m_place; }
    /// In the diagram's space, as painted; of a row that is scrolled out where it would be.
    virtual LumoRect rectInDiagram() const = 0;

    bool isValid() const override;
    QObject* object() const override { return nullptr; }
    QWindow* window() const override;
    void* interface_cast(QAccessible::InterfaceType type) override;
    QAccessibleInterface* parent() const override;
    QAccessibleInterface* child(int index) const override;
    int childCount() const override;
    int indexOfChild(const QAccessibleInterface* child) const override;
    QAccessibleInterface* childAt(int x, int y) const override;
    QString text(QAccessible::Text kind) const override;
    void setText(QAccessible::Text, const QString&) override {}
    QRect rect() const override;
    QAccessible::State state() const override;

    // Actions. They may destroy what they act on, and this interface with it.
    QString localizedActionName(const QString& name) const override;
    QStringList keyBindingsForAction(const QString& name) const override;

    /// Of their own kind: select alone, select too or no more, begin or end a link.
    static const QString& selectAction();
    static const QString& selectTooAction();
    static const QString& drawLinkAction();

protected:
    /// Null once it has left.
    QBLumoObject* owner() const;
    DiagramAccessible* tree() const { return m_tree; }
    virtual QString name() const = 0;
    virtual QString description() const;
    bool hasFocus() const;
    void takeFocus() const;
    void showMenu() const;
    void pressKey(int32_t keyCode) const;
    /// Select, select too, focus or menu: true if @p name was one of these.
    bool doCommonAction(const QString& name) const;

private:
    DiagramAccessible* const m_tree;  // not owned: takes this interface away before it goes
    const DiagramAccessible::Place m_place;
};

class AccessibleItem : public AccessiblePart {
public:
    using AccessiblePart::AccessiblePart;
    QAccessible::Role role() const override { return QAccessible::Grouping; }
    LumoRect rectInDiagram() const override;
    bool isValid() const override;
    QAccessibleInterface* child(int index) const override;
    int childCount() const override;
    int indexOfChild(const QAccessibleInterface* child) const override;
    QAccessibleInterface* childAt(int x, int y) const override;
    QAccessible::State state() const override;
    QStringList actionNames() const override;
    void doAction(const QString& name) override;
    QString localizedActionName(const QString& name) const override;

protected:
    QString name() const override;
    QString description() const override;

private:
    QBLumoBaseItemBody* body() const;
    int firstRow() const;
};

class AccessibleLink : public AccessiblePart {
public:
    using AccessiblePart::AccessiblePart;
    /// What it does counts: it is pressed to open its editor.
    QAccessible::Role role() const override { return QAccessible::Button; }
    /// Around the symbol, where the link is pressed.
    LumoRect rectInDiagram() const override;
    bool isValid() const override;
    QAccessible::State state() const override;
    QStringList actionNames() const override;
    void doAction(const QString& name) override;
    QString localizedActionName(const QString& name) const override;

protected:
    QString name() const override;

private:
    QBLumoJoinLink* link() const;
};

class AccessibleRow : public AccessiblePart {
public:
    using AccessiblePart::AccessiblePart;
    QAccessible::Role role() const override { return QAccessible::CheckBox; }
    LumoRect rectInDiagram() const override;
    bool isValid() const override;
    QAccessible::State state() const override;
    QStringList actionNames() const override;
    void doAction(const QString& name) override;

protected:
    QString name() const override;
    QString description() const override;

private:
    QBLumoBaseItemBody* body() const;
    const std::string* field() const;  // null for the wildcard
    bool isTicked() const;
    void drawLink() const;
};

class AccessibleEditButton : public AccessiblePart {
public:
    using AccessiblePart::AccessiblePart;
    QAccessible::Role role() const override { return QAccessible::Button; }
    LumoRect rectInDiagram() const override;
    bool isValid() const override;
    QStringList actionNames() const override;
    void doAction(const QString& name) override;

protected:
    QString name() const override;

private:
    QBLumoTextBasedItemBody* body() const;
};

}  // namespace QB::DiagramLumo
