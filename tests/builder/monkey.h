#pragma once

#include <QAccessible>
#include <QNativeGestureEvent>
#include <QPainter>
#include <QScrollBar>
#include <QTemporaryDir>
#include <map>

#include "builder/monkey_hands.h"
#include "canvas/controls/button.h"
#include "platform/tolk/tolk.h"
#include "support/capitals.h"

namespace QB::Test {

inline const std::vector<const char*> monkeyTexts = {
    "SELECT * FROM t",
    "",
    "SELECT t.a, t.b AS x, SUM(t.c) FROM t INNER JOIN u ON t.a = u.a AND t.b = 2 WHERE t.a = 1 AND "
    "(t.b IN (1, 2) OR NOT t.c BETWEEN 1 AND 2) GROUP BY t.a, t.b HAVING SUM(t.a) = 1 ORDER BY x, "
    "t.c DESC LIMIT 10",
    "SELECT s.a, 1+1 FROM (SELECT u.a FROM u WHERE u.d = 3) AS s, (t CROSS JOIN v), f(1) AS e "
    "WHERE s.a LIKE 'x%' ORDER BY s.a",
    "SELECT DISTINCT t.a FROM t LEFT JOIN v USING (a) WHERE t.a = ",
    "SELECT i.a FROM (SELECT s.a, s.b FROM (SELECT v.a, t.b FROM v, t) AS s INNER JOIN u ON u.a = "
    "s.a) AS i LEFT JOIN t AS x ON x.a = i.a OR (x.b = i.a AND 1 = 1)",
    "SELECT x.a, y.*, u.d FROM t AS x, t AS y RIGHT JOIN u ON u.a = y.a AND y.b = u.d",
    "SELECT n.z FROM nowhere AS n, main.t, (SELECT 1) AS q",
    "SELEKT a (((",
};
inline const std::vector<DatabaseType> monkeyFamilies = {
    DatabaseTypeMySQL,  DatabaseTypeMariaDB, DatabaseTypePostgreSQL,
    DatabaseTypeOracle, DatabaseTypeSQLite,  DatabaseTypeSQLServer};

/// Acts on the desk at random, mostly by events of its windows, and remembers what it did.
class Monkey : private MonkeyHands {
public:
    using MonkeyHands::story;

    /// How often an action was tried, and how often something came of it.
    using Counts = std::map<std::string, std::pair<int, int>>;

    Monkey(MonkeyDesk& desk, int seed) : MonkeyHands(desk, seed) {}
    ~Monkey() override {
        QCoreApplication::removeTranslator(&m_capitals);
        QApplication::setPalette(m_palette);
    }

    void act(Counts* counts) {
        const Action& action = chooseAction();
        m_story << action.name;
        const MonkeyDesk::State before = m_desk.state();
        (this->*action.act)();
        m_desk.lookAtPage();
        m_desk.settle();
        const MonkeyDesk::State after = m_desk.state();
        auto& [tried, accepted] = (*counts)[action.name];
        ++tried;
        for (const MonkeyDesk::Part part : action.parts) {
            if (before[part] == after[part]) continue;
            ++accepted;
            break;
        }
    }

private:
    struct Action {
        int weight;
        const char* name;
        std::vector<MonkeyDesk::Part> parts;  ///< it counts if one of them is another now
        void (Monkey::*act)();
    };

    static const std::vector<Action>& actions() {
        static const auto query = MonkeyDesk::Query;
        static const auto canvas = MonkeyDesk::Canvas;
        static const auto host = MonkeyDesk::Host;
        static const std::vector<Action> all = {
            {10, "click anywhere", {query, canvas, host}, &Monkey::clickAnywhere},
            {10, "click a part of a row", {query, canvas, host}, &Monkey::clickPart},
            {10, "key", {query, canvas, host}, &Monkey::pressKey},
            {3, "type", {query, canvas, host}, &Monkey::typeText},
            {4, "menu of a row", {query, host}, &Monkey::openRowMenu},
            {4, "drop of a row", {query}, &Monkey::dropRow},
            {3, "page", {host}, &Monkey::changePage},
            {3, "removal by the host", {query}, &Monkey::removeForeign},
            {8, "click on the canvas", {query, canvas, host}, &Monkey::clickCanvas},
            {8, "key on the canvas", {query, canvas, host}, &Monkey::pressCanvasKey},
            {6, "tick", {query}, &Monkey::tick},
            {4, "move of an item", {canvas}, &Monkey::moveItem},
            {4, "resize of an item", {canvas}, &Monkey::resizeItem},
            {4, "rubber band", {canvas}, &Monkey::dragBand},
            {8, "gesture disturbed", {query, canvas, host}, &Monkey::disturbGesture},
            {8, "link drawn", {query}, &Monkey::drawLink},
            {4, "wheel", {canvas, host}, &Monkey::turnWheel},
            {4, "wheel with Ctrl", {canvas}, &Monkey::zoom},
            {6, "field into a clause", {query}, &Monkey::useField},
            {4, "alias on the canvas", {query}, &Monkey::editAlias},
            {5, "text of a subquery", {host}, &Monkey::editSubquery},
            {4, "join editor", {host}, &Monkey::openJoinEditor},
            {5, "kind of a join", {host}, &Monkey::changeJoin},
            {4, "removal by menu", {query}, &Monkey::removeByMenu},
            {3, "menu on the canvas", {query, canvas, host}, &Monkey::useAnyMenu},
            {6, "into a subquery", {host}, &Monkey::openLayer},
            {5, "out of a subquery", {host}, &Monkey::leaveLayer},
            {6, "double click in the tree", {query}, &Monkey::addFromTree},
            {6, "drop from the tree", {query}, &Monkey::dropFromTree},
            {3, "tree", {host}, &Monkey::useTree},
            {3, "drag anywhere", {query, canvas, host}, &Monkey::dragAnywhere},
            {3, "size of the window", {host}, &Monkey::resizeWindow},
            {3, "pane", {host}, &Monkey::togglePane},
            {3, "relation mode", {canvas}, &Monkey::changeRelation},
            {4, "command of the canvas", {canvas, host}, &Monkey::commandCanvas},
            {3, "layout saved", {host}, &Monkey::saveLayout},
            {4, "layout loaded", {canvas}, &Monkey::loadLayout},
            {3, "bad layout loaded", {host}, &Monkey::loadBadLayout},
            {6, "parse", {query}, &Monkey::parse},
            {7, "undo", {query, canvas}, &Monkey::undo},
            {6, "redo", {host}, &Monkey::redo},
            {2, "schema", {host}, &Monkey::changeSchema},
            {2, "database", {host}, &Monkey::changeDatabase},
            {2, "another engine", {host}, &Monkey::killEngine},
            {2, "candidates loaded anew", {host}, &Monkey::reload},
            {2, "pinch", {canvas}, &Monkey::pinch},
            {2, "assistive technology", {query, canvas, host}, &Monkey::askAccessible},
            {1, "picture", {host}, &Monkey::paintPicture},
            {2, "look", {host}, &Monkey::changeLook},
            {3, "hold or deliver", {host}, &Monkey::deliver}};
        return all;
    }
    const Action& chooseAction() {
        static const Action inPopup = {0,
                                       "click in a popup",
                                       {MonkeyDesk::Query, MonkeyDesk::Canvas, MonkeyDesk::Host},
                                       &Monkey::clickInPopup};
        if (MonkeyDesk::isPopupOpen() && m_dice.isOneIn(2)) return inPopup;
        static const int sum = [] {
            int all = 0;
            for (const Action& action : actions())
                all += action.weight;
            return all;
        }();
        int number = m_dice.pick(sum);
        std::size_t chosen = 0;
        while (number >= actions()[chosen].weight)
            number -= actions()[chosen++].weight;
        return actions()[chosen];
    }
    void duringDrag() override {
        if (m_dice.isOneIn(8)) removeForeign();
    }

    void clickAnywhere() {
        QWidget* const area = m_dice.isOneIn(2) ? m_desk.pages() : &m_desk.window;
        click(area, pointIn(area), anyButton());
    }
    void clickInPopup() {
        QWidget* const popup = QApplication::activePopupWidget();
        if (popup) click(popup, pointIn(popup));
    }
    void dragAnywhere() { drag(pointIn(&m_desk.window), pointIn(&m_desk.window)); }
    void pressKey() {
        static const std::vector<const char*> keys = {
            "Up",  "Down",   "Left",        "Right", "Return",    "Return",     "Esc",
            "Esc", "Tab",    "Space",       "Del",   "Ins",       "Ctrl+Down",  "Ctrl+Up",
            "F2",  "Menu",   "Home",        "End",   "Ctrl+A",    "Backtab",    "Shift+Down",
            "F6",  "Alt+Up", "Ctrl+Return", "F5",    "Ctrl+PgUp", "Ctrl+PgDown"};
        const char* const key = m_dice.pickFrom(keys);
        note(key);
        press(key);
    }
    /// Into a popup, or into the filter of the tree, which then is cleared.
    void typeText() {
        if (!MonkeyDesk::isPopupOpen() && m_dice.isOneIn(2)) clickPart();
        m_desk.settle();
        auto* const filter = m_desk.builder->findChild<QLineEdit*>("filterLineEdit");
        const bool isFilter = !MonkeyDesk::isPopupOpen();
        if (isFilter) filter->setFocus();
        const QString text = m_dice.isOneIn(2) ? "b7" : "1";
        note(text);
        m_desk.type(text);
        if (!isFilter) return;
        if (filter->text() == text) ++m_desk.effects;
        press("Esc");
    }
    void turnWheel() { wheel(pointIn(&m_desk.window), {}); }
    void zoom() { wheel(inWindow(canvasPoint()), Qt::ControlModifier); }
    // ---- the panels ---------------------------------------------------------------------------

    /// A label of a row.
    void clickPart() {
        if (!hasRows()) return clickAnywhere();
        QBNestedListRowWidget* const widget = m_desk.view()->rowWidget(anyRow());
        const auto parts = widget ? widget->parts() : QList<QBLabel*>();
        if (parts.isEmpty()) return;
        QBLabel* const part = parts[m_dice.pick(parts.size())];
        click(part, part->rect().center());
    }
    void openRowMenu() {
        if (!hasRows()) return;
        m_desk.rest();
        if (!m_desk.listPanel || !hasRows()) return;
        m_desk.openMenu(anyRow());
        m_desk.settle();
        if (m_dice.isOneIn(2)) chooseAny();
    }
    void dropRow() {
        if (!hasRows()) return;
        const QPoint place = pointIn(m_desk.view()->viewport());
        m_desk.clickPart(anyRow(), "row");
        if (!m_desk.listPanel || m_desk.view()->currentRow() < 0) return;
        note(place);
        dragRow(m_desk.view(), place, [this] {
            if (m_dice.isOneIn(4)) removeForeign();
        });
    }
    void changePage() { m_desk.openPage(m_dice.pick(m_desk.pages()->count())); }
    void removeForeign() {
        static const std::vector<TopLevelQueryComponentElementEnum> clauses = {
            ElementSelectColumn, ElementSource, ElementWhere,
            ElementGroupBy,      ElementHaving, ElementOrderBy};
        const auto clause = m_dice.pickFrom(clauses);
        MonkeyDesk::Layout layout(MonkeyDesk::freshRows(m_desk.live(), clause));
        if (layout.items().empty() || layout.items().front()->isPlaceholder) return;
        auto* const row = m_dice.pickFrom(layout.items());
        note(QString("of %1").arg(clause));
        layout.removeItems(m_desk.live(), clause, nullptr, {row});
    }

    // ---- the canvas ---------------------------------------------------------------------------

    void clickCanvas() { clickView(canvasPoint(), anyButton()); }
    void pressCanvasKey() {
        static const std::vector<const char*> keys = {
            "Tab",    "Tab",         "Shift+Tab", "Space",   "Ctrl+Space", "Ctrl+A",     "Esc",
            "Left",   "Right",       "Up",        "Down",    "PgUp",       "PgDown",     "Return",
            "E",      "F2",          "Menu",      "Del",     "Ctrl++",     "Ctrl+-",     "Ctrl+0",
            "Ctrl+9", "F",           "F",         "Home",    "End",        "L",          "L",
            "R",      "Ctrl+Left",   "Return",    "Ctrl+Up", "Shift+Left", "Shift+Down", "Down",
            "Space",  "Ctrl+Return", "Return"};
        if (!MonkeyDesk::isPopupOpen() && !places().view()->hasFocus())
            places().view()->setFocus(Qt::TabFocusReason);
        const char* const key = m_dice.pickFrom(keys);
        note(key);
        for (int times = m_dice.isOneIn(6) ? 5 : 1, i = 0; i < times; ++i)
            m_desk.press(key, i > 0);
    }
    void tick() {
        m_desk.rest();
        QBLumoItem* const item = anyItem();
        clickView(places().boxPlace(item, anyRowOf(item)));
    }
    void moveItem() {
        m_desk.rest();
        QBLumoItem* const item = anyItem();
        if (item) drag(inWindow(places().titlePlace(item)), nearby(places().titlePlace(item)));
    }
    void resizeItem() {
        m_desk.rest();
        QBLumoItem* const item = anyItem();
        if (!item) return;
        const LumoRect body = bodyRectOf(item->getRect().size);
        const int right = body.origin.x + body.size.width - 1;
        const int bottom = body.origin.y + body.size.height - 1;
        const LumoPoint edge = m_dice.isOneIn(2) ? LumoPoint{right, body.origin.y + 15}
                                                 : LumoPoint{right - 40, bottom};
        drag(inWindow(places().inView(edge, item)), nearby(places().inView(edge, item)));
    }
    void dragBand() {
        m_desk.rest();
        const QWidget* const area = places().view()->viewport();
        drag(inWindow(pointIn(area)), inWindow(pointIn(area)),
             m_dice.isOneIn(3) ? Qt::ControlModifier : Qt::NoModifier);
    }
    /// Something else comes before its end, which is not told to who does not look any more.
    void disturbGesture() {
        static const std::vector<Qt::MouseButton> buttons = {
            Qt::LeftButton, Qt::LeftButton, Qt::LeftButton, Qt::MiddleButton, Qt::RightButton};
        static const std::vector<void (Monkey::*)()> disturbances = {
            &Monkey::pressCanvasKey, &Monkey::pressCanvasKey, &Monkey::zoom,
            &Monkey::removeForeign,  &Monkey::removeForeign,  &Monkey::parse,
            &Monkey::undo,           &Monkey::commandCanvas,  &Monkey::hideAndShow,
            &Monkey::pressOther,     &Monkey::reload};
        m_desk.rest();
        const QPoint from = inWindow(canvasPoint());
        Qt::MouseButton button = m_dice.pickFrom(buttons);
        // Qt waits in the menu of a scroll bar, and nothing here would end that.
        if (button == Qt::RightButton && isScrollBarAt(from)) button = Qt::LeftButton;
        note(QString::number(button));
        note(from);
        send(QEvent::MouseMove, from);
        send(QEvent::MouseButtonPress, from, button);
        const auto wander = [&] {
            for (int step = m_dice.pick(4); step > 0; --step)
                send(QEvent::MouseMove, from + QPoint(m_dice.pick(600) - 300, m_dice.pick(400)));
        };
        wander();
        (this->*m_dice.pickFrom(disturbances))();
        if (m_dice.isOneIn(2)) m_desk.settle();
        wander();
        send(QEvent::MouseButtonRelease, from + QPoint(m_dice.pick(90), 20), button);
    }
    bool isScrollBarAt(QPoint place) const {
        return qobject_cast<QScrollBar*>(m_desk.window.childAt(place)) != nullptr;
    }
    void pressOther() {
        const QPoint place = inWindow(pointIn(places().view()->viewport()));
        send(QEvent::MouseButtonPress, place, Qt::MiddleButton);
        send(QEvent::MouseButtonRelease, place, Qt::MiddleButton);
    }
    void hideAndShow() {
        note("hidden");
        m_desk.window.hide();
        m_desk.settle();
        m_desk.window.show();
        m_desk.window.activateWindow();
    }
    void drawLink() {
        m_desk.rest();
        if (places().diagram()->items().size() < 2) return;
        QBLumoItem* const from = anyItem();
        const size_t fromRow = anyRowOf(from);
        QBLumoItem* const to = anyItem();
        const size_t toRow = anyRowOf(to);
        const QRect shown = places().view()->viewport()->rect();
        if (!shown.contains(places().rowPlace(from, fromRow)) || m_dice.isOneIn(4))
            m_desk.builder->canvasCommands()->fitToView();
        m_desk.settle();
        const QPoint start = places().rowPlace(from, fromRow);
        const QPoint end = places().rowPlace(to, toRow);
        if (!start.isNull() && !end.isNull()) drag(inWindow(start), inWindow(end));
    }

    void pinch() {
        QWidget* const viewport = places().view()->viewport();
        const QPoint at = viewport->rect().center();
        QNativeGestureEvent event(Qt::ZoomNativeGesture, nullptr, at, at, at,
                                  m_dice.isOneIn(2) ? 0.2 : -0.2, 0, 0);
        QCoreApplication::sendEvent(viewport, &event);
    }
    /// Down the tree of the diagram, to do there what is offered.
    void askAccessible() {
        m_desk.rest();
        QAccessible::setActive(m_dice.isOneIn(2));
        QAccessibleInterface* at = QAccessible::queryAccessibleInterface(places().view());
        while (at->childCount() > 0 && (at->object() == places().view() || !m_dice.isOneIn(3))) {
            QAccessibleInterface* const child = at->child(m_dice.pick(at->childCount()));
            if (!child || !child->isValid()) break;
            at = child;
            note(at->text(QAccessible::Name));
        }
        at->rect();
        at->state();
        if (QAccessibleInterface* const parent = at->parent()) parent->indexOfChild(at);
        QAccessibleActionInterface* const offered = at->actionInterface();
        const QStringList names = offered ? offered->actionNames() : QStringList();
        if (at->object() == places().view() || names.isEmpty()) return;
        const QString name = names[m_dice.pick(names.size())];
        note(name);
        offered->doAction(name);
    }
    void paintPicture() {
        if (m_dice.isOneIn(3)) {
            const QTemporaryDir folder;
            const QString file = folder.filePath("a.pdf");
            m_desk.builder->canvasCommands()->exportPdf(file);
            if (QFileInfo(file).size() > 0) ++m_desk.effects;
            return;
        }
        QImage image(200, 150, QImage::Format_ARGB32_Premultiplied);
        image.fill(Qt::transparent);
        const QImage blank = image.copy();
        QPainter painter(&image);
        m_desk.builder->canvasCommands()->renderTo(&painter, image.rect());
        if (image != blank) ++m_desk.effects;
    }

    // ---- menus and popups of the canvas -------------------------------------------------------

    void useAnyMenu() {
        m_desk.rest();
        if (clickView(canvasPoint(), Qt::RightButton)) chooseAny();
    }
    void useField() {
        m_desk.rest();
        QBLumoItem* const item = anyItem();
        if (!clickView(places().rowPlace(item, anyRowOf(item)), Qt::RightButton)) return;
        static const std::vector<QString> clauses = {"WHERE", "WHERE", "GROUP BY", "ORDER BY"};
        if (chooseEntry(m_dice.pickFrom(clauses))) chooseAny();
    }
    void editAlias() {
        m_desk.rest();
        QBLumoItem* const item = anyItem();
        if (!clickView(places().titlePlace(item), Qt::RightButton)) return;
        if (!chooseEntry(Tolk::localize(Tolk::TextCanvasEditAlias))) return;
        const QString text = m_dice.isOneIn(5) ? "t" : QString("x%1").arg(m_dice.pick(30));
        note(text);
        m_desk.type(text);
        press("Return");
    }
    void editSubquery() {
        QBLumoItem* const item = needSubquery();
        if (!item) return;
        const MonkeyDesk::State before = m_desk.state();
        auto* const button = static_cast<QBLumoTextBasedItemBody*>(item->getBody())->editButton();
        if (m_dice.isOneIn(2)) {
            clickView(places().middleOf(button->getBoundingRect(), button));
        } else if (clickView(places().titlePlace(item), Qt::RightButton)) {
            chooseEntry(Tolk::localize(Tolk::TextCanvasEditText));
        }
        if (!MonkeyDesk::isPopupOpen()) return;
        press("Ctrl+A");
        m_desk.type(m_dice.pickFrom(
            std::vector<const char*>{"SELECT 5 AS a", "SELECT * FROM t", "SELECT u.d FROM u, v",
                                     "SELECT q.a FROM (SELECT 1 AS a) AS q", "SELECT ((", ""}));
        press("Ctrl+Return");
        m_desk.settle();
        if (m_desk.state()[MonkeyDesk::Query] != before[MonkeyDesk::Query]) ++m_desk.effects;
    }
    void openJoinEditor() {
        m_desk.rest();
        if (!anyLink()) m_desk.parse(monkeyTexts[m_dice.isOneIn(2) ? 2 : 6]);
        doubleClickView(places().linkPlace(anyLink()));
    }
    void changeJoin() {
        openJoinEditor();
        const MonkeyDesk::State before = m_desk.state();
        QWidget* const popup = QApplication::activePopupWidget();
        auto* const button = popup ? popup->findChild<QWidget*>("joinButton") : nullptr;
        if (!button || !MonkeyDesk::clickOn(button)) return;
        m_desk.settle();
        MonkeyDesk::chooseJoin(m_dice.pick(7));
        m_desk.settle();
        if (m_desk.state()[MonkeyDesk::Query] != before[MonkeyDesk::Query]) ++m_desk.effects;
        if (m_dice.isOneIn(2)) m_desk.rest();
    }
    void removeByMenu() {
        m_desk.rest();
        QBLumoItem* const item = m_dice.isOneIn(2) ? anyItem() : nullptr;
        const QPoint place = item ? places().titlePlace(item) : places().linkPlace(anyLink());
        if (clickView(place, Qt::RightButton)) chooseEntry(Tolk::localize(Tolk::TextRemove));
    }

    // ---- layers and the object tree -----------------------------------------------------------

    int layer() const { return m_desk.live()->currentTopLevelQueryComponentLayer(); }
    /// Where there is none, a text brings some.
    QBLumoItem* needSubquery() {
        m_desk.rest();
        if (!anySubquery()) m_desk.parse(monkeyTexts[m_dice.isOneIn(2) ? 3 : 5]);
        return anySubquery();
    }
    void openLayer() {
        QBLumoItem* const item = needSubquery();
        const int before = layer();
        if (item) doubleClickView(places().titlePlace(item));
        if (layer() > before) ++m_desk.effects;
    }
    void leaveLayer() {
        if (layer() == 0) openLayer();
        m_desk.rest();
        const int before = layer();
        auto* const bar = m_desk.builder->findChild<QWidget*>("navigationBar");
        const auto buttons = bar->findChildren<QAbstractButton*>();
        const bool isByKey = buttons.isEmpty() || m_dice.isOneIn(2);
        isByKey ? press("Alt+Up") : click(buttons[0], buttons[0]->rect().center());
        m_desk.settle();
        if (layer() < before) ++m_desk.effects;
    }
    void addFromTree() {
        showTree();
        const QTreeWidgetItem* const table = anyTable();
        if (!table) return;
        const QPoint place = placeOf(table);
        QTest::mouseClick(handle(), Qt::LeftButton, {}, place);
        QTest::mouseDClick(handle(), Qt::LeftButton, {}, place);
    }
    void dropFromTree() {
        showTree();
        const QTreeWidgetItem* const table = anyTable();
        if (table) drag(placeOf(table), inWindow(pointIn(places().view()->viewport())));
    }
    void useTree() {
        showTree();
        if (m_dice.isOneIn(2)) return click(m_desk.tree(), pointIn(m_desk.tree()), anyButton());
        m_desk.tree()->setFocus();
        press(m_dice.pickFrom(
            std::vector<const char*>{"Down", "Up", "Right", "Left", "Return", "F5"}));
    }

    // ---- the window and the host --------------------------------------------------------------

    void resizeWindow() { m_desk.window.resize(700 + m_dice.pick(700), 600 + m_dice.pick(400)); }
    void togglePane() {
        const char* const name = m_dice.isOneIn(2) ? "objectTreeButton" : "previewButton";
        m_desk.rest();
        MonkeyDesk::clickOn(m_desk.builder->findChild<QToolButton*>(name));
    }
    void changeRelation() {
        const char* const other =
            m_desk.panel()->relationMode() == "1" ? "fieldRelRadioButton" : "tableRelRadioButton";
        m_desk.rest();
        MonkeyDesk::clickOn(m_desk.panel()->findChild<QWidget*>(other));
    }
    void commandCanvas() {
        QBCanvasCommands* const commands = m_desk.builder->canvasCommands();
        const int command = m_dice.pick(6);
        note(QString::number(command));
        if (command < 2) return commands->arrange();
        if (command == 2) return commands->undoArrange();
        if (command == 3) return commands->fitToView();
        commands->setOverviewVisible(!commands->isOverviewVisible());
    }
    void saveLayout() {
        m_layout = m_desk.builder->obtainDiagramLayoutJsonString();
        m_window = m_desk.builder->obtainWidgetLayoutJsonString();
        m_preferences = m_desk.builder->obtainGlobalPreferences();
        if (m_layout.contains("{")) ++m_desk.effects;
    }
    void loadLayout() {
        m_desk.builder->loadDiagramLayoutJsonString(m_layout);
        if (m_dice.isOneIn(2)) m_desk.builder->loadWidgetLayoutJsonString(m_window);
        if (m_dice.isOneIn(2)) m_desk.builder->loadGlobalPreferences(m_preferences);
    }
    void loadBadLayout() {
        static const std::vector<std::pair<const char*, const char*>> changes = {
            {"1", "99999999999"}, {":", ":-"}, {"}", ""},   {"\"", "\xff"},
            {"2", "1e300"},       {"0", "{"},  {",", ",,"}, {"[", "[[[[[[[["}};
        const auto [from, to] = m_dice.pickFrom(changes);
        QString text = m_dice.isOneIn(2) ? m_layout : m_window;
        text = text.replace(from, to).left(m_dice.isOneIn(3) ? text.size() / 2 : text.size());
        m_dice.isOneIn(2) ? m_desk.builder->loadDiagramLayoutJsonString(text)
                          : m_desk.builder->loadWidgetLayoutJsonString(text);
        note(text.left(60));
        if (!text.isEmpty()) ++m_desk.effects;
    }
    void parse() {
        const char* const text = m_dice.pickFrom(monkeyTexts);
        note(text);
        m_desk.live()->parseQuery(text, {});
    }
    void undo() { m_desk.builder->undoStack()->undo(); }
    /// After an undo: whatever else is done leaves nothing to redo.
    void redo() {
        m_desk.rest();
        undo();
        m_desk.settle();
        const MonkeyDesk::State before = m_desk.state();
        m_desk.builder->undoStack()->redo();
        m_desk.settle();
        if (m_desk.state() != before) ++m_desk.effects;
    }
    void changeSchema() {
        const bool isMain = m_desk.live()->currentSchema() == "main";
        m_desk.live()->setCurrentSchema(isMain ? "other" : "main");
    }
    void changeDatabase() {
        const DatabaseType family = m_dice.pickFrom(monkeyFamilies);
        note(QString::number(family));
        m_desk.live()->resetUi();
        m_desk.live()->setDatabaseInfo(family, m_dice.isOneIn(2) ? 1 : 150000);
        m_desk.parse(monkeyTexts[2 + size_t(m_dice.pick(5))]);
    }
    void killEngine() {
        m_desk.kill();
        for (int i = m_dice.pick(4); i > 0; --i) {
            m_dice.isOneIn(2) ? clickAnywhere() : pressKey();
            m_desk.settle();
        }
        m_desk.revive();
        m_desk.serve();
        if (!m_dice.isOneIn(3)) m_desk.parse(monkeyTexts[2 + size_t(m_dice.pick(5))]);
    }
    void reload() {
        const bool isMore = m_dice.isOneIn(2);
        m_desk.server.set("main.v",
                          isMore ? MonkeyDesk::fields({"a", "e", "f"}) : MonkeyDesk::fields({"a"}));
        m_desk.reload();
    }
    void changeLook() {
        const int look = m_dice.pick(4);
        note(QString::number(look));
        if (look < 2) {
            m_desk.host.isDark = look == 0;
            QPalette dark = m_palette;
            dark.setColor(QPalette::Base, Qt::black);
            dark.setColor(QPalette::Text, Qt::white);
            QApplication::setPalette(look == 0 ? dark : m_palette);
        }
        if (look == 2) QCoreApplication::installTranslator(&m_capitals);
        if (look == 3) QCoreApplication::removeTranslator(&m_capitals);
        ++m_desk.effects;
    }
    void deliver() { m_desk.isHeld = !m_desk.isHeld; }

    QString m_layout;
    QString m_window;
    QMap<QString, QVariant> m_preferences;
    Capitals m_capitals;
    const QPalette m_palette = QApplication::palette();
};

}  // namespace QB::Test
