#include "apps/joinery-desk/window_actions.h"

#include <QActionGroup>
#include <QDir>
#include <QFileInfo>
#include <QLocale>
#include <QMainWindow>
#include <QMenu>
#include <QMenuBar>

#include "apps/joinery-desk/language.h"

namespace QB::Desk {

WindowActions::WindowActions(QMainWindow* window)
    : QObject(window)
    , themes(new QActionGroup(window))
    , languages(new QActionGroup(window))
    , m_window(window) {
    QMenu* file = addMenu(nullptr, QT_TR_NOOP("&File"));
    open = add(file, QT_TR_NOOP("&Open Database…"), QKeySequence::Open);
    recent = addMenu(file, QT_TR_NOOP("Open &Recent"));
    clearRecent = add(recent, QT_TR_NOOP("&Clear List"));
    openSample = add(file, QT_TR_NOOP("Open &Sample Database"));
    file->addSeparator();
    reload = add(file, QT_TR_NOOP("Re&load Objects"), Qt::CTRL + Qt::Key_R);
    file->addSeparator();
    quit = add(file, QT_TR_NOOP("&Quit"), QKeySequence(Qt::CTRL + Qt::Key_Q));

    QMenu* query = addMenu(nullptr, QT_TR_NOOP("&Query"));
    newQuery = add(query, QT_TR_NOOP("&New Query"), QKeySequence::New);
    query->addSeparator();
    run = add(query, QT_TR_NOOP("&Run"), Qt::CTRL + Qt::Key_Return);
    run->setShortcuts({Qt::CTRL + Qt::Key_Return, Qt::CTRL + Qt::Key_Enter});
    stop = add(query, QT_TR_NOOP("&Stop"), Qt::Key_Escape);
    query->addSeparator();
    copyText = add(query, QT_TR_NOOP("&Copy SQL Text"), Qt::CTRL + Qt::SHIFT + Qt::Key_S);

    QMenu* view = addMenu(nullptr, QT_TR_NOOP("&View"));
    QMenu* theme = addMenu(view, QT_TR_NOOP("&Theme"));
    addChoice(theme, themes, QT_TR_NOOP("As the &System"), QStringLiteral("system"));
    addChoice(theme, themes, QT_TR_NOOP("&Light"), QStringLiteral("light"));
    addChoice(theme, themes, QT_TR_NOOP("&Dark"), QStringLiteral("dark"));
    addLanguages(addMenu(view, QT_TR_NOOP("L&anguage")));

    about = add(addMenu(nullptr, QT_TR_NOOP("&Help")), QT_TR_NOOP("&About Joinery"));
    retranslate();
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
}

void WindowActions::setRecentFiles(const QStringList& files) {
    const QList<QAction*> old = recent->actions();
    for (QAction* action : old)
        if (action != clearRecent) recent->removeAction(action);
    QAction* const line = recent->insertSeparator(clearRecent);
    for (int i = 0; i < files.size(); ++i) {
        QString name = QDir::toNativeSeparators(files[i]);
        name.replace(QLatin1Char('&'), QLatin1String("&&"));
        auto* action =
            new QAction(i < 9 ? QStringLiteral("&%1  %2").arg(i + 1).arg(name) : name, recent);
        connect(action, &QAction::triggered, this,
                [this, file = files[i]] { Q_EMIT recentFileTriggered(file); });
        recent->insertAction(line, action);
    }
    recent->setEnabled(!files.isEmpty());
}

}  // namespace QB::Desk
