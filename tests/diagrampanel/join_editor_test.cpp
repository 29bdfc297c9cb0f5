#include <QPushButton>
#include <algorithm>

#include "diagrampanel/diagram_popups.h"
#include "diagrampanel/lumo_join_selection_popup_widget.h"
#include "support/story_desk.h"
#include "tools/join_tools.h"

namespace QB {
namespace {

using namespace Component::SQL;
using Test::Delivery;

/// The popups of a diagram over the tables t, u and v, and events for them:
///
///     alias t       the popup for the alias of that source; text x: for the text of a subquery
///     link 0        the editor of the join of that number, in text order
///     kind, using   its buttons
///
/// What happens elsewhere:
///
///     rename t x    another one changes an alias; turn 0 3: the kind of a join
///     unlink 0      a join becomes a comma; empty: the FROM clause is emptied
///     push x, pop, parse SQL, family, kill, drop: layers, engine and panel
///     undo          the statement as it was before the events, under the same ids; Ctrl+Z is the
///                   key of the window for it
///
/// What must be so:
///
///     shows t LEFT JOIN u   what the editor says above its rows
///     offers t.a, hides v.a what can be picked for a value
///     open, closed          whether any popup is there
class Desk : public Test::PanelDesk {
public:
    explicit Desk(Delivery delivery) : PanelDesk(delivery, DatabaseTypeMySQL, {"v"}) {
        panel = new QBPanelWidget(&window);
        view = new QWidget(panel);
        view->setGeometry(0, 0, 500, 300);
        view->setFocusPolicy(Qt::StrongFocus);
        popups = std::make_unique<DiagramPopups>(panel, view);
        panel->setEngine(engine.get());
        panel->setGeometry(0, 0, 500, 300);
        window.resize(500, 300);
        window.show();
        window.activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(&window));
        view->setFocus();
        auto* const undo = new QAction(&window);
        undo->setShortcuts(QKeySequence::Undo);
        QObject::connect(undo, &QAction::triggered, [this] { runOwn("undo", {}); });
    }
    ~Desk() override { popups.reset(); }

    /// A press elsewhere, lest one of the story counts as the second of a double click before it.
    void begin(const QString& before) override {
        clickAt(&window, QPoint(2, 2));
        PanelDesk::begin(before);
        record = engine->recordQuery();
    }

    std::vector<SQLAbstractSourceComponent*> sources() const {
        std::vector<SQLAbstractSourceComponent*> all;
        if (!statement()) return all;
        Tools::visitSourceNodes(statement()->sourceExpr->root,
                                [&](const SourceNode* node) { all.push_back(node->value); });
        return all;
    }
    template <typename Kind = SQLAbstractSourceComponent>
    Kind* source(const QString& name) const {
        for (auto* each : sources())
            if (Test::shownName(each) == name.toStdString()) return dynamic_cast<Kind*>(each);
        return nullptr;
    }
    /// The sources at its sides are those next to it in the text.
    bool editJoin(int number, const std::function<void(SQLJoinSourceNodeComponent*)>& act = {}) {
        const auto all = sources();
        for (std::size_t i = 1; i + 1 < all.size(); ++i) {
            auto* const join = dynamic_cast<SQLJoinSourceNodeComponent*>(all[i]);
            if (!join || number-- > 0) continue;
            if (act)
                act(join);
            else
                popups->editJoin(join, all[i - 1], all[i + 1], QPoint(60, 80));
            return true;
        }
        return false;
    }
    void change(const std::function<void()>& write) {
        engine->modifyInTopLevelQueryComponentElement<ELEMSQLSourceExpr*>(
            ElementSource, engine->currentTopLevelQueryComponentLayer(),
            [&](ELEMSQLSourceExpr*) {
                write();
                return true;
            },
            nullptr);
    }

    static QPushButton* button(const char* name) {
        QWidget* const popup = QApplication::activePopupWidget();
        return popup ? popup->findChild<QPushButton*>(name) : nullptr;
    }
    static QString shown() {
        QWidget* const popup = QApplication::activePopupWidget();
        if (!popup || !button("joinButton")) return {};
        const auto name = [popup](const char* label) {
            return popup->findChild<QLabel*>(label)->text();
        };
        return name("leftTableLabel") + ' ' + button("joinButton")->text() + ' ' +
               name("rightTableLabel");
    }

    static bool isOffered(const QString& path) {
        QWidget* const popup = QApplication::activePopupWidget();
        auto* const tree = popup ? popup->findChild<QTreeWidget*>() : nullptr;
        return tree && choice(tree, path);
    }

    bool runOwn(const QString& word, const QString& rest) override {
        const QString first = rest.section(' ', 0, 0);
        const QRect place(40, 30, 150, 20);
        if (word == "alias") return popups->editAlias(source(rest), place), true;
        if (word == "text")
            return popups->editSubqueryText(source<SQLSubquerySourceComponent>(rest), place), true;
        if (word == "link") return editJoin(rest.toInt());
        if (word == "kind") return clickOn(button("joinButton"));
        if (word == "using") return clickOn(button("usingButton"));
        if (word == "shows") return shown() == rest || (qWarning() << shown(), false);
        if (word == "offers" || word == "hides") return isOffered(rest) == (word == "offers");
        if (word == "open") return popups->isOpen();
        if (word == "closed") return !QApplication::activePopupWidget();
        return happen(word, first, rest.section(' ', 1));
    }

    bool happen(const QString& word, const QString& which, const QString& what) {
        if (word == "rename")
            change([&] { source(which)->alias = what.toStdString(); });
        else if (word == "turn")
            editJoin(which.toInt(), [&](auto* join) {
                change([&] { join->joinType = static_cast<SQLJoinType>(what.toInt()); });
            });
        else if (word == "unlink")
            editJoin(which.toInt(), [&](auto* join) {
                Tools::SQL::removeJoins(engine.get(), nullptr, {{join, nullptr}});
            });
        else if (word == "empty")
            Test::emptyFromClause(engine.get());
        else if (word == "push")
            engine->pushNewLayerTopLevelQueryComponent(
                source<SQLSubquerySourceComponent>(which)->subquery, which.toStdString());
        else if (word == "pop")
            engine->popCurrentLayerTopLevelQueryComponent();
        else if (word == "parse")
            engine->parseQuery((which + ' ' + what).toStdString(), {});
        else if (word == "family")
            engine->setDatabaseInfo(DatabaseTypePostgreSQL, 2);
        else if (word == "undo")
            return engine->restoreQuery(record, engine->layerPath(), nullptr);
        else if (word == "kill")
            engine.destroy();
        else if (word == "drop")
            popups.reset(), delete panel;
        else
            return false;
        return true;
    }

    QPointer<QBPanelWidget> panel;
    QWidget* view;  // owned by the panel
    std::unique_ptr<DiagramPopups> popups;
    std::string record;
};

#define TU "SELECT * FROM t INNER JOIN u ON t.a = u.a"
#define SUB "SELECT x.a FROM ( SELECT t.a FROM t LEFT JOIN u ON t.a = u.a ) AS x, v"

const Test::Story stories[] = {
    // aliases
    {"fields follow an alias", "SELECT t.a FROM t INNER JOIN u ON t.a = u.a",
     "alias t; type x; key Return; closed", "SELECT x.a FROM t AS x INNER JOIN u ON x.a = u.a"},
    {"an emptied alias goes", "SELECT x.a FROM t AS x", "alias x; key Del; outside; closed",
     "SELECT t.a FROM t"},
    {"escape changes no alias, nor do blanks", "SELECT 1 FROM t AS x",
     "alias x; type y; key Esc; closed; alias x; key End; type  ; key Return",
     "SELECT 1 FROM t AS x"},
    {"a name of another one is told, and mended", "SELECT 1 FROM t, u AS x",
     "alias t; type x; key Return; open; type 2; key Return; closed",
     "SELECT 1 FROM t AS x2, u AS x", "goes by the name x."},
    {"another change leaves the line", "SELECT 1 FROM t, u",
     "alias t; type x; rename u y; undo; open; key Return", "SELECT 1 FROM t AS x, u"},
    // texts of subqueries
    {"a text takes the place of the subquery", "SELECT * FROM ( SELECT 1 ) AS x",
     "text x; type SELECT 2; key Ctrl+Return; closed", "SELECT * FROM ( SELECT 2 ) AS x"},
    {"an unread text is told, and mended", "SELECT * FROM ( SELECT 1 ) AS x",
     "text x; key Ctrl+End; type  FROM; outside; open; type  t; key Ctrl+Return; closed",
     "SELECT * FROM ( SELECT 1 FROM t ) AS x", "The query cannot be read"},
    {"an empty text is told", "SELECT * FROM ( SELECT 1 ) AS x",
     "text x; key Del; key Ctrl+Return; key Esc; closed", "SELECT * FROM ( SELECT 1 ) AS x",
     "text is empty"},
    // kinds
    {"a kind, shown at once", TU, "link 0; shows t INNER JOIN u; kind; join 3; shows t LEFT JOIN u",
     "SELECT * FROM t LEFT JOIN u ON t.a = u.a"},
    {"a kind by key", TU,
     "link 0; key Shift+Tab; key Return; key Down; key Down; key Return; "
     "key Esc; closed",
     "SELECT * FROM t RIGHT JOIN u ON t.a = u.a"},
    {"no comma and no unknown kind", TU, "link 0; kind; key End; key Up; key Return",
     "SELECT * FROM t CROSS JOIN u"},
    {"a cross join keeps its condition for later", TU,
     "link 0; kind; join 5; shows t CROSS JOIN u; kind; join 3",
     "SELECT * FROM t LEFT JOIN u ON t.a = u.a"},
    {"words of one's own", TU,
     "link 0; kind; join 0; type STRAIGHT_JOIN; key Return; "
     "shows t STRAIGHT_JOIN u",
     "SELECT * FROM t STRAIGHT_JOIN u ON t.a = u.a"},
    {"no words are told", TU, "link 0; kind; join 0; outside; open", TU, "words of the custom"},
    {"a typed comma ends the link", TU, "link 0; kind; join 0; type ,; key Return; closed",
     "SELECT * FROM t, u"},
    {"a click beside the kinds changes none", TU,
     "turn 0 4; link 0; kind; outside; shows t RIGHT JOIN u",
     "SELECT * FROM t RIGHT JOIN u ON t.a = u.a"},
    {"escape closes the innermost", TU,
     "link 0; kind; key Down; key Esc; open; shows t INNER JOIN u; "
     "key Esc; closed",
     TU},
    // conditions
    {"a condition by key alone", "SELECT * FROM t INNER JOIN u",
     "link 0; key Ins; key Return; key Down; key Down; key Return; key Return; key Down; "
     "key Down; key Down; key Return; key Esc; closed",
     "SELECT * FROM t INNER JOIN u ON t.a = t.b"},
    {"a Delete that was meant for the link takes no condition", TU,
     "link 0; key Del; key Del; key Esc", TU},
    {"a condition removed", TU, "link 0; key Up; key Del; shows t INNER JOIN u",
     "SELECT * FROM t INNER JOIN u"},
    {"only what the join sees is offered", "SELECT * FROM v, t INNER JOIN u ON t.a = u.a",
     "link 1; key Return; offers t.a; hides v.a; key Esc; turn 0 2; shows t INNER JOIN u; "
     "key Return; offers v.a; key Esc",
     "SELECT * FROM v INNER JOIN t INNER JOIN u ON t.a = u.a"},
    {"columns of USING", "SELECT * FROM t INNER JOIN u USING (a)",
     "link 0; key Return; type (b, a); key Ctrl+Return; key Esc",
     "SELECT * FROM t INNER JOIN u USING (b, a)"},
    {"no list of columns is told, and mended", "SELECT * FROM t INNER JOIN u USING (a)",
     "link 0; using; type a b; key Ctrl+Return; key Ctrl+A; type b; outside; open",
     "SELECT * FROM t INNER JOIN u USING (b)", "no list of column names: a b"},
    // what happens elsewhere
    {"another's kind and names show", TU, "link 0; turn 0 4; rename t x; shows x RIGHT JOIN u",
     "SELECT * FROM t AS x RIGHT JOIN u ON x.a = u.a"},
    {"an undone change leaves the editor", TU,
     "link 0; turn 0 4; undo; shows t INNER JOIN u; key Up; key Del; kind; join 5",
     "SELECT * FROM t CROSS JOIN u"},
    {"undone by its key from inside", TU,
     "link 0; kind; join 3; key Ctrl+Z; shows t INNER JOIN u; kind; join 4; kind; key Ctrl+Z; "
     "open; "
     "key Esc; shows t INNER JOIN u; key Return; key Down; key Return; key Esc; closed",
     "SELECT * FROM t LEFT JOIN u ON t.a = u.a"},
    {"undone by its key with the join itself", "SELECT * FROM t, u",
     "turn 0 2; link 0; key Ctrl+Z; closed", "SELECT * FROM t, u"},
    {"a layer of its own", SUB, "push x; link 0; kind; join 2; key Esc; pop",
     "SELECT x.a FROM ( SELECT t.a FROM t INNER JOIN u ON t.a = u.a ) AS x, v"},
    {"told late, another one has the alias before the answer", "SELECT 1 FROM t, u",
     "alias t; type x; hold; rename u x; key Return; deliver; key Esc", "SELECT 1 FROM t, u AS x",
     "goes by the name x."},
};

/// What is open, with an answer begun that must not come.
const char* const openings[] = {
    "alias t; type y",       "link 0", "link 0; kind; key Down", "link 0; key Return; key Down",
    "text x; type SELECT 7",
};
struct End {
    const char* name;
    const char* event;
    const char* after;
};
const End ends[] = {
    {"parse", "parse SELECT 1 FROM v", "SELECT 1 FROM v"},
    {"empty", "empty", "SELECT 1"},
    {"push", "push x; pop", nullptr},
    {"family", "family", "SELECT *"},
    {"late", "hold; empty; key Return; outside; deliver", "SELECT 1"},
    {"kill", "kill", nullptr},
    {"drop", "drop", nullptr},
};

}  // namespace

class JoinEditorTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void cleanupTestCase() { QB::Test::outliveAnimations(); }

    void everyEditGivesItsText_data() { Test::addStories(stories); }
    void everyEditGivesItsText() { Test::tellStory<Desk>(stories); }

    void popupsEndWithWhatTheyAreForAndChangeNothing_data() { Test::addStories(ends); }
    void popupsEndWithWhatTheyAreForAndChangeNothing() {
        const End& end = Test::storyOfTest(ends);
        const QString before =
            "SELECT 1 FROM t INNER JOIN u ON t.a = u.a INNER JOIN ( SELECT 2 ) AS x";
        for (const char* const opening : openings) {
            Desk desk(Test::hostOfTest());
            desk.begin(before);
            QVERIFY2(desk.run(opening) && desk.popups->isOpen(), opening);
            QVERIFY2(desk.run(end.event), opening);
            QVERIFY2(!QApplication::activePopupWidget(), opening);
            QVERIFY2(desk.host.errors.empty(), opening);
            if (desk.engine.get()) QCOMPARE(desk.text(), end.after ? QString(end.after) : before);
        }
    }

    void aPopupStandsAtItsPlaceInTheView() {
        Desk desk(Delivery::AtOnce);
        desk.begin(TU);
        QVERIFY(desk.run("alias t"));
        const QWidget* popup = QApplication::activePopupWidget();
        QCOMPARE(popup->pos(), desk.view->mapToGlobal(QPoint(40, 50)));
        QVERIFY(popup->width() >= 150);
        QVERIFY(desk.run("key Esc; link 0"));
        popup = QApplication::activePopupWidget();
        QCOMPARE(popup->pos(), desk.view->mapToGlobal(QPoint(60, 80)));
    }
};

}  // namespace QB

QTEST_MAIN(QB::JoinEditorTest)
#include "join_editor_test.moc"
