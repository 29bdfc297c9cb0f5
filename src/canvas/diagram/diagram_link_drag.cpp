#include "canvas/diagram/diagram_link_drag.h"

#include "canvas/base/context.h"
#include "canvas/items/item.h"
#include "platform/lumo/lumo_paint.h"

namespace QB::DiagramLumo {

namespace {

constexpr LumoColor previewLight{255, 255, 255, 0.5};
constexpr LumoColor previewAccent{51, 171, 255, 1.0};
constexpr double endRadius = 3.0;
constexpr int paintReach = 6;  // what ends and pen stick out of the line

void addEnd(LumoPainter* painter, LumoPoint point) {
    painter->addArc(point.x, point.y, endRadius, 0.0, 360.0);
}

}  // namespace

void QBLumoDiagram::LinkDrag::begin(QBLumoItem* item, const std::string& field, LumoPoint point) {
    if (!m_active) {
        m_active = true;
        m_source = item;
        m_sourceField = field;
        m_target = nullptr;
        m_targetField.clear();
        m_start = m_end = point;
        // The rows show the drag while they lie under the pointer.
        if (item) item->invalidate();
    }
    moveEnd(point);
}

void QBLumoDiagram::LinkDrag::moveEnd(LumoPoint point) {
    invalidateLine();
    m_end = point;
    invalidateLine();
}

void QBLumoDiagram::LinkDrag::setTarget(QBLumoItem* item, const std::string& field) {
    m_target = item;
    m_targetField = field;
}

void QBLumoDiagram::LinkDrag::end(bool tell) {
    if (!m_active) return;
    m_active = false;
    invalidateLine();
    QBLumoItem* const source = std::exchange(m_source, nullptr);
    QBLumoItem* const target = std::exchange(m_target, nullptr);
    if (source) source->invalidate();
    if (target) target->invalidate();
    if (!tell || !source || !target || source == target) return;
    // Copies: the function may begin another drag.
    const std::string sourceField = m_sourceField;
    const std::string targetField = m_targetField;
    if (QBLumoContext* const context = m_diagram->lumoContext())
        context->fieldLinkDrawn(source, sourceField, target, targetField);
}

void QBLumoDiagram::LinkDrag::forget(const LumoObject* object) {
    if (object == m_target) setTarget(nullptr, {});
    if (object != m_source) return;
    m_source = nullptr;
    end(false);
}

void QBLumoDiagram::LinkDrag::paint(LumoPainter* painter) const {
    if (!m_active) return;
    painter->setLineWidth(3.0);
    painter->setColor(previewLight);
    addEnd(painter, m_start);
    painter->stroke();
    painter->addLine(m_start.x, m_start.y, m_end.x, m_end.y);
    painter->stroke();
    addEnd(painter, m_end);
    painter->stroke();

    painter->setLineWidth(1.0);
    painter->setColor(previewAccent);
    painter->addLine(m_start.x, m_start.y, m_end.x, m_end.y);
    painter->stroke();
    addEnd(painter, m_start);
    painter->fill();
    addEnd(painter, m_end);
    painter->fill();
}

void QBLumoDiagram::LinkDrag::invalidateLine() {
    const LumoRect line{std::min(m_start.x, m_end.x), std::min(m_start.y, m_end.y),
                        std::abs(m_start.x - m_end.x), std::abs(m_start.y - m_end.y)};
    m_diagram->addDirtyRect(lumoInflateRect(line, paintReach, paintReach));
    m_diagram->flushDirtyRect();
}

}  // namespace QB::DiagramLumo
