#include <algorithm>
#include <cmath>

#include <gtest/gtest.h>

#include "canvas/base/canvas_style.h"
#include "canvas/controls/scroll_view.h"
#include "canvas/items/text_wrap.h"
#include "canvas/links/join_link_adaptor.h"
#include "item_scene.h"
#include "platform/lumo/lumo_text.h"
#include "support/host_callbacks.h"

namespace QB::DiagramLumo {
namespace {

double luminance(const LumoColor& color) {
    const auto linear = [](int part) {
        const double value = part / 255.0;
        return value <= 0.03928 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(color.red) + 0.7152 * linear(color.green) + 0.0722 * linear(color.blue);
}

double contrast(const LumoColor& a, const LumoColor& b) {
    const double first = luminance(a) + 0.05;
    const double second = luminance(b) + 0.05;
    return std::max(first, second) / std::min(first, second);
}

class Items : public testing::Test {
protected:
    QB::Test::HostCallbacks callbacks;
    ItemScene scene;
};

// ---- titles and texts ----

TEST_F(Items, ShortenTheNameInATitleBeforeTheAlias) {
    const LumoLayoutHelper& helper = lumoLayoutHelper();
    const auto width = [&](const std::string& text) {
        return helper.measureText(text, Style::itemFont).width;
    };
    const TitleText title{"customers", "c"};
    EXPECT_EQ(title.whole(), "customers (c)");
    EXPECT_FALSE(title.isElided(width(title.whole()) + 1));
    EXPECT_EQ((TitleText{"customers", ""}).whole(), "customers");
    EXPECT_EQ((TitleText{"", "c"}).whole(), "c");
    EXPECT_EQ((TitleText{}).whole(), "<?>");
    EXPECT_TRUE((TitleText{}).isUnknown());

    for (const double room : {20.0, 60.0, 120.0}) {
        const auto parts = TitleText{"customers_of_the_shop", "an_alias"}.fitted(room);
        ASSERT_EQ(parts.size(), 4u);
        double sum = 0;
        for (const auto& part : parts)
            sum += part.empty() ? 0 : width(part);
        EXPECT_LE(sum, std::max(room, width("\u2026 ()") + 1)) << room;
        EXPECT_EQ(parts[2] == "an_alias", room > 100) << "the name gives way first";
    }
    QBLumoDatabaseItemBody* const table = scene.table("short", {40, 40});
    EXPECT_FALSE(table->isTitleElided());
    table->setTableName(std::string(1 << 20, 'x'));
    EXPECT_TRUE(table->isTitleElided());
}

TEST_F(Items, ReadWellInEveryStateAndTheme) {
    for (const bool dark : {false, true}) {
        callbacks.isDark = dark;
        const ItemColors plain = itemColors(false);
        const ItemColors selected = itemColors(true);
        EXPECT_GE(contrast(plain.title, plain.titleText), 4.5);
        EXPECT_GE(contrast(selected.title, selected.titleText), 4.5);
        EXPECT_GE(contrast(plain.body, themePalette().text), 4.5);
        EXPECT_GE(contrast(plain.border, plain.body), 3.0);
        EXPECT_GE(contrast(plain.border, themePalette().canvas), 3.0);
        EXPECT_NE(plain.title, selected.title);
        EXPECT_NE(plain.title, plain.body);
    }
}

TEST_F(Items, WrapTextsAtSpacesAndCutThemAtTheEndOfTheirArea) {
    const struct {
        const char* text;
        int lines;
        std::vector<std::string> expected;
        bool cut;
    } cases[] = {
        {"one", 3, {"one"}, false},
        {"", 3, {}, false},
        {"one\n\n\ttwo\r\n", 4, {"one", "", "    two"}, false},
        {"one\ntwo\nthree", 2, {"one", "two\u2026"}, true},
        {"one\ntwo", 0, {}, true},
    };
    for (const auto& c : cases) {
        const WrappedText wrapped = wrappedText(c.text, 100, c.lines);
        EXPECT_EQ(wrapped.lines, c.expected) << c.text;
        EXPECT_EQ(wrapped.isCut, c.cut) << c.text;
    }
    for (const std::string& text :
         {std::string("SELECT id, a_name FROM orders WHERE total > 100"), std::string(60, 'w'),
          // Of glyphs that no font has Qt's offscreen platform leaves the search behind.
          std::string("\u00e4\u20ac\u00f6 \u20ac\u20ac\u20ac\u20ac\u20ac\u20ac\u20ac") +
              "\u20ac\u20ac\u20ac\u20ac\u20ac\u20ac\u20ac\u20ac"}) {
        std::string joined;
        for (const std::string& line : wrappedText(text, 100, 100).lines) {
            EXPECT_LE(lumoLayoutHelper().measureText(line, Style::itemFont).width, 100) << line;
            EXPECT_EQ(QString::fromStdString(line).toStdString(), line) << "no character is torn";
            joined += line;
        }
        std::string letters = text;
        for (std::string* one : {&letters, &joined})
            one->erase(std::remove(one->begin(), one->end(), ' '), one->end());
        EXPECT_EQ(joined, letters) << "nothing is lost";
    }
}

TEST_F(Items, LayOutNoMoreOfALongTextThanShows) {
    std::string megabyte;
    for (int i = 0; megabyte.size() < (1u << 20); ++i)
        megabyte += "column_" + std::to_string(i) + (i % 7 ? ", " : ",\n");
    const long before = lumoTextLayouts();
    QBLumoTextBasedItemBody* const body = scene.text("big", {40, 40}, megabyte);
    EXPECT_TRUE(body->isTextElided());
    body->setText(std::string(1 << 20, 'x'));
    scene.diagram.layout();
    EXPECT_LT(lumoTextLayouts() - before, 200);
    EXPECT_LT(lineStart(megabyte, 200).size(), 1000u) << "and that of no more";
    EXPECT_EQ(lineStart("short", 200), "short");
}

TEST_F(Items, ShowTheFieldsOfATextBesideItAndTheButtonInItsTitle) {
    QBLumoTextBasedItemBody* const body = scene.text("sub", {40, 40}, "SELECT 1");
    const LumoRect whole = body->textRect();
    EXPECT_EQ(whole, LumoRect(1, 31, 233, 83));
    body->setFields({"one", "two"});
    scene.diagram.layout();
    EXPECT_EQ(body->textRect().origin, whole.origin);
    EXPECT_LT(body->textRect().size.width, 115);
    EXPECT_EQ(body->listView()->existingCells().size(), 3u);
    EXPECT_GT(body->listView()->translatePoint({}, body).x, 115);
    body->setFields({});
    scene.diagram.layout();
    EXPECT_EQ(body->textRect(), whole);

    EXPECT_FALSE(body->hasEditButton());
    const int narrow = body->minimumSize().width;
    int opened = 0;
    body->setEditButtonHandler([&](QBLumoTextBasedItemBody*) { ++opened; });
    EXPECT_GE(body->minimumSize().width, narrow);
    body->setEditButtonHandler(nullptr);
    EXPECT_FALSE(body->hasEditButton());
    EXPECT_EQ(opened, 0);
}

// ---- sizes ----

TEST_F(Items, AreAsHighAsTheirFieldsUntilTheUserResizesThem) {
    QBLumoDatabaseItemBody* const body = scene.table("orders", {40, 40});
    QBLumoItem* const item = body->item();
    EXPECT_EQ(item->getRect(), LumoRect(40, 40, 218, 245));
    body->setFields({"a", "b", "c"});
    EXPECT_EQ(item->getRect(), LumoRect(40, 40, 218, 125)) << "four rows with the wildcard";
    body->setFields(numberedFields(30));
    EXPECT_EQ(item->getRect().size.height, 245);

    scene.control.drag({150, 277}, {150, 327});
    scene.control.release({150, 327});
    EXPECT_EQ(item->getRect(), LumoRect(40, 40, 218, 295));
    EXPECT_TRUE(item->isSizedByUser());
    body->setFields({"a"});
    EXPECT_EQ(item->getRect().size.height, 295) << "the user's size";

    QBLumoDatabaseItemBody* const low = scene.table("low", {400, 780}, {"a"});
    low->setFields(numberedFields(30));
    EXPECT_EQ(low->item()->getRect().size.height, 120) << "no further than the canvas";
}

// ---- moving and resizing with the mouse ----

TEST_F(Items, ResizeByTheirEdgesAndGoBackOnEscape) {
    QBLumoDatabaseItemBody* const body = scene.table("orders", {100, 100}, numberedFields(3));
    QBLumoItem* const item = body->item();
    const LumoRect start = item->getRect();
    const LumoPoint left{107, 150};  // two beside the body
    scene.control.move(left, 0);
    EXPECT_EQ(scene.control.cursor, LumoCursorResizeHorizontal);
    scene.control.drag(left, {57, 150});
    EXPECT_EQ(item->getRect(), LumoRect(50, 100, start.size.width + 50, start.size.height));
    EXPECT_TRUE(item->getSelected()) << "a press beside the body is one on the item";
    scene.control.move({-100, 150});
    EXPECT_EQ(lumoMaxX(item->getRect()), lumoMaxX(start)) << "the other edge stays";
    EXPECT_EQ(item->getRect().origin.x, 0);
    scene.control.move({1500, 150});
    EXPECT_EQ(item->getRect().size.width, 48);
    scene.control.dispatcher()->keyDown(LumoKeyEscape, LumoButtonLeft);
    scene.control.release({1500, 150});
    EXPECT_EQ(item->getRect(), start);
    EXPECT_FALSE(item->isSizedByUser());
    scene.control.move({200, 150}, 0);
    EXPECT_EQ(scene.control.cursor, LumoCursorDefault);
}

TEST_F(Items, AreNotDraggedByWhatIsNeitherTitleNorEdgeAndCoverWhatLiesBelow) {
    QBLumoDatabaseItemBody* const body = scene.table("empty", {100, 100});
    scene.control.drag({200, 250}, {300, 300});
    scene.control.move({200, 110});  // over the title now: no second chance
    scene.control.release({200, 110});
    EXPECT_EQ(body->item()->getRect().origin, (LumoPoint{100, 100}));
    EXPECT_TRUE(body->item()->getSelected()) << "and no rubber band took its selection";

    QBLumoDatabaseItemBody* const above = scene.table("above", {100, 100});
    scene.control.press({200, 110});
    EXPECT_TRUE(scene.control.dispatcher()->isPressed(above));
    EXPECT_FALSE(scene.control.dispatcher()->isPressed(body));
    scene.control.release({200, 110});
    scene.control.press({101, 200});  // in the inset, beyond the reach of the edge
    EXPECT_FALSE(scene.control.dispatcher()->isPressed(above->item()));
    scene.control.release({101, 200});
}

TEST_F(Items, KeepTheirPictureWhileTheyMove) {
    QBLumoDatabaseItemBody* const body = scene.table("orders", {40, 40}, numberedFields(3));
    const uint64_t picture = body->item()->pictureSerial();
    ASSERT_NE(picture, 0u);
    body->item()->dragToPoint({60, 15}, false);
    body->item()->dragToPoint({90, 45}, false);
    body->item()->endDrag(false);
    EXPECT_NE(body->item()->getRect().origin.x, 40);
    EXPECT_EQ(body->item()->pictureSerial(), picture);
    body->setFieldSelection({}, false);
    EXPECT_EQ(body->item()->pictureSerial(), picture) << "nothing changed";
    body->setFieldSelection({"field_2"}, false);
    EXPECT_NE(body->item()->pictureSerial(), picture);
}

}  // namespace
}  // namespace QB::DiagramLumo
