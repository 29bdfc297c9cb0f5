#include "apps/joinery-desk/language.h"

#include <QCoreApplication>
#include <QLibraryInfo>
#include <QLocale>
#include <QTranslator>

#include "platform/tolk/translation.h"

namespace QB::Desk {
namespace {

/// Qt's own texts, such as those of its dialogs; where they are not installed they stay English.
void applyToQt(const QLocale& locale) {
    static QTranslator* const translator = new QTranslator(QCoreApplication::instance());
    QCoreApplication::removeTranslator(translator);
    const QString folder = QLibraryInfo::location(QLibraryInfo::TranslationsPath);
    if (translator->load(locale, QStringLiteral("qtbase"), QStringLiteral("_"), folder))
        QCoreApplication::installTranslator(translator);
}

}  // namespace

void applyLanguage(const QString& code) {
    const QLocale locale = code.isEmpty() ? QLocale::system() : QLocale(code);
    QLocale::setDefault(locale);
    applyToQt(locale);
    Tolk::setLanguage(locale);
}

QStringList offeredLanguages() {
    return QStringList(QStringLiteral("en")) + Tolk::translatedLanguages();
}

}  // namespace QB::Desk
