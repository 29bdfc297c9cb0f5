#include "platform/lumo/lumo_context.h"

#include <algorithm>
#include <cmath>

#include "platform/lumo/lumo_control.h"
#include "platform/lumo/lumo_diagram.h"
#include "platform/lumo/lumo_dispatch.h"

namespace {

/// More rectangles than this become one: the widget unites them in a region, which gets slow.
constexpr size_t maxDirtyRects = 256;

template <typename T>
bool addOnce(std::vector<T*>* list, T* item) {
    if (std::find(list->begin(), list->end(), item) != list->end()) return false;
    list->push_back(item);
    return true;
}

template <typename T>
void removeFrom(std::vector<T*>* list, T* item) {
    list->erase(std::remove(list->begin(), list->end(), item), list->end());
}

/// Away from zero, so that a small step at a small zoom still moves.
int32_t scaledStep(int32_t step, double zoom) {
    const double scaled = step * zoom;
    return int32_t(scaled < 0 ? std::floor(scaled) : std::ceil(scaled));
}

LumoRect unitedRect(const std::vector<LumoRect>& rects) {
    LumoRect all;
    for (const LumoRect& rect : rects)
        all = lumoUnionRect(all, rect);
    return all;
}

}  // namespace

LumoContext::LumoContext() = default;

LumoContext::~LumoContext() {
    for (LumoControl* control : std::vector<LumoControl*>(m_controls)) {
        LumoDiagram* const shown = getActiveDiagram(control);
        control->m_context = nullptr;
        if (!shown) continue;
        // Its objects may go without anybody who could tell the control.
        control->dispatcher()->forget(shown, true);
        control->diagramChanged();
    }
    for (LumoDiagram* diagram : m_diagrams)
        diagram->m_context = nullptr;
}

void LumoContext::addControl(LumoControl* control) {
    if (addOnce(&m_controls, control)) control->m_context = this;
}

void LumoContext::removeControl(LumoControl* control) {
    if (LumoDiagram* const diagram = getActiveDiagram(control)) m_dirty.erase(diagram);
    m_active.erase(control);
    removeFrom(&m_controls, control);
    control->m_context = nullptr;
}

void LumoContext::addDiagram(LumoDiagram* diagram) {
    if (addOnce(&m_diagrams, diagram)) diagram->m_context = this;
}

void LumoContext::removeDiagram(LumoDiagram* diagram) {
    LumoControl* const control = getControlWithDiagram(diagram);
    removeFrom(&m_diagrams, diagram);
    diagram->m_context = nullptr;
    m_dirty.erase(diagram);
    if (!control) return;
    // It may be half destroyed: nobody is to call it any more.
    control->dispatcher()->forget(diagram, true);
    clearActive(control);
}

void LumoContext::clearActive(LumoControl* control) {
    m_active.erase(control);
    control->diagramChanged();
}

void LumoContext::setActiveDiagram(LumoControl* control, LumoDiagram* diagram) {
    LumoDiagram* const before = getActiveDiagram(control);
    if (before == diagram) return;
    control->dispatcher()->cancel();
    if (before) m_dirty.erase(before);
    if (!diagram) return clearActive(control);
    if (LumoControl* const other = getControlWithDiagram(diagram)) {
        other->dispatcher()->cancel();
        clearActive(other);
    }
    m_active[control] = diagram;
    control->diagramChanged();
    control->layoutWanted();
}

LumoDiagram* LumoContext::getActiveDiagram(const LumoControl* control) const {
    const auto found = m_active.find(control);
    return found == m_active.end() ? nullptr : found->second;
}

LumoControl* LumoContext::getControlWithDiagram(const LumoDiagram* diagram) const {
    for (LumoControl* control : m_controls)
        if (diagram && getActiveDiagram(control) == diagram) return control;
    return nullptr;
}

LumoRect LumoContext::translateRectToControlSpace(const LumoRect& rect, const LumoObject* object,
                                                  const LumoControl* control) const {
    const LumoPoint from = rect.origin;
    const LumoPoint to{lumoMaxX(rect), lumoMaxY(rect)};
    const LumoPoint start = translatePointToControlSpace(from, object, control);
    const LumoPoint end = translatePointToControlSpace(to, object, control);
    return {start, {end.x - start.x, end.y - start.y}};
}

LumoPoint LumoContext::translatePointToControlSpace(LumoPoint point, const LumoObject* object,
                                                    const LumoControl* control) const {
    const LumoPoint inDiagram = object ? object->translatePoint(point, nullptr) : point;
    const LumoControlPoint result = control->diagramSpaceToControlSpace(inDiagram);
    return {result.x, result.y};
}

void LumoContext::setDirtyRect(LumoDiagram* diagram, const LumoRect& rect) {
    LumoControl* const control = getControlWithDiagram(diagram);
    if (!control || rect.size.width <= 0 || rect.size.height <= 0) return;
    std::vector<LumoRect>& dirty = m_dirty[diagram];
    if (!dirty.empty() && lumoContainsRect(dirty.back(), rect)) return;
    dirty.push_back(rect);
    if (dirty.size() > maxDirtyRects) dirty = {unitedRect(dirty)};
    control->layoutWanted();
}

void LumoContext::notifyLayoutRequired(LumoDiagram* diagram) {
    if (LumoControl* const control = getControlWithDiagram(diagram)) control->layoutWanted();
}

void LumoContext::notifyDirtyRect(LumoDiagram* diagram) {
    const auto found = m_dirty.find(diagram);
    LumoControl* const control = getControlWithDiagram(diagram);
    if (found == m_dirty.end() || !control) return;
    const std::vector<LumoRect> dirty = std::move(found->second);
    m_dirty.erase(found);
    for (const LumoRect& rect : dirty)
        control->updateRegion(rect);
}

void LumoContext::notifyDiagramMove(LumoDiagram* diagram, LumoControl* control, LumoPoint delta) {
    if (!control) control = getControlWithDiagram(diagram);
    if (!control) return;
    const LumoControlPoint origin = control->getScrollOrigin();
    const double zoom = control->getZoom();
    control->setScrollOrigin(
        {origin.x - scaledStep(delta.x, zoom), origin.y - scaledStep(delta.y, zoom)});
}

void LumoContext::notifyDiagramSizeChanged(LumoDiagram* diagram) {
    if (LumoControl* const control = getControlWithDiagram(diagram)) control->diagramChanged();
}

void LumoContext::notifyCursorChange(LumoDiagram* diagram, int code) {
    if (LumoControl* const control = getControlWithDiagram(diagram))
        notifyCursorChange(control, code);
}

void LumoContext::notifyCursorChange(LumoControl* control, int code) {
    if (control) control->dispatcher()->proposeCursor(code);
}

void LumoContext::notifyRightClickMenu(const LumoMessageRightClickParam& param, LumoPoint point) {
    if (LumoControl* const control = param.event().control)
        control->dispatcher()->setRightClick(param, point);
}

void LumoContext::forgetObject(LumoDiagram* diagram, LumoObject* object, bool dying) {
    if (LumoControl* const control = getControlWithDiagram(diagram))
        control->dispatcher()->forget(object, dying);
}
