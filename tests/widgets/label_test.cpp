#include <QAccessible>
#include <QHelpEvent>
#include <QSignalSpy>
#include <QTableWidget>
#include <QToolTip>
#include <QtTest>

#include "support/host_callbacks.h"
#include "widgets/label.h"

namespace QB {
namespace {

constexpr LabelColour colours[] = {LabelColour::Value, LabelColour::Placeholder,
                                   LabelColour::Operator, LabelColour::Invalid};

/// A list whose first row is a label.
class LabelList : public QTableWidget {
public:
    LabelList() : QTableWidget(3, 1) {
        label->setText("a text");
        label->setClickable(true);
        setIndexWidget(model()->index(0, 0), label);
        setSelectionMode(QAbstractItemView::ExtendedSelection);
        resize(300, 200);
    }

    bool isIdle() const { return state() == NoState; }
    /// In the window.
    QPoint middle() const { return label->mapTo(window(), label->rect().center()); }

    QBLabel* const label = new QBLabel;
};

}  // namespace

class LabelTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void allColoursCanBeReadOnASelectedRow() {
        QCOMPARE(qRound(contrastRatio(Qt::white, Qt::black)), 21);
        QCOMPARE(qRound(contrastRatio(QColor("#767676"), Qt::white) * 100), 454);
        for (const bool isDark : {false, true}) {
            m_host.isDark = isDark;
            for (const char* highlight : {"#308cc6", "#2a82da", "#000000", "#ffffff", "#ff8000"}) {
                QPalette palette;
                palette.setColor(QPalette::Base, isDark ? QColor("#232323") : Qt::white);
                palette.setColor(QPalette::Highlight, QColor(highlight));
                const QColor row = selectedRowColour(palette);
                for (const LabelColour colour : colours) {
                    const QColor readable = readableColour(labelColour(colour), row);
                    const double contrast = contrastRatio(readable, row);
                    QVERIFY2(contrast >= 4.5, highlight);
                    const bool isNearest = contrast < 4.75;
                    QVERIFY2(isNearest || readable == labelColour(colour), highlight);
                }
            }
        }
        QVERIFY(labelColour(LabelColour::Value) == QColor("#efefef"));
        m_host.isDark = false;
        QVERIFY(labelColour(LabelColour::Value) == QColor("#424242"));
        QPalette palette;
        palette.setColor(QPalette::Base, Qt::white);
        palette.setColor(QPalette::Highlight, Qt::black);
        QCOMPARE(selectedRowColour(palette).name(), QString("#bfbfbf"));
        QVERIFY(readableColour(Qt::black, Qt::white) == QColor(Qt::black));
    }

    void markupAndLineBreaksAreTextAndLongTextsAreCut() {
        QBLabel label;
        label.setText("<b>a</b>\n<code>");
        QCOMPARE(label.text(), QString("<b>a</b> <code>"));
        QCOMPARE(label.textFormat(), Qt::PlainText);
        label.setToolTipText(label.fullText());
        QVERIFY(label.toolTip().contains("&lt;b&gt;a&lt;/b&gt;\n&lt;code&gt;"));

        const QString longText(100000, 'm');
        label.setText(longText);
        label.setToolTipText(longText);
        QCOMPARE(label.fullText(), longText);
        QCOMPARE(label.text().size(), 512);
        QVERIFY(label.toolTip().size() < 2200);
        QVERIFY(label.minimumSizeHint().width() <= 16);
    }

    void onlyATextThatElidesTellsItselfInATooltip() {
        QBLabel label;
        label.setText("a text & <more>");
        label.show();
        for (const int width : {20, 400}) {
            label.resize(width, 20);
            QHelpEvent event(QEvent::ToolTip, QPoint(2, 2), label.mapToGlobal(QPoint(2, 2)));
            QCoreApplication::sendEvent(&label, &event);
            QTRY_COMPARE(QToolTip::text().contains("a text &amp; &lt;more&gt;"), width == 20);
        }
    }

    void aClickOnALabelIsAlsoOneOnTheListAroundIt() {
        LabelList list;
        list.show();
        const QSignalSpy clicks(list.label, &QBLabel::clicked);
        QWindow* window = list.windowHandle();
        QTest::mousePress(window, Qt::LeftButton, {}, list.middle());
        QCOMPARE(clicks.count(), 0);
        QVERIFY(list.selectionModel()->isSelected(list.model()->index(0, 0)));
        QTest::mouseRelease(window, Qt::LeftButton, {}, list.middle());
        QCOMPARE(clicks.count(), 1);

        const QPoint below = list.middle() + QPoint(0, list.rowHeight(0));
        QTest::mousePress(window, Qt::LeftButton, {}, list.middle());
        for (int step = 0; step < 3; ++step)
            QTest::mouseMove(window, below + QPoint(step, 0));
        QVERIFY2(!list.isIdle(), "the moves go to the list, too");
        QTest::mouseRelease(window, Qt::LeftButton, {}, below);
        QVERIFY2(list.isIdle(), "the list would go on selecting with each move of the mouse");
        QTest::mousePress(window, Qt::LeftButton, {}, below);
        QTest::mouseRelease(window, Qt::LeftButton, {}, list.middle());
        QCOMPARE(clicks.count(), 1);
    }

    void aClickableLabelIsAButtonForScreenReaders() {
        QBLabel label;
        label.setText("<alias>");
        auto* interface = QAccessible::queryAccessibleInterface(&label);
        QCOMPARE(interface->role(), QAccessible::StaticText);
        label.setClickable(true);
        QCOMPARE(interface->role(), QAccessible::Button);
        QCOMPARE(interface->text(QAccessible::Name), QString("<alias>"));
        label.setAccessibleName("Remove");
        label.setToolTipText("No such table");
        QCOMPARE(interface->text(QAccessible::Name), QString("Remove"));
        QCOMPARE(interface->text(QAccessible::Description), QString("No such table"));
        const QSignalSpy clicks(&label, &QBLabel::clicked);
        QAccessibleActionInterface* actions = interface->actionInterface();
        QVERIFY(actions->actionNames().contains(QAccessibleActionInterface::pressAction()));
        actions->doAction(QAccessibleActionInterface::pressAction());
        QCOMPARE(clicks.count(), 1);
    }

private:
    Test::HostCallbacks m_host;
};

}  // namespace QB

QTEST_MAIN(QB::LabelTest)
#include "label_test.moc"
