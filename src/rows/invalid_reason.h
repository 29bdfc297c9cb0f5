#pragma once

#include <QString>

#include "tools/join_lack.h"

namespace QB {

/// What a user is told of a part that is marked for @p reason, one of
/// Tools::Validation::InvalidReason; empty for any other number. Localised.
QString invalidReasonText(int reason);

/// What a user is told of the condition that @p join lacks; empty if it lacks none.
QString joinLackText(const Component::SQL::SQLJoinSourceNodeComponent* join, DatabaseType type);
/// Of a join that is marked for @p reason; empty for a negative one.
QString joinFaultText(const Component::SQL::SQLJoinSourceNodeComponent* join, int reason,
                      DatabaseType type);

}  // namespace QB
