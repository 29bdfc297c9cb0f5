#pragma once

#include <QString>

#include "model/export.h"
#include "platform/tolk/text_ids.h"

/// The texts that users see, by numeric id. English is the source; a QTranslator installed on the
/// application (context "Tolk") supplies other languages.
///
/// Fetch a text where it is shown, never at static initialisation, and again on
/// QEvent::LanguageChange. Any thread.
namespace Tolk {

/// The text for @p id; an empty text for an id outside the table.
QB_EXPORT QString localize(unsigned id);

/// The text for @p id with its printf placeholders (%d, %s with a UTF-8 char*) filled in.
QB_EXPORT QString localizeWithArgs(unsigned id, ...);

}  // namespace Tolk
