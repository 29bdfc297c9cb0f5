#pragma once

#include <QLocale>
#include <QStringList>

#include "model/export.h"

namespace Tolk {

/// Shows the texts of the library, and of every program that ships its texts the same way, in the
/// language of @p locale; replaces the language set here before. Widgets hear of it through
/// QEvent::LanguageChange.
///
/// Looks for the resources ":/i18n/joinery*_<language>.qm"; joinery_add_translations in
/// cmake/JoineryTranslations.cmake makes them. English has one only for texts with plural forms.
/// Returns: false if there is no translation into that language; the texts then are English.
/// Ownership: the translators belong to the application object, which must exist.
/// Thread: main.
QB_EXPORT bool setLanguage(const QLocale& locale);

/// The languages that setLanguage can show besides English, as codes such as "de". Any thread.
QB_EXPORT QStringList translatedLanguages();

}  // namespace Tolk
