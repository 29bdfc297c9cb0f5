#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTreeWidget>
#include <QtTest>
#include <memory>

#include "diagrampanel/diagram_object_tree_item_delegate.h"
#include "diagrampanel/diagram_object_tree_panel_widget.h"
#include "diagrampanel/diagram_panel_widget.h"
#include "diagrampanel/fake_server.h"
#include "support/qt_animations.h"
#include "widgets/loading_indicator_widget.h"

namespace QB {
namespace {

constexpr int candidateRole = 257;
constexpr int loadingRole = 258;
constexpr int manyTables = 100'000;

using Test::FakeServer;

/// A shown tree panel with a partner diagram over a fake server, with the root loaded.
struct Desk : Test::ServedEngine {
    Desk() {
        diagram.setEngine(engine.get());
        panel.setEngine(engine.get());
        panel.setPartnerDiagram(&diagram);
        panel.resize(240, 300);
        panel.show();
        QVERIFY(QTest::qWaitForWindowActive(&panel));
        reload({});
    }

    void settle() { QTRY_VERIFY_WITH_TIMEOUT(panel.isSettled(), 30'000); }
    /// A forced load to its end, rows included.
    void reload(const std::vector<std::string>& path) {
        refreshAndWait(path);
        settle();
    }
    QTreeWidgetItem* item(const QStringList& path) const {
        QTreeWidgetItem* found = tree->invisibleRootItem();
        for (const QString& name : path) {
            QTreeWidgetItem* parent = found;
            found = nullptr;
            for (int i = 0; i < parent->childCount() && !found; ++i) {
                if (parent->child(i)->text(0) == name) found = parent->child(i);
            }
            if (!found) return nullptr;
        }
        return found;
    }
    QStringList shown(const QTreeWidgetItem* parent) const {
        QStringList names;
        for (int i = 0; parent && i < parent->childCount(); ++i)
            names.append(parent->child(i)->text(0));
        return names;
    }
    void open(const QStringList& path) {
        item(path)->setExpanded(true);
        host.finishWorkers();
        settle();
    }
    void filter(const QString& text) {
        filterLine->setFocus();
        filterLine->selectAll();
        QTest::keyClicks(filterLine, text);
        QTest::keyClick(filterLine, Qt::Key_Return);
        settle();
    }
    void doubleClick(const QStringList& path) {
        tree->scrollToItem(item(path));
        const QPoint at = tree->visualItemRect(item(path)).center();
        QTest::mouseClick(tree->viewport(), Qt::LeftButton, {}, at);
        QTest::mouseDClick(tree->viewport(), Qt::LeftButton, {}, at);
        host.finishWorkers();
        settle();
    }
    QBDiagramPanelWidget diagram;
    QBDiagramObjectTreePanelWidget panel;
    QTreeWidget* tree = panel.findChild<QTreeWidget*>("diagramPaneObjectTreeWidget");
    QLineEdit* filterLine = panel.findChild<QLineEdit*>("filterLineEdit");
    QBLoadingIndicatorWidget* overlay =
        panel.findChild<QBLoadingIndicatorWidget*>("overlayLoadingWidget");
};

}  // namespace

class ObjectTreeTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { m_desk = std::make_unique<Desk>(); }
    void cleanup() { m_desk.reset(); }
    void cleanupTestCase() { QB::Test::outliveAnimations(); }

    // ---- rows -------------------------------------------------------------------------------

    void aRowCarriesNameCandidateAndLoadingState() {
        Desk& desk = *m_desk;
        QCOMPARE(desk.shown(desk.tree->invisibleRootItem()), QStringList({"main", "other"}));
        const QTreeWidgetItem* main = desk.item({"main"});
        QCOMPARE(main->data(0, candidateRole).toULongLong(),
                 qulonglong(reinterpret_cast<quintptr>(desk.candidate({"main"}))));
        QCOMPARE(main->data(0, candidateRole).userType(), int(QMetaType::LongLong));
        QCOMPARE(main->data(0, loadingRole), QVariant(false));
        QCOMPARE(desk.panel.obtainIdentifierCandidateKey(desk.candidate({"main"})),
                 QString("main") + QChar(0x1f));
        QCOMPARE(
            desk.panel.obtainIdentifierCandidateKey(desk.engine->identifierCandidateRootNode()),
            QString());
    }

    void onlyWhatMayHaveChildrenCanBeOpened() {
        Desk& desk = *m_desk;
        QCOMPARE(desk.item({"main"})->childIndicatorPolicy(), QTreeWidgetItem::ShowIndicator);
        desk.open({"main"});
        desk.open({"main", "city"});
        QCOMPARE(desk.shown(desk.item({"main", "city"})), QStringList({"id", "name"}));
        QVERIFY(desk.item({"main", "city", "id"})->childIndicatorPolicy() !=
                QTreeWidgetItem::ShowIndicator);
        desk.open({"other"});
        QVERIFY(desk.item({"other"})->childIndicatorPolicy() != QTreeWidgetItem::ShowIndicator);
    }

    void nestedChildrenOfOneLoadGetRowsToo() {
        Desk& desk = *m_desk;
        desk.engine->registerIdentifierCandidateChildrenUpdater(
            [](IQBIdentifierCandidateAccessor* accessor, QBIdentifierCandidate* node) {
                for (const char* name : {"s", "t", "f"}) {
                    node = accessor->addChild(node);
                    accessor->setName(node, name);
                    accessor->setType(node, IdentifierTypeSchema);
                }
            });
        desk.reload({});
        QVERIFY(desk.item({"s", "t", "f"}));
    }

    // ---- loading ----------------------------------------------------------------------------

    void aSlowLoadShowsOnItsRowAndLeavesTheLoopFree() {
        Desk& desk = *m_desk;
        desk.server.hold();
        desk.item({"main"})->setExpanded(true);
        QTRY_VERIFY(desk.item({"main"})->data(0, loadingRole).toBool());
        int beats = 0;
        QTimer heart;
        connect(&heart, &QTimer::timeout, this, [&beats] { ++beats; });
        heart.start(0);
        QTRY_VERIFY(beats > 100);
        QVERIFY(desk.tree->isEnabled());
        desk.server.release();
        QTRY_COMPARE(desk.item({"main"})->childCount(), 3);
        QCOMPARE(desk.item({"main"})->data(0, loadingRole), QVariant(false));
        QVERIFY(desk.item({"main"})->isExpanded());
    }

    void aReloadOfEverythingLiesUnderTheOverlay() {
        Desk& desk = *m_desk;
        desk.tree->setFocus();
        desk.server.hold();
        desk.refresh({});
        QTRY_VERIFY(desk.overlay->isVisible());
        QVERIFY(!desk.panel.isEnabled());
        QCOMPARE(desk.tree->topLevelItemCount(), 0);
        desk.server.release();
        QTRY_VERIFY(desk.panel.isEnabled());
        QVERIFY(!desk.overlay->isVisible());
        QCOMPARE(desk.tree->topLevelItemCount(), 2);
        QVERIFY(desk.tree->hasFocus());
    }

    void aFailedLoadLeavesARowThatCanBeRefreshed() {
        Desk& desk = *m_desk;
        desk.open({"other"});
        QCOMPARE(desk.item({"other"})->childCount(), 0);
        QCOMPARE(desk.item({"other"})->data(0, loadingRole), QVariant(false));
        desk.server.setTables("other", 2);
        desk.tree->setFocus();
        desk.tree->setCurrentItem(desk.item({"other"}));
        QTest::keyClick(desk.tree, Qt::Key_F5);
        desk.host.finishWorkers();
        QTRY_COMPARE(desk.item({"other"})->childCount(), 2);
    }

    void withoutACurrentRowTheKeyRefreshesEverything() {
        Desk& desk = *m_desk;
        desk.server.set("", {});
        desk.reload({});
        QCOMPARE(desk.tree->topLevelItemCount(), 0);
        desk.server.set("", {{"late", IdentifierTypeSchema}});
        desk.tree->setFocus();
        QTest::keyClick(desk.tree, Qt::Key_F5);
        desk.host.finishWorkers();
        QTRY_VERIFY(desk.item({"late"}));
    }

    void theStarKeyDoesNotLoadTheWholeServer() {
        Desk& desk = *m_desk;
        desk.open({"main"});
        const int before = desk.server.fetchCount();
        desk.tree->setCurrentItem(desk.item({"main"}));
        QTest::keyClick(desk.tree, Qt::Key_Asterisk);
        desk.host.finishWorkers();
        QCOMPARE(desk.server.fetchCount(), before);
    }

    void theEngineMayGoWhileAFetchRuns() {
        Desk& desk = *m_desk;
        desk.server.hold();
        desk.refresh({});
        QTRY_VERIFY(!desk.panel.isEnabled());
        desk.engine.destroy();
        QVERIFY(desk.panel.isEnabled());
        desk.server.release();
        desk.host.finishWorkers();
        desk.panel.slotRefreshSelectedItem();
        QTest::keyClick(desk.tree, Qt::Key_F5);
        QCOMPARE(desk.panel.engine(), nullptr);
    }

    // ---- reloads ----------------------------------------------------------------------------

    void aReloadKeepsWhatIsOpenTheCurrentRowAndThePlace_data() {
        QTest::addColumn<bool>("wholeTree");
        QTest::newRow("of the schema") << false;
        QTest::newRow("of everything") << true;
    }
    void aReloadKeepsWhatIsOpenTheCurrentRowAndThePlace() {
        QFETCH(bool, wholeTree);
        Desk& desk = *m_desk;
        desk.server.setTables("main", 500);
        desk.server.set("main.table300", {{"id", IdentifierTypeField}, {"x", IdentifierTypeField}});
        desk.open({"main"});
        desk.open({"main", "table300"});
        desk.tree->setCurrentItem(desk.item({"main", "table300", "x"}));
        desk.tree->scrollToItem(desk.item({"main", "table295"}), QAbstractItemView::PositionAtTop);
        const void* before = desk.item({"main", "table300"});

        desk.refreshAndWait(wholeTree ? std::vector<std::string>{}
                                      : std::vector<std::string>{"main"});
        QTRY_VERIFY(desk.item({"main", "table300", "x"}));
        desk.settle();
        QVERIFY(desk.item({"main", "table300"}) != before);
        QVERIFY(desk.item({"main", "table300"})->isExpanded());
        QVERIFY(!desk.item({"main", "table301"})->isExpanded());
        QTRY_COMPARE(desk.tree->currentItem(), desk.item({"main", "table300", "x"}));
        QVERIFY(desk.tree->currentItem()->isSelected());
        QCOMPARE(desk.tree->itemAt(0, 0), desk.item({"main", "table295"}));
    }

    void aRowClosedByItsUserStaysClosed() {
        Desk& desk = *m_desk;
        desk.open({"main"});
        desk.item({"main"})->setExpanded(false);
        desk.reload({});
        QVERIFY(!desk.item({"main"})->isExpanded());
    }

    void whatTheUserChoosesDuringALoadIsNotTakenBack() {
        Desk& desk = *m_desk;
        desk.open({"main"});
        desk.tree->setCurrentItem(desk.item({"main", "city"}));
        desk.server.hold();
        desk.refresh({"main"});
        QTRY_VERIFY(desk.item({"main"})->data(0, loadingRole).toBool());
        const QPoint at = desk.tree->visualItemRect(desk.item({"other"})).center();
        QTest::mouseClick(desk.tree->viewport(), Qt::LeftButton, {}, at);
        desk.server.release();
        QTRY_COMPARE(desk.item({"main"})->childCount(), 3);
        desk.settle();
        QCOMPARE(desk.tree->currentItem(), desk.item({"other"}));
    }

    void aReloadWhileRowsAreCreatedStartsAfresh() {
        Desk& desk = *m_desk;
        desk.server.setTables("main", manyTables);
        desk.item({"main"})->setExpanded(true);
        desk.host.finishWorkers();
        QVERIFY(!desk.panel.isSettled());
        QVERIFY(desk.item({"main"})->childCount() < manyTables);
        desk.server.setTables("main", 10, "other");
        desk.reload({"main"});
        QCOMPARE(desk.item({"main"})->childCount(), 10);
        QCOMPARE(desk.item({"main"})->child(9)->text(0), QString("other9"));
        desk.server.setTables("main", manyTables, "again");
        desk.refreshAndWait({"main"});
        desk.refreshAndWait({"main"});
        desk.settle();
        QCOMPARE(desk.item({"main"})->childCount(), manyTables);
    }

    void twoReloadsAtOnceEndInTheStateOfTheLast() {
        Desk& desk = *m_desk;
        QBEngine_LINUX* engine = desk.engine.get();
        desk.open({"main"});
        QBIdentifierCandidate* main = desk.candidate({"main"});
        desk.panel.startProcessingItem(engine, main);
        desk.panel.startProcessingItem(engine, nullptr);
        desk.panel.startProcessingItem(engine, main);
        desk.panel.reloadItemSubtree(engine, nullptr);
        desk.panel.reloadItemSubtree(engine, nullptr);
        desk.panel.reloadItemSubtree(engine, main);
        desk.settle();
        QCOMPARE(desk.tree->topLevelItemCount(), 2);
        QCOMPARE(desk.item({"main"})->childCount(), 3);
        QCOMPARE(desk.item({"main"})->data(0, loadingRole), QVariant(false));
        QVERIFY(desk.panel.isEnabled());
        QVERIFY(desk.item({"main"})->isExpanded());
    }

    void theCurrentSchemaComesIntoViewAndStandsOut() {
        Desk& desk = *m_desk;
        FakeServer::Objects schemas;
        for (int i = 0; i < 200; ++i)
            schemas.emplace_back("schema" + std::to_string(i), IdentifierTypeSchema);
        desk.server.set("", schemas);
        desk.engine->setCurrentSchema("schema150");
        QBDiagramObjectTreePanelWidget fresh;
        fresh.resize(240, 300);
        fresh.show();
        fresh.setEngine(desk.engine.get());
        desk.refreshAndWait({});
        auto* tree = fresh.findChild<QTreeWidget*>("diagramPaneObjectTreeWidget");
        QTRY_COMPARE(tree->topLevelItemCount(), 200);
        QTRY_VERIFY(tree->viewport()->rect().contains(
            tree->visualItemRect(tree->topLevelItem(150)).center()));
        auto* delegate = static_cast<QBDiagramObjectTreeItemDelegate*>(tree->itemDelegate());
        const auto isBold = [&](int row) {
            QStyleOptionViewItem option;
            delegate->initStyleOption(&option, tree->model()->index(row, 0));
            return option.font.bold();
        };
        QVERIFY(isBold(150) && !isBold(151));
        desk.engine->setCurrentSchema("schema151");
        QVERIFY(!isBold(150) && isBold(151));
    }

    // ---- filter -----------------------------------------------------------------------------

    void theFilterShowsMatchesAndWhatLeadsToThem() {
        Desk& desk = *m_desk;
        desk.open({"main"});
        desk.item({"main"})->setExpanded(false);
        desk.filter("OUNT");
        QCOMPARE(desk.shown(desk.tree->invisibleRootItem()), QStringList("main"));
        QCOMPARE(desk.shown(desk.item({"main"})), QStringList("country"));
        QVERIFY(desk.item({"main"})->isExpanded());
        QVERIFY(desk.tree->hasFocus());

        QTest::keyClick(desk.filterLine, Qt::Key_Escape);
        desk.settle();
        QCOMPARE(desk.filterLine->text(), QString());
        QCOMPARE(desk.shown(desk.item({"main"})), QStringList({"city", "country", "places"}));
        QCOMPARE(desk.shown(desk.tree->invisibleRootItem()), QStringList({"main", "other"}));
        QVERIFY(!desk.item({"main"})->isExpanded());
    }

    void aMatchingTableShowsItsFields() {
        Desk& desk = *m_desk;
        desk.open({"main"});
        desk.open({"main", "city"});
        desk.open({"main", "country"});
        desk.filter("city");
        QCOMPARE(desk.shown(desk.item({"main", "city"})), QStringList({"id", "name"}));
        desk.filter("name");
        QCOMPARE(desk.shown(desk.item({"main"})), QStringList("city"));
        QCOMPARE(desk.shown(desk.item({"main", "city"})), QStringList("name"));
        desk.filter("main");
        QCOMPARE(desk.shown(desk.item({"main"})), QStringList({"city", "country", "places"}));
        QTest::keyClick(desk.filterLine, Qt::Key_Escape);
        desk.settle();
        QVERIFY(desk.item({"main", "city"})->isExpanded());
        QCOMPARE(desk.shown(desk.item({"main", "city"})), QStringList({"id", "name"}));
    }

    void theCurrentRowSurvivesAFilterThatHidesIt() {
        Desk& desk = *m_desk;
        desk.open({"main"});
        desk.tree->setCurrentItem(desk.item({"main", "city"}));
        QTest::keyClicks(desk.filterLine, "other");
        QTRY_COMPARE(desk.shown(desk.tree->invisibleRootItem()), QStringList("other"));
        QTest::keyClick(desk.filterLine, Qt::Key_Escape);
        desk.settle();
        QCOMPARE(desk.tree->currentItem(), desk.item({"main", "city"}));
        QVERIFY(desk.tree->currentItem()->isSelected());
    }

    void whatLoadsUnderAFilterIsFiltered() {
        Desk& desk = *m_desk;
        desk.open({"main"});
        desk.filter("city");
        desk.server.set("main", {{"city", IdentifierTypeTable},
                                 {"velocity", IdentifierTypeTable},
                                 {"town", IdentifierTypeTable}});
        desk.reload({"main"});
        QCOMPARE(desk.shown(desk.item({"main"})), QStringList({"city", "velocity"}));
        desk.reload({});
        QTRY_VERIFY(desk.item({"main"}));
        desk.settle();
        QTRY_COMPARE(desk.shown(desk.item({"main"})), QStringList({"city", "velocity"}));
        QTest::keyClick(desk.filterLine, Qt::Key_Escape);
        desk.settle();
        QCOMPARE(desk.shown(desk.item({"main"})), QStringList({"city", "velocity", "town"}));
    }

    void aHundredThousandRowsComeBackInOrderAfterAFilter() {
        Desk& desk = *m_desk;
        desk.server.setTables("main", manyTables);
        desk.open({"main"});
        desk.filter("table777");
        QCOMPARE(desk.item({"main"})->childCount(), 111);
        QTest::keyClick(desk.filterLine, Qt::Key_Escape);
        desk.settle();
        const QTreeWidgetItem* main = desk.item({"main"});
        QCOMPARE(main->childCount(), manyTables);
        const auto records = desk.engine->childrenSnapshot(desk.candidate({"main"}));
        for (int i = 0; i < manyTables; ++i) {
            const QTreeWidgetItem* row = main->child(i);
            const auto& record = records[std::size_t(i)];
            if (row->text(0).toStdString() != record.name ||
                row->data(0, candidateRole).toULongLong() !=
                    qulonglong(reinterpret_cast<quintptr>(record.candidate)))
                QFAIL(qPrintable("wrong row " + QString::number(i)));
        }

        // Keys that come before the row is found mean that row, unless typing goes on.
        desk.filterLine->setFocus();
        QTest::keyClicks(desk.filterLine, "table7777");
        QTest::keyClick(desk.filterLine, Qt::Key_Down);
        QVERIFY(!desk.panel.isSettled());
        QTest::keyClicks(desk.filterLine, "6");
        desk.settle();
        QVERIFY(desk.filterLine->hasFocus());
        desk.filterLine->selectAll();
        QTest::keyClicks(desk.filterLine, "table12345");
        for (const int key : {Qt::Key_Down, Qt::Key_Return})
            QTest::keyClick(desk.filterLine, Qt::Key(key));
        QVERIFY(!desk.panel.isSettled());
        desk.settle();
        desk.host.finishWorkers();
        QVERIFY(desk.tree->hasFocus());
        QCOMPARE(desk.sources(), QStringList("main.table12345"));
    }

    void aFilterWithoutAMatchSaysSo() {
        Desk& desk = *m_desk;
        auto* label = desk.panel.findChild<QLabel*>("noMatchLabel");
        QVERIFY(!label->isVisible());
        desk.filter("nothing like it");
        QVERIFY(label->isVisible() && !label->text().isEmpty());
        desk.filter("main");
        QVERIFY(!label->isVisible());
    }

    // ---- adding -----------------------------------------------------------------------------

    void aDoubleClickAddsATableAndOpensASchema() {
        Desk& desk = *m_desk;
        desk.doubleClick({"main"});
        QVERIFY(desk.item({"main"})->isExpanded());
        desk.doubleClick({"main", "city"});
        QVERIFY(!desk.item({"main", "city"})->isExpanded());
        desk.doubleClick({"main", "places"});
        QCOMPARE(desk.sources(), QStringList({"main.city", "main.places"}));
        desk.open({"main", "city"});
        desk.doubleClick({"main", "city", "id"});
        QCOMPARE(desk.sources(), QStringList({"main.city", "main.places"}));
    }

    void enterInTheFilterLineGoesToTheFirstMatchAndThereAddsIt() {
        Desk& desk = *m_desk;
        desk.open({"main"});
        desk.tree->setCurrentItem(desk.item({"main", "city"}));
        desk.filter("COUN");
        QVERIFY(desk.tree->hasFocus());
        QCOMPARE(desk.tree->currentItem(), desk.item({"main", "country"}));
        QCOMPARE(desk.tree->selectedItems().size(), 1);
        QTest::keyClick(desk.tree, Qt::Key_Return);
        QTest::keyClick(desk.tree, Qt::Key_Enter, Qt::KeypadModifier);
        desk.host.finishWorkers();
        QCOMPARE(desk.sources(), QStringList({"main.country", "main.country"}));
    }

    void theFilterLineGetsItsFocusBackAfterAReload() {
        Desk& desk = *m_desk;
        desk.filterLine->setFocus();
        QTest::keyClicks(desk.filterLine, "ci");
        desk.reload({});
        QVERIFY(desk.filterLine->hasFocus());
        QTest::keyClicks(desk.filterLine, "ty");
        QCOMPARE(desk.filterLine->text(), QString("city"));
    }

    void aRowWithAForeignPointerIsIgnored() {
        Desk& desk = *m_desk;
        for (const QVariant& garbage :
             {QVariant(), QVariant(0), QVariant(qulonglong(0xdeadbeef)), QVariant("text")}) {
            auto* item = new QTreeWidgetItem(desk.tree);
            item->setData(0, candidateRole, garbage);
            desk.panel.on_diagramPaneObjectTreeWidget_itemDoubleClicked(item, 0);
            desk.tree->setCurrentItem(item);
            desk.panel.slotRefreshSelectedItem();
            desk.host.finishWorkers();
        }
        desk.panel.on_diagramPaneObjectTreeWidget_itemDoubleClicked(nullptr, 0);
        QCOMPARE(desk.sources(), QStringList());
        desk.reload({});
        QCOMPARE(desk.tree->topLevelItemCount(), 2);
    }

    void theMenuWorksOnExactlyOneRow() {
        Desk& desk = *m_desk;
        desk.open({"main"});
        desk.tree->setCurrentItem(nullptr);
        desk.tree->clearSelection();
        desk.panel.showCellContextMenu({5, 5});
        auto* menu = desk.panel.findChild<QMenu*>();
        QVERIFY(menu && !menu->actions().at(0)->isEnabled());
        QVERIFY(!menu->actions().at(1)->isEnabled());
        delete menu;

        desk.tree->setFocus();
        desk.tree->setCurrentItem(desk.item({"main", "city"}));
        QContextMenuEvent key(QContextMenuEvent::Keyboard,
                              desk.tree->visualItemRect(desk.tree->currentItem()).center());
        QCoreApplication::sendEvent(desk.tree, &key);
        menu = desk.panel.findChild<QMenu*>();
        QVERIFY(menu && menu->actions().at(0)->isEnabled());
        const int before = desk.server.fetchCount();
        menu->actions().at(0)->trigger();
        menu->actions().at(1)->trigger();
        desk.host.finishWorkers();
        QVERIFY(desk.server.fetchCount() > before);
        QCOMPARE(desk.sources(), QStringList("main.city"));
        delete menu;
    }

private:
    std::unique_ptr<Desk> m_desk;
};

}  // namespace QB

QTEST_MAIN(QB::ObjectTreeTest)
#include "object_tree_test.moc"
