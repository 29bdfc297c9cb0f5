#include "apps/joinery-desk/diagram_picture.h"

#include <QBuffer>
#include <QPainter>
#include <QSaveFile>
#include <QSvgGenerator>
#include <algorithm>

#include "canvas/view/canvas_commands.h"
#include "platform/tolk/tolk.h"

namespace QB::Desk {
namespace {

constexpr double pngScale = 2.0;  // sharp on any screen, where the image may be as large

double pngScaleOf(const QBCanvasCommands& commands) {
    const QSizeF size = commands.pictureRect().size();
    const double side = std::max({size.width(), size.height(), 1.0});
    return std::min(pngScale, (QBCanvasCommands::largestPictureSide - 1) / side);
}

QByteArray svgOf(const QBCanvasCommands& commands) {
    QBuffer text;
    QSvgGenerator generator;
    generator.setOutputDevice(&text);
    generator.setResolution(96);  // so that fonts keep their size
    const QSizeF size = commands.pictureRect().size();
    generator.setSize(size.toSize());
    generator.setViewBox(QRectF({0, 0}, size));
    QPainter painter(&generator);
    commands.renderTo(&painter, {{0, 0}, size});
    painter.end();
    return text.data();
}

QString saveSvg(const QBCanvasCommands& commands, const QString& file) {
    if (commands.pictureRect().isEmpty()) return Tolk::localize(Tolk::TextCanvasNothingToExport);
    QSaveFile target(file);
    const QByteArray text = svgOf(commands);
    if (target.open(QIODevice::WriteOnly | QIODevice::Unbuffered) &&
        target.write(text) == text.size() && target.commit())
        return QString();
    return Tolk::localizeWithArgs(Tolk::TextCanvasPictureNotWritten, file.toUtf8().constData());
}

}  // namespace

QString saveDiagramPicture(const QBCanvasCommands& commands, const QString& file) {
    if (file.endsWith(QLatin1String(".svg"), Qt::CaseInsensitive)) return saveSvg(commands, file);
    if (file.endsWith(QLatin1String(".pdf"), Qt::CaseInsensitive)) return commands.exportPdf(file);
    return commands.exportPng(file, pngScaleOf(commands));
}

}  // namespace QB::Desk
