#include <algorithm>
#include <cmath>

#include "platform/lumo/lumo_paint_device.h"

namespace {

/// Longest side of a surface. A larger one is painted coarser instead of taking all memory.
constexpr int longestSide = 8192;

/// What @p rect covers on the device of @p target, as far as its clip lets it be seen.
QRect pixelsOf(const QPainter& target, const QRectF& rect) {
    QRectF covered = target.deviceTransform().mapRect(rect);
    if (target.hasClipping())
        covered &= target.deviceTransform().mapRect(target.clipBoundingRect());
    // A whole pixel that is missed by rounding only is not one more.
    constexpr double noise = 1e-6;
    return covered.adjusted(noise, noise, -noise, -noise).toAlignedRect();
}

}  // namespace

void LumoPicture::registerPaintAction(Action action, LumoDoubleSize size) {
    m_actions.push_back(std::move(action));
    m_size.width = std::max(m_size.width, size.width);
    m_size.height = std::max(m_size.height, size.height);
}

void LumoPicture::replay(LumoPaintConfig* config) const {
    for (const Action& action : m_actions)
        if (action) action(config);
}

void lumoRunAction(QPainter* painter, const LumoPicture::Action& action, QPointF origin) {
    if (!action) return;
    painter->save();
    painter->translate(origin);
    LumoPaintConfig config(painter);
    action(&config);
    painter->restore();
}

void lumoReplayPicture(QPainter* painter, const LumoPicture& picture, const QRectF& rect) {
    const LumoDoubleSize size = picture.size();
    if (size.width <= 0 || size.height <= 0) return;
    const auto replay = [&](LumoPaintConfig* config) {
        picture.replay(config);
    };
    painter->save();
    painter->translate(rect.topLeft());
    painter->scale(rect.width() / size.width, rect.height() / size.height);
    lumoRunAction(painter, replay, {});
    painter->restore();
}

QPainter::CompositionMode lumoCompositionMode(int mode) {
    if (mode == LumoComposeErase) return QPainter::CompositionMode_DestinationOut;
    if (mode == LumoComposeAtop) return QPainter::CompositionMode_SourceAtop;
    return QPainter::CompositionMode_SourceOver;
}

void lumoDrawOnDevice(QPainter* painter, QPoint devicePoint, const QImage& image) {
    const QTransform world = painter->worldTransform();
    bool invertible = false;
    const QTransform fromDevice = painter->deviceTransform().inverted(&invertible) * world;
    if (!invertible) return;
    painter->setWorldTransform(QTransform::fromTranslate(devicePoint.x(), devicePoint.y()) *
                               fromDevice);
    painter->drawImage(QPointF(0, 0), image);
    painter->setWorldTransform(world);
}

LumoPaintSurface::LumoPaintSurface(const QPainter& target, const QRectF& rect) {
    const QRect pixels = pixelsOf(target, rect);
    m_devicePoint = pixels.topLeft();
    m_reduction = std::max(1.0, double(std::max(pixels.width(), pixels.height())) / longestSide);
    const auto reduced = [this](int side) {
        return std::max(1, int(std::ceil(side / m_reduction)));
    };
    m_image = QImage(reduced(pixels.width()), reduced(pixels.height()),
                     QImage::Format_ARGB32_Premultiplied);
    m_image.fill(Qt::transparent);
    m_painter.begin(&m_image);
    m_painter.setWorldTransform(target.deviceTransform() *
                                QTransform::fromTranslate(-m_devicePoint.x(), -m_devicePoint.y()) *
                                QTransform::fromScale(1 / m_reduction, 1 / m_reduction));
    m_painter.setClipRect(rect);
}

void LumoPaintSurface::compose(LumoPaintSurface& above, QPainter::CompositionMode mode) {
    above.m_painter.end();
    m_painter.end();
    // The whole image: applied to a path, these modes would leave alone what lies outside of it.
    QPainter whole(&m_image);
    whole.setCompositionMode(mode);
    whole.drawImage(0, 0, above.m_image);
}

void LumoPaintSurface::drawOn(QPainter* target, double alpha) {
    if (m_painter.isActive()) m_painter.end();
    const double opacity = target->opacity();
    target->setOpacity(opacity * alpha);
    m_image.setDevicePixelRatio(1 / m_reduction);
    lumoDrawOnDevice(target, m_devicePoint, m_image);
    target->setOpacity(opacity);
}
