#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QSignalSpy>
#include <QtTest>

#include "model/vocabulary.h"
#include "platform/tolk/translation.h"
#include "popups/join_selection_popup_widget.h"
#include "widgets/label_palette.h"

namespace QB {
namespace {

constexpr int joinTypeRole = 257;

/// The choice shown in a window of its own, with the focus where a popup would give it.
struct Choice {
    explicit Choice(int type, const QString& customText = QString(), bool hasFullOuter = true,
                    bool hasComma = true, bool hasCustom = true)
        : widget(type, &customText, hasFullOuter, hasComma, hasCustom, nullptr) {
        widget.show();
        QApplication::setActiveWindow(&widget);
        widget.setFocus();
        isReady = QTest::qWaitForWindowExposed(&widget);
    }

    int current() const { return list->currentItem()->data(joinTypeRole).toInt(); }
    /// The choice as the owner reads it: "type text".
    QString selection() const {
        int type = -1;
        QString text = "untouched";
        widget.joinSelection(&type, &text);
        return QString("%1 %2").arg(type).arg(text);
    }
    void press(Qt::Key key) { QTest::keyClick(widget.windowHandle(), key); }
    void type(const QString& text) {
        for (const QChar c : text)
            QTest::keyClick(widget.windowHandle(), c.toLatin1());
    }
    /// At the picture of the row of @p type.
    void click(int type) {
        for (int row = 0; row < list->count(); ++row)
            if (list->item(row)->data(joinTypeRole) == type) {
                const QRect area = list->visualItemRect(list->item(row));
                const QPoint point(area.left() + 3, area.center().y());
                QTest::mouseClick(widget.windowHandle(), Qt::LeftButton, {},
                                  list->viewport()->mapTo(&widget, point));
            }
    }

    QBJoinSelectionPopupWidget widget;
    QListWidget* const list = widget.listWidget();
    QLineEdit* const line = widget.customTextEdit();
    bool isReady = false;
};

}  // namespace

class JoinSelectionTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void theKindsOfferedStandInOrderAndTheStartIsAmongThem() {
        struct Case {
            bool hasFullOuter, hasComma, hasCustom;
            int start, expectedStart;
            QList<int> expected;
        };
        const Case cases[] = {{true, true, true, 4, 4, {2, 3, 4, 5, 6, 1, 0}},
                              {false, true, true, 6, 2, {2, 3, 4, 5, 1, 0}},
                              {true, false, true, 1, 2, {2, 3, 4, 5, 6, 0}},
                              {true, true, false, 0, 2, {2, 3, 4, 5, 6, 1}},
                              {true, true, true, 99, 2, {2, 3, 4, 5, 6, 1, 0}}};
        for (const Case& each : cases) {
            const Choice choice(each.start, "x", each.hasFullOuter, each.hasComma, each.hasCustom);
            QList<int> types;
            for (int row = 0; row < choice.list->count(); ++row) {
                const QListWidgetItem* item = choice.list->item(row);
                types << item->data(joinTypeRole).toInt();
                QVERIFY(!item->text().isEmpty());  // for screen readers and type-ahead
            }
            QCOMPARE(types, each.expected);
            QCOMPARE(choice.current(), each.expectedStart);
            QVERIFY(choice.list->hasFocus());
            QCOMPARE(choice.selection(), QString("%1 untouched").arg(each.expectedStart));
        }
    }

    void arrowsGoThroughTheKindsAndTheLineOfTheCustomOne() {
        Choice choice(SQLJoinTypeFullOuter);
        QVERIFY(choice.isReady);
        int changes = 0;
        choice.widget.setCurrentChangedCallback([&] { ++changes; });
        const QSignalSpy chosen(&choice.widget, &QBJoinSelectionPopupWidget::chosen);
        choice.press(Qt::Key_Down);
        QVERIFY(choice.list->hasFocus() && choice.line->isEnabled());
        choice.press(Qt::Key_Down);
        QVERIFY(choice.line->hasFocus());
        choice.press(Qt::Key_Return);
        QVERIFY2(chosen.isEmpty(), "a custom kind needs a text");
        choice.type("NATURAL JOIN");
        QVERIFY(choice.widget.canBeAccepted() && !choice.widget.isSelectionValid());
        choice.press(Qt::Key_Return);
        QCOMPARE(chosen.count(), 1);
        QCOMPARE(choice.selection(), QString("0 NATURAL JOIN"));
        choice.press(Qt::Key_Up);
        QVERIFY(choice.list->hasFocus() && !choice.line->isEnabled());
        choice.press(Qt::Key_L);
        QCOMPARE(choice.selection(), QString("3 untouched"));
        choice.press(Qt::Key_Enter);
        QCOMPARE(chosen.count(), 2);
        QCOMPARE(changes, 4);
    }

    void typingInTheLineChoosesTheCustomKindAndAloneACommaIsOne() {
        Choice choice(SQLJoinTypeInner);
        choice.press(Qt::Key_Tab);
        QVERIFY(choice.line->hasFocus());
        QCOMPARE(choice.current(), int(SQLJoinTypeInner));
        choice.type(",");
        QCOMPARE(choice.current(), int(SQLJoinTypeCustom));
        QCOMPARE(choice.selection(), QString("1 untouched"));
        choice.type(" ");
        QCOMPARE(choice.selection(), QString("1 untouched"));
        choice.type("x");
        QCOMPARE(choice.selection(), QString("0 , x"));
    }

    void aClickChoosesAKindAndOnTheCustomOneBeginsToEdit() {
        Choice choice(SQLJoinTypeInner, QString());
        choice.widget.resize(500, 800);
        QTest::qWait(1);
        bool isAllowed = false;
        choice.widget.setAcceptCheck([&] { return isAllowed; });
        const QSignalSpy chosen(&choice.widget, &QBJoinSelectionPopupWidget::chosen);
        choice.click(SQLJoinTypeCross);
        QCOMPARE(choice.current(), int(SQLJoinTypeCross));
        QVERIFY2(chosen.isEmpty() && !choice.widget.isSelectionValid(), "the owner objects");
        isAllowed = true;
        choice.click(SQLJoinTypeCross);
        QCOMPARE(chosen.count(), 1);
        choice.click(SQLJoinTypeCustom);
        choice.type("x");
        choice.click(SQLJoinTypeRight);
        choice.click(SQLJoinTypeCustom);
        QVERIFY(choice.line->hasFocus());
        QCOMPARE(choice.selection(), QString("0 x"));
        QCOMPARE(chosen.count(), 2);
    }

    void noDescriptionIsCutInAnyLanguageOrFont() {
        const QFont usual = QApplication::font();
        for (const char* language : {"en", "de"})
            for (const int size : {9, 18}) {
                Tolk::setLanguage(QLocale(language));
                QFont font = usual;
                font.setPointSize(size);
                QApplication::setFont(font);
                const Choice choice(SQLJoinTypeInner);
                int descriptions = 0;
                const auto labels = choice.list->findChildren<QLabel*>();
                for (const QLabel* label : labels) {
                    if (!label->wordWrap()) continue;
                    ++descriptions;
                    QVERIFY2(label->heightForWidth(label->width()) <= label->height(),
                             qPrintable(label->text()));
                    const QPoint end =
                        label->mapTo(choice.list->viewport(), label->rect().topRight());
                    QVERIFY(end.x() < choice.list->viewport()->width());
                }
                QCOMPARE(descriptions, 6);
            }
        QApplication::setFont(usual);
        Tolk::setLanguage(QLocale::c());
    }
};

}  // namespace QB

QTEST_MAIN(QB::JoinSelectionTest)
#include "join_selection_test.moc"
