// Where window and panes are, kept as a text and brought back.

#include <QJsonDocument>
#include <QJsonObject>
#include <QScreen>
#include <QSplitter>
#include <QToolButton>
#include <QtTest>

#include "frame/query_builder_widget.h"
#include "support/host_callbacks.h"
#include "support/owned_engine.h"

namespace QB {
namespace {

/// Panes at places of their own.
const char* const sample =
    R"({"ShowMaximized":false,"X":20,"Y":30,"Width":900,"Height":500,"DiagramHeight":250,)"
    R"("ObjectTreeVisible":true,"ObjectTreeWidth":170,"PreviewVisible":true,"PreviewWidth":260})";
const char* const noTree = R"({"ObjectTreeVisible":false,"ObjectTreeWidth":null})";
const char* const noPreview = R"({"PreviewVisible":false,"PreviewWidth":null})";

/// The sample with other values, null for none; keys in their order.
QString sampleWith(const QString& changes) {
    QJsonObject layout = QJsonDocument::fromJson(sample).object();
    const QJsonObject changed = QJsonDocument::fromJson(changes.toUtf8()).object();
    for (auto change = changed.begin(); change != changed.end(); ++change) {
        layout[change.key()] = *change;
        if (change->isNull()) layout.remove(change.key());
    }
    return QString::fromUtf8(QJsonDocument(layout).toJson(QJsonDocument::Compact));
}

struct Desk {
    explicit Desk(bool isShown = true) {
        builder.setEngine(engine.get());
        builder.resize(1000, 600);
        if (isShown) show();
    }

    void show() {
        builder.show();
        QVERIFY(QTest::qWaitForWindowExposed(&builder));
    }
    void load(const QString& text) { builder.loadWidgetLayoutJsonString(text); }
    QString layout() const { return builder.obtainWidgetLayoutJsonString(); }
    QList<int> widths() const {
        return builder.findChild<QSplitter*>("horizontalSplitter")->sizes();
    }
    int diagramHeight() const { return builder.findChild<QWidget*>("diagramArea")->height(); }
    void toggleTree() const {
        QTest::mouseClick(builder.findChild<QToolButton*>("objectTreeButton"), Qt::LeftButton);
    }

    Test::HostCallbacks host;
    Test::OwnedEngine<> engine{DatabaseTypeSQLite};
    QBQueryBuilderWidget builder;
};

}  // namespace

class WidgetLayoutTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void whatWasWrittenComesBack() {
        for (const char* const changes : {"", noTree, noPreview})
            for (const bool isShownFirst : {true, false}) {
                const QString layout = sampleWith(changes);
                Desk desk(isShownFirst);
                desk.load(layout);
                QCOMPARE(desk.layout(), layout);
                if (!isShownFirst) desk.show();
                QCOMPARE(desk.layout(), layout);
                QCOMPARE(desk.diagramHeight(), 250);
                const QList<int> widths = desk.widths();
                QVERIFY2(widths[1] > 900 - 170 - 260 - 40, "the diagram has not the rest");
                desk.builder.resize(1100, 700);
                QCOMPARE(desk.widths(), QList<int>({widths[0], widths[1] + 200, widths[2]}));
            }
    }

    void aValueThatCannotBeReadIsThePresentOne() {
        const char* const treeWide = R"({"PreviewWidth":170})";
        const std::pair<QString, QString> cases[] = {
            {"", ""},
            {QString(3000000, '['), ""},
            {"{}", treeWide},
            {"[7]", treeWide},
            {R"({"Width":700})", treeWide},
            {R"({"Width":-1,"Height":550})", treeWide},
            {R"({"X":100,"Y":2147483647})", treeWide},
            {R"({"X":"1","Y":2.5,"Width":1e10,"Height":9,"DiagramHeight":[1],)"
             R"("ObjectTreeWidth":true,"ObjectTreeVisible":0,"PreviewVisible":"false"})",
             treeWide},
            {R"({"DiagramHeight":-9,"ObjectTreeWidth":-170,"PreviewWidth":2147483647})", treeWide},
            {R"({"PreviewWidth":200})", R"({"PreviewWidth":200})"},
            {R"({"X":-5,"Y":7})", R"({"X":-5,"Y":7,"PreviewWidth":170})"},
        };
        for (const auto& [text, changes] : cases) {
            Desk desk;
            desk.load(sample);
            desk.load(text);
            QCOMPARE(desk.layout(), sampleWith(changes));
        }
    }

    void noTextMakesWindowOrDiagramUnreachable() {
        for (const char* const value : {"2147483646", "-2147483648", "16777215", "0"}) {
            QString text = "{";
            for (const char* key :
                 {"X", "Y", "Width", "Height", "DiagramHeight", "ObjectTreeWidth", "PreviewWidth"})
                text += QStringLiteral("\"%1\":%2,").arg(key, value);
            text.back() = '}';
            Desk desk;
            desk.load(text);
            const QRect desktop = desk.builder.screen()->virtualGeometry();
            QVERIFY(desktop.intersects(desk.builder.frameGeometry()));
            QVERIFY(desk.builder.width() <= qMax(1000, desktop.width()));
            QVERIFY2(desk.widths()[1] >= 50 && desk.diagramHeight() >= 50, value);
        }
    }

    void aHiddenPaneKeepsItsLastWidth() {
        for (const bool isShownFirst : {true, false}) {
            Desk desk(isShownFirst);
            desk.load(sample);
            if (isShownFirst) desk.toggleTree();
            desk.load(sampleWith(noTree));
            desk.show();
            desk.builder.resize(1200, 600);
            desk.toggleTree();
            QCOMPARE(desk.widths()[0], 170);
            QCOMPARE(desk.widths()[2], 260);
        }
    }

    void aMaximisedWindowHasItsPanesToo() {
        for (const bool isShownFirst : {true, false}) {
            Desk desk(isShownFirst);
            desk.load(sampleWith(R"({"ShowMaximized":true})"));
            desk.show();
            QVERIFY(desk.builder.isMaximized());
            // Some window managers take their time.
            desk.builder.windowHandle()->resize(1300, 900);
            QTRY_COMPARE(desk.diagramHeight(), 250);
            QCOMPARE(desk.widths()[0], 170);
            QVERIFY(desk.layout().contains("\"ShowMaximized\":true"));
            desk.load(sample);
            QVERIFY(!desk.builder.isMaximized());
            QCOMPARE(desk.diagramHeight(), 250);
        }
    }

    void thePreferenceIsTheRelationMode() {
        Desk desk;
        const auto mode = [&desk] {
            return desk.builder.obtainGlobalPreferences().value("RelationMode").toString();
        };
        QCOMPARE(mode(), QString("1"));
        desk.builder.loadGlobalPreferences({{"RelationMode", "2"}, {"other", 1}});
        QCOMPARE(mode(), QString("2"));
        for (const QVariant& bad : {QVariant("3"), QVariant(""), QVariant(QRect())})
            desk.builder.loadGlobalPreferences({{"RelationMode", bad}});
        desk.builder.loadGlobalPreferences({});
        QCOMPARE(mode(), QString("2"));
    }
};

}  // namespace QB

QTEST_MAIN(QB::WidgetLayoutTest)
#include "widget_layout_test.moc"
