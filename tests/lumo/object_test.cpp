#include <gtest/gtest.h>

#include <climits>
#include <memory>
#include <string>

#include "scene.h"
#include "support/application.h"
#include "support/dice.h"

namespace Lumo::Test {
namespace {

using Names = std::vector<std::string>;
using Rects = std::vector<LumoRect>;

/// Writes down what becomes of it.
class Logged : public LumoObject {
public:
    Logged(std::string name, Names* log) : m_name(std::move(name)), m_log(log) {}
    ~Logged() override { m_log->push_back("~" + m_name + (getParent() ? " with parent" : "")); }

    int order = 0;
    bool hidden = false;
    std::function<void(Logged*)> onLayout;

    bool getVisible() const override { return !hidden && LumoObject::getVisible(); }
    void customLayout() override {
        m_log->push_back(m_name);
        if (onLayout) onLayout(this);
    }
    int layoutOrder() const override { return order; }

private:
    const std::string m_name;
    Names* const m_log;  // not owned
};

struct Story {
    Names log;
    Scene scene;

    Logged* add(const std::string& name, LumoObject* parent,
                const LumoRect& rect = {0, 0, 10, 10}) {
        return added(parent, new Logged(name, &log), rect);
    }
    Logged* add(const std::string& name) { return add(name, &scene.diagram); }
    Names take() { return std::exchange(log, {}); }
    Names layout() {
        scene.diagram.layout();
        return take();
    }
};

// ---- tree ----

TEST(LumoObjectTree, DestroysTheLastChildFirstAndEachWithoutAParent) {
    Names log;
    {
        LumoObject root;
        auto* const a = added(&root, new Logged("a", &log), {});
        added(a, new Logged("inner", &log), {});
        added(&root, new Logged("b", &log), {});
        std::unique_ptr<LumoObject> kept(added(&root, new Logged("kept", &log), {}));
        root.removeChild(kept.get());
        root.removeChild(kept.get());  // no child any more
        EXPECT_EQ(root.getChildren().size(), 2u);
    }
    EXPECT_EQ(log, (Names{"~kept", "~b", "~a", "~inner"}));
}

TEST(LumoObjectTree, SurvivesAResponderThatDestroysItsObject) {
    LumoObject root;
    LumoObject* const object = addObject(&root, {});
    int calls = 0;
    object->registerEventResponder(LumoMouseDown, [&](const LumoEvent&) {
        ++calls;
        object->registerEventResponder(LumoMouseDown, [](const LumoEvent&) { return true; });
        root.clearChildren();
        return true;
    });
    object->registerEventResponder(LumoMouseDown, [&](const LumoEvent&) { return ++calls > 0; });
    EXPECT_FALSE(object->triggerEventResponder(LumoMouseDown, {}));
    EXPECT_EQ(calls, 1);
}

TEST(LumoObjectTree, GivesADraggedObjectItsDropBeforeItLeaves) {
    QB::Test::needApplication();
    Scene scene;
    LumoObject* const object = addObject(&scene.diagram, {0, 0, 100, 100});
    LumoObject* parentAtDrop = nullptr;
    object->registerEventResponder(LumoMouseDrop, [&](const LumoEvent&) {
        parentAtDrop = object->getParent();
        return true;
    });
    scene.control.dispatcher()->mousePress({10, 10}, LumoButtonLeft);
    EXPECT_TRUE(object->isMousePressed());
    EXPECT_TRUE(object->isMouseOver());
    scene.control.dispatcher()->mouseMove({60, 60}, LumoButtonLeft);
    scene.diagram.clearChildren();
    EXPECT_EQ(parentAtDrop, &scene.diagram);
    scene.control.dispatcher()->mouseRelease({60, 60}, LumoButtonLeft);
}

// ---- geometry ----

TEST(LumoObjectGeometry, TranslatesBetweenAnyTwoObjectsOfADeepTree) {
    QB::Test::Dice dice(7);
    LumoObject root;
    std::vector<LumoObject*> objects{&root};
    std::vector<LumoPoint> origins{{0, 0}};
    for (int i = 0; i < 300; ++i) {
        const size_t parent =
            size_t(dice.isOneIn(3) ? dice.pick(int(objects.size())) : int(objects.size()) - 1);
        const LumoPoint at{dice.pick(200) - 100, dice.pick(200) - 100};
        objects.push_back(addObject(objects[parent], {at, {5, 5}}));
        origins.push_back(origins[parent] + at);
    }
    for (int i = 0; i < 300; ++i) {
        const size_t from = size_t(dice.pick(301)), to = size_t(dice.pick(301));
        const LumoPoint expected = LumoPoint{3, 4} + origins[from] - origins[to];
        ASSERT_EQ(objects[from]->translatePoint({3, 4}, objects[to]), expected);
    }
    EXPECT_EQ(objects[300]->translateRect({1, 2, 3, 4}, nullptr).origin,
              origins[300] + LumoPoint({1, 2}));
}

TEST(LumoControl, FindsEveryPixelOfTheDiagramAgain) {
    Scene scene;
    scene.control.origin = {37, 1001};
    for (const double zoom : {1.0, 1.1, 1.21, 2.5, 4.0}) {
        scene.control.zoom = zoom;
        for (int x = -50; x < 500; ++x) {
            const LumoPoint point{x, 2 * x};
            const LumoControlPoint shown = scene.control.diagramSpaceToControlSpace(point);
            ASSERT_EQ(scene.control.controlSpaceToDiagramSpace(shown), point) << zoom;
        }
    }
    scene.control.zoom = 2;
    LumoObject* const object = addObject(&scene.diagram, {100, 600, 10, 10});
    EXPECT_EQ(scene.context.translateRectToControlSpace({1, 2, 3, 4}, object, &scene.control),
              LumoRect(165, 203, 6, 8));
    scene.control.zoom = 0.25;
    scene.context.notifyDiagramMove(&scene.diagram, nullptr, {1, -8});
    EXPECT_EQ(scene.control.origin, (LumoControlPoint{36, 1003}));  // a small step still moves
}

// ---- layout ----

TEST(LumoObjectLayout, GoesFromParentsToChildrenAndLaysOutWhatDocksAtTheEnd) {
    Story story;
    Logged* const link = story.add("link");
    link->order = 1;
    Logged* const item = story.add("item");
    Logged* const body = story.add("body", item);
    EXPECT_EQ(story.layout(), (Names{"item", "body", "link"}));
    EXPECT_EQ(story.layout(), Names());
    EXPECT_FALSE(story.scene.diagram.requireLayout());

    // The body moves when its item is laid out, and the link docks at it, once.
    item->onLayout = [&](Logged*) {
        body->setRect({5, 5, 20, 20});
    };
    body->onLayout = [&](Logged*) {
        link->setRequireToVerifyLayout(true, true);
    };
    link->onLayout = [&](Logged* self) {
        self->setRect({body->getRect().origin, {99, 1}});
    };
    item->setRequireToVerifyLayout(true);
    EXPECT_EQ(story.layout(), (Names{"item", "body", "link"}));
    EXPECT_EQ(link->getRect(), LumoRect(5, 5, 99, 1));
    item->setRect(item->getRect());
    EXPECT_EQ(story.layout(), Names());
}

TEST(LumoObjectLayout, EndsAfterFourRoundsWhereObjectsFeedEachOther) {
    Story story;
    Logged* const a = story.add("a");
    Logged* const b = story.add("b");
    story.layout();
    a->onLayout = [&](Logged*) {
        b->setRequireToVerifyLayout(true);
    };
    b->onLayout = [&](Logged*) {
        a->setRequireToVerifyLayout(true);
    };
    a->setRequireToVerifyLayout(true);
    EXPECT_EQ(story.layout(), (Names{"a", "b", "a", "b", "a", "b", "a", "b"}));
    EXPECT_TRUE(story.scene.diagram.requireLayout());
    a->onLayout = b->onLayout = nullptr;
    EXPECT_EQ(story.layout(), (Names{"a"}));
}

TEST(LumoObjectLayout, KeepsTheMarksOfWhatIsHidden) {
    Story story;
    Logged* const item = story.add("item");
    Logged* const inner = story.add("inner", item);
    story.layout();
    item->setVisible(false);
    inner->setRequireToVerifyLayout(true);
    EXPECT_EQ(story.layout(), Names());
    item->setVisible(true);
    EXPECT_EQ(story.layout(), (Names{"item", "inner"}));
    // Hidden by its own rule, which tells nobody: the next mark finds the way up nevertheless.
    item->hidden = true;
    inner->setRequireToVerifyLayout(true);
    EXPECT_EQ(story.layout(), Names());
    item->hidden = false;
    inner->setRequireToVerifyLayout(true);
    EXPECT_EQ(story.layout(), (Names{"inner"}));
}

TEST(LumoObjectLayout, ReachesWhatAHookAddsOrResizes) {
    Story story;
    Logged* const list = story.add("list");
    story.layout();
    list->onLayout = [&](Logged* self) {
        if (self->getChildren().size() < 2) story.add("row", self);
        self->setRect({0, 0, 10, 20});
    };
    list->setRequireToVerifyLayout(true);
    // Each row that is added marks the list again; the last time only the size is new.
    EXPECT_EQ(story.layout(), (Names{"list", "row", "list", "row", "list"}));
    // What is placed by the size must be placed again.
    list->onLayout = [](Logged* self) {
        self->setRect({0, 0, 10, 30});
    };
    list->setRequireToVerifyLayout(true);
    EXPECT_EQ(story.layout(), (Names{"list", "list"}));
    EXPECT_FALSE(story.scene.diagram.requireLayout());
}

// ---- dirty rectangles and pictures ----

/// An item at (100, 100) of 50 x 50, and in it an object at (10, 10) of 5 x 5.
TEST(LumoObjectDirt, IsExactlyWhereSomethingLooksDifferent) {
    const struct {
        const char* what;
        Rects dirty;
        bool newPicture;  // of the item
    } cases[] = {
        {"move", {{100, 100, 50, 50}, {200, 100, 50, 50}}, false},
        {"resize", {{100, 100, 50, 50}, {100, 100, 60, 50}}, true},
        {"same rect", {}, false},
        {"inner moves", {{110, 110, 5, 5}, {120, 110, 5, 5}}, true},
        {"inner selected", {{110, 110, 5, 5}}, true},
        {"nothing new", {}, false},
        {"inner hides", {{110, 110, 5, 5}}, true},
        {"under hidden", {{100, 100, 50, 50}}, true},
        {"inner goes", {{110, 110, 5, 5}}, true},
        {"inner dies", {{100, 100, 50, 50}, {0, 0, 1000, 1000}}, true},
        {"pictures dropped", {{100, 100, 50, 50}}, true},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        Scene scene;
        LumoObject* const item = addObject(&scene.diagram, {100, 100, 50, 50});
        LumoObject* const inner = addObject(item, {10, 10, 5, 5});
        item->setCachedAsPicture(true);
        scene.settle();
        scene.control.layoutsWanted = 0;
        const uint64_t before = item->pictureSerial();
        const std::string what = c.what;
        if (what == "move") item->setRect({200, 100, 50, 50});
        if (what == "resize") item->setRect({100, 100, 60, 50});
        if (what == "same rect") item->setRect({100, 100, 50, 50});
        if (what == "inner moves") inner->setRect({20, 10, 5, 5});
        if (what == "inner selected" || what == "nothing new")
            inner->setSelected(what == "inner selected");
        if (what == "nothing new") inner->setBackgroundColor({});
        if (what == "inner hides") inner->setVisible(false);
        if (what == "inner hides") inner->setBackgroundColor({1, 2, 3, 1});
        if (what == "under hidden") item->setVisible(false);
        if (what == "under hidden") inner->setRect({60, 60, 5, 5});
        if (what == "inner goes") item->removeChild(inner);
        if (what == "inner goes") inner->setSelected(true);
        if (what == "inner goes" || what == "inner dies") delete inner;
        if (what == "pictures dropped") scene.diagram.dropPictures();
        if (what == "pictures dropped") item->invalidate();
        EXPECT_TRUE(scene.control.dirty.empty()) << "only collected until it is flushed";
        EXPECT_EQ(scene.control.layoutsWanted > 0, !c.dirty.empty());
        EXPECT_EQ(scene.settle(), c.dirty);
        EXPECT_EQ(item->pictureSerial() != before, c.newPicture);
    }
}

TEST(LumoContext, UnitesWhatWouldBeTooManyRectangles) {
    Scene scene;
    scene.settle();
    for (int i = 0; i < 300; ++i)
        scene.diagram.addDirtyRect({i, i, 1, 1});
    const Rects dirty = scene.settle();
    EXPECT_LT(dirty.size(), 100u);
    LumoRect all;
    for (const LumoRect& rect : dirty)
        all = lumoUnionRect(all, rect);
    EXPECT_EQ(all, LumoRect(0, 0, 300, 300));
}

TEST(LumoContext, ShowsADiagramInOneControlAndOutlivesNobodyByForce) {
    auto context = std::make_unique<LumoContext>();
    using QB::Test::PlainControl;
    auto first = std::make_unique<PlainControl>(context.get(), LumoSize{1000, 1000});
    PlainControl second(context.get(), {1000, 1000});
    auto diagram = std::make_unique<LumoDiagram>(context.get());
    context->setActiveDiagram(first.get(), diagram.get());
    context->setActiveDiagram(&second, diagram.get());
    EXPECT_EQ(context->getActiveDiagram(first.get()), nullptr);
    EXPECT_EQ(context->getControlWithDiagram(diagram.get()), &second);
    const int changes = second.changes;
    diagram->setRect({50, 50, 20, 20});
    EXPECT_EQ(diagram->getRect(), LumoRect(0, 0, 20, 20));
    EXPECT_EQ(second.changes, changes + 1);
    first.reset();
    diagram->repaint();
    EXPECT_EQ(second.dirty, (Rects{{0, 0, 20, 20}}));  // once for both
    diagram.reset();
    EXPECT_EQ(context->getActiveDiagram(&second), nullptr);
    LumoDiagram last(context.get());
    context->setActiveDiagram(&second, &last);
    context.reset();
    last.repaint();
    EXPECT_EQ(second.getContext(), nullptr);
}

}  // namespace
}  // namespace Lumo::Test
