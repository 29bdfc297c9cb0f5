#pragma once

#include <memory>

#include <QObject>
#include <QRectF>
#include <QString>

#include "model/export.h"

class QPainter;

namespace QB {

namespace DiagramLumo {
class QBLumoUIView;
}

/// What a host's View menu does with a diagram: zoom, arrange, overview, pictures.
/// Ownership: the view's; goes with it. Thread: main.
class QB_EXPORT QBCanvasCommands : public QObject {
    Q_OBJECT

public:
    explicit QBCanvasCommands(DiagramLumo::QBLumoUIView* view);
    ~QBCanvasCommands() override;

    /// From 0.25 to 4.
    double zoom() const;
    void setZoom(double zoom);
    bool isOverviewVisible() const;
    bool canUndoArrange() const;

    /// What a picture of the whole diagram shows: all that it holds with a margin, in its own
    /// pixels. Empty for an empty diagram.
    QRectF pictureRect() const;
    /// Paints pictureRect() into @p target, without focus ring and overview. For SVG and the like.
    void renderTo(QPainter* painter, const QRectF& target) const;
    /// The longest side that an image may have, in pixels: 1 GB at most.
    static constexpr int largestPictureSide = 16384;
    /// Write a picture. @return an empty text, or what went wrong, for the user.
    QString exportPng(const QString& file, double scale) const;
    QString exportPdf(const QString& file) const;
    /// The diagram as stable text, for tests.
    QString dump() const;

public Q_SLOTS:
    void zoomIn();
    void zoomOut();
    void zoomReset();
    void fitToView();
    /// Lays out the selected items, or all if none or one is selected.
    void arrange();
    /// Puts back what the last arrange() moved, as far as it still stands where it was put.
    void undoArrange();
    void setOverviewVisible(bool visible);

Q_SIGNALS:
    void zoomChanged(double zoom);
    /// Of arrange() and undoArrange(), before anything moves.
    void aboutToArrange();
    void undoArrangeAvailable(bool available);

private:
    struct State;
    const std::unique_ptr<State> m_state;
};

}  // namespace QB
