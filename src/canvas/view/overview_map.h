#pragma once

#include <QWidget>

namespace QB::DiagramLumo {

class QBLumoUIView;

/// The whole diagram in a corner of its view, with a frame around what shows. A click or a drag in
/// it moves the frame. Hides by itself where everything shows.
/// Ownership: the view's.
class OverviewMap : public QWidget {
    Q_OBJECT

public:
    explicit OverviewMap(QBLumoUIView* view);

    /// What the user wants; it may be hidden all the same, see above.
    void setWanted(bool wanted);
    bool isWanted() const { return m_wanted; }
    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void place();

    QBLumoUIView* const m_view;  // not owned: the parent
    bool m_wanted = true;
};

}  // namespace QB::DiagramLumo
