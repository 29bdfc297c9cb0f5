#pragma once

#include <QImage>
#include <QPainter>

#include "platform/lumo/lumo_paint.h"

/// Draws @p image so that each of its pixels is one of the device, from @p devicePoint on. The
/// transform of @p painter does not matter, its clip does.
void lumoDrawOnDevice(QPainter* painter, QPoint devicePoint, const QImage& image);

/// Runs @p action in a config that starts at @p origin of the painter's space, and restores the
/// state of @p painter.
void lumoRunAction(QPainter* painter, const LumoPicture::Action& action, QPointF origin);
/// Replays @p picture so that its surface fills @p rect.
void lumoReplayPicture(QPainter* painter, const LumoPicture& picture, const QRectF& rect);

/// For all but LumoComposeInside, which pictures and actions read differently.
QPainter::CompositionMode lumoCompositionMode(int mode);

/// A transparent image over the pixels that a rectangle takes on the device.
class LumoPaintSurface {
public:
    /// @p rect in the space of @p target.
    LumoPaintSurface(const QPainter& target, const QRectF& rect);

    /// In the space of the target at the construction, cut to the rectangle.
    QPainter* painter() { return &m_painter; }
    /// Combines with @p above, of the same target and rectangle. Ends the painters of both.
    void compose(LumoPaintSurface& above, QPainter::CompositionMode mode);
    void drawOn(QPainter* target, double alpha);

private:
    QPoint m_devicePoint;
    double m_reduction = 1;  // device pixels for one of the image: more than 1 if it is huge
    QImage m_image;
    QPainter m_painter;
};
