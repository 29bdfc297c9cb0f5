#pragma once

#include <QString>
#include <QStringList>

namespace QB::Desk {

/// Shows all texts of the program, the library and Qt in a language: a code such as "de", or empty
/// for the system's. English where there is no translation. Main thread.
void applyLanguage(const QString& code);

/// English and what there are translations into.
QStringList offeredLanguages();

}  // namespace QB::Desk
