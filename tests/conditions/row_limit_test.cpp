#include <QApplication>
#include <QLineEdit>
#include <QToolTip>
#include <QVBoxLayout>
#include <QtTest>

#include "conditions/row_selection_limit_panel_widget.h"
#include "stringifier/statement_builder.h"
#include "support/host_callbacks.h"
#include "support/owned_engine.h"
#include "widgets/label.h"

namespace QB {

/// The panel in a window with another control, by mouse and keys through the windows.
class RowLimitTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() {
        m_host = std::make_unique<Test::HostCallbacks>();
        m_engine = std::make_unique<Test::OwnedEngine<>>(DatabaseTypeMySQL);
        m_window = std::make_unique<QWidget>();
        auto* column = new QVBoxLayout(m_window.get());
        m_panel = new QBRowSelectionLimitPanelWidget;
        m_panel->setRelatedElements({ElementLimit});
        column->addWidget(m_panel);
        m_panel->setEngine(m_engine->get());
        m_window->resize(500, 200);
        m_window->show();
        m_window->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(m_window.get()));
    }
    void cleanup() {
        m_window.reset();
        m_engine.reset();
        m_host.reset();
    }

    void whatIsTypedIsTakenOrRefused_data() {
        QTest::addColumn<int>("before");
        QTest::addColumn<QString>("typed");  // u, d: arrow keys; x: delete what is selected
        QTest::addColumn<int>("end");        // the key that ends it; 0: a click outside
        QTest::addColumn<int>("after");
        QTest::addColumn<bool>("isToldWhy");
        const auto row = [](const char* name, int before, const char* typed, int end, int after,
                            bool isToldWhy = false) {
            QTest::newRow(name) << before << QString(typed) << end << after << isToldWhy;
        };
        row("a number", -1, "25", Qt::Key_Return, 25);
        row("zero is a value", 7, "0", Qt::Key_Enter, 0);
        row("leading zeros are none", -1, "007", Qt::Key_Return, 7);
        row("cleared", 7, "x", Qt::Key_Return, -1);
        row("cleared by a click outside", 7, "x", 0, -1);
        row("escape keeps it", 7, "25", Qt::Key_Escape, 7);
        row("a click outside takes it", 7, "25", 0, 25);
        row("no sign", 7, "-5", Qt::Key_Return, 5, true);
        row("no group separators", 7, "1,000", Qt::Key_Return, 1000, true);
        row("a plus alone is no number", 7, "+", 0, 7, true);
        row("nor by the return key", 7, "+5", Qt::Key_Return, 5);
        row("the largest", 7, "2147483647", Qt::Key_Return, 2147483647);
        row("no larger", 7, "2147483648", 0, 7, true);
        row("nor far larger", 7, "21474836471", Qt::Key_Return, 2147483647, true);
        row("arrows count from nothing", -1, "duu", Qt::Key_Return, 1);
        row("down to zero", 1, "ddd", Qt::Key_Return, 0);
        row("not past the largest", 2147483647, "u", Qt::Key_Return, 2147483647);
    }
    void whatIsTypedIsTakenOrRefused() {
        QFETCH(int, before);
        QFETCH(QString, typed);
        QFETCH(int, end);
        QFETCH(int, after);
        QFETCH(bool, isToldWhy);
        setLimit(before, 99);
        QLineEdit* line = openLine("clicklabel_offset");
        QVERIFY(line != nullptr);
        QCOMPARE(line->text(), before == -1 ? QString() : QString::number(before));
        QVERIFY(line->minimumWidth() >= 200);
        QToolTip::hideText();
        QWindow* popup = line->window()->windowHandle();
        for (const QChar c : typed) {
            if (c == 'u')
                QTest::keyClick(popup, Qt::Key_Up);
            else if (c == 'd')
                QTest::keyClick(popup, Qt::Key_Down);
            else if (c == 'x')
                QTest::keyClick(popup, Qt::Key_Delete);
            else
                QTest::keyClick(popup, c.toLatin1());
        }
        bool isTold = QToolTip::isVisible();
        if (end == 0)
            QTest::mouseClick(popup, Qt::LeftButton, {}, QPoint(-20, -20));
        else
            QTest::keyPress(popup, Qt::Key(end));
        isTold = isTold || m_panel->findChild<QWidget*>("refusalLabel")->isVisible();
        QTRY_VERIFY(QApplication::activePopupWidget() == nullptr);
        QCOMPARE(limit()->offset, after);
        QCOMPARE(limit()->rowCount, 99);
        const QString shown = after == -1 ? "<offset (optional)>" : QString::number(after);
        QCOMPARE(label("clicklabel_offset")->text(), shown);
        QCOMPARE(isTold, isToldWhy);
    }

    void keysReachBothLabelsOpenThemAndCount() {
        m_panel->setFocus();
        QVERIFY(label("clicklabel_offset")->hasFocus());
        press(Qt::Key_Tab);
        QVERIFY(label("clicklabel_rowCount")->hasFocus());
        press(Qt::Key_Down);
        QCOMPARE(limit()->rowCount, -1);
        press(Qt::Key_Up);
        press(Qt::Key_Up);
        QCOMPARE(limit()->rowCount, 1);
        QCOMPARE(label("clicklabel_rowCount")->accessibleName(), QString("Row count: 1"));
        for (const Qt::Key key : {Qt::Key_Space, Qt::Key_Return}) {
            press(key);
            QWidget* popup = QApplication::activePopupWidget();
            QVERIFY(popup != nullptr);
            QTest::keyPress(popup->windowHandle(), Qt::Key_Escape);
            QTRY_VERIFY(label("clicklabel_rowCount")->hasFocus());
        }
        const QString text = QString::fromStdString((*m_engine)->buildQuery());
        QVERIFY2(text.simplified().endsWith("LIMIT 1"), qPrintable(text));
    }

    void foreignChangesShowAndPercentagesAreLeftAsTheyAre() {
        auto* percent = m_panel->findChild<QWidget*>("percentLabel");
        QVERIFY(!percent->isVisible());
        setLimit(3, 40, true);
        QVERIFY(percent->isVisible());
        QCOMPARE(label("clicklabel_rowCount")->text(), QString("40"));
        QLineEdit* line = openLine("clicklabel_rowCount");
        setLimit(4, 50, true);  // while the line is open
        for (const char digit : {'6', '0'})
            QTest::keyClick(line->window()->windowHandle(), digit);
        QTest::keyPress(line->window()->windowHandle(), Qt::Key_Return);
        QCOMPARE(limit()->offset, 4);
        QCOMPARE(limit()->rowCount, 60);
        QVERIFY(limit()->isPercent);
    }

    void aLineIsForTheStatementThatItWasOpenedFor_data() {
        QTest::addColumn<int>("what");
        int what = 0;
        for (const char* name : {"a layer is pushed", "another database", "the tab is left",
                                 "the engine goes", "the panel goes"})
            QTest::newRow(name) << what++;
    }
    void aLineIsForTheStatementThatItWasOpenedFor() {
        QFETCH(int, what);
        setLimit(1, 2);
        const QPointer<QLineEdit> line = openLine("clicklabel_offset");
        QTest::keyClick(line->window()->windowHandle(), '7');
        Test::Statement inner = Test::newStatement();
        if (what == 0) (*m_engine)->pushNewLayerTopLevelQueryComponent(inner.get(), "inner");
        if (what == 1) (*m_engine)->setDatabaseInfo(DatabaseTypeMongoDB, 1);
        if (what == 2) m_panel->panelBecomeInactive();
        if (what == 3) m_engine->destroy();
        if (what == 4) delete m_panel;
        if (QWidget* popup = QApplication::activePopupWidget()) {
            QCOMPARE(what, 3);  // nobody tells the panel
            QTest::keyPress(popup->windowHandle(), Qt::Key_Return);
        }
        QTRY_VERIFY(line.isNull());
        if (what == 0) {
            QCOMPARE(inner->limitExpr->offset, -1);
            QCOMPARE(label("clicklabel_offset")->text(), QString("<offset (optional)>"));
            (*m_engine)->popCurrentLayerTopLevelQueryComponent();
        }
        if (what == 0 || what == 2) QCOMPARE(limit()->offset, 1);
    }

private:
    QBLabel* label(const char* name) const { return m_panel->findChild<QBLabel*>(name); }

    const ELEMSQLLimitExpr* limit() const {
        return static_cast<Component::SQL::SQLSelectStmtComponent*>(
                   (*m_engine)->currentTopLevelQueryComponent())
            ->limitExpr;
    }

    void setLimit(int offset, int rowCount, bool isPercent = false) {
        (*m_engine)->modifyInTopLevelQueryComponentElement<ELEMSQLLimitExpr*>(
            ElementLimit, 0,
            [=](ELEMSQLLimitExpr* changed) {
                changed->offset = offset;
                changed->rowCount = rowCount;
                changed->isPercent = isPercent;
                return true;
            },
            nullptr);
    }

    void press(Qt::Key key) { QTest::keyClick(m_window->windowHandle(), key); }

    /// By a click through the window; null if nothing opens.
    QLineEdit* openLine(const char* name) {
        const QPoint place = label(name)->mapTo(m_window.get(), label(name)->rect().center());
        QTest::mouseClick(m_window->windowHandle(), Qt::LeftButton, {}, place);
        QWidget* popup = QApplication::activePopupWidget();
        return popup == nullptr ? nullptr : popup->findChild<QLineEdit*>();
    }

    std::unique_ptr<Test::HostCallbacks> m_host;
    std::unique_ptr<Test::OwnedEngine<>> m_engine;
    std::unique_ptr<QWidget> m_window;
    QBRowSelectionLimitPanelWidget* m_panel = nullptr;  // not owned: of the window
};

}  // namespace QB

QTEST_MAIN(QB::RowLimitTest)
#include "row_limit_test.moc"
