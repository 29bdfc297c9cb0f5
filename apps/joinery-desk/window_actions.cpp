#include "apps/joinery-desk/window_actions.h"

#include <QActionGroup>
#include <QDir>
#include <QFileInfo>
#include <QLocale>
#include <QMainWindow>
#include <QMenu>
#include <QMenuBar>

#include "apps/joinery-desk/diagram_actions.h"
#include "apps/joinery-desk/language.h"

namespace QB::Desk {

WindowActions::WindowActions(QMainWindow* window)
    : QObject(window)
    , relations(new QActionGroup(window))
    , themes(new QActionGroup(window))
    , languages(new QActionGroup(window))
    , m_window(window) {
    addFileMenu();
    QMenu* edit = addMenu(nullptr, QT_TR_NOOP("&Edit"));
    undo = edit->addAction(QString());
    undo->setShortcuts(QKeySequence::Undo);
    redo = edit->addAction(QString());
    redo->setShortcuts(QKeySequence::Redo);
    addQueryMenu();
    addViewMenu();
    about = add(addMenu(nullptr, QT_TR_NOOP("&Help")), QT_TR_NOOP("&About Joinery"));
    retranslate();
}

void WindowActions::addFileMenu() {
    QMenu* file = addMenu(nullptr, QT_TR_NOOP("&File"));
    open = add(file, QT_TR_NOOP("&Open Database…"), QKeySequence::Open);
    recent = addMenu(file, QT_TR_NOOP("Open &Recent"));
    clearRecent = add(recent, QT_TR_NOOP("&Clear List"));
    openSample = add(file, QT_TR_NOOP("Open Sam&ple Database"));
    file->addSeparator();
    openQuery = add(file, QT_TR_NOOP("Open Quer&y…"));
    saveQuery = add(file, QT_TR_NOOP("&Save Query"), QKeySequence::Save);
    saveQueryAs = add(file, QT_TR_NOOP("Save Query &As…"));
    file->addSeparator();
    openText = add(file, QT_TR_NOOP("Open SQL &Text…"), Qt::CTRL + Qt::SHIFT + Qt::Key_O);
    saveText = add(file, QT_TR_NOOP("Save SQL Te&xt"));
    saveTextAs = add(file, QT_TR_NOOP("Sa&ve SQL Text As…"));
    file->addSeparator();
    reload = add(file, QT_TR_NOOP("Re&load Objects"), Qt::CTRL + Qt::Key_R);
    file->addSeparator();
    quit = add(file, QT_TR_NOOP("&Quit"), QKeySequence(Qt::CTRL + Qt::Key_Q));
}

void WindowActions::addQueryMenu() {
    QMenu* query = addMenu(nullptr, QT_TR_NOOP("&Query"));
    newQuery = add(query, QT_TR_NOOP("&New Query"), QKeySequence::New);
    query->addSeparator();
    run = add(query, QT_TR_NOOP("&Run"), Qt::CTRL + Qt::Key_Return);
    run->setShortcuts({Qt::CTRL + Qt::Key_Return, Qt::CTRL + Qt::Key_Enter});
    stop = add(query, QT_TR_NOOP("&Stop"), Qt::Key_Escape);
    query->addSeparator();
    copyText = add(query, QT_TR_NOOP("&Copy SQL Text"), Qt::CTRL + Qt::SHIFT + Qt::Key_S);
    query->addSeparator();
    // Ctrl+E would end in the line edits, where it moves the cursor.
    editText = add(query, QT_TR_NOOP("&Edit SQL Text"), Qt::CTRL + Qt::Key_T);
    // In the text Ctrl+Return applies it; in the whole window that key runs the query.
    applyText = add(query, QT_TR_NOOP("&Apply SQL Text"));
    loadText = add(query, QT_TR_NOOP("Load SQL Text from &Builder"));
    goToError = add(query, QT_TR_NOOP("&Go to Error"), Qt::Key_F8);
}

void WindowActions::addViewMenu() {
    view = addMenu(nullptr, QT_TR_NOOP("&View"));
    diagram = new DiagramActions(view);
    view->addSeparator();
    addChoice(view, relations, QT_TR_NOOP("Links between &Tables"), QStringLiteral("1"));
    addChoice(view, relations, QT_TR_NOOP("&Links between Fields"), QStringLiteral("2"));
    view->addSeparator();
    QMenu* theme = addMenu(view, QT_TR_NOOP("T&heme"));
    addChoice(theme, themes, QT_TR_NOOP("As the &System"), QStringLiteral("system"));
    addChoice(theme, themes, QT_TR_NOOP("&Light"), QStringLiteral("light"));
    addChoice(theme, themes, QT_TR_NOOP("&Dark"), QStringLiteral("dark"));
    addLanguages(addMenu(view, QT_TR_NOOP("Lan&guage")));
}

void WindowActions::addLanguages(QMenu* menu) {
    addChoice(menu, languages, QT_TR_NOOP("As the &System"), QString());
    const QStringList codes = offeredLanguages();
    for (const QString& code : codes) {
        const QLocale locale(code);
        const QString name = locale.language() == QLocale::English ? QStringLiteral("English")
                                                                   : locale.nativeLanguageName();
        // A language is written in itself, whatever the others are in.
        addChoice(menu, languages, nullptr, code);
        languages->actions().constLast()->setText(name);
    }
}

QAction* WindowActions::add(QMenu* menu, const char* text, const QKeySequence& keys) {
    QAction* action = menu->addAction(QString());
    action->setShortcut(keys);
    m_texts.append({action, text});
    return action;
}

QMenu* WindowActions::addMenu(QMenu* parent, const char* text) {
    QMenu* menu = parent ? parent->addMenu(QString()) : m_window->menuBar()->addMenu(QString());
    m_texts.append({menu->menuAction(), text});
    return menu;
}

void WindowActions::addChoice(QMenu* menu, QActionGroup* group, const char* text,
                              const QString& data) {
    QAction* action = menu->addAction(QString());
    action->setCheckable(true);
    action->setData(data);
    group->addAction(action);
    if (text) m_texts.append({action, text});
}

void WindowActions::retranslate() {
    for (const auto& [action, text] : qAsConst(m_texts))
        action->setText(tr(text));
    diagram->retranslate();
}

void WindowActions::setSavedByKey(QAction* saving) {
    for (QAction* action : {saveQuery, saveText})
        action->setShortcuts(action == saving ? QKeySequence::keyBindings(QKeySequence::Save)
                                              : QList<QKeySequence>());
}

void WindowActions::setRecentFiles(const QStringList& databases, const QStringList& queries,
                                   const QStringList& texts) {
    const QList<QAction*> old = recent->actions();
    for (QAction* action : old)
        if (action != clearRecent) recent->removeAction(action);
    m_recentCount = 0;
    addRecent(databases, &WindowActions::recentFileTriggered, clearRecent);
    addRecent(queries, &WindowActions::recentQueryTriggered, clearRecent);
    addRecent(texts, &WindowActions::recentTextTriggered, clearRecent);
    recent->setEnabled(m_recentCount > 0);
}

/// A group with a line below it; the first ones in the menu have their number as a key.
void WindowActions::addRecent(const QStringList& files,
                              void (WindowActions::*triggered)(const QString&), QAction* before) {
    for (const QString& file : files) {
        QString name = QDir::toNativeSeparators(file);
        name.replace(QLatin1Char('&'), QLatin1String("&&"));
        const int number = ++m_recentCount;
        auto* action = new QAction(
            number < 10 ? QStringLiteral("&%1  %2").arg(number).arg(name) : name, recent);
        connect(action, &QAction::triggered, this, [this, triggered, file] {
            Q_EMIT(this->*triggered)(file);
        });
        recent->insertAction(before, action);
    }
    if (!files.isEmpty()) recent->insertSeparator(before);
}

void checkChoice(const QActionGroup* group, const QString& data) {
    const QList<QAction*> actions = group->actions();
    for (QAction* action : actions)
        if (action->data().toString() == data) action->setChecked(true);
}

}  // namespace QB::Desk
