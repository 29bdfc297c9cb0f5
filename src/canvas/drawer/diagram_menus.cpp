#include "canvas/drawer/diagram_menus.h"

#include <algorithm>

#include <QMenu>

#include "canvas/base/context.h"
#include "canvas/diagram/diagram.h"
#include "canvas/drawer/drawer_tell.h"
#include "canvas/items/item.h"
#include "canvas/items/text_based_item_body.h"
#include "canvas/links/join_link.h"
#include "canvas/links/join_link_adaptor.h"
#include "canvas/view/lumo_ui_view.h"
#include "model/callbacks.h"
#include "platform/lumo/lumo_control.h"
#include "platform/tolk/text_ids.h"
#include "platform/tolk/tolk.h"
#include "widgets/condition_operators.h"
#include "widgets/menu_search.h"
#include "widgets/visible_edges.h"

namespace QB {

using namespace DiagramLumo;

namespace {

/// The field that a right click was on; null for none, and for the wildcard.
const std::string* fieldOf(const RightClickBlock& block) {
    const auto found = block.extras.find("FieldName");
    if (found == block.extras.end() || found->second.toString().empty()) return nullptr;
    return &found->second.toString();
}

/// A menu shows one key by itself.
QString withKeys(const QString& text, const QList<QKeySequence>& keys) {
    return text + '\t' + QKeySequence::listToString(keys, QKeySequence::NativeText);
}

void addZoom(QMenu* menu, Tolk::TextId text, const QList<QKeySequence>& keys, LumoControl* control,
             void (LumoControl::*zoom)()) {
    QAction* const action = menu->addAction(withKeys(Tolk::localize(text), keys));
    action->setShortcuts(keys);
    QObject::connect(action, &QAction::triggered, [control, zoom] { (control->*zoom)(); });
}

}  // namespace

QBLumoDiagramDrawer_LINUX::Menus::Menus(QBLumoDiagramDrawer_LINUX* drawer) : m_drawer(drawer) {
    m_drawer->diagram()->childLeaves()->addListener(
        [this](const LumoObject* child) {
            if (m_shown.count(child)) close();
        },
        guarantor());
}

QBLumoDiagramDrawer_LINUX::Menus::~Menus() = default;

void QBLumoDiagramDrawer_LINUX::Menus::close() {
    m_shown.clear();
    if (m_menu) m_menu->close();
}

/// A click may arrive after what it was on has gone.
QBLumoDiagramDrawer_LINUX::Menus::Objects QBLumoDiagramDrawer_LINUX::Menus::stillThere(
    const Objects& objects) const {
    const Objects& children = m_drawer->diagram()->getChildren();
    const std::set<const LumoObject*> present(children.begin(), children.end());
    Objects result;
    for (LumoObject* object : objects)
        if (present.count(object)) result.push_back(object);
    return result;
}

void QBLumoDiagramDrawer_LINUX::Menus::show(const LumoUIRightClickParam& param) {
    close();
    const auto* const block = static_cast<const RightClickBlock*>(param.block().get());
    if (!block || (block->clicked && stillThere({block->clicked}).empty())) return;
    Objects objects = stillThere(block->selection);
    if (block->clicked &&
        std::find(objects.begin(), objects.end(), block->clicked) == objects.end())
        objects = {block->clicked};

    auto menu = std::make_unique<QMenu>(m_drawer->getView());
    const Targets targets = targetsOf(objects);
    if (!block->clicked)
        fillCanvasMenu(menu.get());
    else if (dynamic_cast<QBLumoJoinLink*>(block->clicked))
        fillJoinMenu(menu.get(), targets);
    else
        fillItemMenu(menu.get(), *block, targets);
    if (block->clicked) m_shown.insert(objects.begin(), objects.end());

    QObject::connect(menu.get(), &QMenu::aboutToHide, menu.get(), &QObject::deleteLater);
    letTypingFindEntries(menu.get());
    showEdges(menu.get());
    m_menu = menu.release();
    m_menu->popup(param.point());
}

// ---- what a menu is about -------------------------------------------------------------------

QBLumoDiagramDrawer_LINUX::Menus::Targets QBLumoDiagramDrawer_LINUX::Menus::targetsOf(
    const Objects& objects) const {
    Targets targets;
    for (LumoObject* object : objects) {
        if (const auto* const item = dynamic_cast<const QBLumoItem*>(object)) {
            if (const long id = m_drawer->idOf(item)) targets.sources.push_back(id);
        } else if (const auto* const link = dynamic_cast<const QBLumoJoinLink*>(object)) {
            if (const LinkId id = m_drawer->idOf(link); id.join) targets.links.push_back(id);
        }
    }
    return targets;
}

QBLumoDiagramDrawer_LINUX::Menus::Objects QBLumoDiagramDrawer_LINUX::Menus::objectsOf(
    const Targets& targets) const {
    Objects objects;
    for (const long id : targets.sources)
        if (QBLumoItem* const item = m_drawer->itemOf(m_drawer->sourceWithId(id)))
            objects.push_back(item);
    for (const LinkId id : targets.links)
        if (QBLumoJoinLink* const link = m_drawer->linkWithId(id)) objects.push_back(link);
    return objects;
}

QBLumoDiagramDrawer::Sources QBLumoDiagramDrawer_LINUX::Menus::sourcesAt(
    const Targets& targets) const {
    Sources sources;
    const auto add = [&sources](Source* source) {
        if (source && std::find(sources.begin(), sources.end(), source) == sources.end())
            sources.push_back(source);
    };
    for (const long id : targets.sources)
        add(m_drawer->sourceWithId(id));
    for (const LinkId id : targets.links) {
        const QBLumoJoinLink* const link = m_drawer->linkWithId(id);
        if (!link) continue;
        for (const auto& [left, right] : link->allAdaptorPairs())
            for (const QBLumoJoinLinkAdaptor* end : {left, right})
                add(m_drawer->componentOf(end->findParent<QBLumoItem>()));
    }
    return sources;
}

// ---- entries --------------------------------------------------------------------------------

void QBLumoDiagramDrawer_LINUX::Menus::fillCanvasMenu(QMenu* menu) const {
    LumoControl* const control = m_drawer->getControl();
    QMenu* const zoom = menu->addMenu(Tolk::localize(Tolk::TextCanvasZoom));
    addZoom(zoom, Tolk::TextCanvasZoomIn, {Qt::CTRL + Qt::Key_Plus, Qt::CTRL + Qt::Key_Equal},
            control, &LumoControl::zoomIn);
    addZoom(zoom, Tolk::TextCanvasZoomOut, {Qt::CTRL + Qt::Key_Minus}, control,
            &LumoControl::zoomOut);
    addZoom(zoom, Tolk::TextCanvasZoomReset, {Qt::CTRL + Qt::Key_0}, control,
            &LumoControl::zoomReset);
}

void QBLumoDiagramDrawer_LINUX::Menus::fillItemMenu(QMenu* menu, const RightClickBlock& block,
                                                    const Targets& targets) {
    const bool isSingle = targets.sources.size() == 1 && targets.links.empty();
    if (isSingle) addItemEdits(menu, targets.sources.front());
    addRefreshAndRemove(menu, targets);
    const std::string* const field = fieldOf(block);
    const auto* const clicked = dynamic_cast<const QBLumoItem*>(block.clicked);
    if (field && clicked) addFieldMenus(menu, m_drawer->idOf(clicked), *field);
}

void QBLumoDiagramDrawer_LINUX::Menus::addItemEdits(QMenu* menu, long source) const {
    QBLumoDiagramDrawer_LINUX* const drawer = m_drawer;
    menu->addAction(Tolk::localize(Tolk::TextCanvasEditAlias), [drawer, source] {
        if (Source* const found = drawer->sourceWithId(source)) drawer->editAlias(found);
    });
    const QBLumoItem* const item = drawer->itemOf(drawer->sourceWithId(source));
    const auto* const body = dynamic_cast<const QBLumoTextBasedItemBody*>(item->getBody());
    if (body && body->hasEditButton())
        menu->addAction(Tolk::localize(Tolk::TextCanvasEditText), [drawer, source] {
            if (Subquery* const found = drawer->subqueryOf(drawer->sourceWithId(source)))
                drawer->editSubquery(found);
        });
    menu->addSeparator();
}

void QBLumoDiagramDrawer_LINUX::Menus::addFieldMenus(QMenu* menu, long source,
                                                     const std::string& field) const {
    const auto add = [drawer = m_drawer, source, field](QMenu* to, const QString& text,
                                                        const auto& action) {
        to->addAction(text, [drawer, source, field, action] {
            if (Source* const found = drawer->sourceWithId(source)) action(drawer, found, field);
        });
    };
    using Drawer = QBLumoDiagramDrawer_LINUX;
    menu->addSeparator();
    QMenu* const where = menu->addMenu(QStringLiteral("WHERE"));
    for (const CompareOp op : operatorsInOrder())
        add(where, operatorText(op), [op](Drawer* drawer, Source* item, const std::string& name) {
            drawer->addWhereComparison(item, name, op);
        });
    QMenu* const groupBy = menu->addMenu(QStringLiteral("GROUP BY"));
    add(groupBy, Tolk::localize(Tolk::TextCanvasGroupByField),
        [](Drawer* drawer, Source* item, const std::string& name) {
            drawer->addGroupByField(item, name);
        });
    QMenu* const orderBy = menu->addMenu(QStringLiteral("ORDER BY"));
    const std::pair<const char*, OrderDirection> directions[] = {
        {"ASC", OrderDirectionAscending}, {"DESC", OrderDirectionDescending}};
    for (const auto& [text, direction] : directions)
        add(orderBy, QLatin1String(text),
            [direction = direction](Drawer* drawer, Source* item, const std::string& name) {
                drawer->addOrderByField(item, name, direction);
            });
}

void QBLumoDiagramDrawer_LINUX::Menus::fillJoinMenu(QMenu* menu, const Targets& targets) {
    if (targets.links.size() == 1 && targets.sources.empty())
        menu->addAction(Tolk::localize(Tolk::TextCanvasActionEditJoin),
                        [drawer = m_drawer, join = targets.links.front().join] {
                            if (Join* const found = drawer->joinWithId(join))
                                drawer->editJoin(found, true);
                        });
    addRefreshAndRemove(menu, targets);
}

void QBLumoDiagramDrawer_LINUX::Menus::addRefreshAndRemove(QMenu* menu, const Targets& targets) {
    menu->addAction(Tolk::localize(Tolk::TextRefresh), [this, targets] {
        const Sources sources = sourcesAt(targets);
        if (!sources.empty())
            tell(m_drawer->callbacks().requestRefreshItemComponentField, sources, true);
    });
    menu->addSeparator();
    menu->addAction(Tolk::localize(Tolk::TextRemove), [this, targets] {
        Callback::runOperationOnMainThread([this, targets, alive = guarantor()] {
            if (!alive.expired()) remove(targets);
        });
    });
}

// ---- removal --------------------------------------------------------------------------------

void QBLumoDiagramDrawer_LINUX::Menus::remove(const Targets& targets) {
    selectJust(targets);
    const QBLumoDiagram* const diagram = m_drawer->diagram();
    const Objects objects = objectsOf(targets);
    const auto isSelected = [diagram](LumoObject* object) {
        return diagram->isSelected(object);
    };
    if (!objects.empty() && std::all_of(objects.begin(), objects.end(), isSelected))
        m_drawer->diagram()->deleteSelection();
}

/// Other things may have been selected since the menu was shown.
void QBLumoDiagramDrawer_LINUX::Menus::selectJust(const Targets& targets) {
    QBLumoDiagram* const diagram = m_drawer->diagram();
    const Objects wanted = objectsOf(targets);
    const auto items = diagram->selectedItems();
    const auto links = diagram->selectedJoinLinks();
    std::set<const LumoObject*> selected(items.begin(), items.end());
    selected.insert(links.begin(), links.end());
    if (selected == std::set<const LumoObject*>(wanted.begin(), wanted.end())) return;
    diagram->clearSelection();
    // Whoever is told may take any of them away.
    for (size_t i = 0; i < wanted.size(); ++i)
        if (!stillThere({wanted[i]}).empty()) diagram->selectObject(wanted[i], true);
}

}  // namespace QB
