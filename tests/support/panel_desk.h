#pragma once

#include <QComboBox>
#include <QHash>
#include <QLineEdit>
#include <QVBoxLayout>
#include <memory>

#include "diagrampanel/fake_server.h"
#include "model/detached_parts.h"
#include "rows/nested_list_row_widget.h"
#include "rows/row_list_panel_widget.h"
#include "support/late_host.h"
#include "support/owned_engine.h"
#include "support/row_drop.h"
#include "support/window_events.h"
#include "widgets/label.h"

namespace QB::Test {

constexpr Delivery bothDeliveries[] = {Delivery::AtOnce, Delivery::Later};

/// For a test of each kind of host.
inline void addHosts() {
    QTest::addColumn<int>("delivery");
    QTest::newRow("at once") << static_cast<int>(Delivery::AtOnce);
    QTest::newRow("later") << static_cast<int>(Delivery::Later);
}
inline Delivery hostOfTest() {
    QFETCH(int, delivery);
    return static_cast<Delivery>(delivery);
}

/// For a test of each of @p stories, which have names, with each kind of host.
template <typename Story, std::size_t count>
void addStories(const Story (&stories)[count]) {
    QTest::addColumn<int>("story");
    QTest::addColumn<int>("delivery");
    for (std::size_t i = 0; i < count; ++i) {
        for (const Delivery delivery : bothDeliveries) {
            const char* const host = delivery == Delivery::AtOnce ? "at once" : "later";
            QTest::addRow("%s, %s", stories[i].name, host)
                << static_cast<int>(i) << static_cast<int>(delivery);
        }
    }
}
template <typename Story, std::size_t count>
const Story& storyOfTest(const Story (&stories)[count]) {
    QFETCH(int, story);
    return stories[story];
}

/// What a user does to a statement.
struct Story {
    const char* name;
    const char* before;
    const char* events;
    const char* after;
    const char* error = "";  ///< a part of what the user is told; empty: nothing
};

/// A clause panel in a window, over a server with the tables t (a, b, c) and u (a, d) in the schema
/// main, and more with the field a. All that a user does goes through the windows, told as text:
///
///     desk.run("click 0 add; pick t.c; key Ctrl+Up; join 3")
///
/// "join 3" is a click at that kind (SQLJoinType) in a list of them.
class PanelDesk : public WindowEvents {
public:
    PanelDesk(Delivery delivery, DatabaseType family,
              std::initializer_list<const char*> moreTables = {})
        : host(delivery), engine(family) {
        using Objects = FakeServer::Objects;
        Objects tables = {{"t", IdentifierTypeTable}, {"u", IdentifierTypeTable}};
        for (const std::string name : moreTables) {
            tables.emplace_back(name, IdentifierTypeTable);
            server.set("main." + name, fields({"a"}));
        }
        server.set("", Objects{{"main", IdentifierTypeSchema}});
        server.set("main", tables);
        server.set("main.t", fields({"a", "b", "c"}));
        server.set("main.u", fields({"a", "d"}));
        connectServer(engine.get());
    }

    virtual ~PanelDesk() {
        listPanel.reset();
        host.finishAll();
    }

    static FakeServer::Objects fields(std::initializer_list<const char*> names) {
        FakeServer::Objects objects;
        for (const char* name : names)
            objects.emplace_back(name, IdentifierTypeField);
        return objects;
    }

    void connectServer(QBEngine_LINUX* client) {
        client->registerIdentifierCandidateChildrenUpdater(server.updater());
        client->setCurrentSchema("main");
        for (const std::vector<std::string>& path : {std::vector<std::string>{}, {"main"}})
            client->addRefreshIdentifierCandidateChildrenRequest(path, true);
        client->refreshRequestedIdentifierCandidateChildren(true);
        host.finishAll();
    }

    /// Ownership: takes @p panel.
    void show(QBRowListPanelWidget* panel) {
        listPanel.reset(panel);
        new QVBoxLayout(&window);
        window.layout()->addWidget(panel);
        window.resize(500, 300);
        window.show();
        panel->setEngine(engine.get());
        window.activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(&window));
    }

    /// Lets everything arrive that is under way, unless it is held.
    void settle() {
        for (int i = 0; i < 3; ++i) {
            if (!isHeld) host.finishAll();
            QCoreApplication::processEvents();
            QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        }
    }

    void parse(const QString& text) {
        engine->parseQuery(text.toStdString(), {});
        settle();
    }

    /// The root statement in one line.
    QString text() const { return QString::fromStdString(engine->buildQuery()).simplified(); }

    Component::SQL::SQLSelectStmtComponent* statement() const {
        return dynamic_cast<Component::SQL::SQLSelectStmtComponent*>(
            engine->currentTopLevelQueryComponent());
    }

    /// Takes the first column out of the SELECT list, and not through the panel.
    void dropSelectColumn() {
        engine->modifyInTopLevelQueryComponentElement<ELEMSQLSelectColumnExpr*>(
            ElementSelectColumn, engine->currentTopLevelQueryComponentLayer(),
            [this](ELEMSQLSelectColumnExpr* element) {
                DetachedParts parts;
                parts.add(
                    std::unique_ptr<Component::AbstractQueryComponent>(element->columns.front()));
                element->columns.erase(element->columns.begin());
                engine->retire(std::move(parts));
                return true;
            },
            nullptr);
        settle();
    }

    QBNestedListTableView* view() const { return listPanel->rowView(); }
    QRect place(int row) const { return view()->visualRect(view()->model()->index(row, 0)); }

    /// A label of a row by its name in the form, or by a shorter one. Null if there is none.
    QBLabel* part(int row, const QString& name) const {
        static const QHash<QString, QString> names = {
            {"add", "addLabel"},         {"bracket", "addBracketLabel"}, {"delete", "deleteLabel"},
            {"alias", "aliasLabel"},     {"order", "orderLabel"},        {"not", "negatorLabel"},
            {"gate", "logicalLabel"},    {"op", "operatorLabel"},        {"left", "leftValueLabel"},
            {"right", "rightValueLabel"}};
        const QBNestedListRowWidget* const widget = view()->rowWidget(row);
        if (!widget) return nullptr;
        if (name == "main" || name == "field" || name == "prompt") return widget->mainPart();
        return widget->findChild<QBLabel*>(names.value(name, name));
    }

    // ---- events -------------------------------------------------------------------------------

    /// Events, separated by "; ". False if one cannot be sent.
    bool run(const QString& events) {
        const QStringList all = events.split(QStringLiteral("; "), Qt::SkipEmptyParts);
        for (const QString& event : all) {
            const QString word = event.section(QLatin1Char(' '), 0, 0);
            const QString rest = event.section(QLatin1Char(' '), 1);
            if (!runOne(word, rest) && !runOwn(word, rest)) {
                qWarning("cannot do: %s", qPrintable(event));
                return false;
            }
            settle();
        }
        return true;
    }

    /// Shows a statement.
    virtual void begin(const QString& before) { parse(before); }

    /// The statement @p before, the events, and what it is then.
    void tell(const QString& before, const QString& events, const QString& after) {
        begin(before);
        QCOMPARE(text(), before);
        QVERIFY(run(events));
        QCOMPARE(text(), after);
    }

    void tell(const Story& story) {
        tell(story.before, story.events, story.after);
        const bool isQuiet = !*story.error;
        QVERIFY2(isQuiet ? errors().isEmpty() : errors().contains(story.error),
                 qPrintable(errors()));
    }
    /// What the user was told.
    QString errors() const {
        QStringList all;
        for (const std::string& error : host.errors)
            all.append(QString::fromStdString(error));
        return all.join('|');
    }

    /// The events that only the test has.
    virtual bool runOwn(const QString&, const QString&) { return false; }

    bool runOne(const QString& word, const QString& rest) {
        const int row = rest.section(' ', 0, 0).toInt();
        const QString what = rest.section(' ', 1);
        if (word == "key") return press(rest);
        if (word == "type") return type(rest);
        if (word == "click") return clickPart(row, what);
        if (word == "pick") return pick(rest);
        if (word == "aggregate") return setAggregate(rest);
        if (word == "tab") return clickTab(rest.toInt());
        if (word == "outside") return clickAt(&window, QPoint(2, 2));
        if (word == "button") return clickOn(listPanel->findChild<QAbstractButton*>(rest));
        if (word == "menu") return openMenu(row) && choose(what);
        if (word == "choose") return choose(rest);
        if (word == "join") return chooseJoin(rest.toInt());
        if (word == "drag") return drag(row, what.toInt());
        if (word != "hold" && word != "deliver") return false;
        isHeld = word == "hold";
        return true;
    }

    bool press(const QString& keys) { return pressIn(&window, keys); }
    bool type(const QString& text) { return typeInto(&window, text); }

    /// A part of a row, or "row", "row ctrl", "row shift" for the row beside its labels.
    bool clickPart(int row, const QString& name) {
        view()->scrollTo(view()->model()->index(row, 0));
        if (!name.startsWith("row")) return clickOn(part(row, name));
        const auto modifiers = name.endsWith("ctrl")    ? Qt::ControlModifier
                               : name.endsWith("shift") ? Qt::ShiftModifier
                                                        : Qt::NoModifier;
        return clickAt(view()->viewport(), QPoint(3, place(row).center().y()), Qt::LeftButton,
                       modifiers);
    }

    /// In the chooser; empty: none.
    bool setAggregate(const QString& function) {
        QWidget* const popup = QApplication::activePopupWidget();
        auto* const list = popup ? popup->findChild<QComboBox*>() : nullptr;
        if (!list || !clickOn(list->lineEdit())) return false;
        list->lineEdit()->selectAll();
        return function.isEmpty() ? press("Del") : type(function);
    }

    bool openMenu(int row) {
        return clickAt(view()->viewport(), QPoint(3, place(row).center().y()), Qt::RightButton);
    }

    /// Drags a row to the upper edge of the row @p target; -1: below the rows.
    bool drag(int row, int target) {
        const QPoint point = target < 0 ? QPoint(20, view()->viewport()->height() - 3)
                                        : QPoint(20, place(target).top());
        return clickPart(row, "row") && dragRow(view(), point);
    }

    LateHost host;
    FakeServer server;
    OwnedEngine<> engine;
    QWidget window;
    std::unique_ptr<QBRowListPanelWidget> listPanel;
    bool isHeld = false;
};

}  // namespace QB::Test
