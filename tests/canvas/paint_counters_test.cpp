#include <gtest/gtest.h>

#include <memory>

#include <QTest>
#include <QWindow>

#include "canvas/base/context.h"
#include "canvas/diagram/diagram.h"
#include "canvas/items/item.h"
#include "canvas/links/join_link.h"
#include "canvas/links/join_link_adaptor.h"
#include "canvas/playground/demo_diagram.h"
#include "canvas/view/lumo_ui_view.h"
#include "platform/lumo/lumo_control.h"
#include "support/application.h"

namespace QB::DiagramLumo {
namespace {

constexpr int turnsOfNothing = 5;

/// What @p object paints, in the space of the diagram.
LumoRect placeOf(const LumoObject* object) {
    return lumoMovedRect(object->customDirtyRect(), object->getRect().origin);
}

/// The item with the links at it.
std::vector<const LumoObject*> movedWith(const QBLumoItem* item) {
    std::vector<const LumoObject*> moved{item};
    for (const QBLumoJoinLink* link : item->getAdaptor()->links())
        if (link->isShown()) moved.push_back(link);
    return moved;
}

LumoRect unionOf(const std::vector<const LumoObject*>& objects) {
    LumoRect all;
    for (const LumoObject* object : objects)
        all = lumoUnionRect(all, placeOf(object));
    return all;
}

int64_t areaOf(const LumoRect& rect) {
    return int64_t(rect.size.width) * rect.size.height;
}

/// 200 items and 300 links in a window of 1200 x 900.
class PaintCounters : public testing::Test {
protected:
    PaintCounters() {
        QB::Test::needApplication();
        view.reset(QBLumoUIView::create(&context, nullptr));
        diagram = std::make_unique<QBLumoDiagram>(&context, view->getControl());
        fillDemoDiagram(diagram.get(), 200, 300);
        context.setActiveDiagram(view->getControl(), diagram.get());
        view->resize(1200, 900);
        view->show();
        settle();
    }
    ~PaintCounters() override { view.reset(); }

    static void settle() {
        for (int i = 0; i < turnsOfNothing; ++i)
            QCoreApplication::processEvents();
    }
    /// In the window of the view.
    QPoint windowPoint(LumoPoint inDiagram) const {
        const LumoControlPoint place = view->getControl()->diagramSpaceToControlSpace(inDiagram);
        return view->viewport()->mapTo(view.get(), QPoint(place.x, place.y));
    }
    /// Of those that lie in view with their links, the one that takes the least room.
    QBLumoItem* itemInView() const {
        const LumoRect shown = view->getControl()->getDisplayRect();
        QBLumoItem* best = nullptr;
        for (QBLumoItem* item : diagram->items()) {
            if (item->getAdaptor()->links().empty()) continue;
            const LumoRect place = unionOf(movedWith(item));
            if (!lumoContainsRect(shown, place)) continue;
            if (!best || areaOf(place) < areaOf(unionOf(movedWith(best)))) best = item;
        }
        return best;
    }
    /// Null if there is none.
    QBLumoItem* itemWithLinksOutOfSight() const {
        const LumoRect shown = lumoInflateRect(view->getControl()->getDisplayRect(), 50, 50);
        for (QBLumoItem* item : diagram->items())
            if (!lumoIntersectsRect(unionOf(movedWith(item)), shown)) return item;
        return nullptr;
    }
    static LumoPoint gripOf(const QBLumoItem* item) {
        return item->getRect().origin + LumoPoint{100, 19};
    }

    QBLumoContext context;
    std::unique_ptr<QBLumoUIView> view;
    std::unique_ptr<QBLumoDiagram> diagram;
};

int countIn(const QBLumoDiagram& diagram, const LumoRect& rect) {
    int count = 0;
    for (const LumoObject* child : diagram.getChildren())
        if (child->getVisible() && lumoIntersectsRect(placeOf(child), rect)) ++count;
    return count;
}

TEST_F(PaintCounters, AStepOfADragPaintsOnceAndOnlyWhatItTouches) {
    const QBLumoItem* const item = itemInView();
    ASSERT_TRUE(item);
    view->viewport()->update();
    settle();
    const int allInView = view->objectsInLastPass();
    QWindow* const window = view->windowHandle();
    LumoPoint place = gripOf(item);
    QTest::mousePress(window, Qt::LeftButton, {}, windowPoint(place));
    place += {20, 20};
    QTest::mouseMove(window, windowPoint(place));
    settle();
    for (int step = 0; step < 20; ++step) {
        const int passes = view->paintPasses();
        LumoRect touched = unionOf(movedWith(item));
        const LumoRect before = item->getRect();
        place += {5, 3};
        QTest::mouseMove(window, windowPoint(place));
        settle();
        ASSERT_NE(item->getRect(), before);
        touched = lumoUnionRect(touched, unionOf(movedWith(item)));
        EXPECT_EQ(view->paintPasses(), passes + 1);
        EXPECT_LE(view->objectsInLastPass(), countIn(*diagram, touched) + 10);
        EXPECT_LT(view->objectsInLastPass(), allInView);
    }
    QTest::mouseRelease(window, Qt::LeftButton, {}, windowPoint(place));
}

}  // namespace
}  // namespace QB::DiagramLumo
