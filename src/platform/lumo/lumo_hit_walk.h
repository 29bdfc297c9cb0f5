#pragma once

#include <functional>
#include <utility>
#include <vector>

#include "platform/lumo/lumo_object.h"

/// Walks the tree at a point: visible objects, topmost first, children before parents. Where an
/// object does not paint, nothing of it is hit: what a scroll view clips cannot be clicked.
class LumoHitWalk {
public:
    using Asked = std::function<bool(LumoObject*, LumoPoint)>;

    LumoHitWalk(Asked hit, Asked forwards)
        : m_hit(std::move(hit)), m_forwards(std::move(forwards)) {}

    std::vector<LumoObject*> walk(LumoObject* root, LumoPoint point) {
        visit(root, point);
        return std::move(m_found);
    }

private:
    /// False keeps the event from the siblings below @p object.
    bool visit(LumoObject* object, LumoPoint point) {
        if (!object->getVisible() || !lumoPointInRect(point, object->customDirtyRect()))
            return true;
        if (!object->clipsChildren() || object->ptInRect(point)) visitChildren(object, point);
        if (!m_hit(object, point)) return true;
        m_found.push_back(object);
        return m_forwards(object, point);
    }

    void visitChildren(LumoObject* object, LumoPoint point) {
        const std::vector<LumoObject*>& children = object->getChildren();
        for (auto child = children.rbegin(); child != children.rend(); ++child)
            if (!visit(*child, point - (*child)->getRect().origin)) return;
    }

    Asked m_hit;
    Asked m_forwards;
    std::vector<LumoObject*> m_found;
};
