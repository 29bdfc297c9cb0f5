#include "platform/tolk/translation.h"

#include <QCoreApplication>
#include <QDir>
#include <QSet>
#include <QTranslator>

namespace Tolk {
namespace {

const char* const translatorName = "joinery translation";

/// "de" for German in any country; the texts without a locale are English, too.
QString codeOf(const QLocale& locale) {
    if (locale.language() == QLocale::C) return QStringLiteral("en");
    return locale.name().section(QLatin1Char('_'), 0, 0);
}

QStringList catalogues(const QString& language) {
    const QString pattern = QStringLiteral("joinery*_%1.qm").arg(language);
    return QDir(QStringLiteral(":/i18n")).entryList({pattern}, QDir::Files);
}

void removeTranslators() {
    const auto installed =
        qApp->findChildren<QTranslator*>(QLatin1String(translatorName), Qt::FindDirectChildrenOnly);
    qDeleteAll(installed);  // a translator takes itself off the application
}

void install(const QString& catalogue) {
    auto* translator = new QTranslator(qApp);
    translator->setObjectName(QLatin1String(translatorName));
    if (translator->load(QStringLiteral(":/i18n/") + catalogue)) {
        QCoreApplication::installTranslator(translator);
    }
}

}  // namespace

bool setLanguage(const QLocale& locale) {
    removeTranslators();
    const QString language = codeOf(locale);
    const QStringList found = catalogues(language);
    for (const QString& catalogue : found)
        install(catalogue);
    return language == QLatin1String("en") || !found.isEmpty();
}

QStringList translatedLanguages() {
    QSet<QString> languages;
    for (const QString& name : catalogues(QStringLiteral("*")))
        languages.insert(name.section(QLatin1Char('_'), -1).section(QLatin1Char('.'), 0, 0));
    languages.remove(QStringLiteral("en"));
    QStringList sorted(languages.begin(), languages.end());
    sorted.sort();
    return sorted;
}

}  // namespace Tolk
