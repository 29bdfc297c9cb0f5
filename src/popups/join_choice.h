#pragma once

#include "model/vocabulary.h"
#include "tools/source_edits.h"

namespace QB {

class QBJoinSelectionPopupWidget;

/// The list of the kinds that the server knows, at @p join; with the comma, unless the join is to
/// stay one.
/// Ownership: the caller's. Thread: main.
QBJoinSelectionPopupWidget* makeJoinChooser(const SourceJoinChoice& join, DatabaseType family,
                                            bool showCommaJoin);

/// What stands in the list: the words of a custom kind without blanks around them.
SourceJoinChoice chosenJoin(const QBJoinSelectionPopupWidget* joins);

/// Whether it is a custom kind without words, which no text can have. The user is told (showError).
bool refuseWithoutWords(const SourceJoinChoice& join);

}  // namespace QB
