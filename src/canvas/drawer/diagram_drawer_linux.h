#pragma once

#include <memory>

#include "canvas/drawer/diagram_drawer.h"

class QPoint;
class QWidget;
struct LumoUIRightClickParam;

namespace QB {

class QBCanvasCommands;
class QBDiagramHintWidget;

/// The drawer with its widgets: the view, the hint over an empty diagram, the context menus.
class QBLumoDiagramDrawer_LINUX : public QBLumoDiagramDrawer {
public:
    QBLumoDiagramDrawer_LINUX();
    ~QBLumoDiagramDrawer_LINUX() override;

    DiagramLumo::QBLumoContext* getContext() const override;
    LumoControl* getControl() const override;
    DiagramLumo::QBLumoUIView* getView() const override;

    using QBLumoDiagramDrawer::setupDiagram;
    /// Makes the widget that shows it all, and calls setupDiagram(callbacks) with
    /// diagramEmptyChanged set to show and hide the hint.
    /// Ownership: @p outWidget is the caller's to put into a parent; it goes before the drawer, or
    /// with it.
    virtual void setupDiagram(QWidget** outWidget, const Callbacks& callbacks);

    /// Never null after setupDiagram. Owned by the view.
    QBCanvasCommands* commands() const;
    QBDiagramHintWidget* hintWidget() const;

private:
    class Menus;  // drawer/diagram_menus.h
    struct State;
    const std::unique_ptr<State> m_state;
};

}  // namespace QB
