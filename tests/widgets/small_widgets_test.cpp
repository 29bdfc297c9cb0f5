#include <QAbstractButton>
#include <QApplication>
#include <QLabel>
#include <QScrollArea>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTimer>
#include <QVBoxLayout>
#include <QtTest>
#include <memory>

#include "widgets/identifier_icons.h"
#include "widgets/label.h"
#include "widgets/loading_indicator_widget.h"
#include "widgets/mouse_over_border_button.h"
#include "widgets/navigation_bar.h"
#include "widgets/overlap_layout.h"

namespace QB {
namespace {

QTimer* loadingTimer() {
    const auto timers = QCoreApplication::instance()->findChildren<QTimer*>();
    return timers.isEmpty() ? nullptr : timers.first();
}

}  // namespace

class SmallWidgetsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void aLabelIsClickedOnlyWhenItIsClickable() {
        QBLabel label;
        label.setText("alias");
        label.resize(80, 20);
        const QSignalSpy clicks(&label, &QBLabel::clicked);
        QTest::mouseClick(&label, Qt::LeftButton);
        QTest::keyClick(&label, Qt::Key_Space);
        QCOMPARE(clicks.count(), 0);
        label.setClickable(true);
        QTest::mouseClick(&label, Qt::LeftButton);
        QTest::keyClick(&label, Qt::Key_Space);
        QTest::keyClick(&label, Qt::Key_Return);
        QCOMPARE(clicks.count(), 3);
        QTest::mouseClick(&label, Qt::RightButton);
        QTest::mousePress(&label, Qt::LeftButton);
        QTest::mouseRelease(&label, Qt::LeftButton, {}, QPoint(300, 300));
        QCOMPARE(clicks.count(), 3);
    }

    void aClickOnALayerTellsItsNumberAndMayReplaceTheNames() {
        QBNavigationBar bar;
        QVector<int> layers;
        connect(&bar, &QBNavigationBar::layerClicked, &bar, [&](int layer) {
            layers.append(layer);
            bar.setLayerNames({"a&b"});
        });
        bar.setLayerNames({"a&b", "sub", "sub sub"});
        const auto buttons = bar.findChildren<QAbstractButton*>();
        QCOMPARE(buttons.size(), 3);
        QCOMPARE(bar.findChildren<QLabel*>().size(), 2);
        QVERIFY(buttons[0]->styleSheet().isEmpty());
        QCOMPARE(buttons[2]->styleSheet(), QString("font-weight:bold"));
        QCOMPARE(buttons[0]->text(), QString("a&&b"));
        QTest::mouseClick(buttons[1], Qt::LeftButton);
        QCOMPARE(layers, QVector<int>{1});
        QCOMPARE(bar.findChildren<QAbstractButton*>().size(), 1);
        QCOMPARE(bar.findChildren<QLabel*>().size(), 0);
    }

    void aLongPathScrollsByWheelAndByDraggingAndShowsItsEnd() {
        QBNavigationBar bar;
        bar.resize(200, 40);
        QStringList names;
        for (int i = 0; i < 20; ++i)
            names.append(QString("a subquery with number %1").arg(i));
        bar.setLayerNames(names);
        bar.show();
        auto* area = bar.findChild<QScrollArea*>("scrollArea");
        QScrollBar* slider = area->horizontalScrollBar();
        QTRY_VERIFY(slider->maximum() > 1000);
        QTRY_COMPARE(slider->value(), slider->maximum());
        QVERIFY(bar.height() >= bar.findChild<QAbstractButton*>()->sizeHint().height());

        QWidget* over = area->viewport();
        sendWheel(over, 120);
        QVERIFY(slider->value() < slider->maximum());
        for (int i = 0; i < 200; ++i)
            sendWheel(over, 120);
        QCOMPARE(slider->value(), 0);
        sendWheel(over, 120);  // at its end the scroll bar passes the wheel on: no endless circle

        const QSignalSpy clicks(&bar, &QBNavigationBar::layerClicked);
        QLabel* arrow = bar.findChild<QLabel*>();
        QTest::mousePress(arrow, Qt::LeftButton, {}, QPoint(1, 1));
        drag(arrow, QPoint(-59, 1));
        QCOMPARE(slider->value(), 60);
        QTest::mouseRelease(arrow, Qt::LeftButton, {}, QPoint(-59, 1));
        drag(arrow, QPoint(-99, 1));
        QCOMPARE(slider->value(), 60);

        // Over a button the same; it moves along, and a trembling hand still clicks.
        auto* button = bar.findChildren<QAbstractButton*>()[1];
        const QPoint centre = button->rect().center();
        sendWheel(button, -120);
        const int wheeled = slider->value();
        QVERIFY(wheeled > 60);
        QTest::mousePress(button, Qt::LeftButton, {}, centre);
        drag(button, centre - QPoint(40, 0));
        drag(button, centre);  // the button has come along: 40 more
        QTest::mouseRelease(button, Qt::LeftButton, {}, centre);
        QCOMPARE(slider->value(), wheeled + 40);
        QCOMPARE(clicks.count(), 0);
        QTest::mousePress(button, Qt::LeftButton, {}, centre);
        drag(button, centre + QPoint(2, 0));
        QTest::mouseRelease(button, Qt::LeftButton, {}, centre);
        QCOMPARE(slider->value(), wheeled + 40);
        QCOMPARE(clicks.count(), 1);

        names.last() = QString("<b>R&D</b>\n").repeated(30);
        bar.setLayerNames(names);
        QTRY_COMPARE(slider->value(), slider->maximum());
        const auto* last = bar.findChildren<QAbstractButton*>().last();
        QVERIFY(last->width() < 600 && last->text().contains("R&&D</b> <b>"));
        QVERIFY(last->toolTip().contains("&lt;b&gt;R&amp;D"));
        QCOMPARE(last->accessibleName(), names.last());
    }

    void overlappingItemsTakeTheWholeRectangle() {
        QWidget host;
        auto* layout = new QBOverlapLayout(&host);
        QCOMPARE(layout->sizeHint(), QSize(-1, -1));
        auto* wide = new QLabel;
        auto* ring = new QBLoadingIndicatorWidget;
        wide->setPixmap(QPixmap(100, 10));
        layout->addWidget(wide);
        layout->addWidget(ring);
        QCOMPARE(layout->sizeHint(), QSize(64, 64));
        host.resize(300, 200);
        host.show();
        QCOMPARE(wide->geometry(), host.rect());
        QCOMPARE(ring->geometry(), host.rect());
        QCOMPARE(layout->itemAt(2), nullptr);
        QCOMPARE(layout->takeAt(-1), nullptr);
        const std::unique_ptr<QLayoutItem> taken(layout->takeAt(0));
        QCOMPARE(taken->widget(), wide);
        QCOMPARE(layout->count(), 1);
    }

    void theRingFollowsItsParentAndTurnsOnlyWhileItIsShown() {
        QWidget first;
        QWidget second;
        first.resize(200, 100);
        second.resize(50, 60);
        auto* ring = new QBLoadingIndicatorWidget(&first);
        auto* sibling = new QWidget(&first);
        ring->hide();
        first.show();
        QVERIFY(loadingTimer() == nullptr || !loadingTimer()->isActive());
        ring->show();
        QVERIFY(loadingTimer()->isActive());
        QCOMPARE(loadingTimer()->interval(), 33);
        QCOMPARE(first.children().last(), ring);
        QVERIFY(first.children().contains(sibling));
        first.resize(120, 80);
        QCOMPARE(ring->size(), QSize(120, 80));
        ring->setParent(&second);
        QVERIFY(!loadingTimer()->isActive());
        QCOMPARE(ring->size(), QSize(50, 60));
        first.resize(10, 10);
        QCOMPARE(ring->size(), QSize(50, 60));
        second.show();
        ring->show();
        delete ring;
        QVERIFY(!loadingTimer()->isActive());
    }

private:
    static void drag(QWidget* widget, QPoint to) {
        QMouseEvent event(QEvent::MouseMove, to, widget->mapToGlobal(to), Qt::NoButton,
                          Qt::LeftButton, Qt::NoModifier);
        QSpontaneKeyEvent::setSpontaneous(&event);
        qApp->notify(widget, &event);
    }

    /// Through the window, as the windowing system does.
    static void sendWheel(QWidget* over, int delta) {
        QWidget* window = over->window();
        const QPoint position = over->mapTo(window, QPoint(2, 2));
        QWheelEvent event(position, window->mapToGlobal(position), QPoint(), QPoint(0, delta),
                          Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
        QSpontaneKeyEvent::setSpontaneous(&event);  // others stay with the first widget
        qApp->notify(window->windowHandle(), &event);
    }
};

}  // namespace QB

QTEST_MAIN(QB::SmallWidgetsTest)
#include "small_widgets_test.moc"
