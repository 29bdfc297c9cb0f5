#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <set>
#include <string>

#include "platform/lumo/lumo_timer.h"
#include "scene.h"
#include "support/application.h"

namespace Lumo::Test {
namespace {

const std::map<LumoEventResponderType, std::string> eventNames = {
    {LumoMouseDown, "Down"},         {LumoMouseMove, "Move"},     {LumoMouseUp, "Up"},
    {LumoMouseEnter, "Enter"},       {LumoMouseLeave, "Leave"},   {LumoMouseWheel, "Wheel"},
    {LumoMouseDoubleClick, "Twice"}, {LumoMouseDragging, "Drag"}, {LumoMouseDrop, "Drop"},
    {LumoDragEnter, "DragEnter"},    {LumoDragOver, "DragOver"},  {LumoDragLeave, "DragLeave"},
};

struct Entry {
    std::string who;
    std::string what;
    LumoEvent event;
};
using Log = std::vector<Entry>;

/// Writes down what it gets: responders as they are named above, hooks in small letters.
template <typename Base>
class Told : public Base {
public:
    template <typename... Arguments>
    Told(std::string called, Log* entries, Arguments... arguments)
        : Base(arguments...), name(std::move(called)), log(entries) {
        for (const auto& [type, what] : eventNames)
            this->registerEventResponder(
                type, [this, what = what](const LumoEvent& event) { return answer(what, event); });
    }

    bool shouldTriggerMouseDown(LumoEvent event) override {
        return grabs && Base::shouldTriggerMouseDown(event);
    }
    bool shouldTriggerMouseUp(LumoEvent event) override {
        return !upInsideOnly || this->ptInRect(event.point);
    }
    bool shouldForwardEventToNeighbors(LumoEvent) override { return !covers; }
    bool clipsChildren() const override { return clips; }
    LumoRect customDirtyRect() const override {
        return lumoInflateRect(this->getBoundingRect(), sticksOut, sticksOut);
    }

    const std::string name;
    Log* const log;  // not owned
    std::set<std::string> consumed;
    std::set<std::string> stopped;
    std::map<std::string, std::function<void(LumoEvent)>> reactions;
    bool grabs = true;
    bool upInsideOnly = false;
    bool covers = false;
    bool clips = false;
    bool delivers = true;
    int sticksOut = 0;

protected:
    void customMouseWheel(LumoEvent event, bool& deliver) override {
        answer("wheel", event);
        deliver = delivers;
    }
    void customMouseDragging(LumoEvent event, bool& stop) override { stop = hook("drag", event); }
    void customMouseDrop(LumoEvent event, bool& stop) override { stop = hook("drop", event); }
    void customKeyDown(LumoEvent event, bool& stop) override { stop = hook("key", event); }

private:
    bool answer(const std::string& what, LumoEvent event) {
        const bool goesOn = consumed.count(what) == 0;
        log->push_back({name, what, event});
        const auto reaction = reactions.find(what);
        if (reaction == reactions.end()) return goesOn;
        const auto react = reaction->second;  // it may destroy this
        react(event);
        return goesOn;
    }
    bool hook(const std::string& what, LumoEvent event) {
        const bool stops = stopped.count(what) != 0;
        answer(what, event);
        return stops;
    }
};

using Object = Told<LumoObject>;
using Diagram = Told<LumoDiagram>;

constexpr int left = LumoButtonLeft;
constexpr int right = LumoButtonRight;

/// A diagram D of 1000 x 1000 with an item I at (100, 100), 200 x 100, and in it a row R at
/// (10, 20), 100 x 20.
class Dispatch : public testing::Test {
protected:
    Dispatch() {
        QB::Test::needApplication();
        diagram->setRect({0, 0, 1000, 1000});
        context.setActiveDiagram(&control, diagram.get());
        item = add("I", diagram.get(), {100, 100, 200, 100});
        row = add("R", item, {10, 20, 100, 20});
        diagram->layout();
    }

    Object* add(const std::string& name, LumoObject* parent, const LumoRect& rect) {
        return added(parent, new Object(name, &log), rect);
    }
    template <typename Receiver, typename Reaction>
    static void on(Receiver* receiver, const std::string& what, Reaction react) {
        receiver->reactions[what] = [react](const LumoEvent&) {
            react();
        };
    }
    LumoDispatcher& events() { return *control.dispatcher(); }
    void press(LumoControlPoint at, int keys = left) { events().mousePress(at, keys); }
    void move(LumoControlPoint at, int keys = left) { events().mouseMove(at, keys); }
    void release(LumoControlPoint at, int keys = left) { events().mouseRelease(at, keys); }
    /// Pressed on the row and dragged to the empty canvas.
    void dragRow() {
        press(onRow);
        move(onCanvas);
    }

    /// "R Down, I Down" of what was told of @p what since the last call.
    std::string told(const std::set<std::string>& what) {
        std::string text;
        for (const Entry& entry : std::exchange(log, {}))
            if (what.count(entry.what))
                text += (text.empty() ? "" : ", ") + entry.who + " " + entry.what;
        return text;
    }
    int count(const std::string& who, const std::string& what) const {
        int found = 0;
        for (const Entry& entry : log)
            if (entry.who == who && entry.what == what) ++found;
        return found;
    }
    /// The points, in the receiver's space, of what @p who was told of @p what.
    std::vector<LumoPoint> points(const std::string& who, const std::string& what) const {
        std::vector<LumoPoint> found;
        for (const Entry& entry : log)
            if (entry.who == who && entry.what == what) found.push_back(entry.event.point);
        return found;
    }

    static constexpr LumoControlPoint onRow{115, 125};
    static constexpr LumoControlPoint onItem{250, 190};
    static constexpr LumoControlPoint onCanvas{600, 600};

    Log log;
    LumoContext context;
    QB::Test::PlainControl control{&context, {1000, 1000}};
    std::unique_ptr<Diagram> diagram = std::make_unique<Diagram>("D", &log, &context);
    Object* item;
    Object* row;
};

// ---- the hit list ----

TEST_F(Dispatch, HitsTopmostFirstChildrenBeforeParentsThenWhatLiesBelow) {
    add("link", diagram.get(), {0, 0, 500, 500});
    diagram->bringChildToFront(item);
    add("over", item, {0, 0, 200, 100});
    press(onRow);
    EXPECT_EQ(told({"Down"}), "over Down, R Down, I Down, link Down, D Down");
    release(onRow);

    item->covers = true;
    press(onRow);
    EXPECT_EQ(told({"Down"}), "over Down, R Down, I Down, D Down");
    release(onRow);

    row->setVisible(false);
    press(onRow);
    EXPECT_EQ(told({"Down"}), "over Down, I Down, D Down");
}

TEST_F(Dispatch, HitsWhatSticksOutUnlessItIsClipped) {
    Object* const knob = add("knob", item, {-10, 40, 20, 20});
    press({95, 150});
    EXPECT_EQ(told({"Down"}), "D Down") << "the item does not paint there";
    release({95, 150});
    item->sticksOut = 10;
    press({95, 150});
    EXPECT_EQ(told({"Down"}), "knob Down, D Down");
    EXPECT_EQ(LumoDispatcher::hitList(diagram.get(), {95, 150}).front(), knob);
    release({95, 150});
    item->clips = true;
    press({95, 150});
    EXPECT_EQ(told({"Down"}), "D Down");
}

// ---- phases ----

TEST_F(Dispatch, RunsHooksAfterRespondersThoughOneConsumed) {
    row->consumed = {"Down", "Drag", "Drop"};
    dragRow();
    release(onCanvas);
    EXPECT_EQ(told({"Down", "Drag", "drag", "Drop", "drop"}),
              "R Down, R Drag, R drag, I drag, D drag, R Drag, R drag, I drag, D drag, "
              "R Drop, R drop, I drop, D drop");
    item->stopped = {"drag", "drop"};
    dragRow();
    release(onCanvas);
    EXPECT_EQ(count("D", "drag") + count("D", "drop"), 0);
}

TEST_F(Dispatch, AsksTheDiagramFirstWhetherAWheelReachesTheItems) {
    row->consumed = {"Wheel"};
    EXPECT_TRUE(events().mouseWheel(onRow, {0, 60}, 0));
    EXPECT_EQ(log.back().event.wheel, LumoPoint({0, 60}));
    EXPECT_EQ(told({"wheel", "Wheel"}), "D wheel, R Wheel");
    diagram->delivers = false;
    EXPECT_FALSE(events().mouseWheel(onRow, {0, 60}, 0));
    EXPECT_EQ(told({"wheel", "Wheel"}), "D wheel, D Wheel") << "the canvas itself still hears it";
}

// ---- gestures ----

TEST_F(Dispatch, KeepsAGestureWithWhatWasPressed) {
    Object* const other = add("other", diagram.get(), {500, 500, 200, 200});
    item->grabs = false;
    dragRow();
    EXPECT_TRUE(events().isPressed(row));
    EXPECT_FALSE(events().isPressed(item)) << "did not want the press";
    release(onCanvas);
    EXPECT_EQ(told({"Drag", "Up", "Drop"}),
              "R Drag, D Drag, R Drag, D Drag, R Up, D Up, R Drop, D Drop");
    EXPECT_EQ(count("other", "Up"), 0);
    other->upInsideOnly = true;
    press(onCanvas);
    release({605, 400});
    EXPECT_EQ(told({"Up"}), "D Up") << "released beside it";
}

TEST_F(Dispatch, TellsWhatIsDraggedOverFromWhatLiesUnderThePointer) {
    Object* const other = add("other", diagram.get(), {500, 500, 200, 200});
    dragRow();
    EXPECT_EQ(told({"DragEnter", "DragLeave", "DragOver"}),
              "other DragEnter, D DragEnter, other DragOver, D DragOver");
    EXPECT_TRUE(events().isOver(other));
    move({300, 600});
    release({300, 600});
    EXPECT_EQ(told({"DragEnter", "DragLeave", "DragOver", "Up", "Drop"}),
              "other DragLeave, D DragOver, R Up, I Up, D Up, R Drop, I Drop, D Drop, D DragLeave");
    on(other, "DragEnter", [this] { events().cancel(); });
    dragRow();
    EXPECT_EQ(told({"DragEnter", "DragLeave", "DragOver"}), "other DragEnter, other DragLeave");
}

TEST_F(Dispatch, GivesAReleaseItsButtonAndOnlyThat) {
    press(onRow);
    press(onRow, left | right);
    move(onCanvas, left | right | LumoKeyShift);
    events().mouseRelease(onCanvas, left | right, left);
    EXPECT_TRUE(events().isDragging()) << "the other button went up";
    release(onCanvas);
    EXPECT_EQ(count("R", "Down"), 1);
    for (const Entry& entry : log) {
        const bool released = entry.what == "Up" || entry.what == "Drop";
        const int expected = released ? left : left | LumoKeyShift;
        if (released || entry.what == "Drag") {
            EXPECT_EQ(entry.event.keys, expected) << entry.what;
        }
    }
    EXPECT_EQ(count("R", "Up"), 1);
    EXPECT_EQ(count("R", "Drop"), 1);
}

TEST_F(Dispatch, BeginsADragAtTheDistanceOfTheSystemWithThePointOfThePress) {
    const int distance = LumoDispatcher::startDistance();
    press(onRow);
    move({onRow.x + distance - 1, onRow.y});
    release({onRow.x + distance - 1, onRow.y});
    EXPECT_EQ(told({"Drag", "Drop", "drop"}), "");
    press(onRow);
    move({onRow.x + distance - 1, onRow.y + 1});
    EXPECT_EQ(points("R", "Drag"), std::vector<LumoPoint>({{5, 5}, {4 + distance, 6}}));
}

TEST_F(Dispatch, DeliversADoubleClickThatNobodyTakesAsAPress) {
    events().mouseDoubleClick(onRow, left);
    release(onRow);
    EXPECT_EQ(told({"Twice", "Down", "Up"}),
              "R Twice, I Twice, D Twice, R Down, I Down, D Down, R Up, I Up, D Up");
    item->consumed = {"Twice"};
    events().mouseDoubleClick(onRow, left);
    release(onRow);
    EXPECT_EQ(told({"Twice", "Down", "Up"}), "R Twice, I Twice, R Up, I Up, D Up");
}

// ---- every drag has its end ----

TEST_F(Dispatch, EndsEveryDragWithOneDropAndEveryEnterWithOneLeave) {
    const auto end = [this](const std::string& way) {
        if (way == "release") release(onCanvas);
        if (way == "cancel") events().cancel();
        if (way == "Escape") events().keyDown(LumoKeyEscape, 0);
        if (way == "lost release") move(onCanvas, 0);
        if (way == "no diagram") context.setActiveDiagram(&control, nullptr);
        if (way == "removed") diagram->removeChild(item);
    };
    row->consumed = {"Drag"};
    for (const char* way :
         {"release", "cancel", "Escape", "lost release", "no diagram", "removed"}) {
        SCOPED_TRACE(way);
        context.setActiveDiagram(&control, diagram.get());
        if (!item->getParent()) diagram->addChild(item);
        log.clear();
        dragRow();
        end(way);
        EXPECT_EQ(count("R", "Drop"), 1);
        EXPECT_EQ(count("D", "drop"), 1);
        EXPECT_FALSE(events().isGrabbing());
        const size_t atEnd = log.size();
        move({onCanvas.x + 50, onCanvas.y});
        EXPECT_EQ(log.size(), atEnd) << "the rest of the way is nobody's";
        release({onCanvas.x + 50, onCanvas.y});
        events().cancel();
        for (const char* who : {"R", "I", "D"}) {
            EXPECT_EQ(count(who, "Enter"), count(who, "Leave")) << who;
            EXPECT_EQ(count(who, "DragEnter"), count(who, "DragLeave")) << who;
        }
    }
    delete item;
}

TEST_F(Dispatch, LeavesTheTargetBeforeACancelledDropAndAfterARealOne) {
    dragRow();
    release(onCanvas);
    EXPECT_EQ(told({"drop", "DragLeave"}), "R drop, I drop, D drop, D DragLeave");
    dragRow();
    events().keyDown(LumoKeyEscape, 0);
    EXPECT_EQ(told({"key", "drop", "DragLeave", "Up"}),
              "R key, I key, D key, D DragLeave, R drop, I drop, D drop");
    EXPECT_EQ(log.size(), 0u);
}

TEST_F(Dispatch, AsksTheDiagramOfKeysWithoutAGestureAndStopsAtTheFirstThatTakesOne) {
    EXPECT_FALSE(events().keyDown(LumoKeyDelete, LumoKeyShift));
    EXPECT_EQ(log.back().event.keyCode, LumoKeyDelete);
    EXPECT_EQ(log.back().event.keys, LumoKeyShift);
    item->stopped = {"key"};
    press(onRow);
    log.clear();
    EXPECT_TRUE(events().keyDown(LumoKeyDelete, 0));
    EXPECT_EQ(told({"key"}), "R key, I key");
}

// ---- objects that go ----

TEST_F(Dispatch, ForgetsWhatIsDestroyedInsideAnyOfItsEvents) {
    for (const char* what : {"Enter", "Move", "Down", "Drag", "drag", "DragEnter", "DragOver",
                             "DragLeave", "Up", "Drop", "drop", "Wheel", "key", "Twice", "Leave"}) {
        SCOPED_TRACE(what);
        const LumoObject* const asked = item;
        on(item, what, [this] {
            diagram->removeChild(item);
            delete item;
        });
        const auto isThere = [&] {
            return !diagram->getChildren().empty();
        };
        move(onRow, 0);
        if (isThere()) events().mouseWheel(onRow, {0, 60}, 0);
        if (isThere()) events().keyDown(LumoKeyHome, 0);
        events().mouseDoubleClick(onRow, left);
        release(onRow);
        dragRow();
        if (isThere()) events().keyDown(LumoKeyHome, 0);
        move(onItem);
        move(onCanvas);
        release(onCanvas);
        EXPECT_FALSE(isThere()) << "never came";
        EXPECT_FALSE(events().isOver(asked) || events().isPressed(asked));
        item = add("I", diagram.get(), {100, 100, 200, 100});
        row = add("R", item, {10, 20, 100, 20});
    }
}

TEST_F(Dispatch, EndsTheGestureOfAnObjectThatDiesAndKeepsThatOfOthers) {
    row->consumed = {"Drag"};
    dragRow();
    log.clear();
    delete row;
    EXPECT_EQ(told({"Drop", "drop"}), "") << "nobody is called while something is destroyed";
    QCoreApplication::processEvents();
    EXPECT_EQ(told({"Drop", "drop", "Drag"}), "I Drop, D Drop, I drop, D drop");

    row = add("R", item, {10, 20, 100, 20});
    row->consumed = {"Down"};
    on(row, "Down", [this] { delete row; });
    release(onCanvas);
    dragRow();
    EXPECT_EQ(told({"Drag", "drag"}), "") << "it has gone of its press";

    row = add("R", item, {10, 20, 100, 20});
    item->consumed = {"Drag"};
    release(onCanvas);
    dragRow();
    delete row;
    QCoreApplication::processEvents();
    EXPECT_TRUE(events().isDragging()) << "the row let it go on: the item is dragged";
    release(onCanvas);
}

TEST_F(Dispatch, LivesOnWhenTheDiagramOrTheContextDiesInsideAnEvent) {
    on(row, "Drag", [this] { diagram.reset(); });
    dragRow();
    release(onCanvas);
    move(onRow, 0);
    QCoreApplication::processEvents();
    EXPECT_FALSE(events().isGrabbing() || events().isOver(item));

    auto other = std::make_unique<LumoContext>();
    QB::Test::PlainControl late(other.get(), {1000, 1000});
    auto shown = std::make_unique<Diagram>("D", &log, other.get());
    shown->setRect({0, 0, 1000, 1000});
    other->setActiveDiagram(&late, shown.get());
    on(shown.get(), "Down", [&] { other.reset(); });
    late.dispatcher()->mousePress(onRow, left);
    shown.reset();
    late.dispatcher()->mouseMove(onCanvas, left);
    late.dispatcher()->mouseRelease(onCanvas, left);
}

// ---- hover and cursor ----

TEST_F(Dispatch, HoldsTheHoverStillFromPressToRelease) {
    row->setHighlightable(true);
    move(onRow, 0);
    EXPECT_EQ(told({"Enter", "Leave", "Move"}),
              "R Enter, I Enter, D Enter, R Move, I Move, D Move");
    EXPECT_TRUE(row->getHighlighted() && row->isMouseOver() && !row->isMousePressed());
    dragRow();
    EXPECT_TRUE(row->isMousePressed());
    EXPECT_EQ(told({"Enter", "Leave", "Move"}), "");
    release(onCanvas);
    EXPECT_EQ(told({"Enter", "Leave", "Move"}), "R Leave, I Leave, D Move");
    EXPECT_FALSE(row->getHighlighted() || row->isMouseOver());
    events().mouseLeave();
    EXPECT_EQ(told({"Enter", "Leave", "Move"}), "D Leave");
}

TEST_F(Dispatch, TakesTheFirstCursorOfADeliveryThatIsNotTheDefault) {
    const auto propose = [this](int code) {
        return [this, code] {
            context.notifyCursorChange(diagram.get(), code);
        };
    };
    on(diagram.get(), "Move", propose(LumoCursorDefault));
    on(row, "Leave", propose(LumoCursorDefault));
    on(row, "Move", propose(LumoCursorHand));
    on(item, "Move", propose(LumoCursorResizeVertical));
    move(onRow, 0);
    EXPECT_EQ(control.cursor, LumoCursorHand);
    move(onItem, 0);
    EXPECT_EQ(control.cursor, LumoCursorResizeVertical);
    move(onCanvas, 0);
    EXPECT_EQ(control.cursor, LumoCursorDefault);
    item->consumed = {"Move"};
    item->reactions.clear();
    move(onRow, 0);
    move(onItem, 0);
    EXPECT_EQ(control.cursor, LumoCursorDefault) << "left by the row";
}

TEST_F(Dispatch, AsksAgainWhatLiesUnderAStillPointer) {
    add("other", diagram.get(), {700, 600, 100, 100});
    dragRow();
    log.clear();
    control.origin = {120, 20};
    events().pointerStaysWhileCanvasMoves();
    EXPECT_EQ(told({"DragEnter", "DragOver", "Drag"}),
              "other DragEnter, other DragOver, D DragOver");
    on(diagram.get(), "drag", [this] {
        control.origin = {0, 0};
        events().pointerStaysWhileCanvasMoves();
    });
    move({onCanvas.x + 1, onCanvas.y});
    EXPECT_EQ(told({"DragLeave"}), "other DragLeave") << "moved by what it called";
    release(onCanvas);
}

// ---- right clicks ----

TEST_F(Dispatch, TellsOneRightClickAGestureTheLastAndAfterTheRelease) {
    const auto ask = [this](int number) {
        return [this, number](LumoEvent event) {
            const LumoMessageRightClickParam param(event, std::make_shared<int>(number));
            context.notifyRightClickMenu(param, event.point);
        };
    };
    const auto clicked = [this] {
        std::vector<int> numbers;
        for (const auto& block : std::exchange(control.rightClicks, {}))
            numbers.push_back(*std::static_pointer_cast<int>(block));
        return numbers;
    };
    item->reactions["Down"] = ask(1);
    row->reactions["Up"] = ask(2);
    press(onItem, right);
    EXPECT_EQ(clicked(), std::vector<int>());
    release(onItem, right);
    EXPECT_EQ(clicked(), std::vector<int>({1}));
    press(onRow, right);
    release(onRow, right);
    EXPECT_EQ(clicked(), std::vector<int>({2}));
    press(onRow, right);
    events().cancel();
    release(onRow, right);
    EXPECT_EQ(clicked(), std::vector<int>()) << "given up";

    diagram->reactions["key"] = ask(3);
    events().keyDown(LumoKeyMenu, 0);
    EXPECT_EQ(clicked(), std::vector<int>({3}));
    move(onCanvas, 0);
    log.clear();
    events().contextClick(onItem);
    EXPECT_EQ(clicked(), std::vector<int>({1}));
    EXPECT_EQ(count("I", "Enter") + count("D", "Leave"), 0) << "the pointer is elsewhere";
}

// ---- timers ----

TEST(LumoTimer, MayBeStoppedRestartedAndDestroyedByItsFunction) {
    QB::Test::needApplication();
    auto* const timer = lumoCreateTimer();
    std::string called;
    const auto waitFor = [&](const std::string& expected) {
        while (called.size() < expected.size())
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        EXPECT_EQ(called, expected);
    };
    timer->setTimerFunc([&](LumoTimer* which) {
        called += "a";
        if (called == "aaa") which->stop();
    });
    timer->start(1, nullptr);
    waitFor("aaa");
    EXPECT_FALSE(timer->isRunning());
    timer->setTimerFunc([&](LumoTimer* which) {
        called += "b";
        which->setTimerFunc([&, kept = std::string("c")](LumoTimer* again) {
            delete again;
            called += kept;  // the function lives on after its timer
        });
        which->startOnce(1);
    });
    timer->startOnce(1);
    waitFor("aaabc");
}

}  // namespace
}  // namespace Lumo::Test
