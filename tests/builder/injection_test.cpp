#include <map>
#include <optional>

#include "builder/builder_desk.h"
#include "model/notification_names.h"
#include "support/dice.h"
#include "support/long_runs.h"
#include "support/qt_animations.h"

namespace QB {
namespace {

using namespace Component::SQL;
using Test::Delivery;
using Desk = Test::BuilderDesk;

// Every action of a user that begins with a click, and what may happen meanwhile.

const char* const base =
    "SELECT t.a, t.b AS x, t.c+1 FROM t INNER JOIN u ON t.a = u.a AND t.b = u.d INNER JOIN v USING "
    "(a), ( SELECT u.a FROM u ) AS s, f(1) AS e WHERE t.a = 1 AND t.b IN (1,2) AND t.c BETWEEN 1 "
    "AND 2 OR s.a = 3 GROUP BY t.a, t.b, t.c HAVING SUM(t.a) = 1 AND COUNT(t.b) = 2 ORDER BY t.a "
    "ASC, t.b DESC, t.c ASC LIMIT 10";

struct Action {
    const char* name;
    int page;
    int row;             ///< what it is opened for
    int other;           ///< a row that it does not concern
    const char* open;    ///< the last of these events is the click
    const char* choose;  ///< what goes on in the popup
    const char* accept;  ///< empty: the click is all
};

enum Page { Select, From, Where, GroupBy, Having, OrderBy, Limit };

const Action actions[] = {
    {"add a column", Select, 1, 0, "click 1 add", "", "pick t.c"},
    {"insert a column", Select, 1, 0, "menu 1 Insert row", "", "pick t.c"},
    {"another field", Select, 1, 0, "click 1 main", "", "pick t.c"},
    {"a field becomes a text", Select, 1, 0, "click 1 main", "tab 1; type 1+1", "key Ctrl+Return"},
    {"a text becomes a field", Select, 2, 0, "click 2 main", "tab 0", "pick u.d"},
    {"the alias of a column", Select, 1, 0, "click 1 alias", "type y", "key Return"},
    {"remove a column", Select, 1, 0, "row 1; click 1 delete", "", ""},
    {"move a column", Select, 1, 2, "row 1", "", "key Ctrl+Up"},
    {"DISTINCT", Select, 1, 0, "box DISTINCT", "", ""},
    {"add a table", From, 2, 6, "click 2 add", "", "pick v"},
    {"insert a table", From, 2, 6, "menu 2 Insert row", "", "pick v"},
    {"add a table with a join", From, 2, 6, "click 2 add", "key Tab", "pick u"},
    {"add brackets", From, 2, 6, "click 2 bracket", "key Down", "key Return"},
    {"insert brackets", From, 4, 6, "menu 4 Insert bracket", "", "key Return"},
    {"another table", From, 4, 6, "click 4 main", "", "pick u"},
    {"a table becomes a subquery", From, 4, 6, "click 4 main", "tab 1; type SELECT 2 AS a",
     "outside"},
    {"a text of the clause", From, 8, 6, "click 8 main", "key Ctrl+A; type g(2)", "outside"},
    {"the alias of a table", From, 2, 6, "click 2 alias", "type y", "key Return"},
    {"the kind of a join", From, 1, 6, "click 1 joinLabel", "key Down", "key Return"},
    {"a condition in the popup of a join", From, 1, 6, "click 1 conditionLabel",
     "key Down; key Return", "pick u.d"},
    {"remove in the popup of a join", From, 1, 6, "click 1 conditionLabel", "key Down", "key Del"},
    {"columns of USING", From, 3, 6, "click 3 conditionLabel", "key Ctrl+A; type b",
     "key Ctrl+Return"},
    {"USING becomes ON", From, 3, 6, "row 3", "", "menu 3 Change to ON"},
    {"a subquery as text", From, 6, 8, "menu 6 Edit as plain text",
     "key Ctrl+A; type SELECT 5 AS a", "key Ctrl+Return"},
    {"open a subquery", From, 6, 8, "click 6 main", "", ""},
    {"remove a table", From, 2, 6, "row 2; click 2 delete", "", ""},
    {"group tables", From, 2, 6, "row 2", "", "menu 2 Group in brackets"},
    {"a left value", Where, 1, 3, "click 1 left", "", "pick u.d"},
    {"a right value", Where, 0, 3, "click 0 right", "key Ctrl+A; type 7", "key Ctrl+Return"},
    {"a list", Where, 1, 3, "click 1 right", "key Ctrl+A; type 7,8", "key Ctrl+Return"},
    {"a range", Where, 2, 3, "click 2 right", "type 7; key Tab; type 8", "key Return"},
    {"an operator", Where, 0, 3, "click 0 op", "", "choose <>"},
    {"no operator", Where, 3, 0, "click 3 op", "", "choose [no operator]"},
    {"a logic word", Where, 1, 3, "row 1; click 1 gate", "", ""},
    {"NOT", Where, 1, 3, "row 1; click 1 not", "", ""},
    {"add a condition", Where, 1, 3, "click 1 add", "", ""},
    {"brackets by menu", Where, 1, 3, "row 1", "", "menu 1 Put in brackets"},
    {"move a condition", Where, 1, 3, "row 1", "", "key Ctrl+Up"},
    {"remove a condition", Where, 1, 3, "row 1; click 1 delete", "", ""},
    {"add a group", GroupBy, 1, 0, "click 1 add", "", "pick u.d"},
    {"another group", GroupBy, 1, 0, "click 1 main", "", "pick u.d"},
    {"a value of HAVING", Having, 1, 0, "click 1 left", "", "pick t.c"},
    {"add an order", OrderBy, 1, 0, "click 1 add", "", "pick u.d"},
    {"another order", OrderBy, 1, 0, "click 1 main", "tab 1; type 1+1", "key Ctrl+Return"},
    {"a direction", OrderBy, 1, 0, "row 1; click 1 orderLabel", "", ""},
    {"a direction by menu", OrderBy, 1, 0, "row 1", "", "menu 1 No direction"},
    {"a row limit", Limit, 0, 1, "limit clicklabel_rowCount", "type 7", "key Return"},
};
constexpr int actionCount = sizeof actions / sizeof *actions;

enum Event {
    RemoveIt,
    RemoveOther,
    Parse,
    Pop,
    Push,
    Family,
    DeleteBuilder,
    KillEngine,
    EventCount
};
const char* const eventNames[EventCount] = {"its row goes",    "another row goes", "a parse",
                                            "a pop",           "a push",           "another family",
                                            "builder deleted", "engine deleted"};

enum Moment { BeforeAccept, InNotification, WhilePressed, MomentCount };
const char* const momentNames[MomentCount] = {"before the accept", "in the notification",
                                              "while pressed"};

/// The desk at the start of an action, and what happens to it.
class Scene {
public:
    Scene(int action, int event, Delivery delivery)
        : desk(delivery), told(actions[action]), m_event(event) {
        desk.parse(event == Pop ? QString("SELECT * FROM ( %1 ) AS o").arg(base) : base);
        if (event == Pop) pushFirst();
        desk.settle();
        desk.openPage(told.page);
        m_element = static_cast<TopLevelQueryComponentElementEnum>(elementOfPage());
        m_it = idAt(told.row);
        m_other = idAt(told.other);
    }

    bool runAll(const char* events) {
        const QStringList all = QString(events).split("; ", Qt::SkipEmptyParts);
        return std::all_of(all.begin(), all.end(),
                           [this](const QString& e) { return desk.step(e); });
    }
    bool act() {
        return runAll(told.open) && runAll(told.choose) && runAll(told.accept) && finish();
    }
    /// Closes what stays open around the accepted popup.
    bool finish() {
        for (int i = 0; i < 3 && Desk::isPopupOpen(); ++i)
            desk.step("key Esc");
        return true;
    }

    void inject() {
        QBEngine_LINUX* const engine = desk.live();
        switch (m_event) {
            case RemoveIt:
                return remove(m_it, told.row);
            case RemoveOther:
                return remove(m_other, told.other);
            case Parse:
                return engine->parseQuery("SELECT u.d FROM u WHERE u.d = 5", {});
            case Pop:
                return engine->popCurrentLayerTopLevelQueryComponent();
            case Push:
                return pushFirst();
            case Family:
                return engine->setDatabaseInfo(DatabaseTypePostgreSQL, 150000);
            case DeleteBuilder:
                delete desk.builder;
                return;
            case KillEngine:
                return desk.engine.destroy();
        }
    }

    QString text() const { return desk.live() ? desk.text() : QString(); }

    Desk desk;
    const Action& told;

private:
    int elementOfPage() const {
        return static_cast<QBTopLevelElementPanelWidget*>(desk.pages()->currentWidget())
            ->firstRelatedElement();
    }
    const Desk::Layout::Impl* rows() {
        m_rows = Desk::freshRows(desk.live(), m_element);
        return m_rows.get();
    }
    long idAt(int row) {
        return rows() ? m_rows->items().at(static_cast<std::size_t>(row))->component->id() : -1;
    }
    /// The layer of the first derived table.
    void pushFirst() {
        SQLSubquerySourceComponent* first = nullptr;
        Tools::visitSourceNodes(
            Desk::statement(desk.live())->sourceExpr->root, [&](const SourceNode* node) {
                auto* is = dynamic_cast<SQLSubquerySourceComponent*>(node->value);
                if (!first) first = is;
            });
        if (first) desk.live()->pushNewLayerTopLevelQueryComponent(first->subquery, "o");
    }
    /// By its id, or where it was if an edit has put another one in its place.
    void remove(long id, int row) {
        if (m_element == ElementLimit) return setLimit(row);
        if (!rows()) return;
        Desk::Layout layout(std::move(m_rows));
        const auto& items = layout.items();
        auto* chosen = items.at(std::min(static_cast<std::size_t>(row), items.size() - 1));
        for (auto* item : items) {
            if (item->component && item->component->id() == id) chosen = item;
        }
        layout.removeItems(desk.live(), m_element, nullptr, {chosen});
    }
    void setLimit(int which) {
        desk.live()->modifyInTopLevelQueryComponentElement<ELEMSQLLimitExpr*>(
            ElementLimit, desk.live()->currentTopLevelQueryComponentLayer(),
            [which](ELEMSQLLimitExpr* limit) {
                (which ? limit->offset : limit->rowCount) = 44;
                return true;
            },
            nullptr);
    }

    const int m_event;
    TopLevelQueryComponentElementEnum m_element{};
    long m_it = -1;
    long m_other = -1;
    std::unique_ptr<Desk::Layout::Impl> m_rows;
};

QString plainText(int action) {
    static std::map<int, QString> known;
    QString& text = known[action];
    if (!text.isEmpty()) return text;
    Scene scene(action, DeleteBuilder, Delivery::AtOnce);
    return text = scene.act() ? scene.text() : "the action fails alone";
}

/// What the text may be in the end: that of the event alone, or after the action, or before it.
QStringList allowedTexts(int action, int event) {
    static std::map<std::pair<int, int>, QStringList> known;
    QStringList& texts = known[{action, event}];
    if (!texts.isEmpty()) return texts;
    if (event == DeleteBuilder || event == KillEngine) return texts << base << plainText(action);
    // Only an action that was begun for no row may come after its row has gone.
    const bool isForRow = event != RemoveIt;
    for (const QString order : {"e", "ae", "ea"}) {
        if (order == "ea" && isForRow) continue;
        Scene scene(action, event, Delivery::AtOnce);
        for (const QChar what : order) {
            if (what == 'a' && !scene.act()) scene.finish();
            if (what == 'e') scene.inject();
            scene.desk.settle();
        }
        texts << scene.text();
    }
    // What shall go before a row that has gone by then may go to the end.
    const bool isInsertion = QString(actions[action].name).startsWith("insert a ");
    if (isInsertion) texts << allowedTexts(action - 1, event);
    return texts;
}

/// The parts that differ, since Qt Test cuts long messages.
QString difference(const QString& text, const QStringList& allowed) {
    QString all;
    for (const QString& other : allowed) {
        int start = 0;
        while (start < text.size() && start < other.size() && text[start] == other[start])
            ++start;
        all += "\n  is " + text.mid(start, 60) + "\n not " + other.mid(start, 60);
    }
    return all;
}

/// Presses and releases the button around the event. False if there is nothing to press.
bool injectWhilePressed(Scene& scene) {
    QStringList opening = QString(scene.told.open).split("; ");
    const QString click = opening.takeLast();
    for (const QString& event : opening)
        scene.desk.step(event);
    QWidget* const target = scene.desk.target(click);
    if (!target) return false;
    const QPoint place = target->mapTo(&scene.desk.window, target->rect().center());
    QTest::mouseMove(scene.desk.window.windowHandle(), place);
    QTest::mousePress(scene.desk.window.windowHandle(), Qt::LeftButton, {}, place);
    scene.inject();
    QTest::mouseRelease(scene.desk.window.windowHandle(), Qt::LeftButton, {}, place);
    scene.desk.settle();
    if (Desk::isPopupOpen() && scene.runAll(scene.told.choose)) scene.runAll(scene.told.accept);
    return true;
}

/// What the host does while the popup is open it may tell of only afterwards.
bool injectBeforeAccept(Scene& scene) {
    const QString accept = scene.told.accept;
    if (accept.isEmpty() || !scene.runAll(scene.told.open) || !scene.runAll(scene.told.choose))
        return false;
    const bool isMenu = accept.startsWith("menu");
    if (isMenu && scene.desk.openMenu(scene.told.row)) scene.desk.settle();
    const bool wasOpen = Desk::isPopupOpen();
    scene.desk.isHeld = true;
    scene.inject();
    QCoreApplication::processEvents();
    if (Desk::isPopupOpen() == wasOpen && scene.desk.builder)
        scene.desk.step(isMenu ? "choose " + accept.section(' ', 2) : accept);
    scene.desk.isHeld = false;
    scene.desk.settle();
    return true;
}

/// A listener of the host's comes before the panels.
bool injectInNotification(Scene& scene) {
    const auto isDone = std::make_shared<bool>(false);
    scene.desk.live()->registerNotifyChangeListener(
        Notification::topLevelQueryComponentElementModified,
        [&scene, isDone](const std::string&, const QBNotificationParameters* parameters) {
            const bool isOwn = parameters->at("sender").toPointer() != nullptr;
            if (isOwn && !std::exchange(*isDone, true)) scene.inject();
        });
    scene.act();
    const bool wasDone = std::exchange(*isDone, true);
    return wasDone;
}

bool play(Scene& scene, int moment) {
    if (moment == BeforeAccept) return injectBeforeAccept(scene);
    return moment == WhilePressed ? injectWhilePressed(scene) : injectInNotification(scene);
}

}  // namespace

class InjectionTest : public QObject {
    Q_OBJECT

private:
    /// The rest of the session: what the user does next works.
    static void goOn(Scene& scene, const QString& plain) {
        Desk& desk = scene.desk;
        if (!desk.builder) return;
        if (!desk.live()) desk.revive();
        desk.live()->resetUi();
        desk.live()->setDatabaseInfo(DatabaseTypeMySQL, 1);
        desk.parse(base);
        QVERIFY(desk.openPage(scene.told.page));
        QCOMPARE(desk.rowFaults(), QString());
        QVERIFY2(scene.act(), "the action again");
        QCOMPARE(desk.text(), plain);
    }

private Q_SLOTS:
    void cleanupTestCase() { Test::outliveAnimations(); }

    void everyActionWorksByItself() {
        for (int i = 0; i < actionCount; ++i) {
            for (const Delivery delivery : {Delivery::AtOnce, Delivery::Later}) {
                Scene scene(i, DeleteBuilder, delivery);
                const bool isDone = scene.act();
                const bool opensLayer = scene.desk.live()->currentTopLevelQueryComponentLayer() > 0;
                QVERIFY2(isDone && (opensLayer || scene.text() != base), actions[i].name);
            }
        }
    }

    void whateverComesInBetweenNothingElseIsChanged_data() {
        QTest::addColumn<int>("action");
        QTest::addColumn<int>("event");
        QTest::addColumn<int>("moment");
        QTest::addColumn<int>("delivery");
        // Usually each action meets one event; in a long run all, or a share of them.
        const int share = qEnvironmentVariableIntValue("JOINERY_SHARE");
        const bool isAll = Test::isLongRun() || share > 0;
        Test::Dice dice(qEnvironmentVariableIntValue("JOINERY_SEED"));
        for (int i = 0; i < actionCount * EventCount * MomentCount * 2; ++i) {
            const int action = i % actionCount;
            const int event = i / actionCount % EventCount;
            const int moment = i / actionCount / EventCount % MomentCount;
            const int delivery = i / actionCount / EventCount / MomentCount;
            const bool isUsual = event == (action * 5 + 2) % EventCount &&
                                 moment == action % MomentCount && delivery == action / 3 % 2;
            if (isAll ? share > 1 && !dice.isOneIn(share) : !isUsual) continue;
            QTest::addRow("%s, %s %s, %s", actions[action].name, eventNames[event],
                          momentNames[moment], delivery ? "later" : "at once")
                << action << event << moment << delivery;
        }
    }
    void whateverComesInBetweenNothingElseIsChanged() {
        QFETCH(int, action);
        QFETCH(int, event);
        QFETCH(int, moment);
        QFETCH(int, delivery);
        const QStringList allowed = allowedTexts(action, event);
        const QString plain = plainText(action);
        Scene scene(action, event, static_cast<Delivery>(delivery));
        if (!play(scene, moment)) return;  // not a click, or not an edit of its own
        scene.finish();
        scene.desk.settle();
        QVERIFY(!Desk::isPopupOpen());
        QCOMPARE(scene.desk.rowFaults(), QString());
        QVERIFY2(!scene.desk.live() || allowed.contains(scene.text()),
                 qPrintable(difference(scene.text(), allowed)));
        goOn(scene, plain);
    }
};

}  // namespace QB

QTEST_MAIN(QB::InjectionTest)
#include "injection_test.moc"
