#include "canvas/diagram/diagram.h"

#include <QTest>
#include <QWindow>

#include <gtest/gtest.h>

#include "canvas/diagram/canvas_dump.h"
#include "canvas/view/lumo_ui_view.h"
#include "diagram_scene.h"

namespace QB::DiagramLumo {

namespace {

constexpr int32_t left = LumoButtonLeft;
constexpr int32_t ctrl = LumoKeyControl;
constexpr int32_t shift = LumoKeyShift;
constexpr int32_t alt = LumoKeyAlt;

void select(DiagramScene* scene, const std::string& names) {
    scene->diagram.clearSelection();
    for (const char name : names)
        scene->diagram.selectObject(scene->item(std::string(1, name)), true);
    scene->take();
}

}  // namespace

TEST(Diagram, SelectsOncePerClickAsModifiersSay) {
    struct Case {
        const char* before;
        bool onRow;
        int32_t keys;
        const char* after;
        const char* told;
    };
    const std::vector<Case> cases = {
        {"", false, left, "a", " +a"},
        {"b", false, left, "a", " -b +a"},
        {"a", false, left, "a", ""},
        {"abc", false, left, "a", " -b -c -a +a"},
        {"bc", false, left | ctrl, "bca", " +a"},
        {"bc", true, left | shift, "bca", " +a"},
        {"abc", false, left | ctrl, "bc", " -a"},
        {"ab", true, left | ctrl, "b", " -a"},  // by the press alone, not by the row again
        {"", true, left | ctrl, "a", " +a"},
        {"ab", true, LumoButtonRight, "ba", ""},
        {"b", false, LumoButtonRight, "a", " -b +a"},
        {"ab", false, LumoButtonRight | ctrl, "ba", ""},
    };
    for (const Case& test : cases) {
        SCOPED_TRACE(std::string(test.before) + " " + std::to_string(test.keys));
        DiagramScene scene;
        select(&scene, test.before);
        QBLumoBaseItemBody* const body = scene.bodies["a"];
        scene.control.click(test.onRow ? scene.row(body, 2) : scene.title(body), test.keys);
        EXPECT_EQ(scene.selected(), test.after);
        EXPECT_EQ(scene.take(), test.told);
        EXPECT_EQ(scene.diagram.getChildren().back(), scene.item("a")) << "not raised";
    }
}

TEST(Diagram, AsksForOneMenuAGestureAndNamesTheField) {
    DiagramScene scene;
    scene.control.click(scene.row(scene.bodies["b"], 1), LumoButtonRight);
    ASSERT_EQ(scene.control.rightClicks.size(), 1U);
    EXPECT_EQ(scene.lastMenu()->clicked, scene.item("b"));
    EXPECT_EQ(scene.lastMenu()->extras.at("FieldName").toString(), "id");
    EXPECT_EQ(scene.lastMenu()->selection, std::vector<LumoObject*>{scene.item("b")});
    scene.control.click(scene.row(scene.bodies["b"], 0), LumoButtonRight);
    EXPECT_EQ(scene.lastMenu()->extras.at("FieldName").toString(), "");
    scene.control.click(scene.title(scene.bodies["b"]), LumoButtonRight);
    EXPECT_EQ(scene.lastMenu()->extras.count("FieldName"), 0U);
    EXPECT_EQ(scene.control.menuPlace, scene.title(scene.bodies["b"]));
    scene.control.click({50, 700}, LumoButtonRight);
    EXPECT_EQ(scene.lastMenu()->clicked, nullptr);
    EXPECT_EQ(scene.control.rightClicks.size(), 4U);
    EXPECT_EQ(scene.selected(), "b");
}

TEST(Diagram, DeselectsAllByAPressOnTheCanvas) {
    DiagramScene scene;
    QBLumoJoinLink* const link = scene.tableLink("a", "b");
    select(&scene, "ab");
    scene.diagram.selectObject(link, true);
    scene.control.click({50, 700}, left | shift);
    EXPECT_EQ(scene.selected(), "ab*");
    scene.control.click({50, 700});
    EXPECT_EQ(scene.selected(), "");
    EXPECT_EQ(scene.take(), " -a -b");
    EXPECT_FALSE(link->getSelected());
}

TEST(Diagram, SelectsByTheRubberBandWhatModifiersSayAndTellsOnlyOfChanges) {
    struct Case {
        int32_t keys;
        LumoPoint to;  // from below "a"
        const char* after;
        const char* told;
    };
    // "b" and "c" are selected before; the press of the left button alone clears them.
    const std::vector<Case> cases = {
        {left, {600, 50}, "ab*", " -b -c +a +b"},
        {left, {1500, 700}, "", " -b -c"},  // no height
        {left | ctrl, {600, 50}, "ac*", " +a -b"},
        {left | shift, {600, 50}, "abc*", " +a"},
        {left | alt, {600, 50}, "c", " -b"},
        {left | ctrl | shift | alt, {600, 50}, "ac*", " +a -b"},
        {left | shift | alt, {600, 50}, "abc*", " +a"},
    };
    for (const Case& test : cases) {
        SCOPED_TRACE(test.keys);
        DiagramScene scene;
        scene.tableLink("a", "b");
        scene.fieldLink("a", "b");  // does not show in this mode, but did
        scene.diagram.setRelationMode(FieldRelation);
        scene.diagram.setRelationMode(TableRelation);
        select(&scene, "bc");
        scene.control.drag({50, 700}, {60, 690}, test.keys);
        for (int step = 1; step <= 4; ++step)  // told once, however many moves
            scene.control.move(
                {50 + (test.to.x - 50) * step / 4, 700 + (test.to.y - 700) * step / 4}, test.keys);
        EXPECT_EQ(scene.selected(), test.after);
        EXPECT_EQ(scene.take(), test.told);
        scene.control.release(test.to, test.keys);
        EXPECT_EQ(scene.selected(), test.after);
    }
}

TEST(Diagram, GivesBackTheSelectionWhenABandIsGivenUp) {
    DiagramScene scene;
    select(&scene, "c");
    scene.control.drag({50, 700}, {600, 50}, left | shift);
    EXPECT_EQ(scene.selected(), "abc");
    EXPECT_TRUE(scene.key(LumoKeyEscape, shift));
    EXPECT_EQ(scene.selected(), "c");
    scene.control.move({700, 40}, left | shift);  // the gesture is over
    EXPECT_EQ(scene.selected(), "c");
}

TEST(Diagram, MovesAGroupThatStopsAtTheEdgeAndKeepsItsShape) {
    struct Case {
        LumoPoint by;
        int32_t keys;
        LumoPoint a;
        LumoPoint c;
    };
    const std::vector<Case> cases = {
        {{30, 40}, left, {130, 140}, {930, 140}},
        {{-800, -800}, left, {0, 0}, {800, 0}},
        {{30, 45}, left | shift, {100, 145}, {900, 145}},
    };
    for (const Case& test : cases) {
        DiagramScene scene;
        select(&scene, "ac");
        const LumoPoint from = scene.title(scene.bodies["c"]);
        scene.control.drag(from, from + LumoPoint{30, 30});
        scene.control.move(from + test.by, test.keys);  // Shift may come later
        EXPECT_EQ(scene.item("a")->getRect().origin, test.a);
        EXPECT_EQ(scene.item("c")->getRect().origin, test.c);
        EXPECT_EQ(scene.item("b")->getRect().origin, (LumoPoint{500, 100}));
        EXPECT_EQ(scene.selected().size(), 2U);
        EXPECT_TRUE(scene.key(LumoKeyEscape));
        EXPECT_EQ(scene.item("a")->getRect().origin, (LumoPoint{100, 100}));
        EXPECT_EQ(scene.item("c")->getRect().origin, (LumoPoint{900, 100}));
        scene.control.release(from);
        EXPECT_EQ(scene.selected().size(), 2U);
        EXPECT_EQ(scene.diagram.draggedItem(), nullptr);
    }
}

TEST(Diagram, ResizesOneOfAGroupAndShiftsTheOthersWithItsCorner) {
    DiagramScene scene;
    select(&scene, "ac");
    const LumoRect before = scene.item("c")->getRect();
    const LumoPoint edge = scene.bodies["c"]->translatePoint({0, 60}, &scene.diagram);
    scene.control.drag(edge, edge + LumoPoint{-30, 5});
    EXPECT_EQ(
        text(scene.item("c")->getRect()),
        text({before.origin + LumoPoint{-30, 0}, {before.size.width + 30, before.size.height}}));
    EXPECT_EQ(scene.item("a")->getRect().origin, (LumoPoint{70, 100}));
    scene.control.move(edge + LumoPoint{-150, 5});
    EXPECT_EQ(scene.item("a")->getRect().origin, (LumoPoint{0, 100})) << "the canvas ends";
    scene.control.move(edge + LumoPoint{-30, 5});
    EXPECT_EQ(scene.item("a")->getRect().origin, (LumoPoint{70, 100}));
    scene.control.release(edge + LumoPoint{-30, 5});
    EXPECT_EQ(scene.selected().size(), 2U) << "a resize is no click";
}

TEST(Diagram, TellsOnceOfEachGestureThatHasMovedOrResizedItems) {
    const auto drag = [](DiagramScene& scene, LumoPoint in, LumoPoint by) {
        const LumoPoint from = scene.bodies["c"]->translatePoint(in, &scene.diagram);
        scene.control.drag(from, from + LumoPoint{40, 40});
        scene.control.move(from + by, left);
        return from + by;
    };
    constexpr LumoPoint title{50, 10}, edge{0, 60};
    using Scene = DiagramScene;
    const std::vector<std::pair<std::function<void(Scene&)>, std::string>> cases = {
        {[&](Scene& s) {
             s.control.release(drag(s, title, {30, 5}));
         },
         " moved"},
        {[&](Scene& s) {
             s.control.release(drag(s, title, {0, 0}));
         },
         ""},
        {[&](Scene& s) {
             s.control.release(drag(s, edge, {-30, 5}));
         },
         " resized"},
        {[&](Scene& s) {
             const LumoPoint at = drag(s, title, {30, 5});
             s.key(LumoKeyEscape);
             s.control.release(at);
         },
         ""},
        {[](Scene& s) { s.control.click(s.title(s.bodies["c"]), left); }, ""},
        {[](Scene& s) { s.key(LumoKeyRight) && s.key(LumoKeyDown); }, " key key"},
        {[](Scene& s) { s.key(LumoKeyEscape) && s.key(LumoKeyRight); }, ""},
        {[](Scene& s) { s.key(LumoKeyR) && s.key(LumoKeyRight) && s.key(LumoKeyReturn); },
         " resized"},
        {[](Scene& s) { s.key(LumoKeyR) && s.key(LumoKeyRight) && s.key(LumoKeyTab); }, " resized"},
        {[](Scene& s) { s.key(LumoKeyR) && s.key(LumoKeyRight) && s.key(LumoKeyEscape); }, ""},
        {[](Scene& s) {
             s.item("c")->setRect({1, 2, 300, 300});
         },
         ""},
    };
    for (size_t i = 0; i < cases.size(); ++i) {
        SCOPED_TRACE(i);
        DiagramScene scene;
        select(&scene, "ac");
        scene.diagram.setFocusedObject(scene.item("c"));
        std::string told;
        scene.context.setItemsArranged([&told](QBLumoContext::Arrangement how) {
            static const char* const names[] = {" moved", " key", " resized", " laid out"};
            told += names[int(how)];
        });
        cases[i].first(scene);
        EXPECT_EQ(told, cases[i].second);
    }
}

TEST(Diagram, DestroysWhatIsDeletedOnceWhetherTheHostDoesSoAtOnceOrLater) {
    enum class Host { Later, AtOnce, All, KeepsB };
    for (const Host host : {Host::Later, Host::AtOnce, Host::All, Host::KeepsB}) {
        SCOPED_TRACE(int(host));
        DiagramScene scene;
        scene.tableLink("a", "b");
        scene.tableLink("b", "c");
        scene.diagram.selectAll();
        scene.diagram.deselectObject(scene.item("c"));
        scene.take();
        scene.context.setItemsWillBeDeleted([&](const std::vector<QBLumoItem*>& items) {
            scene.told += " delete " + std::to_string(items.size());
            if (host == Host::All) return scene.diagram.clearChildren();
            if (host == Host::KeepsB) return scene.diagram.deselectObject(scene.item("b"));
            if (host == Host::Later) return;
            for (QBLumoItem* item : items) {
                scene.diagram.removeChild(item);
                delete item;
            }
            delete scene.diagram.joinLinks().front();
        });
        EXPECT_TRUE(scene.key(LumoKeyDelete));
        const bool all = host == Host::All;
        EXPECT_EQ(scene.diagram.items().size(), all ? 0U : host == Host::KeepsB ? 2U : 1U);
        EXPECT_TRUE(scene.diagram.joinLinks().empty());
        EXPECT_EQ(scene.selected(), "");
        EXPECT_EQ(scene.take(), all                    ? " delete 2 empty"
                                : host == Host::KeepsB ? " delete 2 -b links 2"
                                : host == Host::AtOnce ? " delete 2 links 1"
                                                       : " delete 2 links 2");
        EXPECT_FALSE(scene.key(LumoKeyDelete)) << "nothing is left to delete";
    }
}

TEST(Diagram, LetsTheHostDestroyItemsWhileItIsToldOfASelection) {
    DiagramScene scene;
    scene.context.setItemSelectionChanged([&](QBLumoItem*, bool) {
        if (scene.diagram.items().size() < 2) return;
        QBLumoItem* const doomed = scene.diagram.items().back();
        scene.diagram.removeChild(doomed);
        delete doomed;
    });
    scene.diagram.selectAll();
    EXPECT_EQ(scene.diagram.items().size(), 1U);
    EXPECT_EQ(scene.diagram.selectedItems().size(), 1U);
    scene.diagram.clearSelection();
    EXPECT_EQ(scene.diagram.selectedItems().size(), 0U);
}

TEST(Diagram, ForgetsWhatLeavesInTheMiddleOfAGesture) {
    for (const bool band : {true, false}) {
        DiagramScene scene;
        select(&scene, "ac");
        const LumoPoint from = band ? LumoPoint{50, 700} : scene.title(scene.bodies["a"]);
        scene.control.drag(from, from + LumoPoint{20, 20}, band ? left | shift : left);
        for (const char* name : {"c", "a"}) {
            QBLumoItem* const item = scene.item(name);
            scene.diagram.removeChild(item);
            delete item;
        }
        scene.control.move(from + LumoPoint{40, 40}, left);
        EXPECT_EQ(scene.key(LumoKeyEscape), band);
        EXPECT_EQ(scene.selected(), "");
        EXPECT_EQ(scene.item("b")->getRect().origin, (LumoPoint{500, 100}));
    }
}

TEST(Diagram, MovesNothingDuringALinkDragAndEndsItWithItsItem) {
    DiagramScene scene;
    scene.control.drag(scene.row(scene.bodies["a"], 1), scene.row(scene.bodies["b"], 1));
    scene.diagram.selectObject(scene.item("a"), false);
    EXPECT_TRUE(scene.key(LumoKeyLeft));
    EXPECT_EQ(scene.item("a")->getRect().origin.x, 100);
    EXPECT_TRUE(scene.diagram.isLinkDragActive());
    QBLumoItem* const source = scene.item("a");
    scene.diagram.removeChild(source);
    delete source;
    EXPECT_FALSE(scene.diagram.isLinkDragActive());
    EXPECT_EQ(scene.take().find('='), std::string::npos);
}

TEST(Diagram, PlacesItemsInARowAndArrangesOnlyWhatIsSelected) {
    DiagramScene scene;
    for (const char* name : {"a", "b", "c"})
        scene.diagram.autoLayoutChild(scene.item(name));
    EXPECT_EQ(scene.item("b")->getRect().origin.x,
              40 + lumoWidth(scene.item("a")->getRect()) + 100);
    EXPECT_EQ(scene.item("c")->getRect().origin.y, 40);

    scene.tableLink("a", "c");
    const LumoRect before = scene.item("c")->getRect();
    const LumoRect kept = scene.item("b")->getRect();
    select(&scene, "ac");
    const auto moved = scene.diagram.autoLayout();
    EXPECT_EQ(scene.item("b")->getRect(), kept);
    EXPECT_FALSE(lumoIntersectsRect(scene.item("a")->getRect(), scene.item("c")->getRect()));
    for (const char* name : {"a", "c"}) {
        EXPECT_FALSE(lumoIntersectsRect(scene.item(name)->getRect(), kept));
        EXPECT_TRUE(lumoContainsRect(scene.diagram.getBoundingRect(), scene.item(name)->getRect()));
    }
    for (const auto& [item, rect] : moved) {
        EXPECT_NE(item->getRect(), rect);
        item->setRect(rect);
    }
    EXPECT_EQ(scene.item("c")->getRect(), before) << "cannot be taken back";
}

TEST(Diagram, WritesItselfAsText) {
    DiagramScene scene;
    scene.tableLink("a", "b");
    scene.fieldLink("a", "b")->setLabel("say \"hi\"");
    scene.bodies["a"]->setFieldSelected("name", true);
    scene.control.click(scene.title(scene.bodies["b"]));
    scene.diagram.setFocusedObject(scene.item("a"), 2);
    scene.diagram.removeChild(scene.item("c"));
    scene.diagram.layout();
    EXPECT_EQ(dumpCanvas(&scene.diagram), R"(canvas 1600x900 tables
link left "say \"hi\"" hidden
  #1 "a"."id" to #2 "b"."name"
link inner
  #1 "a" to #2 "b": 312,119 right to 506,119 left
item #1 "a" at 100,100 218x125 focused in row 2
  body 9,4 200x117
  list at 1,31 193x80 scrolled by 0
  [ ] *
  [ ] "id"
  [x] "name"
  [ ] "other"
  adaptor "id" at 0,0 0x0 side none hidden
  adaptor at 6,16 206x6 side right
item #2 "b" at 500,100 218x125 selected
  body 9,4 200x117
  list at 1,31 193x80 scrolled by 0
  [ ] *
  [ ] "id"
  [ ] "name"
  [ ] "other"
  adaptor "name" at 0,0 0x0 side none hidden
  adaptor at 6,16 206x6 side left
selection 1 items, 0 links
)");
    delete scene.bodies["c"]->getParent();
}

// ---- in a window ----

namespace {

struct ViewScene : DiagramScene {
    ViewScene() {
        diagram.setRect({0, 0, 3000, 1600});
        context.setActiveDiagram(&control, nullptr);
        view.reset(QBLumoUIView::create(&context, nullptr));
        context.setActiveDiagram(view->getControl(), &diagram);
        view->resize(600, 400);
        view->show();
        EXPECT_TRUE(QTest::qWaitForWindowExposed(view.get()));
    }
    ~ViewScene() { context.setActiveDiagram(view->getControl(), nullptr); }

    QPoint at(LumoPoint point) const {
        const LumoControlPoint in = view->getControl()->diagramSpaceToControlSpace(point);
        return view->viewport()->mapTo(view.get(), {in.x, in.y});
    }
    LumoPoint in(QPoint at) const {
        const QPoint point = view->viewport()->mapFrom(view.get(), at);
        return view->getControl()->controlSpaceToDiagramSpace({point.x(), point.y()});
    }
    void press(QPoint point, Qt::MouseButton button = Qt::LeftButton) {
        QTest::mousePress(view->windowHandle(), button, {}, point);
        held = button;
    }
    void move(QPoint point) {
        QMouseEvent event(QEvent::MouseMove, point, view->mapToGlobal(point), Qt::NoButton, held,
                          Qt::NoModifier);
        QApplication::sendEvent(view->windowHandle(), &event);
    }
    void release(QPoint point) { QTest::mouseRelease(view->windowHandle(), held, {}, point); }
    LumoControlPoint origin() const { return view->getControl()->getScrollOrigin(); }

    std::unique_ptr<QBLumoUIView> view;
    Qt::MouseButton held = Qt::LeftButton;
};

}  // namespace

TEST(DiagramInAWindow, ScrollsAtTheEdgeAndKeepsTheItemUnderThePointer) {
    for (const double zoom : {1.0, 0.5}) {
        ViewScene scene;
        const int width = int(800 / zoom);
        scene.diagram.setRect({0, 0, width, 1600});
        scene.view->getControl()->setZoom(zoom, {0, 0});
        QBLumoItem* const item = scene.item("a");
        const QPoint from = scene.at(scene.title(scene.bodies["a"]));
        const QPoint edge(scene.view->viewport()->width() + 40, from.y());
        scene.press(from);
        scene.move(from + QPoint(20, 0));
        scene.move(edge);
        ASSERT_TRUE(QTest::qWaitFor([&] { return scene.origin().x > 50; }));
        const auto farthest = width - lumoWidth(item->getRect());
        const auto expectUnderPointer = [&] {
            const LumoPoint pointer = scene.in(edge);
            const int grip = scene.in(from).x - scene.in({0, 0}).x - 100;
            EXPECT_NEAR(item->getRect().origin.x, std::min(pointer.x - grip, farthest), 3) << zoom;
        };
        expectUnderPointer();
        const auto atEnd = [&] {  // which cuts the last step
            return lumoMaxX(scene.view->getControl()->getDisplayRect()) >= width - 2;
        };
        ASSERT_TRUE(QTest::qWaitFor(atEnd));
        expectUnderPointer();
        scene.release(edge);
        const LumoControlPoint stopped = scene.origin();
        EXPECT_EQ(scene.diagram.draggedItem(), nullptr);
        scene.move(edge + QPoint(3, 0));
        EXPECT_TRUE(scene.origin() == stopped);
    }
}

TEST(DiagramInAWindow, PansByTheMiddleButtonWithoutAJumpAtTheSecondTime) {
    ViewScene scene;
    scene.press({300, 350}, Qt::MiddleButton);
    scene.move({280, 330});
    scene.move({200, 250});
    scene.release({200, 250});
    EXPECT_TRUE(scene.origin() == (LumoControlPoint{100, 100}));
    scene.press({500, 100}, Qt::MiddleButton);
    scene.move({480, 100});
    EXPECT_TRUE(scene.origin() == (LumoControlPoint{120, 100}));
    scene.release({480, 100});
}

TEST(Diagram, KeepsAWheelThatBeganOnTheCanvasWithTheCanvas) {
    DiagramScene scene;
    std::vector<std::string> many;
    for (int i = 0; i < 60; ++i)
        many.push_back("field" + std::to_string(i));
    scene.bodies["a"]->setFields(many);
    scene.diagram.layout();
    const LumoPoint row = scene.row(scene.bodies["a"], 3);
    const auto wheel = [&](LumoPoint at) {
        return scene.control.dispatcher()->mouseWheel({at.x, at.y}, {0, 30}, 0);
    };
    EXPECT_TRUE(wheel(row));
    EXPECT_FALSE(wheel({50, 700}));
    EXPECT_FALSE(wheel(row));
    ASSERT_TRUE(QTest::qWaitFor([&] { return !scene.diagram.isWheelLocked(); }));
    EXPECT_TRUE(wheel(row));
}

}  // namespace QB::DiagramLumo
