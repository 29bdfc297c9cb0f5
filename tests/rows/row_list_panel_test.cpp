#include "rows/row_list_panel_widget.h"

#include <QScrollBar>

#include "model/notification_names.h"
#include "panels/source_column_selection_panel_widget.h"
#include "support/panel_desk.h"
#include "support/qt_animations.h"

namespace QB::Test {
namespace {

using namespace Component::SQL;

/// A panel that counts what may cost much, and whose popup is nothing but open.
class CountingPanel : public QBSourceColumnSelectionPanelWidget {
public:
    int checks = 0;
    int refreshes = 0;
    QBRowKey popup;

protected:
    bool isPopupOpen() const override { return popup.isValid(); }
    void cancelPopup() override { popup = {}; }
    QBRowKey popupRow() const override { return popup; }
    void checkInvalidComponents() override {
        ++checks;
        QBSourceColumnSelectionPanelWidget::checkInvalidComponents();
    }
    void rowsRefreshed() override {
        ++refreshes;
        QBSourceColumnSelectionPanelWidget::rowsRefreshed();
    }
};

/// The panel over "SELECT 0, 1, 2" and so on.
class Desk : public PanelDesk {
public:
    explicit Desk(Delivery delivery, int columns = 4) : PanelDesk(delivery, DatabaseTypeSQLite) {
        show(panel);
        QStringList texts;
        for (int i = 0; i < columns; ++i)
            texts << QString::number(i);
        parse("SELECT " + texts.join(", "));
        view()->setFocus();
    }

    CountingPanel* const panel = new CountingPanel;  // owned by the base
};

}  // namespace

class RowListPanelTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void cleanupTestCase() { outliveAnimations(); }

    void ownEditsAreCheckedAndToldOnce_data() { addHosts(); }
    void ownEditsAreCheckedAndToldOnce() {
        Desk desk(hostOfTest());
        QVERIFY(desk.run("click 3 row; hold"));
        desk.panel->checks = 0;
        const QSignalSpy icon(desk.panel, &CountingPanel::signalIconNeedsUpdate);
        // A click on a row's control is about that row, whatever was selected.
        QVERIFY(desk.run("click 1 delete"));
        QCOMPARE(desk.text(), QString("SELECT 0, 2, 3"));
        QCOMPARE(desk.panel->checks, 1);
        QCOMPARE(icon.count(), 1);
        // By key the control of the current row, though all rows are selected.
        QVERIFY(desk.run("key Ctrl+A; key Right; key Right; key Right; key Right; key Return"));
        QCOMPARE(desk.text(), QString("SELECT 0, 3"));
        QVERIFY(desk.run("key Ctrl+A; key Del; deliver"));
        QCOMPARE(desk.statement()->selectColumnExpr->columns.size(), std::size_t(0));
        QCOMPARE(desk.view()->model()->rowCount(), 1);
    }

    void foreignChangesReachTheRowsBeforeTheUserDoes_data() { addHosts(); }
    void foreignChangesReachTheRowsBeforeTheUserDoes() {
        Desk desk(hostOfTest());
        QVERIFY(desk.run("click 2 row; hold"));
        desk.dropSelectColumn();
        QVERIFY(desk.run("key Del; deliver"));
        QCOMPARE(desk.text(), QString("SELECT 1, 3"));
    }

    void aPopupKeepsTheUserFromActingUntilItsRowHasGone_data() { addHosts(); }
    void aPopupKeepsTheUserFromActingUntilItsRowHasGone() {
        Desk desk(hostOfTest());
        QVERIFY(desk.run("click 2 row"));
        desk.panel->popup = desk.panel->rowKey(1);
        QVERIFY(desk.run("key Del"));
        desk.dropSelectColumn();
        QCOMPARE(desk.text(), QString("SELECT 1, 2, 3"));
        QVERIFY2(desk.panel->popup.isValid(), "its row is there, in another place");
        desk.isHeld = true;
        desk.dropSelectColumn();
        QCOMPARE(desk.panel->popup.isValid(), hostOfTest() == Delivery::Later);
        QVERIFY(desk.run("deliver"));
        QVERIFY(!desk.panel->popup.isValid());
        desk.panel->popup = desk.panel->rowKey(0);
        desk.engine.destroy();
        QVERIFY(!desk.panel->popup.isValid());
        desk.press("Ins");
    }

    void aHiddenPanelLetsItsRowsGoAndRefreshesWhenShown() {
        Desk desk(Delivery::AtOnce, 60);
        desk.view()->selectOnly(40);
        const int scroll = desk.view()->verticalScrollBar()->value();
        desk.panel->hide();
        desk.panel->refreshes = desk.panel->checks = 0;
        for (int i = 0; i < 5; ++i)
            desk.dropSelectColumn();
        QCOMPARE(desk.panel->refreshes, 0);
        QCOMPARE(desk.panel->checks, 5);  // the tab shows the result
        QCOMPARE(desk.panel->rowCount(), 0);
        for (const auto* row : desk.view()->findChildren<QBNestedListRowWidget*>())
            QVERIFY(row->component() == nullptr && row->isHidden());
        desk.panel->show();
        QCOMPARE(desk.panel->refreshes, 1);
        QCOMPARE(desk.panel->rowCount(), 55);
        QCOMPARE(desk.view()->selectedRowNumbers(), std::vector<int>{35});
        QCOMPARE(desk.view()->verticalScrollBar()->value(), scroll - 5 * desk.view()->rowHeight(0));
        desk.panel->hide();
        desk.panel->show();
        QCOMPARE(desk.panel->refreshes, 1);
        // An action may reach a panel that nobody sees.
        desk.panel->hide();
        desk.dropSelectColumn();
        desk.panel->slotRemoveSelectedRow();
        QCOMPARE(desk.panel->rowCount(), 53);
    }

    void aBurstOfFetchedFieldsIsCheckedOnce() {
        Desk desk(Delivery::AtOnce);
        desk.panel->checks = desk.panel->refreshes = 0;
        const QBNotificationParameters root = {{"ident", static_cast<void*>(nullptr)}};
        for (int i = 0; i < 20; ++i)
            desk.engine->notifyChange(Notification::identifierCandidateChildrenUpdateEnded, &root);
        desk.settle();
        QCOMPARE(desk.panel->checks, 1);
        QCOMPARE(desk.panel->refreshes, 0);
    }

    void theFocusIsToldAndTakenWithoutAnEcho() {
        QStringList heard;  // until the window has gone: hiding is told as well
        Desk desk(Delivery::AtOnce);
        connect(
            desk.engine->signalEmitter(), &QBEngineSignalEmitter::componentFocusChanged, desk.panel,
            [&](QBEngine*, Component::AbstractQueryComponent* of, bool isFocused, void* by) {
                const auto* column = dynamic_cast<SQLAnyExpressionColumnComponent*>(of);
                if (by == desk.panel)
                    heard << (isFocused ? '+' : '-') + QString::fromStdString(column->expression);
            });
        const auto hear = [&](const char* events) {
            desk.run(events);
            return std::exchange(heard, {}).join(' ');
        };
        QCOMPARE(hear("click 0 row"), QString("+0"));
        QCOMPARE(hear("click 1 row"), QString("-0 +1"));
        QCOMPARE(hear("key Down"), QString("-1 +2"));
        hear("key Up");
        desk.dropSelectColumn();
        QCOMPARE(hear("key Del"), QString());
        QCOMPARE(hear("key Down"), QString("+3"));
        const QBNotificationParameters focus = {
            {"component", static_cast<void*>(desk.panel->rowLayout().items()[0]->component)},
            {"focused", 1},
            {"sender", static_cast<void*>(&desk)}};
        desk.engine->notifyChange(Notification::componentFocusChanged, &focus);
        QCOMPARE(desk.view()->selectedRowNumbers(), std::vector<int>{0});
        QCOMPARE(hear(""), QString("-3"));
        desk.panel->hide();
        QVERIFY2(hear("").isEmpty(), "it is another panel's focus");
        desk.panel->show();
        QCOMPARE(hear(""), QString("+2"));
        desk.panel->hide();
        QCOMPARE(hear(""), QString("-2"));
    }
};

}  // namespace QB::Test

QTEST_MAIN(QB::Test::RowListPanelTest)
#include "row_list_panel_test.moc"
