// What layouts bring back, and that no text harms a diagram.

#include <sstream>

#include <gtest/gtest.h>

#include "canvas/base/canvas_style.h"
#include "canvas/diagram/placement.h"
#include "canvas/drawer/diagram_save_load_handler.h"
#include "diagram_scene.h"
#include "platform/nuvo/nuvo_json.h"
#include "support/dice.h"
#include "support/long_runs.h"
#include "view_scene.h"

namespace QB::DiagramLumo {

namespace {

using Handler = QBLumoDiagramSaveLoadHandler;

/// film (with the alias f), film, language of the schema s, and the text "recent".
struct LayoutScene : ItemScene {
    LayoutScene() {
        diagram.setRect({0, 0, 3000, 1600});
        const std::vector<std::string> fields = numberedFields(20);
        table("film", {40, 40}, fields)->setAlias("f");
        table("film", {358, 40}, fields);
        table("language", {676, 40}, {"id", "name"})->setSchema("s");
        text("recent", {40, 400}, "SELECT 1");
    }

    bool read(const std::string& json) {
        return Handler::readLayout(&control, &diagram, NuvoJson(json));
    }
    std::string written() {
        NuvoJson json;
        Handler::writeLayout(&control, &diagram, &json);
        return json.serialise();
    }
    /// Places of the items, "*" for a size by the user, then scroll origin and canvas.
    std::string places() {
        std::string all;
        for (const QBLumoItem* item : diagram.items())
            all += DiagramLumo::text(item->getRect()) + (item->isSizedByUser() ? "* " : " ");
        const LumoControlPoint origin = control.getScrollOrigin();
        return all + DiagramLumo::text(LumoRect({origin.x, origin.y}, diagram.getRect().size));
    }
};

/// "X", "Y", "Width" and "Height" of four numbers with commas between.
std::string keys(const std::string& numbers) {
    std::string all;
    std::stringstream each(numbers);
    for (const char* key : {"\"X\":", ",\"Y\":", ",\"Width\":", ",\"Height\":"}) {
        std::string number;
        std::getline(each, number, ',');
        all += key + number;
    }
    return all;
}

/// The entry of a source as the scene has it, by its place in the diagram.
std::string entry(int source, const std::string& place) {
    const char* const names[] = {
        R"("Alias":"f","Name":"film","Schema":"")", R"("Alias":"","Name":"film","Schema":"")",
        R"("Alias":"","Name":"language","Schema":"s")", R"("Alias":"recent")"};
    return std::string("{") + names[source] + "," + keys(place) + "}";
}

std::string document(const std::string& canvas, const std::string& objects) {
    return "{" + canvas + ",\"Objects\":[" + objects + "]}";
}

/// What no layout may bring about; "" if all is well.
std::string fault(const QBLumoDiagram& diagram, const std::vector<LumoRect>& before) {
    const std::vector<QBLumoItem*> items = diagram.items();
    const LumoRect canvas = diagram.getRect();
    if (canvas.size.width > largestCanvas || canvas.size.height > largestCanvas)
        return "canvas too large";
    for (size_t i = 0; i < items.size(); ++i) {
        const LumoRect& rect = items[i]->getRect();
        if (!lumoContainsRect(canvas, rect)) return "outside: " + text(rect);
        const LumoSize least = itemSizeFor(items[i]->getBody()->minimumSize());
        if (rect.size.width < least.width || rect.size.height < least.height) return "too small";
        for (size_t k = 0; k < i; ++k)
            if (lumoIntersectsRect(rect, items[k]->getRect()) &&
                !lumoIntersectsRect(before[i], before[k]))
                return "overlap at " + text(rect);
    }
    return {};
}

std::vector<LumoRect> rectsOf(const QBLumoDiagram& diagram) {
    std::vector<LumoRect> rects;
    for (const QBLumoItem* item : diagram.items())
        rects.push_back(item->getRect());
    return rects;
}

const std::string kept = "40,40 218x245 358,40 218x245 676,40 218x105 40,400 258x128 ";

}  // namespace

TEST(Layouts, MoveWhatTheyKnowAndTellWhetherAllFitted) {
    const std::string canvas = keys("5,6,4000,2000");
    const std::string all = entry(0, "100,500,218,245") + "," + entry(1, "400,500,300,245") + "," +
                            entry(2, "800,500,218,105") + "," + entry(3, "1100,500,258,129");
    const std::string placed =
        "100,500 218x245 400,500 300x245* 800,500 218x105 1100,500 258x129* ";
    const std::string renamed = R"({"Alias":"g","Name":"film","Schema":"",)";
    struct Case {
        const char* what;
        std::string json;
        bool fits;
        std::string places;
    };
    const Case cases[] = {
        {"all", document(canvas, all), true, placed + "5,6 4000x2000"},
        {"no canvas", document(R"("X":5,"Y":6)", all), false, placed + "5,6 3000x1600"},
        {"half a place, half a size", document(R"("X":5,"Width":4000,"Height":"9","Y":6.5)", all),
         false, placed + "0,0 3000x1600"},
        {"no objects", "{" + canvas + "}", false, kept + "5,6 4000x2000"},
        {"objects are none", "{" + canvas + ",\"Objects\":{}}", false, kept + "5,6 4000x2000"},
        {"an alias alone", document(canvas, R"({"Alias":"f",)" + keys("1,500,258,128") + "}"),
         false, kept + "5,6 4000x2000"},
        {"another alias", document(canvas, renamed + keys("1,500,258,128") + "}"), false,
         kept + "5,6 4000x2000"},
        {"a bad entry, then a good one",
         document(canvas, entry(0, "1,2,3,true") + "," + entry(0, "1,600,218,245")), false,
         "1,600 218x245 358,40 218x245 676,40 218x105 40,400 258x128 5,6 4000x2000"},
        {"overlap that the user made",
         document(canvas, entry(0, "600,500,218,245") + "," + entry(1, "650,520,218,245")), false,
         "600,500 218x245 650,520 218x245 676,40 218x105 40,400 258x128 5,6 4000x2000"},
        {"over what it does not know", document(canvas, entry(0, "650,60,218,245")), false,
         "650,60 218x245 358,40 218x245 40,40 218x105 40,400 258x128 5,6 4000x2000"},
        {"one place for two",
         document(canvas, entry(0, "900,60,218,245") + "," + entry(1, "900,60,218,245")), false,
         "900,60 218x245 40,40 218x245 676,40 218x105 40,400 258x128 5,6 4000x2000"},
    };
    for (const Case& each : cases) {
        LayoutScene scene;
        EXPECT_EQ(scene.read(each.json), each.fits) << each.what;
        EXPECT_EQ(scene.places(), each.places) << each.what;
        EXPECT_FALSE(Handler::readLayout(nullptr, &scene.diagram, NuvoJson(each.json)));
        EXPECT_FALSE(Handler::readLayout(&scene.control, nullptr, NuvoJson(each.json)));
    }
}

TEST(Layouts, AreNotExchangedByWhatLiesAbove) {
    LayoutScene scene;
    const std::vector<QBLumoItem*> items = scene.diagram.items();
    for (size_t i = 0; i < items.size(); ++i) {
        items[i]->setOrder(long(i) + 1);
        items[i]->getBody()->setAlias({});
    }
    const std::string before = scene.places();
    const std::string json = scene.written();
    scene.diagram.bringChildToFront(items[0]);  // as a press on it does
    EXPECT_EQ(scene.written(), json);
    EXPECT_TRUE(scene.read(json));
    scene.diagram.bringChildToFront(items[1]);
    EXPECT_TRUE(scene.read(json));
    for (QBLumoItem* item : items)
        scene.diagram.bringChildToFront(item);
    EXPECT_EQ(scene.places(), before);
}

TEST(Layouts, OfAnyKindLeaveTheDiagramUsable) {
    const auto at = [](const std::string& place) {
        std::string all = entry(0, place);
        for (const int source : {1, 2, 3})
            all += "," + entry(source, place);
        return document(keys(place), all);
    };
    std::string many;
    for (int i = 0; i < 20000; ++i)
        many += entry(0, std::to_string(i) + ",7,300,300") + ",{},7,[],null,";
    const std::string good = at("50,400,300,300");
    const std::string small = keys("9,9,9,9");
    const std::string texts[] = {
        at("2147483647,2147483647,2147483647,2147483647"),
        at("-2147483648,-2147483648,-2147483648,-2147483648"),
        at("-2147483648,2147483647,2147483647,-1"),
        at("-50,-50,0,0"),
        at("2990,1590,218,245"),
        document(small, entry(0, "2147483647,2147483647,2147483647,10") + "," +
                            entry(1, "2147483638,2147483647,2147483647,9")),
        document(small, entry(0, "-900,0,218,245") + "," + entry(1, "-90,0,218,245")),
        document(small, entry(3, "0,0,3000,3000")),
        document(small, many + "{}"),
        document(small, std::string(1000, '[') + std::string(1000, ']')),
        good.substr(0, good.size() / 2),
        R"({"Width":1,"Width":"x","Height":[[]],"X":{},"Y":null,"Objects":[[{}]]})",
        document(R"("Width":9999999999,"Height":3.5,"X":true,"Y":"7")", entry(0, "1e9,0,1,1")),
        "{\"Objects\":[\"\xff\xfe\"]}",
        "[]",
        std::string(1 << 20, '['),
    };
    for (const std::string& json : texts) {
        LayoutScene scene;
        const std::vector<LumoRect> before = rectsOf(scene.diagram);
        scene.read(json);
        EXPECT_EQ(fault(scene.diagram, before), "") << json.substr(0, 200);
        const std::string saved = scene.written();
        LayoutScene other;
        EXPECT_TRUE(other.read(saved)) << json.substr(0, 200);
        EXPECT_EQ(other.places(), scene.places()) << json.substr(0, 200);
    }
}

TEST(Layouts, ThatWereMutilatedLeaveTheDiagramUsable) {
    QB::Test::Dice dice(7);
    LayoutScene scene;
    const std::string good = scene.written();
    int valid = 0;
    for (int round = 0; round < QB::Test::repetitions(400); ++round) {
        std::string text = good;
        for (int change = dice.pick(4); change >= 0; --change) {
            const auto place = size_t(dice.pick(int(text.size())));
            if (dice.isOneIn(2))
                text.insert(place, good, size_t(dice.pick(int(good.size()))),
                            size_t(dice.pick(60)));
            else
                text[place] = dice.pickFrom(std::string("0123456789-,:.\"[]{}eE\\ ulrf\xff"));
        }
        if (NuvoJson(text).getIsValidJson()) ++valid;
        scene.read(text);
        for (const LumoRect& rect : rectsOf(scene.diagram))
            ASSERT_TRUE(lumoContainsRect(scene.diagram.getRect(), rect)) << text;
        const std::string saved = scene.written();
        ASSERT_TRUE(scene.read(saved)) << text;
        ASSERT_EQ(scene.written(), saved) << text;
    }
    EXPECT_GT(valid, 20);
}

TEST(Layouts, SizesCountAsTheUsersUnlessItemsTakeThemByThemselves) {
    struct Case {
        const char* size;
        int fields;  // when the layout is read
        int height;  // with 20 fields that come later
    };
    for (const Case& each :
         {Case{"218,245", 0, 245}, Case{"218,105", 0, 245}, Case{"218,106", 0, 106},
          Case{"300,200", 0, 200}, Case{"218,105", 2, 245}, Case{"218,125", 2, 125},
          Case{"0,0", 0, 245}, Case{"300,-9", 2, 245}, Case{"47,300", 0, 245}}) {
        LayoutScene scene;
        QBLumoBaseItemBody* const film = scene.diagram.items()[0]->getBody();
        film->setFields(numberedFields(each.fields));
        scene.read(document(keys("0,0,900,900"), entry(0, std::string("0,600,") + each.size)));
        film->setFields(numberedFields(20));
        EXPECT_EQ(film->item()->getRect().size.height, each.height) << each.size;
    }
}

TEST(Layouts, BelongToLayersByTheirPaths) {
    const auto layer = [](const std::string& id, int width) {
        return "{\"ID\":" + id + ",\"Width\":" + std::to_string(width) +
               R"(,"Height":500,"X":0,"Y":0,"Objects":[]})";
    };
    const std::string text = "[7,{\"ID\":5},{\"ID\":[5]}," + layer("[]", 1001) + "," +
                             layer("[\"a\"]", 1002) + "," + layer("[\"a\"]", 1003) + "," +
                             layer("[\"a\",\"b\"]", 1004) + "," + layer(R"(["\ufffd"])", 1005) +
                             "," + layer("[]", 1006) + "]";
    /// The width of the canvas, which the layouts tell apart; 0 without a layout.
    const auto widthOf = [](Handler& handler, std::uint64_t id) {
        LayoutScene scene;
        for (QBLumoItem* item : scene.diagram.items())
            delete item;
        return handler.load(id, &scene.control, &scene.diagram) ? scene.diagram.getRect().size.width
                                                                : 0;
    };
    Handler handler;
    EXPECT_EQ(handler.exportLayouts({}), "[]");
    const Handler::LayerPaths paths = {{9, {}}, {5, {"a"}}, {4, {"a"}}, {6, {"a"}}, {8, {"\xff"}}};
    handler.importLayouts(text, paths);
    EXPECT_EQ(widthOf(handler, 9), 1001);
    EXPECT_EQ(widthOf(handler, 4), 1002) << "in the order of the keys";
    EXPECT_EQ(widthOf(handler, 5), 1003);
    EXPECT_EQ(widthOf(handler, 6), 0);
    EXPECT_EQ(widthOf(handler, 8), 1005);

    // What comes and goes: a layer of an unknown path, one whose statement is another now.
    handler.match({{9, {}}, {4, {"a"}}, {7, {"a", "b"}}});
    EXPECT_EQ(widthOf(handler, 7), 1004);
    EXPECT_EQ(widthOf(handler, 9), 1001) << "it has one";
    handler.match({{9, {}}, {10, {"a"}}, {11, {"a", "b"}}});
    EXPECT_EQ(widthOf(handler, 10), 1002);
    EXPECT_EQ(widthOf(handler, 11), 1004);
    EXPECT_EQ(widthOf(handler, 4), 1002) << "an undo may bring it back";

    // Each parse makes new statements.
    for (std::uint64_t id = 100; id < 1000; ++id)
        handler.match({{9, {}}, {10, {"a"}}, {id, {"a", "b"}}});
    EXPECT_EQ(widthOf(handler, 999), 1004);
    EXPECT_EQ(widthOf(handler, 9), 1001);
    EXPECT_EQ(widthOf(handler, 10), 1002);
    EXPECT_FALSE(handler.contains(700)) << "no undo goes back that far";
    EXPECT_TRUE(handler.contains(900));

    // Out and in again, with the layer on screen as it stands.
    LayoutScene scene;
    scene.diagram.setRect({0, 0, 2222, 1600});
    handler.save(9, &scene.control, &scene.diagram);
    const Handler::LayerPaths now = {{9, {}}, {10, {"a"}}, {12, {"new"}}};
    const std::string out = handler.exportLayouts(now);
    Handler other;
    other.importLayouts(out, {{1, {}}, {2, {"a"}}, {3, {"new"}}});
    EXPECT_EQ(widthOf(other, 2), 1002);
    EXPECT_FALSE(other.contains(3));
    LayoutScene empty;
    EXPECT_TRUE(other.load(1, &empty.control, &empty.diagram));
    EXPECT_EQ(empty.places(), scene.places());
    EXPECT_EQ(other.exportLayouts({{1, {}}, {2, {"a"}}}), out);

    for (const std::string& bad : {std::string(), std::string("{}"), text.substr(0, 90),
                                   std::string(100 << 20, ' ') + text}) {
        other.importLayouts(text, paths);
        other.importLayouts(bad, paths);
        EXPECT_EQ(other.exportLayouts(paths), "[]") << bad.substr(0, 9);
    }
}

TEST(Layouts, ScrollAViewThatShowsLaterAndNeedNoZoom) {
    ViewScene shown;
    shown.view->getControl()->setZoom(2, {0, 0});
    shown.view->getControl()->setScrollOrigin({600, 400});
    NuvoJson json;
    Handler::writeLayout(shown.view->getControl(), shown.diagram.get(), &json);
    EXPECT_EQ(json.find("X")->integerValue(), 300);
    EXPECT_EQ(json.find("Y")->integerValue(), 200);
    shown.view->getControl()->setScrollOrigin({0, 0});
    Handler::readLayout(shown.view->getControl(), shown.diagram.get(), json);
    EXPECT_EQ(shown.view->getControl()->getScrollOrigin(), (LumoControlPoint{600, 400}));

    QBLumoContext context;
    const std::unique_ptr<QBLumoUIView> view(QBLumoUIView::create(&context, nullptr));
    LumoControl* const control = view->getControl();
    QBLumoDiagram diagram(&context, control);
    context.setActiveDiagram(control, &diagram);
    control->scrollToVisible({0, 0, 10, 10}, false);
    EXPECT_TRUE(
        Handler::readLayout(control, &diagram, NuvoJson(document(keys("300,200,3000,1600"), ""))));
    view->resize(900, 600);
    view->show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(view.get()));
    EXPECT_EQ(control->getScrollOrigin(), (LumoControlPoint{300, 200}));
}

}  // namespace QB::DiagramLumo
