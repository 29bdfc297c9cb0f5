#include "rows/row_list_panel_widget.h"

#include <QMenu>
#include <QSignalSpy>
#include <QVBoxLayout>
#include <QtTest>
#include <memory>

#include "layouts/column_vector_layout.h"
#include "model/detached_parts.h"
#include "model/element_expressions.h"
#include "model/notification_names.h"
#include "rows/nested_list_any_expression_row_widget.h"
#include "rows/nested_list_dummy_row_widget.h"
#include "support/late_host.h"
#include "support/owned_engine.h"
#include "widgets/label.h"

namespace QB::Test {
namespace {

using namespace Component::SQL;
using QBComponentsListLayout_Private::ColumnVectorLayout;
using Row = QBNestedListAnyExpressionRowWidget;
using Rows = std::vector<int>;
using Elements = QSet<TopLevelQueryComponentElementEnum>;

std::unique_ptr<SQLAnyExpressionColumnComponent> newColumn(const std::string& text) {
    auto column = std::make_unique<SQLAnyExpressionColumnComponent>();
    column->expression = text;
    return column;
}

/// The columns of the SELECT list, with what a panel does in the least words, and a popup that is
/// nothing but open.
class ColumnsPanel : public QBRowListPanelWidget {
public:
    ColumnsPanel() {
        auto* view = new QBNestedListTableView(this);
        (new QVBoxLayout(this))->addWidget(view);
        setRelatedElements({ElementSelectColumn});
        setupRows(view);
    }

    int rowKind(int row) const override { return itemAt(row)->isPlaceholder ? 0 : 1; }
    QBNestedListRowWidget* createRowWidget(int row, QWidget* parent) override {
        if (rowKind(row) == 0) return new QBNestedListDummyRowWidget(nullptr, parent);
        return new Row(nullptr, parent);
    }
    void slotAddRow() override {
        if (!mayAct()) return;
        applyOwnEdit(
            [this] {
                for (const char* text : {"new1", "new2"}) {
                    auto& layout = editableLayout();
                    layout.addItem(engine(), element(), this, newColumn(text).release(), -1);
                }
            },
            [this] { return rowCount() - 1; });
    }
    void slotRemoveSelectedRow() override {
        if (!mayAct()) return;
        applyOwnEdit(
            [this] { editableLayout().removeItems(engine(), element(), this, selectedItems()); });
    }
    void slotEditSelectedRowAlias() override {
        if (!mayAct()) return;
        popup = rowKey(rowView()->currentRow());
    }
    /// The answer of the popup: an alias.
    void accept(const std::string& alias) {
        const QBRowKey key = std::exchange(popup, {});
        if (!key.isValid() || !mayAct() || findRow(key) < 0) return;
        applyOwnEdit([&] {
            auto* column =
                static_cast<SQLAbstractColumnComponent*>(itemAt(findRow(key))->component);
            engine()->modifyInTopLevelQueryComponentElement<ELEMSQLSelectColumnExpr*>(
                element(), engine()->currentTopLevelQueryComponentLayer(),
                [&](auto*) {
                    column->alias = alias;
                    return true;
                },
                this);
            return -1;
        });
    }
    void showCellContextMenu(const QPoint& position) override {
        auto* menu = new QMenu(this);
        menu->addAction("Remove", this, &ColumnsPanel::slotRemoveSelectedRow);
        popupMenu(menu, position);
    }
    bool mayActNow() { return mayAct(); }

    QBRowKey popup;
    int checks = 0;
    int refreshes = 0;
    int layers = 0;

protected:
    std::unique_ptr<QBComponentsListLayout::Impl> createLayout() override {
        auto* statement = engine() == nullptr ? nullptr : engine()->currentTopLevelQueryComponent();
        auto* select = dynamic_cast<SQLSelectStmtComponent*>(statement);
        if (select == nullptr) return nullptr;
        auto layout = std::make_unique<ColumnVectorLayout>(&select->selectColumnExpr->columns);
        layout->rebuildItems();
        layout->updateItemFlags();
        return layout;
    }
    void markRow(QBNestedListRowWidget*, const Item&) override {}
    void checkInvalidComponents() override { ++checks; }
    bool needsCheck(void*, const Elements& elements) const override {
        return elements.contains(ElementSelectColumn);
    }
    void adjustLayers(int currentLayer) override { layers = currentLayer + 1; }
    bool isPopupOpen() const override { return popup.isValid(); }
    void cancelPopup() override { popup = {}; }
    QBRowKey popupRow() const override { return popup; }
    void rowsRefreshed() override { ++refreshes; }
};

/// A panel over "SELECT c0, c1, ..." in a window.
class Desk {
public:
    explicit Desk(Delivery delivery, int columns = 4)
        : host(delivery), engine(DatabaseTypeSQLite), panel(new ColumnsPanel) {
        for (int i = 0; i < columns; ++i)
            change([i](auto& all) { all.push_back(newColumn("c" + std::to_string(i)).release()); });
        (new QVBoxLayout(&window))->addWidget(panel);
        panel->setEngine(engine.get());
        window.resize(400, 300);
        window.show();
        view()->setFocus();
        if (!QTest::qWaitForWindowActive(&window)) qFatal("no window");
        settle();
    }

    /// A change that does not come from the panel.
    void change(const std::function<void(std::vector<SQLAbstractColumnComponent*>&)>& edit,
                void* sender = nullptr) {
        engine->modifyInTopLevelQueryComponentElement<ELEMSQLSelectColumnExpr*>(
            ElementSelectColumn, engine->currentTopLevelQueryComponentLayer(),
            [&](ELEMSQLSelectColumnExpr* list) {
                edit(list->columns);
                return true;
            },
            sender);
    }
    /// Takes a column out, behind the panel's back unless the host delivers at once.
    void remove(std::size_t index) {
        change([&](auto& all) {
            DetachedParts parts;
            parts.add(std::unique_ptr<Component::AbstractQueryComponent>(all[index]));
            all.erase(all.begin() + static_cast<std::ptrdiff_t>(index));
            engine->retire(std::move(parts));
        });
    }
    void settle() {
        host.finishAll();
        QTest::qWait(1);
    }
    void click(int row, const char* label) {
        auto* part = view()->rowWidget(row)->findChild<QBLabel*>(label);
        QTest::mouseClick(window.windowHandle(), Qt::LeftButton, {},
                          part->mapTo(&window, part->rect().center()));
    }
    /// In the window, in the row and on none of its labels.
    QPoint beside(int row) const {
        const QRect place = view()->visualRect(view()->model()->index(row, 0));
        return view()->viewport()->mapTo(view()->window(), place.topLeft() + QPoint(2, 5));
    }
    void key(Qt::Key key) { QTest::keyClick(window.windowHandle(), key); }

    QBNestedListTableView* view() const { return panel->rowView(); }
    /// The columns as the rows show them, the selected ones in brackets; "different" where view,
    /// layout and statement are not in step.
    QString shown() const {
        QStringList words;
        const auto* statement = engine->currentTopLevelQueryComponent();
        const auto* select = dynamic_cast<const SQLSelectStmtComponent*>(statement);
        const auto& columns = select->selectColumnExpr->columns;
        const auto& items = panel->rowLayout().items();
        if (view()->model()->rowCount() != panel->rowCount()) return "different";
        for (std::size_t row = 0; row < columns.size(); ++row) {
            const int number = static_cast<int>(row);
            if (row >= items.size() || items[row]->component != columns[row]) return "different";
            auto* widget = qobject_cast<Row*>(view()->rowWidget(number));
            if (widget == nullptr || widget->component() != columns[row]) return "different";
            const QString text = widget->valueLabel()->fullText();
            const bool isSelected =
                view()->selectionModel()->isSelected(view()->model()->index(number, 0));
            words << (isSelected ? "[" + text + "]" : text);
        }
        return words.join(' ');
    }
    QString text() const { return QString::fromStdString(engine->buildQuery()).simplified(); }

    LateHost host;
    OwnedEngine<> engine;
    QWidget window;
    ColumnsPanel* const panel;  // owned by the window
};

}  // namespace

class RowListPanelTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void own_edits_show_at_once_whenever_the_host_notifies_data() { hosts(); }
    void own_edits_show_at_once_whenever_the_host_notifies();
    void foreign_changes_reach_the_rows_before_the_user_does_data() { hosts(); }
    void foreign_changes_reach_the_rows_before_the_user_does();
    void an_answer_goes_to_its_row_or_nowhere_data() { hosts(); }
    void an_answer_goes_to_its_row_or_nowhere();
    void layers_databases_and_the_end_of_the_engine_close_and_empty_the_panel_data() { hosts(); }
    void layers_databases_and_the_end_of_the_engine_close_and_empty_the_panel();
    void a_hidden_panel_lets_its_rows_go_and_refreshes_when_shown();
    void a_burst_of_fetched_fields_is_checked_once();
    void the_focus_is_told_and_taken_without_an_echo();
    void a_menu_closes_when_its_rows_change();

private:
    static void hosts() {
        QTest::addColumn<int>("delivery");
        QTest::newRow("at once") << int(Delivery::AtOnce);
        QTest::newRow("later") << int(Delivery::Later);
    }
    static Delivery delivery() {
        QFETCH(int, delivery);
        return Delivery(delivery);
    }
};

void RowListPanelTest::own_edits_show_at_once_whenever_the_host_notifies() {
    Desk desk(delivery());
    QCOMPARE(desk.shown(), QStringLiteral("c0 c1 c2 c3"));
    desk.view()->selectOnly(3);
    desk.panel->checks = 0;
    QSignalSpy icon(desk.panel, &ColumnsPanel::signalIconNeedsUpdate);
    // A click on a row's control is about that row, whatever was selected.
    desk.click(1, "deleteLabel");
    QCOMPARE(desk.shown(), QStringLiteral("c0 c2 c3"));
    QCOMPARE(desk.panel->checks, 1);
    QCOMPARE(icon.count(), 1);
    desk.key(Qt::Key_Insert);
    QCOMPARE(desk.shown(), QStringLiteral("c0 c2 c3 new1 [new2]"));
    QCOMPARE(desk.panel->checks, 2);
    desk.settle();
    QCOMPARE(desk.shown(), QStringLiteral("c0 c2 c3 new1 [new2]"));
    // By key the control of the current row, though all rows are selected.
    QTest::keySequence(desk.window.windowHandle(), QKeySequence::SelectAll);
    for (int i = 0; i < 5; ++i)
        desk.key(Qt::Key_Right);
    desk.key(Qt::Key_Return);
    QCOMPARE(desk.shown(), QStringLiteral("c0 c2 c3 new1"));
    QTest::keySequence(desk.window.windowHandle(), QKeySequence::SelectAll);
    desk.key(Qt::Key_Delete);
    desk.settle();
    QCOMPARE(desk.shown(), QString());
    QCOMPARE(desk.view()->model()->rowCount(), 1);
}

void RowListPanelTest::foreign_changes_reach_the_rows_before_the_user_does() {
    Desk desk(delivery());
    desk.view()->selectOnly(2);
    // The host has not told yet when the user goes on.
    desk.remove(0);
    desk.key(Qt::Key_Delete);
    QCOMPARE(desk.shown(), QStringLiteral("c1 c3"));
    desk.change([](auto& all) { std::swap(all[0], all[1]); });
    desk.click(0, "deleteLabel");
    desk.settle();
    QCOMPARE(desk.shown().remove('[').remove(']').size(), 2);
    QCOMPARE(desk.shown(), delivery() == Delivery::Later ? "c3" : "c1");
    // What comes from a widget in the panel is known there.
    desk.panel->refreshes = 0;
    desk.change([](auto&) {}, desk.view());
    desk.settle();
    QCOMPARE(desk.panel->refreshes, 0);
}

void RowListPanelTest::an_answer_goes_to_its_row_or_nowhere() {
    Desk desk(delivery());
    desk.click(2, "aliasLabel");
    QVERIFY(desk.panel->popup.isValid() && !desk.panel->mayActNow());
    desk.key(Qt::Key_Delete);
    desk.remove(0);
    desk.settle();
    QCOMPARE(desk.shown(), QStringLiteral("c1 [c2] c3"));
    desk.remove(0);
    desk.panel->accept("x");
    QCOMPARE(desk.text(), QStringLiteral("SELECT c2 AS x, c3"));
    // Its row goes: told in time the popup closes, told late the answer is for nobody.
    desk.click(0, "aliasLabel");
    desk.remove(0);
    QCOMPARE(desk.panel->popup.isValid(), delivery() == Delivery::Later);
    desk.panel->accept("y");
    desk.settle();
    QCOMPARE(desk.text(), QStringLiteral("SELECT c3"));
    desk.click(0, "aliasLabel");
    desk.engine->parseQuery("SELECT 1+1", {});
    desk.panel->accept("z");
    desk.settle();
    QVERIFY(!desk.panel->popup.isValid());
    QCOMPARE(desk.text(), QStringLiteral("SELECT 1+1"));
}

void RowListPanelTest::layers_databases_and_the_end_of_the_engine_close_and_empty_the_panel() {
    Desk desk(delivery());
    const std::unique_ptr<Component::AbstractTopLevelQueryComponent> inner(
        desk.engine->createTopLevelQueryComponentForCurrentDatabase());
    const auto openPopup = [&] {
        desk.view()->selectOnly(0);
        desk.panel->slotEditSelectedRowAlias();
        return desk.panel->popup.isValid();
    };
    QVERIFY(openPopup());
    desk.engine->pushNewLayerTopLevelQueryComponent(inner.get(), "inner");
    QVERIFY(!desk.panel->popup.isValid());
    QCOMPARE(desk.panel->layers, 2);
    QCOMPARE(desk.shown(), QString());
    QVERIFY(openPopup());
    desk.engine->popCurrentLayerTopLevelQueryComponent();
    QVERIFY(!desk.panel->popup.isValid());
    QCOMPARE(desk.shown().remove('[').remove(']'), QStringLiteral("c0 c1 c2 c3"));
    // A family without statements, then one with.
    QVERIFY(openPopup());
    desk.engine->setDatabaseInfo(DatabaseTypeMongoDB, 1);
    QVERIFY(!desk.panel->popup.isValid());
    QCOMPARE(desk.view()->model()->rowCount(), 0);
    QVERIFY(!desk.panel->mayActNow());
    desk.engine->setDatabaseInfo(DatabaseTypePostgreSQL, 1);
    desk.settle();
    QCOMPARE(desk.view()->model()->rowCount(), 1);
    QVERIFY(openPopup());
    desk.engine.destroy();
    QVERIFY(!desk.panel->popup.isValid() && !desk.panel->mayActNow());
    QCOMPARE(desk.view()->model()->rowCount(), 0);
    QCOMPARE(desk.panel->layers, 0);
    desk.key(Qt::Key_Insert);
}

void RowListPanelTest::a_hidden_panel_lets_its_rows_go_and_refreshes_when_shown() {
    Desk desk(Delivery::AtOnce, 60);
    desk.view()->selectOnly(40);
    desk.panel->hide();
    desk.panel->refreshes = desk.panel->checks = 0;
    for (int i = 0; i < 5; ++i)
        desk.remove(0);
    QCOMPARE(desk.panel->refreshes, 0);
    QCOMPARE(desk.panel->checks, 5);  // the tab shows the result
    QCOMPARE(desk.panel->rowCount(), 0);
    for (const Row* row : desk.view()->findChildren<Row*>())
        QVERIFY(row->component() == nullptr);
    desk.panel->show();
    QCOMPARE(desk.panel->refreshes, 1);
    QCOMPARE(desk.panel->rowCount(), 55);
    QCOMPARE(desk.view()->selectedRowNumbers(), Rows{35});
    desk.panel->hide();
    desk.panel->show();
    QCOMPARE(desk.panel->refreshes, 1);
    // An action may reach a panel that nobody sees.
    desk.panel->hide();
    desk.remove(0);
    desk.panel->slotAddRow();
    QCOMPARE(desk.panel->rowCount(), 56);
}

void RowListPanelTest::a_burst_of_fetched_fields_is_checked_once() {
    Desk desk(Delivery::AtOnce);
    desk.panel->checks = desk.panel->refreshes = 0;
    const QBNotificationParameters root = {{"ident", static_cast<void*>(nullptr)}};
    for (int i = 0; i < 20; ++i)
        desk.engine->notifyChange(Notification::identifierCandidateChildrenUpdateEnded, &root);
    desk.settle();
    QCOMPARE(desk.panel->checks, 1);
    QCOMPARE(desk.panel->refreshes, 0);
}

void RowListPanelTest::the_focus_is_told_and_taken_without_an_echo() {
    QStringList heard;  // until the window has gone: hiding is told as well
    Desk desk(Delivery::AtOnce);
    const auto name = [&](Component::AbstractQueryComponent* component) {
        auto* column = dynamic_cast<SQLAnyExpressionColumnComponent*>(component);
        return column == nullptr ? "?" : QString::fromStdString(column->expression);
    };
    QObject::connect(
        desk.engine->signalEmitter(), &QBEngineSignalEmitter::componentFocusChanged,
        [&](QBEngine*, Component::AbstractQueryComponent* component, bool isFocused, void* sender) {
            if (sender == desk.panel) heard << (isFocused ? "+" : "-") + name(component);
        });
    const auto hear = [&] {
        return std::exchange(heard, {}).join(' ');
    };
    QTest::mouseClick(desk.window.windowHandle(), Qt::LeftButton, {}, desk.beside(1));
    QCOMPARE(hear(), QStringLiteral("-c0 +c1"));
    desk.key(Qt::Key_Down);
    QCOMPARE(hear(), QStringLiteral("-c1 +c2"));
    desk.key(Qt::Key_Up);
    hear();
    desk.remove(0);
    desk.key(Qt::Key_Delete);
    QCOMPARE(hear(), QString());
    desk.view()->selectOnly(0);
    QCOMPARE(hear(), QStringLiteral("+c2"));
    const QBNotificationParameters focus = {
        {"component", static_cast<void*>(desk.panel->rowLayout().items()[1]->component)},
        {"focused", 1},
        {"sender", static_cast<void*>(&desk)}};
    desk.engine->notifyChange(Notification::componentFocusChanged, &focus);
    QCOMPARE(desk.shown(), QStringLiteral("c2 [c3]"));
    QCOMPARE(hear(), QStringLiteral("-c2"));
    desk.panel->hide();
    QCOMPARE(hear(), QStringLiteral("-c3"));
    desk.panel->show();
    QCOMPARE(hear(), QStringLiteral("+c3"));
}

void RowListPanelTest::a_menu_closes_when_its_rows_change() {
    Desk desk(Delivery::AtOnce);
    desk.view()->selectOnly(1);
    desk.key(Qt::Key_Menu);
    const QPointer<QMenu> menu = desk.panel->findChild<QMenu*>();
    QVERIFY(menu != nullptr && menu->isVisible());
    const QRect row = desk.view()->visualRect(desk.view()->model()->index(1, 0));
    const int y = desk.view()->viewport()->mapFromGlobal(menu->pos()).y();
    QVERIFY(y >= row.top() && y <= row.bottom() + 1);
    QTest::keyClick(menu->windowHandle(), Qt::Key_Down);
    QTest::keyPress(menu->windowHandle(), Qt::Key_Return);  // the release would find no window
    QCOMPARE(desk.shown().remove('[').remove(']'), QStringLiteral("c0 c2 c3"));
    desk.key(Qt::Key_Menu);
    QVERIFY(QApplication::activePopupWidget() != nullptr);
    desk.remove(0);
    QVERIFY(QApplication::activePopupWidget() == nullptr);
    desk.settle();
    QVERIFY(menu == nullptr && desk.panel->findChild<QMenu*>() == nullptr);
}

}  // namespace QB::Test

QTEST_MAIN(QB::Test::RowListPanelTest)
#include "row_list_panel_test.moc"
