#pragma once

#include <vector>

#include "canvas/base/object.h"

class LumoPainter;

namespace QB::DiagramLumo {

/// Where handle and panes of a splitter lie; pure.
struct SplitterGeometry {
    static constexpr int thickness = 10;
    LumoSize size;
    bool vertical = false;  // panes one above the other
    double ratio = 0.5;

    LumoRect handle() const;
    /// Along the split axis: position and length.
    int32_t firstLength() const;
    int32_t secondLength() const;
    /// The ratio for a handle dragged to @p point, from 0 to 1; 0 without room for any pane.
    double ratioAt(LumoPoint point) const;
};

/// Two panes with a handle between them that can be dragged.
class QBLumoSplitter : public QBLumoObject {
public:
    explicit QBLumoSplitter(bool vertical);

    QBLumoObject* getFirstPane() const { return m_first; }
    QBLumoObject* getSecondPane() const { return m_second; }
    void setLineDash(std::vector<double> dash);
    void setLineColor(const LumoColor& color);
    double ratio() const { return m_ratio; }
    void setRatio(double ratio);
    LumoRect getHandleRect() const;

    void paint(LumoPaintConfig* config, LumoRect rect) override;
    virtual bool responderMouseDragging(LumoEvent event);
    virtual bool responderMouseDrop(LumoEvent event);
    virtual bool responderMouseMove(LumoEvent event);

protected:
    void customLayout() override;

private:
    SplitterGeometry geometry() const;
    void paintHandle(LumoPainter* painter) const;

    QBLumoObject* m_first = nullptr;   // owned as a child
    QBLumoObject* m_second = nullptr;  // owned as a child
    bool m_vertical;
    double m_ratio = 0.5;
    std::vector<double> m_lineDash;
    LumoColor m_lineColor{0, 0, 0, 1};
    bool m_dragging = false;
};

}  // namespace QB::DiagramLumo
