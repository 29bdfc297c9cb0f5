// Everything that the mouse does, by keys.

#include <gtest/gtest.h>

#include "canvas/controls/scroll_view.h"
#include "canvas/controls/splitter.h"
#include "diagram_scene.h"

namespace QB::DiagramLumo {

namespace {

constexpr int32_t none = 0;
constexpr int32_t ctrl = LumoKeyControl;
constexpr int32_t shift = LumoKeyShift;

/// "b", "b2" for its row 2, "link", or "-".
std::string focus(const DiagramScene& scene) {
    const LumoObject* const object = scene.diagram.focusedObject();
    const auto* const item = dynamic_cast<const QBLumoItem*>(object);
    if (!item) return object ? "link" : "-";
    const int row = scene.diagram.focusedRow();
    return DiagramScene::nameOf(item) + (row < 0 ? "" : std::to_string(row));
}

struct Step {
    int32_t code;
    int32_t keys;
    bool taken;
    const char* focus;
    const char* selected;
    const char* told;
};

void walk(DiagramScene* scene, const std::vector<Step>& steps) {
    for (size_t i = 0; i < steps.size(); ++i) {
        const Step& step = steps[i];
        SCOPED_TRACE("step " + std::to_string(i));
        EXPECT_EQ(scene->key(step.code, step.keys), step.taken);
        EXPECT_EQ(focus(*scene), step.focus);
        EXPECT_EQ(scene->selected(), step.selected);
        EXPECT_EQ(scene->take(), step.told);
    }
}

}  // namespace

TEST(DiagramKeyboard, LeadsThroughItemsAndLinksAndOut) {
    DiagramScene scene;
    scene.tableLink("a", "b");
    scene.fieldLink("a", "b");  // hidden
    scene.diagram.bringChildToFront(scene.item("a"));
    walk(&scene, {{LumoKeyTab, none, true, "a", "", ""},
                  {LumoKeyTab, none, true, "b", "", ""},
                  {LumoKeySpace, none, true, "b", "b", " +b"},
                  {LumoKeyTab, none, true, "c", "b", ""},
                  {LumoKeySpace, ctrl, true, "c", "bc", " +c"},
                  {LumoKeySpace, ctrl, true, "c", "b", " -c"},
                  {LumoKeyTab, none, true, "link", "b", ""},
                  {LumoKeyReturn, none, true, "link", "b", " open link"},
                  {LumoKeyF2, none, true, "link", "b", " alias b"},
                  {LumoKeySpace, none, true, "link", "*", " -b"},
                  {LumoKeyTab, none, false, "link", "*", ""},
                  {LumoKeyBackTab, shift, true, "c", "*", ""},
                  {LumoKeyReturn, none, true, "c", "*", " open c"},
                  {LumoKeyF2, none, true, "c", "*", " alias c"},
                  {LumoKeyA, ctrl, true, "c", "bca*", " +b +c +a"},
                  {LumoKeyEscape, none, true, "c", "", " -b -c -a"},
                  {LumoKeyEscape, none, false, "c", "", ""},
                  {LumoKeyLeft, none, false, "c", "", ""},
                  {LumoKeyBackTab, none, true, "b", "", ""},
                  {LumoKeySpace, none, true, "b", "b", " +b"},
                  {LumoKeyDelete, none, true, "-", "", " delete b"},
                  {LumoKeyTab, none, true, "c", "", ""}});
    // To where it was deleted, not to the first again; and back from there.
    walk(&scene,
         {{LumoKeyBackTab, none, true, "a", "", ""}, {LumoKeyBackTab, none, false, "a", "", ""}});
}

TEST(DiagramKeyboard, MovesWhatIsSelectedByThreeWithAnyModifier) {
    const std::vector<std::pair<int32_t, LumoPoint>> arrows = {{LumoKeyLeft, {-3, 0}},
                                                               {LumoKeyRight, {3, 0}},
                                                               {LumoKeyUp, {0, -3}},
                                                               {LumoKeyDown, {0, 3}}};
    for (const auto& [code, by] : arrows)
        for (const int32_t keys : {none, shift, ctrl}) {
            DiagramScene scene;
            scene.diagram.selectObject(scene.item("a"), true);
            scene.diagram.selectObject(scene.item("c"), true);
            EXPECT_TRUE(scene.key(code, keys));
            EXPECT_EQ(scene.item("a")->getRect().origin, (LumoPoint{100, 100} + by));
            EXPECT_EQ(scene.item("b")->getRect().origin, (LumoPoint{500, 100}));
            EXPECT_EQ(scene.item("c")->getRect().origin, (LumoPoint{900, 100} + by));
        }
}

TEST(DiagramKeyboard, WalksTheRowsOfAnItemAndTicksThem) {
    DiagramScene scene;
    std::vector<std::string> many;
    for (int i = 0; i < 40; ++i)
        many.push_back("f" + std::to_string(i));
    scene.bodies["a"]->setFields(many);
    scene.item("a")->setFieldSelectionHandler(
        [&](QBLumoItem*, const std::string& field, bool ticked) {
            scene.told += (ticked ? " tick " : " untick ") + (field.empty() ? "*" : field);
        });
    walk(&scene, {{LumoKeyTab, none, true, "a", "", ""},
                  {LumoKeyDown, none, true, "a0", "", ""},
                  {LumoKeySpace, none, true, "a0", "", " tick *"},
                  {LumoKeyUp, none, true, "a0", "", ""},
                  {LumoKeyDown, none, true, "a1", "", ""},
                  {LumoKeyReturn, none, true, "a1", "", " tick f0"},
                  {LumoKeySpace, none, true, "a1", "", " untick f0"},
                  {LumoKeyLeft, none, true, "a1", "", ""},
                  {LumoKeyEnd, none, true, "a40", "", ""}});
    const QBLumoBaseItemBody* const body = scene.bodies["a"];
    EXPECT_GT(body->scrollView()->getContentOffsetY(), 500) << "the row is out of sight";
    walk(&scene, {{LumoKeyDown, none, true, "a40", "", ""},
                  {LumoKeyHome, none, true, "a0", "", ""},
                  {LumoKeyPageDown, none, true, "a9", "", ""},
                  {LumoKeyPageUp, none, true, "a0", "", ""},
                  {LumoKeyEscape, none, true, "a", "", ""},
                  {LumoKeySpace, none, true, "a", "a", " +a"},
                  {LumoKeyReturn, ctrl, true, "a0", "a", ""},
                  {LumoKeyDelete, none, true, "-", "", " delete a"}});
}

TEST(DiagramKeyboard, DrawsLinksBetweenFields) {
    DiagramScene scene;
    scene.bodies["c"]->setFields({"x", "y", "id"});
    scene.diagram.setFocusedObject(scene.item("a"), 0);
    walk(&scene, {{LumoKeyL, none, false, "a0", "", ""},  // the wildcard begins none
                  {LumoKeyDown, none, true, "a1", "", ""},
                  {LumoKeyL, none, true, "a1", "", ""},
                  {LumoKeyTab, none, true, "b1", "", ""},
                  {LumoKeyDown, none, true, "b2", "", ""},
                  {LumoKeyHome, none, true, "b1", "", ""},
                  {LumoKeyDelete, none, false, "b1", "", ""},
                  {LumoKeyRight, none, true, "c3", "", ""},  // the field of the same name
                  {LumoKeyTab, none, true, "b1", "", ""},    // round, but not to itself
                  {LumoKeyLeft, none, true, "c3", "", ""},
                  {LumoKeyReturn, none, true, "c3", "", " a.id=c.id"}});
    EXPECT_FALSE(scene.diagram.isLinkDragActive());
    walk(&scene, {{LumoKeyL, none, true, "c3", "", ""},
                  {LumoKeyTab, none, true, "a1", "", ""},
                  {LumoKeyEscape, none, true, "c3", "", ""}});
    EXPECT_FALSE(scene.diagram.isLinkDragActive());

    // A press of the mouse gives it up, and its own link begins at its own field.
    walk(&scene, {{LumoKeyL, none, true, "c3", "", ""}, {LumoKeyTab, none, true, "a1", "", ""}});
    scene.control.drag(scene.row(scene.bodies["b"], 2), scene.row(scene.bodies["a"], 1));
    scene.control.release(scene.row(scene.bodies["a"], 1));
    EXPECT_NE(scene.take().find("b.name=a.id"), std::string::npos);

    scene.diagram.setFocusedObject(scene.item("a"), 1);
    EXPECT_TRUE(scene.key(LumoKeyL));
    QBLumoItem* const source = scene.item("a");
    scene.diagram.removeChild(source);
    delete source;
    EXPECT_FALSE(scene.diagram.isLinkDragActive());
    EXPECT_TRUE(scene.key(LumoKeyTab));
}

TEST(DiagramKeyboard, ResizesAnItemAndItsSplitter) {
    DiagramScene scene;
    QBLumoTextBasedItemBody* const body = scene.text("q", {100, 500}, "SELECT 1", {"one"});
    QBLumoItem* const item = body->item();
    auto* const splitter = body->findChildren<QBLumoSplitter>(true).front();
    const LumoRect start = item->getRect();
    const double ratio = splitter->ratio();
    scene.diagram.setFocusedObject(item);
    const auto grown = [&](int width, int height) {
        return text({start.origin, {start.size.width + width, start.size.height + height}});
    };
    EXPECT_TRUE(scene.key(LumoKeyR));
    EXPECT_TRUE(scene.key(LumoKeyRight));
    EXPECT_TRUE(scene.key(LumoKeyDown, shift));
    EXPECT_TRUE(scene.key(LumoKeyRight, ctrl));
    EXPECT_EQ(text(item->getRect()), grown(10, 1));
    EXPECT_GT(splitter->ratio(), ratio);
    EXPECT_TRUE(scene.key(LumoKeyEscape));
    EXPECT_EQ(text(item->getRect()), grown(0, 0));
    EXPECT_DOUBLE_EQ(splitter->ratio(), ratio);
    EXPECT_FALSE(item->isSizedByUser());

    EXPECT_TRUE(scene.key(LumoKeyR));
    for (int i = 0; i < 100; ++i)
        scene.key(LumoKeyUp);
    EXPECT_EQ(item->getRect().size.height, itemSizeFor(body->minimumSize()).height);
    for (int i = 0; i < 100; ++i)
        scene.key(LumoKeyDown);
    EXPECT_EQ(lumoMaxY(item->getRect()), 900) << "past the canvas";
    EXPECT_TRUE(scene.key(LumoKeyReturn));
    EXPECT_TRUE(item->isSizedByUser());
    EXPECT_FALSE(scene.key(LumoKeyEscape));
}

TEST(DiagramKeyboard, AsksForTheMenuOfWhatHasTheFocus) {
    DiagramScene scene;
    QBLumoJoinLink* const link = scene.tableLink("a", "b");
    const auto menu = [&](LumoObject* object, int row) {
        scene.diagram.setFocusedObject(object, row);
        EXPECT_TRUE(scene.key(LumoKeyMenu));
        return scene.lastMenu();
    };
    EXPECT_EQ(menu(scene.item("b"), 2)->extras.at("FieldName").toString(), "name");
    EXPECT_EQ(scene.selected(), "b");
    EXPECT_TRUE(scene.diagram.isFocusRingShown());
    EXPECT_EQ(menu(scene.item("b"), 0)->extras.at("FieldName").toString(), "");
    EXPECT_TRUE(menu(scene.item("b"), -1)->extras.empty());
    EXPECT_EQ(menu(link, -1)->clicked, link);
    EXPECT_EQ(scene.selected(), "*");
    EXPECT_EQ(menu(nullptr, -1)->clicked, nullptr);
}

}  // namespace QB::DiagramLumo
