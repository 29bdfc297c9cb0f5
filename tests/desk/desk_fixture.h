#pragma once

#include <QApplication>
#include <QDialogButtonBox>
#include <QDropEvent>
#include <QLabel>
#include <QMessageBox>
#include <QMimeData>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSettings>
#include <QSignalSpy>
#include <QStandardPaths>
#include <QTableView>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <QTreeWidget>
#include <memory>

#include "apps/joinery-desk/main_window.h"
#include "apps/joinery-desk/message_bar.h"
#include "apps/joinery-desk/result_grid.h"
#include "apps/joinery-desk/result_model.h"
#include "diagrampanel/diagram_object_tree_panel_widget.h"
#include "frame/abstract_query_preview_panel_widget.h"
#include "frame/query_builder_widget.h"
#include "hostkit/sqlite_file.h"
#include "hostkit/threads.h"

namespace QB::Test {

/// Clicks a button of the next modal box.
inline void answerNextBox(QMessageBox::StandardButton answer, int* boxes) {
    auto* timer = new QTimer(qApp);
    QObject::connect(timer, &QTimer::timeout, timer, [timer, answer, boxes] {
        auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
        if (!box) return;
        ++*boxes;
        timer->deleteLater();
        timer->stop();
        QTest::mouseClick(box->button(answer), Qt::LeftButton);
    });
    timer->start(10);
}

inline void sendDrop(QWidget* target, const QMimeData& data) {
    QDragEnterEvent enter({5, 5}, Qt::CopyAction, &data, Qt::LeftButton, {});
    QApplication::sendEvent(target, &enter);
    if (!enter.isAccepted()) return;
    QDropEvent drop({5, 5}, Qt::CopyAction, &data, Qt::LeftButton, {});
    QApplication::sendEvent(target, &drop);
}

/// The window on the screen, with settings of its own, and what a user would look at and reach for.
class DeskFixture {
public:
    explicit DeskFixture(const Desk::QueryParsing& parsing = Desk::libraryParsing())
        : settings(folder.filePath("settings.ini"), QSettings::IniFormat) {
        QStandardPaths::setTestModeEnabled(true);
        HostKit::installCallbacks();
        window = std::make_unique<Desk::MainWindow>(&settings, folder.filePath("sample.sqlite"),
                                                    parsing);
        window->setLanguage("en");
        window->show();
    }

    /// Opens a file that can be opened, and waits until its tables are in the tree.
    bool open(const QString& file) {
        window->openFile(file);
        return QTest::qWaitFor(
            [this] { return !window->isOpening() && window->isDatabaseShown(); });
    }

    /// The same, and adds a table by a double click. True when the preview shows the query.
    bool openAndAdd(const QString& file, const QString& table) {
        if (!open(file)) return false;
        doubleClick(row(table));
        return QTest::qWaitFor([&] { return preview() == "SELECT * FROM " + table; });
    }

    /// The same with a new file of those tables; empty: no table is added.
    bool start(const std::string& sql, const QString& table = {}) {
        database = std::make_unique<SqliteFile>(sql);
        return table.isEmpty() ? open(database->path()) : openAndAdd(database->path(), table);
    }

    /// Writes a file in the folder, and gives its path.
    QString write(const QString& name, const QByteArray& content) const {
        QFile file(folder.filePath(name));
        if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
            qFatal("cannot write");
        return file.fileName();
    }

    QTreeWidget* tree() const { return window->objectTree()->findChild<QTreeWidget*>(); }
    QTreeWidgetItem* schema() const { return tree()->topLevelItem(0); }
    QTreeWidgetItem* row(const QString& name) const {
        const auto found = tree()->findItems(name, Qt::MatchExactly | Qt::MatchRecursive);
        return found.isEmpty() ? nullptr : found.first();
    }
    QPoint centre(QTreeWidgetItem* item) const {
        tree()->scrollToItem(item);
        return tree()->visualItemRect(item).center();
    }
    void doubleClick(QTreeWidgetItem* item) const {
        const QPoint place = centre(item);
        QTest::mouseClick(tree()->viewport(), Qt::LeftButton, {}, place);
        QTest::mouseDClick(tree()->viewport(), Qt::LeftButton, {}, place);
        QTest::mouseRelease(tree()->viewport(), Qt::LeftButton, {}, place);
    }

    /// A key in the window as it is, wherever the focus may be.
    void press(Qt::Key key, Qt::KeyboardModifiers modifiers = {}) const {
        window->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(window.get()));
        QTest::keyClick(window->windowHandle(), key, modifiers);
    }

    /// The text that the preview shows, on one line.
    QString preview() const {
        auto* edit = window->builder()->queryPreviewPanel()->findChild<QPlainTextEdit*>();
        return edit->toPlainText().simplified();
    }
    QPushButton* button(QDialogButtonBox::StandardButton which) const {
        return window->builder()->findChild<QDialogButtonBox*>()->button(which);
    }
    void buildAndRun() const { QTest::mouseClick(button(QDialogButtonBox::Yes), Qt::LeftButton); }

    Desk::ResultGrid* grid() const { return window->resultGrid(); }
    Desk::ResultModel* model() const { return grid()->model(); }
    QString cell(int row, int column) const {
        return model()->index(row, column).data().toString();
    }
    QString status() const { return window->findChild<QLabel*>("resultStatus")->text(); }

    QTemporaryDir folder;
    QSettings settings;
    std::unique_ptr<SqliteFile> database;  // that start() made
    std::unique_ptr<Desk::MainWindow> window;
};

}  // namespace QB::Test
