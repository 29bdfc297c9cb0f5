#include "canvas/view/diagram_accessible.h"

#include <algorithm>

#include "canvas/diagram/diagram.h"
#include "canvas/items/item.h"
#include "canvas/links/join_link.h"
#include "canvas/view/diagram_accessible_parts.h"
#include "canvas/view/lumo_ui_view.h"
#include "platform/lumo/lumo_control.h"

namespace QB::DiagramLumo {

namespace {

QAccessibleInterface* makeInterface(const QString&, QObject* object) {
    auto* const view = qobject_cast<QBLumoUIView*>(object);
    return view ? new AccessibleDiagramView(view) : nullptr;
}

AccessiblePart* newPart(DiagramAccessible* tree, const DiagramAccessible::Place& place) {
    if (place.part == DiagramAccessible::editButton) return new AccessibleEditButton(tree, place);
    if (place.part != DiagramAccessible::whole) return new AccessibleRow(tree, place);
    if (dynamic_cast<QBLumoItem*>(tree->find(place.serial))) return new AccessibleItem(tree, place);
    return new AccessibleLink(tree, place);
}

bool bySerial(const QBLumoObject* a, const QBLumoObject* b) {
    return a->serial() < b->serial();
}

}  // namespace

void installDiagramAccessible() {
    QAccessible::installFactory(makeInterface);
}

DiagramAccessible::DiagramAccessible(QBLumoUIView* view) : m_view(view) {
    connect(view, &LumoUIScrollView::contentChanged, this, &DiagramAccessible::contentChanged);
    connect(view, &LumoUIScrollView::displayChanged, this, [this] {
        // Everything has moved on the screen: said once, of the view.
        if (QAccessible::isActive() && !m_interfaces.empty())
            tell(root(), QAccessible::LocationChanged);
    });
}

DiagramAccessible::~DiagramAccessible() {
    m_dying = true;  // the view's own end says it all
    while (!m_interfaces.empty())
        dropInterface(m_interfaces.begin()->first);
}

QBLumoDiagram* DiagramAccessible::diagram() const {
    return m_view->lumoDiagram();
}

// ---- objects ----

/// No signal tells of each change of the children; comparing them is cheap.
bool DiagramAccessible::isIndexFresh() const {
    const QBLumoDiagram* const shown = diagram();
    if (m_indexStale) return false;
    if (!shown) return m_indexed.empty();
    return m_indexedMode == shown->getRelationMode() && m_indexed == shown->getChildren();
}

void DiagramAccessible::buildIndex() {
    m_indexStale = false;
    m_shown.clear();
    m_bySerial.clear();
    m_indexed.clear();
    const QBLumoDiagram* const shown = diagram();
    if (!shown) return;
    m_indexed = shown->getChildren();
    m_indexedMode = shown->getRelationMode();
    for (QBLumoItem* item : shown->items()) {
        m_bySerial[item->QBLumoObject::serial()] = item;
        if (item->getVisible()) m_shown.push_back(item);
    }
    std::sort(m_shown.begin(), m_shown.end(), bySerial);
    const auto links = ptrdiff_t(m_shown.size());
    for (QBLumoJoinLink* link : shown->joinLinks()) {
        m_bySerial[link->QBLumoObject::serial()] = link;
        if (link->isShown()) m_shown.push_back(link);
    }
    std::sort(m_shown.begin() + links, m_shown.end(), bySerial);
}

const std::vector<QBLumoObject*>& DiagramAccessible::shownObjects() {
    if (!isIndexFresh()) buildIndex();
    return m_shown;
}

int DiagramAccessible::indexOfShown(const QBLumoObject* object) {
    const std::vector<QBLumoObject*>& objects = shownObjects();
    const auto found = std::find(objects.begin(), objects.end(), object);
    return found == objects.end() ? -1 : int(found - objects.begin());
}

QBLumoObject* DiagramAccessible::find(uint64_t serial) {
    if (!isIndexFresh()) buildIndex();
    const auto found = m_bySerial.find(serial);
    if (found == m_bySerial.end()) return nullptr;
    if (found->second->QBLumoObject::serial() == serial) return found->second;
    // Another object was made where one of the index was.
    m_indexStale = true;
    return find(serial);
}

// ---- interfaces ----

QAccessibleInterface* DiagramAccessible::root() const {
    return QAccessible::queryAccessibleInterface(m_view);
}

QAccessibleInterface* DiagramAccessible::interfaceOf(const Place& place) {
    const auto found = m_interfaces.find(place);
    if (found != m_interfaces.end()) return QAccessible::accessibleInterface(found->second.id);
    if (!find(place.serial)) return nullptr;
    AccessiblePart* const part = newPart(this, place);
    Entry& entry = m_interfaces[place];
    entry.id = QAccessible::registerAccessibleInterface(part);
    const QAccessible::State state = part->state();
    entry.told = {part->text(QAccessible::Name), bool(state.selected), bool(state.checked),
                  part->rectInDiagram()};
    return part;
}

void DiagramAccessible::interfaceDied(const Place& place) {
    m_interfaces.erase(place);
}

void DiagramAccessible::dropInterface(const Place& place) {
    const auto found = m_interfaces.find(place);
    if (found == m_interfaces.end()) return;
    const QAccessible::Id id = found->second.id;
    if (QAccessibleInterface* const interface = QAccessible::accessibleInterface(id);
        interface && QAccessible::isActive() && !m_dying)
        tell(interface, QAccessible::ObjectDestroyed);
    m_interfaces.erase(place);
    if (QAccessible::accessibleInterface(id)) QAccessible::deleteAccessibleInterface(id);
}

void DiagramAccessible::dropInterfaces(uint64_t serial) {
    // The parts of an item before itself: an interface that dies must still find its parent.
    std::vector<Place> parts;
    for (auto at = m_interfaces.lower_bound({serial, editButton});
         at != m_interfaces.end() && at->first.serial == serial; ++at)
        if (at->first.part != whole) parts.push_back(at->first);
    for (const Place& part : parts)
        dropInterface(part);
    dropInterface({serial, whole});
}

QAccessibleInterface* DiagramAccessible::focusedInterface() {
    const QBLumoDiagram* const shown = diagram();
    const auto* const focused =
        shown ? dynamic_cast<const QBLumoObject*>(shown->focusedObject()) : nullptr;
    if (!focused) return nullptr;
    const int row = shown->focusedRow();
    return interfaceOf({focused->serial(), row < 0 ? whole : row});
}

// ---- news ----

void DiagramAccessible::tell(QAccessibleInterface* interface, QAccessible::Event event) {
    if (!interface) return;
    QAccessibleEvent news(interface, event);
    QAccessible::updateAccessibility(&news);
}

void DiagramAccessible::takeDiagram() {
    m_listener.reset();
    while (!m_interfaces.empty())
        dropInterfaces(m_interfaces.begin()->first.serial);
    m_diagram = diagram();
    m_newestTold = 0;
    for (const QBLumoObject* object : shownObjects())
        m_newestTold = std::max(m_newestTold, object->serial());
    if (!m_diagram) return;
    m_listener = std::make_unique<QBEventListener>();
    m_diagram->childLeaves()->addListener(
        [this](LumoObject* object) {
            if (const auto* const ours = dynamic_cast<const QBLumoObject*>(object))
                dropInterfaces(ours->serial());
            m_indexStale = true;
        },
        m_listener->guarantor());
    m_diagram->focusChanged()->addListener([this](LumoObject*, int) { tellFocus(); },
                                           m_listener->guarantor());
}

void DiagramAccessible::contentChanged() {
    m_indexStale = true;
    if (m_diagram != diagram()) return takeDiagram();
    dropGone();
    if (!QAccessible::isActive()) return;
    tellCreated();
    tellChanges();
}

/// Links that no longer show, rows and buttons that are no more.
void DiagramAccessible::dropGone() {
    std::vector<Place> gone;
    for (const auto& [place, entry] : m_interfaces) {
        const QAccessibleInterface* const interface = QAccessible::accessibleInterface(entry.id);
        if (!interface || !interface->isValid() || interface->state().invisible)
            gone.push_back(place);
    }
    for (const Place& place : gone)
        place.part == whole ? dropInterfaces(place.serial) : dropInterface(place);
}

void DiagramAccessible::tellCreated() {
    uint64_t newest = m_newestTold;
    const std::vector<QBLumoObject*> objects = shownObjects();
    for (const QBLumoObject* object : objects) {
        if (object->serial() <= m_newestTold) continue;
        newest = std::max(newest, object->serial());
        tell(interfaceOf({object->serial(), whole}), QAccessible::ObjectCreated);
    }
    m_newestTold = newest;
}

void DiagramAccessible::tellChanges() {
    const std::map<Place, Entry> before = m_interfaces;
    for (const auto& [place, entry] : before) {
        auto* const part = static_cast<AccessiblePart*>(QAccessible::accessibleInterface(entry.id));
        if (!part) continue;
        const QAccessible::State state = part->state();
        tellChange(place, {part->text(QAccessible::Name), bool(state.selected), bool(state.checked),
                           part->rectInDiagram()});
    }
}

void DiagramAccessible::tellChange(const Place& place, const Told& now) {
    Entry& entry = m_interfaces[place];
    const Told before = std::exchange(entry.told, now);
    QAccessibleInterface* const interface = QAccessible::accessibleInterface(entry.id);
    if (before.name != now.name) tell(interface, QAccessible::NameChanged);
    // Rows move with their item.
    if (before.rect != now.rect && place.part == whole)
        tell(interface, QAccessible::LocationChanged);
    if (before.selected != now.selected)
        tell(interface, now.selected ? QAccessible::SelectionAdd : QAccessible::SelectionRemove);
    if (before.checked == now.checked) return;
    QAccessible::State changed;
    changed.checked = true;
    QAccessibleStateChangeEvent news(interface, changed);
    QAccessible::updateAccessibility(&news);
}

void DiagramAccessible::tellFocus() {
    if (QAccessible::isActive() && m_view->hasFocus()) tell(focusedInterface(), QAccessible::Focus);
}

void DiagramAccessible::focusArrived() {
    // Qt tells of the view itself after the event of the focus.
    if (QAccessible::isActive())
        QMetaObject::invokeMethod(
            this, [this] { tellFocus(); }, Qt::QueuedConnection);
}

// ---- places ----

QRect DiagramAccessible::onScreen(const LumoRect& rect) const {
    const LumoControl* const control = m_view->getControl();
    const LumoControlPoint from = control->diagramSpaceToControlSpace(rect.origin);
    const LumoControlPoint to =
        control->diagramSpaceToControlSpace({lumoMaxX(rect), lumoMaxY(rect)});
    return {m_view->viewport()->mapToGlobal({from.x, from.y}), QSize(to.x - from.x, to.y - from.y)};
}

LumoPoint DiagramAccessible::inDiagram(int screenX, int screenY) const {
    const QPoint point = m_view->viewport()->mapFromGlobal({screenX, screenY});
    return m_view->getControl()->controlSpaceToDiagramSpace({point.x(), point.y()});
}

}  // namespace QB::DiagramLumo
