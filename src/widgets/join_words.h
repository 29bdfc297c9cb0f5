#pragma once

#include <QPixmap>
#include <QString>
#include <vector>

#include "model/components.h"
#include "model/vocabulary.h"

namespace QB {

/// The kinds of join in the order in which they are offered.
const std::vector<SQLJoinType>& joinTypesInOrder();

/// What the choice of a kind is called: SQL words, or a localised word for the custom kind.
QString joinTitle(SQLJoinType type);

/// What the kind does, in a sentence or two, localised; empty for the custom kind.
QString joinDescription(SQLJoinType type);

/// The picture of a kind, with that of the custom kind for a value outside the enumeration.
/// Main thread.
QPixmap joinPixmap(SQLJoinType type);

/// What a row shows of @p join: its title, or the text of a custom join; empty for a custom join
/// without text.
QString joinWord(const Component::SQL::SQLJoinSourceNodeComponent* join);

/// Whether the server knows FULL OUTER JOIN.
bool hasFullOuterJoin(DatabaseType type);

}  // namespace QB
