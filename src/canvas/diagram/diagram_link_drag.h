#pragma once

#include <string>

#include "canvas/diagram/diagram.h"

class LumoPainter;

namespace QB::DiagramLumo {

/// The line that follows the pointer, or the keys, from a field to another one.
class QBLumoDiagram::LinkDrag {
public:
    explicit LinkDrag(QBLumoDiagram* diagram) : m_diagram(diagram) {}

    bool isActive() const { return m_active; }
    void begin(QBLumoItem* item, const std::string& field, LumoPoint point);
    void moveEnd(LumoPoint point);
    void setTarget(QBLumoItem* item, const std::string& field);
    const std::string& sourceField() const { return m_sourceField; }
    /// With @p tell of the link, if there is one.
    void end(bool tell);
    /// @p object leaves: without its source the drag ends.
    void forget(const LumoObject* object);
    void paint(LumoPainter* painter) const;

private:
    void invalidateLine();

    QBLumoDiagram* const m_diagram;  // not owned: the owner
    bool m_active = false;
    QBLumoItem* m_source = nullptr;  // not owned
    std::string m_sourceField;
    QBLumoItem* m_target = nullptr;  // not owned
    std::string m_targetField;
    LumoPoint m_start;  // in the diagram's space
    LumoPoint m_end;
};

}  // namespace QB::DiagramLumo
