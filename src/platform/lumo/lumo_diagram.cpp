#include "platform/lumo/lumo_diagram.h"

#include "platform/lumo/lumo_context.h"

LumoDiagram::LumoDiagram(LumoContext* context) {
    if (context) context->addDiagram(this);
}

LumoDiagram::~LumoDiagram() {
    if (m_context) m_context->removeDiagram(this);
}

const LumoDiagram* LumoDiagram::asDiagram() const {
    return this;
}

void LumoDiagram::setRect(const LumoRect& rect) {
    if (rect.size == getRect().size) return;
    LumoObject::setRect({{0, 0}, rect.size});
    if (m_context) m_context->notifyDiagramSizeChanged(this);
}

void LumoDiagram::flushDirtyRect() {
    if (m_context) m_context->notifyDirtyRect(this);
}
