#include "frame/query_builder_widget.h"

#include <QAbstractButton>
#include <QDialogButtonBox>
#include <QLineEdit>
#include <QPushButton>
#include <QSignalSpy>
#include <QSplitter>
#include <QStyleFactory>
#include <QTabBar>
#include <QTabWidget>
#include <QToolButton>
#include <QTreeWidget>
#include <QVBoxLayout>
#include <QtTest>

#include "canvas/view/lumo_ui_view.h"
#include "diagrampanel/diagram_object_tree_panel_widget.h"
#include "diagrampanel/diagram_panel_widget.h"
#include "frame/clause_tabs.h"
#include "frame/highlighting_query_preview_panel_widget.h"
#include "frame/query_helpers.h"
#include "platform/tolk/tolk.h"
#include "support/capitals.h"
#include "support/host_callbacks.h"
#include "support/owned_engine.h"
#include "widgets/invalid_excluder.h"
#include "widgets/navigation_bar.h"
#include "widgets/panel_widget.h"

namespace QB {
namespace {

using Component::SQL::SQLAbstractConditionComponent;

class ClausePanel : public QBTopLevelElementPanelWidget, public IQBInvalidExcluder {
public:
    explicit ClausePanel(QWidget* parent) : QBTopLevelElementPanelWidget(parent) {
        auto* column = new QVBoxLayout(this);
        column->addWidget(new QLineEdit);
    }

    void relatedElementModified(void*, const QSet<TopLevelQueryComponentElementEnum>&) override {
        ++modifications;
    }
    void topLevelQueryComponentLayerChanged(Component::AbstractTopLevelQueryComponent*) override {}
    bool hasInvalidComponents() const override { return isInvalid; }
    void panelBecomeInactive() override { ++farewells; }
    void excludeInvalidComponent(SQLAbstractConditionComponent** componentRef) override {
        excluded = componentRef;
    }

    int modifications = 0;
    int farewells = 0;
    bool isInvalid = false;
    SQLAbstractConditionComponent** excluded = nullptr;
};

std::vector<ClauseTab> tabsWithPanels() {
    std::vector<ClauseTab> tabs = allClauseTabs();
    for (ClauseTab& tab : tabs)
        tab.createPanel = [](QWidget* parent) {
            return new ClausePanel(parent);
        };
    return tabs;
}

class BuilderWithTabs : public QBQueryBuilderWidget {
public:
    BuilderWithTabs() : QBQueryBuilderWidget(tabsWithPanels(), nullptr) {}

    QTabWidget* tabs() const { return findChild<QTabWidget*>("tabWidget"); }
    QStringList tabTexts() const {
        QStringList texts;
        for (int i = 0; i < tabs()->count(); ++i)
            texts.append(tabs()->tabText(i));
        return texts;
    }
    ClausePanel* panel(int index) const { return static_cast<ClausePanel*>(tabs()->widget(index)); }
    QPushButton* button(QDialogButtonBox::StandardButton which) const {
        return findChild<QDialogButtonBox*>("buttonBox")->button(which);
    }
};

const QStringList allTabs = {"SELECT", "FROM", "WHERE", "GROUP BY", "HAVING", "ORDER BY", "LIMIT"};

}  // namespace

class QueryBuilderWidgetTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { m_builder = std::make_unique<BuilderWithTabs>(); }
    void cleanup() { m_builder.reset(); }

    void tabsFollowFamilyAndVersion_data() {
        QTest::addColumn<int>("family");
        QTest::addColumn<int>("version");
        QTest::addColumn<int>("tabCount");
        QTest::newRow("none") << int(DatabaseTypeNone) << 1 << 0;
        QTest::newRow("MongoDB") << int(DatabaseTypeMongoDB) << 70000 << 0;
        QTest::newRow("MySQL") << int(DatabaseTypeMySQL) << 1 << 7;
        QTest::newRow("Oracle 12.1") << int(DatabaseTypeOracle) << 120100 << 7;
        QTest::newRow("Oracle 11") << int(DatabaseTypeOracle) << 110200 << 6;
        QTest::newRow("SQL Server 11") << int(DatabaseTypeSQLServer) << 11000000 << 7;
        QTest::newRow("SQL Server 10") << int(DatabaseTypeSQLServer) << 10500000 << 6;
    }

    void tabsFollowFamilyAndVersion() {
        QFETCH(int, family);
        QFETCH(int, version);
        QFETCH(int, tabCount);
        Test::OwnedEngine<> engine;
        m_builder->setEngine(engine.get());
        engine->setDatabaseInfo(DatabaseType(family), version);
        QCOMPARE(m_builder->tabTexts(), QStringList(allTabs.mid(0, tabCount)));
        QCOMPARE(m_builder->tabs()->isHidden(), tabCount == 0);
        for (int i = 0; i < tabCount; ++i)
            QCOMPARE(m_builder->panel(i)->engine(), engine.get());
    }

    void aPanelThatLosesItsTabComesBackAndIsNeverDoubled() {
        Test::OwnedEngine<> engine(DatabaseTypeMySQL);
        m_builder->setEngine(engine.get());
        const QWidget* limit = m_builder->panel(6);
        engine->setDatabaseInfo(DatabaseTypeOracle, 110200);
        engine->setDatabaseInfo(DatabaseTypeOracle, 120100);
        QCOMPARE(m_builder->panel(6), limit);
        const QSignalSpy changes(m_builder->tabs(), &QTabWidget::currentChanged);
        m_builder->renewPanelsIfNeeded();
        QVERIFY2(changes.isEmpty(), "nobody has changed the tab");
        QCOMPARE(m_builder->findChildren<QBTopLevelElementPanelWidget*>().size(), 7);
        QSet<QBPanelWidget*> visited;
        m_builder->enumeratePanelWidgets([&](QBPanelWidget* panel) { visited.insert(panel); });
        QCOMPARE(visited.size(), 10);  // and the tree, the diagram, the preview
    }

    void anotherEngineOrTheSameAgainDoublesNothing() {
        Test::OwnedEngine<> first(DatabaseTypeMySQL);
        Test::OwnedEngine<> second(DatabaseTypeOracle);
        m_builder->setEngine(nullptr);
        QCOMPARE(m_builder->engine(), nullptr);
        m_builder->setEngine(first.get());
        m_builder->setEngine(first.get());
        ClausePanel* where = m_builder->panel(2);
        first->modify_notify(ElementWhere, 0, nullptr);
        QCOMPARE(where->modifications, 1);
        m_builder->setEngine(second.get());
        QCOMPARE(m_builder->tabs()->count(), 6);
        first->modify_notify(ElementWhere, 0, nullptr);
        first->setDatabaseInfo(DatabaseTypeNone, 0);
        QCOMPARE(where->modifications, 1);
        QCOMPARE(m_builder->tabs()->count(), 6);
        second->modify_notify(ElementWhere, 0, nullptr);
        QCOMPARE(where->modifications, 2);
        second.destroy();
        QCOMPARE(m_builder->engine(), nullptr);
        m_builder->renewPanelsIfNeeded();
        QCOMPARE(m_builder->tabs()->count(), 0);
        QTest::mouseClick(m_builder->button(QDialogButtonBox::Ok), Qt::LeftButton);
    }

    void theDiagramBringsUpTabsAndExcludesConditions() {
        Test::OwnedEngine<> engine(DatabaseTypeMySQL);
        m_builder->setEngine(engine.get());
        // A panel in a popup of another panel is no clause of the builder.
        QWidget popup(m_builder->panel(0), Qt::Popup);
        auto* elsewhere = new ClausePanel(&popup);
        elsewhere->setRelatedElements({ElementWhere});
        elsewhere->isInvalid = true;
        auto* diagram = m_builder->findChild<QBDiagramPanelWidget*>();
        Q_EMIT diagram->signalJumpToPanel(ElementHaving);
        QCOMPARE(m_builder->tabs()->currentIndex(), 4);
        for (int i = 0; i < 7; ++i)
            QVERIFY((m_builder->panel(i)->farewells > 0) == (i != 4) || i == 0);
        SQLAbstractConditionComponent* condition = nullptr;
        Q_EMIT diagram->signalExcludeInvalidConditionComponent(&condition);
        QCOMPARE(m_builder->panel(2)->excluded, &condition);
        QCOMPARE(m_builder->panel(4)->excluded, nullptr);
        QCOMPARE(elsewhere->excluded, nullptr);
        QCOMPARE(elsewhere->farewells, 0);
        QVERIFY(!m_builder->needShowBuildWarning());
        engine->resetUi();
        QCOMPARE(m_builder->tabs()->currentIndex(), 0);
        QCOMPARE(m_builder->findChild<QBDiagramObjectTreePanelWidget*>()->partnerDiagram(),
                 diagram);
    }

    void invalidComponentsWarnAndSignTheirTab() {
        Test::OwnedEngine<> engine(DatabaseTypeMySQL);
        m_builder->setEngine(engine.get());
        QVERIFY(!m_builder->needShowBuildWarning());
        m_builder->panel(3)->isInvalid = true;
        QVERIFY(m_builder->needShowBuildWarning());
        Q_EMIT m_builder->panel(3)->signalIconNeedsUpdate();
        const QTabWidget* tabs = m_builder->tabs();
        for (int i = 0; i < 7; ++i) {
            QCOMPARE(tabs->tabIcon(i).isNull(), i != 3);
            QCOMPARE(tabs->tabToolTip(i).isEmpty(), i != 3);
            QCOMPARE(tabs->tabBar()->accessibleTabName(i).contains(tabs->tabToolTip(3)), i == 3);
        }
    }

    void aClickOnTheRootPopsLayerByLayer() {
        Test::OwnedEngine<> engine(DatabaseTypeMySQL);
        m_builder->setEngine(engine.get());
        auto* bar = m_builder->findChild<QBNavigationBar*>();
        QVERIFY(bar->isHidden());
        Test::SourceNode* outer = Test::subquery(Test::newStatement(), "outer");
        Test::setSource(*engine.get(), outer);
        Test::openLayer(*engine.get(), outer, "outer");
        Test::SourceNode* inner = Test::subquery(Test::newStatement(), "inner");
        Test::setSource(*engine.get(), inner, 1);
        Test::openLayer(*engine.get(), inner, "inner");
        QVERIFY(!bar->isHidden());
        const auto buttons = bar->findChildren<QAbstractButton*>();
        QCOMPARE(buttons.size(), 3);
        QCOMPARE(buttons[1]->text(), QString("outer"));

        int layerChanges = 0;
        connect(engine->signalEmitter(), &QBEngineSignalEmitter::topLevelQueryComponentLayerChanged,
                this, [&layerChanges] { ++layerChanges; });
        QTest::mouseClick(buttons[2], Qt::LeftButton);
        QCOMPARE(layerChanges, 0);
        QTest::mouseClick(buttons[0], Qt::LeftButton);
        QCOMPARE(layerChanges, 2);
        QVERIFY(bar->isHidden());
        QCOMPARE(engine->currentTopLevelQueryComponentLayer(), 0);
    }

    void theButtonsHandOutTheTextOfTheRoot() {
        Test::OwnedEngine<> engine(DatabaseTypeSQLite);
        m_builder->setEngine(engine.get());
        Test::setSource(*engine.get(), Test::table("t"));
        m_builder->show();
        const QSignalSpy built(m_builder.get(), &QBQueryBuilderWidget::okDialogButtonClicked);
        const QSignalSpy cancelled(m_builder.get(),
                                   &QBQueryBuilderWidget::cancelDialogButtonClicked);
        QTest::mouseClick(m_builder->button(QDialogButtonBox::Yes), Qt::LeftButton);
        QTest::mouseClick(m_builder->button(QDialogButtonBox::Ok), Qt::LeftButton);
        QTest::mouseClick(m_builder->button(QDialogButtonBox::Cancel), Qt::LeftButton);
        const QString text = QString::fromStdString(engine->buildQuery());
        QVERIFY(text.contains("\"t\""));
        QCOMPARE(built.value(0), (QList<QVariant>{text, true}));
        QCOMPARE(built.value(1), (QList<QVariant>{text, false}));
        QCOMPARE(cancelled.count(), 1);

        m_builder->setSupportBuildAndRun(false);
        QVERIFY(!m_builder->button(QDialogButtonBox::Yes)->isVisible());
        QVERIFY(m_builder->button(QDialogButtonBox::Ok)->isVisible());
        const std::unique_ptr<QStyle> style(QStyleFactory::create("Windows"));
        m_builder->setStyle(style.get());
        QTRY_VERIFY(!m_builder->button(QDialogButtonBox::Yes)->isVisible());
        m_builder->setStyle(nullptr);
        m_builder->setDialogButtonBoxVisible(false);
        QVERIFY(!m_builder->isDialogButtonBoxVisible());
    }

    void thePaneButtonsHideAndShow() {
        m_builder->resize(1000, 600);
        m_builder->show();
        auto* splitter = m_builder->findChild<QSplitter*>("horizontalSplitter");
        splitter->setSizes({200, 0, 150});
        const QList<int> widths = splitter->sizes();
        QVERIFY(widths[0] == 200 && widths[1] > 600 && widths[2] == 150);
        const auto toggles = [this](const char* buttonName, const char* paneName) {
            auto* button = m_builder->findChild<QToolButton*>(buttonName);
            auto* pane = m_builder->findChild<QWidget*>(paneName);
            const qint64 shownIcon = button->icon().cacheKey();
            QTest::mouseClick(button, Qt::LeftButton);
            const bool isHidden = !pane->isVisible() && button->icon().cacheKey() != shownIcon;
            QTest::keyClick(button, Qt::Key_Space);
            return isHidden && pane->isVisible();
        };
        QVERIFY(toggles("objectTreeButton", "objectTreePanel"));
        QVERIFY(toggles("previewButton", "previewContainer"));
        QCOMPARE(splitter->sizes(), widths);
        QTest::mouseClick(m_builder->findChild<QToolButton*>("objectTreeButton"), Qt::LeftButton);
        QTest::mouseClick(m_builder->findChild<QToolButton*>("previewButton"), Qt::LeftButton);
        QVERIFY(splitter->sizes()[1] > splitter->width() - 20);
        m_builder->resize(1200, 600);
        QTest::mouseClick(m_builder->findChild<QToolButton*>("objectTreeButton"), Qt::LeftButton);
        QCOMPARE(splitter->sizes()[0], 200);
    }

    void closingTellsTheHostOnce() {
        const QSignalSpy closing(m_builder.get(), &QBQueryBuilderWidget::aboutToClose);
        m_builder->show();
        QVERIFY(m_builder->close());
        QCOMPARE(closing.count(), 1);
    }

    void tabGoesFromTheTreeOverThePreviewToTheButtons() {
        Test::OwnedEngine<> engine(DatabaseTypeSQLite);
        m_builder->setQueryPreviewPanel(new QBHighlightingQueryPreviewPanelWidget);
        m_builder->setEngine(engine.get());
        m_builder->queryPreviewPanel()->setPreviewQuery("SELECT 1");
        m_builder->show();
        m_builder->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(m_builder.get()));
        auto* tree = m_builder->findChild<QTreeWidget*>();
        auto* filter =
            m_builder->findChild<QBDiagramObjectTreePanelWidget*>()->findChild<QLineEdit*>();
        filter->setFocus();
        const QList<QWidget*> expected = {
            tree,
            m_builder->queryPreviewPanel()->findChild<QWidget*>("textEdit"),
            m_builder->findChild<QPushButton*>("copyButton"),
            m_builder->findChild<QToolButton*>("objectTreeButton"),
            m_builder->findChild<QToolButton*>("previewButton"),
            m_builder->tabs()->tabBar(),
            m_builder->panel(0)->findChild<QLineEdit*>(),
            m_builder->button(QDialogButtonBox::Yes)};
        int next = 0;
        for (int steps = 0; steps < 20 && next < expected.size(); ++steps) {
            QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
            if (QApplication::focusWidget() == expected[next]) ++next;
        }
        QCOMPARE(next, expected.size());
        // From the diagram, to which letters are commands.
        m_builder->findChild<DiagramLumo::QBLumoUIView*>()->setFocus();
        QTest::keyClick(m_builder->windowHandle(), Qt::Key_F, Qt::ControlModifier);
        QCOMPARE(QApplication::focusWidget(), filter);
    }

private:
    Test::HostCallbacks m_host;
    std::unique_ptr<BuilderWithTabs> m_builder;
};

}  // namespace QB

QTEST_MAIN(QB::QueryBuilderWidgetTest)
#include "query_builder_widget_test.moc"
