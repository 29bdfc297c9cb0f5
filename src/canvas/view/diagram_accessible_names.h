#pragma once

#include <QString>

namespace QB::DiagramLumo {

class QBLumoItem;
class QBLumoJoinLink;

/// The title with the alias; empty without a body.
QString accessibleNameOf(const QBLumoItem* item);
/// What kind of join and what it compares: "INNER JOIN: film.language_id = language.id", or which
/// tables it joins.
QString accessibleNameOf(const QBLumoJoinLink* link);

}  // namespace QB::DiagramLumo
