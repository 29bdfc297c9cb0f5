#pragma once

#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPointer>
#include <QTabWidget>
#include <QTreeWidget>
#include <QtTest>
#include <functional>
#include <memory>

#include "diagrampanel/fake_server.h"
#include "frame/query_helpers.h"
#include "popups/column_choice_host.h"
#include "popups/column_selection_popup_widget.h"
#include "widgets/panel_widget.h"

namespace QB::Test {

/// Like a host that runs nothing at once: what is posted to the main thread waits for the event
/// loop, on that thread, too.
class LateHost {
public:
    LateHost() {
        Callback::runOperationOnMainThread = [](std::function<void()> f) {
            QMetaObject::invokeMethod(qApp, std::move(f), Qt::QueuedConnection);
        };
    }
    ~LateHost() { Callback::runOperationOnMainThread = m_earlier; }
    LateHost(const LateHost&) = delete;
    LateHost& operator=(const LateHost&) = delete;

private:
    decltype(Callback::runOperationOnMainThread) m_earlier = Callback::runOperationOnMainThread;
};

/// What opens a chooser.
class PlainPanel : public QBPanelWidget {};

class ChoicePanel : public QBPanelWidget, public IQBColumnChoiceHost {
public:
    QBColumnChoice columnChoice() const override { return choice; }
    std::vector<SQLAbstractSourceComponent*> choiceSources() const override {
        std::vector<SQLAbstractSourceComponent*> sources;
        auto* from = dynamic_cast<ELEMSQLSourceExpr*>(engine()->modify_obtainElement(
            ElementSource, engine()->currentTopLevelQueryComponentLayer()));
        Tools::visitSourceNodes(from->root, [&sources](const SourceNode* node) {
            const bool isJoin = dynamic_cast<SQLJoinSourceNodeComponent*>(node->value);
            if (!isJoin) sources.push_back(node->value);
        });
        return sources;
    }

    QBColumnChoice choice = QBColumnChoice::SelectFields;
};

/// A window with a panel that chooses from the tables of a fake server: main.city (id, name),
/// main.country (code), main.places, other.town. The statement reads from city, twice by an alias,
/// from other.town, and from a subquery with the fields id and total.
struct Chooser : ServedEngine {
    explicit Chooser(DatabaseType family = DatabaseTypeSQLite) {
        server.set("other", {{"town", IdentifierTypeTable}});
        server.set("other.town", {{"name", IdentifierTypeField}});
        if (family != DatabaseTypeSQLite) engine->setDatabaseInfo(family, 1);
        engine->setCurrentSchema("main");
        panel.setEngine(engine.get());
        panel.resize(400, 300);
        panel.show();
        QApplication::setActiveWindow(&panel);
    }
    ~Chooser() {
        server.release();
        settle();
        delete popup;
    }

    void loadAll() {
        for (const std::vector<std::string>& path : std::vector<std::vector<std::string>>{
                 {"main"}, {"other"}, {"main", "city"}, {"main", "country"}, {"other", "town"}})
            refreshAndWait(path);
    }
    /// city; city a; city b; other.town; (SELECT id, 1 AS total FROM city) s
    void setSources() {
        Statement inner = newStatement();
        SourceNode* innerCity = table("city", {}, {"main"});
        inner->sourceExpr->root = innerCity;
        inner->selectColumnExpr->columns = {field(innerCity, "id"), expression("1", "total")};
        city = table("city", {}, {"main"});
        cityA = table("city", "a", {"main"});
        cityB = table("city", "b", {"main"});
        town = table("town", {}, {"other"});
        derived = subquery(std::move(inner), "s");
        SourceNode* all = city;
        for (SourceNode* next : {cityA, cityB, town, derived})
            all = join(all, SQLJoinTypeComma, next);
        setSource(*engine.get(), all);
    }

    QBColumnSelectionPopupWidget* open(QBColumnChoice choice,
                                       Component::AbstractQueryComponent* edited = nullptr,
                                       QStringList extraSchemas = {}) {
        panel.choice = choice;
        popup = new QBColumnSelectionPopupWidget(&panel, &extraSchemas, edited, nullptr, nullptr);
        tree = popup->treeWidget();
        tree->setMinimumSize(300, 400);
        popup->show();
        QApplication::setActiveWindow(popup);
        popup->setFocus();
        if (!QTest::qWaitForWindowActive(popup)) qFatal("the popup is not active");
        return popup;
    }

    /// Until nothing runs any more.
    void settle() {
        QCoreApplication::sendPostedEvents();
        host.finishWorkers();
        QCoreApplication::processEvents();
        host.finishWorkers();
    }

    /// What shows: headings, then what is below each in brackets.
    QString shown() const {
        QStringList lines;
        for (int i = 0; i < tree->topLevelItemCount(); ++i) {
            const QTreeWidgetItem* heading = tree->topLevelItem(i);
            if (heading->isHidden()) continue;
            QStringList below;
            for (int j = 0; j < heading->childCount(); ++j)
                below.append(heading->child(j)->text(0));
            lines.append(heading->text(0) +
                         (below.isEmpty() ? QString() : " [" + below.join(", ") + "]"));
        }
        return lines.join("; ");
    }
    /// "heading" or "heading/line".
    QTreeWidgetItem* item(const QString& path) const {
        const QStringList names = path.split('/');
        for (int i = 0; i < tree->topLevelItemCount(); ++i) {
            QTreeWidgetItem* heading = tree->topLevelItem(i);
            if (heading->text(0) != names[0]) continue;
            if (names.size() == 1) return heading;
            for (int j = 0; j < heading->childCount(); ++j) {
                if (heading->child(j)->text(0) == names[1]) return heading->child(j);
            }
        }
        return nullptr;
    }
    QString selected() const {
        const QList<QTreeWidgetItem*> items = tree->selectedItems();
        if (items.isEmpty()) return QString();
        const QTreeWidgetItem* parent = items[0]->parent();
        return (parent ? parent->text(0) + "/" : QString()) + items[0]->text(0);
    }

    QPoint placeOf(const QString& path) const {
        QTreeWidgetItem* wanted = item(path);
        if (!wanted) qFatal("no line %s in %s", qPrintable(path), qPrintable(shown()));
        tree->scrollToItem(wanted);
        const QPoint at = tree->visualItemRect(wanted).center();
        return tree->viewport()->mapTo(tree->window(), at);
    }
    void click(const QString& path) const {
        QTest::mouseClick(tree->window()->windowHandle(), Qt::LeftButton, {}, placeOf(path));
    }
    void press(Qt::Key key, Qt::KeyboardModifiers modifiers = {}) const {
        QTest::keyClick(tree->window()->windowHandle(), key, modifiers);
    }
    void type(const QString& text) const {
        for (const QChar letter : text)
            QTest::keyClick(tree->window()->windowHandle(), letter.toLatin1());
        QCoreApplication::processEvents();
    }

    /// Adds what is chosen as a column of a clause; its text.
    QString textWithChoice(TopLevelQueryComponentElementEnum clause) {
        const QBChosenColumn chosen = popup->chosenColumn();
        engine->modifyInTopLevelQueryComponentElement<ELEMAbstractTopLevelQueryExpr*>(
            clause, 0,
            [&](ELEMAbstractTopLevelQueryExpr* element) {
                auto column = makeColumn(chosen, engine.get());
                if (!column) return false;
                auto* select = dynamic_cast<ELEMSQLSelectColumnExpr*>(element);
                auto* others = dynamic_cast<ELEMSQLColumnExpr*>(element);
                if (others) directed(column.get(), OrderDirectionNone);
                (select ? select->columns : others->columns).push_back(column.release());
                return true;
            },
            nullptr);
        return QString::fromStdString(engine->buildQuery()).simplified();
    }

    ChoicePanel panel;
    QPointer<QBColumnSelectionPopupWidget> popup;
    QTreeWidget* tree = nullptr;
    SourceNode *city, *cityA, *cityB, *town, *derived;  // owned by the statement
};

}  // namespace QB::Test
