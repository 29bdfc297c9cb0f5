#include "widgets/drawn_icons.h"

#include <QFile>
#include <QGuiApplication>
#include <QPainter>
#include <QPainterPath>
#include <QPalette>

namespace QB {
namespace {

/// On a field of 16 by 16.
QPainterPath pathOf(DrawnSign sign) {
    QPainterPath path;
    const auto line = [&path](qreal x1, qreal y1, qreal x2, qreal y2) {
        path.moveTo(x1, y1);
        path.lineTo(x2, y2);
    };
    switch (sign) {
        case DrawnSign::BracketedPlus:
            path.moveTo(4, 2);
            path.cubicTo(1, 6, 1, 10, 4, 14);
            path.moveTo(12, 2);
            path.cubicTo(15, 6, 15, 10, 12, 14);
            line(8, 5.5, 8, 10.5);
            line(5.5, 8, 10.5, 8);
            break;
        case DrawnSign::Plus:
            line(8, 3, 8, 13);
            line(3, 8, 13, 8);
            break;
        case DrawnSign::Cross:
            line(4, 4, 12, 12);
            line(4, 12, 12, 4);
            break;
        case DrawnSign::Minus:
            line(3, 8, 13, 8);
            break;
        case DrawnSign::Up:
            line(3.5, 10.5, 8, 5.5);
            path.lineTo(12.5, 10.5);
            break;
        case DrawnSign::Down:
            line(3.5, 5.5, 8, 10.5);
            path.lineTo(12.5, 5.5);
            break;
        case DrawnSign::TwoCircles:
            path.addEllipse(1, 3.5, 9, 9);
            path.addEllipse(6, 3.5, 9, 9);
            break;
    }
    return path;
}

QPixmap drawn(DrawnSign sign, const QPalette& palette, int size) {
    const qreal ratio = qGuiApp->devicePixelRatio();
    QPixmap pixmap(QSize(size, size) * ratio);
    pixmap.setDevicePixelRatio(ratio);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.scale(size / 16.0, size / 16.0);
    painter.setPen(QPen(palette.color(QPalette::WindowText), 1.75, Qt::SolidLine, Qt::RoundCap,
                        Qt::RoundJoin));
    painter.drawPath(pathOf(sign));
    return pixmap;
}

}  // namespace

QPixmap imageOrSign(const QString& resource, DrawnSign sign, const QPalette& palette, int size) {
    const QPixmap image(resource);
    return image.isNull() ? drawn(sign, palette, size) : image;
}

QIcon iconOrSign(const QString& resource, DrawnSign sign, const QPalette& palette) {
    return QFile::exists(resource) ? QIcon(resource) : QIcon(drawn(sign, palette, 16));
}

}  // namespace QB
