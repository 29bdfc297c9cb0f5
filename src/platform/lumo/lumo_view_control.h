#pragma once

#include <optional>

#include <QRegion>

#include "platform/lumo/lumo_control.h"
#include "platform/lumo/lumo_view.h"

/// The control of a LumoUIScrollView: where the view stands on the canvas, and what became dirty.
///
/// Where: m_origin, in the diagram's space and unrounded, so that zooming there and back arrives
/// where it began. The bars and the paint have it times zoom, in whole pixels.
class LumoUIScrollView::Control : public LumoControl {
public:
    Control(LumoUIScrollView* view, LumoContext* context);

    LumoControlPoint getScrollOrigin() const override { return m_offset; }
    void setScrollOrigin(LumoControlPoint origin) override;
    LumoRect getDisplayRect() const override;
    double getZoom() const override { return m_zoom; }
    void setZoom(double zoom, LumoControlPoint fixed) override;
    void zoomIn() override;
    void zoomOut() override;
    void zoomReset() override;
    void scrollToVisible(const LumoRect& rect, bool centre) override;
    void diagramChanged() override;
    void layoutWanted() override;
    void updateRegion(const LumoRect& diagramRect) override;
    void cursorChanged(int code) override;
    void rightClicked(const LumoMessageRightClickParam& param, LumoPoint point) override;

    LumoDiagram* diagram() const;
    /// Steps of 1.1 each. Whole ones lead to the powers of 1.1.
    void zoomBy(double steps, LumoControlPoint fixed);
    void fitToView();
    /// The view shows for the first time, or has another size.
    void shown();
    void resized();
    /// The user moved a bar.
    void barsMoved();
    /// Lays out what is marked and gives what became dirty to the widget.
    void flush();
    /// Lays out before @p region is painted; what else became dirty waits for the next flush.
    void prepareToPaint(const QRegion& region);
    QRect canvasInControl() const;
    /// What @p rect (control space) shows, grown to whole pixels of the diagram.
    LumoRect diagramRectOf(const QRect& rect) const;
    /// Posted to the view for a flush.
    static int flushEventType();

private:
    struct Wish {
        LumoRect rect;
        bool centre = false;
    };

    bool isReady() const;
    QSize canvasSize() const;
    LumoControlPoint middle() const;
    void updateBars();
    void setRanges();
    void applyOrigin();
    LumoControlPoint roundedOrigin() const;
    void canvasMovedBy(int dx, int dy);
    void layOut();

    LumoUIScrollView* const m_view;  // not owned: it owns this
    double m_zoom = 1;
    LumoDoublePoint m_origin;
    LumoControlPoint m_offset;
    bool m_shown = false;
    std::optional<Wish> m_wish;  // scrollToVisible before there was something to scroll
    bool m_settingBars = false;
    bool m_barsAgain = false;
    bool m_flushPosted = false;
    QRegion m_dirty;  // control space
};
