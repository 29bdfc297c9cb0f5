#include "frame/sql_text_view.h"

#include <QClipboard>
#include <QFontInfo>
#include <QGuiApplication>
#include <QScrollBar>
#include <QTextBlock>
#include <QTextLayout>
#include <QtTest>

#include "support/host_callbacks.h"

namespace QB {
namespace {

constexpr int manyLines = 20000;

std::string lineText(int number) {
    return "\tcolumn_" + std::to_string(number) + " AS 'text of the column', -- " +
           std::to_string(number) + "\n";
}

/// About a megabyte.
std::string bigText() {
    std::string text = "SELECT\n";
    for (int i = 0; i < manyLines; ++i)
        text += lineText(i);
    return text;
}

/// The text of the line's stretches that have a colour.
QStringList coloredParts(const QBSqlTextView& view, int line) {
    const QTextBlock block = view.document()->findBlockByNumber(line);
    QStringList parts;
    const auto formats = block.layout()->formats();
    for (const QTextLayout::FormatRange& range : formats)
        parts.append(block.text().mid(range.start, range.length));
    return parts;
}

}  // namespace

class SqlTextViewTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() {
        m_view = std::make_unique<QBSqlTextView>();
        m_view->setFamily(DatabaseTypePostgreSQL);
        m_view->resize(600, 400);
    }

    void aMegabyteIsColoredOnlyWhereItShows() {
        m_view->setSqlText(bigText());
        QCOMPARE(m_view->coloredLineCount(), 0);
        QVERIFY(m_view->scannedLineCount() <= manyLines + 3);
        m_view->show();
        QVERIFY(QTest::qWaitForWindowExposed(m_view.get()));
        QVERIFY(m_view->coloredLineCount() > 20);
        QVERIFY(m_view->coloredLineCount() < 200);
        const int before = m_view->coloredLineCount();
        m_view->verticalScrollBar()->setValue(manyLines / 2);
        QVERIFY(m_view->coloredLineCount() - before < 200);
        const QStringList expected = {"AS", "'text of the column'", "-- 10000"};
        QCOMPARE(coloredParts(*m_view, manyLines / 2 + 1), expected);
        QVERIFY(coloredParts(*m_view, manyLines / 4).isEmpty());
    }

    void aSmallEditCostsAFewLines() {
        std::string text = bigText();
        m_view->setSqlText(text);
        m_view->show();
        const int scanned = m_view->scannedLineCount();
        const int colored = m_view->coloredLineCount();
        text.replace(text.find("column_10000 "), 12, "renamed");
        m_view->setSqlText(text);
        QVERIFY(m_view->scannedLineCount() - scanned < 5);
        QVERIFY(m_view->coloredLineCount() - colored < 5);
        QCOMPARE(m_view->toPlainText().toStdString(), text);
    }

    void anOpenedCommentReachesTheLinesBelowAndAClosedOneLeavesThem() {
        m_view->show();
        m_view->setSqlText("select 1,\nselect 2\nselect 3");
        QCOMPARE(coloredParts(*m_view, 2), (QStringList{"select", "3"}));
        m_view->setSqlText("select /*1,\nselect 2\nselect 3");
        QCOMPARE(coloredParts(*m_view, 2), QStringList{"select 3"});
        m_view->setSqlText("select /*1,\nselect */2\nselect 3");
        QCOMPARE(coloredParts(*m_view, 1), (QStringList{"select */", "2"}));
        QCOMPARE(coloredParts(*m_view, 2), (QStringList{"select", "3"}));
        m_view->setFamily(DatabaseTypeMongoDB);
        QCOMPARE(coloredParts(*m_view, 2), QStringList{"3"});
    }

    /// Whatever the edits, the colours are those of a view that gets the last text at once.
    void randomEditsGiveTheSameColorsAsAFreshView() {
        QRandomGenerator random(11);
        const QStringList pieces = {"select ", "'", "/*", "*/", "\n", "$$", "\"", "--", "x ", "ä😀"};
        m_view->show();
        QString text;
        for (int run = 0; run < 300; ++run) {
            const int at = random.bounded(text.size() + 1);
            const int removed = random.bounded(qMin(12, text.size() - at) + 1);
            QString piece;
            for (int i = random.bounded(4); i > 0; --i)
                piece += pieces.at(random.bounded(pieces.size()));
            text.replace(at, removed, piece);
            text = QString::fromUtf8(text.toUtf8());  // an edit may have cut an emoji in two
            m_view->setSqlText(text.toStdString());
            QCOMPARE(m_view->toPlainText(), text);
            QBSqlTextView fresh;
            fresh.setFamily(DatabaseTypePostgreSQL);
            fresh.resize(600, 400);
            fresh.setSqlText(text.toStdString());
            fresh.show();
            for (int line = 0; line < qMin(fresh.blockCount(), 20); ++line)
                QCOMPARE(coloredParts(*m_view, line), coloredParts(fresh, line));
        }
    }

    void theKeyboardSelectsAndCopiesWithoutChangingBlanks() {
        const QString text = QString::fromUtf8("SELECT 'a\u00a0b',\n'ä'");
        m_view->setSqlText(text.toStdString());
        m_view->show();
        m_view->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(m_view.get()));
        m_view->setFocus();
        QTest::keyClick(m_view.get(), Qt::Key_X);
        QTest::keyClick(m_view.get(), Qt::Key_Home, Qt::ControlModifier);
        QTest::keyClick(m_view.get(), Qt::Key_End, Qt::ControlModifier | Qt::ShiftModifier);
        QTest::keyClick(m_view.get(), Qt::Key_C, Qt::ControlModifier);
        QCOMPARE(QGuiApplication::clipboard()->text(), text);
    }

private:
    Test::HostCallbacks m_host;
    std::unique_ptr<QBSqlTextView> m_view;
};

}  // namespace QB

QTEST_MAIN(QB::SqlTextViewTest)
#include "sql_text_view_test.moc"
