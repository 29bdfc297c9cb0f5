#include "rows/nested_list_table_view.h"

#include <QAccessible>
#include <QDialog>
#include <QHBoxLayout>
#include <QMimeData>
#include <QPushButton>
#include <QScrollBar>
#include <QSignalSpy>
#include <QVBoxLayout>
#include <QtTest>
#include <memory>

#include "model/components.h"
#include "rows/nested_list_any_expression_row_widget.h"
#include "rows/nested_list_dummy_row_widget.h"
#include "support/row_drop.h"
#include "widgets/label.h"
#include "widgets/label_palette.h"

namespace QB::Test {
namespace {

using Row = QBNestedListAnyExpressionRowWidget;
using Column = Component::SQL::SQLAnyExpressionColumnComponent;
using Rows = std::vector<int>;

/// Rows over columns "c0", "c1" and so on, the level of each its number modulo 4; a prompt where
/// there is none.
class Columns : public IQBNestedListRowProvider {
public:
    void append(int count) {
        for (int i = 0; i < count; ++i) {
            auto column = std::make_unique<Column>();
            column->expression = "c" + std::to_string(m_made++);
            columns.push_back(std::move(column));
        }
    }
    const Column& at(int row) const { return *columns[static_cast<std::size_t>(row)]; }

    int rowCount() const override { return std::max(1, static_cast<int>(columns.size())); }
    QBRowKey rowKey(int row) const override {
        return columns.empty() ? QBRowKey{QBRowKey::Placeholder, -1}
                               : QBRowKey{QBRowKey::Component, at(row).id()};
    }
    int rowKind(int) const override { return columns.empty() ? 0 : 1; }
    QBNestedListRowWidget* createRowWidget(int, QWidget* parent) override {
        ++created;
        if (columns.empty()) return new QBNestedListDummyRowWidget(nullptr, parent);
        auto* row = new Row(nullptr, parent);
        QObject::connect(row, &Row::valueLabelClicked, [this, row] { valueClicked(row); });
        return row;
    }
    void updateRowWidget(QBNestedListRowWidget* widget, int row) override {
        if (columns.empty()) return;
        widget->setIndentLevel(row % 4);
        widget->setComponent(columns[static_cast<std::size_t>(row)].get());
    }

    std::vector<std::unique_ptr<Column>> columns;
    std::function<void(QBNestedListRowWidget*)> valueClicked = [](auto*) {
    };
    int created = 0;

private:
    int m_made = 0;
};

QString textOf(const QBNestedListRowWidget* widget) {
    const auto* row = qobject_cast<const Row*>(widget);
    return row == nullptr ? QStringLiteral("-") : row->valueLabel()->fullText();
}

}  // namespace

class NestedListViewTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() {
        columns = std::make_unique<Columns>();
        view = std::make_unique<QBNestedListTableView>();
        view->setRowProvider(columns.get());
    }
    void cleanup() {
        view.reset();
        columns.reset();
    }

    void widgets_exist_for_the_rows_that_show_and_elsewhere_on_demand() {
        show(1000);
        const int page = 200 / view->rowHeight(0) + 2;
        QVERIFY2(widgetCount() <= 2 * page, qPrintable(QString::number(widgetCount())));
        QCOMPARE(view->model()->rowCount(), 1000);
        // Far away, and as many as a test may ask for in one go.
        for (const int row : {0, 500, 999, 998, 5})
            QCOMPARE(textOf(view->rowWidget(row)), QStringLiteral("c%1").arg(row));
        QCOMPARE(view->rowOf(view->rowWidget(500)->findChild<QBLabel*>("aliasLabel")), 500);
        QCOMPARE(textOf(qobject_cast<Row*>(view->indexWidget(index(700)))), QStringLiteral("c700"));
        QCOMPARE(view->rowWidget(1000), nullptr);
        QCOMPARE(view->rowWidget(-1), nullptr);
        for (int row = 0; row < 1000; row += 7)
            view->scrollTo(index(row));
        QTest::qWait(1);
        QVERIFY2(widgetCount() <= 3 * page, qPrintable(QString::number(widgetCount())));
        QVERIFY(columns->created <= 3 * page);
        // What is on screen is what belongs there.
        for (int row = view->rowAt(0); row <= view->rowAt(view->viewport()->height() - 1); ++row) {
            const QRect seen = view->visualRect(index(row)) & view->viewport()->rect();
            QCOMPARE(view->rowOf(view->viewport()->childAt(seen.center())), row);
            QCOMPARE(textOf(view->rowWidget(row)), QStringLiteral("c%1").arg(row));
        }
    }

    void rows_lie_where_their_level_says_after_scroll_and_resize_in_both_directions() {
        show(100);
        const auto check = [this](int row) {
            const QRect cell = view->visualRect(index(row));
            QRect wanted = cell;
            if (view->isRightToLeft())
                wanted.setRight(cell.right() - 16 * (row % 4));
            else
                wanted.setLeft(cell.left() + 16 * (row % 4));
            QCOMPARE(view->rowWidget(row)->geometry(), wanted);
        };
        check(3);
        view->verticalScrollBar()->setValue(777);
        check(view->rowAt(50));
        view->resize(500, 260);
        check(view->rowAt(view->viewport()->height() - 1));
        view->setLayoutDirection(Qt::RightToLeft);
        check(view->rowAt(50));
        check(view->rowAt(50) + 1);
        // A row that lies deeper than the list is wide still shows something.
        view->resize(130, 260);
        QVERIFY(view->rowWidget(view->rowAt(50) | 3)->width() >= 100);
    }

    void a_refresh_keeps_current_row_selection_and_scroll_with_their_rows() {
        show(100);
        view->selectOnly(50);
        key(Qt::Key_Down, Qt::ShiftModifier);
        view->verticalScrollBar()->setValue(50 * view->rowHeight(0) - 10);
        QSignalSpy chosen(view.get(), &QBNestedListTableView::currentRowChosen);
        Column* const first = columns->columns[50].get();
        QWidget* const widget = view->rowWidget(50);

        std::rotate(columns->columns.begin(), columns->columns.end() - 3, columns->columns.end());
        view->refreshRows();
        QCOMPARE(view->currentRow(), 54);
        QCOMPARE(view->selectedRowNumbers(), (Rows{53, 54}));
        QCOMPARE(view->visualRect(index(53)).top(), 10);
        QCOMPARE(view->rowWidget(53)->component(), first);
        QCOMPARE(view->rowWidget(53), widget);

        columns->columns.erase(columns->columns.begin() + 54);
        view->refreshRows();
        QCOMPARE(view->currentRow(), -1);
        QCOMPARE(view->selectedRowNumbers(), Rows{53});
        QCOMPARE(chosen.count(), 0);

        view->refreshRows(98);
        QCOMPARE(view->currentRow(), 98);
        QCOMPARE(view->selectedRowNumbers(), Rows{98});
        QVERIFY(view->viewport()->rect().contains(view->visualRect(index(98))));
        columns->columns.clear();
        view->refreshRows();
        QCOMPARE(view->model()->rowCount(), 1);
        QVERIFY(qobject_cast<QBNestedListDummyRowWidget*>(view->rowWidget(0)) != nullptr);
    }

    void a_row_can_be_refreshed_and_removed_inside_its_own_signal() {
        show(30);
        QString clicked;
        columns->valueClicked = [&](QBNestedListRowWidget* widget) {
            clicked += textOf(widget);
            columns->columns.erase(columns->columns.begin() + view->rowOf(widget));
            view->refreshRows();
        };
        for (int i = 0; i < 3; ++i)
            QTest::mouseClick(window(), Qt::LeftButton, {}, place(0));
        QCOMPARE(clicked, QStringLiteral("c0c1c2"));
        columns->valueClicked = [&](QBNestedListRowWidget*) {
            columns->columns.clear();
            view->refreshRows();
        };
        QTest::mouseClick(window(), Qt::LeftButton, {}, place(2));
        QTest::qWait(1);
        QCOMPARE(view->model()->rowCount(), 1);
    }

    void a_pressed_row_is_not_given_to_another_component_before_the_release() {
        enum Change { Refreshed, Moved, Removed, Scrolled };
        for (const Change change : {Refreshed, Moved, Removed, Scrolled}) {
            init();
            show(100);
            QStringList clicked;
            columns->valueClicked = [&](QBNestedListRowWidget* widget) {
                if (view->rowOf(widget) >= 0) clicked << textOf(widget);
            };
            // The last row that shows, so that a widget which it leaves is wanted at its place
            // again.
            const int rows = 6;
            view->resize(300,
                         rows * view->rowHeight(0) + view->height() - view->viewport()->height());
            const int pressed = rows - 1;
            const QPoint mouse = place(pressed);
            QTest::mousePress(window(), Qt::LeftButton, {}, mouse);
            auto& all = columns->columns;
            if (change == Moved) std::rotate(all.begin(), all.begin() + 1, all.begin() + rows);
            if (change == Removed) all.erase(all.begin() + pressed);
            view->refreshRows();
            if (change == Scrolled) view->verticalScrollBar()->setValue(500);
            QTest::mouseRelease(window(), Qt::LeftButton, {}, mouse);
            QCOMPARE(clicked, change == Refreshed ? QStringList("c5") : QStringList());
        }
    }

    void keys_choose_rows_parts_and_actions_and_leave_a_dialog_alone() {
        QDialog dialog;
        auto* layout = new QVBoxLayout(&dialog);
        auto* ok = new QPushButton("OK");
        ok->setDefault(true);
        layout->addWidget(view.get());
        layout->addWidget(ok);
        QObject::connect(ok, &QPushButton::clicked, &dialog, &QDialog::accept);
        columns->append(50);
        view->refreshRows();
        dialog.show();
        view->setFocus();
        QVERIFY(QTest::qWaitForWindowActive(&dialog));
        QStringList log;
        columns->valueClicked = [&](QBNestedListRowWidget* row) {
            log << textOf(row);
        };
        using View = QBNestedListTableView;
        connect(view.get(), &View::addRequested, [&] { log << "add"; });
        connect(view.get(), &View::removeRequested, [&] { log << "remove"; });
        connect(view.get(), &View::moveUpRequested, [&] { log << "up"; });
        connect(view.get(), &View::moveDownRequested, [&] { log << "down"; });
        connect(view.get(), &View::menuRequested,
                [&](QPoint place) { log << QStringLiteral("menu%1").arg(view->rowAt(place.y())); });
        view->selectOnly(0);
        const struct {
            Qt::Key key;
            Qt::KeyboardModifiers modifiers;
            Rows selected;
            const char* done;
        } cases[] = {
            {Qt::Key_Down, Qt::NoModifier, {1}, ""},
            {Qt::Key_Down, Qt::ShiftModifier, {1, 2}, ""},
            {Qt::Key_Up, Qt::NoModifier, {1}, ""},
            {Qt::Key_Return, Qt::NoModifier, {1}, "c1"},
            {Qt::Key_Enter, Qt::KeypadModifier, {1}, "c1"},
            {Qt::Key_F2, Qt::NoModifier, {1}, "c1"},
            {Qt::Key_Space, Qt::NoModifier, {1}, "c1"},
            {Qt::Key_Return, Qt::ControlModifier, {1}, ""},
            {Qt::Key_Insert, Qt::NoModifier, {1}, "add"},
            {Qt::Key_Delete, Qt::NoModifier, {1}, "remove"},
            {Qt::Key_Up, Qt::ControlModifier, {1}, "up"},
            {Qt::Key_Down, Qt::ControlModifier, {1}, "down"},
            {Qt::Key_Menu, Qt::NoModifier, {1}, "menu1"},
            {Qt::Key_F10, Qt::ShiftModifier, {1}, "menu1"},
            {Qt::Key_End, Qt::NoModifier, {49}, ""},
            {Qt::Key_Menu, Qt::NoModifier, {49}, "menu49"},
            {Qt::Key_Home, Qt::NoModifier, {0}, ""},
            {Qt::Key_Return, Qt::NoModifier, {0}, "c0"},
        };
        for (const auto& step : cases) {
            log.clear();
            QTest::keyClick(dialog.windowHandle(), step.key, step.modifiers);
            const QString name = QKeySequence(int(step.key) | int(step.modifiers)).toString();
            QCOMPARE(name + log.join(','), name + QLatin1String(step.done));
            QVERIFY2(view->selectedRowNumbers() == step.selected, qPrintable(name));
        }
        QVERIFY(dialog.isVisible());
        QTest::keyClick(dialog.windowHandle(), Qt::Key_Tab);
        QVERIFY(ok->hasFocus());
        view->setParent(nullptr);
    }

    void the_mark_keeps_its_place_from_row_to_row_and_mirrors() {
        show(10);
        view->selectOnly(0);
        const QStringList parts = {"",           "expressionValueLabel", "aliasLabel",
                                   "addLabel",   "addBracketLabel",      "deleteLabel",
                                   "deleteLabel"};
        for (int i = 0; i < parts.size(); ++i) {
            QCOMPARE(markedText(), parts[i]);
            key(Qt::Key_Right);
        }
        for (int i = 0; i < 3; ++i)
            key(Qt::Key_Left);
        QCOMPARE(markedText(), QStringLiteral("aliasLabel"));
        QSignalSpy alias(view->rowWidget(1), SIGNAL(aliasLabelClicked()));
        key(Qt::Key_Down);
        QCOMPARE(markedText(), QStringLiteral("aliasLabel"));
        QVERIFY(view->rowWidget(0)->currentPart() == nullptr);
        key(Qt::Key_Return);
        QCOMPARE(alias.count(), 1);
        view->refreshRows();
        QCOMPARE(markedText(), QStringLiteral("aliasLabel"));
        view->setLayoutDirection(Qt::RightToLeft);
        key(Qt::Key_Right);
        QCOMPARE(markedText(), QStringLiteral("expressionValueLabel"));
        QVERIFY(view->rowWidget(1)->areControlsLit() && !view->rowWidget(2)->areControlsLit());
    }

    void a_drop_goes_where_the_line_shows() {
        show(5);
        view->setRowDragEnabled(true);
        QSignalSpy dropped(view.get(), &QBNestedListTableView::rowDropped);
        const int height = view->rowHeight(0);
        QWidget* line = nullptr;
        for (QObject* child : view->viewport()->children()) {
            auto* widget = qobject_cast<QWidget*>(child);
            if (widget != nullptr && qobject_cast<QBNestedListRowWidget*>(widget) == nullptr)
                line = widget;
        }
        const struct {
            int y;
            int target;
        } cases[] = {{0, 0},          {height - 3, 0},     {height - 2, 1},
                     {height + 3, 1}, {5 * height - 3, 4}, {5 * height - 2, -1},
                     {170, -1}};
        view->selectOnly(3);
        for (const auto& step : cases) {
            const QRect row = view->visualRect(index(step.target < 0 ? 4 : step.target));
            QVERIFY(dragRow(view.get(), QPointF(20, step.y), [&] {
                QVERIFY(line->isVisible());
                const int wanted = step.target < 0 ? row.bottom() : row.top();
                QVERIFY(std::abs(line->geometry().center().y() - wanted) <= 1);
            }));
            QCOMPARE(dropped.count(), 1);
            QCOMPARE(dropped.takeFirst().at(0).toInt(), step.target);
            QCOMPARE(view->selectedRowNumbers(), Rows{3});
            QVERIFY(line->isHidden());
        }
        // A drag that is given up leaves nothing behind, and what else is dragged by is not taken.
        QVERIFY(dragRow(
            view.get(), {20, 20}, [] {}, false));
        QVERIFY(line->isHidden());
        QMimeData text;
        text.setText("c1");
        QVERIFY(!dragRow(
            view.get(), {20, 20}, [] {}, true, &text));
        QCOMPARE(dropped.count(), 0);
    }

    void screen_readers_hear_the_rows() {
        columns->append(1);
        columns->at(0);
        columns->columns[0]->alias = "total";
        show(99);
        QAccessibleInterface* list = QAccessible::queryAccessibleInterface(view.get());
        QAccessibleInterface* far = list->tableInterface()->cellAt(80, 0);
        QVERIFY(far->text(QAccessible::Name).contains("c80"));
        const QString first = list->tableInterface()->cellAt(0, 0)->text(QAccessible::Name);
        QVERIFY2(first.contains("c0") && first.contains("total"), qPrintable(first));
        // The number by which the list tells of a row.
        QCOMPARE(list->child(2 * 81 + 1)->text(QAccessible::Name), far->text(QAccessible::Name));
        static QList<QPair<QAccessible::Role, QString>> heard;
        heard.clear();
        const auto earlier = QAccessible::installUpdateHandler([](QAccessibleEvent* event) {
            QAccessibleInterface* of = event->accessibleInterface();
            if (event->type() == QAccessible::Focus && of != nullptr)
                heard << qMakePair(of->role(), of->text(QAccessible::Name));
        });
        view->selectOnly(0);
        key(Qt::Key_Right);
        key(Qt::Key_Left);
        QAccessible::installUpdateHandler(earlier);
        if (!QAccessible::isActive())
            return qInfo("not heard: this platform has no screen readers");
        QCOMPARE(heard.size(), 3);
        QCOMPARE(heard[0], qMakePair(QAccessible::Cell, first));
        QCOMPARE(heard[1].first, QAccessible::PushButton);
        QCOMPARE(heard[2], heard[0]);
    }

private:
    /// @p count rows in a window of 300 by @p height, shown.
    void show(int count, int height = 200) {
        columns->append(count);
        view->resize(300, height);
        view->refreshRows();
        view->show();
        view->setFocus();
        QVERIFY(QTest::qWaitForWindowActive(view.get()));
    }
    /// In the window.
    QPoint place(int row, const char* label = "expressionValueLabel") const {
        auto* part = view->rowWidget(row)->findChild<QBLabel*>(label);
        return part->mapTo(view.get(), part->rect().center());
    }
    QModelIndex index(int row) const { return view->model()->index(row, 0); }
    QWindow* window() const { return view->windowHandle(); }
    void key(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) const {
        QTest::keyClick(window(), key, modifiers);
    }
    QString markedText() const {
        const QBNestedListRowWidget* row = view->rowWidget(view->currentRow());
        return row->currentPart() == nullptr ? QString() : row->currentPart()->objectName();
    }
    int widgetCount() const {
        return view->viewport()->findChildren<QBNestedListRowWidget*>().size();
    }

    std::unique_ptr<Columns> columns;
    std::unique_ptr<QBNestedListTableView> view;
};

}  // namespace QB::Test

QTEST_MAIN(QB::Test::NestedListViewTest)
#include "list_view_test.moc"
