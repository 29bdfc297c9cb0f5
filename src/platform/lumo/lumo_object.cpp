#include "platform/lumo/lumo_object.h"

#include <algorithm>

#include <QPaintEngine>
#include <QPainter>
#include <QScopedValueRollback>

#include "platform/lumo/lumo_context.h"
#include "platform/lumo/lumo_control.h"
#include "platform/lumo/lumo_diagram.h"
#include "platform/lumo/lumo_dispatch.h"
#include "platform/lumo/lumo_paint.h"
#include "platform/lumo/lumo_picture_cache.h"

namespace {

constexpr int maxLayoutRounds = 4;

/// Of what has children these are asked themselves.
bool sticksOut(const LumoObject* child, const LumoObject* of) {
    return child->getChildren().empty() &&
           !lumoContainsRect(of->getBoundingRect(),
                             child->translateRect(child->customDirtyRect(), of));
}

/// Never repeated, so that an object at the address of a dead one is not taken for it.
uint64_t nextPictureSerial() {
    static uint64_t last = 0;
    return ++last;
}

}  // namespace

LumoObject::LumoObject() = default;

LumoObject::~LumoObject() {
    if (m_goneFlag) *m_goneFlag = true;
    if (m_parent) leaveParent();
    while (!m_children.empty()) {
        LumoObject* const child = m_children.back();
        m_children.pop_back();
        child->m_parent = nullptr;
        delete child;
    }
}

/// Of one that is destroyed while it still has a parent. What it painted is not known any more,
/// since the derived parts are gone: all is painted anew.
void LumoObject::leaveParent() {
    LumoObject* const parent = m_parent;
    forgetInGestures(this, true);
    parent->childDies(this);
    parent->unlink(this);
    parent->setRequireToVerifyLayout(true);
    parent->invalidate();
    if (LumoDiagram* const shown = parent->diagram()) shown->invalidate();
}

// ---- tree ----

void LumoObject::addChild(LumoObject* child) {
    addChild(child, int(m_children.size()));
}

void LumoObject::addChild(LumoObject* child, int index) {
    if (child->m_parent) child->m_parent->removeChild(child);
    const int place = std::clamp(index, 0, int(m_children.size()));
    m_children.insert(m_children.begin() + place, child);
    child->m_parent = this;
    child->setRequireToVerifyLayout(true);
    setRequireToVerifyLayout(true);
    child->dirtyPlace();
}

void LumoObject::removeChild(LumoObject* child) {
    detach(child);
}

void LumoObject::removeChild(unsigned long index) {
    if (index < m_children.size()) removeChild(m_children[index]);
}

void LumoObject::clearChildren() {
    while (!m_children.empty()) {
        LumoObject* const child = m_children.back();
        if (detach(child)) delete child;
    }
}

void LumoObject::bringChildToFront(LumoObject* child) {
    const auto found = std::find(m_children.begin(), m_children.end(), child);
    if (found == m_children.end() || child == m_children.back()) return;
    std::rotate(found, found + 1, m_children.end());
    child->dirtyPlace();
}

bool LumoObject::hasChild(const LumoObject* child) const {
    return std::find(m_children.rbegin(), m_children.rend(), child) != m_children.rend();
}

/// True if @p child was one and is none any more. What it is called for its gestures may itself
/// destroy it or take it out: then false.
bool LumoObject::detach(LumoObject* child) {
    if (!hasChild(child)) return false;
    forgetInGestures(child, false);
    if (!hasChild(child)) return false;
    child->dirtyPlace();
    unlink(child);
    setRequireToVerifyLayout(true);
    return true;
}

void LumoObject::unlink(LumoObject* child) {
    const auto last = std::find(m_children.rbegin(), m_children.rend(), child);
    m_children.erase(std::next(last).base());
    child->m_parent = nullptr;
}

const LumoObject* LumoObject::root() const {
    const LumoObject* object = this;
    while (object->m_parent)
        object = object->m_parent;
    return object;
}

const LumoDiagram* LumoObject::asDiagram() const {
    return nullptr;
}

LumoDiagram* LumoObject::diagram() const {
    return const_cast<LumoDiagram*>(root()->asDiagram());
}

LumoContext* LumoObject::context() const {
    const LumoDiagram* const found = root()->asDiagram();
    return found ? found->getContext() : nullptr;
}

LumoDispatcher* LumoObject::dispatcher() const {
    LumoContext* const found = context();
    LumoControl* const control = found ? found->getControlWithDiagram(diagram()) : nullptr;
    return control ? control->dispatcher() : nullptr;
}

void LumoObject::forgetInGestures(LumoObject* object, bool dying) const {
    if (LumoContext* const found = context()) found->forgetObject(diagram(), object, dying);
}

// ---- flags ----

bool LumoObject::getVisible() const {
    return m_visible;
}

void LumoObject::setVisible(bool visible) {
    if (m_visible == visible) return;
    dirtyPlace();
    m_visible = visible;
    // What was marked while it was hidden waits for a pass that comes by.
    setRequireToVerifyLayout(true);
    dirtyPlace();
}

bool LumoObject::getSelectable() const {
    return m_selectable;
}

void LumoObject::setSelectable(bool selectable) {
    m_selectable = selectable;
}

bool LumoObject::getSelected() const {
    return m_selected;
}

void LumoObject::setSelected(bool selected) {
    if (m_selected == selected) return;
    m_selected = selected;
    selectionChanged();
    invalidate();
}

bool LumoObject::getHighlighted() const {
    return m_highlighted;
}

void LumoObject::setHighlighted(bool highlighted) {
    if (m_highlighted == highlighted) return;
    m_highlighted = highlighted;
    highlightChanged();
    invalidate();
}

bool LumoObject::getHighlightable() const {
    return m_highlightable;
}

void LumoObject::setHighlightable(bool highlightable) {
    m_highlightable = highlightable;
    if (!highlightable) setHighlighted(false);
}

LumoColor LumoObject::getBackgroundColor() const {
    return m_background;
}

void LumoObject::setBackgroundColor(const LumoColor& color) {
    if (m_background == color) return;
    m_background = color;
    invalidate();
}

bool LumoObject::isMouseOver() const {
    const LumoDispatcher* const asked = dispatcher();
    return asked && asked->isOver(this);
}

bool LumoObject::isMousePressed() const {
    const LumoDispatcher* const asked = dispatcher();
    return asked && asked->isPressed(this);
}

void LumoObject::selectionChanged() {}
void LumoObject::highlightChanged() {}
void LumoObject::childDies(LumoObject*) {}

// ---- geometry ----

LumoRect LumoObject::getRect() const {
    return m_rect;
}

void LumoObject::setRect(const LumoRect& rect) {
    if (m_rect == rect) return;
    const bool resized = rect.size != m_rect.size;
    dirtyPlace();
    m_rect = rect;
    if (resized) renewPicture();
    dirtyPlace();
    const bool settled = m_inCustomLayout && (!resized || m_children.empty());
    if (settled) return requireLayoutMarked();
    setRequireToVerifyLayout(true);
}

LumoRect LumoObject::getBoundingRect() const {
    return {{0, 0}, getRect().size};
}

LumoRect LumoObject::getContentRect() const {
    return getBoundingRect();
}

bool LumoObject::ptInRect(LumoPoint point) const {
    return lumoPointInRect(point, getBoundingRect());
}

LumoPoint LumoObject::originInRoot() const {
    LumoPoint origin;
    for (const LumoObject* object = this; object->m_parent; object = object->m_parent)
        origin += object->getRect().origin;
    return origin;
}

LumoPoint LumoObject::translatePoint(LumoPoint point, const LumoObject* other) const {
    const LumoPoint origin = point + originInRoot();
    return other ? origin - other->originInRoot() : origin;
}

LumoRect LumoObject::translateRect(const LumoRect& rect, const LumoObject* other) const {
    return {translatePoint(rect.origin, other), rect.size};
}

// ---- layout ----

void LumoObject::setRequireToVerifyLayout(bool require) {
    setRequireToVerifyLayout(require, false);
}

void LumoObject::setRequireToVerifyLayout(bool require, bool recursive) {
    m_layoutMarked = require;
    if (recursive) markDescendants(require);
    if (!require) return;
    requireLayoutMarked();
    tellAncestorsOfMark();
}

void LumoObject::markDescendants(bool require) {
    m_descendantMarked = require && !m_children.empty();
    // By index: the hook may change the children.
    for (size_t i = 0; i < m_children.size(); ++i) {
        LumoObject* const child = m_children[i];
        child->m_layoutMarked = require;
        child->markDescendants(require);
        if (require) child->requireLayoutMarked();
    }
}

/// Always up to the root: below one that was hidden during a pass, marks stand without a mark
/// above.
void LumoObject::tellAncestorsOfMark() {
    for (LumoObject* object = m_parent; object; object = object->m_parent)
        object->m_descendantMarked = true;
    if (LumoContext* const found = context()) found->notifyLayoutRequired(diagram());
}

bool LumoObject::requireLayout() const {
    return m_layoutMarked || m_descendantMarked;
}

void LumoObject::layout() {
    for (int round = 0; round < maxLayoutRounds && requireLayout(); ++round)
        layoutRound();
}

void LumoObject::layoutRound() {
    if (!getVisible()) return;
    if (m_layoutMarked) {
        m_layoutMarked = false;
        const QScopedValueRollback<bool> guard(m_inCustomLayout, true);
        customLayout();
    }
    if (!m_descendantMarked) return;
    m_descendantMarked = false;
    layoutChildren(0);
    layoutChildren(1);
}

void LumoObject::layoutChildren(int order) {
    // By index: a hook may change the children. What is missed then is marked for the next round.
    for (size_t i = 0; i < m_children.size(); ++i) {
        LumoObject* const child = m_children[i];
        if (child->requireLayout() && std::min(child->layoutOrder(), 1) == order)
            child->layoutRound();
    }
}

void LumoObject::autoResize() {}
void LumoObject::requireLayoutMarked() {}
void LumoObject::customLayout() {}

int LumoObject::layoutOrder() const {
    return 0;
}

// ---- dirty regions and painting ----

LumoRect LumoObject::customDirtyRect() const {
    return getBoundingRect();
}

void LumoObject::invalidate() {
    addDirtyRect(customDirtyRect());
}

void LumoObject::addDirtyRect(const LumoRect& rect) {
    addDirtyUpwards(this, rect);
}

/// Makes dirty where this object shows in its parent. Its own picture stays.
void LumoObject::dirtyPlace() {
    if (!m_parent) return addDirtyUpwards(this, customDirtyRect());
    if (!getVisible()) return;
    const LumoRect place = lumoMovedRect(customDirtyRect(), m_rect.origin);
    const bool clips = m_parent->clipsChildren();
    addDirtyUpwards(m_parent,
                    clips ? lumoIntersectedRect(place, m_parent->getBoundingRect()) : place);
}

void LumoObject::addDirtyUpwards(LumoObject* object, LumoRect rect) {
    for (; object->m_parent; object = object->m_parent) {
        object->renewPicture();
        if (!object->getVisible()) return;
        rect = lumoMovedRect(rect, object->m_rect.origin);
        if (object->m_parent->clipsChildren())
            rect = lumoIntersectedRect(rect, object->m_parent->getBoundingRect());
    }
    object->renewPicture();
    LumoContext* const found = object->context();
    if (found && object->getVisible()) found->setDirtyRect(object->diagram(), rect);
}

void LumoObject::flushDirtyRect() {
    if (LumoDiagram* const shown = diagram()) shown->flushDirtyRect();
}

void LumoObject::repaint() {
    invalidate();
    flushDirtyRect();
}

void LumoObject::setCachedAsPicture(bool cached) {
    m_cachedAsPicture = cached;
    renewPicture();
}

void LumoObject::renewPicture() {
    if (m_cachedAsPicture) m_pictureSerial = nextPictureSerial();
}

void LumoObject::dropPictures() {
    renewPicture();
    for (LumoObject* child : m_children)
        child->dropPictures();
}

bool LumoObject::clipsChildren() const {
    return false;
}

void LumoObject::paint(LumoPaintConfig* config, LumoRect rect) {
    paintChildren(config, rect);
}

void LumoObject::paintChildren(LumoPaintConfig* config, const LumoRect& rect) {
    if (!clipsChildren()) {
        for (LumoObject* child : m_children)
            paintChild(child, config, rect);
        return;
    }
    const LumoRect shown = lumoIntersectedRect(rect, getBoundingRect());
    if (shown == LumoRect()) return;
    QPainter* const painter = config->qtPainter();
    const bool canClip = painter->paintEngine()->type() != QPaintEngine::SVG;
    const QScopedValueRollback<const LumoObject*> cut(config->cutBy, canClip ? nullptr : this);
    painter->save();
    painter->setWorldTransform(config->worldTransform(this));
    painter->setClipRect(QRect(0, 0, getRect().size.width, getRect().size.height),
                         Qt::IntersectClip);
    for (LumoObject* child : m_children)
        paintChild(child, config, shown);
    painter->restore();
}

void LumoObject::paintChild(LumoObject* child, LumoPaintConfig* config,
                            const LumoRect& rect) const {
    const LumoPoint origin = child->getRect().origin;
    // The cheaper question first: most children of a large canvas are out of sight.
    if (!lumoIntersectsRect(lumoMovedRect(child->customDirtyRect(), origin), rect)) return;
    if (!child->getVisible()) return;
    if (config->cutBy && sticksOut(child, config->cutBy)) return;
    ++config->paintedObjects;
    LumoPictureCache* const cache = child->isCachedAsPicture() ? config->pictureCache() : nullptr;
    if (cache && cache->paint(child, config)) return;
    child->paint(config, lumoMovedRect(rect, LumoPoint() - origin));
}

// ---- events ----

bool LumoObject::shouldTriggerMouseDown(LumoEvent event) {
    return ptInRect(event.point);
}

bool LumoObject::shouldTriggerMouseMove(LumoEvent event) {
    return ptInRect(event.point);
}

bool LumoObject::shouldTriggerMouseUp(LumoEvent) {
    return true;
}

bool LumoObject::shouldTriggerMouseDoubleClick(LumoEvent event) {
    return ptInRect(event.point);
}

bool LumoObject::shouldForwardEventToNeighbors(LumoEvent) {
    return true;
}

void LumoObject::registerEventResponder(LumoEventResponderType type, LumoEventResponder responder) {
    m_responders.emplace_back(type, std::move(responder));
}

bool LumoObject::triggerEventResponder(LumoEventResponderType type, const LumoEvent& event) {
    bool gone = false;
    bool* const outerFlag = std::exchange(m_goneFlag, &gone);
    bool goesOn = true;
    for (size_t i = 0; goesOn && !gone && i < m_responders.size(); ++i) {
        if (m_responders[i].first != type) continue;
        // A copy: it may add responders or destroy this object.
        const LumoEventResponder responder = m_responders[i].second;
        goesOn = responder(event);
    }
    if (!gone) {
        m_goneFlag = outerFlag;
        return goesOn;
    }
    if (outerFlag) *outerFlag = true;
    return false;
}

void LumoObject::customMouseWheel(LumoEvent, bool&) {}
void LumoObject::customMouseDragging(LumoEvent, bool&) {}
void LumoObject::customMouseDrop(LumoEvent, bool&) {}
void LumoObject::customKeyDown(LumoEvent, bool&) {}
