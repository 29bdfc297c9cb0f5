#pragma once

#include <functional>
#include <memory>

#include <QAbstractScrollArea>

#include "platform/lumo/lumo_context.h"

class LumoControl;
class LumoDiagram;
class QCursor;
class QGestureEvent;
class QHelpEvent;
class QPainter;

/// What signalRightClickMenu delivers.
class LumoUIRightClickParam {
public:
    LumoUIRightClickParam() = default;
    LumoUIRightClickParam(std::shared_ptr<void> block, QPoint point)
        : m_block(std::move(block)), m_point(point) {}
    const std::shared_ptr<void>& block() const { return m_block; }
    /// On the screen.
    QPoint point() const { return m_point; }

private:
    std::shared_ptr<void> m_block;
    QPoint m_point;
};
Q_DECLARE_METATYPE(LumoUIRightClickParam)

/// The widget that shows a diagram: scroll bars, zoom (Ctrl+wheel and pinch about the pointer, 0.25
/// to 4 in steps of 1.1), keys, cursor, one paint event for what became dirty.
///
/// Ownership: owns its control; diagram and context belong to others and may go first.
class LumoUIScrollView : public QAbstractScrollArea {
    Q_OBJECT

public:
    explicit LumoUIScrollView(LumoContext* context, QWidget* parent = nullptr);
    ~LumoUIScrollView() override;

    /// Called once after construction.
    virtual void init();
    /// Never null.
    LumoControl* getControl() const;
    /// The one that is active, or null.
    LumoDiagram* diagram() const;
    /// @p handler gives a new cursor for a code other than 0, which the view takes over, or null
    /// for the view's own.
    void setLumoCursorToCursorHandler(std::function<QCursor*(int)> handler);

    /// Lays out and paints @p diagramRect of the diagram into @p target (logical space of
    /// @p painter), as large as fits without distortion, from the top left: for images, documents
    /// and tests. Needs no view and keeps no pictures.
    static void renderTo(QPainter* painter, LumoDiagram* diagram, const LumoRect& diagramRect,
                         const QRectF& target);
    /// For measurements: paint events so far, objects painted by the last one.
    int paintPasses() const;
    int objectsInLastPass() const;

public Q_SLOTS:
    void zoomIn();
    void zoomOut();
    void zoomReset();
    /// All that the diagram holds, as large as fits, at most at its own size.
    void fitToView();

Q_SIGNALS:
    /// After the button was released, or by the Menu key. Objects may have gone by then.
    void signalRightClickMenu(LumoUIScrollView* view, const LumoUIRightClickParam& param);
    /// Scrolled, zoomed, or another size of view or diagram.
    void displayChanged();
    /// Something in the diagram has changed and was laid out, in sight or not; or another diagram
    /// shows, or none. Once for the changes of a turn of the event loop.
    void contentChanged();

protected:
    bool event(QEvent* event) override;
    bool viewportEvent(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void scrollContentsBy(int dx, int dy) override;

    /// The full text at a place where it was cut, or empty: shown as tool tip.
    virtual QString toolTipAt(LumoPoint diagramPoint) const;
    /// After the diagram was painted, in control space: what lies over it without being part of it.
    /// It moves with the canvas when that is scrolled.
    virtual void paintOverlay(QPainter* painter);
    /// Whether the canvas wants a key before the shortcuts of the host while it has the focus.
    virtual bool ownsKey(const QKeyEvent* event) const;

private:
    class Control;
    struct State;

    void paintRect(QPainter* painter, const QRect& rect);
    void showCursor(int code);
    void showToolTip(const QHelpEvent* event);
    bool pinch(const QGestureEvent* event);
    bool zoomKey(const QKeyEvent* event);
    bool takesKey(const QKeyEvent* event);
    void askForMenu();

    const std::unique_ptr<State> m_state;
};
