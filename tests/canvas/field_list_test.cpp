#include <gtest/gtest.h>

#include <QTest>

#include "canvas/controls/check_box.h"
#include "canvas/controls/scroll_view.h"
#include "canvas/items/field_list.h"
#include "canvas/links/join_link.h"
#include "canvas/links/join_link_adaptor.h"
#include "item_scene.h"
#include "platform/lumo/lumo_label.h"

namespace QB::DiagramLumo {
namespace {

class FieldList : public testing::Test {
protected:
    FieldList() {
        context().setFieldLinkDrawn(
            [this](QBLumoItem*, const std::string& from, QBLumoItem*, const std::string& to) {
                drawn += " " + from + "=" + to;
            });
        for (QBLumoBaseItemBody* body : {left, right})
            body->item()->setFieldSelectionHandler(
                [this](QBLumoItem*, const std::string& field, bool selected) {
                    ticked += (selected ? " +" : " -") + field;
                });
    }

    QBLumoContext& context() { return scene.context; }
    static std::string label(QBLumoListView::Cell* cell) {
        return static_cast<LumoLabel*>(cell->namedObjects().at("Label"))->getText();
    }
    static QBLumoCheckBox* box(QBLumoBaseItemBody* body, size_t row) {
        return static_cast<QBLumoCheckBox*>(
            body->listView()->cellAt(row)->namedObjects().at("CheckBox"));
    }
    LumoPoint boxPoint(QBLumoBaseItemBody* body, size_t row) {
        return box(body, row)->translatePoint({8, 8}, &scene.diagram);
    }
    /// The rows as shown: "[x] name".
    static std::string shown(QBLumoBaseItemBody* body) {
        std::string text;
        for (QBLumoListView::Cell* cell : body->listView()->cells())
            text += (box(body, size_t(cell->rowIndex()))->isChecked() ? " [x] " : " [ ] ") +
                    label(cell);
        return text;
    }

    ItemScene scene;
    QBLumoDatabaseItemBody* left = scene.table("left", {100, 100}, {"a", "b", "c"});
    QBLumoDatabaseItemBody* right = scene.table("right", {500, 100}, numberedFields(30));
    std::string drawn;
    std::string ticked;
};

TEST_F(FieldList, TicksBelongToNamesWhateverRowsThereAre) {
    left->setFieldSelected("b", true);
    left->setFieldSelected("later", true);
    EXPECT_EQ(shown(left), " [ ] * [ ] a [x] b [ ] c");
    left->setFields({"b", "later", "b"});
    EXPECT_EQ(shown(left), " [ ] * [x] b [x] later [x] b");
    left->setWildcardSelected(true);
    left->setFields({});
    EXPECT_EQ(shown(left), "");
    left->setFields({"x", "b"});
    EXPECT_EQ(shown(left), " [x] * [ ] x [x] b");
    left->clearFieldSelection();
    EXPECT_EQ(shown(left), " [ ] * [ ] x [ ] b");
    EXPECT_EQ(ticked, "") << "only the user's ticks are told";
    EXPECT_EQ(left->listView()->getRowData(0).count("FieldName"), 0u);
}

TEST_F(FieldList, TellsTheTicksOfTheUser) {
    scene.control.click(boxPoint(left, 0));
    scene.control.click(boxPoint(left, 2));
    scene.control.click(boxPoint(left, 2));
    EXPECT_EQ(ticked, " + +b -b") << "the wildcard has no name";
    EXPECT_EQ(shown(left), " [x] * [ ] a [ ] b [ ] c");
    EXPECT_TRUE(left->isWildcardSelected());
    scene.control.press(boxPoint(left, 1));
    scene.control.release({5, 5});
    scene.control.click(boxPoint(left, 1), LumoButtonRight);
    EXPECT_EQ(ticked, " + +b -b") << "released beside the box, by the right button";

    left->item()->setFieldSelectionHandler([&](QBLumoItem* item, const std::string&, bool) {
        scene.diagram.removeChild(item);
        delete item;
    });
    scene.control.click(boxPoint(left, 1));
    EXPECT_EQ(scene.diagram.items().size(), 1u) << "a handler may take the item away";
}

TEST_F(FieldList, MakesCellsForTheRowsThatShowOnly) {
    right->setFields(numberedFields(1600));
    QBLumoListView* const list = right->listView();
    EXPECT_EQ(list->existingCells().size(), 10u);
    EXPECT_EQ(list->getRect().size.height, 1601 * 20);
    right->scrollToRow(1600);
    EXPECT_EQ(right->scrollView()->getContentOffsetY(), 1601 * 20 - 200);
    EXPECT_LE(list->existingCells().size(), 20u);
    EXPECT_EQ(label(list->existingCells().back()), "field_1600");
    right->scrollToRow(1600);
    right->scrollToRow(1599);
    EXPECT_EQ(right->scrollView()->getContentOffsetY(), 1601 * 20 - 200) << "in sight already";
    EXPECT_EQ(list->cells().size(), 1601u);
    EXPECT_EQ(label(list->cellAt(800)), "field_800");
    EXPECT_EQ(list->cellAt(1601), nullptr);
    right->setFields({"x"});
    scene.diagram.layout();
    EXPECT_EQ(right->scrollView()->getContentOffsetY(), 0);
    EXPECT_EQ(shown(right), " [ ] * [ ] x");

    QBLumoListView plain;  // nobody told it what shows, and it has no delegate
    plain.setRowData({3, {{"Selected", QBVariant(0)}}});
    plain.setRect({0, 0, 50, 0});
    plain.autoResize();
    plain.layout();
    EXPECT_EQ(plain.getRect(), LumoRect(0, 0, 50, 60));
    EXPECT_EQ(plain.existingCells().back()->getRect(), LumoRect(0, 40, 50, 20));
}

TEST_F(FieldList, GivesAdaptorsTheirRowsAnewWhenFieldsChange) {
    QBLumoFieldJoinLinkAdaptor* const hidden = right->adaptorForField("field_25");
    QBLumoFieldJoinLinkAdaptor* const far = left->adaptorForField("c");
    const auto viewed = [](QBLumoFieldJoinLinkAdaptor* adaptor) {
        auto* const cell = dynamic_cast<QBLumoListView::Cell*>(adaptor->getFieldView());
        return cell ? label(cell) : std::string("none");
    };
    auto* const link = new QBLumoJoinLink;
    scene.diagram.addChild(link, 0);
    link->addFieldAdaptors(far, hidden);
    scene.diagram.setRelationMode(FieldRelation);
    scene.diagram.layout();
    EXPECT_EQ(viewed(hidden), "field_25");
    EXPECT_EQ(hidden->getRect(), LumoRect(-3, 31 + 200 - 3, 206, 6)) << "at the list's edge";
    EXPECT_EQ(right->adaptorForField("field_25"), hidden);

    right->setFields({"x", "field_25", "y"});
    EXPECT_TRUE(link->requireLayout());
    scene.diagram.layout();
    EXPECT_EQ(viewed(hidden), "field_25");
    EXPECT_EQ(hidden->getRect(), LumoRect(-3, 31 + 2 * 20 + 10 - 3, 206, 6));
    right->setFields({"x"});
    scene.diagram.layout();
    EXPECT_EQ(viewed(hidden), "none");
    EXPECT_EQ(hidden->getRect().origin.y, 12) << "at the title";
    right->setFields(numberedFields(60));
    EXPECT_EQ(viewed(hidden), "field_25");
    scene.diagram.layout();
    right->scrollToRow(25);
    scene.diagram.layout();
    EXPECT_EQ(hidden->getRect().origin.y, 31 + 200 - 10 - 3) << "scrolls along";
}

TEST_F(FieldList, DrawsALinkFromFieldToFieldAndHoldsTheListStill) {
    const auto still = [this] {
        return left->scrollView()->isVerticalScrollDisabled();
    };
    const struct {
        const char* what;
        size_t from;
        int to;  // -1: another row of the same item
        int32_t keys;
        const char* drawn;
    } cases[] = {
        {"field to field", 1, 2, LumoButtonLeft, " a=field_2"},
        {"to the wildcard", 1, 0, LumoButtonLeft, ""},
        {"within the item", 1, -1, LumoButtonLeft, ""},
        {"from the wildcard", 0, 2, LumoButtonLeft, ""},
        {"with another key", 1, 2, LumoButtonLeft | LumoKeyShift, ""},
        {"with the right button", 1, 2, LumoButtonRight, ""},
    };
    for (const auto& c : cases) {
        drawn.clear();
        const LumoPoint to = c.to < 0 ? scene.row(left, 2) : scene.row(right, size_t(c.to));
        scene.control.drag(scene.row(left, c.from), to, c.keys);
        EXPECT_EQ(still(), c.keys == LumoButtonLeft) << c.what;
        scene.control.release(to, c.keys);
        EXPECT_EQ(drawn, c.drawn) << c.what;
        EXPECT_FALSE(still()) << c.what;
    }
    EXPECT_EQ(left->item()->getRect().origin, (LumoPoint{100, 100}));
}

TEST_F(FieldList, EndsALinkDragInEveryWayWithoutATrace) {
    const auto end = [this](const std::string& what) {
        if (what == "Escape") scene.control.dispatcher()->keyDown(LumoKeyEscape, LumoButtonLeft);
        if (what == "a cancel") scene.control.dispatcher()->cancel();
        if (what == "other fields") left->setFields({"x"});
        if (what == "no fields") left->setFields({});
    };
    for (const char* what : {"Escape", "a cancel", "other fields", "no fields"}) {
        left->setFields({"a", "b", "c"});
        scene.diagram.layout();
        scene.control.drag(scene.row(left, 1), scene.row(right, 2));
        ASSERT_TRUE(scene.diagram.isLinkDragActive()) << what;
        end(what);
        EXPECT_FALSE(scene.diagram.isLinkDragActive()) << what;
        scene.control.move(scene.row(right, 3));
        EXPECT_FALSE(scene.diagram.isLinkDragActive()) << what << ", moved on";
        scene.control.release(scene.row(right, 3));
        EXPECT_FALSE(left->scrollView()->isVerticalScrollDisabled()) << what;
        EXPECT_EQ(drawn, "") << what;
    }
}

TEST_F(FieldList, LeavesTheItemFreeWhateverKeysComeAndGoDuringADrag) {
    const LumoPoint from = scene.row(left, 1);
    for (const int32_t first : {LumoKeyControl | 0, 0}) {
        scene.control.press(from, LumoButtonLeft | first);
        scene.control.move(from + LumoPoint{20, 5}, LumoButtonLeft | first);
        scene.control.move(from + LumoPoint{40, 5}, LumoButtonLeft | (LumoKeyControl - first));
        scene.control.move(from + LumoPoint{60, 5}, LumoButtonLeft);
        scene.control.release(from + LumoPoint{60, 5});
        EXPECT_FALSE(scene.diagram.isLinkDragActive());
        const LumoPoint before = left->item()->getRect().origin;
        const LumoPoint title = left->translatePoint({50, 15}, &scene.diagram);
        scene.control.drag(title, title + LumoPoint{30, 40});
        scene.control.release(title + LumoPoint{30, 40});
        EXPECT_EQ(left->item()->getRect().origin, before + LumoPoint({30, 40})) << first;
        left->item()->setRect({before, left->item()->getRect().size});
        scene.diagram.layout();
    }
}

TEST_F(FieldList, ScrollsWhileALinkIsDrawnOverItsLastRow) {
    auto* const overlay =
        right->scrollView()
            ->findChildren<QBLumoBaseItemBody::ScrollViewExtraActionReceiver>(false)
            .front();
    const LumoPoint last = right->scrollView()->translatePoint({60, 185}, &scene.diagram);
    scene.control.drag({560, 700}, last);  // a rubber band: nothing to scroll for
    EXPECT_FALSE(overlay->isScrolling());
    scene.control.dispatcher()->keyDown(LumoKeyEscape, LumoButtonLeft);

    scene.control.drag(scene.row(left, 1), last);
    EXPECT_TRUE(overlay->isScrolling());
    EXPECT_TRUE(
        QTest::qWaitFor([this] { return right->scrollView()->getContentOffsetY() > 1; }, 2000));
    scene.control.move(scene.row(right, 4));
    EXPECT_FALSE(overlay->isScrolling());
    scene.control.move(last);
    EXPECT_TRUE(overlay->isScrolling());
    scene.control.release(last);
    EXPECT_FALSE(overlay->isScrolling());
}

}  // namespace
}  // namespace QB::DiagramLumo
