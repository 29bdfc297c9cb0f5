#pragma once

#include "platform/lumo/lumo_view.h"

namespace QB::DiagramLumo {

class QBLumoContext;
class QBLumoDiagram;

/// The widget of the diagram: cursors, keyboard, focus ring, accessible tree, tool tips, the
/// overview map.
class QBLumoUIView : public LumoUIScrollView {
    Q_OBJECT

public:
    /// Ownership: @p parent's, or the caller's if null. @p context is not owned.
    [[nodiscard]] static QBLumoUIView* create(QBLumoContext* context, QWidget* parent);

    /// A new cursor for one of the codes 32 to 37, else null. The caller owns it.
    static QCursor* cursorForCode(int code);

    /// Null until a QBLumoDiagram is active.
    QBLumoDiagram* lumoDiagram() const;
    /// After the host's theme changed: bodies and caches take the new colours.
    void applyTheme();

protected:
    QBLumoUIView(QBLumoContext* context, QWidget* parent);
    QString toolTipAt(LumoPoint diagramPoint) const override;
    void paintOverlay(QPainter* painter) override;
    void changeEvent(QEvent* event) override;
};

}  // namespace QB::DiagramLumo
