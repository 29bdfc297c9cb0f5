#include <QApplication>
#include <QComboBox>
#include <QDialog>
#include <QDialogButtonBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScreen>
#include <QShortcut>
#include <QSignalSpy>
#include <QStackedWidget>
#include <QToolButton>
#include <QVBoxLayout>
#include <QtTest>
#include <memory>

#include "popups/input_dialog.h"
#include "popups/input_popup.h"
#include "popups/multiple_edit_popup_widget.h"
#include "popups/panel_popup.h"

namespace QB {
namespace {

/// What a panel is to its popup: a list that has the focus, an anchor, and a base that is left when
/// the parts of the panel are destroyed.
class PanelBase : public QWidget {
public:
    using QWidget::QWidget;
    ~PanelBase() override { qApp->removeEventFilter(this); }
    static inline int focusEventsOfTheDying = 0;

protected:
    bool eventFilter(QObject*, QEvent* event) override {
        if (isDying && event->type() == QEvent::FocusIn) ++focusEventsOfTheDying;
        return false;
    }
    bool isDying = false;
};

class Panel : public PanelBase {
public:
    explicit Panel(QWidget* parent = nullptr)
        : PanelBase(parent), list(new QListWidget(this)), anchor(new QLabel("alias", this)) {
        auto* layout = new QVBoxLayout(this);
        layout->addWidget(anchor);
        layout->addWidget(list);
        setFocusProxy(list);
    }
    ~Panel() override {
        isDying = true;
        qApp->installEventFilter(this);
    }

    QListWidget* const list;  // owned by the panel
    QLabel* const anchor;     // owned by the panel
    QBPanelPopup popup{this};
};

/// A host's window with a panel in its middle, shown and active, with the focus in the list.
struct Host {
    Host() {
        window.setGeometry(100, 100, 500, 400);
        panel = new Panel(&window);
        panel->setGeometry(100, 100, 300, 250);
        window.show();
        QApplication::setActiveWindow(&window);
        panel->list->setFocus();
        isReady = QTest::qWaitForWindowExposed(&window);
    }

    QWindow* handle() const { return window.windowHandle(); }
    void press(Qt::Key key, Qt::KeyboardModifiers modifiers = {}) const {
        QTest::keyPress(handle(), key, modifiers);
    }
    /// At the corner of the window, which no popup reaches.
    void clickOutside() const { QTest::mousePress(handle(), Qt::LeftButton, {}, QPoint(3, 3)); }

    QWidget window;
    QPointer<Panel> panel;
    bool isReady = false;
};

/// A content of a fixed size, 200 by 100 with the frame of the popup.
QWidget* fixedContent() {
    auto* content = new QWidget;
    content->setFixedSize(198, 98);
    return content;
}

}  // namespace

class InputPopupTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void theSecondPressOfADoubleClickReachesNothingBelowThePopup() {
        Host host;
        QVERIFY(host.isReady);
        auto* const button = new QPushButton("choose");
        QBInputPopup* const popup = host.panel->popup.open(button, host.panel->anchor, {});
        connect(button, &QPushButton::clicked, popup, [=] { popup->closePopup(true); });
        const QPoint place = button->mapToGlobal(button->rect().center());
        QPushButton below("below", &host.window);
        below.setGeometry(QRect(host.window.mapFromGlobal(place) - QPoint(20, 10), QSize(40, 20)));
        below.show();
        int clicks = 0;
        connect(&below, &QPushButton::clicked, this, [&] { ++clicks; });
        const auto clickAt = [&](QWindow* window, const QPoint& point) {
            QTest::mouseClick(window, Qt::LeftButton, {}, window->mapFromGlobal(point));
        };

        clickAt(popup->windowHandle(), place);
        QVERIFY(!host.panel->popup.isOpen());
        clickAt(host.handle(), place);
        QCOMPARE(clicks, 0);
        clickAt(host.handle(), place);
        QCOMPARE(clicks, 1);
    }

    void aPopupAnswersOnceAndGivesTheFocusBackWhicheverWayItEnds() {
        const std::pair<const char*, bool> cases[] = {{"Return", true},
                                                      {"Esc", false},
                                                      {"a click outside", true},
                                                      {"accept", true},
                                                      {"cancel", false},
                                                      {"two answers", false},
                                                      {"a window of the host", true}};
        for (const auto& [name, isAccepted] : cases) {
            const QString way = name;
            Host host;
            QVERIFY(host.isReady);
            QStringList answers;
            QLineEdit* line =
                host.panel->popup.openLine("old", host.panel->anchor, [&](const QString& text) {
                    QVERIFY2(!host.panel->popup.isOpen(), qPrintable(way));
                    answers << text;
                });
            const QPointer<QBInputPopup> popup = qobject_cast<QBInputPopup*>(line->window());
            QSignalSpy done(popup, &QBInputPopup::done);
            connect(popup, &QBInputPopup::done, this, [&] {
                QVERIFY2(!popup->isVisible() && host.panel->list->hasFocus(), qPrintable(way));
            });
            QVERIFY2(line->hasFocus() && host.panel->popup.isOpen(), qPrintable(way));
            for (const char key : {'n', 'e', 'w'})
                QTest::keyClick(host.handle(), key);
            if (way == "Return") host.press(Qt::Key_Return);
            if (way == "Esc") host.press(Qt::Key_Escape);
            if (way == "a click outside") host.clickOutside();
            if (way == "accept") host.panel->popup.accept();
            if (way == "cancel") host.panel->popup.cancel();
            if (way == "two answers") {
                popup->closePopup(false);
                popup->closePopup(true);
                popup->close();
            }
            if (way == "a window of the host") QDialog().show();
            QVERIFY2(!host.panel->popup.isOpen(), qPrintable(way));
            QTRY_VERIFY2(!popup, qPrintable(way));
            QCOMPARE(done.count(), 1);
            QCOMPARE(done[0][0].toBool(), isAccepted);
            QCOMPARE(answers, isAccepted ? QStringList("new") : QStringList());
        }
    }

    void aHiddenPanelCancelsItsPopup() {
        Host host;
        host.panel->popup.openLine("", host.panel->anchor,
                                   [](const QString&) { QFAIL("accepted"); });
        host.panel->hide();
        host.panel->show();
        QTest::qWait(1);
        QVERIFY2(host.panel->popup.isOpen(), "hidden for a moment only");
        host.window.hide();
        QTRY_VERIFY(!host.panel->popup.isOpen());
    }

    void theAnswerMayShowAWindowAndOpenAnotherPopup() {
        Host host;
        QWidget message;
        bool isAnswered = false;
        host.panel->popup.openText("wrong", host.panel->anchor, [&](const QString& text) {
            message.show();  // would never return while a popup is open
            host.panel->popup.openText(text, host.panel->anchor, [&](const QString& again) {
                isAnswered = again == "wrong";
            });
        });
        host.press(Qt::Key_Return);
        QVERIFY2(host.panel->popup.isOpen(), "in a text Return breaks the line");
        host.press(Qt::Key_Z, Qt::ControlModifier);
        host.press(Qt::Key_Return, Qt::ControlModifier);
        QVERIFY(message.isVisible() && host.panel->popup.isOpen());
        QTest::qWait(1);  // the first popup is destroyed
        host.press(Qt::Key_Enter, Qt::ControlModifier | Qt::KeypadModifier);
        QVERIFY(isAnswered && !host.panel->popup.isOpen());
    }

    void escapeClosesTheInnermost() {
        Host host;
        auto* inner = new Panel;
        auto* combo = new QComboBox(inner);
        combo->addItems({"a", "b"});
        QBInputPopup* outerPopup = host.panel->popup.open(inner, host.panel->anchor, {});
        QLineEdit* line = inner->popup.openLine("", inner->anchor, {});
        QVERIFY(line && line->hasFocus());
        host.press(Qt::Key_Escape);
        QVERIFY(!inner->popup.isOpen() && outerPopup->isVisible() && inner->list->hasFocus());

        combo->showPopup();
        QVERIFY(combo->view()->isVisible());
        host.press(Qt::Key_Escape);
        QTRY_VERIFY(!combo->view()->isVisible());
        QVERIFY(outerPopup->isVisible());

        inner->popup.openLine("", inner->anchor, [](const QString&) {});
        host.clickOutside();
        QVERIFY(!inner->popup.isOpen() && outerPopup->isVisible());
        host.press(Qt::Key_Escape);
        QVERIFY(!host.panel->popup.isOpen());
    }

    /// Where the panel goes with the popup open there is no answer, and nothing of the panel's
    /// parts is asked to do anything once the panel's own destructor has begun.
    void aPopupGoesWithItsPanel() {
        // "later": in the loop of the first paint.
        for (const QString death : {"at once", "later", "hidden"}) {
            Host host;
            PanelBase::focusEventsOfTheDying = 0;
            QLineEdit* line = host.panel->popup.openLine("", host.panel->anchor,
                                                         [](const QString&) { QFAIL("accepted"); });
            const QPointer<QWidget> popup = line->window();
            QSignalSpy done(line->window(), SIGNAL(done(bool)));
            if (death == "later") {
                QMetaObject::invokeMethod(
                    &host.window, [&host] { delete host.panel; }, Qt::QueuedConnection);
                QTest::qWait(1);
            }
            if (death == "hidden") host.panel->hide();
            delete host.panel;
            QVERIFY(!host.panel && !popup);
            QTest::qWait(1);
            QCOMPARE(done.count(), 0);
            QCOMPARE(PanelBase::focusEventsOfTheDying, 0);
        }
    }

    void theAnswerMayDestroyThePanelWhileAWidgetOfThePopupHandlesItsKey() {
        Host host;
        QPointer<QWidget> popup;
        bool outlives = false;
        QLineEdit* line = host.panel->popup.openLine("", host.panel->anchor, [&](const QString&) {
            delete host.panel;
            outlives = popup && !popup->isVisible();
        });
        popup = line->window();
        host.press(Qt::Key_Return);
        QVERIFY(!host.panel && outlives);
        QTRY_VERIFY(!popup);
    }

    void aPopupWithoutItsAnchorStaysAndAnswers() {
        Host host;
        host.panel->anchor->setFocus();
        int answers = 0;
        QWidget* content = fixedContent();
        QBInputPopup* popup =
            host.panel->popup.open(content, host.panel->anchor, [&] { ++answers; });
        const QRect before = popup->geometry();
        delete host.panel->anchor;
        content->setFixedHeight(150);
        QTRY_COMPARE(popup->geometry(), before.adjusted(0, 0, 0, 52));
        host.clickOutside();
        QCOMPARE(answers, 1);
        QVERIFY2(host.panel->list->hasFocus(), "the panel stands in for what had the focus");
    }

    void aPopupStandsUnderOrAboveItsAnchorInsideTheScreen() {
        const QRect room = QGuiApplication::primaryScreen()->availableGeometry();
        const int right = room.right() - 199;
        const int bottom = room.bottom() + 1;
        const QPoint none(-1, -1);
        const struct {
            const char* what;
            QRect anchor;
            bool isMirrored;
            QPoint pivot, expected;
        } cases[] = {
            {"middle", {300, 300, 50, 20}, false, none, {300, 320}},
            {"right to left", {300, 300, 50, 20}, true, none, {150, 320}},
            {"left edge", {-30, 300, 50, 20}, false, none, {0, 320}},
            {"right edge", {room.right() - 60, 300, 50, 20}, false, none, {right, 320}},
            {"top edge", {300, 0, 50, 20}, false, none, {300, 20}},
            {"just fits", {300, bottom - 120, 50, 20}, false, none, {300, bottom - 100}},
            {"bottom", {300, bottom - 119, 50, 20}, false, none, {300, bottom - 220}},
            {"corner", {right + 139, bottom - 30, 50, 20}, false, none, {right, bottom - 131}},
            {"at a point", {300, 300, 50, 20}, false, {5, 7}, {305, 307}},
            {"at a point, right to left", {300, 300, 50, 20}, true, {45, 7}, {145, 307}},
            {"as high as the screen", {300, 1, 50, room.height() - 2}, false, none, {300, 0}},
        };
        for (const auto& each : cases) {
            QWidget window(nullptr, Qt::FramelessWindowHint);
            window.setLayoutDirection(each.isMirrored ? Qt::RightToLeft : Qt::LeftToRight);
            window.setGeometry(each.anchor);
            window.show();
            QVERIFY(QTest::qWaitForWindowExposed(&window));
            auto* popup = new QBInputPopup(&window);
            popup->setContent(fixedContent(), false);
            popup->popup(&window, each.pivot == none ? nullptr : &each.pivot);
            QVERIFY2(popup->geometry() == QRect(each.expected, QSize(200, 100)), each.what);
            popup->close();
        }
    }

    void noKeyOfAPopupReachesTheHost() {
        QDialog dialog;
        auto* layout = new QVBoxLayout(&dialog);
        auto* panel = new Panel;
        layout->addWidget(panel);
        auto* ok = new QPushButton("OK");
        ok->setDefault(true);
        layout->addWidget(ok);
        connect(ok, &QPushButton::clicked, &dialog, &QDialog::accept);
        QShortcut run(QKeySequence(Qt::CTRL + Qt::Key_Return), &dialog);
        QShortcut stop(QKeySequence(Qt::Key_Escape), &dialog);
        run.setContext(Qt::ApplicationShortcut);
        stop.setContext(Qt::ApplicationShortcut);
        const QSignalSpy runs(&run, &QShortcut::activated);
        const QSignalSpy stops(&stop, &QShortcut::activated);
        dialog.show();
        QVERIFY(QTest::qWaitForWindowExposed(&dialog));
        const auto press = [&](Qt::Key key, Qt::KeyboardModifiers modifiers = {}) {
            QTest::keyPress(dialog.windowHandle(), key, modifiers);
        };
        int answers = 0;
        const auto count = [&](const QString&) {
            ++answers;
        };
        panel->popup.openLine("", panel->anchor, count);
        press(Qt::Key_Return);
        panel->popup.openText("", panel->anchor, count);
        press(Qt::Key_Return, Qt::ControlModifier);
        QCOMPARE(answers, 2);
        panel->popup.openLine("", panel->anchor, count);
        press(Qt::Key_Escape);

        auto* content = new QWidget;
        auto* button = new QPushButton("no default", content);
        content->setFocusProxy(new QLineEdit(content));
        QSignalSpy clicks(button, &QPushButton::clicked);
        QBInputPopup* popup = panel->popup.open(content, panel->anchor, {});
        press(Qt::Key_Return);
        QVERIFY(popup->isVisible() && clicks.isEmpty() && !button->autoDefault());
        QVERIFY(dialog.isVisible() && runs.isEmpty() && stops.isEmpty());
    }

    void aDialogFinishesOnceWithItsCode() {
        const auto click = [](QDialog* dialog, QDialogButtonBox::StandardButton which) {
            const QPushButton* button = dialog->findChild<QDialogButtonBox*>()->button(which);
            QTest::mouseClick(dialog->windowHandle(), Qt::LeftButton, {},
                              button->mapTo(dialog, button->rect().center()));
        };
        for (const QString way : {"Return", "Ok", "Esc", "Cancel", "close"}) {
            const QPointer<QBInputDialog> dialog = new QBInputDialog;
            auto* content = new QWidget;
            content->setFocusProxy(new QLineEdit(content));
            new QPushButton("not the default", content);
            dialog->setContent(content);
            const QSignalSpy finished(dialog, &QDialog::finished);
            dialog->show();
            QVERIFY(dialog->isModal() && QTest::qWaitForWindowExposed(dialog));
            if (way == "Return") QTest::keyPress(dialog->windowHandle(), Qt::Key_Return);
            if (way == "Esc") QTest::keyPress(dialog->windowHandle(), Qt::Key_Escape);
            if (way == "Ok") click(dialog, QDialogButtonBox::Ok);
            if (way == "Cancel") click(dialog, QDialogButtonBox::Cancel);
            if (way == "close") dialog->close();
            QCOMPARE(finished.count(), 1);
            const bool isAccepted = way == "Return" || way == "Ok";
            QCOMPARE(finished[0][0].toInt(), isAccepted ? QDialog::Accepted : QDialog::Rejected);
            QTRY_VERIFY(!dialog);
        }
    }

    void rowsAndPagesOfAMultipleEditCorrespond() {
        QBMultipleEditPopupWidget widget;
        QStringList log;
        int made = 0;
        const auto shown = [&] {
            QWidget* page = widget.pagesWidget()->currentWidget();
            return page ? page->objectName() : QString("none");
        };
        connect(&widget, &QBMultipleEditPopupWidget::signalMultipleEditRowWidgetAddItem, &widget,
                [&](QBMultipleEditPopupWidget* sender) {
                    auto* page = new QWidget;
                    page->setObjectName(QString::number(made));
                    sender->addItem(new QLabel(QString("row %1").arg(made++)), page);
                });
        widget.setCurrentRowChangedCallback(
            [&](int row) { log << QString("row %1 page %2").arg(row).arg(shown()); });
        widget.setItemRemovedCallback([&](int row) {
            log << QString("removed %1 of %2").arg(row).arg(widget.listWidget()->count() + 1);
        });
        widget.show();
        QVERIFY(QTest::qWaitForWindowExposed(&widget));
        const auto click = [&](const char* name) {
            const auto* button = widget.findChild<QToolButton*>(name);
            QTest::mouseClick(widget.windowHandle(), Qt::LeftButton, {},
                              button->mapTo(&widget, button->rect().center()));
        };
        click("addItemButton");
        click("removeItemButton");
        QCOMPARE(widget.listWidget()->count(), 1);
        click("addItemButton");
        click("addItemButton");
        widget.listWidget()->setCurrentRow(1);
        click("removeItemButton");
        click("removeItemButton");
        click("removeItemButton");
        QCOMPARE(log.join("; "),
                 QString("row 0 page 0; row 1 page 1; row 2 page 2; row 1 page 1; row 1 page 2; "
                         "removed 1 of 3; row 0 page 0; removed 1 of 2"));
        QCOMPARE(widget.pagesWidget()->count(), 1);
    }
};

}  // namespace QB

QTEST_MAIN(QB::InputPopupTest)
#include "input_popup_test.moc"
