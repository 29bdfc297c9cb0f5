#pragma once

#include <vector>

#include <QLineF>
#include <QTransform>
#include <QWidget>

#include "platform/lumo/lumo_types.h"

namespace QB::DiagramLumo {

class QBLumoUIView;

/// The whole diagram in a corner of its view, with a frame around what shows. A click or a drag in
/// it moves the frame. Hides by itself where everything shows, and nearly everything if it would
/// cover items. Ownership: the view's.
class OverviewMap : public QWidget {
    Q_OBJECT

public:
    explicit OverviewMap(QBLumoUIView* view);

    /// What the user wants; it may be hidden all the same, see above.
    void setWanted(bool wanted);
    bool isWanted() const { return m_wanted; }
    /// From the diagram's space to this widget's.
    QTransform diagramToMap() const;

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    struct Box {
        LumoRect rect;
        bool selected = false;
        bool operator==(const Box& other) const {
            return rect == other.rect && selected == other.selected;
        }
    };
    /// All that the map shows: it is painted anew when this changes.
    struct Content {
        LumoRect extent;
        LumoRect display;
        std::vector<Box> boxes;
        std::vector<QLineF> lines;
        QSize room;  // of the viewport
        bool dark = false;
        bool operator==(const Content& other) const {
            return extent == other.extent && display == other.display && boxes == other.boxes &&
                   lines == other.lines && room == other.room && dark == other.dark;
        }
    };
    Content currentContent() const;
    void refresh();
    bool place();
    bool coversItem(const QRect& place) const;
    void centreViewOn(const QPoint& point);
    void translateTexts();

    QBLumoUIView* const m_view;  // not owned: the parent
    Content m_content;
    bool m_wanted = true;
};

}  // namespace QB::DiagramLumo
