#pragma once

#include <set>
#include <vector>

#include <QPointer>

#include "canvas/drawer/diagram_drawer_linux.h"
#include "engine/event_listener.h"

class LumoUIRightClickParam;
class QMenu;

namespace QB {

namespace DiagramLumo {
struct RightClickBlock;
}

/// The menus of items, of links and of the empty canvas.
///
/// A menu is shown and left to itself: no loop waits for it. It closes when something that it is
/// about leaves the canvas. Its entries know ids, look for what has them when they are chosen, and
/// do nothing where that is gone.
class QBLumoDiagramDrawer_LINUX::Menus : public QBEventListener {
public:
    /// Needs the diagram and the view. @p drawer is not owned and lives longer.
    explicit Menus(QBLumoDiagramDrawer_LINUX* drawer);
    ~Menus() override;

    void show(const LumoUIRightClickParam& param);

private:
    using Objects = std::vector<LumoObject*>;
    /// What was selected, as ids.
    struct Targets {
        std::vector<long> sources;
        std::vector<LinkId> links;
    };

    void close();
    Objects stillThere(const Objects& objects) const;
    Targets targetsOf(const Objects& objects) const;
    std::vector<LumoObject*> objectsOf(const Targets& targets) const;
    void fillCanvasMenu(QMenu* menu) const;
    void fillItemMenu(QMenu* menu, const DiagramLumo::RightClickBlock& block,
                      const Targets& targets);
    void addItemEdits(QMenu* menu, long source) const;
    void addFieldMenus(QMenu* menu, long source, const std::string& field) const;
    void fillJoinMenu(QMenu* menu, const Targets& targets);
    void addRefreshAndRemove(QMenu* menu, const Targets& targets);
    /// The sources themselves, and those at the ends of the links; each once.
    Sources sourcesAt(const Targets& targets) const;
    void remove(const Targets& targets);
    void selectJust(const Targets& targets);

    QBLumoDiagramDrawer_LINUX* const m_drawer;
    QPointer<QMenu> m_menu;               // owned by the view; destroys itself when closed
    std::set<const LumoObject*> m_shown;  // what m_menu is about
};

}  // namespace QB
