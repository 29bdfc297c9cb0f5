#include <QApplication>
#include <QTabWidget>

#include "apps/joinery-desk/sql_editor.h"
#include "apps/joinery-desk/sql_tab.h"
#include "desk/desk_fixture.h"
#include "model/callbacks.h"
#include "support/qt_animations.h"

using QB::Test::DeskFixture;

/// The tabs with the clauses in the real window.
class ClausesTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void cleanupTestCase() { QB::Test::outliveAnimations(); }

    void init() {
        m_desk = std::make_unique<DeskFixture>();
        QVERIFY(
            m_desk->start("CREATE TABLE city (id INTEGER PRIMARY KEY, name TEXT);"
                          "INSERT INTO city VALUES (1, 'Köln'), (2, 'Paris');"));
    }
    void cleanup() { m_desk.reset(); }

    void aTextThatIsAppliedFillsTheClausesInEveryLanguage() {
        apply(
            "SELECT c.name, COUNT(*) AS number FROM city c JOIN (SELECT id FROM city) s "
            "ON s.id = c.id WHERE c.id > 0 AND (c.id < 9 OR c.name = 'x') GROUP BY c.name "
            "HAVING COUNT(*) > 0 ORDER BY number, c.name DESC LIMIT 7");
        // Sources and joins take a row each, brackets two.
        const QMap<QString, int> rows = {{"SELECT", 2},   {"FROM", 3},   {"WHERE", 5},
                                         {"GROUP BY", 1}, {"HAVING", 1}, {"ORDER BY", 2}};
        for (auto clause = rows.begin(); clause != rows.end(); ++clause)
            QVERIFY2(list(clause.key())->model()->rowCount() == clause.value(),
                     qPrintable(clause.key()));
        QVERIFY(shows("LIMIT", "7"));
        QVERIFY(shows("ORDER BY", "Descending"));
        QTRY_COMPARE(marked(), QStringList());  // when the fields have come

        m_desk->window->setLanguage("de");
        QTRY_VERIFY(shows("ORDER BY", "Absteigend"));
        QVERIFY(shows("LIMIT", "Zeilenzahl:"));
        m_desk->window->setLanguage("en");
    }

    void anIncompleteQueryRunsOnlyWhenTheUserSaysSo() {
        auto* bar = m_desk->window->messageBar();
        auto* answer = bar->findChild<QPushButton*>("messageAnswer");
        apply("SELECT c.nothing FROM city c");
        QTRY_COMPARE(marked(), QStringList("SELECT"));
        m_desk->buildAndRun();
        QVERIFY(bar->isVisible() && bar->isAsking() && answer->hasFocus());
        QVERIFY(!QApplication::activeModalWidget());
        m_desk->press(Qt::Key_Escape);
        QVERIFY(!bar->isVisible() && !bar->isAsking());
        QCOMPARE(m_desk->grid()->messageBar()->text(), QString());

        m_desk->buildAndRun();
        m_desk->press(Qt::Key_Space);
        QVERIFY(!bar->isVisible());
        QTRY_VERIFY(m_desk->grid()->messageBar()->text().contains("no such column: c.nothing"));

        // The question is about a query: another one takes it away.
        m_desk->buildAndRun();
        QVERIFY(bar->isAsking());
        apply("SELECT name FROM city c");
        QTRY_COMPARE(marked(), QStringList());
        QVERIFY(!bar->isAsking());
        m_desk->buildAndRun();
        QVERIFY(!bar->isVisible());
        QTRY_COMPARE(m_desk->model()->rowCount(), 2);

        // So is an error that the library tells, in contrast to others.
        bar->show(QB::Desk::MessageBar::Kind::Error, "a file");
        apply("SELECT c.none FROM city c");
        QCOMPARE(bar->text(), QString("a file"));
        QB::Callback::showError("a name");
        QTRY_COMPARE(bar->text(), QString("a name"));
        apply("SELECT c.nothing FROM city c");
        QCOMPARE(bar->text(), QString());
    }

    void theClausesFitASmallWindow() {
        m_desk->window->resize(800, 600);
        QCOMPARE(m_desk->window->size(), QSize(800, 600));
        apply("SELECT name FROM city");
        tabs()->setCurrentIndex(1);
        QVERIFY(list("FROM")->viewport()->height() >= 3 * 23);
        QVERIFY(m_desk->tree()->width() >= 100);
    }

private:
    QTabWidget* tabs() const {
        return m_desk->window->builder()->findChild<QTabWidget*>("tabWidget");
    }
    /// Brings up a clause.
    QWidget* panel(const QString& clause) const {
        for (int i = 0; i < tabs()->count(); ++i)
            if (tabs()->tabText(i) == clause) tabs()->setCurrentIndex(i);
        return tabs()->currentWidget();
    }
    QTableView* list(const QString& clause) const {
        return panel(clause)->findChild<QTableView*>();
    }
    bool shows(const QString& clause, const QString& text) const {
        const auto labels = panel(clause)->findChildren<QLabel*>();
        return std::any_of(labels.begin(), labels.end(), [&](const QLabel* label) {
            return label->isVisible() && label->text() == text;
        });
    }
    /// Clauses with a warning at their tab.
    QStringList marked() const {
        QStringList clauses;
        for (int i = 0; i < tabs()->count(); ++i)
            if (!tabs()->tabIcon(i).isNull()) clauses.append(tabs()->tabText(i));
        return clauses;
    }
    void apply(const QString& text) const {
        auto* sql = m_desk->window->sqlTab();
        sql->editor()->selectAll();
        sql->editor()->insertPlainText(text);
        bool isApplied = false;
        sql->apply([&isApplied](bool applied) { isApplied = applied; });
        QTRY_VERIFY(isApplied);
    }

    std::unique_ptr<DeskFixture> m_desk;
};

QTEST_MAIN(ClausesTest)
#include "clauses_test.moc"
