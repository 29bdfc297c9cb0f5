#pragma once

#include <QLineEdit>
#include <QMenu>
#include <QPointer>
#include <QScrollBar>
#include <QTest>
#include <QTimer>
#include <QVBoxLayout>

#include "canvas/base/canvas_style.h"
#include "canvas/base/context.h"
#include "canvas/base/image_resource_provider_linux.h"
#include "canvas/items/database_item_body.h"
#include "canvas/items/item.h"
#include "canvas/items/text_based_item_body.h"
#include "canvas/links/join_link.h"
#include "canvas/links/join_link_adaptor.h"
#include "canvas/playground/demo_diagram.h"
#include "canvas/view/canvas_commands.h"
#include "canvas/view/lumo_ui_view.h"
#include "model/callbacks.h"
#include "support/canvas_probes.h"
#include "support/dice.h"

namespace QB::DiagramLumo {

/// Counts that each drag ends with one Drop.
class WatchedDiagram : public QBLumoDiagram {
public:
    using QBLumoDiagram::QBLumoDiagram;

    bool isDragged() const { return m_dragged; }
    QStringList takeFaults() { return std::exchange(m_faults, {}); }

protected:
    void customMouseDragging(LumoEvent event, bool& stop) override {
        m_dragged = true;
        QBLumoDiagram::customMouseDragging(event, stop);
    }
    void customMouseDrop(LumoEvent event, bool& stop) override {
        if (!std::exchange(m_dragged, false)) m_faults << "a Drop without a drag";
        QBLumoDiagram::customMouseDrop(event, stop);
    }

private:
    bool m_dragged = false;
    QStringList m_faults;
};

/// What the host does when the diagram tells it of the user's doing.
enum class Mood { Calm, DestroysAtOnce, DestroysLater };

/// A window with a diagram and a line of text beside it, and a host that may destroy things.
class MonkeyDesk {
public:
    explicit MonkeyDesk(int seed) : dice(seed) {
        LumoImageResourceProvider::setCurrent(&images);
        isDark() = false;
        Callback::isDarkTheme = [] {
            return isDark();
        };
        view = QBLumoUIView::create(&context, &window);
        commands = new QBCanvasCommands(view);
        auto* const layout = new QVBoxLayout(&window);
        layout->setContentsMargins(6, 6, 6, 6);
        layout->addWidget(view);
        layout->addWidget(new QLineEdit(&window));
        // Qt runs an event loop of its own in the menu of a scroll bar.
        for (QWidget* const part : window.findChildren<QWidget*>())
            if (qobject_cast<QScrollBar*>(part) || qobject_cast<QLineEdit*>(part))
                part->setContextMenuPolicy(Qt::PreventContextMenu);
        listen();
        showNewDiagram();
        window.resize(520, 440);
        window.show();
        if (!QTest::qWaitForWindowExposed(&window)) qFatal("the window never showed");
        window.activateWindow();
        view->setFocus();
        settle();
    }
    ~MonkeyDesk() {
        Callback::isDarkTheme = nullptr;
        delete menu;
        // In any order.
        if (dice.isOneIn(2)) delete view;
        diagram.reset();
        LumoImageResourceProvider::setCurrent(nullptr);
    }
    MonkeyDesk(const MonkeyDesk&) = delete;
    MonkeyDesk& operator=(const MonkeyDesk&) = delete;

    static bool& isDark() {
        static bool dark = false;
        return dark;
    }
    static void settle() {
        for (int i = 0; i < 2; ++i) {
            QCoreApplication::processEvents();
            QCoreApplication::sendPostedEvents();
        }
    }

    void showNewDiagram() {
        auto fresh = std::make_unique<WatchedDiagram>(&context, view->getControl());
        fresh->setBackgroundColor(themePalette().canvas);
        fillDemoDiagram(fresh.get(), 4 + dice.pick(8), dice.pick(9));
        for (QBLumoItem* item : fresh->items())
            listenTo(item);
        if (dice.isOneIn(2)) context.setActiveDiagram(view->getControl(), fresh.get());
        diagram = std::move(fresh);
        context.setActiveDiagram(view->getControl(), diagram.get());
    }

    void listenTo(QBLumoItem* item) {
        item->setFieldSelectionHandler(
            [this](QBLumoItem* of, const std::string&, bool) { react(of); });
        if (auto* const text = dynamic_cast<QBLumoTextBasedItemBody*>(item->getBody()))
            text->setEditButtonHandler([this](QBLumoTextBasedItemBody* of) { react(of->item()); });
    }

    /// Destroys @p object, or another one; most often nothing.
    void react(LumoObject* object) {
        if (!diagram || mood == Mood::Calm || dice.isOneIn(2)) return;
        if (dice.isOneIn(3)) object = anyChild();
        if (!object || object->getParent() != diagram.get()) return;
        if (mood == Mood::DestroysAtOnce) return destroy(object);
        const uint64_t serial = static_cast<QBLumoObject*>(object)->serial();
        QTimer::singleShot(0, &window, [this, serial] {
            for (LumoObject* child : children())
                if (static_cast<QBLumoObject*>(child)->serial() == serial) return destroy(child);
        });
    }
    void destroy(LumoObject* child) {
        if (dice.isOneIn(4)) {
            delete child;
            return;
        }
        diagram->removeChild(child);
        delete child;
    }

    std::vector<LumoObject*> children() const {
        return diagram ? diagram->getChildren() : std::vector<LumoObject*>();
    }
    LumoObject* anyChild() {
        const auto all = children();
        return all.empty() ? nullptr : dice.pickFrom(all);
    }
    QBLumoItem* anyItem() {
        const auto all = diagram->items();
        return all.empty() ? nullptr : dice.pickFrom(all);
    }
    /// On the viewport.
    QPoint shownAt(LumoPoint point) const {
        const LumoControlPoint at = view->getControl()->diagramSpaceToControlSpace(point);
        return {at.x, at.y};
    }

    Test::Dice dice;
    QBLumoImageResourceProvider_LINUX images;
    QBLumoContext context;
    std::unique_ptr<WatchedDiagram> diagram;
    Probes probes;
    QWidget window;
    QBLumoUIView* view = nullptr;          // owned by the window
    QBCanvasCommands* commands = nullptr;  // owned by the view
    QPointer<QMenu> menu;
    Mood mood = Mood::Calm;

private:
    void listen() {
        const auto reactToEach = [this](const auto& objects) {
            for (size_t i = objects.size(); i > 0; --i)
                reactIfThere(objects[i - 1]);
        };
        context.setItemsWillBeDeleted(reactToEach);
        context.setJoinLinksWillBeDeleted(reactToEach);
        context.setItemSelectionChanged([this](QBLumoItem* item, bool) {
            if (dice.isOneIn(4)) react(item);
        });
        context.setFieldLinkDrawn([this](QBLumoItem* from, const std::string& field, QBLumoItem* to,
                                         const std::string& toField) {
            addDemoLink(diagram.get(), from, field, to, toField, dice.pick(7))
                ->playPromptAnimation();
            react(to);
        });
        context.setItemBodyDoubleClicked([this](QBLumoBaseItemBody* body) { react(body->item()); });
        context.setJoinLinkDoubleClicked([this](QBLumoJoinLink* link, bool) { react(link); });
        context.setItemAliasWanted([this](QBLumoItem* item) {
            item->getBody()->setAlias("a" + std::to_string(dice.pick(99)));
            react(item);
        });
        context.setDiagramEmptinessChanged([this](bool empty) {
            if (empty && dice.isOneIn(2))
                QTimer::singleShot(0, &window, [this] {
                    if (diagram && children().empty()) fillDemoDiagram(diagram.get(), 5, 4);
                });
        });
        QObject::connect(
            view, &LumoUIScrollView::signalRightClickMenu, &window,
            [this](LumoUIScrollView*, const LumoUIRightClickParam& param) { openMenu(param); });
    }
    /// What was told before may have destroyed it.
    void reactIfThere(LumoObject* object) {
        const auto all = children();
        if (std::find(all.begin(), all.end(), object) != all.end()) react(object);
    }
    void openMenu(const LumoUIRightClickParam& param) {
        delete menu;
        menu = new QMenu(&window);
        const auto block = std::static_pointer_cast<RightClickBlock>(param.block());
        menu->addAction("act", &window, [this, block] { reactIfThere(block->clicked); });
        if (dice.isOneIn(2)) menu->popup(param.point());
    }
};

}  // namespace QB::DiagramLumo
