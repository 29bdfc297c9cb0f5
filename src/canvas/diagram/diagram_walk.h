#pragma once

#include <algorithm>
#include <vector>

#include "canvas/diagram/diagram.h"

namespace QB::DiagramLumo {

/// Children that a loop has yet to come to. What leaves the diagram meanwhile drops out, so that a
/// function that is told of one may destroy any of them.
class QBLumoDiagram::Walk {
public:
    template <typename Objects>
    Walk(QBLumoDiagram* diagram, const Objects& objects)
        : m_diagram(diagram), m_objects(objects.begin(), objects.end()) {
        m_diagram->m_walks.push_back(this);
        std::reverse(m_objects.begin(), m_objects.end());
    }
    Walk(const Walk&) = delete;
    Walk& operator=(const Walk&) = delete;
    ~Walk() {
        auto& walks = m_diagram->m_walks;
        walks.erase(std::find(walks.begin(), walks.end(), this));
    }

    /// Null at the end.
    LumoObject* next() {
        if (m_objects.empty()) return nullptr;
        LumoObject* const object = m_objects.back();
        m_objects.pop_back();
        return object;
    }
    /// Those that are still to come.
    std::vector<LumoObject*> rest() const { return {m_objects.rbegin(), m_objects.rend()}; }
    bool holds(const LumoObject* object) const {
        return std::find(m_objects.begin(), m_objects.end(), object) != m_objects.end();
    }
    void forget(const LumoObject* object) {
        m_objects.erase(std::remove(m_objects.begin(), m_objects.end(), object), m_objects.end());
    }

private:
    QBLumoDiagram* const m_diagram;      // not owned: outlives its loops
    std::vector<LumoObject*> m_objects;  // not owned; the next one last
};

}  // namespace QB::DiagramLumo
