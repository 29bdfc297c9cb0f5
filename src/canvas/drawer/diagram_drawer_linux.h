#pragma once

#include <memory>

#include "canvas/drawer/diagram_drawer.h"

class QWidget;

namespace QB {

class QBCanvasCommands;
class QBDiagramHintWidget;

/// The drawer with its widgets: the view, the hint over an empty diagram, the context menus.
class QBLumoDiagramDrawer_LINUX : public QBLumoDiagramDrawer {
public:
    QBLumoDiagramDrawer_LINUX();
    ~QBLumoDiagramDrawer_LINUX() override;

    DiagramLumo::QBLumoContext* getContext() const override;
    /// Null without a view, as is the view before setupDiagram and after its widget has gone.
    LumoControl* getControl() const override;
    DiagramLumo::QBLumoUIView* getView() const override;

    using QBLumoDiagramDrawer::setupDiagram;
    /// Makes the widget that shows it all, and calls setupDiagram(callbacks) with
    /// diagramEmptyChanged set to show and hide the hint. Once.
    /// Ownership: @p outWidget is the caller's to put into a parent; it goes before the drawer, or
    /// with it.
    virtual void setupDiagram(QWidget** outWidget, const Callbacks& callbacks);

    /// Never null after setupDiagram, until the widget goes. Owned by the view.
    QBCanvasCommands* commands() const;
    QBDiagramHintWidget* hintWidget() const;

private:
    class Menus;  // diagram_menus.h
    struct State;
    const std::unique_ptr<State> m_state;
};

}  // namespace QB
