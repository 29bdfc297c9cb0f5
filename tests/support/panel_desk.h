#pragma once

#include <QVBoxLayout>
#include <memory>

#include "diagrampanel/fake_server.h"
#include "rows/nested_list_row_widget.h"
#include "rows/row_list_panel_widget.h"
#include "support/late_host.h"
#include "support/owned_engine.h"
#include "support/row_drop.h"
#include "support/window_events.h"
#include "widgets/label.h"

namespace QB::Test {

/// A clause panel in a window, over a server with the tables t (a, b, c) and u (a, d) in the schema
/// main. All that a user does goes through the windows, told as text:
///
///     desk.run("click 0 add; pick t.c; key Ctrl+Up")
///
/// A test names the parts of its rows in part().
class PanelDesk : public WindowEvents {
public:
    PanelDesk(Delivery delivery, DatabaseType family) : host(delivery), engine(family) {
        using Objects = FakeServer::Objects;
        server.set("", Objects{{"main", IdentifierTypeSchema}});
        server.set("main", Objects{{"t", IdentifierTypeTable}, {"u", IdentifierTypeTable}});
        server.set("main.t", fields({"a", "b", "c"}));
        server.set("main.u", fields({"a", "d"}));
        engine->registerIdentifierCandidateChildrenUpdater(server.updater());
        engine->setCurrentSchema("main");
        for (const std::vector<std::string>& path : {std::vector<std::string>{}, {"main"}})
            engine->addRefreshIdentifierCandidateChildrenRequest(path, true);
        engine->refreshRequestedIdentifierCandidateChildren(true);
        host.finishAll();
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

    /// Ownership: takes @p panel.
    void show(QBRowListPanelWidget* panel) {
        listPanel.reset(panel);
        new QVBoxLayout(&window);
        window.layout()->addWidget(panel);
        window.resize(500, 300);
        window.show();
        panel->setEngine(engine.get());
        QVERIFY(QTest::qWaitForWindowExposed(&window));
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

    QBNestedListTableView* view() const { return listPanel->rowView(); }
    QRect place(int row) const { return view()->visualRect(view()->model()->index(row, 0)); }

    /// Null if the row has no such part.
    virtual QBLabel* part(int row, const QString& name) const = 0;

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

    /// The events that only the test has.
    virtual bool runOwn(const QString&, const QString&) { return false; }

    bool runOne(const QString& word, const QString& rest) {
        const int row = rest.section(' ', 0, 0).toInt();
        const QString what = rest.section(' ', 1);
        if (word == "key") return press(rest);
        if (word == "type") return type(rest);
        if (word == "click") return clickPart(row, what);
        if (word == "pick") return pick(rest);
        if (word == "tab") return clickTab(rest.toInt());
        if (word == "outside") return clickAt(&window, QPoint(2, 2));
        if (word == "button") return clickOn(listPanel->findChild<QAbstractButton*>(rest));
        if (word == "menu") return openMenu(row) && choose(what);
        if (word == "choose") return choose(rest);
        if (word == "drag") return drag(row, what.toInt());
        isHeld = word == "hold";
        return isHeld || word == "deliver";
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
