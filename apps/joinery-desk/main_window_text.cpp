// What the window does with the text in its SQL tab.
#include <QAction>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QMessageBox>
#include <QTabWidget>

#include "apps/joinery-desk/input_guard.h"
#include "apps/joinery-desk/main_window.h"
#include "apps/joinery-desk/message_bar.h"
#include "apps/joinery-desk/sql_editor.h"
#include "apps/joinery-desk/sql_file.h"
#include "apps/joinery-desk/sql_tab.h"
#include "apps/joinery-desk/window_actions.h"
#include "frame/query_builder_widget.h"

namespace QB::Desk {

void MainWindow::setUpSqlTab() {
    m_builder->obtainDiagramTabs()->addTab(m_sqlTab, QString());
    auto* guard = new InputGuard(m_builder, m_sqlTab);
    QueryApplier* applier = m_sqlTab->applier();
    connect(applier, &QueryApplier::loadingChanged, guard, &InputGuard::setActive);
    connect(m_sqlTab, &SqlTab::changed, this, &MainWindow::updateTextActions);
    connect(m_builder->obtainDiagramTabs(), &QTabWidget::currentChanged, this,
            &MainWindow::updateTextActions);
    connect(m_sqlTab, &SqlTab::fileOpened, this, [this](const QString& file) {
        m_recentTexts.add(file);
        updateRecentFiles();
        m_messageBar->hide();
        editText();
    });
    connect(m_sqlTab, &SqlTab::fileFailed, this, &MainWindow::showError);
}

void MainWindow::connectTextActions() {
    const auto on = [](const QAction* action, auto* receiver, auto what) {
        connect(action, &QAction::triggered, receiver, what);
    };
    on(m_actions->openText, this, &MainWindow::chooseTextFile);
    on(m_actions->saveText, this, &MainWindow::saveText);
    on(m_actions->saveTextAs, this, &MainWindow::saveTextAs);
    on(m_actions->editText, this, &MainWindow::editText);
    on(m_actions->applyText, m_sqlTab, [this] { m_sqlTab->apply(); });
    on(m_actions->loadText, m_sqlTab, &SqlTab::loadFromBuilder);
    on(m_actions->goToError, this, [this] {
        editText();
        m_sqlTab->goToError();
    });
}

bool MainWindow::isTextInFront() const {
    return m_builder->obtainDiagramTabs()->currentWidget() == m_sqlTab;
}

void MainWindow::editText() {
    m_builder->obtainDiagramTabs()->setCurrentWidget(m_sqlTab);
    m_sqlTab->setFocus(Qt::OtherFocusReason);
}

void MainWindow::updateTextActions() {
    QTabWidget* tabs = m_builder->obtainDiagramTabs();
    const int index = tabs->indexOf(m_sqlTab);
    tabs->setTabText(index, m_sqlTab->title());
    tabs->setTabToolTip(index, QDir::toNativeSeparators(m_sqlTab->filePath()));
    m_actions->applyText->setEnabled(m_sqlTab->canApply());
    m_actions->loadText->setEnabled(m_workspace != nullptr);
    m_actions->goToError->setEnabled(m_sqlTab->editor()->hasErrorPlace());
    // The text in front is saved where it has a file; without one the query keeps it.
    const bool isTextSaved = isTextInFront() && !m_sqlTab->filePath().isEmpty();
    m_actions->setSavedByKey(isTextSaved ? m_actions->saveText : m_actions->saveQuery);
}

// ---- Files

void MainWindow::chooseTextFile() {
    const QString folder = QFileInfo(m_recentTexts.files().value(0)).absolutePath();
    const QString file = QFileDialog::getOpenFileName(this, tr("Open SQL Text"), folder,
                                                      tr("SQL text (*.sql);;All files (*)"));
    if (!file.isEmpty()) openTextFile(file);
}

void MainWindow::openTextFile(const QString& file) {
    if (confirmDiscardText()) m_sqlTab->openFile(QFileInfo(file).absoluteFilePath());
}

bool MainWindow::saveText() {
    if (m_sqlTab->filePath().isEmpty()) return saveTextAs();
    const bool mayWrite =
        !m_sqlTab->isFileChangedOutside() || confirmOverwriting(m_sqlTab->filePath());
    return mayWrite && saveTextTo(QString());
}

bool MainWindow::saveTextAs() {
    QFileDialog dialog(this, tr("Save SQL Text"), m_sqlTab->filePath(),
                       tr("SQL text (*.sql);;All files (*)"));
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setDefaultSuffix(QStringLiteral("sql"));
    return dialog.exec() == QDialog::Accepted && saveTextTo(dialog.selectedFiles().value(0));
}

/// An empty @p file stands for the one that the text came from.
bool MainWindow::saveTextTo(const QString& file) {
    const QString error = m_sqlTab->save(file);
    if (!error.isEmpty()) {
        showError(error);
        return false;
    }
    noteQueryInSqlFile();
    m_recentTexts.add(m_sqlTab->filePath());
    updateRecentFiles();
    showNote(
        tr("The SQL text is saved in \"%1\".").arg(QDir::toNativeSeparators(m_sqlTab->filePath())));
    return true;
}

// ---- Questions

bool MainWindow::confirmOverwriting(const QString& file) {
    const auto answer = QMessageBox::warning(
        this, tr("The file has changed"),
        tr("Somebody else has written \"%1\" since it was opened. Write over it?")
            .arg(QDir::toNativeSeparators(file)),
        QMessageBox::Save | QMessageBox::Cancel, QMessageBox::Cancel);
    return answer == QMessageBox::Save;
}

bool MainWindow::confirmDiscardText() {
    if (!m_sqlTab->hasUnsavedText()) return true;
    editText();
    const auto answer = QMessageBox::warning(
        this, tr("Save the SQL text?"), tr("The SQL text has been edited and is not saved."),
        QMessageBox::Save | QMessageBox::Discard | QMessageBox::Cancel, QMessageBox::Save);
    if (answer == QMessageBox::Save) return saveText();
    return answer == QMessageBox::Discard;
}

}  // namespace QB::Desk
