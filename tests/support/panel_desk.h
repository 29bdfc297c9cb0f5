#pragma once

#include <QAbstractButton>
#include <QApplication>
#include <QMenu>
#include <QTabBar>
#include <QTreeWidget>
#include <QVBoxLayout>
#include <QWindow>
#include <QtTest>
#include <memory>

#include "diagrampanel/fake_server.h"
#include "rows/nested_list_row_widget.h"
#include "rows/row_list_panel_widget.h"
#include "support/late_host.h"
#include "support/owned_engine.h"
#include "support/row_drop.h"
#include "widgets/label.h"

namespace QB::Test {

/// A clause panel in a window, over a server with the tables t (a, b, c) and u (a, d) in the schema
/// main. All that a user does goes through the windows, told as text:
///
///     desk.run("click 0 add; pick t.c; key Ctrl+Up")
///
/// A test names the parts of its rows in part().
class PanelDesk {
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

    static QWindow* activeWindow(QWidget* fallback) {
        QWidget* const popup = QApplication::activePopupWidget();
        return (popup ? popup : fallback)->window()->windowHandle();
    }

    bool press(const QString& keys) {
        const int code = QKeySequence(keys)[0];
        const auto modifiers = Qt::KeyboardModifiers(code & int(Qt::KeyboardModifierMask));
        const auto key = Qt::Key(code & ~int(Qt::KeyboardModifierMask));
        QTest::keyPress(activeWindow(&window), key, modifiers);
        return true;
    }

    bool type(const QString& text) {
        for (const QChar letter : text)
            QTest::keyClick(activeWindow(&window), letter.toLatin1());
        return true;
    }

    static bool clickAt(QWidget* widget, const QPoint& point,
                        Qt::MouseButton mouseButton = Qt::LeftButton,
                        Qt::KeyboardModifiers modifiers = {}) {
        QWidget* const top = widget->window();
        const QPoint place = widget->mapTo(top, point);
        QTest::mouseMove(top->windowHandle(), place);
        QTest::mouseClick(top->windowHandle(), mouseButton, modifiers, place);
        return true;
    }

    static bool clickOn(QWidget* widget) {
        return widget && widget->isVisible() && clickAt(widget, widget->rect().center());
    }

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

    static QTreeWidgetItem* choice(QTreeWidget* tree, const QString& path) {
        QTreeWidgetItemIterator item(tree);
        for (; *item; ++item) {
            const QString text = (*item)->text(0);
            const QTreeWidgetItem* const parent = (*item)->parent();
            if (text == path || text == path + " (*)") return *item;
            if (parent && parent->text(0) + "." + text == path) return *item;
        }
        return nullptr;
    }

    /// Clicks an item of the chooser: "t.a".
    static bool pick(const QString& path) {
        QWidget* const popup = QApplication::activePopupWidget();
        auto* const tree = popup ? popup->findChild<QTreeWidget*>() : nullptr;
        QTreeWidgetItem* const item = tree ? choice(tree, path) : nullptr;
        if (!item) return false;
        tree->scrollToItem(item);
        return clickAt(tree->viewport(), tree->visualItemRect(item).center());
    }

    static bool clickTab(int index) {
        QWidget* const popup = QApplication::activePopupWidget();
        auto* const bar = popup ? popup->findChild<QTabBar*>() : nullptr;
        return bar && clickAt(bar, bar->tabRect(index).center());
    }

    bool openMenu(int row) {
        return clickAt(view()->viewport(), QPoint(3, place(row).center().y()), Qt::RightButton);
    }

    /// Clicks an entry of the open menu. An entry that cannot be chosen closes it.
    static bool choose(const QString& text) {
        auto* const menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
        if (!menu) return false;
        const auto entries = menu->actions();
        for (QAction* entry : entries) {
            if (entry->text() == text && entry->isEnabled())
                return clickAt(menu, menu->actionGeometry(entry).center());
        }
        menu->close();
        return false;
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
