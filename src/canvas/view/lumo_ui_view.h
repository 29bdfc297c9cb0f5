#pragma once

#include <memory>

#include "platform/lumo/lumo_view.h"

namespace QB::DiagramLumo {

class DiagramAccessible;
class QBLumoContext;
class QBLumoDiagram;

/// The widget of the diagram: cursors, the way of the keyboard focus in and out, its ring, the
/// accessible tree, tool tips.
class QBLumoUIView : public LumoUIScrollView {
    Q_OBJECT

public:
    /// Ownership: @p parent's, or the caller's if null. @p context is not owned.
    [[nodiscard]] static QBLumoUIView* create(QBLumoContext* context, QWidget* parent);
    ~QBLumoUIView() override;

    /// A new cursor for one of the codes 32 to 37, else null. The caller owns it.
    static QCursor* cursorForCode(int code);

    /// Null until a QBLumoDiagram is active.
    QBLumoDiagram* lumoDiagram() const;
    /// After the host's theme changed: bodies and caches take the new colours.
    void applyTheme();
    /// Never null. Owned by the view.
    DiagramAccessible* accessible() const { return m_accessible.get(); }

protected:
    QBLumoUIView(QBLumoContext* context, QWidget* parent);
    QString toolTipAt(LumoPoint diagramPoint) const override;
    void paintOverlay(QPainter* painter) override;
    void changeEvent(QEvent* event) override;
    /// By Tab the focus comes to the first object, by Shift+Tab to the last.
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;

private:
    LumoRect ringPlace() const;
    void updateRing();

    std::unique_ptr<DiagramAccessible> m_accessible;
    LumoRect m_ringPlace;  // where the ring was last; a default rectangle if it was not shown
};

}  // namespace QB::DiagramLumo
