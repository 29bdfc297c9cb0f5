// Rows on demand against what they replace: a refresh against a widget for each row, made of six
// labels with style sheets, and going through 1,000 rows page by page against a view whose delegate
// paints the same texts and images. The counter "ratio" of a last line sets them against each
// other, of one run: at most 0.1 and 0.01 for a refresh, 1.5 for a page.
//
// Rooms: rows

#include <benchmark/benchmark.h>

#include <QApplication>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QPainter>
#include <QScrollBar>
#include <QStandardItemModel>
#include <QStyledItemDelegate>
#include <map>
#include <memory>
#include <vector>

#include "model/components.h"
#include "rows/nested_list_any_expression_row_widget.h"
#include "rows/nested_list_table_view.h"
#include "rows/row_texts.h"
#include "widgets/drawn_icons.h"

namespace QB {
namespace {

using namespace Component::SQL;
using Row = QBNestedListAnyExpressionRowWidget;

/// An application without a screen, made for the first benchmark that needs it.
void needApplication() {
    static int count = 1;
    static char name[] = "row_list_bench";
    static char* arguments[] = {name, nullptr};
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    static QApplication application(count, arguments);
}

/// What was measured, in milliseconds, by name.
std::map<std::string, double>& measured() {
    static std::map<std::string, double> times;
    return times;
}

class Columns : public IQBNestedListRowProvider {
public:
    explicit Columns(int count) {
        for (int i = 0; i < count; ++i) {
            all.push_back(std::make_unique<SQLAnyExpressionColumnComponent>());
            all.back()->expression = "coalesce(amount_" + std::to_string(i) + ", 0) * 100";
            if (i % 3 == 0) all.back()->alias = "total_" + std::to_string(i);
        }
    }
    SQLAnyExpressionColumnComponent* at(int row) const {
        return all[static_cast<std::size_t>(row)].get();
    }

    int rowCount() const override { return static_cast<int>(all.size()); }
    QBRowKey rowKey(int row) const override { return {QBRowKey::Component, at(row)->id()}; }
    int rowKind(int) const override { return 1; }
    QBNestedListRowWidget* createRowWidget(int, QWidget* parent) override {
        return new Row(nullptr, parent);
    }
    void updateRowWidget(QBNestedListRowWidget* widget, int row) override {
        widget->setIndentLevel(row % 4);
        widget->setComponent(at(row));
    }

    std::vector<std::unique_ptr<SQLAnyExpressionColumnComponent>> all;
};

void show(QTableView& view) {
    view.resize(600, 600);
    view.show();
    QApplication::processEvents();
}

class OnDemand {
public:
    explicit OnDemand(int count) : columns(count), m_others(count) {
        view.setRowProvider(&columns);
        view.refreshRows();
        show(view);
    }
    ~OnDemand() { view.setRowProvider(nullptr); }
    /// As after a parse: all rows are others.
    void refresh() {
        columns.all.swap(m_others.all);
        view.refreshRows();
        QApplication::processEvents();
    }

    Columns columns;
    QBNestedListTableView view;

private:
    Columns m_others;
};

/// A view with one stretched column and no model rows.
class PlainView : public QTableView {
public:
    PlainView() {
        setModel(&rows);
        horizontalHeader()->hide();
        horizontalHeader()->setSectionResizeMode(QHeaderView::Stretch);
        verticalHeader()->hide();
        verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
        verticalHeader()->setDefaultSectionSize(fontMetrics().height() + 6);
        setShowGrid(false);
        setFrameShape(NoFrame);
        setVerticalScrollMode(ScrollPerPixel);
    }
    QStandardItemModel rows{0, 1};
};

/// A row as it would be with a label for each text, coloured by a style sheet.
QWidget* newLabelRow(const SQLAnyExpressionColumnComponent& column) {
    auto* row = new QWidget;
    auto* layout = new QHBoxLayout(row);
    layout->setContentsMargins(6, 0, 6, 0);
    const QString texts[] = {
        QStringLiteral("Expression:"), QString::fromStdString(column.expression),
        aliasText(column.alias).text,  QStringLiteral("+"),
        QStringLiteral("(+)"),         QStringLiteral("x")};
    for (const QString& text : texts) {
        auto* label = new QLabel(text);
        label->setStyleSheet(QStringLiteral("color: #097bf7"));
        layout->addWidget(label);
    }
    return row;
}

class WidgetForEachRow {
public:
    explicit WidgetForEachRow(int count) : columns(count) { show(view); }
    void refresh() {
        view.rows.setRowCount(0);
        view.rows.setRowCount(columns.rowCount());
        for (int row = 0; row < columns.rowCount(); ++row)
            view.setIndexWidget(view.rows.index(row, 0), newLabelRow(*columns.at(row)));
        QApplication::processEvents();
    }

    Columns columns;
    PlainView view;
};

/// Paints the texts and images of the rows with no widget.
class RowDelegate : public QStyledItemDelegate {
public:
    explicit RowDelegate(const Columns& columns, const QPalette& palette) : m_columns(columns) {
        for (const DrawnSign sign : {DrawnSign::Plus, DrawnSign::BracketedPlus, DrawnSign::Cross})
            m_images.push_back(imageOrSign(QString(), sign, palette));
    }

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override {
        QStyledItemDelegate::paint(painter, option, index);
        const SQLAnyExpressionColumnComponent& column = *m_columns.at(index.row());
        QRect rest = option.rect.adjusted(6 + 16 * (index.row() % 4), 0, -6, 0);
        for (auto image = m_images.rbegin(); image != m_images.rend(); ++image) {
            const QSizeF size = QSizeF(image->size()) / image->devicePixelRatio();
            rest.setRight(rest.right() - static_cast<int>(size.width()));
            painter->drawPixmap(rest.right(), rest.center().y() - 8, *image);
            rest.setRight(rest.right() - 6);
        }
        const RowText texts[] = {{Tolk::localize(Tolk::TextExpressionCaption)},
                                 {QString::fromStdString(column.expression)},
                                 aliasText(column.alias)};
        for (const RowText& text : texts) {
            const QFontMetrics& metrics = option.fontMetrics;
            const QString shown = metrics.elidedText(text.text, Qt::ElideRight, rest.width());
            painter->setPen(labelColour(text.colour));
            painter->drawText(rest, Qt::AlignVCenter | Qt::TextSingleLine, shown);
            rest.setLeft(rest.left() + metrics.horizontalAdvance(shown) + 6);
        }
    }

private:
    const Columns& m_columns;
    std::vector<QPixmap> m_images;
};

class PaintedRows {
public:
    explicit PaintedRows(int count) : columns(count), delegate(columns, view.palette()) {
        view.rows.setRowCount(count);
        view.setItemDelegate(&delegate);
        show(view);
    }
    ~PaintedRows() { view.setItemDelegate(nullptr); }

    Columns columns;
    PlainView view;
    RowDelegate delegate;
};

template <typename List>
[[gnu::noinline]] void measuredRefresh(List& list) {
    list.refresh();
}

/// All pages of the list, from the top down.
[[gnu::noinline]] void measuredPages(QTableView& view) {
    QScrollBar* bar = view.verticalScrollBar();
    for (int y = 0; y <= bar->maximum(); y += bar->pageStep()) {
        bar->setValue(y);
        QApplication::processEvents();
    }
    bar->setValue(0);
    QApplication::processEvents();
}

/// Runs @p step and keeps how long it takes.
template <typename Step>
void measure(benchmark::State& state, const std::string& name, Step step) {
    using Clock = std::chrono::steady_clock;
    const auto start = Clock::now();
    for (auto _ : state)
        step();
    const std::chrono::duration<double, std::milli> taken = Clock::now() - start;
    measured()[name] = taken.count() / static_cast<double>(state.iterations());
}

void setRatio(benchmark::State& state, const std::string& name, const std::string& other) {
    const auto& times = measured();
    if (times.count(name) == 0 || times.count(other) == 0) return;
    state.counters["ratio"] = times.at(name) / times.at(other);
}

void refreshWidgets(benchmark::State& state) {
    needApplication();
    WidgetForEachRow list(static_cast<int>(state.range()));
    measure(state, "widgets/" + std::to_string(state.range()), [&] { measuredRefresh(list); });
}
BENCHMARK(refreshWidgets)->Arg(1000)->Arg(10000)->Iterations(1)->Unit(benchmark::kMillisecond);

void refreshOnDemand(benchmark::State& state) {
    needApplication();
    OnDemand list(static_cast<int>(state.range()));
    const std::string size = "/" + std::to_string(state.range());
    measure(state, "demand" + size, [&] { measuredRefresh(list); });
    setRatio(state, "demand" + size, "widgets" + size);
}
BENCHMARK(refreshOnDemand)->Arg(1000)->Arg(10000)->Iterations(20)->Unit(benchmark::kMillisecond);

void pagesPainted(benchmark::State& state) {
    needApplication();
    PaintedRows list(static_cast<int>(state.range()));
    measure(state, "painted", [&] { measuredPages(list.view); });
}
BENCHMARK(pagesPainted)->Arg(1000)->Iterations(5)->Unit(benchmark::kMillisecond);

void pagesOnDemand(benchmark::State& state) {
    needApplication();
    OnDemand list(static_cast<int>(state.range()));
    measure(state, "pages", [&] { measuredPages(list.view); });
    setRatio(state, "pages", "painted");
}
BENCHMARK(pagesOnDemand)->Arg(1000)->Iterations(5)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace QB
