#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <memory>
#include <random>

#include "canvas/link_scene.h"
#include "canvas/links/link_geometry.h"
#include "platform/lumo/lumo_virtual_scroll_view.h"

namespace QB::DiagramLumo {

void PrintTo(const Route& route, std::ostream* out) {
    *out << '(' << route.start.x << ',' << route.start.y << (route.startIsRight ? " right" : "")
         << ")-(" << route.end.x << ',' << route.end.y << (route.endIsRight ? " right)" : ")");
}

namespace {

// ---- numbers ----

AdaptorEnd endAt(int x, int y, int width) {
    return {{x, y, width, 6}, {x, y + 3}, {x + width, y + 3}};
}

TEST(LinkGeometry, DocksEachEndAtTheSideThatFacesTheCentre) {
    const struct {
        const char* what;
        LumoPoint a, b;  // of the adaptors, which are 100 wide
        Route route;
        LumoPoint middle;
        double angle;
    } cases[] = {
        {"to the right",
         {0, 0},
         {300, 100},
         {{100, 3}, {300, 103}, false, true},
         {200, 53},
         28.5231},
        {"to the left",
         {300, 100},
         {0, 0},
         {{300, 103}, {100, 3}, true, false},
         {200, 53},
         -151.4769},
        {"above", {0, 0}, {0, 200}, {{100, 3}, {100, 203}, false, false}, {108, 103}, 90},
        {"nearly so", {1, 200}, {0, 0}, {{1, 203}, {100, 3}, true, false}, {50, 103}, -60.1011},
        {"rows of one item", {0, 0}, {0, 20}, {{100, 3}, {100, 23}, false, false}, {108, 13}, 90}};
    for (const auto& c : cases) {
        const AdaptorEnd a = endAt(c.a.x, c.a.y, 100);
        const AdaptorEnd b = endAt(c.b.x, c.b.y, 100);
        const Route route = routeBetween(a, b, linkCentre(a, b));
        EXPECT_EQ(route, c.route) << c.what;
        EXPECT_EQ(route.middle(), c.middle) << c.what;
        EXPECT_NEAR(route.angle(), c.angle, 1e-3) << c.what;
    }
    EXPECT_EQ(routeMiddle({16777216, 0}, {16777218, 1}), (LumoPoint{16777216, 0}))
        << "in single precision";
}

double distanceTo(LumoDoublePoint a, LumoDoublePoint b, LumoPoint point) {
    const double dx = b.x - a.x;
    const double dy = b.y - a.y;
    const double along = ((point.x - a.x) * dx + (point.y - a.y) * dy) / (dx * dx + dy * dy);
    const double t = std::clamp(along, 0.0, 1.0);
    return std::hypot(point.x - a.x - t * dx, point.y - a.y - t * dy);
}

/// Probes around random routes. What is nearer than 4 to the line is always hit, what is farther
/// than 8.5 + half a pixel of rounding never; a symbol is hit within its discs and nowhere else.
TEST(LinkGeometry, HitsABandAroundTheLineAndTheDiscsOfTheSymbol) {
    std::mt19937 dice(20);
    const auto roll = [&dice](int low, int high) {
        return std::uniform_int_distribution<int>(low, high)(dice);
    };
    int lineHits = 0;
    int symbolHits = 0;
    for (int round = 0; round < 1000; ++round) {
        const AdaptorEnd left = endAt(roll(0, 900), roll(0, 900), roll(40, 300));
        const AdaptorEnd right = endAt(roll(0, 900), roll(0, 900), roll(40, 300));
        const LinkHit hit{routeBetween(left, right, linkCentre(left, right)), round % 7, true};
        const LumoPoint from = hit.route.startStub();
        const LumoPoint to = hit.route.endStub();
        const LumoPoint middle = hit.route.middle();
        const double angle = hit.route.angle() * M_PI / 180;
        const double away = hit.joinType == 5 ? 11 : 8.5;
        const double radius = hit.joinType == 5 ? 10 : 12.5;
        for (int i = 0; i < 100; ++i) {
            const double t = roll(0, 100) / 100.0;
            const LumoPoint probe{int(from.x + t * (to.x - from.x)) + roll(-15, 15),
                                  int(from.y + t * (to.y - from.y)) + roll(-15, 15)};
            const double distance =
                distanceTo({double(from.x), double(from.y)}, {double(to.x), double(to.y)}, probe);
            const bool isHit = hit.hits(probe, true, false);
            lineHits += isHit;
            ASSERT_FALSE(isHit && distance > 9.0) << distance;
            ASSERT_FALSE(!isHit && distance < 3.6) << distance;

            const LumoPoint disc{middle.x + roll(-25, 25), middle.y + roll(-25, 25)};
            const double x = disc.x - middle.x;
            const double y = disc.y - middle.y;
            const double near =
                std::min(std::hypot(x - away * std::cos(angle), y - away * std::sin(angle)),
                         std::hypot(x + away * std::cos(angle), y + away * std::sin(angle)));
            const bool isSymbolHit = hit.hits(disc, false, true);
            symbolHits += isSymbolHit;
            ASSERT_FALSE(isSymbolHit && near > radius);
            // The box around the turned symbol cuts the discs a little.
            ASSERT_FALSE(!isSymbolHit && near < radius - 4) << near << ' ' << hit.route.angle();
            ASSERT_FALSE(LinkHit({hit.route, hit.joinType, false}).hits(disc, false, true));
        }
    }
    EXPECT_GT(lineHits, 20000);
    EXPECT_GT(symbolHits, 20000);
    EXPECT_FALSE(LinkHit().hits({0, 0}, true, true)) << "no route";
}

// ---- in a diagram ----

TEST(JoinLink, FollowsItsEndsAndMirrorsWhenTheySwapSides) {
    LinkScene scene;
    auto* const a = scene.dock({100, 100, 200, 100});
    auto* const b = scene.dock({700, 300, 200, 100});
    QBLumoJoinLink* const link = scene.link(a, b);
    const auto route = [&] {
        return link->routes().front().movedBy(link->getRect().origin);
    };
    EXPECT_EQ(link->getRect(), LumoRect(97, -185, 806, 800));
    EXPECT_EQ(route(), (Route{{303, 115}, {697, 315}, false, true}));
    EXPECT_EQ(scene.inDiagram(link, link->midPoint()), (LumoPoint{500, 215}));

    scene.move(a, {1100, 100});
    EXPECT_EQ(route(), (Route{{1097, 115}, {903, 315}, true, false})) << "in the same pass";
    scene.move(a, {700, 100});
    EXPECT_EQ(route(), (Route{{903, 115}, {903, 315}, false, false})) << "one above the other";
    EXPECT_TRUE(link->hitTest(link->midPoint(), true, true));
    EXPECT_FALSE(link->hitTest(link->midPoint() + LumoPoint{60, 0}, true, true))
        << "inside of its rectangle, away from its line";
}

TEST(JoinLink, IsNeitherShownNorHitWithoutTwoEnds) {
    LinkScene scene;
    auto* const a = scene.dock({100, 100, 200, 100});
    auto* const b = scene.dock({700, 300, 200, 100});
    QBLumoJoinLink* const link = scene.link(a, b);
    const LumoPoint was = link->midPoint();
    EXPECT_TRUE(link->isShown());

    const struct {
        const char* what;
        QBLumoJoinLinkAdaptor* left;
        QBLumoJoinLinkAdaptor* right;
        size_t attached;
    } cases[] = {{"one adaptor twice", a, a, 1}, {"no adaptor", nullptr, b, 0}};
    for (const auto& c : cases) {
        link->setTableAdaptors(c.left, c.right);
        for (const char* when : {"before layout", "after"}) {
            EXPECT_FALSE(link->isShown()) << c.what << ' ' << when;
            EXPECT_FALSE(link->hitTest(was, true, true)) << c.what << ' ' << when;
            EXPECT_FALSE(link->hitTest(link->midPoint(), true, true)) << c.what << ' ' << when;
            EXPECT_EQ(link->customDirtyRect(), LumoRect()) << c.what << ' ' << when;
            scene.diagram.layout();
        }
        EXPECT_EQ(a->links().size(), c.attached) << c.what;
    }
}

TEST(JoinLink, ShowsInTheModeOfItsFirstPair) {
    LinkScene scene;
    auto* const a = scene.dock({100, 100, 200, 100});
    auto* const b = scene.dock({700, 300, 200, 100});
    QBLumoJoinLink* const tables = scene.link(a, b);
    auto* const fields = new QBLumoJoinLink;
    scene.diagram.addChild(fields, 0);
    for (auto* adaptor : {a, b})
        adaptor->getParent()->addChild(new QBLumoFieldJoinLinkAdaptor);
    const auto fieldAdaptor = [](const LumoObject* adaptor) {
        return adaptor->getParent()->findChildren<QBLumoFieldJoinLinkAdaptor>(false).front();
    };
    fields->addFieldAdaptors(fieldAdaptor(a), fieldAdaptor(b));

    for (const int mode : {TableRelation, FieldRelation, TableRelation}) {
        scene.diagram.setRelationMode(mode);
        scene.diagram.layout();
        const bool isTable = mode == TableRelation;
        EXPECT_EQ(tables->getVisible() && tables->getSelectable(), isTable) << mode;
        EXPECT_EQ(a->getVisible(), isTable) << mode;
        EXPECT_EQ(fields->isShown() && fields->getSelectable(), !isTable) << mode;
        EXPECT_EQ(tables->hitTest(tables->midPoint(), false, true), isTable) << mode;
        EXPECT_EQ(tables->shownAdaptorPairs().size(), isTable ? 1U : 0U) << mode;
    }
}

TEST(JoinLink, LeavesOnlyTheAdaptorsThatNoOtherPairHolds) {
    LinkScene scene;
    auto* const a = scene.dock({0, 0, 100, 50});
    auto* const b = scene.dock({300, 0, 100, 50});
    auto* const c = scene.dock({300, 200, 100, 50});
    QBLumoJoinLink link;
    link.addFieldAdaptors(a, b);
    link.addFieldAdaptors(a, c);
    link.addFieldAdaptors(a, nullptr);
    link.setTableAdaptors(b, c);
    EXPECT_EQ(link.allAdaptorPairs(),
              (std::vector<QBLumoJoinLink::AdaptorPair>{{a, b}, {a, c}, {b, c}}));

    const auto attached = [&] {
        return std::vector<size_t>{a->links().size(), b->links().size(), c->links().size()};
    };
    link.removeAdaptorPairs([&](const auto& pair) { return pair.first == a && pair.second == b; });
    EXPECT_EQ(attached(), (std::vector<size_t>{1, 1, 1}));
    a->removedFromDiagram();
    EXPECT_EQ(attached(), (std::vector<size_t>{0, 1, 1}));
    EXPECT_EQ(link.allAdaptorPairs().size(), 1U);
    link.removeAllAdaptors();
    EXPECT_EQ(attached(), (std::vector<size_t>{0, 0, 0}));

    const auto lone = std::make_unique<QBLumoObject>();  // outside of a diagram nobody tells
    auto* const shortLived = new QBLumoItemJoinLinkAdaptor;
    lone->addChild(shortLived);
    link.addFieldAdaptors(a, shortLived);
    lone->clearChildren();
    EXPECT_TRUE(link.allAdaptorPairs().empty());
    EXPECT_TRUE(a->links().empty());
}

/// Three boxes in a ring of links, two of these between the same boxes; everything is removed and
/// destroyed in every order. Sanitizers see what is used after it went.
TEST(JoinLink, AndItsAdaptorsGoInAnyOrder) {
    std::vector<int> order{0, 1, 2, 3, 4, 5};
    do {
        LinkScene scene;
        QBLumoJoinLinkAdaptor* docks[] = {scene.dock({0, 0, 100, 50}),
                                          scene.dock({300, 0, 100, 50}),
                                          scene.dock({300, 200, 100, 50})};
        std::vector<LumoObject*> objects;
        for (QBLumoJoinLinkAdaptor* dock : docks)
            objects.push_back(dock->getParent());
        objects.push_back(scene.link(docks[0], docks[1]));
        objects.push_back(scene.link(docks[0], docks[1]));
        objects.push_back(scene.link(docks[1], docks[2]));
        for (const int index : order) {
            LumoObject* const object = objects[size_t(index)];
            if (index % 2 == 0) scene.diagram.removeChild(object);
            delete object;
            scene.diagram.layout();
            const auto links = scene.diagram.findChildren<QBLumoJoinLink>(true);
            const auto adaptors = scene.diagram.findChildren<QBLumoJoinLinkAdaptor>(true);
            for (const QBLumoJoinLink* link : links)
                for (const auto& pair : link->allAdaptorPairs())
                    for (const QBLumoJoinLinkAdaptor* end : {pair.first, pair.second})
                        ASSERT_TRUE(std::count(adaptors.begin(), adaptors.end(), end));
            for (const QBLumoJoinLinkAdaptor* adaptor : adaptors)
                for (const QBLumoJoinLink* link : adaptor->links())
                    ASSERT_TRUE(std::count(links.begin(), links.end(), link));
        }
    } while (std::next_permutation(order.begin(), order.end()));
}

// ---- adaptors at lists ----

TEST(FieldAdaptor, RidesOnTheListsEdgeWhileItsRowIsScrolledOut) {
    const struct {
        const char* what;
        int row;  // of 10 rows of 20 pixels; -1 for no view
        int offset;
        int y;  // in the body, whose list is 100 high and begins at 31
    } cases[] = {{"at its row", 1, 0, 31 + 20 + 10 - 3},
                 {"scrolled", 2, 30, 31 + 40 - 30 + 10 - 3},
                 {"above", 0, 50, 31 - 3},
                 {"below", 9, 0, 131 - 3},
                 {"no row", -1, 0, 15 - 3}};
    for (const auto& c : cases) {
        LinkScene scene;
        scene.diagram.setRelationMode(FieldRelation);
        const auto add = [](LumoObject* parent, auto* child, const LumoRect& rect) {
            child->setRect(rect);
            parent->addChild(child);
            return child;
        };
        auto* const body = add(&scene.diagram, new QBLumoObject, {100, 100, 200, 140});
        auto* const scroll = add(body, new LumoVirtualScrollView, {1, 31, 193, 100});
        scroll->setContentHeight(200);
        auto* const list = add(scroll->contentObject(), new QBLumoObject, {0, -c.offset, 180, 200});
        auto* const adaptor = add(body, new QBLumoFieldJoinLinkAdaptor, {});
        for (int i = 0; i < 10; ++i) {
            auto* const row = add(list, new QBLumoObject, {0, i * 20, 180, 20});
            if (i == c.row) adaptor->setFieldView(row);
        }
        scene.diagram.layout();
        EXPECT_EQ(adaptor->getRect().origin.y, c.y) << c.what;
        EXPECT_EQ(adaptor->getRect().size.height, 6) << c.what;
    }
}

}  // namespace
}  // namespace QB::DiagramLumo
