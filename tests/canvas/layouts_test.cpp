// What layouts bring back, and that no text harms a diagram.

#include <limits>
#include <set>

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
    /// Places of the items, "*" for a size by the user, then canvas and scroll origin.
    std::string places() {
        std::string all;
        for (const QBLumoItem* item : diagram.items())
            all += text(item->getRect()) + (item->isSizedByUser() ? "* " : " ");
        const LumoControlPoint origin = control.getScrollOrigin();
        return all + text(diagram.getRect().size) + "@" + text(LumoPoint{origin.x, origin.y});
    }
    static std::string text(LumoPoint point) {
        return std::to_string(point.x) + "," + std::to_string(point.y);
    }
    static std::string text(LumoSize size) { return text(LumoPoint{size.width, size.height}); }
    static std::string text(const LumoRect& rect) {
        return text(rect.origin) + "," + text(rect.size);
    }
    using ItemScene::text;
};

std::string keys(int32_t x, int32_t y, int32_t width, int32_t height) {
    return "\"X\":" + std::to_string(x) + ",\"Y\":" + std::to_string(y) +
           ",\"Width\":" + std::to_string(width) + ",\"Height\":" + std::to_string(height);
}

std::string tableEntry(const std::string& alias, const std::string& name, const std::string& schema,
                       const std::string& place) {
    return R"({"Alias":")" + alias + R"(","Name":")" + name + R"(","Schema":")" + schema + "\"," +
           place + "}";
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
        if (!lumoContainsRect(canvas, rect)) return "outside: " + LayoutScene::text(rect);
        const LumoSize least = itemSizeFor(items[i]->getBody()->minimumSize());
        if (rect.size.width < least.width || rect.size.height < least.height) return "too small";
        for (size_t k = 0; k < i; ++k)
            if (lumoIntersectsRect(rect, items[k]->getRect()) &&
                !lumoIntersectsRect(before[i], before[k]))
                return "overlap at " + LayoutScene::text(rect);
    }
    return {};
}

std::vector<LumoRect> rectsOf(const QBLumoDiagram& diagram) {
    std::vector<LumoRect> rects;
    for (const QBLumoItem* item : diagram.items())
        rects.push_back(item->getRect());
    return rects;
}

constexpr int32_t huge = std::numeric_limits<int32_t>::max();
constexpr int32_t tiny = std::numeric_limits<int32_t>::min();
const std::string unmoved = "40,40,218,238 358,40,218,238 676,40,218,105 40,400,258,128 ";

}  // namespace

TEST(Layouts, MoveWhatTheyKnowAndTellWhetherAllFitted) {
    const std::string canvas = keys(5, 6, 4000, 2000);
    const std::string all = tableEntry("f", "film", "", keys(100, 500, 218, 238)) + "," +
                            tableEntry("", "film", "", keys(400, 500, 300, 238)) + "," +
                            tableEntry("", "language", "s", keys(800, 500, 218, 105)) + "," +
                            R"({"Alias":"recent",)" + keys(1100, 500, 258, 129) + "}";
    const std::string placed =
        "100,500,218,238 400,500,300,238* 800,500,218,105 1100,500,258,129* ";
    struct Case {
        const char* what;
        std::string json;
        bool fits;
        std::string places;
    };
    const Case cases[] = {
        {"all", document(canvas, all), true, placed + "4000,2000@5,6"},
        {"no canvas", document("\"X\":5,\"Y\":6", all), false, placed + "3000,1600@5,6"},
        {"no scroll origin", document("\"Width\":4000,\"Height\":2000,\"X\":5", all), false,
         placed + "4000,2000@0,0"},
        {"no objects", "{" + canvas + "}", false, unmoved + "4000,2000@5,6"},
        {"objects are none", "{" + canvas + ",\"Objects\":{}}", false, unmoved + "4000,2000@5,6"},
        {"one of two numbers is none",
         document(R"("Width":4000,"Height":"2000","X":5.5,"Y":6)", all), false,
         placed + "3000,1600@0,0"},
        {"an alias alone is for texts",
         document(canvas, R"({"Alias":"f",)" + keys(1, 500, 258, 128) + R"(},{"Alias":"recent",)" +
                              keys(2, 500, 258, 128) + "}"),
         false, "40,40,218,238 358,40,218,238 676,40,218,105 2,500,258,128 4000,2000@5,6"},
        {"renamed, other schema, gone",
         document(canvas, tableEntry("g", "film", "", keys(1, 500, 258, 128)) + "," +
                              tableEntry("", "film", "s", keys(1, 500, 258, 128)) + "," +
                              tableEntry("", "gone", "", keys(1, 500, 258, 128))),
         false, unmoved + "4000,2000@5,6"},
        {"geometry is missing, then there",
         document(canvas, tableEntry("f", "film", "", "\"X\":1,\"Y\":2,\"Width\":3") + "," +
                              tableEntry("f", "film", "", keys(1, 600, 218, 238))),
         false, "1,600,218,238 358,40,218,238 676,40,218,105 40,400,258,128 4000,2000@5,6"},
        {"overlap that the user made",
         document(canvas, tableEntry("f", "film", "", keys(600, 500, 218, 238)) + "," +
                              tableEntry("", "film", "", keys(650, 520, 218, 238))),
         false, "600,500,218,238 650,520,218,238 676,40,218,105 40,400,258,128 4000,2000@5,6"},
        {"one on top of what is not in it",
         document(canvas, tableEntry("f", "film", "", keys(650, 60, 218, 238))), false,
         "650,60,218,238 358,40,218,238 40,40,218,105 40,400,258,128 4000,2000@5,6"},
        {"the same place for two",
         document(canvas, tableEntry("f", "film", "", keys(900, 60, 218, 238)) + "," +
                              tableEntry("", "film", "", keys(900, 60, 218, 238))),
         false, "900,60,218,238 40,40,218,238 676,40,218,105 40,400,258,128 4000,2000@5,6"},
    };
    for (const Case& each : cases) {
        LayoutScene scene;
        EXPECT_EQ(scene.read(each.json), each.fits) << each.what;
        EXPECT_EQ(scene.places(), each.places) << each.what;
        EXPECT_FALSE(Handler::readLayout(nullptr, &scene.diagram, NuvoJson(each.json)));
        EXPECT_FALSE(Handler::readLayout(&scene.control, nullptr, NuvoJson(each.json)));
    }
}

TEST(Layouts, OfSourcesThatLookAlikeGoToThemInOrder) {
    LayoutScene scene;
    for (int i = 0; i < 2; ++i)
        scene.table("a\xff", {1000 + 300 * i, 40});
    NuvoJson json(scene.written());
    const auto setX = [&](size_t index, int x) {
        NuvoJsonValue* const objects = json.create("Objects");
        const_cast<NuvoJsonValue*>(objects->at(index))->create("X")->writeInteger(x);
    };
    setX(4, 1500);
    setX(5, 1200);
    ASSERT_TRUE(scene.read(json.serialise()));
    EXPECT_EQ(rectsOf(scene.diagram)[4].origin.x, 1500);
    EXPECT_EQ(rectsOf(scene.diagram)[5].origin.x, 1200);
}

TEST(Layouts, OfAnyKindLeaveTheDiagramUsable) {
    const auto entries = [](const std::string& place) {
        return tableEntry("f", "film", "", place) + "," + tableEntry("", "film", "", place) + "," +
               tableEntry("", "language", "s", place) + R"(,{"Alias":"recent",)" + place + "}";
    };
    const auto at = [&](int32_t x, int32_t y, int32_t width, int32_t height) {
        return document(keys(x, y, width, height), entries(keys(x, y, width, height)));
    };
    std::string many;
    for (int i = 0; i < 50000; ++i)
        many += tableEntry("f", "film", "", keys(i, i, 300, 300)) + ",{},7,[],null,";
    const std::string junk(1 << 20, '[');
    const std::string nested = std::string(1000, '[') + std::string(1000, ']');
    const std::string good = at(50, 400, 300, 300);
    const std::string texts[] = {
        at(huge, huge, huge, huge),
        at(tiny, tiny, tiny, tiny),
        at(tiny, huge, huge, tiny),
        at(huge, 0, 1, huge),
        at(-50, -50, 0, 0),
        at(0, 0, 10, 10),
        at(2990, 1590, 218, 238),
        document(keys(0, 0, 1, 1), tableEntry("f", "film", "", keys(huge, huge, huge, 10)) + "," +
                                       tableEntry("", "film", "", keys(huge - 9, huge, huge, 9))),
        document(keys(0, 0, 400, 400), tableEntry("f", "film", "", keys(-900, 0, 218, 238)) + "," +
                                           tableEntry("", "film", "", keys(-90, 0, 218, 238))),
        document(keys(0, 0, 9, 9), R"({"Alias":"recent",)" + keys(0, 0, 3000, 3000) + "}"),
        document(keys(9, 9, 9, 9), many + "{}"),
        document(keys(9, 9, 9, 9), nested),
        good.substr(0, good.size() / 2),
        R"({"Width":1,"Width":"x","Height":[[]],"X":{},"Y":null,"Objects":[[{}]]})",
        document(R"("Width":9999999999,"Height":3.5,"X":true,"Y":"7")", entries("\"X\":1e9")),
        "{\"Objects\":[\"\xff\xfe\"]}",
        "",
        "[]",
        junk,
        "\"" + junk,
    };
    for (const std::string& json : texts) {
        LayoutScene scene;
        const std::vector<LumoRect> before = rectsOf(scene.diagram);
        scene.read(json);
        EXPECT_EQ(fault(scene.diagram, before), "") << json.substr(0, 200);
        const std::string saved = scene.written();
        const std::string places = scene.places();
        EXPECT_TRUE(scene.read(saved)) << json.substr(0, 200);
        EXPECT_EQ(scene.places(), places) << json.substr(0, 200);
        LayoutScene other;
        other.read(saved);
        EXPECT_EQ(other.places(), places) << json.substr(0, 200);
    }
}

TEST(Layouts, ThatWereMutilatedLeaveTheDiagramUsable) {
    QB::Test::Dice dice(7);
    LayoutScene scene;
    const std::string good = scene.written();
    const std::string pieces = "0123456789-,:.\"[]{}eE\\ unltrf\xff";
    int valid = 0;
    for (int round = 0; round < QB::Test::repetitions(400); ++round) {
        std::string text = good;
        for (int change = dice.pick(4); change >= 0; --change) {
            const auto place = size_t(dice.pick(int(text.size())));
            if (dice.isOneIn(3))
                text.insert(place, text, size_t(dice.pick(int(text.size()))),
                            size_t(dice.pick(60)));
            else if (dice.isOneIn(2))
                text.erase(place, size_t(dice.pick(20)));
            else
                text[place] = dice.pickFrom(pieces);
            if (text.empty()) text = good;
        }
        const std::vector<LumoRect> before = rectsOf(scene.diagram);
        if (NuvoJson(text).getIsValidJson()) ++valid;
        scene.read(text);
        // Parts of items may lie over others where the text says so: only the canvas counts.
        for (const QBLumoItem* item : scene.diagram.items())
            ASSERT_TRUE(lumoContainsRect(scene.diagram.getRect(), item->getRect())) << text;
        const std::string saved = scene.written();
        ASSERT_TRUE(scene.read(saved)) << text;
        ASSERT_EQ(scene.written(), saved) << text;
    }
    EXPECT_GT(valid, 20);
}

TEST(Layouts, SizesCountAsTheUsersUnlessItemsTakeThemByThemselves) {
    struct Case {
        LumoSize size;
        int fields;  // when the layout is read
        int height;  // of the item, with 20 fields that come later
    };
    const Case cases[] = {
        {{218, 238}, 0, 238}, {{218, 105}, 0, 238}, {{218, 106}, 0, 106}, {{300, 238}, 0, 238},
        {{218, 105}, 2, 238}, {{218, 125}, 2, 125}, {{218, 60}, 0, 60},
    };
    for (const Case& each : cases) {
        ItemScene scene;
        QBLumoDatabaseItemBody* const film = scene.table("film", {40, 40});
        film->setFields(numberedFields(each.fields));
        const std::string place = keys(40, 40, each.size.width, each.size.height);
        Handler::readLayout(
            &scene.control, &scene.diagram,
            NuvoJson(document(keys(0, 0, 900, 900), tableEntry("", "film", "", place))));
        EXPECT_EQ(film->item()->getRect().size, each.size);
        film->setFields(numberedFields(20));
        EXPECT_EQ(film->item()->getRect().size.height, each.height) << each.size.height;
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
                             "]";
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
    handler.match({{9, {}}, {10, {"a"}}, {11, {"a", "b"}}});
    EXPECT_EQ(widthOf(handler, 10), 1002);
    EXPECT_EQ(widthOf(handler, 11), 1004);
    EXPECT_EQ(widthOf(handler, 4), 1002) << "an undo may bring it back";

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

    QBLumoContext context;
    const std::unique_ptr<QBLumoUIView> view(QBLumoUIView::create(&context, nullptr));
    LumoControl* const control = view->getControl();
    QBLumoDiagram diagram(&context, control);
    context.setActiveDiagram(control, &diagram);
    control->scrollToVisible({0, 0, 10, 10}, false);
    EXPECT_TRUE(
        Handler::readLayout(control, &diagram, NuvoJson(document(keys(300, 200, 3000, 1600), ""))));
    view->resize(900, 600);
    view->show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(view.get()));
    EXPECT_EQ(control->getScrollOrigin(), (LumoControlPoint{300, 200}));
}

}  // namespace QB::DiagramLumo
