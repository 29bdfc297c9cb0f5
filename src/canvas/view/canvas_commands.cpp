#include "canvas/view/canvas_commands.h"

#include <algorithm>

#include <QImage>
#include <QPainter>
#include <QPdfWriter>
#include <QSaveFile>

#include "canvas/diagram/canvas_dump.h"
#include "canvas/diagram/diagram.h"
#include "canvas/items/item.h"
#include "canvas/view/canvas_extent.h"
#include "canvas/view/lumo_ui_view.h"
#include "canvas/view/overview_map.h"
#include "platform/lumo/lumo_control.h"
#include "platform/tolk/text_ids.h"
#include "platform/tolk/tolk.h"

namespace QB {

using namespace DiagramLumo;

namespace {

constexpr int pictureMargin = 20;
constexpr int pdfDotsPerInch = 96;     // a pixel of the diagram is a pixel of the page
constexpr double longestPage = 14400;  // points: the most that a PDF page may have

/// What is still in the buffer, commit() would write without looking: on a full disk, nothing.
bool isWritten(QSaveFile& target) {
    return target.flush() && target.commit();
}

QString notWritten(const QString& file) {
    return Tolk::localizeWithArgs(Tolk::TextCanvasPictureNotWritten, file.toUtf8().constData());
}

void tellArranged(QBLumoDiagram* diagram) {
    if (QBLumoContext* const context = diagram->lumoContext())
        context->itemsArranged(QBLumoContext::Arrangement::LaidOut);
}

}  // namespace

struct QBCanvasCommands::State {
    QBLumoUIView* view = nullptr;     // not owned: the parent
    OverviewMap* overview = nullptr;  // owned by the view
    double lastZoom = 1;
    struct Move {
        uint64_t item = 0;  // serial
        LumoRect before;
        LumoRect after;
    };
    std::vector<Move> arranged;

    LumoRect extent() const {
        QBLumoDiagram* const diagram = view->lumoDiagram();
        if (!diagram) return {};
        diagram->layout();  // links know their place only then
        return contentExtent(diagram);
    }
};

QBCanvasCommands::QBCanvasCommands(QBLumoUIView* view)
    : QObject(view), m_state(std::make_unique<State>()) {
    m_state->view = view;
    m_state->overview = new OverviewMap(view);
    m_state->lastZoom = zoom();
    connect(view, &LumoUIScrollView::displayChanged, this, [this] {
        if (qFuzzyCompare(m_state->lastZoom, zoom())) return;
        m_state->lastZoom = zoom();
        Q_EMIT zoomChanged(zoom());
    });
}

QBCanvasCommands::~QBCanvasCommands() = default;

double QBCanvasCommands::zoom() const {
    return m_state->view->getControl()->getZoom();
}

void QBCanvasCommands::setZoom(double zoom) {
    m_state->view->getControl()->setZoom(zoom, {0, 0});
}

bool QBCanvasCommands::isOverviewVisible() const {
    return m_state->overview->isWanted();
}

bool QBCanvasCommands::canUndoArrange() const {
    return !m_state->arranged.empty();
}

void QBCanvasCommands::zoomIn() {
    m_state->view->zoomIn();
}

void QBCanvasCommands::zoomOut() {
    m_state->view->zoomOut();
}

void QBCanvasCommands::zoomReset() {
    m_state->view->zoomReset();
}

void QBCanvasCommands::fitToView() {
    m_state->view->fitToView();
}

void QBCanvasCommands::setOverviewVisible(bool visible) {
    m_state->overview->setWanted(visible);
}

void QBCanvasCommands::arrange() {
    QBLumoDiagram* const diagram = m_state->view->lumoDiagram();
    if (!diagram) return;
    Q_EMIT aboutToArrange();
    const auto moved = diagram->autoLayout();
    if (moved.empty()) return;
    m_state->arranged.clear();
    LumoRect taken;
    for (const auto& [item, before] : moved) {
        m_state->arranged.push_back({item->serial(), before, item->getRect()});
        taken = lumoUnionRect(taken, item->getRect());
    }
    m_state->view->getControl()->scrollToVisible(taken, false);
    Q_EMIT undoArrangeAvailable(true);
    tellArranged(diagram);
}

void QBCanvasCommands::undoArrange() {
    if (m_state->arranged.empty()) return;
    Q_EMIT aboutToArrange();
    const std::vector<State::Move> moves = std::move(m_state->arranged);
    m_state->arranged.clear();
    Q_EMIT undoArrangeAvailable(false);
    QBLumoDiagram* const diagram = m_state->view->lumoDiagram();
    if (!diagram) return;
    LumoRect taken;
    for (QBLumoItem* item : diagram->items())
        for (const State::Move& move : moves)
            if (move.item == item->serial() && move.after == item->getRect()) {
                item->setRect(move.before);
                item->setRequireToVerifyLayout(true, true);  // its links come along
                taken = lumoUnionRect(taken, move.before);
            }
    if (lumoWidth(taken) > 0) m_state->view->getControl()->scrollToVisible(taken, false);
    diagram->repaint();
    if (lumoWidth(taken) > 0) tellArranged(diagram);
}

QRectF QBCanvasCommands::pictureRect() const {
    const LumoRect extent = m_state->extent();
    if (lumoWidth(extent) == 0) return {};
    const LumoRect shown = lumoInflateRect(extent, pictureMargin, pictureMargin);
    return {double(lumoMinX(shown)), double(lumoMinY(shown)), double(lumoWidth(shown)),
            double(lumoHeight(shown))};
}

void QBCanvasCommands::renderTo(QPainter* painter, const QRectF& target) const {
    const QRect rect = pictureRect().toRect();
    if (rect.isEmpty()) return;
    LumoUIScrollView::renderTo(painter, m_state->view->lumoDiagram(),
                               {rect.x(), rect.y(), rect.width(), rect.height()}, target);
}

QString QBCanvasCommands::exportPng(const QString& file, double scale) const {
    const QSizeF size = pictureRect().size() * scale;
    if (pictureRect().isEmpty()) return Tolk::localize(Tolk::TextCanvasNothingToExport);
    if (!(scale > 0) || size.width() > largestPictureSide || size.height() > largestPictureSide)
        return Tolk::localize(Tolk::TextCanvasPictureTooLarge);
    QImage image(size.toSize().expandedTo({1, 1}), QImage::Format_ARGB32_Premultiplied);
    if (image.isNull()) return Tolk::localize(Tolk::TextCanvasPictureTooLarge);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    renderTo(&painter, {{0, 0}, QSizeF(image.size())});
    painter.end();
    QSaveFile target(file);
    if (!target.open(QIODevice::WriteOnly) || !image.save(&target, "PNG") || !isWritten(target))
        return notWritten(file);
    return {};
}

QString QBCanvasCommands::exportPdf(const QString& file) const {
    const QRectF rect = pictureRect();
    if (rect.isEmpty()) return Tolk::localize(Tolk::TextCanvasNothingToExport);
    QSaveFile target(file);
    if (!target.open(QIODevice::WriteOnly)) return notWritten(file);
    QPdfWriter writer(&target);
    QSizeF page = rect.size() * 72.0 / pdfDotsPerInch;
    if (std::max(page.width(), page.height()) > longestPage)
        page.scale(longestPage, longestPage, Qt::KeepAspectRatio);
    writer.setResolution(pdfDotsPerInch);
    writer.setPageSize(QPageSize(page, QPageSize::Point, QString(), QPageSize::ExactMatch));
    writer.setPageMargins({0, 0, 0, 0});
    QPainter painter;
    if (!painter.begin(&writer)) return notWritten(file);
    renderTo(&painter, {{0, 0}, page * pdfDotsPerInch / 72.0});
    painter.end();
    return isWritten(target) ? QString() : notWritten(file);
}

QString QBCanvasCommands::dump() const {
    const QBLumoDiagram* const diagram = m_state->view->lumoDiagram();
    return diagram ? QString::fromStdString(dumpCanvas(diagram)) : QString();
}

}  // namespace QB
