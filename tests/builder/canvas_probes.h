#pragma once

#include <deque>
#include <map>
#include <memory>
#include <set>
#include <utility>

#include <QStringList>

#include "canvas/diagram/diagram.h"
#include "canvas/items/item.h"
#include "platform/lumo/lumo_control.h"
#include "platform/lumo/lumo_dispatch.h"

namespace QB::DiagramLumo {

/// Watches every object of a diagram: pairs of Enter and Leave, and where an object was that has
/// died, so that it can be asked who still holds its address.
class Probes {
public:
    /// Begins to watch what has come into the tree below @p object.
    void watch(LumoObject* object) {
        if (m_objects.count(object) == 0) add(object);
        for (LumoObject* child : object->getChildren())
            watch(child);
    }
    bool isLive(const LumoObject* object) const { return m_objects.count(object) > 0; }
    /// What was wrong since the last call.
    QStringList takeFaults() { return std::exchange(m_faults, {}); }

    /// Of the dispatcher, what lies under the pointer; nothing once the pointer has left.
    void checkHover(const LumoDispatcher* dispatcher, bool pointerLeft) {
        for (const auto& [object, weak] : m_objects) {
            const std::shared_ptr<Probe> probe = weak.lock();
            const bool known = dispatcher->isDragging() ? probe->dragOver : probe->over;
            if (dispatcher->isOver(object) != known) fault("isOver without its Enter or Leave");
            if (object->getHighlighted() && !probe->over) fault("lit without the mouse");
            if (pointerLeft && (probe->over || probe->dragOver)) fault("an Enter without a Leave");
            if (!dispatcher->isDragging() && probe->dragOver) fault("a DragEnter without a Leave");
        }
    }
    /// Nobody holds what has died.
    void checkGhosts(const QBLumoDiagram* diagram, const LumoDispatcher* dispatcher) {
        for (LumoObject* ghost : m_ghosts) {
            if (isLive(ghost)) continue;  // another one took its place
            if (diagram->isSelected(ghost)) fault("a dead object is selected");
            if (diagram->focusedObject() == ghost) fault("a dead object has the focus");
            if (diagram->draggedItem() == ghost) fault("a dead object is dragged");
            if (dispatcher->isOver(ghost)) fault("a dead object is hovered");
            if (dispatcher->isPressed(ghost)) fault("a dead object is grabbed");
        }
    }

private:
    struct Probe {
        Probes* owner;
        LumoObject* object;
        bool over;
        bool dragOver;
        Probe(Probes* of, LumoObject* at, bool hovered)
            : owner(of), object(at), over(hovered), dragOver(false) {}
        Probe(const Probe&) = delete;
        Probe& operator=(const Probe&) = delete;
        ~Probe() { owner->died(object); }
    };

    void fault(const char* text) { m_faults << text; }

    /// The responders own the probe: it goes with the object.
    void add(LumoObject* object) {
        const auto probe = std::make_shared<Probe>(this, object, object->isMouseOver());
        m_objects[object] = probe;
        const auto on = [&](LumoEventResponderType type, bool Probe::*flag, bool value) {
            object->registerEventResponder(type, [this, probe, flag, value](const LumoEvent&) {
                if (probe.get()->*flag == value) fault(value ? "two Enters" : "two Leaves");
                probe.get()->*flag = value;
                return true;
            });
        };
        on(LumoMouseEnter, &Probe::over, true);
        on(LumoMouseLeave, &Probe::over, false);
        on(LumoDragEnter, &Probe::dragOver, true);
        on(LumoDragLeave, &Probe::dragOver, false);
    }
    void died(LumoObject* object) {
        constexpr size_t kept = 60;
        m_objects.erase(object);
        m_ghosts.push_back(object);
        if (m_ghosts.size() > kept) m_ghosts.pop_front();
    }

    std::map<const LumoObject*, std::weak_ptr<Probe>> m_objects;
    std::deque<LumoObject*> m_ghosts;  // addresses only
    QStringList m_faults;
};

}  // namespace QB::DiagramLumo
