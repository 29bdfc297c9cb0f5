#include <QLabel>
#include <QRadioButton>
#include <QTreeWidget>
#include <QtTest>
#include <memory>

#include "canvas/drawer/diagram_hint_widget.h"
#include "diagrampanel/diagram_panel_widget.h"
#include "diagrampanel/fake_server.h"
#include "platform/tolk/tolk.h"

namespace QB {
namespace {

using namespace Component::SQL;

constexpr QPoint noPoint(-1, -1);

/// What the engine announced of one change: the layer, and where the panel says it was dropped.
struct Announcement {
    int layer;
    QPoint dropPoint;
    bool isFromPanel;
};

/// A panel that can be told where a drag comes from.
class Panel : public QBDiagramPanelWidget {
public:
    QObject* source = nullptr;

protected:
    QObject* dragSource(const QDropEvent* event) const override {
        return source ? source : QBDiagramPanelWidget::dragSource(event);
    }
};

struct Desk : Test::ServedEngine {
    Desk() {
        panel.setEngine(engine.get());
        panel.resize(400, 300);
        QObject::connect(engine->signalEmitter(),
                         &QBEngineSignalEmitter::topLevelQueryComponentElementModified, &panel,
                         [this](QBEngine*, const auto&, int layer, void* sender) {
                             announced.append({layer, panel.dropPoint(), sender == &panel});
                         });
        refreshAndWait({});
        refreshAndWait({"main"});
    }

    void add(const std::vector<std::string>& path) {
        panel.addIdentifierCandidateToDiagram(candidate(path));
    }
    /// Puts an empty subquery into the root layer and gives its statement.
    SQLSelectStmtComponent* makeSubquery() {
        auto* source = new SQLSubquerySourceComponent;
        auto* statement = new SQLSelectStmtComponent;
        source->subquery = statement;
        engine->modifyInTopLevelQueryComponentElement<ELEMSQLSourceExpr*>(
            ElementSource, 0,
            [source](ELEMSQLSourceExpr* from) {
                from->root = new SourceNode;
                from->root->value = source;
                return true;
            },
            nullptr);
        return statement;
    }
    bool sendDragEnter() {
        QMimeData mime;
        QDragEnterEvent event({5, 5}, Qt::CopyAction, &mime, Qt::LeftButton, {});
        event.ignore();
        QCoreApplication::sendEvent(&panel, &event);
        return event.isAccepted();
    }
    bool sendDrop(const QPointF& position) {
        sendDragEnter();  // or Qt delivers no drop
        QMimeData mime;
        QDropEvent event(position, Qt::CopyAction, &mime, Qt::LeftButton, {});
        event.ignore();
        QCoreApplication::sendEvent(&panel, &event);
        return event.isAccepted();
    }
    /// A tree whose current row carries @p content as its candidate.
    void dragFrom(QTreeWidget& tree, const QVariant& content) {
        auto* item = new QTreeWidgetItem(&tree);
        item->setData(0, 257, content);
        tree.setCurrentItem(item);
        panel.source = &tree;
    }
    QVariant pointer(const std::vector<std::string>& path) {
        return qulonglong(reinterpret_cast<quintptr>(candidate(path)));
    }

    Panel panel;
    QVector<Announcement> announced;
};

}  // namespace

class DiagramPanelTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { m_desk = std::make_unique<Desk>(); }
    void cleanup() { m_desk.reset(); }

    // ---- adding -----------------------------------------------------------------------------

    void aTableWithKnownFieldsIsAddedAtOnce() {
        Desk& desk = *m_desk;
        desk.refreshAndWait({"main", "city"});
        desk.add({"main", "city"});
        QCOMPARE(desk.sources(), QStringList("main.city"));
        QCOMPARE(desk.announced.size(), 1);
        QVERIFY(desk.announced[0].isFromPanel);
        QCOMPARE(desk.announced[0].dropPoint, noPoint);
    }

    void aTableWithUnknownFieldsWaitsForThem() {
        Desk& desk = *m_desk;
        desk.server.hold();
        desk.add({"main", "city"});
        QCOMPARE(desk.panel.pendingItemCount(), 1);
        QCOMPARE(desk.sources(), QStringList());
        desk.server.release();
        desk.host.finishWorkers();
        QCOMPARE(desk.sources(), QStringList("main.city"));
        QVERIFY(desk.engine->candidateSnapshot(desk.candidate({"main", "city"})).hasChildren);
        QCOMPARE(desk.panel.pendingItemCount(), 0);
    }

    void aViewWhoseFieldsCannotBeReadIsAddedAllTheSame() {
        Desk& desk = *m_desk;
        desk.add({"main", "places"});
        desk.host.finishWorkers();
        QCOMPARE(desk.sources(), QStringList("main.places"));
    }

    void theSameTableTwiceWhileItLoadsIsAddedTwice() {
        Desk& desk = *m_desk;
        desk.server.hold();
        desk.add({"main", "city"});
        desk.add({"main", "city"});
        desk.server.release();
        desk.host.finishWorkers();
        QCOMPARE(desk.sources(), QStringList({"main.city", "main.city"}));
    }

    void aTableThatVanishesWhileItWaitsIsNotLost() {
        Desk& desk = *m_desk;
        desk.server.hold();
        desk.refresh({"main"});
        QTRY_VERIFY(desk.server.fetchCount() >= 3);
        desk.server.set("main", {{"country", IdentifierTypeTable}});
        desk.add({"main", "city"});
        desk.server.release();
        desk.host.finishWorkers();
        QCOMPARE(desk.sources(), QStringList("main.city"));
        QCOMPARE(desk.panel.pendingItemCount(), 0);
    }

    void onlyTablesAndViewsOfTheEnginesTreeAreTaken() {
        Desk& desk = *m_desk;
        desk.refreshAndWait({"main", "city"});
        desk.add({"main"});
        desk.add({"main", "city", "id"});
        desk.panel.addIdentifierCandidateToDiagram(nullptr);
        desk.panel.addIdentifierCandidateToDiagram(desk.engine->identifierCandidateRootNode());
        desk.panel.addIdentifierCandidateToDiagram(
            reinterpret_cast<QBIdentifierCandidate*>(quintptr(0xdeadbeef)));
        QBIdentifierCandidate stranger;
        stranger.type = IdentifierTypeTable;
        desk.panel.addIdentifierCandidateToDiagram(&stranger);
        desk.host.finishWorkers();
        QCOMPARE(desk.sources(), QStringList());
        QCOMPARE(desk.panel.pendingItemCount(), 0);
        QVERIFY(desk.announced.isEmpty());
    }

    // ---- layers -----------------------------------------------------------------------------

    void aSourceGoesToTheLayerItWasMeantFor() {
        Desk& desk = *m_desk;
        auto* subquery = desk.makeSubquery();
        desk.server.hold();
        desk.add({"main", "city"});
        desk.engine->pushNewLayerTopLevelQueryComponent(subquery, "inner");
        desk.server.release();
        desk.host.finishWorkers();
        QCOMPARE(desk.sources(0), QStringList("main.city"));
        QCOMPARE(desk.sources(1), QStringList());
    }

    void aSourceWaitsUntilItsLayerIsEnteredAgain() {
        Desk& desk = *m_desk;
        auto* subquery = desk.makeSubquery();
        desk.engine->pushNewLayerTopLevelQueryComponent(subquery, "inner");
        desk.server.hold();
        desk.add({"main", "city"});
        desk.engine->popCurrentLayerTopLevelQueryComponent();
        desk.server.release();
        desk.host.finishWorkers();
        QCOMPARE(desk.sources(0), QStringList());
        QCOMPARE(desk.panel.pendingItemCount(), 1);
        desk.engine->pushNewLayerTopLevelQueryComponent(subquery, "inner");
        QCOMPARE(desk.sources(1), QStringList("main.city"));
        QCOMPARE(desk.panel.pendingItemCount(), 0);
    }

    void aResetAndANewStatementEndTheWait() {
        Desk& desk = *m_desk;
        desk.server.hold();
        desk.add({"main", "city"});
        desk.engine->resetUi();
        QCOMPARE(desk.panel.pendingItemCount(), 0);
        desk.add({"main", "country"});
        desk.engine->setDatabaseInfo(DatabaseTypePostgreSQL, 150000);
        desk.server.release();
        desk.host.finishWorkers();
        QCOMPARE(desk.sources(), QStringList());
        QCOMPARE(desk.panel.pendingItemCount(), 0);
    }

    void theEngineMayGoWhileASourceWaits() {
        Desk& desk = *m_desk;
        desk.server.hold();
        desk.add({"main", "city"});
        QBIdentifierCandidate* city = desk.candidate({"main", "city"});
        desk.engine.destroy();
        desk.server.release();
        desk.host.finishWorkers();
        desk.panel.addIdentifierCandidateToDiagram(city);
        QVERIFY(desk.announced.isEmpty());
    }

    // ---- drops ------------------------------------------------------------------------------

    void onlyTreesAreTaken() {
        Desk& desk = *m_desk;
        QVERIFY(!desk.sendDragEnter());
        QTreeWidget tree;
        desk.panel.source = &tree;
        QVERIFY(desk.sendDragEnter());
        auto* hint = desk.panel.findChild<QBDiagramHintWidget*>();
        QVERIFY(hint->takesDrop());
        QDragLeaveEvent leave;
        QCoreApplication::sendEvent(&desk.panel, &leave);
        QVERIFY(!hint->takesDrop());
        QVERIFY(!desk.sendDrop({1, 1}));  // no current row
        QWidget other;
        desk.panel.source = &other;
        QVERIFY(!desk.sendDragEnter());
    }

    void eachDropKeepsItsPoint() {
        Desk& desk = *m_desk;
        QTreeWidget tree;
        desk.server.hold();
        desk.dragFrom(tree, desk.pointer({"main", "city"}));
        QVERIFY(desk.sendDrop({10.5, 20.4}));
        desk.dragFrom(tree, desk.pointer({"main", "country"}));
        QVERIFY(desk.sendDrop({30, 40}));
        desk.add({"main", "places"});
        desk.server.release();
        desk.host.finishWorkers();
        QMap<QString, QPoint> points;
        const QStringList names = desk.sources();
        QCOMPARE(names.size(), 3);
        for (int i = 0; i < 3; ++i)
            points[names[i]] = desk.announced[i].dropPoint;
        QCOMPARE(points["main.city"], QPoint(11, 20));
        QCOMPARE(points["main.country"], QPoint(30, 40));
        QCOMPARE(points["main.places"], noPoint);
        QCOMPARE(desk.panel.dropPoint(), noPoint);
    }

    void aDropOfAnythingElseIsTakenAndDoesNothing() {
        Desk& desk = *m_desk;
        for (const QVariant& content :
             {desk.pointer({"main"}), QVariant(0), QVariant(), QVariant(qlonglong(0xdeadbeef))}) {
            QTreeWidget tree;
            desk.dragFrom(tree, content);
            QVERIFY(desk.sendDrop({50, 50}));
        }
        desk.host.finishWorkers();
        QCOMPARE(desk.sources(), QStringList());
        QCOMPARE(desk.panel.dropPoint(), noPoint);
    }

    // ---- form -------------------------------------------------------------------------------

    void theHintLetsTheMouseThrough() {
        Desk& desk = *m_desk;
        desk.panel.show();
        auto* hint = desk.panel.findChild<QBDiagramHintWidget*>();
        QVERIFY(hint->isVisible());
        auto* label = hint->findChild<QLabel*>("label");
        QCOMPARE(label->text(), Tolk::localize(Tolk::TextDiagramHint));
        const QPoint middle = hint->mapTo(&desk.panel, hint->rect().center());
        QWidget* below = desk.panel.childAt(middle);
        QVERIFY(below != hint && below != label);
    }

    void theRelationSwitchWaitsForLinksToDraw() {
        Desk& desk = *m_desk;
        desk.panel.show();
        auto* table = desk.panel.findChild<QRadioButton*>("tableRelRadioButton");
        auto* field = desk.panel.findChild<QRadioButton*>("fieldRelRadioButton");
        QVERIFY(table->isChecked() && !field->isChecked());
        QVERIFY(!table->isVisible());
    }

private:
    std::unique_ptr<Desk> m_desk;
};

}  // namespace QB

QTEST_MAIN(QB::DiagramPanelTest)
#include "diagram_panel_test.moc"
