#pragma once

#include <QCheckBox>
#include <QPointer>

#include "frame/query_builder_widget.h"
#include "layouts/column_vector_layout.h"
#include "layouts/condition_list_layout.h"
#include "layouts/row_dump.h"
#include "layouts/source_tree_layout.h"
#include "support/panel_desk.h"

namespace QB::Test {

/// The whole builder as a child of a host's window, over a server with the tables t (a, b, c),
/// u (a, d) and v (a). Events go to the panel in the current tab. Further events:
///
///     page 3                       click that tab of the builder
///     limit clicklabel_rowCount    click a value of the row limit
///     box DISTINCT                 click an option
///     row 2                        make that row the current one by a click beside its labels
class BuilderDesk : public PanelDesk {
public:
    using Layout = QBComponentsListLayout;

    explicit BuilderDesk(Delivery delivery) : PanelDesk(delivery, DatabaseTypeMySQL, {"v"}) {
        builder = new QBQueryBuilderWidget;
        new QVBoxLayout(&window);
        window.layout()->addWidget(builder);
        window.resize(900, 800);
        window.show();
        builder->setEngine(engine.get());
        QVERIFY(QTest::qWaitForWindowExposed(&window));
    }
    ~BuilderDesk() override {
        listPanel.release();
        delete builder;
        host.finishAll();
        m_second.reset();
    }

    /// That of the builder, null after its end.
    QBEngine_LINUX* live() const { return m_second ? m_second->get() : engine.get(); }
    void kill() { m_second ? m_second->destroy() : engine.destroy(); }
    /// Gives the builder another engine, in place of one that has gone.
    void revive() {
        m_second = std::make_unique<OwnedEngine<>>(DatabaseTypeMySQL);
        connectServer(live());
        builder->setEngine(live());
    }

    void parse(const QString& text) {
        live()->parseQuery(text.toStdString(), {});
        settle();
    }
    QString text() const { return QString::fromStdString(live()->buildQuery()).simplified(); }
    static Component::SQL::SQLSelectStmtComponent* statement(QBEngine* engine) {
        return dynamic_cast<Component::SQL::SQLSelectStmtComponent*>(
            engine->currentTopLevelQueryComponent());
    }

    QTabWidget* pages() const { return builder->findChild<QTabWidget*>("tabWidget"); }
    bool openPage(int page) {
        clickAt(pages()->tabBar(), pages()->tabBar()->tabRect(page).center());
        lookAtPage();
        return pages()->currentIndex() == page;
    }
    /// The panel is in the tabs and stays theirs.
    void lookAtPage() {
        listPanel.release();
        listPanel.reset(qobject_cast<QBRowListPanelWidget*>(pages()->currentWidget()));
    }

    // ---- the rows as they must be -------------------------------------------------------------

    /// Rows over a clause of the current layer, built now; null where it is no list.
    static std::unique_ptr<Layout::Impl> freshRows(QBEngine* engine, int element) {
        using namespace QBComponentsListLayout_Private;
        auto* const all = statement(engine);
        const auto built = [](auto rows) -> std::unique_ptr<Layout::Impl> {
            rows->rebuildItems();
            rows->updateItemFlags();
            return rows;
        };
        const auto columns = [&](auto& list) {
            return built(std::make_unique<QBComponentsListLayoutImpl<decltype(&list)>>(&list));
        };
        const auto conditions = [&](auto* clause) {
            return built(std::make_unique<ConditionListLayout>(&clause->root));
        };
        if (!all || element == ElementLimit) return nullptr;
        if (element == ElementSelectColumn) return columns(all->selectColumnExpr->columns);
        if (element == ElementGroupBy) return columns(all->groupByExpr->columns);
        if (element == ElementOrderBy) return columns(all->orderByExpr->columns);
        if (element == ElementWhere) return conditions(all->whereExpr);
        if (element == ElementHaving) return conditions(all->havingExpr);
        return built(std::make_unique<SourceTreeLayout>(&all->sourceExpr->root));
    }

    /// What is wrong with the rows of the panel that shows, and with its flags where no popup is
    /// open; empty if nothing is.
    QString rowFaults() const {
        if (!builder || !live() || !pages()->currentWidget()) return {};
        auto* const panel = qobject_cast<QBRowListPanelWidget*>(pages()->currentWidget());
        const auto fresh = panel ? freshRows(live(), panel->firstRelatedElement()) : nullptr;
        if (!fresh) return {};
        const Layout::Impl* const shown = panel->rowLayout().implementation();
        const std::string wanted = dumpRows(*fresh);
        if (!shown || dumpRows(*shown) != wanted)
            return "layout:\n" + QString::fromStdString(shown ? dumpRows(*shown) : "none") +
                   "fresh:\n" + QString::fromStdString(wanted);
        const int count = panel->rowView()->model()->rowCount();
        if (count != panel->rowCount()) return QString("the view has %1 rows").arg(count);
        for (int row = 0; row < count; ++row) {
            const auto* item = fresh->items()[static_cast<std::size_t>(row)];
            const auto* widget = panel->rowView()->rowWidget(row);
            const auto* wantedOne = (item->partnerItem ? item->partnerItem : item)->component;
            if (widget && widget->component() != wantedOne)
                return QString("row %1 shows another component").arg(row);
        }
        if (QApplication::activePopupWidget() || live()->isParsingQuery()) return {};
        return (panel->*&Peek::mayAct)() ? "" : "a flag is up";
    }

    // ---- events -------------------------------------------------------------------------------

    /// What the event clicks; null if it clicks nothing that is to be seen.
    QWidget* target(const QString& event) {
        const QString word = event.section(' ', 0, 0);
        const QString rest = event.section(' ', 1);
        QWidget* found = nullptr;
        if (word == "limit") found = builder->findChild<QBLabel*>(rest);
        if (word == "click" && listPanel) {
            const int row = rest.section(' ', 0, 0).toInt();
            view()->scrollTo(view()->model()->index(row, 0));
            found = part(row, rest.section(' ', 1));
        }
        const auto boxes = builder->findChildren<QCheckBox*>();
        for (QCheckBox* box : boxes) {
            if (word == "box" && box->text() == rest) found = box;
        }
        return found && found->isVisible() ? found : nullptr;
    }

    bool runOwn(const QString& word, const QString& rest) override {
        if (word == "page") return openPage(rest.toInt());
        if (word == "limit" || word == "box") return clickOn(target(word + ' ' + rest));
        return word == "row" && clickPart(rest.toInt(), "row");
    }

    /// One event, and what comes of it.
    bool step(const QString& event) {
        const QString word = event.section(' ', 0, 0);
        const QString rest = event.section(' ', 1);
        const bool needsList = word == "click" || word == "menu" || word == "row";
        if (!builder || (needsList && !listPanel)) return false;
        const bool isDone = runOwn(word, rest) || runOne(word, rest);
        settle();
        return isDone;
    }

    static bool isPopupOpen() { return QApplication::activePopupWidget() != nullptr; }

    QPointer<QBQueryBuilderWidget> builder;  // owned by the window

private:
    struct Peek : QBRowListPanelWidget {
        using QBRowListPanelWidget::mayAct;
    };
    std::unique_ptr<OwnedEngine<>> m_second;
};

}  // namespace QB::Test
