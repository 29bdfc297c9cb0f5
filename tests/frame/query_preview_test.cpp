#include <QClipboard>
#include <QGuiApplication>
#include <QLineEdit>
#include <QPushButton>
#include <QScrollBar>
#include <QTextEdit>
#include <QVBoxLayout>
#include <QtTest>
#include <condition_variable>
#include <mutex>
#include <thread>

#include "frame/highlighting_query_preview_panel_widget.h"
#include "frame/query_helpers.h"
#include "frame/simple_query_preview_panel_widget.h"
#include "frame/sql_text_view.h"
#include "support/host_callbacks.h"
#include "support/owned_engine.h"
#include "widgets/loading_indicator_widget.h"

namespace QB {
namespace {

class RecordingPreview : public QBAbstractQueryPreviewPanelWidget {
public:
    RecordingPreview() {
        auto* content = new QLineEdit;
        setContent(content);
    }

    void setPreviewQuery(std::string query) override {
        texts.append(QString::fromStdString(query));
    }
    void highlightText(HighlightType type, std::vector<QBRange> ranges) override {
        QCOMPARE(int(type), 1);
        highlights.push_back(std::move(ranges));
    }

    QWidget* ring() const { return findChild<QBLoadingIndicatorWidget*>("loadingWidget"); }

    QStringList texts;
    std::vector<std::vector<QBRange>> highlights;
};

/// Dispatched work that waits until the test lets it run.
std::vector<std::function<void()>>& heldWork() {
    static std::vector<std::function<void()>> work;
    return work;
}

void holdWork() {
    heldWork().clear();
    Callback::runOperationOnDispatchedThread = [](std::function<void()> work) {
        heldWork().push_back(std::move(work));
    };
}

int runHeldWork() {
    std::vector<std::function<void()>> work;
    work.swap(heldWork());
    for (const auto& one : work)
        one();
    return int(work.size());
}

/// A preview of an engine whose work is held.
struct Held {
    Held() {
        holdWork();
        preview.setEngine(engine.get());
    }
    Test::OwnedEngine<> engine{DatabaseTypeSQLite};
    RecordingPreview preview;
};

/// A worker inside the text generation waits here until it is let go.
struct Gate {
    std::mutex mutex;
    std::condition_variable changed;
    bool isReached = false;
    bool isOpen = false;

    void pass() {
        std::unique_lock lock(mutex);
        isReached = true;
        changed.notify_all();
        changed.wait(lock, [this] { return isOpen; });
    }
    void awaitWorker() {
        std::unique_lock lock(mutex);
        changed.wait(lock, [this] { return isReached; });
    }
    void open() {
        const std::lock_guard lock(mutex);
        isOpen = true;
        changed.notify_all();
    }
};

Gate* theGate = nullptr;

std::string quoteBehindGate(const std::string& name, DatabaseType, int) {
    theGate->pass();
    return name;
}

}  // namespace

class QueryPreviewTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { m_host = std::make_unique<Test::HostCallbacks>(); }
    void cleanup() {
        heldWork().clear();
        m_host.reset();
    }

    void manyModificationsMakeOneGenerationInTheTimersTime() {
        Held held;
        auto& [engine, preview] = held;
        QVERIFY2(heldWork().empty(), "a hidden preview generates nothing");
        preview.show();
        for (int i = 0; i < 20; ++i)
            Test::addColumn(*engine.get(), Test::expression(std::to_string(i)));
        QVERIFY(heldWork().empty());
        QTRY_COMPARE(int(heldWork().size()), 1);
        runHeldWork();
        QCOMPARE(preview.texts.size(), 1);
        QVERIFY(preview.texts.last().contains("19"));
        QVERIFY(!preview.needsUpdateQuery());
        preview.hide();
        engine->setCurrentSchema("other");
        QVERIFY(preview.needsUpdateQuery());
    }

    void aChangeDuringARunStartsTheNextOneAfterIt() {
        Held held;
        auto& [engine, preview] = held;
        preview.updatePreviewQuery();
        Test::addColumn(*engine.get(), Test::expression("1"));
        preview.updatePreviewQuery();
        QCOMPARE(int(heldWork().size()), 1);
        runHeldWork();
        QVERIFY(preview.needsUpdateQuery());
        preview.updatePreviewQuery();
        QCOMPARE(runHeldWork(), 1);
        QCOMPARE(preview.texts.size(), 2);
    }

    void theWholeStatementShowsWhileASubqueryIsEditedUnlessTheLayerIsWanted() {
        Held held;
        auto& [engine, preview] = held;
        Test::Statement inner = Test::newStatement();
        inner->selectColumnExpr->columns.push_back(Test::expression("inner_column"));
        Test::SourceNode* source = Test::subquery(std::move(inner), "sub");
        Test::setSource(*engine.get(), source);
        Test::addColumn(*engine.get(), Test::expression("outer_column"));
        Test::openLayer(*engine.get(), source, "sub");

        preview.updatePreviewQuery();
        runHeldWork();
        QVERIFY(preview.texts.last().contains("outer_column"));
        QVERIFY(preview.texts.last().contains("inner_column"));
        preview.setShowsCurrentLayerOnly(true);
        QCOMPARE(runHeldWork(), 1);
        QVERIFY(!preview.texts.last().contains("outer_column"));
        QVERIFY(preview.texts.last().contains("inner_column"));
        engine->popCurrentLayerTopLevelQueryComponent();
        preview.updatePreviewQuery();
        runHeldWork();
        QVERIFY(preview.texts.last().contains("outer_column"));
    }

    void focusIsMarkedByTheRangesOfTheLastTextAndForgottenWithTheLayer() {
        Held held;
        auto& engine = held.engine;
        auto& preview = held.preview;
        auto* column = Test::expression("focused");
        Test::addColumn(*engine.get(), column);
        preview.markFocusedComponent(column, true);
        QVERIFY2(preview.highlights.back().empty(), "no ranges yet, but it is called");
        preview.updatePreviewQuery();
        runHeldWork();
        QCOMPARE(int(preview.highlights.back().size()), 1);
        const QBRange range = preview.highlights.back().front();
        QCOMPARE(preview.texts.last().mid(range.location, range.length), QString("focused"));

        const auto announce = [&](int isFocused) {
            const QBNotificationParameters params = {
                {"component",
                 static_cast<void*>(static_cast<Component::AbstractQueryComponent*>(column))},
                {"focused", isFocused},
                {"sender", static_cast<void*>(nullptr)}};
            engine->notifyChange("ComponentFocusChangedNotification", &params);
        };
        // An undo brings it back at another address, with the same id.
        const std::string record = engine->recordQuery();
        QVERIFY(engine->restoreQuery(record, {}, nullptr));
        preview.updatePreviewQuery();
        runHeldWork();
        QCOMPARE(int(preview.highlights.back().size()), 1);
        column = static_cast<decltype(column)>(
            dynamic_cast<Component::SQL::SQLSelectStmtComponent*>(engine->topLevelQueryComponent(0))
                ->selectColumnExpr->columns.front());
        announce(0);
        QVERIFY(preview.highlights.back().empty());
        announce(1);
        QCOMPARE(int(preview.highlights.back().size()), 1);
        engine->resetUi();
        QVERIFY(preview.highlights.back().empty());
        QVERIFY2(!preview.needsUpdateQuery(), "a reset changes no text");
        announce(1);
        engine->pushNewLayerTopLevelQueryComponent(engine->topLevelQueryComponent(0), "again");
        QVERIFY(preview.highlights.back().empty());
        QVERIFY(preview.needsUpdateQuery());
    }

    void familiesWithoutTextShowNone() {
        Test::OwnedEngine<> engine(DatabaseTypeMongoDB);
        RecordingPreview preview;
        preview.setEngine(engine.get());
        preview.updatePreviewQuery();
        m_host->finishWorkers();
        QCOMPARE(preview.texts, QStringList{""});
        QVERIFY(preview.isEnabled());

        Test::OwnedEngine<> bare;
        preview.setEngine(bare.get());
        preview.updatePreviewQuery();
        m_host->finishWorkers();
        QCOMPARE(preview.texts.size(), 2);
    }

    void anEngineDestroyedDuringTheRunLeavesAnIdlePanel() {
        Gate gate;
        theGate = &gate;
        Callback::formatIdentifier = quoteBehindGate;
        Test::OwnedEngine<> engine(DatabaseTypeSQLite);
        RecordingPreview preview;
        preview.setEngine(engine.get());
        Test::setSource(*engine.get(), Test::table("t"));
        preview.updatePreviewQuery();
        gate.awaitWorker();
        // The statement goes only when the worker has left it, so its end waits for the gate.
        std::thread opener([&gate] { gate.open(); });
        engine.destroy();
        opener.join();
        QVERIFY(!preview.isEnabled());
        m_host->finishWorkers();
        QVERIFY(preview.texts.isEmpty());
        QVERIFY(preview.isEnabled());
        QVERIFY(preview.ring()->isHidden());
        preview.setNeedsUpdateQuery(true);
        preview.updatePreviewQuery();
        QVERIFY2(preview.isEnabled(), "nothing to read from");
    }

    void aTextThatIsOvertakenIsNotShown() {
        const Test::OwnedEngine<> other(DatabaseTypeSQLite);
        for (const bool isOtherEngine : {false, true}) {
            Held held;
            auto& [engine, preview] = held;
            preview.updatePreviewQuery();
            if (isOtherEngine)
                preview.setEngine(other.get());
            else
                engine->setDatabaseInfo(DatabaseTypeMySQL, 80036);  // replaces the statement
            runHeldWork();
            QVERIFY(preview.texts.isEmpty());
            QVERIFY(preview.isEnabled());
            QVERIFY(preview.needsUpdateQuery());
        }
    }

    void quotingThatThrowsLeavesThePanelUsable() {
        Callback::formatIdentifier = [](const std::string&, DatabaseType, int) -> std::string {
            throw std::runtime_error("no connection");
        };
        Held held;
        auto& [engine, preview] = held;
        Test::setSource(*engine.get(), Test::table("t"));
        preview.updatePreviewQuery();
        QVERIFY_EXCEPTION_THROWN(runHeldWork(), std::runtime_error);
        QVERIFY(preview.isEnabled());
    }

    void loadingDisablesShowsTheRingAndGivesTheFocusBack() {
        QWidget window;
        auto* column = new QVBoxLayout(&window);
        auto* preview = new RecordingPreview;
        auto* other = new QLineEdit;
        auto* edit = preview->findChild<QLineEdit*>();
        column->addWidget(preview);
        column->addWidget(other);
        window.show();
        window.activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(&window));
        edit->setFocus();
        preview->setLoading(true);
        QVERIFY(!preview->isEnabled());
        QVERIFY(preview->ring()->isVisible());
        QCOMPARE(preview->ring()->geometry(), preview->rect());
        QVERIFY2(!preview->updatesEnabled(), "a short load is not painted");
        QVERIFY2(window.focusWidget() == nullptr, "the next widget must not get what is typed");
        preview->setLoading(false);
        QVERIFY(preview->ring()->isHidden());
        QCOMPARE(window.focusWidget(), edit);

        preview->setLoading(true);
        QTRY_VERIFY2(preview->updatesEnabled(), "a long load is");
        other->setFocus();
        preview->setLoading(false);
        QCOMPARE(window.focusWidget(), other);
        QVERIFY(preview->isEnabled() && preview->updatesEnabled());
    }

    void theSimplePanelShowsPlainTextAndMarksNothing() {
        QBSimpleQueryPreviewPanelWidget preview;
        auto* edit = preview.findChild<QTextEdit*>("textEdit");
        QVERIFY(edit->isReadOnly());
        preview.setPreviewQuery(u8"SELECT '<b>ä</b>'");
        preview.highlightText(QBAbstractQueryPreviewPanelWidget::HighlightTypeFocusedComponent,
                              {{0, 6}});
        QCOMPARE(edit->toPlainText(), QString::fromUtf8("SELECT '<b>ä</b>'"));
        QVERIFY(edit->extraSelections().isEmpty());

        // What is selected and scrolled to stays where the next text has it, too.
        preview.resize(300, 100);
        preview.show();
        const std::string lines = "line\n" + std::string(50, '\n') + "more";
        preview.setPreviewQuery(lines);
        edit->find("more");
        edit->verticalScrollBar()->setValue(20);
        for (const std::string& text : {lines + " and more", lines + " and so on"}) {
            preview.setPreviewQuery(text);
            QCOMPARE(edit->textCursor().selectedText(), QString("more"));
            QCOMPARE(edit->verticalScrollBar()->value(), 20);
        }
        preview.setPreviewQuery("other");
        QVERIFY(!edit->textCursor().hasSelection());
    }

    void theCopyButtonCopiesTheWholeTextAsItWasGenerated() {
        QBHighlightingQueryPreviewPanelWidget preview;
        auto* button = preview.findChild<QPushButton*>("copyButton");
        QVERIFY(!button->isEnabled());
        const std::string text = u8"SELECT 'a\u00a0b\r\n'";
        preview.setPreviewQuery(text);
        preview.show();
        button->setFocus();
        QTest::keyClick(button, Qt::Key_Space);
        QCOMPARE(QGuiApplication::clipboard()->text().toStdString(), text);
        QVERIFY(!button->toolTip().isEmpty() && !button->accessibleName().isEmpty());
    }

private:
    std::unique_ptr<Test::HostCallbacks> m_host;
};

}  // namespace QB

QTEST_MAIN(QB::QueryPreviewTest)
#include "query_preview_test.moc"
