#include <gtest/gtest.h>

#include <fstream>
#include <new>
#include <regex>
#include <set>

#include <QLabel>

#include "canvas/controls/button.h"
#include "canvas/controls/list_view.h"
#include "canvas/drawer/diagram_hint_widget.h"
#include "canvas/items/text_based_item_body.h"
#include "model/statement_record.h"
#include "tests/canvas/drawer_scene.h"

namespace QB::Test {
namespace {

using Lines = std::multiset<std::string>;

/// What the dump says, without places and quotes: a line for each item with its text and rows, and
/// for each link with its ends.
Lines linesOf(const QBLumoDiagram* diagram) {
    static const std::regex noise(
        R"re( at -?\d+,-?\d+ \d+x\d+|: -?\d+,-?\d+ .*$|#\d+ |^item |")re");
    static const std::regex row(R"(^  \[(x?) ?\] (.*))");
    static const std::regex body(R"(^  body \S+ \S+( text)?)");
    std::vector<std::string> lines;
    std::istringstream dump(dumpCanvas(diagram));
    for (std::string line; std::getline(dump, line);) {
        line = std::regex_replace(line, noise, "");
        if (line.rfind("  adaptor", 0) == 0 || line.rfind("  list", 0) == 0) continue;
        if (line.rfind("selection", 0) == 0) continue;
        line = std::regex_replace(std::regex_replace(line, row, " $1$2"), body, "");
        if (line.rfind("  ", 0) == 0) line.erase(0, 1);
        if (line.empty() || line[0] == ' ')
            lines.back() += line;
        else
            lines.push_back(line);
    }
    return {lines.begin(), lines.end()};
}

std::string entriesOf(const QMenu* menu) {
    std::string text;
    for (const QAction* entry : menu->actions()) {
        if (!text.empty()) text += " | ";
        text += entry->isSeparator() ? "-" : entry->text().toStdString();
        if (entry->menu()) text += " {" + entriesOf(entry->menu()) + "}";
    }
    return text;
}

/// What happens step by step, held against a file of that name beside this one.
class Transcript {
public:
    Transcript(DrawerScene& scene, const char* file) : m_scene(scene), m_file(file) {
        m_before = linesOf(scene.diagram());
    }
    ~Transcript() {
        std::ifstream file(std::string(JOINERY_TEST_DATA "/data/") + m_file);
        const std::string expected{std::istreambuf_iterator<char>(file), {}};
        EXPECT_EQ(m_text, expected) << m_file;
    }
    Transcript(const Transcript&) = delete;
    Transcript& operator=(const Transcript&) = delete;

    /// What changed on the canvas, was told and lit up since the last step.
    void step(const char* what) {
        const Lines before = std::exchange(m_before, linesOf(m_scene.diagram()));
        m_text += what + std::string("\n");
        addMissing("  - ", before, m_before);
        addMissing("  + ", m_before, before);
        if (const std::string told = m_scene.take(); !told.empty())
            m_text += "  " + told.substr(0, told.size() - 2) + "\n";
        if (const int lights = m_scene.finishPrompts())
            m_text += "  lights: " + std::to_string(lights) + "\n";
    }
    /// After a change of the query.
    void edit(const char* what) {
        m_scene.synchronise();
        step(what);
        // Once more: nothing is drawn anew.
        const std::string whole = dumpCanvas(m_scene.diagram());
        m_scene.synchronise();
        EXPECT_EQ(dumpCanvas(m_scene.diagram()), whole) << what;
        EXPECT_EQ(m_scene.take(), "") << what;
        EXPECT_EQ(m_scene.finishPrompts(), 0) << what;
    }
    /// Writes down the menu that is open, and chooses from it.
    void choose(const char* what, const QStringList& path) {
        ASSERT_TRUE(m_scene.menu()) << what;
        EXPECT_EQ(m_scene.menu()->parentWidget(), m_scene.drawer.getView()) << what;
        m_text += "menu: " + entriesOf(m_scene.menu()) + "\n";
        m_scene.choose(path);
        step(what);
        EXPECT_FALSE(m_scene.menu()) << what;
    }

private:
    void addMissing(const char* sign, const Lines& from, const Lines& without) {
        for (auto line = from.begin(); line != from.end(); line = from.upper_bound(*line))
            if (from.count(*line) > without.count(*line)) m_text += sign + *line + "\n";
    }

    DrawerScene& m_scene;
    const char* const m_file;
    Lines m_before;
    std::string m_text;
};

// ---- from the query to the canvas -----------------------------------------------------------

/// One comparison that shows a link, in brackets, and one of each kind that shows none.
void addComparisons(DrawerScene& s) {
    auto* const half = s.equal(s.film, "title", s.lang, "id");
    delete std::exchange(half->rightValue, nullptr);
    auto* const list = s.equal(s.film, "title", s.lang, "id");
    static_cast<SQLConditionValueComponent*>(list->rightValue)
        ->values.push_back(new SQLAnyExpressionColumnComponent);
    auto* const brackets = new SQLBracketedConditionComponent;
    brackets->inner = s.equal(s.film, "title", nullptr, "by the map");
    for (SQLAbstractConditionComponent* added :
         std::initializer_list<SQLAbstractConditionComponent*>{
             half, list, brackets, s.equal(s.film, "title", s.film, "language"),
             s.equal(s.film, "title", s.recent, "id"), s.equal(s.film, "title", nullptr, "id"),
             s.equal(s.film, "title", s.lang, "")})
        s.addCondition(s.languages, added);
}

TEST(Drawer, BringsTheCanvasToWhatTheQuerySaysAndTouchesNothingElse) {
    DrawerScene s;
    Transcript canvas(s, "drawer_edits.txt");
    s.film->alias = "f";
    canvas.edit("an alias");
    s.lang->name = "l";
    canvas.edit("a name");
    s.lang->path = {"x", "y"};
    canvas.edit("a schema");
    s.now->expression = "f(1)";
    canvas.edit("a text");
    auto* const inner = static_cast<SQLSelectStmtComponent*>(s.recent->subquery);
    inner->selectColumnExpr->selectOption = "DISTINCT ";
    canvas.edit("a subquery");
    s.languages->joinType = SQLJoinTypeLeft;
    canvas.edit("a kind of join");
    s.languages->joinType = SQLJoinTypeCustom;
    s.languages->joinText = "SEMI JOIN";
    canvas.edit("a kind in words");
    s.drawer.setFieldRelationMode();
    canvas.edit("field relations");
    auto* const compare = static_cast<SQLCompareConditionComponent*>(s.languages->condition);
    std::swap(compare->leftValue, compare->rightValue);
    canvas.edit("turned round: the sides stay");
    addComparisons(s);
    canvas.edit("comparisons");
    s.removeCondition(s.languages, compare);
    canvas.edit("one less");
    s.languages->joinType = SQLJoinTypeCross;
    canvas.edit("a cross join, whose conditions wait");
    s.languages->joinType = SQLJoinTypeComma;
    canvas.edit("a comma");
    s.languages->joinType = SQLJoinTypeInner;
    canvas.edit("a join again");
    s.drawer.setItemFieldSelection(s.film, {"title", "", "none"});
    canvas.edit("ticks");
    s.drawer.setItemFieldSelection(s.film, {"language"});
    canvas.edit("other ticks");
    s.drawer.updateAllComponentsUsingIdentifier({"y", "film"}, "public", {"wrong"});
    s.drawer.updateAllComponentsUsingIdentifier({"public", "Film"}, "public", {"wrong"});
    s.drawer.updateAllComponentsUsingIdentifier({"public", "film"}, "public", {"title"});
    s.drawer.setNamesHaveCase(false);
    s.drawer.updateAllComponentsUsingIdentifier({"Y", "L"}, "public", {"id", "code"});
    canvas.edit("fields of tables, by schema");
    s.root() = s.without(s.root(), {s.lang});
    canvas.edit("a table less");
}

/// By the statement alone: each source has its item, each join its links, and there is no other.
void expectDrawnAsInQuery(const DrawerScene& scene, const std::string& what) {
    std::set<const Source*> wanted, drawn;
    size_t items = 0, links = 0;
    for (const SourceNode* node : scene.nodes()) {
        const auto* const join = dynamic_cast<const Join*>(node->value);
        if (join && join->joinType == SQLJoinTypeComma) continue;
        wanted.insert(node->value);
        items += join ? 0 : 1;
        links += join ? 1 : 0;
        for (auto* link = join ? join->condition : nullptr; link; link = link->next)
            ++links;
    }
    for (const auto& component : scene.drawer.drawnComponents())
        drawn.insert(component.component);
    EXPECT_EQ(drawn, wanted) << what;
    EXPECT_EQ(scene.diagram()->items().size(), items) << what;
    EXPECT_EQ(scene.diagram()->joinLinks().size(), links) << what;
}

// ---- what the user does ---------------------------------------------------------------------

TEST(Drawer, TellsWhatTheUserDoesAndLeavesTheCanvasToTheQuery) {
    DrawerScene s;
    QWindow* const window = s.window.windowHandle();
    const QPoint toBox(-46, 0);
    Transcript canvas(s, "drawer_gestures.txt");
    s.click(s.placeOf(s.film, -1));
    canvas.step("a click");
    s.key(Qt::Key_F2);
    canvas.step("F2");
    s.click(s.placeOf(s.film, 1) + toBox);
    canvas.step("a box");
    s.click(s.placeOf(s.lang, 0) + toBox);
    canvas.step("the box of all fields");
    s.click(s.placeOf(s.lang, -1), Qt::LeftButton, Qt::ControlModifier);
    canvas.step("another, with Ctrl");
    s.doubleClick(s.placeOf(s.lang, -1));
    canvas.step("a double click");
    s.doubleClick(s.placeOf(s.recent, -1));
    canvas.step("a double click on a subquery");
    auto* const body = static_cast<QBLumoTextBasedItemBody*>(s.body(s.recent));
    s.click(s.inView({5, 5}, body->editButton()));
    canvas.step("its button");
    const QPoint from = s.placeOf(s.film, 2), to = s.placeOf(s.lang, 1);
    QTest::mousePress(window, Qt::LeftButton, {}, from);
    for (const QPoint at : {from + QPoint(30, 0), to - QPoint(5, 0), to})
        QTest::mouseMove(window, at);
    QTest::mouseRelease(window, Qt::LeftButton, {}, to);
    s.settle();
    canvas.step("a line from field to field");
    s.doubleClick(s.placeOf(s.shownLink()));
    canvas.step("a double click on a link");
    s.click({5, 5});
    canvas.step("beside");
}

TEST(Drawer, AsksNothingOfWhoGivesNoFunctionsAndOutlivesItsWidget) {
    needApplication();
    DrawnQuery query;
    QBLumoDiagramDrawer_LINUX drawer;
    QWidget* widget = nullptr;
    drawer.addComponentInDiagram(query.film, -1, -1);
    drawer.setupDiagram(&widget, {});
    for (const SourceNode* node : query.nodes())
        drawer.addComponentInDiagram(node->value, -1, -1);
    EXPECT_EQ(drawer.allComponentsInDiagram().size(), 5u);
    drawer.diagram()->selectAll();
    drawer.editAlias(query.film);
    drawer.editSubquery(query.recent);
    drawer.editJoin(query.languages, true);
    drawer.addWhereComparison(query.film, "title", CompareOpEqual);
    drawer.updateComponentInDiagram(query.recent);
    drawer.diagram()->deleteSelection();
    EXPECT_TRUE(drawer.diagram()->items().empty());
    delete widget;
    drawer.addComponentInDiagram(query.film, 10, 10);
    drawer.showComponentFocus(query.film, true);
    drawer.editAlias(query.film);
    drawer.applyTheme();
    drawer.scrollToOrigin();
    EXPECT_FALSE(drawer.getControl());
    EXPECT_EQ(drawer.arrangement().entries.size(), 1u);
    drawer.clearDiagram();
    EXPECT_TRUE(drawer.drawnComponents().empty());
}

TEST(Drawer, DeletesWithAHostThatTellsAtOnceAndWithOneThatTellsLater) {
    const struct {
        std::vector<SQLIdentifierSourceComponent * DrawnQuery::*> items;
        bool link;
        bool fields;
        std::string told;
    } cases[] = {
        {{&DrawnQuery::film}, false, false, "remove film; "},
        {{&DrawnQuery::film, &DrawnQuery::lang}, true, false, "remove "},
        {{}, true, false, "remove join languages; "},
        {{}, true, true, "remove condition languages; "},
    };
    for (const auto& one : cases)
        for (int host = 0; host < 8; ++host) {
            const std::string what = one.told + std::to_string(host);
            DrawerScene scene;
            scene.tellsAtOnce = host & 1;
            scene.refusesRemoval = host & 2;
            if (one.fields) scene.drawer.setFieldRelationMode();
            QPoint place;
            for (const auto source : one.items) {
                scene.diagram()->selectObject(scene.item(scene.*source), true);
                place = scene.placeOf(scene.*source, -1);
            }
            if (one.link) scene.diagram()->selectObject(scene.shownLink(), true);
            if (place.isNull()) place = scene.placeOf(scene.shownLink());
            scene.take();
            if (host & 4) {
                scene.click(place, Qt::RightButton);
                scene.choose({"Remove"});
            } else {
                scene.key(Qt::Key_Delete);
            }
            EXPECT_EQ(scene.take().substr(0, one.told.size()), one.told) << what;
            EXPECT_TRUE(scene.diagram()->selectedItems().empty()) << what;
            scene.synchronise();  // where it was refused, all comes back
            expectDrawnAsInQuery(scene, what);
        }
}

// ---- identity -------------------------------------------------------------------------------

TEST(Drawer, KnowsAComponentAgainAtAnotherAddress) {
    DrawerScene scene;
    scene.addCondition(scene.languages, scene.equal(scene.film, "title", scene.lang, "id"));
    scene.drawer.setFieldRelationMode();
    scene.synchronise();
    scene.click(scene.placeOf(scene.film, 1), Qt::RightButton);
    scene.finishPrompts();
    scene.take();
    const std::string whole = dumpCanvas(scene.diagram());

    // An undo: other objects with the same ids. Those that were drawn are gone.
    auto restored = restoreStatement(recordStatement(*scene.statement));
    ASSERT_TRUE(restored.statement);
    std::vector<std::pair<Source*, Source*>> forth, back;
    const std::vector<const SourceNode*> former = scene.nodes();
    scene.statement.swap(restored.statement);
    const std::vector<const SourceNode*> now = scene.nodes();
    for (size_t i = 0; i < now.size(); ++i) {
        forth.emplace_back(former[i]->value, now[i]->value);
        back.emplace_back(now[i]->value, former[i]->value);
    }
    scene.drawer.rebindComponents(forth);
    EXPECT_FALSE(scene.item(former[0]->value));
    scene.drawer.rebindComponents(back);
    // Another's id: no rebinding.
    scene.drawer.rebindComponents({{scene.film, scene.lang}, {scene.lang, scene.film}});
    EXPECT_EQ(scene.body(scene.film)->titleText(), "film");
    scene.film = static_cast<SQLIdentifierSourceComponent*>(now[0]->value);
    scene.languages = dynamic_cast<Join*>(now[1]->value);
    restored.statement.reset();
    scene.synchronise();
    EXPECT_EQ(dumpCanvas(scene.diagram()), whole);
    EXPECT_EQ(scene.take(), "");
    EXPECT_EQ(scene.finishPrompts(), 0);
    // The menu that was open means the new ones, links know the new conditions.
    scene.choose({"ORDER BY", "DESC"});
    EXPECT_EQ(scene.take(), "order film title 2; ");
    scene.diagram()->clearSelection();
    for (QBLumoJoinLink* link : scene.diagram()->joinLinks())
        if (link->isShown()) scene.diagram()->selectObject(link, true);
    scene.take();
    scene.key(Qt::Key_Delete);
    EXPECT_EQ(scene.take(), "remove condition languages; remove condition languages; ");
    EXPECT_FALSE(scene.languages->condition);
    expectDrawnAsInQuery(scene, "undone");
}

TEST(Drawer, KnowsAnotherComponentAtAnAddressThatIsDrawn) {
    DrawerScene scene;
    alignas(SQLIdentifierSourceComponent) std::byte place[sizeof(SQLIdentifierSourceComponent)];
    auto* at = new (place) SQLIdentifierSourceComponent;
    at->name = "old";
    scene.drawer.addComponentInDiagram(at, -1, -1);
    const QBLumoItem* const former = scene.item(at);
    const long formerId = at->id();
    std::destroy_at(at);
    at = new (place) SQLIdentifierSourceComponent;
    at->name = "new";
    EXPECT_EQ(scene.drawer.drawnId(at), formerId);
    scene.drawer.setItemFields(at, {"wrong"});
    scene.drawer.updateComponentInDiagram(at);
    scene.drawer.showComponentFocus(at, true);
    EXPECT_EQ(former->getBody()->titleText(), "old");
    EXPECT_TRUE(former->getBody()->fieldNames().empty());
    EXPECT_FALSE(former->getSelected());
    scene.drawer.addComponentInDiagram(at, -1, -1);
    EXPECT_EQ(scene.body(at)->titleText(), "new");
    EXPECT_EQ(scene.diagram()->items().size(), 5u);
    std::destroy_at(at);
    scene.drawer.removeComponentFromDiagram(at);
    EXPECT_EQ(scene.diagram()->items().size(), 4u);
}

// ---- menus ----------------------------------------------------------------------------------

TEST(Drawer, OffersMenusForWhatIsClickedAndDoesWhatTheyAreAskedFor) {
    DrawerScene s;
    const auto rightClick = [&s](const Source* source, int row, Qt::KeyboardModifiers held = {}) {
        s.click(s.placeOf(source, row), Qt::RightButton, held);
    };
    Transcript canvas(s, "drawer_menus.txt");
    rightClick(s.film, -1);
    canvas.choose("title", {"Edit the alias"});
    rightClick(s.film, 1);
    canvas.choose("field", {"WHERE", "is like"});
    rightClick(s.film, 1);
    canvas.choose("last operator", {"WHERE", "[no operator]"});
    rightClick(s.film, 2);
    canvas.choose("group", {"GROUP BY", "Group by this field"});
    rightClick(s.film, 0);
    canvas.choose("wildcard", {"Refresh"});
    rightClick(s.recent, -1);
    canvas.choose("subquery", {"Edit the text"});
    rightClick(s.now, -1);
    canvas.choose("free text", {"Refresh"});
    rightClick(s.film, 1, Qt::ControlModifier);
    canvas.choose("two items, at a field", {"Refresh"});
    s.diagram()->selectAll();
    rightClick(s.film, 1);
    canvas.choose("items and a link, at a field", {"ORDER BY", "ASC"});
    s.click(s.placeOf(s.shownLink()), Qt::RightButton);
    canvas.choose("link", {"Edit the join"});
    s.key(Qt::Key_Menu);
    canvas.choose("link, by key", {"Refresh"});
    s.diagram()->setFocusedObject(s.item(s.lang), 1);
    s.key(Qt::Key_Menu);
    canvas.choose("row, by key", {"WHERE", "is null"});
    // A word goes on in the menu that its first letter has opened.
    s.key(Qt::Key_Menu);
    for (const char letter : {'o', 'r', 'd', 'e', 'r'})
        QTest::keyClick(QApplication::activePopupWidget(), letter);
    QTest::keyClick(QApplication::activePopupWidget(), Qt::Key_Return);
    s.settle();
    EXPECT_EQ(s.take(), "") << "the first Return goes into the submenu";
    QTest::keyClick(QApplication::activePopupWidget(), Qt::Key_Return);
    s.settle();
    EXPECT_EQ(s.take(), "order lang id 1; ");
    s.key(Qt::Key_Menu);
    for (const char letter : {'w', '>'})  // which go on in no word there
        QTest::keyClick(QApplication::activePopupWidget(), letter);
    QTest::keyClick(QApplication::activePopupWidget(), Qt::Key_Return);
    s.settle();
    EXPECT_EQ(s.take().substr(0, 14), "where lang id ");
    s.click({20, 500}, Qt::RightButton);
    canvas.choose("canvas", {"Zoom", "Zoom in\tCtrl++; Ctrl+="});
    for (const auto& [entry, zoom] : {std::pair("Zoom in\tCtrl++; Ctrl+=", 1.21),
                                      {"Zoom out\tCtrl+-", 1.1},
                                      {"Actual size\tCtrl+0", 1.0}}) {
        s.click({20, 500}, Qt::RightButton);
        s.choose({"Zoom", entry});
        EXPECT_NEAR(s.drawer.getControl()->getZoom(), zoom, 1e-9) << entry;
    }
    EXPECT_TRUE(s.drawer.getView()->findChildren<QMenu*>().isEmpty());
}

TEST(Drawer, ClosesAMenuWithWhatItIsAboutAndDoesNothingToWhatItIsNot) {
    DrawerScene scene;
    const auto openFor = [&](const Source* source) {
        scene.click(scene.placeOf(source, -1), Qt::RightButton);
        return DrawerScene::menu() != nullptr;
    };
    ASSERT_TRUE(openFor(scene.film));
    for (Source* gone : {scene.lang, scene.film}) {
        const bool isAbout = gone == scene.film;
        scene.root() = scene.without(scene.root(), {gone});
        scene.synchronise();
        EXPECT_EQ(DrawerScene::menu() == nullptr, isAbout);
    }
    // Another selection meanwhile, as by a focus that comes from elsewhere.
    ASSERT_TRUE(openFor(scene.recent));
    scene.drawer.showComponentFocus(scene.now, true);
    scene.take();
    scene.choose({"Remove"});
    EXPECT_EQ(scene.take(), "focus n off; focus recent on; remove recent; ");
    expectDrawnAsInQuery(scene, "the one of the menu");

    // The layer was left and entered again: other items, the same components.
    ASSERT_TRUE(openFor(scene.now));
    QAction* const remove = DrawerScene::menu()->actions().back();
    scene.drawer.clearDiagram();
    EXPECT_FALSE(DrawerScene::menu());
    scene.synchronise();
    scene.take();
    remove->trigger();
    EXPECT_EQ(scene.take(), "focus n on; remove n; ");
    remove->trigger();
    EXPECT_EQ(scene.take(), "");
}

// ---- places ---------------------------------------------------------------------------------

TEST(Drawer, PutsTheMiddleOfATitleWhereItWasDroppedInsideOfTheCanvas) {
    DrawerScene scene;
    LumoControl* const control = scene.drawer.getControl();
    const auto dropped = [&](int x, int y) {
        auto* const made = scene.table("t");
        scene.root() = scene.joined(scene.root(), scene.comma(), scene.leaf(made));
        scene.drawer.addComponentInDiagram(made, x, y);
        return made;
    };
    for (const double zoom : {1.0, 2.0, 0.5}) {
        control->setZoom(zoom, {0, 0});
        control->setScrollOrigin({300, 200});
        const auto* const made = dropped(400, 120);
        const LumoRect title = scene.body(made)->titleRect();
        scene.diagram()->layout();
        const QPoint middle =
            scene.inView({title.size.width / 2, title.size.height / 2}, scene.body(made));
        EXPECT_LE((middle - QPoint(400, 120)).manhattanLength(), 4) << zoom;
    }
    control->setZoom(1, {0, 0});
    control->setScrollOrigin({0, 0});
    EXPECT_EQ(scene.item(dropped(3, 3))->getRect().origin, (LumoPoint{0, 0}));
    EXPECT_EQ(scene.item(dropped(-1, 40))->getRect().origin, (LumoPoint{0, 21}));
    const LumoRect far = scene.item(dropped(2990, 1590))->getRect();
    EXPECT_EQ(far.origin, (LumoPoint{2881, 1571}));
    EXPECT_EQ(scene.diagram()->getRect().size, (LumoSize{6000, 1571 + far.size.height + 40}));
    scene.drawer.clearDiagram();
    EXPECT_EQ(scene.diagram()->getRect().size, (LumoSize{3000, 1600}));
}

TEST(Drawer, PutsBackWhereEverythingStood) {
    DrawerScene scene;
    LumoControl* const control = scene.drawer.getControl();
    QBLumoItem* const film = scene.item(scene.film);
    for (const double zoom : {1.0, 0.25, 1.7}) {
        control->setZoom(zoom, {0, 0});
        scene.diagram()->setRect({0, 0, 9000, 9001});
        film->setRect({500, 300, 333, 222});
        film->setSizedByUser(true);
        scene.diagram()->bringChildToFront(scene.item(scene.lang));
        scene.diagram()->selectObject(scene.item(scene.lang), false);
        control->setScrollOrigin({123, 77});
        const DiagramArrangement before = scene.drawer.arrangement();
        scene.diagram()->layout();
        const std::string dump = dumpCanvas(scene.diagram());

        scene.diagram()->selectAll();
        scene.diagram()->setRect({0, 0, 3000, 1600});
        control->setScrollOrigin({0, 0});
        scene.diagram()->bringChildToFront(film);
        scene.take();
        scene.drawer.arrangeAll();
        EXPECT_EQ(scene.diagram()->selectedItems().size(), 4u);
        EXPECT_EQ(scene.diagram()->selectedJoinLinks().size(), 1u);
        scene.diagram()->deselectObject(scene.shownLink());
        film->setSizedByUser(false);
        const DiagramArrangement changed = scene.drawer.arrangement();
        EXPECT_NE(changed, before) << zoom;
        scene.drawer.setArrangement(before);
        EXPECT_EQ(scene.drawer.arrangement(), before) << zoom;
        scene.diagram()->layout();
        EXPECT_EQ(dumpCanvas(scene.diagram()), dump) << zoom;
        scene.drawer.setArrangement(changed);
        EXPECT_EQ(scene.drawer.arrangement(), changed) << zoom;
        EXPECT_EQ(scene.take(), "") << zoom;
    }
    // What it does not know stays, what is not there is skipped.
    DiagramArrangement partial = scene.drawer.arrangement();
    partial.entries = {{987654321, {1, 2, 3, 4}, true, true}, partial.entries.front()};
    partial.canvas = {400, 300};
    const LumoRect place = film->getRect();
    scene.drawer.setArrangement(partial);
    EXPECT_EQ(film->getRect(), place);
    EXPECT_TRUE(lumoContainsRect(scene.diagram()->getRect(), place));
    EXPECT_EQ(scene.drawer.arrangement().entries.back(), partial.entries.back());
}

TEST(Drawer, RebuildsALayerWithoutLightsOrScrollingAndShowsTheFocusOfOthersWithoutEcho) {
    DrawerScene scene;
    auto* const hint = scene.drawer.hintWidget();
    EXPECT_TRUE(hint->isHidden());
    scene.drawer.clearDiagram();
    EXPECT_TRUE(hint->isVisible());
    EXPECT_EQ(scene.window.childAt(hint->geometry().center()), scene.drawer.getView()->viewport());
    EXPECT_EQ(hint->findChild<QLabel*>()->text(), "Double click tree item or drag it here");
    LumoControl* const control = scene.drawer.getControl();
    control->setScrollOrigin({1200, 900});
    {
        const QBLumoDiagramDrawer::LayerRebuild rebuild(&scene.drawer);
        scene.synchronise();
    }
    EXPECT_EQ(scene.finishPrompts(), 0);
    EXPECT_EQ(control->getScrollOrigin(), (LumoControlPoint{1200, 900}));
    EXPECT_TRUE(hint->isHidden());
    scene.take();

    scene.drawer.showComponentFocus(scene.now, true);
    EXPECT_TRUE(lumoContainsRect(control->getDisplayRect(), scene.item(scene.now)->getRect()));
    EXPECT_EQ(scene.take(), "");
    scene.diagram()->selectObject(scene.item(scene.film), true);
    EXPECT_EQ(scene.take(), "focus film on; ");
    scene.drawer.showComponentFocus(scene.now, true);
    EXPECT_EQ(scene.diagram()->selectedItems().size(), 2u);
    scene.drawer.showComponentFocus(scene.now, false);
    EXPECT_EQ(scene.diagram()->selectedItems(), std::vector<QBLumoItem*>{scene.item(scene.film)});
    scene.drawer.showComponentFocus(scene.lang, true);
    EXPECT_EQ(scene.diagram()->selectedItems(), std::vector<QBLumoItem*>{scene.item(scene.lang)});
    EXPECT_EQ(scene.take(), "");
}

}  // namespace
}  // namespace QB::Test
