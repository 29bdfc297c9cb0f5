#include "widgets/panel_widget.h"

#include <QSignalSpy>
#include <QtTest>

#include "support/host_callbacks.h"
#include "support/owned_engine.h"

namespace QB {
namespace {

class ClausePanel : public QBTopLevelElementPanelWidget {
public:
    explicit ClausePanel(QWidget* parent = nullptr) : QBTopLevelElementPanelWidget(parent) {
        setRelatedElements({ElementWhere, ElementHaving});
    }

    void relatedElementModified(void* sender,
                                const QSet<TopLevelQueryComponentElementEnum>&) override {
        senders.append(sender);
    }
    void topLevelQueryComponentLayerChanged(
        Component::AbstractTopLevelQueryComponent* popped) override {
        poppedLayers.append(popped);
    }

    QVector<void*> senders;
    QVector<Component::AbstractTopLevelQueryComponent*> poppedLayers;
};

}  // namespace

class PanelWidgetTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void thePanelHasItsEngineUntilAnotherIsSetOrItGoes() {
        QBPanelWidget panel;
        const QSignalSpy spy(&panel, &QBPanelWidget::engineSet);
        panel.setEngine(nullptr);
        QCOMPARE(panel.engine(), nullptr);
        Test::OwnedEngine<> engine(DatabaseTypeMySQL);
        panel.setEngine(engine.get());
        panel.setEngine(nullptr);
        QCOMPARE(panel.engine(), engine.get());
        QCOMPARE(spy.count(), 1);
        engine.destroy();
        QCOMPARE(panel.engine(), nullptr);
    }

    void modificationsReachThePanelByLayerElementAndSender() {
        const Test::OwnedEngine<> engine(DatabaseTypeMySQL);
        ClausePanel panel;
        QWidget row(&panel);
        QWidget label(&row);
        QWidget diagram;
        panel.setEngine(engine.get());

        engine->modify_notify(ElementWhere, 1, nullptr);
        QVERIFY2(panel.senders.isEmpty(), "another layer");
        engine->modify_notify(ElementSource, 0, nullptr);
        QVERIFY2(panel.senders.isEmpty(), "an element that is not in the set");
        engine->modify_notify(ElementWhere, 0, &row);
        engine->modify_notify(ElementWhere, 0, &label);
        QVERIFY2(panel.senders.isEmpty(), "a widget inside the panel");

        int noWidget = 0;
        engine->modify_notify(ElementWhere, 0, nullptr);
        engine->modify_notify(ElementHaving, 0, &diagram);
        engine->modify_notify(ElementWhere, 0, &panel);
        engine->modify_notify(ElementWhere, 0, &noWidget);
        const QVector<void*> expected = {nullptr, &diagram, &panel, &noWidget};
        QCOMPARE(panel.senders, expected);
    }

    void everyPanelHearsOfLayersButOnlyOfItsOwnEngine() {
        const Test::OwnedEngine<> engine(DatabaseTypeMySQL);
        const Test::OwnedEngine<> other(DatabaseTypeMySQL);
        ClausePanel panel;
        panel.setEngine(engine.get());
        Component::AbstractTopLevelQueryComponent* root = engine->topLevelQueryComponent(0);
        engine->pushNewLayerTopLevelQueryComponent(root, "sub");
        engine->popCurrentLayerTopLevelQueryComponent();
        other->pushNewLayerTopLevelQueryComponent(root, "sub");
        const QVector<Component::AbstractTopLevelQueryComponent*> expected = {nullptr, root};
        QCOMPARE(panel.poppedLayers, expected);
    }

private:
    Test::HostCallbacks m_host;
};

}  // namespace QB

QTEST_MAIN(QB::PanelWidgetTest)
#include "panel_widget_test.moc"
